// noxlux comparer: what changed from a compiled reference to another.
#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "compilateur/comparaison.h"
#include "noxlux/commandes.h"
#include "noxlux/erreurs.h"
#include "noxlux/ouverture.h"
#include "noxlux/sortie.h"
#include "noxlux/tableau.h"
#include "referent/referentiel.h"

namespace noxlux::commande {

namespace {

using namespace noxlux::compilateur;

struct OptionsComparer {
  std::string avant;
  std::string apres;
  bool json = false;
};

// One table a kind of change, under its name and number; its columns are the fields of its records.
void afficherEcarts(const JsonOrdonne& resultat) {
  bool changement = false;
  for (const auto& [nom, liste] : resultat.items()) {
    if (!liste.is_array() || liste.empty()) {
      continue;
    }
    std::vector<std::string> titres;
    JsonOrdonne champs = JsonOrdonne::object();
    for (const JsonOrdonne& objet : liste) {
      champs.update(objet);
    }
    // Where a change is comes before what it is.
    for (const char* premier : {"acte", "activité", "phase", "modificateur"}) {
      if (champs.erase(premier) != 0) {
        titres.emplace_back(premier);
      }
    }
    for (const auto& [champ, valeur] : champs.items()) {
      titres.push_back(champ);
    }
    Tableau tableau(titres);
    for (const JsonOrdonne& objet : liste) {
      std::vector<std::string> cellules;
      for (const std::string& champ : titres) {
        cellules.push_back(objet.contains(champ) ? cellule(objet[champ]) : "");
      }
      tableau.ajouter(std::move(cellules));
    }
    std::cout << (changement ? "\n" : "") << nom << " : " << liste.size() << "\n";
    tableau.afficher(std::cout);
    changement = true;
  }
  if (!changement) {
    std::cout << "Aucune différence.\n";
  }
}

int comparerReference(const OptionsComparer& options) {
  const auto avant = ouvrirReference(options.avant, NOM_FICHIER_REFERENCE);
  const auto apres = ouvrirReference(options.apres, NOM_FICHIER_REFERENCE);
  for (const auto* fichier : {&avant, &apres}) {
    const std::string& chemin = fichier == &avant ? options.avant : options.apres;
    if ((*fichier)->estModification() || !(*fichier)->anomalie().empty()) {
      throw ErreurUsage(chemin + " : " +
                        ((*fichier)->estModification() ? "ce fichier ne contient que des modifications"
                                                       : (*fichier)->anomalie()));
    }
  }
  CodeRetour cr = NOX_CR_OK;
  const JsonOrdonne resultat = comparer(*avant, *apres, cr);
  if (cr != NOX_CR_OK) {
    throw ErreurUsage("un acte ou une table est illisible : " + signification(cr));
  }
  if (options.json) {
    ecrireJsonCamel(resultat);
  } else {
    afficherEcarts(resultat);
  }
  return STATUT_REPONDU;
}

}  // namespace

void enregistrerComparer(CLI::App& application, int& statut) {
  const auto options = std::make_shared<OptionsComparer>();
  CLI::App* const commande = application.add_subcommand(
      "comparer", "Dit ce qui change d'un référentiel à un autre : actes, prix, modificateurs, libellés");
  commande->add_option("avant", options->avant, "Le premier tablebin.nox, ou son répertoire")
      ->required()
      ->type_name("FICHIER");
  commande->add_option("apres", options->apres, "Le second")->required()->type_name("FICHIER");
  commande->add_flag("--json", options->json, "réponse en JSON, pour un programme");
  commande->callback([options, &statut] { statut = comparerReference(*options); });
}

}  // namespace noxlux::commande
