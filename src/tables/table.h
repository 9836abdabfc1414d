// One reference table: an identifier, its lines of one class, and whether they are loaded.
#ifndef NOXLUX_TABLES_TABLE_H
#define NOXLUX_TABLES_TABLE_H

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <vector>

#include "basics/assertion.h"
#include "basics/codes_retour.h"
#include "tables/catalogue.h"

namespace noxlux {

class Ecrivain;
class Lecteur;
class Table;

// The tables of a store, by identifier; null where it holds none.
using TablesParIdentifiant = std::span<const std::unique_ptr<Table>>;

constexpr unsigned NOMBRE_TABLES = 60;

enum EtatTable : unsigned char {
  ETAT_CHARGEE = 0,
  ETAT_NON_CHARGEE = 1,        // deferred: number of lines and position kept, no lines
  ETAT_ERREUR_ALLOCATION = 2,  // lines not created: the table is to be discarded
  ETAT_INCONNUE = 3,           // identifier not expected in this file
  ETAT_EN_CHARGEMENT = 4       // deferred, its lines being read: not yet for others
};

// The lines of a table, whatever their class.
class LignesTable {
 public:
  virtual ~LignesTable() = default;
  virtual std::uint32_t nombre() const = 0;
  // May throw std::bad_alloc.
  virtual void creer(std::uint32_t nombre) = 0;
  virtual void vider() noexcept = 0;
  virtual CodeRetour lireLigne(std::uint32_t i, Lecteur& lecteur) = 0;
  virtual CodeRetour ecrireLigne(std::uint32_t i, Ecrivain& ecrivain) const = 0;
  virtual void dump(std::uint32_t i, unsigned short module) const = 0;
  // Whether each run of the line lies within the table it points into.
  virtual bool controlerLigne(std::uint32_t i, TablesParIdentifiant tables) const = 0;
};

template <class L>
class LignesDe;

// An empty holder for the lines of a table identifier; null for an identifier without line class.
std::unique_ptr<LignesTable> creerLignes(unsigned identifiant);
const char* nomClasseLigne(unsigned identifiant);
// Fewest bytes that a line can take in a file; 0 for an identifier without line class.
std::uint32_t tailleMinimaleLigne(unsigned identifiant);

class Table {
 public:
  // A table as its header announces it: creates its lines unless it is deferred or unknown.
  Table(const char* identifiant, std::uint32_t nombreLignes, std::int32_t position, bool tableReference);
  // A table made in memory over lines of class L.
  template <class L>
  explicit Table(std::vector<L> lignes);
  ~Table();
  Table(const Table&) = delete;
  Table& operator=(const Table&) = delete;

  EtatTable etatTable() const { return etat_.load(std::memory_order_acquire); }
  unsigned lireNumero() const { return numero_; }
  const char* lireIdentifiant() const { return identifiant_; }
  // Also for a deferred table: the lines it will have.
  std::uint32_t lireNombreLignes() const {
    return etatTable() == ETAT_CHARGEE ? lignes_->nombre() : nombreAnnonce_;
  }
  std::int32_t lirePosition() const { return position_; }

  // The lines, as objects of their class; empty while the table is not loaded. REQUIRES: L is the class of
  // this table.
  template <class L>
  const std::vector<L>& lignes() const;
  template <class L>
  std::vector<L>& lignes();

  CodeRetour lireTable(Lecteur& lecteur);
  // The same, for lines that must take just that size: what follows is read from there.
  CodeRetour lireDonnees(Lecteur& lecteur, std::uint32_t taille);
  CodeRetour ecrireTable(Ecrivain& ecrivain) const;
  // Loads a deferred table from tablebin.nox; a failure leaves it as it was. Others see it loaded
  // once it is published. REQUIRES: not loaded, nobody else loads it
  CodeRetour chargerTable(Lecteur& lecteur);
  void publier() { etat_.store(ETAT_CHARGEE, std::memory_order_release); }
  // Puts it back to not loaded instead.
  void dechargerTable();
  bool controlerLignes(TablesParIdentifiant tables) const;
  void dump(unsigned short module) const;

  static EtatTable testerIdentifiantTableRef(unsigned numero);
  static EtatTable testerIdentifiantTableModif(unsigned numero);
  // Whether that many lines can lie in that many bytes. True for an identifier without line class.
  static bool nombreLignesPlausible(unsigned numero, std::uint32_t nombreLignes, std::uint64_t taille);

 private:
  void creerLignesTable(std::uint32_t nombre);
  CodeRetour chargerLignes(Lecteur& lecteur);

  char identifiant_[4] = {};
  unsigned numero_ = 0;
  std::atomic<EtatTable> etat_ = ETAT_CHARGEE;
  std::uint32_t nombreAnnonce_ = 0;  // of a deferred table
  std::int32_t position_ = 0;        // of a deferred table
  std::unique_ptr<LignesTable> lignes_;
};

// The typed holder behind a table.
template <class L>
class LignesDe final : public LignesTable {
 public:
  std::vector<L> lignes;

  std::uint32_t nombre() const override { return static_cast<std::uint32_t>(lignes.size()); }
  void creer(std::uint32_t n) override { lignes.resize(n); }
  void vider() noexcept override { lignes = {}; }
  CodeRetour lireLigne(std::uint32_t i, Lecteur& lecteur) override;
  CodeRetour ecrireLigne(std::uint32_t i, Ecrivain& ecrivain) const override;
  void dump(std::uint32_t i, unsigned short module) const override;
  bool controlerLigne(std::uint32_t i, TablesParIdentifiant tables) const override;
};

template <class L>
const std::vector<L>& Table::lignes() const {
  exiger(numero_ == L::IDENTIFIANT, "numero == L::IDENTIFIANT");
  return static_cast<const LignesDe<L>&>(*lignes_).lignes;
}

template <class L>
std::vector<L>& Table::lignes() {
  exiger(numero_ == L::IDENTIFIANT, "numero == L::IDENTIFIANT");
  return static_cast<LignesDe<L>&>(*lignes_).lignes;
}

template <class L>
Table::Table(std::vector<L> lignes) : numero_(L::IDENTIFIANT), lignes_(creerLignes(L::IDENTIFIANT)) {
  std::snprintf(identifiant_, sizeof identifiant_, "%03u", L::IDENTIFIANT % 1000U);
  static_cast<LignesDe<L>&>(*lignes_).lignes = std::move(lignes);
}

}  // namespace noxlux

#endif
