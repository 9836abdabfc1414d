// What the command writes: answers on the standard output, messages on the standard error.
//
// Both pass through a filter that shows control characters, which a file or an argument may hold, as \u00NN:
// no byte of theirs reaches a terminal as a command, and JSON stays JSON. An answer that cannot be written
// throws ErreurEcriture from the very write that failed.
#ifndef NOXLUX_COMMANDE_SORTIE_H
#define NOXLUX_COMMANDE_SORTIE_H

#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>

#include "noxlux/zone_json.h"

namespace noxlux::commande {

// An answer that could not be written; `erreur` is the system's number.
class ErreurEcriture : public std::runtime_error {
 public:
  explicit ErreurEcriture(int erreur);
  int erreur() const { return erreur_; }

 private:
  int erreur_;
};

// Puts the filters in place for the length of `main`, and takes SIGPIPE for a failed write.
class Sorties {
 public:
  Sorties();
  ~Sorties();
  Sorties(const Sorties&) = delete;
  Sorties& operator=(const Sorties&) = delete;
  // Writes what is left. Throws ErreurEcriture.
  void finir();

 private:
  class Filtre;
  std::unique_ptr<Filtre> reponses_;
  std::unique_ptr<Filtre> messages_;
  std::streambuf* anciennesReponses_;
  std::streambuf* anciensMessages_;
};

// Bytes as they are (a data zone), on the standard output.
void ecrireOctets(const std::string& octets);

// A whole file, "-" for the standard input. Throws ErreurUsage.
std::string lireTout(const std::string& nom);
// A whole file, "-" for the standard output. Throws ErreurUsage or ErreurEcriture.
void ecrireTout(const std::string& nom, const std::string& contenu);

// JSON for a program, with an end of line. Bytes that are no UTF-8 are replaced.
std::string texteJson(const Json& valeur, int retrait = 2);
void ecrireJson(const Json& valeur);
// The same of a value whose keys are words for people.
void ecrireJsonCamel(const Json& valeur);

}  // namespace noxlux::commande

#endif
