// Pages of their own: nothing is fetched from elsewhere, they print, and follow light or dark screens.
#ifndef NOXLUX_COMMANDE_HTML_H
#define NOXLUX_COMMANDE_HTML_H

#include <string>
#include <string_view>
#include <vector>

namespace noxlux::commande {

std::string echapperHtml(std::string_view texte);
// A whole document; `corps` is HTML.
std::string pageHtml(const std::string& titre, const std::string& corps);
// A table whose cells are HTML; cells of the columns from `chiffres` on are set to the right.
std::string tableHtml(const std::vector<std::string>& titres,
                      const std::vector<std::vector<std::string>>& lignes, std::size_t chiffres);

// A bar of a chart: its name, its length, and what is written beside it.
struct Barre {
  std::string nom;
  double valeur = 0;
  std::string legende;
};
// Horizontal bars as SVG, with a title that screen readers say.
std::string barresSvg(const std::string& titre, const std::vector<Barre>& barres);

// A value that holds from a place on (0 to 1) to the next one's.
struct Palier {
  double debut = 0;
  double valeur = 0;
};
// A stair of values over time as SVG.
std::string escalierSvg(const std::string& titre, const std::vector<Palier>& paliers);

}  // namespace noxlux::commande

#endif
