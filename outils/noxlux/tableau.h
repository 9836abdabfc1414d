// Tables of text for a terminal.
#ifndef NOXLUX_COMMANDE_TABLEAU_H
#define NOXLUX_COMMANDE_TABLEAU_H

#include <ostream>
#include <string>
#include <vector>

namespace noxlux::commande {

class Tableau {
 public:
  explicit Tableau(std::vector<std::string> titres) : titres_(std::move(titres)) {}

  void ajouter(std::vector<std::string> cellules) { lignes_.push_back(std::move(cellules)); }
  bool estVide() const { return lignes_.empty(); }
  // Columns as wide as their widest cell, folded to the width of the terminal (in a pipe, the last one only);
  // records of too many columns are shown field by field. Columns whose cells are all numbers are set to the
  // right.
  void afficher(std::ostream& sortie) const;

 private:
  void afficherEnBlocs(std::ostream& sortie, std::size_t colonnes) const;

  std::vector<std::string> titres_;
  std::vector<std::vector<std::string>> lignes_;
};

// Width of the terminal; else what COLUMNS tells, else 100.
std::size_t largeurTerminal();
// Characters of a UTF-8 text.
std::size_t largeur(const std::string& utf8);
// Folds a UTF-8 text at spaces into lines of at most `colonnes` characters; keeps its own line breaks.
std::vector<std::string> plier(const std::string& utf8, std::size_t colonnes);

}  // namespace noxlux::commande

#endif
