// Everything that must hold of a model before it is compiled: what the library's loader checks, and what its
// queries and rules rely on.
#ifndef NOXLUX_COMPILATEUR_VERIFICATIONS_H
#define NOXLUX_COMPILATEUR_VERIFICATIONS_H

#include "compilateur/etiquettes.h"
#include "compilateur/modele.h"

namespace noxlux::compilateur {

void verifierNomenclature(const Modele& modele, const Etiquettes& etiquettes, Rapport& rapport);
void verifierRegles(const Modele& modele, Rapport& rapport);
void verifierZones(const Modele& modele, Rapport& rapport);

inline void verifier(const Modele& modele, const Etiquettes& etiquettes, Rapport& rapport) {
  verifierNomenclature(modele, etiquettes, rapport);
  verifierRegles(modele, rapport);
  verifierZones(modele, rapport);
}

}  // namespace noxlux::compilateur

#endif
