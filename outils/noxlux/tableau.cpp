#include "noxlux/tableau.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <sstream>

namespace noxlux::commande {

namespace {

constexpr std::size_t LARGEUR_PAR_DEFAUT = 100;
constexpr std::size_t LARGEUR_MINIMALE_DERNIERE = 24;
constexpr const char* ECART = "  ";

bool estNombre(const std::string& texte) {
  return texte.find_first_not_of("0123456789.,-+ €%—") == std::string::npos;
}

std::string remplir(const std::string& texte, std::size_t colonnes, bool aDroite) {
  const std::string blancs(colonnes - std::min(colonnes, largeur(texte)), ' ');
  return aDroite ? blancs + texte : texte + blancs;
}

}  // namespace

std::size_t largeurTerminal() {
  winsize taille{};
  if (isatty(STDOUT_FILENO) != 0 && ioctl(STDOUT_FILENO, TIOCGWINSZ, &taille) == 0 && taille.ws_col > 0) {
    return taille.ws_col;
  }
  return LARGEUR_PAR_DEFAUT;
}

std::size_t largeur(const std::string& utf8) {
  return static_cast<std::size_t>(std::count_if(
      utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

std::vector<std::string> plier(const std::string& utf8, std::size_t colonnes) {
  std::vector<std::string> lignes;
  std::istringstream paragraphes(utf8);
  for (std::string paragraphe; std::getline(paragraphes, paragraphe);) {
    std::istringstream mots(paragraphe);
    std::string ligne;
    for (std::string mot; mots >> mot;) {
      if (!ligne.empty() && largeur(ligne) + 1 + largeur(mot) > colonnes) {
        lignes.push_back(std::move(ligne));
        ligne.clear();
      }
      ligne += (ligne.empty() ? "" : " ") + mot;
    }
    lignes.push_back(std::move(ligne));
  }
  if (lignes.empty()) {
    lignes.emplace_back();
  }
  return lignes;
}

void Tableau::afficher(std::ostream& sortie) const {
  const std::size_t n = titres_.size();
  std::vector<std::size_t> largeurs(n);
  std::vector<bool> aDroite(n, !lignes_.empty());
  for (std::size_t c = 0; c < n; ++c) {
    largeurs[c] = largeur(titres_[c]);
    for (const auto& ligne : lignes_) {
      largeurs[c] = std::max(largeurs[c], largeur(ligne[c]));
      aDroite[c] = aDroite[c] && estNombre(ligne[c]);
    }
  }
  std::size_t avant = 0;
  for (std::size_t c = 0; c + 1 < n; ++c) {
    avant += largeurs[c] + 2;
  }
  const std::size_t terminal = largeurTerminal();
  const std::size_t derniere =
      std::min(largeurs[n - 1],
               std::max(LARGEUR_MINIMALE_DERNIERE, terminal > avant ? terminal - avant : std::size_t{0}));
  largeurs[n - 1] = derniere;

  const auto ecrireLigne = [&](const std::vector<std::string>& cellules) {
    const std::vector<std::string> plis = plier(cellules[n - 1], derniere);
    for (std::size_t pli = 0; pli < plis.size(); ++pli) {
      std::string texte;
      for (std::size_t c = 0; c < n; ++c) {
        const std::string cellule = c == n - 1 ? plis[pli] : (pli == 0 ? cellules[c] : std::string());
        texte += (c == 0 ? "" : ECART) + remplir(cellule, largeurs[c], aDroite[c]);
      }
      texte.erase(texte.find_last_not_of(' ') + 1);
      sortie << texte << '\n';
    }
  };
  ecrireLigne(titres_);
  std::vector<std::string> traits;
  for (const std::size_t l : largeurs) {
    std::string trait;
    for (std::size_t i = 0; i < l; ++i) {
      trait += "─";
    }
    traits.push_back(trait);
  }
  ecrireLigne(traits);
  for (const auto& ligne : lignes_) {
    ecrireLigne(ligne);
  }
}

}  // namespace noxlux::commande
