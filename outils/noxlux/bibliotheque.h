// The library, loaded for the length of a command.
#ifndef NOXLUX_COMMANDE_BIBLIOTHEQUE_H
#define NOXLUX_COMMANDE_BIBLIOTHEQUE_H

#include <memory>
#include <string>

#include "compilateur/systeme.h"
#include "noxlux/donnees_lues.h"
#include "noxlux/erreurs.h"
#include "noxlux/noxlux.h"
#include "noxlux/zone_json.h"

namespace CLI {
class App;
}

namespace noxlux::commande {

// Where the reference is: a directory of its own, or the one that an orvan.ini tells.
struct OptionsReference {
  std::string reference;     // directory of tablebin.nox
  std::string modification;  // directory of modifref.nox; empty: as the reference
  std::string config;        // directory of orvan.ini
  void declarer(CLI::App& commande);
  // These options, or where a reference is found when they name none: NOXLUX_REFERENCE, the installed
  // orvan.ini, /var/lib/noxlux, the example that is installed beside the command. Throws ErreurUsage when
  // there is none.
  OptionsReference choisies() const;
  // The tablebin.nox that they lead to. Throws ErreurUsage.
  std::string fichierReference() const;
  // Where modifref.nox is: what its name follows at once. Throws ErreurUsage when no orvan.ini tells.
  std::string repertoireModification() const;
};

// An orvan.ini of its own, for processes that follow one another: it names the reference and nothing else, so
// that no trace is written.
class ConfigurationTemporaire {
 public:
  // Throws ErreurUsage.
  explicit ConfigurationTemporaire(const OptionsReference& options);
  OptionsReference options() const { return {{}, {}, temporaire_->chemin().string()}; }

 private:
  std::unique_ptr<compilateur::RepertoireTemporaire> temporaire_;
};

class Bibliotheque {
 public:
  // Throws ErreurBibliotheque when it does not load.
  explicit Bibliotheque(const OptionsReference& options);
  ~Bibliotheque();
  Bibliotheque(const Bibliotheque&) = delete;
  Bibliotheque& operator=(const Bibliotheque&) = delete;

 private:
  std::unique_ptr<compilateur::RepertoireTemporaire> temporaire_;  // null when none was made
  std::string repertoireIni_;                                      // what REPERTOIRE_SYSTEME points at
};

// An answer: its code, its zone when there is one, and why it is no better one, as Faute::cause tells it.
struct Reponse {
  unsigned short code = 0;
  std::string zone;
  Json cause;
};

// Calls an exported function that answers a zone, and takes the zone over; `ecoute` listens meanwhile.
template <class E, class F>
Reponse appelerEnEcoutant(const E& ecoute, F fonction) {
  void* zone = nullptr;
  unsigned int taille = 0;
  Reponse reponse;
  reponse.code = fonction(&zone, &taille);
  if (zone != nullptr) {
    reponse.zone.assign(static_cast<const char*>(zone), taille);
    NOX_LibererZoneMem(zone);
  }
  if (reponse.code != 0) {
    reponse.cause = ecoute.cause(reponse.code);
  }
  return reponse;
}
template <class F>
Reponse appeler(F fonction) {
  return appelerEnEcoutant(EcouteFaute(), fonction);
}

// The same for a function whose only good answer is 0. Throws ErreurBibliotheque otherwise.
template <class F>
std::string appelerOuEchouer(const std::string& nom, F fonction) {
  Reponse reponse = appeler(fonction);
  if (reponse.code != 0) {
    throw ErreurBibliotheque(nom, reponse.code, reponse.cause);
  }
  return std::move(reponse.zone);
}

}  // namespace noxlux::commande

#endif
