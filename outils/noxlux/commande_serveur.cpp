// noxlux serveur: the same answers over HTTP, for programs and for the page of a browser.
#include <algorithm>
#include <CLI/CLI.hpp>
#include <memory>
#include <thread>

#include "noxlux/commandes.h"
#include "noxlux/erreurs.h"
#include "noxlux/sortie.h"
#include "serveur/admission.h"
#include "serveur/service.h"

namespace noxlux::commande {

namespace {

constexpr std::size_t JETON_MINIMUM = 16;
constexpr std::size_t MEGAOCTET = 1U << 20U;

struct OptionsServeur {
  serveur::Options service;
  std::string jetonFichier;
  std::vector<std::string> autres;
  std::size_t corps = 16;
};

// Without the line's end of a file.
std::string lireJeton(const OptionsServeur& options) {
  std::string jeton = options.jetonFichier.empty() ? options.service.jeton : lireTout(options.jetonFichier);
  while (!jeton.empty() && (jeton.back() == '\n' || jeton.back() == '\r')) {
    jeton.pop_back();
  }
  const bool visible = std::all_of(jeton.begin(), jeton.end(), [](char c) { return c > 0x20 && c < 0x7F; });
  const bool demande = !options.jetonFichier.empty() || !options.service.jeton.empty();
  if (demande && (jeton.size() < JETON_MINIMUM || !visible)) {
    throw ErreurUsage("un jeton a " + std::to_string(JETON_MINIMUM) +
                      " caractères au moins, sans blanc ni accent");
  }
  return jeton;
}

// NOM=DIR
void nommerAutres(OptionsServeur& options) {
  for (const std::string& autre : options.autres) {
    const std::size_t egal = autre.find('=');
    if (egal == 0 || egal == std::string::npos || egal + 1 == autre.size()) {
      throw ErreurUsage("--autre : NOM=DIR est attendu, et non « " + autre + " »");
    }
    options.service.autres[autre.substr(0, egal)] = autre.substr(egal + 1);
  }
}

void servir(OptionsServeur& options) {
  options.service.jeton = lireJeton(options);
  if (!serveur::estLocale(options.service.adresse) && options.service.jeton.empty()) {
    throw ErreurUsage("--adresse " + options.service.adresse +
                      " ouvre le service à d'autres machines : il faut --jeton-fichier, ou --jeton");
  }
  nommerAutres(options);
  options.service.corpsMax = options.corps * MEGAOCTET;
  serveur::servir(options.service);
}

}  // namespace

void enregistrerServeur(CLI::App& application) {
  auto options = std::make_shared<OptionsServeur>();
  serveur::Options& service = options->service;
  service.processus = std::clamp(std::thread::hardware_concurrency(), 1U, 4U);
  CLI::App* const commande = application.add_subcommand(
      "serveur",
      "Répond en HTTP sur cette machine : une page pour le navigateur, du JSON pour les programmes");
  commande->add_option("--port,-p", service.port, "port (8460 ; 0 : un port libre)")
      ->check(CLI::Range(0U, 65535U).description(""))
      ->type_name("N");
  commande->add_option("--adresse", service.adresse, "adresse écoutée (127.0.0.1) ; une autre exige un jeton")
      ->type_name("IP");
  CLI::Option* const jeton =
      commande->add_option("--jeton", service.jeton, "mot de passe des programmes et de la page")
          ->type_name("JETON");
  commande->add_option("--jeton-fichier", options->jetonFichier, "fichier qui le contient")
      ->type_name("FICHIER")
      ->excludes(jeton);
  commande
      ->add_option("--nom", service.noms,
                   "autre nom d'hôte du service, avec son port s'il n'est pas 80 ou 443")
      ->type_name("HOTE");
  commande->add_option("--autre", options->autres, "autre référence, que la page compare à celle-ci")
      ->type_name("NOM=DIR");
  commande->add_option("--corps-max", options->corps, "taille d'une demande, en mégaoctets (16)")
      ->check(CLI::Range(1U, 256U).description(""))
      ->type_name("N");
  commande->add_option("--demandes-max", service.requetesMax, "demandes à la fois (256)")
      ->check(CLI::Range(1U, 100000U).description(""))
      ->type_name("N");
  commande
      ->add_option("--delai", service.delai, "secondes pour recevoir une demande, et pour y répondre (30)")
      ->check(CLI::Range(1U, 3600U).description(""))
      ->type_name("N");
  commande->add_option("--processus", service.processus, "processus qui répondent (un par cœur, 4 au plus)")
      ->check(CLI::Range(1U, 64U).description(""))
      ->type_name("N");
  service.reference.declarer(*commande);
  commande->callback([options] { servir(*options); });
}

}  // namespace noxlux::commande
