// The CCAM lines of an invoice carried out on one date.
#ifndef NOXLUX_REGLES_SEANCE_H
#define NOXLUX_REGLES_SEANCE_H

#include <vector>

#include "regles/ligne_ccam.h"

namespace noxlux {

struct Seance {
  // REQUIRES: dateSeance != null, which must outlive the séance
  Seance(const Nombre& numeroSeance, const Date* dateSeance);

  bool accepte(const LigneCCAM& ligne) const { return estEffectueeMemeDate(&ligne); }
  bool estEffectueeMemeDate(const LigneCCAM* ligne) const { return ligne->date == *date; }
  // REQUIRES: less than MAX_LIGNES lines, ligne != null
  void ajouterLigne(LigneCCAM* ligne);
  // Exemption by the threshold. `factureExoneree` becomes "2" when the séance reaches it, "4" when that may
  // not be checked, which seuilVerifie keeps.
  CodeRetour controlerExoFacture(Tarification& tarification, ListeErreurs& erreurs, Code& factureExoneree);
  void dump() const;

  Nombre numero;
  const Date* date;
  std::vector<LigneCCAM*> lignes;  // not owned
  bool topDebrayage = false;
  bool seuilVerifie = false;  // whether the exemption by the threshold was asked of it
  // The bases that count towards the exemption threshold, once they have been added up.
  mutable std::optional<Montant> sommeHorsForfait;
  EtatDepot depot;
};

}  // namespace noxlux

#endif
