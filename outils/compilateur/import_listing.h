// Reads the public listing of the CCAM, the spreadsheet that billing offices download, saved as CSV.
//
// It is laid out for reading: what a record is follows from its first field and from the records above it.
// A faulty record is dropped and counted; a file that is not the listing, or not all of it, is a fault of the
// report.
#ifndef NOXLUX_COMPILATEUR_IMPORT_LISTING_H
#define NOXLUX_COMPILATEUR_IMPORT_LISTING_H

#include <string>
#include <string_view>

#include "compilateur/bilan_import.h"
#include "compilateur/modele.h"
#include "compilateur/rapport.h"

namespace noxlux::compilateur {

enum class ColonnePrix { SECTEUR_1, HORS_SECTEUR_1 };

// Fills `liste` with the header, menus, acts, modifiers and grouping codes of a listing; everything takes
// effect at its applicable date. `reglePleine` is the tariff rule of the associated acts. False, and one
// fault told, when the text is not a whole listing.
bool lireListing(std::string_view texte, std::string nom, ColonnePrix colonne, char reglePleine,
                 Modele& liste, BilanImport& bilan, Rapport& rapport);

bool importerListing(const std::string& chemin, ColonnePrix colonne, char reglePleine, Modele& liste,
                     BilanImport& bilan, Rapport& rapport);

}  // namespace noxlux::compilateur

#endif
