// noxlux lister: a reference file read back into text.
#include <algorithm>
#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "compilateur/listage.h"
#include "compilateur/transcodage.h"
#include "fichier/lecteur.h"
#include "noxlux/commandes.h"
#include "noxlux/erreurs.h"
#include "noxlux/ouverture.h"
#include "noxlux/sortie.h"
#include "noxlux/tableau.h"
#include "referent/referentiel.h"

namespace noxlux::commande {

namespace {

using namespace noxlux::compilateur;

struct OptionsLister {
  std::string chemin;
  std::string sujet;
  bool json = false;
};

void afficherFichier(const JsonOrdonne& fichier) {
  for (const auto& [nom, valeur] : fichier["entete"].items()) {
    std::cout << nom << std::string(30 - largeur(nom), ' ') << cellule(valeur) << '\n';
  }
  std::cout << '\n';
  Tableau tableau({"table", "nom", "lignes", "octets", "état"});
  for (const JsonOrdonne& table : fichier["tables"]) {
    tableau.ajouter({cellule(table["table"]), cellule(table["nom"]), cellule(table["lignes"]),
                     cellule(table["octets"]), cellule(table["état"])});
  }
  tableau.afficher(std::cout);
}

// "ageMinimum" gives "age minimum".
std::string motsDe(const std::string& cle) {
  std::string mots;
  for (const char c : cle) {
    const bool capitale = c >= 'A' && c <= 'Z';
    mots += capitale ? std::string{' ', static_cast<char>(c - 'A' + 'a')} : std::string(1, c);
  }
  return mots;
}

void afficherTable(const JsonOrdonne& lignes) {
  if (lignes.empty()) {
    std::cout << "(aucune ligne)\n";
    return;
  }
  std::vector<std::string> titres{"n°"};
  for (const auto& [nom, valeur] : lignes[0].items()) {
    titres.push_back(motsDe(nom));
  }
  Tableau tableau(std::move(titres));
  std::size_t numero = 0;
  for (const JsonOrdonne& ligne : lignes) {
    std::vector<std::string> cellules{std::to_string(numero++)};
    for (const JsonOrdonne& valeur : ligne) {
      cellules.push_back(cellule(valeur));
    }
    tableau.ajouter(std::move(cellules));
  }
  tableau.afficher(std::cout);
}

// One field a line; lists of records are blocks set further to the right.
void afficherObjet(const JsonOrdonne& objet, std::size_t retrait) {
  const std::string marge(retrait, ' ');
  for (const auto& [cle, valeur] : objet.items()) {
    const std::string nom = motsDe(cle);
    if (valeur.is_array() && !valeur.empty() && valeur[0].is_object()) {
      for (const JsonOrdonne& membre : valeur) {
        std::cout << marge << nom << '\n';
        afficherObjet(membre, retrait + 2);
      }
    } else if (!cellule(valeur).empty()) {
      const std::size_t gauche = retrait + largeur(nom) + 3;
      const std::size_t droite = std::max<std::size_t>(largeurTerminal(), gauche + 30) - gauche;
      std::string avant = marge + nom + " : ";
      for (const std::string& ligne : plier(cellule(valeur), droite)) {
        std::cout << avant << ligne << '\n';
        avant.assign(gauche, ' ');
      }
    }
  }
}

int listerSujet(const FichierReference& fichier, const OptionsLister& options) {
  JsonOrdonne resultat;
  const unsigned numero = numeroDeTable(options.sujet);
  CodeRetour cr = NOX_CR_OK;
  if (numero != NOMBRE_TABLES) {
    const TableLue* const table = fichier.chercherTable(numero);
    if (table == nullptr) {
      throw ErreurUsage("le fichier ne contient pas la table " + options.sujet);
    }
    resultat = listerTable(fichier, *table, cr);
  } else {
    if (options.sujet.size() > 13 || !Lecteur::controlerCode(options.sujet)) {
      throw ErreurUsage("« " + options.sujet + " » n'est ni une table ni un code d'acte");
    }
    NiveauActe acte;
    cr = fichier.lireActe(CodeActe(options.sujet), acte);
    resultat = cr == NOX_CR_OK ? listerActe(acte) : JsonOrdonne();
  }
  if (cr == NOX_CR_CODE_INCONNU) {
    throw ErreurUsage("l'acte « " + options.sujet + " » n'est pas dans le fichier");
  }
  if (cr != NOX_CR_OK) {
    throw ErreurUsage("« " + options.sujet + " » est illisible : " + signification(cr));
  }
  if (options.json) {
    ecrireJson(resultat);
  } else if (resultat.is_array()) {
    afficherTable(resultat);
  } else {
    afficherObjet(resultat, 0);
  }
  return STATUT_REPONDU;
}

int listerReference(const OptionsLister& options) {
  const auto fichier = ouvrirReference(options.chemin, NOM_FICHIER_REFERENCE);
  if (!options.sujet.empty()) {
    return listerSujet(*fichier, options);
  }
  const JsonOrdonne resultat = listerFichier(*fichier);
  if (options.json) {
    ecrireJsonCamel(resultat);
  } else {
    afficherFichier(resultat);
  }
  if (!fichier->anomalie().empty()) {
    throw ErreurUsage(options.chemin + " : " + fichier->anomalie());
  }
  return STATUT_REPONDU;
}

}  // namespace

void enregistrerLister(CLI::App& application, int& statut) {
  const auto options = std::make_shared<OptionsLister>();
  CLI::App* const commande = application.add_subcommand(
      "lister", "Relit un tablebin.nox ou un modifref.nox : entête, tables, actes");
  commande->add_option("fichier", options->chemin, "Fichier, ou répertoire de tablebin.nox")
      ->required()
      ->type_name("FICHIER");
  commande
      ->add_option("sujet", options->sujet,
                   "Numéro ou nom d'une table, ou code d'un acte ; rien : l'entête et la liste des tables")
      ->type_name("TABLE|ACTE");
  commande->add_flag("--json", options->json, "réponse en JSON, pour un programme");
  commande->callback([options, &statut] { statut = listerReference(*options); });
}

}  // namespace noxlux::commande
