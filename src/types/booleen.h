#ifndef NOXLUX_TYPES_BOOLEEN_H
#define NOXLUX_TYPES_BOOLEEN_H

#include "types/type_donnee.h"

namespace noxlux {

// A truth value, "O" or "N" in zones and files.
class Booleen final : public TypeSimple {
 public:
  Booleen() = default;
  explicit Booleen(bool valeur) : valeur_(valeur) {}
  // REQUIRES: estValide(caractere)
  explicit Booleen(char caractere);
  // REQUIRES: champ != null, longueur > 0, first byte valid
  Booleen(const byte* champ, std::size_t longueur);

  static bool estValide(char caractere) { return caractere == 'O' || caractere == 'N'; }

  // "vrai" or "faux"
  void afficher(std::FILE* sortie) const override;
  void dump(unsigned short module) const override;
  bool estRenseigne() const override { return true; }
  bool ok() const override { return true; }
  std::string lireBytes() const override { return valeur_ ? "O" : "N"; }

  bool estVrai() const { return valeur_; }
  bool operator==(const Booleen& autre) const { return valeur_ == autre.valeur_; }

 private:
  bool valeur_ = false;
};

}  // namespace noxlux

#endif
