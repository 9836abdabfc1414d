// What the sources tell besides an import: put where it belongs, and told when it leads nowhere.
#ifndef NOXLUX_COMPILATEUR_COMPLEMENT_H
#define NOXLUX_COMPILATEUR_COMPLEMENT_H

#include "compilateur/bilan_import.h"
#include "compilateur/modele.h"

namespace noxlux::compilateur {

// Gives the compatibilities to their modifiers and the holidays to their funds.
void rassembler(Modele& modele, BilanImport& bilan);

// Gives the acts of a listing what the sources tell of them: of the act itself, else of its chapter, of its
// grouping code, of all acts. Lists of incompatible acts and of procedures add up; an incompatibility holds
// for both acts.
// `premiere`: the date of the first listing, on which the acts whose creation is told appear to begin.
void completerActes(const Modele& sources, const DateBrute& premiere, Modele& liste, BilanImport& bilan);

// Leaves to each activity of the acts the modifiers that its kind may bear, as the sources tell.
void repartirModificateurs(const Modele& sources, Modele& liste);

// Gives the modifiers of the sources and of a listing what they are worth in a tariff grid: what the sources
// tell, from any date; else the first value that the listing prints.
void choisirValeurs(unsigned grille, const Modele& liste, Modele& modele, BilanImport& bilan);

}  // namespace noxlux::compilateur

#endif
