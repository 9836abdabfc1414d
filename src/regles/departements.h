// The overseas departments of funds. The price increase is told per department; the exemption threshold per
// zone, which the two Antilles departments share.
#ifndef NOXLUX_REGLES_DEPARTEMENTS_H
#define NOXLUX_REGLES_DEPARTEMENTS_H

#include <string_view>

#include "types/texte.h"

namespace noxlux {

struct Departement {
  std::string_view caisse;
  unsigned short positionMajoration;  // 0: no increase
  unsigned short zoneSeuil;
};

constexpr Departement METROPOLE = {"", 0, 1};
constexpr Departement DEPARTEMENTS[] = {{"971", 1, 2}, {"972", 2, 2}, {"973", 3, 4}, {"974", 4, 3}};

inline const Departement& departementDe(const Code& caisse) {
  for (const Departement& departement : DEPARTEMENTS) {
    if (caisse.vue() == departement.caisse) {
      return departement;
    }
  }
  return METROPOLE;
}

}  // namespace noxlux

#endif
