// The rules: what each is called, what its errors keep from being checked, what overriding it does.
#ifndef NOXLUX_TABLES_CATALOGUE_REGLES_H
#define NOXLUX_TABLES_CATALOGUE_REGLES_H

#include "tables/ligne_table.h"

namespace noxlux {

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
    return std::tuple{
        champ(&L::identifiant, "identifiant", "identifiant de la regle", Controle::Renseigne),
        champ(&L::libellePrincipal, "libelle", "libelle principal"),
        champ(&L::libelleSecondaire, facultatif("detail"), "libelle secondaire"),
        champ(&L::typeRegle, "niveau", "type de regle", Controle::Octet),
        champ(&L::reference, "reference", "reference CdC de la regle", Controle::Renseigne),
        champ(&L::indicateurForcage, facultatif("forcage"), "indicateur de forcage", Controle::Octet)};
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
    return std::tuple{champ(&L::identifiant, "identifiant", "identifiant de la regle", Controle::Renseigne),
                      champ(&L::reference, "reference", "reference CdC de la regle", Controle::Renseigne)};
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
    return std::tuple{champ(&L::reference, "reference", "reference de la regle", Controle::Renseigne),
                      champ(&L::regles, "regles", "regles")};
  }
};

struct ReferenceRegleNonVerifiable {
  static constexpr unsigned IDENTIFIANT = 48;
  static constexpr const char* NOM = "ReferenceRegleNonVerifiable";
  CodeFixe<10> reference;
  template <class L = ReferenceRegleNonVerifiable>
  static constexpr auto champs() {
    return std::tuple{champ(&L::reference, "reference", "reference de la regle", Controle::Renseigne)};
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
    return std::tuple{champ(&L::identifiant, "identifiant", "identifiant du service", Controle::Renseigne),
                      champ(&L::regles, "regles", "regles")};
  }
};

struct ReferenceRegleEntrainantDebrayage {
  static constexpr unsigned IDENTIFIANT = 46;
  static constexpr const char* NOM = "ReferenceRegleEntrainantDebrayage";
  CodeFixe<10> reference;
  template <class L = ReferenceRegleEntrainantDebrayage>
  static constexpr auto champs() {
    return std::tuple{champ(&L::reference, "reference", "reference de la regle", Controle::Renseigne)};
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
    return std::tuple{champ(&L::indicateur, "indicateur", "indicateur de forcage", Controle::Octet),
                      champ(&L::priorite, "priorite", "priorite")};
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
    return std::tuple{champ(&L::indicateur, "indicateur", "indicateur a combiner", Controle::Octet),
                      champ(&L::valeurs, "exceptions", "exceptions")};
  }
};

struct ValeurException {
  static constexpr unsigned IDENTIFIANT = 57;
  static constexpr const char* NOM = "ValeurException";
  char indicateurPresent = ' ';
  char indicateurRetourne = ' ';
  template <class L = ValeurException>
  static constexpr auto champs() {
    return std::tuple{champ(&L::indicateurPresent, "present", "indicateur deja present", Controle::Octet),
                      champ(&L::indicateurRetourne, "resultat", "indicateur retourne", Controle::Octet)};
  }
};

}  // namespace noxlux

#endif
