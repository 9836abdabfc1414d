// The public listing.
#include "atelier.h"
#include "compilateur/import_listing.h"

using namespace noxlux::compilateur;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* octets, std::size_t taille) {
  for (const ColonnePrix colonne : {ColonnePrix::SECTEUR_1, ColonnePrix::HORS_SECTEUR_1}) {
    OptionsListing options;
    options.colonne = colonne;
    options.reglePleine = '1';
    Modele modele;
    BilanImport bilan;
    Rapport rapport;
    const bool lu =
        lireListing(fuzz::Source(octets, taille).tout(), "essai.csv", options, modele, bilan, rapport);
    fuzz::exiger(lu == (rapport.nombreFautes() == 0));
  }
  return 0;
}
