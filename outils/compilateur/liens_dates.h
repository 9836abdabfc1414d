// Links between two levels that change at different dates, told by the dates of both.
#ifndef NOXLUX_COMPILATEUR_LIENS_DATES_H
#define NOXLUX_COMPILATEUR_LIENS_DATES_H

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

#include "types/date.h"

namespace noxlux::compilateur {

// A link from the description of a level that took effect on day `fiche`; it holds from day `depuis` on, when
// what it leads to took effect later than the description.
struct LienDate {
  DateBrute fiche;
  DateBrute depuis;
};

template <class H>
const H* historiqueDu(const std::vector<H>& historiques, const DateBrute& date) {
  const auto trouve =
      std::find_if(historiques.begin(), historiques.end(), [&](const H& h) { return h.effet == date; });
  return trouve == historiques.end() ? nullptr : &*trouve;
}
template <class H>
H* historiqueDu(std::vector<H>& historiques, const DateBrute& date) {
  return const_cast<H*>(historiqueDu(std::as_const(historiques), date));
}

// Whether the description of day `fiche` is still the current one on a day.
template <class H>
bool encoreCourante(const std::vector<H>& historiques, const DateBrute& fiche, const DateBrute& jour) {
  return std::none_of(historiques.begin(), historiques.end(),
                      [&](const H& h) { return fiche < h.effet && h.effet <= jour; });
}

// Gives each history its links, as poser(history, link) does in the order of `liens`. A history through which
// links begin to hold becomes several, so that at any date the links are those that hold then.
template <class H, class L, class F>
void scinder(std::vector<H>& historiques, const std::vector<L>& liens, F&& poser) {
  std::vector<H> scindes;
  for (const H& historique : historiques) {
    std::set<DateBrute> dates{historique.effet};
    for (const L& lien : liens) {
      if (lien.fiche == historique.effet && historique.effet < lien.depuis) {
        dates.insert(lien.depuis);
      }
    }
    for (const DateBrute& date : dates) {
      H& scinde = scindes.emplace_back(historique);
      scinde.effet = date;
      for (const L& lien : liens) {
        if (lien.fiche == historique.effet && lien.depuis <= date) {
          poser(scinde, lien);
        }
      }
    }
  }
  historiques = std::move(scindes);
}

}  // namespace noxlux::compilateur

#endif
