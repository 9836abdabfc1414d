// The checksum of the reference files.
#ifndef NOXLUX_FICHIER_CRC16_H
#define NOXLUX_FICHIER_CRC16_H

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "fichier/crc16_plie.h"
#include "types/type_donnee.h"

namespace noxlux {

// A 16-bit CRC (bits taken from the low end), fed at the high end of the register and never flushed; the two
// bytes of the result are exchanged. Several bytes are taken at a time, by products without carry where the
// processor has them, by tables elsewhere.
class Crc16 {
 public:
  // With the fastest way of this processor, or the one given: Pliage{} is by tables alone.
  Crc16() : Crc16(pliagesPossibles().front()) {}
  explicit Crc16(const Pliage& pliage) : pliage_(pliage) {}

  void ajouter(const byte* octets, std::size_t n);
  std::uint16_t resultat() const;

 private:
  Pliage pliage_;
  std::uint16_t registre_ = 0;
};

// That of an open file from offset 4 to its end. False when it cannot be read. The position moves.
bool calculerCRC16(std::FILE* fichier, std::uint16_t& crc);

}  // namespace noxlux

#endif
