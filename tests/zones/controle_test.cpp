// The control of an input zone against its description: fields, order and number of groups, hostile zones.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "ctrl_in/controleur_zone.h"
#include "octets_essai.h"
#include "types/booleen.h"
#include "types/date.h"
#include "types/decimal.h"

namespace noxlux {
namespace {

using Format = Champ::Format;
using Type = Champ::Type;

ListeCodes codes(const std::vector<std::string>& textes) {
  ListeCodes liste;
  for (const std::string& texte : textes) {
    EXPECT_EQ(liste.ajouterElement(Code(texte)), NOX_CR_OK);
  }
  return liste;
}

// --- One field ---

Champ champ(Format format, Type type, std::uint16_t tailleMin = 0, std::uint16_t tailleMax = 0,
            const std::vector<std::string>& valeurs = {}) {
  Champ resultat;
  EXPECT_EQ(resultat.initialiser(format, type, tailleMin, tailleMax, codes(valeurs)), NOX_CR_OK);
  return resultat;
}

TEST(Champ, controleTailleFormatEtValeurs) {
  struct Cas {
    Champ champ;
    std::string donnees;
    CodeRetour code;
  };
  const CodeRetour refus = NOX_CR_CHAMP_INVALIDE;
  const Champ alpha = champ(Format::Alphanumerique, Type::Texte);
  const Champ chiffres = champ(Format::Numerique, Type::Nombre);
  const Champ bornee = champ(Format::Libre, Type::Texte, 2, 3);
  const Champ valeurs = champ(Format::Alphanumerique, Type::Code, 0, 0, {"AB", "C"});
  for (const Cas& cas : std::vector<Cas>{{alpha, "AB 1", 0},
                                         {alpha, "abc", refus},
                                         {alpha, "A-B", refus},
                                         {alpha, "\xC9", refus},
                                         {alpha, "", 0},
                                         {chiffres, "0129", 0},
                                         {chiffres, "12 ", refus},
                                         {chiffres, brut("1\0"), refus},
                                         {bornee, "x", refus},
                                         {bornee, "\xE9\x01", 0},
                                         {bornee, "xyz", 0},
                                         {bornee, "wxyz", refus},
                                         {valeurs, "AB", 0},
                                         {valeurs, "AB ", refus},
                                         {valeurs, "A", refus},
                                         {valeurs, "", refus},
                                         {champ(Format::Date, Type::Date), "20240229", 0},
                                         {champ(Format::Date, Type::Date), "20230229", refus},
                                         {champ(Format::Date, Type::Date), "", refus},
                                         {champ(Format::Indifferent, Type::Aucun), brut("\0\xFF"), 0},
                                         {champ(static_cast<Format>(9), Type::Code), "A", 0xDFFF}}) {
    SCOPED_TRACE(cas.donnees);
    EXPECT_EQ(cas.champ.controler(octets(cas.donnees)), cas.code);
  }
}

using ValeurChamp = std::variant<std::monostate, Code, Texte, Booleen, Date, Nombre, Montant, Coefficient>;

template <class T>
CodeRetour transformerEn(const Champ& champ, Octets donnees, ValeurChamp& valeur) {
  T lue;
  const CodeRetour cr = champ.transformer(donnees, lue);
  valeur = lue;
  return cr;
}

// Converts to the type that the field is described with.
CodeRetour transformer(const Champ& champ, Octets donnees, ValeurChamp& valeur) {
  switch (champ.lireType()) {
    case Type::Code:
      return transformerEn<Code>(champ, donnees, valeur);
    case Type::Booleen:
      return transformerEn<Booleen>(champ, donnees, valeur);
    case Type::Date:
      return transformerEn<Date>(champ, donnees, valeur);
    case Type::Nombre:
      return transformerEn<Nombre>(champ, donnees, valeur);
    case Type::Montant:
      return transformerEn<Montant>(champ, donnees, valeur);
    case Type::Coefficient:
    case Type::Taux:
      return transformerEn<Coefficient>(champ, donnees, valeur);
    default:
      return transformerEn<Texte>(champ, donnees, valeur);
  }
}

TEST(Champ, convertitCeQuIlReduit) {
  struct Cas {
    Format format;
    Type type;
    std::string donnees;
    ValeurChamp valeur;
  };
  for (const Cas& cas : std::vector<Cas>{{Format::Numerique, Type::Code, "007", Code("7")},
                                         {Format::Numerique, Type::Code, "000", Code("0")},
                                         {Format::Numerique, Type::Code, "", Code()},
                                         {Format::Alphanumerique, Type::Code, "AB  ", Code("AB")},
                                         {Format::Libre, Type::Texte, "  \xE9 t  ", Texte("  \xE9 t")},
                                         {Format::Libre, Type::Code, "   ", Code()},
                                         {Format::Indifferent, Type::Texte, "A ", Texte("A ")},
                                         {Format::Indifferent, Type::Texte, "007", Texte("007")},
                                         {Format::Alphanumerique, Type::Booleen, "O ", Booleen(true)},
                                         {Format::Alphanumerique, Type::Booleen, "N", Booleen(false)},
                                         {Format::Date, Type::Date, "202402290000", Date(2024, 2, 29)},
                                         {Format::Alphanumerique, Type::Date, "        ", Date()},
                                         {Format::Numerique, Type::Nombre, "00042", Nombre(42)},
                                         {Format::Numerique, Type::Nombre, "2147483647", Nombre(2147483647)},
                                         {Format::Numerique, Type::Montant, "0001250", Montant(12.5)},
                                         {Format::Numerique, Type::Montant, "", Montant()},
                                         {Format::Numerique, Type::Coefficient, "1250", Coefficient(1.25)},
                                         {Format::Numerique, Type::Taux, "6500", Coefficient(65.0)},
                                         {Format::Alphanumerique, Type::Aucun, "A", Texte()}}) {
    SCOPED_TRACE(cas.donnees);
    ValeurChamp valeur = Texte("avant");
    ASSERT_EQ(transformer(champ(cas.format, cas.type), octets(cas.donnees), valeur), NOX_CR_OK);
    EXPECT_TRUE(valeur == cas.valeur);
  }
}

TEST(Champ, refuseCeQuIlNePeutConvertir) {
  struct Cas {
    Format format;
    Type type;
    std::string donnees;
    CodeRetour code;
  };
  for (const Cas& cas : std::vector<Cas>{{Format::Libre, Type::Code, "a", NOX_CR_CHAMP_INVALIDE},
                                         {Format::Alphanumerique, Type::Code, "A B", NOX_CR_CHAMP_INVALIDE},
                                         {Format::Alphanumerique, Type::Booleen, "", NOX_CR_CHAMP_INVALIDE},
                                         {Format::Alphanumerique, Type::Booleen, "X", NOX_CR_CHAMP_INVALIDE},
                                         {Format::Alphanumerique, Type::Booleen, "ON", NOX_CR_CHAMP_INVALIDE},
                                         {Format::Numerique, Type::Date, "20230431", NOX_CR_CHAMP_INVALIDE},
                                         {Format::Libre, Type::Nombre, "12a", NOX_CR_MEMOIRE},
                                         {Format::Numerique, Type::Nombre, "2147483648", NOX_CR_MEMOIRE},
                                         {Format::Numerique, Type::Montant, "1234567890", NOX_CR_MEMOIRE},
                                         {Format::Libre, Type::Taux, "-1", NOX_CR_MEMOIRE},
                                         {Format::Libre, static_cast<Type>(12), "A", NOX_CR_INCOHERENCE}}) {
    SCOPED_TRACE(cas.donnees);
    ValeurChamp valeur;
    EXPECT_EQ(transformer(champ(cas.format, cas.type), octets(cas.donnees), valeur), cas.code);
  }
  // Asked as another type than it is described: the content comes first.
  Nombre nombre;
  EXPECT_EQ(champ(Format::Numerique, Type::Code).transformer(octets("1"), nombre), NOX_CR_INCOHERENCE);
  EXPECT_EQ(champ(Format::Libre, Type::Code).transformer(octets("a"), nombre), NOX_CR_CHAMP_INVALIDE);
  EXPECT_EQ(champ(Format::Libre, Type::Booleen).transformer(octets("1"), nombre), NOX_CR_CHAMP_INVALIDE);
}

// --- A whole zone ---

// A small description: 3000 once (a code of at most 5 characters, a number); 3001 up to twice (a code among A
// and B); then a repeated block at least once, of 1610 once (a number), 1820 at most once, 2200 at most
// twice, in which a nested block of 2300 and 2310 may come; last, 8000 once.
class Description {
 public:
  Description() {
    groupe(3000, {{Format::Alphanumerique, Type::Code, 1, 5}, {Format::Numerique, Type::Nombre, 1, 5}});
    groupe(3001, {{Format::Alphanumerique, Type::Code, 0, 0, {"A", "B"}}});
    for (const std::uint16_t identifiant : std::vector<std::uint16_t>{1610, 1820, 2200, 2300, 2310, 8000}) {
      groupe(identifiant, {{Format::Numerique, Type::Nombre, 1, 5}});
    }
    ajouter(racine, 3000, 1, 1);
    ajouter(racine, 3001, 0, 2);
    auto bloc = std::make_unique<SuperGroupe>(std::uint16_t{0}, "LIGNES", std::uint16_t{4});
    ajouter(*bloc, 1610, 1, 1);
    ajouter(*bloc, 1820, 0, 1);
    ajouter(*bloc, 2200, 0, 2);
    auto interne = std::make_unique<SuperGroupe>(std::uint16_t{0}, "DETAIL", std::uint16_t{2});
    ajouter(*interne, 2300, 1, 1);
    ajouter(*interne, 2310, 1, 0);
    EXPECT_EQ(bloc->ajouterFils(std::move(interne), 0, 1), NOX_CR_OK);
    EXPECT_EQ(racine.ajouterFils(std::move(bloc), 1, 0), NOX_CR_OK);
    ajouter(racine, 8000, 1, 1);
  }

