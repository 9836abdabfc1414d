// References by profile: a tariff grid gives modifiers one value, so there is one reference a profile, and a
// table tells which speciality takes which.
#ifndef NOXLUX_COMMANDE_PROFILS_H
#define NOXLUX_COMMANDE_PROFILS_H

#include <map>
#include <string>

#include "compilateur/modele.h"
#include "noxlux/zone_json.h"

namespace noxlux::commande {

// The profiles of the grids, for a sentence.
std::string enumererProfils(const compilateur::Modele& modele);
// Throws ErreurUsage when the sources tell grids and this is none of them.
void verifierGrillePublique(unsigned grille, const compilateur::Modele& modele);
// Writes the grid in the header, as its variant and in its comment.
void nommerGrille(unsigned grille, compilateur::Modele& modele);
// Writes DIRECTORY/profils.csv, the profile of each speciality.
void ecrireProfils(const std::string& repertoire, const compilateur::Modele& modele);

// A directory of references by profile.
class Profils {
 public:
  // Reads the table of a directory; without one there are no profiles.
  explicit Profils(const std::string& repertoire);

  bool existent() const { return !profils_.empty(); }
  // The reference for the professional of an invoice. Throws ErreurUsage when the speciality has no profile.
  std::string referencePour(const Json& facture) const;

 private:
  std::string repertoire_;
  std::map<std::string, std::string> profils_;  // by speciality
};

}  // namespace noxlux::commande

#endif
