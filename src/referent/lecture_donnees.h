// The one read-access layer over the loaded store: every question about reference data is asked here.
//
// A query answers 0 and fills its output, or a code and leaves the output untouched (a list that fails
// half-way keeps what it had got): 0xD002 unknown key, 0xD003 nothing at the date, 0xDF01 act being loaded,
// 0xDFFE code too long for its key or entry that is no code, 0xDFFC out of memory, and the loader's codes for
// an act or a deferred table read on first use. An existence question answers true or false: an unknown key,
// or no line at the date, is false.
#ifndef NOXLUX_REFERENT_LECTURE_DONNEES_H
#define NOXLUX_REFERENT_LECTURE_DONNEES_H

#include <cstdint>
#include <optional>
#include <string>

#include "basics/codes_retour.h"
#include "basics/format_verifie.h"
#include "referent/observateur_lecture.h"
#include "referent/referentiel.h"
#include "referent/requete_cadre.h"
#include "types/booleen.h"
#include "types/date.h"
#include "types/decimal.h"
#include "types/liste_codes.h"

namespace noxlux {

class LectureDonnees {
 public:
  // `referentiel` is not owned. REQUIRES: an access to it is held while questions are asked.
  explicit LectureDonnees(Referentiel* referentiel) : referentiel_(referentiel) {}

  // Tells every datum read from now on; nobody by default.
  void ecouter(ObservateurLecture* observateur) { observateur_ = observateur; }

  // The frame of a query about data: runs corps(releve), and tells who listens what was asked and answered.
  template <class S, class F, class... T>
  CodeRetour demander(const char* methode, const S& sortie, F&& corps, const Entree<T>&... entrees) {
    Releve releve;
    const CodeRetour cr = requete(
        methode, [&] { return corps(releve); }, entrees...);
    if (observateur_ != nullptr) [[unlikely]] {
      observateur_->donneeLue({methode,
                               {valeurLue(entrees.valeur)...},
                               cr,
                               cr == NOX_CR_OK ? valeurLue(sortie) : ValeurLue(),
                               cr == NOX_CR_OK ? releve.depuis() : std::nullopt,
                               std::nullopt});
    }
    return cr;
  }

  // Starts or stops counting the values read that a local modification covers; the count goes back to 0.
  void activerVerificationModification(bool activer);
  CodeRetour lireVerificationModification(Nombre& compteur) const;

  // Header values of the reference.
  CodeRetour lireCommentaireReferentiel(Texte& commentaire) const;
  CodeRetour lireDateModification(Date& date) const;
  CodeRetour lireVersionBaseCCAM(Code& version) const;
  CodeRetour lireNumeroRevisionReferentiel(Nombre& numero) const;
  CodeRetour lireVersionMinLogicielle(Code& version) const;
  CodeRetour lireVersionReferentiel(Code& version) const;
  CodeRetour lireVariante(Code& variante) const;

  // The act as a whole.
  CodeRetour rechercherExistenceActe(const Code& acte);
  CodeRetour rechercherActivites(const Code& acte, ListeCodes& activites);
  CodeRetour rechercherChargementActe(const Code& acte, Booleen& charge);
  CodeRetour rechercherCodeMenu(const Code& acte, std::uint32_t& codeMenu);
  CodeRetour rechercherCodeStructure(const Code& acte, Code& code);
  CodeRetour rechercherConditionsGenerales(const Code& acte, Texte& conditions);
  CodeRetour rechercherDateCreation(const Code& acte, Date& dateCreation);
  CodeRetour rechercherDateFin(const Code& acte, Date& dateFin);
  CodeRetour rechercherFraisDeplacement(const Code& acte, Code& frais);
  CodeRetour rechercherLibelleCourt(const Code& acte, Texte& libelle);
  CodeRetour rechercherLibelleLong(const Code& acte, Texte& libelle);
  CodeRetour rechercherNaturesAssurance(const Code& acte, ListeCodes& natures);
  CodeRetour rechercherNotesActe(const Code& acte, Texte& notes);
  CodeRetour rechercherPositionActe(const Code& acte, std::uint32_t& position);
  CodeRetour rechercherSexeCompatible(const Code& acte, Code& sexe);
  CodeRetour rechercherTypeActe(const Code& acte, Code& type);

