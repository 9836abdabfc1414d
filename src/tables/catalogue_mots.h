// Labels of codes, numbered concepts, and the keywords that acts are found by.
#ifndef NOXLUX_TABLES_CATALOGUE_MOTS_H
#define NOXLUX_TABLES_CATALOGUE_MOTS_H

#include "tables/ligne_table.h"

namespace noxlux {

// Code tables: number n is line n - 1.
struct Codes {
  static constexpr unsigned IDENTIFIANT = 32;
  static constexpr const char* NOM = "Codes";
  Plage<33> valeurs;
  template <class L = Codes>
  static constexpr auto champs() {
    return std::tuple{champ(&L::valeurs, "valeurs", "valeurs")};
  }
};

struct LibelleCode {
  static constexpr unsigned IDENTIFIANT = 33;
  static constexpr const char* NOM = "LibelleCode";
  TexteVariable code;
  TexteVariable libelle;
  template <class L = LibelleCode>
  static constexpr auto champs() {
    return std::tuple{champ(&L::code, "code", "valeur du code", Controle::Renseigne),
                      champ(&L::libelle, "libelle", "libelle du code", Controle::Renseigne)};
  }
};

// Numbered concepts: number n is line n - 1.
struct ConceptCCAM {
  static constexpr unsigned IDENTIFIANT = 19;
  static constexpr const char* NOM = "ConceptCCAM";
  Plage<20> historiques;
  template <class L = ConceptCCAM>
  static constexpr auto champs() {
    return std::tuple{champ(&L::historiques, "historiques", "historiques")};
  }
};

struct HistoriqueConceptCCAM {
  static constexpr unsigned IDENTIFIANT = 20;
  static constexpr const char* NOM = "HistoriqueConceptCCAM";
  DateBrute debut;
  DateBrute fin;
  Plage<21> valeurs;
  template <class L = HistoriqueConceptCCAM>
  static constexpr auto champs() {
    return periode<L>(champ(&L::valeurs, "valeurs", "valeurs"));
  }
};

struct ValeurConceptCCAM {
  static constexpr unsigned IDENTIFIANT = 21;
  static constexpr const char* NOM = "ValeurConceptCCAM";
  TexteVariable valeur;
  template <class L = ValeurConceptCCAM>
  static constexpr auto champs() {
    return std::tuple{champ(&L::valeur, "valeur", "valeur de concept", Controle::Renseigne)};
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
    return std::tuple{champ(&L::motCle, "mot", "mot cle", Controle::Renseigne),
                      champ(&L::formeCanonique, "forme_canonique", "forme canonique", Controle::Renseigne),
                      champ(&L::synonymes, "synonymes", "synonymes"),
                      champ(&L::actes, "actes", "actes indexes")};
  }
};

struct Synonyme {
  static constexpr unsigned IDENTIFIANT = 29;
  static constexpr const char* NOM = "Synonyme";
  TexteVariable texte;
  template <class L = Synonyme>
  static constexpr auto champs() {
    return std::tuple{champ(&L::texte, "mot", "synonyme", Controle::Renseigne)};
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
    return std::tuple{champ(&L::acte, "acte", "code acte", Controle::Renseigne),
                      champ(&L::masque, "masque", "masque des champs concernes", Controle::NonNul)};
  }
};

}  // namespace noxlux

#endif
