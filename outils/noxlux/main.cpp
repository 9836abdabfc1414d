// The `noxlux` command.
#include <algorithm>
#include <cerrno>
#include <CLI/CLI.hpp>
#include <csignal>
#include <exception>
#include <filesystem>
#include <initializer_list>
#include <iostream>
#include <memory>
#include <new>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "compilateur/proches.h"
#include "compilateur/systeme.h"
#include "noxlux/commandes.h"
#include "noxlux/erreurs.h"
#include "noxlux/fiche.h"
#include "noxlux/noms_commandes.h"
#include "noxlux/noxlux.h"
#include "noxlux/sortie.h"
#include "noxlux/tableau.h"

namespace {

using namespace noxlux;
using namespace noxlux::commande;

constexpr std::size_t COLONNE_AIDE = 30;

// CLI11's own words, in French.
void franciser(CLI::App& application) {
  application.set_help_flag("-h,--help", "Affiche cette aide");
  const auto formatter = application.get_formatter();
  for (const auto& [anglais, francais] :
       std::initializer_list<std::pair<const char*, const char*>>{{"REQUIRED", "(obligatoire)"},
                                                                  {"OPTIONS", "OPTIONS"},
                                                                  {"Positionals", "Arguments"},
                                                                  {"POSITIONALS", "ARGUMENTS"},
                                                                  {"Options", "Options"},
                                                                  {"Usage", "Usage"},
                                                                  {"SUBCOMMAND", "COMMANDE"},
                                                                  {"SUBCOMMANDS", "COMMANDES"},
                                                                  {"Subcommands", "Commandes"},
                                                                  {"Excludes", "Sans"},
                                                                  {"Needs", "Avec"},
                                                                  {"Env", "Variable"},
                                                                  {"TEXT", "TEXTE"},
                                                                  {"UINT", "N"},
                                                                  {"INT", "N"}}) {
    formatter->label(anglais, francais);
  }
  formatter->column_width(COLONNE_AIDE);
}

// The command that was being read when the fault was met.
const CLI::App& commandeLue(const CLI::App& application) {
  const CLI::App* lue = &application;
  for (auto suite = lue->get_subcommands(); !suite.empty(); suite = lue->get_subcommands()) {
    lue = suite.front();
  }
  return *lue;
}

// What CLI11 says in English, in French.
std::string enFrancais(const CLI::App& application, const CLI::ParseError& erreur) {
  const std::string texte = erreur.what();
  const auto avant = [&](const char* marque) {
    return texte.substr(0, std::min(texte.find(marque), texte.size()));
  };
  const auto apres = [&](const char* marque) {
    const std::size_t ou = texte.rfind(marque);
    return ou == std::string::npos ? texte : texte.substr(ou + std::string_view(marque).size());
  };
  const CLI::App& commande = commandeLue(application);
  const std::vector<std::string> restes = commande.remaining();
  const bool sansCommande = texte.starts_with("A subcommand") && !restes.empty();
  if (sansCommande || dynamic_cast<const CLI::ExtrasError*>(&erreur) != nullptr) {
    const std::string quoi = restes.empty() ? apres(": ") : restes.front();
    if (quoi.starts_with("-")) {
      return "option inconnue : " + quoi + compilateur::vouliezVous(quoi, nomsDOptions(commande));
    }
    return (&commande == &application ? "commande inconnue : " : "argument inattendu : ") + quoi +
           compilateur::vouliezVous(quoi, nomsDeCommandes(commande));
  }
  if (dynamic_cast<const CLI::RequiredError*>(&erreur) != nullptr) {
    return texte.starts_with("A subcommand") ? "il faut une commande" : "il manque " + avant(" is required");
  }
  if (dynamic_cast<const CLI::ExcludesError*>(&erreur) != nullptr) {
    return avant(" excludes ") + " ne va pas avec " + apres(" excludes ");
  }
  if (dynamic_cast<const CLI::RequiresError*>(&erreur) != nullptr) {
    return avant(" requires ") + " ne va pas sans " + apres(" requires ");
  }
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&erreur) != nullptr) {
    return avant(":") + " : il manque une valeur, ou il y en a trop";
  }
  if (dynamic_cast<const CLI::ConversionError*>(&erreur) != nullptr) {
    return apres("Could not convert: ") + " : ce n'est pas une valeur possible";
  }
  return "ligne de commande incomprise (" + texte + ")";
}

// Help as CLI11 lays it out, its long lines folded under their column.
void afficherAide(const std::string& aide) {
  constexpr std::size_t LARGEUR = 80;
  std::istringstream lignes(aide);
  for (std::string ligne; std::getline(lignes, ligne);) {
    if (largeur(ligne) <= LARGEUR) {
      std::cout << ligne << '\n';
      continue;
    }
    // What stands before the column of descriptions is one byte a character.
    const bool colonne = ligne.size() > COLONNE_AIDE && ligne[COLONNE_AIDE - 1] == ' ';
    const std::size_t retrait = colonne ? COLONNE_AIDE : 2;
    std::string debut = colonne ? ligne.substr(0, COLONNE_AIDE) : std::string();
    for (const std::string& pli : plier(ligne.substr(debut.size()), LARGEUR - retrait)) {
      std::cout << debut << pli << '\n';
      debut.assign(retrait, ' ');
    }
  }
}

