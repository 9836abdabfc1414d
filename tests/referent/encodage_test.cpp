// The checksum and the packed decimals, against their definitions.
#include <cmath>
#include <limits>
#include <random>

#include "fichier/crc16.h"
#include "fichier/lecteur.h"
#include "referent/fabrique_reference.h"

using namespace noxlux;
using namespace essai;

namespace {

// By tables and by products, in one call and in two: every length, at every alignment those of a few blocks.
TEST(Crc, commeBitABitQuelQueSoitLeDecoupage) {
  constexpr std::size_t LONGUEUR = 4096;
  constexpr std::size_t QUELQUES_BLOCS = 640;
  constexpr std::size_t ALIGNEMENTS = 16;
  std::mt19937 alea(20260101);
  Octets octets(LONGUEUR + ALIGNEMENTS);
  for (unsigned char& octet : octets) {
    octet = static_cast<unsigned char>(alea());
  }
  for (std::size_t debut = 0; debut < ALIGNEMENTS; ++debut) {
    unsigned registre = 0;  // bit by bit, as the definition says
    for (std::size_t n = 0; n <= LONGUEUR; registre = avancerBitABit(registre, octets[debut + n++])) {
      for (const Pliage& pliage : pliagesPossibles()) {
        if (n > QUELQUES_BLOCS && n % ALIGNEMENTS != debut) {
          continue;
        }
        Crc16 crc(pliage);
        const std::size_t coupe = alea() % (n + 1);
        crc.ajouter(&octets[debut], coupe);
        crc.ajouter(&octets[debut + coupe], n - coupe);
        ASSERT_EQ(crc.resultat(), (registre & 0xFFU) << 8 | registre >> 8) << n << " octets depuis " << debut;
      }
    }
  }
}

TEST(Crc, fichierDePlusieursBlocs) {
  Repertoire repertoire;
  for (const std::size_t taille : {4U, 5U, 65539U, 65540U, 65541U, 200000U}) {
    Octets octets(taille);
    for (std::size_t i = 0; i < taille; ++i) {
      octets[i] = static_cast<unsigned char>(i * i >> 3);
    }
    repertoire.ecrire("f", octets);
    std::FILE* fichier = std::fopen(repertoire.chemin("f").c_str(), "rb");
    std::uint16_t crc = 0;
    ASSERT_TRUE(calculerCRC16(fichier, crc));
    EXPECT_EQ(crc, crcBitABit(octets, 4)) << taille;
    std::fclose(fichier);
  }
}

TEST(Decimal, lecture) {
  const struct {
    byte octets[8];
    double valeur;
  } CAS[] = {
      {{0x00, 0x12, 0xF5, 0, 0, 0, 0, 0}, 12.5},
      {{0x10, 0x12, 0xF5, 0, 0, 0, 0, 0}, -12.5},
      {{0xA0, 0x12, 0xF5, 0, 0, 0, 0, 0}, -12.5},
      {{0x0F, 0x50, 0, 0, 0, 0, 0, 0}, 0.5},
      {{0x00, 0, 0, 0, 0, 0, 0x01, 0x2F}, 12},  // a point at the end is dropped
      {{0x09, 0x99, 0x99, 0x99, 0x99, 0x99, 0x99, 0x99}, 999999999999999.0},
      {{0x00, 0, 0, 0, 0, 0, 0, 0}, 0},
      {{0x10, 0, 0, 0, 0, 0, 0, 0}, 0},
      {{0x01, 0xA2, 0, 0, 0, 0, 0, 0}, 1},            // the number ends at what is no digit
      {{0x01, 0xF2, 0xF5, 0, 0, 0, 0, 0}, 1.25e-12},  // 12.50... once its first point is taken away
  };
  for (const auto& cas : CAS) {
    EXPECT_DOUBLE_EQ(convertirDecimal(cas.octets), cas.valeur);
    EXPECT_FALSE(std::signbit(convertirDecimal(cas.octets)) && cas.valeur == 0);
  }
}

TEST(Decimal, allerRetourExact) {
  byte octets[8];
  for (long centimes = 0; centimes < 3000000; centimes += 7) {
    const double valeur = static_cast<double>(centimes) / 100;
    ASSERT_TRUE(encoderDecimal(valeur, octets));
    ASSERT_EQ(convertirDecimal(octets), valeur);
  }
  for (const double valeur : {1.057, 0.125, 1.00000001, 999999.99999999, 99999999999999.0, 999999999999999.0,
                              12345678.9, -38.35, 0.1 + 0.7, 1e14 - 0.5}) {
    ASSERT_TRUE(encoderDecimal(valeur, octets));
    EXPECT_NEAR(convertirDecimal(octets), valeur, std::fabs(valeur) < 1e6 ? 5e-9 : 0.5) << valeur;
  }
  EXPECT_TRUE(encoderDecimal(1.057, octets));
  EXPECT_EQ(convertirDecimal(octets), 1.057);
  for (const double valeur : {1e15, -1e15, 999999999999999.9, std::numeric_limits<double>::infinity(),
                              std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_FALSE(encoderDecimal(valeur, octets)) << valeur;
  }
}

}  // namespace
