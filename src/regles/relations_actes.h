// How the acts of one association stand to one another. What the reference says of an act is read once per
// act, so that looking at all the pairs costs comparisons only.
#ifndef NOXLUX_REGLES_RELATIONS_ACTES_H
#define NOXLUX_REGLES_RELATIONS_ACTES_H

#include <vector>

#include "referent/lecture_donnees.h"
#include "regles/association_ccam.h"

namespace noxlux {

class RelationsActes {
 public:
  // REQUIRES: the association outlives the relations and keeps its lines
  explicit RelationsActes(const AssociationCCAM& association);

  // Reads which acts are complementary, and which pairs are planned: one lists the other.
  CodeRetour lireAssociationsPrevues(LectureDonnees& lecture);
  // Reads the procedures that the acts belong to.
  CodeRetour lireProcedures(LectureDonnees& lecture);

  std::size_t nombreLignes() const { return rangs_.size(); }
  // Of lines, by position in the association. REQUIRES: what they need was read
  bool memeActe(std::size_t i, std::size_t j) const { return rangs_[i] == rangs_[j]; }
  bool estComplementaire(std::size_t i) const { return complementaires_[rangs_[i]]; }
  bool estPrevu(std::size_t i, std::size_t j) const { return prevus_[rangs_[i] * actes_.size() + rangs_[j]]; }
  bool aDesProcedures(std::size_t i) const { return !procedures_[rangs_[i]].estVide(); }
  // Whether the act of line j is a procedure that the act of line i belongs to.
  bool estProcedureDe(std::size_t j, std::size_t i) const {
    return procedures_[rangs_[i]].contient(*actes_[rangs_[j]]);
  }
  // A procedure that both acts belong to, or that one is for the other; null when there is none.
  const Code* procedureCommune(std::size_t i, std::size_t j) const;

 private:
  std::vector<const Code*> actes_;  // the different acts
  std::vector<std::size_t> rangs_;  // of each line, its act
  std::vector<bool> complementaires_;
  std::vector<bool> prevus_;  // a square of all the pairs of acts
  std::vector<ListeCodes> procedures_;
  const Date& date_;
  const Code& activite_;
};

}  // namespace noxlux

#endif
