// What passes between the service and a process that answers: bytes behind their number.
#ifndef NOXLUX_SERVEUR_TRAMES_H
#define NOXLUX_SERVEUR_TRAMES_H

#include <cstdint>
#include <cstring>
#include <optional>
#include <string>

namespace noxlux::serveur {

using TailleTrame = std::uint32_t;

inline std::string emballer(const std::string& octets) {
  const auto taille = static_cast<TailleTrame>(octets.size());
  std::string trame(sizeof taille, '\0');
  std::memcpy(trame.data(), &taille, sizeof taille);
  return trame + octets;
}

// The frame that stands at the beginning of what was received, taken out of it; none before its end is there.
inline std::optional<std::string> deballer(std::string& recu) {
  TailleTrame taille = 0;
  if (recu.size() < sizeof taille) {
    return std::nullopt;
  }
  std::memcpy(&taille, recu.data(), sizeof taille);
  if (recu.size() - sizeof taille < taille) {
    return std::nullopt;
  }
  std::string octets = recu.substr(sizeof taille, taille);
  recu.erase(0, sizeof taille + taille);
  return octets;
}

// The first frame of a process: that it is ready, or this and why it is not.
inline constexpr char PRET = 'P';
inline constexpr char ECHEC = 'E';

}  // namespace noxlux::serveur

#endif
