// Secondary labels of rules: printf formats that come from the reference file, filled with typed arguments.
// The file is not trusted: a conversion is only obeyed when its argument is there and of its kind.
#ifndef NOXLUX_REGLES_LIBELLE_REGLE_H
#define NOXLUX_REGLES_LIBELLE_REGLE_H

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "types/decimal.h"
#include "types/texte.h"

namespace noxlux {

// One argument of a label: text (%s, %c for one character), integer (%d %u %ld %c) or decimal (%f %.2f). A
// text argument refers to the caller's text.
class ArgumentLibelle {
 public:
  ArgumentLibelle(const Texte& texte) : valeur_(texte.vue()) {}  // NOLINT(google-explicit-constructor)
  ArgumentLibelle(const std::string& texte) : valeur_(texte) {}  // NOLINT(google-explicit-constructor)
  ArgumentLibelle(std::string_view texte) : valeur_(texte) {}    // NOLINT(google-explicit-constructor)
  ArgumentLibelle(const char* texte) : valeur_(std::string_view(texte)) {}   // NOLINT
  ArgumentLibelle(const Nombre& nombre) : valeur_(nombre.lireValeur()) {}    // NOLINT
  ArgumentLibelle(const Flottant& valeur) : valeur_(valeur.lireValeur()) {}  // NOLINT
  template <std::integral I>
  ArgumentLibelle(I entier) : valeur_(static_cast<std::int32_t>(entier)) {}  // NOLINT

  const std::variant<std::string_view, std::int32_t, double>& valeur() const { return valeur_; }

 private:
  std::variant<std::string_view, std::int32_t, double> valeur_;
};

using ArgumentsLibelle = std::initializer_list<ArgumentLibelle>;

constexpr std::size_t TAILLE_MAX_LIBELLE_SECONDAIRE = 199;

// The label, cut to 199 characters; none when the format asks for another argument than the next one given,
// or holds anything but %s %c %d %u %ld %f %.2f %%. Arguments left over are ignored, as printf does.
std::optional<std::string> formaterLibelle(std::string_view format, ArgumentsLibelle arguments);

}  // namespace noxlux

#endif
