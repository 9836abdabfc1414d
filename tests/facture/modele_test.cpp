// The invoice model: attachment, grouping, and what filing an error leaves on the lines.
#include <gtest/gtest.h>

#include "catalogue_essai.h"
#include "regles/depot_erreur.h"

namespace noxlux {
namespace {

using essai::ajouterActe;
using essai::ajouterLigne;
using essai::joindre;
using Type = LigneActe::Type;

const Date J1(2024, 3, 1);
const Date J2(2024, 3, 2);

std::string numeros(const std::vector<LigneCCAM*>& lignes) {
  std::string texte;
  for (const LigneCCAM* ligne : lignes) {
    texte += std::to_string(ligne->numero.lireValeur()) + "/";
  }
  return texte;
}

TEST(Facture, rattacheLesDeplacements) {
  Facture facture;
  ajouterActe(facture, 1, J1, "AHQB027");
  const LigneActe& prestation = ajouterLigne(facture, Type::PRESTATION, 2, J1);
  for (std::int32_t numero = 3; numero <= 5; ++numero) {
    LigneActe& trajet = ajouterLigne(facture, numero == 4 ? Type::DEPLACEMENT_2 : Type::DEPLACEMENT_1, numero,
                                     numero == 5 ? J2 : J1);
    EXPECT_EQ(trajet.rattacher(), numero == 5 ? NOX_CR_DATE_DEPLACEMENT : NOX_CR_OK);
    EXPECT_EQ(trajet.rattachement, &prestation) << numero;
  }
}

TEST(Facture, groupe) {
  Facture facture;
  ajouterActe(facture, 1, J1, "AHQB027");
  ajouterActe(facture, 2, J1, "AHQB027", "4");     // other activity
  ajouterLigne(facture, Type::PRESTATION, 3, J1);  // never grouped
  ajouterActe(facture, 4, J2, "AHQB027");          // other date
  ajouterActe(facture, 5, J1, "AHQB032");
  ajouterActe(facture, 6, J1, "AHQB032", "1", "997654321");  // other professional
  // Twice: the groups are made anew.
  for (int fois = 0; fois < 2; ++fois) {
    facture.grouperParAssociations();
    facture.grouperParDates();
    ASSERT_EQ(facture.associations.size(), 4U);
    EXPECT_EQ(numeros(facture.associations[0].lignes), "1/5/");
    EXPECT_EQ(numeros(facture.associations[1].lignes), "2/");
    EXPECT_EQ(numeros(facture.associations[2].lignes), "4/");
    EXPECT_EQ(numeros(facture.associations[3].lignes), "6/");
    EXPECT_EQ(facture.associations[3].numero, Nombre(4));
    ASSERT_EQ(facture.seances.size(), 2U);
    EXPECT_EQ(numeros(facture.seances[0].lignes), "1/2/5/6/");
    EXPECT_EQ(numeros(facture.seances[1].lignes), "4/");
    for (const auto& element : facture.lignes) {
      if (const LigneCCAM* ligne = enLigneCCAM(element.get()); ligne != nullptr) {
        EXPECT_TRUE(ligne->association->estAssociee(ligne) && ligne->seance->estEffectueeMemeDate(ligne));
      }
    }
  }
}

TEST(Facture, debraye) {
  Facture facture;
  LigneCCAM& premiere = ajouterActe(facture, 1, J1, "AHQB027");
  ajouterActe(facture, 2, J2, "AHQB027");
  premiere.debrayerService();
  EXPECT_TRUE(facture.topDebrayage);
  facture.grouperParAssociations();
  facture.grouperParDates();
  EXPECT_TRUE(facture.associations[0].topDebrayage && facture.seances[0].topDebrayage);
  EXPECT_FALSE(facture.associations[1].topDebrayage || facture.seances[1].topDebrayage);

  // A line that is disengaged before it is added, and after it is grouped.
  Facture autre;
  auto debrayee = std::make_unique<LigneCCAM>();
  debrayee->debrayerService();
  autre.ajouterLigne(std::move(debrayee));
  EXPECT_TRUE(autre.topDebrayage);
  static_cast<LigneCCAM&>(*facture.lignes[1]).debrayerService();
  EXPECT_TRUE(facture.associations[1].topDebrayage && facture.seances[1].topDebrayage);
}

TEST(FactureMort, refuseUneLigneDeTrop) {
  Facture facture;
  for (std::int32_t numero = 1; numero <= MAX_LIGNES; ++numero) {
    ajouterActe(facture, numero, J1, "AHQB027");
  }
  EXPECT_DEATH(ajouterActe(facture, 201, J1, "AHQB027"), "nbLignes < MAX_LIGNES");
  Facture vide;
  LigneActe& seule = ajouterLigne(vide, Type::DEPLACEMENT_1, 1, J1);
  EXPECT_DEATH(seule.rattacher(), "factureParent->nbLignes >= 2");
  LigneCCAM orpheline;
  EXPECT_DEATH(orpheline.rattacher(), "factureParent != __null");
}

class Depot : public testing::Test {
 protected:
  Depot() {
    ajouterActe(facture, 1, J1, "AHQB027");
    ajouterActe(facture, 2, J1, "AHQB032", "4");
    ajouterActe(facture, 3, J2, "AHQB027");
    ajouterActe(facture, 4, J1, "AHQB033");
    facture.grouperParAssociations();
    facture.grouperParDates();
  }
  LigneCCAM& ligne(std::size_t i) { return static_cast<LigneCCAM&>(*facture.lignes[i - 1]); }
  Erreur lever(const char* regle, ArgumentsLibelle arguments = {}) {
    Erreur erreur;
    EXPECT_EQ(regles.copierValeurErreur(erreur, regle, arguments), NOX_CR_OK);
    return erreur;
  }
  std::string forcages() {
    std::string texte;
    for (const auto& element : facture.lignes) {
      texte += element->forcage.has_value() ? element->forcage->lireTexte() : "-";
    }
    return texte;
  }
  std::string exclues(std::size_t i) { return joindre(ligne(i).reglesNonVerifiables.value_or(ListeCodes())); }

