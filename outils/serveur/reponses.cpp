#include "serveur/reponses.h"

#include <algorithm>

#include "noxlux/sortie.h"

namespace noxlux::serveur {

namespace {

struct Statut {
  int numero;
  const char* phrase;  // of the first line of an answer
  const char* code;    // of the body of a refusal
};
constexpr std::array STATUTS = {Statut{200, "OK", ""},
                                Statut{400, "Bad Request", "DEMANDE"},
                                Statut{401, "Unauthorized", "JETON"},
                                Statut{403, "Forbidden", "ORIGINE"},
                                Statut{404, "Not Found", "INTROUVABLE"},
                                Statut{405, "Method Not Allowed", "METHODE"},
                                Statut{408, "Request Timeout", "DELAI"},
                                Statut{411, "Length Required", "TAILLE_ABSENTE"},
                                Statut{413, "Content Too Large", "TAILLE"},
                                Statut{429, "Too Many Requests", "AFFLUENCE"},
                                Statut{431, "Request Header Fields Too Large", "ENTETE"},
                                Statut{503, "Service Unavailable", "INDISPONIBLE"}};

const Statut& trouver(int numero) {
  const auto* const trouve =
      std::find_if(STATUTS.begin(), STATUTS.end(), [&](const Statut& s) { return s.numero == numero; });
  return trouve == STATUTS.end() ? STATUTS.back() : *trouve;
}

}  // namespace

Json corpsDeRefus(const Refus& refus) {
  return {{"code", refus.code.empty() ? trouver(refus.statut).code : refus.code},
          {"message", refus.message},
          {"cause", refus.cause}};
}

std::string reponseHttp(int statut, const std::string& corps, bool fermer, bool teteSeule) {
  std::string reponse = "HTTP/1.1 " + std::to_string(statut) + " " + trouver(statut).phrase +
                        "\r\nContent-Type: " + JSON + "\r\nContent-Length: " + std::to_string(corps.size()) +
                        (fermer ? "\r\nConnection: close\r\n" : "\r\n");
  for (const auto& [nom, valeur] : CHAMPS_DE_SECURITE) {
    reponse += std::string(nom) + ": " + valeur + "\r\n";
  }
  if (statut == 401) {
    reponse += "WWW-Authenticate: Bearer\r\n";
  } else if (statut == 405) {
    reponse += "Allow: GET, HEAD, POST\r\n";
  } else if (statut == 429 || statut == 503) {
    reponse += "Retry-After: 1\r\n";
  }
  return reponse + "\r\n" + (teteSeule ? std::string() : corps);
}

std::string reponseDeRefus(const Refus& refus, bool fermer, bool teteSeule) {
  return reponseHttp(refus.statut, commande::texteJson(corpsDeRefus(refus), -1), fermer, teteSeule);
}

}  // namespace noxlux::serveur
