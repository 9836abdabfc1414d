// Reference files as JSON, by the same descriptions of lines and levels that the library reads by. Dates are
// "AAAA-MM-JJ", or null when not filled; empty codes are empty texts; a run is {"premiere", "nombre"}.
#ifndef NOXLUX_COMPILATEUR_LISTAGE_H
#define NOXLUX_COMPILATEUR_LISTAGE_H

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "compilateur/fichier_reference.h"

namespace noxlux::compilateur {

// Keeps the fields in file order.
using JsonOrdonne = nlohmann::ordered_json;

// The key of a field: the name that sources tell it by, in camel case ("age_minimum" gives "ageMinimum").
std::string cleJson(const NomChamp& nom);

// {"entete": {...}, "tables": [{"table", "nom", "lignes", "octets", "etat"}], "anomalie"}
JsonOrdonne listerFichier(const FichierReference& fichier);
// [{field: value}], or null and the code when the table cannot be read.
JsonOrdonne listerTable(const FichierReference& fichier, const TableLue& table, CodeRetour& cr);
JsonOrdonne listerActe(const NiveauActe& acte);

// The table that a person names by its number or by its class; NOMBRE_TABLES when there is none.
unsigned numeroDeTable(std::string_view nom);

}  // namespace noxlux::compilateur

#endif
