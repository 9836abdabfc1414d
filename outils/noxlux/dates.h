// Days as people and JSON write them, AAAA-MM-JJ or JJ/MM/AAAA, and as the library takes them, AAAAMMJJ.
#ifndef NOXLUX_COMMANDE_DATES_H
#define NOXLUX_COMMANDE_DATES_H

#include <optional>
#include <string>

namespace noxlux::commande {

// The digits of a text of the form AAAA-MM-JJ or JJ/MM/AAAA, whatever day they tell; none for another form.
inline std::optional<std::string> dateCompacte(const std::string& texte) {
  if (texte.size() == 10 && texte[4] == '-' && texte[7] == '-') {
    return texte.substr(0, 4) + texte.substr(5, 2) + texte.substr(8, 2);
  }
  if (texte.size() == 10 && texte[2] == '/' && texte[5] == '/') {
    return texte.substr(6, 4) + texte.substr(3, 2) + texte.substr(0, 2);
  }
  return std::nullopt;
}

// AAAA-MM-JJ. REQUIRES: at least 8 digits
inline std::string dateLisible(const std::string& chiffres) {
  return chiffres.substr(0, 4) + "-" + chiffres.substr(4, 2) + "-" + chiffres.substr(6, 2);
}

}  // namespace noxlux::commande

#endif
