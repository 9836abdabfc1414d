// noxlux simuler: what changes of the reference would do to a batch of invoices.
#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "noxlux/bibliotheque.h"
#include "noxlux/commandes.h"
#include "noxlux/lot.h"
#include "noxlux/requete.h"
#include "noxlux/simulation.h"
#include "noxlux/sortie.h"

namespace noxlux::commande {

namespace {

struct OptionsSimuler {
  OptionsReference reference;
  std::vector<std::string> fichiers;
  std::vector<std::string> changements;
  std::string liste;
  std::string effet;
  bool json = false;

  std::vector<ChangementSimule> lire() const {
    const std::string jour = dateReference(effet);
    std::vector<ChangementSimule> lus;
    for (const std::string& texte : changements) {
      lus.push_back(lireChangement(texte, jour));
    }
    if (!liste.empty()) {
      const std::vector<ChangementSimule> autres = lireChangements(lireTout(liste), liste, jour);
      lus.insert(lus.end(), autres.begin(), autres.end());
    }
    if (lus.empty()) {
      throw ErreurUsage(
          "que changer ? --changement \"CCAM_37 acte=... montant=...\", ou --changements FICHIER");
    }
    return lus;
  }
};

// The invoices are kept: each is checked before and after. Those that cannot be checked are told and left
// aside, on both sides.
std::vector<Json> lireFactures(const std::vector<std::string>& fichiers) {
  LectureLot lecture(fichiers.empty() ? std::vector<std::string>{"-"} : fichiers);
  std::vector<Json> factures;
  std::size_t rang = 0;
  for (FactureLue lue; lecture.suivante(lue);) {
    ++rang;
    if (lue.faute.empty()) {
      factures.push_back(std::move(lue.facture));
    } else {
      std::cerr << "noxlux : facture " << rang << " laissée de côté : " << lue.faute << '\n';
    }
  }
  return factures;
}

void simuler(const OptionsSimuler& options) {
  const std::vector<ChangementSimule> changements = options.lire();
  std::vector<Json> factures = lireFactures(options.fichiers);
  const Bibliotheque bibliotheque(options.reference);
  Totaux avant;
  Totaux apres;
  std::vector<Json> controlables;
  for (Json& facture : factures) {
    try {
      avant.compter(facture);
      controlables.push_back(std::move(facture));
    } catch (const std::runtime_error& faute) {  // ErreurUsage, ErreurBibliotheque
      std::cerr << "noxlux : facture laissée de côté : " << faute.what() << '\n';
    }
  }
  for (const ChangementSimule& changement : changements) {
    appliquer(changement);
  }
  for (const Json& facture : controlables) {
    apres.compter(facture);
  }
  const Json resultat = Simulation::comparer(avant, apres);
  if (options.json) {
    ecrireJson(resultat);
  } else {
    afficherSimulation(resultat, std::cout);
  }
}

}  // namespace

void enregistrerSimuler(CLI::App& application) {
  auto options = std::make_shared<OptionsSimuler>();
  CLI::App* commande = application.add_subcommand(
      "simuler", "Dit ce que des changements du référentiel feraient à des factures");
  commande
      ->add_option("fichiers", options->fichiers,
                   "factures et lots en JSON ou en CSV (rien ou - : entrée standard)")
      ->type_name("FICHIER");
  commande
      ->add_option("--changement,-c", options->changements,
                   "un changement, comme pour « modifier » : \"CCAM_37 acte=... montant=...\"")
      ->allow_extra_args(false)
      ->type_name("CHANGEMENT");
  commande->add_option("--changements", options->liste, "liste de changements en JSON")
      ->type_name("FICHIER.json");
  commande->add_option("--effet,-e", options->effet, "date d'effet (par défaut : aujourd'hui)")
      ->type_name("DATE");
  commande->add_flag("--json", options->json, "réponse en JSON, pour un programme");
  options->reference.declarer(*commande);
  commande->callback([options] { simuler(*options); });
}

}  // namespace noxlux::commande
