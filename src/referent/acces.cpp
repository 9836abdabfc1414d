#include "referent/acces.h"

#include "basics/assertion.h"
#include "basics/trace.h"

namespace noxlux {

// A reader too many for its counter is refused like any other conflict.
bool CompteursAcces::prendreLecture() noexcept {
  std::uint32_t vu = etat_.load(std::memory_order_relaxed);
  do {
    if (vu >= ECRIVAIN - 1) {
      return false;
    }
  } while (!etat_.compare_exchange_weak(vu, vu + 1, std::memory_order_acquire, std::memory_order_relaxed));
  return true;
}

bool CompteursAcces::prendreEcriture() noexcept {
  std::uint32_t libre = 0;
  return etat_.compare_exchange_strong(libre, ECRIVAIN, std::memory_order_acquire, std::memory_order_relaxed);
}

void CompteursAcces::rendreLecture() noexcept {
  exiger(lecteurs() > 0, "referentiel->compteurLecture>0");
  etat_.fetch_sub(1, std::memory_order_release);
}

void CompteursAcces::rendreEcriture() noexcept {
  exiger(ecrivains() > 0, "referentiel->compteurEcriture>0");
  etat_.fetch_sub(ECRIVAIN, std::memory_order_release);
}

namespace {

CodeRetour refuserAcces(const CompteursAcces& compteurs, NatureAcces nature) {
  if (nature == NatureAcces::LECTURE) {
    Trace::erreur(TRACE_CONSULTATION, "Référentiel en cours de modification (%d écrivain)",
                  compteurs.ecrivains());
  } else {
    Trace::erreur(TRACE_MODIFICATION,
                  "Référentiel en cours de lecture ou de modification (%d lecteurs, %d écrivain)",
                  compteurs.lecteurs(), compteurs.ecrivains());
  }
  return NOX_CR_OCCUPE;
}

}  // namespace

Acces::Acces(CompteursAcces& compteurs, NatureAcces nature)
    : compteurs_(compteurs), nature_(nature), cr_(NOX_CR_OK) {
  const bool pris = nature == NatureAcces::LECTURE ? compteurs.prendreLecture() : compteurs.prendreEcriture();
  if (!pris) [[unlikely]] {
    cr_ = refuserAcces(compteurs, nature);
  }
}

Acces::~Acces() {
  if (!estTenu()) {
    return;
  }
  if (nature_ == NatureAcces::LECTURE) {
    compteurs_.rendreLecture();
  } else {
    compteurs_.rendreEcriture();
  }
}

}  // namespace noxlux
