// The whole road from sources to tablebin.nox.
#ifndef NOXLUX_COMPILATEUR_COMPILATION_H
#define NOXLUX_COMPILATEUR_COMPILATION_H

#include <cstdint>
#include <string>
#include <vector>

#include "compilateur/ecriture.h"
#include "compilateur/modele.h"

namespace noxlux::compilateur {

// What a compilation produced.
struct Bilan {
  std::size_t actes = 0;
  std::size_t prix = 0;
  std::size_t menus = 0;
  std::size_t motsCles = 0;
  std::size_t regles = 0;
  std::size_t fonctions = 0;
  std::uint64_t taille = 0;  // bytes
};

// Checks the model and writes DIRECTORY/tablebin.nox. Nothing is written while there is a fault in the
// report.
bool compiler(const Modele& modele, const std::string& repertoire, const Avancement& avancement,
              Rapport& rapport, Bilan& bilan);

}  // namespace noxlux::compilateur

#endif
