// A store built in memory: every table there, empty until a test fills it, and acts in their places.
#ifndef NOXLUX_TESTS_REQUETES_MAGASIN_ESSAI_H
#define NOXLUX_TESTS_REQUETES_MAGASIN_ESSAI_H

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "basics/trace.h"
#include "referent/lecture_donnees.h"
#include "referent/modification_donnees.h"

namespace noxlux {

inline const Code ACTE("HBJD001");
inline const Code UN("1");
inline const Code ZERO("0");

inline DateBrute jour(unsigned aaaammjj) {
  return {static_cast<std::uint16_t>(aaaammjj / 10000), static_cast<std::uint8_t>(aaaammjj / 100 % 100),
          static_cast<std::uint8_t>(aaaammjj % 100)};
}
inline Date date(unsigned aaaammjj) { return Date(jour(aaaammjj)); }
constexpr unsigned OUVERTE = 0;

inline std::vector<std::string> textes(const TypeListe<Code>& liste) {
  std::vector<std::string> resultat;
  for (const Code& code : liste) {
    resultat.emplace_back(code.vue());
  }
  return resultat;
}
inline std::vector<std::string> textes(const TypeListe<Texte>& liste) {
  std::vector<std::string> resultat;
  for (const Texte& texte : liste) {
    resultat.emplace_back(texte.vue());
  }
  return resultat;
}
using Textes = std::vector<std::string>;

// A list that was not empty before the question.
inline ListeCodes listeOccupee() {
  ListeCodes liste;
  liste.ajouterElement(Code("AVANT"));
  return liste;
}

template <class T>
ListeCompacte<T> compacte(const std::vector<T>& valeurs) {
  return ListeCompacte<T>(std::span<const T>(valeurs));
}

class MagasinEssai : public ::testing::Test {
 protected:
  MagasinEssai();
  ~MagasinEssai() override;

  static void creerTables(Referentiel& magasin);

  template <class L>
  void poser(std::vector<L> lignes) {
    referentiel.lignes<L>() = std::move(lignes);
  }

  // Adds an act of one activity "1" with one phase "0". Acts come in the order of their codes.
  NiveauActe& poserActe(const char* code);

  // The whole content of a store, as its dump shows it.
  std::string contenu(const Referentiel& magasin) const;
  std::string contenu() const { return contenu(referentiel); }

  std::string repertoire;
  Referentiel referentiel;
  LectureDonnees lecture;
  ModificationDonnees modification;
};

}  // namespace noxlux

#endif
