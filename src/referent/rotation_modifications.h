// The files of a save, and their turn: the new modification file takes the place of the one in force, of
// which the backup is a copy. There is no moment without modifref.nox, and it is whole at every moment.
#ifndef NOXLUX_REFERENT_ROTATION_MODIFICATIONS_H
#define NOXLUX_REFERENT_ROTATION_MODIFICATIONS_H

#include <cstdio>
#include <string>

#include "basics/codes_retour.h"

namespace noxlux {

class RotationModifications {
 public:
  // May throw std::bad_alloc; nothing after does.
  explicit RotationModifications(const std::string& repertoire);

  // modifref.nox, or the file that it leads to.
  const std::string& modification() const { return modification_; }
  const std::string& temporaire() const { return temporaire_; }
  // Makes the temporary file anew, with the mode and owner of the one in force. Null when the system refuses.
  std::FILE* creerTemporaire() const;
  // Puts the temporary file, written and closed, in the place of modifref.nox.
  CodeRetour tourner();
  // Clears away what the turn left, or undoes it when the save failed.
  void terminer(CodeRetour cr);

 private:
  CodeRetour mettreSauvegardeEnSecurite();
  CodeRetour mettreEnPlace(bool remplace);
  CodeRetour signalerSuppression() const;
  void annuler();

  std::string repertoire_;
  std::string modification_;            // the version in force
  std::string repertoireModification_;  // where it lies
  std::string sauvegarde_;              // modif~.nox, the version before
  std::string temporaire_;              // modiftmp.nox, the new version
  std::string securite_;                // modif~.sav, a copy of the version before, while the files turn

  bool securiteCreee_ = false;       // modif~.sav is there, whole or not
  bool sauvegardeDeplacee_ = false;  // modif~.nox has gone into modif~.sav
  bool sauvegardeEcrite_ = false;    // modif~.nox takes the version in force, whole or not
};

}  // namespace noxlux

#endif
