// The reference store: header, tables and acts of the reference files.
#ifndef NOXLUX_REFERENT_REFERENTIEL_H
#define NOXLUX_REFERENT_REFERENTIEL_H

#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "basics/codes_retour.h"
#include "referent/empreinte.h"
#include "tables/niveaux_acte.h"
#include "tables/table.h"
#include "types/date.h"

namespace noxlux {

class RotationModifications;

constexpr unsigned NOMBRE_TABLES_REFERENCE = 49;
constexpr unsigned NOMBRE_TABLES_MODIFICATION = 9;
constexpr unsigned PREMIERE_TABLE_MODIFICATION = 35;

constexpr const char* NOM_FICHIER_REFERENCE = "tablebin.nox";
constexpr const char* NOM_FICHIER_MODIFICATION = "modifref.nox";
// Beside it: the version before, the new one while it is written, a copy of the former while the files turn.
constexpr const char* NOM_SAUVEGARDE_MODIFICATION = "modif~.nox";
constexpr const char* NOM_TEMPORAIRE_MODIFICATION = "modiftmp.nox";
constexpr const char* NOM_SECURITE_MODIFICATION = "modif~.sav";

// What the headers of the two files tell.
struct EnteteReferentiel {
  CodeFixe<4> version;
  CodeFixe<5> versionBaseCCAM;
  DateBrute dateModification;  // from modifref.nox only
  CodeFixe<4> versionMinLogicielle;
  std::uint16_t numeroRevision = 0;
  CodeFixe<10> variante;
  std::string commentaire;
};

// The place of a loaded act beside its index line.
struct CaseActe {
  std::unique_ptr<NiveauActe> acte;
  bool enChargement = false;  // a load is under way: a second request is refused
  bool estVide() const { return acte == nullptr && !enChargement; }
};

class Referentiel {
 public:
  Referentiel();
  virtual ~Referentiel();
  Referentiel(const Referentiel&) = delete;
  Referentiel& operator=(const Referentiel&) = delete;

  // Loads both files. REQUIRES: all four not null, store empty. A failed load leaves the store fit only to be
  // destroyed.
  CodeRetour chargerReferentiel(const char* pcRepertoire, const char* pcRepertoireModification,
                                const char* pcVersionLogicielle, const char* pcVersionMinimale);
  // Loads a deferred table (30, 31 or 58) and checks the whole store again; a failure leaves it not loaded.
  CodeRetour chargerTable(unsigned short identifiant);
  // Loads a deferred table if it is not loaded yet.
  CodeRetour assurerTable(unsigned short identifiant);
  // Reads one act record, then applies the saved modifications to it.
  CodeRetour chargerActe(std::uint32_t positionActe, NiveauActe& acte, const char* code);
  CodeRetour sauvegarderModifications();
  void dump(unsigned short module) const;

  static void lireDateSysteme(Date& date);
  // The CRC of an open file from offset 4 to its end. False when it cannot be read.
  static bool calculerCRC16(std::FILE* fichier, std::uint16_t& crc);
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
  std::uint16_t compteurLecture = 0;   // readers in progress
  std::uint16_t compteurEcriture = 0;  // writers in progress: 0 or 1
  std::array<std::unique_ptr<Table>, NOMBRE_TABLES> tables;
  std::vector<CaseActe> actes;  // one per line of the index
  std::string repertoire;
  std::string repertoireModification;

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
  CodeRetour appliquerModifications();
  CodeRetour appliquerModificationsActe(NiveauActe& acte, const char* code);
  void dumpActes(unsigned short module) const;
  CodeRetour controlerTables() const;
  void signalerRestes(bool modification) const;
  CodeRetour lireModifications(std::FILE* fichier, const std::string& nom);
  CodeRetour ecrireModifications(RotationModifications& rotation);
  void signalerVersionInconnue(const std::string& nom) const;

  // What tells that tablebin.nox is the file that was loaded: its size, and the bytes of its header.
  std::uint64_t tailleReference_ = 0;
  std::string debutReference_;
  // modifref.nox as this process read or wrote it last; none when there was none.
  std::optional<Empreinte> versionConnue_;
};

}  // namespace noxlux

#endif
