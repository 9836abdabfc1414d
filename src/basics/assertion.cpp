#include "basics/assertion.h"

#include <cstdio>
#include <cstdlib>

namespace noxlux {

void echecAssertion(const char* texte, const char* fichier, const char* fonction, int ligne) noexcept {
  std::fprintf(stderr, "%s:%d: %s: Assertion `%s' failed.\n", fichier, ligne, fonction, texte);
  std::abort();
}

}  // namespace noxlux
