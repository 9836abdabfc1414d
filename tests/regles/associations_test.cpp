// Rules among the lines of one date, and of one association.
#include <functional>

#include "regles/regles_essai.h"

namespace noxlux {
namespace {

using R = Reglementation;

std::vector<std::int32_t> numeros(const TypeListe<Nombre>& liste) {
  std::vector<std::int32_t> resultat;
  for (const Nombre& nombre : liste) {
    resultat.push_back(nombre.lireValeur());
  }
  return resultat;
}
using Numeros = std::vector<std::int32_t>;

class ReglesSeance : public ReglesEssai {};

TEST_F(ReglesSeance, unGesteComplementaireAccompagneUnActe) {
  LigneCCAM& geste = ajouter("ZZZZ001");
  grouper();
  verifier("avec un acte isolé", reglementation, &R::appliquerProd580, geste, RIEN);
  ligne->acte = Code("PPPP001");
  verifier("avec une procédure", reglementation, &R::appliquerProd580, geste, RIEN);
  ligne->acte = Code("ZZZZ001");
  verifier("avec lui-même", reglementation, &R::appliquerProd580, geste, {"R580", {"ZZZZ001"}});
  ligne->acte = Code("AAAA001");
  ligne->date = date(JOUR - 1);
  grouper();
  verifier("la veille", reglementation, &R::appliquerProd580, geste, {"R580", {"ZZZZ001"}});
}

TEST_F(ReglesSeance, actesIncompatibles) {
  ligne->acte = Code("CCCC001");
  LigneCCAM& autre = ajouter("DDDD001");
  grouper();
  verifier("exclu", reglementation, &R::appliquerProd600, *ligne, {"R600", {"CCCC001", "DDDD001"}});
  verifier("n'exclut pas", reglementation, &R::appliquerProd600, autre, RIEN);
  autre.numeroPS = Code("759999999");
  grouper();
  verifier("quel que soit l'exécutant", reglementation, &R::appliquerProd600, *ligne, {"R600", {}});
  autre.date = date(JOUR + 1);
  grouper();
  verifier("le lendemain", reglementation, &R::appliquerProd600, *ligne, RIEN);
}

TEST_F(ReglesSeance, modificateurSurUnSeulActe) {
  LigneCCAM& autre = ajouter("BBBB001");
  ligne->modificateur = codes({"E", "F"});
  autre.modificateur = codes({"F", "E"});
  grouper();
  verifier("porté deux fois", reglementation, &R::appliquerProd240, *ligne,
           {"R240", {"F", "AAAA001", "BBBB001"}});
  EXPECT_EQ(numeros(prestations), (Numeros{1, 2}));
  autre.numeroPS = Code("759999999");
  verifier("par un autre professionnel", reglementation, &R::appliquerProd240, *ligne, RIEN);
  autre.numeroPS = ligne->numeroPS;
  autre.acte = ligne->acte;
  verifier("sur le même acte", reglementation, &R::appliquerProd240, *ligne, RIEN);
  autre.acte = Code("BBBB001");
  autre.modificateur = codes({"E"});
  verifier("présence multiple admise", reglementation, &R::appliquerProd240, *ligne, RIEN);
}

// An association: its acts, each with its association code and price.
struct Ligne {
  const char* acte;
  const char* code;
  double prix = 100.0;
};

struct CasAssociation {
  const char* nom;
  std::vector<Ligne> lignes;
  Attente levee;        // by which one of the rules; no other is to raise
  Numeros prestations;  // of the lines concerned
};

class ReglesAssociation : public ReglesEssai, public ::testing::WithParamInterface<CasAssociation> {};

const std::vector<CasAssociation> CAS_ASSOCIATION{
    {"acte seul", {{"AAAA001", ""}}, {}, {}},
    {"prévus ensemble", {{"AAAA001", ""}, {"BBBB001", ""}}, {}, {}},
    {"prévus, dans l'autre ordre", {{"BBBB001", ""}, {"AAAA001", ""}}, {}, {}},
    {"non prévus, codés", {{"BBBB001", "2", 60}, {"CCCC001", "1"}}, {}, {}},
    {"trois actes codés", {{"BBBB001", "2", 60}, {"CCCC001", "1"}, {"DDDD001", "4", 50}}, {}, {}},
    {"geste prévu par l'un des deux", {{"AAAA001", "1"}, {"ZZZZ001", "", 500}, {"CCCC001", "2", 10}}, {}, {}},
    {"deux actes de la procédure, codés", {{"CCCC001", "1"}, {"CCCC002", "2", 50}}, {}, {}},
    {"gestes seuls, affaire de la règle 580", {{"ZZZZ001", ""}, {"ZZZZ001", ""}}, {}, {}},
    {"code inconnu, affaire de la règle 137", {{"BBBB001", "8"}, {"CCCC001", "1", 50}}, {}, {}},
    {"deux actes de la procédure, sans code",
     {{"CCCC001", ""}, {"CCCC002", ""}},
     {"R590A", {"CCCC001", "CCCC002", "PPPP001"}},
     {1, 2}},
    {"deux actes de la procédure, un seul code",
     {{"CCCC001", "1"}, {"CCCC002", "", 50}},
     {"R590A", {"CCCC001", "CCCC002", "PPPP001"}},
     {1, 2}},
    {"la procédure et son acte, même codés",
     {{"PPPP001", "1"}, {"CCCC002", "2", 50}},
     {"R590B", {"PPPP001", "CCCC002", "PPPP001"}},
     {1, 2}},
    {"code d'un acte seul", {{"AAAA001", "1"}}, {"R648", {"AAAA001"}}, {1}},
    {"code d'un acte prévu", {{"AAAA001", ""}, {"BBBB001", "1"}}, {"R648", {"BBBB001"}}, {2}},
    {"code réduit d'un geste",
     {{"BBBB001", "1"}, {"CCCC001", "2", 50}, {"ZZZZ001", "2", 10}},
     {"R648", {"ZZZZ001"}},
     {3}},
    {"geste au taux plein d'actes codés",
     {{"BBBB001", "1"}, {"CCCC001", "2", 50}, {"ZZZZ001", "4", 10}},
     {},
     {}},
    {"geste codé, acte sans code", {{"AAAA001", ""}, {"ZZZZ001", "1", 10}}, {"R648", {"ZZZZ001"}}, {2}},
    {"supplément codé avec les autres",
     {{"BBBB001", "1"}, {"CCCC001", "2", 50}, {"SSSS001", "4", 10}},
     {},
     {}},
    {"acte prévu de chacun, codé", {{"SSSS001", "1"}, {"AAAA001", "1", 50}}, {"R648", {"AAAA001"}}, {2}},
    {"aucun acte à taux plein", {{"BBBB001", "2"}, {"CCCC001", "2", 50}}, {"R649", {"BBBB001", "2"}}, {1, 2}},
    {"le plus cher est réduit",
     {{"BBBB001", "2", 100.01}, {"CCCC001", "1"}},
     {"R649", {"BBBB001", "2"}},
     {1, 2}},
    {"à prix égaux, l'un des deux suffit", {{"BBBB001", "2"}, {"CCCC001", "1"}}, {}, {}},
    {"ni prévus ni codés",
     {{"AAAA001", ""}, {"BBBB001", ""}, {"DDDD001", ""}},
     {"R650", {"AAAA001", "DDDD001"}},
     {1, 3}},
    {"le même acte deux fois", {{"AAAA001", ""}, {"AAAA001", ""}}, {"R650", {"AAAA001", "AAAA001"}}, {1, 2}},
    {"un acte sans code parmi des actes codés",
     {{"BBBB001", "1"}, {"CCCC001", "2", 50}, {"DDDD001", "", 40}},
     {"R653", {"DDDD001"}},
     {1, 2, 3}},
    {"geste que nul ne prévoit", {{"BBBB001", ""}, {"ZZZZ001", ""}}, {"R653", {"ZZZZ001"}}, {2}},
};

// A fact is told once: each association of the table is put before all the rules.
TEST_P(ReglesAssociation, uneSeuleRegleLeve) {
  const CasAssociation& cas = GetParam();
  facture.lignes.clear();
  for (const Ligne& attendue : cas.lignes) {
    LigneCCAM& nouvelle = ajouter(attendue.acte);
    nouvelle.codeAssociation = Code(attendue.code);
    nouvelle.prixUnitaire = Montant(attendue.prix);
  }
  grouper();
  ASSERT_EQ(facture.associations.size(), 1U);
  const std::pair<std::vector<std::string>, CodeRetour (R::*)(const AssociationCCAM&, Constat&)> regles[] = {
      {{"R590A", "R590B"}, &R::appliquerProd590}, {{"R648"}, &R::appliquerProd648},
      {{"R649"}, &R::appliquerProd649},           {{"R650"}, &R::appliquerProd650},
      {{"R653"}, &R::appliquerProd653},           {{"R654"}, &R::appliquerProd654}};
  for (const auto& [references, regle] : regles) {
    const bool sienne = cas.levee.reference != nullptr && std::find(references.begin(), references.end(),
                                                                    cas.levee.reference) != references.end();
    verifier((cas.nom + (" : " + references[0])).c_str(), reglementation, regle, association(),
             sienne ? cas.levee : RIEN);
    if (sienne) {
      EXPECT_EQ(numeros(prestations), cas.prestations) << cas.nom;
    }
  }
}
INSTANTIATE_TEST_SUITE_P(Toutes, ReglesAssociation, ::testing::ValuesIn(CAS_ASSOCIATION));

class NombreActes : public ReglesEssai {};

TEST_F(NombreActes, limiteSaufCategoriesLibres) {
  for (int i = 0; i < 2; ++i) {
    ajouter("BBBB001");
  }
  grouper();
  verifier("trois actes", reglementation, &R::appliquerProd654, association(), RIEN);
  ajouter("CCCC001");
  grouper();
  verifier("quatre actes", reglementation, &R::appliquerProd654, association(), {"R654", {"4"}});
  EXPECT_EQ(numeros(prestations), (Numeros{1, 2, 3, 4}));
  for (const char* code : {"AAAA001", "BBBB001"}) {
    activite(code).historiques[0].categorieMedicale = CodeFixe<2>("05");
  }
  verifier("un acte encore sous la limite", reglementation, &R::appliquerProd654, association(),
           {"R654", {}});
  activite("CCCC001").historiques[0].categorieMedicale = CodeFixe<2>("07");
  verifier("tous libres", reglementation, &R::appliquerProd654, association(), RIEN);
  activite("CCCC001").historiques[0].categorieMedicale = CodeFixe<2>("01");
  association().lignes[3]->codeAssociation = Code("2");
  verifier("un code sous la limite", reglementation, &R::appliquerProd654, association(), {"R654", {}});
  association().lignes[3]->codeAssociation = Code("4");
  verifier("un code hors limite", reglementation, &R::appliquerProd654, association(), RIEN);
  facture.lignes.clear();
  for (const char* code : {"AAAA001", "BBBB001", "ZZZZ001", "SSSS001"}) {
    activite(code).historiques[0].categorieMedicale = CodeFixe<2>("01");
    ajouter(code);
  }
  grouper();
  verifier("un supplément en sus", reglementation, &R::appliquerProd654, association(), RIEN);
  ajouter("CCCC001");
  grouper();
  verifier("un geste compte", reglementation, &R::appliquerProd654, association(), {"R654", {"4"}});
  EXPECT_EQ(numeros(prestations), (Numeros{1, 2, 3, 5}));
}

class Compatibilite : public ReglesEssai {
 protected:
  std::string comparer(const char* acte1, const char* acte2, const char* ps2 = "751234567") {
    Code reponse;
    Code procedure;
    EXPECT_EQ(reglementation.appliquerCCompatibilite(Code(acte1), Code("1"), Code("751234567"), Code(acte2),
                                                     Code("1"), Code(ps2), date(JOUR), reponse, procedure),
              NOX_CR_OK);
    return std::string(reponse.vue()) + " " + procedure.lireTexte();
  }
};

TEST_F(Compatibilite, quatreReponses) {
  EXPECT_EQ(comparer("AAAA001", "DDDD001"), "C ");
  EXPECT_EQ(comparer("CCCC001", "DDDD001"), "I ");
  EXPECT_EQ(comparer("DDDD001", "CCCC001", "759999999"), "I ");
  EXPECT_EQ(comparer("CCCC001", "CCCC002"), "P PPPP001");
  EXPECT_EQ(comparer("PPPP001", "CCCC002"), "Q PPPP001");
  EXPECT_EQ(comparer("CCCC002", "PPPP001"), "Q PPPP001");
  EXPECT_EQ(comparer("CCCC001", "CCCC002", "759999999"), "C ");
  activite("CCCC002").historiques[0].associations = compacte<Association>({{CodeActe("CCCC001"), '2'}});
  EXPECT_EQ(comparer("CCCC001", "CCCC002"), "C ") << "prévus ensemble";
  Code reponse;
  Code procedure;
  EXPECT_EQ(reglementation.appliquerCCompatibilite(Code("XXXX999"), Code("1"), Code(""), Code("AAAA001"),
                                                   Code("1"), Code(""), date(JOUR), reponse, procedure),
            NOX_CR_CODE_INCONNU);
}

TEST_F(Compatibilite, associationPrevue) {
  const auto type = [&](std::initializer_list<const char*> actes, CodeRetour attendu = NOX_CR_OK) {
    facture.lignes.clear();
    for (const char* code : actes) {
      ajouter(code);
    }
    grouper();
    EXPECT_EQ(reglementation.appliquerCAssociation(association()), attendu);
    return std::string(codeOuVide(association().typeAssociation).vue());
  };
  EXPECT_EQ(type({"AAAA001"}), "P");
  EXPECT_EQ(type({"AAAA001", "BBBB001"}), "P");
  EXPECT_EQ(type({"BBBB001", "AAAA001"}), "P");
  EXPECT_EQ(type({"AAAA001", "BBBB001", "ZZZZ001"}), "N");
  EXPECT_EQ(type({"CCCC001", "CCCC002"}), "N");
  EXPECT_EQ(type({"AAAA001", "CCCC001", "DDDD001"}, NOX_CR_REGLE_REPONSE_1), "");
  EXPECT_EQ(type({"PPPP001", "CCCC002"}, NOX_CR_REGLE_REPONSE_1), "");
  EXPECT_EQ(type({"AAAA001", "XXXX999"}, NOX_CR_CODE_INCONNU), "");
  activite("PPPP001").historiques[0].associations = compacte<Association>({{CodeActe("CCCC002"), '2'}});
  EXPECT_EQ(type({"PPPP001", "CCCC002"}), "P");
}

}  // namespace
}  // namespace noxlux
