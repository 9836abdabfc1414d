// A store built in memory: every table there, empty until a test fills it, and acts in their places.
#ifndef NOXLUX_TESTS_REQUETES_MAGASIN_ESSAI_H
#define NOXLUX_TESTS_REQUETES_MAGASIN_ESSAI_H

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "basics/trace.h"
#include "referent/lecture_donnees.h"
#include "referent/modification_donnees.h"

namespace noxlux {

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
  MagasinEssai()
      : repertoire(::testing::TempDir() + "requetes_" + std::to_string(::getpid()) + "/"),
        lecture(&referentiel),
        modification(&referentiel) {
    std::filesystem::create_directories(repertoire);
    referentiel.repertoire = repertoire;
    creerTables(referentiel);
  }
  ~MagasinEssai() override { std::filesystem::remove_all(repertoire); }

  static void creerTables(Referentiel& magasin) {
    [&]<class... L>(std::type_identity<std::tuple<L...>>) {
      ((magasin.tables[L::IDENTIFIANT] = std::make_unique<Table>(std::vector<L>{})), ...);
    }(std::type_identity<Catalogue>{});
  }

  template <class L>
  void poser(std::vector<L> lignes) {
    referentiel.lignes<L>() = std::move(lignes);
  }

  // Adds an act of one activity "1" with one phase "0". Acts come in the order of their codes.
  NiveauActe& poserActe(const char* code) {
    auto acte = std::make_unique<NiveauActe>();
    acte->codeStructure = CodeActe(code);
    acte->libelleCourt = TexteVariable("court");
    acte->libelleLong = TexteVariable("long");
    acte->typeActe = '1';
    acte->dateCreation = jour(20050301);
    acte->historiques.resize(1);
    acte->historiques[0].dateEffet = jour(20050301);
    acte->historiques[0].admissionRemboursement = '1';
    NiveauActivite activite;
    activite.codeActivite = '1';
    activite.historiques.resize(1);
    activite.historiques[0].dateEffet = jour(20050301);
    activite.historiques[0].categorieMedicale = CodeFixe<2>("01");
    activite.historiques[0].codeRegroupement = CodeFixe<3>("ADC");
    NiveauPhase phase;
    phase.codePhase = '0';
    phase.historiques = {{jour(20200601), 30.0, 3.0, {1.0, 1.1, 1.2, 1.3}},
                         {jour(20150101), 20.0, 2.0, {1.0, 1.0, 1.0, 1.0}},
                         {jour(20050301), 10.0, 1.0, {1.0, 1.0, 1.0, 1.0}}};
    activite.phases.push_back(std::move(phase));
    acte->activites.push_back(std::move(activite));
    NiveauActe& pose = *acte;
    referentiel.lignes<Index>().push_back({CodeActe(code), 0});
    referentiel.actes.push_back({std::move(acte), false});
    return pose;
  }

  // The whole content of a store, as its dump shows it.
  std::string contenu(const Referentiel& magasin) const {
    const std::string nom = repertoire + "dump.txt";
    constexpr unsigned short MODULE_LIBRE = 5;
    EXPECT_EQ(Trace::activer(nom.c_str(), "w", MODULE_LIBRE, 3), NOX_CR_OK);
    magasin.dump(MODULE_LIBRE);
    Trace::activer(nom.c_str(), "w", MODULE_LIBRE, 0);
    std::ostringstream texte;
    texte << std::ifstream(nom).rdbuf();
    EXPECT_GT(texte.str().size(), 1000U);
    return texte.str();
  }
  std::string contenu() const { return contenu(referentiel); }

  std::string repertoire;
  Referentiel referentiel;
  LectureDonnees lecture;
  ModificationDonnees modification;
};

}  // namespace noxlux

#endif
