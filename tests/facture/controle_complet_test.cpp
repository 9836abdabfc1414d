// The full check: what it makes of the zone it is given, and which of the errors found it answers.
#include "interapp/fonction_controle_complet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "reference_essai.h"

namespace noxlux {
namespace {

using essai::Groupe;
using essai::numeroLigne;
using essai::Zone;

// An invoice of ordinary prestations, which a case then spoils.
Groupe entete(const char* specialite = "01") {
  return {1110, {"991234567", "8", "", "", "1", specialite, "", "", "", "", "", "", "19800115"}};
}
Groupe prestation(unsigned numero, const char* code = "C") {
  return {1610,
          {std::to_string(numero), "20240301", "", code, "", "1", "", "", "", "", "2500", "2500", "070"}};
}
Groupe trajet(unsigned groupe, unsigned numero, const char* date = "20240301") {
  return {groupe, {std::to_string(numero), date, "ID", "", "", "", "", "070", "", "", ""}};
}
Groupe complement(unsigned groupe, unsigned numero, std::vector<std::string> suite) {
  suite.insert(suite.begin(), std::to_string(numero));
  return {groupe, std::move(suite)};
}
Groupe acte(unsigned numero, std::vector<std::string> modificateurs = {"", "", "", ""}) {
  std::vector<std::string> champs{"HHQE002", "", "1", "0"};
  champs.insert(champs.end(), modificateurs.begin(), modificateurs.end());
  champs.insert(champs.end(), {"", "", "", ""});
  return complement(2100, numero, std::move(champs));
}
Groupe dents(unsigned numero, std::vector<std::string> codes) {
  codes.resize(16);
  return complement(2200, numero, std::move(codes));
}
Zone facture(const Zone& lignes, const char* specialite = "01") {
  Zone zone{entete(specialite), {1511, {""}}};
  zone.insert(zone.end(), lignes.begin(), lignes.end());
  zone.push_back({3500, {"751"}});
  return zone;
}
Zone longue(unsigned nombre, const Groupe& derniere) {
  Zone lignes;
  for (unsigned numero = 1; numero < nombre; ++numero) {
    lignes.push_back(prestation(numero));
  }
  lignes.push_back(derniere);
  return facture(lignes);
}
Zone sans(Zone zone, unsigned groupe) {
  std::erase_if(zone, [groupe](const Groupe& candidat) { return candidat.identifiant == groupe; });
  return zone;
}
Zone avec(Zone zone, std::size_t position, const Groupe& groupe) {
  zone.insert(zone.begin() + static_cast<std::ptrdiff_t>(position), groupe);
  return zone;
}

struct Reponse {
  unsigned code = 0;
  unsigned short niveau = 0;
  Zone zone;
};

Reponse controler(const std::string& octetsLus) {
  essai::ReferenceEssai& reference = essai::ReferenceEssai::unique();
  const SuperGroupe* superGroupe = nullptr;
  EXPECT_EQ(reference.interface.lireSuperGroupeControleComplet(superGroupe), NOX_CR_OK);
  std::vector<byte> octets(octetsLus.begin(), octetsLus.end());
  noxlux::Zone zin(octets.data(), static_cast<std::uint32_t>(octets.size()));
  FonctionControleComplet fonction(&zin, superGroupe, &reference.reglementation, &reference.tarification);
  Reponse reponse;
  ZoneSortie sortie;
  reponse.code = fonction.executer(sortie, reponse.niveau);
  reponse.zone = essai::lireSortie(sortie);
  return reponse;
}
Reponse controler(const Zone& zone) { return controler(::essai::ecrire(zone)); }

TEST(ControleComplet, litLaFacture) {
  const Groupe ligne = prestation(1);
  const Zone simple = facture({ligne});
  Zone sansNaissance = simple;
  sansNaissance[0].champs[12].clear();
  const Groupe baseAMO = complement(2020, 1, {"2500"});
  struct Cas {
    const char* quoi;
    Zone zone;
    unsigned code;
  };
  for (const Cas& cas : std::vector<Cas>{
           {"simple", simple, 0},
           {"aucune ligne", facture({}), 0},
           {"remplaçant", avec(simple, 1, {1150, {"997654321", "1", "champ de plus"}}), 0},
           {"maternité", avec(sans(simple, 1511), 1, {1512, {""}}), 0},
           {"sans naissance", sansNaissance, 0x900D},
           {"sans nature", sans(simple, 1511), NOX_CR_NATURE_ASSURANCE},
           {"deux natures", avec(simple, 2, {1514, {""}}), NOX_CR_NATURE_ASSURANCE},
           {"deux natures, à rebours", avec(simple, 1, {1513, {""}}), NOX_CR_NATURE_ASSURANCE},
           {"même nature deux fois", avec(simple, 2, {1511, {""}}), NOX_CR_NATURE_ASSURANCE},
           {"sans caisse", sans(simple, 3500), 0xB000 + 3500},
           {"groupe inconnu", avec(simple, 3, {9999, {"x"}}), 0},
           {"groupe après la fin", avec(simple, 4, {9999, {"x"}}), 0},
           {"champ refusé", facture({{1610, {"1", "20240230", "", "C", "", "", "", "", "", "", "", "", ""}}}),
            0x9000 + 16},
           {"champ manquant", facture({{1610, {"1", "20240301"}}}), 0xA800 + 3},
           {"acte sans base AMO", facture({ligne, acte(1)}), NOX_CR_BASE_AMO_ABSENTE},
           {"trou des modificateurs", facture({ligne, baseAMO, acte(1, {"A", "", "B", ""})}),
            NOX_CR_MODIFICATEURS},
           {"dent en double", facture({ligne, baseAMO, acte(1), dents(1, {"11", "11"})}), NOX_CR_DENTS},
           {"dents sans acte", facture({ligne, dents(1, {"11", "11"})}), NOX_CR_DENTS},
           {"numéro de 1820", facture({ligne, prestation(2), complement(1820, 1, {"0"})}), 0xE002},
           {"numéro de 2020", facture({ligne, complement(2020, 2, {"2500"})}), 0xE001},
           {"numéro de 3530", facture({ligne, complement(3530, 7, {"R211"})}), 0xE001},
           {"trajets", facture({ligne, trajet(1620, 2), trajet(1630, 3), complement(1820, 3, {"0"})}), 0},
           {"trajet un autre jour", facture({ligne, trajet(1620, 2, "20240302")}), NOX_CR_DATE_DEPLACEMENT},
           {"200 lignes", longue(200, prestation(200)), 0},
           {"200 lignes, un trajet", longue(200, trajet(1630, 200)), 0},
           {"201 lignes", longue(201, prestation(201)), NOX_CR_TROP_DE_GROUPES},
           {"201 lignes, un trajet", longue(201, trajet(1620, 201)), NOX_CR_TROP_DE_GROUPES},
       }) {
    const Reponse reponse = controler(cas.zone);
    EXPECT_EQ(reponse.code, cas.code) << cas.quoi;
    EXPECT_EQ(reponse.niveau, 0) << cas.quoi;
    EXPECT_EQ(reponse.zone, Zone{}) << cas.quoi;
  }
}

TEST(ControleComplet, taitCeQuiEstOutrepasse) {
  // K must be coded for that speciality: overridable. ZZZ is no code at all: not overridable.
  const auto outrepasser = [](unsigned numero, const char* regle) {
    return complement(3530, numero, {regle});
  };
  struct Cas {
    Zone zone;
    unsigned short niveau;
    std::vector<std::string> erreurs;  // reference and lines
    std::vector<std::string> forcages;
  };
  Zone outrepasseeCinqMilleFois{prestation(1, "K")};
  outrepasseeCinqMilleFois.insert(outrepasseeCinqMilleFois.end(), 4999, outrepasser(1, "R500"));
  outrepasseeCinqMilleFois.push_back(outrepasser(1, "R211"));
  const auto chirurgien = [](const Zone& lignes) { return facture(lignes, "04"); };
  for (const Cas& cas : std::vector<Cas>{
           {chirurgien({prestation(1, "K"), prestation(2, "K")}), 1, {"R211/1", "R211/2"}, {"1E", "2E"}},
           {chirurgien({prestation(1, "K"), outrepasser(1, "R211"), prestation(2, "K")}),
            1,
            {"R211/2"},
            {"1E", "2E"}},
           {chirurgien({prestation(1, "K"), outrepasser(1, "R211"), outrepasser(1, "R500"),
                        prestation(2, "K"), outrepasser(2, "R211")}),
            0,
            {},
            {"1E", "2E"}},
           {chirurgien(outrepasseeCinqMilleFois), 0, {}, {"1E"}},
           {chirurgien({prestation(1, "K"), outrepasser(1, "R170")}), 1, {"R211/1"}, {"1E"}},
           {chirurgien({prestation(1, "ZZZ"), outrepasser(1, "R170")}), 2, {"R170/1"}, {}},
           {chirurgien({prestation(1, "ZZZ"), prestation(2, "K")}), 2, {"R170/1", "R211/2"}, {"2E"}},
       }) {
    SCOPED_TRACE(testing::PrintToString(cas.zone));
    const Reponse reponse = controler(cas.zone);
    EXPECT_EQ(reponse.code, 0U);
    EXPECT_EQ(reponse.niveau, cas.niveau);
    std::vector<std::string> erreurs;
    std::vector<std::string> forcages;
    for (const Groupe& groupe : reponse.zone) {
      if (groupe.identifiant == 2000) {
        forcages.push_back(std::to_string(std::stoi(groupe.champs.at(0))) + groupe.champs.at(1));
        EXPECT_TRUE(erreurs.empty());
      } else {
        ASSERT_EQ(groupe.identifiant, 3520U);
        ASSERT_EQ(groupe.champs.size(), 6U);
        EXPECT_EQ(groupe.champs[4], numeroLigne(1));
        erreurs.push_back(groupe.champs[0] + "/" + std::to_string(std::stoi(groupe.champs[5])));
        EXPECT_EQ(groupe.champs[1], groupe.champs[0] == "R170" ? "N" : "O");
        EXPECT_EQ(groupe.champs[2], groupe.champs[0] == "R170" ? "" : "E");
        EXPECT_FALSE(groupe.champs[3].empty());
      }
    }
    EXPECT_EQ(erreurs, cas.erreurs);
    EXPECT_EQ(forcages, cas.forcages);
  }
}

// Two acts that no association plans: one error, over both lines.
TEST(ControleComplet, gardeUneErreurQuUneLigneNOutrepassePas) {
  const auto reponsesR650 = [](std::initializer_list<unsigned> outrepassees) {
    Zone lignes;
    for (unsigned numero = 1; numero <= 2; ++numero) {
      Groupe ligneActe = acte(numero);
      ligneActe.champs[1] = numero == 1 ? "HHQE002" : "LMMA012";
      lignes.insert(lignes.end(), {prestation(numero, "ATM"), complement(2020, numero, {"2500"}), ligneActe});
      if (std::ranges::find(outrepassees, numero) != std::end(outrepassees)) {
        lignes.push_back(complement(3530, numero, {"R650"}));
      }
    }
    const Reponse reponse = controler(facture(lignes, "04"));
    EXPECT_EQ(reponse.code, 0U);
    std::vector<std::vector<std::string>> concernees;
    for (const Groupe& groupe : reponse.zone) {
      if (groupe.identifiant == 3520 && groupe.champs.at(0) == "R650") {
        concernees.emplace_back(groupe.champs.begin() + 4, groupe.champs.end());
      }
    }
    return concernees;
  };
  const std::vector<std::vector<std::string>> uneErreur{{numeroLigne(2), numeroLigne(1), numeroLigne(2)}};
  EXPECT_EQ(reponsesR650({}), uneErreur);
  EXPECT_EQ(reponsesR650({1}), uneErreur);
  EXPECT_EQ(reponsesR650({2}), uneErreur);
  EXPECT_TRUE(reponsesR650({1, 2}).empty());
}

// Every invoice of some groups in any order, from none to five of them: the descriptors keep a travel line
// that no prestation came before from being read, so that it can be neither first nor attached to nothing.
TEST(ControleComplet, neLitPasDeTrajetSansLigne) {
  const auto lignes = [](const Zone& groupes) {
    // Numbers follow the lines that are read.
    Zone zone = facture({});
    unsigned numero = 0;
    for (Groupe groupe : groupes) {
      numero += groupe.identifiant == 1610 || (numero > 0 && groupe.identifiant <= 1630) ? 1U : 0U;
      groupe.champs[0] = std::to_string(numero);
      zone.insert(zone.end() - 1, std::move(groupe));
    }
    return zone;
  };
  const Groupe possibles[] = {prestation(0), trajet(1620, 0), trajet(1630, 0), complement(1820, 0, {"0"}),
                              complement(3530, 0, {"R211"})};
  std::vector<Zone> suites{{}};
  std::size_t sansLigne = 0;
  for (std::size_t i = 0; i < suites.size(); ++i) {
    const Zone suite = suites[i];
    const unsigned code = controler(lignes(suite)).code;
    const bool aLigne = std::ranges::any_of(suite, [](const Groupe& g) { return g.identifiant == 1610; });
    EXPECT_TRUE(code == 0 || (aLigne && code == 0xB000 + 1820)) << testing::PrintToString(suite);
    sansLigne += aLigne ? 0U : 1U;
    for (const Groupe& groupe : possibles) {
      if (suite.size() < 5) {
        suites.push_back(suite);
        suites.back().push_back(groupe);
      }
    }
  }
  EXPECT_EQ(suites.size(), 1U + 5 + 25 + 125 + 625 + 3125);
  EXPECT_EQ(sansLigne, 1U + 4 + 16 + 64 + 256 + 1024);
}

// A code or an answer, no assertion.
unsigned supporter(const std::string& octets) {
  const Reponse reponse = controler(octets);
  EXPECT_TRUE(reponse.code == 0 || reponse.zone.empty());
  return reponse.code;
}
Zone complete() {
  return facture({prestation(1), complement(1820, 1, {"C"}), complement(1840, 1, {"1"}),
                  complement(1870, 1, {"997654321", "1", "01"}), complement(1880, 1, {"LIEU"}),
                  complement(2020, 1, {"2500"}), acte(1, {"F", "", "", ""}), dents(1, {"11"}),
                  complement(3530, 1, {"R850"}), trajet(1620, 2), complement(1820, 2, {"0"}), trajet(1630, 3),
                  complement(3530, 3, {"R500"}), prestation(4)});
}

TEST(ControleComplet, repondAuxGroupesOtesOuDoubles) {
  const Zone entiere = complete();
  // By place: the header, the nature, the base of an act, the travel line that an override speaks of, the
  // fund.
  const std::map<std::size_t, unsigned> OTES = {{0, 0xB000 + 1110},
                                                {1, NOX_CR_NATURE_ASSURANCE},
                                                {7, NOX_CR_BASE_AMO_ABSENTE},
                                                {13, 0xE002},
                                                {16, 0xB000 + 3500}};
  // By group: those that stand once.
  std::map<unsigned, unsigned> DOUBLES = {{1511, NOX_CR_NATURE_ASSURANCE}};
  for (const unsigned groupe : {1110U, 1820U, 1840U, 1870U, 1880U, 2020U, 2100U, 2200U}) {
    DOUBLES[groupe] = 0xB000 + groupe;
  }
  for (std::size_t i = 0; i < entiere.size(); ++i) {
    SCOPED_TRACE(entiere[i]);
    Zone otee = entiere;
    otee.erase(otee.begin() + static_cast<std::ptrdiff_t>(i));
    const auto indispensable = OTES.find(i);
    EXPECT_EQ(supporter(::essai::ecrire(otee)), indispensable == OTES.end() ? 0U : indispensable->second);
    const auto unique = DOUBLES.find(entiere[i].identifiant);
    EXPECT_EQ(supporter(::essai::ecrire(avec(entiere, i, entiere[i]))),
              unique == DOUBLES.end() ? 0U : unique->second);
  }
}

}  // namespace
}  // namespace noxlux
