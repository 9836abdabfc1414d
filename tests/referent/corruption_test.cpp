// Damaged files whose checksum is right: a code or a sound store, never a fault, never memory out of
// proportion with the file.
#include "referent/fabrique_reference.h"

using namespace noxlux;
using namespace essai;

namespace {

// Loads everything that can be: tables, deferred tables, acts.
CodeRetour toutLire(const Repertoire& repertoire) {
  Referentiel referentiel;
  CodeRetour cr = charger(referentiel, repertoire);
  for (const unsigned short differee : TABLES_DIFFEREES) {
    cr = cr == NOX_CR_OK ? referentiel.assurerTable(differee) : cr;
  }
  if (cr == NOX_CR_OK) {
    for (const Index& ligne : referentiel.lignes<Index>()) {
      NiveauActe acte;
      const CodeRetour crActe =
          referentiel.chargerActe(ligne.position, acte, std::string(ligne.acte.vue()).c_str());
      cr = cr == NOX_CR_OK ? crActe : cr;
    }
  }
  return cr;
}

// The codes of reading, and those of saved changes that no longer fit what they change.
bool estCodeDeLecture(CodeRetour cr) {
  constexpr CodeRetour CODES[] = {0, 0xD620, 0xD621, 0xD640, 0xD641, 0xD650, 0xD651, 0xD002, 0xD004, 0xDFFE};
  return std::find(std::begin(CODES), std::end(CODES), cr) != std::end(CODES);
}

class Corruption : public testing::Test {
 protected:
  void SetUp() override {
    Reference().ecrire(repertoire_);
    Referentiel referentiel;
    ASSERT_EQ(charger(referentiel, repertoire_), 0);
    referentiel.lignes<ModificationPrixUnitaire>().push_back(
        {CodeActe("HBLD038"), '1', '0', {2026, 1, 1}, 40.0});
    referentiel.lignes<ModificationCodeRegroupement>().push_back(
        {CodeActe("HBLD038"), '1', {2026, 1, 1}, CodeFixe<3>("ADC")});
    referentiel.lignes<ModificationSeuil>().push_back({4, {2026, 1, 1}, 125.0});
    ASSERT_EQ(referentiel.sauvegarderModifications(), 0);
    ASSERT_EQ(toutLire(repertoire_), 0);
  }
  CodeRetour lireAvec(const char* fichier, Octets octets) {
    refaireCRC(octets);
    repertoire_.ecrire(fichier, octets);
    return toutLire(repertoire_);
  }
  Repertoire repertoire_;
};

// NOXLUX_CORRUPTION_COMPLETE tries all values of all bytes.
TEST_F(Corruption, octetsChangesEtFichiersCoupes) {
  const bool complete = std::getenv("NOXLUX_CORRUPTION_COMPLETE") != nullptr;
  std::size_t refus = 0;
  for (const char* fichier : {"tablebin.nox", "modifref.nox"}) {
    const Octets sain = repertoire_.lire(fichier);
    for (std::size_t position = 4; position < sain.size(); position += complete ? 1 : 3) {
      for (unsigned bits = 1; bits < 256; bits = complete ? bits + 1 : bits * 4 + 3) {
        Octets octets = sain;
        octets[position] ^= static_cast<unsigned char>(bits);
        const CodeRetour cr = lireAvec(fichier, octets);
        ASSERT_TRUE(estCodeDeLecture(cr)) << fichier << " octet " << position << " : " << std::hex << cr;
        refus += cr != 0 ? 1 : 0;
      }
    }
    for (std::size_t taille = 4; taille < sain.size(); taille += complete ? 1 : 5) {
      const CodeRetour cr =
          lireAvec(fichier, Octets(sain.begin(), sain.begin() + static_cast<std::ptrdiff_t>(taille)));
      ASSERT_TRUE(cr != 0 && estCodeDeLecture(cr)) << fichier << " coupe a " << taille;
    }
    repertoire_.ecrire(fichier, sain);
  }
  EXPECT_GT(refus, 500U);
}

TEST_F(Corruption, nombresDemesures) {
  const Octets sain = repertoire_.lire("tablebin.nox");
  for (const TableFichier& table : listerTables(sain)) {
    for (const std::uint32_t nombre : {0xFFFFFFFFU, 0x7FFFFFFFU, 0x00100000U}) {
      Octets octets = sain;
      ecrireEntier(octets, table.entete + 3, nombre);
      EXPECT_EQ(lireAvec("tablebin.nox", octets), 0xD640) << table.identifiant << " lignes " << nombre;
      octets = sain;
      ecrireEntier(octets, table.entete + 7, nombre);
      EXPECT_EQ(lireAvec("tablebin.nox", octets), 0xD640) << table.identifiant << " taille " << nombre;
    }
    Octets octets = sain;
    ecrireEntier(octets, table.entete + 3, 0);
    if (table.fin > table.donnees) {
      EXPECT_NE(lireAvec("tablebin.nox", octets), 0) << table.identifiant << " sans ligne";
    }
  }
}

TEST_F(Corruption, actesHorsDuFichier) {
  const Octets sain = repertoire_.lire("tablebin.nox");
  const std::size_t premiere = trouverTable(sain, "000").donnees + 13;
  for (const std::uint32_t position : {0U, 0xFFFFFFFFU, 0x80000000U, static_cast<std::uint32_t>(sain.size()),
                                       static_cast<std::uint32_t>(sain.size() - 1)}) {
    Octets octets = sain;
    ecrireEntier(octets, premiere, position);
    EXPECT_EQ(lireAvec("tablebin.nox", octets), 0xD640) << position;
  }
}

}  // namespace
