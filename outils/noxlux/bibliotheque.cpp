#include "noxlux/bibliotheque.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <fstream>

#include "basics/fichier_ini.h"
#include "noxlux/noxlux.h"

namespace noxlux::commande {

namespace {

namespace fs = std::filesystem;

std::string avecBarre(const std::string& repertoire) {
  return repertoire.empty() || repertoire.back() == '/' ? repertoire : repertoire + '/';
}

// A directory of its own with an orvan.ini that points at the reference.
fs::path ecrireIni(const OptionsReference& options) {
  const fs::path reference = fs::absolute(options.reference);
  if (!fs::is_regular_file(reference / "tablebin.nox")) {
    throw ErreurUsage("pas de tablebin.nox dans " + options.reference);
  }
  std::string modele = (fs::temp_directory_path() / "noxlux-XXXXXX").string();
  if (mkdtemp(modele.data()) == nullptr) {
    throw ErreurUsage("répertoire temporaire impossible à créer : " + modele);
  }
  std::ofstream ini(fs::path(modele) / "orvan.ini");
  ini << "[NOX]\nrepertoiretable=" << avecBarre(reference.string()) << '\n';
  if (!options.modification.empty()) {
    ini << "repertoireModification=" << avecBarre(fs::absolute(options.modification).string()) << '\n';
  }
  ini << "[COMMUN]\nrepertoiretravail=" << modele << '\n';
  if (!ini.flush()) {
    throw ErreurUsage("écriture impossible dans " + modele);
  }
  return modele;
}

}  // namespace

void OptionsReference::declarer(CLI::App& commande) {
  auto* option = commande.add_option("--reference,-r", reference,
                                     "répertoire de tablebin.nox (sans configuration installée)");
  option->type_name("DIR");
  commande
      .add_option("--modifications", modification, "répertoire de modifref.nox (par défaut : la référence)")
      ->type_name("DIR")
      ->needs(option);
  commande.add_option("--config", config, "répertoire d'orvan.ini (par défaut : celui de l'installation)")
      ->type_name("DIR")
      ->excludes(option);
}

std::string OptionsReference::repertoireModification() const {
  if (!reference.empty()) {
    return avecBarre(modification.empty() ? reference : modification);
  }
  const std::string nom = avecBarre(config.empty() ? REPERTOIRE_SYSTEME : config) + "orvan.ini";
  FichierIni ini;
  if (ini.parserFichier(nom.c_str()) == NOX_CR_INI_OUVERTURE) {
    throw ErreurUsage("fichier illisible : " + nom);
  }
  for (const char* cle : {"repertoireModification", "repertoiretable"}) {
    if (const char* valeur = ini.lireValeur("NOX", cle)) {
      return valeur;
    }
  }
  throw ErreurUsage(nom + " : la section NOX ne dit pas où est la référence");
}

Bibliotheque::Bibliotheque(const OptionsReference& options) {
  if (!options.reference.empty()) {
    iniTemporaire_ = ecrireIni(options);
    repertoireIni_ = iniTemporaire_.string();
  } else {
    repertoireIni_ = options.config;
  }
  if (!repertoireIni_.empty()) {
    REPERTOIRE_SYSTEME = repertoireIni_.c_str();
  }
  const unsigned short code = NOX_InitLIB();
  // A missing follow-up directory does not keep the library from answering.
  if (code != NOX_CR_OK && code != NOX_CR_SUIVI_REPERTOIRE && code != NOX_CR_SUIVI_ECRITURE) {
    std::error_code ignoree;
    fs::remove_all(iniTemporaire_, ignoree);
    throw ErreurBibliotheque("NOX_InitLIB", code);
  }
}

Bibliotheque::~Bibliotheque() {
  NOX_TermLIB();
  std::error_code ignoree;
  if (!iniTemporaire_.empty()) {
    fs::remove_all(iniTemporaire_, ignoree);
  }
}

}  // namespace noxlux::commande
