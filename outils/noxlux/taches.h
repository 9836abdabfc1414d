// Work shared out among processes that are copies of this one: what was loaded before them is there for all,
// and a piece of work that ends its process ends no other. Answers come back in the order of the demands.
#ifndef NOXLUX_COMMANDE_TACHES_H
#define NOXLUX_COMMANDE_TACHES_H

#include <sys/types.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace noxlux::commande {

class Taches {
 public:
  struct Metier {
    // What a process answers to a demand. May throw: that ends the process.
    std::function<std::string(std::string_view demande)> repondre;
    // The answer to a demand that ended its process, and how it ended.
    std::function<std::string(std::string_view demande, const std::string& fin)> excuser;
    // Takes the answers over, in order.
    std::function<void(std::string_view reponse)> livrer;
  };

  // Throws ErreurUsage when no process can be had.
  Taches(unsigned nombre, Metier metier);
  ~Taches();
  Taches(const Taches&) = delete;
  Taches& operator=(const Taches&) = delete;

  // Demands go out many at a time, and what is answered meanwhile is delivered.
  void ajouter(std::string demande);
  // Until all is answered and delivered.
  void finir();

 private:
  // Demands that go out together, by the rank of the first.
  struct Lot {
    std::uint64_t rang = 0;
    std::vector<std::string> demandes;
    std::size_t octets = 0;
    bool reprise = false;  // for the second time
  };
  struct Ouvrier {
    pid_t processus = -1;
    int ligne = -1;
    std::string recu;
    Lot lot;  // without demands: idle
  };

  void lancer(Ouvrier& ouvrier);
  [[noreturn]] void travailler(int ligne) const;
  void congedier(Ouvrier& ouvrier, bool deForce, std::string* fin);
  void confier(Lot lot);
  Ouvrier* oisif();
  bool attendre();
  void recevoir(Ouvrier& ouvrier);
  void perdre(Ouvrier& ouvrier);
  void ranger(std::uint64_t rang, std::string reponse);

  Metier metier_;
  std::vector<Ouvrier> ouvriers_;
  Lot enPreparation_;
  std::deque<Lot> aReprendre_;  // what a process left when it ended, one demand each, from the front
  std::map<std::uint64_t, std::string> recues_;
  std::uint64_t suivante_ = 0;  // the rank of the next demand
  std::uint64_t aLivrer_ = 0;   // the rank of the next answer
};

}  // namespace noxlux::commande

#endif
