#include "noxlux/bibliotheque.h"

#include <unistd.h>

#include <algorithm>
#include <CLI/CLI.hpp>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "basics/fichier_ini.h"
#include "noxlux/mises_de_cote.h"
#include "noxlux/noxlux.h"

namespace noxlux::commande {

namespace {

namespace fs = std::filesystem;

std::string avecBarre(const std::string& repertoire) {
  return repertoire.empty() || repertoire.back() == '/' ? repertoire : repertoire + '/';
}

// Names that no person types on purpose.
void refuserCommandes(const char* option, const std::string& nom) {
  if (std::any_of(nom.begin(), nom.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; })) {
    throw ErreurUsage(std::string(option) +
                      " : un nom de répertoire ne contient pas de caractère de commande");
  }
}

fs::path repertoireDesTemporaires() {
  std::error_code erreur;
  fs::path repertoire = fs::temp_directory_path(erreur);
  if (erreur) {
    const char* const variable = std::getenv("TMPDIR");
    throw ErreurUsage("pas de répertoire temporaire : TMPDIR vaut « " +
                      std::string(variable == nullptr ? "" : variable) + " » (" +
                      compilateur::raisonSysteme(erreur.value()) + ")");
  }
  return repertoire;
}

// The directory is reached through a link of a short and plain name: an INI file holds no other.
void lier(const fs::path& lien, const std::string& repertoire) {
  std::error_code erreur;
  const fs::path cible = fs::absolute(repertoire, erreur);
  if (!erreur) {
    fs::create_directory_symlink(cible, lien, erreur);
  }
  if (erreur) {
    throw ErreurUsage(repertoire + " : " + compilateur::raisonSysteme(erreur.value()));
  }
}

// A directory of its own with an orvan.ini that points at the reference.
std::unique_ptr<compilateur::RepertoireTemporaire> ecrireIni(const OptionsReference& options) {
  refuserCommandes("--reference", options.reference);
  refuserCommandes("--modifications", options.modification);
  std::error_code erreur;
  if (!fs::is_regular_file(fs::path(options.reference) / "tablebin.nox", erreur)) {
    throw ErreurUsage("pas de tablebin.nox dans " + options.reference);
  }
  auto repertoire =
      std::make_unique<compilateur::RepertoireTemporaire>(repertoireDesTemporaires(), "noxlux-");
  const std::string chemin = repertoire->chemin().string();
  if (!repertoire->raison().empty()) {
    throw ErreurUsage("répertoire temporaire impossible à créer : " + chemin + " (" + repertoire->raison() +
                      ")");
  }
  std::ofstream ini(repertoire->chemin() / "orvan.ini");
  lier(repertoire->chemin() / "reference", options.reference);
  ini << "[NOX]\nrepertoiretable=" << chemin << "/reference/\n";
  if (!options.modification.empty()) {
    lier(repertoire->chemin() / "modifications", options.modification);
    ini << "repertoireModification=" << chemin << "/modifications/\n";
  }
  ini << "[COMMUN]\nrepertoiretravail=" << chemin << '\n';
  if (!ini.flush()) {
    throw ErreurUsage("écriture impossible dans " + chemin);
  }
  return repertoire;
}

}  // namespace

void OptionsReference::declarer(CLI::App& commande) {
  auto* option = commande.add_option("--reference,-r", reference, "répertoire de tablebin.nox");
  option->type_name("DIR");
  commande
      .add_option("--modifications", modification, "répertoire de modifref.nox (par défaut : la référence)")
      ->type_name("DIR")
      ->needs(option);
  commande.add_option("--config", config, "répertoire d'orvan.ini (par défaut : celui de l'installation)")
      ->type_name("DIR")
      ->excludes(option);
}

