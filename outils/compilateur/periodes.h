// Arithmetic of periods of validity: from `debut` to `fin`, both included; a null end is open.
#ifndef NOXLUX_COMPILATEUR_PERIODES_H
#define NOXLUX_COMPILATEUR_PERIODES_H

#include <algorithm>
#include <iterator>
#include <set>
#include <vector>

#include "compilateur/modele.h"
#include "types/date.h"

namespace noxlux::compilateur {

inline DateBrute veille(const DateBrute& date) { return (Date(date) - 1).lireBrute(); }

inline DateBrute lendemain(DateBrute date) {
  ++date.jour;
  if (!date.estValide()) {
    date = date.mois == 12 ? DateBrute{static_cast<std::uint16_t>(date.annee + 1), 1, 1}
                           : DateBrute{date.annee, static_cast<std::uint8_t>(date.mois + 1), 1};
  }
  return date;
}

template <class E>
bool finitAvant(const E& element, const DateBrute& date) {
  return !element.fin.estNulle() && element.fin < date;
}

template <class E>
bool couvre(const E& element, const DateBrute& date) {
  return element.debut <= date && !finitAvant(element, date);
}

// The successive periods through which the same of these elements hold; those in which none does are left
// out.
template <class E>
std::vector<ElementDate> intervalles(const std::vector<E>& elements) {
  std::set<DateBrute> changements;
  for (const E& element : elements) {
    changements.insert(element.debut);
    if (!element.fin.estNulle()) {
      changements.insert(lendemain(element.fin));
    }
  }
  std::vector<ElementDate> resultat;
  for (auto date = changements.begin(); date != changements.end(); ++date) {
    ElementDate intervalle;
    intervalle.debut = *date;
    intervalle.fin = std::next(date) == changements.end() ? DateBrute{} : veille(*std::next(date));
    if (std::any_of(elements.begin(), elements.end(), [&](const E& e) { return couvre(e, *date); })) {
      resultat.push_back(intervalle);
    }
  }
  return resultat;
}

// Puts periods in order, each ending before the next one begins. Of two that begin on one day the first is
// kept; `surDouble` is told the other, `surCoupe` those that are cut.
template <class E, class D, class C>
void enchainer(std::vector<E>& periodes, D&& surDouble, C&& surCoupe) {
  std::stable_sort(periodes.begin(), periodes.end(),
                   [](const E& g, const E& d) { return g.debut < d.debut; });
  std::vector<E> enchainees;
  for (E& periode : periodes) {
    if (!enchainees.empty() && enchainees.back().debut == periode.debut) {
      surDouble(periode);
      continue;
    }
    if (!enchainees.empty() && !finitAvant(enchainees.back(), periode.debut)) {
      surCoupe(enchainees.back());
      enchainees.back().fin = veille(periode.debut);
    }
    enchainees.push_back(std::move(periode));
  }
  periodes = std::move(enchainees);
}

// Adds to periods what others tell where they are silent. REQUIRES: `propres` is in order, without overlap.
template <class E>
std::vector<E> completer(const std::vector<E>& propres, const std::vector<E>& communes) {
  std::vector<E> resultat = propres;
  for (E reste : communes) {
    bool epuise = false;
    for (const E& propre : propres) {
      if (finitAvant(propre, reste.debut) || finitAvant(reste, propre.debut)) {
        continue;
      }
      if (reste.debut < propre.debut) {
        resultat.push_back(reste);
        resultat.back().fin = veille(propre.debut);
      }
      epuise = propre.fin.estNulle() || finitAvant(reste, lendemain(propre.fin));
      if (epuise) {
        break;
      }
      reste.debut = lendemain(propre.fin);
    }
    if (!epuise) {
      resultat.push_back(reste);
    }
  }
  std::sort(resultat.begin(), resultat.end(), [](const E& g, const E& d) { return g.debut < d.debut; });
  return resultat;
}

}  // namespace noxlux::compilateur

#endif
