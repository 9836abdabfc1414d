// The full check of one invoice, and what is told of its answer.
#include <utility>

#include "noxlux/erreurs.h"
#include "noxlux/facture_json.h"
#include "noxlux/facture_montants.h"
#include "noxlux/noxlux.h"

namespace noxlux::commande {

namespace {

constexpr unsigned GROUPE_REPONSE_FORCAGE = 2000;
constexpr unsigned GROUPE_REPONSE_ERREUR = 3520;

// An error as it is told: what the zone says of it, and why the rule found it.
Json erreurLisible(Json& champs, const Json& raison) {
  Json erreur = Json::object();
  for (const auto& [nom, champ] : {std::pair{"reference", "reference"},
                                   {"niveau", "niveau"},
                                   {"indicateurForcage", "indicateurForcage"},
                                   {"libelle", "libelle"},
                                   {"lignes", "prestation"}}) {
    erreur[nom] = std::move(champs[champ]);
  }
  erreur.update(raison);
  return erreur;
}

const char* verdict(unsigned short code) {
  switch (code) {
    case NOX_CR_OK:
      return "acceptee";
    case NOX_CR_CONTROLE_NIVEAU_1:
      return "a_outrepasser";
    default:
      return "refusee";
  }
}

template <class E>
Reponse demanderControle(const std::string& zone, const E& ecoute) {
  std::string entree = zone;
  return appelerEnEcoutant(ecoute, [&](void** sortie, unsigned int* taille) {
    return NOX_ControleComplet(entree.data(), static_cast<unsigned int>(entree.size()), sortie, taille);
  });
}

// Nobody listens.
struct SansEcoute {
  static Json cause(unsigned short /*code*/) { return nullptr; }
};

Json reponseLisible(const Reponse& reponse, const Explication& explication) {
  const bool controlee = reponse.code == NOX_CR_OK || reponse.code == NOX_CR_CONTROLE_NIVEAU_1 ||
                         reponse.code == NOX_CR_CONTROLE_NIVEAU_2;
  if (!controlee) {
    throw ErreurBibliotheque("NOX_ControleComplet", reponse.code, reponse.cause);
  }
  Json resultat = {{"code", hexadecimal(reponse.code)},
                   {"verdict", verdict(reponse.code)},
                   {"erreurs", Json::array()},
                   {"forcages", Json::array()}};
  Json groupes = decoderZone(reponse.zone, true);
  for (Json& element : groupes) {
    if (element["groupe"] == GROUPE_REPONSE_ERREUR) {
      resultat["erreurs"].push_back(
          erreurLisible(element["champs"], explication.raisons().at(resultat["erreurs"].size())));
    } else if (element["groupe"] == GROUPE_REPONSE_FORCAGE) {
      resultat["forcages"].push_back(std::move(element["champs"]));
    }
  }
  return resultat;
}

}  // namespace

void reporterSiennes(const Json& facture, Json& reponse) {
  for (const char* sienne : {"reference", "libre"}) {
    if (facture.is_object() && facture.contains(sienne)) {
      reponse[sienne] = facture[sienne];
    }
  }
}

Json controlerFacture(const Json& facture, Detail detail) {
  const std::string zone = zoneDeFacture(facture);
  if (detail == Detail::VERDICT) {
    // Most invoices of a batch are accepted: they need no reasons.
    const Reponse reponse = demanderControle(zone, SansEcoute());
    if (reponse.code == NOX_CR_OK) {
      Json resultat = reponseLisible(reponse, Explication());
      reporterSiennes(facture, resultat);
      return resultat;
    }
  }
  const Explication explication;
  Json resultat = reponseLisible(demanderControle(zone, explication), explication);
  if (detail != Detail::VERDICT) {
    resultat["lignes"] = detaillerLignes(facture, explication, detail == Detail::ETAPES);
  }
  if (detail == Detail::ETAPES) {
    resultat["exoneration"] = explication.exoneration();
  }
  reporterSiennes(facture, resultat);
  return resultat;
}

}  // namespace noxlux::commande