namespace {

// The first of some keys of section NOX of an orvan.ini.
std::string lireIni(const std::string& config, std::initializer_list<const char*> cles) {
  const std::string nom = avecBarre(config.empty() ? REPERTOIRE_SYSTEME : config) + "orvan.ini";
  FichierIni ini;
  if (ini.parserFichier(nom.c_str()) == NOX_CR_INI_OUVERTURE) {
    throw ErreurUsage("fichier illisible : " + nom);
  }
  for (const char* cle : cles) {
    if (const char* valeur = ini.lireValeur("NOX", cle)) {
      return valeur;
    }
  }
  throw ErreurUsage(nom + " : la section NOX ne dit pas où est la référence");
}

bool estReference(const fs::path& repertoire) {
  std::error_code erreur;
  return fs::is_regular_file(repertoire / "tablebin.nox", erreur);
}

// The reference of the office, else the example that is installed with the command; empty when there is none.
std::string referenceInstallee() {
  constexpr const char* DU_BUREAU = "/var/lib/noxlux";
  if (estReference(DU_BUREAU)) {
    return DU_BUREAU;
  }
  std::error_code erreur;
  const fs::path exemple =
      fs::read_symlink("/proc/self/exe", erreur).parent_path().parent_path() / "share/noxlux/exemple-compile";
  if (erreur || !estReference(exemple)) {
    return {};
  }
  if (::isatty(STDERR_FILENO) == 1) {
    std::cerr << "noxlux : nomenclature d'exemple (" << exemple.string()
              << ") ; --reference en donne une autre.\n";
  }
  return exemple.string();
}

}  // namespace

OptionsReference OptionsReference::choisies() const {
  OptionsReference choix = *this;
  std::error_code erreur;
  if (!reference.empty() || !config.empty()) {
    return choix;
  }
  if (const char* const variable = std::getenv("NOXLUX_REFERENCE");
      variable != nullptr && *variable != '\0') {
    choix.reference = variable;
  } else if (!fs::is_regular_file(fs::path(REPERTOIRE_SYSTEME) / "orvan.ini", erreur)) {
    choix.reference = referenceInstallee();
    if (choix.reference.empty()) {
      throw ErreurUsage(
          "quelle référence ? Donner --reference DIR, le répertoire d'un tablebin.nox (il n'y a ni " +
          avecBarre(REPERTOIRE_SYSTEME) + "orvan.ini, ni /var/lib/noxlux/tablebin.nox)");
    }
  }
  return choix;
}

std::string OptionsReference::fichierReference() const {
  const OptionsReference choix = choisies();
  return avecBarre(choix.reference.empty() ? lireIni(choix.config, {"repertoiretable"}) : choix.reference) +
         "tablebin.nox";
}

std::string OptionsReference::repertoireModification() const {
  const OptionsReference choix = choisies();
  if (!choix.reference.empty()) {
    return avecBarre(choix.modification.empty() ? choix.reference : choix.modification);
  }
  return lireIni(choix.config, {"repertoireModification", "repertoiretable"});
}

ConfigurationTemporaire::ConfigurationTemporaire(const OptionsReference& options) {
  OptionsReference choix = options.choisies();
  if (choix.reference.empty()) {
    choix = {fs::path(choix.fichierReference()).parent_path().string(), choix.repertoireModification(), {}};
  }
  temporaire_ = ecrireIni(choix);
}

Bibliotheque::Bibliotheque(const OptionsReference& demandees) {
  const OptionsReference options = demandees.choisies();
  if (!options.reference.empty()) {
    temporaire_ = ecrireIni(options);
    repertoireIni_ = temporaire_->chemin().string();
  } else {
    repertoireIni_ = options.config;
    std::error_code erreur;
    if (!repertoireIni_.empty() && !fs::is_regular_file(fs::path(repertoireIni_) / "orvan.ini", erreur)) {
      throw ErreurUsage("pas d'orvan.ini dans " + repertoireIni_);
    }
  }
  if (!repertoireIni_.empty()) {
    REPERTOIRE_SYSTEME = repertoireIni_.c_str();
  }
  const unsigned short code = NOX_InitLIB();
  // A missing follow-up directory does not keep the library from answering.
  if (code != NOX_CR_OK && code != NOX_CR_SUIVI_REPERTOIRE && code != NOX_CR_SUIVI_ECRITURE) {
    const std::string refus = code == NOX_CR_CONFIGURATION ? std::string() : direRefus(options);
    if (!refus.empty()) {
      std::cerr << "noxlux : " << refus
                << " ; « noxlux annuler » et « noxlux reporter » mendent ce fichier.\n";
    }
    throw ErreurBibliotheque("NOX_InitLIB", code);
  }
  const std::string misDeCote = direMiseDeCote(options);
  if (!misDeCote.empty()) {
    std::cerr << "noxlux : " << misDeCote << " ; « noxlux reporter » les refait.\n";
  }
}

Bibliotheque::~Bibliotheque() { NOX_TermLIB(); }

}  // namespace noxlux::commande
