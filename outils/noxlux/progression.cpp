#include "noxlux/progression.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>

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
  constexpr std::size_t CASES = 30;
  const auto longueur = static_cast<int>(etape.size());
  if (total == 0) {
    std::fprintf(stderr, "\r\033[K%.*s : %zu", longueur, etape.data(), fait);
  } else {
    const std::size_t pleines = std::min(CASES, fait * CASES / total);
    const std::string barre = std::string(pleines, '#') + std::string(CASES - pleines, '.');
    std::fprintf(stderr, "\r\033[K%.*s [%s] %3zu %%", longueur, etape.data(), barre.c_str(),
                 std::min<std::size_t>(100, fait * 100 / total));
  }
  std::fflush(stderr);
}

}  // namespace noxlux::commande
