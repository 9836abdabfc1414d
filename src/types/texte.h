// Texts and codes.
#ifndef NOXLUX_TYPES_TEXTE_H
#define NOXLUX_TYPES_TEXTE_H

#include <algorithm>
#include <string>
#include <string_view>

#include "types/type_donnee.h"

namespace noxlux {

// An owned ISO-8859-1 text. Filled when it is not empty.
class Texte : public TypeSimple {
 public:
  Texte() = default;
  explicit Texte(std::string_view texte) : texte_(texte) {}
  Texte(const byte* champ, std::size_t longueur);
  Texte(const Texte&) = default;
  Texte(Texte&&) = default;
  Texte& operator=(const Texte&) = default;
  Texte& operator=(Texte&&) = default;

  void afficher(std::FILE* sortie) const override;
  void dump(unsigned short module) const override;
  bool estRenseigne() const override { return !texte_.empty(); }
  bool ok() const override { return true; }
  std::string lireBytes() const override { return texte_; }
  std::size_t lireTaille() const override { return texte_.size(); }
  virtual ~Texte() = default;

  void affecter(const byte* champ, std::size_t longueur) {
    texte_.assign(reinterpret_cast<const char*>(champ), longueur);
  }
  const char* lireTexte() const { return texte_.c_str(); }
  std::string_view vue() const { return texte_; }
  std::size_t lireLongueur() const { return texte_.size(); }

  // Brings the text to its canonical form: capitals, no accents, ligatures spelled out. With `separer`, every
  // run of characters other than letters and digits becomes one space, none at either end; without, they
  // stay.
  void transformerFormeCanonique(bool separer);

  friend bool operator==(const Texte& gauche, const Texte& droite) { return gauche.texte_ == droite.texte_; }

 private:
  std::string texte_;
};

constexpr bool estCapitaleOuChiffre(byte c) { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); }

// A text made of capital letters and digits.
class Code : public Texte {
 public:
  Code() = default;
  explicit Code(std::string_view texte) : Texte(texte) {}
  // REQUIRES: "0"-"9" or "A"-"Z".
  explicit Code(char caractere);
  Code(const byte* champ, std::size_t longueur) : Texte(champ, longueur) {}

  void dump(unsigned short module) const override;

  // Whether each of the n characters is a capital letter or a digit.
  static bool estValide(const byte* octets, std::size_t n) {
    return std::all_of(octets, octets + n, estCapitaleOuChiffre);
  }
  static bool estValide(std::string_view texte) {
    return estValide(reinterpret_cast<const byte*>(texte.data()), texte.size());
  }
  bool estValide() const { return estValide(vue()); }

  // The part of `longueur` characters from `debut`, cut at the end of the code.
  Code extrairePartie(std::size_t debut, std::size_t longueur) const;
};

}  // namespace noxlux

#endif
