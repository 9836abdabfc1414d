// How a subcommand ends when it cannot answer.
#ifndef NOXLUX_COMMANDE_ERREURS_H
#define NOXLUX_COMMANDE_ERREURS_H

#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

namespace noxlux::commande {

constexpr int STATUT_REPONDU = 0;
constexpr int STATUT_CODE_ERREUR = 1;  // the library answered with an error code
constexpr int STATUT_MAUVAIS_USAGE = 2;

// Something the person typed, or a file they named, is wrong. Ends with status 2.
class ErreurUsage : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The library answered with an error code. Ends with status 1.
class ErreurBibliotheque : public std::runtime_error {
 public:
  ErreurBibliotheque(const std::string& fonction, unsigned short code,
                     nlohmann::ordered_json cause = nullptr);
  unsigned short code() const { return code_; }
  // {"code", "erreur", "cause"}: the last one, and what it says in the sentence, when it is known.
  nlohmann::ordered_json enJson() const;

 private:
  unsigned short code_;
  nlohmann::ordered_json cause_;
};

// What a return code says, in a French sentence without final stop.
std::string signification(unsigned short code);
// "0xD002"
std::string hexadecimal(unsigned short code);

}  // namespace noxlux::commande

#endif
