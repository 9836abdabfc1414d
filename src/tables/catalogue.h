// The catalogue of table lines: for each table identifier, its class and the fields of a line in file order.
// The field lists are templates so that only the files that walk them pay for them.
#ifndef NOXLUX_TABLES_CATALOGUE_H
#define NOXLUX_TABLES_CATALOGUE_H

#include <tuple>

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
    return std::tuple{champ(&L::acte, "code acte", Controle::Renseigne),
                      champ(&L::position, "position de l'acte")};
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
    return std::tuple{champ(&L::code, "code association non prevue", Controle::Renseigne),
                      champ(&L::historiques, "historiques")};
  }
};

struct HistoriqueAssociationNonPrevue {
  static constexpr unsigned IDENTIFIANT = 2;
  static constexpr const char* NOM = "HistoriqueAssociationNonPrevue";
  DateBrute dateDebut;
  DateBrute dateFin;
  double coefficient = 0.0;
  template <class L = HistoriqueAssociationNonPrevue>
  static constexpr auto champs() {
    return std::tuple{champ(&L::dateDebut, "date debut", Controle::DateValide),
                      champ(&L::dateFin, "date de fin", Controle::DateFacultative),
                      champ(&L::coefficient, "coefficient", Controle::Positif)};
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
    return std::tuple{champ(&L::code, "code regle tarifaire", Controle::Renseigne),
                      champ(&L::historiques, "historiques")};
  }
};

struct HistoriqueRegleTarifaire {
  static constexpr unsigned IDENTIFIANT = 4;
  static constexpr const char* NOM = "HistoriqueRegleTarifaire";
  DateBrute dateDebut;
  DateBrute dateFin;
  double coefficient = 0.0;
  template <class L = HistoriqueRegleTarifaire>
  static constexpr auto champs() {
    return std::tuple{champ(&L::dateDebut, "date debut", Controle::DateValide),
                      champ(&L::dateFin, "date de fin", Controle::DateFacultative),
                      champ(&L::coefficient, "coefficient", Controle::Positif)};
  }
};

// Specialities of professionals.
struct Specialite {
  static constexpr unsigned IDENTIFIANT = 5;
  static constexpr const char* NOM = "Specialite";
  CodeFixe<2> code;
  Plage<6> historiques;
  template <class L = Specialite>
  static constexpr auto champs() {
    return std::tuple{champ(&L::code, "code specialite", Controle::Renseigne),
                      champ(&L::historiques, "historiques")};
  }
};

struct HistoriqueSpecialite {
  static constexpr unsigned IDENTIFIANT = 6;
  static constexpr const char* NOM = "HistoriqueSpecialite";
  DateBrute dateDebut;
  DateBrute dateFin;
  CodeFixe<2> classe;
  template <class L = HistoriqueSpecialite>
  static constexpr auto champs() {
    return std::tuple{champ(&L::dateDebut, "date debut", Controle::DateValide),
                      champ(&L::dateFin, "date de fin", Controle::DateFacultative),
                      champ(&L::classe, "classe specialite", Controle::Renseigne)};
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
    return std::tuple{champ(&L::code, "classe specialite", Controle::Renseigne),
                      champ(&L::historiques, "historiques")};
  }
};

struct HistoriqueClasseSpecialite {
  static constexpr unsigned IDENTIFIANT = 8;
  static constexpr const char* NOM = "HistoriqueClasseSpecialite";
  DateBrute dateDebut;
  DateBrute dateFin;
  Plage<9> specialites;
  template <class L = HistoriqueClasseSpecialite>
  static constexpr auto champs() {
    return std::tuple{champ(&L::dateDebut, "date debut", Controle::DateValide),
                      champ(&L::dateFin, "date de fin", Controle::DateFacultative),
                      champ(&L::specialites, "specialites")};
  }
};

