#include "noxlux/tableau.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>

namespace noxlux::commande {

namespace {

constexpr std::size_t LARGEUR_PAR_DEFAUT = 100;
constexpr std::size_t LARGEUR_MINIMALE_DERNIERE = 24;
constexpr std::size_t MOT_COUPE = 24;  // longer words of a narrow column are cut
constexpr const char* ECART = "  ";

bool estNombre(const std::string& texte) {
  return texte.find_first_not_of("0123456789.,-+ €%—") == std::string::npos;
}

// What COLUMNS asks for; 0 when it asks for nothing.
std::size_t largeurDemandee() {
  const char* const colonnes = std::getenv("COLUMNS");
  const unsigned long valeur = colonnes == nullptr ? 0 : std::strtoul(colonnes, nullptr, 10);
  return valeur >= 20 && valeur < 10000 ? valeur : 0;
}

// A person reads: every cell may be folded. A pipe gets one line a record, but for the last column.
bool pourUnePersonne() { return isatty(STDOUT_FILENO) != 0 || largeurDemandee() != 0; }

// Where the first `colonnes` characters of a UTF-8 text end.
std::size_t couper(const std::string& utf8, std::size_t colonnes) {
  std::size_t i = 0;
  for (; i < utf8.size(); ++i) {
    if ((static_cast<unsigned char>(utf8[i]) & 0xC0U) != 0x80U && colonnes-- == 0) {
      break;
    }
  }
  return i;
}

// The words of a paragraph, with what French keeps on their line: "19,06 €", "+ 12,0 %", "« mot »".
std::vector<std::string> motsInsecables(const std::string& paragraphe) {
  constexpr std::string_view SUIVENT[] = {"€", "%", ":", ";", "?", "!", "»"};
  constexpr std::string_view PRECEDENT[] = {"«", "+"};
  std::vector<std::string> mots;
  std::istringstream lus(paragraphe);
  bool colle = false;
  for (std::string mot; lus >> mot;) {
    const bool suit = std::find(std::begin(SUIVENT), std::end(SUIVENT), mot) != std::end(SUIVENT);
    if ((colle || suit) && !mots.empty()) {
      mots.back() += ' ' + mot;
    } else {
      mots.push_back(mot);
    }
    colle = std::find(std::begin(PRECEDENT), std::end(PRECEDENT), mot) != std::end(PRECEDENT);
  }
  return mots;
}

// The widest word: a column is not made narrower.
std::size_t plusLongMot(const std::string& texte) {
  std::istringstream mots(texte);
  std::size_t longueur = 0;
  for (std::string mot; mots >> mot;) {
    longueur = std::max(longueur, largeur(mot));
  }
  return longueur;
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
  const std::size_t demandee = largeurDemandee();
  return demandee == 0 ? LARGEUR_PAR_DEFAUT : demandee;
}

std::size_t largeur(const std::string& utf8) {
  return static_cast<std::size_t>(std::count_if(
      utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

std::vector<std::string> plier(const std::string& utf8, std::size_t colonnes) {
  std::vector<std::string> lignes;
  std::istringstream paragraphes(utf8);
  for (std::string paragraphe; std::getline(paragraphes, paragraphe);) {
    std::string ligne;
    for (std::string& mot : motsInsecables(paragraphe)) {
      if (!ligne.empty() && largeur(ligne) + 1 + largeur(mot) > colonnes) {
        lignes.push_back(std::move(ligne));
        ligne.clear();
      }
      // A word wider than the line is cut.
      while (largeur(mot) > colonnes) {
        const std::size_t coupe = couper(mot, colonnes);
        lignes.push_back(mot.substr(0, coupe));
        mot.erase(0, coupe);
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

namespace {

// Takes from the widest columns that may be folded until all stand in a width; false when they cannot.
bool resserrer(std::vector<std::size_t>& largeurs, const std::vector<std::size_t>& minima,
               std::size_t place) {
  std::size_t total = 2 * (largeurs.size() - 1);
  for (const std::size_t l : largeurs) {
    total += l;
  }
  while (total > place) {
    std::size_t choisie = largeurs.size();
    for (std::size_t c = 0; c < largeurs.size(); ++c) {
      if (largeurs[c] > minima[c] && (choisie == largeurs.size() || largeurs[c] >= largeurs[choisie])) {
        choisie = c;
      }
    }
    if (choisie == largeurs.size()) {
      return false;
    }
    --largeurs[choisie];
    --total;
  }
  return true;
}

}  // namespace

// One "title : value" a line, an empty line between records: what no table of this width can show.
void Tableau::afficherEnBlocs(std::ostream& sortie, std::size_t colonnes) const {
  std::size_t titre = 0;
  for (const std::string& t : titres_) {
    titre = std::max(titre, largeur(t));
  }
  titre = std::min(titre, colonnes / 2);
  for (const auto& ligne : lignes_) {
    sortie << (&ligne == &lignes_.front() ? "" : "\n");
    for (std::size_t c = 0; c < ligne.size(); ++c) {
      std::string debut = remplir(titres_[c].substr(0, couper(titres_[c], titre)), titre, false) + " : ";
      for (const std::string& pli : plier(ligne[c], colonnes - titre - 3)) {
        sortie << debut << pli << '\n';
        debut.assign(titre + 3, ' ');
      }
    }
  }
}

void Tableau::afficher(std::ostream& sortie) const {
  const std::size_t n = titres_.size();
  const bool plierTout = pourUnePersonne();
  const std::size_t terminal = largeurTerminal();
  std::vector<std::size_t> largeurs(n);
  std::vector<std::size_t> minima(n);
  std::vector<bool> aDroite(n, !lignes_.empty());
  for (std::size_t c = 0; c < n; ++c) {
    largeurs[c] = largeur(titres_[c]);
    minima[c] = plusLongMot(titres_[c]);
    for (const auto& ligne : lignes_) {
      largeurs[c] = std::max(largeurs[c], largeur(ligne[c]));
      aDroite[c] = aDroite[c] && estNombre(ligne[c]);
      minima[c] = std::max(minima[c], estNombre(ligne[c]) ? largeur(ligne[c]) : plusLongMot(ligne[c]));
    }
    minima[c] =
        plierTout || c == n - 1 ? std::min(minima[c], aDroite[c] ? minima[c] : MOT_COUPE) : largeurs[c];
  }
  if (!plierTout) {
    minima[n - 1] = std::min(largeurs[n - 1], LARGEUR_MINIMALE_DERNIERE);
  }
  if (!resserrer(largeurs, minima, terminal) && plierTout) {
    afficherEnBlocs(sortie, terminal);
    return;
  }
  const auto ecrireLigne = [&](const std::vector<std::string>& cellules, bool titre) {
    std::vector<std::vector<std::string>> plis;
    std::size_t hauteur = 0;
    for (std::size_t c = 0; c < n; ++c) {
      plis.push_back(largeur(cellules[c]) <= largeurs[c] && c != n - 1 ? std::vector{cellules[c]}
                                                                       : plier(cellules[c], largeurs[c]));
      hauteur = std::max(hauteur, plis.back().size());
    }
    for (std::size_t pli = 0; pli < hauteur; ++pli) {
      std::string texte;
      for (std::size_t c = 0; c < n; ++c) {
        // Titles stand on the line above their column.
        const std::size_t manque = titre ? hauteur - plis[c].size() : 0;
        const bool la = pli >= manque && pli - manque < plis[c].size();
        texte += (c == 0 ? "" : ECART) +
                 remplir(la ? plis[c][pli - manque] : std::string(), largeurs[c], aDroite[c]);
      }
      texte.erase(texte.find_last_not_of(' ') + 1);
      sortie << texte << '\n';
    }
  };
  ecrireLigne(titres_, true);
  std::vector<std::string> traits;
  for (const std::size_t l : largeurs) {
    std::string trait;
    for (std::size_t i = 0; i < l; ++i) {
      trait += "─";
    }
    traits.push_back(trait);
  }
  ecrireLigne(traits, false);
  for (const auto& ligne : lignes_) {
    ecrireLigne(ligne, false);
  }
}

}  // namespace noxlux::commande
