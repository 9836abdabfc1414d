// Services of the function families, and the descriptors built from the reference tables.
#include "interapp/fonctions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "interapp/interface.h"
#include "magasin_essai.h"
#include "octets_essai.h"

namespace noxlux {
namespace {

// --- Input services ---

class FonctionsEssai : public Fonctions {
 public:
  using Fonctions::extraire;
  using Fonctions::extraireCode;
  using Fonctions::extraireDateNaissance;
  using Fonctions::extraireDents;
  using Fonctions::extraireModificateurs;
  using Fonctions::extraireModificateursOC;
  using Fonctions::extraireNumeroPS;
  using Fonctions::extrairePhase;
  using Fonctions::Fonctions;
  using Fonctions::ignoreChamp;
  using Fonctions::positionnerGroupeSuivant;
  using Fonctions::verifierFinDonnees;
  using Fonctions::verifierNumeroPrestation;
};

// One group 3000 of as many free fields of a type as the zone has, in a function.
class Lecture {
 public:
  Lecture(Champ::Type type, const std::vector<std::string>& champs)
      : groupe_(3000, static_cast<std::uint16_t>(champs.size())), zone_(essai::Zone{{3000, champs}}) {
    for (std::size_t i = 0; i < champs.size(); ++i) {
      EXPECT_EQ(groupe_.ajouterChamp(Champ::Format::Libre, type, 0, 0, {}), NOX_CR_OK);
    }
    EXPECT_EQ(racine_.ajouterFils(&groupe_, 1, 1), NOX_CR_OK);
  }

 private:
  Groupe groupe_;
  SuperGroupe racine_{1, "ESSAI", 1};
  ZoneEssai zone_;

