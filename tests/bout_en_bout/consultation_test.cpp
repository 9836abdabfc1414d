// Every consultation, zone to zone, on the example reference: the expected answers are read off its sources.
#include <algorithm>
#include <set>

#include "bibliotheque_essai.h"

using namespace essai;

namespace {

using Consultation = AvecReference;

constexpr const char* JANVIER = "20260115";

Zone codes(std::vector<std::string> valeurs) { return {{3110, std::move(valeurs)}}; }
Zone libelles(std::vector<std::pair<std::string, std::string>> paires) {
  Zone zone;
  for (auto& [code, libelle] : paires) {
    zone.push_back({3118, {code, libelle}});
  }
  return zone;
}
Zone acte(const std::string& code) { return {{3010, {code}}}; }
Zone activite(const std::string& code, const std::string& numero = "1") { return {{3011, {code, numero}}}; }
Zone phase(const std::string& code, const std::string& numero = "1", const std::string& rang = "0") {
  return {{3012, {code, numero, rang}}};
}
Zone modificateur(const std::string& code) { return {{3015, {code}}}; }

struct Question {
  const char* identifiant;
  Zone entree;
  Zone attendue;
  const char* date = JANVIER;
};

TEST_F(Consultation, repondAToutIdentifiant) {
  const Question questions[] = {
      {"CCAM_1", acte("HBFD008"), {{3116, {"O"}}}},
      {"CCAM_1", acte("ZZZZ999"), {{3116, {"N"}}}},
      {"CCAM_2", acte("HHFA002"), libelles({{"1", "Geste principal"}, {"4", "Anesthésie"}})},
      {"CCAM_3", activite("HHFA002"), libelles({{"1", "Voie ouverte"}, {"2", "Vidéochirurgie"}})},
      {"CCAM_3", activite("HBFD008"), {}},
      {"CCAM_4a", activite("HEAE001"), {{3111, {"00002"}}}},
      {"CCAM_5", acte("HBFD008"), codes({"HBFD008"})},
      {"CCAM_6", activite("HBFD008"),
       libelles({{"9", "Soins conservateurs des jeunes patients"},
                 {"F", "Acte en urgence un dimanche ou un jour férié"},
                 {"N", "Soins dentaires d'un enfant"},
                 {"U", "Acte en urgence la nuit"}})},
      {"CCAM_7", acte("HBFD008"), {{3112, {"Dévitalisation d'une molaire"}}}},
      {"CCAM_8", acte("HBFD008"), {{3112, {"Ablation de la pulpe vivante d'une molaire permanente"}}}},
      {"CCAM_9", acte("HHFA002"), libelles({{"1", "Procédure"}})},
      {"CCAM_9_1", acte("DDQH009"), codes({"DDAF006"})},
      {"CCAM_9_1", acte("HBFD008"), codes({})},
      {"CCAM_10",
       acte("LBLD066"),
       {{3112, {"Prise en charge des absences multiples de dents liées à une maladie rare."}}}},
      {"CCAM_10", acte("HBFD008"), {{3112, {""}}}},
      {"CCAM_11", acte("HBJD001"), {{3112, {"Deux séances au plus par période de six mois."}}}},
      {"CCAM_12", activite("HHFA002"), libelles({{"02", "Chirurgie"}})},
      {"CCAM_13", activite("HHFA002"), codes({"ZZHA001"})},
      {"CCAM_14", acte("HBLD038"), codes({"HBLD036"})},
      {"CCAM_15", acte("JKHD001"), codes({"2"})},
      {"CCAM_16a",
       acte("HBFD008"),
       {{3119, {"Soins de la pulpe", ""}},
        {3119, {"Bouche et dents", ""}},
        {3119, {"Appareil digestif", "De la bouche à l'anus, foie et pancréas compris."}}}},
      {"CCAM_18", acte("HBLD036"), {{3113, {"201406010000"}}}},
      {"CCAM_19", acte("HBLD036"), {{3113, {"201903310000"}}}},
      {"CCAM_19", acte("HBFD008"), {{3113, {""}}}},
      {"CCAM_20", activite("ZBQK002"), codes({"RMO07"})},
      {"CCAM_22", acte("LBLD066"), libelles({{"3", "Acte remboursable ou non suivant les circonstances"}})},
      {"CCAM_24", acte("HFFC018"), {{3116, {"O"}}}},
      {"CCAM_24", acte("HBFD008"), {{3116, {"N"}}}},
      {"CCAM_25", acte("HBFD008"),
       libelles({{"5", "Ne peut être exonéré par la règle du seuil"},
                 {"7", "Exonéré dans un dispositif de prévention"}})},
      {"CCAM_30_1", acte("HBBD005"), libelles({{"AS", "Maladie"}, {"PM", "Prévention maladie"}})},
      {"CCAM_32a", activite("HEAE001"), {{3110, {"04", "04", "41"}}, {3110, {"07", "08"}}}},
      {"CCAM_37", phase("HBFD008"), {{3117, {"10400"}}}},
      {"CCAM_37", phase("HBFD008", "1", ""), {{3117, {"10400"}}}},
      {"CCAM_37", phase("HEAE001", "1", "2"), {{3117, {"9600"}}}},
      {"CCAM_39", phase("HBGD038"), {{3117, {"2400"}}}},
      {"CCAM_39", phase("HBFD008"), {{3117, {"000"}}}},
      {"CCAM_40a", activite("ZBQK002"), {{3116, {"O"}}}},
      {"CCAM_40a", activite("HBFD008"), {{3116, {"N"}}}},
      {"CCAM_41", acte("HBFD008"), libelles({{"N", "Frais de déplacement non autorisés"}})},
      {"CCAM_42", activite("HHFA002"), libelles({{"ADC", "Actes de chirurgie"}})},
      {"CCAM_43a", phase("HBGD038"), {{3116, {"O"}}, {3111, {"00004"}}}},
      {"CCAM_43a", phase("HHFA002"), {{3116, {"N"}}, {3111, {"00000"}}}},
      {"CCAM_44", phase("HBLD036"), codes({}), "20190331"},
      {"CCAM_45", phase("HBBD005"), {{3115, {"0A0J"}}}},
      {"CCAM_46", phase("HBBD005"), {{3115, {"15A0J"}}}},
      {"CCAM_47a", {{3013, {"971", "HBFD008", "1", "0"}}}, {{3114, {"1050"}}}},
      {"CCAM_47a", {{3013, {"974", "HBFD008", "1", "0"}}}, {{3114, {"1080"}}}},
      {"TB02_1", {{3014, {"3"}}}, {{3114, {"0750"}}}},
      {"TB02_2",
       {},
       libelles({{"1", "Acte conservé à taux plein"},
                 {"2", "Acte à demi-tarif"},
                 {"3", "Acte aux trois quarts du tarif, lésions traumatiques multiples"},
                 {"4", "Acte à taux plein, cumul admis par la nomenclature"},
                 {"5", "Acte à taux plein, réalisé à un autre moment de la journée"}})},
      {"TB06_1", modificateur("9"), {{3115, {"1A0J"}}}},
      {"TB06_1", modificateur("N"), {{3115, {"3A0J"}}}, "20170101"},
      {"TB06_2", modificateur("9"), {{3115, {"26A0J"}}}},
      {"TB07_1", {{3017, {"972"}}}, {{3117, {"13800"}}}},
      {"TB07_1", {{3017, {"974"}}}, {{3117, {"14500"}}}},
      {"TB08_1", {{3017, {"671"}}}, {{3116, {"O"}}}, "20261226"},
      {"TB08_1", {{3017, {"974"}}}, {{3116, {"N"}}}, "20261226"},
      {"TB08_1", {{3017, {"974"}}}, {{3116, {"O"}}}, "20260714"},
      {"TB09_1", {{3016, {"9", "F"}}}, {{3116, {"O"}}}},
      {"TB09_1", {{3016, {"9", "K"}}}, {{3116, {"N"}}}},
      {"TB10_1", modificateur("M"), {{3116, {"O"}}}},
      {"TB10_2", modificateur("M"), {{3116, {"N"}}}},
      {"TB11_1", modificateur("M"), {{3117, {"2688"}}}},
      {"TB11_2", modificateur("K"), {{3114, {"1200"}}}},
      {"TB11_2", modificateur("K"), {{3114, {"1115"}}}, "20170614"},
      {"TB12_1", {}, {{3117, {"1000"}}}},
      {"TB12_2", {}, {{3114, {"0160"}}}},
      {"TB15_1", modificateur("K"), codes({"K"})},
      {"TB15_2", {}, {{3111, {"00002"}}}},
      {"TB15_2", {}, {{3111, {"00001"}}}, "20161231"},
      {"TB19_1", {}, {{3111, {"00003"}}}},
  };
  std::set<std::string> vus;
  for (const Question& question : questions) {
    SCOPED_TRACE(testing::Message() << question.identifiant << " " << question.date);
    vus.insert(question.identifiant);
    EXPECT_EQ(consulter(question.identifiant, question.date, question.entree),
              (Reponse{NOX_CR_OK, question.attendue, true}));
  }

  // Long lists, by their shape and a sample.
  const auto contient = [&](const char* identifiant, const Groupe& groupe, unsigned minimum) {
    vus.insert(identifiant);
    const Reponse reponse = consulter(identifiant, JANVIER);
    EXPECT_EQ(reponse.code, unsigned{NOX_CR_OK}) << identifiant;
    EXPECT_GE(reponse.zone.size(), minimum) << identifiant;
    EXPECT_NE(std::find(reponse.zone.begin(), reponse.zone.end(), groupe), reponse.zone.end()) << identifiant;
    for (const Groupe& autre : reponse.zone) {
      EXPECT_EQ(autre.identifiant, 3118U) << "no local change, so no date";
    }
  };
  contient("TB11_3", {3118, {"K", "Majoration des praticiens à honoraires maîtrisés"}}, 15);
  contient("TB13_1", {3118, {"ADC", "Actes de chirurgie"}}, 10);
  contient("TB20_1", {3118, {"3", "Acte aux trois quarts du tarif, lésions traumatiques multiples"}}, 5);
  const Reponse motsCles = consulter("TB21_1", JANVIER);
  vus.insert("TB21_1");
  ASSERT_EQ(motsCles.zone.size(), 1U);
  EXPECT_EQ(motsCles.zone[0].identifiant, 3119U);
  EXPECT_TRUE(std::is_sorted(motsCles.zone[0].champs.begin(), motsCles.zone[0].champs.end()));
  for (const std::string& mot : motsCles.zone[0].champs) {
    EXPECT_EQ(rechercherMotCle(mot).code, unsigned{NOX_CR_OK}) << mot;
  }
  EXPECT_EQ(vus.size(), 55U);
}

TEST_F(Consultation, tientLesBornesDesDates) {
  const struct {
    Zone entree;
    const char* date;
    unsigned code;
    const char* prix;
  } cas[] = {
      // Price histories of 1 June 2014, 1 April 2019 and 1 April 2025.
      {phase("HBFD008"), "20140531", 0xD003, ""},
      {phase("HBFD008"), "20140601", 0, "8194"},
      {phase("HBFD008"), "20190331", 0, "8194"},
      {phase("HBFD008"), "20190401", 0, "9399"},
      {phase("HBFD008"), "20250331", 0, "9399"},
      {phase("HBFD008"), "20250401", 0, "10400"},
      {phase("HBFD008"), "99991231", 0, "10400"},
      // Life from 1 June 2014 to 31 March 2019.
      {phase("HBLD036"), "20140531", 0xD003, ""},
      {phase("HBLD036"), "20190331", 0, "10750"},
      {phase("HBLD036"), "20190401", 0xD003, ""},
  };
  for (const auto& [entree, date, code, prix] : cas) {
    SCOPED_TRACE(testing::Message() << entree[0] << " " << date);
    const Reponse attendue = code == 0 ? Reponse{0, {{3117, {prix}}}, true} : Reponse{code, {}, false};
    EXPECT_EQ(consulter("CCAM_37", date, entree), attendue);
  }
  // Creation and end dates are told whatever the date of the question.
  EXPECT_EQ(consulter("CCAM_18", "19000101", acte("HBLD036")).zone, (Zone{{3113, {"201406010000"}}}));
  // Dated lines include both bounds.
  EXPECT_EQ(consulter("TB07_1", "20110228", {{3017, {"971"}}}).zone, (Zone{{3117, {"9100"}}}));
  EXPECT_EQ(consulter("TB07_1", "20110301", {{3017, {"971"}}}).zone, (Zone{{3117, {"12000"}}}));
  EXPECT_EQ(consulter("TB07_1", "20050324", {{3017, {"971"}}}).code, 0xD003U);
}

TEST_F(Consultation, refuseLesQuestionsMalPosees) {
  const struct {
    const char* identifiant;
    Zone entree;
    unsigned code;
  } cas[] = {
      {"CCAM_7", acte("ZZZZ999"), 0xD002},
      {"CCAM_18", acte("ZZZZ999"), 0xD002},
      {"CCAM_37", phase("HBFD008", "2"), 0xD002},
      {"CCAM_37", phase("HBFD008", "1", "3"), 0xD002},
      {"CCAM_47a", {{3013, {"975", "HBFD008", "1", "0"}}}, 0xD006},
      {"CCAM_47a", {{3013, {"975", "ZZZZ999", "1", "0"}}}, 0xD006},
      {"TB07_1", {{3017, {"975"}}}, 0xD006},
      {"TB07_1", {{3017, {"97"}}}, 0xD006},
      {"TB08_1", {{3017, {"999"}}}, 0xD002},
      {"TB02_1", {{3014, {"9"}}}, 0xD003},
      {"TB02_1", {{3014, {"X"}}}, 0xD002},
      {"TB11_1", modificateur("X"), 0xD002},
  };
  for (const auto& [identifiant, entree, code] : cas) {
    SCOPED_TRACE(testing::Message() << identifiant << " " << entree[0]);
    EXPECT_EQ(consulter(identifiant, JANVIER, entree), (Reponse{code, {}, false}));
  }
}

TEST_F(Consultation, messages) {
  const TraceEssai trace({1});
  consulter("CCAM_37", "20140531", phase("HBLD036"));
  consulter("CCAM_37", "20190401", phase("HBLD036"));
  consulter("CCAM_47a", JANVIER, {{3013, {"975", "HBFD008", "1", "0"}}});
  consulter("CCAM_2", JANVIER, acte("HBFD008"));
  for (const char* texte : {"NOX_ConsulterDonnee : identifiant = CCAM_37, dateReference = 20140531\n",
                            "FonctionsModifier::controlerDateReference\n",
                            "Date de référence antérieure à la date de création de l'acte\n",
                            "Date de référence postérieure à la date de fin de l'acte\n",
                            "ERREUR: Le numéro de caisse PS (975) n'est pas un numéro de DOM.\n",
                            "FonctionsConsulter::CCAM_2\n", "cr = 0xD003\n", "cr = 0xD006\n"}) {
    EXPECT_TRUE(trace.contient(texte)) << texte;
  }
}

}  // namespace
