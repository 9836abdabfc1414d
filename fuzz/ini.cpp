// The bytes of orvan.ini.
#include "atelier.h"
#include "basics/fichier_ini.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* octets, std::size_t taille) {
  fuzz::ecrire("essai.ini", fuzz::Source(octets, taille).tout());
  noxlux::FichierIni ini;
  ini.parserFichier((fuzz::dossier() + "essai.ini").c_str());
  for (const char* section : {"NOX", "COMMUN", ""}) {
    for (const char* cle : {"repertoiretable", "FichierTrace", ""}) {
      const char* valeur = ini.lireValeur(section, cle);
      fuzz::exiger(valeur == nullptr || std::string_view(valeur).size() <= taille);
    }
  }
  return 0;
}
