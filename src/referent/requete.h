// What all queries are made of.
#ifndef NOXLUX_REFERENT_REQUETE_H
#define NOXLUX_REFERENT_REQUETE_H

#include <algorithm>
#include <type_traits>
#include <utility>
#include <vector>

#include "referent/lecture_donnees.h"
#include "referent/requete_cadre.h"
#include "referent/requete_cles.h"
#include "referent/requete_copies.h"
#include "referent/requete_dates.h"
#include "referent/requete_modifications.h"

namespace noxlux {

template <class N>
concept Historique = requires(N niveau) {
  niveau.dateEffet;
};

template <class N, class T, class S, class... C>
CodeRetour LectureDonnees::lireNiveau(const char* methode, T N::*champ, S& sortie, const C&... cles) {
  constexpr const char* LIBELLES[] = {"Code acte recherche    ", "Code activite recherche",
                                      "Code phase recherche   ", "Date de reference"};
  const auto corps = [&](Releve& releve) {
    std::conditional_t<Historique<N>, const N*, N*> niveau = nullptr;
    const CodeRetour cr = atteindre(niveau, cles...);
    if (cr != NOX_CR_OK) {
      return cr;
    }
    releve.dater(*niveau);
    return copier(niveau->*champ, sortie);
  };
  return [&]<std::size_t... I>(std::index_sequence<I...>) {
    return demander(methode, sortie, corps, Entree<C>{LIBELLES[std::is_same_v<C, Date> ? 3 : I], cles}...);
  }
  (std::index_sequence_for<C...>{});
}

template <class L, class H, class T, class S, unsigned CIBLE>
CodeRetour LectureDonnees::lireHistorique(const char* methode, Plage<CIBLE> L::*plage, T H::*champ, S& sortie,
                                          const Code& code, const Date& date, FormatVerifie<> absent) {
  const auto corps = [&](Releve& releve) {
    const H* historique = nullptr;
    const CodeRetour cr = chercherHistorique(donnees(), plage, code, date, historique, absent);
    if (cr != NOX_CR_OK) {
      return cr;
    }
    releve.dater(*historique);
    return copier(historique->*champ, sortie);
  };
  return demander(methode, sortie, corps, Entree{"Code recherche", code}, Entree{"Date de reference", date});
}

template <class H, class T, class S>
CodeRetour LectureDonnees::lireLigneDatee(const char* methode, T H::*champ, S& sortie, const Date& date,
                                          FormatVerifie<> absente) {
  const auto corps = [&](Releve& releve) {
    const H* ligne = nullptr;
    const CodeRetour cr = choisirALaDate<H>(donnees().lignes<H>(), date, ligne, absente);
    if (cr != NOX_CR_OK) {
      return cr;
    }
    releve.dater(*ligne);
    return copier(ligne->*champ, sortie);
  };
  return demander(methode, sortie, corps, Entree{"Date de reference", date});
}

template <class L, class V, class T, class S>
CodeRetour LectureDonnees::lireLigne(const char* methode, const V& cle, T L::*champ, S& sortie) {
  const auto corps = [&] {
    const L* ligne = nullptr;
    CodeRetour cr = donnees().assurerTable(L::IDENTIFIANT);
    cr = cr == NOX_CR_OK ? chercherLigne(donnees(), cle, ligne) : cr;
    return cr == NOX_CR_OK ? copier(ligne->*champ, sortie) : cr;
  };
  return requete(methode, corps, Entree{"Code recherche", cle});
}

// The change of a value that is the last to hold at a date; null when there is none.
template <class M>
const M* derniereModification(const std::vector<M>& lignes, const CleModification<M>& cle, const Date& date) {
  const auto derniere =
      std::find_if(lignes.rbegin(), lignes.rend(), [&](const M& ligne) { return cle.couvre(ligne, date); });
  return derniere == lignes.rend() ? nullptr : &*derniere;
}

template <class M, class... C>
CodeRetour LectureDonnees::lireDateModification(const char* methode, const Date& date, Date& modification,
                                                const C&... cles) {
  const auto corps = [&] {
    CleModification<M> cle;
    const CodeRetour cr = cle.composer(cles...);
    if (cr != NOX_CR_OK) {
      return cr;
    }
    const M* const derniere = derniereModification(donnees().lignes<M>(), cle, date);
    return derniere == nullptr ? cr : copier(derniere->dateEffet, modification);
  };
  return requete(methode, corps, Entree{"Cle recherchee", cles}..., Entree{"Date de reference", date});
}

template <class M, class... C>
void LectureDonnees::compterModification(CodeRetour cr, const Date& date, const C&... cles) {
  if (cr != NOX_CR_OK || !(verification_ || observateur_ != nullptr)) {
    return;
  }
  CleModification<M> cle;
  if (cle.composer(cles...) != NOX_CR_OK) {
    return;
  }
  const M* const derniere = derniereModification(donnees().lignes<M>(), cle, date);
  if (derniere == nullptr) {
    return;
  }
  compteurModifications_ += verification_ ? 1U : 0U;
  if (observateur_ != nullptr) {
    observateur_->donneeModifiee(Date(derniere->dateEffet));
  }
}

}  // namespace noxlux

#endif