struct SpecialiteDansClasse {
  static constexpr unsigned IDENTIFIANT = 9;
  static constexpr const char* NOM = "SpecialiteDansClasse";
  CodeFixe<2> code;
  template <class L = SpecialiteDansClasse>
  static constexpr auto champs() {
    return std::tuple{champ(&L::code, "code specialite", Controle::Renseigne)};
  }
};

// Exemption thresholds of the patient's share, in euros, by zone.
struct Seuil {
  static constexpr unsigned IDENTIFIANT = 10;
  static constexpr const char* NOM = "Seuil";
  DateBrute dateDebut;
  DateBrute dateFin;
  double metropole = 0.0;
  double antilles = 0.0;
  double reunion = 0.0;
  double guyane = 0.0;
  template <class L = Seuil>
  static constexpr auto champs() {
    return std::tuple{champ(&L::dateDebut, "date debut", Controle::DateValide),
                      champ(&L::dateFin, "date de fin", Controle::DateFacultative),
                      champ(&L::metropole, "seuil metropole", Controle::Positif),
                      champ(&L::antilles, "seuil antilles", Controle::Positif),
                      champ(&L::reunion, "seuil reunion", Controle::Positif),
                      champ(&L::guyane, "seuil guyane", Controle::Positif)};
  }
};

// Funds with their holidays; fund 000 holds the national ones.
struct JourFerieCaisse {
  static constexpr unsigned IDENTIFIANT = 11;
  static constexpr const char* NOM = "JourFerieCaisse";
  CodeFixe<3> caisse;
  Plage<12> jours;
  template <class L = JourFerieCaisse>
  static constexpr auto champs() {
    return std::tuple{champ(&L::caisse, "code caisse", Controle::Renseigne),
                      champ(&L::jours, "jours feries")};
  }
};

struct JourFerieListe {
  static constexpr unsigned IDENTIFIANT = 12;
  static constexpr const char* NOM = "JourFerieListe";
  DateBrute jour;
  char typeJour = ' ';
  DateBrute dateDebut;
  DateBrute dateFin;
  template <class L = JourFerieListe>
  static constexpr auto champs() {
    return std::tuple{champ(&L::jour, "jour ferie", Controle::DateValide),
                      champ(&L::typeJour, "type de jour", Controle::Octet),
                      champ(&L::dateDebut, "date debut", Controle::DateValide),
                      champ(&L::dateFin, "date de fin", Controle::DateFacultative)};
  }
};

// Reductions for non-agreed professionals: flat amount in euros, rate.
struct ReductionNonConventionne {
  static constexpr unsigned IDENTIFIANT = 13;
  static constexpr const char* NOM = "ReductionNonConventionne";
  DateBrute dateDebut;
  DateBrute dateFin;
  double forfait = 0.0;
  double coefficient = 0.0;
  template <class L = ReductionNonConventionne>
  static constexpr auto champs() {
    return std::tuple{champ(&L::dateDebut, "date debut", Controle::DateValide),
                      champ(&L::dateFin, "date de fin", Controle::DateFacultative),
                      champ(&L::forfait, "forfait", Controle::Positif),
                      champ(&L::coefficient, "coefficient", Controle::Positif)};
  }
};

// Grouping codes.
struct CodeRegroupement {
  static constexpr unsigned IDENTIFIANT = 14;
  static constexpr const char* NOM = "CodeRegroupement";
  CodeFixe<3> code;
  DateBrute dateDebut;
  DateBrute dateFin;
  template <class L = CodeRegroupement>
  static constexpr auto champs() {
    return std::tuple{champ(&L::code, "code regroupement", Controle::Renseigne),
                      champ(&L::dateDebut, "date debut", Controle::DateValide),
                      champ(&L::dateFin, "date de fin", Controle::DateFacultative)};
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
    return std::tuple{champ(&L::prestation, "code nature de prestation", Controle::Renseigne),
                      champ(&L::specialites, "specialites")};
  }
};

