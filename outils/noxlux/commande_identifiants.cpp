// noxlux identifiants, tables: the names of what can be asked.
#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "compilateur/listage.h"
#include "noxlux/bibliotheque.h"
#include "noxlux/commandes.h"
#include "noxlux/description_zones.h"
#include "noxlux/ouverture.h"
#include "noxlux/requete.h"
#include "noxlux/sortie.h"
#include "noxlux/tableau.h"

namespace noxlux::commande {

namespace {

// The families, by the command that asks each.
struct Famille {
  const char* famille;
  const char* commande;
};
constexpr Famille FAMILLES[] = {{"consultation", "consulter"},
                                {"modification", "modifier"},
                                {"annulation", "annuler"},
                                {"controle", "verifier"},
                                {"regle", "appliquer"}};

Json listerIdentifiants() {
  const DescriptionZones& socle = DescriptionZones::socle();
  Json liste = Json::array();
  for (const Famille& famille : FAMILLES) {
    for (const std::string& nom : socle.identifiants(famille.famille)) {
      const FonctionDecrite& fonction = *socle.fonction(famille.famille, nom);
      liste.push_back({{"commande", famille.commande},
                       {"identifiant", nom},
                       {"libelle", fonction.libelle},
                       {"champs", champsDe(fonction)}});
    }
  }
  return liste;
}

void afficherIdentifiants(const Json& liste) {
  for (const Famille& famille : FAMILLES) {
    Tableau tableau({"identifiant", "champs", "ce qu'il demande"});
    for (const Json& element : liste) {
      if (element["commande"] == famille.commande) {
        tableau.ajouter({element["identifiant"].get<std::string>(), texteValeur(element["champs"], 'T'),
                         element["libelle"].get<std::string>()});
      }
    }
    std::cout << (&famille == std::begin(FAMILLES) ? "" : "\n") << "noxlux " << famille.commande << "\n";
    tableau.afficher(std::cout);
  }
}

struct OptionsTables {
  OptionsReference reference;
  bool json = false;
};

void montrerTables(const OptionsTables& options) {
  const auto fichier = ouvrirReference(options.reference.fichierReference(), "tablebin.nox");
  const Json tables = compilateur::listerFichier(*fichier)["tables"];
  if (options.json) {
    ecrireJsonCamel(tables);
    return;
  }
  Tableau tableau({"table", "nom", "lignes"});
  for (const Json& table : tables) {
    tableau.ajouter({cellule(table["table"]), cellule(table["nom"]), cellule(table["lignes"])});
  }
  tableau.afficher(std::cout);
  std::cout << "\n« noxlux lister DIR TABLE » en montre une, par son numéro ou son nom.\n";
}

}  // namespace

void enregistrerIdentifiants(CLI::App& application) {
  auto json = std::make_shared<bool>(false);
  CLI::App* const commande = application.add_subcommand(
      "identifiants", "Ce qui peut être demandé : identifiants, champs, commandes");
  commande->add_flag("--json", *json, "réponse en JSON, pour un programme");
  commande->callback([json] {
    const Json liste = listerIdentifiants();
    if (*json) {
      ecrireJson(liste);
    } else {
      afficherIdentifiants(liste);
    }
  });
}

void enregistrerTables(CLI::App& application) {
  auto options = std::make_shared<OptionsTables>();
  CLI::App* const commande = application.add_subcommand("tables", "Les tables de la référence, par leur nom");
  options->reference.declarer(*commande);
  commande->add_flag("--json", options->json, "réponse en JSON, pour un programme");
  commande->callback([options] { montrerTables(*options); });
}

}  // namespace noxlux::commande
