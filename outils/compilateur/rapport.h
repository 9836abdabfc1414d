// The faults of a compilation: where each one is in the sources, and a sentence a person can act upon.
#ifndef NOXLUX_COMPILATEUR_RAPPORT_H
#define NOXLUX_COMPILATEUR_RAPPORT_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace noxlux::compilateur {

// A place in the sources. Line 0: the file as a whole.
struct Lieu {
  std::uint32_t source = 0;  // rank given by Rapport::declarerSource; 0: no file at all
  std::uint32_t ligne = 0;
};

struct Faute {
  Lieu lieu;
  std::string phrase;  // UTF-8
};

class Rapport {
 public:
  std::uint32_t declarerSource(std::string chemin);
  std::uint32_t nombreSources() const { return static_cast<std::uint32_t>(sources_.size()); }
  const std::string& nomSource(std::uint32_t source) const { return sources_[source]; }

  void signaler(Lieu lieu, std::string phrase) { fautes_.push_back({lieu, std::move(phrase)}); }

  bool estVide() const { return fautes_.empty(); }
  std::size_t nombreFautes() const { return fautes_.size(); }
  const std::vector<Faute>& fautes() const { return fautes_; }
  // One line per fault, "file:line: sentence", by file and line.
  std::vector<std::string> lignes() const;

 private:
  std::vector<std::string> sources_{std::string()};
  std::vector<Faute> fautes_;
};

// The pieces put end to end: sentences are built from them.
template <class... T>
std::string phrase(const T&... morceaux) {
  std::string resultat;
  (resultat.append(std::string_view(morceaux)), ...);
  return resultat;
}

}  // namespace noxlux::compilateur

#endif
