// The keys of modification tables: which lines change a given value.
#ifndef NOXLUX_REFERENT_REQUETE_MODIFICATIONS_H
#define NOXLUX_REFERENT_REQUETE_MODIFICATIONS_H

#include <tuple>
#include <type_traits>

#include "referent/requete_cles.h"
#include "tables/catalogue.h"

namespace noxlux {

constexpr auto clesModification(std::type_identity<ModificationPrixUnitaire>) {
  using M = ModificationPrixUnitaire;
  return std::tuple{&M::acte, &M::activite, &M::phase};
}
constexpr auto clesModification(std::type_identity<ModificationSupplementCharge>) {
  using M = ModificationSupplementCharge;
  return std::tuple{&M::acte, &M::activite, &M::phase};
}
constexpr auto clesModification(std::type_identity<ModificationMajorationDOM>) {
  using M = ModificationMajorationDOM;
  return std::tuple{&M::acte, &M::activite, &M::phase, &M::position};
}
constexpr auto clesModification(std::type_identity<ModificationCodeRegroupement>) {
  using M = ModificationCodeRegroupement;
  return std::tuple{&M::acte, &M::activite};
}
constexpr auto clesModification(std::type_identity<ModificationRegleAssociationNonPrevue>) {
  return std::tuple{&ModificationRegleAssociationNonPrevue::code};
}
constexpr auto clesModification(std::type_identity<ModificationSeuil>) {
  return std::tuple{&ModificationSeuil::position};
}
constexpr auto clesModification(std::type_identity<ModificationModificateur>) {
  return std::tuple{&ModificationModificateur::code};
}
constexpr auto clesModification(std::type_identity<ModificationNonConventionne>) { return std::tuple{}; }

// The key of the lines of a modification table: those of one changed value.
template <class M>
class CleModification {
 public:
  template <class... V>
  CodeRetour composer(const V&... valeurs) {
    CodeRetour cr = NOX_CR_OK;
    std::apply(
        [&](const auto&... champ) {
          static_cast<void>(((cr = composerCle(valeurs, ligne_.*champ), cr == NOX_CR_OK) && ...));
        },
        CHAMPS);
    return cr;
  }
  bool egale(const M& ligne) const {
    return std::apply([&](const auto&... champ) { return ((ligne.*champ == ligne_.*champ) && ...); }, CHAMPS);
  }
  // Whether the line changes the value that is read at a date.
  bool couvre(const M& ligne, const Date& date) const {
    return egale(ligne) && ligne.dateEffet <= date.lireBrute();
  }
  // A line of this key.
  M ligne(const Date& dateEffet) const {
    M copie = ligne_;
    copie.dateEffet = dateEffet.lireBrute();
    return copie;
  }

 private:
  static constexpr auto CHAMPS = clesModification(std::type_identity<M>{});
  M ligne_;
};

}  // namespace noxlux

#endif
