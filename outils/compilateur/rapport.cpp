#include "compilateur/rapport.h"

#include <algorithm>
#include <tuple>

namespace noxlux::compilateur {

std::uint32_t Rapport::declarerSource(std::string chemin) {
  sources_.push_back(std::move(chemin));
  return static_cast<std::uint32_t>(sources_.size() - 1);
}

std::vector<std::string> Rapport::lignes() const {
  std::vector<const Faute*> ordonnees;
  ordonnees.reserve(fautes_.size());
  for (const Faute& faute : fautes_) {
    ordonnees.push_back(&faute);
  }
  std::stable_sort(ordonnees.begin(), ordonnees.end(), [](const Faute* gauche, const Faute* droite) {
    return std::tie(gauche->lieu.source, gauche->lieu.ligne) <
           std::tie(droite->lieu.source, droite->lieu.ligne);
  });
  std::vector<std::string> resultat;
  resultat.reserve(ordonnees.size());
  for (const Faute* faute : ordonnees) {
    std::string ligne = nomSource(faute->lieu.source);
    if (faute->lieu.ligne != 0) {
      ligne += ':' + std::to_string(faute->lieu.ligne);
    }
    resultat.push_back((ligne.empty() ? ligne : ligne + ": ") + faute->phrase);
  }
  return resultat;
}

}  // namespace noxlux::compilateur
