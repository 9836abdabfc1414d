// Questions that the command itself asks the library, by name.
#ifndef NOXLUX_COMMANDE_DEMANDES_H
#define NOXLUX_COMMANDE_DEMANDES_H

#include <string>
#include <vector>

#include "noxlux/bibliotheque.h"
#include "noxlux/zone_json.h"

namespace noxlux::commande {

// What a consultation answered: its code, and the fields of each of its groups, codes without their padding.
struct Consultation {
  unsigned short code = 0;
  std::vector<Json> groupes;

  // A field of the first group that has it; null without an answer.
  Json champ(const char* nom) const;
};

// Asks one consultation; `champs` are those of its request ({"acte": "HHFA001"}), `date` is AAAAMMJJ. A field
// that the request does not have is left aside.
Consultation consulter(const char* identifiant, const Json& champs, const std::string& date);

// The codes of every act whose code begins so; none when there is none.
std::vector<std::string> actesCommencantPar(const std::string& debut);
// The codes of every act that a keyword, a synonym of it included, leads to.
std::vector<std::string> actesDuMotCle(const std::string& mot);

}  // namespace noxlux::commande

#endif
