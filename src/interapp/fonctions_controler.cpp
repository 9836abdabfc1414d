#include "interapp/fonctions_controler.h"

#include <tuple>

#include "basics/trace.h"
#include "interapp/aiguillage.h"
#include "regles/reglementation.h"

namespace noxlux {

struct FonctionsControler::Table {
  using F = FonctionsControler;
  using R = Reglementation;
  using Methode = CodeRetour (FonctionsControler::*)(Booleen&);

  static constexpr TableAiguillage<Methode, 6> FONCTIONS{{
      {61, "C_Age_1", &F::demander<&R::appliquerCAge1, &F::extraireDateNaissance, &F::extraireCode>},
      {62, "C_Age_2",
       &F::demander<&R::appliquerCAge2, &F::extraireDateNaissance, &F::extraireCode, &F::extraireCode,
                    &F::extrairePhase>},
      {63, "C_Assurance", &F::demander<&R::appliquerCAssurance, &F::extraireCode, &F::extraireCode>},
      {64, "C_Ccam", &F::demander<&R::appliquerCCcam, &F::extraireCode, &F::extraireCode>},
      {65, "C_Executant",
       &F::demander<&R::appliquerCExecutant, &F::extraireCode, &F::extraireCode, &F::extraireCode>},
      {66, "C_Radio",
       &F::demander<&R::appliquerCRadio, &F::extraireCode, &F::extraireCode, &F::extraireCode>},
  }};
  static_assert(estOrdonnee(FONCTIONS));
};

FonctionsControler::FonctionsControler(const Date& dateReference, Zone* zin, const SuperGroupe* superGroupe,
                                       Reglementation* reglementation)
    : Fonctions(zin, superGroupe), dateReference_(dateReference), reglementation_(reglementation) {
  exiger(reglementation != nullptr, "reglementation != __null");
  exiger(zin != nullptr, "zin != __null");
}

CodeRetour FonctionsControler::executer(std::uint16_t numero, Booleen& resultat) {
  const auto* const ligne = aiguiller(Table::FONCTIONS, numero, TRACE_CONTROLE,
                                      "Identifiant (%d) non prévu dans les fonctions de controle");
  if (ligne == nullptr) {
    return NOX_CR_INCOHERENCE;
  }
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "%s", ligne->nom);
  cr = (this->*ligne->methode)(resultat);
  return cr;
}

template <auto REGLE, auto... EXTRAIRE>
CodeRetour FonctionsControler::demander(Booleen& resultat) {
  CodeRetour cr = NOX_CR_OK;
  const std::tuple valeurs{(this->*EXTRAIRE)(cr)...};
  verifierFinDonnees(cr);
  if (cr == NOX_CR_OK) {
    cr = std::apply(
        [&](const auto&... valeur) { return (reglementation_->*REGLE)(valeur..., dateReference_, resultat); },
        valeurs);
  }
  return cr;
}

}  // namespace noxlux
