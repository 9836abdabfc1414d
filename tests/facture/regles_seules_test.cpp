// Data controls and single rules, on the example reference.
#include <gtest/gtest.h>

#include "interapp/fonctions_appliquer.h"
#include "interapp/fonctions_controler.h"
#include "reference_essai.h"

namespace noxlux {
namespace {

using essai::Groupe;
using essai::numeroLigne;
using essai::ReferenceEssai;
using essai::Zone;

struct Reponse {
  unsigned code = 0;
  Zone zone;
};

Reponse appliquer(const char* identifiant, const Zone& zone) {
  ReferenceEssai& reference = ReferenceEssai::unique();
  const SuperGroupe* superGroupe = nullptr;
  std::uint16_t numero = 0;
  EXPECT_EQ(reference.interface.lireSuperGroupeRegle(identifiant, superGroupe, numero), NOX_CR_OK);
  const std::string texte = ::essai::ecrire(zone);
  std::vector<byte> octets(texte.begin(), texte.end());
  noxlux::Zone zin(octets.data(), static_cast<std::uint32_t>(octets.size()));
  FonctionsAppliquer fonctions(&zin, superGroupe, &reference.lecture, &reference.reglementation,
                               &reference.tarification);
  Reponse reponse;
  ZoneSortie sortie;
  reponse.code = fonctions.executer(numero, sortie);
  reponse.zone = essai::lireSortie(sortie);
  return reponse;
}

struct CasRegle {
  const char* quoi;
  const char* identifiant;
  Zone zone;
  unsigned code;
  Zone attendue;
};

void verifier(const std::vector<CasRegle>& cas) {
  for (const CasRegle& un : cas) {
    const Reponse reponse = appliquer(un.identifiant, un.zone);
    EXPECT_EQ(reponse.code, un.code) << un.identifiant << ' ' << un.quoi;
    EXPECT_EQ(reponse.zone, un.attendue) << un.identifiant << ' ' << un.quoi;
  }
}

constexpr const char* JOUR = "20240301";

Groupe outrepassee(unsigned numero, const char* regle) { return {3530, {std::to_string(numero), regle}}; }
Groupe debrayee(unsigned numero) { return {3531, {numeroLigne(numero)}}; }

// --- Data controls ---

TEST(FonctionsControler, repondent) {
  struct Cas {
    const char* identifiant;
    Groupe groupe;
    bool reponse;
    unsigned code;
  };
  for (const Cas& cas : std::vector<Cas>{
           {"C_Age_2", {3021, {"20120101", "HBBD005", "1", "0"}}, true, 0},
           {"C_Age_2", {3021, {"19800101", "HBBD005", "1", ""}}, false, 0},
           {"C_Age_2", {3021, {"", "HBBD005", "1", "0"}}, false, 0x9001},
           // A day that is not known is 1 January; other impossible days are refused.
           {"C_Age_2", {3021, {"20129999", "HBBD005", "1", "0"}}, true, 0},
           {"C_Age_2", {3021, {"201213010000", "HBBD005", "1", "0"}}, true, 0},
           {"C_Age_2", {3021, {"20120230", "HBBD005", "1", "0"}}, false, 0x9001},
           {"C_Age_2", {3021, {"20120010", "HBBD005", "1", "0"}}, false, 0x9001},
           {"C_Age_1", {3020, {"19800101", "4"}}, false, NOX_CR_PAS_D_HISTORIQUE},
           {"C_Age_1", {3020, {"19800101", "3"}}, false, NOX_CR_PAS_D_HISTORIQUE},
           {"C_Age_1", {3020, {"20210101", "E"}}, true, 0},
           {"C_Age_2", {3021, {"20120101", "ZZZZ999", "1", "0"}}, false, NOX_CR_CODE_INCONNU},
           {"C_Assurance", {3022, {"AT", "HHQE002"}}, true, 0},
           {"C_Assurance", {3022, {"AT", "HBBD005"}}, false, 0},
           {"C_Assurance", {3022, {"XX", "HHQE002"}}, false, 0x9001},
           {"C_Ccam", {3023, {"04", "K"}}, true, 0},
           {"C_Ccam", {3023, {"01", "K"}}, false, 0},
           {"C_Executant", {3024, {"04", "HHQE002", "1"}}, true, 0},
           {"C_Executant", {3024, {"19", "HHQE002", "1"}}, false, 0},
           {"C_Radio", {3025, {"", "HHQE002", "1"}}, true, 0},
           {"C_Radio", {3025, {"", "HHQE002"}}, false, 0xA801},
       }) {
    SCOPED_TRACE(cas.identifiant + testing::PrintToString(cas.groupe.champs));
    ReferenceEssai& reference = ReferenceEssai::unique();
    const SuperGroupe* superGroupe = nullptr;
    std::uint16_t numero = 0;
    ASSERT_EQ(reference.interface.lireSuperGroupeControler(cas.identifiant, superGroupe, numero), NOX_CR_OK);
    const std::string texte = ::essai::ecrire({cas.groupe});
    std::vector<byte> octets(texte.begin(), texte.end());
    noxlux::Zone zin(octets.data(), static_cast<std::uint32_t>(octets.size()));
    Booleen resultat(false);
    EXPECT_EQ(FonctionsControler(Date(JOUR), &zin, superGroupe, &reference.reglementation)
                  .executer(numero, resultat),
              cas.code);
    EXPECT_EQ(resultat.estVrai(), cas.reponse);
  }
}

// --- Prices and bases ---

Groupe lignePu(unsigned numero, const char* acte, const char* activite = "1") {
  return {3410, {std::to_string(numero), JOUR, acte, activite, ""}};
}
Groupe pu(unsigned numero, const char* prix) { return {3411, {numeroLigne(numero), prix}}; }

TEST(FonctionsAppliquer, prixUnitaire) {
  const Groupe metropole{3400, {"1", "751"}};
  Zone pleine{metropole};
  Zone attendue;
  for (unsigned numero = 1; numero <= 200; ++numero) {
    pleine.push_back(lignePu(numero, "HHQE002"));
    attendue.push_back(pu(numero, "15360"));
  }
  Zone debordante = pleine;
  debordante.push_back(lignePu(201, "HHQE002"));
  verifier({
      {"",
       "C_Pu",
       {metropole, lignePu(1, "HHQE002"), lignePu(2, "HHQE002", "4")},
       0,
       {pu(1, "15360"), pu(2, "5203")}},
      {"outre-mer", "C_Pu", {{3400, {"1", "971"}}, lignePu(1, "HBBD005")}, 0, {pu(1, "2733")}},
      {"débrayée",
       "C_Pu",
       {metropole, lignePu(1, "HHQE002"), outrepassee(1, "R500"), outrepassee(1, "R850"),
        lignePu(2, "HHQE004"), outrepassee(2, "R880")},
       0,
       {debrayee(1), pu(2, "7506")}},
      {"acte inconnu", "C_Pu", {metropole, lignePu(1, "ZZZZ999")}, NOX_CR_CODE_INCONNU, {}},
      {"numéro faux",
       "C_Pu",
       {metropole, lignePu(1, "HHQE002"), lignePu(2, "HHQE002"), outrepassee(1, "R850")},
       0xE002,
       {}},
      {"200 lignes", "C_Pu", pleine, 0, attendue},
      {"201 lignes", "C_Pu", debordante, NOX_CR_TROP_DE_GROUPES, {}},
      {"aucune ligne", "C_Pu", {metropole}, 0, {}},
  });
}

Groupe ligneBase(unsigned numero, const char* acte, const char* prix, const char* association = "",
                 const char* ps = "991234567") {
  return {
      3420,
      {std::to_string(numero), JOUR, acte, "1", "0", "", "", "", "", association, "", "", "", ps, "8", prix}};
}
Groupe base(unsigned numero, const char* montant, const char* horsForfait) {
  return {3421, {numeroLigne(numero), montant, horsForfait}};
}

TEST(FonctionsAppliquer, bases) {
  const Groupe conventionne{3400, {"1", "751"}};
  verifier({
      {"prévue",
       "C_Base",
       {conventionne, ligneBase(1, "HEQE002", "9600"), ligneBase(2, "HHQE002", "15360")},
       0,
       {base(1, "4800", "4800"), base(2, "15360", "15360")}},
      {"codée",
       "C_Base",
       {conventionne, ligneBase(1, "HEQE002", "9600", "3"), ligneBase(2, "HHQE002", "15360", "1")},
       0,
       {base(1, "7200", "7200"), base(2, "15360", "15360")}},
      {"deux exécutants",
       "C_Base",
       {conventionne, ligneBase(1, "HEQE002", "9600"), ligneBase(2, "HHQE002", "15360", "", "997654321")},
       0,
       {base(1, "9600", "9600"), base(2, "15360", "15360")}},
      {"non conventionné",
       "C_Base",
       {{3400, {"0", "751"}}, ligneBase(1, "HHQE002", "15360")},
       0,
       {base(1, "1000", "15360")}},
      // What is disengaged is the whole association.
      {"débrayée",
       "C_Base",
       {conventionne, ligneBase(1, "HEQE002", "9600"), ligneBase(2, "HHQE002", "15360"),
        outrepassee(2, "R880"), ligneBase(3, "HHQE002", "15360", "", "997654321")},
       0,
       {debrayee(1), debrayee(2), base(3, "15360", "15360")}},
  });
}

// --- Associations and compatibility ---

Groupe ligneAssociation(unsigned numero, const char* acte, const char* date = JOUR,
                        const char* activite = "1", const char* ps = "991234567") {
  return {3310, {std::to_string(numero), date, acte, activite, ps, "8"}};
}
Groupe association(unsigned numero, unsigned rang, const char* type) {
  return {3321, {numeroLigne(numero), numeroLigne(rang), type}};
}

TEST(FonctionsAppliquer, associations) {
  verifier({
      {"prévue et seule",
       "C_Association",
       {ligneAssociation(1, "HHQE002"), ligneAssociation(2, "HHQE004", "20240302"),
        ligneAssociation(3, "HEQE002")},
       0,
       {association(1, 1, "P"), association(2, 2, "P"), association(3, 1, "P")}},
      {"non prévue",
       "C_Association",
       {ligneAssociation(1, "HHQE002"), ligneAssociation(2, "LMMA012")},
       0,
       {association(1, 1, "N"), association(2, 1, "N")}},
      // Incompatible acts: the answer comes with the code, decided up to there.
      {"incompatible",
       "C_Association",
       {ligneAssociation(1, "HEQE002", "20240302"), ligneAssociation(2, "HHQE002"),
        ligneAssociation(3, "HHQE004")},
       NOX_CR_REGLE_REPONSE_1,
       {association(1, 1, "P"), association(2, 2, ""), association(3, 2, "")}},
      {"débrayée",
       "C_Association",
       {ligneAssociation(1, "HHQE002"), ligneAssociation(2, "HHQE004"), outrepassee(2, "R650")},
       0,
       {debrayee(1), debrayee(2)}},
  });
}

Groupe compatibilite(unsigned numero, const char* diagnostic, unsigned autre, const char* texte) {
  return {3311, {numeroLigne(numero), diagnostic, numeroLigne(autre), texte}};
}

TEST(FonctionsAppliquer, compatibilites) {
  verifier({
      {"jours distincts",
       "C_Compatibilite",
       {ligneAssociation(1, "HHQE002"), ligneAssociation(2, "HHQE004", "20240302")},
       0,
       {compatibilite(1, "C", 0, "L'acte HHQE002 est compatible avec les autres actes."),
        compatibilite(2, "C", 0, "L'acte HHQE004 est compatible avec les autres actes.")}},
      // The gravest finding is told: line 1 shares a procedure with 2 and is alone otherwise.
      {"procédure et incompatibilité",
       "C_Compatibilite",
       {ligneAssociation(1, "DDQH009"), ligneAssociation(2, "DDAF006"), ligneAssociation(3, "HHQE002"),
        ligneAssociation(4, "HHQE004"), ligneAssociation(5, "HHQE005"), outrepassee(5, "R600")},
       0,
       {compatibilite(1, "Q", 2,
                      "L'acte DDQH009 appartient à la même procédure DDAF006 que l'acte DDAF006 ; ces deux "
                      "actes ne peuvent pas être associés."),
        compatibilite(2, "Q", 1,
                      "L'acte DDAF006 appartient à la même procédure DDAF006 que l'acte DDQH009 ; ces deux "
                      "actes ne peuvent pas être associés."),
        compatibilite(3, "I", 4,
                      "L'acte HHQE002 est incompatible médicalement avec l'acte HHQE004 ; ces deux actes ne "
                      "peuvent pas être associés."),
        compatibilite(4, "I", 3,
                      "L'acte HHQE004 est incompatible médicalement avec l'acte HHQE002 ; ces deux actes ne "
                      "peuvent pas être associés."),
        debrayee(5)}},
      {"acte inconnu",
       "C_Compatibilite",
       {ligneAssociation(1, "ZZZZ999"), ligneAssociation(2, "HHQE002")},
       NOX_CR_CODE_INCONNU,
       {}},
  });
}

// --- Teeth ---

TEST(FonctionsAppliquer, dents) {
  const Groupe ligne{3300, {"7", JOUR, "HBBD005", "1", "0"}};
  const auto dents = [](const char* numero, std::vector<std::string> codes) {
    codes.resize(16);
    codes.insert(codes.begin(), numero);
    return Groupe{2200, std::move(codes)};
  };
  const auto reponse = [](std::vector<std::string> reponses) {
    reponses.resize(16);
    reponses.insert(reponses.begin(), numeroLigne(7));
    return Groupe{3301, std::move(reponses)};
  };
  verifier({
      {"", "C_Dent", {ligne, dents("7", {"16", "11", "26"})}, 0, {reponse({"O", "N", "O"})}},
      {"aucune", "C_Dent", {ligne, dents("7", {})}, 0, {reponse({})}},
      {"autre ligne", "C_Dent", {ligne, dents("8", {"16"})}, 0xE001, {}},
      {"groupe de trop", "C_Dent", {ligne, dents("7", {}), dents("7", {})}, 0xA003, {}},
  });
}

// --- Exemption ---

Groupe exoneration(unsigned numero, const char* taux, const char* code) {
  return {3431, {numeroLigne(numero), taux, code}};
}

TEST(FonctionsAppliquer, exonerationParUnActe) {
  const auto acte = [](unsigned numero, const char* baseHorsForfait, const char* motif = "0") {
    return Groupe{3440, {std::to_string(numero), JOUR, "HHQE002", baseHorsForfait, motif, "70"}};
  };
  const Groupe metropole{3401, {"751", "3"}};
  verifier({
      {"atteint",
       "C_ExoActe",
       {metropole, acte(1, "11999"), acte(2, "12000")},
       0,
       {{3441, {"2"}}, exoneration(1, "070", "0"), exoneration(2, "100", "C")}},
      {"sans taux",
       "C_ExoActe",
       {metropole,
        {3440, {"1", JOUR, "HHQE002", "12000", "0", ""}},
        {3440, {"2", JOUR, "HHQE002", "12000", "0", "000"}}},
       0,
       {{3441, {"3"}}, exoneration(1, "000", "0"), exoneration(2, "000", "0")}},
      {"réclamée à tort",
       "C_ExoActe",
       {{3401, {"971", "3"}}, acte(1, "12000", "C")},
       0,
       {{3441, {"3"}}, exoneration(1, "070", "0")}},
      {"prévention",
       "C_ExoPrevention",
       {{3430, {"1", JOUR, "HBBD005", "O", "70", "0"}}},
       0,
       {exoneration(1, "100", "7")}},
      {"pas un acte de prévention",
       "C_ExoPrevention",
       {{3430, {"1", JOUR, "HHQE002", "O", "70", "0"}}},
       NOX_CR_REGLE_REPONSE_2,
       {exoneration(1, "070", "0")}},
  });
}

TEST(FonctionsAppliquer, exonerationDeLaFacture) {
  const auto acte = [](unsigned numero, const char* baseHorsForfait, const char* date = JOUR) {
    return Groupe{3450, {std::to_string(numero), date, "HHQE002", baseHorsForfait, "0", "70"}};
  };
  const auto autre = [](unsigned groupe, unsigned numero) {
    return Groupe{groupe, {std::to_string(numero), JOUR, "ID", "0", "70"}};
  };
  const Groupe metropole{3401, {"751", "3"}};
  const auto etat = [](const char* valeur) { return Groupe{3461, {valeur}}; };
  Zone debordante{metropole};
  for (unsigned numero = 1; numero <= 201; ++numero) {
    debordante.push_back(acte(numero, "100"));
  }
  verifier({
      // 60.00 and 60.00 make 120.00, the threshold; another day does not count.
      {"au seuil",
       "C_ExoFacture",
       {metropole, acte(1, "6000"), autre(3462, 2), acte(3, "6000"), autre(3460, 4),
        acte(5, "6000", "20240302")},
       0,
       {etat("2"), exoneration(1, "100", "C"), exoneration(2, "100", "C"), exoneration(3, "100", "C"),
        exoneration(4, "070", "0"), exoneration(5, "070", "0")}},
      {"au-dessous",
       "C_ExoFacture",
       {metropole, acte(1, "6000"), acte(2, "5999")},
       0,
       {etat("3"), exoneration(1, "070", "0"), exoneration(2, "070", "0")}},
      {"seuil des Antilles",
       "C_ExoFacture",
       {{3401, {"972", "3"}}, acte(1, "6000"), acte(2, "6000")},
       0,
       {etat("3"), exoneration(1, "070", "0"), exoneration(2, "070", "0")}},
      {"seuil débrayé",
       "C_ExoFacture",
       {metropole, acte(1, "6000"), outrepassee(1, "R791A"), acte(2, "9000"), acte(3, "100", "20240302")},
       0,
       {etat("4"), debrayee(1), exoneration(2, "070", "0"), exoneration(3, "070", "0")}},
      {"790C débrayée",
       "C_ExoFacture",
       {metropole, acte(1, "6000"), outrepassee(1, "R793"), autre(3462, 2), acte(3, "6000")},
       0,
       {etat("2"), exoneration(1, "070", "0"), exoneration(2, "070", "0"), exoneration(3, "100", "C")}},
      {"790D débrayée",
       "C_ExoFacture",
       {metropole, acte(1, "6000"), autre(3462, 2), outrepassee(2, "R793"), acte(3, "6000")},
       0,
       {etat("2"), exoneration(1, "100", "C"), exoneration(2, "070", "0"), exoneration(3, "100", "C")}},
      {"acte inconnu",
       "C_ExoFacture",
       {metropole, {3450, {"1", JOUR, "ZZZZ999", "6000", "0", "70"}}},
       NOX_CR_CODE_INCONNU,
       {}},
      {"trajet un autre jour",
       "C_ExoFacture",
       {metropole, acte(1, "6000", "20240302"), autre(3462, 2)},
       NOX_CR_DATE_DEPLACEMENT,
       {}},
      {"trajet en tête", "C_ExoFacture", {metropole, autre(3462, 1)}, 0xA002, {}},
      {"201 lignes", "C_ExoFacture", debordante, NOX_CR_TROP_DE_GROUPES, {}},
  });
}

}  // namespace
}  // namespace noxlux
