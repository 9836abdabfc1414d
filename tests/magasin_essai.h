// A store in memory: every table there, empty until a test fills it. And short ways of writing the values of
// its lines.
#ifndef NOXLUX_TESTS_MAGASIN_ESSAI_H
#define NOXLUX_TESTS_MAGASIN_ESSAI_H

#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "referent/lecture_donnees.h"
#include "referent/referentiel.h"

namespace noxlux {

inline DateBrute jour(unsigned aaaammjj) {
  return {static_cast<std::uint16_t>(aaaammjj / 10000), static_cast<std::uint8_t>(aaaammjj / 100 % 100),
          static_cast<std::uint8_t>(aaaammjj % 100)};
}
inline Date date(unsigned aaaammjj) { return Date(jour(aaaammjj)); }

template <class T>
ListeCompacte<T> compacte(const std::vector<T>& valeurs) {
  return ListeCompacte<T>(std::span<const T>(valeurs));
}

// The codes of a list, put end to end.
inline std::string joindre(const ListeCodes& codes) {
  std::string texte;
  for (const Code& code : codes) {
    texte.append(code.vue()).append("/");
  }
  return texte;
}

class MagasinEssai {
 public:
  MagasinEssai() {
    [&]<class... L>(std::type_identity<std::tuple<L...>>) {
      (poser(std::vector<L>{}), ...);
    }(std::type_identity<Catalogue>{});
  }
  template <class L>
  void poser(std::vector<L> lignes) {
    referentiel.tables[L::IDENTIFIANT] = std::make_unique<Table>(std::move(lignes));
  }

  Referentiel referentiel;
  LectureDonnees lecture{&referentiel};
};

}  // namespace noxlux

#endif
