// The modification functions: each reads a key and a new value, and changes it from the effect date on.
#ifndef NOXLUX_INTERAPP_FONCTIONS_MODIFIER_H
#define NOXLUX_INTERAPP_FONCTIONS_MODIFIER_H

#include <cstdint>

#include "interapp/fonctions_donnees.h"
#include "referent/modification_donnees.h"

namespace noxlux {

class FonctionsModifier final : public FonctionsDonnees {
 public:
  // `acces` is not owned and holds the write access. REQUIRES: zin and acces not null
  FonctionsModifier(const Date& dateEffet, Zone* zin, const SuperGroupe* superGroupe,
                    ModificationDonnees* acces);

  // Runs the function of that number. 0xDFFF: there is none.
  CodeRetour executer(std::uint16_t numero);

 private:
  using Methode = CodeRetour (FonctionsModifier::*)();
  struct Table;

  // A key, a value, a change.
  template <Validite VALIDITE, auto CHANGEMENT>
  CodeRetour modifier();
  // A grouping code must be known at the effect date to be given to an act.
  void controlerRegroupement(CodeRetour& cr, const Code& code) const;
  // A new grouping code.
  CodeRetour TB13_1();

  // The effect date must be in the act's life: 0xD004.
  void controlerDateEffet(CodeRetour& cr, const Code& acte) const;

  Date dateEffet_;
  ModificationDonnees* acces_;
};

}  // namespace noxlux

#endif
