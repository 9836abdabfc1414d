// Faulty sources: what is said of each fault, and where.
#include <gtest/gtest.h>

#include <algorithm>

#include "outils/nomenclature_essai.h"

namespace noxlux::essai {
namespace {

// One passage replaced in the small nomenclature; `lieu` is a passage of the faulty text whose line is told
// (the new passage itself when it is null).
struct Cas {
  const char* ancien;
  const char* nouveau;
  const char* fragment;
  const char* lieu = nullptr;
};

constexpr Cas FAUTES[] = {
    // The shape of the sources.
    {"prix = 48", "prix = \"48\"", "il faut un nombre, et non un texte"},
    {"prix = 48", "prix = -1", "entre 0 et 999999"},
    {"prix = 48", "pris = 48", "vouliez-vous", "pris = 48"},
    {"menu = 2\ncreation = 2005-03-25", "menu = 2\ncreation = \"hier\"",
     "il faut une date (AAAA-MM-JJ), et non un texte", "creation = \"hier\""},
    {"[[menu]]\ncode = 1\n", "[[menu]]\n", "menu.code", "[[menu]]"},
    {"[recherche]", "[recherches]", "inconnue"},
    {"revision = 7", "revision = 65536", "entre 0 et 65535"},
    {"entente_prealable = true", "entente_prealable = 1", "true ou false"},
    {"dom = [1.1, 1.2, 1.3, 1.4]", "dom = [1.1, 1.2]", "quatre nombres"},
    {"code = \"4\"\n[[acte", "code = \"44\"\n[[acte", "1 caract"},
    {"admission = \"1\"\nentente", "admission = \"a\"\nentente", "lettres capitales"},
    {"libelle_court = \"Anesthesie\"", "libelle_court = \"\"", "valeur vide"},
    {"libelle_court = \"Anesthesie\"", "libelle_court = \"c\xC5\x93ur\"", "crire \xC2\xAB oe \xC2\xBB"},
    {"libelle_court = \"Anesthesie\"", "libelle_court = \"\xE4\xB8\xAD\"", "ISO-8859-1"},
    {"libelle_court = \"Anesthesie\"", "libelle_court = \"a\\u0000b\"", "commande"},
    {"rmo = [\"RMO01\"]", "rmo = [\"RMO01\", \"\"]", "vide dans la liste"},
    // Header.
    {"version = \"0121\"", "version = \"121\"", "au moins 4", "[entete]"},
    {"commentaire = \"Petit essai\"", "commentaire = \"deux\\nlignes\"", "sur une ligne", "[entete]"},
    // Acts.
    {"code = \"ZZLP025\"\nlibelle", "code = \"HHFA001\"\nlibelle", "est en double",
     "[[acte]]\ncode = \"HHFA001\"\nlibelle_court = \"Anes"},
    {"menu = 2", "menu = 9", "le menu 9 est inconnu", "[[acte]]\ncode = \"ZZLP"},
    {"incompatibles = [\"ZZLP025\"]", "incompatibles = [\"ZZLP026\"]", "ZZLP026", "[[acte.historique]]"},
    {"incompatibles = [\"ZZLP025\"]", "incompatibles = [\"HHFA001\"]", "lui-m", "[[acte.historique]]"},
    {"acte = \"ZZLP025\", regle = \"A\"", "acte = \"ZZLP025\", regle = \"B\"", "tarifaire",
     "associations = ["},
    {"modificateurs = [\"A\", \"F\"]", "modificateurs = [\"A\", \"Z\"]", "le modificateur \xC2\xAB Z",
     "[[acte.activite.historique]]"},
    {"modificateurs = [\"A\", \"F\"]", "modificateurs = [\"A\", \"A\"]", "en double dans la liste",
     "[[acte.activite.historique]]"},
    {"classes_specialite = [\"10\"]", "classes_specialite = [\"30\"]", "\xC2\xAB 30 \xC2\xBB est inconnu",
     "[[acte.activite.historique]]"},
    {"regroupement = \"ADC\"", "regroupement = \"ADX\"", "ADX", "[[acte.activite.historique]]"},
    {"categorie_medicale = \"01\"", "categorie_medicale = \"02\"", "table de codes 4",
     "[[acte.activite.historique]]"},
    {"exonerations = [\"1\"]", "exonerations = [\"2\"]", "table de codes 6", "[[acte.historique]]"},
    {"natures_assurance = [\"10\"]", "natures_assurance = [\"11\"]", "table de codes 7", "[[acte]]"},
    {"effet = 2012-07-01", "effet = 2005-03-25", "deux historiques prennent effet le 2005-03-25",
     "[[acte.activite.phase.historique]]\neffet = 2005-03-25\nprix = 193"},
    {"age_maximum = 90", "age_maximum = 1", "maximum", "[[acte.activite.phase]]"},
    {"creation = 2005-03-25\nnatures", "creation = 2004-01-01\nnatures", "2004-01-01", "[[acte]]"},
    {"creation = 2005-03-25\nnatures", "creation = 2005-03-25\nfin = 2005-03-24\nnatures", "2005-03-24",
     "[[acte]]"},
    // Menus.
    {"pere = 2", "pere = 7", "7 est inconnu", "[[menu]]\ncode = 3"},
    {"pere = 2", "pere = 3", "ne m", "[[menu]]\ncode = 3"},
    {"code = 1\nlibelle", "code = 1\npere = 2\nlibelle", "racine", "[[menu]]\ncode = 1"},
    // Dated values.
    {"fin = 2010-12-31, forfait", "fin = 2011-01-01, forfait", "se recouvrent",
     "valeurs = [ { debut = 2005-03-25, fin"},
    {"fin = 2011-12-31, classe", "fin = 2004-12-31, classe", "la fin (2004-12-31)",
     "historiques = [ { debut = 2005-01-01"},
    {"coefficient = 1.49", "coefficient = 0.99", "au moins 1", "valeurs = [ { debut = 2005-03-25, coeff"},
    {"unite_minimum = \"M\"", "unite_minimum = \"S\"", "ni J (jours)", "ages = ["},
    {"compatibles = [ { code = \"F\"", "compatibles = [ { code = \"G\"", "compatible \xC2\xAB G",
     "compatibles = [ {"},
    {"jour = 2026-05-01", "jour = 2026-01-01", "se recouvrent", "jours = ["},
    {"{ code = \"01\", date", "{ code = \"09\", date", "09", "specialites = [ { code"},
    // Search, codes, concepts.
    {"mot = \"rein\"", "mot = \"le rein\"", "n'est pas un mot", "[[synonyme]]"},
    {"{ code = \"4\", libelle", "{ code = \"1\", libelle", "en double dans la table de codes 1",
     "valeurs = [ { code = \"1\", libelle = \"Activite 1\""},
    {"\"07\", \"08\"", "\"07\", \"a8\"", "valeur de concept",
     "historiques = [ { debut = 2005-03-25, valeurs"},
    {"numero = 4\nhistoriques", "numero = 0\nhistoriques", "partir de 1", "[[concept]]"},
};

std::size_t ligneDe(const std::string& texte, const char* passage) {
  const auto position = static_cast<std::ptrdiff_t>(texte.find(passage));
  return static_cast<std::size_t>(std::count(texte.begin(), texte.begin() + position, '\n')) + 1;
}

TEST(Fautes, laNomenclatureDEssaiNEnAPas) {
  const Repertoire sortie;
  EXPECT_EQ(compilerTexte(NOMENCLATURE, sortie.chemin()), std::vector<std::string>());
}

TEST(Fautes, sontDitesAvecLeurPlace) {
  for (const Cas& cas : FAUTES) {
    const std::string texte = remplacer(NOMENCLATURE, cas.ancien, cas.nouveau);
    const Repertoire sortie;
    const std::vector<std::string> fautes = compilerTexte(texte, sortie.chemin());
    const std::string place = phrase(
        "essai.toml:", std::to_string(ligneDe(texte, cas.lieu == nullptr ? cas.nouveau : cas.lieu)), ": ");
    const bool dite = std::any_of(fautes.begin(), fautes.end(), [&](const std::string& faute) {
      return faute.starts_with(place) && faute.find(cas.fragment) != std::string::npos;
    });
    EXPECT_TRUE(dite) << cas.nouveau << "\nattendu : " << place << cas.fragment
                      << "\nobtenu : " << (fautes.empty() ? "rien" : fautes.front());
    EXPECT_EQ(sortie.nombreFichiers(), 0U) << cas.nouveau;
  }
}

// Faults of the socle, in a complement that adds to it.
struct CasSocle {
  const char* complement;
  const char* fragment;
};

constexpr CasSocle FAUTES_SOCLE[] = {
    {"[[regle]]\nidentifiant=\"X1\"\nreference=\"RX\"\nlibelle=\"l\"\nniveau=\"O\"\ndetail=\"%s et "
     "%d\"\narguments=[\"texte\",\"texte\"]",
     "conversion n\xC2\xB0 2"},
    {"[[regle]]\nidentifiant=\"X1\"\nreference=\"RX\"\nlibelle=\"l\"\nniveau=\"O\"\ndetail=\"%s\"",
     "plus d'arguments"},
    {"[[regle]]\nidentifiant=\"X1\"\nreference=\"RX\"\nlibelle=\"l\"\nniveau=\"O\"\ndetail=\"100 %% "
     "%s\"\narguments=[\"texte\",\"entier\"]",
     "tous les arguments"},
    {"[[regle]]\nidentifiant=\"X1\"\nreference=\"RX\"\nlibelle=\"l\"\nniveau=\"O\"\ndetail=\"%n\"\narguments="
     "[\"entier\"]",
     "conversion n\xC2\xB0 1"},
    {"[[regle]]\nidentifiant=\"X1\"\nreference=\"RX\"\nlibelle=\"l\"\nniveau=\"P\"", "outrepassable"},
    {"[[regle]]\nidentifiant=\"X1\"\nreference=\"RX\"\nlibelle=\"l\"\nniveau=\"O\"\nforcage=\"9\"",
     "n'a pas de priorit"},
    {"[[regle]]\nidentifiant=\"PROD500\"\nreference=\"RX\"\nlibelle=\"l\"\nniveau=\"O\"",
     "PROD500 \xC2\xBB est en double"},
    {"[[service_debrayable]]\nidentifiant=\"S\"\nregles=[\"PROD1\"]", "PROD1 \xC2\xBB est inconnue"},
    {"[[groupe]]\nnumero=3012\nnom=\"x\"\nchamps=[{nom=\"a\",format=\"A\",type=\"C\"}]",
     "le groupe 3012 est en double"},
    {"[[groupe]]\nnumero=1\nnom=\"x\"\nchamps=[{nom=\"a\",format=\"Q\",type=\"C\"}]", "format inconnu"},
    {"[[groupe]]\nnumero=1\nnom=\"x\"\nchamps=[{nom=\"a\",format=\"A\",type=\"Q\"}]", "type inconnu"},
    {"[[groupe]]\nnumero=1\nnom=\"x\"\nchamps=[{nom=\"a\",format=\"A\",type=\"C\",min=3,max=2}]",
     "taille maximale"},
    {"[[groupe]]\nnumero=1\nnom=\"x\"\nchamps=[{nom=\"a\",format=\"A\",type=\"C\",max=2,valeurs=[\"ABC\"]}]",
     "taille permise"},
    {"[[super_groupe]]\nnom=\"U\"\nfils=[{super_groupe=\"V\",min=0,max=0}]\n[[super_groupe]]\nnom="
     "\"V\"\nfils=[{super_groupe=\"U\",min=0,max=0}]",
     "s'imbrique en lui-m"},
    {"[[super_groupe]]\nnom=\"U\"\nfils=[{groupe=65000,min=0,max=0}]", "le groupe 65000 est inconnu"},
    {"[[super_groupe]]\nnom=\"U\"\nfils=[{groupe=3012,super_groupe=\"Prestation\",min=0,max=0}]",
     "et un seul"},
    {"[[fonction]]\nfamille=\"consultation\"\nnom=\"ccam_37\"\nnumero=9999",
     "ccam_37 \xC2\xBB est en double"},
    {"[[fonction]]\nfamille=\"consultations\"\nnom=\"X\"\nnumero=9999", "famille \xC2\xAB consultations"},
    {"[[fonction]]\nfamille=\"controle_complet\"\nnom=\"X\"\nnumero=9999", "une et une seule"},
};

TEST(Fautes, duSocle) {
  for (const CasSocle& cas : FAUTES_SOCLE) {
    const Repertoire sortie;
    const std::vector<std::string> fautes =
        compilerTexte(std::string(NOMENCLATURE) + cas.complement + "\n", sortie.chemin());
    EXPECT_TRUE(
        std::any_of(fautes.begin(), fautes.end(),
                    [&](const std::string& faute) { return faute.find(cas.fragment) != std::string::npos; }))
        << cas.complement << "\nobtenu : " << (fautes.empty() ? "rien" : fautes.front());
  }
}

TEST(Fautes, dUneListeQuUnActeNePeutTenir) {
  Modele modele;
  Rapport rapport;
  Bilan bilan;
  const Repertoire sortie;
  lireTexteToml(NOMENCLATURE, "essai.toml", modele, rapport);
  modele.actes.at(0).historiques.at(0).incompatibles.resize(65540);
  EXPECT_FALSE(compiler(modele, sortie.chemin().string(), SANS_AVANCEMENT, rapport, bilan));
  const auto fautes = rapport.lignes();
  EXPECT_TRUE(
      std::ranges::any_of(fautes, [](const auto& f) { return f.find("65540 ") != std::string::npos; }));
}

TEST(Fautes, sontToutesDitesEnUneFois) {
  std::string texte = remplacer(NOMENCLATURE, "prix = 48", "prix = \"48\"");
  texte = remplacer(texte, "revision = 7", "revision = -7");
  texte = remplacer(texte, "pere = 2", "pere = 8");
  const Repertoire sortie;
  const std::vector<std::string> fautes = compilerTexte(texte, sortie.chemin());
  ASSERT_EQ(fautes.size(), 3U);
  EXPECT_NE(fautes[0].find("entete.revision"), std::string::npos);
  EXPECT_NE(fautes[1].find("prix"), std::string::npos);
  EXPECT_NE(fautes[2].find("menu"), std::string::npos);
}

TEST(Fautes, desFichiers) {
  const Repertoire sources;
  const Repertoire vide;
  const auto premiere = [](const std::string& chemin) {
    Modele modele;
    Rapport rapport;
    lireSourcesToml({chemin}, modele, rapport);
    return rapport.estVide() ? std::string() : rapport.lignes().front();
  };
  const std::string latin1 = sources.ecrire("latin1.toml", "# ok\n# \xE9t\xE9\n").string();
  EXPECT_TRUE(premiere(latin1).starts_with(latin1 + ":2: ")) << premiere(latin1);
  EXPECT_NE(premiere(latin1).find("UTF-8"), std::string::npos);
  const std::string casse = sources.ecrire("casse.toml", "[[menu]]\ncode = \n").string();
  EXPECT_TRUE(premiere(casse).starts_with(casse + ":2: TOML mal form")) << premiere(casse);
  EXPECT_NE(premiere(vide.chemin().string()).find("aucun fichier .toml"), std::string::npos);
  EXPECT_NE(premiere((vide.chemin() / "absent").string()).find("n'existe pas"), std::string::npos);
  // A byte-order mark is no fault, and a file met twice counts once.
  sources.ecrire("marque.toml", "\xEF\xBB\xBF[[menu]]\ncode = 1\nlibelle = \"x\"\n");
  const std::string marque = (sources.chemin() / "marque.toml").string();
  Modele modele;
  Rapport rapport;
  lireSourcesToml({marque, marque}, modele, rapport);
  EXPECT_EQ(rapport.lignes(), std::vector<std::string>());
  EXPECT_EQ(modele.menus.size(), 1U);
}

TEST(Fautes, nAbimentPasLaReferenceEnPlace) {
  const Repertoire sortie;
  ASSERT_EQ(compilerTexte(NOMENCLATURE, sortie.chemin()).size(), 0U);
  const std::string avant = lireOctets(sortie.chemin() / "tablebin.nox");
  ASSERT_FALSE(compilerTexte(remplacer(NOMENCLATURE, "prix = 48", "prix = {}"), sortie.chemin()).empty());
  EXPECT_EQ(lireOctets(sortie.chemin() / "tablebin.nox"), avant);
  EXPECT_EQ(sortie.nombreFichiers(), 1U);
  // A directory that cannot be made.
  sortie.ecrire("fichier", "");
  const std::vector<std::string> fautes =
      compilerTexte(NOMENCLATURE, sortie.chemin() / "fichier" / "dessous");
  ASSERT_EQ(fautes.size(), 1U);
  EXPECT_NE(fautes[0].find("impossible"), std::string::npos);
}

}  // namespace
}  // namespace noxlux::essai
