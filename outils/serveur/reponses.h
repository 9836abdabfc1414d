// Answers: what all of them carry, and those that refuse.
#ifndef NOXLUX_SERVEUR_REPONSES_H
#define NOXLUX_SERVEUR_REPONSES_H

#include <array>
#include <string>
#include <utility>

#include "noxlux/zone_json.h"

namespace noxlux::serveur {

using commande::Json;

inline constexpr const char* JSON = "application/json; charset=utf-8";
inline constexpr const char* NDJSON = "application/x-ndjson; charset=utf-8";

// Nothing but the service's own files is run or fetched by the page, no other page frames or reads it, and
// nothing of an answer is kept by the browser.
inline constexpr std::array<std::pair<const char*, const char*>, 7> CHAMPS_DE_SECURITE = {
    {{"Content-Security-Policy",
      "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; "
      "base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
     {"X-Content-Type-Options", "nosniff"},
     {"X-Frame-Options", "DENY"},
     {"Referrer-Policy", "no-referrer"},
     {"Cross-Origin-Opener-Policy", "same-origin"},
     {"Cross-Origin-Resource-Policy", "same-origin"},
     {"Cache-Control", "no-store"}}};

// Why a request is refused. `cause` is null, or what decided: a value, a limit, a proposal.
struct Refus {
  int statut = 400;
  std::string message;
  Json cause = nullptr;
  std::string code = {};  // the library's; empty: that of the status
};

// {"code", "message", "cause"}
Json corpsDeRefus(const Refus& refus);

// A whole HTTP answer; without its body for a HEAD.
std::string reponseHttp(int statut, const std::string& corps, bool fermer, bool teteSeule = false);
std::string reponseDeRefus(const Refus& refus, bool fermer, bool teteSeule = false);

}  // namespace noxlux::serveur

#endif