int erreurDeSyntaxe(const CLI::App& application, const CLI::ParseError& erreur) {
  if (dynamic_cast<const CLI::CallForHelp*>(&erreur) != nullptr) {
    afficherAide(application.help());
    return STATUT_REPONDU;
  }
  if (erreur.get_exit_code() == 0) {
    return application.exit(erreur);
  }
  const std::string nom = commandeLue(application).get_name();
  std::cerr << "noxlux : " << enFrancais(application, erreur) << "\nVoir « noxlux "
            << (nom == "noxlux" ? "" : nom + " ") << "--help ».\n";
  return STATUT_MAUVAIS_USAGE;
}

void afficherVersion() {
  std::cout << "noxlux " << NOXLUX_VERSION_TEXTE << " (" << sizeof(void*) * 8 << " bits)\n";
  throw CLI::Success();
}

// noxlux help [commande]
void enregistrerAide(CLI::App& application) {
  auto quoi = std::make_shared<std::vector<std::string>>();
  CLI::App* const aide = application.add_subcommand("help", "Affiche l'aide, ou celle d'une commande");
  aide->alias("aide");
  aide->add_option("commande", *quoi, "commande expliquée")->type_name("COMMANDE");
  aide->callback([&application, quoi] {
    const CLI::App* montree = &application;
    for (const std::string& nom : *quoi) {
      const CLI::App* const suivante = sousCommande(*montree, nom);
      if (suivante == nullptr) {
        throw ErreurUsage("commande inconnue : " + nom +
                          compilateur::vouliezVous(nom, nomsDeCommandes(*montree)));
      }
      montree = suivante;
    }
    afficherAide(montree->help(montree == &application ? "" : "noxlux"));
  });
}

int executer(int argc, char** argv) {
  CLI::App application("Le référentiel CCAM : le compiler, le lister, l'interroger.", "noxlux");
  franciser(application);
  application.require_subcommand(1);
  application.add_flag_callback("--version,-V", afficherVersion, "Affiche la version de la commande");
  int statut = STATUT_REPONDU;
  enregistrerRechercher(application, statut);
  enregistrerActe(application);
  enregistrerControler(application, statut);
  enregistrerServeur(application);
  enregistrerRegle(application);
  enregistrerSimuler(application);
  enregistrerConsulter(application);
  enregistrerVerifier(application);
  enregistrerAppliquer(application, statut);
  enregistrerIdentifiants(application);
  enregistrerModifier(application);
  enregistrerAnnuler(application);
  enregistrerReporter(application, statut);
  enregistrerModifications(application);
  enregistrerVersion(application);
  enregistrerTables(application);
  enregistrerLister(application, statut);
  enregistrerComparer(application, statut);
  enregistrerCompiler(application, statut);
  enregistrerZone(application);
  enregistrerAide(application);
  for (CLI::App* const commande : application.get_subcommands({})) {
    commande->group("Commandes");
  }
  enregistrerCompleter(application);
  try {
    application.parse(argc, argv);
  } catch (const CLI::ParseError& erreur) {
    return erreurDeSyntaxe(application, erreur);
  }
  return statut;
}

// What was answered before stays answered.
int echouer(Sorties& sorties, const std::string& phrase, int statut) {
  try {
    sorties.finir();
  } catch (const ErreurEcriture&) {
    statut = STATUT_MAUVAIS_USAGE;
  }
  std::cerr << "noxlux : " << phrase << '\n';
  return statut;
}

// A program that asked for JSON reads an object, also when the library answered a code.
void repondreEnJson(int argc, char** argv, const Json& erreur) {
  if (std::find(argv, argv + argc, std::string_view("--json")) != argv + argc) {
    ecrireJson(erreur);
  }
}

// Ends as a program does whose reader has gone.
int finirSansLecteur() {
  std::signal(SIGPIPE, SIG_DFL);
  std::raise(SIGPIPE);
  return STATUT_MAUVAIS_USAGE;
}

}  // namespace

int main(int argc, char** argv) {
  Sorties sorties;
  try {
    const int statut = executer(argc, argv);
    sorties.finir();
    return statut;
  } catch (const ErreurUsage& erreur) {
    return echouer(sorties, erreur.what(), STATUT_MAUVAIS_USAGE);
  } catch (const Introuvable& erreur) {
    repondreEnJson(argc, argv, {{"code", hexadecimal(NOX_CR_CODE_INCONNU)}, {"erreur", erreur.what()}});
    return echouer(sorties, erreur.what(), STATUT_CODE_ERREUR);
  } catch (const ErreurBibliotheque& erreur) {
    repondreEnJson(argc, argv, erreur.enJson());
    return echouer(sorties, erreur.what(), STATUT_CODE_ERREUR);
  } catch (const ErreurEcriture& erreur) {
    return erreur.erreur() == EPIPE ? finirSansLecteur()
                                    : echouer(sorties, erreur.what(), STATUT_MAUVAIS_USAGE);
  } catch (const std::filesystem::filesystem_error& erreur) {
    return echouer(sorties,
                   erreur.path1().string() + " : " + compilateur::raisonSysteme(erreur.code().value()),
                   STATUT_MAUVAIS_USAGE);
  } catch (const std::bad_alloc&) {
    return echouer(sorties, "mémoire insuffisante", STATUT_MAUVAIS_USAGE);
  } catch (const std::exception& erreur) {
    return echouer(sorties, std::string("erreur inattendue : ") + erreur.what(), STATUT_MAUVAIS_USAGE);
  }
}
