// Invoices and zones in JSON. What becomes a zone is whole groups; a zone shown and read again is the same
// zone.
#include "atelier.h"
#include "bout_en_bout/zones_essai.h"
#include "noxlux/erreurs.h"
#include "noxlux/facture_json.h"
#include "noxlux/zone_json.h"

using namespace noxlux::commande;

namespace {

void verifierZone(const std::string& zone) {
  essai::Zone groupes;
  fuzz::exiger(essai::lire(zone, groupes));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* octets, std::size_t taille) {
  const std::string texte(fuzz::Source(octets, taille).tout());
  try {
    const Json lu = lireFacture(texte, "essai.json");
    if (lu.is_array()) {
      const std::string zone = encoderZone(lu);
      verifierZone(zone);
      fuzz::exiger(encoderZone(decoderZone(zone, false)) == zone);
      fuzz::exiger(encoderZone(decoderZone(zone, true)) == zone);
    } else {
      verifierZone(zoneDeFacture(lu));
    }
  } catch (const ErreurUsage&) {
  }
  try {
    decoderZone(texte, true);
  } catch (const ErreurUsage&) {
  }
  return 0;
}
