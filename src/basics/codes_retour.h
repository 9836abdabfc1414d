// Return codes: the public constants, and the type that carries them inside the library.
#ifndef NOXLUX_BASICS_CODES_RETOUR_H
#define NOXLUX_BASICS_CODES_RETOUR_H

#include <cstdint>

#include "noxlux/noxlux.h"

namespace noxlux {

using CodeRetour = std::uint16_t;

// A code that carries a position. Positions too large for their family wrap, as 16-bit additions do.
constexpr CodeRetour codeAvecPosition(NOX_CodeRetour base, unsigned position) {
  return static_cast<CodeRetour>((static_cast<unsigned>(base) + position) & 0xFFFFU);
}

}  // namespace noxlux

#endif
