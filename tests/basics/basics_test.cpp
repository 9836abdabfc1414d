// INI file and trace, through real files.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "basics/fichier_ini.h"
#include "basics/systeme.h"
#include "basics/trace.h"

namespace noxlux {
namespace {

class FichierTest : public testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directories(dossier); }
  void TearDown() override { std::filesystem::remove_all(dossier); }
  std::string nom(const std::string& fichier) const { return (dossier / fichier).string(); }
  void ecrire(const std::string& fichier, const std::string& contenu) const {
    std::ofstream(nom(fichier), std::ios::binary) << contenu;
  }
  std::string lire(const std::string& fichier) const {
    std::ostringstream contenu;
    contenu << std::ifstream(nom(fichier), std::ios::binary).rdbuf();
    return contenu.str();
  }
  std::filesystem::path dossier =
      std::filesystem::temp_directory_path() / ("noxlux_basics_" + std::to_string(getpid()));
};

class Ini : public FichierTest {
 protected:
  CodeRetour parser(const std::string& contenu) {
    ecrire("x.ini", contenu);
    return ini.parserFichier(nom("x.ini").c_str());
  }
  std::string valeur(const char* section, const char* cle) const {
    const char* texte = ini.lireValeur(section, cle);
    return texte == nullptr ? "(null)" : texte;
  }
  FichierIni ini;
};

TEST_F(Ini, litLesSectionsSansEgardALaCasse) {
  EXPECT_EQ(
      parser(
          "; commentaire\n\n  [nox]\nrepertoireTable =  /tmp/a b/  \nvide=\nCle=1\ncle=2\n[NOX]\nautre=3\n"),
      0);
  EXPECT_EQ(valeur("NOX", "repertoiretable"), "/tmp/a b/");
  EXPECT_EQ(valeur("NOX", "vide"), "");
  EXPECT_EQ(valeur("NOX", "CLE"), "1");         // the first key wins
  EXPECT_EQ(valeur("NOX", "autre"), "(null)");  // and so does the first section
  EXPECT_EQ(valeur("COMMUN", "x"), "(null)");
}

TEST_F(Ini, gardeLesLignesValablesApresUneFaute) {
  struct Cas {
    const char* contenu;
    CodeRetour cr;
    const char* cle;
    const char* valeur;
  };
  for (const Cas& cas : std::initializer_list<Cas>{{"[A]\nsans egal\nk=1\n", 0xDF11, "k", "1"},
                                                   {"[A]\n[B] ; commentaire\nk=1\n", 0xDF11, "k", "1"},
                                                   {"[A\nk=1\n", 0xDF11, "k", "(null)"},
                                                   {"k=0\n[A]\nk=1\n", 0xDF12, "k", "1"},
                                                   {"k=0\n[A]\nsans egal\n", 0xDF12, "k", "(null)"},
                                                   {"[A]\n# k=2\nk=1;x\n", 0, "k", "1;x"},
                                                   {"", 0, "k", "(null)"}}) {
    EXPECT_EQ(parser(cas.contenu), cas.cr) << cas.contenu;
    EXPECT_EQ(valeur("A", cas.cle), cas.valeur) << cas.contenu;
  }
  EXPECT_EQ(parser("[A]\nlongue=" + std::string(2000, 'x') + "\nk=1\n"), 0xDF11);
  EXPECT_EQ(valeur("A", "k"), "1");
  EXPECT_EQ(ini.parserFichier(nom("absent.ini").c_str()), 0xDF10);
  EXPECT_EQ(valeur("A", "k"), "(null)");
}

TEST_F(Ini, refuseAuDelaDeTrente) {
  std::string contenu;
  for (int i = 1; i <= 31; ++i) {
    contenu += "[S" + std::to_string(i) + "]\nk=" + std::to_string(i) + "\n";
  }
  EXPECT_EQ(parser(contenu), 0xDF13);
  EXPECT_EQ(valeur("S31", "k"), "(null)");
  EXPECT_EQ(valeur("S30", "k"), "30");
  contenu = "[S]\n";
  for (int i = 1; i <= 31; ++i) {
    contenu += "k" + std::to_string(i) + "=" + std::to_string(i) + "\n";
  }
  EXPECT_EQ(parser(contenu), 0xDF13);
  EXPECT_EQ(valeur("S", "k30"), "30");
  EXPECT_EQ(valeur("S", "k31"), "(null)");
}

class TraceFichier : public FichierTest {
 protected:
  void TearDown() override {
    for (unsigned short module = 0; module < TRACE_NB_MODULES; ++module) {
      Trace::activer(nullptr, nullptr, module, 0);
    }
    FichierTest::TearDown();
  }
  CodeRetour activer(unsigned short module, unsigned char niveau, const char* mode = "w") {
    return Trace::activer(nom("trace").c_str(), mode, module, niveau);
  }
};

