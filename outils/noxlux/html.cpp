#include "noxlux/html.h"

#include <algorithm>

#include "noxlux/presentation.h"

namespace noxlux::commande {

namespace {

constexpr const char* STYLE = R"(
:root { color-scheme: light dark; --fond: #fff; --encre: #1b1b1f; --pale: #5a5a66; --trait: #d5d5de; --barre: #2f6f9f; }
@media (prefers-color-scheme: dark) {
  :root { --fond: #16161a; --encre: #ececf1; --pale: #a8a8b3; --trait: #3a3a44; --barre: #6fb1e0; } }
* { box-sizing: border-box; }
body { margin: 0 auto; max-width: 62rem; padding: 1.5rem; background: var(--fond); color: var(--encre);
  font: 1rem/1.5 system-ui, sans-serif; }
h1 { font-size: 1.6rem; margin: 0 0 .3rem; } h2 { font-size: 1.2rem; margin: 2rem 0 .5rem; } h3 { margin: 1.2rem 0 .4rem; }
p.pale, .pale { color: var(--pale); }
table { border-collapse: collapse; width: 100%; font-size: .95rem; }
.large { overflow-x: auto; }
th, td { text-align: left; padding: .3rem .6rem; border-bottom: 1px solid var(--trait); vertical-align: top; }
td.n, th.n { text-align: right; white-space: nowrap; font-variant-numeric: tabular-nums; }
dl { display: grid; grid-template-columns: minmax(9rem, auto) 1fr; gap: .2rem 1rem; margin: .5rem 0; }
dt { color: var(--pale); } dd { margin: 0; }
svg { width: 100%; height: auto; } svg text { fill: var(--encre); font: 13px system-ui, sans-serif; }
svg .barre { fill: var(--barre); } svg .trait { stroke: var(--barre); fill: none; stroke-width: 2; }
@media print { body { max-width: none; padding: 0; } h2 { break-after: avoid; } tr, svg { break-inside: avoid; } }
)";

}  // namespace

std::string echapperHtml(std::string_view texte) {
  std::string resultat;
  for (const char c : texte) {
    switch (c) {
      case '&':
        resultat += "&amp;";
        break;
      case '<':
        resultat += "&lt;";
        break;
      case '>':
        resultat += "&gt;";
        break;
      case '"':
        resultat += "&quot;";
        break;
      case '\'':
        resultat += "&#39;";
        break;
      default:
        // A page holds no control character.
        resultat += static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\t' ? '?' : c;
    }
  }
  return resultat;
}

std::string pageHtml(const std::string& titre, const std::string& corps) {
  return "<!DOCTYPE html>\n<html lang=\"fr\">\n<head>\n<meta charset=\"utf-8\">\n"
         "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
         echapperHtml(titre) + "</title>\n<style>" + STYLE + "</style>\n</head>\n<body>\n<main>\n" + corps +
         "</main>\n</body>\n</html>\n";
}

std::string tableHtml(const std::vector<std::string>& titres,
                      const std::vector<std::vector<std::string>>& lignes, std::size_t chiffres) {
  std::string html = "<div class=\"large\"><table>\n<thead><tr>";
  for (std::size_t i = 0; i < titres.size(); ++i) {
    html += (i >= chiffres ? "<th scope=\"col\" class=\"n\">" : "<th scope=\"col\">") + titres[i] + "</th>";
  }
  html += "</tr></thead>\n<tbody>\n";
  for (const auto& ligne : lignes) {
    html += "<tr>";
    for (std::size_t i = 0; i < ligne.size(); ++i) {
      html += (i >= chiffres ? "<td class=\"n\">" : "<td>") + ligne[i] + "</td>";
    }
    html += "</tr>\n";
  }
  return html + "</tbody>\n</table></div>\n";
}

std::string barresSvg(const std::string& titre, const std::vector<Barre>& barres) {
  constexpr int HAUTEUR = 24;
  constexpr double GAUCHE = 190;
  constexpr double PLACE = 380;
  double maximum = 0;
  for (const Barre& barre : barres) {
    maximum = std::max(maximum, barre.valeur);
  }
  const auto n = [](double valeur) { return nombrePourProgramme(valeur, 1); };
  const int total = HAUTEUR * static_cast<int>(barres.size()) + 6;
  std::string svg = "<svg role=\"img\" viewBox=\"0 0 760 " + std::to_string(total) + "\" aria-label=\"" +
                    echapperHtml(titre) + "\">\n<title>" + echapperHtml(titre) + "</title>\n";
  int haut = 4;
  for (const Barre& barre : barres) {
    const double longueur = maximum > 0 ? std::max(1.0, barre.valeur / maximum * PLACE) : 1.0;
    svg += "<text x=\"" + n(GAUCHE - 8) + "\" y=\"" + std::to_string(haut + 14) + "\" text-anchor=\"end\">" +
           echapperHtml(barre.nom) + "</text><rect class=\"barre\" x=\"" + n(GAUCHE) + "\" y=\"" +
           std::to_string(haut) + "\" width=\"" + n(longueur) + "\" height=\"18\" rx=\"2\"/><text x=\"" +
           n(GAUCHE + longueur + 6) + "\" y=\"" + std::to_string(haut + 14) + "\">" +
           echapperHtml(barre.legende) + "</text>\n";
    haut += HAUTEUR;
  }
  return svg + "</svg>\n";
}

std::string escalierSvg(const std::string& titre, const std::vector<Palier>& paliers) {
  constexpr double LARGEUR = 740;
  constexpr double HAUTEUR = 80;
  double maximum = 0;
  for (const Palier& palier : paliers) {
    maximum = std::max(maximum, palier.valeur);
  }
  const auto n = [](double valeur) { return nombrePourProgramme(valeur, 1); };
  std::string trace;
  for (std::size_t i = 0; i < paliers.size(); ++i) {
    const double x = 10 + paliers[i].debut * LARGEUR;
    const double fin = 10 + (i + 1 < paliers.size() ? paliers[i + 1].debut : 1.0) * LARGEUR;
    const double y = 10 + HAUTEUR * (1 - (maximum > 0 ? paliers[i].valeur / maximum : 0));
    trace += (i == 0 ? "M" : "L") + n(x) + " " + n(y) + "L" + n(fin) + " " + n(y);
  }
  return "<svg role=\"img\" viewBox=\"0 0 760 100\" aria-label=\"" + echapperHtml(titre) + "\"><title>" +
         echapperHtml(titre) + "</title><path class=\"trait\" d=\"" + trace + "\"/></svg>\n";
}

}  // namespace noxlux::commande
