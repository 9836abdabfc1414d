// Reference files named on the command line.
#ifndef NOXLUX_COMMANDE_OUVERTURE_H
#define NOXLUX_COMMANDE_OUVERTURE_H

#include <memory>
#include <string>

#include "compilateur/fichier_reference.h"
#include "compilateur/listage.h"

namespace noxlux::commande {

// A file, or the file of that name in a directory. Throws ErreurUsage when it cannot be read; says it on
// standard error when its CRC is wrong.
std::unique_ptr<compilateur::FichierReference> ouvrirReference(const std::string& chemin, const char* nom);

// A value in one cell.
std::string cellule(const compilateur::JsonOrdonne& valeur);

}  // namespace noxlux::commande

#endif
