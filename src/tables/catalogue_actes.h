// The acts: their index, the menu tree, grouping codes, what may be coded together and how it is paid.
#ifndef NOXLUX_TABLES_CATALOGUE_ACTES_H
#define NOXLUX_TABLES_CATALOGUE_ACTES_H

#include "tables/ligne_table.h"

namespace noxlux {

// Act index, sorted by code: where each act record lies in the file.
struct Index {
  static constexpr unsigned IDENTIFIANT = 0;
  static constexpr const char* NOM = "Index";
  CodeActe acte;
  std::uint32_t position = 0;
  template <class L = Index>
  static constexpr auto champs() {
    return std::tuple{champ(&L::acte, "acte", "code acte", Controle::Renseigne),
                      champ(&L::position, "position", "position de l'acte")};
  }
};

// The menu tree, sorted by code; 1 is the root.
struct Arborescence {
  static constexpr unsigned IDENTIFIANT = 31;
  static constexpr const char* NOM = "Arborescence";
  std::uint32_t code = 0;
  TexteVariable libelle;
  std::uint32_t pere = 0;
  TexteVariable notes;
  template <class L = Arborescence>
  static constexpr auto champs() {
    return std::tuple{champ(&L::code, "code", "code menu"),
                      champ(&L::libelle, "libelle", "libelle menu", Controle::Renseigne),
                      champ(&L::pere, facultatif("pere"), "code menu pere"),
                      champ(&L::notes, facultatif("notes"), "notes menu")};
  }
};

// Grouping codes.
struct CodeRegroupement {
  static constexpr unsigned IDENTIFIANT = 14;
  static constexpr const char* NOM = "CodeRegroupement";
  CodeFixe<3> code;
  DateBrute debut;
  DateBrute fin;
  template <class L = CodeRegroupement>
  static constexpr auto champs() {
    return std::tuple{champ(&L::code, "code", "code regroupement", Controle::Renseigne),
                      champ(&L::debut, "debut", "date debut", Controle::DateValide),
                      champ(&L::fin, facultatif("fin"), "date de fin", Controle::DateFacultative)};
  }
};

// Unforeseen-association codes.
struct AssociationNonPrevue {
  static constexpr unsigned IDENTIFIANT = 1;
  static constexpr const char* NOM = "AssociationNonPrevue";
  char code = ' ';
  Plage<2> historiques;
  template <class L = AssociationNonPrevue>
  static constexpr auto champs() {
    return std::tuple{champ(&L::code, "code", "code association non prevue", Controle::Renseigne),
                      champ(&L::historiques, "historiques", "historiques")};
  }
};

struct HistoriqueAssociationNonPrevue {
  static constexpr unsigned IDENTIFIANT = 2;
  static constexpr const char* NOM = "HistoriqueAssociationNonPrevue";
  DateBrute debut;
  DateBrute fin;
  double coefficient = 0.0;
  template <class L = HistoriqueAssociationNonPrevue>
  static constexpr auto champs() {
    return periode<L>(champ(&L::coefficient, "coefficient", "coefficient", Controle::Positif));
  }
};

// Tariff rules of planned associations.
struct RegleTarifaire {
  static constexpr unsigned IDENTIFIANT = 3;
  static constexpr const char* NOM = "RegleTarifaire";
  char code = ' ';
  Plage<4> historiques;
  template <class L = RegleTarifaire>
  static constexpr auto champs() {
    return std::tuple{champ(&L::code, "code", "code regle tarifaire", Controle::Renseigne),
                      champ(&L::historiques, "historiques", "historiques")};
  }
};

struct HistoriqueRegleTarifaire {
  static constexpr unsigned IDENTIFIANT = 4;
  static constexpr const char* NOM = "HistoriqueRegleTarifaire";
  DateBrute debut;
  DateBrute fin;
  double coefficient = 0.0;
  template <class L = HistoriqueRegleTarifaire>
  static constexpr auto champs() {
    return periode<L>(champ(&L::coefficient, "coefficient", "coefficient", Controle::Positif));
  }
};

// How many acts an association may hold.
struct NombreActeAssociation {
  static constexpr unsigned IDENTIFIANT = 59;
  static constexpr const char* NOM = "NombreActeAssociation";
  DateBrute debut;
  DateBrute fin;
  std::uint16_t nombre = 0;
  template <class L = NombreActeAssociation>
  static constexpr auto champs() {
    return periode<L>(champ(&L::nombre, "nombre", "nombre d'actes dans une association"));
  }
};

}  // namespace noxlux

#endif
