// Which requests are let in, by their head alone.
#ifndef NOXLUX_SERVEUR_ADMISSION_H
#define NOXLUX_SERVEUR_ADMISSION_H

#include <optional>
#include <string>
#include <vector>

#include "serveur/options.h"
#include "serveur/reponses.h"
#include "serveur/tete.h"

namespace noxlux::serveur {

// The end of a connection that is the service's.
struct Adresse {
  std::string hote;  // as a URL writes it: brackets around an IPv6 address
  unsigned port = 0;
  bool locale = false;  // reached from this machine alone
};

Adresse adresseLocale(int connexion);
bool estLocale(const std::string& adresse);

// Why a request is refused; none when it is let in. `corps` is the size of its body.
std::optional<Refus> refuser(const Tete& tete, const Adresse& adresse, const Options& options,
                             std::size_t& corps);

}  // namespace noxlux::serveur

#endif
