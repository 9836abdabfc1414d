// Local changes: seen from their effect date on, saved, loaded again, cancelled.
#include <algorithm>

#include "bibliotheque_essai.h"

using namespace essai;

namespace {

using Modification = AvecReference;

constexpr const char* VEILLE = "20260131";
constexpr const char* EFFET = "20260201";
const Groupe DATE_EFFET = {3130, {"202602010000"}};

// One value that may be changed: how to change it, how to cancel it, and how it reads before and after.
struct Valeur {
  const char* identifiant;
  Zone changement;
  const char* annulation;
  Zone cle;
  Groupe avant;
  Groupe apres;
};

const std::vector<Valeur>& valeurs() {
  static const std::vector<Valeur> toutes = {
      {"CCAM_37",
       {{3201, {"HBFD008", "1", "0", "11050"}}},
       "CCAM_37",
       {{3012, {"HBFD008", "1", "0"}}},
       {3117, {"10400"}},
       {3117, {"11050"}}},
      {"CCAM_39",
       {{3201, {"HBGD038", "1", "", "3000"}}},
       "CCAM_39",
       {{3012, {"HBGD038", "1", "0"}}},
       {3117, {"2400"}},
       {3117, {"3000"}}},
      {"CCAM_42",
       {{3202, {"HHFA002", "1", "ADI"}}},
       "CCAM_42",
       {{3011, {"HHFA002", "1"}}},
       {3118, {"ADC", "Actes de chirurgie"}},
       {3118, {"ADI", "Actes d'imagerie hors échographie"}}},
      {"CCAM_47a",
       {{3203, {"973", "HBFD008", "1", "0", "1200"}}},
       "CCAM_47a",
       {{3013, {"973", "HBFD008", "1", "0"}}},
       {3114, {"1080"}},
       {3114, {"1200"}}},
      {"TB02_1", {{3204, {"2", "600"}}}, "TB02_1", {{3014, {"2"}}}, {3114, {"0500"}}, {3114, {"0600"}}},
      {"TB07_1",
       {{3205, {"972", "15000"}}},
       "TB07_1",
       {{3017, {"972"}}},
       {3117, {"13800"}},
       {3117, {"15000"}}},
      {"TB11_1", {{3206, {"M", "3000"}}}, "TB11", {{3015, {"M"}}}, {3117, {"2688"}}, {3117, {"3000"}}},
      {"TB11_2", {{3207, {"K", "1250"}}}, "TB11", {{3015, {"K"}}}, {3114, {"1200"}}, {3114, {"1250"}}},
      {"TB12_1", {{3208, {"1500"}}}, "TB12", {}, {3117, {"1000"}}, {3117, {"1500"}}},
  };
  return toutes;
}

void attendreAvant(const Valeur& valeur, const char* date) {
  EXPECT_EQ(consulter(valeur.identifiant, date, valeur.cle), (Reponse{NOX_CR_OK, {valeur.avant}, true}));
}
void attendreApres(const Valeur& valeur) {
  attendreAvant(valeur, VEILLE);
  EXPECT_EQ(consulter(valeur.identifiant, EFFET, valeur.cle),
            (Reponse{NOX_CR_OK, {valeur.apres, DATE_EFFET}, true}));
}

TEST_F(Modification, changeSauveRelueEtAnnulee) {
  for (const Valeur& valeur : valeurs()) {
    SCOPED_TRACE(valeur.identifiant);
    attendreAvant(valeur, EFFET);
    EXPECT_EQ(annuler(valeur.annulation, valeur.cle), NOX_CR_NON_MODIFIE);
    EXPECT_EQ(modifier(valeur.identifiant, EFFET, valeur.changement), NOX_CR_OK);
    attendreApres(valeur);
  }
  ASSERT_EQ(NOX_SauvegarderReferentiel("tarifs de février"), NOX_CR_OK);
  const Zone version = lireVersion().zone;
  ASSERT_EQ(version.size(), 1U);
  EXPECT_EQ(version[0].champs[4], "tarifs de février");
  EXPECT_EQ(version[0].champs[5], "00002");
  EXPECT_NE(version[0].champs[2], "") << "a saved reference has a date of modification";

  ASSERT_EQ(recharger(), NOX_CR_OK);
  EXPECT_EQ(lireVersion().zone, version);
  for (const Valeur& valeur : valeurs()) {
    SCOPED_TRACE(valeur.identifiant);
    attendreApres(valeur);
  }
  for (const Valeur& valeur : valeurs()) {
    SCOPED_TRACE(valeur.identifiant);
    EXPECT_EQ(annuler(valeur.annulation, valeur.cle), NOX_CR_OK);
    attendreAvant(valeur, EFFET);
    EXPECT_EQ(annuler(valeur.annulation, valeur.cle), NOX_CR_NON_MODIFIE);
  }
  // Cancellations are changes to be saved too.
  ASSERT_EQ(NOX_SauvegarderReferentiel(nullptr), NOX_CR_OK);
  ASSERT_EQ(recharger(), NOX_CR_OK);
  for (const Valeur& valeur : valeurs()) {
    SCOPED_TRACE(valeur.identifiant);
    attendreAvant(valeur, EFFET);
  }
  EXPECT_EQ(lireVersion().zone[0].champs[4], "tarifs de février")
      << "a save without comment keeps the last one";
}

TEST_F(Modification, ceQuiNEstPasSauveEstPerdu) {
  const Valeur& valeur = valeurs().front();
  ASSERT_EQ(modifier(valeur.identifiant, EFFET, valeur.changement), NOX_CR_OK);
  ASSERT_EQ(recharger(), NOX_CR_OK);
  attendreAvant(valeur, EFFET);
}

TEST_F(Modification, plusieursChangementsDUneValeur) {
  const auto prix = [](const char* date) {
    return consulter("CCAM_37", date, {{3012, {"HBFD008", "1", "0"}}}).zone;
  };
  const auto changer = [](const char* date, const char* montant) {
    return modifier("CCAM_37", date, {{3201, {"HBFD008", "1", "0", montant}}});
  };
  EXPECT_EQ(changer("20260201", "10500"), NOX_CR_OK);
  EXPECT_EQ(changer("20260201", "10600"), NOX_CR_OK) << "the effect date of the newest history is accepted";
  EXPECT_EQ(changer("20260301", "10700"), NOX_CR_OK);
  EXPECT_EQ(changer("20260228", "1"), NOX_CR_DATE_EFFET);
  EXPECT_EQ(prix("20260131"), (Zone{{3117, {"10400"}}}));
  EXPECT_EQ(prix("20260228"), (Zone{{3117, {"10600"}}, {3130, {"202602010000"}}}));
  EXPECT_EQ(prix("20260301"), (Zone{{3117, {"10700"}}, {3130, {"202603010000"}}}));
  EXPECT_EQ(annuler("CCAM_37", {{3012, {"HBFD008", "1", "0"}}}), NOX_CR_OK);
  EXPECT_EQ(prix("20260301"), (Zone{{3117, {"10400"}}}));
}

TEST_F(Modification, nouveauCodeDeRegroupement) {
  const Zone nouveau = {{3210, {"ZZ9", "Actes du cabinet"}}};
  const auto regroupements = [] { return consulter("TB13_1", EFFET).zone; };
  const Zone avant = regroupements();
  EXPECT_EQ(modifier("CCAM_42", EFFET, {{3202, {"HHFA002", "1", "ZZ9"}}}), NOX_CR_REGROUPEMENT_INCONNU);
  ASSERT_EQ(modifier("TB13_1", EFFET, nouveau), NOX_CR_OK);
  EXPECT_EQ(modifier("TB13_1", EFFET, nouveau), NOX_CR_REGROUPEMENT_EXISTANT);
  EXPECT_EQ(modifier("TB13_1", EFFET, {{3210, {"ADC", "x"}}}), NOX_CR_REGROUPEMENT_EXISTANT);
  EXPECT_EQ(modifier("TB13_1", EFFET, {{3210, {"KCC", "x"}}}), NOX_CR_OBLIGATION_EXISTANTE);

  // The code is told with the date it was added at, right behind it; before that date it is not there.
  Zone apres = regroupements();
  const auto ajoute = std::find(apres.begin(), apres.end(), Groupe{3118, {"ZZ9", "Actes du cabinet"}});
  ASSERT_NE(ajoute, apres.end());
  ASSERT_NE(ajoute + 1, apres.end());
  EXPECT_EQ(ajoute[1], DATE_EFFET);
  apres.erase(ajoute, ajoute + 2);
  EXPECT_EQ(apres, avant);
  EXPECT_EQ(consulter("TB13_1", VEILLE).zone, avant);

  EXPECT_EQ(annuler("TB13_1"), NOX_CR_OK);
  EXPECT_EQ(regroupements(), avant);
  EXPECT_EQ(annuler("TB13_1"), NOX_CR_NON_MODIFIE);
}

TEST_F(Modification, unRefusNeChangeRien) {
  const struct {
    const char* identifiant;
    const char* date;
    Zone entree;
    unsigned code;
  } cas[] = {
      {"CCAM_37", "20140531", {{3201, {"HBFD008", "1", "0", "100"}}}, 0xD004},
      {"CCAM_37", "20250331", {{3201, {"HBFD008", "1", "0", "100"}}}, 0xD004},
      {"CCAM_37", "20190401", {{3201, {"HBLD036", "1", "0", "100"}}}, 0xD004},
      {"CCAM_37", EFFET, {{3201, {"ZZZZ999", "1", "0", "100"}}}, 0xD002},
      {"CCAM_37", EFFET, {{3201, {"HBFD008", "2", "0", "100"}}}, 0xD002},
      {"CCAM_37", EFFET, {{3201, {"HBFD008", "1", "5", "100"}}}, 0xD002},
      {"CCAM_37", EFFET, {{3201, {"HBFD008", "1", "0", "1,00"}}}, 0x9004},
      {"CCAM_37", EFFET, {{3201, {"HBFD008", "1", "0"}}}, 0xA801},
      {"CCAM_42", "20140531", {{3202, {"HBFD008", "1", "ADC"}}}, 0xD004},
      {"CCAM_47a", EFFET, {{3203, {"976", "HBFD008", "1", "0", "1100"}}}, 0xD006},
      {"TB07_1", EFFET, {{3205, {"976", "15000"}}}, 0xD006},
      {"TB07_1", "20110228", {{3205, {"972", "15000"}}}, 0xD004},
      {"TB02_1", EFFET, {{3204, {"X", "600"}}}, 0xD002},
      {"TB11_1", EFFET, {{3206, {"X", "600"}}}, 0xD002},
      {"TB11_2", EFFET, {{3207, {"K", "999"}}}, 0x9002},
  };
  for (const auto& [identifiant, date, entree, code] : cas) {
    SCOPED_TRACE(testing::Message() << identifiant << " " << date << " " << entree[0]);
    EXPECT_EQ(modifier(identifiant, date, entree), code);
  }
  EXPECT_EQ(annuler("CCAM_47a", {{3013, {"976", "HBFD008", "1", "0"}}}), NOX_CR_CAISSE_NON_DOM);
  EXPECT_EQ(annuler("TB07_1", {{3017, {"976"}}}), NOX_CR_CAISSE_NON_DOM);
  for (const Valeur& valeur : valeurs()) {
    SCOPED_TRACE(valeur.identifiant);
    attendreAvant(valeur, EFFET);
    EXPECT_EQ(annuler(valeur.annulation, valeur.cle), NOX_CR_NON_MODIFIE);
  }
  // A change on the day of creation, or on the last day, is accepted.
  EXPECT_EQ(modifier("CCAM_37", "20190331", {{3201, {"HBLD036", "1", "0", "100"}}}), NOX_CR_OK);
}

TEST_F(Modification, sauvegarde) {
  const auto existe = [this](const char* nom) { return std::filesystem::exists(dossier_.fichier(nom)); };
  EXPECT_EQ(NOX_SauvegarderReferentiel(nullptr), NOX_CR_OK);
  EXPECT_EQ(NOX_SauvegarderReferentiel(""), NOX_CR_OK);
  EXPECT_FALSE(existe("modifref.nox")) << "nothing changed, nothing to save";
  EXPECT_EQ(NOX_SauvegarderReferentiel(std::string(201, 'c').c_str()), NOX_CR_PARAMETRE_ENTREE);
  EXPECT_EQ(NOX_SauvegarderReferentiel(std::string(200, 'c').c_str()), NOX_CR_OK)
      << "a comment is worth a save";
  EXPECT_TRUE(existe("modifref.nox"));
  EXPECT_EQ(lireVersion().zone[0].champs[4], std::string(200, 'c'));

  // A save that fails leaves versions and changes as they are, to be saved later.
  const Valeur& valeur = valeurs().front();
  ASSERT_EQ(modifier(valeur.identifiant, EFFET, valeur.changement), NOX_CR_OK);
  const Reponse version = lireVersion();
  const std::string fichier = lireFichier(dossier_.fichier("modifref.nox"));
  std::filesystem::create_directory(dossier_.fichier("modiftmp.nox"));
  EXPECT_EQ(NOX_SauvegarderReferentiel("raté"), NOX_CR_ECRITURE_MODIF);
  EXPECT_EQ(lireVersion(), version);
  EXPECT_EQ(lireFichier(dossier_.fichier("modifref.nox")), fichier);
  std::filesystem::remove(dossier_.fichier("modiftmp.nox"));
  EXPECT_EQ(NOX_SauvegarderReferentiel(nullptr), NOX_CR_OK);
  EXPECT_NE(lireFichier(dossier_.fichier("modifref.nox")), fichier);
  attendreApres(valeur);

  const TraceEssai trace({3});
  EXPECT_EQ(NOX_SauvegarderReferentiel(nullptr), NOX_CR_OK);
  EXPECT_TRUE(trace.contient("Aucune modification à sauvegarder ; cr = 0x0000\n"));
  EXPECT_FALSE(trace.contient("\ncr = 0x0000\n"));
}

// The full check forces the lines whose prices were changed locally, and only while they are.
TEST_F(Modification, lesPrixLocauxMarquentLaFacture) {
  const Reponse refusee = controlerComplet(factureDentaire("11050"));
  EXPECT_EQ(refusee.code, unsigned{NOX_CR_CONTROLE_NIVEAU_1});
  EXPECT_TRUE(refusee.remise);
  EXPECT_EQ(controlerComplet(factureDentaire("10400")), (Reponse{NOX_CR_OK, {}, true}));

  ASSERT_EQ(modifier("CCAM_37", EFFET, {{3201, {"HBFD008", "1", "0", "11050"}}}), NOX_CR_OK);
  EXPECT_EQ(controlerComplet(factureDentaire("11050")), (Reponse{NOX_CR_OK, {{2000, {"00001", "R"}}}, true}));

  ASSERT_EQ(annuler("CCAM_37", {{3012, {"HBFD008", "1", "0"}}}), NOX_CR_OK);
  EXPECT_EQ(controlerComplet(factureDentaire("11050")), refusee);
  EXPECT_EQ(controlerComplet(factureDentaire("10400")), (Reponse{NOX_CR_OK, {}, true}));
}

}  // namespace
