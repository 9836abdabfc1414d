// The session variants, with a session manager of the test's own.
#include <map>
#include <optional>

#include "bibliotheque_essai.h"

using namespace essai;

namespace {

// Every call that the library makes of the manager, and what the manager is told to answer.
struct Gestionnaire {
  std::map<unsigned short, std::string> entrees;
  std::map<unsigned short, Zone> sorties;
  unsigned short codeLecture = 0;
  unsigned short codeEcriture = 0;
  int lectures = 0;
  int ecritures = 0;
};
Gestionnaire gestionnaire;

}  // namespace

unsigned short KEP_LireZoneIn(unsigned short numeroSession, void** zone, unsigned int* taille) {
  ++gestionnaire.lectures;
  EXPECT_EQ(*zone, nullptr);
  EXPECT_EQ(*taille, 0U);
  std::string& entree = gestionnaire.entrees[numeroSession];
  *zone = entree.empty() ? nullptr : entree.data();
  *taille = static_cast<unsigned>(entree.size());
  return gestionnaire.codeLecture;
}

unsigned short KEP_EcrireZoneOut(unsigned short numeroSession, void* zone, unsigned int taille,
                                 void (*liberer)(void* zone)) {
  ++gestionnaire.ecritures;
  EXPECT_EQ(liberer, &NOX_LibererZoneMem);
  if (gestionnaire.codeEcriture == 0) {
    EXPECT_TRUE(lire({static_cast<const char*>(zone), taille}, gestionnaire.sorties[numeroSession]));
    liberer(zone);
  }
  return gestionnaire.codeEcriture;
}

namespace {

class Sessions : public AvecReference {
 protected:
  void SetUp() override {
    AvecReference::SetUp();
    gestionnaire = {};
    gestionnaire.entrees[1] = ecrire({{3012, {"HBFD008", "1", "0"}}});
    gestionnaire.entrees[2] = ecrire({{3208, {"1500"}}});
    gestionnaire.entrees[3] = ecrire({{3025, {"", "HBFD008", "1"}}});
    gestionnaire.entrees[4] = ecrire({{3400, {"1", ""}}, {3410, {"1", DATE, "HBFD008", "1", "0"}}});
  }
  Zone sortie(unsigned short session) {
    const auto trouvee = gestionnaire.sorties.find(session);
    return trouvee == gestionnaire.sorties.end() ? Zone{} : trouvee->second;
  }
};

TEST_F(Sessions, lesReponsesSontCellesDesFonctionsSimples) {
  EXPECT_EQ(NOX_RechercherParMotCle_S("dent", 0, 7), NOX_CR_OK);
  EXPECT_EQ(sortie(7), rechercherMotCle("dent").zone);
  EXPECT_EQ(NOX_RechercherParFiltre_S("HB", 8), NOX_CR_OK);
  EXPECT_EQ(sortie(8), rechercherFiltre("HB").zone);
  EXPECT_EQ(NOX_LireVersion_S(9), NOX_CR_OK);
  EXPECT_EQ(sortie(9), lireVersion().zone);
  EXPECT_EQ(gestionnaire.lectures, 0) << "functions without input must not ask for one";

  EXPECT_EQ(NOX_ConsulterDonnee_S("CCAM_37", DATE, 1), NOX_CR_OK);
  EXPECT_EQ(sortie(1), (Zone{{3117, {"10400"}}}));
  EXPECT_EQ(NOX_ConsulterDonnee_S("TB15_2", DATE, 99), NOX_CR_OK) << "no input zone, none expected";
  EXPECT_EQ(NOX_AppliquerRegle_S("C_Pu", 4), NOX_CR_OK);
  EXPECT_EQ(sortie(4), (Zone{{3411, {"00001", "10400"}}}));

  const int ecritures = gestionnaire.ecritures;
  char resultat = '?';
  EXPECT_EQ(NOX_ControlerDonnees_S("C_Radio", DATE, 3, &resultat), NOX_CR_OK);
  EXPECT_EQ(resultat, 'O');
  EXPECT_EQ(NOX_ModifierDonnee_S("TB12_1", DATE, 2), NOX_CR_OK);
  EXPECT_EQ(NOX_AnnulerModification_S("TB12", 99), NOX_CR_OK);
  EXPECT_EQ(gestionnaire.ecritures, ecritures) << "functions without answer zone must not hand one over";
}

TEST_F(Sessions, lePremierCodeNonNulEstRepondu) {
  // The manager has nothing to read.
  gestionnaire.codeLecture = 0x1234;
  EXPECT_EQ(NOX_ConsulterDonnee_S("CCAM_37", DATE, 1), 0x1234);
  EXPECT_EQ(NOX_ModifierDonnee_S("TB12_1", DATE, 2), 0x1234);
  EXPECT_EQ(gestionnaire.ecritures, 0);
  EXPECT_EQ(consulter("TB12_1", DATE).zone.size(), 1U) << "the change must not have been made";
  gestionnaire.codeLecture = 0;

  // The function fails.
  EXPECT_EQ(NOX_ConsulterDonnee_S("CCAM_37", DATE, 99), NOX_CR_ZONE_ENTREE);
  EXPECT_EQ(NOX_ConsulterDonnee_S("CCAM_37", "20010101", 1), NOX_CR_PAS_D_HISTORIQUE);
  EXPECT_EQ(gestionnaire.ecritures, 0);

  // The manager refuses the answer, which the library frees (a leak would be seen by the sanitizers).
  gestionnaire.codeEcriture = 0x4321;
  EXPECT_EQ(NOX_ConsulterDonnee_S("CCAM_37", DATE, 1), 0x4321);
  EXPECT_EQ(NOX_LireVersion_S(1), 0x4321);
  EXPECT_EQ(gestionnaire.ecritures, 2);
}

TEST_F(Sessions, leControleCompletRemetSaReponseAvecLesErreurs) {
  gestionnaire.entrees[5] = ecrire(factureDentaire("11050"));
  EXPECT_EQ(NOX_ControleComplet_S(5), NOX_CR_CONTROLE_NIVEAU_1);
  EXPECT_EQ(sortie(5), controlerComplet(factureDentaire("11050")).zone);
  EXPECT_FALSE(sortie(5).empty());
  gestionnaire.ecritures = 0;
  gestionnaire.codeLecture = NOX_CR_CONTROLE_NIVEAU_2;
  EXPECT_EQ(NOX_ControleComplet_S(1), NOX_CR_CONTROLE_NIVEAU_2);
  EXPECT_EQ(gestionnaire.ecritures, 1) << "the code alone decides, wherever it comes from";
  gestionnaire.codeLecture = NOX_CR_CONTROLE + 3;
  EXPECT_EQ(NOX_ControleComplet_S(1), NOX_CR_CONTROLE + 3);
  EXPECT_EQ(gestionnaire.ecritures, 1);
}

TEST_F(Sessions, traceLesDeuxServices) {
  const TraceEssai trace({1});
  NOX_ConsulterDonnee_S("CCAM_37", DATE, 1);
  EXPECT_TRUE(trace.contient("NOX_ConsulterDonnee_S : numeroSession = 1\n"));
  EXPECT_TRUE(trace.contient("NOX_ConsulterDonnee : identifiant = CCAM_37, dateReference = 20260115\n"));
  const std::string texte = trace.texte();
  const std::size_t premiere = texte.find("\ncr = 0x0000\n");
  ASSERT_NE(premiere, std::string::npos);
  EXPECT_NE(texte.find("\ncr = 0x0000\n", premiere + 1), std::string::npos)
      << "each service has its result line";
}

}  // namespace
