// Values of a nomenclature as people read them, and the texts that importers put together.
#ifndef NOXLUX_COMPILATEUR_ECRITURE_VALEURS_H
#define NOXLUX_COMPILATEUR_ECRITURE_VALEURS_H

#include <cstdint>
#include <string>
#include <string_view>

#include "compilateur/transcodage.h"
#include "tables/valeurs_ligne.h"
#include "types/date.h"

namespace noxlux::compilateur {

// The menu above every other.
constexpr std::uint32_t MENU_RACINE = 1;

// A day as YYYY-MM-DD.
std::string jour(const DateBrute& date);

// A code in UTF-8; nothing for a blank one.
inline std::string enTexte(char code) {
  return code == ' ' || code == '\0' ? std::string() : std::string(1, code);
}
template <std::size_t N>
std::string enTexte(const CodeFixe<N>& code) {
  return versUtf8(code.vue());
}
inline std::string enTexte(const std::string& code) { return versUtf8(code); }
inline std::string enTexte(std::uint32_t code) { return std::to_string(code); }

// Adds a text below the others; an empty one adds nothing.
void ajouterTexte(std::string& textes, std::string_view texte);
// The first words of a label, at most as long as short labels are.
std::string abreger(std::string_view libelle);

}  // namespace noxlux::compilateur

#endif
