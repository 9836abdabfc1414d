#include "basics/morceau_trace.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>

namespace noxlux {

namespace {

// Of ISO-8859-1.
constexpr bool estDeControle(unsigned char c) { return c < 0x20 || (c >= 0x7F && c < 0xA0); }

}  // namespace

std::size_t MorceauTrace::reserver(std::size_t n) {
  if (capacite_ - taille_ < n) {
    const std::size_t voulue = std::max(taille_ + n, capacite_ * 2);
    std::unique_ptr<char[]> agrandi(new (std::nothrow) char[voulue]);
    if (agrandi == nullptr) {
      return capacite_ - taille_;
    }
    std::memcpy(agrandi.get(), debut_, taille_);
    grand_ = std::move(agrandi);
    debut_ = grand_.get();
    capacite_ = voulue;
  }
  return n;
}

void MorceauTrace::ajouter(std::string_view texte) {
  const std::size_t n = reserver(texte.size());
  std::memcpy(debut_ + taille_, texte.data(), n);
  taille_ += n;
}

void MorceauTrace::indenter(int profondeur) {
  for (int i = 0; i < profondeur; ++i) {
    ajouter("  ");
  }
}

void MorceauTrace::formater(const char* format, std::va_list arguments) {
  std::va_list seconde;
  va_copy(seconde, arguments);
  std::size_t place = capacite_ - taille_;
  const int longueur = std::vsnprintf(debut_ + taille_, place, format, arguments);
  if (longueur > 0) {
    auto n = static_cast<std::size_t>(longueur);
    if (n >= place) {
      // One more for the zero that ends it.
      place = reserver(n + 1);
      std::vsnprintf(debut_ + taille_, place, format, seconde);
      n = std::min(n, place == 0 ? 0 : place - 1);
    }
    char* texte = debut_ + taille_;
    // The tabs that the format itself begins with stay.
    std::replace_if(
        texte + std::min(std::strspn(format, "\t"), n), texte + n,
        [](char c) { return estDeControle(static_cast<unsigned char>(c)); }, '.');
    taille_ += n;
  }
  va_end(seconde);
}

}  // namespace noxlux
