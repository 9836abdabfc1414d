// The text headers: what is accepted, what is refused and how it is told.
#include "fichier/lecteur.h"
#include "referent/fabrique_reference.h"

using namespace noxlux;
using namespace essai;

namespace {

constexpr const char* ENTETE = "ABCD tablebin.nox 0121 V081z 20260101 0113 00007 ESSAIzzzz  libre\r\n\x1A";

CodeRetour lireEntete(const std::string& texte, EnteteReferentiel& entete, bool reference) {
  Repertoire repertoire;
  repertoire.ecrire("entete", Octets(texte.begin(), texte.end()));
  std::FILE* fichier = std::fopen(repertoire.chemin("entete").c_str(), "rb");
  Lecteur lecteur(fichier);
  const CodeRetour cr = reference ? lireEnteteRef(lecteur, entete) : lireEnteteModif(lecteur, entete);
  std::fclose(fichier);
  return cr;
}

std::string remplacer(std::size_t position, const std::string& par, const char* modele = ENTETE) {
  return std::string(modele).replace(position, par.size(), par);
}

TEST(Entete, reference) {
  const std::string complet = ENTETE;
  const struct {
    std::string texte;
    const char* message;  // null: accepted
  } CAS[] = {
      {complet, nullptr},
      {remplacer(22, "#"), nullptr},  // separators are not looked at
      {remplacer(18, "AB9Z"), nullptr},
      {remplacer(29, "abcdefgh"), nullptr},  // nor is the date
      {complet.substr(0, 60) + "\r\n\x1A", nullptr},
      {remplacer(17, "x"), "ERREUR: nom de fichier incorrect"},
      {remplacer(5, "tablebin.no "), "ERREUR: nom de fichier incorrect"},
      {remplacer(5, "TABLEBIN"), "ERREUR: nom de fichier incorrect"},
      {remplacer(18, "12  "), "ERREUR: numero de version du referentiel n est pas un code valide"},
      {remplacer(18, "012a"), "ERREUR: numero de version du referentiel n est pas un code valide"},
      {remplacer(23, "V0 1"), "ERREUR: numero de version de la base CCAM n est pas un code valide"},
      {remplacer(38, "01.3"), "ERREUR: numero de version minimum logicielle n est pas un code valide"},
      {remplacer(49, "es"), "ERREUR: numero de la variante n est pas un code valide"},
      {complet.substr(0, 3), "ERREUR: probleme lors de la lecture du CRC du fichier"},
      {complet.substr(0, 4), "ERREUR: probleme lors de la lecture du separateur"},
      {complet.substr(0, 10), "ERREUR: probleme lors de la lecture du nom du fichier"},
      {complet.substr(0, 20), "ERREUR: probleme lors de la lecture du numero de version du referentiel"},
      {complet.substr(0, 25), "ERREUR: probleme lors de la lecture du numéro de version de la base CCAM"},
      {complet.substr(0, 33), "ERREUR: probleme lors de la lecture de la date"},
      {complet.substr(0, 40), "ERREUR: probleme lors de la lecture de la version minimale"},
      {complet.substr(0, 45), "ERREUR: probleme lors de la lecture du numero de revision"},
      {complet.substr(0, 55), "ERREUR: probleme lors de la lecture de la variante"},
      {complet.substr(0, 63), "ERREUR: probleme lors de la lecture du commentaire"},
      {complet.substr(0, 67), "ERREUR de positionnement en fin d'entete"},
  };
  for (const auto& cas : CAS) {
    EnteteReferentiel entete;
    Ecoute ecoute;
    const CodeRetour cr = lireEntete(cas.texte, entete, true);
    EXPECT_EQ(cr, cas.message == nullptr ? 0 : 0xD640) << cas.texte;
    if (cas.message != nullptr) {
      EXPECT_TRUE(ecoute.contient(cas.message)) << ecoute.texte();
      EXPECT_EQ(entete.version.vue(), "") << "a refused header leaves nothing";
    }
  }
}

TEST(Entete, valeursGardees) {
  EnteteReferentiel entete;
  ASSERT_EQ(lireEntete(ENTETE, entete, true), 0);
  EXPECT_EQ(entete.versionBaseCCAM.entier(), "V081z");
  EXPECT_EQ(entete.variante.entier(), "ESSAIzzzz ");
  EXPECT_EQ(entete.commentaire, "libre");
  EXPECT_TRUE(entete.dateModification.estNulle());
  ASSERT_EQ(lireEntete("ABCD modifref.nox 0121 xxxxx 20261231 xxxx 99999 variante   \r\n\x1A", entete, false),
            0);
  EXPECT_EQ(entete.versionBaseCCAM.entier(), "V081z");
  EXPECT_EQ(entete.versionMinLogicielle.entier(), "0113");
  EXPECT_EQ(entete.variante.entier(), "variante  ");
  EXPECT_EQ(entete.numeroRevision, 99999 % 65536);
  EXPECT_EQ(entete.dateModification, (DateBrute{2026, 12, 31}));
  EXPECT_EQ(entete.commentaire, "");
}

TEST(Entete, modification) {
  const std::string complet = "0000 modifref.nox 0121 V0810 20260101 0000 00007 ESSAI      libre\r\n\x1A";
  const struct {
    std::string texte;
    CodeRetour cr;
  } CAS[] = {{complet, 0},
             {std::string(complet).replace(18, 4, "0122"), 0xD621},
             {std::string(complet).replace(5, 4, "MODI"), 0xD641},
             {complet.substr(0, 4), 0xD640},
             {complet.substr(0, 8), 0xD641},
             {complet.substr(0, 20), 0xD641},
             {complet.substr(0, 55), 0xD640},
             {complet.substr(0, 62), 0xD641},
             {complet.substr(0, 66), 0xD641}};
  for (const auto& cas : CAS) {
    EnteteReferentiel entete;
    entete.version = CodeFixe<4>("0121");
    EXPECT_EQ(lireEntete(cas.texte, entete, false), cas.cr) << cas.texte;
  }
}

}  // namespace
