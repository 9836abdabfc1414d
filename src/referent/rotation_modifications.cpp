#include "referent/rotation_modifications.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "basics/trace.h"
#include "referent/fichier_ouvert.h"
#include "referent/referentiel.h"

namespace noxlux {

namespace {

// A file that cannot be looked at is taken to be there: using it will tell.
bool existe(const std::string& nom) { return access(nom.c_str(), F_OK) == 0 || errno != ENOENT; }

CodeRetour signaler(FormatVerifie<char*> message) {
  Trace::erreur(TRACE_SAUVEGARDE, message, std::strerror(errno));
  return NOX_CR_ECRITURE_MODIF;
}

CodeRetour supprimer(const std::string& nom, const std::string& nomDit) {
  if (std::remove(nom.c_str()) == 0) {
    return NOX_CR_OK;
  }
  Trace::erreur(TRACE_SAUVEGARDE, "ERREUR : probleme lors de la suppression du fichier %s : %s",
                nomDit.c_str(), std::strerror(errno));
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

// The copy is on the disk before the file it was made from may go.
CodeRetour copier(const std::string& nom, const std::string& nomCopie) {
  FichierOuvert source(nom, "rb");
  if (!source.estOuvert()) {
    return signaler("ERREUR : probleme lors de l'ouverture du fichier: %s");
  }
  FichierOuvert copie(nomCopie, "wb");
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
      modification_(Referentiel::nomCompletFichier(repertoire, NOM_FICHIER_MODIFICATION)),
      sauvegarde_(Referentiel::nomCompletFichier(repertoire, "modif~.nox")),
      temporaire_(Referentiel::nomCompletFichier(repertoire, "modiftmp.nox")),
      securite_(Referentiel::nomCompletFichier(repertoire, "modif~.sav")) {}

// Where modifref.nox is missing (a save was cut short), modif~.nox is the last good version: it stays.
CodeRetour RotationModifications::tourner() {
  CodeRetour cr = NOX_CR_OK;
  if (existe(modification_)) {
    cr = mettreSauvegardeEnSecurite();
    if (cr == NOX_CR_OK) {
      cr = retirerVersionEnVigueur();
    }
  }
  return cr == NOX_CR_OK ? mettreEnPlace() : cr;
}

CodeRetour RotationModifications::mettreSauvegardeEnSecurite() {
  if (!existe(sauvegarde_)) {
    return NOX_CR_OK;
  }
  securiteCreee_ = true;
  CodeRetour cr = copier(sauvegarde_, securite_);
  if (cr == NOX_CR_OK) {
    cr = supprimer(sauvegarde_, sauvegarde_);
    sauvegardeDeplacee_ = cr == NOX_CR_OK;
  }
  return cr;
}

CodeRetour RotationModifications::retirerVersionEnVigueur() {
  sauvegardeEcrite_ = true;
  CodeRetour cr = copier(modification_, sauvegarde_);
  if (cr == NOX_CR_OK) {
    synchroniserRepertoire(repertoire_);
    cr = supprimer(modification_, sauvegarde_);
    versionRetiree_ = cr == NOX_CR_OK;
  }
  return cr;
}

CodeRetour RotationModifications::mettreEnPlace() {
  if (std::rename(temporaire_.c_str(), modification_.c_str()) != 0) {
    const int raison = errno;
    Trace::erreur(TRACE_SAUVEGARDE, "Renommage du fichier %s en %s", temporaire_.c_str(),
                  modification_.c_str());
    if (raison != ENOENT) {
      Trace::erreur(TRACE_SAUVEGARDE, "ERREUR : probleme lors du renommage: %s", std::strerror(raison));
      return NOX_CR_ECRITURE_MODIF;
    }
  }
  synchroniserRepertoire(repertoire_);
  return NOX_CR_OK;
}

void RotationModifications::terminer(CodeRetour cr) {
  if (cr != NOX_CR_OK) {
    std::remove(temporaire_.c_str());
    annuler();
  } else if (securiteCreee_) {
    std::remove(securite_.c_str());
  }
}

// The version in force goes back first: a backup is only touched once modifref.nox is there.
void RotationModifications::annuler() {
  const bool enVigueur = !versionRetiree_ || std::rename(sauvegarde_.c_str(), modification_.c_str()) == 0;
  if (enVigueur && sauvegardeDeplacee_) {
    std::rename(securite_.c_str(), sauvegarde_.c_str());
  } else if (enVigueur && sauvegardeEcrite_ && !versionRetiree_) {
    std::remove(sauvegarde_.c_str());
  } else if (securiteCreee_) {
    std::remove(securite_.c_str());
  }
}

}  // namespace noxlux
