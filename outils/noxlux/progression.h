// The progress of long work, on one line of a terminal's error output. Silent when it is no terminal, or when
// the work is short.
#ifndef NOXLUX_COMMANDE_PROGRESSION_H
#define NOXLUX_COMMANDE_PROGRESSION_H

#include <chrono>
#include <cstddef>
#include <string_view>

namespace noxlux::commande {

class Progression {
 public:
  Progression();
  ~Progression();  // clears the line
  Progression(const Progression&) = delete;
  Progression& operator=(const Progression&) = delete;

  // Nothing is known of the whole when `total` is 0: what is done is told alone.
  void montrer(std::string_view etape, std::size_t fait, std::size_t total);

 private:
  using Horloge = std::chrono::steady_clock;

  bool terminal_;
  bool affichee_ = false;
  Horloge::time_point debut_ = Horloge::now();
  Horloge::time_point derniere_ = debut_;
};

}  // namespace noxlux::commande

#endif
