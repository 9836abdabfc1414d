#include "basics/assertion.h"

#include <cstdio>
#include <cstdlib>

namespace noxlux {

void echecAssertion(const char* texte, const LieuSource& lieu) noexcept {
  std::fprintf(stderr, "%s:%d: %s: Assertion `%s' failed.\n", lieu.fichier, lieu.ligne, lieu.fonction, texte);
  std::abort();
}

}  // namespace noxlux