  // The act at a date.
  CodeRetour rechercherActesIncompatibles(const Code& acte, const Date& date, ListeCodes& actes);
  CodeRetour rechercherAdmissionRemboursement(const Code& acte, const Date& date, Code& admission);
  CodeRetour rechercherCodesExonerationTM(const Code& acte, const Date& date, ListeCodes& codes);
  CodeRetour rechercherEntentePrealable(const Code& acte, const Date& date, Booleen& soumis);
  CodeRetour rechercherProcedures(const Code& acte, const Date& date, ListeCodes& procedures);

  // One activity of an act.
  CodeRetour rechercherAgrementsRadio(const Code& acte, const Code& activite, ListeCodes& agrements);
  CodeRetour rechercherCodesExtensionDocumentaire(const Code& acte, const Code& activite, ListeCodes& codes);
  CodeRetour rechercherPhasesDeTraitement(const Code& acte, const Code& activite, ListeCodes& phases);
  CodeRetour rechercherRMO(const Code& acte, const Code& activite, ListeCodes& rmo);

  // One activity at a date.
  CodeRetour rechercherActesCompatibles(const Code& acte, const Code& activite, const Date& date,
                                        ListeCodes& actes);
  CodeRetour rechercherCategorieMedicale(const Code& acte, const Code& activite, const Date& date,
                                         Code& categorie);
  CodeRetour rechercherClassesSpecialitesExecutant(const Code& acte, const Code& activite, const Date& date,
                                                   ListeCodes& classes);
  CodeRetour rechercherCodeRegroupement(const Code& acte, const Code& activite, const Date& date, Code& code);
  CodeRetour rechercherModificateursApplicables(const Code& acte, const Code& activite, const Date& date,
                                                ListeCodes& modificateurs);
  CodeRetour rechercherRegleAssociation(const Code& acte, const Code& activite, const Code& acteAssocie,
                                        const Date& date, Code& regle);

  // One treatment phase. Ages are in years.
  CodeRetour rechercherAgeMaximal(const Code& acte, const Code& activite, const Code& phase, Periode& age);
  CodeRetour rechercherAgeMinimal(const Code& acte, const Code& activite, const Code& phase, Periode& age);
  CodeRetour rechercherDentsIncompatibles(const Code& acte, const Code& activite, const Code& phase,
                                          ListeCodes& dents);
  CodeRetour rechercherNombreDents(const Code& acte, const Code& activite, const Code& phase, Code& nombre);

  // Prices of a phase at a date, in euros; increases of the overseas departments (position 1 to 4) are
  // ratios.
  CodeRetour rechercherPrixUnitaire(const Code& acte, const Code& activite, const Code& phase,
                                    const Date& date, Montant& prix);
  CodeRetour rechercherSupplementCharges(const Code& acte, const Code& activite, const Code& phase,
                                         const Date& date, Montant& supplement);
  CodeRetour rechercherMajorationDOM(const Code& acte, const Code& activite, const Code& phase,
                                     unsigned short positionDOM, const Date& date, Coefficient& majoration);

