// noxlux consulter and version: questions to the library.
#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "noxlux/bibliotheque.h"
#include "noxlux/commandes.h"
#include "noxlux/requete.h"
#include "noxlux/sortie.h"

namespace noxlux::commande {

namespace {

struct OptionsReponse {
  OptionsReference reference;
  bool json = false;

  void declarer(CLI::App& commande) {
    reference.declarer(commande);
    commande.add_flag("--json", json, "réponse en JSON, pour un programme");
  }
  // Shows an answer zone.
  void montrer(const std::string& zone) const {
    const Json groupes = decoderZone(zone, true);
    if (json) {
      ecrireJson(groupes);
    } else {
      afficherGroupes(groupes, std::cout);
    }
  }
};

struct OptionsConsulter : OptionsReponse {
  std::string identifiant;
  std::vector<std::string> champs;
  std::string date;
};

void consulter(const OptionsConsulter& options) {
  const FonctionDecrite& fonction = trouverFonction("consultation", options.identifiant);
  std::string zone = construireZone(fonction, options.champs);
  const std::string date = dateReference(options.date);
  const Bibliotheque bibliotheque(options.reference);
  options.montrer(appelerOuEchouer("NOX_ConsulterDonnee", [&](void** sortie, unsigned int* taille) {
    return NOX_ConsulterDonnee(fonction.nom.c_str(), date.c_str(), zone.data(),
                               static_cast<unsigned int>(zone.size()), sortie, taille);
  }));
}

}  // namespace

void enregistrerConsulter(CLI::App& application) {
  auto options = std::make_shared<OptionsConsulter>();
  CLI::App* commande =
      application.add_subcommand("consulter", "Demande une donnée du référentiel à une date");
  commande
      ->add_option("identifiant", options->identifiant, "identifiant de consultation (CCAM_37, TB07_1...)")
      ->required()
      ->type_name("IDENTIFIANT");
  commande->add_option("champs", options->champs, "champs de la demande (acte=HHFA001 activite=1)")
      ->type_name("champ=valeur");
  commande->add_option("--date,-d", options->date, "date de référence (par défaut : aujourd'hui)")
      ->type_name("DATE");
  options->declarer(*commande);
  commande->callback([options] { consulter(*options); });
}

void enregistrerVersion(CLI::App& application) {
  auto options = std::make_shared<OptionsReponse>();
  CLI::App* commande = application.add_subcommand("version", "Versions du référentiel et du logiciel");
  options->declarer(*commande);
  commande->callback([options] {
    const Bibliotheque bibliotheque(options->reference);
    options->montrer(appelerOuEchouer("NOX_LireVersion", [](void** sortie, unsigned int* taille) {
      return NOX_LireVersion(sortie, taille);
    }));
  });
}

}  // namespace noxlux::commande
