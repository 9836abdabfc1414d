// Assertions for programming errors. They stay on in every build, and never depend on a caller's bytes.
#ifndef NOXLUX_BASICS_ASSERTION_H
#define NOXLUX_BASICS_ASSERTION_H

#include <source_location>

namespace noxlux {

// Prints the condition's text and its place on standard error, then stops the process.
[[noreturn]] void echecAssertion(const char* texte, const std::source_location& lieu) noexcept;

// REQUIRES: condition; `texte` is the condition as it must be printed.
inline void exiger(bool condition, const char* texte,
                   const std::source_location& lieu = std::source_location::current()) noexcept {
  if (!condition) [[unlikely]] {
    echecAssertion(texte, lieu);
  }
}

}  // namespace noxlux

#endif
