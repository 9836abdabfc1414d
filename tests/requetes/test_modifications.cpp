// Changes, cancellations and re-application: bounds of the effect date, what a change leaves alone, states
// given back exactly, lack of memory at every allocation.
#include <functional>
#include <new>

#include "referent/ecrivain.h"
#include "requetes/allocations.h"
#include "requetes/magasin_essai.h"

namespace noxlux {
namespace {

constexpr DateBrute SANS_FIN{};

class Modifications : public MagasinEssai {
 protected:
  Modifications() {
    poserActe("AAFA001");
    acte = &poserActe("HBJD001");
    poser<Modificateur>({{'A', {}, {}, {}, {0, 1}, {}},
                         {'J', {}, {}, {}, {1, 2}, {}},
                         {'M', {}, {}, {}, {}, {}},
                         {'U', {}, {}, {}, {3, 1}, {}}});
    poser<HistoriqueValeurModificateur>({{jour(20100101), SANS_FIN, 1, 1.1},
                                         {jour(20150101), jour(20291231), 2, 1.2},
                                         {jour(20100101), jour(20141231), 3, 1.3},
                                         {jour(20100101), SANS_FIN, 4, 1.4}});
    poser<AssociationNonPrevue>({{'1', {0, 1}}, {'2', {1, 1}}});
    poser<HistoriqueAssociationNonPrevue>({{jour(20100101), SANS_FIN, 1.0}, {jour(20100101), SANS_FIN, 0.5}});
    poser<Seuil>({{jour(20200101), jour(20291231), 120, 121, 122, 123},
                  {jour(20100101), jour(20191231), 91, 92, 93, 94}});
    poser<ReductionNonConventionne>({{jour(20100101), SANS_FIN, 1.5, 0.8}});
    poser<CodeRegroupement>(
        {{CodeFixe<3>("ADC"), jour(20100101), SANS_FIN}, {CodeFixe<3>("ATM"), jour(20100101), SANS_FIN}});
    std::vector<Codes> codes(11);
    codes[7].valeurs = {0, 1};
    codes[8].valeurs = {1, 2};
    codes[9].valeurs = {3, 1};
    poser<Codes>(std::move(codes));
    poser<LibelleCode>({{TexteVariable("T"), TexteVariable("deplacement")},
                        {TexteVariable("ADC"), TexteVariable("chirurgie")},
                        {TexteVariable("ATM"), TexteVariable("echographie")},
                        {TexteVariable("1"), TexteVariable("dix")}});
  }

  double prix(unsigned d) {
    Montant montant(-1);
    lecture.rechercherPrixUnitaire(ACTE, UN, ZERO, date(d), montant);
    return montant.lireValeur();
  }
  double forfait(const char* code, unsigned d) {
    Montant montant(-1);
    lecture.rechercherForfaitModificateur(Code(code), date(d), montant);
    return montant.lireValeur();
  }
  double seuil(unsigned short position, unsigned d) {
    Montant montant(-1);
    lecture.rechercherSeuilExoTM(position, date(d), montant);
    return montant.lireValeur();
  }
  std::string libelle(unsigned short table, const char* code) {
    Texte texte("?");
    lecture.rechercherLibelleCode(table, Code(code), texte);
    return texte.lireTexte();
  }

  // Writes the act into a reference file, where a load on first use finds it.
  void ecrireActe() {
    constexpr long POSITION = 40;
    std::FILE* fichier = std::fopen((repertoire + NOM_FICHIER_REFERENCE).c_str(), "wb");
    ASSERT_NE(fichier, nullptr);
    std::fprintf(fichier, "%*s", static_cast<int>(POSITION), "");
    Ecrivain ecrivain(&referentiel, fichier);
    EXPECT_EQ(acte->ecrireNiveauActe(ecrivain), NOX_CR_OK);
    std::fclose(fichier);
    referentiel.lignes<Index>()[1].position = POSITION;
  }

