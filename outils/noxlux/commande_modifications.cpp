// noxlux modifications: the local changes that are saved beside a reference.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>

#include "noxlux/bibliotheque.h"
#include "noxlux/commandes.h"
#include "noxlux/dates.h"
#include "noxlux/ouverture.h"
#include "noxlux/presentation.h"
#include "noxlux/sortie.h"
#include "noxlux/tableau.h"
#include "referent/referentiel.h"
#include "tables/catalogue.h"

namespace noxlux::commande {

namespace {

using namespace noxlux::compilateur;

struct OptionsModifications {
  OptionsReference reference;
  bool json = false;
};

struct Sujet {
  unsigned table;
  const char* nom;
};

// What each table of a modification file changes.
constexpr Sujet SUJETS[] = {
    {ModificationPrixUnitaire::IDENTIFIANT, "prix unitaire"},
    {ModificationSupplementCharge::IDENTIFIANT, "supplément de charges"},
    {ModificationMajorationDOM::IDENTIFIANT, "majoration d'outre-mer"},
    {ModificationRegleAssociationNonPrevue::IDENTIFIANT, "association non prévue"},
    {ModificationSeuil::IDENTIFIANT, "seuil d'exonération"},
    {ModificationModificateur::IDENTIFIANT, "valeur de modificateur"},
    {ModificationNonConventionne::IDENTIFIANT, "praticien non conventionné"},
    {ModificationCodeRegroupement::IDENTIFIANT, "code de regroupement d'un acte"},
    {ModificationNouveauCodeRegroupement::IDENTIFIANT, "nouveau code de regroupement"}};

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
  for (const Sujet& sujet : SUJETS) {
    const TableLue* const table = fichier.chercherTable(sujet.table);
    if (table == nullptr) {
      continue;
    }
    CodeRetour cr = NOX_CR_OK;
    const JsonOrdonne lignes = listerTable(fichier, *table, cr);
    if (cr != NOX_CR_OK) {
      throw ErreurUsage(chemin.string() + " : la table « " + sujet.nom +
                        " » est illisible : " + signification(cr));
    }
    for (const JsonOrdonne& ligne : lignes) {
      liste.push_back(changement(sujet.nom, ligne));
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
  if (!fs::exists(chemin, erreur)) {
    if (!options.json) {
      std::cout << chemin.string() << " : aucun fichier de modifications, rien n'est modifié.\n";
      return;
    }
  } else {
    const auto fichier = ouvrirReference(chemin.string(), NOM_FICHIER_MODIFICATION);
    if (!fichier->estModification()) {
      throw ErreurUsage(chemin.string() + " : ce n'est pas un fichier de modifications");
    }
    if (!fichier->anomalie().empty()) {
      throw ErreurUsage(chemin.string() + " : " + fichier->anomalie());
    }
    resultat = lire(chemin, *fichier);
  }
  if (options.json) {
    ecrireJsonCamel(resultat);
  } else {
    afficherModifications(resultat);
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
