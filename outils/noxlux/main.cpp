// The `noxlux` command.
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>

#include "noxlux/commandes.h"
#include "noxlux/erreurs.h"

namespace {

using namespace noxlux::commande;

// CLI11's own words, in French.
void franciser(CLI::App& application) {
  application.set_help_flag("-h,--help", "Affiche cette aide");
  application.get_formatter()->label("REQUIRED", "(obligatoire)");
  application.get_formatter()->label("OPTIONS", "OPTIONS");
  application.get_formatter()->label("Positionals", "Arguments");
  application.get_formatter()->label("Options", "Options");
  application.get_formatter()->label("Usage", "Usage");
  application.get_formatter()->label("SUBCOMMAND", "COMMANDE");
  application.get_formatter()->label("SUBCOMMANDS", "COMMANDES");
  application.get_formatter()->label("Subcommands", "Commandes");
  application.get_formatter()->label("TEXT", "TEXTE");
  application.get_formatter()->column_width(34);
}

int erreurDeSyntaxe(const CLI::App& application, const CLI::ParseError& erreur) {
  if (erreur.get_exit_code() == 0) {
    return application.exit(erreur);
  }
  std::cerr << "noxlux : " << erreur.what() << "\nVoir « noxlux --help ».\n";
  return STATUT_MAUVAIS_USAGE;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App application("Le référentiel CCAM : le compiler, le lister, l'interroger.", "noxlux");
  franciser(application);
  application.require_subcommand(1);
  int statut = STATUT_REPONDU;
  enregistrerCompiler(application, statut);
  enregistrerLister(application, statut);
  enregistrerControler(application, statut);
  enregistrerVersion(application);
  enregistrerConsulter(application);
  enregistrerRechercher(application);
  enregistrerVerifier(application);
  enregistrerAppliquer(application, statut);
  enregistrerModifier(application);
  enregistrerAnnuler(application);
  enregistrerZone(application);
  try {
    application.parse(argc, argv);
  } catch (const CLI::ParseError& erreur) {
    return erreurDeSyntaxe(application, erreur);
  } catch (const ErreurUsage& erreur) {
    std::cerr << "noxlux : " << erreur.what() << '\n';
    return STATUT_MAUVAIS_USAGE;
  } catch (const ErreurBibliotheque& erreur) {
    std::cerr << "noxlux : " << erreur.what() << '\n';
    return STATUT_CODE_ERREUR;
  } catch (const std::exception& erreur) {
    std::cerr << "noxlux : " << erreur.what() << '\n';
    return STATUT_MAUVAIS_USAGE;
  }
  return statut;
}
