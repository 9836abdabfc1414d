// The lines that a run designates, and the one that holds at a date.
#ifndef NOXLUX_REFERENT_REQUETE_DATES_H
#define NOXLUX_REFERENT_REQUETE_DATES_H

#include <array>
#include <span>
#include <vector>

#include "referent/referentiel.h"
#include "referent/requete_cadre.h"
#include "referent/requete_cles.h"

namespace noxlux {

// The lines that a run designates; none when it goes past its table, which loading does not let happen.
template <class H, unsigned CIBLE, class P>
std::span<const H> lignesDe(const Referentiel& referentiel, const Plage<CIBLE, P>& plage) {
  static_assert(H::IDENTIFIANT == CIBLE);
  const std::vector<H>& lignes = referentiel.lignes<H>();
  if (plage.premiere > lignes.size() || plage.nombre > lignes.size() - plage.premiere) {
    Trace::erreur(TRACE_CONSULTATION, "plage de lignes hors de la table %03u", CIBLE);
    return {};
  }
  return std::span(lignes).subspan(plage.premiere, plage.nombre);
}

template <class H>
const DateBrute& debutValidite(const H& ligne) {
  if constexpr (requires { ligne.debut; }) {
    return ligne.debut;
  } else {
    return ligne.dateEffet;
  }
}

// Whether a dated line holds at a date: both bounds included, an end date not filled is open.
template <class H>
bool estValideALaDate(const H& ligne, const Date& date) {
  return debutValidite(ligne) <= date.lireBrute() &&
         (!ligne.fin.estComplete() || date.lireBrute() <= ligne.fin);
}

inline constexpr FormatVerifie<> PAS_D_HISTORIQUE = "ERREUR : pas d'historique trouve a la date de reference";

// The first line, in table order, that holds at the date.
template <class H>
CodeRetour choisirALaDate(std::span<const H> lignes, const Date& date, const H*& ligne,
                          FormatVerifie<> absente = PAS_D_HISTORIQUE) {
  for (const H& candidate : lignes) {
    if (estValideALaDate(candidate, date)) {
      ligne = &candidate;
      return NOX_CR_OK;
    }
  }
  return refuser(NOX_CR_PAS_D_HISTORIQUE, absente);
}

// The history at a date of the line that a code designates.
template <class L, class H, unsigned CIBLE>
CodeRetour chercherHistorique(const Referentiel& referentiel, Plage<CIBLE> L::*plage, const Code& code,
                              const Date& date, const H*& historique,
                              FormatVerifie<> absent = PAS_D_HISTORIQUE) {
  const L* ligne = nullptr;
  const CodeRetour cr = chercherLigne(referentiel, code, ligne);
  return cr == NOX_CR_OK ? choisirALaDate(lignesDe<H>(referentiel, ligne->*plage), date, historique, absent)
                         : cr;
}

// The four amounts of a threshold line, by position.
inline constexpr std::array MONTANTS_SEUIL = {&Seuil::metropole, &Seuil::antilles, &Seuil::reunion,
                                              &Seuil::guyane};

}  // namespace noxlux

#endif
