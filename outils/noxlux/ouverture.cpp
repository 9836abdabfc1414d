#include "noxlux/ouverture.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <iostream>

#include "noxlux/erreurs.h"
#include "noxlux/presentation.h"

namespace noxlux::commande {

namespace {

using namespace noxlux::compilateur;

bool crcJuste(const EnteteFichier& entete) {
  return std::equal(
      entete.crc.begin(), entete.crc.end(), entete.crcCalcule.begin(), entete.crcCalcule.end(),
      [](char ecrit, char calcule) { return std::toupper(static_cast<unsigned char>(ecrit)) == calcule; });
}

}  // namespace

std::unique_ptr<FichierReference> ouvrirReference(const std::string& chemin, const char* nom) {
  namespace fs = std::filesystem;
  std::error_code absent;
  const fs::path fichier = fs::is_directory(chemin, absent) ? fs::path(chemin) / nom : fs::path(chemin);
  std::string raison;
  auto reference = FichierReference::ouvrir(fichier.string(), raison);
  if (reference == nullptr) {
    throw ErreurUsage(fichier.string() + " : " + raison);
  }
  if (!crcJuste(reference->entete())) {
    std::cerr << "noxlux : le CRC écrit n'est pas celui du contenu : le fichier est abîmé\n";
  }
  return reference;
}

std::string cellule(const JsonOrdonne& valeur) {
  if (valeur.is_null()) {
    return "-";
  }
  if (valeur.is_string()) {
    return dateFrancaise(valeur.get<std::string>());
  }
  if (valeur.is_number_float()) {
    const double nombre = valeur.get<double>();
    const bool centimes = std::fabs(nombre * 100 - std::round(nombre * 100)) < 1e-6;
    return nombreLisible(nombre, centimes ? 2 : 3);
  }
  if (valeur.is_object() && valeur.contains("premiere")) {
    return valeur["nombre"] == 0 ? "-" : valeur["premiere"].dump() + "+" + valeur["nombre"].dump();
  }
  if (valeur.is_structured()) {
    std::string texte;
    for (const JsonOrdonne& membre : valeur) {
      texte += (texte.empty() ? "" : " ") + cellule(membre);
    }
    return texte;
  }
  return valeur.dump();
}

}  // namespace noxlux::commande
