// The example reference with its zone descriptors, and a function run on a zone.
#ifndef NOXLUX_TESTS_FACTURE_REFERENCE_ESSAI_H
#define NOXLUX_TESTS_FACTURE_REFERENCE_ESSAI_H

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "bout_en_bout/zones_essai.h"
#include "interapp/interface.h"
#include "manip/zone_sortie.h"
#include "referent/lecture_donnees.h"
#include "referent/referentiel.h"
#include "regles/reglementation.h"
#include "regles/tarification.h"

namespace noxlux::essai {

using ::essai::Groupe;
using ::essai::Zone;

class ReferenceEssai {
 public:
  static ReferenceEssai& unique() {
    static ReferenceEssai reference;
    return reference;
  }

  Referentiel referentiel;
  LectureDonnees lecture{&referentiel};
  Interface interface;
  Reglementation reglementation{lecture};
  Tarification tarification{lecture};

 private:
  ReferenceEssai() {
    const char* const repertoire = std::getenv("NOXLUX_REFERENCE_EXEMPLE");
    const std::string chemin = repertoire != nullptr ? repertoire : "";
    EXPECT_EQ(referentiel.chargerReferentiel(chemin.c_str(), chemin.c_str(), "0113", "0121"), NOX_CR_OK);
    EXPECT_EQ(interface.initialiser(lecture), NOX_CR_OK);
  }
};

// The groups of a zone that the library built; it must be filled to its last byte.
inline Zone lireSortie(ZoneSortie& sortie) {
  Zone zone;
  if (!sortie) {
    return zone;
  }
  EXPECT_EQ(sortie->lireTailleDonnees() == 0 ? 1U : sortie->lireTailleDonnees(), sortie->lireTailleBuffer());
  const std::string_view octets(reinterpret_cast<const char*>(sortie->lireBuffer()),
                                sortie->lireTailleDonnees());
  EXPECT_TRUE(::essai::lire(octets, zone));
  return zone;
}

inline std::string numeroLigne(unsigned numero) {
  std::string chiffres = std::to_string(numero);
  return chiffres.insert(0, 5 - chiffres.size(), '0');
}

}  // namespace noxlux::essai

#endif
