// The labels of codes, by code table: those of the sources' code tables, and those that modifiers, grouping
// codes and unforeseen associations bring themselves.
#ifndef NOXLUX_COMPILATEUR_ETIQUETTES_H
#define NOXLUX_COMPILATEUR_ETIQUETTES_H

#include <map>
#include <string>

#include "compilateur/modele.h"

namespace noxlux::compilateur {

enum TableCode : std::uint16_t {
  CODES_ACTIVITE = 1,
  CODES_MODIFICATEUR = 2,
  CODES_TYPE_ACTE = 3,
  CODES_CATEGORIE = 4,
  CODES_ADMISSION = 5,
  CODES_EXONERATION = 6,
  CODES_NATURE_ASSURANCE = 7,
  CODES_FRAIS = 8,
  CODES_REGROUPEMENT = 9,
  CODES_ASSOCIATION = 10,
  CODES_EXTENSION = 11,
  NOMBRE_TABLES_CODES = 11
};

struct Etiquette {
  std::string libelle;
  Lieu lieu;
};

class Etiquettes {
 public:
  // A code met twice in one table is a fault.
  Etiquettes(const Modele& modele, Rapport& rapport);

  bool connait(std::uint16_t table, std::string_view code) const;
  // Codes and labels of a table, by code; empty when the sources tell none.
  const std::map<std::string, Etiquette, std::less<>>& table(std::uint16_t numero) const;
  std::uint16_t derniereTable() const;

 private:
  void ajouter(std::uint16_t table, std::string_view code, const std::string& libelle, Lieu lieu,
               Rapport& rapport);

  std::map<std::uint16_t, std::map<std::string, Etiquette, std::less<>>> tables_;
};

}  // namespace noxlux::compilateur

#endif
