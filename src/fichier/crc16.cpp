#include "fichier/crc16.h"

#include <array>
#include <cstring>
#include <utility>

namespace noxlux {

namespace {

constexpr std::size_t PAS = 16;  // bytes taken at a time

// TABLES[k][b]: what byte b leaves in the register once it and k zero bytes have been shifted out.
using TablesCrc = std::array<std::array<std::uint32_t, 256>, PAS>;

constexpr TablesCrc calculerTables() {
  TablesCrc tables{};
  for (unsigned b = 0; b < 256; ++b) {
    unsigned registre = b;
    for (int i = 0; i < 8; ++i) {
      registre = (registre >> 1) ^ ((registre & 1U) != 0 ? POLYNOME_CRC16 : 0U);
    }
    tables[0][b] = registre;
  }
  for (std::size_t k = 1; k < PAS; ++k) {
    for (unsigned b = 0; b < 256; ++b) {
      const unsigned precedent = tables[k - 1][b];
      tables[k][b] = (precedent >> 8) ^ tables[0][precedent & 0xFFU];
    }
  }
  return tables;
}

constexpr TablesCrc TABLES = calculerTables();

constexpr unsigned avancer(unsigned registre, unsigned octet) {
  return TABLES[0][registre & 0xFFU] ^ ((registre | octet << 16) >> 8);
}

// What the bytes of a word leave, `SUIVANTS` more following the last of them. Low byte first, as on x86.
template <std::size_t SUIVANTS, std::size_t... I>
inline unsigned reduire(std::uint32_t mot, std::index_sequence<I...>) {
  return (TABLES[SUIVANTS + sizeof...(I) - 1 - I][(mot >> (8 * I)) & 0xFFU] ^ ...);
}

inline std::uint32_t lireMot(const byte* octets) {
  std::uint32_t mot = 0;
  std::memcpy(&mot, octets, sizeof mot);
  return mot;
}

// Sixteen bytes leave the register: its own two, then the first fourteen of the block; the last two of the
// block stay in it. The block is reduced first: only two look-ups wait for the register.
inline unsigned avancerBloc(unsigned registre, const byte* octets) {
  using Mot = std::make_index_sequence<4>;
  using DemiMot = std::make_index_sequence<2>;
  const std::uint32_t dernier = lireMot(octets + 12);
  const unsigned bloc = reduire<10>(lireMot(octets), Mot{}) ^ reduire<6>(lireMot(octets + 4), Mot{}) ^
                        reduire<2>(lireMot(octets + 8), Mot{}) ^ reduire<0>(dernier, DemiMot{}) ^
                        dernier >> 16;
  return bloc ^ reduire<14>(registre, DemiMot{});
}

unsigned avancerParTables(unsigned registre, const byte* octets, std::size_t n) {
  for (; n >= PAS; n -= PAS, octets += PAS) {
    registre = avancerBloc(registre, octets);
  }
  for (; n != 0; --n) {
    registre = avancer(registre, *octets++);
  }
  return registre;
}

}  // namespace

void Crc16::ajouter(const byte* octets, std::size_t n) {
  if (pliage_.plier != nullptr && n >= pliage_.pas) {
    const std::size_t plies = n - n % pliage_.pas;
    byte residu[TAILLE_RESIDU];
    pliage_.plier(registre_, octets, plies, residu);
    registre_ = static_cast<std::uint16_t>(avancerParTables(0, residu, TAILLE_RESIDU));
    octets += plies;
    n -= plies;
  }
  registre_ = static_cast<std::uint16_t>(avancerParTables(registre_, octets, n));
}

bool calculerCRC16(std::FILE* fichier, std::uint16_t& crc) {
  constexpr long DEBUT = 4;
  if (std::fseek(fichier, DEBUT, SEEK_SET) != 0) {
    return false;
  }
  constexpr std::size_t TAILLE_BLOC = 64 * 1024;
  byte bloc[TAILLE_BLOC];
  Crc16 calcul;
  std::size_t lus = TAILLE_BLOC;
  while (lus == TAILLE_BLOC) {
    lus = std::fread(bloc, 1, TAILLE_BLOC, fichier);
    calcul.ajouter(bloc, lus);
  }
  crc = calcul.resultat();
  return std::ferror(fichier) == 0;
}

std::uint16_t Crc16::resultat() const {
  return static_cast<std::uint16_t>((registre_ & 0xFFU) << 8 | registre_ >> 8);
}

}  // namespace noxlux
