// Files as the library makes and reads them: never inherited by the programs that the host starts.
#ifndef NOXLUX_BASICS_FICHIERS_H
#define NOXLUX_BASICS_FICHIERS_H

#include <sys/types.h>

#include <cstdio>
#include <string>

namespace noxlux {

constexpr mode_t DROITS_FICHIER_NEUF = 0644;

// Makes a file anew, open for writing and reading: what stood at its name goes, and a link is not followed.
// Null when the system refuses, errno telling why.
std::FILE* creerFichier(const std::string& nom, mode_t droits = DROITS_FICHIER_NEUF);

// The whole of a file. False when it cannot be opened; what cannot be read of it is left out.
bool lireFichier(const std::string& nom, std::string& contenu);

// The name that a name leads to, link by link; the last one may be that of a file that is not there yet.
std::string suivreLiens(std::string nom);
// The directory part of a name, its '/' included; "" for the current directory.
std::string repertoireDe(const std::string& nom);

}  // namespace noxlux

#endif
