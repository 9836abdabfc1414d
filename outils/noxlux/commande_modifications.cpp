// noxlux modifications: the local changes that are saved beside a reference.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>

#include "noxlux/bibliotheque.h"
#include "noxlux/changements_sauves.h"
#include "noxlux/commandes.h"
#include "noxlux/dates.h"
#include "noxlux/mises_de_cote.h"
#include "noxlux/ouverture.h"
#include "noxlux/presentation.h"
#include "noxlux/sortie.h"
#include "noxlux/tableau.h"
#include "referent/entetes.h"

namespace noxlux::commande {

namespace {

using namespace noxlux::compilateur;

struct OptionsModifications {
  OptionsReference reference;
  bool json = false;
};

// Splits a line into where the change is, since when, and to which value.
JsonOrdonne changement(const char* sujet, JsonOrdonne ligne) {
  JsonOrdonne objet = {{"donnée", sujet}, {"depuis", ligne["effet"]}};
  ligne.erase("effet");
  objet.update(ligne);
  return objet;
}

JsonOrdonne lire(const std::filesystem::path& chemin, const FichierReference& fichier) {
  const JsonOrdonne listage = listerFichier(fichier);
  JsonOrdonne resultat = {{"fichier", chemin.string()}, {"entete", listage["entete"]}};
  JsonOrdonne& liste = resultat["modifications"] = JsonOrdonne::array();
  for (const TableChangements& sujet : tablesChangements()) {
    const TableLue* const table = fichier.chercherTable(sujet.table);
    if (table == nullptr) {
      continue;
    }
    CodeRetour cr = NOX_CR_OK;
    const JsonOrdonne lignes = listerTable(fichier, *table, cr);
    if (cr != NOX_CR_OK) {
      throw ErreurUsage(chemin.string() + " : la table « " + sujet.sujet +
                        " » est illisible : " + signification(cr));
    }
    for (const JsonOrdonne& ligne : lignes) {
      liste.push_back(changement(sujet.sujet, ligne));
    }
  }
  return resultat;
}

// The fields of a change besides what every change has, "field value" by "field value".
std::string detail(const JsonOrdonne& objet) {
  std::string texte;
  for (const auto& [champ, valeur] : objet.items()) {
    if (champ != "donnée" && champ != "depuis") {
      texte += (texte.empty() ? "" : ", ") + champ + " " + cellule(valeur);
    }
  }
  return texte;
}

void afficherModifications(const JsonOrdonne& resultat) {
  const std::string date = cellule(resultat["entete"]["date"]);
  std::cout << cellule(resultat["fichier"]) << ", enregistré le "
            << (date.size() == 8 ? dateFrancaise(dateLisible(date)) : date);
  const std::string commentaire = cellule(resultat["entete"]["commentaire"]);
  std::cout << (commentaire.empty() ? "" : " (" + commentaire + ")") << "\n";
  Tableau tableau({"depuis", "donnée", "valeur"});
  for (const JsonOrdonne& objet : resultat["modifications"]) {
    tableau.ajouter({cellule(objet["depuis"]), cellule(objet["donnée"]), detail(objet)});
  }
  if (tableau.estVide()) {
    std::cout << "Rien n'est modifié.\n";
  } else {
    tableau.afficher(std::cout);
  }
}

void listerModifications(const OptionsModifications& options) {
  namespace fs = std::filesystem;
  const fs::path repertoire = options.reference.repertoireModification();
  const fs::path chemin = repertoire / NOM_FICHIER_MODIFICATION;
  std::error_code erreur;
  if (!fs::is_directory(repertoire, erreur)) {
    throw ErreurUsage("pas de répertoire " + repertoire.string());
  }
  JsonOrdonne resultat = {{"fichier", nullptr}, {"modifications", JsonOrdonne::array()}};
  const bool present = fs::exists(chemin, erreur);
  if (present) {
    const auto fichier = ouvrirReference(chemin.string(), NOM_FICHIER_MODIFICATION);
    if (!fichier->estModification()) {
      throw ErreurUsage(chemin.string() + " : ce n'est pas un fichier de modifications");
    }
    if (!fichier->anomalie().empty()) {
      throw ErreurUsage(chemin.string() + " : " + fichier->anomalie());
    }
    resultat = lire(chemin, *fichier);
  }
  const std::string misDeCote = present ? direMiseDeCote(options.reference) : "";
  std::string refus = present ? direRefus(options.reference) : "";
  refus = present && refus.empty() ? direActesRefuses(options.reference) : refus;
  const std::vector<std::string> restes = direRestes(options.reference.repertoireModification());
  if (options.json) {
    resultat.update({{"misDeCote", !misDeCote.empty()}, {"refus", refus}, {"restes", restes}});
    ecrireJsonCamel(resultat);
    return;
  }
  if (present) {
    afficherModifications(resultat);
  } else {
    std::cout << chemin.string() << " : aucun fichier de modifications, rien n'est modifié.\n";
  }
  for (const std::string& phrase : {misDeCote, refus}) {
    std::cout << (phrase.empty() ? "" : "Sans effet : " + phrase + " ; « noxlux reporter » les refait.\n");
  }
  for (const std::string& reste : restes) {
    std::cout << reste << ".\n";
  }
}

}  // namespace

void enregistrerModifications(CLI::App& application) {
  const auto options = std::make_shared<OptionsModifications>();
  CLI::App* const commande = application.add_subcommand(
      "modifications", "Dit ce qui est modifié localement, depuis quand, par quel fichier");
  options->reference.declarer(*commande);
  commande->add_flag("--json", options->json, "réponse en JSON, pour un programme");
  commande->callback([options] { listerModifications(*options); });
}

}  // namespace noxlux::commande
