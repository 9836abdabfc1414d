// What the families that ask and change reference data share: the key of a value in an input zone, the funds
// of the overseas departments, and the life of an act.
#ifndef NOXLUX_INTERAPP_FONCTIONS_DONNEES_H
#define NOXLUX_INTERAPP_FONCTIONS_DONNEES_H

#include <array>
#include <cstddef>
#include <tuple>
#include <utility>

#include "interapp/fonctions.h"
#include "interapp/signature.h"
#include "referent/lecture_donnees.h"

namespace noxlux {

// The key of a value: its codes in zone order, and the position that its fund stands for.
template <std::size_t N>
struct Cle {
  std::array<Code, N> codes;
  Code caisse;
  unsigned short position = 0;

  // The first M codes, as the first arguments of a call.
  template <std::size_t M = N>
  auto lireCodes() const {
    return [this]<std::size_t... I>(std::index_sequence<I...>) { return std::tie(std::get<I>(codes)...); }
    (std::make_index_sequence<M>());
  }
};

// Whether a function on an act checks that the act is alive at the date of the call.
enum class Validite { ACTE_EN_VIGUEUR, SANS_CONTROLE };

class FonctionsDonnees : public Fonctions {
 protected:
  // How one family refuses a date out of an act's life.
  struct ControleVie {
    FormatVerifie<> banniere;
    CodeRetour refus;
    FormatVerifie<> tropTot;
    FormatVerifie<> tropTard;
  };

  // `module` is the family's trace module.
  FonctionsDonnees(Zone* zin, const SuperGroupe* superGroupe, unsigned short module)
      : Fonctions(zin, superGroupe), module_(module) {}

  // The key that a method takes: the fund first where there is one, then the codes, the third of which is a
  // phase.
  template <auto METHODE>
  auto extraireCle(CodeRetour& cr) {
    using S = SignatureDe<METHODE>;
    constexpr std::size_t RANG_PHASE = 2;
    Cle<S::CLES> cle;
    if constexpr (S::POSITION) {
      extraireDans(cr, cle.caisse);
    }
    for (std::size_t i = 0; i < S::CLES; ++i) {
      if (i == RANG_PHASE) {
        cle.codes[i] = extrairePhase(cr);
      } else {
        extraireDans(cr, cle.codes[i]);
      }
    }
    return cle;
  }

  // The position of the key's fund, where the method takes one: 0xD006 for a fund of no overseas department.
  template <auto METHODE>
  void placerCaisse(CodeRetour& cr, Cle<SignatureDe<METHODE>::CLES>& cle) {
    if constexpr (SignatureDe<METHODE>::POSITION) {
      cle.position = positionDOM(cr, cle.caisse);
      if (cr == NOX_CR_CAISSE_NON_DOM && SignatureDe<METHODE>::CLES != 0) {
        refuserCaisse(cle.caisse);
      }
    }
  }

  // Whether `date` lies from the creation of the act to its end, both included.
  void controlerVieActe(CodeRetour& cr, LectureDonnees& acces, const Code& acte, const Date& date,
                        const ControleVie& controle) const;
  unsigned short lireModule() const { return module_; }

 private:
  static unsigned short positionDOM(CodeRetour& cr, const Code& caisse);
  void refuserCaisse(const Code& caisse) const;

  unsigned short module_;
};

}  // namespace noxlux

#endif
