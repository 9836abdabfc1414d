// Value types: conversions, calendar, arithmetic and byte forms, as tables of cases.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "types/booleen.h"
#include "types/date.h"
#include "types/decimal.h"
#include "types/liste_codes.h"
#include "types/texte.h"

namespace noxlux {
namespace {

const byte* octets(const char* texte) { return reinterpret_cast<const byte*>(texte); }

TEST(Date, extraitLesFormesAdmises) {
  struct Cas {
    const char* texte;
    bool valide;
  };
  for (const Cas& cas : std::vector<Cas>{{"20240229", true},
                                         {"20230229", false},
                                         {"20000229", true},
                                         {"19000229", false},
                                         {"202402290000", true},
                                         {"202402290001", false},
                                         {"2024022900", false},
                                         {"", false},
                                         {"2024022 ", false},
                                         {"20241301", false},
                                         {"20240431", false},
                                         {"20240400", false},
                                         {"2024023100000", false}}) {
    EXPECT_EQ(Date::estValide(octets(cas.texte), std::string(cas.texte).size()), cas.valide) << cas.texte;
  }
  EXPECT_FALSE(Date(std::string_view("2024x229")).estRenseigne());
  EXPECT_EQ(Date(2024, 2, 9).lireBytes(), "202402090000");
  EXPECT_EQ(Date().lireBytes(), "");
  EXPECT_EQ(Date(2024, 2, 9).lireValeur(), "09/02/2024");
}

TEST(Date, reculeDUnNombreDeJours) {
  struct Cas {
    Date depart;
    unsigned short jours;
    Date attendue;
  };
  for (const Cas& cas : std::vector<Cas>{{{2023, 3, 5}, 5, {2023, 2, 28}},
                                         {{2024, 3, 5}, 5, {2024, 2, 29}},
                                         {{2024, 3, 1}, 1, {2024, 2, 29}},
                                         {{2024, 1, 1}, 1, {2023, 12, 31}},
                                         {{2024, 12, 31}, 366, {2023, 12, 31}},
                                         {{2024, 6, 15}, 0, {2024, 6, 15}},
                                         {{1, 1, 10}, 10, {}}}) {
    EXPECT_EQ(cas.depart - cas.jours, cas.attendue) << cas.depart.lireValeur() << " - " << cas.jours;
  }
}

TEST(Date, donneLaPeriodeEntreDeuxDates) {
  struct Cas {
    Date fin, debut;
    Periode attendue;
  };
  for (const Cas& cas :
       std::vector<Cas>{{{2020, 12, 31}, {2020, 1, 1}, {0, 365}},
                        {{2021, 1, 1}, {2020, 12, 31}, {0, 0}},  // the step over the new year is not counted
                        {{2021, 1, 2}, {2020, 12, 30}, {0, 2}},
                        {{2024, 5, 10}, {2024, 5, 10}, {0, 0}},
                        {{2024, 5, 10}, {2000, 5, 10}, {24, 0}},
                        {{2024, 5, 9}, {2000, 5, 10}, {23, 364}},
                        {{2024, 7, 1}, {2020, 2, 29}, {4, 123}},
                        {{2024, 3, 1}, {2024, 2, 1}, {0, 29}},
                        // A month or a day out of the calendar is 1 January; other impossible days do not
                        // underflow.
                        {{2024, 1, 11}, {1980, 13, 45}, {44, 10}},
                        {{2024, 1, 11}, {1980, 5, 32}, {44, 10}},
                        {{2024, 1, 11}, {2024, 0, 10}, {0, 10}},
                        {{2024, 1, 11}, {2024, 1, 0}, {0, 10}},
                        {{2024, 3, 1}, {2023, 2, 31}, {1, 2}}}) {
    const Periode periode = cas.fin - cas.debut;
    EXPECT_EQ(periode, cas.attendue) << periode.lireBytes() << " au lieu de " << cas.attendue.lireBytes();
  }
}

TEST(Periode, sAdditionneEtSOrdonne) {
  EXPECT_EQ(Periode(1, 300) + Periode(0, 100), Periode(2, 35));
  EXPECT_EQ(Periode(1, 300) + Periode(0, 65), Periode(1, 365));
  EXPECT_LT(Periode(1, 365), Periode(2, 0));
  EXPECT_EQ(Periode(16, 30).lireBytes(), "16A30J");
  EXPECT_DEATH(Periode(0, 366), "nombreJours <= MAX_NOMBRE_JOURS");
}

TEST(Decimal, formesDeZone) {
  EXPECT_EQ(Montant(12.5).lireBytes(), "1250");
  EXPECT_EQ(Montant(0.05).lireBytes(), "005");
  EXPECT_EQ(Montant(0).lireBytes(), "000");
  EXPECT_EQ(Montant(0.29).lireBytes(), "029");  // 0.29 * 100 is a little below 29
  EXPECT_EQ(Montant(1.005).lireBytes(), "100");
  EXPECT_EQ(Coefficient(1.5).lireBytes(), "1500");
  EXPECT_EQ(Coefficient(0).lireBytes(), "0000");
  EXPECT_EQ(Nombre(7).lireBytes(), "00007");
  EXPECT_EQ(Nombre(123456).lireBytes(), "123456");
  EXPECT_EQ(Booleen(true).lireBytes(), "O");
  EXPECT_DEATH(Montant(-1).lireBytes(), "valeur >= 0");
  EXPECT_DEATH(Coefficient(-0.5), "valeur >= 0");
  EXPECT_DEATH(Coefficient(0.5) - Coefficient(1.0), "valeur >= right.valeur");
}

TEST(Decimal, litLesChampsDeZone) {
  EXPECT_DOUBLE_EQ(Montant(octets("1250"), 4).lireValeur(), 12.5);
  EXPECT_DOUBLE_EQ(Montant(octets(""), 0).lireValeur(), 0.0);
  EXPECT_DOUBLE_EQ(Coefficient(octets("0500"), 4, 3).lireValeur(), 0.5);
  EXPECT_FALSE(Montant(octets("12.5"), 4).ok());
  EXPECT_FALSE(Montant(octets("1234567890"), 10).ok());
  EXPECT_EQ(Nombre(octets("2147483647"), 10).lireValeur(), 2147483647);
  EXPECT_FALSE(Nombre(octets("2147483648"), 10).ok());
  EXPECT_FALSE(Nombre(octets("99999999999999999999"), 20).ok());
}

TEST(Decimal, tronqueEtArrondit) {
  struct Cas {
    double valeur, tronquee, arrondie;
  };
  for (const Cas& cas : std::vector<Cas>{{12.344, 12.34, 12.34},
                                         {12.345, 12.34, 12.35},
                                         {2.675, 2.67, 2.68},  // below the half in binary
                                         {100.004, 100.00, 100.00},
                                         {51.84, 51.84, 51.84},
                                         {-12.349, -12.34, -12.35},
                                         {-0.005, 0.00, -0.01}}) {
    EXPECT_NEAR(Flottant(cas.valeur).tronquer(), cas.tronquee, 1e-9) << cas.valeur;
    EXPECT_NEAR(Flottant(cas.valeur).arrondir(), cas.arrondie, 1e-9) << cas.valeur;
  }
}

TEST(Decimal, compareALaPrecisionPres) {
  EXPECT_TRUE(Montant(0.1 + 0.2) == Montant(0.3));
  EXPECT_TRUE(Montant(10.000005) <= Montant(10.0));
  EXPECT_FALSE(Montant(10.01) <= Montant(10.0));
  EXPECT_FALSE(Montant(10.000005) > Montant(10.0));
  EXPECT_FALSE(Flottant(0.00001).estRenseigne());
  EXPECT_TRUE(Flottant(-0.01).estRenseigne());
  EXPECT_DEATH(Montant(1) / Nombre(0), "right.estRenseigne");
}

TEST(Code, valideLesCaracteres) {
  EXPECT_TRUE(Code("AHQB027").estValide());
  EXPECT_TRUE(Code("").estValide());
  EXPECT_FALSE(Code("AHQB 27").estValide());
  EXPECT_FALSE(Code("ahqb027").estValide());
  EXPECT_FALSE(Code("\xC9T").estValide());
  EXPECT_DEATH(Code('-'), "caractere");
  EXPECT_EQ(Code("ABCDEF").extrairePartie(4, 5), Code("EF"));
  EXPECT_EQ(Code("ABC").extrairePartie(3, 1), Code());
}

TEST(Texte, prendSaFormeCanonique) {
  struct Cas {
    const char* texte;
    const char* canonique;
  };
  // ISO-8859-1 bytes: the sources are compiled to that set.
  for (const Cas& cas : std::vector<Cas>{{"échographie", "ECHOGRAPHIE"},
                                         {"  l'épaule - côté  gauche ", "L EPAULE COTE GAUCHE"},
                                         {"Ænigma straße", "AENIGMA STRASSE"},
                                         {"3 à 6 muscles", "3 A 6 MUSCLES"},
                                         {"ÿ×÷", "Y"},
                                         {"--", ""},
                                         {"", ""}}) {
    Texte texte(cas.texte);
    texte.transformerFormeCanonique(true);
    EXPECT_STREQ(texte.lireTexte(), cas.canonique) << cas.texte;
  }
  Texte sansSeparation("l'été");
  sansSeparation.transformerFormeCanonique(false);
  EXPECT_STREQ(sansSeparation.lireTexte(), "L'ETE");
}

ListeCodes liste(std::initializer_list<const char*> codes) {
  ListeCodes resultat;
  for (const char* code : codes) {
    EXPECT_EQ(resultat.ajouterElement(Code(code)), NOX_CR_OK);
  }
  return resultat;
}

TEST(TypeListe, granditEnDoublant) {
  TypeListe<Nombre> nombres(0);
  EXPECT_EQ(nombres.lireCapacite(), 5);
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(nombres.ajouterElement(Nombre(i)), NOX_CR_OK);
  }
  EXPECT_EQ(nombres.lireCapacite(), 10);
  nombres.supprimerElement(0);
  nombres.supprimerElement(4);
  EXPECT_EQ(nombres.lireNombreElements(), 4);
  EXPECT_EQ(nombres[0], Nombre(1));
  EXPECT_EQ(nombres[3], Nombre(4));
  EXPECT_DEATH(nombres[4], "position < nombreElements");
}

TEST(TypeListe, refuseAuDelaDesPositions16Bits) {
  TypeListe<Booleen> pleine(65535, true);
  EXPECT_EQ(pleine.ajouterElement(Booleen(true)), NOX_CR_MEMOIRE);
  EXPECT_EQ(pleine.lireNombreElements(), 65535);
  EXPECT_EQ(pleine.ajouterElement(Booleen(true)), NOX_CR_MEMOIRE);
}

TEST(ListeCodes, operationsEnsemblistes) {
  ListeCodes a = liste({"A", "B", "C"});
  const ListeCodes b = liste({"C", "D", "A"});
  EXPECT_EQ(a.unionListe(a), NOX_CR_OK);
  EXPECT_EQ(a.lireNombreElements(), 3);
  ListeCodes resultat;
  EXPECT_EQ(resultat.intersectionListe(b, a), NOX_CR_OK);
  EXPECT_EQ(resultat[0], Code("C"));
  EXPECT_EQ(resultat[1], Code("A"));
  EXPECT_EQ(resultat.intersectionListe(a, ListeCodes()), NOX_CR_OK);
  EXPECT_TRUE(resultat.estVide());
  EXPECT_EQ(resultat.unionListe(a, b), NOX_CR_OK);
  EXPECT_TRUE(resultat == liste({"D", "C", "B", "A"}));
  EXPECT_FALSE(resultat == a);
  EXPECT_TRUE(resultat.estValide());
  EXPECT_FALSE(liste({"A", "B", "A"}).estValide());
  EXPECT_FALSE(liste({"A B"}).estValide());
}

}  // namespace
}  // namespace noxlux
