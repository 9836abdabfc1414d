// Decimal values and whole numbers.
#ifndef NOXLUX_TYPES_DECIMAL_H
#define NOXLUX_TYPES_DECIMAL_H

#include <compare>
#include <cstdint>

#include "types/type_donnee.h"

namespace noxlux {

// Two decimal values that differ by no more are equal.
constexpr double PRECISION = 0.00001;

class Flottant : public TypeSimple {
 public:
  Flottant() = default;
  explicit Flottant(double valeur) : valeur_(valeur) {}
  // From digits without decimal point, the last `decimales` of which are decimals. Empty gives 0; bytes that
  // are not 1 to 9 digits give a value that is not ok(). REQUIRES: champ != null
  Flottant(const byte* champ, std::size_t longueur, std::size_t decimales);

  void afficher(std::FILE* sortie) const override;
  void dump(unsigned short module) const override;
  // Whether the absolute value exceeds PRECISION.
  bool estRenseigne() const override;
  bool ok() const override;
  std::string lireBytes() const override { return lireBytes(2); }
  std::size_t lireTaille() const override { return lireTaille(2); }
  // The digits with `decimales` decimals and no point, at least decimales + 1 of them. Always written, for
  // zero too. REQUIRES: valeur >= 0
  std::string lireBytes(std::size_t decimales) const;
  std::size_t lireTaille(std::size_t decimales) const;

  // 1 to 9 bytes, all digits.
  static bool estValide(const byte* champ, std::size_t longueur);

  double lireValeur() const { return valeur_; }
  // Rounded toward zero, or to the nearest, with n decimals. REQUIRES: n >= 0
  double tronquer(int n = 2) const;
  double arrondir(int n = 2) const;

  bool operator==(const Flottant& autre) const;
  // Equal values, in the sense of PRECISION, are neither less nor greater.
  bool operator<(const Flottant& autre) const { return valeur_ < autre.valeur_ && !(*this == autre); }
  bool operator>(const Flottant& autre) const { return autre < *this; }
  bool operator<=(const Flottant& autre) const { return !(autre < *this); }
  bool operator>=(const Flottant& autre) const { return !(*this < autre); }

 protected:
  double valeur_ = 0.0;
};

class Nombre final : public TypeSimple {
 public:
  Nombre() = default;
  explicit Nombre(std::int32_t valeur) : valeur_(valeur) {}
  // From decimal digits; empty gives 0. Bytes that are not digits, or too large, give a value that is not
  // ok().
  Nombre(const byte* champ, std::size_t longueur);

  void afficher(std::FILE* sortie) const override;
  void dump(unsigned short module) const override;
  bool estRenseigne() const override { return valeur_ != 0; }
  bool ok() const override { return valide_; }
  // Decimal digits, padded with zeros on the left to 5 characters.
  std::string lireBytes() const override;

  std::int32_t lireValeur() const { return valeur_; }
  auto operator<=>(const Nombre& autre) const { return valeur_ <=> autre.valeur_; }
  bool operator==(const Nombre& autre) const { return valeur_ == autre.valeur_; }

 private:
  std::int32_t valeur_ = 0;
  bool valide_ = true;
};

// A ratio or a rate; never negative.
class Coefficient final : public Flottant {
 public:
  static constexpr std::size_t DECIMALES = 3;
  static constexpr std::size_t DECIMALES_TAUX = 2;

  Coefficient() = default;
  // REQUIRES: valeur >= 0
  explicit Coefficient(double valeur);
  Coefficient(const byte* champ, std::size_t longueur, std::size_t decimales)
      : Flottant(champ, longueur, decimales) {}

  void dump(unsigned short module) const override;
  using Flottant::lireBytes;
  using Flottant::lireTaille;
  std::string lireBytes() const override { return Flottant::lireBytes(DECIMALES); }
  std::size_t lireTaille() const override { return Flottant::lireTaille(DECIMALES); }

  Coefficient operator+(const Coefficient& droite) const { return Coefficient(valeur_ + droite.valeur_); }
  // REQUIRES: valeur >= droite.valeur
  Coefficient operator-(const Coefficient& droite) const;
  Coefficient operator*(const Coefficient& droite) const { return Coefficient(valeur_ * droite.valeur_); }
};

// An amount in euros.
class Montant final : public Flottant {
 public:
  static constexpr std::size_t DECIMALES = 2;

  Montant() = default;
  explicit Montant(double valeur) : Flottant(valeur) {}
  Montant(const byte* champ, std::size_t longueur) : Flottant(champ, longueur, DECIMALES) {}

  // "%#.2fE"
  void afficher(std::FILE* sortie) const override;
  void dump(unsigned short module) const override;

  Montant operator+(const Montant& droite) const { return Montant(valeur_ + droite.valeur_); }
  Montant operator-(const Montant& droite) const { return Montant(valeur_ - droite.valeur_); }
  Montant operator-() const { return Montant(-valeur_); }
  Montant operator*(const Coefficient& droite) const { return Montant(valeur_ * droite.lireValeur()); }
  Montant operator*(const Nombre& droite) const { return Montant(valeur_ * droite.lireValeur()); }
  // REQUIRES: droite is filled
  Montant operator/(const Nombre& droite) const;
};

inline Montant operator*(const Nombre& gauche, const Montant& droite) { return droite * gauche; }
inline Montant operator*(const Coefficient& gauche, const Montant& droite) { return droite * gauche; }

}  // namespace noxlux

#endif