  SuperGroupe racine{7, "ESSAI", 4};

 private:
  struct DescriptionChamp {
    Format format;
    Type type;
    std::uint16_t tailleMin;
    std::uint16_t tailleMax;
    std::vector<std::string> valeurs = {};
  };

  void groupe(std::uint16_t identifiant, const std::vector<DescriptionChamp>& champs) {
    auto nouveau = std::make_unique<Groupe>(identifiant, static_cast<std::uint16_t>(champs.size()));
    for (const DescriptionChamp& c : champs) {
      EXPECT_EQ(nouveau->ajouterChamp(c.format, c.type, c.tailleMin, c.tailleMax, codes(c.valeurs)),
                NOX_CR_OK);
    }
    EXPECT_EQ(nouveau->ajouterChamp(Format::Libre, Type::Texte, 0, 0, {}), NOX_CR_INCOHERENCE);
    groupes_.push_back(std::move(nouveau));
  }
  void ajouter(SuperGroupe& superGroupe, std::uint16_t identifiant, std::uint16_t minimum,
               std::uint16_t maximum) {
    for (const auto& g : groupes_) {
      if (g->lireIdentifiant() == identifiant) {
        ASSERT_EQ(superGroupe.ajouterFils(g.get(), minimum, maximum), NOX_CR_OK);
      }
    }
  }

