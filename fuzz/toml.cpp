// Sources of a reference, compiled as far as they hold.
#include "atelier.h"
#include "compilateur/compilation.h"
#include "compilateur/etiquettes.h"
#include "compilateur/lecteur_toml.h"
#include "compilateur/rapport.h"

using namespace noxlux::compilateur;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* octets, std::size_t taille) {
  Modele modele;
  Rapport rapport;
  Bilan bilan;
  lireTexteToml(fuzz::Source(octets, taille).tout(), "essai.toml", modele, rapport);
  const auto muet = [](const auto&...) {};
  const bool compile = compiler(modele, fuzz::dossier(), muet, rapport, bilan);
  fuzz::exiger(compile == (rapport.nombreFautes() == 0));
  return 0;
}
