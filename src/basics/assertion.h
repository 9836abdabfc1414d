// Assertions for programming errors. They stay on in every build, and never depend on a caller's bytes.
#ifndef NOXLUX_BASICS_ASSERTION_H
#define NOXLUX_BASICS_ASSERTION_H

namespace noxlux {

// Prints the condition's text and its place on standard error, then stops the process.
[[noreturn]] void echecAssertion(const char* texte, const char* fichier, const char* fonction,
                                 int ligne) noexcept;

// REQUIRES: condition; `texte` is the condition as it must be printed. The place is that of the caller, told
// by values of their own: an object would be put together each time, for nothing.
inline void exiger(bool condition, const char* texte, const char* fichier = __builtin_FILE(),
                   const char* fonction = __builtin_FUNCTION(), int ligne = __builtin_LINE()) noexcept {
  if (!condition) [[unlikely]] {
    echecAssertion(texte, fichier, fonction, ligne);
  }
}

}  // namespace noxlux

#endif
