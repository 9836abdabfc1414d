// A place in a JSON text, such as $.lignes[1].date: links up to the root, spelled only when a fault is told.
// A link is valid for as long as the one that it was made from.
#ifndef NOXLUX_COMMANDE_CHEMIN_H
#define NOXLUX_COMMANDE_CHEMIN_H

#include <limits>
#include <string>
#include <string_view>

#include "noxlux/erreurs.h"

namespace noxlux::commande {

class Chemin {
 public:
  // The root: "$" for a JSON text, or the name of what was typed.
  explicit constexpr Chemin(std::string_view racine) : nom_(racine) {}

  // Member `nom` of this place; with a rank, an element of the list of that name.
  constexpr Chemin membre(std::string_view nom, std::size_t rang = SANS_RANG) const& {
    return {this, nom, rang};
  }
  Chemin membre(std::string_view nom, std::size_t rang = SANS_RANG) const&& = delete;
  // An element of the list that stands here.
  constexpr Chemin element(std::size_t rang) const& { return {this, {}, rang}; }
  Chemin element(std::size_t rang) const&& = delete;

  std::string texte() const {
    std::string resultat = parent_ == nullptr ? std::string() : parent_->texte();
    if (!nom_.empty()) {
      resultat += (resultat.empty() ? "" : ".") + std::string(nom_);
    }
    return rang_ == SANS_RANG ? resultat : resultat + "[" + std::to_string(rang_) + "]";
  }

  [[noreturn]] void refuser(const std::string& raison) const { throw ErreurUsage(texte() + " : " + raison); }

 private:
  static constexpr std::size_t SANS_RANG = std::numeric_limits<std::size_t>::max();
  constexpr Chemin(const Chemin* parent, std::string_view nom, std::size_t rang)
      : parent_(parent), nom_(nom), rang_(rang) {}

  const Chemin* parent_ = nullptr;
  std::string_view nom_;
  std::size_t rang_ = SANS_RANG;
};

inline constexpr Chemin RACINE{"$"};

}  // namespace noxlux::commande

#endif
