// The library as a host sees it: a loaded example reference, requests told in groups, and their answers.
#ifndef NOXLUX_TESTS_BOUT_EN_BOUT_BIBLIOTHEQUE_ESSAI_H
#define NOXLUX_TESTS_BOUT_EN_BOUT_BIBLIOTHEQUE_ESSAI_H

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "noxlux/noxlux.h"
#include "zones_essai.h"

namespace essai {

// A day on which the example reference has something to say of every act.
inline constexpr const char* DATE = "20260115";

// A directory of its own, removed with all it holds.
class DossierTemporaire {
 public:
  DossierTemporaire();
  ~DossierTemporaire();
  DossierTemporaire(const DossierTemporaire&) = delete;
  DossierTemporaire& operator=(const DossierTemporaire&) = delete;
  // With a trailing '/'.
  const std::string& chemin() const { return chemin_; }
  std::string fichier(const std::string& nom) const { return chemin_ + nom; }

 private:
  std::string chemin_;
};

std::string lireFichier(const std::string& nom);
void ecrireFichier(const std::string& nom, const std::string& contenu);
// Directory of the compiled example reference; empty when it is not told.
std::string referenceExemple();

// What a call answered. The output addresses are filled with rubbish before the call: on failure they must
// hold null and 0 after it, and a zone handed over must be readable to its last byte.
struct Reponse {
  unsigned code = 0;
  Zone zone;
  bool remise = false;  // a zone was handed over
  bool operator==(const Reponse&) const = default;
};
std::ostream& operator<<(std::ostream& sortie, const Reponse& reponse);

// Calls `appel(zoneOut, tailleZoneOut)`.
template <class Appel>
Reponse recevoir(const Appel& appel);

Reponse consulter(const std::string& identifiant, const std::string& date, const Zone& entree = {});
unsigned modifier(const std::string& identifiant, const std::string& date, const Zone& entree);
unsigned annuler(const std::string& identifiant, const Zone& entree = {});
Reponse appliquer(const std::string& identifiant, const Zone& entree);
Reponse controlerComplet(const Zone& entree);
Reponse rechercherMotCle(const std::string& motCle, unsigned long cadre = 0);
Reponse rechercherFiltre(const std::string& filtre);
Reponse lireVersion();

// A dental act billed alone at `prix` (in cents), with nothing to reproach but that.
Zone factureDentaire(const std::string& prix);

// The trace of some modules, at the most detailed level, while it lives.
class TraceEssai {
 public:
  explicit TraceEssai(std::vector<unsigned short> modules);
  ~TraceEssai();
  TraceEssai(const TraceEssai&) = delete;
  TraceEssai& operator=(const TraceEssai&) = delete;
  std::string texte() const { return lireFichier(fichier_); }
  bool contient(const std::string& ligne) const { return texte().find(ligne) != std::string::npos; }

 private:
  DossierTemporaire dossier_;
  std::string fichier_;
  std::vector<unsigned short> modules_;
};

// A configuration directory set as REPERTOIRE_SYSTEME; nothing is loaded yet.
class SansReference : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;
  // orvan.ini: tables in `tables`, modifications in this test's own directory.
  void ecrireIni(const std::string& tables, bool suivi = true);

  DossierTemporaire dossier_;
};

// The example reference, loaded.
class AvecReference : public SansReference {
 protected:
  void SetUp() override;
  unsigned recharger();
};

// --- Implementation ---

Reponse lireReponse(unsigned code, void* zone, unsigned taille);

template <class Appel>
Reponse recevoir(const Appel& appel) {
  char rebut = 0;
  void* zone = &rebut;
  unsigned taille = 0xDEAD;
  const unsigned code = appel(&zone, &taille);
  return lireReponse(code, zone, taille);
}

// Bytes in a block of exactly their size: reading one byte too far is seen by the sanitizers.
class Bloc {
 public:
  explicit Bloc(const Zone& zone) : octets_(depuis(ecrire(zone))) {}
  explicit Bloc(const std::string& octets) : octets_(depuis(octets)) {}
  void* adresse() { return octets_.empty() ? nullptr : octets_.data(); }
  unsigned taille() const { return static_cast<unsigned>(octets_.size()); }

 private:
  static std::vector<unsigned char> depuis(const std::string& octets) {
    return std::vector<unsigned char>(octets.begin(), octets.end());
  }
  std::vector<unsigned char> octets_;
};

}  // namespace essai

#endif
