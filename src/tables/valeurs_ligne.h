// The field types that table lines and act records are made of, as they lie in memory.
#ifndef NOXLUX_TABLES_VALEURS_LIGNE_H
#define NOXLUX_TABLES_VALEURS_LIGNE_H

#include <algorithm>
#include <array>
#include <bit>
#include <compare>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "basics/assertion.h"
#include "types/date.h"

namespace noxlux {

// A code of N characters, padded with spaces on the right.
template <std::size_t N>
struct CodeFixe {
  std::array<char, N> caracteres;

  CodeFixe() { caracteres.fill(' '); }
  // REQUIRES: texte.size() <= N
  explicit CodeFixe(std::string_view texte) : CodeFixe() {
    exiger(texte.size() <= N, "texte.size() <= N");
    std::copy(texte.begin(), texte.end(), caracteres.begin());
  }
  // All N characters.
  std::string_view entier() const { return {caracteres.data(), N}; }
  // Without the padding.
  std::string_view vue() const {
    std::size_t n = N;
    while (n > 0 && caracteres[n - 1] == ' ') {
      --n;
    }
    return {caracteres.data(), n};
  }
  // What sorts as the code does, and may be kept where one is compared with many.
  auto ordre() const {
    if constexpr (N > MOT && N <= 2 * MOT) {
      // The second word begins inside the first one: where the first ones are equal, so is what they share.
      return std::pair{motDe(0), motDe(N - MOT)};
    } else {
      return *this;
    }
  }
  // In byte order.
  std::strong_ordering operator<=>(const CodeFixe& autre) const {
    if constexpr (N > MOT && N <= 2 * MOT) {
      return ordre() <=> autre.ordre();
    } else {
      return std::memcmp(caracteres.data(), autre.caracteres.data(), N) <=> 0;
    }
  }
  bool operator==(const CodeFixe& autre) const {
    return std::memcmp(caracteres.data(), autre.caracteres.data(), N) == 0;
  }

 private:
  static constexpr std::size_t MOT = sizeof(std::uint64_t);

  // Eight characters as a number that sorts as they do.
  std::uint64_t motDe(std::size_t position) const {
    std::uint64_t mot = 0;
    std::memcpy(&mot, caracteres.data() + position, MOT);
    return std::endian::native == std::endian::little ? __builtin_bswap64(mot) : mot;
  }
};

using CodeActe = CodeFixe<13>;

// An owned text, one pointer wide: tables hold many.
class TexteVariable {
 public:
  TexteVariable() = default;
  explicit TexteVariable(std::string_view texte) : texte_(copier(texte)) {}
  TexteVariable(const TexteVariable& autre) : texte_(copier(autre.vue())) {}
  TexteVariable(TexteVariable&&) = default;
  TexteVariable& operator=(const TexteVariable& autre) {
    texte_ = copier(autre.vue());
    return *this;
  }
  TexteVariable& operator=(TexteVariable&&) = default;
  ~TexteVariable() = default;

  const char* lireTexte() const { return texte_ == nullptr ? "" : texte_.get(); }
  std::string_view vue() const { return lireTexte(); }
  bool estVide() const { return *lireTexte() == '\0'; }

 private:
  static std::unique_ptr<char[]> copier(std::string_view texte) {
    if (texte.empty()) {
      return nullptr;
    }
    std::unique_ptr<char[]> copie(new char[texte.size() + 1]);
    *std::copy(texte.begin(), texte.end(), copie.get()) = '\0';
    return copie;
  }
  std::unique_ptr<char[]> texte_;
};

// A run of lines of table CIBLE: position of the first line and number of lines.
template <unsigned CIBLE_, class P = std::uint16_t>
struct Plage {
  static constexpr unsigned CIBLE = CIBLE_;
  P premiere = 0;
  std::uint16_t nombre = 0;
};
template <unsigned CIBLE>
using PlageLongue = Plage<CIBLE, std::uint32_t>;

// Room for one more element: adding it cannot fail afterwards. It grows by halves, so that many additions
// cost little more than their number.
template <class T>
void reserverElement(std::vector<T>& elements) {
  static_assert(std::is_nothrow_move_constructible_v<T> && std::is_nothrow_move_assignable_v<T>);
  if (elements.size() == elements.capacity()) {
    elements.reserve(elements.size() + elements.size() / 2 + 1);
  }
}

// A short owned list of plain values, 16 bytes wide: up to 14 bytes of values need no further block.
template <class T>
class ListeCompacte {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  static constexpr std::size_t MAX_VALEURS = 65535;

  ListeCompacte() = default;
  explicit ListeCompacte(std::span<const T> valeurs) { affecter(valeurs); }
  ListeCompacte(const ListeCompacte& autre) { affecter(autre.vue()); }
  ListeCompacte(ListeCompacte&& autre) noexcept { echanger(autre); }
  ListeCompacte& operator=(const ListeCompacte& autre) {
    ListeCompacte copie(autre);
    echanger(copie);
    return *this;
  }
  ListeCompacte& operator=(ListeCompacte&& autre) noexcept {
    echanger(autre);
    return *this;
  }
  ~ListeCompacte() {
    if (!estInterne(nombre_)) {
      ::operator delete(bloc());
    }
  }

  // REQUIRES: valeurs.size() <= 65535
  void affecter(std::span<const T> valeurs) {
    exiger(valeurs.size() <= MAX_VALEURS, "valeurs.size() <= MAX_VALEURS");
    const std::span<T> places = redimensionner(static_cast<std::uint16_t>(valeurs.size()));
    if (!valeurs.empty()) {
      std::memcpy(places.data(), valeurs.data(), valeurs.size_bytes());
    }
  }
  // Room for that many values in place of those held, for the caller to fill whole.
  std::span<T> redimensionner(std::uint16_t nombre) {
    ListeCompacte nouvelle{Taille{nombre}};
    echanger(nouvelle);
    return {static_cast<T*>(donnees()), nombre};
  }
  std::uint16_t size() const { return nombre_; }
  bool empty() const { return nombre_ == 0; }
  const T* begin() const { return static_cast<const T*>(donnees()); }
  const T* end() const { return begin() + nombre_; }
  const T& operator[](std::size_t i) const { return begin()[i]; }
  std::span<const T> vue() const { return {begin(), nombre_}; }

 private:
  struct Taille {
    std::uint16_t nombre;
  };
  static constexpr std::size_t INTERNE = 14;
  static bool estInterne(std::size_t nombre) { return nombre * sizeof(T) <= INTERNE && alignof(T) <= 8; }

  explicit ListeCompacte(Taille taille) {
    if (!estInterne(taille.nombre)) {
      void* adresse = ::operator new(taille.nombre * sizeof(T));
      std::memcpy(octets_, &adresse, sizeof adresse);
    }
    nombre_ = taille.nombre;
  }
  void* bloc() const {
    void* adresse = nullptr;
    std::memcpy(&adresse, octets_, sizeof adresse);
    return adresse;
  }
  const void* donnees() const { return estInterne(nombre_) ? static_cast<const void*>(octets_) : bloc(); }
  void* donnees() { return estInterne(nombre_) ? static_cast<void*>(octets_) : bloc(); }
  void echanger(ListeCompacte& autre) noexcept {
    std::swap(octets_, autre.octets_);
    std::swap(nombre_, autre.nombre_);
  }

  alignas(8) unsigned char octets_[INTERNE] = {};
  std::uint16_t nombre_ = 0;
};

}  // namespace noxlux

#endif
