// Dispatch of a function family: from the function number that the zone descriptors give to the method.
#ifndef NOXLUX_INTERAPP_AIGUILLAGE_H
#define NOXLUX_INTERAPP_AIGUILLAGE_H

#include <algorithm>
#include <array>
#include <cstdint>

#include "basics/trace.h"

namespace noxlux {

template <class Methode>
struct LigneAiguillage {
  std::uint16_t numero;
  const char* nom;
  Methode methode;
};

template <class Methode, std::size_t N>
using TableAiguillage = std::array<LigneAiguillage<Methode>, N>;

// What a dispatch table must be: in strictly ascending order of numbers.
template <class Methode, std::size_t N>
constexpr bool estOrdonnee(const TableAiguillage<Methode, N>& table) {
  return std::ranges::adjacent_find(table, std::ranges::greater_equal{}, &LigneAiguillage<Methode>::numero) ==
         table.end();
}

// The line of a number. None: null, and the family's error text, which takes the number.
template <class Methode, std::size_t N>
const LigneAiguillage<Methode>* aiguiller(const TableAiguillage<Methode, N>& table, std::uint16_t numero,
                                          unsigned short module, FormatVerifie<int> texteInconnu) {
  const auto ligne = std::ranges::lower_bound(table, numero, {}, &LigneAiguillage<Methode>::numero);
  if (ligne == table.end() || ligne->numero != numero) {
    Trace::erreur(module, texteInconnu, static_cast<int>(numero));
    return nullptr;
  }
  return &*ligne;
}

}  // namespace noxlux

#endif
