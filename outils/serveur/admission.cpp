#include "serveur/admission.h"

#include <arpa/inet.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>

namespace noxlux::serveur {

namespace {

// What can be had without a token: files that hold no data, and whether the service lives.
constexpr std::array<std::string_view, 6> SANS_JETON = {"/",          "/page.css",     "/page.js",
                                                        "/icone.svg", "/openapi.json", "/sante"};

// The names and addresses that a browser may know the service by, with its port.
std::vector<std::string> hotesAdmis(const Adresse& adresse, const Options& options) {
  std::vector<std::string> hotes{adresse.hote};
  if (adresse.locale) {
    hotes.emplace_back("localhost");
  }
  for (std::string& hote : hotes) {
    hote += ":" + std::to_string(adresse.port);
  }
  if (adresse.port == 80) {
    hotes.push_back(adresse.hote);
  }
  // A name may stand for a server before this one, at a port of its own.
  hotes.insert(hotes.end(), options.noms.begin(), options.noms.end());
  return hotes;
}

bool estDesNotres(const std::string& hote, const Adresse& adresse, const Options& options) {
  const std::vector<std::string> admis = hotesAdmis(adresse, options);
  return std::find(admis.begin(), admis.end(), hote) != admis.end();
}

// Takes as long for every token of one length.
bool memeTexte(std::string_view gauche, std::string_view droite) {
  unsigned differences = gauche.size() == droite.size() ? 0U : 1U;
  for (std::size_t i = 0; i < gauche.size(); ++i) {
    const char autre = i < droite.size() ? droite[i] : '\0';
    differences |= static_cast<unsigned>(gauche[i] != autre);
  }
  return differences == 0;
}

std::optional<Refus> refuserProvenance(const Tete& tete, const Adresse& adresse, const Options& options) {
  const std::string* const hote = tete.champ("host");
  if (hote == nullptr || tete.nombre("host") > 1) {
    return Refus{400, "la demande doit dire une fois à quel hôte elle s'adresse (Host)"};
  }
  if (!estDesNotres(*hote, adresse, options)) {
    return Refus{403, "ce service n'est pas celui de cet hôte (Host) ; --nom en admet d'autres", *hote};
  }
  const std::string* const origine = tete.champ("origin");
  if (origine == nullptr) {
    return std::nullopt;
  }
  const std::size_t schema = origine->find("://");
  if (schema == std::string::npos || !estDesNotres(origine->substr(schema + 3), adresse, options)) {
    return Refus{403, "une page d'un autre site ne peut rien demander à ce service (Origin)", *origine};
  }
  return std::nullopt;
}

std::optional<Refus> refuserJeton(const Tete& tete, const Options& options) {
  const std::string chemin = tete.chemin();
  if (options.jeton.empty() || std::find(SANS_JETON.begin(), SANS_JETON.end(), chemin) != SANS_JETON.end()) {
    return std::nullopt;
  }
  const std::string* const donne = tete.champ("authorization");
  if (donne != nullptr && memeTexte(*donne, "Bearer " + options.jeton)) {
    return std::nullopt;
  }
  return Refus{401, donne == nullptr ? "il faut un jeton (Authorization: Bearer JETON)"
                                     : "ce jeton n'est pas celui du service"};
}

std::optional<Refus> refuserCorps(const Tete& tete, const Options& options, std::size_t& corps) {
  corps = 0;
  if (tete.champ("transfer-encoding") != nullptr) {
    return Refus{411, "un corps doit dire sa taille (Content-Length)"};
  }
  const std::string* const taille = tete.champ("content-length");
  if (taille == nullptr) {
    return tete.methode == "POST" ? std::optional(Refus{411, "un corps doit dire sa taille (Content-Length)"})
                                  : std::nullopt;
  }
  const std::optional<std::size_t> lue = lireTaille(*taille);
  if (!lue || tete.nombre("content-length") > 1) {
    return Refus{400, "la taille du corps (Content-Length) n'est pas un nombre", *taille};
  }
  if (*lue > options.corpsMax) {
    return Refus{413, "le corps dépasse " + std::to_string(options.corpsMax) + " octets", *lue};
  }
  corps = *lue;
  return std::nullopt;
}

}  // namespace

bool estLocale(const std::string& adresse) {
  return adresse.starts_with("127.") || adresse == "::1" || adresse.starts_with("::ffff:127.");
}

Adresse adresseLocale(int connexion) {
  sockaddr_storage brute{};
  socklen_t taille = sizeof brute;
  if (getsockname(connexion, reinterpret_cast<sockaddr*>(&brute), &taille) != 0) {
    return {};
  }
  char texte[INET6_ADDRSTRLEN] = "";
  if (brute.ss_family == AF_INET6) {
    const auto* const v6 = reinterpret_cast<const sockaddr_in6*>(&brute);
    inet_ntop(AF_INET6, &v6->sin6_addr, texte, sizeof texte);
    const std::string hote = texte;
    // An IPv4 connection to a socket of both kinds.
    return {hote.starts_with("::ffff:") ? hote.substr(7) : "[" + hote + "]", ntohs(v6->sin6_port),
            estLocale(hote)};
  }
  const auto* const v4 = reinterpret_cast<const sockaddr_in*>(&brute);
  inet_ntop(AF_INET, &v4->sin_addr, texte, sizeof texte);
  return {texte, ntohs(v4->sin_port), estLocale(texte)};
}

std::optional<Refus> refuser(const Tete& tete, const Adresse& adresse, const Options& options,
                             std::size_t& corps) {
  corps = 0;
  if (auto refus = refuserProvenance(tete, adresse, options)) {
    return refus;
  }
  if (tete.methode != "GET" && tete.methode != "HEAD" && tete.methode != "POST") {
    return Refus{405, "ce service répond à GET, HEAD et POST", tete.methode};
  }
  if (auto refus = refuserJeton(tete, options)) {
    return refus;
  }
  return refuserCorps(tete, options, corps);
}

}  // namespace noxlux::serveur
