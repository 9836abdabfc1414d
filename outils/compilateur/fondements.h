// What a reference stands on: where its facts come from, what it lacks, and what ends soon.
#ifndef NOXLUX_COMPILATEUR_FONDEMENTS_H
#define NOXLUX_COMPILATEUR_FONDEMENTS_H

#include "compilateur/bilan_import.h"
#include "compilateur/modele.h"

namespace noxlux::compilateur {

// Counts the facts of an import by subject, and tells the rules that can never raise for want of facts.
void direFondements(const Modele& modele, BilanImport& bilan);

// Tells holidays, thresholds and values that end within twelve months of a day.
void direFins(const Modele& modele, const DateBrute& jour, BilanImport& bilan);

// The day it is here.
DateBrute aujourdhui();

}  // namespace noxlux::compilateur

#endif
