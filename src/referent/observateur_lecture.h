// Who listens to the queries: what each was asked, what it answered, and since when that holds.
#ifndef NOXLUX_REFERENT_OBSERVATEUR_LECTURE_H
#define NOXLUX_REFERENT_OBSERVATEUR_LECTURE_H

#include <concepts>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "basics/codes_retour.h"
#include "types/booleen.h"
#include "types/date.h"
#include "types/decimal.h"
#include "types/liste_codes.h"

namespace noxlux {

// Texts are in the encoding of the reference.
using ValeurLue = std::variant<std::monostate, bool, double, std::string, std::vector<std::string>>;

inline ValeurLue valeurLue(const Texte& texte) { return std::string(texte.vue()); }
inline ValeurLue valeurLue(const Date& date) {
  return date.estRenseigne() ? ValeurLue(date.lireValeur()) : ValeurLue();
}
inline ValeurLue valeurLue(const Periode& periode) { return periode.lireBytes(); }
inline ValeurLue valeurLue(const Flottant& valeur) { return valeur.lireValeur(); }
inline ValeurLue valeurLue(const Nombre& valeur) { return static_cast<double>(valeur.lireValeur()); }
inline ValeurLue valeurLue(const Booleen& valeur) { return valeur.estVrai(); }
template <std::unsigned_integral T>
ValeurLue valeurLue(T valeur) {
  return static_cast<double>(valeur);
}
template <class T>
ValeurLue valeurLue(const TypeListe<T>& liste) {
  std::vector<std::string> valeurs;
  for (const T& element : liste) {
    valeurs.push_back(std::get<std::string>(valeurLue(element)));
  }
  return valeurs;
}

struct DonneeLue {
  const char* question = "";     // the name of the query
  std::vector<ValeurLue> cles;   // what it was asked, in its order
  CodeRetour code = NOX_CR_OK;   // what it answered
  ValeurLue valeur;              // none of a query that failed
  std::optional<Date> depuis;    // the first day of the dated line that it answered from
  std::optional<Date> modifiee;  // since when a local change holds
};

class ObservateurLecture {
 public:
  virtual void donneeLue(DonneeLue&& donnee) = 0;
  // The datum told last was changed locally, since that day.
  virtual void donneeModifiee(const Date& depuis) = 0;

 protected:
  ~ObservateurLecture() = default;
};

// Where a query notes, on its way, what it answers from: nothing is made of it unless someone listens.
class Releve {
 public:
  template <class L>
  void dater(const L& ligne) {
    if constexpr (requires { ligne.dateEffet; }) {
      depuis_ = &ligne.dateEffet;
    } else if constexpr (requires { ligne.debut; }) {
      depuis_ = &ligne.debut;
    }
  }
  std::optional<Date> depuis() const {
    return depuis_ == nullptr ? std::nullopt : std::optional(Date(*depuis_));
  }

 private:
  const DateBrute* depuis_ = nullptr;
};

}  // namespace noxlux

#endif
