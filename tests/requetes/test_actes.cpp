// Queries on acts: keys, histories at their bounds, lists, loading on first use, counting of modified values.
#include "requetes/magasin_essai.h"

namespace noxlux {
namespace {

class RequetesActes : public MagasinEssai {
 protected:
  RequetesActes() {
    poserActe("AAFA001");
    acte = &poserActe("HBJD001");
    poserActe("ZZLP025");
  }
  NiveauActe* acte;
};

TEST_F(RequetesActes, HistoriqueALaDate) {
  const struct {
    unsigned date;
    CodeRetour cr;
    double prix;
  } cas[] = {{20050228, NOX_CR_PAS_D_HISTORIQUE, -1},
             {20050301, NOX_CR_OK, 10},
             {20141231, NOX_CR_OK, 10},
             {20150101, NOX_CR_OK, 20},
             {20200531, NOX_CR_OK, 20},
             {20200601, NOX_CR_OK, 30},
             {29991231, NOX_CR_OK, 30}};
  for (const auto& c : cas) {
    Montant prix(-1);
    EXPECT_EQ(lecture.rechercherPrixUnitaire(ACTE, UN, ZERO, date(c.date), prix), c.cr) << c.date;
    EXPECT_EQ(prix.lireValeur(), c.prix) << c.date;
  }
  acte->activites[0].phases[0].historiques.clear();
  Montant prix;
  EXPECT_EQ(lecture.rechercherPrixUnitaire(ACTE, UN, ZERO, date(20200601), prix), NOX_CR_PAS_D_HISTORIQUE);
}

TEST_F(RequetesActes, Cles) {
  const struct {
    const char* acte;
    const char* activite;
    const char* phase;
    CodeRetour cr;
  } cas[] = {{"AAFA001", "1", "0", NOX_CR_OK},
             {"ZZLP025", "1", "0", NOX_CR_OK},
             {"AAFA000", "1", "0", NOX_CR_CODE_INCONNU},
             {"ZZLP026", "1", "0", NOX_CR_CODE_INCONNU},
             {"HBJD00", "1", "0", NOX_CR_CODE_INCONNU},
             {"", "1", "0", NOX_CR_CODE_INCONNU},
             {"HBJD001000000", "1", "0", NOX_CR_CODE_INCONNU},
             {"HBJD0010000000", "1", "0", NOX_CR_DONNEE_ABSENTE},
             {"HBJD001", "4", "0", NOX_CR_CODE_INCONNU},
             {"HBJD001", "", "0", NOX_CR_CODE_INCONNU},
             {"HBJD001", "11", "0", NOX_CR_DONNEE_ABSENTE},
             {"HBJD001", "1", "1", NOX_CR_CODE_INCONNU},
             {"HBJD001", "1", "00", NOX_CR_DONNEE_ABSENTE}};
  for (const auto& c : cas) {
    Periode age(99, 0);
    EXPECT_EQ(lecture.rechercherAgeMinimal(Code(c.acte), Code(c.activite), Code(c.phase), age), c.cr)
        << c.acte << c.activite << c.phase;
    EXPECT_EQ(age.lireAnnees(), c.cr == NOX_CR_OK ? 0 : 99);
  }
  EXPECT_EQ(lecture.rechercherExistenceActe(ACTE), NOX_CR_OK);
  EXPECT_EQ(lecture.rechercherExistenceActe(Code("HBJD002")), NOX_CR_CODE_INCONNU);
}

TEST_F(RequetesActes, MajorationDOMParPosition) {
  const struct {
    unsigned short position;
    CodeRetour cr;
    double valeur;
  } cas[] = {{0, NOX_CR_CODE_INCONNU, 9}, {1, NOX_CR_OK, 1.0}, {2, NOX_CR_OK, 1.1},
             {3, NOX_CR_OK, 1.2},         {4, NOX_CR_OK, 1.3}, {5, NOX_CR_CODE_INCONNU, 9}};
  for (const auto& c : cas) {
    Coefficient majoration(9);
    EXPECT_EQ(lecture.rechercherMajorationDOM(ACTE, UN, ZERO, c.position, date(20210101), majoration), c.cr);
    EXPECT_EQ(majoration.lireValeur(), c.valeur) << c.position;
  }
  // What no tariff can be must not reach the rules.
  acte->activites[0].phases[0].historiques[0].majorationsDOM[0] = -1.0;
  Coefficient majoration;
  EXPECT_EQ(lecture.rechercherMajorationDOM(ACTE, UN, ZERO, 1, date(20210101), majoration),
            NOX_CR_DONNEE_ABSENTE);
}

TEST_F(RequetesActes, ValeursDeLActe) {
  acte->fraisDeplacement = ' ';
  acte->sexeCompatible = '\0';
  acte->codeMenu = 70000;
  acte->historiques[0].ententePrealable = 'O';
  acte->activites[0].phases[0].nombreDents = CodeFixe<2>("4");
  acte->activites[0].phases[0].ageMaximum = 120;
  Code code("X");
  EXPECT_EQ(lecture.rechercherFraisDeplacement(ACTE, code), NOX_CR_OK);
  EXPECT_EQ(code.vue(), "");
  code = Code("X");
  EXPECT_EQ(lecture.rechercherSexeCompatible(ACTE, code), NOX_CR_OK);
  EXPECT_EQ(code.vue(), "");
  EXPECT_EQ(lecture.rechercherTypeActe(ACTE, code), NOX_CR_OK);
  EXPECT_EQ(code.vue(), "1");
  EXPECT_EQ(lecture.rechercherCodeStructure(ACTE, code), NOX_CR_OK);
  EXPECT_EQ(code.vue(), "HBJD001");
  EXPECT_EQ(lecture.rechercherNombreDents(ACTE, UN, ZERO, code), NOX_CR_OK);
  EXPECT_EQ(code.vue(), "4");
  std::uint32_t menu = 0;
  EXPECT_EQ(lecture.rechercherCodeMenu(ACTE, menu), NOX_CR_OK);
  EXPECT_EQ(menu, 70000U);
  Booleen soumis;
  EXPECT_EQ(lecture.rechercherEntentePrealable(ACTE, date(20200101), soumis), NOX_CR_OK);
  EXPECT_TRUE(soumis.estVrai());
  Periode age;
  EXPECT_EQ(lecture.rechercherAgeMaximal(ACTE, UN, ZERO, age), NOX_CR_OK);
  EXPECT_EQ(age, Periode(120, 0));
  Date creation;
  EXPECT_EQ(lecture.rechercherDateCreation(ACTE, creation), NOX_CR_OK);
  EXPECT_EQ(creation, date(20050301));
}

TEST_F(RequetesActes, Listes) {
  HistoriqueNiveauActivite& historique = acte->activites[0].historiques[0];
  historique.associations = compacte<Association>({{CodeActe("ZZLP025"), 'A'}, {CodeActe("AAFA001"), ' '}});
  historique.modificateurs = compacte<char>({'J', '7'});
  acte->naturesAssurance =
      compacte<CodeNatureAssurance>({CodeNatureAssurance("AS"), CodeNatureAssurance("B")});
  ListeCodes liste = listeOccupee();
  EXPECT_EQ(lecture.rechercherActesCompatibles(ACTE, UN, date(20200101), liste), NOX_CR_OK);
  EXPECT_EQ(textes(liste), (Textes{"ZZLP025", "AAFA001"}));
  EXPECT_EQ(lecture.rechercherModificateursApplicables(ACTE, UN, date(20200101), liste), NOX_CR_OK);
  EXPECT_EQ(textes(liste), (Textes{"J", "7"}));
  EXPECT_EQ(lecture.rechercherNaturesAssurance(ACTE, liste), NOX_CR_OK);
  EXPECT_EQ(textes(liste), (Textes{"AS", "B"}));
  EXPECT_EQ(lecture.rechercherActivites(ACTE, liste), NOX_CR_OK);
  EXPECT_EQ(textes(liste), (Textes{"1"}));
  EXPECT_EQ(lecture.rechercherPhasesDeTraitement(ACTE, UN, liste), NOX_CR_OK);
  EXPECT_EQ(textes(liste), (Textes{"0"}));
  // A failed look-up leaves the list alone; an empty answer empties it; a bad entry stops it where it is.
  EXPECT_EQ(lecture.rechercherProcedures(ACTE, date(20000101), liste), NOX_CR_PAS_D_HISTORIQUE);
  EXPECT_EQ(textes(liste), (Textes{"0"}));
  EXPECT_EQ(lecture.rechercherProcedures(ACTE, date(20200101), liste), NOX_CR_OK);
  EXPECT_TRUE(liste.estVide());
  historique.modificateurs = compacte<char>({'J', '-', '7'});
  EXPECT_EQ(lecture.rechercherModificateursApplicables(ACTE, UN, date(20200101), liste),
            NOX_CR_DONNEE_ABSENTE);
  EXPECT_EQ(textes(liste), (Textes{"J"}));

  Code regle("X");
  EXPECT_EQ(lecture.rechercherRegleAssociation(ACTE, UN, Code("ZZLP025"), date(20200101), regle), NOX_CR_OK);
  EXPECT_EQ(regle.vue(), "A");
  EXPECT_EQ(lecture.rechercherRegleAssociation(ACTE, UN, Code("AAFA001"), date(20200101), regle), NOX_CR_OK);
  EXPECT_EQ(regle.vue(), "");
  EXPECT_EQ(lecture.rechercherRegleAssociation(ACTE, UN, ACTE, date(20200101), regle), NOX_CR_CODE_INCONNU);
}

TEST_F(RequetesActes, ChargementALaDemande) {
  CaseActe& place = referentiel.actes[1];
  place.acte.reset();
  Booleen charge(true);
  EXPECT_EQ(lecture.rechercherChargementActe(ACTE, charge), NOX_CR_OK);
  EXPECT_FALSE(charge.estVrai());
  // No reference file: the place is empty again, and the next query tries again.
  Texte libelle("intact");
  EXPECT_EQ(lecture.rechercherLibelleCourt(ACTE, libelle), NOX_CR_OUVERTURE_REFERENCE);
  EXPECT_EQ(libelle.vue(), "intact");
  EXPECT_TRUE(place.estVide());
  EXPECT_EQ(lecture.rechercherLibelleCourt(ACTE, libelle), NOX_CR_OUVERTURE_REFERENCE);
  // A load under way: refused, though the act already counts as loaded.
  place.enChargement = true;
  EXPECT_EQ(lecture.rechercherLibelleCourt(ACTE, libelle), NOX_CR_OCCUPE);
  EXPECT_EQ(lecture.rechercherChargementActe(ACTE, charge), NOX_CR_OK);
  EXPECT_TRUE(charge.estVrai());
  EXPECT_TRUE(place.enChargement);
}

TEST_F(RequetesActes, ValeursModifieesComptees) {
  const CodeActe cle("HBJD001");
  poser<ModificationPrixUnitaire>(
      {{cle, '1', '0', jour(20220101), 31.0}, {cle, '1', '1', jour(20210101), 9}});
  poser<ModificationMajorationDOM>({{cle, '1', '0', 2, jour(20220101), 1.5}});
  poser<ModificationCodeRegroupement>({{cle, '1', jour(20220101), CodeFixe<3>("ATM")}});
  Montant montant;
  Coefficient coefficient;
  Code code;
  Nombre compteur;
  const auto interroger = [&](unsigned d) {
    lecture.rechercherPrixUnitaire(ACTE, UN, ZERO, date(d), montant);
    lecture.rechercherSupplementCharges(ACTE, UN, ZERO, date(d), montant);
    lecture.rechercherMajorationDOM(ACTE, UN, ZERO, 1, date(d), coefficient);
    lecture.rechercherMajorationDOM(ACTE, UN, ZERO, 2, date(d), coefficient);
    lecture.rechercherCodeRegroupement(ACTE, UN, date(d), code);
    lecture.rechercherPrixUnitaire(Code("AAFA001"), UN, ZERO, date(d), montant);
    lecture.lireVerificationModification(compteur);
    return compteur.lireValeur();
  };
  EXPECT_EQ(interroger(20220101), 0) << "not asked to count";
  lecture.activerVerificationModification(true);
  EXPECT_EQ(interroger(20211231), 0) << "modifications not in force yet";
  EXPECT_EQ(interroger(20220101), 3);
  EXPECT_EQ(interroger(20230101), 6);
  lecture.rechercherPrixUnitaire(ACTE, UN, Code("1"), date(20230101), montant);  // fails: no such phase
  lecture.lireVerificationModification(compteur);
  EXPECT_EQ(compteur.lireValeur(), 6);
  lecture.activerVerificationModification(false);
  EXPECT_EQ(interroger(20230101), 0);
}

TEST_F(RequetesActes, DateDeDerniereModification) {
  const CodeActe cle("HBJD001");
  // The last line in table order decides, not the latest date.
  poser<ModificationPrixUnitaire>({{cle, '1', '0', jour(20220101), 31},
                                   {cle, '1', '0', jour(20230101), 32},
                                   {cle, '1', '0', jour(20220601), 33},
                                   {CodeActe("ZZLP025"), '1', '0', jour(20220101), 1}});
  const struct {
    const char* acte;
    unsigned date;
    CodeRetour cr;
    unsigned attendue;
  } cas[] = {{"HBJD001", 20211231, NOX_CR_OK, 19000101},
             {"HBJD001", 20220101, NOX_CR_OK, 20220101},
             {"HBJD001", 20220601, NOX_CR_OK, 20220601},
             {"HBJD001", 20240101, NOX_CR_OK, 20220601},
             {"INCONNU", 20240101, NOX_CR_OK, 19000101},
             {"HBJD0010000000", 20240101, NOX_CR_DONNEE_ABSENTE, 19000101}};
  for (const auto& c : cas) {
    Date derniere = date(19000101);
    EXPECT_EQ(lecture.rechercherDateModificationPrixUnitaire(Code(c.acte), UN, ZERO, date(c.date), derniere),
              c.cr);
    EXPECT_EQ(derniere, date(c.attendue)) << c.acte << c.date;
  }
}

TEST_F(RequetesActes, Trace) {
  const std::string nom = repertoire + "trace.txt";
  Trace::activer(nom.c_str(), "w", TRACE_CONSULTATION, 3);
  Montant prix;
  lecture.rechercherPrixUnitaire(ACTE, UN, ZERO, date(20040101), prix);
  Trace::activer(nom.c_str(), "w", TRACE_CONSULTATION, 0);
  std::ostringstream texte;
  texte << std::ifstream(nom).rdbuf();
  std::size_t position = 0;
  for (const char* attendu : {"Code acte recherche     : HBJD001\n", "Code activite recherche : 1\n",
                              "Code phase recherche    : 0\n", "Date de reference : 2004/01/01\n",
                              "pas d'historique trouve a la date de reference\n",
                              "Code retour de LectureDonnees::rechercherPrixUnitaire : 0xD003\n"}) {
    position = texte.str().find(attendu, position);
    ASSERT_NE(position, std::string::npos) << attendu << " not in its place in\n" << texte.str();
  }
}

TEST_F(RequetesActes, Acces) {
  EXPECT_EQ(LectureDonnees(nullptr).verrouillerLecture(), NOX_CR_NON_CHARGE);
  EXPECT_EQ(ModificationDonnees(nullptr).verrouillerEcriture(), NOX_CR_NON_CHARGE);
  {
    const AccesLecture premier(lecture);
    const AccesLecture second(modification);
    EXPECT_EQ(premier.code(), NOX_CR_OK);
    EXPECT_EQ(second.code(), NOX_CR_OK);
    EXPECT_EQ(AccesEcriture(modification).code(), NOX_CR_OCCUPE);
    EXPECT_EQ(referentiel.compteurLecture, 2);
  }
  {
    const AccesEcriture ecriture(modification);
    EXPECT_EQ(ecriture.code(), NOX_CR_OK);
    EXPECT_EQ(AccesEcriture(modification).code(), NOX_CR_OCCUPE);
    EXPECT_EQ(AccesLecture(lecture).code(), NOX_CR_OCCUPE);
    EXPECT_EQ(referentiel.compteurEcriture, 1);
  }
  EXPECT_EQ(referentiel.compteurLecture, 0);
  EXPECT_EQ(referentiel.compteurEcriture, 0);
  EXPECT_DEATH(lecture.libererAcces(), "referentiel->compteurLecture>0");
  EXPECT_DEATH(modification.libererAcces(), "referentiel->compteurEcriture>0");
}

}  // namespace
}  // namespace noxlux
