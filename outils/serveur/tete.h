// The head of an HTTP request: its first line and its fields.
#ifndef NOXLUX_SERVEUR_TETE_H
#define NOXLUX_SERVEUR_TETE_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace noxlux::serveur {

// Longer heads are refused.
constexpr std::size_t TETE_MAX = 16384;
constexpr std::size_t CIBLE_MAX = 4096;

struct Tete {
  std::string methode;
  std::string cible;  // path and query, as sent
  std::string version;
  std::vector<std::pair<std::string, std::string>> champs;  // names in small letters
  std::size_t taille = 0;                                   // bytes, blank line included

  // Null when the field was not sent.
  const std::string* champ(std::string_view nom) const;
  std::size_t nombre(std::string_view nom) const;
  // The path alone.
  std::string chemin() const { return cible.substr(0, cible.find('?')); }
  // Whether the connection is to be closed behind the answer.
  bool fermeture() const;
};

enum class Lecture { INCOMPLETE, MAL_FORMEE, COMPLETE };

// Reads a head out of the first bytes of a request.
Lecture lireTete(std::string_view octets, Tete& tete);

// The number that Content-Length tells; none when it tells none.
std::optional<std::size_t> lireTaille(const std::string& texte);

}  // namespace noxlux::serveur

#endif