  essai::CatalogueEssai catalogue;
  essai::ReglesEssai regles{catalogue.lecture};
  Facture facture;
  ListeErreurs erreurs;
};

TEST_F(Depot, surUneLigne) {
  // Nothing to file.
  Erreur vide;
  EXPECT_EQ(ligne(1).traiterErreur(erreurs, vide, regles), NOX_CR_OK);
  EXPECT_TRUE(erreurs.estVide());

  // Not overridable: filed, the dependent rules fall, no indicator.
  Erreur erreur = lever("PROD500", {"AHQB027"});
  EXPECT_EQ(ligne(1).traiterErreur(erreurs, erreur, regles), NOX_CR_OK);
  EXPECT_FALSE(erreur.estRenseigne());
  EXPECT_EQ(forcages(), "----");
  EXPECT_EQ(exclues(1), "R510/R600/");
  EXPECT_EQ(exclues(2), "");
  ASSERT_EQ(erreurs.lireNombreElements(), 1);
  EXPECT_EQ(joindre(erreurs[0].lirePrestations()), "1/");

  // Overridable without indicator: the same.
  erreur = lever("PROD650", {2});
  EXPECT_EQ(ligne(2).traiterErreur(erreurs, erreur, regles), NOX_CR_OK);
  EXPECT_EQ(forcages(), "----");
  EXPECT_EQ(exclues(2), "R653/");

  // Overridable with one: the first one is set.
  erreur = lever("PROD510", {"AHQB027", ""});
  EXPECT_EQ(ligne(2).traiterErreur(erreurs, erreur, regles), NOX_CR_OK);
  EXPECT_EQ(forcages(), "-E--");
  EXPECT_EQ(exclues(2), "R653/R760/");
  EXPECT_EQ(erreurs.lireNombreElements(), 3);
}

TEST_F(Depot, combineLesIndicateurs) {
  struct Cas {
    const char* regle;
    const char* present;
    const char* attendu;
    CodeRetour code;
  };
  for (const Cas& cas : {Cas{"PROD510", "A", "E", NOX_CR_OK},  // higher priority
                         Cas{"PROD510", "G", "G", NOX_CR_OK},  // lower
                         Cas{"PROD510", "X", "X", NOX_CR_OK},  // a tie keeps the present one
                         Cas{"PROD510", "E", "E", NOX_CR_OK},  // itself
                         Cas{"PROD600", "X", "T", NOX_CR_OK},  // exception
                         Cas{"PROD600", "E", "E", NOX_CR_OK},  // no exception for this pair
                         Cas{"PROD700", "E", "E", NOX_CR_CODE_INCONNU}}) {
    SCOPED_TRACE(std::string(cas.regle) + " sur " + cas.present);
    LigneCCAM& cible = ligne(1);
    cible.forcage = Code(cas.present);
    Erreur erreur = lever(cas.regle, {"a", "b"});
    const unsigned avant = erreurs.lireNombreElements();
    EXPECT_EQ(cible.traiterErreur(erreurs, erreur, regles), cas.code);
    EXPECT_EQ(cible.forcage->vue(), cas.attendu);
    // Filed and emptied, even when the combination fails.
    EXPECT_EQ(erreurs.lireNombreElements(), avant + 1);
    EXPECT_FALSE(erreur.estRenseigne());
  }
  bool prioritaire = false;
  for (const auto& [a, b, attendu] : {std::tuple{"E", "X", true}, {"A", "E", false}, {"G", "E", true}}) {
    EXPECT_EQ(regles.estIndicateurPrioritaire(Code(a), Code(b), prioritaire), NOX_CR_OK);
    EXPECT_EQ(prioritaire, attendu) << a << b;
  }
}

TEST_F(Depot, surUneSeance) {
  ligne(2).forcage = Code("X");
  Erreur erreur = lever("PROD600");
  EXPECT_EQ(facture.traiterErreur(erreurs, erreur, Nombre(4), J1, regles), NOX_CR_OK);
  EXPECT_EQ(forcages(), "AT-A");
  EXPECT_EQ(joindre(erreurs[0].lirePrestations()), "4/");
  for (const std::size_t i : {1U, 2U, 4U}) {
    EXPECT_EQ(exclues(i), "R240/R760/");
  }
  EXPECT_EQ(exclues(3), "");

  // The triggering line takes the first place among the lines that the rule gave.
  TypeListe<Nombre> autres;
  ASSERT_EQ(autres.ajouterElement(Nombre(9)) | autres.ajouterElement(Nombre(1)), 0);
  ASSERT_EQ(regles.copierValeurErreur(erreur, autres, "PROD600"), NOX_CR_OK);
  EXPECT_EQ(facture.traiterErreur(erreurs, erreur, Nombre(2), J1, regles), NOX_CR_OK);
  EXPECT_EQ(joindre(erreurs[1].lirePrestations()), "2/1/");
  EXPECT_EQ(exclues(1), "R240/R760/");

  bool verifiable = false;
  EXPECT_EQ(regles.estVerifiable(Code("PROD650"), facture.seances[0], verifiable), NOX_CR_OK);
  EXPECT_TRUE(verifiable);
  ListeCodes r650;
  ASSERT_EQ(r650.ajouterElement(Code("R650")), NOX_CR_OK);
  ASSERT_EQ(exclureRegles(ligne(4), r650), NOX_CR_OK);
  EXPECT_EQ(regles.estVerifiable(Code("PROD650"), facture.seances[0], verifiable), NOX_CR_OK);
  EXPECT_FALSE(verifiable);
  EXPECT_EQ(regles.estVerifiable(Code("PROD650"), facture.seances[1], verifiable), NOX_CR_OK);
  EXPECT_TRUE(verifiable);
  EXPECT_EQ(regles.estVerifiable(Code("PROD999"), facture.seances[1], verifiable), NOX_CR_CODE_INCONNU);
}

TEST_F(Depot, surUneAssociation) {
  TypeListe<Nombre> concernees;
  ASSERT_EQ(concernees.ajouterElement(Nombre(4)), NOX_CR_OK);
  Erreur erreur;
  ASSERT_EQ(regles.copierValeurErreur(erreur, concernees, "PROD600"), NOX_CR_OK);
  EXPECT_EQ(facture.associations[0].traiterErreur(erreurs, erreur, regles), NOX_CR_OK);
  EXPECT_EQ(forcages(), "A--A");
  EXPECT_EQ(joindre(erreurs[0].lirePrestations()), "4/");
  EXPECT_EQ(exclues(1), "R240/R760/");
  EXPECT_EQ(exclues(2), "");

  // A line that cannot combine stops the filing with its code.
  ligne(4).forcage = Code("9");
  erreur = lever("PROD510", {"a", "b"});
  EXPECT_EQ(facture.associations[0].traiterErreur(erreurs, erreur, regles), NOX_CR_CODE_INCONNU);
  EXPECT_EQ(forcages(), "E--9");
}

TEST(Erreur, egalite) {
  TypeListe<Nombre> lignes;
  ASSERT_EQ(lignes.ajouterElement(Nombre(1)), NOX_CR_OK);
  const Erreur a("R500", 'N', {}, 'E', "principal", "secondaire");
  EXPECT_EQ(a, Erreur("R500", 'O', lignes, 'A', "autre", "secondaire"));
  EXPECT_FALSE(a == Erreur("R500", 'N', {}, 'E', "principal", nullptr));
  EXPECT_FALSE(a == Erreur("R510", 'N', {}, 'E', "principal", "secondaire"));
}

}  // namespace
}  // namespace noxlux
