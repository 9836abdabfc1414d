#include "compilateur/ecriture_valeurs.h"

#include <cstdio>

namespace noxlux::compilateur {

namespace {

constexpr std::size_t LONGUEUR_LIBELLE_COURT = 70;

}  // namespace

std::string jour(const DateBrute& date) {
  char texte[16];
  std::snprintf(texte, sizeof texte, "%04u-%02u-%02u", unsigned{date.annee}, unsigned{date.mois},
                unsigned{date.jour});
  return texte;
}

void ajouterTexte(std::string& textes, std::string_view texte) {
  if (!texte.empty()) {
    textes.append(textes.empty() ? "" : "\n").append(texte);
  }
}

std::string abreger(std::string_view libelle) {
  libelle = libelle.substr(0, libelle.find('\n'));
  if (libelle.size() <= LONGUEUR_LIBELLE_COURT) {
    return std::string(libelle);
  }
  const std::size_t espace = libelle.rfind(' ', LONGUEUR_LIBELLE_COURT);
  std::string court(libelle.substr(0, espace == libelle.npos ? LONGUEUR_LIBELLE_COURT : espace));
  court.erase(court.find_last_not_of(" ,;") + 1);
  return court;
}

}  // namespace noxlux::compilateur
