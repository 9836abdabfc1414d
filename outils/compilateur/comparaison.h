// What changed from a compiled reference to another.
#ifndef NOXLUX_COMPILATEUR_COMPARAISON_H
#define NOXLUX_COMPILATEUR_COMPARAISON_H

#include "compilateur/fichier_reference.h"
#include "compilateur/listage.h"

namespace noxlux::compilateur {

// {"avant", "apres": {version, date}, "actes ajoutés", "actes clos", "prix", "modificateurs", "libellés",
// "autres", "valeurs de modificateurs", "tables"}: the last eight are lists of objects; "tables" tells the
// modifiers, grouping codes, specialities and thresholds that one of the two alone holds. A change of a dated
// value tells from when ("depuis") the second reference answers something else than the first. The code of a
// file that cannot be read comes back in `cr`.
JsonOrdonne comparer(const FichierReference& avant, const FichierReference& apres, CodeRetour& cr);

}  // namespace noxlux::compilateur

#endif
