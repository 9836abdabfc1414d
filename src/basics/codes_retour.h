// Return codes: the public constants, and the type that carries them inside the library.
#ifndef NOXLUX_BASICS_CODES_RETOUR_H
#define NOXLUX_BASICS_CODES_RETOUR_H

#include <cstdint>

#include "noxlux/noxlux.h"

namespace noxlux {

using CodeRetour = std::uint16_t;

// The last code of a family that carries a position.
constexpr CodeRetour dernierDeFamille(NOX_CodeRetour base) {
  switch (base) {
    case NOX_CR_CHAMP_INVALIDE:
      return 0x9FFF;
    case NOX_CR_GROUPE_INATTENDU:
    case NOX_CR_DONNEES_EN_TROP:
      return 0xA7FF;
    case NOX_CR_NOMBRE_CHAMPS:
      return 0xAFFF;
    case NOX_CR_NOMBRE_OCCURRENCES:
      return 0xCFFF;
    case NOX_CR_CONTROLE:
      return NOX_CR_CONTROLE_NIVEAU_2;
    case NOX_CR_NUMERO_LIGNE:
      return 0xE0FF;
    default:
      return static_cast<CodeRetour>(base);
  }
}

// A code that carries a position. Positions too large for their family all have its last code.
constexpr CodeRetour codeAvecPosition(NOX_CodeRetour base, unsigned position) {
  const unsigned reste = static_cast<unsigned>(dernierDeFamille(base)) - static_cast<unsigned>(base);
  return static_cast<CodeRetour>(static_cast<unsigned>(base) + (position < reste ? position : reste));
}

// One more of what is counted in 16 bits; the last number stands for all that follow.
constexpr void compter(std::uint16_t& nombre) {
  if (nombre < UINT16_MAX) {
    ++nombre;
  }
}

}  // namespace noxlux

#endif
