// Reads the public database of the CCAM, a directory of dBASE III tables, with all its histories.
#ifndef NOXLUX_COMPILATEUR_IMPORT_DBF_H
#define NOXLUX_COMPILATEUR_IMPORT_DBF_H

#include <optional>
#include <string>

#include "compilateur/bilan_import.h"
#include "compilateur/ecriture.h"
#include "compilateur/modele.h"
#include "compilateur/rapport.h"

namespace noxlux::compilateur {

// Fills `base` with what the tables hold, with the prices of one tariff grid; the base prices when none is
// chosen. Records that make no sense, or that refer to nothing, are dropped. False, and the faults told, when
// a table that must be there is missing, when one that is there cannot be read or lacks a column, and when
// the grid is unknown.
bool importerBaseDbf(const std::string& repertoire, std::optional<unsigned> grille,
                     const Avancement& avancement, Modele& base, BilanImport& bilan, Rapport& rapport);

}  // namespace noxlux::compilateur

#endif
