// The owner of an output zone, from its first byte until the caller takes it over.
#ifndef NOXLUX_MANIP_ZONE_SORTIE_H
#define NOXLUX_MANIP_ZONE_SORTIE_H

#include <cstddef>
#include <optional>
#include <utility>

#include "basics/codes_retour.h"
#include "manip/zone.h"

namespace noxlux {

// Holds a zone under construction and frees its block, unless it is handed over.
class ZoneSortie {
 public:
  ZoneSortie() = default;
  ~ZoneSortie() { liberer(); }
  ZoneSortie(ZoneSortie&& autre) noexcept : zone_(std::exchange(autre.zone_, std::nullopt)) {}
  ZoneSortie& operator=(ZoneSortie&& autre) noexcept {
    liberer();
    zone_ = std::exchange(autre.zone_, std::nullopt);
    return *this;
  }

  // A new empty zone in place of what was held. Out of memory, or beyond 32 bits: 0xF801, and nothing is
  // held.
  CodeRetour allouer(std::size_t taille);
  void liberer() {
    if (zone_.has_value()) {
      libererZone();
    }
  }

  explicit operator bool() const { return zone_.has_value(); }
  // REQUIRES: a zone is held
  Zone& operator*();
  Zone* operator->() { return &**this; }

  // Hands the block over to a caller who will free it by Systeme::liberer, shrunk to exactly the size of its
  // data; what is held becomes nothing. 0xF801: nothing is handed over. REQUIRES: a zone is held
  CodeRetour ceder(void*& bloc, unsigned int& taille);

 private:
  void libererZone();

  std::optional<Zone> zone_;
};

}  // namespace noxlux

#endif
