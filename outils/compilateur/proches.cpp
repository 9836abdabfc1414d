#include "compilateur/proches.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "compilateur/transcodage.h"

namespace noxlux::compilateur {

std::size_t ecart(std::string_view gauche, std::string_view droite) {
  std::vector<std::size_t> avantDerniere(droite.size() + 1);
  std::vector<std::size_t> derniere(droite.size() + 1);
  std::vector<std::size_t> ligne(droite.size() + 1);
  for (std::size_t j = 0; j <= droite.size(); ++j) {
    ligne[j] = j;
  }
  for (std::size_t i = 1; i <= gauche.size(); ++i) {
    avantDerniere.swap(derniere);
    derniere.swap(ligne);
    ligne[0] = i;
    for (std::size_t j = 1; j <= droite.size(); ++j) {
      const bool memes = gauche[i - 1] == droite[j - 1];
      ligne[j] = std::min({derniere[j] + 1, ligne[j - 1] + 1, derniere[j - 1] + (memes ? 0U : 1U)});
      if (i > 1 && j > 1 && gauche[i - 1] == droite[j - 2] && gauche[i - 2] == droite[j - 1]) {
        ligne[j] = std::min(ligne[j], avantDerniere[j - 2] + 1);
      }
    }
  }
  return ligne[droite.size()];
}

std::string sansAccents(std::string_view utf8) {
  // The letters 0xC0 to 0xFF.
  constexpr std::string_view LETTRES = "aaaaaaaceeeeiiiidnooooo ouuuuytsaaaaaaaceeeeiiiidnooooo ouuuuyty";
  std::string texte = versLatin1(utf8).texte;
  for (char& c : texte) {
    const auto octet = static_cast<unsigned char>(c);
    if (octet >= 0xC0) {
      c = LETTRES[octet - 0xC0U];
    } else if (c >= 'A' && c <= 'Z') {
      c = static_cast<char>(c - 'A' + 'a');
    }
  }
  return texte;
}

std::vector<std::string> proches(std::string_view mot, const std::vector<std::string>& candidats,
                                 std::size_t maximum) {
  const std::string cherche = sansAccents(mot);
  const std::size_t permis = cherche.size() <= 3 ? 1 : cherche.size() <= 7 ? 2 : 3;
  struct Trouve {
    std::size_t distance;
    std::size_t difference;  // of lengths
    std::string candidat;
  };
  std::vector<Trouve> trouves;
  for (const std::string& candidat : candidats) {
    const std::string plie = sansAccents(candidat);
    const std::size_t difference =
        plie.size() > cherche.size() ? plie.size() - cherche.size() : cherche.size() - plie.size();
    const bool debut = cherche.size() >= 3 && plie.starts_with(cherche);
    const std::size_t distance = debut ? 1 : difference > permis ? permis + 1 : ecart(cherche, plie);
    if (distance <= permis) {
      trouves.push_back({distance, debut ? 0 : difference, candidat});
    }
  }
  std::stable_sort(trouves.begin(), trouves.end(), [](const Trouve& gauche, const Trouve& droite) {
    return std::tie(gauche.distance, gauche.difference) < std::tie(droite.distance, droite.difference);
  });
  std::vector<std::string> resultat;
  for (auto& [distance, difference, candidat] : trouves) {
    if (resultat.size() < maximum &&
        std::find(resultat.begin(), resultat.end(), candidat) == resultat.end()) {
      resultat.push_back(std::move(candidat));
    }
  }
  return resultat;
}

std::string vouliezVous(std::string_view mot, const std::vector<std::string>& candidats) {
  std::string texte;
  for (const std::string& candidat : proches(mot, candidats)) {
    texte += (texte.empty() ? " ; vouliez-vous « " : " », « ") + candidat;
  }
  return texte.empty() ? texte : texte + " » ?";
}

}  // namespace noxlux::compilateur
