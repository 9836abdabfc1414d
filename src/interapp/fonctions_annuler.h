// The cancellation functions: each reads a key and undoes the local changes of its value.
#ifndef NOXLUX_INTERAPP_FONCTIONS_ANNULER_H
#define NOXLUX_INTERAPP_FONCTIONS_ANNULER_H

#include <cstdint>

#include "interapp/fonctions_donnees.h"
#include "referent/modification_donnees.h"

namespace noxlux {

class FonctionsAnnuler final : public FonctionsDonnees {
 public:
  // `acces` is not owned and holds the write access. REQUIRES: acces not null
  FonctionsAnnuler(Zone* zin, const SuperGroupe* superGroupe, ModificationDonnees* acces);

  // Runs the function of that number. 0xDFFF: there is none.
  CodeRetour executer(std::uint16_t numero);

 private:
  using Methode = CodeRetour (FonctionsAnnuler::*)();
  struct Table;

  template <auto ANNULATION>
  CodeRetour annuler();

  ModificationDonnees* acces_;
};

}  // namespace noxlux

#endif
