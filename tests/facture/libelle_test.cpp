// Secondary labels: the formats come from a file that anyone may have written.
#include "regles/libelle_regle.h"

#include <gtest/gtest.h>

#include "catalogue_essai.h"

namespace noxlux {
namespace {

TEST(Libelle, conversions) {
  struct Cas {
    const char* format;
    std::optional<std::string> attendu;
  };
  const Code acte("AHQB027");
  const ArgumentsLibelle arguments{acte, Nombre(-3), Montant(51.84)};
  for (const Cas& cas : std::vector<Cas>{
           {"", ""},
           {"sans argument", "sans argument"},
           {"100 %% de %s", "100 % de AHQB027"},
           {"%s %d %f", "AHQB027 -3 51.840000"},
           {"%s %ld %.2f", "AHQB027 -3 51.84"},
           {"%s %u", "AHQB027 4294967293"},
           {"%s", "AHQB027"},
           {"%d", std::nullopt},
           {"%s %s", std::nullopt},
           {"%s %f", std::nullopt},
           {"%s %d %d", std::nullopt},
           {"%s %d %.2f %s", std::nullopt},
           {"%c", std::nullopt},
           {"%n", std::nullopt},
           {"%s %n", std::nullopt},
           {"%x", std::nullopt},
           {"%1000000000s", std::nullopt},
           {"%*d", std::nullopt},
           {"%1$s", std::nullopt},
           {"%lld", std::nullopt},
           {"%.3f", std::nullopt},
           {"%l", std::nullopt},
           {"%", std::nullopt},
           {"fin %", std::nullopt},
       }) {
    EXPECT_EQ(formaterLibelle(cas.format, arguments), cas.attendu) << cas.format;
  }
}

TEST(Libelle, caractere) {
  EXPECT_EQ(formaterLibelle("[%c%c]", {Code("A"), 66}), "[AB]");
  EXPECT_EQ(formaterLibelle("%c", {Code("AB")}), std::nullopt);
  EXPECT_EQ(formaterLibelle("%c", {Code("")}), std::nullopt);
  EXPECT_EQ(formaterLibelle("%c", {0}), std::nullopt);
}

TEST(Libelle, coupeA199Caracteres) {
  const std::string exact(199, 'x');
  EXPECT_EQ(formaterLibelle(exact, {}), exact);
  EXPECT_EQ(formaterLibelle(exact + "yz", {}), exact);
  EXPECT_EQ(formaterLibelle("%s%s", {exact, exact}), exact);
  EXPECT_EQ(formaterLibelle("%.2f", {Montant(1e307)})->size(), 199U);
}

TEST(CopierValeurErreur, remplitOuLaisseIntacte) {
  essai::CatalogueEssai catalogue;
  essai::ReglesEssai regles(catalogue.lecture);
  Erreur erreur;
  ASSERT_EQ(regles.copierValeurErreur(erreur, "PROD510", {"AHQB027", "01/03/2024"}), NOX_CR_OK);
  EXPECT_EQ(erreur.lireReference().vue(), "R510");
  EXPECT_EQ(erreur.lireNiveau().vue(), "O");
  EXPECT_EQ(erreur.lireIndicateurForcage().vue(), "E");
  EXPECT_EQ(erreur.lireLibelleSecondaire().vue(), "L'acte AHQB027, le 01/03/2024.");

  // Unknown rule, missing argument, format that no argument fits.
  const Erreur avant = erreur;
  EXPECT_EQ(regles.copierValeurErreur(erreur, "PROD999", {}), NOX_CR_DONNEE_ABSENTE);
  EXPECT_EQ(regles.copierValeurErreur(erreur, "PROD500", {}), NOX_CR_DONNEE_ABSENTE);
  EXPECT_EQ(regles.copierValeurErreur(erreur, "PROD900", {"a", "b"}), NOX_CR_DONNEE_ABSENTE);
  EXPECT_EQ(erreur, avant);
  EXPECT_EQ(erreur.lireNiveau().vue(), "O");

  // A rule without indicator (a space in the file) imposes none.
  ASSERT_EQ(regles.copierValeurErreur(erreur, "PROD650", {12}), NOX_CR_OK);
  EXPECT_FALSE(erreur.imposeForcage());
  EXPECT_EQ(erreur.lireLibelleSecondaire().vue(), "12 actes");
}

}  // namespace
}  // namespace noxlux
