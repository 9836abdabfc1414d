// Table lines: their bytes, the values they refuse, the tables that hold them.
#include "fichier/lecteur.h"
#include "referent/fabrique_reference.h"

using namespace noxlux;
using namespace essai;

namespace {

// Opens a file that holds these bytes.
class FichierEssai {
 public:
  explicit FichierEssai(const Octets& octets) {
    repertoire_.ecrire("f", octets);
    fichier_ = std::fopen(repertoire_.chemin("f").c_str(), "rb");
  }
  ~FichierEssai() { std::fclose(fichier_); }
  FichierEssai(const FichierEssai&) = delete;
  FichierEssai& operator=(const FichierEssai&) = delete;
  Lecteur lecteur() { return Lecteur(fichier_); }

 private:
  Repertoire repertoire_;
  std::FILE* fichier_;
};

Octets ecrireTable(const Table& table) {
  return octetsEcrits([&](Ecrivain& ecrivain) { return table.ecrireTable(ecrivain); });
}

Octets assembler(std::initializer_list<std::string_view> morceaux) {
  Octets octets;
  for (const std::string_view morceau : morceaux) {
    octets.insert(octets.end(), morceau.begin(), morceau.end());
  }
  return octets;
}

using namespace std::string_view_literals;
constexpr std::string_view DATE_DEBUT = "\x07\xD5\x03\x01"sv;  // 2005-03-01
constexpr std::string_view DATE_OUVERTE = "\0\0\0\0"sv;
constexpr std::string_view ZERO = "\0\0\0\0\0\0\0\0"sv;
constexpr std::string_view UN = "\0\0\0\0\0\0\0\x01"sv;
constexpr std::string_view CENTIEMES_99 = "\0\0\0\0\0\0\xF9\x90"sv;
constexpr std::string_view MOINS_UN = "\x10\0\0\0\0\0\0\x01"sv;
constexpr std::string_view VIDES = "\xFF\xFF\0\0\xFF\xFF\0\0\xFF\xFF\0\0\xFF\xFF\0\0\xFF\xFF\0\0"sv;

TEST(Lignes, valeursRefusees) {
  const struct {
    const char* identifiant;
    Octets octets;
    const char* message;  // null: accepted
  } CAS[] = {
      {"022", assembler({"A", VIDES}), nullptr},
      {"022", assembler({" ", VIDES}),
       "ERREUR : code modificateur incorrect, Code retour Modificateur::lireLigne : 0xD640"},
      {"022", {}, "ERREUR de lecture code modificateur, Code retour Modificateur::lireLigne : 0xD640"},
      {"052", {}, "ERREUR de lecture de la valeur, Code retour ValeurAutorisee::lireLigne : 0xD640"},
      {"052", assembler({"\0"sv}), nullptr},
      {"026", assembler({DATE_DEBUT, DATE_OUVERTE, ZERO, UN}), nullptr},
      {"026", assembler({DATE_DEBUT, DATE_OUVERTE, ZERO, CENTIEMES_99}),
       "ERREUR : le coefficient modificateur doit etre superieur ou egal a 1, Code retour "
       "HistoriqueValeurModificateur::lireLigne"},
      {"040", assembler({"K", DATE_DEBUT, ZERO, CENTIEMES_99}),
       "ERREUR : le coefficient modificateur doit etre superieur ou egal a 1, Code retour "
       "ModificationModificateur::lireLigne"},
      {"026", assembler({DATE_DEBUT, DATE_OUVERTE, MOINS_UN, UN}),
       "ERREUR : le forfait modificateur doit etre superieur ou egal a zero"},
      {"026", assembler({DATE_OUVERTE, DATE_OUVERTE, ZERO, UN}), "ERREUR : date debut incorrect"},
      {"026", assembler({DATE_DEBUT, "\x07\xD5\x02\x1E"sv, ZERO, UN}), "ERREUR : date de fin incorrect"},
      {"004", assembler({DATE_DEBUT, DATE_OUVERTE, MOINS_UN}), "ERREUR : coefficient incorrect"},
      {"049", assembler({"\0\x01\0A\0\0\0\0"sv}), "ERREUR : nom du super-groupe incorrect"},
      {"049", assembler({"\0\x01N\0\0\0\0\0\0"sv}), nullptr},
      {"049", assembler({"\0\x01N\0a\0\0\0\0"sv}), "ERREUR : code fonction incorrect"},
      {"030", assembler({"HBLD038      \0\0\0\0"sv}), "ERREUR : masque des champs concernes incorrect"},
      {"030", assembler({"HBLD038      \0\0\0\x80"sv}), nullptr},
      {"030", assembler({"HB D038      \0\0\0\x80"sv}), "ERREUR : code acte incorrect"},
      {"030", assembler({"             \0\0\0\x80"sv}), "ERREUR : code acte incorrect"},
      {"005", assembler({"4 \0\0\0\0"sv}), nullptr},
      {"005", assembler({" 4\0\0\0\0"sv}), "ERREUR : code specialite incorrect"},
      {"025", assembler({DATE_DEBUT, DATE_OUVERTE, "ON"}), nullptr},
      {"025", assembler({DATE_DEBUT, DATE_OUVERTE, "O "}), "ERREUR : top presence multiple incorrect"},
      {"029", assembler({"DENT"}), "ERREUR de lecture synonyme"},  // no end of text
      {"058", assembler({"DENT\0DENT\0\0\x01\0\0\0\x02\0\0\0\x05\0\x01"sv}), nullptr},
  };
  for (const auto& cas : CAS) {
    SCOPED_TRACE(testing::Message() << cas.identifiant << " : " << (cas.message ? cas.message : "accepte"));
    FichierEssai fichier(cas.octets);
    Lecteur lecteur = fichier.lecteur();
    const std::unique_ptr<LignesTable> lignes =
        creerLignes(static_cast<unsigned>(std::stoi(cas.identifiant)));
    lignes->creer(1);
    Ecoute ecoute;
    const CodeRetour cr = lignes->lireLigne(0, lecteur);
    EXPECT_EQ(cr, cas.message == nullptr ? 0 : 0xD640);
    if (cas.message != nullptr) {
      EXPECT_TRUE(ecoute.contient(cas.message)) << ecoute.texte();
    }
  }
}

TEST(Lignes, pannePlaceeDansLeFichier) {
  FichierEssai fichier(assembler({"PROD500   PROD510   prod520   "}));
  Lecteur lecteur = fichier.lecteur();
  Ecoute ecoute;
  EXPECT_EQ(Table("048", 3, 0, true).lireTable(lecteur), 0xD640);
  EXPECT_TRUE(ecoute.contient("ERREUR : probleme de lecture de la ligne d'indice 2"));
  EXPECT_TRUE(ecoute.contient("POSITION de l'erreur dans le fichier : 0x0000001E"));
}

TEST(Lignes, octetsEcrits) {
  std::vector<MotCle> mots(1);
  mots[0] = {texte("DENT"), texte("D"), {0x01020304, 5}, {6, 0x0708}};
  EXPECT_EQ(ecrireTable(Table(mots)), assembler({"058\0\0\0\x01\0\0\0\x13"
                                                 "DENT\0D\0\x01\x02\x03\x04\0\x05\0\0\0\x06\x07\x08"sv}));
  std::vector<ModificationPrixUnitaire> prix = {{CodeActe("HBLD038"), '1', '0', {2026, 10, 31}, 38.35}};
  EXPECT_EQ(ecrireTable(Table(prix)), assembler({"035\0\0\0\x01\0\0\0\x1BHBLD038      10\x07\xEA\x0A\x1F"sv,
                                                 "\0\0\0\0\0\x03\x8F\x35"sv}));
}

TEST(Tables, classement) {
  const struct {
    const char* identifiant;
    EtatTable reference;
    EtatTable modification;
  } CAS[] = {{"000", ETAT_CHARGEE, ETAT_INCONNUE},     {"014", ETAT_CHARGEE, ETAT_INCONNUE},
             {"015", ETAT_INCONNUE, ETAT_INCONNUE},    {"028", ETAT_INCONNUE, ETAT_INCONNUE},
             {"030", ETAT_NON_CHARGEE, ETAT_INCONNUE}, {"031", ETAT_NON_CHARGEE, ETAT_INCONNUE},
             {"034", ETAT_CHARGEE, ETAT_INCONNUE},     {"035", ETAT_INCONNUE, ETAT_CHARGEE},
             {"043", ETAT_INCONNUE, ETAT_CHARGEE},     {"044", ETAT_CHARGEE, ETAT_INCONNUE},
             {"058", ETAT_NON_CHARGEE, ETAT_INCONNUE}, {"059", ETAT_CHARGEE, ETAT_INCONNUE},
             {"060", ETAT_INCONNUE, ETAT_INCONNUE},    {"999", ETAT_INCONNUE, ETAT_INCONNUE}};
  for (const auto& cas : CAS) {
    EXPECT_EQ(Table(cas.identifiant, 0, 0, true).etatTable(), cas.reference) << cas.identifiant;
    EXPECT_EQ(Table(cas.identifiant, 0, 0, false).etatTable(), cas.modification) << cas.identifiant;
  }
}

TEST(Tables, dump) {
  Ecoute ecoute;
  Table("021", 0, 0, true).dump(2);
  Table(std::vector<AssociationNonPrevue>{{'1', {4, 2}}}).dump(2);
  EXPECT_TRUE(ecoute.contient("Identifiant : \"021\"\nNombre de lignes  : 0\n\n"));
  EXPECT_TRUE(ecoute.contient("Identifiant : \"001\"\nNombre de lignes  : 1\n\nLIGNE D'INDICE 0\n"));
}

}  // namespace
