#include "types/date.h"

#include <algorithm>
#include <cstdio>

#include "basics/assertion.h"
#include "basics/trace.h"

namespace noxlux {

namespace {

bool estBissextile(unsigned annee) { return (annee % 4 == 0 && annee % 100 != 0) || annee % 400 == 0; }

unsigned joursDuMois(unsigned mois, unsigned annee) {
  constexpr unsigned char JOURS[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return mois == 2 && estBissextile(annee) ? 29 : JOURS[mois - 1];
}

// Days between two days of one year, the first not earlier than the second.
unsigned nombreJours(unsigned jour1, unsigned mois1, unsigned jour2, unsigned mois2, unsigned annee) {
  if (mois1 == mois2) {
    return jour1 - jour2;
  }
  unsigned total = joursDuMois(mois2, annee) - jour2;
  for (unsigned mois = mois2 + 1; mois < mois1; ++mois) {
    total += joursDuMois(mois, annee);
  }
  return total + jour1;
}

// A day that arithmetic can work on.
DateBrute normaliser(const DateBrute& date) {
  if (date.estHorsCalendrier() || date.mois == 0) {
    return {date.annee, 1, 1};
  }
  const unsigned dernier = joursDuMois(date.mois, date.annee);
  return {date.annee, date.mois, static_cast<std::uint8_t>(std::clamp<unsigned>(date.jour, 1, dernier))};
}

bool lireChiffres(const byte* champ, unsigned nombre, unsigned& valeur) {
  valeur = 0;
  for (unsigned i = 0; i < nombre; ++i) {
    if (champ[i] < '0' || champ[i] > '9') {
      return false;
    }
    valeur = valeur * 10 + static_cast<unsigned>(champ[i] - '0');
  }
  return true;
}

DateBrute extraire(const byte* champ, std::size_t longueur) {
  unsigned annee = 0;
  unsigned mois = 0;
  unsigned jour = 0;
  if (champ == nullptr || (longueur != 8 && longueur != 12) || !lireChiffres(champ, 4, annee) ||
      !lireChiffres(champ + 4, 2, mois) || !lireChiffres(champ + 6, 2, jour)) {
    return {};
  }
  for (std::size_t i = 8; i < longueur; ++i) {
    if (champ[i] != '0') {
      return {};
    }
  }
  return {static_cast<std::uint16_t>(annee), static_cast<std::uint8_t>(mois),
          static_cast<std::uint8_t>(jour)};
}

}  // namespace

bool DateBrute::estValide() const {
  return mois >= 1 && mois <= 12 && jour >= 1 && jour <= joursDuMois(mois, annee);
}

Periode::Periode(unsigned short nombreAnnees, unsigned short nombreJours)
    : annees_(nombreAnnees), jours_(nombreJours) {
  exiger(nombreJours <= MAX_NOMBRE_JOURS, "nombreJours <= MAX_NOMBRE_JOURS");
}

void Periode::afficher(std::FILE* sortie) const {
  if (annees_ != 0 && jours_ != 0) {
    std::fprintf(sortie, "%dA %dJ", annees_, jours_);
  } else if (annees_ != 0) {
    std::fprintf(sortie, "%dA", annees_);
  } else {
    std::fprintf(sortie, "%dJ", jours_);
  }
}

void Periode::dump(unsigned short module) const {
  if (annees_ != 0 && jours_ != 0) {
    Trace::ecrire(module, "  période = %dA %dJ", annees_, jours_);
  } else if (annees_ != 0) {
    Trace::ecrire(module, "  période = %dA", annees_);
  } else {
    Trace::ecrire(module, "  période = %dJ", jours_);
  }
}

std::string Periode::lireBytes() const {
  return std::to_string(annees_).append(1, 'A').append(std::to_string(jours_)).append(1, 'J');
}

Periode Periode::operator+(const Periode& autre) const {
  unsigned annees = static_cast<unsigned>(annees_) + autre.annees_;
  unsigned jours = static_cast<unsigned>(jours_) + autre.jours_;
  if (jours > MAX_NOMBRE_JOURS) {
    ++annees;
    jours -= MAX_NOMBRE_JOURS;
  }
  return {static_cast<unsigned short>(annees), static_cast<unsigned short>(jours)};
}

Date::Date(const byte* champ, std::size_t longueur) : brute_(extraire(champ, longueur)) {}

Date::Date(std::string_view texte) : Date(reinterpret_cast<const byte*>(texte.data()), texte.size()) {}

bool Date::estValide(const byte* champ, std::size_t longueur) {
  return extraire(champ, longueur).estValide();
}

std::string Date::lireValeur() const {
  char texte[16];
  std::snprintf(texte, sizeof texte, "%02u/%02u/%04u", brute_.jour, brute_.mois, brute_.annee);
  return texte;
}

Date Date::ramener() const { return estRenseigne() ? Date(normaliser(brute_)) : Date(); }

void Date::afficher(std::FILE* sortie) const { std::fputs(lireValeur().c_str(), sortie); }

void Date::dump(unsigned short module) const {
  Trace::ecrire(module, "  date = %02u/%02u/%04u", brute_.jour, brute_.mois, brute_.annee);
}

std::string Date::lireBytes() const {
  if (!estRenseigne()) {
    return {};
  }
  char texte[24];
  const int ecrits =
      std::snprintf(texte, sizeof texte, "%04u%02u%02u0000", brute_.annee, brute_.mois, brute_.jour);
  return {texte, static_cast<std::size_t>(ecrits)};
}

Date Date::operator-(unsigned short jours) const {
  exiger(estRenseigne(), "estRenseigne()");
  const DateBrute depart = normaliser(brute_);
  unsigned annee = depart.annee;
  unsigned mois = depart.mois;
  unsigned jour = depart.jour;
  unsigned reste = jours;
  while (reste != 0) {
    if (reste < jour) {
      jour -= reste;
      break;
    }
    reste -= jour;
    mois = mois == 1 ? 12 : mois - 1;
    if (mois == 12 && --annee == 0) {
      return {};
    }
    jour = joursDuMois(mois, annee);
  }
  return {static_cast<unsigned short>(annee), static_cast<unsigned char>(mois),
          static_cast<unsigned char>(jour)};
}

Periode Date::operator-(const Date& autre) const {
  exiger(estRenseigne(), "date1.estRenseigne()");
  exiger(autre.estRenseigne(), "date2.estRenseigne()");
  exiger(*this >= autre, "date1 >= date2");
  const DateBrute date1 = normaliser(brute_);
  const DateBrute date2 = normaliser(autre.brute_);
  const bool memeAnnee = date1.annee == date2.annee;
  const bool anniversairePasse = DateBrute{0, date1.mois, date1.jour} >= DateBrute{0, date2.mois, date2.jour};
  if (memeAnnee || anniversairePasse) {
    // Dates out of the calendar may change order once brought back to 1 January.
    const unsigned jours =
        anniversairePasse ? nombreJours(date1.jour, date1.mois, date2.jour, date2.mois, date1.annee) : 0;
    return {static_cast<unsigned short>(date1.annee - date2.annee), static_cast<unsigned short>(jours)};
  }
  // The step from 31 December to 1 January is not counted.
  const unsigned jours = nombreJours(31, 12, date2.jour, date2.mois, date2.annee) +
                         nombreJours(date1.jour, date1.mois, 1, 1, date1.annee);
  return {static_cast<unsigned short>(date1.annee - date2.annee - 1), static_cast<unsigned short>(jours)};
}

}  // namespace noxlux
