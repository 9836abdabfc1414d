// Rules of one line.
#include <functional>

#include "regles/regles_essai.h"

namespace noxlux {
namespace {

using R = Reglementation;

class ReglesLigne : public ReglesEssai {
 public:
  using ReglesEssai::acte, ReglesEssai::activite, ReglesEssai::phase, ReglesEssai::facture,
      ReglesEssai::ligne, ReglesEssai::poser, ReglesEssai::codes, ReglesEssai::JOUR;
};

TEST_F(ReglesLigne, uneLigneCorrecteNeLeveRien) {
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

// What a case changes of the correct line, of its patient and of its act.
using L = LigneCCAM;
using Changement = std::function<void(ReglesLigne&)>;

template <class Objet, class Champ, class Valeur>
Changement champ(Champ Objet::*ou, Valeur valeur) {
  return [=](ReglesLigne& t) { t.ligne->*ou = valeur; };
}
Changement liste(ListeCodes L::*ou, std::initializer_list<const char*> textes) {
  return champ(ou, ReglesLigne::codes(textes));
}
Changement modificateurs(std::initializer_list<const char*> textes) {
  return liste(&L::modificateur, textes);
}
Changement transmis(std::initializer_list<const char*> textes) {
  return liste(&L::donneesComplementaires, textes);
}
Changement dents(std::initializer_list<const char*> textes) { return liste(&L::dent, textes); }
Changement ne(unsigned naissance) {
  return [=](ReglesLigne& t) { t.facture.dateNaissance = date(naissance); };
}
Changement admission(char code) {
  return [=](ReglesLigne& t) { t.acte("AAAA001").historiques[0].admissionRemboursement = code; };
}
Changement fin(unsigned jourFin) {
  return [=](ReglesLigne& t) { t.acte("AAAA001").dateFin = jour(jourFin); };
}
Changement classe(const char* code) {
  return [=](ReglesLigne& t) {
    t.activite("AAAA001").historiques[0].classesSpecialites =
        compacte<CodeClasseSpecialite>({CodeClasseSpecialite(code)});
  };
}
Changement agrements(const char* premier, const char* second) {
  return [=](ReglesLigne& t) {
    t.activite("AAAA001").agrementsRadio =
        compacte<CodeAgrementRadio>({CodeAgrementRadio(premier), CodeAgrementRadio(second)});
  };
}

const Changement SOUS_ENTENTE = [](ReglesLigne& t) {
  t.acte("AAAA001").historiques[0].ententePrealable = 'O';
};
const Changement DE_MATERNITE = [](ReglesLigne& t) {
  t.acte("AAAA001").naturesAssurance = compacte<CodeNatureAssurance>({CodeNatureAssurance("MA")});
};
const Changement PREND_SEULEMENT_A = [](ReglesLigne& t) {
  t.activite("AAAA001").historiques[0].modificateurs = compacte<char>({'A'});
};
const Changement DIX_SEPT_DENTS = [](ReglesLigne& t) { t.phase("EEEE001").nombreDents = CodeFixe<2>("17"); };
const Changement DENTAIRE = champ(&L::acte, Code("EEEE001"));
const Changement BASE_AMO = champ(&L::baseTheoriqueAMO, Montant(50.0));
const Changement DEPENSE_NON_REMBOURSABLE = champ(&L::qualificatifDepense, Code("N"));
constexpr unsigned JOUR = ReglesLigne::JOUR;

struct Cas {
  const char* nom;
  CodeRetour (R::*regle)(const LigneCCAM&, Constat&);
  std::vector<Changement> changements;
  Attente attente;
};

const std::vector<Cas>& lesCas() {
  static const std::vector<Cas> CAS{
      {"acte inconnu", &R::appliquerProd500, {champ(&L::acte, Code("XXXX999"))}, {"R500", {"XXXX999"}}},
      {"veille de la création",
       &R::appliquerProd510,
       {champ(&L::date, date(20050228))},
       {"R510", {"AAAA001"}}},
      {"jour de la création", &R::appliquerProd510, {champ(&L::date, date(20050301))}, RIEN},
      {"jour de la fin", &R::appliquerProd510, {fin(JOUR)}, RIEN},
      {"lendemain de la fin", &R::appliquerProd510, {fin(JOUR - 1)}, {"R510", {"AAAA001"}}},
      {"avant la naissance", &R::appliquerProd511A, {ne(JOUR + 1)}, {"R511A", {"AAAA001"}}},
      {"jour de la naissance", &R::appliquerProd511A, {ne(JOUR)}, RIEN},
      {"nature d'assurance non admise", &R::appliquerProd890, {DE_MATERNITE}, {"R890", {"AAAA001", "AS"}}},
      {"sans entente préalable", &R::appliquerProd780, {SOUS_ENTENTE}, {"R780", {"AAAA001"}}},
      {"entente préalable donnée",
       &R::appliquerProd780,
       {SOUS_ENTENTE, champ(&L::ententePrealable, Code("4"))},
       RIEN},
      {"non remboursable, facturé en dépense non remboursable",
       &R::appliquerProd760,
       {admission('2'), champ(&L::baseRemboursement, Montant(0.0)), BASE_AMO, DEPENSE_NON_REMBOURSABLE},
       RIEN},
      {"non remboursable avec base",
       &R::appliquerProd760,
       {admission('2'), champ(&L::baseRemboursement, Montant(0.01)), BASE_AMO, DEPENSE_NON_REMBOURSABLE},
       {"R760", {"AAAA001"}}},
      {"non remboursable sans base théorique",
       &R::appliquerProd760,
       {admission('2'), DEPENSE_NON_REMBOURSABLE},
       {"R760", {}}},
      {"non remboursable sans qualificatif", &R::appliquerProd760, {admission('2'), BASE_AMO}, {"R760", {}}},
      {"conditions non réunies", &R::appliquerProd765, {admission('3')}, {"R765", {"AAAA001"}}},
      {"remboursement exceptionnel",
       &R::appliquerProd765,
       {admission('3'), champ(&L::codeRemboursement, Code("O"))},
       RIEN},
      {"activité inconnue",
       &R::appliquerProd530,
       {champ(&L::activite, Code("4"))},
       {"R530", {"AAAA001", "4"}}},
      {"phase inconnue",
       &R::appliquerProd540,
       {champ(&L::phase, Code("2"))},
       {"R540", {"AAAA001", "1", "2"}}},
      {"regroupement inconnu", &R::appliquerProd220, {champ(&L::prestation, Code("ZZZ"))}, {"R220", {"ZZZ"}}},
      {"regroupement échu", &R::appliquerProd220, {champ(&L::date, date(20310101))}, {"R220", {"ADC"}}},
      {"regroupement d'un autre acte",
       &R::appliquerProd798,
       {champ(&L::prestation, Code("ADI"))},
       {"R798", {"AAAA001", "1", "ADC"}}},
      {"spécialité admise", &R::appliquerProd670, {classe("C1")}, RIEN},
      {"spécialité non admise", &R::appliquerProd670, {classe("D1")}, {"R670", {"AAAA001", "1", "04"}}},
      {"spécialité inconnue, aucune classe nommée",
       &R::appliquerProd670,
       {champ(&L::specialitePS, Code("88"))},
       RIEN},
      {"premier agrément admis", &R::appliquerProd895A, {agrements("11", "24")}, RIEN},
      {"seul le premier agrément compte",
       &R::appliquerProd895A,
       {agrements("10", "11")},
       {"R895A", {"AAAA001", "1", "10, 11"}}},
      {"modificateur tarifant inconnu", &R::appliquerProd136A, {modificateurs({"A", "Q"})}, {"R136A", {"Q"}}},
      {"le troisième n'est pas tarifant", &R::appliquerProd136A, {modificateurs({"A", "E", "Q"})}, RIEN},
      {"modificateur inconnu au delà des tarifants",
       &R::appliquerProd136B,
       {modificateurs({"A", "E", "Q"})},
       {"R136B", {"Q"}}},
      {"les deux premiers sont tarifants", &R::appliquerProd136B, {modificateurs({"A", "Q"})}, RIEN},
      {"modificateurs qui s'excluent",
       &R::appliquerProd190,
       {modificateurs({"E", "A", "F"})},
       {"R190", {"A", "F"}}},
      {"un seul des deux nomme l'autre", &R::appliquerProd190, {modificateurs({"F", "E"})}, RIEN},
      {"la référence ne dit rien des deux", &R::appliquerProd190, {modificateurs({"B", "F"})}, RIEN},
      {"inconnu, affaire de la règle 136", &R::appliquerProd190, {modificateurs({"A", "Q"})}, RIEN},
      {"modificateur non applicable",
       &R::appliquerProd550,
       {PREND_SEULEMENT_A, modificateurs({"A", "E", "F"})},
       {"R550", {"E", "AAAA001", "1"}}},
      {"trop jeune pour le modificateur",
       &R::appliquerProd555,
       {modificateurs({"A", "E"}), ne(20180611)},
       {"R555", {"E"}}},
      {"l'âge minimal du modificateur", &R::appliquerProd555, {modificateurs({"E"}), ne(20180610)}, RIEN},
      {"un jour de plus que l'âge maximal",
       &R::appliquerProd555,
       {modificateurs({"E"}), ne(19640609)},
       {"R555", {"E"}}},
      {"pas encore né, affaire de la règle 511A",
       &R::appliquerProd555,
       {modificateurs({"E"}), ne(20250101)},
       RIEN},
      {"modificateur OC transmis", &R::appliquerProd798A, {modificateurs({"E", "A"}), transmis({"X"})}, RIEN},
      {"modificateur OC d'un autre",
       &R::appliquerProd798A,
       {modificateurs({"A"}), transmis({"Y"})},
       {"R798A", {"Y"}}},
      {"un modificateur OC de trop",
       &R::appliquerProd798A,
       {modificateurs({"A", "F"}), transmis({"X", "Y"})},
       {"R798A", {"Y"}}},
      {"trop jeune", &R::appliquerProd720, {DENTAIRE, ne(20180611)}, {"R720", {"EEEE001", "6"}}},
      {"l'âge minimal", &R::appliquerProd720, {DENTAIRE, ne(20180610)}, RIEN},
      {"l'âge maximal", &R::appliquerProd730, {DENTAIRE, ne(19800610)}, RIEN},
      {"trop âgé", &R::appliquerProd730, {DENTAIRE, ne(19800609)}, {"R730", {"EEEE001", "44"}}},
      {"sans dent", &R::appliquerProd700, {DENTAIRE}, {"R700", {"EEEE001"}}},
      {"une dent", &R::appliquerProd700, {DENTAIRE, dents({"11"})}, RIEN},
      {"assez de dents", &R::appliquerProd702, {DENTAIRE, dents({"11", "12"})}, RIEN},
      {"pas assez de dents", &R::appliquerProd702, {DENTAIRE, dents({"11"})}, {"R702", {"EEEE001", "2"}}},
      {"un nombre de dents hors de 1 à 16", &R::appliquerProd702, {DENTAIRE, DIX_SEPT_DENTS}, RIEN},
      {"dent incompatible",
       &R::appliquerProd710,
       {DENTAIRE, dents({"11", "28", "18"})},
       {"R710", {"28", "EEEE001"}}},
      {"code association inconnu",
       &R::appliquerProd137,
       {champ(&L::codeAssociation, Code("8"))},
       {"R137", {"8"}}},
      {"code association connu", &R::appliquerProd137, {champ(&L::codeAssociation, Code("2"))}, RIEN},
      {"sans code association", &R::appliquerProd137, {}, RIEN},
  };
  return CAS;
}

class ReglesLigneCas : public ReglesLigne, public ::testing::WithParamInterface<std::size_t> {};

TEST_P(ReglesLigneCas, leve) {
  const Cas& cas = lesCas()[GetParam()];
  for (const Changement& changement : cas.changements) {
    changement(*this);
  }
  verifier(cas.nom, reglementation, cas.regle, *ligne, cas.attente);
}
INSTANTIATE_TEST_SUITE_P(Toutes, ReglesLigneCas, ::testing::Range(std::size_t{0}, lesCas().size()));

TEST_F(ReglesLigne, lignesNonCcam) {
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
           {"R690A", {"IFD", "AAAA001"}});
  ligne->acte = Code("XXXX999");
  verifier("frais d'un acte inconnu", reglementation, &R::appliquerProd690A, kilometres, RIEN);
}

TEST_F(ReglesLigne, questions) {
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

TEST_F(ReglesLigne, controleDesDonnees) {
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
  EXPECT_FALSE(reponse(reglementation.appliquerCAge1(date(20250101), Code("E"), d, oui)));
  EXPECT_EQ(reglementation.appliquerCAge1(date(20240101), Code("A"), d, oui), NOX_CR_PAS_D_HISTORIQUE);
  EXPECT_EQ(reglementation.appliquerCAge1(date(19800101), Code("Q"), d, oui), NOX_CR_CODE_INCONNU);
  poser<HistoriqueAgeModificateur>({{jour(DEBUT), {}, 'M', 35, 'A', 60}});
  EXPECT_TRUE(reponse(reglementation.appliquerCAge1(date(20210715), Code("E"), d, oui))) << "2 years 330 days";
  EXPECT_FALSE(reponse(reglementation.appliquerCAge1(date(20210716), Code("E"), d, oui)));
  EXPECT_TRUE(reponse(reglementation.appliquerCAge2(date(19800610), e, un, zero, d, oui)));
  EXPECT_FALSE(reponse(reglementation.appliquerCAge2(date(19800609), e, un, zero, d, oui)));
  EXPECT_FALSE(reponse(reglementation.appliquerCAge2(date(20180611), e, un, zero, d, oui)));
  EXPECT_EQ(reglementation.appliquerCAge2(date(19800609), e, un, Code("3"), d, oui), NOX_CR_CODE_INCONNU);
  acte("AAAA001").naturesAssurance = compacte<CodeNatureAssurance>({CodeNatureAssurance("MA")});
  EXPECT_TRUE(reponse(reglementation.appliquerCAssurance(Code("MA"), a, d, oui)));
  EXPECT_FALSE(reponse(reglementation.appliquerCAssurance(Code("AT"), a, d, oui)));
  EXPECT_TRUE(reponse(reglementation.appliquerCCcam(Code("04"), Code("K"), d, oui)));
  EXPECT_FALSE(reponse(reglementation.appliquerCCcam(Code("19"), Code("K"), d, oui)));
  EXPECT_TRUE(reponse(reglementation.appliquerCExecutant(Code("88"), a, un, d, oui)));
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
TEST_F(ReglesLigne, uneLectureManqueeArreteLaRegle) {
  Erreur erreur;
  Constat constat(reglementation, "PROD530", erreur);
  ligne->acte = Code("XXXX999");
  EXPECT_EQ(reglementation.appliquerProd510(*ligne, constat), NOX_CR_CODE_INCONNU);
  EXPECT_EQ(tarification.appliquerProd791A(*ligne, constat), NOX_CR_OK);
  ligne->exonerationTM = Code("C");
  ligne->tauxRemboursement = Coefficient(1.0);
  EXPECT_EQ(tarification.appliquerProd791A(*ligne, constat), NOX_CR_CODE_INCONNU);
  ligne->acte = Code("AAAA001");
  ligne->date = date(20040101);
  EXPECT_EQ(reglementation.appliquerProd780(*ligne, constat), NOX_CR_PAS_D_HISTORIQUE);
  EXPECT_FALSE(erreur.estRenseigne());
  ligne->date = date(JOUR);
  ligne->activite = Code("4");
  poser<InformationRegle>({});
  EXPECT_EQ(reglementation.appliquerProd530(*ligne, constat), NOX_CR_DONNEE_ABSENTE);
  EXPECT_FALSE(erreur.estRenseigne());
}

}  // namespace
}  // namespace noxlux
