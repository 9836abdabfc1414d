// The description of one group of an input zone: its identifier and its fields.
#ifndef NOXLUX_CTRL_IN_GROUPE_H
#define NOXLUX_CTRL_IN_GROUPE_H

#include <cstdint>
#include <vector>

#include "basics/assertion.h"
#include "basics/codes_retour.h"
#include "ctrl_in/champ.h"

namespace noxlux {

class Groupe {
 public:
  Groupe(std::uint16_t identifiant, std::uint16_t maxChamps);
  Groupe(const Groupe&) = delete;
  Groupe& operator=(const Groupe&) = delete;

  // Appends a field. Beyond maxChamps: 0xDFFF; out of memory: 0xDFFC.
  CodeRetour ajouterChamp(Champ::Format format, Champ::Type type, std::uint16_t tailleMin,
                          std::uint16_t tailleMax, const ListeCodes& valeurs);

  std::uint16_t lireIdentifiant() const { return identifiant_; }
  std::uint16_t lireNbChamps() const { return static_cast<std::uint16_t>(champs_.size()); }
  // REQUIRES: i < lireNbChamps()
  const Champ& lireChamp(std::uint16_t i) const {
    exiger(i < champs_.size(), "i < nbChamps");
    return champs_[i];
  }
  void dump() const;

 private:
  std::uint16_t identifiant_;
  std::uint16_t maxChamps_;
  std::vector<Champ> champs_;
};

}  // namespace noxlux

#endif
