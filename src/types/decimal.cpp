#include "types/decimal.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <limits>
#include <string>

#include "basics/assertion.h"
#include "basics/trace.h"

namespace noxlux {

namespace {

double puissanceDeDix(std::size_t n) {
  constexpr double PUISSANCES[] = {1.0, 10.0, 100.0, 1000.0, 10000.0};
  return n < std::size(PUISSANCES) ? PUISSANCES[n] : std::pow(10.0, static_cast<double>(n));
}

// The digits of the whole part of a value, at least `minimum` (a few) of them. REQUIRES: valeur >= 0
std::string chiffresDe(double valeur, std::size_t minimum) {
  constexpr double ENTIER_EXACT = 9007199254740992.0;  // 2^53
  if (valeur >= ENTIER_EXACT) {
    char chiffres[std::numeric_limits<double>::max_exponent10 + 2];
    return {chiffres, static_cast<std::size_t>(std::snprintf(chiffres, sizeof chiffres, "%.0f", valeur))};
  }
  char chiffres[std::numeric_limits<std::uint64_t>::digits10 + 1];
  std::size_t debut = sizeof chiffres;
  const std::size_t limite = sizeof chiffres - std::min(minimum, sizeof chiffres);
  for (auto reste = static_cast<std::uint64_t>(valeur); reste != 0 || debut > limite; reste /= 10) {
    chiffres[--debut] = static_cast<char>('0' + reste % 10);
  }
  return {chiffres + debut, sizeof chiffres - debut};
}

bool sontDesChiffres(const byte* champ, std::size_t longueur) {
  return std::all_of(champ, champ + longueur, [](byte b) { return b >= '0' && b <= '9'; });
}

}  // namespace

Flottant::Flottant(const byte* champ, std::size_t longueur, std::size_t decimales) {
  exiger(champ != nullptr, "champ != __null");
  if (longueur == 0) {
    return;
  }
  if (!estValide(champ, longueur)) {
    valeur_ = std::numeric_limits<double>::quiet_NaN();
    return;
  }
  long entier = 0;
  for (std::size_t i = 0; i < longueur; ++i) {
    entier = entier * 10 + (champ[i] - '0');
  }
  valeur_ = static_cast<double>(entier) / puissanceDeDix(decimales);
}

void Flottant::afficher(std::FILE* sortie) const { std::fprintf(sortie, "%f", valeur_); }

void Flottant::dump(unsigned short module) const { Trace::ecrire(module, "  flottant = %f", valeur_); }

bool Flottant::estRenseigne() const { return std::fabs(valeur_) > PRECISION; }

bool Flottant::ok() const { return !std::isnan(valeur_); }

std::string Flottant::lireBytes(std::size_t decimales) const {
  exiger(valeur_ >= 0, "valeur >= 0");
  return chiffresDe(valeur_ * puissanceDeDix(decimales) + PRECISION, decimales + 1);
}

bool Flottant::estValide(const byte* champ, std::size_t longueur) {
  return longueur >= 1 && longueur <= 9 && sontDesChiffres(champ, longueur);
}

double Flottant::tronquer(int n) const {
  exiger(n >= 0, "n >= 0");
  const double facteur = puissanceDeDix(static_cast<std::size_t>(n));
  return std::trunc(valeur_ * facteur) / facteur;
}

double Flottant::arrondir(int n) const {
  exiger(n >= 0, "n >= 0");
  const double facteur = puissanceDeDix(static_cast<std::size_t>(n));
  const double dessous = std::floor(valeur_ * facteur) / facteur;
  const double dessus = std::ceil(valeur_ * facteur) / facteur;
  const double ecartDessous = valeur_ - dessous;
  const double ecartDessus = dessus - valeur_;
  // Half steps, which binary values only approach, go away from zero.
  const bool milieu = std::fabs(ecartDessus - ecartDessous) <= PRECISION;
  if (milieu && dessus != dessous) {
    return valeur_ >= 0 ? dessus : dessous;
  }
  return ecartDessus < ecartDessous ? dessus : dessous;
}

bool Flottant::operator==(const Flottant& autre) const {
  return std::fabs(valeur_ - autre.valeur_) <= PRECISION;
}

Nombre::Nombre(const byte* champ, std::size_t longueur) {
  std::int64_t valeur = 0;
  valide_ = sontDesChiffres(champ, longueur);
  for (std::size_t i = 0; valide_ && i < longueur; ++i) {
    valeur = valeur * 10 + (champ[i] - '0');
    valide_ = valeur <= std::numeric_limits<std::int32_t>::max();
  }
  valeur_ = valide_ ? static_cast<std::int32_t>(valeur) : 0;
}

void Nombre::afficher(std::FILE* sortie) const { std::fprintf(sortie, "%ld", static_cast<long>(valeur_)); }

void Nombre::dump(unsigned short module) const {
  Trace::ecrire(module, "  nombre = %ld", static_cast<long>(valeur_));
}

std::string Nombre::lireBytes() const {
  char texte[16];
  const int ecrits = std::snprintf(texte, sizeof texte, "%05ld", static_cast<long>(valeur_));
  return {texte, static_cast<std::size_t>(ecrits)};
}

Coefficient::Coefficient(double valeur) : Flottant(valeur) { exiger(valeur >= 0, "valeur >= 0"); }

void Coefficient::dump(unsigned short module) const { Trace::ecrire(module, "  coefficient = %f", valeur_); }

Coefficient Coefficient::operator-(const Coefficient& droite) const {
  exiger(valeur_ >= droite.valeur_, "valeur >= right.valeur");
  return Coefficient(valeur_ - droite.valeur_);
}

void Montant::afficher(std::FILE* sortie) const { std::fprintf(sortie, "%#.2fE", valeur_); }

void Montant::dump(unsigned short module) const { Trace::ecrire(module, "  montant = %#.2fE", valeur_); }

Montant Montant::operator/(const Nombre& droite) const {
  exiger(droite.estRenseigne(), "right.estRenseigne()");
  return Montant(valeur_ / droite.lireValeur());
}

}  // namespace noxlux