  // Modifiers. Ages in years, months or days as the reference tells.
  CodeRetour rechercherModificateurs(const Date& date, ListeCodes& modificateurs);
  CodeRetour rechercherAgeMaximumModificateur(const Code& modificateur, const Date& date, Periode& age);
  CodeRetour rechercherAgeMinimumModificateur(const Code& modificateur, const Date& date, Periode& age);
  bool rechercherExistenceModificateur(const Code& modificateur, const Date& date);
  CodeRetour rechercherForfaitModificateur(const Code& modificateur, const Date& date, Montant& forfait);
  CodeRetour rechercherTauxModificateur(const Code& modificateur, const Date& date, Coefficient& taux);
  CodeRetour rechercherModificateursCompatibles(const Code& modificateur, const Date& date,
                                                ListeCodes& compatibles);
  CodeRetour rechercherModificateurOC(const Code& modificateur, const Date& date, Code& modificateurOC);
  CodeRetour rechercherTopControleCoherence(const Code& modificateur, const Date& date, Booleen& top);
  CodeRetour rechercherTopPresenceMultiple(const Code& modificateur, const Date& date, Booleen& top);
  CodeRetour rechercherNombreModificateursTarifants(const Date& date, Nombre& nombre);
  CodeRetour rechercherNombreModificateursTransmissibles(const Date& date, Nombre& nombre);

  // Associations.
  CodeRetour rechercherCodesAssociationsNonPrevues(const Date& date, ListeCodes& codes);
  CodeRetour rechercherCoefficientAssociationNonPrevue(const Code& association, const Date& date,
                                                       Coefficient& coefficient);
  bool rechercherExistenceAssociationNP(const Code& association, const Date& date);
  CodeRetour rechercherCoefficientRegle(const Code& regle, const Date& date, Coefficient& coefficient);
  CodeRetour rechercherNombreActeAssociation(const Date& date, Nombre& nombre);

  // Specialities, grouping codes, natures of service.
  CodeRetour rechercherRegroupementSpecialites(const Code& specialite, const Date& date, Code& classe);
  CodeRetour rechercherSpecialitesDansClasse(const Code& classe, const Date& date, ListeCodes& specialites);
  CodeRetour rechercherCodesRegroupement(const Date& date, ListeCodes& codes);
  bool rechercherExistenceCodeRegroupement(const Code& code, const Date& date);
  // At any date.
  bool rechercherExistenceCodeRegroupement(const Code& code);
  CodeRetour rechercherDateCreationCodeRegroupement(const Code& code, Date& dateCreation);
  CodeRetour rechercherDateObligationCodage(const Code& prestation, const Code& specialite,
                                            Date& dateObligation);
  bool rechercherExistenceNaturePrestation(const Code& prestation);

  // Thresholds (position 1 to 4), non-agreed professionals, holidays, concepts (numbered from 1), labels
  // (code tables numbered from 1).
  CodeRetour rechercherSeuilExoTM(unsigned short positionSeuil, const Date& date, Montant& seuil);
  CodeRetour rechercherForfaitNonConventionnes(const Date& date, Montant& forfait);
  CodeRetour rechercherTauxNonConventionnes(const Date& date, Coefficient& taux);
  CodeRetour rechercherJoursFeriesCaisse(const Code& caisse, const Date& date, TypeListe<Date>& jours);
  CodeRetour rechercherJoursFeriesNationaux(const Date& date, TypeListe<Date>& jours);
  CodeRetour rechercherValeursConcept(unsigned short numero, const Date& date, ListeCodes& valeurs);
  CodeRetour rechercherLibelleCode(unsigned short numero, const Code& code, Texte& libelle);

  // Menus. The root is menu 1.
  CodeRetour rechercherMenuPere(std::uint32_t menu, std::uint32_t& pere);
  CodeRetour rechercherNotesMenu(std::uint32_t menu, Texte& notes);
  CodeRetour rechercherTitreMenu(std::uint32_t menu, Texte& titre);

  // Keywords and filters. `cadreRecherche` is the mask of search frames.
  CodeRetour rechercherActesIndexes(const Texte& motCle, unsigned long cadreRecherche, ListeCodes& actes);
  CodeRetour rechercherCodesActes(ListeCodes& actes, const char* filtre);
  CodeRetour rechercherMotsCles(TypeListe<Texte>& motsCles);
  CodeRetour rechercherSynonymes(const Texte& motCle, TypeListe<Texte>& synonymes);

