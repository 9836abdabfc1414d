// The way an element of the invoice runs its rules: may the rule still be checked? apply it, file its error.
#ifndef NOXLUX_REGLES_DEROULEMENT_H
#define NOXLUX_REGLES_DEROULEMENT_H

#include <cstddef>

#include "regles/regles.h"
#include "types/booleen.h"

namespace noxlux {

// One rule of a sequence: R is the class of rules, E the element it is applied to.
template <class R, class E>
struct EtapeRegle {
  const char* identifiant;
  CodeRetour (R::*appliquer)(E&, Erreur&);
};

// Runs rules one after another, with one error object. `porteur` is the element whose verifiability is asked,
// `deposer(erreurs, erreur, regles)` files the error. The first code that is not 0 ends the sequence: nothing
// runs any more, and `code` keeps it.
template <class R, class Porteur, class Deposer>
class Deroulement {
 public:
  Deroulement(R& regles, const Porteur& porteur, ListeErreurs& erreurs, Deposer deposer)
      : regles_(regles), porteur_(porteur), erreurs_(erreurs), deposer_(deposer) {}

  CodeRetour code() const { return cr_; }
  bool ok() const { return cr_ == NOX_CR_OK; }

  // One rule; appliquer(erreur). True when it ran without raising anything, or was skipped.
  template <class Appliquer>
  bool regle(const char* identifiant, Appliquer appliquer) {
    if (!estVerifiable(identifiant)) {
      return ok();
    }
    cr_ = appliquer(erreur_);
    const bool levee = erreur_.estRenseigne();
    if (ok()) {
      cr_ = deposer_(erreurs_, erreur_, regles_);
    }
    return ok() && !levee;
  }

  // A question; appliquer(reponse). A question that may not be checked counts as false.
  template <class Appliquer>
  bool question(const char* identifiant, Appliquer appliquer) {
    Booleen reponse;
    if (estVerifiable(identifiant)) {
      cr_ = appliquer(reponse);
    }
    return ok() && reponse.estVrai();
  }

  // A computation; appliquer(). False when it was not made.
  template <class Appliquer>
  bool calcul(const char* identifiant, Appliquer appliquer) {
    if (!estVerifiable(identifiant)) {
      return false;
    }
    cr_ = appliquer();
    return ok();
  }

  // All the rules of a table.
  template <class E, class Cible, std::size_t N>
  void suite(const EtapeRegle<R, E> (&etapes)[N], Cible& element) {
    for (const auto& etape : etapes) {
      regle(etape.identifiant, [&](Erreur& erreur) { return (regles_.*etape.appliquer)(element, erreur); });
    }
  }

 private:
  bool estVerifiable(const char* identifiant) {
    bool verifiable = false;
    if (ok()) {
      cr_ = regles_.estVerifiable(Code(identifiant), porteur_, verifiable);
    }
    return ok() && verifiable;
  }

  R& regles_;
  const Porteur& porteur_;
  ListeErreurs& erreurs_;
  Deposer deposer_;
  Erreur erreur_;
  CodeRetour cr_ = NOX_CR_OK;
};

// Rules of a line whose errors are filed on it; the verifiability is asked for `porteur`.
template <class R, class Ligne, class Porteur>
auto deroulerSurLigne(R& regles, Ligne& ligne, const Porteur& porteur, ListeErreurs& erreurs) {
  const auto deposer = [&ligne](ListeErreurs& liste, Erreur& erreur, Regles& catalogue) {
    return ligne.traiterErreur(liste, erreur, catalogue);
  };
  return Deroulement<R, Porteur, decltype(deposer)>(regles, porteur, erreurs, deposer);
}

}  // namespace noxlux

#endif
