// A host without a session manager: it loads the library with immediate binding, and a session variant tells
// that it cannot serve.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "noxlux/noxlux.h"

namespace {

TEST(SansSessions, seChargeToutesLiaisonsFaites) {
  const char* chemin = std::getenv("NOXLUX_BIBLIOTHEQUE");
  ASSERT_NE(chemin, nullptr) << "NOXLUX_BIBLIOTHEQUE must name the built library";
  void* bibliotheque = dlopen(chemin, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(bibliotheque, nullptr) << dlerror();
  EXPECT_NE(dlsym(bibliotheque, "NOX_ConsulterDonnee_S"), nullptr);
  dlclose(bibliotheque);
}

TEST(SansSessions, lesVariantesRepondentUneIncoherence) {
  const std::filesystem::path trace = std::filesystem::temp_directory_path() / "noxlux_sans_sessions.txt";
  ASSERT_EQ(NOX_InitTrace(trace.c_str(), "w", 2, 1), NOX_CR_OK);
  char resultat = '?';
  const unsigned codes[] = {
      NOX_RechercherParMotCle_S("dent", 0, 1),
      NOX_RechercherParFiltre_S("", 1),
      NOX_ConsulterDonnee_S("CCAM_1", "20260115", 1),
      NOX_ModifierDonnee_S("TB12_1", "20260115", 1),
      NOX_AnnulerModification_S("TB12", 1),
      NOX_ControlerDonnees_S("C_Radio", "20260115", 1, &resultat),
      NOX_AppliquerRegle_S("C_Pu", 1),
      NOX_ControleComplet_S(1),
      NOX_LireVersion_S(1),
  };
  NOX_InitTrace(trace.c_str(), "w", 2, 0);
  for (const unsigned code : codes) {
    EXPECT_EQ(code, unsigned{NOX_CR_INCOHERENCE});
  }
  EXPECT_EQ(resultat, '?');
  std::stringstream texte;
  texte << std::ifstream(trace).rdbuf();
  EXPECT_NE(texte.str().find("ERREUR : gestionnaire de sessions absent.\n"), std::string::npos);
  std::filesystem::remove(trace);
}

}  // namespace