  std::vector<std::unique_ptr<Groupe>> groupes_;
};

// Reads all there is; `lus` receives the number of fields read.
CodeRetour lireTout(Zone& zone, const SuperGroupe& racine, bool exhaustif, unsigned& lus) {
  ControleurZone controleur(&zone, &racine, exhaustif);
  CodeRetour cr = NOX_CR_OK;
  lus = 0;
  while (cr == NOX_CR_OK && !zone.finDonnees()) {
    std::uint16_t identifiant = 0;
    std::uint16_t numero = 0;
    Octets donnees;
    cr = controleur.extraireChamp(identifiant, numero, donnees);
    lus += cr == NOX_CR_OK ? 1 : 0;
  }
  return cr == NOX_CR_OK ? controleur.verifierFinDonnees() : cr;
}

const essai::Groupe TETE = {3000, {"ABC", "12"}};
const essai::Groupe FIN = {8000, {"9"}};
const essai::Groupe LIGNE = {1610, {"1"}};

struct CasZone {
  const char* quoi;
  essai::Zone groupes;
  CodeRetour exhaustif;
  CodeRetour tolerant;
};

TEST(ControleurZone, situeLaFaute) {
  const essai::Groupe inconnu = {4000, {"?", "?"}};
  const essai::Groupe un3001 = {3001, {"A"}};
  const essai::Groupe un1820 = {1820, {"2"}};
  const essai::Groupe un2200 = {2200, {"3"}};
  const essai::Groupe un2300 = {2300, {"4"}};
  const essai::Groupe un2310 = {2310, {"5"}};
  const Description description;
  for (const CasZone& cas : std::vector<CasZone>{
           {"le minimum", {TETE, LIGNE, FIN}, 0, 0},
           {"tout",
            {TETE, un3001, un3001, LIGNE, un1820, un2200, un2200, un2300, un2310, un2310, LIGNE, un2300,
             un2310, FIN},
            0,
            0},
           {"champ refusé", {TETE, {3001, {"C"}}, LIGNE, FIN}, 0x9003, 0x9003},
           {"cinquième champ refusé", {TETE, un3001, un3001, {1610, {"x"}}, FIN}, 0x9005, 0x9005},
           {"groupe obligatoire absent au début", {LIGNE, FIN}, 0xB000 + 3000, 0xB000 + 3000},
           {"troisième occurrence", {TETE, un3001, un3001, un3001, LIGNE, FIN}, 0xB000 + 3001, 0xB000 + 3001},
           {"bloc obligatoire absent", {TETE, FIN}, 0xB000 + 1610, 0xB000 + 1610},
           {"dernier groupe absent", {TETE, LIGNE}, 0xB000 + 8000, 0xB000 + 8000},
           {"bloc interne incomplet", {TETE, LIGNE, un2300, FIN}, 0xB000 + 2310, 0},
           {"bloc interne incomplet à la fin", {TETE, LIGNE, un2300}, 0xB000 + 2310, 0xB000 + 2310},
           {"bloc interne deux fois",
            {TETE, LIGNE, un2300, un2310, un2300, FIN},
            0xB000 + 2300,
            0xB000 + 2300},
           {"deux 1820 dans un bloc", {TETE, LIGNE, un1820, un1820, FIN}, 0xB000 + 1820, 0xB000 + 1820},
           {"un 1820 par bloc", {TETE, LIGNE, un1820, LIGNE, un1820, FIN}, 0, 0},
           {"groupe déjà passé", {TETE, LIGNE, un2200, un1820, FIN}, 0xB000 + 8000, 0},
           {"groupe inconnu avant un obligatoire", {TETE, inconnu, LIGNE, FIN}, 0xB000 + 1610, 0},
           {"groupe inconnu à la fin", {TETE, LIGNE, FIN, inconnu}, 0xA004, NOX_CR_FIN_ZONE},
           {"identifiant 0", {TETE, LIGNE, FIN, {0, {"1"}}}, 0xA004, NOX_CR_FIN_ZONE},
           {"groupe doublé à la fin", {TETE, LIGNE, FIN, FIN}, 0xB000 + 8000, 0xB000 + 8000},
           {"inconnu au milieu des occurrences",
            {TETE, un3001, inconnu, un3001, LIGNE, FIN},
            0xB000 + 1610,
            0},
           {"inconnu, puis trop",
            {TETE, un3001, inconnu, un3001, un3001, LIGNE, FIN},
            0xB000 + 1610,
            0xB000 + 3001},
           {"inconnu dans un bloc interne", {TETE, LIGNE, un2300, inconnu, un2310, FIN}, 0xB000 + 2310, 0},
           {"trop peu de champs", {TETE, {3001, {}}, LIGNE, FIN}, 0xA802, 0xA802},
           {"trop peu de champs en tête", {{3000, {"ABC"}}, LIGNE, FIN}, 0xA801, 0xA801},
           {"trop de champs", {TETE, {1610, {"1", "2"}}, FIN}, 0xA802, 0},
           {"trop de champs à la fin", {TETE, LIGNE, {8000, {"1", "2"}}}, 0xA803, NOX_CR_FIN_ZONE}}) {
    SCOPED_TRACE(cas.quoi);
    unsigned lus = 0;
    ZoneEssai stricte(cas.groupes);
    EXPECT_EQ(lireTout(stricte.zone, description.racine, true, lus), cas.exhaustif);
    ZoneEssai toleree(cas.groupes);
    EXPECT_EQ(lireTout(toleree.zone, description.racine, false, lus), cas.tolerant);
  }
}

TEST(ControleurZone, arreteLaLectureALaFinDeCeQuiEstDemande) {
  const Description description;
  ZoneEssai essai(essai::Zone{TETE, LIGNE, FIN});
  ControleurZone controleur(&essai.zone, &description.racine);
  std::uint16_t identifiant = 0;
  std::uint16_t numero = 0;
  Code code;
  Nombre nombre;
  EXPECT_EQ(controleur.verifierFinDonnees(), 0xA001);
  for (int lecture = 0; lecture < 2; ++lecture) {
    // Asked again before its fields are read, the group is the same.
    ASSERT_EQ(controleur.positionnerGroupeSuivant(identifiant), NOX_CR_OK);
    EXPECT_EQ(identifiant, 3000);
  }
  ASSERT_EQ(controleur.extraireChamp(identifiant, numero, code), NOX_CR_OK);
  ASSERT_EQ(controleur.extraireChamp(identifiant, numero, nombre), NOX_CR_OK);
  EXPECT_EQ(numero, 2);
  EXPECT_EQ(nombre, Nombre(12));
  EXPECT_EQ(controleur.verifierFinDonnees(), 0xA002);
  ASSERT_EQ(controleur.positionnerGroupeSuivant(identifiant), NOX_CR_OK);
  EXPECT_EQ(identifiant, 1610);
}

// Nested super-groups whose groups may all be missing, mandatory all the same; descriptions without fields or
// children.
TEST(ControleurZone, accepteLesDescriptionsLimites) {
  Groupe a(1000, 1);
  Groupe b(1001, 1);
  Groupe c(1003, 1);
  const Groupe sansChamp(1002, 0);
  for (Groupe* groupe : {&a, &b, &c}) {
    ASSERT_EQ(groupe->ajouterChamp(Format::Libre, Type::Texte, 0, 0, {}), NOX_CR_OK);
  }
  const auto racine = [&](const std::vector<const Groupe*>& internes, std::uint16_t minimum,
                          std::uint16_t maximum) {
    auto nouvelle = std::make_unique<SuperGroupe>(std::uint16_t{1}, "LIMITE", std::uint16_t{2});
    auto interne =
        std::make_unique<SuperGroupe>(std::uint16_t{0}, "", static_cast<std::uint16_t>(internes.size()));
    for (const Groupe* groupe : internes) {
      EXPECT_EQ(interne->ajouterFils(groupe, 0, 1), NOX_CR_OK);
    }
    EXPECT_EQ(nouvelle->ajouterFils(std::move(interne), minimum, maximum), NOX_CR_OK);
    EXPECT_EQ(nouvelle->ajouterFils(&b, 1, 1), NOX_CR_OK);
    EXPECT_EQ(nouvelle->ajouterFils(&b, 1, 1), NOX_CR_INCOHERENCE);
    return nouvelle;
  };
  struct Cas {
    const char* quoi;
    std::vector<const Groupe*> internes;
    essai::Zone groupes;
    CodeRetour code;
    std::uint16_t minimum = 65535;
    std::uint16_t maximum = 0;
  };
  for (const Cas& cas :
       std::vector<Cas>{{"bloc sans fils", {}, {{1001, {"b"}}}, 0},
                        {"bloc sans fils, fin absente", {}, {{1000, {"a"}}}, 0xB000 + 1001},
                        {"bloc facultatif absent", {&a}, {{1001, {"b"}}}, 0},
                        {"bloc facultatif présent", {&a}, {{1000, {"a"}}, {1001, {"b"}}}, 0},
                        {"entrée par le second groupe", {&a, &sansChamp}, {{1002, {"x"}}}, 0xA801},
                        {"groupe sans champ", {&sansChamp}, {{1002, {}}}, 0},
                        {"bloc entré par son second groupe, puis repris",
                         {&a, &c},
                         {{1003, {"c"}}, {1000, {"a"}}, {1001, {"b"}}},
                         0,
                         2,
                         2},
                        {"de même, une fois de trop",
                         {&a, &c},
                         {{1003, {"c"}}, {1000, {"a"}}, {1001, {"b"}}},
                         0xB000 + 1000,
                         1,
                         1},
                        {"identifiant 0", {}, {{0, {}}}, 0xB000 + 1001}}) {
    SCOPED_TRACE(cas.quoi);
    const auto description = racine(cas.internes, cas.minimum, cas.maximum);
    ZoneEssai essai(cas.groupes);
    unsigned lus = 0;
    std::uint16_t identifiant = 0;
    const bool vide = cas.groupes[0].champs.empty();
    EXPECT_EQ(vide ? ControleurZone(&essai.zone, description.get()).positionnerGroupeSuivant(identifiant)
                   : lireTout(essai.zone, *description, true, lus),
              cas.code);
  }
}

// An identifier that its family of codes cannot tell is a fault all the same.
TEST(ControleurZone, refuseUnGroupeAbsentDIdentifiantTropGrand) {
  Groupe grand(20480, 1);
  ASSERT_EQ(grand.ajouterChamp(Format::Libre, Type::Texte, 0, 0, {}), NOX_CR_OK);
  SuperGroupe racine(1, "GRAND", 1);
  ASSERT_EQ(racine.ajouterFils(&grand, 1, 1), NOX_CR_OK);
  for (const bool exhaustif : {true, false}) {
    unsigned lus = 0;
    ZoneEssai essai(essai::Zone{{1000, {"a"}}});
    EXPECT_EQ(lireTout(essai.zone, racine, exhaustif, lus), 0xCFFF);
  }
}

}  // namespace
}  // namespace noxlux
