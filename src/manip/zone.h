// The data zone: the byte buffer in which every request and every answer travels.
//
// A zone is a sequence of groups; a group is an identifier (2 bytes), a length and a sequence of fields; a
// field is a length and bytes. Numbers are big-endian. A length is one byte up to 127; above, the bytes 0x81
// to 0x84 announce 1 to 4 bytes of length. Nothing of this is trusted: every length is compared with what is
// left.
#ifndef NOXLUX_MANIP_ZONE_H
#define NOXLUX_MANIP_ZONE_H

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

#include "basics/assertion.h"
#include "basics/codes_retour.h"
#include "types/texte.h"
#include "types/type_donnee.h"

namespace noxlux {

// The bytes of a field, in the zone's buffer.
using Octets = std::span<const byte>;
inline Octets enOctets(std::string_view texte) {
  return {reinterpret_cast<const byte*>(texte.data()), texte.size()};
}

// Reads and writes a zone through a cursor on one group and one field of it. The buffer is not owned.
// An operation that fails leaves the buffer as it was.
class Zone {
 public:
  // An empty zone in a new block of `taille` bytes (1 if 0) of Systeme::allouer, which whoever makes the zone
  // must free: see ZoneSortie. Out of memory: the zone is not ok().
  explicit Zone(std::uint32_t taille);
  // A zone over bytes that are there, all of them data.
  Zone(byte* buffer, std::uint32_t taille);

  bool ok() const { return buffer_ != nullptr && tailleBuffer_ != 0; }
  // Moves the data to a new block and frees the old one. Below the data size, or out of memory: 0xF801.
  CodeRetour redimensionner(std::uint32_t taille);

  byte* lireBuffer() const { return buffer_; }
  std::uint32_t lireTailleBuffer() const { return tailleBuffer_; }
  std::uint32_t lireTailleDonnees() const { return tailleDonnees_; }

  // --- Cursor ---
  void positionnerDebut();
  // To the end of the last field of the last group.
  CodeRetour positionnerFin();
  // Whether the current group is the last of the zone; the current field the last of its group, of the zone.
  bool finZone() const { return finGroupeCourant() >= tailleDonnees_; }
  bool finGroupe() const { return finChampCourant() >= finGroupeCourant(); }
  bool finDonnees() const { return finChampCourant() >= tailleDonnees_; }

  // `nombre` groups forward; with `parChamps`, by way of the fields left in each group, which are then
  // checked and counted. 0xF805 at the end of the zone, 0xF810. REQUIRES: nombre > 0
  CodeRetour avancerGroupeSuivant(std::uint16_t& identifiant, int nombre = 1, bool parChamps = false);
  // `nombre` fields forward in the current group. 0xF805 at the end of the group, 0xF810.
  // REQUIRES: nombre > 0
  CodeRetour avancerChampSuivant(std::uint16_t& numero, Octets& donnees, std::uint16_t nombre = 1) {
    exiger(ok(), "ok()");
    exiger(nombre > 0, "nombre > 0");
    CodeRetour cr = NOX_CR_OK;
    for (; cr == NOX_CR_OK && nombre > 0; --nombre) {
      cr = avancerUnChamp();
    }
    if (cr == NOX_CR_OK) {
      numero = numeroChamp_;
      donnees = donneesChamp();
    }
    return cr;
  }
  // 0xF805 when there is no current field.
  CodeRetour lireChampCourant(std::uint16_t& identifiant, std::uint16_t& numero, Octets& donnees) const;
  // The next group's identifier, without moving.
  CodeRetour lireGroupeSuivant(std::uint16_t& identifiant) const;
  // The same, and which occurrence of its identifier it is; the cursor ends on that group.
  CodeRetour lireGroupeSuivant(std::uint16_t& identifiant, std::uint16_t& occurrence);

  // --- Search ---
  // An occurrence of a group, from the start. Not found: 0xF805 for the first one, 0xF806 for a later one.
  CodeRetour rechercherGroupe(std::uint16_t identifiant, std::uint16_t occurrence);
  // The `nombre`-th next group of that identifier, from the cursor; codes as above. REQUIRES: nombre > 0
  CodeRetour rechercherGroupeSuivant(std::uint16_t identifiant, std::uint16_t nombre = 1);
  // REQUIRES: occurrenceGroupe > 0, numero > 0
  CodeRetour rechercherChamp(std::uint16_t identifiant, std::uint16_t occurrenceGroupe, std::uint16_t numero,
                             Octets& donnees);

  // --- Writing ---
  // An empty group after the current one; it becomes current. 0xF804 buffer full.
  CodeRetour ajouterGroupe(std::uint16_t identifiant);
  // A field after the current one; it becomes current. 0xF804 buffer full, 0xF809 no current group.
  CodeRetour ajouterChamp(Octets donnees);
  CodeRetour ajouterChamp(const Texte& texte);
  // The value's byte form. 0xDFFC when it has none for want of memory.
  CodeRetour ajouterChamp(const TypeSimple& valeur);
  // Overwrites the current field by as many bytes. 0xF805 no current field, 0xDFFF another length.
  CodeRetour modifierChamp(Octets donnees);

