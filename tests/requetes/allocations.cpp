#include "requetes/allocations.h"

#include <cstdlib>
#include <new>

long noxlux::allocationsPermises = -1;

void* operator new(std::size_t taille) {
  long& permises = noxlux::allocationsPermises;
  void* adresse = permises >= 0 && permises-- == 0 ? nullptr : std::malloc(taille == 0 ? 1 : taille);
  if (adresse == nullptr) {
    throw std::bad_alloc();
  }
  return adresse;
}
void operator delete(void* adresse) noexcept { std::free(adresse); }
void operator delete(void* adresse, std::size_t) noexcept { std::free(adresse); }
