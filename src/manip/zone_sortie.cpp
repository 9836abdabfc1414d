#include "manip/zone_sortie.h"

#include <limits>

#include "basics/assertion.h"
#include "basics/systeme.h"

namespace noxlux {

CodeRetour ZoneSortie::allouer(std::size_t taille) {
  liberer();
  if (taille > std::numeric_limits<std::uint32_t>::max()) {
    return NOX_CR_MEMOIRE_ZONE;
  }
  const Zone nouvelle(static_cast<std::uint32_t>(taille));
  if (!nouvelle.ok()) {
    return NOX_CR_MEMOIRE_ZONE;
  }
  zone_ = nouvelle;
  return NOX_CR_OK;
}

void ZoneSortie::libererZone() {
  Systeme::liberer(zone_->lireBuffer());
  zone_.reset();
}

Zone& ZoneSortie::operator*() {
  exiger(zone_.has_value(), "zone != __null");
  return *zone_;
}

CodeRetour ZoneSortie::ceder(void*& bloc, unsigned int& taille) {
  Zone& zone = **this;
  const std::uint32_t donnees = zone.lireTailleDonnees();
  // An empty answer still has a block, of one byte, for the caller to free.
  const std::uint32_t exacte = donnees == 0 ? 1 : donnees;
  if (zone.lireTailleBuffer() != exacte) {
    if (const CodeRetour cr = zone.redimensionner(exacte); cr != NOX_CR_OK) {
      return cr;
    }
  }
  bloc = zone.lireBuffer();
  taille = donnees;
  zone_.reset();
  return NOX_CR_OK;
}

}  // namespace noxlux
