#include "serveur/tete.h"

#include <algorithm>
#include <charconv>

namespace noxlux::serveur {

namespace {

constexpr std::string_view FIN_DE_LIGNE = "\r\n";
constexpr std::string_view FIN_DE_TETE = "\r\n\r\n";

std::string enMinuscules(std::string_view texte) {
  std::string resultat(texte);
  std::transform(resultat.begin(), resultat.end(), resultat.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return resultat;
}

std::string_view sansBlancs(std::string_view texte) {
  const std::size_t debut = texte.find_first_not_of(" \t");
  return debut == std::string_view::npos ? std::string_view()
                                         : texte.substr(debut, texte.find_last_not_of(" \t") - debut + 1);
}

bool estCommande(char c) { return (static_cast<unsigned char>(c) < 0x20 && c != '\t') || c == 0x7F; }

// Names of fields and methods.
bool estMot(std::string_view texte) {
  return !texte.empty() && std::all_of(texte.begin(), texte.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("!#$%&'*+-.^_`|~").find(c) != std::string_view::npos;
  });
}

// "GET /actes?q=x HTTP/1.1"
bool lirePremiere(std::string_view ligne, Tete& tete) {
  const std::size_t apresMethode = ligne.find(' ');
  const std::size_t apresCible = ligne.rfind(' ');
  if (apresMethode == std::string_view::npos || apresCible <= apresMethode) {
    return false;
  }
  tete.methode = ligne.substr(0, apresMethode);
  tete.cible = ligne.substr(apresMethode + 1, apresCible - apresMethode - 1);
  tete.version = ligne.substr(apresCible + 1);
  const bool visible =
      std::all_of(tete.cible.begin(), tete.cible.end(), [](char c) { return c > 0x20 && c < 0x7F; });
  return estMot(tete.methode) && tete.cible.starts_with('/') && tete.cible.size() <= CIBLE_MAX && visible &&
         (tete.version == "HTTP/1.1" || tete.version == "HTTP/1.0");
}

bool lireChamp(std::string_view ligne, Tete& tete) {
  const std::size_t separateur = ligne.find(':');
  if (separateur == std::string_view::npos || !estMot(ligne.substr(0, separateur)) ||
      std::any_of(ligne.begin(), ligne.end(), estCommande)) {
    return false;
  }
  tete.champs.emplace_back(enMinuscules(ligne.substr(0, separateur)),
                           sansBlancs(ligne.substr(separateur + 1)));
  return true;
}

}  // namespace

const std::string* Tete::champ(std::string_view nom) const {
  const auto trouve =
      std::find_if(champs.begin(), champs.end(), [&](const auto& champ) { return champ.first == nom; });
  return trouve == champs.end() ? nullptr : &trouve->second;
}

std::size_t Tete::nombre(std::string_view nom) const {
  return static_cast<std::size_t>(
      std::count_if(champs.begin(), champs.end(), [&](const auto& champ) { return champ.first == nom; }));
}

bool Tete::fermeture() const {
  const std::string* const demandee = champ("connection");
  const std::string texte = demandee == nullptr ? std::string() : enMinuscules(*demandee);
  return version == "HTTP/1.0" ? texte != "keep-alive" : texte.find("close") != std::string::npos;
}

Lecture lireTete(std::string_view octets, Tete& tete) {
  const std::size_t fin = octets.substr(0, TETE_MAX).find(FIN_DE_TETE);
  if (fin == std::string_view::npos) {
    return Lecture::INCOMPLETE;
  }
  tete.taille = fin + FIN_DE_TETE.size();
  bool premiere = true;
  for (std::string_view reste = octets.substr(0, fin + FIN_DE_LIGNE.size()); !reste.empty();) {
    const std::size_t longueur = reste.find(FIN_DE_LIGNE);
    const std::string_view ligne = reste.substr(0, longueur);
    if (!(premiere ? lirePremiere(ligne, tete) : lireChamp(ligne, tete))) {
      return Lecture::MAL_FORMEE;
    }
    premiere = false;
    reste.remove_prefix(longueur + FIN_DE_LIGNE.size());
  }
  return Lecture::COMPLETE;
}

std::optional<std::size_t> lireTaille(const std::string& texte) {
  std::size_t taille = 0;
  const char* const bout = texte.data() + texte.size();
  const auto [fin, faute] = std::from_chars(texte.data(), bout, taille);
  return faute == std::errc() && fin == bout && !texte.empty() ? std::optional(taille) : std::nullopt;
}

}  // namespace noxlux::serveur
