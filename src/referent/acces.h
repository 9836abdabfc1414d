// Who is at work on a store: any number of readers, or one writer. An access that conflicts is refused at
// once; nobody ever waits.
#ifndef NOXLUX_REFERENT_ACCES_H
#define NOXLUX_REFERENT_ACCES_H

#include <atomic>
#include <cstdint>

#include "basics/codes_retour.h"

namespace noxlux {

// Two counters of 16 bits, kept in one word so that both are compared and changed together.
class CompteursAcces {
 public:
  bool prendreLecture() noexcept;
  bool prendreEcriture() noexcept;
  // REQUIRES: referentiel->compteurLecture>0
  void rendreLecture() noexcept;
  // REQUIRES: referentiel->compteurEcriture>0
  void rendreEcriture() noexcept;

  unsigned lecteurs() const noexcept { return etat_.load(std::memory_order_relaxed) % ECRIVAIN; }
  unsigned ecrivains() const noexcept { return etat_.load(std::memory_order_relaxed) / ECRIVAIN; }

 private:
  static constexpr std::uint32_t ECRIVAIN = 0x10000;
  std::atomic<std::uint32_t> etat_{0};
};

enum class NatureAcces : unsigned char { LECTURE, ECRITURE };

// An access held for the length of a scope, when it could be had.
class Acces {
 public:
  Acces(CompteursAcces& compteurs, NatureAcces nature);
  ~Acces();
  Acces(const Acces&) = delete;
  Acces& operator=(const Acces&) = delete;
  // 0xDF01, told in the trace, when others are at work.
  CodeRetour code() const { return cr_; }
  bool estTenu() const { return cr_ == NOX_CR_OK; }

 private:
  CompteursAcces& compteurs_;
  NatureAcces nature_;
  CodeRetour cr_;
};

}  // namespace noxlux

#endif
