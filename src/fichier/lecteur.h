// Reads the fields of the reference files. Owns nothing: bound to one open file.
#ifndef NOXLUX_FICHIER_LECTEUR_H
#define NOXLUX_FICHIER_LECTEUR_H

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "basics/codes_retour.h"
#include "types/date.h"

namespace noxlux {

// End of a file met where a table header could begin.
constexpr CodeRetour FIN_DE_FICHIER = 0xFFFF;

class Lecteur {
 public:
  // Takes the file at its current position, and measures what is left of it. REQUIRES: not null.
  explicit Lecteur(std::FILE* fichier);

  // The four digits that the file begins with.
  CodeRetour lireCRC(std::uint16_t& crc);
  // Table header. FIN_DE_FICHIER at the normal end of a file. A data size or a position beyond the file is
  // 0xD640.
  CodeRetour lireEnteteTable(char (&identifiant)[4], std::uint32_t& nombreLignes, std::int32_t& offset);
  // Skips the data of the table whose header was read last.
  CodeRetour tableSuivante();
  CodeRetour positionner(std::uint32_t position);

  // Fields, in file order; each returns 0 or 0xD640.
  CodeRetour lireChaineFixe(char* tampon, std::size_t n);
  // Text up to `fin`, which is consumed. Out of memory: 0xDFFC.
  CodeRetour lireChaineVariable(std::string& texte, char fin = '\0');
  // The same, up to a zero byte, as a view that the next reading ends.
  CodeRetour lireChaineVariable(std::string_view& texte);
  CodeRetour lireUnsignedChar(unsigned char& valeur);
  CodeRetour lireUnsignedShort(std::uint16_t& valeur);
  CodeRetour lireSignedShort(std::int16_t& valeur);
  CodeRetour lireUnsignedLong(std::uint32_t& valeur);
  CodeRetour lireSignedLong(std::int32_t& valeur);
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
  std::uint64_t reste() const { return taille_ - offset_; }
  std::uint64_t taille() const { return taille_; }
  // The data size told by the table header read last.
  std::uint32_t tailleTable() const { return tailleTable_; }
  std::uint32_t positionCourante() const { return static_cast<std::uint32_t>(offset_); }

 private:
  bool lireOctets(void* cible, std::size_t n);
  template <class T>
  CodeRetour lireGrosBoutiste(T& valeur);

  std::FILE* fichier_;
  std::uint32_t tailleTable_ = 0;
  std::int32_t position_ = 0;
  std::uint64_t offset_ = 0;  // current position
  std::uint64_t taille_ = 0;  // size of the file
  std::string tampon_;        // the last variable text, its room kept for the next
};

// The decimal number that a text begins with, past its spaces; 0 when there is none.
unsigned long lireNombreDecimal(std::string_view texte);

// Converts the 8 bytes of a packed decimal number.
double convertirDecimal(const byte (&octets)[8]);

}  // namespace noxlux

#endif
