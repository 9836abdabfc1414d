// Queries on the tables kept in memory: dated lines, keys, numbers, runs, keywords, filters, rules.
#include "requetes/magasin_essai.h"

namespace noxlux {
namespace {

class RequetesTables : public MagasinEssai {};

TEST_F(RequetesTables, SeuilsParDateEtPosition) {
  poser<Seuil>({{jour(20200101), jour(OUVERTE), 120, 121, 122, 123},
                {jour(20100101), jour(20181231), 91, 92, 93, 94},
                {jour(20150101), jour(20151231), 1, 2, 3, 4}});
  const struct {
    unsigned short position;
    unsigned date;
    CodeRetour cr;
    double seuil;
  } cas[] = {{1, 20091231, NOX_CR_PAS_D_HISTORIQUE, 0},
             {1, 20100101, NOX_CR_OK, 91},
             {2, 20150601, NOX_CR_OK, 92},
             {4, 20181231, NOX_CR_OK, 94},
             {1, 20190101, NOX_CR_PAS_D_HISTORIQUE, 0},
             {3, 20200101, NOX_CR_OK, 122},
             {1, 20991231, NOX_CR_OK, 120},
             {0, 20200101, NOX_CR_DONNEE_ABSENTE, 0},
             {5, 20200101, NOX_CR_DONNEE_ABSENTE, 0}};
  for (const auto& c : cas) {
    Montant seuil;
    EXPECT_EQ(lecture.rechercherSeuilExoTM(c.position, date(c.date), seuil), c.cr)
        << c.position << ' ' << c.date;
    EXPECT_EQ(seuil.lireValeur(), c.seuil);
  }
}

TEST_F(RequetesTables, Modificateurs) {
  poser<Modificateur>({{'7', {0, 3}, {}, {}, {0, 1}, {}},
                       {'A', {}, {0, 2}, {0, 1}, {1, 1}, {}},
                       {'M', {}, {}, {}, {}, {0, 1}}});
  poser<HistoriqueValeurModificateur>(
      {{jour(20100101), jour(OUVERTE), 0, 1.06}, {jour(20100101), jour(20191231), 24.77, 1}});
  poser<HistoriqueAgeModificateur>({{jour(20300101), jour(OUVERTE), 'A', 1, 'X', 5},
                                    {jour(20200101), jour(20291231), 'M', 27, 'J', 400},
                                    {jour(20100101), jour(20191231), 'J', 365, 'A', 80}});
  poser<ModificateurCompatible>(
      {{'M', jour(20100101), jour(20191231)}, {'7', jour(20150101), jour(OUVERTE)}});
  poser<HistoriqueCoherenceModificateur>({{jour(20100101), jour(OUVERTE), 'O', 'N'}});
  poser<HistoriqueModificateurOC>({{jour(20100101), jour(OUVERTE), ' '}});

  const struct {
    unsigned date;
    Textes codes;
  } validite[] = {{20091231, {}}, {20100101, {"7", "A"}}, {20191231, {"7", "A"}}, {20200101, {"7"}}};
  for (const auto& v : validite) {
    ListeCodes codes = listeOccupee();
    EXPECT_EQ(lecture.rechercherModificateurs(date(v.date), codes), NOX_CR_OK);
    EXPECT_EQ(textes(codes), v.codes) << v.date;
    for (const char* code : {"7", "A", "M", "Z", "", "77"}) {
      EXPECT_EQ(lecture.rechercherExistenceModificateur(Code(code), date(v.date)), codes.contient(Code(code)))
          << code << v.date;
    }
  }

  const struct {
    unsigned date;
    CodeRetour crMinimum;
    Periode minimum;
    CodeRetour crMaximum;
    Periode maximum;
  } ages[] = {{20091231, NOX_CR_PAS_D_HISTORIQUE, {}, NOX_CR_PAS_D_HISTORIQUE, {}},
              {20150101, NOX_CR_OK, Periode(1, 0), NOX_CR_OK, Periode(80, 0)},
              {20200101, NOX_CR_OK, Periode(2, 90), NOX_CR_OK, Periode(1, 35)},
              {20300101, NOX_CR_OK, Periode(1, 0), NOX_CR_DONNEE_ABSENTE, {}}};
  for (const auto& a : ages) {
    Periode minimum;
    Periode maximum;
    EXPECT_EQ(lecture.rechercherAgeMinimumModificateur(Code("7"), date(a.date), minimum), a.crMinimum);
    EXPECT_EQ(lecture.rechercherAgeMaximumModificateur(Code("7"), date(a.date), maximum), a.crMaximum);
    EXPECT_EQ(minimum, a.minimum) << a.date;
    EXPECT_EQ(maximum, a.maximum) << a.date;
  }

  Montant forfait;
  Coefficient taux;
  EXPECT_EQ(lecture.rechercherForfaitModificateur(Code("A"), date(20190101), forfait), NOX_CR_OK);
  EXPECT_EQ(forfait.lireValeur(), 24.77);
  EXPECT_EQ(lecture.rechercherTauxModificateur(Code("7"), date(20190101), taux), NOX_CR_OK);
  EXPECT_EQ(taux.lireValeur(), 1.06);
  EXPECT_EQ(lecture.rechercherTauxModificateur(Code("M"), date(20190101), taux), NOX_CR_PAS_D_HISTORIQUE);
  EXPECT_EQ(lecture.rechercherTauxModificateur(Code("B"), date(20190101), taux), NOX_CR_CODE_INCONNU);

  ListeCodes compatibles;
  EXPECT_EQ(lecture.rechercherModificateursCompatibles(Code("A"), date(20191231), compatibles), NOX_CR_OK);
  EXPECT_EQ(textes(compatibles), (Textes{"M", "7"}));
  EXPECT_EQ(lecture.rechercherModificateursCompatibles(Code("A"), date(20200101), compatibles), NOX_CR_OK);
  EXPECT_EQ(textes(compatibles), (Textes{"7"}));
  EXPECT_EQ(lecture.rechercherModificateursCompatibles(Code("7"), date(20200101), compatibles), NOX_CR_OK);
  EXPECT_TRUE(compatibles.estVide());

  Booleen coherence;
  Booleen multiple(true);
  EXPECT_EQ(lecture.rechercherTopControleCoherence(Code("A"), date(20200101), coherence), NOX_CR_OK);
  EXPECT_EQ(lecture.rechercherTopPresenceMultiple(Code("A"), date(20200101), multiple), NOX_CR_OK);
  EXPECT_TRUE(coherence.estVrai());
  EXPECT_FALSE(multiple.estVrai());
  Code oc("X");
  EXPECT_EQ(lecture.rechercherModificateurOC(Code("M"), date(20200101), oc), NOX_CR_OK);
  EXPECT_EQ(oc.vue(), "");
}

TEST_F(RequetesTables, PlageHorsDeSaTable) {
  poser<Modificateur>({{'A', {}, {}, {}, {65535, 65535}, {}}});
  poser<HistoriqueValeurModificateur>({{jour(20100101), jour(OUVERTE), 1, 1}});
  poser<Codes>({{{0, 2}}, {{2, 1}}});
  poser<LibelleCode>({{TexteVariable("1"), TexteVariable("un")}});
  Montant forfait;
  EXPECT_EQ(lecture.rechercherForfaitModificateur(Code("A"), date(20200101), forfait),
            NOX_CR_PAS_D_HISTORIQUE);
  EXPECT_EQ(modification.modifierForfaitModificateur(Code("A"), date(20200101), Montant(2)),
            NOX_CR_DONNEE_ABSENTE);
  Texte libelle;
  EXPECT_EQ(lecture.rechercherLibelleCode(1, Code("1"), libelle), NOX_CR_CODE_INCONNU);
  EXPECT_EQ(lecture.rechercherLibelleCode(2, Code("1"), libelle), NOX_CR_CODE_INCONNU);
}

TEST_F(RequetesTables, AssociationsSpecialitesRegroupements) {
  poser<AssociationNonPrevue>({{'1', {0, 1}}, {'2', {1, 1}}, {'3', {0, 0}}});
  poser<HistoriqueAssociationNonPrevue>(
      {{jour(20100101), jour(OUVERTE), 1.0}, {jour(20100101), jour(20201231), 0.5}});
  poser<Specialite>({{CodeFixe<2>("01"), {0, 1}}, {CodeFixe<2>("9"), {1, 1}}});
  poser<HistoriqueSpecialite>({{jour(20100101), jour(OUVERTE), CodeFixe<2>("02")},
                               {jour(20100101), jour(20101231), CodeFixe<2>("3")}});
  poser<ClasseSpecialite>({{CodeFixe<2>("02"), {0, 1}}});
  poser<HistoriqueClasseSpecialite>({{jour(20100101), jour(OUVERTE), {1, 2}}});
  poser<SpecialiteDansClasse>({{CodeFixe<2>("99")}, {CodeFixe<2>("01")}, {CodeFixe<2>("9")}});
  poser<CodeRegroupement>({{CodeFixe<3>("ADC"), jour(20100101), jour(20191231)},
                           {CodeFixe<3>("ADC"), jour(20220101), jour(OUVERTE)},
                           {CodeFixe<3>("ATM"), jour(20100101), jour(OUVERTE)}});
  poser<ObligationCodage>({{CodeFixe<3>("ATM"), {0, 2}}});
  poser<DateObligationCodage>({{CodeFixe<2>("01"), jour(20060101)}, {CodeFixe<2>("9"), jour(20070101)}});

  ListeCodes codes;
  EXPECT_EQ(lecture.rechercherCodesAssociationsNonPrevues(date(20210101), codes), NOX_CR_OK);
  EXPECT_EQ(textes(codes), (Textes{"1"}));
  EXPECT_TRUE(lecture.rechercherExistenceAssociationNP(Code("2"), date(20201231)));
  EXPECT_FALSE(lecture.rechercherExistenceAssociationNP(Code("2"), date(20210101)));
  EXPECT_FALSE(lecture.rechercherExistenceAssociationNP(Code("4"), date(20201231)));
  Coefficient coefficient;
  EXPECT_EQ(lecture.rechercherCoefficientAssociationNonPrevue(Code("2"), date(20201231), coefficient),
            NOX_CR_OK);
  EXPECT_EQ(coefficient.lireValeur(), 0.5);

  Code classe;
  EXPECT_EQ(lecture.rechercherRegroupementSpecialites(Code("9"), date(20101231), classe), NOX_CR_OK);
  EXPECT_EQ(classe.vue(), "3");
  EXPECT_EQ(lecture.rechercherRegroupementSpecialites(Code("9"), date(20110101), classe),
            NOX_CR_PAS_D_HISTORIQUE);
  EXPECT_EQ(lecture.rechercherSpecialitesDansClasse(Code("02"), date(20110101), codes), NOX_CR_OK);
  EXPECT_EQ(textes(codes), (Textes{"01", "9"}));

  const struct {
    unsigned date;
    bool adc;
    Textes codes;
  } regroupements[] = {
      {20191231, true, {"ADC", "ATM"}}, {20200101, false, {"ATM"}}, {20220101, true, {"ADC", "ATM"}}};
  for (const auto& r : regroupements) {
    EXPECT_EQ(lecture.rechercherExistenceCodeRegroupement(Code("ADC"), date(r.date)), r.adc) << r.date;
    EXPECT_EQ(lecture.rechercherCodesRegroupement(date(r.date), codes), NOX_CR_OK);
    EXPECT_EQ(textes(codes), r.codes);
  }
  EXPECT_TRUE(lecture.rechercherExistenceCodeRegroupement(Code("ADC")));
  EXPECT_FALSE(lecture.rechercherExistenceCodeRegroupement(Code("AD")));
  EXPECT_FALSE(lecture.rechercherExistenceCodeRegroupement(Code("ADCX"), date(20220101)));

  Date obligation;
  EXPECT_EQ(lecture.rechercherDateObligationCodage(Code("ATM"), Code("9"), obligation), NOX_CR_OK);
  EXPECT_EQ(obligation, date(20070101));
  EXPECT_EQ(lecture.rechercherDateObligationCodage(Code("ATM"), Code("02"), obligation), NOX_CR_CODE_INCONNU);
  EXPECT_EQ(lecture.rechercherDateObligationCodage(Code("ADC"), Code("9"), obligation), NOX_CR_CODE_INCONNU);
  EXPECT_TRUE(lecture.rechercherExistenceNaturePrestation(Code("ATM")));
  EXPECT_FALSE(lecture.rechercherExistenceNaturePrestation(Code("ADC")));
}

TEST_F(RequetesTables, JoursFeries) {
  poser<JourFerieCaisse>({{CodeFixe<3>("000"), {0, 2}}, {CodeFixe<3>("974"), {2, 1}}});
  poser<JourFerieListe>({{jour(20240101), '1', jour(20050101), jour(OUVERTE)},
                         {jour(20240520), '1', jour(20050101), jour(20231231)},
                         {jour(20241220), '1', jour(20050101), jour(OUVERTE)}});
  TypeListe<Date> jours;
  EXPECT_EQ(lecture.rechercherJoursFeriesNationaux(date(20231231), jours), NOX_CR_OK);
  EXPECT_EQ(jours.lireNombreElements(), 2);
  EXPECT_EQ(lecture.rechercherJoursFeriesNationaux(date(20240101), jours), NOX_CR_OK);
  ASSERT_EQ(jours.lireNombreElements(), 1);
  EXPECT_EQ(jours[0], date(20240101));
  EXPECT_EQ(lecture.rechercherJoursFeriesCaisse(Code("974"), date(20240101), jours), NOX_CR_OK);
  ASSERT_EQ(jours.lireNombreElements(), 1);
  EXPECT_EQ(jours[0], date(20241220));
  EXPECT_EQ(lecture.rechercherJoursFeriesCaisse(Code("971"), date(20240101), jours), NOX_CR_CODE_INCONNU);
}

TEST_F(RequetesTables, NumerosDeConceptsEtDeLibelles) {
  poser<ConceptCCAM>({{{0, 1}}, {{1, 1}}});
  poser<HistoriqueConceptCCAM>(
      {{jour(20100101), jour(20201231), {0, 2}}, {jour(20100101), jour(OUVERTE), {2, 2}}});
  poser<ValeurConceptCCAM>(
      {{TexteVariable("1")}, {TexteVariable("ADC")}, {TexteVariable("A")}, {TexteVariable("pas un code")}});
  ListeCodes valeurs = listeOccupee();
  EXPECT_EQ(lecture.rechercherValeursConcept(0, date(20200101), valeurs), NOX_CR_CODE_INCONNU);
  EXPECT_EQ(lecture.rechercherValeursConcept(3, date(20200101), valeurs), NOX_CR_CODE_INCONNU);
  EXPECT_EQ(lecture.rechercherValeursConcept(1, date(20210101), valeurs), NOX_CR_PAS_D_HISTORIQUE);
  EXPECT_EQ(textes(valeurs), (Textes{"AVANT"}));
  EXPECT_EQ(lecture.rechercherValeursConcept(1, date(20201231), valeurs), NOX_CR_OK);
  EXPECT_EQ(textes(valeurs), (Textes{"1", "ADC"}));
  EXPECT_EQ(lecture.rechercherValeursConcept(2, date(20201231), valeurs), NOX_CR_DONNEE_ABSENTE);
  EXPECT_EQ(textes(valeurs), (Textes{"A"}));

  poser<Codes>({{{0, 1}}, {{1, 2}}});
  poser<LibelleCode>({{TexteVariable("1"), TexteVariable("un")},
                      {TexteVariable("1"), TexteVariable("une")},
                      {TexteVariable("10"), TexteVariable("dix")}});
  const struct {
    unsigned short numero;
    const char* code;
    CodeRetour cr;
    const char* libelle;
  } cas[] = {{0, "1", NOX_CR_CODE_INCONNU, "avant"},
             {1, "1", NOX_CR_OK, "un"},
             {1, "10", NOX_CR_CODE_INCONNU, "avant"},
             {2, "1", NOX_CR_OK, "une"},
             {2, "10", NOX_CR_OK, "dix"},
             {3, "1", NOX_CR_CODE_INCONNU, "avant"}};
  for (const auto& c : cas) {
    Texte libelle("avant");
    EXPECT_EQ(lecture.rechercherLibelleCode(c.numero, Code(c.code), libelle), c.cr);
    EXPECT_EQ(libelle.vue(), c.libelle) << c.numero << c.code;
  }
}

TEST_F(RequetesTables, Menus) {
  poser<Arborescence>({{1, TexteVariable("racine"), 0, TexteVariable()},
                       {7, TexteVariable("chapitre"), 1, TexteVariable("notes")},
                       {70000, TexteVariable("section"), 7, TexteVariable()}});
  std::uint32_t pere = 99;
  Texte titre;
  Texte notes("avant");
  EXPECT_EQ(lecture.rechercherMenuPere(70000, pere), NOX_CR_OK);
  EXPECT_EQ(pere, 7U);
  EXPECT_EQ(lecture.rechercherTitreMenu(7, titre), NOX_CR_OK);
  EXPECT_EQ(titre.vue(), "chapitre");
  EXPECT_EQ(lecture.rechercherNotesMenu(70000, notes), NOX_CR_OK);
  EXPECT_EQ(notes.vue(), "");
  EXPECT_EQ(lecture.rechercherMenuPere(8, pere), NOX_CR_CODE_INCONNU);
  EXPECT_EQ(pere, 7U);
}

TEST_F(RequetesTables, MotsCles) {
  poser<MotCle>({{TexteVariable("APPENDICE"), TexteVariable("APPENDICE"), {0, 0}, {0, 3}},
                 {TexteVariable("dent"), TexteVariable("DENT"), {0, 2}, {3, 1}}});
  poser<ActeIndexe>({{CodeActe("HHFA001"), 1},
                     {CodeActe("HHFA011"), 6},
                     {CodeActe("HHFA016"), 0x80000000U},
                     {CodeActe("HBGD036"), 2}});
  poser<Synonyme>({{TexteVariable("molaire")}, {TexteVariable("quenotte")}});
  const struct {
    const char* mot;
    unsigned long cadre;
    CodeRetour cr;
    Textes actes;
  } cas[] = {{"APPENDICE", 0, NOX_CR_OK, {"HHFA001", "HHFA011", "HHFA016"}},
             {"APPENDICE", 0xFFFFFFFFUL, NOX_CR_OK, {"HHFA001", "HHFA011", "HHFA016"}},
             {"APPENDICE", 1, NOX_CR_OK, {"HHFA001"}},
             {"APPENDICE", 3, NOX_CR_OK, {"HHFA001", "HHFA011"}},
             {"APPENDICE", 8, NOX_CR_OK, {}},
             {"DENT", 2, NOX_CR_OK, {"HBGD036"}},
             {"APPENDICEX", 0, NOX_CR_CODE_INCONNU, {}},
             {"", 0, NOX_CR_CODE_INCONNU, {}}};
  for (const auto& c : cas) {
    ListeCodes actes = listeOccupee();
    EXPECT_EQ(lecture.rechercherActesIndexes(Texte(c.mot), c.cadre, actes), c.cr) << c.mot;
    EXPECT_EQ(textes(actes), c.actes) << c.mot << c.cadre;
  }
  TypeListe<Texte> mots;
  EXPECT_EQ(lecture.rechercherMotsCles(mots), NOX_CR_OK);
  EXPECT_EQ(textes(mots), (Textes{"APPENDICE", "dent"}));
  EXPECT_EQ(lecture.rechercherSynonymes(Texte("DENT"), mots), NOX_CR_OK);
  EXPECT_EQ(textes(mots), (Textes{"molaire", "quenotte"}));
  EXPECT_EQ(lecture.rechercherSynonymes(Texte("APPENDICE"), mots), NOX_CR_OK);
  EXPECT_TRUE(mots.estVide());

  // A list counts its elements in 16 bits.
  referentiel.lignes<MotCle>().resize(65535);
  EXPECT_EQ(lecture.rechercherMotsCles(mots), NOX_CR_OK);
  EXPECT_EQ(mots.lireNombreElements(), 65535);
  referentiel.lignes<MotCle>().resize(65536);
  EXPECT_EQ(lecture.rechercherMotsCles(mots), NOX_CR_MEMOIRE);
}

TEST_F(RequetesTables, Filtres) {
  for (const char* code : {"AAFA001", "HBJD001", "HBJD002", "HBQK", "HC"}) {
    referentiel.lignes<Index>().push_back({CodeActe(code), 0});
  }
  const struct {
    const char* filtre;
    Textes actes;
  } cas[] = {{"", {"AAFA001", "HBJD001", "HBJD002", "HBQK", "HC"}},
             {"H", {"HBJD001", "HBJD002", "HBQK", "HC"}},
             {"HBJD", {"HBJD001", "HBJD002"}},
             {"HBQK1", {}},
             {"Z", {}},
             {"A", {"AAFA001"}},
             {"HBJD001      ", {"HBJD001"}},
             {"HBJD001       ", {}}};
  for (const auto& c : cas) {
    ListeCodes actes = listeOccupee();
    EXPECT_EQ(lecture.rechercherCodesActes(actes, c.filtre), NOX_CR_OK);
    EXPECT_EQ(textes(actes), c.actes) << c.filtre;
  }
  referentiel.lignes<Index>().resize(65536, {CodeActe("ZZ"), 0});
  ListeCodes actes;
  EXPECT_EQ(lecture.rechercherCodesActes(actes, ""), NOX_CR_MEMOIRE);
  EXPECT_EQ(actes.lireNombreElements(), 65535);
}

TEST_F(RequetesTables, Regles) {
  Texte principal;
  Texte secondaire;
  Code niveau;
  Code reference;
  Code forcage("X");
  const auto informations = [&](const char* regle) {
    return lecture.rechercherInformationsRegle(Code(regle), principal, secondaire, niveau, reference,
                                               forcage);
  };
  EXPECT_EQ(informations("PROD500"), NOX_CR_CODE_INCONNU);
  poser<InformationRegle>({{CodeFixe<9>("PROD500"), TexteVariable("acte inconnu"), TexteVariable("%s"), 'O',
                            CodeFixe<10>("RC500"), ' '},
                           {CodeFixe<9>("PROD895A"), TexteVariable("agrement"), TexteVariable(), 'N',
                            CodeFixe<10>("RC895A"), 'F'}});
  EXPECT_EQ(informations("PROD500"), NOX_CR_OK);
  EXPECT_EQ(principal.vue(), "acte inconnu");
  EXPECT_EQ(secondaire.vue(), "%s");
  EXPECT_EQ(niveau.vue(), "O");
  EXPECT_EQ(reference.vue(), "RC500");
  EXPECT_EQ(forcage.vue(), "");
  EXPECT_EQ(informations("PROD895"), NOX_CR_CODE_INCONNU);
  EXPECT_EQ(informations("PROD895ABC"), NOX_CR_DONNEE_ABSENTE);

  poser<ReferenceCdC>({{CodeFixe<10>("PROD500"), CodeFixe<10>("RC500")}});
  EXPECT_EQ(lecture.rechercherReferenceCdC(Code("PROD500"), reference), NOX_CR_OK);
  EXPECT_EQ(lecture.rechercherReferenceCdC(Code("PROD501"), reference), NOX_CR_CODE_INCONNU);
  poser<ServiceDebrayable>({{TexteVariable("C-Base"), {1, 1}}, {TexteVariable("C-Pu"), {0, 2}}});
  poser<ReferenceRegleEntrainantDebrayage>({{CodeFixe<10>("RC840")}, {CodeFixe<10>("RC850")}});
  poser<ReferenceRegleEnErreur>({{CodeFixe<10>("RC500"), {0, 1}}});
  poser<ReferenceRegleNonVerifiable>({{CodeFixe<10>("RC510")}});
  ListeCodes regles;
  EXPECT_EQ(lecture.rechercherReglesEntrainantDebrayage(Texte("C-Pu"), regles), NOX_CR_OK);
  EXPECT_EQ(textes(regles), (Textes{"RC840", "RC850"}));
  EXPECT_EQ(lecture.rechercherReglesEntrainantDebrayage(Texte("C-PU"), regles), NOX_CR_CODE_INCONNU);
  EXPECT_EQ(lecture.rechercherReglesNonVerifiables(Code("RC500"), regles), NOX_CR_OK);
  EXPECT_EQ(textes(regles), (Textes{"RC510"}));
  EXPECT_EQ(lecture.rechercherReglesNonVerifiables(Code("RC510"), regles), NOX_CR_CODE_INCONNU);
}

TEST_F(RequetesTables, CombinaisonDesIndicateurs) {
  poser<PrioriteIndicateurForcage>({{'F', 2}, {'G', 1}, {'R', 1}, {'S', 3}});
  poser<ExceptionPrioriteIndicateur>({{'G', {0, 2}}});
  poser<ValeurException>({{'S', 'G'}, {'T', 'U'}});
  const struct {
    const char* nouveau;
    const char* present;
    CodeRetour cr;
    const char* resultat;
  } cas[] = {{"G", "S", NOX_CR_OK, "G"},           {"S", "G", NOX_CR_OK, "S"},
             {"G", "T", NOX_CR_OK, "U"},           {"G", "F", NOX_CR_OK, "F"},
             {"G", "R", NOX_CR_OK, "R"},           {"R", "G", NOX_CR_OK, "G"},
             {"T", "G", NOX_CR_CODE_INCONNU, "-"}, {"F", "T", NOX_CR_CODE_INCONNU, "-"}};
  for (const auto& c : cas) {
    Code resultat("-");
    EXPECT_EQ(lecture.rechercherValeurCombinaisonIndicateurs(Code(c.nouveau), Code(c.present), resultat),
              c.cr);
    EXPECT_EQ(resultat.vue(), c.resultat) << c.nouveau << c.present;
  }
}

TEST_F(RequetesTables, Descriptifs) {
  poser<DescriptifSuperGroupe>(
      {{37, TexteVariable("CCAM_37"), '1', {0, 1}}, {5, TexteVariable("sous"), '\0', {0, 0}}});
  poser<FilsSuperGroupe>({{0, 65535, 1, 2}});
  poser<DescriptifGroupe>({{3012, {1, 1}}, {3013, {0, 0}}});
  poser<DescriptifChamp>({{'N', 'N', 9, 9, {0, 0}}, {'A', 'C', 7, 13, {0, 2}}});
  poser<ValeurAutorisee>({{TexteVariable("O")}, {TexteVariable()}});
  std::uint16_t nombre = 0;
  EXPECT_EQ(lecture.rechercherNombreSuperGroupes(nombre), NOX_CR_OK);
  EXPECT_EQ(nombre, 2);

  std::uint16_t numero = 0;
  Texte nom;
  Code fonction("X");
  EXPECT_EQ(lecture.rechercherDescriptifSuperGroupe(1, numero, nom, fonction, nombre), NOX_CR_OK);
  EXPECT_EQ(fonction.vue(), "");
  EXPECT_EQ(lecture.rechercherDescriptifSuperGroupe(2, numero, nom, fonction, nombre), NOX_CR_CODE_INCONNU);
  EXPECT_EQ(lecture.rechercherDescriptifGroupe(1, numero, nombre), NOX_CR_OK);
  EXPECT_EQ(numero, 3013);
  EXPECT_EQ(lecture.rechercherDescriptifGroupe(2, numero, nombre), NOX_CR_CODE_INCONNU);

  char format = 0;
  char type = 0;
  std::uint16_t minimum = 0;
  std::uint16_t maximum = 0;
  ListeCodes valeurs;
  EXPECT_EQ(lecture.rechercherDescriptifChamp(0, 0, format, type, minimum, maximum, valeurs), NOX_CR_OK);
  EXPECT_EQ(format, 'A');
  EXPECT_EQ(type, 'C');
  EXPECT_EQ(minimum, 7);
  EXPECT_EQ(maximum, 13);
  EXPECT_EQ(textes(valeurs), (Textes{"O", ""}));
  for (const auto& [groupe, champ] : {std::pair(0, 1), std::pair(1, 0), std::pair(2, 0)}) {
    EXPECT_EQ(lecture.rechercherDescriptifChamp(static_cast<std::uint16_t>(groupe),
                                                static_cast<std::uint16_t>(champ), format, type, minimum,
                                                maximum, valeurs),
              NOX_CR_CODE_INCONNU);
  }
  std::uint16_t groupe = 9;
  std::uint16_t superGroupe = 9;
  EXPECT_EQ(lecture.rechercherDescriptifFils(0, 0, superGroupe, groupe, minimum, maximum), NOX_CR_OK);
  EXPECT_EQ(superGroupe, 65535);
  EXPECT_EQ(groupe, 0);
  EXPECT_EQ(maximum, 2);
  EXPECT_EQ(lecture.rechercherDescriptifFils(0, 1, superGroupe, groupe, minimum, maximum),
            NOX_CR_CODE_INCONNU);
  EXPECT_EQ(lecture.rechercherDescriptifFils(2, 0, superGroupe, groupe, minimum, maximum),
            NOX_CR_CODE_INCONNU);
}

}  // namespace
}  // namespace noxlux
