// What filing an error does to the lines it falls on: their forcing indicator, and the rules that may no
// longer be checked on them.
#ifndef NOXLUX_REGLES_DEPOT_ERREUR_H
#define NOXLUX_REGLES_DEPOT_ERREUR_H

#include "regles/ligne_ccam.h"
#include "regles/regles.h"

namespace noxlux {

// The combination of one indicator with those of several lines. Lines that are filed together mostly bear the
// same indicator: the last answer is kept.
class CombinaisonForcage {
 public:
  CombinaisonForcage(Regles& regles, const Code& indicateur) : regles_(regles), indicateur_(indicateur) {}

  const Code& indicateur() const { return indicateur_; }
  // Imposes the indicator on a line that bears one already. A failure leaves the line's as it was.
  CodeRetour combiner(LigneActe& ligne);

 private:
  Regles& regles_;
  const Code& indicateur_;
  std::optional<Code> present_;
  Code resultat_;
};

// Appends the rules to those that may no longer be checked on the line, and on what holds it.
CodeRetour exclureRegles(LigneActe& ligne, const ListeCodes& regles);

// Draws the consequences of an error on every line of a group (association, séance); `annoncer` traces the
// first indicator of a line.
template <class Groupe, class Annoncer>
CodeRetour deposerSurGroupe(Groupe& groupe, const Erreur& erreur, Regles& regles, Annoncer annoncer) {
  CodeRetour cr = NOX_CR_OK;
  if (erreur.imposeForcage()) {
    CombinaisonForcage combinaison(regles, erreur.lireIndicateurForcage());
    for (LigneCCAM* ligne : groupe.lignes) {
      if (ligne->forcage.has_value()) {
        cr = combinaison.combiner(*ligne);
      } else {
        ligne->forcage = combinaison.indicateur();
        annoncer(*ligne);
      }
      if (cr != NOX_CR_OK) {
        return cr;
      }
    }
  }
  if (groupe.depot.propagees.contains(erreur.lireReference().vue())) {
    return NOX_CR_OK;
  }
  ListeCodes exclues;
  cr = regles.rechercherReglesNonVerifiables(erreur.lireReference(), exclues);
  for (LigneCCAM* ligne : groupe.lignes) {
    if (cr == NOX_CR_OK) {
      cr = exclureRegles(*ligne, exclues);
    }
  }
  if (cr == NOX_CR_OK) {
    groupe.depot.propagees.emplace(erreur.lireReference().vue());
  }
  return cr;
}

// Empties an error when its filing ends, however it ends.
class ViderErreur {
 public:
  explicit ViderErreur(Erreur& erreur) : erreur_(erreur) {}
  ~ViderErreur() { erreur_.initialiser(); }
  ViderErreur(const ViderErreur&) = delete;
  ViderErreur& operator=(const ViderErreur&) = delete;

 private:
  Erreur& erreur_;
};

}  // namespace noxlux

#endif
