// noxlux compiler: sources to tablebin.nox.
#include <chrono>
#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "compilateur/compilation.h"
#include "compilateur/lecteur_toml.h"
#include "noxlux/commandes.h"
#include "noxlux/erreurs.h"
#include "noxlux/progression.h"

namespace noxlux::commande {

namespace {

namespace fs = std::filesystem;
using namespace noxlux::compilateur;

struct Options {
  std::vector<std::string> sources;
  std::string socle;
  std::string sortie;
};

// Installed beside the command, or in the tree it was built in.
std::string socleParDefaut() {
  std::error_code erreur;
  const fs::path executable = fs::read_symlink("/proc/self/exe", erreur);
  for (fs::path dossier = executable.parent_path(); !erreur; dossier = dossier.parent_path()) {
    for (const char* relatif : {"share/noxlux/socle", "reference/socle"}) {
      std::error_code absent;
      if (fs::is_directory(dossier / relatif, absent)) {
        return (dossier / relatif).string();
      }
    }
    if (dossier == dossier.root_path()) {
      break;
    }
  }
  throw ErreurUsage("le socle n'a pas été trouvé auprès de la commande : le donner par --socle");
}

int refuser(const Rapport& rapport) {
  for (const std::string& ligne : rapport.lignes()) {
    std::cerr << ligne << '\n';
  }
  const std::size_t nombre = rapport.nombreFautes();
  std::cerr << nombre << (nombre == 1 ? " faute" : " fautes") << " : aucun fichier n'est produit.\n";
  return STATUT_MAUVAIS_USAGE;
}

int executer(const Options& options) {
  const auto debut = std::chrono::steady_clock::now();
  std::vector<std::string> chemins{options.socle.empty() ? socleParDefaut() : options.socle};
  chemins.insert(chemins.end(), options.sources.begin(), options.sources.end());
  Modele modele;
  Rapport rapport;
  Bilan bilan;
  {
    Progression progression;
    progression.montrer("lecture des sources", 0, 1);
    lireSourcesToml(chemins, modele, rapport);
    const Avancement avancement = [&](std::string_view etape, std::size_t fait, std::size_t total) {
      progression.montrer(etape, fait, total);
    };
    compiler(modele, options.sortie, avancement, rapport, bilan);
  }
  if (!rapport.estVide()) {
    return refuser(rapport);
  }
  const auto duree =
      std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - debut);
  std::cout << (fs::path(options.sortie) / "tablebin.nox").string() << " : " << bilan.actes << " actes, "
            << bilan.prix << " prix, " << bilan.menus << " menus, " << bilan.motsCles << " mots clés, "
            << bilan.regles << " règles, " << bilan.fonctions << " fonctions ; " << bilan.taille
            << " octets en " << duree.count() << " ms\n";
  return STATUT_REPONDU;
}

}  // namespace

void enregistrerCompiler(CLI::App& application, int& statut) {
  const auto options = std::make_shared<Options>();
  CLI::App* const commande =
      application.add_subcommand("compiler", "Compile des sources TOML en un référentiel tablebin.nox");
  commande->add_option("sources", options->sources, "Fichiers .toml, ou répertoires qui en contiennent")
      ->required()
      ->type_name("SOURCES");
  commande->add_option("-o,--sortie", options->sortie, "Répertoire où écrire tablebin.nox")
      ->required()
      ->type_name("REPERTOIRE");
  commande->add_option("--socle", options->socle, "Sources du socle (par défaut celles de la commande)")
      ->type_name("REPERTOIRE");
  commande->callback([options, &statut] { statut = executer(*options); });
}

}  // namespace noxlux::commande
