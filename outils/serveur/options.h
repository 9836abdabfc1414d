// What the service is told on the command line.
#ifndef NOXLUX_SERVEUR_OPTIONS_H
#define NOXLUX_SERVEUR_OPTIONS_H

#include <chrono>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "noxlux/bibliotheque.h"

namespace noxlux::serveur {

using Instant = std::chrono::steady_clock::time_point;
using std::chrono::milliseconds;
using std::chrono::seconds;

struct Options {
  std::string adresse = "127.0.0.1";
  unsigned port = 8460;           // 0: any free one
  std::string jeton;              // empty: none is asked for
  std::vector<std::string> noms;  // names that the service is reached by, besides its addresses
  std::size_t corpsMax = 16U << 20U;
  std::size_t requetesMax = 256;  // begun or waiting, at once
  unsigned delai = 30;            // seconds: to receive a request, to answer it, to be rid of the answer
  unsigned processus = 2;         // that answer, each with the reference in its memory
  commande::OptionsReference reference;
  std::map<std::string, std::string> autres;  // references to compare with, by name
};

}  // namespace noxlux::serveur

#endif
