// noxlux regle: what a rule asks and when it raises, from the reference of an error.

// As the compiler does: the two are linked together.
#define TOML_EXCEPTIONS 0
#include <toml++/toml.h>

#include <algorithm>
#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "compilateur/proches.h"
#include "noxlux/commandes.h"
#include "noxlux/erreurs.h"
#include "noxlux/regle_documentee.h"
#include "noxlux/requete.h"
#include "noxlux/sortie.h"
#include "noxlux/tableau.h"
#include "noxlux/textes_embarques.h"

namespace noxlux::commande {

namespace {

// Whether a heading of docs/rules.md names a rule, by its identifier or its reference.
bool nomme(const std::string& titre, const std::string& regle) {
  constexpr std::string_view LETTRES = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
  for (std::size_t ou = titre.find(regle); ou != std::string::npos; ou = titre.find(regle, ou + 1)) {
    const std::size_t fin = ou + regle.size();
    const bool avant = ou == 0 || LETTRES.find(titre[ou - 1]) == std::string_view::npos;
    if (avant && (fin == titre.size() || LETTRES.find(titre[fin]) == std::string_view::npos)) {
      return true;
    }
  }
  return false;
}

// The section whose heading names the rule, without the heading.
std::string section(const std::string& regle) {
  std::istringstream lignes{std::string(RULES_MD)};
  std::string texte;
  bool dedans = false;
  for (std::string ligne; std::getline(lignes, ligne);) {
    if (ligne.starts_with("#")) {
      if (dedans) {
        break;
      }
      dedans = ligne.starts_with("### ") && nomme(ligne, regle);
    } else if (dedans) {
      texte += ligne + '\n';
    }
  }
  const std::size_t debut = texte.find_first_not_of('\n');
  return debut == std::string::npos ? std::string()
                                    : texte.substr(debut, texte.find_last_not_of('\n') + 1 - debut);
}

std::string texteDe(const toml::table& regle, const char* cle) {
  return regle[cle].value<std::string>().value_or("");
}

// f(rule) for each rule of the catalogue.
template <class F>
void pourChaqueRegle(F f) {
  const toml::parse_result lecture = toml::parse(REGLES_TOML);
  const toml::array* const regles = lecture ? lecture.table()["regle"].as_array() : nullptr;
  if (regles == nullptr) {
    throw std::logic_error("the built-in rules do not read");
  }
  for (const toml::node& noeud : *regles) {
    f(*noeud.as_table());
  }
}

}  // namespace

Json regleDocumentee(const std::string& nom) {
  const std::string cherchee = enCapitales(nom);
  Json regles = Json::array();
  std::vector<std::string> connues;
  pourChaqueRegle([&](const toml::table& regle) {
    const std::string identifiant = texteDe(regle, "identifiant");
    const std::string reference = texteDe(regle, "reference");
    connues.insert(connues.end(), {reference, identifiant});
    if (cherchee == identifiant || cherchee == reference) {
      regles.push_back({{"reference", reference},
                        {"identifiant", identifiant},
                        {"libelle", texteDe(regle, "libelle")},
                        {"detail", texteDe(regle, "detail")},
                        {"niveau", texteDe(regle, "niveau")},
                        {"indicateurForcage", texteDe(regle, "forcage")},
                        {"texte", section(identifiant)}});
    }
  });
  if (regles.empty()) {
    throw ErreurUsage("règle inconnue : " + nom + compilateur::vouliezVous(cherchee, connues));
  }
  return regles;
}

std::vector<std::string> nomsDeRegles() {
  std::vector<std::string> noms;
  pourChaqueRegle([&](const toml::table& regle) { noms.push_back(texteDe(regle, "reference")); });
  return noms;
}

namespace {

void afficherRegle(const Json& regle) {
  const std::string libelle = regle["libelle"].get<std::string>();
  const std::string niveau = regle["niveau"].get<std::string>();
  std::cout << regle["reference"].get<std::string>() << " (" << regle["identifiant"].get<std::string>() << ")"
            << (libelle.empty() ? "" : " — " + libelle) << '\n';
  if (!libelle.empty()) {
    std::cout << (niveau == "O" ? "Peut être outrepassée" : "Ne peut pas être outrepassée");
    const std::string forcage = regle["indicateurForcage"].get<std::string>();
    std::cout << (forcage.empty() ? "" : ", indicateur de forçage " + forcage) << ".\n";
  }
  std::cout << '\n';
  std::string paragraphe = regle["texte"].get<std::string>();
  std::replace(paragraphe.begin(), paragraphe.end(), '\n', ' ');
  for (const std::string& pli : plier(paragraphe, largeurTerminal())) {
    std::cout << pli << '\n';
  }
}

}  // namespace

void enregistrerRegle(CLI::App& application) {
  struct Options {
    std::string nom;
    bool json = false;
  };
  auto options = std::make_shared<Options>();
  CLI::App* commande = application.add_subcommand("regle", "Dit ce que demande une règle de contrôle");
  commande->add_option("regle", options->nom, "référence d'une erreur, ou règle (R550, PROD550)")
      ->required()
      ->type_name("REGLE");
  commande->add_flag("--json", options->json, "réponse en JSON, pour un programme");
  commande->callback([options] {
    const Json regles = regleDocumentee(options->nom);
    if (options->json) {
      ecrireJson(regles);
      return;
    }
    for (std::size_t i = 0; i < regles.size(); ++i) {
      std::cout << (i == 0 ? "" : "\n");
      afficherRegle(regles[i]);
    }
  });
}

}  // namespace noxlux::commande
