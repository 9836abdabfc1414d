// What is compiled is what was written: read back from the file, and asked from the loaded store.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>
#include <sstream>

#include "compilateur/listage.h"
#include "compilateur/mots_cles.h"
#include "outils/nomenclature_essai.h"
#include "referent/lecture_donnees.h"
#include "referent/referentiel.h"
#include "tables/niveaux_champs.h"

namespace noxlux::essai {
namespace {

// The small nomenclature compiled once, loaded by the store and read back.
class Compilation : public testing::Test {
 protected:
  void SetUp() override { compilerEtCharger(NOMENCLATURE); }

  void compilerEtCharger(const std::string& texte) {
    ASSERT_EQ(compilerTexte(texte, sortie_.chemin()), std::vector<std::string>());
    const std::string chemin = sortie_.chemin().string() + "/";
    ASSERT_EQ(referentiel_.chargerReferentiel(chemin.c_str(), chemin.c_str(), "0113", "0121"), NOX_CR_OK);
    std::string raison;
    fichier_ = FichierReference::ouvrir(chemin + "tablebin.nox", raison);
    ASSERT_NE(fichier_, nullptr) << raison;
  }

  JsonOrdonne lister(unsigned table) const {
    CodeRetour cr = NOX_CR_OK;
    return listerTable(*fichier_, *fichier_->chercherTable(table), cr);
  }

  // The acts under a keyword in a frame, put end to end.
  std::string actes(const char* mot, unsigned long cadre) {
    ListeCodes codes;
    std::string resultat;
    if (lecture_.rechercherActesIndexes(Texte(mot), cadre, codes) != NOX_CR_OK) {
      return "?";
    }
    for (const Code& code : codes) {
      resultat.append(code.vue().substr(0, 7)).append(" ");
    }
    return resultat;
  }

