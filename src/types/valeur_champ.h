// The typed value of one zone field.
#ifndef NOXLUX_TYPES_VALEUR_CHAMP_H
#define NOXLUX_TYPES_VALEUR_CHAMP_H

#include <variant>

#include "types/booleen.h"
#include "types/date.h"
#include "types/decimal.h"
#include "types/texte.h"

namespace noxlux {

// std::monostate: a field described without type.
using ValeurChamp = std::variant<std::monostate, Code, Texte, Booleen, Date, Nombre, Montant, Coefficient>;

}  // namespace noxlux

#endif
