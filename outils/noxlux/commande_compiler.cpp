// noxlux compiler: sources to tablebin.nox.
#include <algorithm>
#include <chrono>
#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "compilateur/bilan_import.h"
#include "compilateur/compilation.h"
#include "compilateur/fusion.h"
#include "compilateur/import_dbf.h"
#include "compilateur/import_listing.h"
#include "compilateur/lecteur_toml.h"
#include "noxlux/commandes.h"
#include "noxlux/erreurs.h"
#include "noxlux/progression.h"

namespace noxlux::commande {

namespace {

namespace fs = std::filesystem;
using namespace noxlux::compilateur;

struct OptionsCompiler {
  std::vector<std::string> sources;
  std::vector<std::string> complement;
  std::string socle;
  std::string sortie;
  std::string listing;
  std::string baseDbf;
  std::optional<unsigned> grille;  // nothing: the source's own default
  bool strict = false;
  bool verbeux = false;

  bool importe() const { return !listing.empty() || !baseDbf.empty(); }
};

// A directory of sources installed beside the command, or in the tree it was built in.
fs::path sourcesLivrees(const std::string& nom) {
  std::error_code erreur;
  const fs::path executable = fs::read_symlink("/proc/self/exe", erreur);
  for (fs::path dossier = executable.parent_path(); !erreur; dossier = dossier.parent_path()) {
    for (const char* relatif : {"share/noxlux", "reference"}) {
      std::error_code absent;
      if (fs::is_directory(dossier / relatif / nom, absent)) {
        return dossier / relatif / nom;
      }
    }
    if (dossier == dossier.root_path()) {
      break;
    }
  }
  throw ErreurUsage("le répertoire « " + nom +
                    " » n'a pas été trouvé auprès de la commande : le donner par --" +
                    (nom == "socle" ? "socle" : "complement"));
}

// What the example reference tells besides its acts.
std::vector<std::string> complementParDefaut() {
  std::vector<std::string> fichiers;
  for (const fs::directory_entry& entree : fs::directory_iterator(sourcesLivrees("exemple"))) {
    const std::string nom = entree.path().filename().string();
    if (entree.path().extension() == ".toml" && !nom.starts_with("actes")) {
      fichiers.push_back(entree.path().string());
    }
  }
  std::sort(fichiers.begin(), fichiers.end());
  return fichiers;
}

// The socle, then the sources; what completes an import comes by default from the example reference.
std::vector<std::string> cheminsToml(const OptionsCompiler& options) {
  std::vector<std::string> chemins{options.socle.empty() ? sourcesLivrees("socle").string() : options.socle};
  std::vector<std::string> autres = options.sources;
  autres.insert(autres.end(), options.complement.begin(), options.complement.end());
  if (options.importe() && options.complement.empty()) {
    const std::vector<std::string> livres = complementParDefaut();
    chemins.insert(chemins.end(), livres.begin(), livres.end());
  }
  chemins.insert(chemins.end(), autres.begin(), autres.end());
  return chemins;
}

// The tariff rule that an associated act is paid whole by.
char reglePleine(const Modele& modele) {
  for (const CodeACoefficients& regle : modele.reglesTarifaires) {
    for (const CoefficientDate& historique : regle.historiques) {
      if (historique.coefficient == 1.0 && historique.fin.estNulle()) {
        return regle.code;
      }
    }
  }
  throw ErreurUsage("aucune règle tarifaire du complément n'a aujourd'hui 1 pour coefficient");
}

void importer(const OptionsCompiler& options, const Avancement& avancement, Modele& modele,
              BilanImport& bilan, Rapport& rapport) {
  const std::uint32_t premiereSource = rapport.nombreSources();
  Modele importe;
  if (!options.baseDbf.empty()) {
    if (!importerBaseDbf(options.baseDbf, options.grille, avancement, importe, bilan, rapport)) {
      return;
    }
    fusionnerBase(std::move(importe), modele, bilan);
  } else {
    const ColonnePrix colonne = options.grille == 2U ? ColonnePrix::HORS_SECTEUR_1 : ColonnePrix::SECTEUR_1;
    if (!importerListing(options.listing, colonne, reglePleine(modele), importe, bilan, rapport)) {
      return;
    }
    fusionnerListing(std::move(importe), modele);
  }
  avancement("contrôle de ce qui a été lu", 0, 1);
  epurer(modele, premiereSource, rapport, bilan);
}

int refuser(const Rapport& rapport) {
  for (const std::string& ligne : rapport.lignes()) {
    std::cerr << ligne << '\n';
  }
  const std::size_t nombre = rapport.nombreFautes();
  std::cerr << nombre << (nombre == 1 ? " faute" : " fautes") << " : aucun fichier n'est produit.\n";
  return STATUT_MAUVAIS_USAGE;
}

// Dropped records are no failure, unless the person wants them to be.
int refuserEcarts(const BilanImport& bilan, const Rapport& rapport) {
  for (const std::string& ligne : bilan.lignes(rapport, true)) {
    std::cerr << ligne << '\n';
  }
  std::cerr << bilan.nombreEcartes()
            << " écartés, et --strict n'en admet aucun : aucun fichier n'est produit.\n";
  return STATUT_MAUVAIS_USAGE;
}

int compilerReference(const OptionsCompiler& options) {
  const auto debut = std::chrono::steady_clock::now();
  Modele modele;
  Rapport rapport;
  BilanImport bilanImport;
  Bilan bilan;
  {
    Progression progression;
    const Avancement avancement = [&](std::string_view etape, std::size_t fait, std::size_t total) {
      progression.montrer(etape, fait, total);
    };
    avancement("lecture des sources", 0, 1);
    lireSourcesToml(cheminsToml(options), modele, rapport);
    if (options.importe() && rapport.estVide()) {
      importer(options, avancement, modele, bilanImport, rapport);
      if (options.strict && bilanImport.nombreEcartes() != 0) {
        return refuserEcarts(bilanImport, rapport);
      }
    }
    if (rapport.estVide()) {
      compiler(modele, options.sortie, avancement, rapport, bilan);
    }
  }
  if (!rapport.estVide()) {
    return refuser(rapport);
  }
  for (const std::string& ligne : bilanImport.lignes(rapport, options.verbeux)) {
    std::cout << ligne << '\n';
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
  const auto options = std::make_shared<OptionsCompiler>();
  CLI::App* const commande =
      application.add_subcommand("compiler", "Compile une nomenclature en un référentiel tablebin.nox");
  CLI::Option* const sources =
      commande->add_option("sources", options->sources, "Fichiers .toml, ou répertoires qui en contiennent")
          ->type_name("SOURCES");
  CLI::Option* const listing =
      commande->add_option("--listing", options->listing, "La liste publique de la CCAM, en CSV")
          ->type_name("FICHIER");
  commande->add_option("--base-dbf", options->baseDbf, "Les tables dBASE de la base publique de la CCAM")
      ->type_name("REPERTOIRE")
      ->excludes(listing);
  commande
      ->add_option(
          "--complement", options->complement,
          "Sources .toml de ce que l'import ne dit pas (par défaut celles de l'exemple, sans ses actes)")
      ->type_name("SOURCES");
  commande
      ->add_option("--grille", options->grille,
                   "Prix : colonne de la liste, 1 secteur 1 et OPTAM (par défaut) ou 2 les autres ; grille "
                   "tarifaire de la base (par défaut son prix de base)")
      ->type_name("N");
  commande->add_flag("--strict", options->strict,
                     "Refuse de compiler quand l'import écarte quoi que ce soit");
  commande->add_flag("--verbeux", options->verbeux, "Dit chaque enregistrement écarté ou ajusté");
  commande->add_option("-o,--sortie", options->sortie, "Répertoire où écrire tablebin.nox")
      ->required()
      ->type_name("REPERTOIRE");
  commande->add_option("--socle", options->socle, "Sources du socle (par défaut celles de la commande)")
      ->type_name("REPERTOIRE");
  commande->callback([options, sources, &statut] {
    if (!options->importe() && sources->empty()) {
      throw ErreurUsage("il faut des sources .toml, --listing ou --base-dbf");
    }
    if (options->grille && !options->importe()) {
      throw ErreurUsage("--grille choisit les prix de --listing ou de --base-dbf");
    }
    if (options->grille && !options->listing.empty() && *options->grille != 1 && *options->grille != 2) {
      throw ErreurUsage("une liste a deux colonnes de prix : --grille 1 ou --grille 2");
    }
    statut = compilerReference(*options);
  });
}

}  // namespace noxlux::commande
