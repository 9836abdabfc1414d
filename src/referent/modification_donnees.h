// The one write-access layer over the loaded store: dated changes of a few values, their cancellation, and
// their re-application when the store or an act is loaded.
//
// A change never overwrites a value: it puts a new history, or dated line, in front of those there, and is
// recorded as one line of a modification table. Whatever fails (0xDFFC included), histories and modification
// tables are as they were. Positions of overseas departments and of thresholds go from 1 to 4.
#ifndef NOXLUX_REFERENT_MODIFICATION_DONNEES_H
#define NOXLUX_REFERENT_MODIFICATION_DONNEES_H

#include <cstdint>

#include "referent/lecture_donnees.h"

namespace noxlux {

class ModificationDonnees final : public LectureDonnees {
 public:
  explicit ModificationDonnees(Referentiel* referentiel) : LectureDonnees(referentiel) {}

  // Changes from an effect date on. `enregistrer` is false when a saved change is applied again. With
  // `niveau`, the level is the one to change; without, it is found by its key. 0xD004: effect date before the
  // newest history, or outside its validity.
  CodeRetour modifierPrixUnitaire(const Code& acte, const Code& activite, const Code& phase,
                                  const Date& dateEffet, const Montant& prix, bool enregistrer = true,
                                  NiveauPhase* niveau = nullptr);
  CodeRetour modifierSupplementCharges(const Code& acte, const Code& activite, const Code& phase,
                                       const Date& dateEffet, const Montant& supplement,
                                       bool enregistrer = true, NiveauPhase* niveau = nullptr);
  CodeRetour modifierMajorationDOM(const Code& acte, const Code& activite, const Code& phase,
                                   const Date& dateEffet, unsigned short positionDOM,
                                   const Coefficient& majoration, bool enregistrer = true,
                                   NiveauPhase* niveau = nullptr);
  CodeRetour modifierCodeRegroupement(const Code& acte, const Code& activite, const Date& dateEffet,
                                      const Code& codeRegroupement, bool enregistrer = true,
                                      NiveauActivite* niveau = nullptr);
  // Adds a grouping code, valid from the effect date on, and its label.
  CodeRetour ajouterCodeRegroupement(const Date& dateEffet, const Code& code, const Texte& libelle,
                                     bool enregistrer = true);
  CodeRetour modifierForfaitModificateur(const Code& modificateur, const Date& dateEffet,
                                         const Montant& forfait, bool enregistrer = true);
  CodeRetour modifierTauxModificateur(const Code& modificateur, const Date& dateEffet,
                                      const Coefficient& taux, bool enregistrer = true);
  CodeRetour modifierCoefficientAssociationNonPrevue(const Code& association, const Date& dateEffet,
                                                     const Coefficient& coefficient, bool enregistrer = true);
  CodeRetour modifierSeuil(const Date& dateEffet, unsigned short positionSeuil, const Montant& seuil,
                           bool enregistrer = true);
  CodeRetour modifierForfaitNonConventionnes(const Date& dateEffet, const Montant& forfait,
                                             bool enregistrer = true);
  CodeRetour modifierTauxNonConventionnes(const Date& dateEffet, const Coefficient& taux,
                                          bool enregistrer = true);
  CodeRetour modifierCommentaireReferentiel(const Texte& commentaire);
  CodeRetour modifierNumeroRevisionReferentiel(const Nombre& numero);

  // Cancellations: every recorded change of the value goes. 0xD005: there is none.
  CodeRetour annulerModificationsPrixUnitaire(const Code& acte, const Code& activite, const Code& phase);
  CodeRetour annulerModificationsSupplementCharges(const Code& acte, const Code& activite, const Code& phase);
  CodeRetour annulerModificationsMajorationDOM(const Code& acte, const Code& activite, const Code& phase,
                                               unsigned short positionDOM);
  CodeRetour annulerModificationsCodeRegroupement(const Code& acte, const Code& activite);
  CodeRetour annulerNouveauxCodesRegroupement();
  CodeRetour annulerModificationsValeurModificateur(const Code& modificateur);
  CodeRetour annulerModificationsCoefficientAssociationNonPrevue(const Code& association);
  CodeRetour annulerModificationsSeuilExoTM(unsigned short positionSeuil);
  CodeRetour annulerModificationsValeurNonConventionnes();

  // Applies the recorded changes again. The first two take an act just read, which is not in its place yet.
  CodeRetour appliquerModificationsCodesRegroupement(const Code& acte, NiveauActe& niveau);
  CodeRetour appliquerModificationsHistoriquePhase(const Code& acte, NiveauActe& niveau);
  CodeRetour appliquerModificationsReglesAssociationsNP();
  CodeRetour appliquerModificationsModificateurs();
  CodeRetour appliquerModificationsReductionNC();
  CodeRetour appliquerModificationsSeuils();
  CodeRetour appliquerModificationsNouveauCodeRegroupement();

 private:
  // The shapes of the changes of act values, defined with them.
  template <class M, class F, class... P>
  CodeRetour modifierPhase(const Code& acte, const Code& activite, const Code& phase, const Date& dateEffet,
                           double valeur, F&& champ, bool enregistrer, NiveauPhase* niveau, P... position);
  template <class M, class... C>
  CodeRetour annulerValeurActe(const char* methode, const Code& acte, const C&... autres);
  CodeRetour appliquer(const Code& acte, const ModificationPrixUnitaire& ligne, NiveauPhase& niveau);
  CodeRetour appliquer(const Code& acte, const ModificationSupplementCharge& ligne, NiveauPhase& niveau);
  CodeRetour appliquer(const Code& acte, const ModificationMajorationDOM& ligne, NiveauPhase& niveau);

  // `changer` sets the flat amount, the rate or both in the new line.
  template <class F>
  CodeRetour modifierValeurModificateur(const Code& modificateur, const Date& dateEffet, F&& changer,
                                        bool enregistrer);
  template <class F>
  CodeRetour modifierDonneesReductionNonConventionnes(const Date& dateEffet, F&& changer, bool enregistrer);
};

}  // namespace noxlux

#endif
