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
#include "compilateur/complement.h"
#include "compilateur/fondements.h"
#include "compilateur/fusion.h"
#include "compilateur/import_dbf.h"
#include "compilateur/lecteur_toml.h"
#include "compilateur/listings.h"
#include "noxlux/bibliotheque.h"
#include "noxlux/commandes.h"
#include "noxlux/erreurs.h"
#include "noxlux/mises_de_cote.h"
#include "noxlux/profils.h"
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
  std::vector<std::string> listings;
  std::vector<std::string> historiques;
  std::string baseDbf;
  std::optional<unsigned> grille;  // nothing: the source's own default
  std::string profil;
  bool tousProfils = false;
  bool sansAnteriorite = false;
  bool strict = false;
  bool verbeux = false;

  bool importe() const { return !listings.empty() || !baseDbf.empty(); }
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

// The socle, then the sources; what completes an import is by default the public complement.
std::vector<std::string> cheminsToml(const OptionsCompiler& options) {
  std::vector<std::string> chemins{options.socle.empty() ? sourcesLivrees("socle").string() : options.socle};
  std::vector<std::string> autres = options.sources;
  autres.insert(autres.end(), options.complement.begin(), options.complement.end());
  if (options.importe() && options.complement.empty()) {
    chemins.push_back(sourcesLivrees("public").string());
  }
  chemins.insert(chemins.end(), autres.begin(), autres.end());
  return chemins;
}

// The tariff rule that an associated act is paid whole by.
char reglePleine(const Modele& modele) {
  for (const CodeRegleTarifaire& regle : modele.reglesTarifaires) {
    for (const auto& historique : regle.historiques) {
      if (historique.coefficient == 1.0 && historique.fin.estNulle()) {
        return regle.code;
      }
    }
  }
  throw ErreurUsage("aucune règle tarifaire du complément n'a aujourd'hui 1 pour coefficient");
}

// The tariff grid asked for: by number, or as the ordinary one of a profile.
std::optional<unsigned> grilleDemandee(const OptionsCompiler& options, const Modele& modele) {
  if (options.profil.empty()) {
    return options.grille;
  }
  const auto trouvee = std::find_if(modele.grilles.begin(), modele.grilles.end(),
                                    [&](const GrilleTarifaire& g) { return g.profil == options.profil; });
  if (trouvee == modele.grilles.end()) {
    throw ErreurUsage("le profil « " + options.profil +
                      " » n'existe pas ; ceux du complément : " + enumererProfils(modele));
  }
  return trouvee->numero;
}

void importer(const OptionsCompiler& options, const Avancement& avancement, Modele& modele,
              BilanImport& bilan, Rapport& rapport) {
  const std::uint32_t premiereSource = rapport.nombreSources();
  const std::optional<unsigned> grille = grilleDemandee(options, modele);
  if (!options.baseDbf.empty()) {
    Modele importe;
    if (!importerBaseDbf(options.baseDbf, grille, avancement, importe, bilan, rapport)) {
      return;
    }
    fusionnerBase(std::move(importe), modele, bilan);
  } else {
    const DemandeListings demande{options.listings, options.historiques, grille.value_or(1),
                                  !options.sansAnteriorite};
    verifierGrillePublique(demande.grille, modele);
    if (!importerListings(demande, reglePleine(modele), modele, bilan, rapport)) {
      return;
    }
    nommerGrille(demande.grille, modele);
  }
  direFondements(modele, bilan);
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

// What becomes of the local changes that lie where a reference has been written.
void direModifications(const std::string& sortie) {
  const fs::path dossier = fs::path(sortie) / "";
  std::error_code erreur;
  if (!fs::exists(dossier / "modifref.nox", erreur)) {
    return;
  }
  const std::string misDeCote = direMiseDeCote((dossier / "tablebin.nox").string(), dossier.string());
  OptionsReference reference;
  reference.reference = sortie;
  std::string refus = misDeCote.empty() ? direRefus(reference) : misDeCote;
  refus = refus.empty() ? direActesRefuses(reference) : refus;
  std::cout << "à savoir : "
            << (refus.empty() ? (dossier / "modifref.nox").string() +
                                    " est là : ses changements restent, sur cette référence"
                              : refus + " ; « noxlux reporter » les refait")
            << '\n';
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
    rassembler(modele, bilanImport);
    direFins(modele, aujourdhui(), bilanImport);
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
  direModifications(options.sortie);
  return STATUT_REPONDU;
}

// One reference a profile, each in a directory of its own, and the table that tells who takes which.
int compilerProfils(OptionsCompiler options) {
  Modele complement;
  Rapport rapport;
  lireSourcesToml(cheminsToml(options), complement, rapport);
  if (!rapport.estVide()) {
    return refuser(rapport);
  }
  const std::string racine = options.sortie;
  int statut = STATUT_REPONDU;
  for (const GrilleTarifaire& grille : complement.grilles) {
    if (!grille.profil.empty() && statut == STATUT_REPONDU) {
      options.profil = grille.profil;
      options.sortie = (fs::path(racine) / grille.profil).string();
      std::cout << "Profil " << grille.profil << '\n';
      statut = compilerReference(options);
    }
  }
  if (statut == STATUT_REPONDU) {
    ecrireProfils(racine, complement);
  }
  return statut;
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
      commande
          ->add_option("--listing", options->listings,
                       "La liste publique de la CCAM, en CSV ; plusieurs fois pour des listes successives")
          ->type_name("FICHIER");
  commande
      ->add_option("--historique", options->historiques,
                   "Prix datés qui complètent la liste : acte;activite;phase;effet;prix")
      ->type_name("FICHIER")
      ->needs(listing);
  commande->add_flag("--sans-anteriorite", options->sansAnteriorite,
                     "Ne tient pas la première liste pour vraie avant sa date");
  commande->add_option("--base-dbf", options->baseDbf, "Les tables dBASE de la base publique de la CCAM")
      ->type_name("REPERTOIRE")
      ->excludes(listing);
  commande
      ->add_option("--complement", options->complement,
                   "Sources de ce que l'import ne dit pas (par défaut le complément public livré)")
      ->type_name("SOURCES");
  CLI::Option* const grille =
      commande
          ->add_option(
              "--grille", options->grille,
              "Grille tarifaire publique : 1 secteur 1 et OPTAM (par défaut) et 2 les autres sont les "
              "colonnes de la liste ; de la base, son prix de base par défaut")
          ->type_name("N");
  CLI::Option* const profil =
      commande
          ->add_option("--profil", options->profil,
                       "Grille du secteur 1 d'un profil : chirurgien, anesthesiste, generaliste, pediatre, "
                       "sage-femme, chirurgien-dentiste, autre-medecin")
          ->type_name("PROFIL")
          ->excludes(grille);
  commande
      ->add_flag("--tous-profils", options->tousProfils,
                 "Compile une référence par profil, dans un répertoire de son nom")
      ->excludes(grille)
      ->excludes(profil);
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
    if ((options->grille || options->tousProfils || !options->profil.empty()) && !options->importe()) {
      throw ErreurUsage(
          "--grille, --profil et --tous-profils choisissent les prix de --listing ou de --base-dbf");
    }
    statut = options->tousProfils ? compilerProfils(*options) : compilerReference(*options);
  });
}

}  // namespace noxlux::commande
