// Reads the fields of the reference files. Owns nothing: bound to one open file, whose own position stays
// where it was.
#ifndef NOXLUX_FICHIER_LECTEUR_H
#define NOXLUX_FICHIER_LECTEUR_H

#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

#include "basics/codes_retour.h"
#include "types/date.h"

namespace noxlux {

// End of a file met where a table header could begin.
constexpr CodeRetour FIN_DE_FICHIER = 0xFFFF;

// The number that the bytes of a word tell, the highest first.
template <class M>
M lireMot(const unsigned char* octets) {
  M mot = 0;
  std::memcpy(&mot, octets, sizeof mot);
  if constexpr (std::endian::native == std::endian::big || sizeof mot == 1) {
    return mot;
  } else if constexpr (sizeof mot == 2) {
    return __builtin_bswap16(mot);
  } else if constexpr (sizeof mot == 4) {
    return __builtin_bswap32(mot);
  } else {
    return __builtin_bswap64(mot);
  }
}

class Lecteur {
 public:
  // Takes the file at its current position, and measures what is left of it. REQUIRES: not null.
  explicit Lecteur(std::FILE* fichier);
  Lecteur(const Lecteur&) = delete;
  Lecteur& operator=(const Lecteur&) = delete;

  // The four digits that the file begins with.
  CodeRetour lireCRC(std::uint16_t& crc);
  // Table header. FIN_DE_FICHIER at the normal end of a file. A data size or a position beyond the file is
  // 0xD640.
  CodeRetour lireEnteteTable(char (&identifiant)[4], std::uint32_t& nombreLignes, std::int32_t& offset);
  // Skips the data of the table whose header was read last.
  CodeRetour tableSuivante();
  CodeRetour positionner(std::uint32_t position);

  // Fields, in file order; each returns 0 or 0xD640.
  CodeRetour lireChaineFixe(char* tampon, std::size_t n) {
    const bool lue = lireOctets(tampon, n);
    position_ = static_cast<std::int32_t>(offset());
    return lue ? NOX_CR_OK : NOX_CR_LECTURE_REFERENCE;
  }
  // Text up to `fin`, which is consumed. Out of memory: 0xDFFC.
  CodeRetour lireChaineVariable(std::string& texte, char fin = '\0');
  // The same, up to a zero byte, as a view that the next reading ends.
  CodeRetour lireChaineVariable(std::string_view& texte);
  CodeRetour lireUnsignedChar(unsigned char& valeur) { return lireGrosBoutiste(valeur); }
  CodeRetour lireUnsignedShort(std::uint16_t& valeur) { return lireGrosBoutiste(valeur); }
  CodeRetour lireSignedShort(std::int16_t& valeur) { return lireGrosBoutiste(valeur); }
  CodeRetour lireUnsignedLong(std::uint32_t& valeur) { return lireGrosBoutiste(valeur); }
  CodeRetour lireSignedLong(std::int32_t& valeur) { return lireGrosBoutiste(valeur); }
  CodeRetour lireDouble(double& valeur);
  CodeRetour lireDate(DateBrute& date);

  // Checks offered to the records.
  static bool controlerCode(std::string_view texte);
  static bool codeRenseigne(std::string_view texte);
  static bool controlerBooleen(char c) { return c == 'O' || c == 'N'; }
  static bool controlerCoefficient(double valeur) { return valeur >= 0; }

  // Where the last field began (for a fixed text: where it ended).
  std::int32_t positionChamp() const { return position_; }
  // Bytes between the current position and the end of the file: what a count may announce at most.
  std::uint64_t reste() const { return taille_ - offset(); }
  std::uint64_t taille() const { return taille_; }
  // The data size told by the table header read last.
  std::uint32_t tailleTable() const { return tailleTable_; }
  std::uint32_t positionCourante() const { return static_cast<std::uint32_t>(offset()); }

 private:
  // Where the next field begins.
  std::uint64_t offset() const { return finTampon_ - static_cast<std::uint64_t>(fin_ - curseur_); }
  // The next n bytes; false, all that is left taken, when there are fewer.
  bool lireOctets(void* cible, std::size_t n) {
    if (static_cast<std::size_t>(fin_ - curseur_) < n) [[unlikely]] {
      return lireAuDela(static_cast<unsigned char*>(cible), n);
    }
    std::memcpy(cible, curseur_, n);
    curseur_ += n;
    return true;
  }
  bool lireAuDela(unsigned char* cible, std::size_t n);
  bool remplir();
  // The n bytes of a value, at most TAILLE_VALEUR, where they stand; null when there are fewer.
  const unsigned char* prendre(std::size_t n) {
    position_ = static_cast<std::int32_t>(offset());
    if (static_cast<std::size_t>(fin_ - curseur_) < n) [[unlikely]] {
      return lireAuDela(valeur_, n) ? valeur_ : nullptr;
    }
    const unsigned char* const octets = curseur_;
    curseur_ += n;
    return octets;
  }
  template <class T>
  CodeRetour lireGrosBoutiste(T& valeur) {
    const unsigned char* const octets = prendre(sizeof(T));
    if (octets == nullptr) {
      return NOX_CR_LECTURE_REFERENCE;
    }
    valeur = static_cast<T>(lireMot<std::make_unsigned_t<T>>(octets));
    return NOX_CR_OK;
  }

  static constexpr std::size_t TAILLE_VALEUR = 8;
  // A record is mostly read by the first, small, reading at its place; tables by the larger ones that follow.
  static constexpr std::size_t PREMIERE_LECTURE = 4 * 1024;
  static constexpr std::size_t CAPACITE = 16 * 1024;

  int descripteur_;
  std::uint32_t tailleTable_ = 0;
  std::int32_t position_ = 0;
  std::uint64_t taille_ = 0;     // size of the file
  std::uint64_t finTampon_ = 0;  // place in the file of the end of what is read
  const unsigned char* curseur_ = tampon_;
  const unsigned char* fin_ = tampon_;
  std::size_t prochaineLecture_ = PREMIERE_LECTURE;
  unsigned char valeur_[TAILLE_VALEUR];  // one that the buffer does not hold whole
  std::string texte_;                    // a variable text that the buffer does not hold whole
  unsigned char tampon_[CAPACITE];
};

// The decimal number that a text begins with, past its spaces; 0 when there is none.
unsigned long lireNombreDecimal(std::string_view texte);

// Converts the 8 bytes of a packed decimal number.
double convertirDecimal(const byte* octets);

}  // namespace noxlux

#endif
