// The descriptors that input zones are checked against.
#ifndef NOXLUX_TABLES_CATALOGUE_ZONES_H
#define NOXLUX_TABLES_CATALOGUE_ZONES_H

#include "tables/ligne_table.h"

namespace noxlux {

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
    return std::tuple{champ(&L::numero, "numero", "numero du super-groupe"),
                      champ(&L::nom, "nom", "nom du super-groupe", Controle::Renseigne),
                      champ(&L::codeFonction, "fonction", "code fonction", Controle::Octet),
                      champ(&L::fils, facultatif("fils"), "fils")};
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
    return std::tuple{champ(&L::groupe, facultatif("groupe"), "position du groupe fils"),
                      champ(&L::superGroupe, facultatif("super_groupe"), "position du super-groupe fils"),
                      champ(&L::minimum, "min", "nombre minimum d'occurrences"),
                      champ(&L::maximum, "max", "nombre maximum d'occurrences")};
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
    return std::tuple{champ(&L::numero, "numero", "numero du groupe"),
                      champ(&L::listeChamps, "champs", "champs")};
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
    return std::tuple{champ(&L::format, facultatif("format"), "format attendu", Controle::Octet),
                      champ(&L::type, "type", "type de donnee", Controle::Octet),
                      champ(&L::tailleMin, facultatif("min"), "taille minimale"),
                      champ(&L::tailleMax, facultatif("max"), "taille maximale"),
                      champ(&L::valeurs, facultatif("valeurs"), "valeurs autorisees")};
  }
};

struct ValeurAutorisee {
  static constexpr unsigned IDENTIFIANT = 52;
  static constexpr const char* NOM = "ValeurAutorisee";
  TexteVariable valeur;
  template <class L = ValeurAutorisee>
  static constexpr auto champs() {
    return std::tuple{champ(&L::valeur, "valeur", "de la valeur")};
  }
};

}  // namespace noxlux

#endif
