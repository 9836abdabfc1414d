// Invoices in readable JSON, and their full check.
//
// An invoice names its fields as the socle names those of the zone; docs/facture.md is its schema. Everything
// a person may have got wrong is told with the JSON path of the fault.
#ifndef NOXLUX_COMMANDE_FACTURE_JSON_H
#define NOXLUX_COMMANDE_FACTURE_JSON_H

#include <string>
#include <vector>

#include "noxlux/bibliotheque.h"
#include "noxlux/zone_json.h"

namespace noxlux::commande {

// An invoice out of its text; `source` names the text in messages. Throws ErreurUsage when it is no JSON.
Json lireFacture(const std::string& texte, const std::string& source);

// The input zone of an invoice. Throws ErreurUsage with the JSON path of the first fault.
std::string zoneDeFacture(const Json& facture);

// The answer to one invoice: {"code", "verdict", "erreurs": [...], "forcages": [...]}. Throws
// ErreurBibliotheque when the invoice was not checked to its end.
Json controlerFacture(const std::string& zone);

// The price that the check compares with: the act's, with the increase of the fund, to the nearest cent. Null
// where the reference has none. `ligne` has a date, an act, an activity and a phase. C_Pu does not tell it:
// an amount in a zone is cut to the cent below.
Json prixAFacturer(const Json& ligne, const std::string& caisse);

// What was billed and what the library computes, one object per line: {"numero", "acte", "prixFacture",
// "prixCalcule", "baseFacturee", "baseCalculee"}; a computed amount is null where the check computes none.
Json detaillerLignes(const Json& facture);

}  // namespace noxlux::commande

#endif
