#include "atelier.h"

#include <stdlib.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "bout_en_bout/zones_essai.h"
#include "fichier/crc16.h"

namespace fuzz {

namespace fs = std::filesystem;

namespace {

struct Dossier {
  Dossier() {
    const char* parent = fs::exists("/dev/shm") ? "/dev/shm" : "/tmp";
    chemin = std::string(parent) + "/noxlux_fuzz_XXXXXX";
    exiger(mkdtemp(chemin.data()) != nullptr);
    chemin += '/';
  }
  ~Dossier() {
    std::error_code ignore;
    fs::remove_all(chemin, ignore);
  }
  std::string chemin;
};

constexpr std::size_t TAILLE_CRC = 4;
constexpr const char* JOUR = "20260115";

}  // namespace

std::size_t Source::entier(unsigned octets) {
  std::size_t valeur = 0;
  for (const char octet : prendre(octets)) {
    valeur = valeur << 8 | static_cast<unsigned char>(octet);
  }
  return valeur;
}

std::string_view Source::prendre(std::size_t n) {
  const std::string_view pris = reste_.substr(0, n);
  reste_.remove_prefix(pris.size());
  return pris;
}

const std::string& dossier() {
  static const Dossier DOSSIER;
  return DOSSIER.chemin;
}

void ecrire(const std::string& nom, std::string_view octets) {
  std::ofstream(dossier() + nom, std::ios::binary)
      .write(octets.data(), static_cast<std::streamsize>(octets.size()));
}

std::string lire(const std::string& chemin) {
  std::ifstream fichier(chemin, std::ios::binary);
  return {std::istreambuf_iterator<char>(fichier), {}};
}

std::vector<Fichier> base(const std::string& nom) {
  std::vector<Fichier> fichiers;
  for (const fs::directory_entry& entree : fs::directory_iterator(std::string(NOXLUX_FUZZ_BASES) + nom)) {
    fichiers.push_back({entree.path().filename().string(), lire(entree.path().string())});
  }
  std::sort(fichiers.begin(), fichiers.end(),
            [](const Fichier& a, const Fichier& b) { return a.nom < b.nom; });
  exiger(!fichiers.empty());
  return fichiers;
}

void retoucher(std::vector<Fichier>& fichiers, Source& source) {
  while (!source.vide()) {
    const std::size_t operation = source.entier(1);
    std::string& octets = fichiers[source.entier(1) % fichiers.size()].octets;
    const std::size_t position = source.entier(3) % (octets.size() + 1);
    const std::size_t longueur = source.entier(1);
    switch (operation % 4) {
      case 0: {
        const std::string_view nouveaux = source.prendre(longueur);
        octets.replace(position, nouveaux.size(), nouveaux);
        break;
      }
      case 1:
        octets.insert(position, source.prendre(longueur));
        break;
      case 2:
        octets.erase(position, longueur);
        break;
      default:
        octets.resize(position);
    }
  }
}

void refaireCrc(std::string& octets) {
  if (octets.size() <= TAILLE_CRC) {
    return;
  }
  noxlux::Crc16 crc;
  crc.ajouter(reinterpret_cast<const unsigned char*>(octets.data()) + TAILLE_CRC, octets.size() - TAILLE_CRC);
  char texte[TAILLE_CRC + 1];
  std::snprintf(texte, sizeof texte, "%04X", unsigned{crc.resultat()});
  octets.replace(0, TAILLE_CRC, texte);
}

void configurer() {
  REPERTOIRE_SYSTEME = dossier().c_str();
  ecrire("orvan.ini", "[NOX]\nrepertoiretable=" + dossier() + "\nrepertoireModification=" + dossier() +
                          "\n[COMMUN]\nrepertoiretravail=" + dossier() + "\n");
}

void verifierReponse(void* zone, unsigned taille) {
  if (zone == nullptr) {
    exiger(taille == 0);
    return;
  }
  const std::string octets(static_cast<const char*>(zone), taille);
  NOX_LibererZoneMem(zone);
  essai::Zone groupes;
  exiger(essai::lire(octets, groupes) && essai::ecrire(groupes) == octets);
}

void interroger() {
  static const struct {
    const char* identifiant;
    essai::Zone zone;
  } QUESTIONS[] = {{"CCAM_2", {{3010, {"HBFD008"}}}},
                   {"CCAM_8", {{3010, {"HBFD008"}}}},
                   {"CCAM_16a", {{3010, {"HBFD008"}}}},
                   {"CCAM_13", {{3011, {"HBFD008", "1"}}}},
                   {"CCAM_32a", {{3011, {"HBFD008", "1"}}}},
                   {"CCAM_37", {{3012, {"HBFD008", "1", "0"}}}},
                   {"CCAM_44", {{3012, {"HBFD008", "1", "0"}}}},
                   {"TB07_1", {{3017, {"972"}}}},
                   {"TB08_1", {{3017, {"751"}}}},
                   {"TB11_2", {{3015, {"M"}}}},
                   {"TB13_1", {}}};
  if (NOX_InitLIB() == NOX_CR_OK) {
    void* zone = nullptr;
    unsigned taille = 0;
    for (const auto& [identifiant, groupes] : QUESTIONS) {
      std::string entree = essai::ecrire(groupes);
      NOX_ConsulterDonnee(identifiant, JOUR, entree.empty() ? nullptr : entree.data(),
                          static_cast<unsigned>(entree.size()), &zone, &taille);
      verifierReponse(zone, taille);
    }
    NOX_RechercherParMotCle("molaire", 0, &zone, &taille);
    verifierReponse(zone, taille);
    NOX_RechercherParFiltre("", &zone, &taille);
    verifierReponse(zone, taille);
    NOX_SauvegarderReferentiel("essai");
  }
  NOX_TermLIB();
}

void essayerRetouche(std::vector<Fichier> fichiers, Source retouches) {
  retoucher(fichiers, retouches);
  refaireCrc(fichiers[0].octets);
  ecrire(fichiers[0].nom, fichiers[0].octets);
  interroger();
}

}  // namespace fuzz
