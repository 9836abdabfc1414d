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

// The line of a number. None: null, and the family's error text, which takes the number. Numbers follow one
// another but for a few gaps: the line is where it would be without them, or before.
template <class Methode, std::size_t N>
const LigneAiguillage<Methode>* aiguiller(const TableAiguillage<Methode, N>& table, std::uint16_t numero,
                                          unsigned short module, FormatVerifie<int> texteInconnu) {
  const auto* ligne =
      &table[std::min<std::size_t>(std::max(numero, table[0].numero) - table[0].numero, N - 1)];
  while (ligne != table.data() && ligne->numero > numero) {
    --ligne;
  }
  if (ligne->numero != numero) {
    Trace::erreur(module, texteInconnu, static_cast<int>(numero));
    return nullptr;
  }
  return ligne;
}

// The texts of a family that traces its functions at the dispatch.
struct TextesFamille {
  unsigned short module;
  FormatVerifie<const char*> banniere;  // takes the function's name
  unsigned short moduleInconnu;
  FormatVerifie<int> texteInconnu;
};

// Runs the method of a number on the family's object. 0xDFFF: there is none.
template <class F, class Methode, std::size_t N, class... A>
CodeRetour executerLigne(F& famille, const TableAiguillage<Methode, N>& table, const TextesFamille& textes,
                         std::uint16_t numero, A&... arguments) {
  const auto* ligne = aiguiller(table, numero, textes.moduleInconnu, textes.texteInconnu);
  if (ligne == nullptr) {
    return NOX_CR_INCOHERENCE;
  }
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(textes.module, cr, textes.banniere, ligne->nom);
  cr = (famille.*ligne->methode)(arguments...);
  return cr;
}

}  // namespace noxlux

#endif
