// System services: zone memory, configuration directory, identifier comparison, version follow-up files.
#ifndef NOXLUX_BASICS_SYSTEME_H
#define NOXLUX_BASICS_SYSTEME_H

#include <cstdint>
#include <string>

#include "basics/codes_retour.h"

namespace noxlux {

class Systeme {
 public:
  Systeme() = delete;

  // A block of `taille` bytes. Failure: 0xF801, `zone` null.
  static CodeRetour allouer(void*& zone, unsigned int taille);
  // Frees a block of `allouer`; null is ignored.
  static void liberer(void* zone);
  // The configuration directory, as the host last set it; null means the current directory.
  static CodeRetour lireRepertoireSysteme(const char*& repertoire);
  // Compares with 'A'..'Z' folded to lower case; negative, zero or positive.
  static int comparerIdentifiant(const char* gauche, const char* droite);
  // The first 8 characters of an identifier as a number that sorts as they do in that comparison.
  static std::uint64_t prefixeIdentifiant(const char* identifiant);
  // Whether that number tells the whole identifier.
  static constexpr bool estPrefixeEntier(std::uint64_t prefixe) { return (prefixe & 0xFFU) == 0; }
};

// The files by which the host's installation knows which versions run.
class SuiviDeParc {
 public:
  SuiviDeParc() = delete;

  // The key repertoiretravail of section COMMUN, read anew from the INI file. Absent: 0xF6F1.
  static CodeRetour lireRepertoire(std::string& repertoire);
  // Writes `version` into the file <numero>.adm of the directory. Failure: 0xF6F2.
  static CodeRetour sauvegarderVersion(const char* repertoire, unsigned short numero, const char* version);
};

}  // namespace noxlux

#endif
