// Public listings of successive dates, and dated prices beside them, as one nomenclature with its past.
#ifndef NOXLUX_COMPILATEUR_LISTINGS_H
#define NOXLUX_COMPILATEUR_LISTINGS_H

#include <string>
#include <vector>

#include "compilateur/bilan_import.h"
#include "compilateur/modele.h"
#include "compilateur/rapport.h"

namespace noxlux::compilateur {

struct DemandeListings {
  std::vector<std::string> chemins;      // in any order
  std::vector<std::string> historiques;  // tables of dated prices
  unsigned grille = 1;                   // 1 and 2 are the columns of the listing
  // What the first listing tells is taken as holding before its date too, from the creation of each act.
  bool anteriorite = true;
};

// Adds listings to the model of the sources, with what these tell of their acts. False when one cannot be
// read, the faults being told.
bool importerListings(const DemandeListings& demande, char reglePleine, Modele& modele, BilanImport& bilan,
                      Rapport& rapport);

// Adds a later listing to an earlier one: what changed takes effect on its date, acts that it does not hold
// end the day before.
void cumuler(Modele&& liste, Modele& cumul, BilanImport& bilan);

// Adds the dated prices of a table "acte;activite;phase;effet;prix" (other columns are passed over).
bool lireHistoriquePrix(const std::string& chemin, Modele& cumul, BilanImport& bilan, Rapport& rapport);

}  // namespace noxlux::compilateur

#endif
