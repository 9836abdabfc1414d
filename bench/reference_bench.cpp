#include "bench/reference_bench.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "compilateur/compilation.h"
#include "compilateur/lecteur_toml.h"
#include "manip/zone.h"
#include "noxlux/noxlux.h"

namespace noxlux::bench {

namespace {

namespace fs = std::filesystem;

constexpr const char* ESPACE_MOTS[] = {"exploration", "ablation", "suture",  "radiographie",
                                       "fixation",    "pose",     "biopsie", "drainage",
                                       "section",     "greffe",   "mesure",  "evacuation"};
constexpr const char* ORGANES[] = {"cornee",   "tympan", "larynx", "bronche", "estomac", "colon",
                                   "rein",     "vessie", "femur",  "humerus", "molaire", "incisive",
                                   "pancreas", "foie",   "rate",   "aorte"};

std::string libelle(unsigned i, bool longueForme) {
  std::string texte =
      std::string(ESPACE_MOTS[i % 12]) + " du " + ORGANES[i % 16] + " voie " + std::to_string(i % 97);
  return longueForme ? texte + ", par abord direct avec controle sous guidage numero " + std::to_string(i)
                     : texte;
}

DateBrute dateBrute(const char* texte) { return Date(std::string_view(texte)).lireBrute(); }

bool estAssocie(unsigned i) {
  return i >= PREMIER_ASSOCIE && i < PREMIER_ASSOCIE + 2 * ACTES_ASSOCIES && i % 2 == 0;
}

compilateur::Acte acteGenere(unsigned i, const compilateur::Acte& modele) {
  compilateur::Acte acte = modele;
  acte.code = CodeActe(codeActe(i));
  acte.libelleCourt = libelle(i, false);
  acte.libelleLong = libelle(i, true);
  acte.notes = i % 3 == 0 ? "Facturation : une seule fois par seance et par patient, guidage compris" : "";
  acte.creation = dateBrute(DATES_EFFET[2]);
  acte.fin = {};
  const auto troisFois = [](auto& historiques) {
    const auto premier = historiques.front();
    historiques.assign(3, premier);
    for (unsigned h = 0; h < 3; ++h) {
      historiques[h].effet = dateBrute(DATES_EFFET[h]);
    }
  };
  troisFois(acte.historiques);
  acte.historiques[0].incompatibles = {CodeActe(codeActe((i + 1) % NOMBRE_ACTES))};
  for (auto& historique : acte.historiques) {
    historique.procedures.clear();
  }
  acte.activites.resize(1);
  acte.activites[0].code = '1';
  troisFois(acte.activites[0].historiques);
  for (auto& historique : acte.activites[0].historiques) {
    historique.associations.clear();
    historique.categorieMedicale = CodeFixe<2>("10");
    for (unsigned k = 0; estAssocie(i) && k < ACTES_ASSOCIES; ++k) {
      compilateur::AssociationActe prevue;
      prevue.acte = CodeActe(codeActe(rangAssocie(k)));
      prevue.regle = '1';
      historique.associations.push_back(prevue);
    }
  }
  acte.activites[0].phases.resize(1);
  compilateur::Phase& phase = acte.activites[0].phases[0];
  phase.code = '0';
  troisFois(phase.historiques);
  const PhaseTarifee tarif = phaseTarifee(i);
  for (unsigned h = 0; h < 3; ++h) {
    phase.historiques[h].prix = tarif.prix[h];
  }
  return acte;
}

std::string generer() {
  const fs::path dossier = fs::temp_directory_path() / ("noxlux-bench-" + std::to_string(NOMBRE_ACTES));
  fs::create_directories(dossier);
  compilateur::Modele modele;
  compilateur::Rapport rapport;
  compilateur::lireSourcesToml({NOXLUX_SOURCES "/reference/socle", NOXLUX_SOURCES "/reference/exemple"},
                               modele, rapport);
  if (modele.actes.empty()) {
    throw std::runtime_error("the example reference does not read");
  }
  const compilateur::Acte patron = modele.actes.front();
  modele.actes.clear();
  for (unsigned i = 0; i < NOMBRE_ACTES; ++i) {
    modele.actes.push_back(acteGenere(i, patron));
  }
  compilateur::Bilan bilan;
  const compilateur::Avancement sansProgression = [](std::string_view, std::size_t, std::size_t) {};
  if (!compilateur::compiler(modele, dossier.string(), sansProgression, rapport, bilan)) {
    for (const std::string& ligne : rapport.lignes()) {
      std::fprintf(stderr, "%s\n", ligne.c_str());
    }
    throw std::runtime_error("the generated reference does not compile");
  }
  return dossier.string() + '/';
}

}  // namespace

std::string codeActe(unsigned i) {
  char code[16];
  std::snprintf(code, sizeof code, "%c%c%cA%03u", static_cast<char>('A' + i / 1000 / 26 % 26),
                static_cast<char>('A' + i / 1000 % 26), 'B', i % 1000);
  return code;
}

PhaseTarifee phaseTarifee(unsigned i) {
  const double base = 10.0 + (i * 37 % 90000) / 100.0;
  return {codeActe(i), {base + 4.5, base + 1.25, base}};
}

namespace {

const char* referenceImposee() { return std::getenv("NOXLUX_BENCH_REFERENCE"); }

bool aUnPrix(const std::string& acte) {
  std::string zone = zoneActe(acte);
  void* reponse = nullptr;
  unsigned int taille = 0;
  const unsigned short cr = NOX_ConsulterDonnee("CCAM_37", jourMesure(), zone.data(),
                                                static_cast<unsigned int>(zone.size()), &reponse, &taille);
  NOX_LibererZoneMem(reponse);
  return cr == 0;
}

// The acts of the imposed reference: every one is found by an empty filter, in fields behind their number.
std::vector<std::string> chercherActes() {
  const BibliothequeChargee bibliotheque;
  void* reponse = nullptr;
  unsigned int taille = 0;
  if (NOX_RechercherParFiltre("", &reponse, &taille) != 0) {
    throw std::runtime_error("the reference has no act");
  }
  std::vector<std::string> actes;
  Zone zone(static_cast<byte*>(reponse), taille);
  std::uint16_t numero = 0;
  Octets champ;
  zone.avancerGroupeSuivant(numero);
  zone.avancerChampSuivant(numero, champ);
  while (!zone.finGroupe() && zone.avancerChampSuivant(numero, champ) == 0) {
    const std::string acte(champ.begin(), champ.end());
    if ((actes.empty() || acte.size() == actes[0].size()) && aUnPrix(acte)) {
      actes.push_back(acte);
    }
  }
  NOX_LibererZoneMem(reponse);
  return actes;
}

}  // namespace

const std::string& repertoireReference() {
  static const std::string repertoire =
      referenceImposee() == nullptr ? generer() : std::string(referenceImposee());
  return repertoire;
}

const char* jourMesure() { return referenceImposee() == nullptr ? "20200101" : "20991231"; }

const std::vector<std::string>& actesMesures() {
  static const std::vector<std::string> actes = [] {
    if (referenceImposee() != nullptr) {
      return chercherActes();
    }
    std::vector<std::string> generes;
    for (unsigned i = 0; i < NOMBRE_ACTES; ++i) {
      generes.push_back(codeActe(i));
    }
    return generes;
  }();
  return actes;
}

std::string fichierReference() { return repertoireReference() + "tablebin.nox"; }

void configurer() {
  static const std::string dossier = [] {
    std::string nom = (fs::temp_directory_path() / "noxlux-bench-ini").string();
    fs::create_directories(nom);
    std::ofstream(nom + "/orvan.ini") << "[NOX]\nrepertoiretable=" << repertoireReference()
                                      << "\n[COMMUN]\nrepertoiretravail=" << nom << '\n';
    return nom;
  }();
  REPERTOIRE_SYSTEME = dossier.c_str();
}

BibliothequeChargee::BibliothequeChargee() {
  configurer();
  if (const unsigned short cr = NOX_InitLIB(); cr != 0) {
    throw std::runtime_error("NOX_InitLIB: " + std::to_string(cr));
  }
}

BibliothequeChargee::~BibliothequeChargee() { NOX_TermLIB(); }

std::string zoneActe(const std::string& acte) {
  const auto champ = [](const std::string& octets) {
    return std::string(1, static_cast<char>(octets.size())) + octets;
  };
  const std::string contenu = champ(acte) + champ("1") + champ("0");
  return std::string("\x0B\xC4", 2) + champ(contenu);
}

}  // namespace noxlux::bench
