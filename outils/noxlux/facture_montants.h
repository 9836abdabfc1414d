// What was billed and what the check computes, line by line.
#ifndef NOXLUX_COMMANDE_FACTURE_MONTANTS_H
#define NOXLUX_COMMANDE_FACTURE_MONTANTS_H

#include "noxlux/explication.h"
#include "noxlux/facture_json.h"

namespace noxlux::commande {

// Each line of an invoice: {"numero", "acte", "prixFacture", "prixCalcule", "baseFacturee", "baseCalculee"},
// and its "etapes" when they are asked for; a computed amount is null where the check computes none.
Json detaillerLignes(const Json& facture, const Explication& explication, bool etapes);

}  // namespace noxlux::commande

#endif
