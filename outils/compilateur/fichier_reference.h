// A reference file, tablebin.nox or modifref.nox, read back as it lies on the disk: without the store, so
// that a file that the store refuses can be looked into.
#ifndef NOXLUX_COMPILATEUR_FICHIER_REFERENCE_H
#define NOXLUX_COMPILATEUR_FICHIER_REFERENCE_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "basics/codes_retour.h"
#include "fichier/fichier_ouvert.h"
#include "referent/entetes.h"
#include "tables/niveaux_acte.h"
#include "tables/table.h"

namespace noxlux::compilateur {

// The text header, as it stands (ISO-8859-1).
struct EnteteFichier : EnteteTexte {
  std::string crcCalcule;
};

struct TableLue {
  unsigned numero = 0;
  std::uint32_t nombreLignes = 0;
  std::uint32_t taille = 0;        // bytes of data
  std::uint32_t position = 0;      // of the data in the file
  EtatTable etat = ETAT_INCONNUE;  // what the store makes of it when it loads
};

class FichierReference {
 public:
  // Null, and why in `raison`, when the file cannot be opened or does not begin with a header.
  static std::unique_ptr<FichierReference> ouvrir(const std::string& chemin, std::string& raison);

  const EnteteFichier& entete() const { return entete_; }
  const std::vector<TableLue>& tables() const { return tables_; }
  // Why the walk over the tables stopped before its end; empty when it did not.
  const std::string& anomalie() const { return anomalie_; }
  bool estModification() const { return modification_; }

  // Null when the file holds no such table.
  const TableLue* chercherTable(unsigned numero) const;
  // The lines of a table of known class. Null, and the code, when one cannot be read.
  std::unique_ptr<LignesTable> lireLignes(const TableLue& table, CodeRetour& cr) const;
  // The act record that the index tells. NOX_CR_CODE_INCONNU when it tells none.
  CodeRetour lireActe(const CodeActe& code, NiveauActe& acte) const;
  // All the act records; those of a modification file are none.
  CodeRetour lireActes(std::map<CodeActe, NiveauActe>& actes) const;

 private:
  explicit FichierReference(const std::string& chemin) : fichier_(chemin) {}
  CodeRetour lireActeEn(std::uint32_t position, NiveauActe& acte) const;
  bool lireEntete(Lecteur& lecteur);
  void lireTables(Lecteur& lecteur);

  FichierOuvert fichier_;
  EnteteFichier entete_;
  std::vector<TableLue> tables_;
  std::string anomalie_;
  bool modification_ = false;
};

}  // namespace noxlux::compilateur

#endif
