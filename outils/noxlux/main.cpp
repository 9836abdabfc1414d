// The `noxlux` command.
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <string>

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
  application.get_formatter()->label("TEXT", "TEXTE");
  application.get_formatter()->column_width(34);
}

// What CLI11 says in English of the commonest faults, in French.
std::string enFrancais(const CLI::ParseError& erreur) {
  const std::string texte = erreur.what();
  if (dynamic_cast<const CLI::ExtrasError*>(&erreur) != nullptr) {
    const std::size_t deuxPoints = texte.rfind(": ");
    return "argument inattendu : " + texte.substr(deuxPoints == std::string::npos ? 0 : deuxPoints + 2);
  }
  const std::size_t requis = texte.find(" is required");
  if (requis == std::string::npos) {
    return texte;
  }
  const std::string quoi = texte.substr(0, requis);
  return quoi == "A subcommand" ? "il faut une commande" : "il manque " + quoi;
}

int erreurDeSyntaxe(const CLI::App& application, const CLI::ParseError& erreur) {
  if (erreur.get_exit_code() == 0) {
    return application.exit(erreur);
  }
  std::cerr << "noxlux : " << enFrancais(erreur) << "\nVoir « noxlux --help ».\n";
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
  enregistrerComparer(application, statut);
  enregistrerControler(application, statut);
  enregistrerVersion(application);
  enregistrerConsulter(application);
  enregistrerRechercher(application);
  enregistrerVerifier(application);
  enregistrerAppliquer(application, statut);
  enregistrerModifier(application);
  enregistrerAnnuler(application);
  enregistrerModifications(application);
  enregistrerZone(application);
  for (CLI::App* const commande : application.get_subcommands({})) {
    commande->group("Commandes");
  }
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
