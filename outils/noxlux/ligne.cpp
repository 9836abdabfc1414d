#include "noxlux/ligne.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

namespace noxlux::commande {

bool envoyerSurLigne(int ligne, std::string_view octets) {
  while (!octets.empty()) {
    const ssize_t n = send(ligne, octets.data(), octets.size(), MSG_NOSIGNAL);
    if (n < 0 && errno != EINTR) {
      return false;
    }
    octets.remove_prefix(n > 0 ? static_cast<std::size_t>(n) : 0U);
  }
  return true;
}

bool recevoirDeLigne(int ligne, std::string& recu) {
  char octets[65536];
  ssize_t n = 0;
  do {
    n = read(ligne, octets, sizeof octets);
  } while (n < 0 && errno == EINTR);
  recu.append(octets, n > 0 ? static_cast<std::size_t>(n) : 0U);
  return n > 0;
}

}  // namespace noxlux::commande
