// The reference store: header, tables and acts of the reference files.
#ifndef NOXLUX_REFERENT_REFERENTIEL_H
#define NOXLUX_REFERENT_REFERENTIEL_H

#include <array>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "basics/codes_retour.h"
#include "referent/acces.h"
#include "referent/empreinte.h"
#include "referent/entetes.h"
#include "tables/niveaux_acte.h"
#include "tables/table.h"
#include "types/date.h"

namespace noxlux {

class RotationModifications;

constexpr unsigned NOMBRE_TABLES_REFERENCE = 49;
constexpr unsigned NOMBRE_TABLES_MODIFICATION = 9;
constexpr unsigned PREMIERE_TABLE_MODIFICATION = 35;

// The place of a loaded act beside its index line: empty, marked while a reader loads the act, or full. A
// full place stays so as long as anybody reads; only a writer empties it.
class CaseActe {
 public:
  CaseActe() = default;
  explicit CaseActe(std::unique_ptr<NiveauActe> acte) : contenu_(acte.release()) {}
  CaseActe(CaseActe&& autre) noexcept : contenu_(autre.contenu_.exchange(nullptr)) {}
  CaseActe& operator=(CaseActe&&) = delete;
  ~CaseActe() { vider(); }

  // Null while the act is not loaded.
  NiveauActe* acte() const noexcept {
    NiveauActe* contenu = contenu_.load(std::memory_order_acquire);
    return contenu == marque() ? nullptr : contenu;
  }
  bool estVide() const noexcept { return contenu_.load(std::memory_order_relaxed) == nullptr; }
  // Marks an empty place. False when it is not empty.
  bool reserver() noexcept {
    NiveauActe* vide = nullptr;
    return contenu_.compare_exchange_strong(vide, marque(), std::memory_order_relaxed);
  }
  // Takes the mark off. REQUIRES: reserver() answered true
  void remplir(std::unique_ptr<NiveauActe> acte) noexcept {
    contenu_.store(acte.release(), std::memory_order_release);
  }
  // REQUIRES: nobody else uses the place
  void vider() noexcept {
    delete acte();
    contenu_.store(nullptr, std::memory_order_relaxed);
  }

 private:
  static NiveauActe* marque() noexcept { return reinterpret_cast<NiveauActe*>(~std::uintptr_t{0}); }
  std::atomic<NiveauActe*> contenu_{nullptr};
};

class Referentiel {
 public:
  // `acces` counts who is at work on the store, and outlives it; without, the store counts by itself.
  explicit Referentiel(CompteursAcces* acces = nullptr);
  ~Referentiel();
  Referentiel(const Referentiel&) = delete;
  Referentiel& operator=(const Referentiel&) = delete;

  // Loads both files. REQUIRES: all four not null, store empty. A failed load leaves the store fit only to be
  // destroyed.
  CodeRetour chargerReferentiel(const char* pcRepertoire, const char* pcRepertoireModification,
                                const char* pcVersionLogicielle, const char* pcVersionMinimale);
  // The same without making the changes again: for whoever mends a modification file that the reference
  // refuses.
  CodeRetour chargerFichiers(const char* pcRepertoire, const char* pcRepertoireModification,
                             const char* pcVersionLogicielle, const char* pcVersionMinimale);
  // The saved changes of the tables in memory, made again. REQUIRES: chargerFichiers
  CodeRetour appliquerModifications();
  // Loads a deferred table (30, 31 or 58) and checks the whole store again; a failure leaves it not loaded.
  // 0xDF01 while another is being loaded.
  CodeRetour chargerTable(unsigned short identifiant);
  // Loads a deferred table if it is not loaded yet.
  CodeRetour assurerTable(unsigned short identifiant) {
    return table(identifiant).etatTable() == ETAT_CHARGEE ? CodeRetour{NOX_CR_OK} : chargerTable(identifiant);
  }
  // Reads one act record, then applies the saved modifications to it.
  CodeRetour chargerActe(std::uint32_t positionActe, NiveauActe& acte, const char* code);
  CodeRetour sauvegarderModifications();
  void dump(unsigned short module) const;

  static void lireDateSysteme(Date& date);
  // The directory text immediately followed by the name.
  static std::string nomCompletFichier(const std::string& repertoire, const char* nom) {
    return repertoire + nom;
  }

  bool ok() const { return true; }

  // The table of a line class. REQUIRES: the store holds it.
  template <class L>
  const std::vector<L>& lignes() const {
    return table(L::IDENTIFIANT).template lignes<L>();
  }
  template <class L>
  std::vector<L>& lignes() {
    return table(L::IDENTIFIANT).template lignes<L>();
  }
  const Table& table(unsigned identifiant) const {
    exiger(tables[identifiant] != nullptr, "table != __null");
    return *tables[identifiant];
  }
  Table& table(unsigned identifiant) {
    exiger(tables[identifiant] != nullptr, "table != __null");
    return *tables[identifiant];
  }

  EnteteReferentiel entete;
  std::uint16_t nombreTables = 0;
  std::array<std::unique_ptr<Table>, NOMBRE_TABLES> tables;
  std::vector<CaseActe> actes;  // one per line of the index
  std::string repertoire;
  std::string repertoireModification;
  CompteursAcces& acces;
  std::string refus;  // the saved change that stopped a load: its table, its line, its key

 private:
  CodeRetour chargerFichierReference(const char* versionLogicielle, const char* versionMinimale);
  // Once the header has been read.
  CodeRetour retenirReference(Lecteur& lecteur);
  // Whether an open tablebin.nox is still the one that was loaded, if one was.
  CodeRetour exigerReferenceChargee(Lecteur& lecteur, const std::string& nom) const;
  CodeRetour controlerNumerosVersions(const char* versionLogicielle, const char* versionMinimale) const;
  CodeRetour lireTablesReference(Lecteur& lecteur);
  CodeRetour lireUneTable(Lecteur& lecteur, const char* identifiant, std::uint32_t nombreLignes,
                          std::int32_t offset, bool tableReference);
  CodeRetour chargerModifications();
  CodeRetour lireTablesModifications(Lecteur& lecteur);
  CodeRetour creerTablesModifications();
  CodeRetour appliquerModificationsActe(NiveauActe& acte, const char* code);
  void dumpActes(unsigned short module) const;
  CodeRetour controlerTables() const;
  CodeRetour chargerTableReservee(Table& cible);
  void signalerRestes(bool modification) const;
  CodeRetour lireModifications(std::FILE* fichier, const std::string& nom);
  CodeRetour ecrireModifications(RotationModifications& rotation);
  void signalerVersionInconnue(const std::string& nom) const;

  // What tells that tablebin.nox is the file that was loaded: its size, and the bytes of its header.
  std::uint64_t tailleReference_ = 0;
  std::string debutReference_;
  // modifref.nox as this process read or wrote it last; none when there was none.
  std::optional<Empreinte> versionConnue_;
  CompteursAcces accesPropre_;
  std::atomic<bool> tableEnChargement_{false};
};

}  // namespace noxlux

#endif