void appeler(int profondeur) {
  Trace::debut(1, "debut %d", profondeur);
  Trace::ecrire(1, "detail %d", profondeur);
  if (profondeur > 1) {
    appeler(profondeur - 1);
  }
  Trace::fin(1, "cr = 0x%04X", 0);
}

TEST_F(TraceFichier, filtreSelonLeNiveau) {
  struct Cas {
    unsigned char niveau;
    const char* attendu;
  };
  for (const Cas& cas :
       std::initializer_list<Cas>{{1, "{ debut 1\n  cr = 0x0000\n}\nERREUR : faute 7\n"},
                                  {2, "{ debut 1\n  cr = 0x0000\n}\nERREUR : faute 7\n"},
                                  {3, "{ debut 1\n  detail 1\n  cr = 0x0000\n}\nERREUR : faute 7\n"}}) {
    EXPECT_EQ(activer(1, cas.niveau), 0);
    appeler(1);
    Trace::erreur(1, "faute %d", 7);
    Trace::ecrire(2, "un autre module se tait");
    EXPECT_EQ(activer(1, 0), 0);
    EXPECT_EQ(lire("trace"), std::string("### DEBUT TRACE ###\n") + cas.attendu + "### FIN TRACE ###\n\n");
  }
}

TEST_F(TraceFichier, leNiveauUnSArreteAHuitDeProfondeur) {
  EXPECT_EQ(activer(1, 1), 0);
  appeler(20);
  Trace::erreur(1, "ERREUR: fin");
  const std::string texte = lire("trace");
  EXPECT_NE(texte.find("debut 13\n"), std::string::npos);
  EXPECT_EQ(texte.find("debut 12\n"), std::string::npos);
  EXPECT_NE(texte.find("\nERREUR: fin\n"), std::string::npos) << "la profondeur revient à zéro";
  EXPECT_EQ(std::count(texte.begin(), texte.end(), '{'), std::count(texte.begin(), texte.end(), '}'));
}

TEST_F(TraceFichier, ouvreEtFermeUnSeulFichier) {
  EXPECT_EQ(activer(1, 2, "r"), 0xF802);
  EXPECT_EQ(Trace::niveau(1), 0);
  EXPECT_EQ(Trace::activer("", "w", 1, 2), 0xF802);
  EXPECT_EQ(Trace::activer(nullptr, "w", 1, 2), 0xF802);
  EXPECT_EQ(Trace::activer("/inexistant/trace", "w", 1, 2), 0xD201);
  EXPECT_EQ(activer(1, 3), 0);
  EXPECT_EQ(Trace::activer(nullptr, nullptr, 2, 3), 0);
  EXPECT_EQ(activer(1, 0), 0);
  Trace::ecrire(2, "encore ouvert");
  EXPECT_EQ(activer(2, 0), 0);
  EXPECT_EQ(activer(1, 3, "a"), 0);
  const std::string texte = lire("trace");
  EXPECT_NE(texte.find("encore ouvert\n### FIN TRACE ###\n\n### DEBUT TRACE ###\n"), std::string::npos);
  EXPECT_DEATH(Trace::activer("x", "w", 10, 1), "module < TRACE_NB_MODULES");
}

TEST_F(TraceFichier, seConfigureParLeFichierIni) {
  activer(TRACE_SYSTEME, 3);
  ecrire("o.ini",
         "[NOX]\nFichierTrace=" + nom("autre") + "\nModeTrace=w\nModulesTrace= 0:2 , 3:x, :1, 10:1,4:3\n");
  FichierIni ini;
  EXPECT_EQ(ini.parserFichier(nom("o.ini").c_str()), 0);
  initialiserTrace(ini);
  EXPECT_EQ(Trace::niveau(0), 2);
  EXPECT_EQ(Trace::niveau(3), 0);
  EXPECT_EQ(Trace::niveau(4), 3);
  const std::string texte = lire("trace");
  EXPECT_NE(texte.find("ERREUR : niveau de profondeur (x) incorrect"), std::string::npos);
  EXPECT_NE(texte.find("ERREUR : numéro de module () incorrect"), std::string::npos);
  EXPECT_NE(texte.find("ERREUR : numéro de module (10) incorrect"), std::string::npos);
}

TEST_F(FichierTest, leSuiviDeParcEcritLaVersionSeule) {
  EXPECT_EQ(SuiviDeParc::sauvegarderVersion(dossier.c_str(), 20, "0113"), 0);
  EXPECT_EQ(lire("20.adm"), "0113");
  EXPECT_EQ(SuiviDeParc::sauvegarderVersion("/inexistant", 20, "0113"), 0xF6F2);
  EXPECT_EQ(Systeme::comparerIdentifiant("CCAM_4A", "ccam_4a"), 0);
  EXPECT_LT(Systeme::comparerIdentifiant("CCAM_9", "CCAM_9_1"), 0);
  EXPECT_NE(Systeme::comparerIdentifiant("\xC9", "\xE9"), 0)
      << "les lettres accentuées ne sont pas repliées";
}

}  // namespace
}  // namespace noxlux
