// The modifiers: at which ages, beside which others, for how much, and how many count.
#ifndef NOXLUX_TABLES_CATALOGUE_MODIFICATEURS_H
#define NOXLUX_TABLES_CATALOGUE_MODIFICATEURS_H

#include "tables/ligne_table.h"

namespace noxlux {

struct Modificateur {
  static constexpr unsigned IDENTIFIANT = 22;
  static constexpr const char* NOM = "Modificateur";
  char code = ' ';
  Plage<23> ages;
  Plage<24> compatibles;
  Plage<25> coherences;
  Plage<26> valeurs;
  Plage<27> oc;
  template <class L = Modificateur>
  static constexpr auto champs() {
    return std::tuple{champ(&L::code, "code", "code modificateur", Controle::Renseigne),
                      champ(&L::ages, facultatif("ages"), "historiques age"),
                      champ(&L::compatibles, facultatif("compatibles"), "modificateurs compatibles"),
                      champ(&L::coherences, facultatif("coherences"), "historiques coherence"),
                      champ(&L::valeurs, facultatif("valeurs"), "historiques valeur"),
                      champ(&L::oc, facultatif("oc"), "historiques modificateur OC")};
  }
};

struct HistoriqueAgeModificateur {
  static constexpr unsigned IDENTIFIANT = 23;
  static constexpr const char* NOM = "HistoriqueAgeModificateur";
  DateBrute debut;
  DateBrute fin;
  char uniteMinimum = 'A';
  std::uint16_t minimum = 0;
  char uniteMaximum = 'A';
  std::uint16_t maximum = 0;
  template <class L = HistoriqueAgeModificateur>
  static constexpr auto champs() {
    return periode<L>(
        champ(&L::uniteMinimum, facultatif("unite_minimum"), "unite de temps age minimum", Controle::Octet),
        champ(&L::minimum, facultatif("minimum"), "age minimum"),
        champ(&L::uniteMaximum, facultatif("unite_maximum"), "unite de temps age maximum", Controle::Octet),
        champ(&L::maximum, facultatif("maximum"), "age maximum"));
  }
};

struct ModificateurCompatible {
  static constexpr unsigned IDENTIFIANT = 24;
  static constexpr const char* NOM = "ModificateurCompatible";
  char code = ' ';
  DateBrute debut;
  DateBrute fin;
  template <class L = ModificateurCompatible>
  static constexpr auto champs() {
    return std::tuple{champ(&L::code, "code", "code modificateur compatible", Controle::Renseigne),
                      champ(&L::debut, "debut", "date d'effet", Controle::DateValide),
                      champ(&L::fin, facultatif("fin"), "date de fin", Controle::DateFacultative)};
  }
};

struct HistoriqueCoherenceModificateur {
  static constexpr unsigned IDENTIFIANT = 25;
  static constexpr const char* NOM = "HistoriqueCoherenceModificateur";
  DateBrute debut;
  DateBrute fin;
  char topControleCoherence = ' ';
  char topPresenceMultiple = ' ';
  template <class L = HistoriqueCoherenceModificateur>
  static constexpr auto champs() {
    return periode<L>(
        champ(&L::topControleCoherence, "controle", "top controle de coherence", Controle::Booleen),
        champ(&L::topPresenceMultiple, "presence_multiple", "top presence multiple", Controle::Booleen));
  }
};

inline constexpr const char* REFUS_TAUX_MODIFICATEUR =
    "le coefficient modificateur doit etre superieur ou egal a 1";

// Value of a modifier: flat amount in euros, rate (1 and above).
struct HistoriqueValeurModificateur {
  static constexpr unsigned IDENTIFIANT = 26;
  static constexpr const char* NOM = "HistoriqueValeurModificateur";
  DateBrute debut;
  DateBrute fin;
  double forfait = 0.0;
  double coefficient = 1.0;
  template <class L = HistoriqueValeurModificateur>
  static constexpr auto champs() {
    return periode<L>(champ(&L::forfait, facultatif("forfait"), "forfait modificateur", Controle::Positif,
                            "le forfait modificateur doit etre superieur ou egal a zero"),
                      champ(&L::coefficient, facultatif("coefficient"), "coefficient modificateur",
                            Controle::AuMoinsUn, REFUS_TAUX_MODIFICATEUR));
  }
};

struct HistoriqueModificateurOC {
  static constexpr unsigned IDENTIFIANT = 27;
  static constexpr const char* NOM = "HistoriqueModificateurOC";
  DateBrute debut;
  DateBrute fin;
  char code = ' ';
  template <class L = HistoriqueModificateurOC>
  static constexpr auto champs() {
    return std::tuple{champ(&L::debut, "debut", "date de debut", Controle::DateValide),
                      champ(&L::fin, facultatif("fin"), "date de fin", Controle::DateFacultative),
                      champ(&L::code, "code", "code modificateur OC", Controle::Renseigne)};
  }
};

// How many modifiers of a line count in its price.
struct NombreModificateurTarifant {
  static constexpr unsigned IDENTIFIANT = 18;
  static constexpr const char* NOM = "NombreModificateurTarifant";
  DateBrute debut;
  DateBrute fin;
  std::uint16_t nombre = 0;
  template <class L = NombreModificateurTarifant>
  static constexpr auto champs() {
    return periode<L>(champ(&L::nombre, "nombre", "nombre de modificateurs tarifants"));
  }
};

// How many modifiers are passed on to complementary insurers.
struct NombreModificateurTransmissible {
  static constexpr unsigned IDENTIFIANT = 44;
  static constexpr const char* NOM = "NombreModificateurTransmissible";
  DateBrute debut;
  DateBrute fin;
  std::uint16_t nombre = 0;
  template <class L = NombreModificateurTransmissible>
  static constexpr auto champs() {
    return periode<L>(champ(&L::nombre, "nombre", "nombre de modificateurs transmissibles"));
  }
};

}  // namespace noxlux

#endif
