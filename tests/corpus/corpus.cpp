// Prints a corpus of requests and their answers, in hexadecimal: every build of the library must print the
// same, byte for byte.
//
//   corpus DIRECTORY        directory of a compiled example reference, with its trailing '/'
//   corpus DIRECTORY trace  the same, with every module traced in full: the answers must not change
//   corpus DIRECTORY NUMBER prints nothing: asks all over again until so many requests are done, takes every
//                           change back each time, and fails when the memory in use grows
//
// The requests are all that the identifiers allow over the acts, codes and dates of the reference, then
// changes, then the same questions again.
#include <malloc.h>
#include <stdlib.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "bout_en_bout/zones_essai.h"
#include "noxlux/noxlux.h"

namespace {

using essai::Zone;

constexpr const char* DATES[] = {"20050325", "20140601", "20190401", "20260201"};
const std::vector<std::string> ACTIVITES = {"1", "2", "4"};
const std::vector<std::string> PHASES = {"0", "1", "2"};
const std::vector<std::string> CAISSES = {"000", "671", "971", "972", "973", "974", "975"};
const std::string CODES = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";

std::vector<std::string> actes;
unsigned long demandes = 0;
bool muet = false;

void imprimer(const void* octets, std::size_t taille) {
  for (std::size_t i = 0; i < taille; ++i) {
    std::printf("%02x", static_cast<const unsigned char*>(octets)[i]);
  }
}

// Prints what a request answered, and frees its zone.
void imprimerReponse(const char* nom, const std::string& entree, unsigned code, void* zone, unsigned taille) {
  ++demandes;
  if (!muet) {
    std::printf("%s ", nom);
    imprimer(entree.data(), entree.size());
    std::printf(" -> %04x ", code);
    imprimer(zone, taille);
    std::putchar('\n');
  }
  NOX_LibererZoneMem(zone);
}

void consulter(const char* identifiant, const char* date, const Zone& entree) {
  std::string octets = ecrire(entree);
  void* zone = nullptr;
  unsigned taille = 0;
  const unsigned code = NOX_ConsulterDonnee(identifiant, date, octets.data(),
                                            static_cast<unsigned>(octets.size()), &zone, &taille);
  imprimerReponse((std::string(identifiant) + " " + date).c_str(), octets, code, zone, taille);
}

void appliquer(const char* identifiant, const Zone& entree) {
  std::string octets = ecrire(entree);
  void* zone = nullptr;
  unsigned taille = 0;
  const unsigned code =
      NOX_AppliquerRegle(identifiant, octets.data(), static_cast<unsigned>(octets.size()), &zone, &taille);
  imprimerReponse(identifiant, octets, code, zone, taille);
}

void controler(const char* identifiant, const char* date, const Zone& entree) {
  std::string octets = ecrire(entree);
  char resultat = '?';
  const unsigned code =
      NOX_ControlerDonnees(identifiant, date, octets.data(), static_cast<unsigned>(octets.size()), &resultat);
  imprimerReponse((std::string(identifiant) + " " + date + " " + resultat).c_str(), octets, code, nullptr, 0);
}

void controlerComplet(const Zone& entree) {
  std::string octets = ecrire(entree);
  void* zone = nullptr;
  unsigned taille = 0;
  const unsigned code =
      NOX_ControleComplet(octets.data(), static_cast<unsigned>(octets.size()), &zone, &taille);
  imprimerReponse("ControleComplet", octets, code, zone, taille);
}

void modifier(const char* identifiant, const char* date, const Zone& entree) {
  std::string octets = ecrire(entree);
  const unsigned code =
      NOX_ModifierDonnee(identifiant, date, octets.data(), static_cast<unsigned>(octets.size()));
  imprimerReponse(identifiant, octets, code, nullptr, 0);
}

void listerActes() {
  void* zone = nullptr;
  unsigned taille = 0;
  NOX_RechercherParFiltre("", &zone, &taille);
  Zone lue;
  if (essai::lire({static_cast<const char*>(zone), taille}, lue) && !lue.empty()) {
    for (std::size_t i = 1; i < lue[0].champs.size(); ++i) {
      const std::string& code = lue[0].champs[i];
      actes.push_back(code.substr(0, code.find_last_not_of(' ') + 1));
    }
  }
  imprimerReponse("filtre", "", 0, zone, taille);
}

void consulterActes(const char* date) {
  for (const std::string& acte : actes) {
    for (const char* identifiant : {"CCAM_1", "CCAM_2", "CCAM_5", "CCAM_7", "CCAM_8", "CCAM_9", "CCAM_9_1",
                                    "CCAM_10", "CCAM_11", "CCAM_14", "CCAM_15", "CCAM_16a", "CCAM_18",
                                    "CCAM_19", "CCAM_22", "CCAM_24", "CCAM_25", "CCAM_30_1", "CCAM_41"}) {
      consulter(identifiant, date, {{3010, {acte}}});
    }
    for (const std::string& activite : ACTIVITES) {
      for (const char* identifiant : {"CCAM_3", "CCAM_4a", "CCAM_6", "CCAM_12", "CCAM_13", "CCAM_20",
                                      "CCAM_32a", "CCAM_40a", "CCAM_42"}) {
        consulter(identifiant, date, {{3011, {acte, activite}}});
      }
      for (const std::string& phase : PHASES) {
        for (const char* identifiant : {"CCAM_37", "CCAM_39", "CCAM_43a", "CCAM_44", "CCAM_45", "CCAM_46"}) {
          consulter(identifiant, date, {{3012, {acte, activite, phase}}});
        }
        for (const std::string& caisse : CAISSES) {
          consulter("CCAM_47a", date, {{3013, {caisse, acte, activite, phase}}});
        }
      }
    }
  }
}

void consulterTables(const char* date) {
  for (const char* identifiant :
       {"TB02_2", "TB11_3", "TB12_1", "TB12_2", "TB13_1", "TB15_2", "TB19_1", "TB20_1", "TB21_1"}) {
    consulter(identifiant, date, {});
  }
  for (const std::string& caisse : CAISSES) {
    consulter("TB07_1", date, {{3017, {caisse}}});
    consulter("TB08_1", date, {{3017, {caisse}}});
  }
  for (const char lettre : CODES) {
    const std::string code(1, lettre);
    consulter("TB02_1", date, {{3014, {code}}});
    for (const char* identifiant : {"TB06_1", "TB06_2", "TB10_1", "TB10_2", "TB11_1", "TB11_2", "TB15_1"}) {
      consulter(identifiant, date, {{3015, {code}}});
    }
    consulter("TB09_1", date, {{3016, {code, "F"}}});
  }
}

// Two acts of one day, as each family of rules takes them.
void appliquerRegles(const char* date, const std::string& premier, const std::string& second) {
  const std::vector<std::string> ps = {"123456789", "01"};
  const auto ligne = [&](const char* numero, const std::string& acte) {
    return std::vector<std::string>{numero, date, acte, "1"};
  };
  const auto plus = [](std::vector<std::string> champs, const std::vector<std::string>& suite) {
    champs.insert(champs.end(), suite.begin(), suite.end());
    return champs;
  };
  const Zone paire = {{3310, plus(ligne("1", premier), ps)}, {3310, plus(ligne("2", second), ps)}};
  appliquer("C_Association", paire);
  appliquer("C_Compatibilite", paire);
  appliquer("C_Dent", {{3300, plus(ligne("1", premier), {"0"})},
                       {2200, plus({"1", "16", "46"}, std::vector<std::string>(14))}});
  for (const std::string caisse : {"", "974"}) {
    appliquer("C_Pu", {{3400, {"1", caisse}},
                       {3410, plus(ligne("1", premier), {"0"})},
                       {3410, plus(ligne("2", second), {"0"})}});
    for (const std::string association : {"", "2"}) {
      const std::vector<std::string> fin = {"", association, "0", "", "", "123456789", "01", "5000"};
      appliquer("C_Base", {{3400, {"1", caisse}},
                           {3420, plus(ligne("1", premier), plus({"0", "F", "", ""}, fin))},
                           {3420, plus(ligne("2", second), plus({"0", "", "", ""}, fin))}});
    }
  }
  controler("C_Age_1", date, {{3020, {"20200229", "E"}}});
  controler("C_Age_2", date, {{3021, {"20200229", premier, "1", "0"}}});
  controler("C_Assurance", date, {{3022, {"MA", premier}}});
  controler("C_Ccam", date, {{3023, {"04", "K"}}});
  controler("C_Executant", date, {{3024, {"04", premier, "1"}}});
  controler("C_Radio", date, {{3025, {"01", premier, "1"}}});
}

// An invoice of two acts and a travel line.
void controlerFacture(const char* date, const std::string& premier, const std::string& second,
                      const std::string& caisse) {
  Zone facture = {{1110, {"123456789", "01", "", "", "1", "04", "", "", "01", "", "", "", "19800229"}},
                  {1511, {"N"}}};
  unsigned numero = 0;
  for (const std::string& acte : {premier, second}) {
    const std::string n = std::to_string(++numero);
    facture.push_back({1610, {n, date, "0", "ADC", "", "", "", "", "", "", "8194", "8194", "70"}});
    facture.push_back({1820, {n, "0"}});
    facture.push_back({2020, {n, "8194"}});
    facture.push_back({2100, {n, acte, "", "1", "0", "F", "", "", "", numero == 1 ? "1" : "2", "", "0", ""}});
  }
  facture.push_back({1620, {"3", date, "IFD", "", "", "", "", "70", "", "", ""}});
  facture.push_back({3500, {caisse}});
  controlerComplet(facture);
}

void modifierTout() {
  constexpr const char* EFFET = "20260201";
  for (const std::string& acte : actes) {
    modifier("CCAM_37", EFFET, {{3201, {acte, "1", "0", "12345"}}});
    modifier("CCAM_39", EFFET, {{3201, {acte, "1", "0", "678"}}});
    modifier("CCAM_47a", EFFET, {{3203, {"972", acte, "1", "0", "1333"}}});
  }
  for (const char lettre : CODES) {
    modifier("TB02_1", EFFET, {{3204, {std::string(1, lettre), "333"}}});
    modifier("TB11_1", EFFET, {{3206, {std::string(1, lettre), "4567"}}});
    modifier("TB11_2", EFFET, {{3207, {std::string(1, lettre), "1111"}}});
  }
  modifier("TB07_1", EFFET, {{3205, {"973", "14999"}}});
  modifier("TB12_2", EFFET, {{3209, {"167"}}});
  modifier("TB13_1", EFFET, {{3210, {"ZZ9", "Actes du cabinet"}}});
}

void annuler(const char* identifiant, const Zone& entree) {
  std::string octets = ecrire(entree);
  const unsigned code =
      NOX_AnnulerModification(identifiant, octets.data(), static_cast<unsigned>(octets.size()));
  imprimerReponse(identifiant, octets, code, nullptr, 0);
}

void annulerTout() {
  for (const std::string& acte : actes) {
    annuler("CCAM_37", {{3012, {acte, "1", "0"}}});
    annuler("CCAM_39", {{3012, {acte, "1", "0"}}});
    annuler("CCAM_47a", {{3013, {"972", acte, "1", "0"}}});
  }
  for (const char lettre : CODES) {
    annuler("TB02_1", {{3014, {std::string(1, lettre)}}});
    annuler("TB11", {{3015, {std::string(1, lettre)}}});
  }
  annuler("TB07_1", {{3017, {"973"}}});
  annuler("TB12", {});
  annuler("TB13_1", {});
}

void toutDemander() {
  for (const char* date : DATES) {
    consulterActes(date);
    consulterTables(date);
    for (std::size_t i = 0; i < actes.size(); ++i) {
      const std::string& second = actes[(i + 1) % actes.size()];
      appliquerRegles(date, actes[i], second);
      controlerFacture(date, actes[i], second, i % 2 == 0 ? "" : "971");
    }
  }
}

// Whether the memory in use, once everything has been loaded and asked, stays what it is.
bool endurer(unsigned long nombre) {
  constexpr std::size_t JEU = 4096;  // what the allocator may keep differently
  std::size_t enUsage = 0;
  for (unsigned tour = 0; demandes < nombre || tour < 3; ++tour) {
    toutDemander();
    modifierTout();
    consulterActes(DATES[0]);
    NOX_SauvegarderReferentiel("endurance");
    annulerTout();
    const std::size_t apres = mallinfo2().uordblks;
    std::fprintf(stderr, "%lu requests, %zu bytes in use\n", demandes, apres);
    if (tour == 1) {
      enUsage = apres;
    } else if (tour > 1 && apres > enUsage + JEU) {
      return false;
    }
  }
  return true;
}

void tracerTout(const std::string& fichier) {
  for (unsigned short module = 0; module < 5; ++module) {
    NOX_InitTrace(fichier.c_str(), "w", module, 9);
  }
}

}  // namespace