struct DateObligationCodage {
  static constexpr unsigned IDENTIFIANT = 17;
  static constexpr const char* NOM = "DateObligationCodage";
  CodeFixe<2> specialite;
  DateBrute dateObligation;
  template <class L = DateObligationCodage>
  static constexpr auto champs() {
    return std::tuple{champ(&L::specialite, "code specialite", Controle::Renseigne),
                      champ(&L::dateObligation, "date d'obligation de codage", Controle::DateValide)};
  }
};

// How many modifiers of a line count in its price.
struct NombreModificateurTarifant {
  static constexpr unsigned IDENTIFIANT = 18;
  static constexpr const char* NOM = "NombreModificateurTarifant";
  DateBrute dateDebut;
  DateBrute dateFin;
  std::uint16_t nombre = 0;
  template <class L = NombreModificateurTarifant>
  static constexpr auto champs() {
    return std::tuple{champ(&L::dateDebut, "date debut", Controle::DateValide),
                      champ(&L::dateFin, "date de fin", Controle::DateFacultative),
                      champ(&L::nombre, "nombre de modificateurs tarifants")};
  }
};

// Numbered concepts: number n is line n - 1.
struct ConceptCCAM {
  static constexpr unsigned IDENTIFIANT = 19;
  static constexpr const char* NOM = "ConceptCCAM";
  Plage<20> historiques;
  template <class L = ConceptCCAM>
  static constexpr auto champs() {
    return std::tuple{champ(&L::historiques, "historiques")};
  }
};

struct HistoriqueConceptCCAM {
  static constexpr unsigned IDENTIFIANT = 20;
  static constexpr const char* NOM = "HistoriqueConceptCCAM";
  DateBrute dateDebut;
  DateBrute dateFin;
  Plage<21> valeurs;
  template <class L = HistoriqueConceptCCAM>
  static constexpr auto champs() {
    return std::tuple{champ(&L::dateDebut, "date debut", Controle::DateValide),
                      champ(&L::dateFin, "date de fin", Controle::DateFacultative),
                      champ(&L::valeurs, "valeurs")};
  }
};

struct ValeurConceptCCAM {
  static constexpr unsigned IDENTIFIANT = 21;
  static constexpr const char* NOM = "ValeurConceptCCAM";
  TexteVariable valeur;
  template <class L = ValeurConceptCCAM>
  static constexpr auto champs() {
    return std::tuple{champ(&L::valeur, "valeur de concept", Controle::Renseigne)};
  }
};

// Modifiers.
struct Modificateur {
  static constexpr unsigned IDENTIFIANT = 22;
  static constexpr const char* NOM = "Modificateur";
  char code = ' ';
  Plage<23> ages;
  Plage<24> compatibles;
  Plage<25> coherences;
  Plage<26> valeurs;
  Plage<27> modificateursOC;
  template <class L = Modificateur>
  static constexpr auto champs() {
    return std::tuple{champ(&L::code, "code modificateur", Controle::Renseigne),
                      champ(&L::ages, "historiques age"),
                      champ(&L::compatibles, "modificateurs compatibles"),
                      champ(&L::coherences, "historiques coherence"),
                      champ(&L::valeurs, "historiques valeur"),
                      champ(&L::modificateursOC, "historiques modificateur OC")};
  }
};

struct HistoriqueAgeModificateur {
  static constexpr unsigned IDENTIFIANT = 23;
  static constexpr const char* NOM = "HistoriqueAgeModificateur";
  DateBrute dateDebut;
  DateBrute dateFin;
  char uniteAgeMinimum = ' ';
  std::uint16_t ageMinimum = 0;
  char uniteAgeMaximum = ' ';
  std::uint16_t ageMaximum = 0;
  template <class L = HistoriqueAgeModificateur>
  static constexpr auto champs() {
    return std::tuple{champ(&L::dateDebut, "date debut", Controle::DateValide),
                      champ(&L::dateFin, "date de fin", Controle::DateFacultative),
                      champ(&L::uniteAgeMinimum, "unite de temps age minimum", Controle::Octet),
                      champ(&L::ageMinimum, "age minimum"),
                      champ(&L::uniteAgeMaximum, "unite de temps age maximum", Controle::Octet),
                      champ(&L::ageMaximum, "age maximum")};
  }
};

