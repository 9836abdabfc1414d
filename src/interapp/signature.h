// What a query, a change or a cancellation takes, read from its signature: the function families build their
// calls from it, so that a table line only has to name the method.
//
// Methods take their parts in one of these orders, each part only where it makes sense:
//   query         keys, position, date, output
//   change        keys, effect date, position, value, further arguments with defaults
//   cancellation  keys, position
#ifndef NOXLUX_INTERAPP_SIGNATURE_H
#define NOXLUX_INTERAPP_SIGNATURE_H

#include <cstddef>
#include <tuple>
#include <type_traits>

#include "basics/codes_retour.h"
#include "types/date.h"
#include "types/texte.h"

namespace noxlux {

template <class Methode>
struct Signature;

template <class C, class... A>
struct Signature<CodeRetour (C::*)(A...)> {
  static constexpr std::size_t NOMBRE = sizeof...(A);
  template <std::size_t I>
  using Argument = std::tuple_element_t<I, std::tuple<A...>>;
  template <class T>
  static constexpr std::size_t compter() {
    return (std::size_t{std::is_same_v<A, T>} + ... + 0);
  }
  // The codes that come first.
  static constexpr std::size_t compterCles() {
    std::size_t n = 0;
    [[maybe_unused]] bool suite = true;
    ((suite = suite && std::is_same_v<A, const Code&>, n += suite ? 1 : 0), ...);
    return n;
  }

  static constexpr std::size_t CLES = compterCles();
  // The position that a fund of an overseas department stands for.
  static constexpr bool POSITION = compter<unsigned short>() != 0;
  static constexpr bool DATEE = compter<const Date&>() != 0;
};

template <auto METHODE>
using SignatureDe = Signature<decltype(METHODE)>;

// The output of a query: its last argument.
template <auto REQUETE>
using SortieDe = std::remove_reference_t<
    typename SignatureDe<REQUETE>::template Argument<SignatureDe<REQUETE>::NOMBRE - 1>>;

// The new value of a change: what follows the date and the position.
template <auto CHANGEMENT>
using ValeurDe = std::remove_cvref_t<typename SignatureDe<CHANGEMENT>::template Argument<
    SignatureDe<CHANGEMENT>::CLES + 1 + (SignatureDe<CHANGEMENT>::POSITION ? 1 : 0)>>;

// An argument tuple of one reference, or of none.
template <bool PRESENT, class T>
constexpr auto siPrevu(const T& argument) {
  if constexpr (PRESENT) {
    return std::tuple<const T&>(argument);
  } else {
    return std::tuple<>();
  }
}

}  // namespace noxlux

#endif
