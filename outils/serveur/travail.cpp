// The service and the processes that answer, put together.
#include <cerrno>
#include <iostream>

#include "noxlux/erreurs.h"
#include "serveur/repondeur.h"
#include "serveur/service.h"
#include "serveur/trames.h"

namespace noxlux::serveur {

namespace {

bool envoyer(int ligne, const std::string& octets) {
  const std::string trame = emballer(octets);
  for (std::size_t envoyes = 0; envoyes < trame.size();) {
    const ssize_t n = write(ligne, trame.data() + envoyes, trame.size() - envoyes);
    if (n < 0 && errno != EINTR) {
      return false;
    }
    envoyes += n > 0 ? static_cast<std::size_t>(n) : 0U;
  }
  return true;
}

// False at the end of the line.
bool recevoir(int ligne, std::string& recu) {
  char octets[65536];
  ssize_t n = 0;
  do {
    n = read(ligne, octets, sizeof octets);
  } while (n < 0 && errno == EINTR);
  recu.append(octets, n > 0 ? static_cast<std::size_t>(n) : 0U);
  return n > 0;
}

// Answers one request after the other until the service closes the line.
int travailler(const Options& options, int ligne) {
  try {
    Repondeur repondeur(options);
    std::string recu;
    for (bool ouverte = envoyer(ligne, {PRET}); ouverte && recevoir(ligne, recu);) {
      while (const auto demande = deballer(recu)) {
        ouverte = envoyer(ligne, repondeur.repondre(*demande));
      }
    }
    return commande::STATUT_REPONDU;
  } catch (const std::exception& erreur) {
    envoyer(ligne, ECHEC + std::string(erreur.what()));
    return commande::STATUT_CODE_ERREUR;
  }
}

}  // namespace

void servir(const Options& options) {
  // Where the reference is, is written once, for the processes of today and those that come after them.
  const commande::ConfigurationTemporaire configuration(options.reference);
  Options leurs = options;
  leurs.reference = configuration.options();
  Service service(leurs, [&leurs](int ligne) { return travailler(leurs, ligne); });
  service.servir();
}

}  // namespace noxlux::serveur
