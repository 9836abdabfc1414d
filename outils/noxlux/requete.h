// Requests made of field=value arguments, and answers shown to a person.
#ifndef NOXLUX_COMMANDE_REQUETE_H
#define NOXLUX_COMMANDE_REQUETE_H

#include <ostream>
#include <string>
#include <vector>

#include "noxlux/description_zones.h"
#include "noxlux/zone_json.h"

namespace noxlux::commande {

// A function of a family by its identifier. Throws ErreurUsage, with the identifiers that resemble it.
const FonctionDecrite& trouverFonction(const std::string& famille, const std::string& identifiant);

// The input zone of a function whose groups each come once, from arguments "champ=valeur". Throws ErreurUsage
// on a field that is unknown, missing or refused.
std::string construireZone(const FonctionDecrite& fonction, const std::vector<std::string>& arguments);

// Those of the arguments that are fields of a function.
std::vector<std::string> argumentsPour(const FonctionDecrite& fonction,
                                       const std::vector<std::string>& arguments);

// The names of the fields of a function.
std::vector<std::string> champsDe(const FonctionDecrite& fonction);

// Codes are typed in any case.
std::string enCapitales(std::string code);

// A date given as AAAA-MM-JJ, JJ/MM/AAAA or AAAAMMJJ, as the library wants it; today when empty. Throws
// ErreurUsage.
std::string dateReference(const std::string& texte);

// The groups of an answer: one group as "field: value" lines, several of one kind as a table.
void afficherGroupes(const Json& groupes, std::ostream& sortie);

// A value of an answer as text.
std::string texteValeur(const Json& valeur, char type);

}  // namespace noxlux::commande

#endif
