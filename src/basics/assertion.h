// Assertions for programming errors. They stay on in every build, and never depend on a caller's bytes.
#ifndef NOXLUX_BASICS_ASSERTION_H
#define NOXLUX_BASICS_ASSERTION_H

namespace noxlux {

// Where an assertion stands: std::source_location, which not every compiler that builds this offers.
struct LieuSource {
  const char* fichier = __builtin_FILE();
  const char* fonction = __builtin_FUNCTION();
  int ligne = __builtin_LINE();
};

// Prints the condition's text and its place on standard error, then stops the process.
[[noreturn]] void echecAssertion(const char* texte, const LieuSource& lieu) noexcept;

// REQUIRES: condition; `texte` is the condition as it must be printed.
inline void exiger(bool condition, const char* texte, const LieuSource& lieu = {}) noexcept {
  if (!condition) [[unlikely]] {
    echecAssertion(texte, lieu);
  }
}

}  // namespace noxlux

#endif
