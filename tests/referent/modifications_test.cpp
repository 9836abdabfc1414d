// Changes of values whose lines stand in tables that others share, their cancellation, and their
// re-application: what a change leaves alone, and states given back exactly.
#include <ctime>

#include "magasin_essai.h"
#include "referent/fabrique_reference.h"
#include "referent/modification_donnees.h"

namespace noxlux {
namespace {

constexpr DateBrute SANS_FIN{};
const Code ACTE("HBJD001");
const Code UN("1");
const Code ZERO("0");

class Modifications : public testing::Test, protected MagasinEssai {
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

  double forfait(const char* code, unsigned d) {
    Montant montant(-1);
    lecture.rechercherForfaitModificateur(Code(code), date(d), montant);
    return montant.lireValeur();
  }
  std::string libelle(unsigned short table, const char* code) {
    Texte texte("?");
    lecture.rechercherLibelleCode(table, Code(code), texte);
    return texte.lireTexte();
  }

  // An act of one activity "1" with one phase "0". Acts come in the order of their codes.
  NiveauActe& poserActe(const char* code) {
    auto nouveau = std::make_unique<NiveauActe>();
    nouveau->codeStructure = CodeActe(code);
    nouveau->historiques.resize(1);
    nouveau->historiques[0].dateEffet = jour(20050301);
    NiveauActivite activite;
    activite.codeActivite = '1';
    activite.historiques.resize(1);
    activite.historiques[0].dateEffet = jour(20050301);
    activite.historiques[0].codeRegroupement = CodeFixe<3>("ADC");
    NiveauPhase phase;
    phase.codePhase = '0';
    phase.historiques = {{jour(20200601), 30.0, 3.0, {1.0, 1.1, 1.2, 1.3}},
                         {jour(20150101), 20.0, 2.0, {1.0, 1.0, 1.0, 1.0}},
                         {jour(20050301), 10.0, 1.0, {1.0, 1.0, 1.0, 1.0}}};
    activite.phases.push_back(std::move(phase));
    nouveau->activites.push_back(std::move(activite));
    NiveauActe& pose = *nouveau;
    referentiel.lignes<Index>().push_back({CodeActe(code), 0});
    referentiel.actes.emplace_back(std::move(nouveau));
    return pose;
  }

  // The whole content of the store, as its dump shows it.
  std::string contenu() const {
    const essai::Repertoire repertoire;
    const std::string nom = repertoire.chemin("dump");
    constexpr unsigned short MODULE_LIBRE = 5;
    EXPECT_EQ(Trace::activer(nom.c_str(), "w", MODULE_LIBRE, 3), NOX_CR_OK);
    referentiel.dump(MODULE_LIBRE);
    Trace::activer(nom.c_str(), "w", MODULE_LIBRE, 0);
    std::ostringstream texte;
    texte << std::ifstream(nom).rdbuf();
    EXPECT_GT(texte.str().size(), 1000U);
    return texte.str();
  }

  ModificationDonnees modification{&referentiel};
  NiveauActe* acte;
};

TEST_F(Modifications, lignesCommunesADeuxCodes) {
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

TEST_F(Modifications, beaucoupDeChangementsDUnePhase) {
  // The processor time of n changes of a phase, and of their re-application to the act read again.
  const auto duree = [this](unsigned n, const char* code) {
    NiveauActe& change = poserActe(code);
    NiveauActe relu = change;
    const std::clock_t debut = std::clock();
    for (unsigned i = 0; i < n; ++i) {
      EXPECT_EQ(modification.modifierPrixUnitaire(Code(code), UN, ZERO, date(20220101), Montant(i)),
                NOX_CR_OK);
    }
    EXPECT_EQ(modification.appliquerModificationsHistoriquePhase(Code(code), relu), NOX_CR_OK);
    EXPECT_EQ(relu.activites[0].phases[0].historiques.size(), n + 3);
    EXPECT_EQ(change.activites[0].phases[0].historiques[0].prixUnitaire, n - 1);
    return static_cast<double>(std::clock() - debut);
  };
  const double simple = duree(8000, "JAAA001");
  EXPECT_LT(duree(64000, "JAAA002"), simple * 24) << "eight times the changes, eight times the time";
}

TEST_F(Modifications, tablePleine) {
  auto& historiques = referentiel.lignes<HistoriqueValeurModificateur>();
  historiques.resize(65534, historiques[0]);
  EXPECT_EQ(modification.modifierForfaitModificateur(Code("A"), date(20220101), Montant(9)), NOX_CR_OK);
  EXPECT_EQ(modification.modifierForfaitModificateur(Code("A"), date(20230101), Montant(9)), NOX_CR_MEMOIRE);
  EXPECT_EQ(historiques.size(), 65535U);
  EXPECT_EQ(referentiel.lignes<ModificationModificateur>().size(), 1U);
  EXPECT_EQ(forfait("U", 20220101), 4);
}

TEST_F(Modifications, nouveauxCodesRegroupement) {
  const std::string avant = contenu();
  for (const char* code : {"AXI", "ZZZ", "AAA"}) {
    EXPECT_EQ(modification.ajouterCodeRegroupement(date(20220101), Code(code), Texte(code)), NOX_CR_OK);
  }
  EXPECT_EQ(modification.ajouterCodeRegroupement(date(20200101), Code("AXI"), Texte("x")),
            NOX_CR_REGROUPEMENT_EXISTANT);
  ListeCodes codes;
  lecture.rechercherCodesRegroupement(date(20211231), codes);
  EXPECT_EQ(joindre(codes), "ADC/ATM/");
  lecture.rechercherCodesRegroupement(date(20220101), codes);
  EXPECT_EQ(joindre(codes), "AAA/ADC/ATM/AXI/ZZZ/");
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

TEST_F(Modifications, reapplicationDonneLeMemeMagasin) {
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
    using Modifications::contenu;
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
  EXPECT_EQ(autre.contenu(), contenu());

  // A code that the reference holds is not added again, and no cancellation takes it away.
  EXPECT_EQ(m.appliquerModificationsNouveauCodeRegroupement(), NOX_CR_OK);
  EXPECT_EQ(m.annulerNouveauxCodesRegroupement(), NOX_CR_NON_MODIFIE);
  EXPECT_TRUE(m.rechercherExistenceCodeRegroupement(Code("AXI")));

  autre.referentiel.lignes<ModificationSeuil>()[0].position = 9;
  EXPECT_EQ(m.appliquerModificationsSeuils(), NOX_CR_DONNEE_ABSENTE);
}

}  // namespace
}  // namespace noxlux