struct ModificateurCompatible {
  static constexpr unsigned IDENTIFIANT = 24;
  static constexpr const char* NOM = "ModificateurCompatible";
  char code = ' ';
  DateBrute dateEffet;
  DateBrute dateFin;
  template <class L = ModificateurCompatible>
  static constexpr auto champs() {
    return std::tuple{champ(&L::code, "code modificateur compatible", Controle::Renseigne),
                      champ(&L::dateEffet, "date d'effet", Controle::DateValide),
                      champ(&L::dateFin, "date de fin", Controle::DateFacultative)};
  }
};

struct HistoriqueCoherenceModificateur {
  static constexpr unsigned IDENTIFIANT = 25;
  static constexpr const char* NOM = "HistoriqueCoherenceModificateur";
  DateBrute dateDebut;
  DateBrute dateFin;
  char topControleCoherence = ' ';
  char topPresenceMultiple = ' ';
  template <class L = HistoriqueCoherenceModificateur>
  static constexpr auto champs() {
    return std::tuple{champ(&L::dateDebut, "date debut", Controle::DateValide),
                      champ(&L::dateFin, "date de fin", Controle::DateFacultative),
                      champ(&L::topControleCoherence, "top controle de coherence", Controle::Booleen),
                      champ(&L::topPresenceMultiple, "top presence multiple", Controle::Booleen)};
  }
};

inline constexpr const char* REFUS_TAUX_MODIFICATEUR =
    "le coefficient modificateur doit etre superieur ou egal a 1";

// Value of a modifier: flat amount in euros, rate (1 and above).
struct HistoriqueValeurModificateur {
  static constexpr unsigned IDENTIFIANT = 26;
  static constexpr const char* NOM = "HistoriqueValeurModificateur";
  DateBrute dateDebut;
  DateBrute dateFin;
  double forfait = 0.0;
  double coefficient = 0.0;
  template <class L = HistoriqueValeurModificateur>
  static constexpr auto champs() {
    return std::tuple{
        champ(&L::dateDebut, "date debut", Controle::DateValide),
        champ(&L::dateFin, "date de fin", Controle::DateFacultative),
        champ(&L::forfait, "forfait modificateur", Controle::Positif,
              "le forfait modificateur doit etre superieur ou egal a zero"),
        champ(&L::coefficient, "coefficient modificateur", Controle::AuMoinsUn, REFUS_TAUX_MODIFICATEUR)};
  }
};

struct HistoriqueModificateurOC {
  static constexpr unsigned IDENTIFIANT = 27;
  static constexpr const char* NOM = "HistoriqueModificateurOC";
  DateBrute dateDebut;
  DateBrute dateFin;
  char code = ' ';
  template <class L = HistoriqueModificateurOC>
  static constexpr auto champs() {
    return std::tuple{champ(&L::dateDebut, "date de debut", Controle::DateValide),
                      champ(&L::dateFin, "date de fin", Controle::DateFacultative),
                      champ(&L::code, "code modificateur OC", Controle::Renseigne)};
  }
};

struct Synonyme {
  static constexpr unsigned IDENTIFIANT = 29;
  static constexpr const char* NOM = "Synonyme";
  TexteVariable texte;
  template <class L = Synonyme>
  static constexpr auto champs() {
    return std::tuple{champ(&L::texte, "synonyme", Controle::Renseigne)};
  }
};