 public:
  FonctionsEssai fonctions{&zone_.zone, &racine_};
};

TEST(Fonctions, listentModificateursEtDents) {
  using Champs = std::vector<std::string>;
  const auto dents = [](Champs debut) {
    debut.resize(MAX_DENTS);
    return debut;
  };
  struct Cas {
    ListeCodes (FonctionsEssai::*extraire)(CodeRetour&);
    Champs champs;
    CodeRetour code;
    const char* liste;
  };
  const auto modificateurs = &FonctionsEssai::extraireModificateurs;
  const auto numeros = &FonctionsEssai::extraireDents;
  for (const Cas& cas : std::vector<Cas>{{modificateurs, {"", "", "", ""}, 0, ""},
                                         {modificateurs, {"A", "B", "", ""}, 0, "A/B/"},
                                         {modificateurs, {"A", "A", "A", "A"}, 0, "A/A/A/A/"},
                                         {modificateurs, {"", "B", "", ""}, 0xD107, ""},
                                         {modificateurs, {"A", "", "", "D"}, 0xD107, "A/"},
                                         {modificateurs, {"A", "b", "", ""}, 0x9002, "A/"},
                                         {modificateurs, {"A", "B", "C"}, NOX_CR_FIN_ZONE, "A/B/C/"},
                                         {numeros, dents({}), 0, ""},
                                         {numeros, dents({"11", "12", "85"}), 0, "11/12/85/"},
                                         {numeros, dents({"11", "12", "11"}), 0xD108, "11/12/"},
                                         {numeros, dents({"11", "", "12"}), 0xD108, "11/"},
                                         {&FonctionsEssai::extraireModificateursOC, {"AB1"}, 0, "A/B/1/"},
                                         {&FonctionsEssai::extraireModificateursOC, {""}, 0, ""}}) {
    SCOPED_TRACE(testing::PrintToString(cas.champs));
    Lecture lecture(Champ::Type::Code, cas.champs);
    CodeRetour cr = NOX_CR_OK;
    EXPECT_EQ(joindre((lecture.fonctions.*cas.extraire)(cr)), cas.liste);
    EXPECT_EQ(cr, cas.code);
  }
}

TEST(Fonctions, lisentUnChampDuTypeVoulu) {
  struct Cas {
    Champ::Type type;
    std::string donnees;
    CodeRetour commeCode;
    CodeRetour commeNombre;
  };
  for (const Cas& cas : std::vector<Cas>{{Champ::Type::Code, "12", 0, NOX_CR_INCOHERENCE},
                                         {Champ::Type::Nombre, "12", NOX_CR_INCOHERENCE, 0},
                                         {Champ::Type::Texte, "12", NOX_CR_INCOHERENCE, NOX_CR_INCOHERENCE},
                                         {Champ::Type::Aucun, "12", 0, 0},
                                         {Champ::Type::Code, "a", 0x9001, 0x9001}}) {
    CodeRetour cr = NOX_CR_OK;
    Lecture enCode(cas.type, {cas.donnees});
    const Code code = enCode.fonctions.extraireCode(cr);
    EXPECT_EQ(cr, cas.commeCode);
    EXPECT_EQ(code.vue(), cas.type == Champ::Type::Code && cr == 0 ? "12" : "");
    cr = NOX_CR_OK;
    Lecture enNombre(cas.type, {cas.donnees});
    const Nombre nombre = enNombre.fonctions.extraire<Nombre>(cr);
    EXPECT_EQ(cr, cas.commeNombre);
    EXPECT_EQ(nombre.lireValeur(), cas.type == Champ::Type::Nombre ? 12 : 0);
  }
}

TEST(Fonctions, neFontPlusRienApresUneFaute) {
  Lecture lecture(Champ::Type::Code, {"A", "B"});
  CodeRetour cr = NOX_CR_CODE_INCONNU;
  std::uint16_t identifiant = 5;
  lecture.fonctions.positionnerGroupeSuivant(cr, identifiant);
  EXPECT_EQ(identifiant, 0);
  lecture.fonctions.ignoreChamp(cr);
  EXPECT_FALSE(lecture.fonctions.extrairePhase(cr).estRenseigne());
  lecture.fonctions.verifierNumeroPrestation(cr, Nombre(3), 1);
  lecture.fonctions.verifierFinDonnees(cr);
  EXPECT_FALSE(Fonctions::allouerZoneOut(cr, 10));
  EXPECT_EQ(cr, NOX_CR_CODE_INCONNU);
  // Nothing was read meanwhile.
  cr = NOX_CR_OK;
  lecture.fonctions.positionnerGroupeSuivant(cr, identifiant);
  EXPECT_EQ(identifiant, 3000);
  lecture.fonctions.ignoreChamp(cr);
  EXPECT_EQ(lecture.fonctions.extrairePhase(cr).vue(), "B");
  lecture.fonctions.positionnerGroupeSuivant(cr, identifiant);
  EXPECT_EQ(identifiant, 0);
  lecture.fonctions.verifierFinDonnees(cr);
  EXPECT_EQ(cr, NOX_CR_OK);
}

TEST(Fonctions, lisentLesChampsComposes) {
  CodeRetour cr = NOX_CR_OK;
  Lecture codes(Champ::Type::Code, {"", "75", "1234", "A"});
  EXPECT_EQ(codes.fonctions.extrairePhase(cr).vue(), "0");
  EXPECT_EQ(codes.fonctions.extraireNumeroPS(cr).vue(), "751234");
  codes.fonctions.verifierFinDonnees(cr);
  EXPECT_EQ(cr, 0xA002);

  cr = NOX_CR_OK;
  Lecture dates(Champ::Type::Date, {"19800229", ""});
  EXPECT_TRUE(dates.fonctions.extraireDateNaissance(cr) == Date(1980, 2, 29));
  EXPECT_EQ(cr, NOX_CR_OK);
  dates.fonctions.extraireDateNaissance(cr);
  EXPECT_EQ(cr, 0x9002);

  cr = NOX_CR_OK;
  Lecture numeros(Champ::Type::Nombre, {"3", "4"});
  numeros.fonctions.verifierNumeroPrestation(cr, Nombre(3), 2);
  EXPECT_EQ(cr, NOX_CR_OK);
  numeros.fonctions.verifierNumeroPrestation(cr, Nombre(3), 2);
  EXPECT_EQ(cr, 0xE002);
}

TEST(Fonctions, sansZoneNOntRienALire) {
  FonctionsEssai fonctions(nullptr, nullptr);
  CodeRetour cr = NOX_CR_OK;
  std::uint16_t identifiant = 1;
  fonctions.positionnerGroupeSuivant(cr, identifiant);
  fonctions.verifierFinDonnees(cr);
  EXPECT_EQ(cr, NOX_CR_OK);
  EXPECT_EQ(identifiant, 0);
  fonctions.extraireCode(cr);
  EXPECT_EQ(cr, NOX_CR_INCOHERENCE);
}

TEST(Fonctions, ecriventLaZoneDeSortie) {
  CodeRetour cr = NOX_CR_OK;
  ZoneSortie zone = Fonctions::allouerZoneOut(cr, Zone::calculerTailleGroupe({4, 4, 0, 3}));
  Fonctions::ajouterGroupe(cr, zone, 3114);
  Fonctions::ajouterChamp(cr, zone, Coefficient(1.5));
  Fonctions::ajouterTaux(cr, zone, Coefficient(65.0));
  Fonctions::ajouterChampVide(cr, zone);
  Fonctions::ajouterChamp(cr, zone, Code("971"));
  EXPECT_EQ(cr, NOX_CR_OK);
  EXPECT_EQ(contenu(*zone), essai::ecrire({{3114, {"1500", "6500", "", "971"}}}));
  Fonctions::ajouterChampVide(cr, zone);
  EXPECT_EQ(cr, NOX_CR_ZONE_PLEINE);
}

// --- Descriptors of a reference ---

// The descriptor tables of a store in memory: two groups, and one root per line of `racines` (function code
// and name), each with its index as number and one child, the group 0.
struct Descripteurs {
  std::vector<DescriptifSuperGroupe> superGroupes;
  std::vector<DescriptifGroupe> groupes = {{1000, {0, 1}}, {1001, {1, 2}}};
  std::vector<DescriptifChamp> champs = {
      {'A', 'C', 1, 2, {0, 2}}, {'I', 'A', 0, 0, {}}, {'N', 'X', 0, 9, {}}};
  std::vector<ValeurAutorisee> valeurs = {ValeurAutorisee{TexteVariable("A")},
                                          ValeurAutorisee{TexteVariable("BC")}};
  std::vector<FilsSuperGroupe> fils = {{0, 65535, 1, 1}};

