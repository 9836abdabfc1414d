#include "bibliotheque_essai.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace essai {

DossierTemporaire::DossierTemporaire() {
  std::string modele = (std::filesystem::temp_directory_path() / "noxlux_XXXXXX").string();
  if (mkdtemp(modele.data()) == nullptr) {
    std::abort();
  }
  chemin_ = modele + '/';
}

DossierTemporaire::~DossierTemporaire() {
  std::error_code ignore;
  std::filesystem::remove_all(chemin_, ignore);
}

std::string lireFichier(const std::string& nom) {
  std::ifstream fichier(nom, std::ios::binary);
  return {std::istreambuf_iterator<char>(fichier), {}};
}

void ecrireFichier(const std::string& nom, const std::string& contenu) {
  std::ofstream(nom, std::ios::binary) << contenu;
}

std::string referenceExemple() {
  const char* chemin = std::getenv("NOXLUX_REFERENCE_EXEMPLE");
  return chemin == nullptr ? "" : chemin;
}

std::ostream& operator<<(std::ostream& sortie, const Reponse& reponse) {
  sortie << std::hex << "0x" << reponse.code << std::dec << (reponse.remise ? " " : " (no zone)");
  for (const Groupe& groupe : reponse.zone) {
    sortie << groupe << ' ';
  }
  return sortie;
}

Reponse lireReponse(unsigned code, void* zone, unsigned taille) {
  Reponse reponse{code, {}, zone != nullptr};
  if (zone == nullptr) {
    EXPECT_EQ(taille, 0U);
    return reponse;
  }
  const std::string octets(static_cast<const char*>(zone), taille);
  EXPECT_TRUE(lire(octets, reponse.zone)) << "the answer zone does not end with its last group";
  EXPECT_EQ(ecrire(reponse.zone), octets) << "a length is not written in its shortest form";
  NOX_LibererZoneMem(zone);
  return reponse;
}

Reponse consulter(const std::string& identifiant, const std::string& date, const Zone& entree) {
  Bloc bloc(entree);
  return recevoir([&](void** zone, unsigned* taille) {
    return NOX_ConsulterDonnee(identifiant.c_str(), date.c_str(), bloc.adresse(), bloc.taille(), zone,
                               taille);
  });
}

unsigned modifier(const std::string& identifiant, const std::string& date, const Zone& entree) {
  Bloc bloc(entree);
  return NOX_ModifierDonnee(identifiant.c_str(), date.c_str(), bloc.adresse(), bloc.taille());
}

unsigned annuler(const std::string& identifiant, const Zone& entree) {
  Bloc bloc(entree);
  return NOX_AnnulerModification(identifiant.c_str(), bloc.adresse(), bloc.taille());
}

Reponse appliquer(const std::string& identifiant, const Zone& entree) {
  Bloc bloc(entree);
  return recevoir([&](void** zone, unsigned* taille) {
    return NOX_AppliquerRegle(identifiant.c_str(), bloc.adresse(), bloc.taille(), zone, taille);
  });
}

Reponse controlerComplet(const Zone& entree) {
  Bloc bloc(entree);
  return recevoir([&](void** zone, unsigned* taille) {
    return NOX_ControleComplet(bloc.adresse(), bloc.taille(), zone, taille);
  });
}

Reponse rechercherMotCle(const std::string& motCle, unsigned long cadre) {
  return recevoir([&](void** zone, unsigned* taille) {
    return NOX_RechercherParMotCle(motCle.c_str(), cadre, zone, taille);
  });
}

Reponse rechercherFiltre(const std::string& filtre) {
  return recevoir(
      [&](void** zone, unsigned* taille) { return NOX_RechercherParFiltre(filtre.c_str(), zone, taille); });
}

Reponse lireVersion() {
  return recevoir([](void** zone, unsigned* taille) { return NOX_LireVersion(zone, taille); });
}

Zone factureDentaire(const std::string& prix) {
  std::vector<std::string> dents(17);
  dents[0] = "1";
  dents[1] = "16";
  return {{1110, {"123456789", "01", "", "", "1", "18", "", "", "", "", "", "", "19800229"}},
          {1511, {"N"}},
          {1610, {"1", "20260302", "0", "END", "", "", "", "", "", "", prix, prix, "70"}},
          {2020, {"1", prix}},
          {2100, {"1", "HBFD008", "", "1", "0", "", "", "", "", "", "", "", ""}},
          {2200, dents},
          {3500, {""}}};
}

TraceEssai::TraceEssai(std::vector<unsigned short> modules)
    : fichier_(dossier_.fichier("trace.txt")), modules_(std::move(modules)) {
  for (const unsigned short module : modules_) {
    EXPECT_EQ(NOX_InitTrace(fichier_.c_str(), "w", module, 9), NOX_CR_OK);
  }
}

TraceEssai::~TraceEssai() {
  for (const unsigned short module : modules_) {
    NOX_InitTrace(fichier_.c_str(), "w", module, 0);
  }
}

void SansReference::SetUp() {
  ASSERT_FALSE(referenceExemple().empty())
      << "NOXLUX_REFERENCE_EXEMPLE must name the directory of a compiled example reference";
  ecrireIni(referenceExemple());
  REPERTOIRE_SYSTEME = dossier_.chemin().c_str();
}

void SansReference::TearDown() {
  NOX_TermLIB();
  REPERTOIRE_SYSTEME = "/usr/local/orvan/etc";
}

void SansReference::ecrireIni(const std::string& tables, bool suivi) {
  std::string ini =
      "[NOX]\nrepertoiretable = " + tables + "\nrepertoireModification = " + dossier_.chemin() + "\n";
  if (suivi) {
    ini += "[COMMUN]\nrepertoiretravail = " + dossier_.chemin() + "\n";
  }
  ecrireFichier(dossier_.fichier("orvan.ini"), ini);
}

void AvecReference::SetUp() {
  SansReference::SetUp();
  if (HasFatalFailure()) {
    return;
  }
  ASSERT_EQ(NOX_InitLIB(), NOX_CR_OK);
}

unsigned AvecReference::recharger() {
  const unsigned cr = NOX_TermLIB();
  return cr != NOX_CR_OK ? cr : NOX_InitLIB();
}

}  // namespace essai