// Acts indexed under a keyword, with the search frames they are found in.
struct ActeIndexe {
  static constexpr unsigned IDENTIFIANT = 30;
  static constexpr const char* NOM = "ActeIndexe";
  CodeActe acte;
  std::uint32_t masque = 0;
  template <class L = ActeIndexe>
  static constexpr auto champs() {
    return std::tuple{champ(&L::acte, "code acte", Controle::Renseigne),
                      champ(&L::masque, "masque des champs concernes", Controle::NonNul)};
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
    return std::tuple{champ(&L::code, "code menu"), champ(&L::libelle, "libelle menu", Controle::Renseigne),
                      champ(&L::pere, "code menu pere"), champ(&L::notes, "notes menu")};
  }
};

// Code tables: number n is line n - 1.
struct Codes {
  static constexpr unsigned IDENTIFIANT = 32;
  static constexpr const char* NOM = "Codes";
  Plage<33> valeurs;
  template <class L = Codes>
  static constexpr auto champs() {
    return std::tuple{champ(&L::valeurs, "valeurs")};
  }
};

struct LibelleCode {
  static constexpr unsigned IDENTIFIANT = 33;
  static constexpr const char* NOM = "LibelleCode";
  TexteVariable code;
  TexteVariable libelle;
  template <class L = LibelleCode>
  static constexpr auto champs() {
    return std::tuple{champ(&L::code, "valeur du code", Controle::Renseigne),
                      champ(&L::libelle, "libelle du code", Controle::Renseigne)};
  }
};

// The rule catalogue, sorted by identifier.
struct InformationRegle {
  static constexpr unsigned IDENTIFIANT = 34;
  static constexpr const char* NOM = "InformationRegle";
  CodeFixe<9> identifiant;
  TexteVariable libellePrincipal;
  TexteVariable libelleSecondaire;
  char typeRegle = ' ';
  CodeFixe<10> reference;
  char indicateurForcage = ' ';
  template <class L = InformationRegle>
  static constexpr auto champs() {
    return std::tuple{champ(&L::identifiant, "identifiant de la regle", Controle::Renseigne),
                      champ(&L::libellePrincipal, "libelle principal"),
                      champ(&L::libelleSecondaire, "libelle secondaire"),
                      champ(&L::typeRegle, "type de regle", Controle::Octet),
                      champ(&L::reference, "reference CdC de la regle", Controle::Renseigne),
                      champ(&L::indicateurForcage, "indicateur de forcage", Controle::Octet)};
  }
};

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
    return std::tuple{champ(&L::acte, "code acte", Controle::Renseigne),
                      champ(&L::activite, "code activite", Controle::Renseigne),
                      champ(&L::phase, "code phase", Controle::Renseigne),
                      champ(&L::dateEffet, "date d'effet", Controle::DateValide),
                      champ(&L::valeur, "prix unitaire", Controle::Positif)};
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
    return std::tuple{champ(&L::acte, "code acte", Controle::Renseigne),
                      champ(&L::activite, "code activite", Controle::Renseigne),
                      champ(&L::phase, "code phase", Controle::Renseigne),
                      champ(&L::dateEffet, "date d'effet", Controle::DateValide),
                      champ(&L::valeur, "supplement de charges", Controle::Positif)};
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
    return std::tuple{champ(&L::acte, "code acte", Controle::Renseigne),
                      champ(&L::activite, "code activite", Controle::Renseigne),
                      champ(&L::phase, "code phase", Controle::Renseigne),
                      champ(&L::position, "position DOM"),
                      champ(&L::dateEffet, "date d'effet", Controle::DateValide),
                      champ(&L::valeur, "majoration DOM", Controle::Positif)};
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
    return std::tuple{champ(&L::code, "code association non prevue", Controle::Renseigne),
                      champ(&L::dateEffet, "date d'effet", Controle::DateValide),
                      champ(&L::valeur, "coefficient", Controle::Positif)};
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
    return std::tuple{champ(&L::position, "position seuil"),
                      champ(&L::dateEffet, "date d'effet", Controle::DateValide),
                      champ(&L::valeur, "seuil", Controle::Positif)};
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
    return std::tuple{champ(&L::code, "code modificateur", Controle::Renseigne),
                      champ(&L::dateEffet, "date d'effet", Controle::DateValide),
                      champ(&L::forfait, "forfait", Controle::Positif),
                      champ(&L::taux, "taux", Controle::AuMoinsUn, REFUS_TAUX_MODIFICATEUR)};
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
    return std::tuple{champ(&L::dateEffet, "date d'effet", Controle::DateValide),
                      champ(&L::forfait, "forfait", Controle::Positif),
                      champ(&L::taux, "taux", Controle::Positif)};
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
    return std::tuple{champ(&L::acte, "code acte", Controle::Renseigne),
                      champ(&L::activite, "code activite", Controle::Renseigne),
                      champ(&L::dateEffet, "date d'effet", Controle::DateValide),
                      champ(&L::code, "code regroupement", Controle::Renseigne)};
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
    return std::tuple{champ(&L::dateEffet, "date d'effet", Controle::DateValide),
                      champ(&L::code, "code regroupement", Controle::Renseigne),
                      champ(&L::libelle, "libelle")};
  }
};

