// An invoice line coded in CCAM.
#ifndef NOXLUX_REGLES_LIGNE_CCAM_H
#define NOXLUX_REGLES_LIGNE_CCAM_H

#include <functional>
#include <set>
#include <string>

#include "regles/ligne_acte.h"
#include "types/booleen.h"

namespace noxlux {

struct AssociationCCAM;
struct Seance;

using References = std::set<std::string, std::less<>>;

// What the errors filed since a group was made left on it.
struct EtatDepot {
  References exclues;    // what one of the lines at least excludes from checking
  References propagees;  // errors whose dependent rules every line already excludes
};

struct LigneCCAM final : LigneActe {
  LigneCCAM() : LigneActe(Type::CCAM) {}
  // Takes over every common field.
  explicit LigneCCAM(const LigneActe& ligne) : LigneActe(ligne) { type = Type::CCAM; }

  void dump() const override;
  void debrayerService() override;
  CodeRetour controlerReglementation(Reglementation& reglementation, ListeErreurs& erreurs) override;
  CodeRetour controlerPU(Tarification& tarification, ListeErreurs& erreurs) override;
  CodeRetour controlerBaseActe(Tarification& tarification, ListeErreurs& erreurs) override;
  CodeRetour controlerExoActe(Tarification& tarification, ListeErreurs& erreurs,
                              Code& factureExoneree) override;
  CodeRetour controlerExoFactureExoneree(Tarification& tarification, ListeErreurs& erreurs) override;
  CodeRetour controlerExoFactureNonExoneree(Tarification& tarification, ListeErreurs& erreurs) override;

  Code acte;
  Code activite;
  Code phase;
  ListeCodes modificateur;
  std::optional<Code> codeAssociation;
  std::optional<Code> codeRemboursement;
  std::optional<Code> supplementCharges;
  ListeCodes donneesComplementaires;
  ListeCodes dent;
  std::optional<Montant> prixCalcule;      // of the act, with the increase of the fund
  std::optional<Montant> baseCalculee;     // what a billed base is compared with
  std::optional<Montant> baseHorsForfait;  // computed
  AssociationCCAM* association = nullptr;  // set by the grouping; not owned
  Seance* seance = nullptr;                // set by the grouping; not owned
  bool topActePuMax = false;               // highest unit price of the association
  std::optional<Booleen> topReduction;     // the association coefficient applies
};

// The line as a CCAM line; null when it is of another type, or null.
inline LigneCCAM* enLigneCCAM(LigneActe* ligne) {
  return ligne != nullptr && ligne->type == LigneActe::Type::CCAM ? static_cast<LigneCCAM*>(ligne) : nullptr;
}
inline const LigneCCAM* enLigneCCAM(const LigneActe* ligne) {
  return ligne != nullptr && ligne->type == LigneActe::Type::CCAM ? static_cast<const LigneCCAM*>(ligne)
                                                                  : nullptr;
}

}  // namespace noxlux

#endif
