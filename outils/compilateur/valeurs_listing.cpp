#include "compilateur/valeurs_listing.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace noxlux::compilateur {

namespace {

constexpr std::string_view ESPACE_INSECABLE = "\xC2\xA0";
constexpr std::string_view NON_PRIS_EN_CHARGE = "Non pris en charge";
constexpr double PRIX_MAXIMUM = 1000000.0;

bool estChiffre(char c) { return c >= '0' && c <= '9'; }
bool estCapitale(char c) { return c >= 'A' && c <= 'Z'; }
bool estBlanc(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// Digits with a point or a comma; blanks anywhere are passed over.
std::optional<double> lireDecimal(std::string_view texte, bool& ajuste) {
  std::string chiffres;
  for (std::size_t i = 0; i < texte.size(); ++i) {
    if (texte.substr(i, ESPACE_INSECABLE.size()) == ESPACE_INSECABLE) {
      ajuste = true;
      ++i;
    } else if (estBlanc(texte[i])) {
      ajuste = true;
    } else {
      ajuste = ajuste || texte[i] == ',';
      chiffres += texte[i] == ',' ? '.' : texte[i];
    }
  }
  double valeur = 0.0;
  const char* const fin = chiffres.data() + chiffres.size();
  const auto [arret, erreur] = std::from_chars(chiffres.data(), fin, valeur, std::chars_format::fixed);
  if (erreur != std::errc() || arret != fin || !(valeur >= 0.0) || valeur >= PRIX_MAXIMUM) {
    return std::nullopt;
  }
  return valeur;
}

// The pieces between separators, without blanks around.
std::vector<std::string_view> decouper(std::string_view texte, char separateur) {
  std::vector<std::string_view> morceaux;
  while (true) {
    const std::size_t place = texte.find(separateur);
    morceaux.push_back(rogner(texte.substr(0, place)));
    if (place == std::string_view::npos) {
      return morceaux;
    }
    texte.remove_prefix(place + 1);
  }
}

// Codes of one character, each once.
std::optional<std::vector<char>> lireCodes(std::string_view texte, char separateur) {
  std::vector<char> codes;
  for (const std::string_view morceau : decouper(texte, separateur)) {
    if (morceau.size() != 1 || !(estChiffre(morceau[0]) || estCapitale(morceau[0]))) {
      return std::nullopt;
    }
    if (std::find(codes.begin(), codes.end(), morceau[0]) == codes.end()) {
      codes.push_back(morceau[0]);
    }
  }
  return codes;
}

std::optional<unsigned> lireNombre(std::string_view chiffres) {
  unsigned nombre = 0;
  const auto [arret, erreur] = std::from_chars(chiffres.data(), chiffres.data() + chiffres.size(), nombre);
  return erreur == std::errc() && arret == chiffres.data() + chiffres.size() ? std::optional(nombre)
                                                                             : std::nullopt;
}

}  // namespace

std::string_view rogner(std::string_view texte) {
  while (!texte.empty()) {
    if (estBlanc(texte.front())) {
      texte.remove_prefix(1);
    } else if (texte.starts_with(ESPACE_INSECABLE)) {
      texte.remove_prefix(ESPACE_INSECABLE.size());
    } else if (estBlanc(texte.back())) {
      texte.remove_suffix(1);
    } else if (texte.ends_with(ESPACE_INSECABLE)) {
      texte.remove_suffix(ESPACE_INSECABLE.size());
    } else {
      break;
    }
  }
  return texte;
}

bool estCodeActe(std::string_view texte) {
  return texte.size() == 7 && std::all_of(texte.begin(), texte.begin() + 4, estCapitale) &&
         std::all_of(texte.begin() + 4, texte.end(), estChiffre);
}

bool estNumeroChapitre(std::string_view texte) {
  const std::vector<std::string_view> niveaux = decouper(texte, '.');
  return niveaux.size() <= 4 && std::all_of(niveaux.begin(), niveaux.end(), [](std::string_view niveau) {
           return !niveau.empty() && niveau.size() <= 2 &&
                  std::all_of(niveau.begin(), niveau.end(), estChiffre);
         });
}

std::uint32_t codeMenu(std::string_view numero) {
  std::uint32_t code = 0;
  const std::vector<std::string_view> niveaux = decouper(numero, '.');
  for (std::size_t i = 0; i < 4; ++i) {
    code = code * 100 + (i < niveaux.size() ? lireNombre(niveaux[i]).value_or(0) : 0);
  }
  return code;
}

std::string numeroChapitre(std::uint32_t menu) {
  std::string numero;
  for (std::uint32_t rang = 1000000; rang != 0 && menu / rang % 100 != 0; rang /= 100) {
    const std::uint32_t niveau = menu / rang % 100;
    numero += phrase(numero.empty() ? "" : ".", niveau < 10 ? "0" : "", std::to_string(niveau));
  }
  return numero;
}

std::optional<PrixListe> lirePrix(std::string_view texte) {
  PrixListe prix;
  if (texte == NON_PRIS_EN_CHARGE) {
    prix.prisEnCharge = false;
    return prix;
  }
  const std::optional<double> valeur = lireDecimal(texte, prix.ajuste);
  if (!valeur) {
    return std::nullopt;
  }
  prix.montant = std::round(*valeur * 100.0) / 100.0;
  prix.ajuste = prix.ajuste || prix.montant != *valeur;
  return prix;
}

std::optional<ValeurListe> lireValeurModificateur(std::string_view texte) {
  bool ajuste = false;
  const bool signe = texte.starts_with('+');
  const bool pourcent = texte.ends_with('%');
  const std::optional<double> nombre = lireDecimal(
      texte.substr(signe ? 1 : 0, texte.size() - (signe ? 1U : 0U) - (pourcent ? 1U : 0U)), ajuste);
  if (!nombre || *nombre == 0.0) {
    return std::nullopt;
  }
  ValeurListe valeur;
  if (pourcent || *nombre < 1.0) {  // no flat amount is below one euro: the spreadsheet lost the sign
    valeur.coefficient = 1.0 + std::round(*nombre * (pourcent ? 10.0 : 1000.0)) / 1000.0;
  } else {
    valeur.forfait = std::round(*nombre * 100.0) / 100.0;
  }
  return valeur;
}

std::optional<std::vector<char>> lireExonerations(std::string_view texte) { return lireCodes(texte, '-'); }

std::optional<std::vector<char>> lireModificateurs(std::string_view texte) {
  if (!texte.starts_with('[') || !texte.ends_with(']')) {
    return std::nullopt;
  }
  return lireCodes(texte.substr(1, texte.size() - 2), ',');
}

std::optional<CodesAssocies> lireAssociations(std::string_view texte) {
  if (!texte.starts_with('(') || !texte.ends_with(')')) {
    return std::nullopt;
  }
  CodesAssocies associes;
  for (const std::string_view morceau : decouper(texte.substr(1, texte.size() - 2), ',')) {
    std::vector<std::string>& liste = estCodeActe(morceau) ? associes.codes : associes.malEcrits;
    if (std::find(liste.begin(), liste.end(), morceau) == liste.end()) {
      liste.emplace_back(morceau);
    }
  }
  return associes.codes.empty() ? std::nullopt : std::optional(associes);
}

std::optional<TitreListe> lireTitre(std::string_view texte) {
  constexpr std::string_view VERSION = "version ";
  const std::size_t version = texte.find(VERSION);
  const std::size_t barre = texte.find('/');
  if (version == std::string_view::npos || barre == std::string_view::npos || barre < 2 ||
      texte.size() < barre + 8 || texte[barre + 3] != '/') {
    return std::nullopt;
  }
  const std::string_view apres = texte.substr(version + VERSION.size());
  const auto numero = lireNombre(apres.substr(0, apres.find_first_not_of("0123456789")));
  const auto jour = lireNombre(texte.substr(barre - 2, 2));
  const auto mois = lireNombre(texte.substr(barre + 1, 2));
  const auto annee = lireNombre(texte.substr(barre + 4, 4));
  if (!numero || *numero > 99999 || !jour || !mois || !annee) {
    return std::nullopt;
  }
  const DateBrute date{static_cast<std::uint16_t>(*annee), static_cast<std::uint8_t>(*mois),
                       static_cast<std::uint8_t>(*jour)};
  return date.estValide() ? std::optional(TitreListe{*numero, date}) : std::nullopt;
}

}  // namespace noxlux::compilateur