// How many modifiers are passed on to complementary insurers.
struct NombreModificateurTransmissible {
  static constexpr unsigned IDENTIFIANT = 44;
  static constexpr const char* NOM = "NombreModificateurTransmissible";
  DateBrute dateDebut;
  DateBrute dateFin;
  std::uint16_t nombre = 0;
  template <class L = NombreModificateurTransmissible>
  static constexpr auto champs() {
    return std::tuple{champ(&L::dateDebut, "date debut", Controle::DateValide),
                      champ(&L::dateFin, "date de fin", Controle::DateFacultative),
                      champ(&L::nombre, "nombre de modificateurs transmissibles")};
  }
};

// Services that overridden rules disengage, sorted by identifier.
struct ServiceDebrayable {
  static constexpr unsigned IDENTIFIANT = 45;
  static constexpr const char* NOM = "ServiceDebrayable";
  TexteVariable identifiant;
  Plage<46> regles;
  template <class L = ServiceDebrayable>
  static constexpr auto champs() {
    return std::tuple{champ(&L::identifiant, "identifiant du service", Controle::Renseigne),
                      champ(&L::regles, "regles")};
  }
};

struct ReferenceRegleEntrainantDebrayage {
  static constexpr unsigned IDENTIFIANT = 46;
  static constexpr const char* NOM = "ReferenceRegleEntrainantDebrayage";
  CodeFixe<10> reference;
  template <class L = ReferenceRegleEntrainantDebrayage>
  static constexpr auto champs() {
    return std::tuple{champ(&L::reference, "reference de la regle", Controle::Renseigne)};
  }
};

// Rules in error, sorted: which rules they make non-verifiable.
struct ReferenceRegleEnErreur {
  static constexpr unsigned IDENTIFIANT = 47;
  static constexpr const char* NOM = "ReferenceRegleEnErreur";
  CodeFixe<10> reference;
  Plage<48> regles;
  template <class L = ReferenceRegleEnErreur>
  static constexpr auto champs() {
    return std::tuple{champ(&L::reference, "reference de la regle", Controle::Renseigne),
                      champ(&L::regles, "regles")};
  }
};

struct ReferenceRegleNonVerifiable {
  static constexpr unsigned IDENTIFIANT = 48;
  static constexpr const char* NOM = "ReferenceRegleNonVerifiable";
  CodeFixe<10> reference;
  template <class L = ReferenceRegleNonVerifiable>
  static constexpr auto champs() {
    return std::tuple{champ(&L::reference, "reference de la regle", Controle::Renseigne)};
  }
};

