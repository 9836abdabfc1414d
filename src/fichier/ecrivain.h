// Writes the fields of the reference files, in the encoding that Lecteur reads.
#ifndef NOXLUX_FICHIER_ECRIVAIN_H
#define NOXLUX_FICHIER_ECRIVAIN_H

#include <cstdint>
#include <cstdio>
#include <string_view>

#include "basics/codes_retour.h"
#include "types/date.h"

namespace noxlux {

class Ecrivain {
 public:
  // Not owned. REQUIRES: not null.
  explicit Ecrivain(std::FILE* fichier);

  // Writes at the beginning of the file, out of any table.
  CodeRetour ecrireDebut(std::string_view texte);
  // A table header; the data size is filled in by ecrireTailleDonnees.
  CodeRetour ecrireEnteteTable(std::string_view identifiant, std::uint32_t nombreLignes);
  CodeRetour ecrireTailleDonnees();
  CodeRetour ecrireCRC(std::uint16_t crc);
  // Writes the current end of the file as the position of the act of that rank in an index table whose header
  // begins at `base` (24 = table header and act code of the first line).
  CodeRetour ecrirePositionActe(std::int32_t base, std::uint32_t rang);

  // Fields; each returns 0 or 0xD700.
  CodeRetour ecrireChaineFixe(std::string_view texte);
  CodeRetour ecrireChaineVariable(std::string_view texte);
  CodeRetour ecrireUnsignedChar(unsigned char valeur);
  CodeRetour ecrireUnsignedShort(std::uint16_t valeur);
  CodeRetour ecrireSignedShort(std::int16_t valeur);
  CodeRetour ecrireUnsignedLong(std::uint32_t valeur);
  CodeRetour ecrireSignedLong(std::int32_t valeur);
  CodeRetour ecrireDouble(double valeur);
  CodeRetour ecrireDate(const DateBrute& date);

  std::uint32_t lireTailleDonnees() const { return tailleDonnees_; }
  std::int32_t lirePositionFinFichier();

 private:
  CodeRetour positionner(std::int32_t position, int origine);
  CodeRetour ecrireBrut(const void* octets, std::size_t n);
  // Counted in the data size.
  CodeRetour ecrireOctets(const void* octets, std::size_t n);
  CodeRetour ecrireEnRetour(std::int32_t position, std::uint32_t valeur);
  template <class T>
  CodeRetour ecrireGrosBoutiste(T valeur);

  std::FILE* fichier_;
  std::uint32_t tailleDonnees_ = 0;
  std::int32_t positionTaille_ = 0;
};

// The 8 bytes of a packed decimal number: sign nibble, digits, and one nibble 15 for the decimal point. The
// value is rounded to at most 8 decimals. False when it does not fit.
bool encoderDecimal(double valeur, byte (&octets)[8]);

}  // namespace noxlux

#endif
