// Calendar dates and periods, with the arithmetic that ages and delays are computed by.
#ifndef NOXLUX_TYPES_DATE_H
#define NOXLUX_TYPES_DATE_H

#include <compare>
#include <cstdint>
#include <string_view>

#include "types/type_donnee.h"

namespace noxlux {

// A date as the reference stores it: four bytes, all zero when not filled.
struct DateBrute {
  std::uint16_t annee = 0;
  std::uint8_t mois = 0;
  std::uint8_t jour = 0;

  std::strong_ordering operator<=>(const DateBrute& autre) const { return rang() <=> autre.rang(); }
  bool operator==(const DateBrute& autre) const { return rang() == autre.rang(); }
  // Whether year, month and day are all non-zero: an end date that is not is open.
  bool estComplete() const { return annee != 0 && mois != 0 && jour != 0; }
  bool estNulle() const { return *this == DateBrute{}; }
  // Whether it is a day of the calendar.
  bool estValide() const;
  // Whether its month or its day is above any of the calendar: what is written for a person whose day of
  // birth is not known. It stands for 1 January of its year.
  bool estHorsCalendrier() const { return mois > 12 || jour > 31; }

 private:
  std::uint32_t rang() const { return std::uint32_t{annee} << 16U | std::uint32_t{mois} << 8U | jour; }
};

constexpr unsigned short MAX_NOMBRE_JOURS = 365;

class Periode final : public TypeSimple {
 public:
  Periode() = default;
  // REQUIRES: nombreJours <= MAX_NOMBRE_JOURS
  Periode(unsigned short nombreAnnees, unsigned short nombreJours);

  void afficher(std::FILE* sortie) const override;
  void dump(unsigned short module) const override;
  bool estRenseigne() const override { return annees_ != 0 || jours_ != 0; }
  bool ok() const override { return jours_ <= MAX_NOMBRE_JOURS; }
  // "%huA%huJ"
  std::string lireBytes() const override;

  unsigned short lireAnnees() const { return annees_; }
  unsigned short lireJours() const { return jours_; }

  Periode operator+(const Periode& autre) const;
  auto operator<=>(const Periode& autre) const {
    return annees_ != autre.annees_ ? annees_ <=> autre.annees_ : jours_ <=> autre.jours_;
  }
  bool operator==(const Periode& autre) const { return annees_ == autre.annees_ && jours_ == autre.jours_; }

 private:
  unsigned short annees_ = 0;
  unsigned short jours_ = 0;
};

class Date final : public TypeSimple {
 public:
  Date() = default;
  explicit Date(const DateBrute& brute) : brute_(brute) {}
  Date(unsigned short annee, unsigned char mois, unsigned char jour) : brute_{annee, mois, jour} {}
  // From 8 digits YYYYMMDD, or 12 with "0000" at the end; anything else leaves the date not filled.
  Date(const byte* champ, std::size_t longueur);
  explicit Date(std::string_view texte);

  void afficher(std::FILE* sortie) const override;
  void dump(unsigned short module) const override;
  bool estRenseigne() const override { return !brute_.estNulle(); }
  bool ok() const override { return brute_.estNulle() || brute_.estHorsCalendrier() || brute_.estValide(); }
  // "%04u%02u%02u0000"
  std::string lireBytes() const override;

  // Whether the bytes give a day of the calendar.
  static bool estValide(const byte* champ, std::size_t longueur);

  // "%02u/%02u/%04u"
  std::string lireValeur() const;
  const DateBrute& lireBrute() const { return brute_; }
  // The day of the calendar that the date stands for: the nearest in its month for a day that the month
  // lacks, 1 January of its year for a month that no year has.
  Date ramener() const;
  unsigned short lireAnnee() const { return brute_.annee; }
  unsigned char lireMois() const { return brute_.mois; }
  unsigned char lireJour() const { return brute_.jour; }

  // REQUIRES: the date is filled. The empty date when the year reaches 0.
  Date operator-(unsigned short jours) const;
  // Completed years and days between two dates. REQUIRES: both filled, *this >= autre.
  Periode operator-(const Date& autre) const;

  auto operator<=>(const Date& autre) const { return brute_ <=> autre.brute_; }
  bool operator==(const Date& autre) const { return brute_ == autre.brute_; }

 private:
  DateBrute brute_;
};

}  // namespace noxlux

#endif
