// A small writer and reader of data zones, made from docs/formats.md alone: what the library builds is
// checked against it.
#ifndef NOXLUX_TESTS_BOUT_EN_BOUT_ZONES_ESSAI_H
#define NOXLUX_TESTS_BOUT_EN_BOUT_ZONES_ESSAI_H

#include <cstddef>
#include <initializer_list>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace essai {

struct Groupe {
  unsigned identifiant = 0;
  std::vector<std::string> champs;
  bool operator==(const Groupe&) const = default;
};
using Zone = std::vector<Groupe>;

inline std::ostream& operator<<(std::ostream& sortie, const Groupe& groupe) {
  sortie << groupe.identifiant << '[';
  for (const std::string& champ : groupe.champs) {
    sortie << '"' << champ << "\" ";
  }
  return sortie << ']';
}

inline std::string longueur(std::size_t n) {
  const unsigned octets = n < 128 ? 0 : n < 255 ? 1 : n < 65535 ? 2 : n < 16777215 ? 3 : 4;
  std::string resultat;
  if (octets == 0) {
    return std::string(1, static_cast<char>(n));
  }
  resultat += static_cast<char>(0x80 + octets);
  for (unsigned i = octets; i-- > 0;) {
    resultat += static_cast<char>((n >> (8 * i)) & 0xFF);
  }
  return resultat;
}

inline std::string ecrire(const Zone& zone) {
  std::string resultat;
  for (const Groupe& groupe : zone) {
    std::string contenu;
    for (const std::string& champ : groupe.champs) {
      contenu += longueur(champ.size()) + champ;
    }
    resultat += static_cast<char>(groupe.identifiant >> 8);
    resultat += static_cast<char>(groupe.identifiant & 0xFF);
    resultat += longueur(contenu.size()) + contenu;
  }
  return resultat;
}

// Takes a length prefix; false when it is cut or too large for what is left.
inline bool lireLongueur(std::string_view& reste, std::size_t& n) {
  if (reste.empty()) {
    return false;
  }
  const auto premier = static_cast<unsigned char>(reste.front());
  reste.remove_prefix(1);
  n = premier;
  if (premier > 0x80) {
    const std::size_t octets = premier - 0x80U;
    if (octets > 4 || reste.size() < octets) {
      return false;
    }
    n = 0;
    for (std::size_t i = 0; i < octets; ++i) {
      n = n << 8 | static_cast<unsigned char>(reste[i]);
    }
    reste.remove_prefix(octets);
  }
  return n <= reste.size();
}

// Reads a whole zone; false when its bytes do not end exactly with a group.
inline bool lire(std::string_view reste, Zone& zone) {
  zone.clear();
  while (!reste.empty()) {
    if (reste.size() < 3) {
      return false;
    }
    Groupe groupe;
    groupe.identifiant = static_cast<unsigned>(static_cast<unsigned char>(reste[0]) << 8 |
                                               static_cast<unsigned char>(reste[1]));
    reste.remove_prefix(2);
    std::size_t n = 0;
    if (!lireLongueur(reste, n)) {
      return false;
    }
    std::string_view contenu = reste.substr(0, n);
    reste.remove_prefix(n);
    while (!contenu.empty()) {
      if (!lireLongueur(contenu, n)) {
        return false;
      }
      groupe.champs.emplace_back(contenu.substr(0, n));
      contenu.remove_prefix(n);
    }
    zone.push_back(groupe);
  }
  return true;
}

}  // namespace essai

#endif
