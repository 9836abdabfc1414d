// The files of a save, and their turn: the new modification file takes the place of the one in force, which
// becomes the backup. Whatever fails, modifref.nox or modif~.nox holds a whole version.
#ifndef NOXLUX_REFERENT_ROTATION_MODIFICATIONS_H
#define NOXLUX_REFERENT_ROTATION_MODIFICATIONS_H

#include <string>

#include "basics/codes_retour.h"

namespace noxlux {

class RotationModifications {
 public:
  // May throw std::bad_alloc; nothing after does.
  explicit RotationModifications(const std::string& repertoire);

  const std::string& temporaire() const { return temporaire_; }
  // Puts the temporary file, written and closed, in the place of modifref.nox.
  CodeRetour tourner();
  // Clears away what the turn left, or undoes it when the save failed.
  void terminer(CodeRetour cr);

 private:
  CodeRetour mettreSauvegardeEnSecurite();
  CodeRetour retirerVersionEnVigueur();
  CodeRetour mettreEnPlace();
  void annuler();

  std::string repertoire_;
  std::string modification_;  // modifref.nox, the version in force
  std::string sauvegarde_;    // modif~.nox, the version before
  std::string temporaire_;    // modiftmp.nox, the new version
  std::string securite_;      // modif~.sav, a copy of the version before, while the files turn

  bool securiteCreee_ = false;       // modif~.sav is there, whole or not
  bool sauvegardeDeplacee_ = false;  // modif~.nox has gone into modif~.sav
  bool sauvegardeEcrite_ = false;    // modif~.nox takes the version in force, whole or not
  bool versionRetiree_ = false;      // modifref.nox is in modif~.nox alone
};

}  // namespace noxlux

#endif
