// Fills a model from long tables, one fact a row: semicolon-separated values in UTF-8.
//
// The file begins with comment lines that tell the table, where its facts come from and the day somebody
// checked them:
//     # table : complement_acte
//     # source : ...
//     # vérifié le : 2026-11-21
// Then come the titles of the columns, which are the keys of the table in TOML, and the rows. Lists and
// overseas increases are separated by blanks; an empty cell is a missing key. A line that begins with # is
// passed over. Every fault is reported with its file and line, and reading goes on.
#ifndef NOXLUX_COMPILATEUR_LECTEUR_TABLEAU_H
#define NOXLUX_COMPILATEUR_LECTEUR_TABLEAU_H

#include <string_view>

#include "compilateur/modele.h"
#include "compilateur/rapport.h"

namespace noxlux::compilateur {

void lireTableau(std::string_view texte, std::uint32_t source, Modele& modele, Rapport& rapport);

// The day written YYYY-MM-DD; nothing when it is none.
std::optional<DateBrute> lireJour(std::string_view texte);

}  // namespace noxlux::compilateur

#endif
