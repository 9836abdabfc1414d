// The description of an input zone, or of a repeated part of it: groups and nested super-groups in order.
#ifndef NOXLUX_CTRL_IN_SUPER_GROUPE_H
#define NOXLUX_CTRL_IN_SUPER_GROUPE_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "basics/assertion.h"
#include "basics/codes_retour.h"
#include "ctrl_in/groupe.h"

namespace noxlux {

class SuperGroupe;

// One child of a super-group, and how many times it may occur (maximum 0: without bound).
class OccurrenceGroupe {
 public:
  // The group is shared, the nested super-group is owned. REQUIRES: not null
  OccurrenceGroupe(const Groupe* groupe, std::uint16_t minimum, std::uint16_t maximum);
  OccurrenceGroupe(std::unique_ptr<const SuperGroupe> superGroupe, std::uint16_t minimum,
                   std::uint16_t maximum);
  OccurrenceGroupe(OccurrenceGroupe&&) noexcept;
  OccurrenceGroupe& operator=(OccurrenceGroupe&&) noexcept;
  ~OccurrenceGroupe();

  // The identifier that a first group of this child bears; 0 for a nested super-group without children.
  std::uint16_t lireIdentifiantAttendu() const;
  // One of the two; the other is null.
  const Groupe* lireGroupe() const { return groupe_; }
  const SuperGroupe* lireSuperGroupe() const { return superGroupe_.get(); }
  std::uint16_t lireMin() const { return minimum_; }
  std::uint16_t lireMax() const { return maximum_; }
  bool ok() const { return groupe_ != nullptr || superGroupe_ != nullptr; }
  void dump() const;

 private:
  const Groupe* groupe_ = nullptr;
  std::unique_ptr<const SuperGroupe> superGroupe_;
  std::uint16_t minimum_;
  std::uint16_t maximum_;
};

class SuperGroupe {
 public:
  SuperGroupe(std::uint16_t numero, std::string_view nom, std::uint16_t maxFils);
  SuperGroupe(const SuperGroupe&) = delete;
  SuperGroupe& operator=(const SuperGroupe&) = delete;

  // Append a child. Beyond maxFils: 0xDFFF; out of memory: 0xDFFC. REQUIRES: not null
  CodeRetour ajouterFils(const Groupe* groupe, std::uint16_t minimum, std::uint16_t maximum);
  CodeRetour ajouterFils(std::unique_ptr<const SuperGroupe> superGroupe, std::uint16_t minimum,
                         std::uint16_t maximum);

  // Of a root: the number of its function in its family, and the identifier that callers give.
  std::uint16_t lireNumero() const { return numero_; }
  const char* lireNom() const { return nom_.c_str(); }
  // 0 in a root: the function takes no input zone.
  std::uint16_t lireNbFils() const { return static_cast<std::uint16_t>(fils_.size()); }
  std::uint16_t lireMaxFils() const { return maxFils_; }
  // REQUIRES: i < lireNbFils()
  const OccurrenceGroupe& lireFils(std::uint16_t i) const {
    exiger(i < fils_.size(), "i < nbFils");
    return fils_[i];
  }
  void dump() const;

 private:
  template <class F>
  CodeRetour ajouter(F fils, std::uint16_t minimum, std::uint16_t maximum);

  std::uint16_t numero_;
  std::string nom_;
  std::uint16_t maxFils_;
  std::vector<OccurrenceGroupe> fils_;
};

}  // namespace noxlux

#endif
