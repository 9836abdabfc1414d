// What a table line is: a class with its table identifier, its name and the list of its fields. Reading,
// checking, writing, dumping and listing a line are all made from that one list, and so are the keys that
// sources tell it by. Fields that a source leaves out keep the values that the class gives them.
#ifndef NOXLUX_TABLES_LIGNE_TABLE_H
#define NOXLUX_TABLES_LIGNE_TABLE_H

#include <cstdint>
#include <tuple>
#include <type_traits>

#include "tables/valeurs_ligne.h"

namespace noxlux {

// What a field must satisfy when it is read.
enum class Controle : std::uint8_t {
  Libre,            // anything
  Renseigne,        // a code: not blank and valid; a text: not empty
  CodeFacultatif,   // a valid code, or blank
  Octet,            // a one-byte code: capital letter, digit, space or zero byte
  DateValide,       // a day of the calendar
  DateFacultative,  // a day of the calendar, or open
  Booleen,          // "O" or "N"
  Positif,          // >= 0
  AuMoinsUn,        // >= 1
  NonNul            // not 0
};

// The name of a field in sources and in listings. Sources may leave the optional ones out.
struct NomChamp {
  const char* texte;
  bool obligatoire = true;

  // Not explicit: a name alone is that of a field that sources must tell.
  constexpr NomChamp(const char* nom, bool requis = true) : texte(nom), obligatoire(requis) {}
};
constexpr NomChamp facultatif(const char* nom) { return {nom, false}; }

template <class L, class T>
struct DescriptionChamp {
  T L::*membre;
  NomChamp nom;
  Controle controle;
  const char* mots;   // what messages call it
  const char* refus;  // the message of a refused value; null: its words and "incorrect"
};

template <class L, class T>
constexpr DescriptionChamp<L, T> champ(T L::*membre, NomChamp nom, const char* mots,
                                       Controle controle = Controle::Libre, const char* refus = nullptr) {
  return {membre, nom, controle, mots, refus};
}

// The fields of a line that begins with its first and last days of validity.
template <class L, class... C>
constexpr auto periode(C... autres) {
  return std::tuple{champ(&L::debut, "debut", "date debut", Controle::DateValide),
                    champ(&L::fin, facultatif("fin"), "date de fin", Controle::DateFacultative), autres...};
}

template <class T>
inline constexpr bool EST_PLAGE = false;
template <unsigned CIBLE, class P>
inline constexpr bool EST_PLAGE<Plage<CIBLE, P>> = true;

// Calls f(field, value) for each field of a line, in file order.
template <class L, class F>
void visiterChamps(L& ligne, F&& f) {
  std::apply([&](const auto&... c) { (f(c, ligne.*(c.membre)), ...); }, std::remove_const_t<L>::champs());
}

// The same, as long as f answers true.
template <class L, class F>
bool visiterTantQue(L& ligne, F&& f) {
  return std::apply([&](const auto&... c) { return (f(c, ligne.*(c.membre)) && ...); },
                    std::remove_const_t<L>::champs());
}

}  // namespace noxlux

#endif
