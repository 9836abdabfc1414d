#include "noxlux/presentation.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "compilateur/proches.h"

namespace noxlux::commande {

std::string nombrePourProgramme(double valeur, unsigned decimales) {
  std::array<char, 64> texte;
  std::snprintf(texte.data(), texte.size(), "%.*f", static_cast<int>(decimales), valeur);
  return texte.data();
}

std::string nombreLisible(double valeur, unsigned decimales) {
  std::string texte = nombrePourProgramme(std::fabs(valeur), decimales);
  const std::size_t point = std::min(texte.find('.'), texte.size());
  std::replace(texte.begin(), texte.end(), '.', ',');
  for (std::size_t i = point; i > 3; i -= 3) {
    texte.insert(i - 3, 1, ' ');
  }
  return valeur < 0 ? "-" + texte : texte;
}

std::string euros(double valeur) {
  // Two decimals, and more only where they tell something.
  std::string texte = nombreLisible(valeur, 5);
  while (texte.back() == '0' && texte[texte.size() - 3] != ',') {
    texte.pop_back();
  }
  return texte + " €";
}

std::string eurosOuTiret(const Json& valeur) {
  return valeur.is_number() ? euros(valeur.get<double>()) : "—";
}

std::optional<double> lireNombre(std::string_view saisie) {
  std::string texte(saisie);
  for (const std::string_view retire : {"€", "\u00a0", "\u202f", " "}) {
    for (std::size_t ou = 0; (ou = texte.find(retire)) != std::string::npos;) {
      texte.erase(ou, retire.size());
    }
  }
  std::replace(texte.begin(), texte.end(), ',', '.');
  char* fin = nullptr;
  const double valeur = std::strtod(texte.c_str(), &fin);
  const bool simple = texte.find_first_not_of("0123456789.-+") == std::string::npos;
  if (texte.empty() || !simple || *fin != '\0') {
    return std::nullopt;
  }
  return valeur;
}

std::string dateFrancaise(const std::string& texte) {
  const auto chiffre = [&](std::size_t i) { return std::isdigit(static_cast<unsigned char>(texte[i])) != 0; };
  if (texte.size() != 10 || texte[4] != '-' || texte[7] != '-' || !chiffre(0) || !chiffre(5) || !chiffre(8)) {
    return texte;
  }
  return texte.substr(8, 2) + "/" + texte.substr(5, 2) + "/" + texte.substr(0, 4);
}

namespace {

// Words that only hold others together.
bool estLiaison(std::string_view mot) {
  constexpr std::array<std::string_view, 12> LIAISONS = {"d",  "l",   "de", "du", "des", "la",
                                                         "le", "les", "au", "a",  "en",  "un"};
  return std::find(LIAISONS.begin(), LIAISONS.end(), mot) != LIAISONS.end();
}

bool estSigle(std::string_view mot) {
  return mot.size() > 1 && std::none_of(mot.begin(), mot.end(), [](char c) { return c >= 'a' && c <= 'z'; });
}

}  // namespace

std::string cleCamel(std::string_view mots) {
  const bool simple = std::all_of(mots.begin(), mots.end(), [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
  });
  if (simple && !mots.empty() && !(mots[0] >= 'A' && mots[0] <= 'Z')) {
    return std::string(mots);
  }
  const std::string plie = compilateur::sansAccents(mots);
  std::string cle;
  std::string mot;
  std::size_t octet = 0;  // of the text in UTF-8, for the capitals of acronyms
  std::string brut;
  const auto finir = [&] {
    if (!mot.empty() && !estLiaison(mot)) {
      const bool sigle = estSigle(brut) && !cle.empty();
      std::string ajoute = sigle ? brut : mot;
      if (!cle.empty()) {
        ajoute[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(ajoute[0])));
      }
      cle += ajoute;
    }
    mot.clear();
    brut.clear();
  };
  for (const char c : plie) {
    const bool suite = octet + 1 < mots.size() && (static_cast<unsigned char>(mots[octet]) & 0x80U) != 0;
    const char tel = mots[std::min(octet, mots.size() - 1)];
    octet += suite ? 2 : 1;
    if (std::isalnum(static_cast<unsigned char>(c)) != 0) {
      mot += c;
      brut += suite ? c : tel;
    } else {
      finir();
    }
  }
  finir();
  return cle.empty() ? std::string(mots) : cle;
}

Json clesCamel(const Json& valeur) {
  if (valeur.is_array()) {
    Json liste = Json::array();
    for (const Json& element : valeur) {
      liste.push_back(clesCamel(element));
    }
    return liste;
  }
  if (!valeur.is_object()) {
    return valeur;
  }
  Json objet = Json::object();
  for (const auto& [cle, element] : valeur.items()) {
    objet[cleCamel(cle)] = clesCamel(element);
  }
  return objet;
}

std::string rogner(std::string texte) {
  texte.erase(texte.find_last_not_of(' ') + 1);
  return texte;
}

Json rognerTextes(Json valeur) {
  if (valeur.is_string()) {
    return rogner(valeur.get<std::string>());
  }
  if (valeur.is_structured()) {
    for (Json& element : valeur) {
      element = rognerTextes(std::move(element));
    }
  }
  return valeur;
}

}  // namespace noxlux::commande
