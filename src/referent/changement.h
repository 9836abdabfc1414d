// What all changes of the store are made of: the traced frame, the room taken beforehand, the new history or
// dated line put in front of the others. Everything that may fail is done before the first value changes.
#ifndef NOXLUX_REFERENT_CHANGEMENT_H
#define NOXLUX_REFERENT_CHANGEMENT_H

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <new>
#include <span>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "referent/modification_donnees.h"
#include "referent/requete.h"

namespace noxlux {

// Runs and numbers of histories are kept in 16 bits.
constexpr std::size_t MAX_LIGNES_TABLE = 65535;

// The frame of a change. `objet` says what is changed.
template <class F, class... T>
CodeRetour changement(const char* methode, const char* objet, F&& corps, const Entree<T>&... entrees) {
  return executer(TRACE_MODIFICATION, "ModificationDonnees", methode, objet, corps, entrees...);
}

inline CodeRetour refuserChangement(CodeRetour cr, FormatVerifie<> message) {
  Trace::erreur(TRACE_MODIFICATION, message);
  return cr;
}

inline constexpr FormatVerifie<> MEMOIRE_HISTORIQUE =
    "probleme d'allocation memoire lors de la creation du nouvel historique";

// Room for one more line in the table that records a change, when it is to be recorded.
template <class M>
CodeRetour reserverModification(std::vector<M>* modifications) {
  try {
    if (modifications != nullptr) {
      reserverElement(*modifications);
    }
    return NOX_CR_OK;
  } catch (const std::bad_alloc&) {
    Trace::erreur(TRACE_MODIFICATION, "Creation du tableau de lignes de la table des modifications");
    return refuserChangement(NOX_CR_MEMOIRE, "probleme d'allocation memoire");
  }
}

// Records a change. REQUIRES: reserverModification
template <class M>
void enregistrerModification(std::vector<M>* modifications, M&& modification) {
  if (modifications != nullptr) {
    modifications->push_back(std::move(modification));
  }
}

// --- Saved changes made again ----------------------------------------------------------------------------

// What a text tells of a field of a saved change: its key and its day, not its new value.
inline std::string texteDeCle(char code) { return std::string(1, code); }
inline std::string texteDeCle(std::uint16_t position) { return std::to_string(position); }
inline std::string texteDeCle(const DateBrute& date) {
  char texte[16];
  std::snprintf(texte, sizeof texte, "%04u/%02u/%02u", unsigned{date.annee}, unsigned{date.mois},
                unsigned{date.jour});
  return texte;
}
template <std::size_t N>
std::string texteDeCle(const CodeFixe<N>& code) {
  return std::string(code.vue());
}
inline std::string texteDeCle(double) { return {}; }
inline std::string texteDeCle(const TexteVariable&) { return {}; }

// Traces that the reference refuses a saved change, by its table, its line in it (from 1) and its key.
template <class M>
std::string signalerRefus(const M& modification, std::size_t rang, CodeRetour cr) {
  char debut[48];
  std::snprintf(debut, sizeof debut, "table %03u, ligne %lu", M::IDENTIFIANT,
                static_cast<unsigned long>(rang + 1));
  std::string refus = debut;
  visiterChamps(modification, [&](const auto& champ, const auto& valeur) {
    const std::string texte = texteDeCle(valeur);
    if (!texte.empty()) {
      refus.append(", ").append(champ.mots).append(" ").append(texte);
    }
  });
  Trace::erreur(TRACE_MODIFICATION, "ERREUR : modification sauvegardee refusee (%s) : 0x%04X", refus.c_str(),
                cr);
  return refus;
}

// Makes the saved changes of a table again, in their order; the first one that is refused stops.
template <class M, class F>
CodeRetour refaireModifications(Referentiel& referentiel, F&& refaire) {
  const std::vector<M>& modifications = referentiel.lignes<M>();
  for (const M& modification : modifications) {
    const CodeRetour cr = refaire(modification);
    if (cr != NOX_CR_OK) {
      referentiel.refus =
          signalerRefus(modification, static_cast<std::size_t>(&modification - modifications.data()), cr);
      return cr;
    }
  }
  return NOX_CR_OK;
}

// --- Dated lines, the current one first ----------------------------------------------------------------

// The line that takes over from the current one at the effect date, which must lie in its validity.
template <class H, class F>
CodeRetour preparerLigne(const H& courante, const Date& dateEffet, F&& changer, H& nouvelle) {
  static_assert(std::is_trivially_copyable_v<H>);
  if (!estValideALaDate(courante, dateEffet)) {
    const DateBrute& debut = courante.debut;
    const DateBrute& fin = courante.fin;
    Trace::erreur(TRACE_MODIFICATION,
                  "Date d'effet non inclue dans l'intervalle de validite du dernier historique");
    Trace::ecrire(TRACE_MODIFICATION, "Date de debut dernier historique  : %04u/%02u/%02u", debut.annee,
                  debut.mois, debut.jour);
    Trace::ecrire(TRACE_MODIFICATION, "Date de fin dernier historique    : %04u/%02u/%02u", fin.annee,
                  fin.mois, fin.jour);
    return NOX_CR_DATE_EFFET;
  }
  nouvelle = courante;
  nouvelle.debut = dateEffet.lireBrute();
  changer(nouvelle);
  return NOX_CR_OK;
}

template <class H>
void fermerLigne(H& ligne, const Date& dateEffet) {
  ligne.fin = (dateEffet - 1).lireBrute();
}

// --- The run that one line of table L owns in the shared table of histories H -----------------------------

template <class L, class H, unsigned CIBLE>
class EditeurPlage {
 public:
  EditeurPlage(std::vector<L>& proprietaires, const L& proprietaire, Plage<CIBLE> L::*plage,
               std::vector<H>& lignes)
      : proprietaires_(proprietaires),
        plage_(plage),
        lignes_(lignes),
        mienne_(proprietaires[static_cast<std::size_t>(&proprietaire - proprietaires.data())].*plage) {}