  void ajouter(char codeFonction, const char* nom, std::uint16_t premierFils = 0,
               std::uint16_t nombreFils = 1) {
    superGroupes.push_back({static_cast<std::uint16_t>(superGroupes.size()),
                            TexteVariable(nom),
                            codeFonction,
                            {premierFils, nombreFils}});
  }
  CodeRetour initialiser(Interface& interface) {
    MagasinEssai magasin;
    magasin.poser(superGroupes);
    magasin.poser(groupes);
    magasin.poser(champs);
    magasin.poser(valeurs);
    magasin.poser(fils);
    return interface.initialiser(magasin.lecture);
  }
};

using Recherche = CodeRetour (Interface::*)(const char*, const SuperGroupe*&, std::uint16_t&) const;
constexpr Recherche FAMILLES[] = {&Interface::lireSuperGroupeConsulter, &Interface::lireSuperGroupeModifier,
                                  &Interface::lireSuperGroupeAnnuler, &Interface::lireSuperGroupeControler,
                                  &Interface::lireSuperGroupeRegle};

// The number of a function in a family, or the code of a search that fails.
int chercher(const Interface& interface, std::size_t famille, const char* identifiant) {
  const SuperGroupe* superGroupe = nullptr;
  std::uint16_t numero = 0;
  const Recherche recherche = FAMILLES[famille];
  const CodeRetour cr = (interface.*recherche)(identifiant, superGroupe, numero);
  EXPECT_EQ(cr == NOX_CR_OK, superGroupe != nullptr);
  return cr == NOX_CR_OK ? numero : cr;
}

TEST(Interface, trouveChaqueFonctionDansSaFamille) {
  const std::vector<std::vector<const char*>> noms = {{"CCAM_1", "CCAM_10", "CCAM_37", "CCAM_9_1", "TB21_1"},
                                                      {"CCAM_37", "TB02_1"},
                                                      {"CCAM_37"},
                                                      {"C_Age_1", "C_Radio"},
                                                      {"C_Association", "C_Dent", "C_Pu"}};
  Descripteurs descripteurs;
  for (std::size_t famille = 0; famille < noms.size(); ++famille) {
    for (const char* nom : noms[famille]) {
      descripteurs.ajouter(static_cast<char>('1' + famille), nom);
    }
  }
  descripteurs.ajouter('6', "Controle_Complet");
  Interface interface;
  ASSERT_EQ(descripteurs.initialiser(interface), NOX_CR_OK);
  ASSERT_TRUE(interface.estInitialise());
  int numero = 0;
  for (std::size_t famille = 0; famille < noms.size(); ++famille) {
    for (const char* nom : noms[famille]) {
      SCOPED_TRACE(nom);
      std::string minuscules(nom);
      std::transform(minuscules.begin(), minuscules.end(), minuscules.begin(),
                     [](char c) { return static_cast<char>(std::tolower(c)); });
      EXPECT_EQ(chercher(interface, famille, nom), numero);
      EXPECT_EQ(chercher(interface, famille, minuscules.c_str()), numero);
      ++numero;
    }
    const int inconnu = famille < 3 ? 0xD000 : 0xD100;
    // Outside the family on either side, even where the search would end on the next family's first root.
    for (const char* autre :
         {"", "A", "CCAM_2", "Controle_Complet", "zzz", famille < 3 ? "C_Age_1" : "CCAM_37"}) {
      EXPECT_EQ(chercher(interface, famille, autre), inconnu) << autre;
    }
  }
  const SuperGroupe* complet = nullptr;
  ASSERT_EQ(interface.lireSuperGroupeControleComplet(complet), NOX_CR_OK);
  EXPECT_STREQ(complet->lireNom(), "Controle_Complet");
  interface.liberer();
  EXPECT_FALSE(interface.estInitialise());
}

TEST(Interface, reprendLesDescripteursDesTables) {
  Descripteurs descripteurs;
  descripteurs.fils = {{1, 65535, 0, 3}, {65535, 1, 2, 0}, {0, 65535, 1, 1}};
  descripteurs.ajouter('1', "RACINE", 0, 2);
  descripteurs.ajouter(' ', "IMBRIQUE", 2, 1);
  descripteurs.ajouter('1', "VIDE", 0, 0);
  Interface interface;
  ASSERT_EQ(descripteurs.initialiser(interface), NOX_CR_OK);
  const SuperGroupe* racine = nullptr;
  std::uint16_t numero = 0;
  ASSERT_EQ(interface.lireSuperGroupeConsulter("vide", racine, numero), NOX_CR_OK);
  EXPECT_EQ(racine->lireNbFils(), 0);
  ASSERT_EQ(interface.lireSuperGroupeConsulter("racine", racine, numero), NOX_CR_OK);
  ASSERT_EQ(racine->lireNbFils(), 2);
  EXPECT_EQ(racine->lireFils(0).lireMax(), 3);
  const Groupe* groupe = racine->lireFils(0).lireGroupe();
  ASSERT_NE(groupe, nullptr);
  EXPECT_EQ(groupe->lireIdentifiant(), 1001);
  ASSERT_EQ(groupe->lireNbChamps(), 2);
  EXPECT_EQ(groupe->lireChamp(0).lireFormat(), Champ::Format::Indifferent);
  EXPECT_EQ(groupe->lireChamp(0).lireType(), Champ::Type::Aucun);
  EXPECT_EQ(groupe->lireChamp(1).lireType(), Champ::Type::Taux);
  const SuperGroupe* imbrique = racine->lireFils(1).lireSuperGroupe();
  ASSERT_NE(imbrique, nullptr);
  EXPECT_EQ(racine->lireFils(1).lireIdentifiantAttendu(), 1000);
  const Champ& champ = imbrique->lireFils(0).lireGroupe()->lireChamp(0);
  EXPECT_EQ(champ.controler(octets("BC")), 0);
  EXPECT_EQ(champ.controler(octets("B")), 0x9000);
  // No full check among these roots.
  EXPECT_EQ(interface.lireSuperGroupeControleComplet(racine), NOX_CR_DONNEE_ABSENTE);
}

TEST(Interface, refuseLesDescripteursFautifs) {
  constexpr std::uint16_t AUCUN = 65535;
  struct Cas {
    const char* quoi;
    void (*abimer)(Descripteurs&);
  };
  for (const Cas& cas : std::vector<Cas>{
           {"format", [](Descripteurs& d) { d.champs[0].format = 'Z'; }},
           {"type", [](Descripteurs& d) { d.champs[2].type = ' '; }},
           {"groupe hors table", [](Descripteurs& d) { d.fils[0].groupe = 2; }},
           {"fils sans rien", [](Descripteurs& d) { d.fils[0].superGroupe = AUCUN; }},
           {"fils avec code fonction",
            [](Descripteurs& d) {
              d.fils[0] = {AUCUN, 0, 1, 1};
            }},
           {"contenu dans lui-même",
            [](Descripteurs& d) {
              d.fils[1] = {AUCUN, 1, 1, 1};
            }},
           {"cercle de deux",
            [](Descripteurs& d) {
              d.fils[1] = {AUCUN, 2, 0, 0};
              d.fils.push_back({AUCUN, 1, 0, 0});
              d.ajouter(' ', "AUTRE", 2, 1);
            }},
           {"trop imbriqués",
            [](Descripteurs& d) {
              for (std::uint16_t i = 2; i < 60; ++i) {
                d.fils[i - 1U] = {AUCUN, i, 0, 0};
                d.fils.push_back({0, AUCUN, 0, 0});
                d.ajouter(' ', "NIVEAU", i, 1);
              }
            }},
           {"trop nombreux", [](Descripteurs& d) {
              // Each level holds the next one many times over.
              d.fils.assign(400, {AUCUN, 2, 0, 0});
              std::fill(d.fils.begin() + 100, d.fils.begin() + 200, FilsSuperGroupe{AUCUN, 3, 0, 0});
              std::fill(d.fils.begin() + 200, d.fils.end(), FilsSuperGroupe{0, AUCUN, 0, 0});
              d.fils[0] = {AUCUN, 1, 0, 0};
              d.superGroupes[1].fils = {1, 99};
              d.ajouter(' ', "MILIEU", 100, 100);
              d.ajouter(' ', "BAS", 200, 100);
            }}}) {
    SCOPED_TRACE(cas.quoi);
    Descripteurs descripteurs;
    descripteurs.fils = {{65535, 1, 1, 1}, {0, 65535, 1, 1}};
    descripteurs.ajouter('1', "RACINE", 0, 1);
    descripteurs.ajouter(' ', "IMBRIQUE", 1, 1);
    Interface interface;
    EXPECT_EQ(descripteurs.initialiser(interface), NOX_CR_OK);
    interface.liberer();
    cas.abimer(descripteurs);
    EXPECT_EQ(descripteurs.initialiser(interface), NOX_CR_DONNEE_ABSENTE);
    EXPECT_FALSE(interface.estInitialise());
  }
}

// Families that are missing or out of order are searched without fault, and find nothing.
TEST(Interface, supporteDesFamillesVides) {
  Descripteurs descripteurs;
  descripteurs.ajouter('5', "ABSENTE");
  descripteurs.ajouter('?', "BBB");
  descripteurs.ajouter('2', "CCAM_37");
  Interface interface;
  ASSERT_EQ(descripteurs.initialiser(interface), NOX_CR_OK);
  EXPECT_EQ(chercher(interface, 0, "CCAM_37"), 0xD000);
  EXPECT_EQ(chercher(interface, 1, "CCAM_37"), 2);
  EXPECT_EQ(chercher(interface, 3, "ABSENTE"), 0xD100);
  EXPECT_EQ(chercher(interface, 4, "ABSENTE"), 0xD100);
}

}  // namespace
}  // namespace noxlux
