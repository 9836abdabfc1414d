#include "noxlux/progression.h"

#include <unistd.h>

#include <cstdio>

namespace noxlux::commande {

namespace {

using namespace std::chrono_literals;
constexpr auto DELAI = 400ms;
constexpr auto PERIODE = 80ms;

}  // namespace

Progression::Progression() : terminal_(::isatty(STDERR_FILENO) == 1) {}

Progression::~Progression() {
  if (affichee_) {
    std::fputs("\r\033[K", stderr);
  }
}

void Progression::montrer(std::string_view etape, std::size_t fait, std::size_t total) {
  if (!terminal_) {
    return;
  }
  const Horloge::time_point maintenant = Horloge::now();
  if (maintenant - debut_ < DELAI || maintenant - derniere_ < PERIODE) {
    return;
  }
  derniere_ = maintenant;
  affichee_ = true;
  const std::size_t pourcent = total == 0 ? 0 : fait * 100 / total;
  std::fprintf(stderr, "\r\033[K%.*s : %zu %%", static_cast<int>(etape.size()), etape.data(), pourcent);
  std::fflush(stderr);
}

}  // namespace noxlux::commande
