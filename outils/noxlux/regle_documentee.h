// What the documents and the catalogue tell of a rule.
#ifndef NOXLUX_COMMANDE_REGLE_DOCUMENTEE_H
#define NOXLUX_COMMANDE_REGLE_DOCUMENTEE_H

#include <string>
#include <vector>

#include "noxlux/zone_json.h"

namespace noxlux::commande {

// The rules of a name, reference (R550) or identifier (PROD550), in any case: [{"reference", "identifiant",
// "libelle", "detail", "niveau", "indicateurForcage", "texte"}]; the text is their section of docs/rules.md.
// Throws ErreurUsage, with the names that resemble it.
Json regleDocumentee(const std::string& nom);
// The references of errors.
std::vector<std::string> nomsDeRegles();

}  // namespace noxlux::commande

#endif
