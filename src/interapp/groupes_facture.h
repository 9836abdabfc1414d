// The groups of an invoice's zone, and the order in which those of a line stand: told once, for whoever reads
// an invoice and whoever writes one.
#ifndef NOXLUX_INTERAPP_GROUPES_FACTURE_H
#define NOXLUX_INTERAPP_GROUPES_FACTURE_H

#include <array>
#include <cstdint>

namespace noxlux {

enum GroupeFacture : std::uint16_t {
  ENTETE_FACTURE = 1110,
  REMPLACANT = 1150,
  PRESTATION = 1610,
  DEPLACEMENT_FORFAITAIRE = 1620,
  INDEMNITE_KILOMETRIQUE = 1630,
  EXONERATION = 1820,
  ENTENTE_PREALABLE = 1840,
  EXECUTANT = 1870,
  LIEU_EXECUTION = 1880,
  FORCAGE_LIGNE = 2000,
  BASE_AMO = 2020,
  ACTE_CCAM = 2100,
  DENTS = 2200,
  CAISSE = 3500,
  ERREUR = 3520,
  REGLE_OUTREPASSEE = 3530
};

// The groups that may follow a prestation, in their order; a travel line has the first one only. Overridden
// rules (3530), as many as there are, end a line.
inline constexpr std::array SUITES_PRESTATION{EXONERATION, ENTENTE_PREALABLE, EXECUTANT, LIEU_EXECUTION,
                                              BASE_AMO,    ACTE_CCAM,         DENTS};

struct NatureAssurance {
  std::uint16_t groupe;
  const char* code;
};
inline constexpr std::array<NatureAssurance, 4> NATURES_ASSURANCE{
    {{1511, "AS"}, {1512, "MA"}, {1513, "AT"}, {1514, "PM"}}};

}  // namespace noxlux

#endif
