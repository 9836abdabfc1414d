// Fills a model from sources: TOML, and the tables of lecteur_tableau.h. Every fault is reported with its file and line, and reading goes on.
#ifndef NOXLUX_COMPILATEUR_LECTEUR_TOML_H
#define NOXLUX_COMPILATEUR_LECTEUR_TOML_H

#include <string>
#include <string_view>
#include <vector>

#include "compilateur/modele.h"
#include "compilateur/rapport.h"

namespace noxlux::compilateur {

// Adds what a text in TOML holds; `nom` is what faults call it.
void lireTexteToml(std::string_view texte, std::string nom, Modele& modele, Rapport& rapport);

// Adds what files hold; a directory stands for its *.toml and *.csv files in the order of their names. A file met twice
// is read once.
void lireSourcesToml(const std::vector<std::string>& chemins, Modele& modele, Rapport& rapport);

}  // namespace noxlux::compilateur

#endif
