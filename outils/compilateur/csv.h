// Comma-separated values (RFC 4180): quoted fields may hold commas, doubled quotes and line breaks.
#ifndef NOXLUX_COMPILATEUR_CSV_H
#define NOXLUX_COMPILATEUR_CSV_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace noxlux::compilateur {

struct EnregistrementCsv {
  // More than any record has: what follows is counted and not kept.
  static constexpr std::size_t CHAMPS_GARDES = 256;

  std::vector<std::string> champs;
  std::size_t nombre = 0;   // of all its fields
  std::uint32_t ligne = 0;  // where it begins, from 1
  bool malForme = false;    // text between a closing quote and the next comma
  bool inacheve = false;    // the text ends within a quoted field
  bool sansFinDeLigne = false;
};

class LecteurCsv {
 public:
  explicit LecteurCsv(std::string_view texte, char separateur = ',')
      : texte_(texte), separateur_(separateur) {}

  // The next record; false at the end of the text.
  bool lire(EnregistrementCsv& enregistrement);
  // Bytes read so far.
  std::size_t position() const { return position_; }

 private:
  void lireChamp(EnregistrementCsv& enregistrement);
  void lireChampEntreGuillemets(EnregistrementCsv& enregistrement, std::string& champ);
  bool fini() const { return position_ >= texte_.size(); }
  bool finDeChamp() const;

  std::string_view texte_;
  char separateur_;
  std::size_t position_ = 0;
  std::uint32_t ligne_ = 1;
};

}  // namespace noxlux::compilateur

#endif
