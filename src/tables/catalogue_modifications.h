// The local changes, each from a day on; the files of modifications hold them.
#ifndef NOXLUX_TABLES_CATALOGUE_MODIFICATIONS_H
#define NOXLUX_TABLES_CATALOGUE_MODIFICATIONS_H

#include "tables/catalogue_modificateurs.h"
#include "tables/ligne_table.h"

namespace noxlux {

// Changed unit prices, in euros.
struct ModificationPrixUnitaire {
  static constexpr unsigned IDENTIFIANT = 35;
  static constexpr const char* NOM = "ModificationPrixUnitaire";
  CodeActe acte;
  char activite = ' ';
  char phase = ' ';
  DateBrute dateEffet;
  double valeur = 0.0;
  template <class L = ModificationPrixUnitaire>
  static constexpr auto champs() {
    return std::tuple{champ(&L::acte, "acte", "code acte", Controle::Renseigne),
                      champ(&L::activite, "activite", "code activite", Controle::Renseigne),
                      champ(&L::phase, "phase", "code phase", Controle::Renseigne),
                      champ(&L::dateEffet, "effet", "date d'effet", Controle::DateValide),
                      champ(&L::valeur, "prix", "prix unitaire", Controle::Positif)};
  }
};

// Changed supplements of charges, in euros.
struct ModificationSupplementCharge {
  static constexpr unsigned IDENTIFIANT = 36;
  static constexpr const char* NOM = "ModificationSupplementCharge";
  CodeActe acte;
  char activite = ' ';
  char phase = ' ';
  DateBrute dateEffet;
  double valeur = 0.0;
  template <class L = ModificationSupplementCharge>
  static constexpr auto champs() {
    return std::tuple{champ(&L::acte, "acte", "code acte", Controle::Renseigne),
                      champ(&L::activite, "activite", "code activite", Controle::Renseigne),
                      champ(&L::phase, "phase", "code phase", Controle::Renseigne),
                      champ(&L::dateEffet, "effet", "date d'effet", Controle::DateValide),
                      champ(&L::valeur, "supplement", "supplement de charges", Controle::Positif)};
  }
};

// Changed overseas increases (position 1 to 4).
struct ModificationMajorationDOM {
  static constexpr unsigned IDENTIFIANT = 37;
  static constexpr const char* NOM = "ModificationMajorationDOM";
  CodeActe acte;
  char activite = ' ';
  char phase = ' ';
  std::uint16_t position = 0;
  DateBrute dateEffet;
  double valeur = 0.0;
  template <class L = ModificationMajorationDOM>
  static constexpr auto champs() {
    return std::tuple{champ(&L::acte, "acte", "code acte", Controle::Renseigne),
                      champ(&L::activite, "activite", "code activite", Controle::Renseigne),
                      champ(&L::phase, "phase", "code phase", Controle::Renseigne),
                      champ(&L::position, "position", "position DOM"),
                      champ(&L::dateEffet, "effet", "date d'effet", Controle::DateValide),
                      champ(&L::valeur, "dom", "majoration DOM", Controle::Positif)};
  }
};

struct ModificationRegleAssociationNonPrevue {
  static constexpr unsigned IDENTIFIANT = 38;
  static constexpr const char* NOM = "ModificationRegleAssociationNonPrevue";
  char code = ' ';
  DateBrute dateEffet;
  double valeur = 0.0;
  template <class L = ModificationRegleAssociationNonPrevue>
  static constexpr auto champs() {
    return std::tuple{champ(&L::code, "code", "code association non prevue", Controle::Renseigne),
                      champ(&L::dateEffet, "effet", "date d'effet", Controle::DateValide),
                      champ(&L::valeur, "coefficient", "coefficient", Controle::Positif)};
  }
};

// Changed thresholds, in euros (position 1 to 4).
struct ModificationSeuil {
  static constexpr unsigned IDENTIFIANT = 39;
  static constexpr const char* NOM = "ModificationSeuil";
  std::uint16_t position = 0;
  DateBrute dateEffet;
  double valeur = 0.0;
  template <class L = ModificationSeuil>
  static constexpr auto champs() {
    return std::tuple{champ(&L::position, "position", "position seuil"),
                      champ(&L::dateEffet, "effet", "date d'effet", Controle::DateValide),
                      champ(&L::valeur, "seuil", "seuil", Controle::Positif)};
  }
};

// Changed modifier values: flat amount in euros, rate.
struct ModificationModificateur {
  static constexpr unsigned IDENTIFIANT = 40;
  static constexpr const char* NOM = "ModificationModificateur";
  char code = ' ';
  DateBrute dateEffet;
  double forfait = 0.0;
  double taux = 0.0;
  template <class L = ModificationModificateur>
  static constexpr auto champs() {
    return std::tuple{champ(&L::code, "code", "code modificateur", Controle::Renseigne),
                      champ(&L::dateEffet, "effet", "date d'effet", Controle::DateValide),
                      champ(&L::forfait, "forfait", "forfait", Controle::Positif),
                      champ(&L::taux, "coefficient", "taux", Controle::AuMoinsUn, REFUS_TAUX_MODIFICATEUR)};
  }
};

// Changed reductions for non-agreed professionals.
struct ModificationNonConventionne {
  static constexpr unsigned IDENTIFIANT = 41;
  static constexpr const char* NOM = "ModificationNonConventionne";
  DateBrute dateEffet;
  double forfait = 0.0;
  double taux = 0.0;
  template <class L = ModificationNonConventionne>
  static constexpr auto champs() {
    return std::tuple{champ(&L::dateEffet, "effet", "date d'effet", Controle::DateValide),
                      champ(&L::forfait, "forfait", "forfait", Controle::Positif),
                      champ(&L::taux, "coefficient", "taux", Controle::Positif)};
  }
};

// Changed grouping codes of acts.
struct ModificationCodeRegroupement {
  static constexpr unsigned IDENTIFIANT = 42;
  static constexpr const char* NOM = "ModificationCodeRegroupement";
  CodeActe acte;
  char activite = ' ';
  DateBrute dateEffet;
  CodeFixe<3> code;
  template <class L = ModificationCodeRegroupement>
  static constexpr auto champs() {
    return std::tuple{champ(&L::acte, "acte", "code acte", Controle::Renseigne),
                      champ(&L::activite, "activite", "code activite", Controle::Renseigne),
                      champ(&L::dateEffet, "effet", "date d'effet", Controle::DateValide),
                      champ(&L::code, "regroupement", "code regroupement", Controle::Renseigne)};
  }
};

// Added grouping codes.
struct ModificationNouveauCodeRegroupement {
  static constexpr unsigned IDENTIFIANT = 43;
  static constexpr const char* NOM = "ModificationNouveauCodeRegroupement";
  DateBrute dateEffet;
  CodeFixe<3> code;
  TexteVariable libelle;
  template <class L = ModificationNouveauCodeRegroupement>
  static constexpr auto champs() {
    return std::tuple{champ(&L::dateEffet, "effet", "date d'effet", Controle::DateValide),
                      champ(&L::code, "code", "code regroupement", Controle::Renseigne),
                      champ(&L::libelle, "libelle", "libelle")};
  }
};

}  // namespace noxlux

#endif
