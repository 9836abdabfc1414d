#include "noxlux/facture_json.h"

#include <algorithm>

#include "noxlux/erreurs.h"
#include "noxlux/noxlux.h"

namespace noxlux::commande {

Json controlerZone(std::string entree);
Json detaillerLignes(const Json& facture);

namespace {

// A member that is null is one that was not given. A list keeps its nulls: they are no elements of it.
void oterNuls(Json& valeur) {
  if (valeur.is_object()) {
    for (auto membre = valeur.begin(); membre != valeur.end();) {
      membre = membre->is_null() ? valeur.erase(membre) : std::next(membre);
    }
  }
  if (valeur.is_structured()) {
    for (Json& element : valeur) {
      oterNuls(element);
    }
  }
}

// How deep the lists and objects of a text nest; of a text that is no JSON, at least as deep as a reader
// goes.
int profondeur(const std::string& texte) {
  int ouverts = 0;
  int maximum = 0;
  bool dansTexte = false;
  for (std::size_t i = 0; i < texte.size(); ++i) {
    const char c = texte[i];
    if (dansTexte) {
      i += c == '\\' ? 1U : 0U;
      dansTexte = c != '"';
    } else if (c == '"') {
      dansTexte = true;
    } else if (c == '[' || c == '{') {
      maximum = std::max(maximum, ++ouverts);
    } else if (c == ']' || c == '}') {
      --ouverts;
    }
  }
  return maximum;
}

}  // namespace

Json lireFacture(const std::string& texte, const std::string& source) {
  // What an invoice needs, with room; deeper values would only exhaust the stack.
  constexpr int PROFONDEUR_MAX = 32;
  if (profondeur(texte) > PROFONDEUR_MAX) {
    throw ErreurUsage(source + " : JSON trop imbriqué");
  }
  try {
    Json facture = Json::parse(texte);
    // What the office carries along is not read.
    Json libre = facture.is_object() && facture.contains("libre") ? facture["libre"] : Json();
    oterNuls(facture);
    if (!libre.is_null()) {
      facture["libre"] = std::move(libre);
    }
    return facture;
  } catch (const Json::parse_error& faute) {
    throw ErreurUsage(source + " : JSON mal formé, octet " + std::to_string(faute.byte));
  }
}

namespace {

constexpr unsigned GROUPE_REPONSE_FORCAGE = 2000;
constexpr unsigned GROUPE_REPONSE_ERREUR = 3520;

Json erreurLisible(Json& champs) {
  Json erreur = Json::object();
  for (const auto& [nom, champ] : {std::pair{"reference", "reference"},
                                   {"niveau", "niveau"},
                                   {"indicateurForcage", "indicateurForcage"},
                                   {"libelle", "libelle"},
                                   {"lignes", "prestation"}}) {
    erreur[nom] = std::move(champs[champ]);
  }
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

}  // namespace

Json controlerZone(std::string entree) {
  const Reponse reponse = appeler([&](void** sortie, unsigned int* taille) {
    return NOX_ControleComplet(entree.data(), static_cast<unsigned int>(entree.size()), sortie, taille);
  });
  const bool controlee = reponse.code == NOX_CR_OK || reponse.code == NOX_CR_CONTROLE_NIVEAU_1 ||
                         reponse.code == NOX_CR_CONTROLE_NIVEAU_2;
  if (!controlee) {
    throw ErreurBibliotheque("NOX_ControleComplet", reponse.code);
  }
  Json resultat = {{"code", hexadecimal(reponse.code)},
                   {"verdict", verdict(reponse.code)},
                   {"erreurs", Json::array()},
                   {"forcages", Json::array()}};
  Json groupes = decoderZone(reponse.zone, true);
  for (Json& element : groupes) {
    if (element["groupe"] == GROUPE_REPONSE_ERREUR) {
      resultat["erreurs"].push_back(erreurLisible(element["champs"]));
    } else if (element["groupe"] == GROUPE_REPONSE_FORCAGE) {
      resultat["forcages"].push_back(std::move(element["champs"]));
    }
  }
  return resultat;
}

void reporterSiennes(const Json& facture, Json& reponse) {
  for (const char* sienne : {"reference", "libre"}) {
    if (facture.is_object() && facture.contains(sienne)) {
      reponse[sienne] = facture[sienne];
    }
  }
}

Json controlerFacture(const Json& facture, Detail detail) {
  Json resultat = controlerZone(zoneDeFacture(facture));
  if (detail != Detail::VERDICT) {
    resultat["lignes"] = detaillerLignes(facture);
  }
  reporterSiennes(facture, resultat);
  return resultat;
}

}  // namespace noxlux::commande
