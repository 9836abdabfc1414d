// Writes tablebin.nox. The file appears whole or not at all: it is written under another name, read back by
// the library's own loader, and only then takes its place.
#ifndef NOXLUX_COMPILATEUR_ECRITURE_H
#define NOXLUX_COMPILATEUR_ECRITURE_H

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "compilateur/modele.h"
#include "compilateur/tables_reference.h"

namespace noxlux::compilateur {

// Told what is being done and how far it is.
using Avancement = std::function<void(std::string_view etape, std::size_t fait, std::size_t total)>;

// Writes DIRECTORY/tablebin.nox, making the directory if need be; `taille` is the size of the file. Any
// failure is a fault of the report, and leaves what the directory held. REQUIRES: one header in the model;
// `tables` come from it.
bool ecrireReference(const Modele& modele, const TablesReference& tables, const std::string& repertoire,
                     const Avancement& avancement, Rapport& rapport, std::uint64_t& taille);

}  // namespace noxlux::compilateur

#endif
