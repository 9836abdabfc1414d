// The sheet of an act: everything the reference tells of it at a date, as one value, and its two renderings.
#ifndef NOXLUX_COMMANDE_FICHE_H
#define NOXLUX_COMMANDE_FICHE_H

#include <ostream>
#include <stdexcept>
#include <string>

#include "noxlux/catalogue.h"
#include "noxlux/zone_json.h"

namespace noxlux::commande {

// What was asked for is not in the reference; the sentence proposes what resembles it.
class Introuvable : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// {"code", "date", "libelle", "libelleCourt", "chemin": [...], "activites": [{"code", "phases": [...]}]...};
// what the reference does not tell at the date is null or empty. `date` is AAAAMMJJ. Throws Introuvable.
Json ficheActe(const std::string& code, const std::string& date, const Catalogue& catalogue);

void afficherFiche(const Json& fiche, std::ostream& sortie);
// A page of its own.
std::string pageFiche(const Json& fiche);

}  // namespace noxlux::commande

#endif