  // --- Where the cursor is ---
  // Identifier of the current group, 0 before the first.
  std::uint16_t lireIdentifiant() const { return identifiant_; }
  // Number of the current field in its group, 0 for none.
  std::uint16_t lireNumeroChamp() const { return numeroChamp_; }
  // Groups (65535 for more) and fields passed since the start, the current ones included.
  std::uint16_t lireNombreGroupes() const { return nombreGroupes_; }
  std::uint32_t lireNombreChamps() const { return nombreChamps_; }

  // --- Sizes ---
  // Bytes that the encoding of a length takes: 1 to 5.
  static constexpr std::size_t calculerTailleLongueur(std::size_t n) {
    // The largest value of each size goes with the next one.
    return n < 0x80 ? 1 : n < 0xFF ? 2 : n < 0xFFFF ? 3 : n < 0xFFFFFF ? 4 : 5;
  }
  // Size of a field of n data bytes; of a group whose content is n bytes; of a group of fields of these
  // lengths.
  static std::size_t calculerTailleChamp(std::size_t n) { return calculerTailleLongueur(n) + n; }
  static std::size_t calculerTailleGroupe(std::size_t n) { return 2 + calculerTailleLongueur(n) + n; }
  static std::size_t calculerTailleGroupe(std::initializer_list<std::size_t> longueurs);

  // --- Diagnostics ---
  void dump() const;
  // A printable copy of a field, cut to n characters. REQUIRES: n < 255
  static std::string dumpChamp(Octets donnees, std::size_t n = 60);

 private:
  // First byte of a length from which it tells how many bytes follow; itself a length.
  static constexpr byte LONGUEUR_COURTE_MAX = 0x80;

  // A length as it is encoded: the bytes it takes and its value.
  struct Longueur {
    std::uint32_t taillePrefixe = 0;
    std::uint32_t valeur = 0;
  };
  struct EnteteGroupe {
    std::uint16_t identifiant = 0;
    std::uint32_t taille = 0;    // identifier and length
    std::uint32_t longueur = 0;  // content
  };

  std::uint32_t finGroupeCourant() const { return positionGroupe_ + tailleEntete_ + longueurGroupe_; }
  std::uint32_t finChampCourant() const { return positionChamp_ + taillePrefixe_ + longueurChamp_; }
  Octets donneesChamp() const { return {buffer_ + positionChamp_ + taillePrefixe_, longueurChamp_}; }

  CodeRetour decoderLongueur(std::uint32_t position, Longueur& longueur) const {
    const byte premier = buffer_[position];
    if (premier > LONGUEUR_COURTE_MAX) [[unlikely]] {
      return decoderLongueurLongue(position, longueur);
    }
    longueur = {1, premier};
    return NOX_CR_OK;
  }
  CodeRetour decoderLongueurLongue(std::uint32_t position, Longueur& longueur) const;
  CodeRetour decoderEntete(std::uint32_t position, EnteteGroupe& entete) const;
  CodeRetour avancerUnGroupe();
  CodeRetour avancerUnChamp();
  static CodeRetour refuserChampLong(std::uint32_t longueur);
  static CodeRetour refuserFinGroupe();
  CodeRetour avancerFinGroupe();
  void positionnerAvantChamps();
  void decalerFin(std::uint32_t position, std::uint32_t decalage);
  void ecrireLongueur(std::uint32_t position, std::uint32_t taillePrefixe, std::uint32_t longueur);
  CodeRetour insererChamp(Octets donnees);
  CodeRetour refuserBufferPlein() const;
  void dumpGroupes();

  std::uint16_t identifiant_ = 0;
  std::uint32_t positionGroupe_ = 0;
  std::uint32_t tailleEntete_ = 0;
  std::uint32_t longueurGroupe_ = 0;
  std::uint16_t nombreGroupes_ = 0;
  std::uint16_t numeroChamp_ = 0;
  std::uint32_t positionChamp_ = 0;
  std::uint32_t taillePrefixe_ = 0;
  std::uint32_t longueurChamp_ = 0;
  std::uint32_t nombreChamps_ = 0;
  byte* buffer_ = nullptr;
  std::uint32_t tailleBuffer_ = 0;
  std::uint32_t tailleDonnees_ = 0;
};

inline CodeRetour Zone::avancerUnChamp() {
  if (finGroupe()) [[unlikely]] {
    return refuserFinGroupe();
  }
  const std::uint32_t position = finChampCourant();
  Longueur longueur;
  if (const CodeRetour cr = decoderLongueur(position, longueur); cr != NOX_CR_OK) [[unlikely]] {
    return cr;
  }
  const std::uint32_t reste = finGroupeCourant() - position;
  if (longueur.taillePrefixe > reste || longueur.valeur > reste - longueur.taillePrefixe) [[unlikely]] {
    return refuserChampLong(longueur.valeur);
  }
  positionChamp_ = position;
  taillePrefixe_ = longueur.taillePrefixe;
  longueurChamp_ = longueur.valeur;
  compter(numeroChamp_);
  ++nombreChamps_;
  return NOX_CR_OK;
}

}  // namespace noxlux

#endif
