// modifref.nox beside a sound reference, retouched; its checksum is made right again.
#include "atelier.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* octets, std::size_t taille) {
  static const std::vector<fuzz::Fichier> BASE = [] {
    fuzz::configurer();
    for (const fuzz::Fichier& fichier : fuzz::base("reference")) {
      fuzz::ecrire(fichier.nom, fichier.octets);
    }
    return fuzz::base("modifications");
  }();
  fuzz::essayerRetouche(BASE, fuzz::Source(octets, taille));
  return 0;
}
