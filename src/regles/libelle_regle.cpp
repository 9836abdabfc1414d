#include "regles/libelle_regle.h"

#include <algorithm>
#include <cstdio>

namespace noxlux {

namespace {

constexpr std::size_t TAILLE_MAX = TAILLE_MAX_LIBELLE_SECONDAIRE;

enum class Conversion { POURCENT, TEXTE, CARACTERE, ENTIER, ENTIER_NON_SIGNE, DECIMAL, DECIMAL_2 };

struct MotifConversion {
  std::string_view motif;  // what follows the percent sign
  Conversion conversion;
};

// Everything a label may ask for.
constexpr MotifConversion CONVERSIONS[] = {
    {"%", Conversion::POURCENT},         {"s", Conversion::TEXTE},
    {"c", Conversion::CARACTERE},        {"d", Conversion::ENTIER},
    {"u", Conversion::ENTIER_NON_SIGNE}, {"ld", Conversion::ENTIER},
    {"f", Conversion::DECIMAL},          {".2f", Conversion::DECIMAL_2},
};

const MotifConversion* reconnaitre(std::string_view format) {
  for (const MotifConversion& candidat : CONVERSIONS) {
    if (format.substr(0, candidat.motif.size()) == candidat.motif) {
      return &candidat;
    }
  }
  return nullptr;
}

void ajouterDecimal(std::string& libelle, int decimales, double valeur) {
  char texte[TAILLE_MAX + 1];
  std::snprintf(texte, sizeof texte, "%.*f", decimales, valeur);
  libelle += texte;
}

// False when the argument is not of the kind that the conversion asks for.
bool convertir(std::string& libelle, Conversion conversion, const ArgumentLibelle& argument) {
  const std::string_view* const texte = std::get_if<std::string_view>(&argument.valeur());
  const std::int32_t* const entier = std::get_if<std::int32_t>(&argument.valeur());
  const double* const decimal = std::get_if<double>(&argument.valeur());
  switch (conversion) {
    case Conversion::TEXTE:
      if (texte != nullptr) {
        libelle += *texte;
      }
      return texte != nullptr;
    case Conversion::CARACTERE:
      if (texte != nullptr && texte->size() == 1) {
        libelle += *texte;
        return true;
      }
      if (entier != nullptr && *entier > 0 && *entier <= 255) {
        libelle += static_cast<char>(*entier);
        return true;
      }
      return false;
    case Conversion::ENTIER:
      if (entier != nullptr) {
        libelle += std::to_string(*entier);
      }
      return entier != nullptr;
    case Conversion::ENTIER_NON_SIGNE:
      if (entier != nullptr) {
        libelle += std::to_string(static_cast<std::uint32_t>(*entier));
      }
      return entier != nullptr;
    case Conversion::DECIMAL:
    case Conversion::DECIMAL_2:
      if (decimal != nullptr) {
        ajouterDecimal(libelle, conversion == Conversion::DECIMAL ? 6 : 2, *decimal);
      }
      return decimal != nullptr;
    case Conversion::POURCENT:
      break;
  }
  return false;
}

}  // namespace

std::optional<std::string> formaterLibelle(std::string_view format, ArgumentsLibelle arguments) {
  std::string libelle;
  const ArgumentLibelle* suivant = arguments.begin();
  while (!format.empty()) {
    const std::size_t litteral = std::min(format.find('%'), format.size());
    libelle += format.substr(0, litteral);
    format.remove_prefix(litteral);
    if (format.empty()) {
      break;
    }
    format.remove_prefix(1);
    const MotifConversion* const trouvee = reconnaitre(format);
    if (trouvee == nullptr) {
      return std::nullopt;
    }
    format.remove_prefix(trouvee->motif.size());
    if (trouvee->conversion == Conversion::POURCENT) {
      libelle += '%';
    } else if (suivant == arguments.end() || !convertir(libelle, trouvee->conversion, *suivant++)) {
      return std::nullopt;
    }
  }
  libelle.resize(std::min(libelle.size(), TAILLE_MAX));
  return libelle;
}

}  // namespace noxlux
