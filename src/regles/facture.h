// An invoice: its lines, their grouping into associations and séances, and its whole check.
#ifndef NOXLUX_REGLES_FACTURE_H
#define NOXLUX_REGLES_FACTURE_H

#include <deque>
#include <memory>
#include <vector>

#include "regles/association_ccam.h"
#include "regles/ligne_ccam.h"
#include "regles/seance.h"

namespace noxlux {

struct Facture {
  static constexpr const char* NON_EXONEREE = "3";  // not exempt so far
  static constexpr const char* EXONEREE = "2";      // exempt by the threshold: settled
  static constexpr const char* NON_VERIFIABLE = "4";

  Facture() = default;
  Facture(const Facture&) = delete;
  Facture& operator=(const Facture&) = delete;

  // Takes the line. REQUIRES: ligne != null, less than MAX_LIGNES lines. The reference stays valid.
  LigneActe& ajouterLigne(std::unique_ptr<LigneActe> ligne);
  // Regroup the CCAM lines from scratch. The number of the groups follows the order of the lines.
  void grouperParAssociations();
  void grouperParDates();

  // The whole check. Violations go into `erreurs`, which only grows; the code tells a technical failure.
  CodeRetour controler(Reglementation& reglementation, Tarification& tarification, ListeErreurs& erreurs);
  // Its steps.
  CodeRetour controlerReglementation(Reglementation& reglementation, ListeErreurs& erreurs);
  // REQUIRES: factureExoneree is there
  CodeRetour controlerExoFacture(Tarification& tarification, ListeErreurs& erreurs);
  // Files the error of a séance rule, triggered by the line `numero` of that date, on the whole séance, then
  // empties it.
  CodeRetour traiterErreur(ListeErreurs& erreurs, Erreur& erreur, const Nombre& numero, const Date& date,
                           Regles& regles);
  void dump() const;

  std::optional<Code> numeroPS;
  std::optional<Code> conventionPS;
  std::optional<Code> specialitePS;
  std::optional<Code> agrementRadio;
  std::optional<Code> caissePS;
  std::optional<Date> dateNaissance;
  std::optional<Code> tiersPayant;
  std::vector<std::unique_ptr<LigneActe>> lignes;
  std::deque<AssociationCCAM> associations;
  std::deque<Seance> seances;
  std::optional<Code> factureExoneree;
  std::optional<Code> natureAssurance;
  bool topDebrayage = false;
};

}  // namespace noxlux

#endif
