// Checks of the raw parameters that callers give to the exported functions.
#ifndef NOXLUX_INTERAPP_CONTROLEUR_PARAMETRES_H
#define NOXLUX_INTERAPP_CONTROLEUR_PARAMETRES_H

#include <optional>

#include "basics/codes_retour.h"
#include "manip/zone.h"
#include "types/date.h"

namespace noxlux {

class ControleurParametres {
 public:
  ControleurParametres() = delete;

  // Null, or empty when it must not be: 0xF802.
  static CodeRetour verifierChaine(const char* chaine, bool nonVide);
  // Null, or no day of the calendar: 0xF802.
  static CodeRetour verifierDate(const char* texte, Date& date);
  // A zone over the buffer. Null or empty: 0xF803, and no zone.
  static CodeRetour verifierZoneIn(void* buffer, unsigned int taille, std::optional<Zone>& zone);
  // Puts null and 0 at those of the two addresses that are not null. One of them null: 0xF800.
  static CodeRetour verifierZoneOut(void** buffer, unsigned int* taille);
  // 'O' or 'N'; otherwise 0xF802.
  static CodeRetour verifierBooleen(unsigned char caractere, bool& valeur);
  // Null: 0xF802 for an input (`parametre`), 0xF800 for an output.
  static CodeRetour verifierPointeur(const void* pointeur, bool parametre);
};

}  // namespace noxlux

#endif