  // The rule catalogue.
  CodeRetour rechercherInformationsRegle(const Code& identifiant, Texte& libellePrincipal,
                                         Texte& libelleSecondaire, Code& type, Code& reference,
                                         Code& indicateurForcage);
  CodeRetour rechercherReferenceCdC(const Code& identifiant, Code& reference);
  CodeRetour rechercherReglesEntrainantDebrayage(const Texte& service, ListeCodes& regles);
  CodeRetour rechercherReglesNonVerifiables(const Code& reference, ListeCodes& regles);
  CodeRetour rechercherPrioriteIndicateurForcage(const Code& indicateur, Nombre& priorite);
  CodeRetour rechercherValeurCombinaisonIndicateurs(const Code& indicateur, const Code& present,
                                                    Code& resultat);

  // Zone descriptors, by position in their tables.
  CodeRetour rechercherNombreGroupes(std::uint16_t& nombre);
  CodeRetour rechercherNombreSuperGroupes(std::uint16_t& nombre);
  CodeRetour rechercherDescriptifSuperGroupe(std::uint16_t position, std::uint16_t& numero, Texte& nom,
                                             Code& codeFonction, std::uint16_t& nombreFils);
  CodeRetour rechercherDescriptifGroupe(std::uint16_t position, std::uint16_t& numero,
                                        std::uint16_t& nombreChamps);
  CodeRetour rechercherDescriptifChamp(std::uint16_t groupe, std::uint16_t champ, char& format, char& type,
                                       std::uint16_t& tailleMin, std::uint16_t& tailleMax,
                                       ListeCodes& valeurs);
  CodeRetour rechercherDescriptifFils(std::uint16_t superGroupe, std::uint16_t fils,
                                      std::uint16_t& positionSuperGroupe, std::uint16_t& positionGroupe,
                                      std::uint16_t& minimum, std::uint16_t& maximum);

  // Dates of the last local modification on or before a date; the date is left untouched when there is none,
  // which is no failure.
  CodeRetour rechercherDateModificationCodeRegroupement(const Code& acte, const Code& activite,
                                                        const Date& date, Date& modification);
  CodeRetour rechercherDateModificationCoefficientAssociationNP(const Code& association, const Date& date,
                                                                Date& modification);
  CodeRetour rechercherDateModificationModificateur(const Code& modificateur, const Date& date,
                                                    Date& modification);
  CodeRetour rechercherDateModificationNonConventionnes(const Date& date, Date& modification);
  CodeRetour rechercherDateModificationMajorationDOM(const Code& acte, const Code& activite,
                                                     const Code& phase, unsigned short positionDOM,
                                                     const Date& date, Date& modification);
  CodeRetour rechercherDateModificationPrixUnitaire(const Code& acte, const Code& activite, const Code& phase,
                                                    const Date& date, Date& modification);
  CodeRetour rechercherDateModificationSeuilExoTM(unsigned short positionSeuil, const Date& date,
                                                  Date& modification);
  CodeRetour rechercherDateModificationSupplementCharges(const Code& acte, const Code& activite,
                                                         const Code& phase, const Date& date,
                                                         Date& modification);

 protected:
  // Look-ups shared with the modification layer.
  CodeRetour chercherActeDansIndex(const Code& acte, std::uint32_t& rang) {
    const CodeRetour cr =
        dernierRang_ && acte.vue() == dernierActe_ ? CodeRetour{NOX_CR_OK} : chercherAutreActe(acte);
    if (cr == NOX_CR_OK) {
      rang = *dernierRang_;
    }
    return cr;
  }
  // Loads the act on first use.
  CodeRetour chercherActe(const Code& acte, NiveauActe*& niveau) {
    std::uint32_t rang = 0;
    CodeRetour cr = chercherActeDansIndex(acte, rang);
    if (cr == NOX_CR_OK) {
      exiger(rang < referentiel_->actes.size(), "rang < actes.size()");
      NiveauActe* charge = referentiel_->actes[rang].acte();
      if (charge == nullptr) [[unlikely]] {
        cr = chargerActe(rang, charge);
      }
      niveau = cr == NOX_CR_OK ? charge : niveau;
    }
    return cr;
  }
  CodeRetour chercherActivite(const Code& acte, const Code& activite, NiveauActivite*& niveau);
  CodeRetour chercherPhase(const Code& acte, const Code& activite, const Code& phase, NiveauPhase*& niveau);
  CodeRetour chercherHistoActe(const Code& acte, const Date& date, const HistoriqueNiveauActe*& historique);
  CodeRetour chercherHistoActivite(const Code& acte, const Code& activite, const Date& date,
                                   const HistoriqueNiveauActivite*& historique);
  CodeRetour chercherHistoPhase(const Code& acte, const Code& activite, const Code& phase, const Date& date,
                                const HistoriqueNiveauPhase*& historique);

