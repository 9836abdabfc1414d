// The checksum of the reference files.
#ifndef NOXLUX_REFERENT_CRC16_H
#define NOXLUX_REFERENT_CRC16_H

#include <cstddef>
#include <cstdint>

#include "types/type_donnee.h"

namespace noxlux {

// A 16-bit CRC (polynomial 0x8408, bits taken from the low end), fed at the high end of the register and
// never flushed; the two bytes of the result are exchanged. Several bytes are taken at a time.
class Crc16 {
 public:
  void ajouter(const byte* octets, std::size_t n);
  std::uint16_t resultat() const;

 private:
  std::uint16_t registre_ = 0;
};

}  // namespace noxlux

#endif