  // Makes room for one more line, and gives the run lines of its own when it shares some. A failure leaves
  // both tables as they are; after a success, the insertion cannot fail.
  CodeRetour preparer() {
    const std::size_t fin = std::size_t{mienne_.premiere} + mienne_.nombre;
    const bool deplacer = mienne_.nombre == 0 || estPartagee();
    const std::size_t ajouts = 1U + (deplacer ? mienne_.nombre : 0U);
    if (mienne_.nombre != 0 && fin > lignes_.size()) {
      return refuserChangement(NOX_CR_DONNEE_ABSENTE, "plage de lignes hors de sa table");
    }
    if (mienne_.nombre >= MAX_LIGNES_TABLE || lignes_.size() + ajouts > MAX_LIGNES_TABLE) {
      return refuserChangement(NOX_CR_MEMOIRE, "table d'historiques pleine");
    }
    try {
      std::vector<H> copie;
      if (ajouts > 1) {
        copie.assign(lignes_.begin() + mienne_.premiere, lignes_.begin() + static_cast<std::ptrdiff_t>(fin));
      }
      static_assert(std::is_nothrow_move_constructible_v<H> && std::is_nothrow_move_assignable_v<H>);
      lignes_.reserve(lignes_.size() + ajouts);
      if (deplacer) {
        mienne_.premiere = static_cast<std::uint16_t>(lignes_.size());
        std::move(copie.begin(), copie.end(), std::back_inserter(lignes_));
      }
      return NOX_CR_OK;
    } catch (const std::bad_alloc&) {
      return refuserChangement(NOX_CR_MEMOIRE, MEMOIRE_HISTORIQUE);
    }
  }

  // REQUIRES: preparer, indice <= number of lines of the run
  void inserer(std::size_t indice, H&& ligne) {
    const std::size_t position = mienne_.premiere + indice;
    lignes_.insert(lignes_.begin() + static_cast<std::ptrdiff_t>(position), std::move(ligne));
    decalerSuivantes(position, 1);
    ++mienne_.nombre;
  }

  // REQUIRES: indice + nombre <= number of lines of the run; the run shares no line
  void supprimer(std::size_t indice, std::size_t nombre) {
    const auto debut = lignes_.begin() + static_cast<std::ptrdiff_t>(mienne_.premiere + indice);
    lignes_.erase(debut, debut + static_cast<std::ptrdiff_t>(nombre));
    decalerSuivantes(mienne_.premiere + indice, -static_cast<int>(nombre));
    mienne_.nombre = static_cast<std::uint16_t>(mienne_.nombre - nombre);
  }

  std::span<H> lignes() { return std::span(lignes_).subspan(mienne_.premiere, mienne_.nombre); }

 private:
  bool estAutre(const Plage<CIBLE>& plage) const { return &plage != &mienne_ && plage.nombre != 0; }

  bool estPartagee() const {
    const unsigned fin = mienne_.premiere + mienne_.nombre;
    return std::any_of(proprietaires_.begin(), proprietaires_.end(), [&](const L& ligne) {
      const Plage<CIBLE>& autre = ligne.*plage_;
      return estAutre(autre) && autre.premiere < fin && mienne_.premiere < autre.premiere + autre.nombre;
    });
  }

  void decalerSuivantes(std::size_t position, int decalage) {
    for (L& ligne : proprietaires_) {
      Plage<CIBLE>& autre = ligne.*plage_;
      if (estAutre(autre) && autre.premiere >= position) {
        autre.premiere = static_cast<std::uint16_t>(autre.premiere + decalage);
      }
    }
  }

  std::vector<L>& proprietaires_;
  Plage<CIBLE> L::*plage_;
  std::vector<H>& lignes_;
  Plage<CIBLE>& mienne_;
};

}  // namespace noxlux

#endif
