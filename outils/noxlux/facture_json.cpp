#include "noxlux/facture_json.h"

#include <simdjson.h>

#include <algorithm>
#include <string_view>

#include "noxlux/erreurs.h"

namespace noxlux::commande {

namespace {

// A member that is null is one that was not given. A list keeps its nulls: they are no elements of it.
void oterNuls(Json& valeur) {
  if (valeur.is_object()) {
    for (auto membre = valeur.begin(); membre != valeur.end();) {
      membre = membre->is_null() ? valeur.erase(membre) : std::next(membre);
    }
  }
  if (valeur.is_structured()) {
    for (Json& element : valeur) {
      oterNuls(element);
    }
  }
}

// How deep the lists and objects of a text nest; of a text that is no JSON, at least as deep as a reader
// goes.
int profondeur(const std::string& texte) {
  int ouverts = 0;
  int maximum = 0;
  bool dansTexte = false;
  for (std::size_t i = 0; i < texte.size(); ++i) {
    const char c = texte[i];
    if (dansTexte) {
      i += c == '\\' ? 1U : 0U;
      dansTexte = c != '"';
    } else if (c == '"') {
      dansTexte = true;
    } else if (c == '[' || c == '{') {
      maximum = std::max(maximum, ++ouverts);
    } else if (c == ']' || c == '}') {
      --ouverts;
    }
  }
  return maximum;
}

Json enJson(const simdjson::dom::element& valeur) {
  using Type = simdjson::dom::element_type;
  switch (valeur.type()) {
    case Type::OBJECT: {
      Json objet = Json::object();
      for (const auto& [nom, membre] : simdjson::dom::object(valeur)) {
        objet[std::string(nom)] = enJson(membre);
      }
      return objet;
    }
    case Type::ARRAY: {
      Json liste = Json::array();
      for (const simdjson::dom::element& element : simdjson::dom::array(valeur)) {
        liste.push_back(enJson(element));
      }
      return liste;
    }
    case Type::STRING:
      return std::string_view(valeur);
    case Type::INT64: {
      const std::int64_t entier = valeur;
      return entier < 0 ? Json(entier) : Json(static_cast<std::uint64_t>(entier));
    }
    case Type::UINT64:
      return std::uint64_t(valeur);
    case Type::DOUBLE:
      return double(valeur);
    case Type::BOOL:
      return bool(valeur);
    case Type::NULL_VALUE:
      break;
  }
  return nullptr;
}

// A zero with a sign, which is no whole number of an invoice, is told apart by the other reader alone.
bool aUnZeroSigne(std::string_view texte) {
  for (std::size_t i = texte.find("-0"); i != std::string_view::npos; i = texte.find("-0", i + 1)) {
    if (i == 0 || std::string_view(":,[ \t\r\n").find(texte[i - 1]) != std::string_view::npos) {
      return true;
    }
  }
  return false;
}

// The fast reader reads what is well formed; the other one says where what is not goes wrong, and reads the
// numbers that the first has no room for.
Json analyser(const std::string& texte) {
  thread_local simdjson::dom::parser lecteur;
  simdjson::dom::element valeur;
  if (!aUnZeroSigne(texte) && lecteur.parse(texte).get(valeur) == simdjson::SUCCESS) {
    return enJson(valeur);
  }
  return Json::parse(texte);
}

}  // namespace

Json lireFacture(const std::string& texte, const std::string& source) {
  // What an invoice needs, with room; deeper values would only exhaust the stack.
  constexpr int PROFONDEUR_MAX = 32;
  if (profondeur(texte) > PROFONDEUR_MAX) {
    throw ErreurUsage(source + " : JSON trop imbriqué");
  }
  try {
    Json facture = analyser(texte);
    // What the office carries along is not read.
    Json libre = facture.is_object() && facture.contains("libre") ? facture["libre"] : Json();
    oterNuls(facture);
    if (!libre.is_null()) {
      facture["libre"] = std::move(libre);
    }
    return facture;
  } catch (const Json::parse_error& faute) {
    throw ErreurUsage(source + " : JSON mal formé, octet " + std::to_string(faute.byte));
  }
}

}  // namespace noxlux::commande
