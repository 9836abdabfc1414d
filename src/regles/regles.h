// What regulation and tariff rules share: the rule catalogue, verifiability, forcing indicators.
#ifndef NOXLUX_REGLES_REGLES_H
#define NOXLUX_REGLES_REGLES_H

#include "referent/lecture_donnees.h"
#include "regles/erreur.h"
#include "regles/libelle_regle.h"
#include "regles/observateur.h"
#include "regles/trace_regles.h"

namespace noxlux {

struct AssociationCCAM;
struct LigneActe;
struct Seance;

class Regles;

// What a rule finds of an element: nothing, or a violation with what it cites. The rule says neither its name
// nor what becomes of the violation.
class Constat {
 public:
  // All three outlive it.
  Constat(Regles& catalogue, const char* regle, Erreur& erreur)
      : catalogue_(catalogue), regle_(regle), erreur_(erreur) {}

  // Raises the violation: `cite` fills its label. 0xDFFE when the catalogue lacks the rule.
  CodeRetour lever(ArgumentsLibelle cite = {});
  // The same, of these lines.
  CodeRetour lever(const TypeListe<Nombre>& prestations, ArgumentsLibelle cite);
  bool estLeve() const { return erreur_.estRenseigne(); }
  // The same finding, told by the catalogue under another identifier.
  Constat sous(const char* autre) const { return {catalogue_, autre, erreur_}; }

 private:
  Regles& catalogue_;
  const char* regle_;
  Erreur& erreur_;
};

class Regles {
 public:
  // Told to whoever listens in this thread at that time.
  explicit Regles(LectureDonnees& lecture) : lecture_(lecture), observateur_(Ecoute::observateur()) {}
  Regles(const Regles&) = delete;
  Regles& operator=(const Regles&) = delete;

  // Fills the error with what the catalogue says of the rule ("PROD580"), and with its secondary label:
  //   return copierValeurErreur(erreur, "PROD550", {modificateur, acte, activite});
  // 0xDFFE when the catalogue lacks the rule or its label does not fit the arguments; the error is then
  // untouched.
  CodeRetour copierValeurErreur(Erreur& erreur, const char* regle, ArgumentsLibelle arguments = {});
  // The same, with the numbers of the lines concerned.
  CodeRetour copierValeurErreur(Erreur& erreur, const TypeListe<Nombre>& prestations, const char* regle,
                                ArgumentsLibelle arguments = {});

  // Whether the rule may still be checked: its reference is not in the list; in the list of no line of the
  // association or of the séance, as errors filed since the grouping left them.
  CodeRetour estVerifiable(const Code& regle, const ListeCodes& reglesNonVerifiables, bool& verifiable);
  CodeRetour estVerifiable(const Code& regle, const LigneActe& ligne, bool& verifiable);
  CodeRetour estVerifiable(const Code& regle, const AssociationCCAM& association, bool& verifiable);
  CodeRetour estVerifiable(const Code& regle, const Seance& seance, bool& verifiable);

  CodeRetour rechercherReglesNonVerifiables(const Code& reference, ListeCodes& regles) {
    return lecture_.rechercherReglesNonVerifiables(reference, regles);
  }
  // What a line that bears the indicator `present` bears once `indicateur` is imposed on it. A tie of
  // priorities keeps the present one.
  CodeRetour rechercherValeurCombinaisonIndicateurs(const Code& indicateur, const Code& present,
                                                    Code& resultat) {
    return lecture_.rechercherValeurCombinaisonIndicateurs(indicateur, present, resultat);
  }
  // Whether a's priority is at least b's: a tie favours a.
  CodeRetour estIndicateurPrioritaire(const Code& a, const Code& b, bool& resultat);

  // Counting of the values read that a local modification covers.
  void activerVerificationModification(bool activer) { lecture_.activerVerificationModification(activer); }
  CodeRetour lireCompteurModification(Nombre& compteur) const {
    return lecture_.lireVerificationModification(compteur);
  }

  // Null when nobody listens.
  ObservateurRegles* observateur() const { return observateur_; }
  // Tells a fact: to the trace, by its line, and to who listens.
  template <class... V, class... A>
  void dire(const Fait<V...>& fait, const A&... valeurs) {
    Trace::ecrire(TRACE_CONTROLE, fait.ligne, pourTrace(valeurs)...);
    dire(FaitMuet{fait.nom}, valeurs...);
  }
  template <class... A>
  void dire(FaitMuet fait, const A&... valeurs) {
    if (observateur_ != nullptr) [[unlikely]] {
      const ValeurLue dites[] = {valeurLue(valeurs)...};
      observateur_->faitDit(fait.nom, dites);
    }
  }
  // Makes an operation on an amount, and tells it: what is told is what is computed.
  Montant calculer(const char* nom, Operation operation, const Montant& montant, const Flottant& operande);

 protected:
  ~Regles() = default;
  LectureDonnees& lecture() { return lecture_; }

 private:
  // `exclut` tells whether the element excludes a reference.
  template <class Exclut>
  CodeRetour demanderVerifiable(const Code& regle, bool& verifiable, Exclut exclut);

  LectureDonnees& lecture_;
  ObservateurRegles* observateur_;
};

}  // namespace noxlux

#endif
