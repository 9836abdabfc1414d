#ifndef NOXLUX_TYPES_LISTE_CODES_H
#define NOXLUX_TYPES_LISTE_CODES_H

#include "types/texte.h"
#include "types/type_liste.h"

namespace noxlux {

// A list of codes, with set operations.
class ListeCodes final : public TypeListe<Code> {
 public:
  ListeCodes() = default;
  explicit ListeCodes(unsigned short capacite) : TypeListe<Code>(capacite) {}

  // Whether every code is valid and none occurs twice.
  bool estValide() const;
  // Same codes, in any order.
  bool operator==(const ListeCodes& autre) const;

  // Appends every code of `right` that this list lacks. Stops at the first append that fails.
  CodeRetour unionListe(const ListeCodes& right);
  CodeRetour unionListe(const ListeCodes& l1, const ListeCodes& l2);
  // Becomes the codes of liste1 that liste2 contains.
  CodeRetour intersectionListe(const ListeCodes& liste1, const ListeCodes& liste2);
};

}  // namespace noxlux

#endif
