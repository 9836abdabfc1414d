// Start-up, shutdown, and what each entry point says when nothing is loaded.
#include <cstring>

#include "bibliotheque_essai.h"

using namespace essai;

namespace {

using Cycle = SansReference;

TEST_F(Cycle, chargeeDeuxFoisLibereePuisChargeeEncore) {
  EXPECT_EQ(NOX_TermLIB(), NOX_CR_NON_CHARGE);
  EXPECT_EQ(NOX_InitLIB(), NOX_CR_OK);
  EXPECT_EQ(NOX_InitLIB(), NOX_CR_DEJA_CHARGE);
  EXPECT_EQ(lireVersion().code, NOX_CR_OK) << "the second start must leave the library loaded";
  EXPECT_EQ(NOX_TermLIB(), NOX_CR_OK);
  EXPECT_EQ(lireVersion(), (Reponse{NOX_CR_NON_CHARGE, {}, false}));
  EXPECT_EQ(NOX_InitLIB(), NOX_CR_OK);
  EXPECT_EQ(lireVersion().code, NOX_CR_OK);
}

TEST_F(Cycle, lesFichiersDeSuiviDisentLesVersions) {
  ecrireFichier(dossier_.fichier("victime"), "intacte");
  std::filesystem::create_symlink("victime", dossier_.fichier("20.adm"));
  ASSERT_EQ(NOX_InitLIB(), NOX_CR_OK);
  EXPECT_EQ(lireFichier(dossier_.fichier("victime")), "intacte") << "a link that waits is not followed";
  EXPECT_EQ(lireFichier(dossier_.fichier("20.adm")), "0113");
  EXPECT_EQ(lireFichier(dossier_.fichier("21.adm")), "E0121");
}

TEST_F(Cycle, marcheSansSuiviDesVersions) {
  ecrireIni(referenceExemple(), false);
  EXPECT_EQ(NOX_InitLIB(), NOX_CR_SUIVI_REPERTOIRE);
  EXPECT_EQ(lireVersion().code, NOX_CR_OK);
  EXPECT_EQ(NOX_TermLIB(), NOX_CR_OK);

  ecrireFichier(dossier_.fichier("orvan.ini"), "[NOX]\nrepertoiretable = " + referenceExemple() +
                                                   "\n[COMMUN]\nrepertoiretravail = /nul/part\n");
  EXPECT_EQ(NOX_InitLIB(), NOX_CR_SUIVI_ECRITURE);
  EXPECT_EQ(lireVersion().code, NOX_CR_OK);
}

TEST_F(Cycle, unDemarrageManqueLaisseLaBibliothequeNonChargee) {
  const std::string autre = dossier_.fichier("reference/");
  std::filesystem::create_directory(autre);
  const std::string bonne = lireFichier(referenceExemple() + "tablebin.nox");
  ASSERT_GT(bonne.size(), 1000U);
  std::string abimee = bonne;
  abimee[abimee.size() / 2] = static_cast<char>(abimee[abimee.size() / 2] ^ 1);
  const struct {
    const char* cas;
    std::string ini;
    std::string reference;
    unsigned code;
  } cas[] = {
      {"no key", "[NOX]\nFichierTrace =\n", bonne, NOX_CR_CONFIGURATION},
      {"syntax error elsewhere", "[NOX]\nsans egal\nrepertoiretable = " + autre + "\n", "",
       NOX_CR_OUVERTURE_REFERENCE},
      {"damaged", "[NOX]\nrepertoiretable = " + autre + "\n", abimee, NOX_CR_CRC_REFERENCE},
      {"truncated", "[NOX]\nrepertoiretable = " + autre + "\n", bonne.substr(0, 3), NOX_CR_LECTURE_REFERENCE},
  };
  for (const auto& [nom, ini, reference, code] : cas) {
    SCOPED_TRACE(nom);
    ecrireFichier(dossier_.fichier("orvan.ini"), ini);
    std::filesystem::remove(autre + "tablebin.nox");
    if (!reference.empty()) {
      ecrireFichier(autre + "tablebin.nox", reference);
    }
    const TraceEssai trace({0});
    EXPECT_EQ(NOX_InitLIB(), code);
    EXPECT_TRUE(trace.contient("ERREUR : ")) << "a failure is told before it is returned";
    EXPECT_EQ(lireVersion().code, unsigned{NOX_CR_NON_CHARGE});
  }
  std::filesystem::remove(dossier_.fichier("orvan.ini"));
  EXPECT_EQ(NOX_InitLIB(), NOX_CR_CONFIGURATION);
}

TEST_F(Cycle, modificationsACoteDesTablesParDefaut) {
  std::filesystem::copy(referenceExemple() + "tablebin.nox", dossier_.chemin());
  ecrireFichier(dossier_.fichier("orvan.ini"), "[NOX]\nrepertoiretable = " + dossier_.chemin() +
                                                   "\n[COMMUN]\nrepertoiretravail = " + dossier_.chemin() +
                                                   "\n");
  ASSERT_EQ(NOX_InitLIB(), NOX_CR_OK);
  EXPECT_EQ(NOX_SauvegarderReferentiel("essai"), NOX_CR_OK);
  EXPECT_TRUE(std::filesystem::exists(dossier_.fichier("modifref.nox")));
}

TEST_F(Cycle, touteDemandeRepondNonCharge) {
  const Zone acte = {{3010, {"HBFD008"}}};
  Bloc bloc(acte);
  char resultat = '?';
  EXPECT_EQ(consulter("CCAM_1", "20260101", acte), (Reponse{NOX_CR_NON_CHARGE, {}, false}));
  EXPECT_EQ(modifier("TB12_1", "20260101", acte), NOX_CR_NON_CHARGE);
  EXPECT_EQ(annuler("TB12"), NOX_CR_NON_CHARGE);
  EXPECT_EQ(NOX_ControlerDonnees("C_Radio", "20260101", bloc.adresse(), bloc.taille(), &resultat),
            NOX_CR_NON_CHARGE);
  EXPECT_EQ(resultat, '?');
  EXPECT_EQ(appliquer("C_Pu", acte), (Reponse{NOX_CR_NON_CHARGE, {}, false}));
  EXPECT_EQ(controlerComplet(acte), (Reponse{NOX_CR_NON_CHARGE, {}, false}));
  EXPECT_EQ(rechercherMotCle("dent"), (Reponse{NOX_CR_NON_CHARGE, {}, false}));
  EXPECT_EQ(rechercherFiltre(""), (Reponse{NOX_CR_NON_CHARGE, {}, false}));
  EXPECT_EQ(NOX_SauvegarderReferentiel(nullptr), NOX_CR_NON_CHARGE);
}

TEST_F(Cycle, memoireEtTraceSansReference) {
  void* zone = this;
  EXPECT_EQ(NOX_AllouerZoneMem(nullptr, 10), NOX_CR_PARAMETRE_SORTIE);
  EXPECT_EQ(NOX_AllouerZoneMem(&zone, 0), NOX_CR_PARAMETRE_ENTREE);
  EXPECT_EQ(zone, nullptr);
  ASSERT_EQ(NOX_AllouerZoneMem(&zone, 10), NOX_CR_OK);
  std::memset(zone, 0, 10);
  NOX_LibererZoneMem(zone);
  NOX_LibererZoneMem(nullptr);

  EXPECT_EQ(NOX_InitTrace("x", "w", 10, 1), NOX_CR_MODULE_TRACE);
  EXPECT_EQ(NOX_InitTrace(nullptr, "w", 9, 1), NOX_CR_PARAMETRE_ENTREE);
  EXPECT_EQ(NOX_InitTrace("/nul/part", "w", 9, 1), NOX_CR_FICHIER_TRACE);
  const std::string trace = dossier_.fichier("trace.txt");
  EXPECT_EQ(NOX_InitTrace(trace.c_str(), "w", 9, 1), NOX_CR_OK);
  EXPECT_EQ(NOX_InitTrace(trace.c_str(), "w", 9, 0), NOX_CR_OK);
  EXPECT_NE(lireFichier(trace).find("### FIN TRACE ###"), std::string::npos);
}

}  // namespace
