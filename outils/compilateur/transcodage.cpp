#include "compilateur/transcodage.h"

#include <algorithm>
#include <cstdio>
#include <optional>

namespace noxlux::compilateur {

namespace {

struct Equivalence {
  char32_t caractere;
  std::string_view equivalent;  // ISO-8859-1
};

// Sorted by character.
constexpr Equivalence EQUIVALENCES[] = {
    {0x0152, "OE"},      {0x0153, "oe"},    {0x0178, "Y"},     {0x0192, "f"},     {0x02C6, "^"},
    {0x02DC, "~"},       {0x0391, "A"},     {0x0392, "B"},     {0x0394, "delta"}, {0x03B1, "alpha"},
    {0x03B2, "b\xEAta"}, {0x03B3, "gamma"}, {0x03B4, "delta"}, {0x03BC, "\xB5"},  {0x2009, " "},
    {0x200B, ""},        {0x2010, "-"},     {0x2011, "-"},     {0x2012, "-"},     {0x2013, "-"},
    {0x2014, "-"},       {0x2015, "-"},     {0x2018, "'"},     {0x2019, "'"},     {0x201A, ","},
    {0x201B, "'"},       {0x201C, "\""},    {0x201D, "\""},    {0x201E, "\""},    {0x2020, "+"},
    {0x2022, "-"},       {0x2026, "..."},   {0x202F, " "},     {0x2030, "o/oo"},  {0x2032, "'"},
    {0x2033, "\""},      {0x2039, "<"},     {0x203A, ">"},     {0x20AC, "EUR"},   {0x2122, "TM"},
    {0x2190, "<-"},      {0x2192, "->"},    {0x2212, "-"},     {0x2215, "/"},     {0x2248, "~"},
    {0x2260, "<>"},      {0x2264, "<="},    {0x2265, ">="},    {0xFEFF, ""}};

static_assert(std::is_sorted(std::begin(EQUIVALENCES), std::end(EQUIVALENCES),
                             [](const Equivalence& g, const Equivalence& d) {
                               return g.caractere < d.caractere;
                             }));

struct Decode {
  char32_t caractere = 0;
  std::size_t longueur = 0;
};

// The well-formed UTF-8 character that the text begins with.
std::optional<Decode> decoder(std::string_view texte) {
  const auto octet = [&](std::size_t i) { return static_cast<unsigned char>(texte[i]); };
  const unsigned char tete = octet(0);
  if (tete < 0x80) {
    return Decode{tete, 1};
  }
  const std::size_t longueur = tete >= 0xF0 ? 4 : (tete >= 0xE0 ? 3 : 2);
  if (tete < 0xC2 || tete > 0xF4 || texte.size() < longueur) {
    return std::nullopt;
  }
  char32_t caractere = tete & (0xFFU >> (longueur + 1));
  for (std::size_t i = 1; i < longueur; ++i) {
    if ((octet(i) & 0xC0U) != 0x80U) {
      return std::nullopt;
    }
    caractere = (caractere << 6U) | (octet(i) & 0x3FU);
  }
  constexpr char32_t MINIMA[] = {0, 0, 0x80, 0x800, 0x10000};
  if (caractere < MINIMA[longueur] || caractere > 0x10FFFF || (caractere >= 0xD800 && caractere < 0xE000)) {
    return std::nullopt;
  }
  return Decode{caractere, longueur};
}

const Equivalence* chercherEquivalence(char32_t caractere) {
  const auto* const trouve =
      std::lower_bound(std::begin(EQUIVALENCES), std::end(EQUIVALENCES), caractere,
                       [](const Equivalence& e, char32_t c) { return e.caractere < c; });
  return trouve != std::end(EQUIVALENCES) && trouve->caractere == caractere ? trouve : nullptr;
}

// 0x80 to 0x9F are control characters.
bool estLatin1(char32_t caractere) { return caractere < 0x80 || (caractere >= 0xA0 && caractere <= 0xFF); }

// Counts a character; beyond a number of different ones they are counted together.
void compter(std::vector<Remplacement>& liste, std::string_view caractere) {
  constexpr std::size_t DIFFERENTS_MAX = 256;
  const auto trouve = std::find_if(liste.begin(), liste.end(),
                                   [&](const Remplacement& connu) { return connu.caractere == caractere; });
  if (trouve != liste.end() || liste.size() > DIFFERENTS_MAX) {
    ++(trouve != liste.end() ? *trouve : liste.back()).nombre;
  } else {
    liste.push_back({std::string(liste.size() == DIFFERENTS_MAX ? "d'autres" : caractere), 1});
  }
}

}  // namespace

TexteLatin1 versLatin1(std::string_view utf8) {
  TexteLatin1 resultat;
  resultat.texte.reserve(utf8.size());
  while (!utf8.empty()) {
    const std::optional<Decode> decode = decoder(utf8);
    const std::size_t longueur = decode ? decode->longueur : 1;
    const Equivalence* equivalence = nullptr;
    if (decode && estLatin1(decode->caractere)) {
      resultat.texte += static_cast<char>(decode->caractere);
    } else if (decode && (equivalence = chercherEquivalence(decode->caractere)) != nullptr) {
      resultat.texte += equivalence->equivalent;
      compter(resultat.translitteres, utf8.substr(0, longueur));
    } else {
      char octet[8];
      std::snprintf(octet, sizeof octet, "0x%02X",
                    static_cast<unsigned>(static_cast<unsigned char>(utf8[0])));
      resultat.texte += '?';
      compter(resultat.sansEquivalent, decode ? utf8.substr(0, longueur) : std::string_view(octet));
    }
    utf8.remove_prefix(longueur);
  }
  return resultat;
}

std::string_view equivalentLatin1(std::string_view caractere) {
  const std::optional<Decode> decode = caractere.empty() ? std::nullopt : decoder(caractere);
  const Equivalence* const equivalence = decode ? chercherEquivalence(decode->caractere) : nullptr;
  return equivalence == nullptr ? std::string_view() : equivalence->equivalent;
}

std::size_t premierOctetInvalide(std::string_view texte) {
  std::size_t position = 0;
  while (position < texte.size()) {
    const std::optional<Decode> decode = decoder(texte.substr(position));
    if (!decode) {
      return position;
    }
    position += decode->longueur;
  }
  return std::string_view::npos;
}

std::string versUtf8(std::string_view latin1) {
  std::string resultat;
  resultat.reserve(latin1.size() + latin1.size() / 16);
  for (const char c : latin1) {
    const auto octet = static_cast<unsigned char>(c);
    if (octet < 0x80) {
      resultat += c;
    } else {
      resultat += static_cast<char>(0xC0U | (octet >> 6U));
      resultat += static_cast<char>(0x80U | (octet & 0x3FU));
    }
  }
  return resultat;
}

}  // namespace noxlux::compilateur