  NiveauActe* acte;
};

TEST_F(Modifications, PrixUnitaire) {
  const struct {
    unsigned date;
    double prix;
    CodeRetour cr;
  } cas[] = {{20200531, 40, NOX_CR_DATE_EFFET},
             {20200601, 41, NOX_CR_OK},
             {20220101, 42, NOX_CR_OK},
             {20220101, 43, NOX_CR_OK},
             {20211231, 44, NOX_CR_DATE_EFFET}};
  for (const auto& c : cas) {
    const std::string avant = contenu();
    EXPECT_EQ(modification.modifierPrixUnitaire(ACTE, UN, ZERO, date(c.date), Montant(c.prix)), c.cr);
    EXPECT_EQ(contenu() == avant, c.cr != NOX_CR_OK) << c.date;
  }
  EXPECT_EQ(prix(20200531), 20);
  EXPECT_EQ(prix(20200601), 41);
  EXPECT_EQ(prix(20211231), 41);
  EXPECT_EQ(prix(20220101), 43);
  // The other values of the phase go on.
  Coefficient majoration;
  lecture.rechercherMajorationDOM(ACTE, UN, ZERO, 4, date(20230101), majoration);
  EXPECT_EQ(majoration.lireValeur(), 1.3);
  ASSERT_EQ(referentiel.lignes<ModificationPrixUnitaire>().size(), 3U);
  const ModificationPrixUnitaire& derniere = referentiel.lignes<ModificationPrixUnitaire>()[2];
  EXPECT_EQ(derniere.acte.vue(), "HBJD001");
  EXPECT_EQ(derniere.dateEffet, jour(20220101));
  EXPECT_EQ(derniere.valeur, 43);
}

TEST_F(Modifications, RefusSansEffet) {
  acte->activites[0].phases.emplace_back().codePhase = '1';
  acte->activites.emplace_back().codeActivite = '4';
  const std::string avant = contenu();
  ModificationDonnees& m = modification;
  const Date apres = date(20250101);
  const Montant montant(1);
  const Coefficient coefficient(1);
  EXPECT_EQ(m.modifierPrixUnitaire(Code("INCONNU"), UN, ZERO, apres, montant), NOX_CR_CODE_INCONNU);
  EXPECT_EQ(m.modifierPrixUnitaire(ACTE, Code("2"), ZERO, apres, montant), NOX_CR_CODE_INCONNU);
  EXPECT_EQ(m.modifierPrixUnitaire(ACTE, UN, UN, apres, montant), NOX_CR_DONNEE_ABSENTE) << "no history";
  EXPECT_EQ(m.modifierPrixUnitaire(Code("HBJD0010000000"), UN, ZERO, apres, montant), NOX_CR_DONNEE_ABSENTE);
  EXPECT_EQ(m.modifierCodeRegroupement(ACTE, Code("4"), apres, Code("ATM")), NOX_CR_DONNEE_ABSENTE);
  EXPECT_EQ(m.modifierCodeRegroupement(ACTE, UN, apres, Code("ATMX")), NOX_CR_DONNEE_ABSENTE);
  EXPECT_EQ(m.modifierCodeRegroupement(ACTE, UN, date(20050228), Code("ATM")), NOX_CR_DATE_EFFET);
  for (const std::uint16_t position : std::initializer_list<std::uint16_t>{0, 5}) {
    EXPECT_EQ(m.modifierMajorationDOM(ACTE, UN, ZERO, apres, position, coefficient), NOX_CR_DONNEE_ABSENTE);
    EXPECT_EQ(m.modifierSeuil(apres, position, montant), NOX_CR_DONNEE_ABSENTE);
  }
  EXPECT_EQ(m.modifierForfaitModificateur(Code("Z"), apres, montant), NOX_CR_CODE_INCONNU);
  EXPECT_EQ(m.modifierForfaitModificateur(Code("M"), apres, montant), NOX_CR_DONNEE_ABSENTE) << "no history";
  EXPECT_EQ(m.modifierTauxModificateur(Code("J"), date(20141231), coefficient), NOX_CR_DATE_EFFET);
  EXPECT_EQ(m.modifierTauxModificateur(Code("J"), date(20300101), coefficient), NOX_CR_DATE_EFFET);
  EXPECT_EQ(m.modifierCoefficientAssociationNonPrevue(Code("3"), apres, coefficient), NOX_CR_CODE_INCONNU);
  EXPECT_EQ(m.modifierForfaitNonConventionnes(date(20091231), montant), NOX_CR_DATE_EFFET);
  EXPECT_EQ(m.ajouterCodeRegroupement(apres, Code("ATM"), Texte("x")), NOX_CR_REGROUPEMENT_EXISTANT);
  EXPECT_EQ(m.ajouterCodeRegroupement(apres, Code("ATMX"), Texte("x")), NOX_CR_DONNEE_ABSENTE);
  EXPECT_EQ(m.annulerModificationsPrixUnitaire(ACTE, UN, ZERO), NOX_CR_NON_MODIFIE);
  EXPECT_EQ(m.annulerModificationsSupplementCharges(ACTE, UN, ZERO), NOX_CR_NON_MODIFIE);
  EXPECT_EQ(m.annulerModificationsMajorationDOM(ACTE, UN, ZERO, 1), NOX_CR_NON_MODIFIE);
  EXPECT_EQ(m.annulerModificationsCodeRegroupement(ACTE, UN), NOX_CR_NON_MODIFIE);
  EXPECT_EQ(m.annulerModificationsValeurModificateur(Code("J")), NOX_CR_NON_MODIFIE);
  EXPECT_EQ(m.annulerModificationsCoefficientAssociationNonPrevue(UN), NOX_CR_NON_MODIFIE);
  EXPECT_EQ(m.annulerModificationsSeuilExoTM(1), NOX_CR_NON_MODIFIE);
  EXPECT_EQ(m.annulerModificationsValeurNonConventionnes(), NOX_CR_NON_MODIFIE);
  EXPECT_EQ(m.annulerNouveauxCodesRegroupement(), NOX_CR_NON_MODIFIE);
  EXPECT_EQ(contenu(), avant);
  referentiel.lignes<Seuil>().clear();
  EXPECT_EQ(m.modifierSeuil(apres, 1, montant), NOX_CR_DONNEE_ABSENTE);
  EXPECT_TRUE(referentiel.lignes<ModificationSeuil>().empty());
}

TEST_F(Modifications, SeuilsEtLeurAnnulation) {
  const std::string avant = contenu();
  EXPECT_EQ(modification.modifierSeuil(date(20191231), 1, Montant(1)), NOX_CR_DATE_EFFET);
  EXPECT_EQ(modification.modifierSeuil(date(20300101), 1, Montant(1)), NOX_CR_DATE_EFFET);
  EXPECT_EQ(modification.modifierSeuil(date(20200101), 1, Montant(130)), NOX_CR_OK);
  EXPECT_EQ(modification.modifierSeuil(date(20220101), 2, Montant(131)), NOX_CR_OK);
  EXPECT_EQ(modification.modifierSeuil(date(20230101), 1, Montant(140)), NOX_CR_OK);
  EXPECT_EQ(modification.modifierSeuil(date(20291231), 1, Montant(150)), NOX_CR_OK) << "last day of validity";
  const auto seuils = [&](std::initializer_list<unsigned> dates) {
    std::vector<double> valeurs;
    for (const unsigned d : dates) {
      valeurs.push_back(seuil(1, d));
      valeurs.push_back(seuil(2, d));
    }
    return valeurs;
  };
  const auto tous = {20191231U, 20200101U, 20211231U, 20220101U, 20230101U, 20291231U, 20300101U};
  EXPECT_EQ(seuils(tous),
            (std::vector<double>{91, 92, 130, 121, 130, 121, 130, 131, 140, 131, 150, 131, -1, -1}));
  // One position is given back; the changes of the other one hold.
  EXPECT_EQ(modification.annulerModificationsSeuilExoTM(1), NOX_CR_OK);
  EXPECT_EQ(seuils(tous),
            (std::vector<double>{91, 92, 120, 121, 120, 121, 120, 131, 120, 131, 120, 131, -1, -1}));
  EXPECT_EQ(referentiel.lignes<ModificationSeuil>().size(), 1U);
  EXPECT_EQ(modification.annulerModificationsSeuilExoTM(1), NOX_CR_NON_MODIFIE);
  EXPECT_EQ(modification.annulerModificationsSeuilExoTM(2), NOX_CR_OK);
  EXPECT_EQ(contenu(), avant);
}

TEST_F(Modifications, HistoriquesDUneTablePartagee) {
  const std::string avant = contenu();
  EXPECT_EQ(modification.modifierForfaitModificateur(Code("J"), date(20220101), Montant(20)), NOX_CR_OK);
  EXPECT_EQ(modification.modifierTauxModificateur(Code("J"), date(20220101), Coefficient(2.5)), NOX_CR_OK);
  EXPECT_EQ(modification.modifierForfaitModificateur(Code("U"), date(20220101), Montant(40)), NOX_CR_OK);
  const struct {
    const char* code;
    std::vector<double> forfaits;  // 20141231, 20150101, 20211231, 20220101, 20291231, 20300101
  } cas[] = {{"A", {1, 1, 1, 1, 1, 1}}, {"J", {3, 2, 2, 20, 20, -1}}, {"U", {4, 4, 4, 40, 40, 40}}};
  for (const auto& c : cas) {
    std::vector<double> lus;
    for (const unsigned d : {20141231U, 20150101U, 20211231U, 20220101U, 20291231U, 20300101U}) {
      lus.push_back(forfait(c.code, d));
    }
    EXPECT_EQ(lus, c.forfaits) << c.code;
  }
  Coefficient taux;
  lecture.rechercherTauxModificateur(Code("J"), date(20220101), taux);
  EXPECT_EQ(taux.lireValeur(), 2.5);
  const ModificationModificateur& deuxieme = referentiel.lignes<ModificationModificateur>()[1];
  EXPECT_EQ(deuxieme.forfait, 20) << "both values are recorded";
  EXPECT_EQ(deuxieme.taux, 2.5);
  EXPECT_EQ(modification.annulerModificationsValeurModificateur(Code("J")), NOX_CR_OK);
  EXPECT_EQ(forfait("J", 20291231), 2);
  EXPECT_EQ(forfait("U", 20220101), 40);
  EXPECT_EQ(modification.annulerModificationsValeurModificateur(Code("U")), NOX_CR_OK);
  EXPECT_EQ(contenu(), avant);
}

TEST_F(Modifications, LignesCommunesADeuxCodes) {
  // A compact reference may let two codes share their histories: a change of one leaves the other alone.
  poser<AssociationNonPrevue>({{'1', {0, 2}}, {'2', {0, 2}}, {'3', {1, 1}}});
  poser<HistoriqueAssociationNonPrevue>(
      {{jour(20200101), SANS_FIN, 1.0}, {jour(20100101), jour(20191231), 0.5}});
  EXPECT_EQ(modification.modifierCoefficientAssociationNonPrevue(Code("2"), date(20220101), Coefficient(0.7)),
            NOX_CR_OK);
  const auto coefficient = [&](const char* code, unsigned d) {
    Coefficient valeur(9);
    lecture.rechercherCoefficientAssociationNonPrevue(Code(code), date(d), valeur);
    return valeur.lireValeur();
  };
  for (const bool modifie : {true, false}) {
    EXPECT_EQ(coefficient("1", 20220101), 1.0);
    EXPECT_EQ(coefficient("1", 20191231), 0.5);
    EXPECT_EQ(coefficient("2", 20211231), 1.0);
    EXPECT_EQ(coefficient("2", 20220101), modifie ? 0.7 : 1.0);
    EXPECT_EQ(coefficient("2", 20191231), 0.5);
    EXPECT_EQ(coefficient("3", 20191231), 0.5);
    EXPECT_EQ(modification.annulerModificationsCoefficientAssociationNonPrevue(Code("2")),
              modifie ? NOX_CR_OK : NOX_CR_NON_MODIFIE);
  }
}

TEST_F(Modifications, TablePleine) {
  auto& historiques = referentiel.lignes<HistoriqueValeurModificateur>();
  historiques.resize(65534, historiques[0]);
  EXPECT_EQ(modification.modifierForfaitModificateur(Code("A"), date(20220101), Montant(9)), NOX_CR_OK);
  EXPECT_EQ(modification.modifierForfaitModificateur(Code("A"), date(20230101), Montant(9)), NOX_CR_MEMOIRE);
  EXPECT_EQ(historiques.size(), 65535U);
  EXPECT_EQ(referentiel.lignes<ModificationModificateur>().size(), 1U);
  EXPECT_EQ(forfait("U", 20220101), 4);
}

TEST_F(Modifications, NonConventionnes) {
  const std::string avant = contenu();
  EXPECT_EQ(modification.modifierForfaitNonConventionnes(date(20220101), Montant(3)), NOX_CR_OK);
  EXPECT_EQ(modification.modifierTauxNonConventionnes(date(20230101), Coefficient(0.9)), NOX_CR_OK);
  Montant montant;
  Coefficient taux;
  lecture.rechercherForfaitNonConventionnes(date(20230101), montant);
  lecture.rechercherTauxNonConventionnes(date(20230101), taux);
  EXPECT_EQ(montant.lireValeur(), 3);
  EXPECT_EQ(taux.lireValeur(), 0.9);
  lecture.rechercherTauxNonConventionnes(date(20221231), taux);
  EXPECT_EQ(taux.lireValeur(), 0.8);
  EXPECT_EQ(modification.annulerModificationsValeurNonConventionnes(), NOX_CR_OK);
  EXPECT_EQ(contenu(), avant);
}

TEST_F(Modifications, NouveauxCodesRegroupement) {
  const std::string avant = contenu();
  for (const char* code : {"AXI", "ZZZ", "AAA"}) {
    EXPECT_EQ(modification.ajouterCodeRegroupement(date(20220101), Code(code), Texte(code)), NOX_CR_OK);
  }
  EXPECT_EQ(modification.ajouterCodeRegroupement(date(20200101), Code("AXI"), Texte("x")),
            NOX_CR_REGROUPEMENT_EXISTANT);
  ListeCodes codes;
  lecture.rechercherCodesRegroupement(date(20211231), codes);
  EXPECT_EQ(textes(codes), (Textes{"ADC", "ATM"}));
  lecture.rechercherCodesRegroupement(date(20220101), codes);
  EXPECT_EQ(textes(codes), (Textes{"AAA", "ADC", "ATM", "AXI", "ZZZ"}));
  Date creation;
  EXPECT_EQ(lecture.rechercherDateCreationCodeRegroupement(Code("AXI"), creation), NOX_CR_OK);
  EXPECT_EQ(creation, date(20220101));
  EXPECT_EQ(lecture.rechercherDateCreationCodeRegroupement(Code("ADC"), creation), NOX_CR_CODE_INCONNU);
  // Labels of the table, and of the tables beside it.
  EXPECT_EQ(libelle(9, "AAA"), "AAA");
  EXPECT_EQ(libelle(9, "ZZZ"), "ZZZ");
  EXPECT_EQ(libelle(9, "ATM"), "echographie");
  EXPECT_EQ(libelle(8, "T"), "deplacement");
  EXPECT_EQ(libelle(10, "1"), "dix");
  EXPECT_EQ(libelle(10, "ZZZ"), "?");
  EXPECT_EQ(modification.annulerNouveauxCodesRegroupement(), NOX_CR_OK);
  EXPECT_EQ(contenu(), avant);
  referentiel.lignes<Codes>().resize(8);
  EXPECT_EQ(modification.ajouterCodeRegroupement(date(20220101), Code("AXI"), Texte("x")),
            NOX_CR_DONNEE_ABSENTE);
}

TEST_F(Modifications, AnnulationRelitLActe) {
  ecrireActe();
  EXPECT_EQ(modification.modifierPrixUnitaire(ACTE, UN, ZERO, date(20220101), Montant(50)), NOX_CR_OK);
  EXPECT_EQ(modification.modifierMajorationDOM(ACTE, UN, ZERO, date(20220101), 2, Coefficient(1.9)),
            NOX_CR_OK);
  EXPECT_EQ(modification.modifierPrixUnitaire(ACTE, UN, ZERO, date(20230101), Montant(60)), NOX_CR_OK);
  EXPECT_EQ(modification.modifierSupplementCharges(ACTE, UN, ZERO, date(20230601), Montant(7)), NOX_CR_OK);
  EXPECT_EQ(modification.modifierCodeRegroupement(ACTE, UN, date(20220101), Code("ATM")), NOX_CR_OK);
  const std::string modifie = contenu();
  // An act read again gets its changes back, whatever the tables they are recorded in.
  referentiel.actes[1].acte.reset();
  EXPECT_EQ(prix(20230101), 60);
  EXPECT_EQ(contenu().substr(contenu().find("ACTE D'INDICE 1")),
            modifie.substr(modifie.find("ACTE D'INDICE 1")));

  EXPECT_EQ(modification.annulerModificationsMajorationDOM(ACTE, UN, ZERO, 1), NOX_CR_NON_MODIFIE);
  EXPECT_FALSE(referentiel.actes[1].estVide());
  EXPECT_EQ(modification.annulerModificationsPrixUnitaire(ACTE, UN, ZERO), NOX_CR_OK);
  EXPECT_TRUE(referentiel.actes[1].estVide());
  EXPECT_EQ(prix(20230101), 30);
  Coefficient majoration;
  lecture.rechercherMajorationDOM(ACTE, UN, ZERO, 2, date(20220101), majoration);
  EXPECT_EQ(majoration.lireValeur(), 1.9);
  Montant supplement;
  lecture.rechercherSupplementCharges(ACTE, UN, ZERO, date(20230601), supplement);
  EXPECT_EQ(supplement.lireValeur(), 7);
  Code regroupement;
  lecture.rechercherCodeRegroupement(ACTE, UN, date(20220101), regroupement);
  EXPECT_EQ(regroupement.vue(), "ATM");
  EXPECT_EQ(modification.annulerModificationsCodeRegroupement(ACTE, UN), NOX_CR_OK);
  lecture.rechercherCodeRegroupement(ACTE, UN, date(20220101), regroupement);
  EXPECT_EQ(regroupement.vue(), "ADC");

  // A recorded change of a phase that the act does not have fails its load, and leaves its place empty.
  referentiel.lignes<ModificationSupplementCharge>()[0].phase = '9';
  EXPECT_EQ(modification.annulerModificationsMajorationDOM(ACTE, UN, ZERO, 2), NOX_CR_OK);
  Texte texte;
  EXPECT_EQ(lecture.rechercherLibelleCourt(ACTE, texte), NOX_CR_CODE_INCONNU);
  EXPECT_TRUE(referentiel.actes[1].estVide());
}

TEST_F(Modifications, ReapplicationDonneLeMemeMagasin) {
  // Recorded as the files keep them: each table in its own order, so that dates interleave.
  modification.modifierSupplementCharges(ACTE, UN, ZERO, date(20210101), Montant(4));
  modification.modifierPrixUnitaire(ACTE, UN, ZERO, date(20220101), Montant(50));
  modification.modifierMajorationDOM(ACTE, UN, ZERO, date(20220101), 3, Coefficient(1.9));
  modification.modifierSupplementCharges(ACTE, UN, ZERO, date(20230101), Montant(5));
  modification.modifierCodeRegroupement(ACTE, UN, date(20220101), Code("ATM"));
  modification.modifierTauxModificateur(Code("J"), date(20220101), Coefficient(2));
  modification.modifierForfaitModificateur(Code("J"), date(20230101), Montant(8));
  modification.modifierCoefficientAssociationNonPrevue(Code("2"), date(20220101), Coefficient(0.6));
  modification.modifierSeuil(date(20220101), 3, Montant(200));
  modification.modifierSeuil(date(20230101), 1, Montant(210));
  modification.modifierForfaitNonConventionnes(date(20220101), Montant(2));
  modification.modifierTauxNonConventionnes(date(20230101), Coefficient(0.5));
  modification.ajouterCodeRegroupement(date(20220101), Code("AXI"), Texte("prothese"));

  class : public Modifications {
   public:
    using Modifications::acte;
    using Modifications::modification;
    using Modifications::referentiel;
    void TestBody() override {}
  } autre;
  [&]<class... M>(std::type_identity<std::tuple<M...>>) {
    ((autre.referentiel.lignes<M>() = referentiel.lignes<M>()), ...);
    EXPECT_TRUE((!referentiel.lignes<M>().empty() && ...));
  }(std::type_identity<std::tuple<ModificationPrixUnitaire, ModificationSupplementCharge,
                                  ModificationMajorationDOM, ModificationRegleAssociationNonPrevue,
                                  ModificationSeuil, ModificationModificateur, ModificationNonConventionne,
                                  ModificationCodeRegroupement, ModificationNouveauCodeRegroupement>>{});
  ModificationDonnees& m = autre.modification;
  EXPECT_EQ(m.appliquerModificationsReglesAssociationsNP(), NOX_CR_OK);
  EXPECT_EQ(m.appliquerModificationsModificateurs(), NOX_CR_OK);
  EXPECT_EQ(m.appliquerModificationsReductionNC(), NOX_CR_OK);
  EXPECT_EQ(m.appliquerModificationsSeuils(), NOX_CR_OK);
  EXPECT_EQ(m.appliquerModificationsNouveauCodeRegroupement(), NOX_CR_OK);
  EXPECT_EQ(m.appliquerModificationsCodesRegroupement(ACTE, *autre.acte), NOX_CR_OK);
  EXPECT_EQ(m.appliquerModificationsHistoriquePhase(ACTE, *autre.acte), NOX_CR_OK);
  EXPECT_EQ(contenu(autre.referentiel), contenu());

  autre.referentiel.lignes<ModificationSeuil>()[0].position = 9;
  EXPECT_EQ(m.appliquerModificationsSeuils(), NOX_CR_DONNEE_ABSENTE);
}

// Each operation with its n-th allocation failing, for every n until it gets through.
TEST_F(Modifications, MemoireInsuffisante) {
  const Date effet = date(20220101);
  ModificationDonnees& m = modification;
  const std::function<CodeRetour()> operations[] = {
      [&] { return m.modifierPrixUnitaire(ACTE, UN, ZERO, effet, Montant(50)); },
      [&] { return m.modifierMajorationDOM(ACTE, UN, ZERO, effet, 3, Coefficient(1.9)); },
      [&] { return m.modifierCodeRegroupement(ACTE, UN, effet, Code("ATM")); },
      [&] { return m.modifierTauxModificateur(Code("J"), effet, Coefficient(2)); },
      [&] { return m.modifierCoefficientAssociationNonPrevue(Code("2"), effet, Coefficient(0.6)); },
      [&] { return m.modifierSeuil(effet, 3, Montant(200)); },
      [&] { return m.modifierSeuil(effet, 2, Montant(201)); },
      [&] { return m.modifierForfaitNonConventionnes(effet, Montant(2)); },
      [&] {
        return m.ajouterCodeRegroupement(effet, Code("AXI"), Texte("un libelle assez long pour le tas"));
      },
      [&] { return m.annulerModificationsSeuilExoTM(3); },
      [&] { return m.annulerModificationsValeurModificateur(Code("J")); },
      [&] { return m.annulerNouveauxCodesRegroupement(); }};
  // Lines shared and lists in the heap: the costlier roads.
  referentiel.lignes<Modificateur>()[0].valeurs = {1, 2};
  acte->activites[0].historiques[0].associations =
      compacte<Association>({{CodeActe("AAFA001"), 'A'}, {CodeActe("HBJD001"), 'B'}});
  unsigned echecs = 0;
  for (const auto& operation : operations) {
    const std::string avant = contenu();
    CodeRetour cr = NOX_CR_MEMOIRE;
    for (long n = 0; cr == NOX_CR_MEMOIRE; ++n) {
      ASSERT_LT(n, 100);
      allocationsPermises = n;
      try {
        cr = operation();
      } catch (const std::bad_alloc&) {
        cr = NOX_CR_MEMOIRE;
      }
      allocationsPermises = -1;
      if (cr == NOX_CR_MEMOIRE) {
        ++echecs;
        ASSERT_EQ(contenu(), avant) << "operation " << &operation - operations << ", allocation " << n;
      }
    }
    EXPECT_EQ(cr, NOX_CR_OK);
    EXPECT_NE(contenu(), avant);
  }
  EXPECT_GT(echecs, 12U) << "allocations were not counted";
}

}  // namespace
}  // namespace noxlux
