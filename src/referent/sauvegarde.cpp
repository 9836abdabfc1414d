// Saving the local modifications into modifref.nox.
#include <cerrno>
#include <chrono>
#include <cstring>
#include <new>
#include <optional>

#include "basics/trace.h"
#include "fichier/crc16.h"
#include "fichier/ecrivain.h"
#include "fichier/fichier_ouvert.h"
#include "referent/referentiel.h"
#include "referent/rotation_modifications.h"
#include "referent/verrou_modifications.h"

namespace noxlux {

namespace {

CodeRetour ecrireTables(const Referentiel& referentiel, Ecrivain& ecrivain) {
  CodeRetour cr = NOX_CR_OK;
  for (unsigned i = 0; i < NOMBRE_TABLES_MODIFICATION && cr == NOX_CR_OK; ++i) {
    cr = referentiel.table(PREMIERE_TABLE_MODIFICATION + i).ecrireTable(ecrivain);
  }
  return cr;
}

CodeRetour ecrireContenu(Referentiel& referentiel, std::FILE* fichier, const DateBrute& date) {
  Ecrivain ecrivain(fichier);
  CodeRetour cr = ecrireEntete(ecrivain, NOM_FICHIER_MODIFICATION, referentiel.entete, date, "0000");
  if (cr == NOX_CR_OK) {
    cr = ecrireTables(referentiel, ecrivain);
  }
  std::uint16_t crc = 0;
  if (cr == NOX_CR_OK && !calculerCRC16(fichier, crc)) {
    cr = NOX_CR_ECRITURE_MODIF;
  }
  return cr == NOX_CR_OK ? ecrivain.ecrireCRC(crc) : cr;
}

// On the disk before it may take the place of another.
CodeRetour ecrireFichier(Referentiel& referentiel, FichierOuvert& fichier, const DateBrute& date,
                         std::optional<Empreinte>& empreinte) {
  CodeRetour cr = NOX_CR_OK;
  try {
    cr = ecrireContenu(referentiel, fichier.lire(), date);
  } catch (const std::bad_alloc&) {
    cr = NOX_CR_MEMOIRE;
  }
  if (cr == NOX_CR_OK && (!fichier.synchroniser() || !(empreinte = lireEmpreinte(fichier.lire())))) {
    cr = NOX_CR_ECRITURE_MODIF;
  }
  Trace::ecrire(TRACE_SAUVEGARDE, "Fermeture du fichier");
  if (!fichier.fermer()) {
    Trace::erreur(TRACE_SAUVEGARDE, "ERREUR : probleme lors de la fermeture du fichier: %s",
                  std::strerror(errno));
    cr = cr == NOX_CR_OK ? CodeRetour{NOX_CR_ECRITURE_MODIF} : cr;
  }
  return cr;
}

}  // namespace

void Referentiel::signalerVersionInconnue(const std::string& nom) const {
  const FichierOuvert fichier(nom);
  if (fichier.estOuvert() && lireEmpreinte(fichier.lire()) != versionConnue_) {
    Trace::erreur(TRACE_SAUVEGARDE,
                  "ERREUR : le fichier %s a ete change par un autre programme ; %s garde sa version",
                  nom.c_str(), NOM_SAUVEGARDE_MODIFICATION);
  }
}

CodeRetour Referentiel::ecrireModifications(RotationModifications& rotation) {
  Trace::ecrire(TRACE_SAUVEGARDE, "Ouverture du fichier %s", rotation.temporaire().c_str());
  FichierOuvert fichier(rotation.creerTemporaire());
  if (!fichier.estOuvert()) {
    Trace::erreur(TRACE_SAUVEGARDE, "ERREUR : probleme lors de l'ouverture du fichier: %s",
                  std::strerror(errno));
    return NOX_CR_ECRITURE_MODIF;
  }
  Date aujourdHui;
  lireDateSysteme(aujourdHui);
  std::optional<Empreinte> ecrite;
  CodeRetour cr = ecrireFichier(*this, fichier, aujourdHui.lireBrute(), ecrite);
  if (cr == NOX_CR_OK) {
    cr = rotation.tourner();
  }
  rotation.terminer(cr);
  if (cr == NOX_CR_OK) {
    entete.dateModification = aujourdHui.lireBrute();
    versionConnue_ = ecrite;
  }
  return cr;
}

// One save at a time in a directory, whatever the process. Where the system has no lock to give, saves go
// on without.
CodeRetour Referentiel::sauvegarderModifications() {
  constexpr std::chrono::seconds ATTENTE{2};
  CodeRetour cr = NOX_CR_OK;
  BlocTrace bloc(TRACE_SAUVEGARDE, cr,
                 "Referentiel::sauvegarderModifications : Sauvegarde des modifications");
  bloc.terminerPar("Code retour de Referentiel::sauvegarderModifications : 0x%04X");
  try {
    const VerrouModifications verrou(repertoireModification, ATTENTE);
    if (verrou.etat() == VerrouModifications::Etat::Occupe) {
      Trace::erreur(TRACE_SAUVEGARDE, "ERREUR : une autre sauvegarde tient le repertoire %s",
                    repertoireModification.c_str());
      cr = NOX_CR_ECRITURE_MODIF;
      return cr;
    }
    if (verrou.etat() == VerrouModifications::Etat::Absent) {
      Trace::ecrire(TRACE_SAUVEGARDE, "Le repertoire %s ne peut etre verrouille",
                    repertoireModification.c_str());
    }
    RotationModifications rotation(repertoireModification);
    signalerVersionInconnue(rotation.modification());
    cr = ecrireModifications(rotation);
  } catch (const std::bad_alloc&) {
    Trace::erreur(TRACE_SAUVEGARDE, "ERREUR: Problème d'allocation mémoire : pcNomComplet");
    cr = NOX_CR_MEMOIRE;
  }
  return cr;
}

}  // namespace noxlux
