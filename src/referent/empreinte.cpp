#include "referent/empreinte.h"

namespace noxlux {

// A 64-bit FNV-1a.
std::optional<Empreinte> lireEmpreinte(std::FILE* fichier) {
  if (std::fseek(fichier, 0, SEEK_SET) != 0) {
    return std::nullopt;
  }
  constexpr std::uint64_t DEPART = 0xCBF29CE484222325U;
  constexpr std::uint64_t FACTEUR = 0x100000001B3U;
  Empreinte empreinte{0, DEPART};
  unsigned char bloc[16 * 1024];
  std::size_t lus = sizeof bloc;
  while (lus == sizeof bloc) {
    lus = std::fread(bloc, 1, sizeof bloc, fichier);
    empreinte.taille += lus;
    for (std::size_t i = 0; i < lus; ++i) {
      empreinte.condense = (empreinte.condense ^ bloc[i]) * FACTEUR;
    }
  }
  return std::ferror(fichier) == 0 ? std::optional(empreinte) : std::nullopt;
}

}  // namespace noxlux
