// How far a zone has come through one super-group.
#ifndef NOXLUX_CTRL_IN_CONTROLEUR_SUPER_GROUPE_H
#define NOXLUX_CTRL_IN_CONTROLEUR_SUPER_GROUPE_H

#include <cstdint>
#include <memory>

#include "basics/codes_retour.h"
#include "ctrl_in/super_groupe.h"

namespace noxlux {

// A copy is a snapshot: it copies the nested controllers too.
class ControleurSuperGroupe {
 public:
  // REQUIRES: superGroupe not null
  explicit ControleurSuperGroupe(const SuperGroupe* superGroupe);
  ControleurSuperGroupe(const ControleurSuperGroupe& autre);
  ControleurSuperGroupe(ControleurSuperGroupe&&) noexcept = default;
  ControleurSuperGroupe& operator=(const ControleurSuperGroupe& autre) {
    return *this = ControleurSuperGroupe(autre);
  }
  ControleurSuperGroupe& operator=(ControleurSuperGroupe&&) noexcept = default;

  // Finds where a group of that identifier may stand next, and moves there; `groupe` is null when it may
  // stand nowhere. Strictly, a child left before its minimum is 0xB000 + its identifier; a child beyond its
  // maximum is one in both modes. The identifier 0 stands nowhere: sought strictly, it checks the minima that
  // remain.
  CodeRetour rechercherGroupe(std::uint16_t identifiant, const Groupe*& groupe, bool strict);

 private:
  CodeRetour entrerSuperGroupe(const OccurrenceGroupe& fils, std::uint16_t identifiant,
                               const Groupe*& groupe);
  CodeRetour completerMinimum(const OccurrenceGroupe& fils, std::uint16_t identifiant, const Groupe*& groupe);
  CodeRetour prendreFils(const OccurrenceGroupe& fils, std::uint16_t identifiant, const Groupe*& groupe);

  const SuperGroupe* superGroupe_;
  std::unique_ptr<ControleurSuperGroupe> sousControleur_;
  std::uint16_t indexFils_ = 0;
  std::uint16_t nbOccurrences_ = 0;
};

}  // namespace noxlux

#endif
