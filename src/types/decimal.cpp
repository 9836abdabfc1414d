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

constexpr double ENTIER_EXACT = 9007199254740992.0;  // 2^53

std::size_t nombreDeChiffres(std::uint64_t valeur) {
  std::size_t n = 1;
  for (; valeur >= 10000; valeur /= 10000) {
    n += 4;
  }
  return n + (valeur >= 10 ? 1 : 0) + (valeur >= 100 ? 1 : 0) + (valeur >= 1000 ? 1 : 0);
}

// Writes the last digits of a whole number, up to `fin`.
template <class T>
void ecrireChiffres(T valeur, char* debut, char* fin) {
  for (; fin != debut; valeur /= 10) {
    *--fin = static_cast<char>('0' + valeur % 10);
  }
}

// The digits of the whole part of a value, at least `minimum` (a few) of them. REQUIRES: valeur >= 0
std::string chiffresDe(double valeur, std::size_t minimum) {
  if (valeur >= ENTIER_EXACT) {
    char chiffres[std::numeric_limits<double>::max_exponent10 + 2];
    return {chiffres, static_cast<std::size_t>(std::snprintf(chiffres, sizeof chiffres, "%.0f", valeur))};
  }
  const auto entier = static_cast<std::uint64_t>(valeur);
  std::string chiffres(std::max(nombreDeChiffres(entier), minimum), '0');
  char* const debut = chiffres.data();
  if (const auto court = static_cast<std::uint32_t>(entier); court == entier) {
    ecrireChiffres(court, debut, debut + chiffres.size());
  } else {
    ecrireChiffres(entier, debut, debut + chiffres.size());
  }
  return chiffres;
}

std::size_t nombreDeChiffres(double valeur, std::size_t minimum) {
  return valeur >= ENTIER_EXACT ? chiffresDe(valeur, minimum).size()
                                : std::max(nombreDeChiffres(static_cast<std::uint64_t>(valeur)), minimum);
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

std::size_t Flottant::lireTaille(std::size_t decimales) const {
  exiger(valeur_ >= 0, "valeur >= 0");
  return nombreDeChiffres(valeur_ * puissanceDeDix(decimales) + PRECISION, decimales + 1);
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
