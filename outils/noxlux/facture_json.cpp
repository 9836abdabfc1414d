#include "noxlux/facture_json.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>

#include "noxlux/dates.h"
#include "noxlux/erreurs.h"
#include "noxlux/noxlux.h"

namespace noxlux::commande {

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
    oterNuls(facture);
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

Json controlerFacture(const std::string& zone) {
  std::string entree = zone;
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

namespace {

constexpr unsigned GROUPE_ENTETE_TARIF = 3400;
constexpr unsigned GROUPE_ACTE_PHASE = 3012;
constexpr unsigned GROUPE_CAISSE_ACTE_PHASE = 3013;
constexpr unsigned GROUPE_LIGNE_BASE = 3420;

// Asks one rule, and gives the groups of its answer; none when it could not be applied.
Json appliquer(const char* regle, std::string zone) {
  const Reponse reponse = appeler([&](void** sortie, unsigned int* taille) {
    return NOX_AppliquerRegle(regle, zone.data(), static_cast<unsigned int>(zone.size()), sortie, taille);
  });
  return reponse.code == NOX_CR_OK ? decoderZone(reponse.zone, true) : Json::array();
}

// The fields of a group, picked by name among the sources given, the first that has one winning.
std::string grouperDe(unsigned numero, std::initializer_list<const Json*> sources) {
  Json valeurs = Json::object();
  for (const ChampDecrit& champ : DescriptionZones::socle().groupeEntree(numero).champs) {
    for (const Json* source : sources) {
      if (source->contains(champ.nom)) {
        valeurs[champ.nom] = (*source)[champ.nom];
        break;
      }
    }
  }
  return encoderGroupe(DescriptionZones::socle().groupeEntree(numero), valeurs, RACINE);
}

// Asks the reference for one number about a line; null without an answer, its code in `code`.
Json consulter(const char* identifiant, const Json& ligne, std::string zone, const char* champ,
               unsigned short& code) {
  const std::string chiffres = dateCompacte(ligne["date"].get<std::string>()).value_or("");
  const Reponse reponse = appeler([&](void** sortie, unsigned int* taille) {
    return NOX_ConsulterDonnee(identifiant, chiffres.c_str(), zone.data(),
                               static_cast<unsigned int>(zone.size()), sortie, taille);
  });
  code = reponse.code;
  return code == NOX_CR_OK ? decoderZone(reponse.zone, true)[0]["champs"][champ] : Json();
}

// The price that the check compares with: the act's with the increase of the fund, to the nearest cent.
// C_Pu does not tell it: an amount in a zone is cut to the cent below.
Json prixCalcule(const Json& ligne, const std::string& caisse) {
  unsigned short code = NOX_CR_OK;
  Json prix = consulter("CCAM_37", ligne, grouperDe(GROUPE_ACTE_PHASE, {&ligne}), "montant", code);
  if (code != NOX_CR_OK || caisse.empty()) {
    return prix;
  }
  const Json cle = {{"caisse", caisse}};
  const Json majoration =
      consulter("CCAM_47a", ligne, grouperDe(GROUPE_CAISSE_ACTE_PHASE, {&cle, &ligne}), "coefficient", code);
  if (code == NOX_CR_CAISSE_NON_DOM) {
    return prix;
  }
  if (code != NOX_CR_OK) {
    return Json();
  }
  const long long milliemes =
      std::llround(prix.get<double>() * 100) * std::llround(majoration.get<double>() * 1000);
  return static_cast<double>((milliemes + 500) / 1000) / 100;
}

}  // namespace

Json detaillerLignes(const Json& facture) {
  const Json professionnel =
      facture.contains("remplacant") ? facture["remplacant"] : facture["professionnel"];
  const Json entete = {{"conventionPS", facture["professionnel"].value("conventionPS", "")},
                       {"caissePS", facture.value("caissePS", "")}};
  const std::string zoneEnteteTarif =
      encoderGroupe(DescriptionZones::socle().groupeEntree(GROUPE_ENTETE_TARIF), entete, RACINE);
  Json lignes = Json::array();
  // Lines of one date, activity and professional are priced together.
  std::map<std::tuple<std::string, std::string, std::string>,
           std::pair<std::string, std::vector<std::size_t>>>
      bases;
  std::size_t compte = 0;
  for (const Json& ligne : facture["lignes"]) {
    Json detail = {{"numero", ligne.value("numero", Json(++compte))},
                   {"acte", ligne.value("acte", ligne.value("prestation", ""))},
                   {"prixFacture", ligne.value("prixUnitaire", Json())},
                   {"prixCalcule", nullptr},
                   {"baseFacturee", ligne.value("baseRemboursement", Json())},
                   {"baseCalculee", nullptr}};
    compte += ligne.value("deplacements", Json::array()).size();
    if (ligne.contains("acte")) {
      Json valeurs = ligne;
      valeurs["numero"] = detail["numero"];
      if (ligne.contains("modificateurs")) {
        for (std::size_t i = 0; i < ligne["modificateurs"].size(); ++i) {
          valeurs["modificateur" + std::to_string(i + 1)] = ligne["modificateurs"][i];
        }
      }
      const Json executant = ligne.value("executant", professionnel);
      detail["prixCalcule"] = prixCalcule(ligne, facture.value("caissePS", ""));
      auto& [zone, rangs] =
          bases[{ligne.value("date", ""), ligne.value("activite", ""), executant.value("numeroPS", "")}];
      zone += grouperDe(GROUPE_LIGNE_BASE, {&valeurs, &executant});
      rangs.push_back(lignes.size());
    }
    lignes.push_back(std::move(detail));
  }
  for (auto& [cle, association] : bases) {
    const Json reponse = appliquer("C_Base", zoneEnteteTarif + association.first);
    for (std::size_t i = 0; i < reponse.size() && i < association.second.size(); ++i) {
      if (reponse[i]["champs"].contains("baseRemboursement")) {
        lignes[association.second[i]]["baseCalculee"] = reponse[i]["champs"]["baseRemboursement"];
      }
    }
  }
  return lignes;
}

}  // namespace noxlux::commande
