// The keyword tables: synonyms (029), indexed acts (030), keywords (058).
#ifndef NOXLUX_COMPILATEUR_MOTS_CLES_H
#define NOXLUX_COMPILATEUR_MOTS_CLES_H

#include <string>
#include <string_view>
#include <vector>

#include "compilateur/modele.h"
#include "compilateur/tables_reference.h"

namespace noxlux::compilateur {

// Where a keyword of an act stands: the bits of a search frame.
enum CadreRecherche : std::uint32_t {
  CADRE_LIBELLE_COURT = 1,
  CADRE_LIBELLE_LONG = 2,
  CADRE_NOTES = 4,
  CADRE_CONDITIONS = 8,
  CADRE_MENUS = 16
};

// The words of a text's canonical form.
std::vector<std::string> motsDe(std::string_view texte);

void genererMotsCles(const Modele& modele, TablesReference& tables, Rapport& rapport);

}  // namespace noxlux::compilateur

#endif
