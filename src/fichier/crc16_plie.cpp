// Bytes are read as a polynomial whose highest coefficient is bit 0 of the first byte. Sixteen bytes followed
// by a distance of D bits weigh their polynomial times x^D: modulo the polynomial of the checksum, each half
// of them times a constant of 16 bits. The sum of both products fits sixteen bytes again and is added to the
// block that stands D bits further. Four blocks are folded side by side: a product takes longer than the
// processor takes to start the next one; processors that multiply two blocks at once fold pairs.
#include "fichier/crc16_plie.h"

#include <immintrin.h>

namespace noxlux {

namespace {

// x^degre modulo the polynomial, as the high end of a word.
constexpr std::uint64_t puissance(unsigned degre) {
  unsigned reste = 1U << 15;  // x^0: the register holds its highest coefficient in bit 0
  for (; degre != 0; --degre) {
    reste = (reste >> 1) ^ ((reste & 1U) != 0 ? POLYNOME_CRC16 : 0U);
  }
  return static_cast<std::uint64_t>(reste) << 48;
}

// What the first and the second half of a block are multiplied by to move it BITS further. The product of two
// words read in this order comes out multiplied by x: the powers are one lower than the distances.
template <unsigned BITS>
[[gnu::target("sse2")]] inline __m128i facteurs() {
  return _mm_set_epi64x(static_cast<long long>(puissance(BITS - 1)),
                        static_cast<long long>(puissance(BITS + 63)));
}

template <unsigned BITS>
[[gnu::target("pclmul,sse2")]] inline __m128i plier(__m128i bloc, __m128i suivant) {
  const __m128i facteur = facteurs<BITS>();
  return _mm_xor_si128(suivant, _mm_xor_si128(_mm_clmulepi64_si128(bloc, facteur, 0x00),
                                              _mm_clmulepi64_si128(bloc, facteur, 0x11)));
}

[[gnu::target("sse2")]] inline __m128i lireBloc(const byte* octets) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(octets));
}

// Two blocks at once.
template <unsigned BITS>
[[gnu::target("vpclmulqdq,avx2")]] inline __m256i plierPaire(__m256i paire, __m256i suivante) {
  const __m256i facteur = _mm256_broadcastsi128_si256(facteurs<BITS>());
  return _mm256_xor_si256(suivante, _mm256_xor_si256(_mm256_clmulepi64_epi128(paire, facteur, 0x00),
                                                     _mm256_clmulepi64_epi128(paire, facteur, 0x11)));
}

[[gnu::target("avx2")]] inline __m256i lirePaire(const byte* octets) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(octets));
}

// The register is the end of a block that would stand before the first.
[[gnu::target("pclmul,sse2")]] inline __m128i premierBloc(std::uint16_t registre, const byte* octets) {
  return plier<128>(_mm_slli_si128(_mm_cvtsi32_si128(registre), 14), lireBloc(octets));
}

[[gnu::target("pclmul,sse2")]] void plierBlocs(std::uint16_t registre, const byte* octets, std::size_t n,
                                               byte* residu) {
  __m128i a = premierBloc(registre, octets);
  __m128i b = lireBloc(octets + 16);
  __m128i c = lireBloc(octets + 32);
  __m128i d = lireBloc(octets + 48);
  for (const byte* fin = octets + n; (octets += 64) != fin;) {
    a = plier<512>(a, lireBloc(octets));
    b = plier<512>(b, lireBloc(octets + 16));
    c = plier<512>(c, lireBloc(octets + 32));
    d = plier<512>(d, lireBloc(octets + 48));
  }
  const __m128i reste = plier<128>(plier<128>(plier<128>(a, b), c), d);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(residu), reste);
}

[[gnu::target("vpclmulqdq,pclmul,avx2")]] void plierPaires(std::uint16_t registre, const byte* octets,
                                                           std::size_t n, byte* residu) {
  __m256i a = _mm256_inserti128_si256(lirePaire(octets), premierBloc(registre, octets), 0);
  __m256i b = lirePaire(octets + 32);
  __m256i c = lirePaire(octets + 64);
  __m256i d = lirePaire(octets + 96);
  for (const byte* fin = octets + n; (octets += 128) != fin;) {
    a = plierPaire<1024>(a, lirePaire(octets));
    b = plierPaire<1024>(b, lirePaire(octets + 32));
    c = plierPaire<1024>(c, lirePaire(octets + 64));
    d = plierPaire<1024>(d, lirePaire(octets + 96));
  }
  const __m256i paire = plierPaire<256>(plierPaire<256>(plierPaire<256>(a, b), c), d);
  const __m128i reste = plier<128>(_mm256_castsi256_si128(paire), _mm256_extracti128_si256(paire, 1));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(residu), reste);
}

}  // namespace

std::array<Pliage, 3> pliagesPossibles() {
  std::array<Pliage, 3> pliages{};
  std::size_t nombre = 0;
  if (__builtin_cpu_supports("vpclmulqdq") != 0 && __builtin_cpu_supports("avx2") != 0) {
    pliages[nombre++] = {plierPaires, 128};
  }
  if (__builtin_cpu_supports("pclmul") != 0) {
    pliages[nombre] = {plierBlocs, 64};
  }
  return pliages;
}

}  // namespace noxlux
