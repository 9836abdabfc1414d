// The lock that those who save into one modification directory hold in turn, whatever their process.
#ifndef NOXLUX_REFERENT_VERROU_MODIFICATIONS_H
#define NOXLUX_REFERENT_VERROU_MODIFICATIONS_H

#include <chrono>
#include <string>

namespace noxlux {

// An exclusive flock on the directory where modifref.nox lies (the one that it leads to, when it is a link).
class VerrouModifications {
 public:
  enum class Etat {
    Pris,
    Occupe,  // held by another until the end of the wait
    Absent   // the system gives no such lock on this directory
  };

  // Waits for the lock, at most that long; it is given back when this goes. May throw std::bad_alloc.
  VerrouModifications(const std::string& repertoire, std::chrono::milliseconds attente);
  ~VerrouModifications();
  VerrouModifications(const VerrouModifications&) = delete;
  VerrouModifications& operator=(const VerrouModifications&) = delete;

  Etat etat() const { return etat_; }
  // Lets the saves of this process go on under this lock. To be called before the process has threads.
  void preter();

 private:
  bool tenter(int descripteur);

  int descripteur_ = -1;
  Etat etat_ = Etat::Absent;
  bool prete_ = false;
};

// The environment variable that holds the descriptor of a lock that the process already has.
constexpr const char* VARIABLE_VERROU = "NOXLUX_VERROU";

}  // namespace noxlux

#endif
