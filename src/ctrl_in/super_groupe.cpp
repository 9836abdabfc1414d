#include "ctrl_in/super_groupe.h"

#include <utility>

#include "basics/assertion.h"
#include "basics/trace.h"

namespace noxlux {

OccurrenceGroupe::OccurrenceGroupe(const Groupe* groupe, std::uint16_t minimum, std::uint16_t maximum)
    : groupe_(groupe), minimum_(minimum), maximum_(maximum) {
  exiger(ok(), "ok()");
}

OccurrenceGroupe::OccurrenceGroupe(std::unique_ptr<const SuperGroupe> superGroupe, std::uint16_t minimum,
                                   std::uint16_t maximum)
    : superGroupe_(std::move(superGroupe)), minimum_(minimum), maximum_(maximum) {
  exiger(ok(), "ok()");
}

OccurrenceGroupe::OccurrenceGroupe(OccurrenceGroupe&&) noexcept = default;
OccurrenceGroupe& OccurrenceGroupe::operator=(OccurrenceGroupe&&) noexcept = default;
OccurrenceGroupe::~OccurrenceGroupe() = default;

std::uint16_t OccurrenceGroupe::lireIdentifiantAttendu() const {
  if (groupe_ != nullptr) {
    return groupe_->lireIdentifiant();
  }
  const bool vide = superGroupe_->lireNbFils() == 0;
  return vide ? std::uint16_t{0} : superGroupe_->lireFils(0).lireIdentifiantAttendu();
}

void OccurrenceGroupe::dump() const {
  Trace::ecrire(TRACE_PARAMETRES, "min = %u, max = %u", minimum_, maximum_);
  if (groupe_ != nullptr) {
    groupe_->dump();
  } else {
    superGroupe_->dump();
  }
}

SuperGroupe::SuperGroupe(std::uint16_t numero, std::string_view nom, std::uint16_t maxFils)
    : numero_(numero), nom_(nom), maxFils_(maxFils) {
  fils_.reserve(maxFils);
}

template <class F>
CodeRetour SuperGroupe::ajouter(F fils, std::uint16_t minimum, std::uint16_t maximum) {
  if (fils_.size() >= maxFils_) {
    Trace::erreur(TRACE_PARAMETRES,
                  "SuperGroupe::ajouterFils : ERREUR: Nombre max de fils (%u) atteint pour le super-groupe "
                  "%s.",
                  maxFils_, lireNom());
    return NOX_CR_INCOHERENCE;
  }
  fils_.emplace_back(std::move(fils), minimum, maximum);  // within the capacity reserved at construction
  return NOX_CR_OK;
}

CodeRetour SuperGroupe::ajouterFils(const Groupe* groupe, std::uint16_t minimum, std::uint16_t maximum) {
  return ajouter(groupe, minimum, maximum);
}

CodeRetour SuperGroupe::ajouterFils(std::unique_ptr<const SuperGroupe> superGroupe, std::uint16_t minimum,
                                    std::uint16_t maximum) {
  return ajouter(std::move(superGroupe), minimum, maximum);
}

void SuperGroupe::dump() const {
  Trace::debut(TRACE_PARAMETRES, "SuperGroupe::dump : numero = %u, nom = %s, nbFils = %u, maxFils = %u",
               numero_, lireNom(), lireNbFils(), maxFils_);
  if (Trace::estDetaille(TRACE_PARAMETRES)) {
    for (const OccurrenceGroupe& fils : fils_) {
      fils.dump();
    }
  }
  Trace::fin(TRACE_PARAMETRES, "");
}

}  // namespace noxlux
