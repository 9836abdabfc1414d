// The one growable list of the system.
#ifndef NOXLUX_TYPES_TYPE_LISTE_H
#define NOXLUX_TYPES_TYPE_LISTE_H

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

#include "basics/assertion.h"
#include "basics/codes_retour.h"
#include "basics/trace.h"
#include "types/type_donnee.h"

namespace noxlux {

template <class T>
class TypeListe : public TypeComplexe {
 public:
  static constexpr unsigned short CAPACITE_INITIALE = 5;

  TypeListe() : TypeListe(0, false) {}
  // Capacity n (5 when n is 0); with `occupes`, the n default values count as elements.
  explicit TypeListe(unsigned short n, bool occupes = false)
      : capacite_(n == 0 ? CAPACITE_INITIALE : n), reserve_(capacite_), nombreElements_(occupes ? n : 0) {
    elements_.reset(new T[capacite_]);
  }
  TypeListe(const TypeListe& autre)
      : TypeComplexe(autre),
        capacite_(std::max(autre.nombreElements_, CAPACITE_INITIALE)),
        reserve_(capacite_),
        nombreElements_(autre.nombreElements_),
        elements_(new T[capacite_]) {
    std::copy(autre.begin(), autre.end(), elements_.get());
  }
  // What is left behind is empty, without room.
  TypeListe(TypeListe&& autre) noexcept : capacite_(0), reserve_(0), nombreElements_(0) { echanger(autre); }
  TypeListe& operator=(const TypeListe& autre) {
    TypeListe copie(autre);
    echanger(copie);
    return *this;
  }
  TypeListe& operator=(TypeListe&& autre) noexcept {
    echanger(autre);
    return *this;
  }

  T& operator[](unsigned short position) {
    exiger(position < nombreElements_, "position < nombreElements");
    return elements_[position];
  }
  const T& operator[](unsigned short position) const {
    exiger(position < nombreElements_, "position < nombreElements");
    return elements_[position];
  }
  T* begin() { return elements_.get(); }
  T* end() { return elements_.get() + nombreElements_; }
  const T* begin() const { return elements_.get(); }
  const T* end() const { return elements_.get() + nombreElements_; }

  bool contient(const T& valeur) const { return std::find(begin(), end(), valeur) != end(); }

  // Appends a copy. Out of memory, or of 16-bit positions: 0xDFFC, the elements stay as they are.
  CodeRetour ajouterElement(const T& valeur) {
    if (nombreElements_ == capacite_ || nombreElements_ == reserve_) {
      const CodeRetour cr = agrandir();
      if (cr != NOX_CR_OK) {
        return cr;
      }
    }
    elements_[nombreElements_] = valeur;
    ++nombreElements_;
    return NOX_CR_OK;
  }
  // REQUIRES: position < nombreElements. The capacity is kept.
  void supprimerElement(unsigned short position) {
    exiger(position < nombreElements_, "position < nombreElements");
    std::move(begin() + position + 1, end(), begin() + position);
    --nombreElements_;
  }
  void reinitialiser() { nombreElements_ = 0; }
  bool estVide() const { return nombreElements_ == 0; }
  unsigned short lireNombreElements() const { return nombreElements_; }
  unsigned short lireCapacite() const { return capacite_; }

  void afficher(std::FILE* sortie) const override {
    for (const T& element : *this) {
      element.afficher(sortie);
    }
  }
  void dump(unsigned short module) const override {
    exiger(ok(), "ok()");
    Trace::debut(module, "TypeListe::dump : ");
    for (const T& element : *this) {
      element.dump(module);
    }
    Trace::fin(module, "");
  }
  bool estRenseigne() const override { return !estVide(); }
  bool ok() const override { return (elements_ != nullptr || reserve_ == 0) && nombreElements_ <= reserve_; }

 private:
  void echanger(TypeListe& autre) noexcept {
    std::swap(capacite_, autre.capacite_);
    std::swap(reserve_, autre.reserve_);
    std::swap(nombreElements_, autre.nombreElements_);
    std::swap(elements_, autre.elements_);
  }

  CodeRetour agrandir() {
    const unsigned voulue = capacite_ == 0 ? CAPACITE_INITIALE : static_cast<unsigned>(capacite_) * 2;
    const unsigned nouvelle = std::min(voulue, 65535U);
    std::unique_ptr<T[]> agrandis;
    if (nouvelle > nombreElements_) {
      try {
        agrandis.reset(new T[nouvelle]);
      } catch (const std::bad_alloc&) {
      }
    }
    if (agrandis == nullptr) {
      Trace::erreur(TRACE_CONSULTATION, "ERREUR: allocation d'un tableau de %u éléments impossible", voulue);
      // The capacity told after a failure is the doubled one less 5; the room really there is reserve_.
      capacite_ = static_cast<unsigned short>(voulue - CAPACITE_INITIALE);
      return NOX_CR_MEMOIRE;
    }
    std::move(begin(), end(), agrandis.get());
    elements_ = std::move(agrandis);
    capacite_ = static_cast<unsigned short>(nouvelle);
    reserve_ = capacite_;
    return NOX_CR_OK;
  }

  unsigned short capacite_;
  unsigned short reserve_;
  unsigned short nombreElements_;
  std::unique_ptr<T[]> elements_;
};

}  // namespace noxlux

#endif
