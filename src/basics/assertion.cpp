#include "basics/assertion.h"

#include <cstdio>
#include <cstdlib>

namespace noxlux {

void echecAssertion(const char* texte, const std::source_location& lieu) noexcept {
  std::fprintf(stderr, "%s:%u: %s: Assertion `%s' failed.\n", lieu.file_name(),
               static_cast<unsigned>(lieu.line()), lieu.function_name(), texte);
  std::abort();
}

}  // namespace noxlux
