// printf formats checked against their arguments when the library is compiled.
#ifndef NOXLUX_BASICS_FORMAT_VERIFIE_H
#define NOXLUX_BASICS_FORMAT_VERIFIE_H

#include <cstddef>
#include <type_traits>

namespace noxlux {

namespace detail {

enum class Categorie { Entier, EntierLong, Reel, Texte, Adresse, Autre };

template <class T>
consteval Categorie categorie() {
  using U = std::decay_t<T>;
  if constexpr (std::is_same_v<U, char*> || std::is_same_v<U, const char*>) {
    return Categorie::Texte;
  } else if constexpr (std::is_pointer_v<U>) {
    return Categorie::Adresse;
  } else if constexpr (std::is_floating_point_v<U>) {
    return Categorie::Reel;
  } else if constexpr (std::is_same_v<U, long> || std::is_same_v<U, unsigned long>) {
    return Categorie::EntierLong;
  } else if constexpr (std::is_integral_v<U> || (std::is_enum_v<U> && std::is_convertible_v<U, int>)) {
    return sizeof(U) <= sizeof(int) ? Categorie::Entier : Categorie::Autre;
  } else {
    return Categorie::Autre;
  }
}

constexpr bool contient(const char* lettres, char c) {
  for (; *lettres != '\0'; ++lettres) {
    if (*lettres == c) {
      return true;
    }
  }
  return false;
}

// The category that a conversion expects, its flags, width and precision being already passed.
consteval Categorie categorieAttendue(const char*& p) {
  bool longueur = false;
  while (*p == 'l' || *p == 'h') {
    longueur = longueur || *p == 'l';
    ++p;
  }
  const char c = *p++;
  if (contient("diuxXc", c)) {
    return longueur ? Categorie::EntierLong : Categorie::Entier;
  }
  if (contient("feEgG", c)) {
    return Categorie::Reel;
  }
  return c == 's' ? Categorie::Texte : (c == 'p' ? Categorie::Adresse : Categorie::Autre);
}

consteval bool formatCorrect(const char* p, const Categorie* arguments, std::size_t nombre) {
  // Lines end where the writer of the trace ends them.
  for (const char* c = p; *c != '\0'; ++c) {
    if (*c == '\n' || *c == '\r') {
      return false;
    }
  }
  std::size_t i = 0;
  const auto prendre = [&](Categorie attendue) {
    return attendue != Categorie::Autre && i < nombre && arguments[i++] == attendue;
  };
  while (*p != '\0') {
    if (*p++ != '%') {
      continue;
    }
    if (*p == '%') {
      ++p;
      continue;
    }
    while (contient("#0-+ .123456789*", *p)) {
      if (*p++ == '*' && !prendre(Categorie::Entier)) {
        return false;
      }
    }
    if (!prendre(categorieAttendue(p))) {
      return false;
    }
  }
  return i == nombre;
}

}  // namespace detail

// A format whose conversions agree with arguments of types A. A disagreement does not compile.
template <class... A>
class FormatVerifie {
 public:
  // NOLINTNEXTLINE(google-explicit-constructor): a literal must convert by itself.
  consteval FormatVerifie(const char* texte) : texte_(texte) {
    const detail::Categorie categories[] = {detail::categorie<A>()..., detail::Categorie::Autre};
    if (!detail::formatCorrect(texte, categories, sizeof...(A))) {
      throw "the printf format holds a line break, or does not agree with its arguments";
    }
  }
  const char* texte() const { return texte_; }

 private:
  const char* texte_;
};

}  // namespace noxlux

#endif