int main(int argc, char** argv) {
  char modele[] = "/tmp/noxlux_corpus_XXXXXX";
  if (argc < 2 || argc > 3 || mkdtemp(modele) == nullptr) {
    std::fputs("usage: corpus DIRECTORY [trace|NUMBER]\n", stderr);
    return 2;
  }
  const std::string dossier = std::string(modele) + '/';
  const std::string option = argc == 3 ? argv[2] : "";
  std::ofstream(dossier + "orvan.ini")
      << "[NOX]\nrepertoiretable = " << argv[1] << "\nrepertoireModification = " << dossier
      << "\n[COMMUN]\nrepertoiretravail = " << dossier << "\n";
  REPERTOIRE_SYSTEME = modele;
  muet = !option.empty() && option != "trace";
  if (option == "trace") {
    tracerTout("/dev/null");
  }
  const unsigned cr = NOX_InitLIB();
  bool bon = cr == NOX_CR_OK;
  if (bon) {
    listerActes();
    if (!muet) {
      toutDemander();
      modifierTout();
      toutDemander();
    } else {
      bon = endurer(std::stoul(option));
    }
    NOX_TermLIB();
  } else {
    std::fprintf(stderr, "NOX_InitLIB: 0x%04X\n", cr);
  }
  std::filesystem::remove_all(dossier);
  std::fprintf(stderr, "%lu requests\n", demandes);
  return bon && demandes > 10000 ? 0 : 1;
}