// Zone descriptors: super-groups. An empty function code marks a nested one.
struct DescriptifSuperGroupe {
  static constexpr unsigned IDENTIFIANT = 49;
  static constexpr const char* NOM = "DescriptifSuperGroupe";
  std::uint16_t numero = 0;
  TexteVariable nom;
  char codeFonction = ' ';
  Plage<53> fils;
  template <class L = DescriptifSuperGroupe>
  static constexpr auto champs() {
    return std::tuple{champ(&L::numero, "numero du super-groupe"),
                      champ(&L::nom, "nom du super-groupe", Controle::Renseigne),
                      champ(&L::codeFonction, "code fonction", Controle::Octet), champ(&L::fils, "fils")};
  }
};

// Zone descriptors: groups.
struct DescriptifGroupe {
  static constexpr unsigned IDENTIFIANT = 50;
  static constexpr const char* NOM = "DescriptifGroupe";
  std::uint16_t numero = 0;
  Plage<51> listeChamps;
  template <class L = DescriptifGroupe>
  static constexpr auto champs() {
    return std::tuple{champ(&L::numero, "numero du groupe"), champ(&L::listeChamps, "champs")};
  }
};

// Zone descriptors: fields.
struct DescriptifChamp {
  static constexpr unsigned IDENTIFIANT = 51;
  static constexpr const char* NOM = "DescriptifChamp";
  char format = ' ';
  char type = ' ';
  std::uint16_t tailleMin = 0;
  std::uint16_t tailleMax = 0;
  Plage<52> valeurs;
  template <class L = DescriptifChamp>
  static constexpr auto champs() {
    return std::tuple{champ(&L::format, "format attendu", Controle::Octet),
                      champ(&L::type, "type de donnee", Controle::Octet),
                      champ(&L::tailleMin, "taille minimale"), champ(&L::tailleMax, "taille maximale"),
                      champ(&L::valeurs, "valeurs autorisees")};
  }
};

struct ValeurAutorisee {
  static constexpr unsigned IDENTIFIANT = 52;
  static constexpr const char* NOM = "ValeurAutorisee";
  TexteVariable valeur;
  template <class L = ValeurAutorisee>
  static constexpr auto champs() {
    return std::tuple{champ(&L::valeur, "de la valeur")};
  }
};

// Zone descriptors: children of super-groups; position 65535 means none.
struct FilsSuperGroupe {
  static constexpr unsigned IDENTIFIANT = 53;
  static constexpr const char* NOM = "FilsSuperGroupe";
  std::uint16_t groupe = 0;
  std::uint16_t superGroupe = 0;
  std::uint16_t minimum = 0;
  std::uint16_t maximum = 0;
  template <class L = FilsSuperGroupe>
  static constexpr auto champs() {
    return std::tuple{champ(&L::groupe, "position du groupe fils"),
                      champ(&L::superGroupe, "position du super-groupe fils"),
                      champ(&L::minimum, "nombre minimum d'occurrences"),
                      champ(&L::maximum, "nombre maximum d'occurrences")};
  }
};

// Priorities of forcing indicators, sorted by indicator.
struct PrioriteIndicateurForcage {
  static constexpr unsigned IDENTIFIANT = 54;
  static constexpr const char* NOM = "PrioriteIndicateurForcage";
  char indicateur = ' ';
  std::uint16_t priorite = 0;
  template <class L = PrioriteIndicateurForcage>
  static constexpr auto champs() {
    return std::tuple{champ(&L::indicateur, "indicateur de forcage", Controle::Octet),
                      champ(&L::priorite, "priorite")};
  }
};

// CdC references of rules, sorted by rule identifier.
struct ReferenceCdC {
  static constexpr unsigned IDENTIFIANT = 55;
  static constexpr const char* NOM = "ReferenceCdC";
  CodeFixe<10> identifiant;
  CodeFixe<10> reference;
  template <class L = ReferenceCdC>
  static constexpr auto champs() {
    return std::tuple{champ(&L::identifiant, "identifiant de la regle", Controle::Renseigne),
                      champ(&L::reference, "reference CdC de la regle", Controle::Renseigne)};
  }
};

