// The data-control functions: one yes/no question about data at a date.
#ifndef NOXLUX_INTERAPP_FONCTIONS_CONTROLER_H
#define NOXLUX_INTERAPP_FONCTIONS_CONTROLER_H

#include <cstdint>

#include "interapp/fonctions.h"

namespace noxlux {

class Reglementation;

class FonctionsControler final : public Fonctions {
 public:
  // Neither is owned. REQUIRES: zin and reglementation not null
  FonctionsControler(const Date& dateReference, Zone* zin, const SuperGroupe* superGroupe,
                     Reglementation* reglementation);

  // Asks the question of that number. 0xDFFF: there is none.
  CodeRetour executer(std::uint16_t numero, Booleen& resultat);

 private:
  struct Table;

  // Reads the fields in order, then asks the rule about them at the reference date.
  template <auto REGLE, auto... EXTRAIRE>
  CodeRetour demander(Booleen& resultat);

  Date dateReference_;
  Reglementation* reglementation_;
};

}  // namespace noxlux

#endif
