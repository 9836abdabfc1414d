// The amounts of an invoice as the library computes them, asked of the reference and of the single rules.
#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <tuple>

#include "noxlux/dates.h"
#include "noxlux/facture_json.h"

namespace noxlux::commande {

Json controlerZone(std::string entree);
Json detaillerLignes(const Json& facture);

namespace {

constexpr unsigned GROUPE_ENTETE_TARIF = 3400;
constexpr unsigned GROUPE_ACTE_PHASE = 3012;
constexpr unsigned GROUPE_CAISSE_ACTE_PHASE = 3013;
constexpr unsigned GROUPE_LIGNE_BASE = 3420;

constexpr const char* NON_CONVENTIONNE = "0";
constexpr const char* CONVENTIONNE = "1";
// The errors that say that a billed base exceeds the computed one, and a base that exceeds all.
constexpr const char* BASES_DEPASSEES[] = {"R880", "R880A"};
constexpr double BASE_DEMESUREE = 9999999.99;

double auCentime(double montant) { return std::round(montant * 100) / 100; }
// What doubles are exact to, and bases compared by.
double auMilliemeDeCentime(double montant) { return std::round(montant * 100000) / 100000; }

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

// Asks the reference for one number at a day; null without an answer, its code in `code`.
Json demanderNombre(const char* identifiant, const std::string& jour, std::string zone, const char* champ,
                    unsigned short& code) {
  const std::string chiffres = dateCompacte(jour).value_or("");
  const Reponse reponse = appeler([&](void** sortie, unsigned int* taille) {
    return NOX_ConsulterDonnee(identifiant, chiffres.c_str(), zone.data(),
                               static_cast<unsigned int>(zone.size()), sortie, taille);
  });
  code = reponse.code;
  return code == NOX_CR_OK ? decoderZone(reponse.zone, true)[0]["champs"][champ] : Json();
}

// --- Bases ---

// The lines that are priced together: of one date, activity and professional. What is asked of the library is
// the zone of their group; where they stand in the invoice, their ranks.
struct Association {
  std::vector<Json> lignes;
  std::vector<std::size_t> rangs;
};
using Associations = std::map<std::tuple<std::string, std::string, std::string>, Association>;

std::string enteteTarif(const std::string& convention) {
  const Json entete = {{"conventionPS", convention}, {"caissePS", ""}};
  return encoderGroupe(DescriptionZones::socle().groupeEntree(GROUPE_ENTETE_TARIF), entete, RACINE);
}

// {base, base outside flat fees} of each line at prices `facteur` times those billed; none when the rule
// could not be applied.
std::vector<std::pair<double, double>> bases(const std::string& convention, const Association& association,
                                             double facteur) {
  std::string zone = enteteTarif(convention);
  for (Json ligne : association.lignes) {
    ligne["prixUnitaire"] = auCentime(ligne.value("prixUnitaire", 0.0) * facteur);
    zone += grouperDe(GROUPE_LIGNE_BASE, {&ligne});
  }
  const Reponse reponse = appeler([&](void** sortie, unsigned int* taille) {
    return NOX_AppliquerRegle("C_Base", zone.data(), static_cast<unsigned int>(zone.size()), sortie, taille);
  });
  std::vector<std::pair<double, double>> lues;
  if (reponse.code == NOX_CR_OK) {
    for (const Json& groupe : decoderZone(reponse.zone, true)) {
      lues.emplace_back(groupe["champs"].value("baseRemboursement", 0.0),
                        groupe["champs"].value("baseHorsForfait", 0.0));
    }
  }
  return lues;
}

// The base of a professional who is not under agreement, from that of one who is.
double reduire(double base, const std::string& jour) {
  unsigned short code = NOX_CR_OK;
  const Json forfait = demanderNombre("TB12_1", jour, "", "montant", code);
  if (code == NOX_CR_OK && forfait.get<double>() > 0) {
    return std::min(base, forfait.get<double>());
  }
  const Json taux = demanderNombre("TB12_2", jour, "", "coefficient", code);
  return code == NOX_CR_OK ? base * taux.get<double>() : base;
}

// The computed base before any rounding. C_Base rounds to the cent: asked for prices a thousand times those
// billed it tells three digits more, and flat amounts stay what they are.
double baseExacte(const std::string& convention, const Association& association, std::size_t rang,
                  double arrondie) {
  constexpr double FACTEUR = 1000;
  constexpr double PRIX_MAX = BASE_DEMESUREE / FACTEUR;
  const bool tient = std::all_of(association.lignes.begin(), association.lignes.end(), [](const Json& ligne) {
    return ligne.value("prixUnitaire", 0.0) <= PRIX_MAX;
  });
  if (!tient) {
    return arrondie;
  }
  const auto multipliees = bases(CONVENTIONNE, association, FACTEUR);
  if (rang >= multipliees.size()) {
    return arrondie;
  }
  const auto& [base, horsForfait] = multipliees[rang];
  const double exacte = horsForfait / FACTEUR + (base - horsForfait);
  return auMilliemeDeCentime(convention == NON_CONVENTIONNE
                                 ? reduire(exacte, association.lignes[rang]["date"].get<std::string>())
                                 : exacte);
}

// The computed base to the cent; with all its digits where rounding would hide that a billed one exceeds it.
double baseMontree(const std::string& convention, const Association& association, std::size_t rang,
                   double arrondie) {
  const Json& ligne = association.lignes[rang];
  for (const char* champ : {"baseRemboursement", "baseTheoriqueAMO"}) {
    const double facturee = ligne.value(champ, 0.0);
    if (facturee > 0 && auCentime(facturee) == arrondie) {
      const double exacte = baseExacte(convention, association, rang, arrondie);
      return exacte < facturee ? exacte : arrondie;
    }
  }
  return arrondie;
}

// The numbers of the lines whose base the check computes. It says so itself: those on which a base beyond all
// is refused.
std::set<Json> lignesDontLaBaseEstCalculee(Json facture) {
  for (Json& ligne : facture["lignes"]) {
    ligne.erase("outrepassees");
    ligne["baseRemboursement"] = BASE_DEMESUREE;
  }
  std::set<Json> numeros;
  const Json resultat = controlerZone(zoneDeFacture(facture));
  for (const Json& erreur : resultat["erreurs"]) {
    if (std::find(std::begin(BASES_DEPASSEES), std::end(BASES_DEPASSEES), erreur["reference"]) !=
        std::end(BASES_DEPASSEES)) {
      numeros.insert(erreur["lignes"].begin(), erreur["lignes"].end());
    }
  }
  return numeros;
}

// What C_Base is asked about a line.
Json ligneDeBase(const Json& ligne, const Json& executant) {
  Json valeurs = ligne;
  std::size_t rang = 0;
  for (const Json& modificateur : ligne.value("modificateurs", Json::array())) {
    valeurs["modificateur" + std::to_string(++rang)] = modificateur;
  }
  for (const auto& [nom, valeur] : executant.items()) {
    if (!valeurs.contains(nom)) {
      valeurs[nom] = valeur;
    }
  }
  return valeurs;
}

}  // namespace

Json prixAFacturer(const Json& ligne, const std::string& caisse) {
  const std::string jour = ligne["date"].get<std::string>();
  unsigned short code = NOX_CR_OK;
  Json prix = demanderNombre("CCAM_37", jour, grouperDe(GROUPE_ACTE_PHASE, {&ligne}), "montant", code);
  if (code != NOX_CR_OK || caisse.empty()) {
    return prix;
  }
  const Json cle = {{"caisse", caisse}};
  const Json majoration = demanderNombre(
      "CCAM_47a", jour, grouperDe(GROUPE_CAISSE_ACTE_PHASE, {&cle, &ligne}), "coefficient", code);
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

Json detaillerLignes(const Json& facture) {
  const Json professionnel =
      facture.contains("remplacant") ? facture["remplacant"] : facture["professionnel"];
  const std::string convention = facture["professionnel"].value("conventionPS", "");
  const std::string caisse = facture.value("caissePS", "");
  Json lignes = Json::array();
  Associations associations;
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
      detail["prixCalcule"] = prixAFacturer(ligne, caisse);
      const Json executant = ligne.value("executant", professionnel);
      Association& association = associations[{ligne.value("date", ""), ligne.value("activite", ""),
                                               executant.value("numeroPS", "")}];
      association.lignes.push_back(ligneDeBase(ligne, executant));
      association.lignes.back()["numero"] = detail["numero"];
      association.rangs.push_back(lignes.size());
    }
    lignes.push_back(std::move(detail));
  }
  const std::set<Json> calculees =
      associations.empty() ? std::set<Json>() : lignesDontLaBaseEstCalculee(facture);
  for (const auto& [cle, association] : associations) {
    const auto lues = bases(convention, association, 1);
    for (std::size_t i = 0; i < lues.size() && i < association.rangs.size(); ++i) {
      Json& detail = lignes[association.rangs[i]];
      if (calculees.contains(detail["numero"])) {
        detail["baseCalculee"] = baseMontree(convention, association, i, lues[i].first);
      }
    }
  }
  return lignes;
}

}  // namespace noxlux::commande
