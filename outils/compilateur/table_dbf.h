// A dBASE III table, read record by record. Texts are in code page 850 in the file, in ISO-8859-1 here.
#ifndef NOXLUX_COMPILATEUR_TABLE_DBF_H
#define NOXLUX_COMPILATEUR_TABLE_DBF_H

#include <shapefil.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "types/date.h"

namespace noxlux::compilateur {

class TableDbf {
 public:
  // The table of that name in a directory, whatever the case of the file's name. Null when there is none, or,
  // with why in `raison`, when it cannot be read.
  static std::unique_ptr<TableDbf> ouvrir(const std::string& repertoire, std::string_view nom,
                                          std::string& raison);

  const std::string& chemin() const { return chemin_; }
  std::uint32_t nombre() const { return nombre_; }
  // The rank of a column; nothing when the table has none of that name.
  std::optional<int> colonne(const char* nom) const;
  // The first column whose name begins so.
  std::optional<int> premiereColonne(std::string_view debut) const;
  // The columns of a text cut in slices: NAME, NAME0 to NAME9, NAMEA to NAMEZ, as far as there are some.
  std::vector<int> tranches(const std::string& nom) const;

  // Makes a record the current one; false when it is marked as deleted, or cannot be read.
  bool lire(std::uint32_t i);
  // The bytes of a field of the current record, blanks included.
  std::string_view brut(int colonne) const;

 private:
  struct Fermeture {
    void operator()(DBFInfo* table) const { DBFClose(table); }
  };
  TableDbf() = default;

  std::string chemin_;
  std::uint32_t nombre_ = 0;
  std::unique_ptr<DBFInfo, Fermeture> table_;
  const char* enregistrement_ = nullptr;
};

// From code page 850; `perdus` counts the characters that ISO-8859-1 does not have.
std::string depuisCp850(std::string_view texte, std::size_t& perdus);
// Without the blanks and zero bytes on both sides.
std::string_view rognerChamp(std::string_view champ);

}  // namespace noxlux::compilateur

#endif