  // The store read. REQUIRES: one is attached.
  Referentiel& donnees() const {
    exiger(referentiel_ != nullptr, "referentiel != __null");
    return *referentiel_;
  }

  Referentiel* referentiel_;

 private:
  // Keeps the rank of the act.
  CodeRetour chercherAutreActe(const Code& acte);
  CodeRetour chargerActe(std::uint32_t rang, NiveauActe*& charge);

  // The level that keys lead to, chosen by its class.
  CodeRetour atteindre(NiveauActe*& niveau, const Code& acte) { return chercherActe(acte, niveau); }
  CodeRetour atteindre(NiveauActivite*& niveau, const Code& acte, const Code& activite) {
    return chercherActivite(acte, activite, niveau);
  }
  CodeRetour atteindre(NiveauPhase*& niveau, const Code& acte, const Code& activite, const Code& phase) {
    return chercherPhase(acte, activite, phase, niveau);
  }
  CodeRetour atteindre(const HistoriqueNiveauActe*& niveau, const Code& acte, const Date& date) {
    return chercherHistoActe(acte, date, niveau);
  }
  CodeRetour atteindre(const HistoriqueNiveauActivite*& niveau, const Code& acte, const Code& activite,
                       const Date& date) {
    return chercherHistoActivite(acte, activite, date, niveau);
  }
  CodeRetour atteindre(const HistoriqueNiveauPhase*& niveau, const Code& acte, const Code& activite,
                       const Code& phase, const Date& date) {
    return chercherHistoPhase(acte, activite, phase, date, niveau);
  }

  // The shapes of queries, defined in requete.h: one field of a level; of the dated line that a keyed line
  // leads to; of the dated line of a table; of a keyed line. Then the last modification date, and the count
  // of the values read that a modification covers.
  template <class N, class T, class S, class... C>
  CodeRetour lireNiveau(const char* methode, T N::*champ, S& sortie, const C&... cles);
  template <class L, class H, class T, class S, unsigned CIBLE>
  CodeRetour lireHistorique(
      const char* methode, Plage<CIBLE> L::*plage, T H::*champ, S& sortie, const Code& code, const Date& date,
      FormatVerifie<> absent = "ERREUR : pas d'historique trouve a la date de reference");
  template <class H, class T, class S>
  CodeRetour lireLigneDatee(const char* methode, T H::*champ, S& sortie, const Date& date,
                            FormatVerifie<> absente);
  template <class L, class V, class T, class S>
  CodeRetour lireLigne(const char* methode, const V& cle, T L::*champ, S& sortie);
  template <class M, class... C>
  CodeRetour lireDateModification(const char* methode, const Date& date, Date& modification,
                                  const C&... cles);
  template <class M, class... C>
  void compterModification(CodeRetour cr, const Date& date, const C&... cles);

  ObservateurLecture* observateur_ = nullptr;
  bool verification_ = false;
  std::uint32_t compteurModifications_ = 0;
  // The last act found, and its rank: queries on one act come in a row.
  std::string dernierActe_;
  std::optional<std::uint32_t> dernierRang_;
};

}  // namespace noxlux

#endif
