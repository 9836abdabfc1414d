// A piece of the trace, one line or a few, put together before it is written at once.
#ifndef NOXLUX_BASICS_MORCEAU_TRACE_H
#define NOXLUX_BASICS_MORCEAU_TRACE_H

#include <cstdarg>
#include <cstddef>
#include <memory>
#include <string_view>

namespace noxlux {

class MorceauTrace {
 public:
  MorceauTrace() = default;
  MorceauTrace(const MorceauTrace&) = delete;
  MorceauTrace& operator=(const MorceauTrace&) = delete;

  void indenter(int profondeur);
  void ajouter(std::string_view texte);
  // The formatted text. What arguments bring along never ends the line nor acts on a terminal: control
  // characters are shown as '.'.
  void formater(const char* format, std::va_list arguments);
  std::string_view texte() const { return {debut_, taille_}; }

 private:
  // Room for n characters more; without memory for them, what does not fit is left out.
  std::size_t reserver(std::size_t n);

  static constexpr std::size_t ORDINAIRE = 1024;
  char ordinaire_[ORDINAIRE];
  std::unique_ptr<char[]> grand_;
  char* debut_ = ordinaire_;
  std::size_t capacite_ = ORDINAIRE;
  std::size_t taille_ = 0;
};

}  // namespace noxlux

#endif