// Exceptions to the priorities, sorted by the new indicator.
struct ExceptionPrioriteIndicateur {
  static constexpr unsigned IDENTIFIANT = 56;
  static constexpr const char* NOM = "ExceptionPrioriteIndicateur";
  char indicateur = ' ';
  Plage<57> valeurs;
  template <class L = ExceptionPrioriteIndicateur>
  static constexpr auto champs() {
    return std::tuple{champ(&L::indicateur, "indicateur a combiner", Controle::Octet),
                      champ(&L::valeurs, "exceptions")};
  }
};

struct ValeurException {
  static constexpr unsigned IDENTIFIANT = 57;
  static constexpr const char* NOM = "ValeurException";
  char indicateurPresent = ' ';
  char indicateurRetourne = ' ';
  template <class L = ValeurException>
  static constexpr auto champs() {
    return std::tuple{champ(&L::indicateurPresent, "indicateur deja present", Controle::Octet),
                      champ(&L::indicateurRetourne, "indicateur retourne", Controle::Octet)};
  }
};

// Keywords, sorted, in canonical form.
struct MotCle {
  static constexpr unsigned IDENTIFIANT = 58;
  static constexpr const char* NOM = "MotCle";
  TexteVariable motCle;
  TexteVariable formeCanonique;
  PlageLongue<29> synonymes;
  PlageLongue<30> actes;
  template <class L = MotCle>
  static constexpr auto champs() {
    return std::tuple{champ(&L::motCle, "mot cle", Controle::Renseigne),
                      champ(&L::formeCanonique, "forme canonique", Controle::Renseigne),
                      champ(&L::synonymes, "synonymes"), champ(&L::actes, "actes indexes")};
  }
};

// How many acts an association may hold.
struct NombreActeAssociation {
  static constexpr unsigned IDENTIFIANT = 59;
  static constexpr const char* NOM = "NombreActeAssociation";
  DateBrute dateDebut;
  DateBrute dateFin;
  std::uint16_t nombre = 0;
  template <class L = NombreActeAssociation>
  static constexpr auto champs() {
    return std::tuple{champ(&L::dateDebut, "date debut", Controle::DateValide),
                      champ(&L::dateFin, "date de fin", Controle::DateFacultative),
                      champ(&L::nombre, "nombre d'actes dans une association")};
  }
};

using Catalogue =
    std::tuple<Index, AssociationNonPrevue, HistoriqueAssociationNonPrevue, RegleTarifaire,
               HistoriqueRegleTarifaire, Specialite, HistoriqueSpecialite, ClasseSpecialite,
               HistoriqueClasseSpecialite, SpecialiteDansClasse, Seuil, JourFerieCaisse, JourFerieListe,
               ReductionNonConventionne, CodeRegroupement, ObligationCodage, DateObligationCodage,
               NombreModificateurTarifant, ConceptCCAM, HistoriqueConceptCCAM, ValeurConceptCCAM,
               Modificateur, HistoriqueAgeModificateur, ModificateurCompatible,
               HistoriqueCoherenceModificateur, HistoriqueValeurModificateur, HistoriqueModificateurOC,
               Synonyme, ActeIndexe, Arborescence, Codes, LibelleCode, InformationRegle,
               ModificationPrixUnitaire, ModificationSupplementCharge, ModificationMajorationDOM,
               ModificationRegleAssociationNonPrevue, ModificationSeuil, ModificationModificateur,
               ModificationNonConventionne, ModificationCodeRegroupement, ModificationNouveauCodeRegroupement,
               NombreModificateurTransmissible, ServiceDebrayable, ReferenceRegleEntrainantDebrayage,
               ReferenceRegleEnErreur, ReferenceRegleNonVerifiable, DescriptifSuperGroupe, DescriptifGroupe,
               DescriptifChamp, ValeurAutorisee, FilsSuperGroupe, PrioriteIndicateurForcage, ReferenceCdC,
               ExceptionPrioriteIndicateur, ValeurException, MotCle, NombreActeAssociation>;

}  // namespace noxlux

#endif
