// An imported nomenclature put together with the sources that complete it, and rid of what cannot be
// compiled.
#ifndef NOXLUX_COMPILATEUR_FUSION_H
#define NOXLUX_COMPILATEUR_FUSION_H

#include "compilateur/bilan_import.h"
#include "compilateur/modele.h"
#include "compilateur/rapport.h"

namespace noxlux::compilateur {

// Adds a listing to the model of the sources, with what they tell of its acts. The menu tree is the
// listing's. Acts that both hold get the listing's values on its date, and keep the rest of the sources':
// earlier and later histories, ages, teeth, specialities; what the sources say otherwise of what the listing
// prints is told. Of modifiers and grouping codes, the sources prevail.
void fusionnerListing(Modele&& liste, Modele& modele, BilanImport& bilan);

// Puts a historised nomenclature in the place of what it holds itself of the sources: whole subjects, but
// acts by code, code tables and concepts by number, and what is told of modifiers list by list. What is left
// of the sources and no longer leads to anything is taken out, and told.
void fusionnerBase(Modele&& base, Modele& modele, BilanImport& bilan);

// Drops from what was imported whatever the checks would refuse: unknown codes in lists first, then whole
// records. `premiereSource` is the first source of the import; faults of the others are left to be told.
void epurer(Modele& modele, std::uint32_t premiereSource, const Rapport& sources, BilanImport& bilan);

}  // namespace noxlux::compilateur

#endif
