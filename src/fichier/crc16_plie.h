// The checksum by products without carry, for the processors that have them.
#ifndef NOXLUX_FICHIER_CRC16_PLIE_H
#define NOXLUX_FICHIER_CRC16_PLIE_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "types/type_donnee.h"

namespace noxlux {

inline constexpr unsigned POLYNOME_CRC16 = 0x8408;
inline constexpr std::size_t TAILLE_RESIDU = 16;

// A way of folding: what `n` bytes that follow `registre` leave in the register, the TAILLE_RESIDU bytes of
// `residu` leave there too, alone. REQUIRES: n a multiple of `pas`, not 0.
struct Pliage {
  void (*plier)(std::uint16_t registre, const byte* octets, std::size_t n, byte* residu) = nullptr;
  std::size_t pas = 1;
};

// The ways this processor has, the fastest first; the last one is none.
std::array<Pliage, 3> pliagesPossibles();

}  // namespace noxlux

#endif
