// From a model without fault to what the reference file holds.
#ifndef NOXLUX_COMPILATEUR_GENERATEUR_H
#define NOXLUX_COMPILATEUR_GENERATEUR_H

#include "compilateur/etiquettes.h"
#include "compilateur/modele.h"
#include "compilateur/tables_reference.h"
#include "referent/entetes.h"
#include "tables/niveaux_acte.h"
#include "tables/table.h"

namespace noxlux::compilateur {

// All tables, the positions of the index left at 0. A table too long for the runs that point into it is a
// fault. REQUIRES: the model has passed the checks.
TablesReference genererTables(const Modele& modele, const Etiquettes& etiquettes, Rapport& rapport);

NiveauActe genererActe(const Acte& acte);
EnteteReferentiel genererEntete(const Entete& entete);

}  // namespace noxlux::compilateur

#endif
