#include "noxlux/simulation.h"

#include <cmath>
#include <set>
#include <sstream>

#include "noxlux/bibliotheque.h"
#include "noxlux/facture_json.h"
#include "noxlux/presentation.h"
#include "noxlux/requete.h"
#include "noxlux/tableau.h"

namespace noxlux::commande {

// --- Changes ---

ChangementSimule lireChangement(const std::string& texte, const std::string& effet) {
  ChangementSimule changement{"", {}, effet};
  std::istringstream mots(texte);
  mots >> changement.identifiant;
  for (std::string mot; mots >> mot;) {
    changement.champs.push_back(mot);
  }
  if (changement.identifiant.empty()) {
    throw ErreurUsage("--changement : attendu « CCAM_37 acte=HHFA001 activite=1 phase=0 montant=190,00 »");
  }
  return changement;
}

namespace {

std::string enArgument(const Json& valeur, const std::string& chemin) {
  if (valeur.is_string()) {
    return valeur.get<std::string>();
  }
  if (!valeur.is_number()) {
    throw ErreurUsage(chemin + " : un texte ou un nombre est attendu");
  }
  return valeur.dump();
}

}  // namespace

std::vector<ChangementSimule> lireChangements(const std::string& texte, const std::string& source,
                                              const std::string& effet) {
  const Json liste = Json::parse(texte, nullptr, false);
  if (!liste.is_array()) {
    throw ErreurUsage(source + " : une liste de changements en JSON est attendue");
  }
  std::vector<ChangementSimule> changements;
  for (std::size_t i = 0; i < liste.size(); ++i) {
    const std::string chemin = source + " : $[" + std::to_string(i) + "]";
    const Json& element = liste[i];
    const bool complet = element.is_object() && element.contains("identifiant") &&
                         element["identifiant"].is_string() && element.contains("champs") &&
                         element["champs"].is_object();
    if (!complet) {
      throw ErreurUsage(chemin + " : attendu {\"identifiant\", \"effet\", \"champs\": {...}}");
    }
    ChangementSimule changement{element["identifiant"].get<std::string>(), {}, effet};
    for (const auto& [nom, valeur] : element.items()) {
      if (nom == "effet") {
        changement.effet = dateReference(enArgument(valeur, chemin + ".effet"));
      } else if (nom != "identifiant" && nom != "champs") {
        throw ErreurUsage(chemin + "." + nom + " : champ inconnu");
      }
    }
    for (const auto& [nom, valeur] : element["champs"].items()) {
      changement.champs.push_back(nom + "=" + enArgument(valeur, chemin + ".champs." + nom));
    }
    changements.push_back(std::move(changement));
  }
  return changements;
}

void appliquer(const ChangementSimule& changement) {
  const FonctionDecrite& fonction = trouverFonction("modification", changement.identifiant);
  std::string zone = construireZone(fonction, changement.champs);
  const EcouteFaute ecoute;
  const unsigned short code = NOX_ModifierDonnee(fonction.nom.c_str(), changement.effet.c_str(), zone.data(),
                                                 static_cast<unsigned int>(zone.size()));
  if (code != NOX_CR_OK) {
    throw ErreurBibliotheque("NOX_ModifierDonnee", code, ecoute.cause(code));
  }
}

// --- Totals ---

namespace {

// The invoice with each act billed at the price of the reference.
Json auPrixDeLaReference(Json facture, const Json& lignes) {
  for (std::size_t i = 0; i < lignes.size(); ++i) {
    if (lignes[i]["prixCalcule"].is_number()) {
      facture["lignes"][i]["prixUnitaire"] = lignes[i]["prixCalcule"];
    }
  }
  return facture;
}

}  // namespace

void Totaux::compter(const Json& facture) {
  const Json telle = controlerFacture(facture);
  ++verdicts_[telle["verdict"].get<std::string>()];
  for (const Json& erreur : telle["erreurs"]) {
    ++regles_[erreur["reference"].get<std::string>()];
  }
  const Json tarifee = controlerFacture(auPrixDeLaReference(facture, telle["lignes"]));
  for (const Json& ligne : tarifee["lignes"]) {
    if (!ligne["prixCalcule"].is_number()) {
      continue;
    }
    ParActe& acte = actes_[ligne["acte"].get<std::string>()];
    ++acte.lignes;
    acte.prix += ligne["prixCalcule"].get<double>();
    acte.base += ligne["baseCalculee"].is_number() ? ligne["baseCalculee"].get<double>() : 0.0;
  }
}

namespace {

double auCentime(double montant) { return std::round(montant * 100) / 100; }

// The value of a key; nothing of one that is not there.
template <class M>
typename M::mapped_type valeurDe(const M& valeurs, const typename M::key_type& cle) {
  const auto trouvee = valeurs.find(cle);
  return trouvee == valeurs.end() ? typename M::mapped_type{} : trouvee->second;
}

template <class M>
std::set<std::string> clesDe(const M& gauche, const M& droite) {
  std::set<std::string> cles;
  for (const M* valeurs : {&gauche, &droite}) {
    for (const auto& element : *valeurs) {
      cles.insert(element.first);
    }
  }
  return cles;
}

}  // namespace

Json Simulation::comparer(const Totaux& avant, const Totaux& apres) {
  const auto totaliser = [](const Totaux& totaux) {
    double prix = 0;
    double base = 0;
    std::size_t erreurs = 0;
    for (const auto& [acte, montants] : totaux.actes_) {
      prix += montants.prix;
      base += montants.base;
    }
    for (const auto& [regle, nombre] : totaux.regles_) {
      erreurs += nombre;
    }
    return Json{{"prix", auCentime(prix)},
                {"bases", auCentime(base)},
                {"acceptees", valeurDe(totaux.verdicts_, "acceptee")},
                {"aOutrepasser", valeurDe(totaux.verdicts_, "a_outrepasser")},
                {"refusees", valeurDe(totaux.verdicts_, "refusee")},
                {"erreurs", erreurs}};
  };
  std::size_t factures = 0;
  for (const auto& [verdict, nombre] : avant.verdicts_) {
    factures += nombre;
  }
  Json actes = Json::array();
  for (const std::string& acte : clesDe(avant.actes_, apres.actes_)) {
    const Totaux::ParActe a = valeurDe(avant.actes_, acte);
    const Totaux::ParActe b = valeurDe(apres.actes_, acte);
    if (auCentime(a.prix) != auCentime(b.prix) || auCentime(a.base) != auCentime(b.base)) {
      actes.push_back({{"acte", acte},
                       {"lignes", b.lignes},
                       {"prixAvant", auCentime(a.prix)},
                       {"prixApres", auCentime(b.prix)},
                       {"baseAvant", auCentime(a.base)},
                       {"baseApres", auCentime(b.base)}});
    }
  }
  Json regles = Json::array();
  for (const std::string& regle : clesDe(avant.regles_, apres.regles_)) {
    const std::size_t a = valeurDe(avant.regles_, regle);
    const std::size_t b = valeurDe(apres.regles_, regle);
    if (a != b) {
      regles.push_back({{"regle", regle}, {"erreursAvant", a}, {"erreursApres", b}});
    }
  }
  return {{"factures", factures},
          {"avant", totaliser(avant)},
          {"apres", totaliser(apres)},
          {"parActe", std::move(actes)},
          {"parRegle", std::move(regles)}};
}

// --- For a person ---

namespace {

std::string ecartEnEuros(const Json& avant, const Json& apres) {
  const double ecart = apres.get<double>() - avant.get<double>();
  return (ecart > 0 ? "+" : "") + euros(auCentime(ecart));
}

}  // namespace

void afficherSimulation(const Json& resultat, std::ostream& sortie) {
  const Json& avant = resultat["avant"];
  const Json& apres = resultat["apres"];
  Tableau totaux({resultat["factures"].dump() + " factures", "avant", "après", "écart"});
  for (const auto& [cle, titre] : {std::pair{"prix", "prix de la référence"}, {"bases", "bases"}}) {
    totaux.ajouter(
        {titre, eurosOuTiret(avant[cle]), eurosOuTiret(apres[cle]), ecartEnEuros(avant[cle], apres[cle])});
  }
  for (const auto& [cle, titre] : {std::pair{"acceptees", "factures acceptées"},
                                   {"aOutrepasser", "factures à outrepasser"},
                                   {"refusees", "factures refusées"},
                                   {"erreurs", "erreurs"}}) {
    const long long ecart = apres[cle].get<long long>() - avant[cle].get<long long>();
    totaux.ajouter(
        {titre, avant[cle].dump(), apres[cle].dump(), (ecart > 0 ? "+" : "") + std::to_string(ecart)});
  }
  totaux.afficher(sortie);
  if (!resultat["parActe"].empty()) {
    Tableau actes({"acte", "lignes", "bases avant", "bases après", "écart"});
    for (const Json& acte : resultat["parActe"]) {
      actes.ajouter({acte["acte"].get<std::string>(), acte["lignes"].dump(), eurosOuTiret(acte["baseAvant"]),
                     eurosOuTiret(acte["baseApres"]), ecartEnEuros(acte["baseAvant"], acte["baseApres"])});
    }
    sortie << '\n';
    actes.afficher(sortie);
  }
  if (!resultat["parRegle"].empty()) {
    Tableau regles({"règle", "erreurs avant", "erreurs après"});
    for (const Json& regle : resultat["parRegle"]) {
      regles.ajouter(
          {regle["regle"].get<std::string>(), regle["erreursAvant"].dump(), regle["erreursApres"].dump()});
    }
    sortie << '\n';
    regles.afficher(sortie);
  }
  sortie << "\nRien n'est sauvegardé.\n";
}

}  // namespace noxlux::commande
