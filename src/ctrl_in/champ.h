// The description of one field of an input zone: what its bytes may be, and the value they stand for.
#ifndef NOXLUX_CTRL_IN_CHAMP_H
#define NOXLUX_CTRL_IN_CHAMP_H

#include <cstdint>
#include <string>
#include <vector>

#include "basics/codes_retour.h"
#include "manip/zone.h"
#include "types/liste_codes.h"

namespace noxlux {

class Champ {
 public:
  enum class Format : std::uint8_t { Alphanumerique, Numerique, Date, Libre, Indifferent };
  enum class Type : std::uint8_t { Code, Texte, Booleen, Date, Nombre, Montant, Coefficient, Taux, Aucun };

  // Sizes in bytes, 0 for no bound; an empty list allows every value. Out of memory: 0xDFFC.
  CodeRetour initialiser(Format format, Type type, std::uint16_t tailleMin, std::uint16_t tailleMax,
                         const ListeCodes& valeurs);

  // Whether the bytes agree with sizes, format and allowed values: 0 or 0x9000 (0xDFFF for an unknown
  // format).
  CodeRetour controler(Octets donnees) const;
  // Without their padding: leading zeros of a number, trailing spaces of a text.
  Octets reduire(Octets donnees) const;
  // Checks, reduces and converts to a value type of zones. A field without type gives T() and 0; one that is
  // described as another type is 0xDFFF.
  template <class T>
  CodeRetour transformer(Octets donnees, T& valeur) const;

  Format lireFormat() const { return format_; }
  Type lireType() const { return type_; }
  void dump() const;

 private:
  CodeRetour controler(Octets donnees, byte& classes) const;
  CodeRetour refuserTaille(std::size_t longueur) const;
  CodeRetour controlerFormat(Octets donnees, byte& classes) const;
  CodeRetour controlerValeurs(Octets donnees) const;
  template <class T>
  bool estDecritComme() const;
  CodeRetour controlerType(Octets donnees) const;
  CodeRetour refuserType() const;

  Format format_ = Format::Indifferent;
  Type type_ = Type::Aucun;
  std::uint16_t tailleMin_ = 0;
  std::uint16_t tailleMax_ = 0;
  std::vector<std::string> valeursAutorisees_;
};

}  // namespace noxlux

#endif
