// Days as people and JSON write them, AAAA-MM-JJ, and as the library takes them, AAAAMMJJ.
#ifndef NOXLUX_COMMANDE_DATES_H
#define NOXLUX_COMMANDE_DATES_H

#include <optional>
#include <string>

namespace noxlux::commande {

// The digits of a text of the form AAAA-MM-JJ, whatever day they tell; none for another form.
inline std::optional<std::string> dateCompacte(const std::string& texte) {
  if (texte.size() != 10 || texte[4] != '-' || texte[7] != '-') {
    return std::nullopt;
  }
  return texte.substr(0, 4) + texte.substr(5, 2) + texte.substr(8, 2);
}

// AAAA-MM-JJ. REQUIRES: at least 8 digits
inline std::string dateLisible(const std::string& chiffres) {
  return chiffres.substr(0, 4) + "-" + chiffres.substr(4, 2) + "-" + chiffres.substr(6, 2);
}

}  // namespace noxlux::commande

#endif
