// What tells the content of one file from that of another.
#ifndef NOXLUX_REFERENT_EMPREINTE_H
#define NOXLUX_REFERENT_EMPREINTE_H

#include <cstdint>
#include <cstdio>
#include <optional>

namespace noxlux {

struct Empreinte {
  std::uint64_t taille = 0;
  std::uint64_t condense = 0;
  bool operator==(const Empreinte&) const = default;
};

// That of an open file, from its beginning; none when it cannot be read. The position moves.
std::optional<Empreinte> lireEmpreinte(std::FILE* fichier);

}  // namespace noxlux

#endif
