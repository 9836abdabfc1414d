// The lines of all tables of a reference, before they are written.
#ifndef NOXLUX_COMPILATEUR_TABLES_REFERENCE_H
#define NOXLUX_COMPILATEUR_TABLES_REFERENCE_H

#include <cstddef>
#include <tuple>
#include <vector>

#include "tables/catalogue.h"

namespace noxlux::compilateur {

namespace detail {

template <class C>
struct Vecteurs;
template <class... L>
struct Vecteurs<std::tuple<L...>> {
  using Type = std::tuple<std::vector<L>...>;
};

template <unsigned ID, class C>
struct Recherche;  // the line class of that identifier, as `type`
template <unsigned ID, class L, class... R>
struct Recherche<ID, std::tuple<L, R...>>
    : std::conditional_t<L::IDENTIFIANT == ID, std::type_identity<L>, Recherche<ID, std::tuple<R...>>> {};

}  // namespace detail

// The line class of a table identifier.
template <unsigned ID>
using LigneDe = typename detail::Recherche<ID, Catalogue>::type;

class TablesReference {
 public:
  template <class L>
  std::vector<L>& lignes() {
    return std::get<std::vector<L>>(tables_);
  }
  template <class L>
  const std::vector<L>& lignes() const {
    return std::get<std::vector<L>>(tables_);
  }
  // Calls f(lines) for each table, by identifier.
  template <class F>
  void pourChaque(F&& f) const {
    std::apply([&](const auto&... lignes) { (f(lignes), ...); }, tables_);
  }

 private:
  detail::Vecteurs<Catalogue>::Type tables_;
};

}  // namespace noxlux::compilateur

#endif
