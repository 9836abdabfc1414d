// Prices, bases and exemptions.
#include <functional>

#include "regles/regles_essai.h"

namespace noxlux {
namespace {

using T = Tarification;

class Prix : public ReglesEssai {
 protected:
  double prix(const char* caisse) {
    Montant calcule;
    EXPECT_EQ(tarification.appliquerProd840(Code("AAAA001"), Code("1"), Code("0"), date(JOUR), Code(caisse),
                                            calcule),
              NOX_CR_OK);
    return calcule.lireValeur();
  }
  void facturerBase(double base, double amo) {
    ligne->baseRemboursement = Montant(base);
    ligne->baseTheoriqueAMO = Montant(amo);
  }
};

TEST_F(Prix, prixUnitaireEtMajorationDOM) {
  EXPECT_DOUBLE_EQ(prix("751"), 100.0);
  EXPECT_DOUBLE_EQ(prix(""), 100.0);
  EXPECT_DOUBLE_EQ(prix("971"), 150.0);
  EXPECT_DOUBLE_EQ(prix("972"), 125.0);
  EXPECT_DOUBLE_EQ(prix("973"), 110.0);
  EXPECT_DOUBLE_EQ(prix("974"), 120.0);
  EXPECT_DOUBLE_EQ(prix("975"), 100.0);
}

TEST_F(Prix, prixFacture) {
  const auto comparer = [&](double calcule, double facture_, const Attente& attente) {
    ligne->prixCalcule = Montant(calcule);
    ligne->prixUnitaire = Montant(facture_);
    verifier("", tarification, &T::appliquerProd850, *ligne, attente);
  };
  comparer(100.004, 100.00, RIEN);
  comparer(100.006, 100.01, RIEN);
  comparer(100.004, 100.01, {"R850", {"100.00"}});
  comparer(100.00, 99.99, {"R850", {"100.00"}});
}

TEST_F(Prix, basesFacturees) {
  ligne->baseCalculee = Montant(80.0);
  facturerBase(80.00, 80.00);
  verifier("base égale", tarification, &T::appliquerProd880, *ligne, RIEN);
  facturerBase(80.01, 80.01);
  verifier("un centime de trop", tarification, &T::appliquerProd880, *ligne, {"R880", {"AAAA001", "80.00"}});
  verifier("un centime de trop", tarification, &T::appliquerProd880A, *ligne,
           {"R880A", {"AAAA001", "80.00"}});
  facturerBase(79.99, 79.99);
  verifier("moins", tarification, &T::appliquerProd880A, *ligne, RIEN);
  ligne->baseTheoriqueAMO.reset();
  verifier("non facturée", tarification, &T::appliquerProd880A, *ligne, RIEN);
}

TEST_F(Prix, acteRembourse) {
  const auto rembourse = [&](char admission, const char* exceptionnel) {
    Booleen reponse;
    acte("AAAA001").historiques[0].admissionRemboursement = admission;
    ligne->codeRemboursement = Code(exceptionnel);
    EXPECT_EQ(tarification.appliquerProd763A(*ligne, reponse), NOX_CR_OK);
    return reponse.estVrai();
  };
  EXPECT_TRUE(rembourse('1', ""));
  EXPECT_FALSE(rembourse('2', ""));
  EXPECT_FALSE(rembourse('2', "O"));
  EXPECT_FALSE(rembourse('3', "N"));
  EXPECT_TRUE(rembourse('3', "O"));
}

// The whole computation of an association, through the single rule.
struct LigneBase {
  const char* acte;
  const char* code;
  double prix;
  std::vector<const char*> modificateurs;
  double base;
  double horsForfait;
};

class Bases : public ReglesEssai {
 protected:
  void calculer(const char* cas, const char* convention, const std::vector<LigneBase>& lignes) {
    SCOPED_TRACE(cas);
    facture.lignes.clear();
    for (const LigneBase& attendue : lignes) {
      LigneCCAM& nouvelle = ajouter(attendue.acte);
      nouvelle.codeAssociation = Code(attendue.code);
      nouvelle.prixUnitaire = Montant(attendue.prix);
      for (const char* modificateur : attendue.modificateurs) {
        nouvelle.modificateur.ajouterElement(Code(modificateur));
      }
      nouvelle.date = date(quand);
      nouvelle.supplementCharges = supplement;
      nouvelle.lieuExecution = lieu;
      nouvelle.identifiantLieu = identifiant;
    }
    grouper();
    ASSERT_EQ(tarification.appliquerCBase(Code(convention), association()), NOX_CR_OK);
    for (std::size_t i = 0; i < lignes.size(); ++i) {
      const LigneCCAM& calculee = *association().lignes[i];
      EXPECT_NEAR(calculee.baseRemboursement->lireValeur(), lignes[i].base, 1e-9) << "ligne " << i + 1;
      EXPECT_NEAR(calculee.baseHorsForfait->lireValeur(), lignes[i].horsForfait, 1e-9) << "ligne " << i + 1;
    }
  }
  unsigned quand = JOUR;
  std::optional<Code> supplement;
  std::optional<Code> lieu;
  std::optional<Code> identifiant;
};

TEST_F(Bases, modificateurs) {
  calculer("aucun", "1", {{"AAAA001", "", 80.0, {}, 80.0, 80.0}});
  calculer("un forfait", "1", {{"AAAA001", "", 80.0, {"A"}, 90.0, 80.0}});
  calculer("un taux", "1", {{"AAAA001", "", 80.0, {"E"}, 120.0, 120.0}});
  calculer("deux taux s'ajoutent", "1", {{"AAAA001", "", 100.0, {"E", "F"}, 170.0, 170.0}});
  calculer("un taux et un forfait", "1", {{"AAAA001", "", 100.0, {"B", "F"}, 125.0, 120.0}});
  calculer("le troisième ne compte pas", "1", {{"AAAA001", "", 100.0, {"A", "B", "E"}, 115.0, 100.0}});
  poser<NombreModificateurTarifant>({{jour(DEBUT), {}, 0}});
  calculer("aucun ne compte", "1", {{"AAAA001", "", 100.0, {"E"}, 100.0, 100.0}});
}

TEST_F(Bases, associations) {
  calculer("règle tarifaire", "1",
           {{"AAAA001", "", 100.0, {}, 100.0, 100.0}, {"BBBB001", "", 60.0, {}, 45.0, 45.0}});
  calculer("le second est le plus cher", "1",
           {{"AAAA001", "", 100.0, {}, 75.0, 75.0}, {"BBBB001", "", 160.0, {}, 160.0, 160.0}});
  calculer("à prix égaux le premier est gardé", "1",
           {{"AAAA001", "", 60.0, {}, 60.0, 60.0}, {"BBBB001", "", 60.0, {}, 45.0, 45.0}});
  calculer("codes, taux et forfait", "1",
           {{"BBBB001", "1", 200.0, {"A"}, 210.0, 200.0}, {"CCCC001", "2", 100.0, {"E", "F"}, 85.0, 85.0}});
  calculer("le code du plus cher ne le réduit pas", "1",
           {{"BBBB001", "2", 200.0, {}, 200.0, 200.0}, {"CCCC001", "2", 100.0, {}, 50.0, 50.0}});
  calculer("un geste complémentaire n'est ni gardé ni réduit", "1",
           {{"ZZZZ001", "", 500.0, {}, 500.0, 500.0}, {"AAAA001", "", 60.0, {}, 60.0, 60.0}});
  EXPECT_EQ(association().actePlusFort->vue(), "AAAA001");
  EXPECT_TRUE(association().lignes[1]->topActePuMax);
  calculer("gestes seuls", "1",
           {{"ZZZZ001", "", 50.0, {}, 50.0, 50.0}, {"ZZZZ001", "", 40.0, {}, 40.0, 40.0}});
  EXPECT_FALSE(association().actePlusFort.has_value());
  calculer("au centime", "1",
           {{"BBBB001", "1", 200.0, {}, 200.0, 200.0}, {"CCCC001", "2", 33.33, {}, 16.67, 16.67}});

  facture.lignes.clear();
  ajouter("AAAA001");
  ajouter("DDDD001");
  grouper();
  EXPECT_EQ(tarification.appliquerCBase(Code("1"), association()), NOX_CR_DONNEE_ABSENTE);
}

TEST_F(Bases, supplementPourCharges) {
  const auto base = [&](std::optional<const char*> s, std::optional<const char*> l,
                        std::optional<const char*> i, double attendue) {
    const auto code = [](std::optional<const char*> texte) {
      return texte.has_value() ? std::optional(Code(*texte)) : std::nullopt;
    };
    supplement = code(s);
    lieu = code(l);
    identifiant = code(i);
    calculer("", "1", {{"AAAA001", "", 80.0, {}, attendue, 80.0}});
  };
  base(std::nullopt, std::nullopt, std::nullopt, 80.0);
  base("0", std::nullopt, std::nullopt, 80.0);
  base("1", std::nullopt, std::nullopt, 92.0);
  base("1", "0", "750000001", 92.0);
  base("1", "2", "", 92.0);
  base("1", "2", "750000001", 80.0);
}

TEST_F(Bases, nonConventionnes) {
  calculer("forfait, base plus petite", "0", {{"AAAA001", "", 8.0, {}, 8.0, 8.0}});
  calculer("forfait, base plus grande", "0", {{"AAAA001", "", 100.0, {}, 10.0, 100.0}});
  quand = 20191231;
  calculer("taux sans forfait", "0", {{"AAAA001", "", 100.0, {}, 16.0, 100.0}});
  calculer("conventionné", "1", {{"AAAA001", "", 100.0, {}, 100.0, 100.0}});
}

// Exemption: a line claims something, at a rate, with a base.
struct CasExoneration {
  const char* nom;
  std::vector<char> codesActe;
  const char* motif;
  double taux;
  double base;
  Attente levee;           // by which rule of the line; no other is to raise
  const char* etat = "3";  // that PROD790A leaves
};

class ExonerationLigne : public ReglesEssai, public ::testing::WithParamInterface<CasExoneration> {};

const std::vector<CasExoneration> CAS_EXONERATION{
    {"rien à dire", {'1'}, "0", 0.7, 119.99, {}},
    {"sans justification donnée", {'1'}, "", 0.7, 10.0, {}},
    {"autre nature, à taux partiel", {'1'}, "4", 0.9, 500.0, {}},
    {"taux plein de droit, sans justification", {'1'}, "0", 1.0, 500.0, {}},
    {"coûteux et appliqué", {'1'}, "C", 1.0, 120.0, {}, "2"},
    {"coûteux avec la séance peut-être", {'1'}, "C", 1.0, 20.0, {}},
    {"justification inconnue", {'1'}, "Z", 1.0, 20.0, {"R785", {"Z"}}},
    {"prévention sur un acte qui ne l'est pas", {'1'}, "7", 1.0, 20.0, {"R786", {"AAAA001", "7"}}},
    {"prévention appliquée", {'5', '7'}, "7", 1.0, 20.0, {}},
    {"coûteux, non appliqué", {'1'}, "C", 0.7, 20.0, {"R787", {"AAAA001", "0.70"}}},
    {"coûteux sur un acte qui ne s'exonère pas", {'5'}, "C", 1.0, 500.0, {"R791B", {"AAAA001"}}},
    {"coûteux sur un acte comparé seul", {'2'}, "C", 1.0, 120.0, {}},
    {"coûteux sur un acte comparé seul, non appliqué", {'2'}, "C", 0.7, 120.0, {"R787", {}}},
    {"acte comparé seul, participation laissée", {'2', '7'}, "0", 0.7, 120.0, {"R793", {}}},
    {"acte comparé seul, sous le seuil", {'2'}, "0", 0.7, 119.99, {}},
    {"exonéré par nature, participation laissée", {'3'}, "0", 0.7, 20.0, {"R788", {"AAAA001", "0.70"}}},
    {"par nature et par le seuil", {'1', '3'}, "0", 0.7, 500.0, {"R788", {}}, "2"},
    {"prévention non appliquée", {'7'}, "7", 0.6, 20.0, {"R789", {"AAAA001", "0.60"}}},
    {"seuil atteint seul, participation laissée",
     {'1'},
     "0",
     0.7,
     120.0,
     {"R793", {"AAAA001", "120.00"}},
     "2"},
    {"seuil atteint seul, code 9", {'1'}, "9", 0.7, 121.0, {"R793", {}}, "2"},
    {"seuil atteint par un acte qui ne s'exonère pas", {'5'}, "0", 0.7, 500.0, {}},
    {"plus que le taux plein", {'1'}, "4", 1.01, 20.0, {"R795A", {"AAAA001", "1.01"}}},
};

TEST_P(ExonerationLigne, uneSeuleRegleLeve) {
  const CasExoneration& cas = GetParam();
  acte("AAAA001").historiques[0].exonerationsTM = compacte<char>(cas.codesActe);
  ligne->exonerationTM = Code(cas.motif);
  ligne->tauxRemboursement = Coefficient(cas.taux);
  ligne->baseHorsForfait = Montant(cas.base);
  const std::pair<std::string_view, CodeRetour (T::*)(const LigneCCAM&, Constat&)> regles[] = {
      {"R785", &T::appliquerProd785},   {"R786", &T::appliquerProd786},  {"R787", &T::appliquerProd787},
      {"R791B", &T::appliquerProd791B}, {"R788", &T::appliquerProd788},  {"R789", &T::appliquerProd789},
      {"R793", &T::appliquerProd793},   {"R795A", &T::appliquerProd795A}};
  for (const auto& [reference, regle] : regles) {
    const bool sienne = cas.levee.reference != nullptr && reference == cas.levee.reference;
    verifier(cas.nom, tarification, regle, *ligne, sienne ? cas.levee : RIEN);
  }
  Code etat(Facture::NON_EXONEREE);
  EXPECT_EQ(tarification.appliquerProd790A(*ligne, etat), NOX_CR_OK);
  EXPECT_EQ(etat.vue(), cas.etat) << cas.nom;
}
INSTANTIATE_TEST_SUITE_P(Toutes, ExonerationLigne, ::testing::ValuesIn(CAS_EXONERATION));

class ExonerationFacture : public ReglesEssai {
 protected:
  ExonerationFacture() {
    ligne->baseHorsForfait = Montant(70.0);
    autre = &ajouter("BBBB001");
    autre->baseHorsForfait = Montant(50.0);
    deplacement = &ajouterDeplacement(LigneActe::Type::DEPLACEMENT_1, *ligne);
    deplacement->tauxRemboursement = Coefficient(0.7);
    deplacement->exonerationTM = Code("0");
    grouper();
  }
  std::string etatSeance(const char* caisse) {
    grouper();
    Code etat(Facture::NON_EXONEREE);
    EXPECT_EQ(tarification.appliquerProd790B(facture.seances.front(), Code(caisse), etat), NOX_CR_OK);
    return std::string(etat.vue());
  }
  LigneCCAM* autre = nullptr;
  LigneActe* deplacement = nullptr;
};

TEST_F(ExonerationFacture, sommeDeLaSeance) {
  EXPECT_EQ(etatSeance("751"), "2") << "120 atteint le seuil de métropole";
  EXPECT_EQ(etatSeance("975"), "2");
  EXPECT_EQ(etatSeance("971"), "3") << "130";
  EXPECT_EQ(etatSeance("972"), "3");
  autre->baseHorsForfait = Montant(60.0);
  EXPECT_EQ(etatSeance("971"), "2");
  EXPECT_EQ(etatSeance("972"), "2");
  EXPECT_EQ(etatSeance("974"), "3") << "140";
  autre->baseHorsForfait = Montant(70.0);
  EXPECT_EQ(etatSeance("974"), "2");
  EXPECT_EQ(etatSeance("973"), "3") << "150";
  autre->tauxRemboursement = Coefficient(1.0);
  EXPECT_EQ(etatSeance("751"), "3") << "une ligne à taux plein ne compte pas";
  autre->exonerationTM = Code("C");
  EXPECT_EQ(etatSeance("751"), "2") << "sauf si elle réclame";
  acte("BBBB001").historiques[0].exonerationsTM = compacte<char>({'2'});
  EXPECT_EQ(etatSeance("751"), "3") << "un acte qui ne s'exonère pas ne compte pas";
  autre->acte = Code("XXXX999");
  ligne->baseHorsForfait = Montant(120.0);
  grouper();
  Code etat(Facture::NON_EXONEREE);
  EXPECT_EQ(tarification.appliquerProd790B(facture.seances.front(), Code("751"), etat), NOX_CR_CODE_INCONNU);
  autre->reglesNonVerifiables = codes({"R790B"});
  EXPECT_EQ(etatSeance("751"), "2") << "une ligne où la règle n'est pas vérifiable ne compte pas";
  referentiel.lignes<ConceptCCAM>().resize(12);
  grouper();
  EXPECT_EQ(tarification.appliquerProd790B(facture.seances.front(), Code("751"), etat), NOX_CR_CODE_INCONNU)
      << "sans le concept 13 rien ne se décide";
}

TEST_F(ExonerationFacture, ceQueReclamentLesLignes) {
  verifier("due avec la séance", tarification, &T::appliquerProd792, *ligne, {"R792", {"AAAA001"}});
  acte("AAAA001").historiques[0].exonerationsTM = compacte<char>({'1', '3'});
  verifier("exonéré par nature", tarification, &T::appliquerProd792, *ligne, RIEN);
  acte("AAAA001").historiques[0].exonerationsTM = compacte<char>({'1'});
  verifier("le déplacement aussi", tarification, &T::appliquerProd792B, *deplacement,
           {"R792B", {"IFD", "AAAA001"}});
  deplacement->tauxRemboursement = Coefficient(1.0);
  verifier("déplacement exonéré", tarification, &T::appliquerProd792B, *deplacement, RIEN);
  ligne->exonerationTM = Code("C");
  ligne->tauxRemboursement = Coefficient(1.0);
  verifier("réclamée", tarification, &T::appliquerProd792, *ligne, RIEN);
  verifier("réclamée, facture non exonérée", tarification, &T::appliquerProd791A, *ligne,
           {"R791A", {"AAAA001"}});
  acte("AAAA001").historiques[0].exonerationsTM = compacte<char>({'2'});
  ligne->baseHorsForfait = Montant(120.0);
  verifier("réclamée à bon droit par un acte seul", tarification, &T::appliquerProd791A, *ligne, RIEN);
  ligne->baseHorsForfait = Montant(119.99);
  verifier("réclamée à tort par un acte seul", tarification, &T::appliquerProd791A, *ligne, {"R791A", {}});
  acte("AAAA001").historiques[0].exonerationsTM = compacte<char>({'1'});
  ligne->baseHorsForfait = Montant(70.0);
  ligne->tauxRemboursement = Coefficient(0.7);
  verifier("affaire de la règle 787", tarification, &T::appliquerProd791A, *ligne, RIEN);
  ligne->exonerationTM = Code("0");
  ligne->baseHorsForfait = Montant(120.0);
  verifier("affaire de la règle 793", tarification, &T::appliquerProd792, *ligne, RIEN);
  ligne->baseHorsForfait = Montant(69.99);
  grouper();
  verifier("la séance n'atteint pas le seuil", tarification, &T::appliquerProd792, *ligne, RIEN);
}

TEST_F(ExonerationFacture, lesLignesSontAjustees) {
  const Code metropole("751");
  ASSERT_EQ(tarification.appliquerProd790C(*ligne, metropole, Code("3")), NOX_CR_OK);
  EXPECT_DOUBLE_EQ(ligne->tauxRemboursement->lireValeur(), 0.7);
  ASSERT_EQ(tarification.appliquerProd790C(*ligne, metropole, Code("2")), NOX_CR_OK);
  EXPECT_DOUBLE_EQ(ligne->tauxRemboursement->lireValeur(), 1.0);
  EXPECT_EQ(ligne->exonerationTM->vue(), "C");
  ASSERT_EQ(tarification.appliquerProd790D(*deplacement, metropole, Code("2")), NOX_CR_OK);
  EXPECT_DOUBLE_EQ(deplacement->tauxRemboursement->lireValeur(), 1.0);
  deplacement->tauxRemboursement = Coefficient(0.7);
  ASSERT_EQ(tarification.appliquerProd790D(*deplacement, metropole, Code("2")), NOX_CR_OK);
  EXPECT_DOUBLE_EQ(deplacement->tauxRemboursement->lireValeur(), 1.0) << "déjà réclamé, à taux partiel";
  autre->exonerationTM = Code("4");
  ASSERT_EQ(tarification.appliquerProd790C(*autre, metropole, Code("2")), NOX_CR_OK);
  EXPECT_EQ(autre->exonerationTM->vue(), "4") << "une autre exonération reste";
}

TEST_F(ExonerationFacture, unActeSeul) {
  const auto decider = [&](const char* caisse, double base, const char* motif, double tauxLigne) {
    std::optional<Coefficient> taux(tauxLigne);
    Code code(motif);
    Booleen exonere;
    EXPECT_EQ(tarification.appliquerCExoActe(Code(caisse), Code("AAAA001"), date(JOUR), Montant(base),
                                             Code(motif), taux, code, exonere),
              NOX_CR_OK);
    return std::string(vraiFaux(exonere.estVrai())) + " " + code.lireTexte() + " " +
           std::to_string(static_cast<int>(taux->lireValeur() * 100));
  };
  EXPECT_EQ(decider("751", 120.0, "0", 0.7), "vrai C 100");
  EXPECT_EQ(decider("971", 120.0, "0", 0.7), "faux 0 70");
  EXPECT_EQ(decider("751", 119.99, "C", 1.0), "faux 0 100");
  EXPECT_EQ(decider("751", 500.0, "4", 1.0), "faux 4 100");
  EXPECT_EQ(decider("751", 10.0, "", 0.7), "faux 0 70");
  acte("AAAA001").historiques[0].exonerationsTM = compacte<char>({'2'});
  EXPECT_EQ(decider("751", 120.0, "0", 0.7), "faux C 100") << "exonéré sans la facture";
  referentiel.lignes<ConceptCCAM>().resize(22);
  EXPECT_EQ(decider("751", 120.0, "0", 0.7), "faux 0 70") << "sans le concept 23, le 13 sert aux deux";
}

TEST_F(ExonerationFacture, prevention) {
  acte("AAAA001").historiques[0].exonerationsTM = compacte<char>({'5', '7'});
  Coefficient taux(0.6);
  Code code("0");
  EXPECT_EQ(tarification.appliquerCExoPrevention(Code("AAAA001"), false, date(JOUR), taux, code), NOX_CR_OK);
  EXPECT_EQ(code.vue(), "0");
  EXPECT_EQ(tarification.appliquerCExoPrevention(Code("BBBB001"), true, date(JOUR), taux, code),
            NOX_CR_REGLE_REPONSE_2);
  EXPECT_DOUBLE_EQ(taux.lireValeur(), 0.6);
  EXPECT_EQ(tarification.appliquerCExoPrevention(Code("AAAA001"), true, date(JOUR), taux, code), NOX_CR_OK);
  EXPECT_EQ(code.vue(), "7");
  EXPECT_DOUBLE_EQ(taux.lireValeur(), 1.0);
}

}  // namespace
}  // namespace noxlux
