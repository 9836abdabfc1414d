// The CCAM lines of an invoice carried out on one date, by one professional, within one activity: they are
// checked together and priced together.
#ifndef NOXLUX_REGLES_ASSOCIATION_CCAM_H
#define NOXLUX_REGLES_ASSOCIATION_CCAM_H

#include <vector>

#include "regles/ligne_ccam.h"

namespace noxlux {

struct AssociationCCAM {
  static constexpr const char* PREVUE = "P";
  static constexpr const char* NON_PREVUE = "N";

  // REQUIRES: none of the three is null; they must outlive the association
  AssociationCCAM(const Nombre& numeroAssociation, const Date* dateAssociation, const Code* codeActivite,
                  const Code* numeroExecutant);

  bool accepte(const LigneCCAM& ligne) const { return estAssociee(&ligne); }
  bool estAssociee(const LigneCCAM* ligne) const;
  // REQUIRES: less than MAX_LIGNES lines, ligne != null
  void ajouterLigne(LigneCCAM* ligne);

  CodeRetour controlerReglementation(Reglementation& reglementation, ListeErreurs& erreurs);
  // Finds the act with the highest unit price (PROD656A).
  CodeRetour rechercherActePu(Tarification& tarification, ListeErreurs& erreurs);
  // Files the error of an association rule on all the lines, then empties it.
  CodeRetour traiterErreur(ListeErreurs& erreurs, Erreur& erreur, Regles& regles);
  void dump() const;

  Nombre numero;
  const Date* date;
  const Code* activite;
  const Code* numeroPS;
  std::optional<Code> actePlusFort;  // the act with the highest unit price
  std::vector<LigneCCAM*> lignes;    // not owned
  std::optional<Code> typeAssociation;
  bool topDebrayage = false;
  EtatDepot depot;
};

}  // namespace noxlux

#endif
