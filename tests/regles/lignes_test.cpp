// Rules of one line.
#include <functional>

#include "regles/regles_essai.h"

namespace noxlux {
namespace {

using R = Reglementation;

class ReglesLigne : public ReglesEssai {
 protected:
  struct Cas {
    const char* nom;
    CodeRetour (R::*regle)(const LigneCCAM&, Erreur&);
    std::function<void(ReglesLigne&)> changer;
    Attente attente;
  };

 public:
  using ReglesEssai::acte, ReglesEssai::activite, ReglesEssai::phase, ReglesEssai::facture,
      ReglesEssai::ligne, ReglesEssai::poser, ReglesEssai::codes;
  void agee(unsigned naissance) { facture.dateNaissance = date(naissance); }
};

TEST_F(ReglesLigne, UneLigneCorrecteNeLeveRien) {
  ligne->modificateur = codes({"E", "A"});
  for (const auto regle :
       {&R::appliquerProd500,  &R::appliquerProd510,  &R::appliquerProd511A, &R::appliquerProd890,
        &R::appliquerProd780,  &R::appliquerProd760,  &R::appliquerProd765,  &R::appliquerProd530,
        &R::appliquerProd540,  &R::appliquerProd220,  &R::appliquerProd798,  &R::appliquerProd670,
        &R::appliquerProd895A, &R::appliquerProd136A, &R::appliquerProd136B, &R::appliquerProd190,
        &R::appliquerProd550,  &R::appliquerProd555,  &R::appliquerProd798A, &R::appliquerProd720,
        &R::appliquerProd730,  &R::appliquerProd702,  &R::appliquerProd710}) {
    verifier("", reglementation, regle, *ligne, RIEN);
  }
}

class ReglesLigneCas : public ReglesLigne, public ::testing::WithParamInterface<int> {
 public:
  static const std::vector<Cas>& cas() {
    using T = ReglesLigne;
    static const std::vector<Cas> CAS{
        {"acte inconnu",
         &R::appliquerProd500,
         [](T& t) { t.ligne->acte = Code("XXXX999"); },
         {"R500", {"XXXX999"}}},
        {"veille de la création",
         &R::appliquerProd510,
         [](T& t) { t.ligne->date = date(20050228); },
         {"R510", {"AAAA001"}}},
        {"jour de la création", &R::appliquerProd510, [](T& t) { t.ligne->date = date(20050301); }, RIEN},
        {"jour de la fin", &R::appliquerProd510, [](T& t) { t.acte("AAAA001").dateFin = jour(JOUR); }, RIEN},
        {"lendemain de la fin",
         &R::appliquerProd510,
         [](T& t) { t.acte("AAAA001").dateFin = jour(JOUR - 1); },
         {"R510", {"AAAA001"}}},
        {"avant la naissance", &R::appliquerProd511A, [](T& t) { t.agee(JOUR + 1); }, {"R511A", {"AAAA001"}}},
        {"jour de la naissance", &R::appliquerProd511A, [](T& t) { t.agee(JOUR); }, RIEN},
        {"nature d'assurance non admise",
         &R::appliquerProd890,
         [](T& t) {
           t.acte("AAAA001").naturesAssurance = compacte<CodeNatureAssurance>({CodeNatureAssurance("MA")});
         },
         {"R890", {"AAAA001", "AS"}}},
        {"sans entente préalable",
         &R::appliquerProd780,
         [](T& t) { t.acte("AAAA001").historiques[0].ententePrealable = 'O'; },
         {"R780", {"AAAA001"}}},
        {"entente préalable donnée", &R::appliquerProd780,
         [](T& t) {
           t.acte("AAAA001").historiques[0].ententePrealable = 'O';
           t.ligne->ententePrealable = Code("4");
         },
         RIEN},
        {"non remboursable, facturé en dépense non remboursable", &R::appliquerProd760,
         [](T& t) {
           t.acte("AAAA001").historiques[0].admissionRemboursement = '2';
           t.ligne->baseRemboursement = Montant(0.0);
           t.ligne->baseTheoriqueAMO = Montant(50.0);
           t.ligne->qualificatifDepense = Code("N");
         },
         RIEN},
        {"non remboursable avec base",
         &R::appliquerProd760,
         [](T& t) {
           t.acte("AAAA001").historiques[0].admissionRemboursement = '2';
           t.ligne->baseRemboursement = Montant(0.01);
           t.ligne->baseTheoriqueAMO = Montant(50.0);
           t.ligne->qualificatifDepense = Code("N");
         },
         {"R760", {"AAAA001"}}},
        {"non remboursable sans base théorique",
         &R::appliquerProd760,
         [](T& t) {
           t.acte("AAAA001").historiques[0].admissionRemboursement = '2';
           t.ligne->qualificatifDepense = Code("N");
         },
         {"R760", {}}},
        {"non remboursable sans qualificatif",
         &R::appliquerProd760,
         [](T& t) {
           t.acte("AAAA001").historiques[0].admissionRemboursement = '2';
           t.ligne->baseTheoriqueAMO = Montant(50.0);
         },
         {"R760", {}}},
        {"conditions non réunies",
         &R::appliquerProd765,
         [](T& t) { t.acte("AAAA001").historiques[0].admissionRemboursement = '3'; },
         {"R765", {"AAAA001"}}},
        {"remboursement exceptionnel", &R::appliquerProd765,
         [](T& t) {
           t.acte("AAAA001").historiques[0].admissionRemboursement = '3';
           t.ligne->codeRemboursement = Code("O");
         },
         RIEN},
        {"activité inconnue",
         &R::appliquerProd530,
         [](T& t) { t.ligne->activite = Code("4"); },
         {"R530", {"AAAA001", "4"}}},
        {"phase inconnue",
         &R::appliquerProd540,
         [](T& t) { t.ligne->phase = Code("2"); },
         {"R540", {"AAAA001", "1", "2"}}},
        {"regroupement inconnu",
         &R::appliquerProd220,
         [](T& t) { t.ligne->prestation = Code("ZZZ"); },
         {"R220", {"ZZZ"}}},
        {"regroupement échu",
         &R::appliquerProd220,
         [](T& t) { t.ligne->date = date(20310101); },
         {"R220", {"ADC"}}},
        {"regroupement d'un autre acte",
         &R::appliquerProd798,
         [](T& t) { t.ligne->prestation = Code("ADI"); },
         {"R798", {"AAAA001", "1", "ADC"}}},
        {"spécialité admise", &R::appliquerProd670,
         [](T& t) {
           t.activite("AAAA001").historiques[0].classesSpecialites =
               compacte<CodeClasseSpecialite>({CodeClasseSpecialite("C1")});
         },
         RIEN},
        {"spécialité non admise",
         &R::appliquerProd670,
         [](T& t) {
           t.activite("AAAA001").historiques[0].classesSpecialites =
               compacte<CodeClasseSpecialite>({CodeClasseSpecialite("D1")});
         },
         {"R670", {"AAAA001", "1", "04"}}},
        {"premier agrément admis", &R::appliquerProd895A,
         [](T& t) {
           t.activite("AAAA001").agrementsRadio =
               compacte<CodeAgrementRadio>({CodeAgrementRadio("11"), CodeAgrementRadio("24")});
         },
         RIEN},
        {"seul le premier agrément compte",
         &R::appliquerProd895A,
         [](T& t) {
           t.activite("AAAA001").agrementsRadio =
               compacte<CodeAgrementRadio>({CodeAgrementRadio("10"), CodeAgrementRadio("11")});
         },
         {"R895A", {"AAAA001", "1", "10, 11"}}},
        {"modificateur tarifant inconnu",
         &R::appliquerProd136A,
         [](T& t) {
           t.ligne->modificateur = codes({"A", "Q"});
         },
         {"R136A", {"Q"}}},
        {"le troisième n'est pas tarifant", &R::appliquerProd136A,
         [](T& t) {
           t.ligne->modificateur = codes({"A", "E", "Q"});
         },
         RIEN},
        {"modificateur inconnu au delà des tarifants",
         &R::appliquerProd136B,
         [](T& t) {
           t.ligne->modificateur = codes({"A", "E", "Q"});
         },
         {"R136B", {"Q"}}},
        {"les deux premiers sont tarifants", &R::appliquerProd136B,
         [](T& t) {
           t.ligne->modificateur = codes({"A", "Q"});
         },
         RIEN},
        {"modificateurs qui s'excluent",
         &R::appliquerProd190,
         [](T& t) {
           t.ligne->modificateur = codes({"E", "A", "F"});
         },
         {"R190", {"A", "F"}}},
        {"un seul des deux nomme l'autre", &R::appliquerProd190,
         [](T& t) {
           t.ligne->modificateur = codes({"F", "E"});
         },
         RIEN},
        {"la référence ne dit rien des deux", &R::appliquerProd190,
         [](T& t) {
           t.ligne->modificateur = codes({"B", "F"});
         },
         RIEN},
        {"inconnu, affaire de la règle 136", &R::appliquerProd190,
         [](T& t) {
           t.ligne->modificateur = codes({"A", "Q"});
         },
         RIEN},
        {"modificateur non applicable",
         &R::appliquerProd550,
         [](T& t) {
           t.activite("AAAA001").historiques[0].modificateurs = compacte<char>({'A'});
           t.ligne->modificateur = codes({"A", "E", "F"});
         },
         {"R550", {"E", "AAAA001", "1"}}},
        {"trop jeune pour le modificateur",
         &R::appliquerProd555,
         [](T& t) {
           t.ligne->modificateur = codes({"A", "E"});
           t.agee(20180611);
         },
         {"R555", {"E"}}},
        {"l'âge minimal du modificateur", &R::appliquerProd555,
         [](T& t) {
           t.ligne->modificateur = codes({"E"});
           t.agee(20180610);
         },
         RIEN},
        {"un jour de plus que l'âge maximal",
         &R::appliquerProd555,
         [](T& t) {
           t.ligne->modificateur = codes({"E"});
           t.agee(19640609);
         },
         {"R555", {"E"}}},
        {"pas encore né, affaire de la règle 511A", &R::appliquerProd555,
         [](T& t) {
           t.ligne->modificateur = codes({"E"});
           t.agee(20250101);
         },
         RIEN},
        {"modificateur OC transmis", &R::appliquerProd798A,
         [](T& t) {
           t.ligne->modificateur = codes({"E", "A"});
           t.ligne->donneesComplementaires = codes({"X"});
         },
         RIEN},
        {"modificateur OC d'un autre",
         &R::appliquerProd798A,
         [](T& t) {
           t.ligne->modificateur = codes({"A"});
           t.ligne->donneesComplementaires = codes({"Y"});
         },
         {"R798A", {"Y"}}},
        {"un modificateur OC de trop",
         &R::appliquerProd798A,
         [](T& t) {
           t.ligne->modificateur = codes({"A", "F"});
           t.ligne->donneesComplementaires = codes({"X", "Y"});
         },
         {"R798A", {"Y"}}},
        {"trop jeune",
         &R::appliquerProd720,
         [](T& t) {
           t.ligne->acte = Code("EEEE001");
           t.agee(20180611);
         },
         {"R720", {"EEEE001", "6"}}},
        {"l'âge minimal", &R::appliquerProd720,
         [](T& t) {
           t.ligne->acte = Code("EEEE001");
           t.agee(20180610);
         },
         RIEN},
        {"l'âge maximal", &R::appliquerProd730,
         [](T& t) {
           t.ligne->acte = Code("EEEE001");
           t.agee(19800610);
         },
         RIEN},
        {"trop âgé",
         &R::appliquerProd730,
         [](T& t) {
           t.ligne->acte = Code("EEEE001");
           t.agee(19800609);
         },
         {"R730", {"EEEE001", "44"}}},
        {"sans dent",
         &R::appliquerProd700,
         [](T& t) { t.ligne->acte = Code("EEEE001"); },
         {"R700", {"EEEE001"}}},
        {"assez de dents", &R::appliquerProd702,
         [](T& t) {
           t.ligne->acte = Code("EEEE001");
           t.ligne->dent = codes({"11", "12"});
         },
         RIEN},
        {"pas assez de dents",
         &R::appliquerProd702,
         [](T& t) {
           t.ligne->acte = Code("EEEE001");
           t.ligne->dent = codes({"11"});
         },
         {"R702", {"EEEE001", "2"}}},
        {"un nombre de dents hors de 1 à 16", &R::appliquerProd702,
         [](T& t) {
           t.ligne->acte = Code("EEEE001");
           t.phase("EEEE001").nombreDents = CodeFixe<2>("17");
         },
         RIEN},
        {"dent incompatible",
         &R::appliquerProd710,
         [](T& t) {
           t.ligne->acte = Code("EEEE001");
           t.ligne->dent = codes({"11", "28", "18"});
         },
         {"R710", {"28", "EEEE001"}}},
        {"code association inconnu",
         &R::appliquerProd137,
         [](T& t) { t.ligne->codeAssociation = Code("8"); },
         {"R137", {"8"}}},
        {"code association connu", &R::appliquerProd137, [](T& t) { t.ligne->codeAssociation = Code("2"); },
         RIEN},
        {"sans code association", &R::appliquerProd137, [](T&) {}, RIEN},
    };
    return CAS;
  }
};

TEST_P(ReglesLigneCas, Leve) {
  const Cas& cas = ReglesLigneCas::cas()[static_cast<std::size_t>(GetParam())];
  cas.changer(*this);
  verifier(cas.nom, reglementation, cas.regle, *ligne, cas.attente);
}
INSTANTIATE_TEST_SUITE_P(Toutes, ReglesLigneCas,
                         ::testing::Range(0, static_cast<int>(ReglesLigneCas::cas().size())));

TEST_F(ReglesLigne, LignesNonCcam) {
  LigneActe prestation;
  prestation.date = date(JOUR);
  prestation.specialitePS = Code("04");
  prestation.prestation = Code("K");
  verifier("inconnue des regroupements", reglementation, &R::appliquerProd170, prestation, {"R170", {"K"}});
  verifier("codage obligatoire ce jour", reglementation, &R::appliquerProd211, prestation,
           {"R211", {"K", "04"}});
  prestation.date = date(JOUR - 1);
  verifier("la veille", reglementation, &R::appliquerProd211, prestation, RIEN);
  prestation.date = date(JOUR);
  prestation.specialitePS = Code("19");
  verifier("spécialité sans obligation", reglementation, &R::appliquerProd211, prestation, RIEN);
  prestation.prestation = Code("ADC");
  verifier("connue", reglementation, &R::appliquerProd170, prestation, RIEN);

  LigneActe& forfait = ajouterDeplacement(LigneActe::Type::DEPLACEMENT_1, *ligne);
  LigneActe& kilometres = ajouterDeplacement(LigneActe::Type::DEPLACEMENT_2, *ligne);
  verifier("frais admis", reglementation, &R::appliquerProd690A, forfait, RIEN);
  verifier("frais non admis", reglementation, &R::appliquerProd690A, kilometres,
           {"R690A", {"AAAA001", "IFD"}});
  ligne->acte = Code("XXXX999");
  verifier("frais d'un acte inconnu", reglementation, &R::appliquerProd690A, kilometres, RIEN);
}

TEST_F(ReglesLigne, Questions) {
  const auto demander = [&](CodeRetour (R::*question)(const LigneCCAM&, Booleen&), const char* code) {
    Booleen reponse;
    ligne->acte = Code(code);
    EXPECT_EQ((reglementation.*question)(*ligne, reponse), NOX_CR_OK);
    return reponse.estVrai();
  };
  EXPECT_TRUE(demander(&R::appliquerProd696, "EEEE001"));
  EXPECT_FALSE(demander(&R::appliquerProd696, "AAAA001"));
  EXPECT_TRUE(demander(&R::appliquerProd695, "EEEE001"));
  EXPECT_FALSE(demander(&R::appliquerProd695, "AAAA001"));
  EXPECT_TRUE(demander(&R::appliquerProd580A, "ZZZZ001"));
  EXPECT_FALSE(demander(&R::appliquerProd580A, "AAAA001"));
}

TEST_F(ReglesLigne, ControleDesDonnees) {
  const Code a("AAAA001");
  const Code e("EEEE001");
  const Code un("1");
  const Code zero("0");
  const Date d = date(JOUR);
  Booleen oui;
  const auto reponse = [&](CodeRetour cr) {
    EXPECT_EQ(cr, NOX_CR_OK);
    return oui.estVrai();
  };
  EXPECT_TRUE(reponse(reglementation.appliquerCAge1(date(19640610), Code("E"), d, oui)));
  EXPECT_FALSE(reponse(reglementation.appliquerCAge1(date(19640609), Code("E"), d, oui)));
  EXPECT_FALSE(reponse(reglementation.appliquerCAge1(date(20250101), Code("A"), d, oui)));
  EXPECT_TRUE(reponse(reglementation.appliquerCAge1(date(20240101), Code("A"), d, oui)));
  EXPECT_EQ(reglementation.appliquerCAge1(date(19800101), Code("Q"), d, oui), NOX_CR_CODE_INCONNU);
  EXPECT_TRUE(reponse(reglementation.appliquerCAge2(date(19800610), e, un, zero, d, oui)));
  EXPECT_FALSE(reponse(reglementation.appliquerCAge2(date(19800609), e, un, zero, d, oui)));
  EXPECT_FALSE(reponse(reglementation.appliquerCAge2(date(20180611), e, un, zero, d, oui)));
  EXPECT_EQ(reglementation.appliquerCAge2(date(19800609), e, un, Code("3"), d, oui), NOX_CR_CODE_INCONNU);
  acte("AAAA001").naturesAssurance = compacte<CodeNatureAssurance>({CodeNatureAssurance("MA")});
  EXPECT_TRUE(reponse(reglementation.appliquerCAssurance(Code("MA"), a, d, oui)));
  EXPECT_FALSE(reponse(reglementation.appliquerCAssurance(Code("AT"), a, d, oui)));
  EXPECT_TRUE(reponse(reglementation.appliquerCCcam(Code("04"), Code("K"), d, oui)));
  EXPECT_FALSE(reponse(reglementation.appliquerCCcam(Code("19"), Code("K"), d, oui)));
  activite("AAAA001").historiques[0].classesSpecialites =
      compacte<CodeClasseSpecialite>({CodeClasseSpecialite("D1")});
  EXPECT_TRUE(reponse(reglementation.appliquerCExecutant(Code("19"), a, un, d, oui)));
  EXPECT_FALSE(reponse(reglementation.appliquerCExecutant(Code("04"), a, un, d, oui)));
  EXPECT_EQ(reglementation.appliquerCExecutant(Code("88"), a, un, d, oui), NOX_CR_CODE_INCONNU);
  activite("AAAA001").agrementsRadio = compacte<CodeAgrementRadio>({CodeAgrementRadio("24")});
  EXPECT_TRUE(reponse(reglementation.appliquerCRadio(Code("24"), a, un, d, oui)));
  EXPECT_FALSE(reponse(reglementation.appliquerCRadio(Code(""), a, un, d, oui)));

  TypeListe<Booleen> dents;
  ASSERT_EQ(reglementation.appliquerCDent(e, un, zero, d, codes({"11", "18"}), dents), NOX_CR_OK);
  ASSERT_EQ(dents.lireNombreElements(), 2);
  EXPECT_TRUE(dents[0].estVrai());
  EXPECT_FALSE(dents[1].estVrai());
}

// A datum that the reference lacks stops the rule with the code of the query, and raises nothing.
TEST_F(ReglesLigne, UneLectureManqueeArreteLaRegle) {
  Erreur erreur;
  ligne->acte = Code("XXXX999");
  EXPECT_EQ(reglementation.appliquerProd510(*ligne, erreur), NOX_CR_CODE_INCONNU);
  EXPECT_EQ(tarification.appliquerProd791A(*ligne, erreur), NOX_CR_OK);
  ligne->exonerationTM = Code("C");
  ligne->tauxRemboursement = Coefficient(1.0);
  EXPECT_EQ(tarification.appliquerProd791A(*ligne, erreur), NOX_CR_CODE_INCONNU);
  ligne->acte = Code("AAAA001");
  ligne->date = date(20040101);
  EXPECT_EQ(reglementation.appliquerProd780(*ligne, erreur), NOX_CR_PAS_D_HISTORIQUE);
  EXPECT_FALSE(erreur.estRenseigne());
  ligne->date = date(JOUR);
  ligne->activite = Code("4");
  poser<InformationRegle>({});
  EXPECT_EQ(reglementation.appliquerProd530(*ligne, erreur), NOX_CR_DONNEE_ABSENTE);
  EXPECT_FALSE(erreur.estRenseigne());
}

}  // namespace
}  // namespace noxlux
