// The service in front: one thread that listens, receives whole requests, has them answered and sends the
// answers. No client, however slow, however many, takes anything from the others but its place in memory;
// what is received of a client is bounded in size and in time, and nothing of it is written anywhere.
#ifndef NOXLUX_SERVEUR_SERVICE_H
#define NOXLUX_SERVEUR_SERVICE_H

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "serveur/admission.h"
#include "serveur/options.h"
#include "serveur/ouvriers.h"
#include "serveur/tete.h"
#include "serveur/veille.h"

namespace noxlux::serveur {

// Listens and answers until SIGTERM or SIGINT; SIGHUP takes the reference anew. Throws ErreurUsage when it
// cannot begin.
void servir(const Options& options);

class Service {
 public:
  // Takes signals and the port. Throws ErreurUsage.
  Service(const Options& options, Ouvriers::Travail travail);

  void servir();

 private:
  using Cle = Veille::Cle;
  enum class Etat { LIT, ATTEND, ECRIT, VIDE };
  struct Connexion {
    Descripteur fd;
    Adresse adresse;
    Etat etat = Etat::LIT;
    Instant echeance;
    std::string recu;
    std::optional<Tete> tete;  // of the request that is being received or answered
    std::size_t corps = 0;     // bytes of its body
    std::size_t memoire = 0;   // bytes that it holds or will hold: body, then answer too
    std::string envoi;
    std::size_t envoyes = 0;
    bool fermer = false;
  };
  using Connexions = std::map<Cle, Connexion>;

  void ecouter();
  void annoncer();
  void signaux();
  void accepter();
  bool faireDeLaPlace();
  void evenement(Cle cle);
  void lire(Cle cle, Connexion& connexion);
  void avancer(Cle cle, Connexion& connexion);
  bool admettre(Cle cle, Connexion& connexion);
  void soumettre(Cle cle, Connexion& connexion);
  void repondre(Cle cle, Connexion& connexion, std::string reponse);
  void refuserEtFermer(Cle cle, Connexion& connexion, const Refus& refus);
  void livrer(Cle cle, std::string reponse);
  void ecrire(Cle cle, Connexion& connexion);
  void vider(Cle cle, Connexion& connexion);
  void attendreDemande(Connexion& connexion);
  void fermer(Cle cle);
  void veiller(Instant maintenant);
  void arreter();
  std::string sante(bool fermer, bool teteSeule) const;

  const Options& options_;
  Veille veille_;
  Descripteur ecoute_;
  Descripteur signaux_;
  std::size_t connexionsMax_;
  unsigned port_ = 0;
  Connexions connexions_;
  Cle prochaine_;
  std::vector<Cle> aReprendre_;  // with the beginning of a next request in what was received
  std::size_t memoire_ = 0;      // of all the connections
  std::size_t reponses_ = 0;
  std::size_t refus_ = 0;
  bool annonce_ = false;
  bool arret_ = false;
  Instant fin_{};  // of the time to stop in
  Ouvriers ouvriers_;
};

}  // namespace noxlux::serveur

#endif
