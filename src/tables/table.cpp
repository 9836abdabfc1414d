#include "tables/table.h"

#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>

#include "basics/trace.h"
#include "fichier/ecrivain.h"
#include "fichier/lecteur.h"

namespace noxlux {

namespace {

// The number that three digits tell; beyond any table when they are not digits.
unsigned convertirIdentifiant(const char* identifiant) {
  unsigned numero = 0;
  for (int i = 0; i < 3; ++i) {
    const char c = identifiant[i];
    if (c < '0' || c > '9') {
      return std::numeric_limits<unsigned>::max();
    }
    numero = numero * 10 + static_cast<unsigned>(c - '0');
  }
  return numero;
}

bool estTableModification(unsigned numero) { return numero >= 35 && numero <= 43; }

}  // namespace

EtatTable Table::testerIdentifiantTableRef(unsigned numero) {
  if (nomClasseLigne(numero) == nullptr || estTableModification(numero)) {
    return ETAT_INCONNUE;
  }
  return numero == ActeIndexe::IDENTIFIANT || numero == Arborescence::IDENTIFIANT ||
                 numero == MotCle::IDENTIFIANT
             ? ETAT_NON_CHARGEE
             : ETAT_CHARGEE;
}

EtatTable Table::testerIdentifiantTableModif(unsigned numero) {
  return estTableModification(numero) ? ETAT_CHARGEE : ETAT_INCONNUE;
}

bool Table::nombreLignesPlausible(unsigned numero, std::uint32_t nombreLignes, std::uint64_t taille) {
  return std::uint64_t{nombreLignes} * tailleMinimaleLigne(numero) <= taille;
}

Table::Table(const char* identifiant, std::uint32_t nombreLignes, std::int32_t position, bool tableReference)
    : numero_(convertirIdentifiant(identifiant)),
      etat_(tableReference ? testerIdentifiantTableRef(numero_) : testerIdentifiantTableModif(numero_)) {
  std::memcpy(identifiant_, identifiant, 3);
  Trace::ecrire(TRACE_CHARGEMENT, "Table::Table : Construction de la table %s", identifiant_);
  if (etat_ != ETAT_INCONNUE) {
    lignes_ = creerLignes(numero_);
  }
  if (etat_ == ETAT_CHARGEE && nombreLignes != 0) {
    creerLignesTable(nombreLignes);
  } else if (etat_ == ETAT_NON_CHARGEE) {
    nombreAnnonce_ = nombreLignes;
    position_ = position;
  }
  Trace::ecrire(TRACE_CHARGEMENT, "Etat de l'objet Table : 0x%04X", static_cast<unsigned>(etat_));
}

Table::~Table() {
  Trace::ecrire(TRACE_CHARGEMENT, "Table::Table : Destruction de la table %s", identifiant_);
}

void Table::creerLignesTable(std::uint32_t nombre) {
  try {
    lignes_->creer(nombre);
  } catch (const std::bad_alloc&) {
    etat_ = ETAT_ERREUR_ALLOCATION;
  } catch (const std::length_error&) {
    etat_ = ETAT_ERREUR_ALLOCATION;
  }
  if (etat_ == ETAT_ERREUR_ALLOCATION) {
    // Lines lie in their array: both lack.
    Trace::erreur(TRACE_CHARGEMENT, "ERREUR : probleme d'allocation memoire : lignes= new LigneTable*");
    Trace::erreur(TRACE_CHARGEMENT, "ERREUR dans Table::creerLigneTable: probleme d'allocation memoire");
  }
}

CodeRetour Table::lireTable(Lecteur& lecteur) {
  CodeRetour cr = NOX_CR_OK;
  const std::uint32_t nombre = lignes_->nombre();
  for (std::uint32_t i = 0; i < nombre && cr == NOX_CR_OK; ++i) {
    cr = lignes_->lireLigne(i, lecteur);
    if (cr != NOX_CR_OK) {
      Trace::erreur(TRACE_CHARGEMENT, "ERREUR : probleme de lecture de la ligne d'indice %lu",
                    static_cast<unsigned long>(i));
      Trace::erreur(TRACE_CHARGEMENT, "POSITION de l'erreur dans le fichier : 0x%08lX",
                    static_cast<unsigned long>(lecteur.positionChamp()));
    }
  }
  Trace::ecrire(TRACE_CHARGEMENT, "Code retour Table::lireTable : 0x%04X", cr);
  return cr;
}

CodeRetour Table::lireDonnees(Lecteur& lecteur, std::uint32_t taille) {
  const std::uint64_t fin = std::uint64_t{lecteur.positionCourante()} + taille;
  const CodeRetour cr = lireTable(lecteur);
  if (cr == NOX_CR_OK && lecteur.positionCourante() != fin) {
    Trace::erreur(TRACE_CHARGEMENT, "ERREUR : les lignes de la table ne font pas la taille annoncee");
    return NOX_CR_LECTURE_REFERENCE;
  }
  return cr;
}

CodeRetour Table::ecrireTable(Ecrivain& ecrivain) const {
  const std::uint32_t nombre = lignes_->nombre();
  CodeRetour cr = ecrivain.ecrireEnteteTable(identifiant_, nombre);
  for (std::uint32_t i = 0; i < nombre && cr == NOX_CR_OK; ++i) {
    cr = lignes_->ecrireLigne(i, ecrivain);
  }
  return cr == NOX_CR_OK ? ecrivain.ecrireTailleDonnees() : cr;
}

CodeRetour Table::chargerTable(Lecteur& lecteur) {
  exiger(etat_ == ETAT_NON_CHARGEE, "etat == ETAT_NON_CHARGEE");
  Trace::ecrire(TRACE_CHARGEMENT, "Table::chargerTable: identifiant = %hu",
                static_cast<unsigned short>(numero_));
  CodeRetour cr = NOX_CR_OK;
  try {
    cr = chargerLignes(lecteur);
  } catch (const std::bad_alloc&) {
    cr = NOX_CR_MEMOIRE;
  }
  if (cr != NOX_CR_OK) {
    dechargerTable();
  }
  Trace::ecrire(TRACE_CHARGEMENT, "Table::chargerTable: cr = 0x%04X, etat = %d", cr,
                int{cr == NOX_CR_OK ? ETAT_CHARGEE : ETAT_NON_CHARGEE});
  return cr;
}

// The data size stands just before the data.
CodeRetour Table::chargerLignes(Lecteur& lecteur) {
  constexpr std::int32_t TAILLE = sizeof(std::uint32_t);
  if (lecteur.positionner(static_cast<std::uint32_t>(position_ - TAILLE)) != NOX_CR_OK) {
    Trace::erreur(TRACE_CHARGEMENT, "La position des données (%ld) n'est pas valide",
                  static_cast<long>(position_));
    return NOX_CR_DONNEE_ABSENTE;
  }
  std::uint32_t taille = 0;
  const CodeRetour cr = lecteur.lireUnsignedLong(taille);
  if (cr != NOX_CR_OK || taille > lecteur.reste() ||
      !nombreLignesPlausible(numero_, nombreAnnonce_, taille)) {
    Trace::erreur(TRACE_CHARGEMENT, "ERREUR : la table n'est plus telle que son entete l'annoncait");
    return NOX_CR_LECTURE_REFERENCE;
  }
  etat_ = ETAT_EN_CHARGEMENT;
  creerLignesTable(nombreAnnonce_);
  return etat_ == ETAT_ERREUR_ALLOCATION ? static_cast<CodeRetour>(NOX_CR_MEMOIRE)
                                         : lireDonnees(lecteur, taille);
}

void Table::dechargerTable() {
  lignes_->vider();
  etat_ = ETAT_NON_CHARGEE;
}

bool Table::controlerLignes(TablesParIdentifiant tables) const {
  const std::uint32_t nombre = lignes_->nombre();
  for (std::uint32_t i = 0; i < nombre; ++i) {
    if (!lignes_->controlerLigne(i, tables)) {
      return false;
    }
  }
  return true;
}

void Table::dump(unsigned short module) const {
  Trace::ecrire(module, "Identifiant : \"%.3s\"", static_cast<const char*>(identifiant_));
  Trace::ecrire(module, "Nombre de lignes  : %lu", static_cast<unsigned long>(lireNombreLignes()));
  Trace::ecrire(module, "");
  const std::uint32_t nombre = etatTable() == ETAT_CHARGEE ? lignes_->nombre() : 0;
  for (std::uint32_t i = 0; i < nombre; ++i) {
    Trace::ecrire(module, "LIGNE D'INDICE %lu", static_cast<unsigned long>(i));
    lignes_->dump(i, module);
  }
}

}  // namespace noxlux