  Repertoire sortie_;
  Referentiel referentiel_;
  LectureDonnees lecture_{&referentiel_};
  std::unique_ptr<FichierReference> fichier_;
};

TEST_F(Compilation, ecritLEnteteEtLesTables) {
  const EnteteFichier& entete = fichier_->entete();
  EXPECT_EQ(entete.crc, entete.crcCalcule);
  EXPECT_EQ(entete.version + entete.versionBaseCCAM + entete.date + entete.versionMinimum + entete.revision +
                entete.variante + entete.commentaire,
            "01218100020260101011300007ESSAI     Petit essai");
  EXPECT_EQ(fichier_->tables().size(), NOMBRE_TABLES_REFERENCE);
  EXPECT_EQ(fichier_->tables().back().numero, 0U);
  EXPECT_EQ(fichier_->anomalie(), "");
  EXPECT_EQ(
      lister(10)[0].dump(),
      R"({"debut":"2005-03-25","fin":null,"metropole":120.0,"antilles":121.5,"reunion":122.0,"guyane":123.0})");
}

TEST_F(Compilation, ecritLesActesEntiers) {
  NiveauActe acte;
  ASSERT_EQ(fichier_->lireActe(CodeActe("HHFA001"), acte), NOX_CR_OK);
  EXPECT_EQ(listerActe(acte).dump(),
            R"({"code":"HHFA001","libelleCourt":"Appendicectomie",)"
            R"("libelleLong":"Ablation de l'appendice du rein gauche","type":"1",)"
            R"("conditions":"Hospitalisation","notes":"Avec ou sans drainage","sexe":"",)"
            R"("menu":3,"creation":"2005-03-25","fin":null,"fraisDeplacement":"",)"
            R"("naturesAssurance":["10"],"historique":[{"effet":"2005-03-25",)"
            R"("admission":"1","ententePrealable":"O","exonerations":["1"],"procedures":[],)"
            R"("incompatibles":["ZZLP025"]}],"activite":[{"code":"1","agrementsRadio":[],)"
            R"("rmo":["RMO01"],"extensions":[],"historique":[{"effet":"2005-03-25",)"
            R"("categorieMedicale":"01","regroupement":"ADC","modificateurs":["A","F"],)"
            R"("classesSpecialite":["10"],"associations":[{"acte":"ZZLP025","regle":"A"}]}],)"
            R"("phase":[{"code":"0","nombreDents":"","ageMinimum":2,"ageMaximum":90,)"
            R"("dentsIncompatibles":[],"historique":[{"effet":"2012-07-01","prix":193.51,)"
            R"("supplement":12.5,"dom":[1.1,1.2,1.3,1.4]},)"
            R"({"effet":"2005-03-25","prix":100.01,"supplement":0.0,)"
            R"("dom":[1.0,1.0,1.0,1.0]}]}]}]})");
  EXPECT_EQ(fichier_->lireActe(CodeActe("HHFA002"), acte), NOX_CR_CODE_INCONNU);
}

TEST_F(Compilation, donneLesMemesOctetsDeuxFois) {
  const Repertoire autre;
  ASSERT_EQ(compilerTexte(NOMENCLATURE, autre.chemin()).size(), 0U);
  EXPECT_EQ(lireOctets(autre.chemin() / "tablebin.nox"), lireOctets(sortie_.chemin() / "tablebin.nox"));
}

TEST_F(Compilation, indexeLesMotsParCadre) {
  const struct {
    const char* mot;
    unsigned long cadre;
    const char* actes;
  } cas[] = {
      {"APPENDICECTOMIE", CADRE_LIBELLE_COURT, "HHFA001 "},
      {"APPENDICECTOMIE", CADRE_LIBELLE_LONG, ""},
      {"REIN", CADRE_LIBELLE_LONG, "HHFA001 ZZLP025 "},
      {"DRAINAGE", CADRE_NOTES, "HHFA001 "},
      {"DRAINAGE", CADRE_LIBELLE_COURT | CADRE_LIBELLE_LONG | CADRE_CONDITIONS | CADRE_MENUS, ""},
      {"HOSPITALISATION", CADRE_CONDITIONS, "HHFA001 "},
      {"INTESTIN", CADRE_MENUS, "HHFA001 "},
      {"DIGESTIF", CADRE_MENUS, "HHFA001 ZZLP025 "},
      {"ANESTHESIE", CADRE_LIBELLE_COURT | CADRE_LIBELLE_LONG, "ZZLP025 "},
      {"RENAL", CADRE_LIBELLE_LONG, "HHFA001 ZZLP025 "},  // a synonym no text holds
      {"CCAM", 0xFFFFFFFFUL, "?"},                        // the root's title
      {"AVEC", 0xFFFFFFFFUL, "?"},                        // stop words
      {"DU", 0xFFFFFFFFUL, "?"},
      {"OU", 0xFFFFFFFFUL, "?"},  // too short
  };
  for (const auto& c : cas) {
    EXPECT_EQ(actes(c.mot, c.cadre), c.actes) << c.mot << " " << c.cadre;
  }
  TypeListe<Texte> synonymes;
  ASSERT_EQ(lecture_.rechercherSynonymes(Texte("REIN"), synonymes), NOX_CR_OK);
  ASSERT_EQ(synonymes.lireNombreElements(), 1U);
  EXPECT_EQ(synonymes[0].vue(), "RENAL");
}

// The members of a class follow from the class of each speciality over time.
TEST_F(Compilation, deduitLesClassesDeSpecialites) {
  const auto membres = [&](const char* classe, const Date& date) {
    ListeCodes codes;
    std::string resultat;
    const CodeRetour cr = lecture_.rechercherSpecialitesDansClasse(Code(classe), date, codes);
    for (const Code& code : codes) {
      resultat += code.vue();
    }
    return cr == NOX_CR_OK ? resultat : "?";
  };
  EXPECT_EQ(membres("10", Date(2004, 12, 31)), "?");
  EXPECT_EQ(membres("10", Date(2008, 6, 14)), "01");
  EXPECT_EQ(membres("10", Date(2008, 6, 15)), "0102");
  EXPECT_EQ(membres("10", Date(2011, 12, 31)), "0102");
  EXPECT_EQ(membres("10", Date(2012, 1, 1)), "02");
  EXPECT_EQ(membres("20", Date(2011, 12, 31)), "?");
  EXPECT_EQ(membres("20", Date(2030, 1, 1)), "01");
}

// Every rule that the catalogue tells can be looked up by what the library looks it up with.
TEST_F(Compilation, donneATouteRegleSesTroisLignes) {
  const JsonOrdonne regles = lister(34);
  ASSERT_GT(regles.size(), 50U);
  for (const JsonOrdonne& regle : regles) {
    const Code identifiant(regle["identifiant"].get<std::string>());
    Code reference;
    ASSERT_EQ(lecture_.rechercherReferenceCdC(identifiant, reference), NOX_CR_OK) << identifiant.lireTexte();
    EXPECT_EQ(std::string(reference.vue()), regle["reference"].get<std::string>());
    ListeCodes nonVerifiables;
    EXPECT_EQ(lecture_.rechercherReglesNonVerifiables(reference, nonVerifiables), NOX_CR_OK)
        << reference.lireTexte();
  }
}

TEST_F(Compilation, rangeLesFonctionsParFamilleEtParNom) {
  std::string precedent;
  std::size_t controlesComplets = 0;
  for (const JsonOrdonne& ligne : lister(49)) {
    const std::string code = ligne["fonction"];
    if (code.empty()) {
      continue;
    }
    std::string cle = code + ligne["nom"].get<std::string>();
    for (char& c : cle) {
      c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    EXPECT_LT(precedent, cle);
    precedent = cle;
    controlesComplets += code == "6" ? 1U : 0U;
  }
  EXPECT_EQ(precedent[0], '6');
  EXPECT_EQ(controlesComplets, 1U);
}

template <class Liste>
std::string cles(const Liste& champs) {
  std::string texte;
  const auto ajouter = [&](const NomChamp& nom) {
    texte += (texte.empty() ? "`" : ", `") + cleJson(nom) + "`";
  };
  std::apply([&](const auto&... champ) { (ajouter(champ.nom), ...); }, champs);
  return texte;
}

// What hosts may count on: the keys of every table and of every level, in the order of the file.
TEST(Listage, aLesClesQueSonDocumentDit) {
  std::set<std::string> attendues;
  const auto attendre = [&]<class... L>(std::type_identity<std::tuple<L...>>) {
    (attendues.insert(phrase("| ", std::to_string(1000 + L::IDENTIFIANT).substr(1), " | `", L::NOM, "` | ",
                             cles(L::champs()), " |")),
     ...);
  };
  attendre(std::type_identity<Catalogue>{});
  const auto niveau = [&]<class N>(const char* nom, std::type_identity<N>) {
    attendues.insert(phrase("| ", nom, " | ", cles(ChampsDuNiveau<N>::liste()), " |"));
  };
  niveau("an act", std::type_identity<NiveauActe>{});
  niveau("`historique` of an act", std::type_identity<HistoriqueNiveauActe>{});
  niveau("`activite`", std::type_identity<NiveauActivite>{});
  niveau("`historique` of an activity", std::type_identity<HistoriqueNiveauActivite>{});
  niveau("an element of `associations`", std::type_identity<Association>{});
  niveau("`phase`", std::type_identity<NiveauPhase>{});
  niveau("`historique` of a phase", std::type_identity<HistoriqueNiveauPhase>{});
  std::set<std::string> dites;
  std::istringstream document(lireOctets(depot() / "docs/listage.md"));
  bool desCles = false;
  for (std::string ligne; std::getline(document, ligne);) {
    desCles = desCles || ligne.starts_with("## ");
    if (desCles && ligne.starts_with("| ") && ligne.find("`") != ligne.npos) {
      dites.insert(ligne);
    }
  }
  EXPECT_EQ(dites, attendues);
}

// A damaged file is shown all the same, and its damage told.
TEST_F(Compilation, relitUnFichierAbime) {
  const std::string octets = lireOctets(sortie_.chemin() / "tablebin.nox");
  const auto relire = [&](const std::string& contenu, std::string& raison) {
    return FichierReference::ouvrir(sortie_.ecrire("abime.nox", contenu).string(), raison);
  };
  std::string raison;
  std::string change = octets;
  change[octets.find("Petit essai")] = 'p';
  const auto modifie = relire(change, raison);
  ASSERT_NE(modifie, nullptr);
  EXPECT_EQ(modifie->entete().commentaire, "petit essai");
  EXPECT_NE(modifie->entete().crc, modifie->entete().crcCalcule);
  const auto coupe = relire(octets.substr(0, 400), raison);
  ASSERT_NE(coupe, nullptr);
  EXPECT_NE(coupe->anomalie(), "");
  EXPECT_EQ(relire(octets.substr(0, 40), raison), nullptr);
  EXPECT_EQ(relire("", raison), nullptr);
  EXPECT_EQ(relire(std::string(octets).replace(5, 3, "fic"), raison), nullptr);
  // An index that points beyond the file.
  std::string perdu = octets;
  const std::size_t position = fichier_->chercherTable(0)->position + CodeActe().entier().size();
  perdu.replace(position, 4, "\x7F\xFF\xFF\xFF");
  NiveauActe acte;
  EXPECT_EQ(relire(perdu, raison)->lireActe(CodeActe("HHFA001"), acte), NOX_CR_LECTURE_REFERENCE);
}

TEST_F(Compilation, relitLesModifications) {
  referentiel_.lignes<ModificationSeuil>().push_back({2, {2026, 3, 1}, 130.5});
  ASSERT_EQ(referentiel_.sauvegarderModifications(), NOX_CR_OK);
  std::string raison;
  const auto modifications = FichierReference::ouvrir((sortie_.chemin() / "modifref.nox").string(), raison);
  ASSERT_NE(modifications, nullptr) << raison;
  EXPECT_TRUE(modifications->estModification());
  EXPECT_EQ(modifications->anomalie(), "");
  EXPECT_EQ(modifications->entete().crc, modifications->entete().crcCalcule);
  EXPECT_EQ(modifications->tables().size(), NOMBRE_TABLES_MODIFICATION);
  CodeRetour cr = NOX_CR_OK;
  EXPECT_EQ(listerTable(*modifications, *modifications->chercherTable(39), cr).dump(),
            R"([{"position":2,"effet":"2026-03-01","seuil":130.5}])");
  NiveauActe acte;
  EXPECT_EQ(modifications->lireActe(CodeActe("HHFA001"), acte), NOX_CR_CODE_INCONNU);
}

// The example: every price asked from the store is the one its source tells.
TEST(Exemple, repondCeQueSesSourcesDisent) {
  Modele modele;
  Rapport rapport;
  Bilan bilan;
  const Repertoire sortie;
  lireSourcesToml({(depot() / "reference/socle").string(), (depot() / "reference/exemple").string()}, modele,
                  rapport);
  compiler(modele, sortie.chemin().string(), SANS_AVANCEMENT, rapport, bilan);
  ASSERT_EQ(rapport.lignes(), std::vector<std::string>());
  ASSERT_GE(bilan.actes, 50U);
  Referentiel referentiel;
  const std::string chemin = sortie.chemin().string() + "/";
  ASSERT_EQ(referentiel.chargerReferentiel(chemin.c_str(), chemin.c_str(), "9999", "0000"), NOX_CR_OK);
  LectureDonnees lecture(&referentiel);
  std::size_t prix = 0;
  for (const Acte& acte : modele.actes) {
    const Code code(acte.code.vue());
    Texte libelle;
    ASSERT_EQ(lecture.rechercherLibelleLong(code, libelle), NOX_CR_OK);
    EXPECT_EQ(libelle.vue(), acte.libelleLong);
    for (const Activite& activite : acte.activites) {
      for (const Phase& phase : activite.phases) {
        for (const HistoriquePhase& historique : phase.historiques) {
          Montant montant;
          ASSERT_EQ(lecture.rechercherPrixUnitaire(code, Code(activite.code), Code(phase.code),
                                                   Date(historique.effet), montant),
                    NOX_CR_OK);
          EXPECT_DOUBLE_EQ(montant.lireValeur(), historique.prix) << code.lireTexte();
          ++prix;
        }
      }
    }
  }
  EXPECT_EQ(prix, bilan.prix);
}

}  // namespace
}  // namespace noxlux::essai
