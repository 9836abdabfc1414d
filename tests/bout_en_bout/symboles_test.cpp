// What the built library shows of itself to the dynamic linker.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

extern "C" int noxlux_entete_en_c(void);

namespace {

std::string executer(const std::string& commande) {
  std::string sortie;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> tube(popen(commande.c_str(), "r"), pclose);
  for (int c = 0; tube != nullptr && (c = std::fgetc(tube.get())) != EOF;) {
    sortie += static_cast<char>(c);
  }
  return sortie;
}

std::string bibliotheque() {
  const char* chemin = std::getenv("NOXLUX_BIBLIOTHEQUE");
  return chemin == nullptr ? "" : chemin;
}

TEST(Symboles, seuleLInterfaceEstExportee) {
  ASSERT_FALSE(bibliotheque().empty()) << "NOXLUX_BIBLIOTHEQUE must name the built library";
  std::set<std::string> definis;
  std::set<std::string> faibles;
  std::istringstream lignes(executer("nm -D '" + bibliotheque() + "'"));
  for (std::string ligne; std::getline(lignes, ligne);) {
    // "address type name", without address for what is imported.
    std::istringstream mots(ligne);
    std::vector<std::string> elements(std::istream_iterator<std::string>(mots), {});
    ASSERT_GE(elements.size(), 2U) << ligne;
    const std::string nom = elements.back();
    const std::string genre = elements[elements.size() - 2];
    if (genre == "w" && nom.starts_with("KEP_")) {
      faibles.insert(nom);
    } else if (genre != "U" && genre != "w") {
      definis.insert(nom);
    }
  }
  const std::set<std::string> interface = {"NOX_AllouerZoneMem",
                                           "NOX_AnnulerModification",
                                           "NOX_AnnulerModification_S",
                                           "NOX_AppliquerRegle",
                                           "NOX_AppliquerRegle_S",
                                           "NOX_ConsulterDonnee",
                                           "NOX_ConsulterDonnee_S",
                                           "NOX_ControleComplet",
                                           "NOX_ControleComplet_S",
                                           "NOX_ControlerDonnees",
                                           "NOX_ControlerDonnees_S",
                                           "NOX_InitLIB",
                                           "NOX_InitTrace",
                                           "NOX_LibererZoneMem",
                                           "NOX_LireVersion",
                                           "NOX_LireVersion_S",
                                           "NOX_ModifierDonnee",
                                           "NOX_ModifierDonnee_S",
                                           "NOX_RechercherParFiltre",
                                           "NOX_RechercherParFiltre_S",
                                           "NOX_RechercherParMotCle",
                                           "NOX_RechercherParMotCle_S",
                                           "NOX_SauvegarderReferentiel",
                                           "NOX_TermLIB",
                                           "REPERTOIRE_SYSTEME"};
  EXPECT_EQ(definis, interface);
  EXPECT_EQ(faibles, (std::set<std::string>{"KEP_EcrireZoneOut", "KEP_LireZoneIn"}));
}

TEST(Symboles, sonameVersionne) {
  EXPECT_NE(executer("readelf -d '" + bibliotheque() + "'").find("soname: [libnoxlux.so.1]"),
            std::string::npos);
}

TEST(Entete, sertUnProgrammeC) { EXPECT_EQ(noxlux_entete_en_c(), 0); }

}  // namespace
