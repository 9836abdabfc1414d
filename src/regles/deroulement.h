// The way an element of the invoice runs its rules. A rule is a line of a table: its identifier, its method,
// whose lines it must be verifiable on. Everything else about running it is here: may it still be checked?
// open its trace block, apply it, file what it found. Whoever listens to a check listens in
// Deroulement::derouler.
#ifndef NOXLUX_REGLES_DEROULEMENT_H
#define NOXLUX_REGLES_DEROULEMENT_H

#include <concepts>
#include <cstddef>

#include "regles/facture.h"
#include "regles/regles.h"
#include "regles/trace_regles.h"
#include "types/booleen.h"

namespace noxlux {

// A rule may be checked when none of these lines excludes it: the line itself, those of its séance, those of
// its association. An error is filed on the same, but for a line's rules asked of its association, which are
// filed on the line.
enum class Portee : unsigned char { LIGNE, SEANCE, ASSOCIATION };

// R is the class of rules, E the element they are about.
template <class R, class E>
struct Regle {
  const char* identifiant;
  CodeRetour (R::*condition)(const E&, Constat&);
  Portee portee = Portee::LIGNE;
};
template <class R, class E>
struct Question {
  const char* identifiant;
  CodeRetour (R::*reponse)(const E&, Booleen&);
  Portee portee = Portee::LIGNE;
};

// Applies one rule by itself: what it finds is in `erreur`.
template <class R, class E>
CodeRetour appliquerRegle(R& regles, const Regle<R, E>& regle, const E& element, Erreur& erreur) {
  CodeRetour cr = NOX_CR_OK;
  const auto bloc = blocRegle(cr, R::NOM, regle.identifiant);
  Constat constat(regles, regle.identifiant, erreur);
  cr = (regles.*regle.condition)(element, constat);
  return cr;
}

// Runs rules one after another, with one error object. The first code that is not 0 ends the sequence:
// nothing runs any more, and `code` keeps it.
template <class R>
class Deroulement {
 public:
  Deroulement(R& regles, ListeErreurs& erreurs) : regles_(regles), erreurs_(erreurs) {}

  CodeRetour code() const { return cr_; }
  bool ok() const { return cr_ == NOX_CR_OK; }

  // One rule. True when it ran without raising anything, or was skipped.
  template <class E, class Cible>
  bool regle(const Regle<R, E>& regle, Cible& element) {
    bool levee = false;
    derouler(regle.identifiant, element, regle.portee, [&] {
      CodeRetour cr = appliquerRegle(regles_, regle, static_cast<const E&>(element), erreur_);
      levee = erreur_.estRenseigne();
      if (levee && regles_.observateur() != nullptr) [[unlikely]] {
        regles_.observateur()->erreurLevee(erreur_);
      }
      return cr == NOX_CR_OK ? deposer(element, regle.portee) : cr;
    });
    return ok() && !levee;
  }
  // All the rules of a table.
  template <class E, class Cible, std::size_t N>
  void suite(const Regle<R, E> (&table)[N], Cible& element) {
    for (const auto& ligne : table) {
      regle(ligne, element);
    }
  }
  // A question. One that may not be checked counts as false.
  template <class E>
  bool question(const Question<R, E>& question, const E& element) {
    Booleen reponse;
    derouler(question.identifiant, element, question.portee, [&] {
      CodeRetour cr = NOX_CR_OK;
      const auto bloc = blocRegle(cr, R::NOM, question.identifiant);
      cr = (regles_.*question.reponse)(element, reponse);
      return cr;
    });
    return ok() && reponse.estVrai();
  }
  // A computation, which traces itself; calculer(). False when it was not made.
  template <class E, class Calculer>
  bool calcul(const char* identifiant, const E& element, Portee portee, Calculer calculer) {
    return derouler(identifiant, element, portee, calculer) && ok();
  }

 private:
  // The one way through which everything is run. False when it may not be.
  template <class E, class Executer>
  bool derouler(const char* identifiant, const E& element, Portee portee, Executer executer) {
    bool verifiable = false;
    if (ok()) {
      cr_ = estVerifiable(Code(identifiant), element, portee, verifiable);
    }
    if (!ok() || !verifiable) {
      return false;
    }
    const Annonce annonce(regles_.observateur(), identifiant, element);
    cr_ = executer();
    return true;
  }

  // Tells who listens that a rule runs, for as long as it does.
  class Annonce {
   public:
    template <class E>
    Annonce(ObservateurRegles* observateur, const char* identifiant, const E& element)
        : observateur_(observateur) {
      if (observateur_ != nullptr) [[unlikely]] {
        observateur_->regleDebutee(identifiant, lignesDe(element));
      }
    }
    ~Annonce() {
      if (observateur_ != nullptr) [[unlikely]] {
        observateur_->regleFinie();
      }
    }
    Annonce(const Annonce&) = delete;
    Annonce& operator=(const Annonce&) = delete;

   private:
    template <class E>
    static ObservateurRegles::Lignes lignesDe(const E& element) {
      if constexpr (std::derived_from<E, LigneActe>) {
        return {&element};
      } else {
        return {element.lignes.begin(), element.lignes.end()};
      }
    }

    ObservateurRegles* observateur_;
  };

  // What may not be checked on the association of the act that a travel line follows may not be checked on
  // the travel line either.
  CodeRetour estVerifiable(const Code& regle, const LigneActe& ligne, Portee portee, bool& verifiable) {
    const LigneCCAM* const acte = enLigneCCAM(ligne.rattachement);
    CodeRetour cr = NOX_CR_OK;
    verifiable = true;
    if (portee == Portee::ASSOCIATION && acte != nullptr && acte->association != nullptr) {
      cr = estVerifiable(regle, *acte, portee, verifiable);
    }
    return cr == NOX_CR_OK && verifiable ? regles_.estVerifiable(regle, ligne, verifiable) : cr;
  }
  CodeRetour estVerifiable(const Code& regle, const LigneCCAM& ligne, Portee portee, bool& verifiable) {
    switch (portee) {
      case Portee::SEANCE:
        return regles_.estVerifiable(regle, *ligne.seance, verifiable);
      case Portee::ASSOCIATION:
        exiger(ligne.association != nullptr, "association != __null");
        return regles_.estVerifiable(regle, *ligne.association, verifiable);
      case Portee::LIGNE:
        break;
    }
    return regles_.estVerifiable(regle, static_cast<const LigneActe&>(ligne), verifiable);
  }
  template <class E>
  CodeRetour estVerifiable(const Code& regle, const E& element, Portee /*portee*/, bool& verifiable) {
    return regles_.estVerifiable(regle, element, verifiable);
  }

  CodeRetour deposer(LigneActe& ligne, Portee portee) {
    return portee == Portee::SEANCE
               ? ligne.factureParent->traiterErreur(erreurs_, erreur_, ligne.numero, ligne.date, regles_)
               : ligne.traiterErreur(erreurs_, erreur_, regles_);
  }
  CodeRetour deposer(AssociationCCAM& association, Portee /*portee*/) {
    return association.traiterErreur(erreurs_, erreur_, regles_);
  }

  R& regles_;
  ListeErreurs& erreurs_;
  Erreur erreur_;
  CodeRetour cr_ = NOX_CR_OK;
};

}  // namespace noxlux

#endif
