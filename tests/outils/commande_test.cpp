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

TEST(Commande, compileEtListe) {
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
      {" 026", 0, "coefficient"},
      {" MotCle --json", 0, "\"formeCanonique\""},
      {" HHFA001", 0, "age minimum"},
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

// What is changed locally, found by the options that every other subcommand has.
TEST(Commande, ditCeQuiEstModifie) {
  const Repertoire dossier;
  const std::string produit = (dossier.chemin() / "produit").string();
  const std::string ici = phrase(" -r ", produit, " --modifications ", dossier.chemin().string());
  const std::string compilation = phrase("compiler ", (depot() / "reference/exemple").string(), " --socle ",
                                         (depot() / "reference/socle").string(), " -o ", produit);
  dossier.ecrire("orvan.ini", phrase("[NOX]\nrepertoiretable=", produit,
                                     "/\nrepertoireModification=", dossier.chemin().string(), "/\n"));
  const std::string phaseActe = "CCAM_37 acte=HHFA001 activite=1 phase=0";
  const struct {
    std::string arguments;
    int statut;
    const char* fragment;
  } cas[] = {
      {compilation, 0, "actes"},
      {"modifications" + ici, 0, "aucun fichier de modifications"},
      {"modifier " + phaseActe + " montant=200 -e 2026-01-01" + ici, 0, "200,00"},
      {"modifications" + ici, 0, "prix unitaire"},
      {"modifications --json --config " + dossier.chemin().string(), 0, "2026-01-01"},
      {"annuler " + phaseActe + ici, 0, "200,00"},
      {"modifications" + ici, 0, "Rien n'est modifi"},
      {"modifier TB07_1 caisse=971 montant=130 -e 2026-01-01" + ici, 0, "seuil : m\xC3\xA9tropole"},
      {"modifications -r /absent", 2, "/absent"},
      {"modifications --config /absent", 2, "/absent/orvan.ini"},
      {"modifications " + produit, 2, produit.c_str()},
  };
  for (const auto& [arguments, statut, fragment] : cas) {
    const Resultat resultat = lancer(dossier, arguments);
    EXPECT_EQ(resultat.statut, statut) << arguments << resultat.erreurs;
    EXPECT_NE((statut == 0 ? resultat.sortie : resultat.erreurs).find(fragment), std::string::npos)
        << arguments << resultat.sortie << resultat.erreurs;
  }
}

// From one reference to the next: changes set aside are told, not written over, and made again where they
// still make sense; those that a reference of the same version refuses can be taken back.
TEST(Commande, reporteLesChangements) {
  const Repertoire dossier;
  const fs::path exemple = dossier.chemin() / "exemple";
  const auto remplacer = [&](const char* fichier, const char* avant, const char* apres) {
    std::string texte = lireOctets(exemple / fichier);
    texte.replace(texte.find(avant), std::string(avant).size(), apres);
    std::ofstream(exemple / fichier) << texte;
  };
  const auto compiler = [&] {
    return phrase("compiler ", exemple.string(), " --socle ", (depot() / "reference/socle").string(), " -o ",
                  dossier.chemin().string());
  };
  const std::string ici = " -r " + dossier.chemin().string();
  const auto verifier = [&](const std::string& arguments, int statut, const char* fragment) {
    const Resultat resultat = lancer(dossier, arguments);
    EXPECT_EQ(resultat.statut, statut) << arguments << resultat.erreurs;
    EXPECT_NE((resultat.sortie + resultat.erreurs).find(fragment), std::string::npos)
        << arguments << resultat.sortie << resultat.erreurs;
  };
  fs::copy(depot() / "reference/exemple", exemple, fs::copy_options::recursive);
  verifier(compiler(), 0, "actes");
  verifier("modifier TB07_1 caisse=971 montant=130 -e 2026-02-01" + ici, 0, "130,00");
  verifier("modifier TB11_2 modificateur=K coefficient=1.25 -e 2026-02-01" + ici, 0, "1,25");
  verifier("modifier TB13_1 regroupement=ZZ9 libelle=Cabinet -e 2026-02-01" + ici, 0, "ZZ9");

  // The same version: a newer rate of K, and the code that was added.
  remplacer("modificateurs.toml", "{ debut = 2017-06-15, coefficient = 1.2 },",
            "{ debut = 2017-06-15, fin = 2026-02-28, coefficient = 1.2 }, { debut = 2026-03-01, coefficient "
            "= 1.3 },");
  remplacer("regroupements.toml", "[[regroupement]]",
            "[[regroupement]]\ncode = \"ZZ9\"\nlibelle = \"Public\"\ndebut = 2005-01-01\n[[regroupement]]");
  verifier(compiler(), 0, "table 040, ligne 1, code modificateur K");
  verifier("consulter TB13_1" + ici, 1, "table 040, ligne 1, code modificateur K");
  verifier("reporter --essai" + ici, 1, "TB11_2 modificateur=K coefficient=1.250 au 01/02/2026 : 0xD004");
  verifier("reporter --essai" + ici, 1, "refaits : 1 ; inutiles : 2");
  verifier("annuler TB11 modificateur=A" + ici, 1, "0xD005");
  verifier("annuler TB11 modificateur=K" + ici, 0, "accepte maintenant");
  verifier("consulter TB07_1 caisse=971 -d 2026-02-01" + ici, 0, "130,00");

  verifier("modifier CCAM_37 acte=HHFA001 activite=1 phase=0 montant=180 -e 2026-02-01" + ici, 0, "180,00");
  remplacer("actes_appareil_digestif.toml", "effet = 2024-12-22\nprix = 176.79",
            "effet = 2026-03-01\nprix = 176.79");
  verifier(compiler(), 0, "HHFA001 (0xD004)");
  verifier("annuler CCAM_37 acte=HHFA001 activite=1 phase=0 -d 2026-04-01" + ici, 0, "176,79");

  remplacer("entete.toml", "version = \"0121\"", "version = \"0122\"");
  verifier(compiler(), 0, "mis de c");
  verifier("consulter TB07_1 caisse=971 -d 2026-02-01" + ici, 0, "120,00");
  verifier("consulter TB07_1 caisse=971 -d 2026-02-01" + ici, 0, "faits sur la version 0121, sont mis de");
  verifier("modifications --json" + ici, 0, "\"misDeCote\": true");
  verifier("modifier TB07_1 caisse=972 montant=130 -e 2026-02-01" + ici, 2, "--remplacer");
  dossier.ecrire("modiftmp.nox", "0");
  verifier("modifications" + ici, 0, "modiftmp.nox : reste");
  fs::remove(dossier.chemin() / "modiftmp.nox");
  verifier("reporter" + ici, 0, "refaits : 1 ; inutiles : 0");
  verifier("consulter TB07_1 caisse=971 -d 2026-02-01" + ici, 0, "130,00");
  EXPECT_TRUE(fs::exists(dossier.chemin() / "modifref-0121.nox"));
}

// Each holds the lock from its load to its save: none is lost, even by a save in between.
TEST(Commande, modifieAvecDAutres) {
  const Repertoire dossier;
  const std::string produit = (dossier.chemin() / "produit").string();
  ASSERT_EQ(lancer(dossier, phrase("compiler ", (depot() / "reference/exemple").string(), " --socle ",
                                   (depot() / "reference/socle").string(), " -o ", produit))
                .statut,
            0);
  const std::string commande = (fs::read_symlink("/proc/self/exe").parent_path() / "noxlux").string();
  const std::string ligne = phrase("for prix in 1 2 3 4 5 6 7 8; do '", commande,
                                   "' modifier CCAM_37 acte=HHFA001 activite=1 phase=0",
                                   " montant=20$prix -e 2026-01-01 -r ", produit, " >/dev/null & done; wait");
  EXPECT_EQ(std::system(ligne.c_str()), 0);
  const std::string liste = lancer(dossier, "modifications -r " + produit).sortie;
  for (char prix = '1'; prix <= '8'; ++prix) {
    EXPECT_NE(liste.find(phrase("prix 20", std::string(1, prix), ",00")), std::string::npos)
        << liste;
  }
}

TEST(Commande, refuseAvecLeStatut2) {
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
