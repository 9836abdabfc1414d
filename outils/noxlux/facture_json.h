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

// How much of a check is told: the verdict and its reasons; the amounts of each line too; the steps that led
// to them.
enum class Detail { VERDICT, MONTANTS, ETAPES };

// The answer to one invoice: {"code", "verdict", "erreurs": [{"reference", "niveau", "indicateurForcage",
// "libelle", "lignes", "regle", "detail", "donnees"}], "forcages": [...]}, and from
// Detail::MONTANTS on "lignes": [...]; what the office carries along ("reference", "libre") comes back.
// Throws ErreurUsage with the JSON path of a fault, and ErreurBibliotheque when the invoice was not checked
// to its end.
Json controlerFacture(const Json& facture, Detail detail = Detail::MONTANTS);

// Carries what is the office's own ("reference", "libre") to an answer.
void reporterSiennes(const Json& facture, Json& reponse);

}  // namespace noxlux::commande

#endif
