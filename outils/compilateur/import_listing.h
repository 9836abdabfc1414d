// Reads the public listing of the CCAM, the spreadsheet that billing offices download, saved as CSV.
//
// It is laid out for reading: what a record is follows from its first field and from the records above it.
// A faulty record is dropped and counted; a file that is not the listing, or not all of it, is a fault of the
// report.
#ifndef NOXLUX_COMPILATEUR_IMPORT_LISTING_H
#define NOXLUX_COMPILATEUR_IMPORT_LISTING_H

#include <span>
#include <string>
#include <string_view>

#include "compilateur/bilan_import.h"
#include "compilateur/modele.h"
#include "compilateur/rapport.h"

namespace noxlux::compilateur {

enum class ColonnePrix { SECTEUR_1, HORS_SECTEUR_1 };

// What the sources say of the listings that they complete.
struct OptionsListing {
  ColonnePrix colonne = ColonnePrix::SECTEUR_1;
  char reglePleine = ' ';  // the tariff rule of the associated acts
  // Misprints, mended before anything is read of them.
  std::span<const Correctif> correctifs;
};

// Fills `liste` with the header, menus, acts, modifiers and grouping codes of a listing; everything takes
// effect at its applicable date. False, and one fault told, when the text is not a whole listing.
bool lireListing(std::string_view texte, std::string nom, const OptionsListing& options, Modele& liste,
                 BilanImport& bilan, Rapport& rapport);

bool importerListing(const std::string& chemin, const OptionsListing& options, Modele& liste,
                     BilanImport& bilan, Rapport& rapport);

}  // namespace noxlux::compilateur

#endif
