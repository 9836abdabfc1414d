// Searches, version and dump.
#include <algorithm>
#include <set>

#include "bibliotheque_essai.h"

using namespace essai;

namespace {

using Recherche = AvecReference;

// The codes of a search, without padding; checks the shape of the answer.
std::vector<std::string> codes(const Reponse& reponse) {
  EXPECT_EQ(reponse.code, unsigned{NOX_CR_OK});
  if (reponse.zone.size() != 1 || reponse.zone[0].champs.empty()) {
    ADD_FAILURE() << reponse;
    return {};
  }
  const Groupe& groupe = reponse.zone[0];
  EXPECT_EQ(groupe.identifiant, 3000U);
  char nombre[16];
  std::snprintf(nombre, sizeof nombre, "%05zu", groupe.champs.size() - 1);
  EXPECT_EQ(groupe.champs[0], nombre);
  std::vector<std::string> resultat(groupe.champs.begin() + 1, groupe.champs.end());
  for (std::string& code : resultat) {
    EXPECT_EQ(code.size(), 13U);
    code.erase(code.find_last_not_of(' ') + 1);
  }
  return resultat;
}

TEST_F(Recherche, leFiltreEstUnDebutDeCode) {
  const std::vector<std::string> tous = codes(rechercherFiltre(""));
  EXPECT_GT(tous.size(), 50U);
  EXPECT_TRUE(std::is_sorted(tous.begin(), tous.end()));
  for (const std::string filtre : {"H", "HB", "HBF", "HBFD"}) {
    SCOPED_TRACE(filtre);
    std::vector<std::string> attendus;
    std::copy_if(tous.begin(), tous.end(), std::back_inserter(attendus),
                 [&](const std::string& code) { return code.starts_with(filtre); });
    EXPECT_EQ(codes(rechercherFiltre(filtre)), attendus);
  }
  EXPECT_EQ(rechercherFiltre("XYZ"), (Reponse{NOX_CR_RECHERCHE_VIDE, {}, false}));
}

TEST_F(Recherche, motCleDansSesCadres) {
  const std::vector<std::string> partout = codes(rechercherMotCle("molaire"));
  EXPECT_NE(std::find(partout.begin(), partout.end(), "HBFD008"), partout.end());
  EXPECT_EQ(codes(rechercherMotCle("molaire", 0xFFFFFFFF)), partout);
  EXPECT_EQ(codes(rechercherMotCle("  MOLAIRE!")), partout);
  // The frames together give what no frame gives.
  std::set<std::string> cadres;
  for (const unsigned long cadre : {1UL, 2UL, 4UL, 8UL, 16UL}) {
    const Reponse reponse = rechercherMotCle("molaire", cadre);
    if (reponse.code == NOX_CR_OK) {
      const std::vector<std::string> trouves = codes(reponse);
      cadres.insert(trouves.begin(), trouves.end());
    } else {
      EXPECT_EQ(reponse.code, unsigned{NOX_CR_RECHERCHE_VIDE});
    }
  }
  EXPECT_EQ(std::vector<std::string>(cadres.begin(), cadres.end()), partout);
  EXPECT_EQ(rechercherMotCle("molaire", 32), (Reponse{NOX_CR_RECHERCHE_VIDE, {}, false}))
      << "a known keyword in a frame that it is never in";
  EXPECT_EQ(rechercherMotCle("zythum"), (Reponse{NOX_CR_CODE_INCONNU, {}, false}));
  // Accents and ligatures are those of ISO-8859-1.
  EXPECT_EQ(codes(rechercherMotCle("D\xC9VITALISATION")), codes(rechercherMotCle("devitalisation")));
}

TEST_F(Recherche, messages) {
  const TraceEssai trace({1, 6});
  rechercherMotCle("molaire", 32);
  rechercherFiltre("XYZ");
  rechercherMotCle("!");
  consulter("TB12_1", "20260115", {{3010, {"HBFD008"}}});
  for (const char* texte :
       {"NOX_RechercherParMotCle : motCle = molaire, cadreRecherche = 32\n",
        "ERREUR : Aucun code acte ne correspond au mot cl\xE9 molaire.\n", "cr = 0xD001\n",
        "NOX_RechercherParFiltre : filtre = XYZ\n", "ERREUR : aucun code acte ne correspond au filtre XYZ.\n",
        "ERREUR : Mot cl\xE9 canonique vide\n", "cr = 0xF802\n",
        "ERREUR : taille de la zone d'entr\xE9"
        "e non nulle, alors aucune donn\xE9"
        "e attendue.\n"}) {
    EXPECT_TRUE(trace.contient(texte)) << texte;
  }
}

TEST_F(Recherche, version) {
  EXPECT_EQ(lireVersion().zone,
            (Zone{{3600, {"0121", "00081", "", "EXEMPLE001", "Nomenclature d'exemple", "00001", "0113"}}}));
}

TEST_F(Recherche, leDumpVaDansLaTraceSeule) {
  EXPECT_EQ(consulter("CCAM_7", "20260115", {{3010, {"HBFD008"}}}).code, NOX_CR_OK);
  const TraceEssai trace({1});
  EXPECT_EQ(consulter("dUMP", "20260115", {{1, {"ignored"}}}), (Reponse{NOX_CR_OK, {}, false}));
  const std::string texte = trace.texte();
  EXPECT_NE(texte.find("DUMP DES DONNEES DU REFERENTIEL"), std::string::npos);
  EXPECT_NE(texte.find("Code structure : \"HBFD008"), std::string::npos) << "acts in memory are dumped too";
  EXPECT_EQ(texte.find("cr = 0x0000", texte.find("FIN DUMP")), std::string::npos);
}

}  // namespace
