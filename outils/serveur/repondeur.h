// Answers HTTP requests, each a whole text in and a whole text out, from the reference that this process
// holds.
#ifndef NOXLUX_SERVEUR_REPONDEUR_H
#define NOXLUX_SERVEUR_REPONDEUR_H

#include <memory>
#include <string>

#include "serveur/options.h"

namespace noxlux::serveur {

class Repondeur {
 public:
  // Takes the reference. Throws ErreurUsage or ErreurBibliotheque.
  explicit Repondeur(const Options& options);
  ~Repondeur();
  Repondeur(const Repondeur&) = delete;
  Repondeur& operator=(const Repondeur&) = delete;

  std::string repondre(const std::string& demande);

 private:
  class Routes;
  std::unique_ptr<Routes> routes_;
};

}  // namespace noxlux::serveur

#endif
