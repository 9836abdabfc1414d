// What a table line is: a class with its table identifier, its name and the list of its fields. Reading,
// checking, writing, dumping and listing a line are all made from that one list.
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

template <class L, class T>
struct DescriptionChamp {
  T L::*membre;
  Controle controle;
  const char* mots;   // the field's name in messages
  const char* refus;  // the message of a refused value; null: the name and "incorrect"
};

template <class L, class T>
constexpr DescriptionChamp<L, T> champ(T L::*membre, const char* mots, Controle controle = Controle::Libre,
                                       const char* refus = nullptr) {
  return {membre, controle, mots, refus};
}

template <class T>
struct EstPlage : std::false_type {};
template <unsigned CIBLE, class P>
struct EstPlage<Plage<CIBLE, P>> : std::true_type {};

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
