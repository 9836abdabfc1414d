// The descriptors of every function's input zone, built once from the reference, and the way from an
// identifier to its function.
#ifndef NOXLUX_INTERAPP_INTERFACE_H
#define NOXLUX_INTERAPP_INTERFACE_H

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "basics/codes_retour.h"
#include "ctrl_in/groupe.h"
#include "ctrl_in/super_groupe.h"

namespace noxlux {

class LectureDonnees;

class Interface {
 public:
  Interface() = default;
  ~Interface();
  Interface(const Interface&) = delete;
  Interface& operator=(const Interface&) = delete;

  // Builds the descriptors under the read access that `lecture` holds. On failure (0xDFFE faulty descriptors,
  // 0xDFFC out of memory, or the code of a query) nothing is kept. REQUIRES: !estInitialise()
  CodeRetour initialiser(LectureDonnees& lecture);
  // REQUIRES: estInitialise()
  void liberer();
  bool estInitialise() const { return arbre_ != nullptr; }

  // The input description of a function of one family, and its number in it, by its identifier in any letter
  // case. Unknown: 0xD000, or 0xD100 for data control and rules. REQUIRES: estInitialise()
  CodeRetour lireSuperGroupeConsulter(const char* identifiant, const SuperGroupe*& superGroupe,
                                      std::uint16_t& numero) const;
  CodeRetour lireSuperGroupeModifier(const char* identifiant, const SuperGroupe*& superGroupe,
                                     std::uint16_t& numero) const;
  CodeRetour lireSuperGroupeAnnuler(const char* identifiant, const SuperGroupe*& superGroupe,
                                    std::uint16_t& numero) const;
  CodeRetour lireSuperGroupeControler(const char* identifiant, const SuperGroupe*& superGroupe,
                                      std::uint16_t& numero) const;
  CodeRetour lireSuperGroupeRegle(const char* identifiant, const SuperGroupe*& superGroupe,
                                  std::uint16_t& numero) const;
  // 0xDFFE when the reference describes no full check.
  CodeRetour lireSuperGroupeControleComplet(const SuperGroupe*& superGroupe) const;

 private:
  enum Famille : std::uint8_t { CONSULTATION, MODIFICATION, ANNULATION, CONTROLE, REGLE, NOMBRE_FAMILLES };

  // What initialiser builds. Roots point to groups.
  struct Arbre {
    std::vector<std::unique_ptr<const Groupe>> groupes;            // by position in their table
    std::vector<std::unique_ptr<const SuperGroupe>> superGroupes;  // roots, in the order of their table
    std::vector<std::uint64_t> prefixes;                           // of the names of the roots
    std::array<std::uint16_t, NOMBRE_FAMILLES> bornes{};           // one past the last root of each family
  };
  class Constructeur;

  CodeRetour rechercher(const char* identifiant, std::uint16_t inf, std::uint16_t sup,
                        std::uint16_t& position) const;
  static CodeRetour refuserIdentifiant(const char* identifiant);
  CodeRetour lireSuperGroupe(Famille famille, const char* identifiant, const SuperGroupe*& superGroupe,
                             std::uint16_t& numero) const;

  std::unique_ptr<Arbre> arbre_;
};

}  // namespace noxlux

#endif
