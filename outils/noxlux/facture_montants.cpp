// The amounts of an invoice: what was billed, and what the check computed on its way.
#include <cmath>

#include "noxlux/facture_montants.h"

namespace noxlux::commande {

namespace {

// The base to the cent; with all its digits, as far as bases are compared by them, where rounding would hide
// that a billed one exceeds it.
Json baseMontree(const Json& ligne, const Json& calculee) {
  if (calculee.is_null()) {
    return calculee;
  }
  constexpr double PRECISION_COMPARAISON = 100000;
  const double exacte = std::round(calculee.get<double>() * PRECISION_COMPARAISON) / PRECISION_COMPARAISON;
  const double arrondie = Montant(calculee.get<double>()).arrondir(2);
  for (const char* champ : {"baseRemboursement", "baseTheoriqueAMO"}) {
    const double facturee = ligne.value(champ, 0.0);
    if (facturee > exacte && Montant(facturee) == Montant(arrondie)) {
      return exacte;
    }
  }
  return arrondie;
}

}  // namespace

Json detaillerLignes(const Json& facture, const Explication& explication, bool etapes) {
  Json lignes = Json::array();
  std::size_t rang = 0;  // among all lines, those of travel included
  for (const Json& ligne : facture["lignes"]) {
    const Json calcules = explication.montants(rang);
    Json detail = {{"numero", ligne.value("numero", Json(rang + 1))},
                   {"acte", ligne.value("acte", ligne.value("prestation", ""))},
                   {"prixFacture", ligne.value("prixUnitaire", Json())},
                   {"prixCalcule", calcules["prixCalcule"]},
                   {"baseFacturee", ligne.value("baseRemboursement", Json())},
                   {"baseCalculee", baseMontree(ligne, calcules["baseCalculee"])}};
    if (etapes) {
      detail["etapes"] = explication.etapes(rang);
    }
    lignes.push_back(std::move(detail));
    rang += 1 + ligne.value("deplacements", Json::array()).size();
  }
  return lignes;
}

}  // namespace noxlux::commande
