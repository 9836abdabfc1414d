// The processes that answer requests. Each holds the reference and answers one request at a time: the library
// holds one reference a process, a request that goes wrong or lasts too long ends its process and no other,
// and a new reference is taken by new processes while the old ones go on answering.
#ifndef NOXLUX_SERVEUR_OUVRIERS_H
#define NOXLUX_SERVEUR_OUVRIERS_H

#include <sys/types.h>

#include <deque>
#include <functional>
#include <map>
#include <string>

#include "serveur/options.h"
#include "serveur/veille.h"

namespace noxlux::serveur {

class Ouvriers {
 public:
  using Cle = Veille::Cle;
  // What a process does with its end of the line to the service; its exit status.
  using Travail = std::function<int(int ligne)>;
  // Where an answer goes, by the number of its request.
  using Livraison = std::function<void(Cle demande, std::string reponse)>;

  // `premiereCle` and those above are the processes' keys.
  Ouvriers(Veille& veille, const Options& options, Travail travail, Livraison livraison, Cle premiereCle);
  ~Ouvriers();
  Ouvriers(const Ouvriers&) = delete;
  Ouvriers& operator=(const Ouvriers&) = delete;

  // Puts new processes in the place of those there are, once they are ready.
  void renouveler();
  void soumettre(Cle demande, std::string octets);
  // Something happened on the line of a process.
  void evenement(Cle cle, std::uint32_t evenements);
  // Ends what lasts too long.
  void veiller(Instant maintenant);

  // Whether some process has the reference.
  bool prets() const { return enService_ != 0; }
  // Why the last reference could not be taken; empty when it could.
  const std::string& echec() const { return echec_; }
  std::size_t enCours() const;

 private:
  struct Ouvrier {
    pid_t processus = -1;
    Descripteur ligne;
    unsigned generation = 0;
    bool pret = false;
    Cle demande = 0;  // 0: none
    Instant echeance;
    bool tropLong = false;
    std::string envoi;
    std::size_t envoyes = 0;
    std::string recu;
  };
  struct Demande {
    Cle cle;
    std::string octets;
    Instant echeance;
  };

  void lancer(unsigned generation);
  void distribuer();
  void envoyer(Cle cle, Ouvrier& ouvrier);
  bool recevoir(Ouvrier& ouvrier);
  void accueillir(Cle cle, Ouvrier& ouvrier);
  void mettreEnService(unsigned generation);
  void renoncer(unsigned generation);
  void terminer(Cle cle);
  Cle oisif() const;

  Veille& veille_;
  const Options& options_;
  Travail travail_;
  Livraison livraison_;
  Cle prochaineCle_;
  std::map<Cle, Ouvrier> ouvriers_;
  std::deque<Demande> attente_;
  unsigned enService_ = 0;      // generation that answers; 0: none yet
  unsigned enPreparation_ = 0;  // generation that loads; 0: none
  unsigned derniere_ = 0;
  bool encore_ = false;  // asked for again while one was loading
  std::string echec_;
  Instant relance_{};  // before it no lost process is made up for
};

}  // namespace noxlux::serveur

#endif
