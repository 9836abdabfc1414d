#include "requetes/allocations.h"

#include <cstdlib>
#include <new>

namespace noxlux {

long allocationsPermises = -1;

namespace {

void* allouer(std::size_t taille) noexcept {
  const bool echec = allocationsPermises >= 0 && allocationsPermises-- == 0;
  return echec ? nullptr : std::malloc(taille == 0 ? 1 : taille);
}
void* allouerOuLever(std::size_t taille) {
  void* adresse = allouer(taille);
  if (adresse == nullptr) {
    throw std::bad_alloc();
  }
  return adresse;
}

}  // namespace
}  // namespace noxlux

// Every form is replaced, so that none mixes with an allocator of the tools.
void* operator new(std::size_t taille) { return noxlux::allouerOuLever(taille); }
void* operator new[](std::size_t taille) { return noxlux::allouerOuLever(taille); }
void* operator new(std::size_t taille, const std::nothrow_t&) noexcept { return noxlux::allouer(taille); }
void* operator new[](std::size_t taille, const std::nothrow_t&) noexcept { return noxlux::allouer(taille); }
void operator delete(void* adresse) noexcept { std::free(adresse); }
void operator delete[](void* adresse) noexcept { std::free(adresse); }
void operator delete(void* adresse, std::size_t) noexcept { std::free(adresse); }
void operator delete[](void* adresse, std::size_t) noexcept { std::free(adresse); }
void operator delete(void* adresse, const std::nothrow_t&) noexcept { std::free(adresse); }
void operator delete[](void* adresse, const std::nothrow_t&) noexcept { std::free(adresse); }
