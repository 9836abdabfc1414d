// How values are shown to a person, and to a program.
#ifndef NOXLUX_COMMANDE_PRESENTATION_H
#define NOXLUX_COMMANDE_PRESENTATION_H

#include <optional>
#include <string>
#include <string_view>

#include "noxlux/zone_json.h"

namespace noxlux::commande {

// "1 234,56"
std::string nombreLisible(double valeur, unsigned decimales);
// "1 234,56 €"
std::string euros(double valeur);
// A number that JSON holds, in euros; a dash for anything else.
std::string eurosOuTiret(const Json& valeur);
// "1234.56", for CSV
std::string nombrePourProgramme(double valeur, unsigned decimales);
// What a person typed: a decimal point or comma, blanks between thousands, a euro sign at the end. Nothing
// for any other text.
std::optional<double> lireNombre(std::string_view texte);

// 15/01/2026 out of 2026-01-15; any other text as it is.
std::string dateFrancaise(const std::string& texte);

// A key of words for people ("date d'effet") as programs expect it: "dateEffet". Keys of one plain word stay.
std::string cleCamel(std::string_view mots);
// The same for every key of a value.
Json clesCamel(const Json& valeur);

// Without the spaces that codes are padded with.
std::string rogner(std::string texte);
// The same for every text of a value.
Json rognerTextes(Json valeur);

}  // namespace noxlux::commande

#endif
