// The example reference damaged, its checksum made right again: loaded or refused, it never brings the host
// down.
#include <cstdio>
#include <cstdlib>

#include "bibliotheque_essai.h"
#include "fichier/crc16.h"

using namespace essai;

namespace {

constexpr std::size_t TAILLE_CRC = 4;

std::string avecCrc(std::string octets) {
  noxlux::Crc16 crc;
  crc.ajouter(reinterpret_cast<const unsigned char*>(octets.data()) + TAILLE_CRC, octets.size() - TAILLE_CRC);
  char texte[TAILLE_CRC + 1];
  std::snprintf(texte, sizeof texte, "%04X", unsigned{crc.resultat()});
  return octets.replace(0, TAILLE_CRC, texte);
}

class ReferenceAbimee : public SansReference {
 protected:
  // Loads the file and asks it a little of everything. False when it is refused.
  bool charger(const std::string& octets) {
    ecrireFichier(dossier_.fichier("tablebin.nox"), avecCrc(octets));
    if (NOX_InitLIB() != NOX_CR_OK) {
      EXPECT_EQ(rechercherFiltre("").code, unsigned{NOX_CR_NON_CHARGE});
      return false;
    }
    const Zone acte = {{3010, {"HBFD008"}}};
    const Zone activite = {{3011, {"HBFD008", "1"}}};
    const Zone phase = {{3012, {"HBFD008", "1", "0"}}};
    for (const char* identifiant : {"CCAM_2", "CCAM_8", "CCAM_14", "CCAM_16a"}) {
      consulter(identifiant, DATE, acte);
    }
    for (const char* identifiant : {"CCAM_6", "CCAM_13", "CCAM_32a", "CCAM_42"}) {
      consulter(identifiant, DATE, activite);
    }
    for (const char* identifiant : {"CCAM_37", "CCAM_44"}) {
      consulter(identifiant, DATE, phase);
    }
    consulter("TB08_1", DATE, {{3017, {"751"}}});
    consulter("TB13_1", DATE);
    rechercherFiltre("");
    rechercherMotCle("molaire");
    controlerComplet(factureDentaire("10000"));
    EXPECT_EQ(NOX_TermLIB(), NOX_CR_OK);
    return true;
  }
};

// NOXLUX_CORRUPTION_COMPLETE tries every position, each with one of the ways in turn: neighbours in a field
// get the others.
TEST_F(ReferenceAbimee, chaqueOctetEtChaqueLongueur) {
  constexpr unsigned FACONS[] = {0x01U, 0x80U, 0xFFU};
  constexpr std::size_t PAS = 397;
  constexpr std::size_t PAS_COUPES = 16;  // of the complete run
  const bool complete = std::getenv("NOXLUX_CORRUPTION_COMPLETE") != nullptr;
  const std::string saine = lireFichier(referenceExemple() + "tablebin.nox");
  ecrireIni(dossier_.chemin());
  ASSERT_TRUE(charger(saine));
  std::size_t chargees = 0;
  std::size_t essais = 0;
  for (std::size_t position = TAILLE_CRC; position < saine.size(); position += complete ? 1 : PAS) {
    for (const unsigned bits : FACONS) {
      if (complete && bits != FACONS[position % std::size(FACONS)]) {
        continue;
      }
      std::string octets = saine;
      octets[position] = static_cast<char>(static_cast<unsigned char>(octets[position]) ^ bits);
      SCOPED_TRACE(testing::Message() << "byte " << position << " ^ " << bits);
      chargees += charger(octets) ? 1U : 0U;
      ++essais;
    }
    // What is read on demand may be missing: the questions that need it are refused.
    if (!complete || position % PAS_COUPES == 0) {
      charger(saine.substr(0, position));
    }
  }
  // Some damage is seen at once, some only changes a label or a price.
  EXPECT_GT(chargees, essais / 10);
  EXPECT_LT(chargees, essais);
}

}  // namespace
