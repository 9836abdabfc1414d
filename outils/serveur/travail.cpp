// The service and the processes that answer, put together.
#include "noxlux/erreurs.h"
#include "noxlux/ligne.h"
#include "serveur/repondeur.h"
#include "serveur/service.h"
#include "serveur/trames.h"

namespace noxlux::serveur {

namespace {

bool envoyer(int ligne, const std::string& octets) {
  return commande::envoyerSurLigne(ligne, emballer(octets));
}

// Answers one request after the other until the service closes the line.
int travailler(const Options& options, int ligne) {
  try {
    Repondeur repondeur(options);
    std::string recu;
    for (bool ouverte = envoyer(ligne, {PRET}); ouverte && commande::recevoirDeLigne(ligne, recu);) {
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
