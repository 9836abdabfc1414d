#include "noxlux/description_zones.h"

#include <strings.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

// As the compiler does: the two are linked together.
#define TOML_EXCEPTIONS 0
#include <toml++/toml.h>

#include "noxlux/textes_embarques.h"

namespace noxlux::commande {

namespace {

std::string texte(const toml::table& table, std::string_view cle) {
  return table[cle].value_or(std::string());
}

unsigned nombre(const toml::table& table, std::string_view cle) { return table[cle].value_or(0U); }

char lettre(const toml::table& table, std::string_view cle, char defaut) {
  const std::string valeur = texte(table, cle);
  return valeur.empty() ? defaut : valeur.front();
}

// Calls f for each table of an array of tables; an absent array is empty.
template <class F>
void pourChaque(const toml::table& table, std::string_view cle, F f) {
  if (const toml::array* elements = table[cle].as_array()) {
    for (const toml::node& element : *elements) {
      f(*element.as_table());
    }
  }
}

// A zone counts cents and thousandths; a person types euros and rates.
std::string enUniteDePersonne(std::string libelle) {
  constexpr std::pair<std::string_view, std::string_view> UNITES[] = {{"en centimes", "en euros"},
                                                                      {" en millièmes", ", comme 1,49"}};
  for (const auto& [zone, personne] : UNITES) {
    if (const std::size_t ou = libelle.find(zone); ou != std::string::npos) {
      libelle.replace(ou, zone.size(), personne);
    }
  }
  return libelle;
}

ChampDecrit lireChamp(const toml::table& t, bool reponse) {
  ChampDecrit champ{texte(t, "nom"),
                    enUniteDePersonne(texte(t, "libelle")),
                    lettre(t, "format", 'E'),
                    lettre(t, "type", 'T'),
                    nombre(t, "min"),
                    nombre(t, "max"),
                    {},
                    t["repete"].value_or(false),
                    reponse};
  if (const toml::array* valeurs = t["valeurs"].as_array()) {
    for (const toml::node& valeur : *valeurs) {
      champ.valeurs.push_back(valeur.value_or(std::string()));
    }
  }
  return champ;
}

std::vector<FilsDecrit> lireFils(const toml::table& t, std::string_view cle) {
  std::vector<FilsDecrit> fils;
  pourChaque(t, cle, [&](const toml::table& f) {
    fils.push_back({nombre(f, "groupe"), texte(f, "super_groupe"), nombre(f, "min"), nombre(f, "max")});
  });
  return fils;
}

}  // namespace

const ChampDecrit* GroupeDecrit::champ(std::size_t rang) const {
  if (rang < champs.size()) {
    return &champs[rang];
  }
  return !champs.empty() && champs.back().repete ? &champs.back() : nullptr;
}

const ChampDecrit* GroupeDecrit::champNomme(std::string_view nomChamp) const {
  const auto trouve = std::find_if(champs.begin(), champs.end(),
                                   [&](const ChampDecrit& champ) { return champ.nom == nomChamp; });
  return trouve == champs.end() ? nullptr : &*trouve;
}

DescriptionZones::DescriptionZones(std::string_view source) {
  const toml::parse_result lecture = toml::parse(source);
  if (!lecture) {
    throw std::logic_error("the built-in zone descriptions do not read");
  }
  const toml::table& racine = lecture.table();
  for (const bool reponse : {false, true}) {
    pourChaque(racine, reponse ? "groupe_reponse" : "groupe", [&](const toml::table& t) {
      GroupeDecrit groupe{nombre(t, "numero"), texte(t, "nom"), texte(t, "libelle"), reponse, {}};
      pourChaque(t, "champs", [&](const toml::table& c) { groupe.champs.push_back(lireChamp(c, reponse)); });
      groupes_.push_back(std::move(groupe));
    });
  }
  pourChaque(racine, "super_groupe", [&](const toml::table& t) {
    superGroupes_.push_back({texte(t, "nom"), lireFils(t, "fils")});
  });
  pourChaque(racine, "fonction", [&](const toml::table& t) {
    fonctions_.push_back({texte(t, "famille"), texte(t, "nom"), texte(t, "libelle"), lireFils(t, "fils"),
                          lireFils(t, "reponse")});
  });
}

const DescriptionZones& DescriptionZones::socle() {
  static const DescriptionZones description(ZONES_TOML);
  return description;
}

const GroupeDecrit* DescriptionZones::groupe(unsigned numero, bool reponse) const {
  const GroupeDecrit* autre = nullptr;
  for (const GroupeDecrit& groupe : groupes_) {
    if (groupe.numero == numero) {
      if (groupe.reponse == reponse) {
        return &groupe;
      }
      autre = &groupe;
    }
  }
  return autre;
}

const GroupeDecrit& DescriptionZones::groupeEntree(unsigned numero) const {
  const GroupeDecrit* const decrit = groupe(numero, false);
  if (decrit == nullptr) {
    throw std::logic_error("the socle does not describe group " + std::to_string(numero));
  }
  return *decrit;
}

const GroupeDecrit* DescriptionZones::groupeNomme(std::string_view nom) const {
  for (const GroupeDecrit& groupe : groupes_) {
    if (groupe.nom == nom) {
      return &groupe;
    }
  }
  return nullptr;
}

const FonctionDecrite* DescriptionZones::fonction(std::string_view famille,
                                                  std::string_view identifiant) const {
  const std::string cherche(identifiant);
  for (const FonctionDecrite& fonction : fonctions_) {
    if (fonction.famille == famille && strcasecmp(fonction.nom.c_str(), cherche.c_str()) == 0) {
      return &fonction;
    }
  }
  return nullptr;
}

std::vector<std::string> DescriptionZones::identifiants(std::string_view famille) const {
  std::vector<std::string> noms;
  for (const FonctionDecrite& fonction : fonctions_) {
    if (fonction.famille == famille) {
      noms.push_back(fonction.nom);
    }
  }
  return noms;
}

std::vector<FilsDecrit> DescriptionZones::groupesEntree(const FonctionDecrite& fonction) const {
  std::vector<FilsDecrit> groupes;
  for (const FilsDecrit& fils : fonction.fils) {
    if (fils.superGroupe.empty()) {
      groupes.push_back(fils);
      continue;
    }
    for (const SuperGroupeDecrit& superGroupe : superGroupes_) {
      if (superGroupe.nom == fils.superGroupe) {
        std::copy_if(superGroupe.fils.begin(), superGroupe.fils.end(), std::back_inserter(groupes),
                     [](const FilsDecrit& petit) { return petit.superGroupe.empty(); });
      }
    }
  }
  return groupes;
}

}  // namespace noxlux::commande
