// A dBASE III table, read record by record.
#ifndef NOXLUX_COMPILATEUR_TABLE_DBF_H
#define NOXLUX_COMPILATEUR_TABLE_DBF_H

#include <shapefil.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace noxlux::compilateur {

class TableDbf {
 public:
  // Null, with why in `raison`, when the file is no table, or not all of one.
  static std::unique_ptr<TableDbf> ouvrir(const std::string& chemin, std::string& raison);

  const std::string& chemin() const { return chemin_; }
  // Records, those marked as deleted included.
  std::uint32_t nombre() const { return nombre_; }
  // The ranks of the columns that a name stands for: "NAME" one column, "NAME.." the slices of a text cut
  // over NAME, NAME0 to NAME9, NAMEA to NAMEZ, "NAME*" the first that begins so. None when there is none.
  std::vector<int> colonnes(std::string_view nom) const;

  // Makes a record the current one; false when it cannot be read.
  bool lire(std::uint32_t i);
  bool estEfface() const { return *enregistrement_ == '*'; }
  // The bytes of a field of the current record, blanks included. REQUIRES: a current record.
  std::string_view brut(int colonne) const;

 private:
  struct Fermeture {
    void operator()(DBFInfo* table) const { DBFClose(table); }
  };
  TableDbf() = default;
  void lireNoms();
  std::vector<int> tranches(std::string_view nom) const;

  std::string chemin_;
  std::uint32_t nombre_ = 0;
  std::unique_ptr<DBFInfo, Fermeture> table_;
  std::vector<std::string> noms_;  // of the columns, in capitals
  const char* enregistrement_ = nullptr;
};

// Without the blanks and zero bytes on both sides.
std::string_view rognerChamp(std::string_view champ);

}  // namespace noxlux::compilateur

#endif
