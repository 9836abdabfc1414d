#include "referent/rotation_modifications.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "basics/fichiers.h"
#include "basics/trace.h"
#include "fichier/fichier_ouvert.h"
#include "referent/referentiel.h"

namespace noxlux {

namespace {

// A file that cannot be looked at is taken to be there: using it will tell.
bool existe(const std::string& nom) { return access(nom.c_str(), F_OK) == 0 || errno != ENOENT; }

CodeRetour signaler(FormatVerifie<char*> message) {
  Trace::erreur(TRACE_SAUVEGARDE, message, std::strerror(errno));
  return NOX_CR_ECRITURE_MODIF;
}

bool copierContenu(std::FILE* source, std::FILE* copie) {
  char bloc[4096];
  std::size_t lus = sizeof bloc;
  while (lus == sizeof bloc) {
    lus = std::fread(bloc, 1, sizeof bloc, source);
    if (std::fwrite(bloc, 1, lus, copie) != lus) {
      return false;
    }
  }
  return std::ferror(source) == 0;
}

// Makes a file anew with the mode and the owner of one that is there.
std::FILE* creerComme(const std::string& nom, const struct stat& modele) {
  constexpr mode_t DROITS = 0777;
  std::FILE* const fichier = creerFichier(nom, modele.st_mode & DROITS);
  if (fichier == nullptr) {
    return nullptr;
  }
  const int descripteur = fileno(fichier);
  const bool garde = fchown(descripteur, modele.st_uid, modele.st_gid) == 0;
  if (!garde && fchown(descripteur, static_cast<uid_t>(-1), modele.st_gid) != 0) {
    Trace::ecrire(TRACE_SAUVEGARDE, "Le proprietaire du fichier %s ne peut etre garde : %s", nom.c_str(),
                  std::strerror(errno));
  }
  fchmod(descripteur, modele.st_mode & DROITS);
  return fichier;
}

// The copy is on the disk before the file it was made from may go.
CodeRetour copier(const std::string& nom, const std::string& nomCopie) {
  const FichierOuvert source(nom);
  struct stat etat {};
  if (!source.estOuvert() || fstat(fileno(source.lire()), &etat) != 0) {
    return signaler("ERREUR : probleme lors de l'ouverture du fichier: %s");
  }
  FichierOuvert copie(creerComme(nomCopie, etat));
  if (!copie.estOuvert()) {
    return signaler("ERREUR : probleme lors de l'ouverture du fichier: %s");
  }
  if (!copierContenu(source.lire(), copie.lire()) || !copie.synchroniser()) {
    return signaler("ERREUR : probleme lors de la copie du fichier: %s");
  }
  return copie.fermer() ? CodeRetour{NOX_CR_OK}
                        : signaler("ERREUR : probleme lors de la fermeture du fichier: %s");
}

}  // namespace

RotationModifications::RotationModifications(const std::string& repertoire)
    : repertoire_(repertoire),
      modification_(suivreLiens(Referentiel::nomCompletFichier(repertoire, NOM_FICHIER_MODIFICATION))),
      repertoireModification_(repertoireDe(modification_)),
      sauvegarde_(Referentiel::nomCompletFichier(repertoire, NOM_SAUVEGARDE_MODIFICATION)),
      temporaire_(Referentiel::nomCompletFichier(repertoireModification_, NOM_TEMPORAIRE_MODIFICATION)),
      securite_(Referentiel::nomCompletFichier(repertoire, NOM_SECURITE_MODIFICATION)) {}

std::FILE* RotationModifications::creerTemporaire() const {
  struct stat etat {};
  return stat(modification_.c_str(), &etat) == 0 ? creerComme(temporaire_, etat) : creerFichier(temporaire_);
}

// Where modifref.nox is missing (a save was cut short), modif~.nox is the last good version: it stays.
CodeRetour RotationModifications::tourner() {
  CodeRetour cr = NOX_CR_OK;
  const bool remplace = existe(modification_);
  if (remplace) {
    cr = mettreSauvegardeEnSecurite();
    if (cr == NOX_CR_OK) {
      sauvegardeEcrite_ = true;
      cr = copier(modification_, sauvegarde_);
      synchroniserRepertoire(repertoire_);
    }
  }
  return cr == NOX_CR_OK ? mettreEnPlace(remplace) : cr;
}

CodeRetour RotationModifications::mettreSauvegardeEnSecurite() {
  if (!existe(sauvegarde_)) {
    return NOX_CR_OK;
  }
  securiteCreee_ = true;
  CodeRetour cr = copier(sauvegarde_, securite_);
  if (cr == NOX_CR_OK && std::remove(sauvegarde_.c_str()) != 0) {
    cr = signalerSuppression();
  }
  sauvegardeDeplacee_ = cr == NOX_CR_OK;
  return cr;
}

// The version in force goes the moment the new one takes its name. Where that is refused, the trace says
// that the old one could not be removed: under the name of its copy, as ever.
CodeRetour RotationModifications::mettreEnPlace(bool remplace) {
  if (std::rename(temporaire_.c_str(), modification_.c_str()) != 0) {
    const int raison = errno;
    if (remplace && raison != ENOENT) {
      signalerSuppression();
    }
    Trace::erreur(TRACE_SAUVEGARDE, "Renommage du fichier %s en %s", temporaire_.c_str(),
                  modification_.c_str());
    if (raison != ENOENT) {
      Trace::erreur(TRACE_SAUVEGARDE, "ERREUR : probleme lors du renommage: %s", std::strerror(raison));
      return NOX_CR_ECRITURE_MODIF;
    }
  }
  synchroniserRepertoire(repertoireModification_);
  return NOX_CR_OK;
}

CodeRetour RotationModifications::signalerSuppression() const {
  Trace::erreur(TRACE_SAUVEGARDE, "ERREUR : probleme lors de la suppression du fichier %s : %s",
                sauvegarde_.c_str(), std::strerror(errno));
  return NOX_CR_ECRITURE_MODIF;
}

void RotationModifications::terminer(CodeRetour cr) {
  if (cr != NOX_CR_OK) {
    std::remove(temporaire_.c_str());
    annuler();
  } else if (securiteCreee_) {
    std::remove(securite_.c_str());
  }
}

// modifref.nox never left: only the backup goes back.
void RotationModifications::annuler() {
  if (sauvegardeDeplacee_) {
    std::rename(securite_.c_str(), sauvegarde_.c_str());
    return;
  }
  if (sauvegardeEcrite_) {
    std::remove(sauvegarde_.c_str());
  }
  if (securiteCreee_) {
    std::remove(securite_.c_str());
  }
}

}  // namespace noxlux
