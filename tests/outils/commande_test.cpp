// The command's exit statuses, as programs see them.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include "outils/nomenclature_essai.h"

namespace noxlux::essai {
namespace {

struct Resultat {
  int statut;
  std::string sortie;
  std::string erreurs;
};

// The command that the build put beside this program.
Resultat lancer(const Repertoire& dossier, const std::string& arguments) {
  const fs::path commande = fs::read_symlink("/proc/self/exe").parent_path() / "noxlux";
  const fs::path sortie = dossier.chemin() / "sortie.txt";
  const fs::path erreurs = dossier.chemin() / "erreurs.txt";
  const std::string ligne =
      phrase("'", commande.string(), "' ", arguments, " >'", sortie.string(), "' 2>'", erreurs.string(), "'");
  const int etat = std::system(ligne.c_str());
  return {WIFEXITED(etat) ? WEXITSTATUS(etat) : -1, lireOctets(sortie), lireOctets(erreurs)};
}

TEST(Commande, CompileEtListe) {
  const Repertoire dossier;
  const std::string socleEtExemple =
      phrase((depot() / "reference/exemple").string(), " --socle ", (depot() / "reference/socle").string());
  const std::string produit = (dossier.chemin() / "produit").string();
  const Resultat compile = lancer(dossier, phrase("compiler ", socleEtExemple, " -o ", produit));
  EXPECT_EQ(compile.statut, 0) << compile.erreurs;
  EXPECT_NE(compile.sortie.find("actes"), std::string::npos);
  EXPECT_EQ(compile.erreurs, "");
  ASSERT_TRUE(fs::exists(produit + "/tablebin.nox"));
  const struct {
    const char* sujet;
    int statut;
    const char* fragment;
  } cas[] = {
      {"", 0, "CRC"},
      {" 026", 0, "coefficient modificateur"},
      {" MotCle --json", 0, "\"forme canonique\""},
      {" HHFA001", 0, "prix unitaire"},
      {" 028", 2, "028"},
      {" ZZZZ999", 2, "ZZZZ999"},
      {" 026 trop", 2, "trop"},
  };
  for (const auto& c : cas) {
    const Resultat liste = lancer(dossier, phrase("lister ", produit, c.sujet));
    EXPECT_EQ(liste.statut, c.statut) << c.sujet << liste.erreurs;
    EXPECT_NE((c.statut == 0 ? liste.sortie : liste.erreurs).find(c.fragment), std::string::npos) << c.sujet;
  }
}

TEST(Commande, RefuseAvecLeStatut2) {
  const Repertoire dossier;
  const std::string faux = dossier.ecrire("faux.toml", "[[menu]]\ncode = \"un\"\n").string();
  const std::string produit = (dossier.chemin() / "produit").string();
  const Resultat refus = lancer(dossier, phrase("compiler ", faux, " --socle ",
                                                (depot() / "reference/socle").string(), " -o ", produit));
  EXPECT_EQ(refus.statut, 2);
  EXPECT_EQ(refus.sortie, "");
  EXPECT_NE(refus.erreurs.find(faux + ":2: "), std::string::npos) << refus.erreurs;
  EXPECT_FALSE(fs::exists(produit));
  for (const char* arguments : {"", "compiler", "inconnue", "lister /absent", "compiler x --non"}) {
    const Resultat usage = lancer(dossier, arguments);
    EXPECT_EQ(usage.statut, 2) << arguments;
    EXPECT_NE(usage.erreurs, "") << arguments;
  }
}

}  // namespace
}  // namespace noxlux::essai
