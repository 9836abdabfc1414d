// A place in a JSON text, such as $.lignes[1].date: links up to the root, spelled only when a fault is told.
// A link is valid for as long as the one that it was made from.
#ifndef NOXLUX_COMMANDE_CHEMIN_H
#define NOXLUX_COMMANDE_CHEMIN_H

#include <algorithm>
#include <limits>
#include <string>
#include <string_view>

#include "noxlux/erreurs.h"

namespace noxlux::commande {

// What a person is told of a fault besides the sentence: what was read there, or what it resembles. A batch
// answers the sentence alone.
class FauteJson : public ErreurUsage {
 public:
  FauteJson(const std::string& phrase, std::string complement)
      : ErreurUsage(phrase), complement_(std::move(complement)) {}
  const std::string& complement() const { return complement_; }

 private:
  std::string complement_;
};

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
  // The same, with the value that stands here.
  [[noreturn]] void refuser(const std::string& raison, const std::string& valeur) const {
    std::size_t montres = std::min<std::size_t>(60, valeur.size());
    while (montres < valeur.size() && (static_cast<unsigned char>(valeur[montres]) & 0xC0U) == 0x80U) {
      ++montres;
    }
    throw FauteJson(texte() + " : " + raison,
                    " (lu : " + valeur.substr(0, montres) + (montres < valeur.size() ? "..." : "") + ")");
  }

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
