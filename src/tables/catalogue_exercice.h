// Those who carry acts out and those who pay: specialities, compulsory coding, thresholds, holidays,
// reductions.
#ifndef NOXLUX_TABLES_CATALOGUE_EXERCICE_H
#define NOXLUX_TABLES_CATALOGUE_EXERCICE_H

#include "tables/ligne_table.h"

namespace noxlux {

// Specialities of professionals.
struct Specialite {
  static constexpr unsigned IDENTIFIANT = 5;
  static constexpr const char* NOM = "Specialite";
  CodeFixe<2> code;
  Plage<6> historiques;
  template <class L = Specialite>
  static constexpr auto champs() {
    return std::tuple{champ(&L::code, "code", "code specialite", Controle::Renseigne),
                      champ(&L::historiques, facultatif("historiques"), "historiques")};
  }
};

struct HistoriqueSpecialite {
  static constexpr unsigned IDENTIFIANT = 6;
  static constexpr const char* NOM = "HistoriqueSpecialite";
  DateBrute debut;
  DateBrute fin;
  CodeFixe<2> classe;
  template <class L = HistoriqueSpecialite>
  static constexpr auto champs() {
    return periode<L>(champ(&L::classe, "classe", "classe specialite", Controle::Renseigne));
  }
};

// Classes of specialities.
struct ClasseSpecialite {
  static constexpr unsigned IDENTIFIANT = 7;
  static constexpr const char* NOM = "ClasseSpecialite";
  CodeFixe<2> code;
  Plage<8> historiques;
  template <class L = ClasseSpecialite>
  static constexpr auto champs() {
    return std::tuple{champ(&L::code, "code", "classe specialite", Controle::Renseigne),
                      champ(&L::historiques, "historiques", "historiques")};
  }
};

struct HistoriqueClasseSpecialite {
  static constexpr unsigned IDENTIFIANT = 8;
  static constexpr const char* NOM = "HistoriqueClasseSpecialite";
  DateBrute debut;
  DateBrute fin;
  Plage<9> specialites;
  template <class L = HistoriqueClasseSpecialite>
  static constexpr auto champs() {
    return periode<L>(champ(&L::specialites, "specialites", "specialites"));
  }
};

struct SpecialiteDansClasse {
  static constexpr unsigned IDENTIFIANT = 9;
  static constexpr const char* NOM = "SpecialiteDansClasse";
  CodeFixe<2> code;
  template <class L = SpecialiteDansClasse>
  static constexpr auto champs() {
    return std::tuple{champ(&L::code, "code", "code specialite", Controle::Renseigne)};
  }
};

// Natures of service for which CCAM coding is compulsory.
struct ObligationCodage {
  static constexpr unsigned IDENTIFIANT = 16;
  static constexpr const char* NOM = "ObligationCodage";
  CodeFixe<3> prestation;
  Plage<17> specialites;
  template <class L = ObligationCodage>
  static constexpr auto champs() {
    return std::tuple{champ(&L::prestation, "prestation", "code nature de prestation", Controle::Renseigne),
                      champ(&L::specialites, "specialites", "specialites")};
  }
};

struct DateObligationCodage {
  static constexpr unsigned IDENTIFIANT = 17;
  static constexpr const char* NOM = "DateObligationCodage";
  CodeFixe<2> code;
  DateBrute date;
  template <class L = DateObligationCodage>
  static constexpr auto champs() {
    return std::tuple{champ(&L::code, "code", "code specialite", Controle::Renseigne),
                      champ(&L::date, "date", "date d'obligation de codage", Controle::DateValide)};
  }
};

// Exemption thresholds of the patient's share, in euros, by zone.
struct Seuil {
  static constexpr unsigned IDENTIFIANT = 10;
  static constexpr const char* NOM = "Seuil";
  DateBrute debut;
  DateBrute fin;
  double metropole = 0.0;
  double antilles = 0.0;
  double reunion = 0.0;
  double guyane = 0.0;
  template <class L = Seuil>
  static constexpr auto champs() {
    return periode<L>(champ(&L::metropole, "metropole", "seuil metropole", Controle::Positif),
                      champ(&L::antilles, "antilles", "seuil antilles", Controle::Positif),
                      champ(&L::reunion, "reunion", "seuil reunion", Controle::Positif),
                      champ(&L::guyane, "guyane", "seuil guyane", Controle::Positif));
  }
};

// Funds with their holidays; fund 000 holds the national ones.
struct JourFerieCaisse {
  static constexpr unsigned IDENTIFIANT = 11;
  static constexpr const char* NOM = "JourFerieCaisse";
  CodeFixe<3> code;
  Plage<12> jours;
  template <class L = JourFerieCaisse>
  static constexpr auto champs() {
    return std::tuple{champ(&L::code, "code", "code caisse", Controle::Renseigne),
                      champ(&L::jours, facultatif("jours"), "jours feries")};
  }
};

struct JourFerieListe {
  static constexpr unsigned IDENTIFIANT = 12;
  static constexpr const char* NOM = "JourFerieListe";
  DateBrute jour;
  char type = 'F';
  DateBrute debut;
  DateBrute fin;
  template <class L = JourFerieListe>
  static constexpr auto champs() {
    return std::tuple{champ(&L::jour, "jour", "jour ferie", Controle::DateValide),
                      champ(&L::type, facultatif("type"), "type de jour", Controle::Octet),
                      champ(&L::debut, "debut", "date debut", Controle::DateValide),
                      champ(&L::fin, facultatif("fin"), "date de fin", Controle::DateFacultative)};
  }
};

// Reductions for non-agreed professionals: flat amount in euros, rate.
struct ReductionNonConventionne {
  static constexpr unsigned IDENTIFIANT = 13;
  static constexpr const char* NOM = "ReductionNonConventionne";
  DateBrute debut;
  DateBrute fin;
  double forfait = 0.0;
  double coefficient = 1.0;
  template <class L = ReductionNonConventionne>
  static constexpr auto champs() {
    return periode<L>(champ(&L::forfait, facultatif("forfait"), "forfait", Controle::Positif),
                      champ(&L::coefficient, facultatif("coefficient"), "coefficient", Controle::Positif));
  }
};

}  // namespace noxlux

#endif
