// Zones of the tests: byte strings laid in blocks of exactly their size, so that a read past the end is
// caught.
#ifndef NOXLUX_TESTS_ZONES_OCTETS_ESSAI_H
#define NOXLUX_TESTS_ZONES_OCTETS_ESSAI_H

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

#include "bout_en_bout/zones_essai.h"
#include "manip/zone.h"

namespace noxlux {

inline Octets octets(std::string_view texte) {
  return {reinterpret_cast<const byte*>(texte.data()), texte.size()};
}

inline std::string texte(Octets donnees) {
  return {reinterpret_cast<const char*>(donnees.data()), donnees.size()};
}

// The bytes in use of a zone.
inline std::string contenu(const Zone& zone) { return texte({zone.lireBuffer(), zone.lireTailleDonnees()}); }

// A zone over a copy of bytes. REQUIRES: at least one byte
class ZoneEssai {
 public:
  explicit ZoneEssai(std::string_view source)
      : bloc_(new byte[source.size()]), zone(bloc_.get(), static_cast<std::uint32_t>(source.size())) {
    std::copy(source.begin(), source.end(), bloc_.get());
  }
  explicit ZoneEssai(const essai::Zone& groupes) : ZoneEssai(essai::ecrire(groupes)) {}

 private:
  std::unique_ptr<byte[]> bloc_;

 public:
  Zone zone;
};

// A literal with zero bytes in it.
template <std::size_t N>
std::string brut(const char (&litteral)[N]) {
  return std::string(litteral, N - 1);
}

}  // namespace noxlux

#endif
