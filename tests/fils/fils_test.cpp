// Eight threads on one library: seven ask, check and search while one changes, cancels, saves, loads again
// and sets the trace. Whatever is answered is what a thread alone is answered, before the changes or after
// them, or that the library is busy or not loaded.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <set>
#include <sstream>
#include <thread>

#include "bout_en_bout/bibliotheque_essai.h"

using namespace essai;

namespace {

using Horloge = std::chrono::steady_clock;
constexpr const char* EFFET = "20260201";

struct Demande {
  std::function<Reponse()> poser;
  std::vector<Reponse> permises = {};
};

// Each act, a table read at the start, those read on first use, and everything that the changes reach.
std::vector<Demande> demandes() {
  std::vector<Demande> toutes = {
      {[] {
        return consulter("CCAM_37", EFFET, {{3012, {"HBFD008", "1", "0"}}});
      }},
      {[] {
        return consulter("TB11_1", EFFET, {{3015, {"M"}}});
      }},
      {[] {
        return consulter("CCAM_16a", EFFET, {{3010, {"HBFD008"}}});
      }},
      {[] {
        return consulter("TB02_1", EFFET, {{3014, {"2"}}});
      }},
      {[] { return controlerComplet(factureDentaire("10400")); }},
      {[] { return rechercherMotCle("molaire"); }},
      {[] { return rechercherFiltre("HB"); }},
      {[] { return consulter("CCAM_37", "hier", {}); }},
  };
  const Reponse index = rechercherFiltre("");
  for (std::size_t i = 1; i < index.zone.at(0).champs.size(); ++i) {
    const std::string acte = index.zone[0].champs[i].substr(0, 7);
    toutes.push_back({[acte] { return consulter("CCAM_8", EFFET, {{3010, {acte}}}); }});
  }
  return toutes;
}

bool estRefus(unsigned code) { return code == NOX_CR_OCCUPE || code == NOX_CR_NON_CHARGE; }

class Fils : public AvecReference {
 protected:
  static unsigned changer() {
    const unsigned cr = modifier("CCAM_37", EFFET, {{3201, {"HBFD008", "1", "0", "11050"}}});
    return cr != NOX_CR_OK ? cr : insister([] { return modifier("TB11_1", EFFET, {{3206, {"M", "3000"}}}); });
  }
  static unsigned retablir() {
    const unsigned cr = annuler("CCAM_37", {{3012, {"HBFD008", "1", "0"}}});
    return cr != NOX_CR_OK ? cr : insister([] { return annuler("TB11", {{3015, {"M"}}}); });
  }
  // Until it is no longer refused for want of the library to itself.
  template <class Appel>
  static unsigned insister(const Appel& appel) {
    unsigned cr = appel();
    while (cr == NOX_CR_OCCUPE) {
      std::this_thread::sleep_for(std::chrono::microseconds(50));
      cr = appel();
    }
    return cr;
  }

  void apprendre() {
    for (Demande& demande : demandes_) {
      const Reponse reponse = demande.poser();
      if (demande.permises.empty() || demande.permises.back() != reponse) {
        demande.permises.push_back(reponse);
      }
    }
  }

  void interroger(std::uint64_t graine) {
    while (!fini_) {
      graine = graine * 6364136223846793005U + 1442695040888963407U;
      const Demande& demande = demandes_[static_cast<std::size_t>((graine >> 8) % demandes_.size())];
      const Reponse reponse = demande.poser();
      if (!estRefus(reponse.code) && std::ranges::count(demande.permises, reponse) == 0) {
        ADD_FAILURE() << reponse << " instead of " << demande.permises.front();
        fini_ = true;
      }
      std::this_thread::sleep_for(std::chrono::microseconds(graine % 4096));
    }
  }

  // The lines of a trace, without indent; hours and numbers, which differ from one call to the next, set
  // aside.
  static std::set<std::string> lignes(const std::string& nom) {
    std::set<std::string> brutes;
    std::istringstream texte(lireFichier(nom));
    for (std::string ligne; std::getline(texte, ligne);) {
      if (!ligne.ends_with(']')) {
        brutes.insert(ligne.erase(0, ligne.find_first_not_of(' ')));
      }
    }
    std::set<std::string> resultat;
    for (std::string ligne : brutes) {
      for (std::size_t i = ligne.find('x'); i != std::string::npos; i = ligne.find('x', i + 1)) {
        ligne.erase(i + 1, ligne.find_first_not_of("0123456789abcdefABCDEF", i + 1) - i - 1);
      }
      std::erase_if(ligne, [](char c) { return c >= '0' && c <= '9'; });
      resultat.insert(ligne);
    }
    return resultat;
  }
  void tracer(unsigned char niveau) const {
    for (const unsigned short module : std::initializer_list<unsigned short>{0, 1, 2, 4, 6}) {
      EXPECT_EQ(NOX_InitTrace(trace_.c_str(), "w", module, niveau), NOX_CR_OK);
    }
  }

  std::vector<Demande> demandes_;
  std::atomic<bool> fini_ = false;
  std::string trace_ = dossier_.fichier("trace");
};

TEST_F(Fils, repondCommeUnFilSeul) {
  // Alone first: the answers, before and after the changes, and the lines that the trace may hold.
  demandes_ = demandes();
  tracer(2);
  recharger();
  apprendre();
  ASSERT_EQ(changer(), NOX_CR_OK);
  apprendre();
  ASSERT_EQ(NOX_SauvegarderReferentiel("essai"), NOX_CR_OK);
  ASSERT_EQ(recharger(), NOX_CR_OK);
  ASSERT_EQ(retablir(), NOX_CR_OK);
  EXPECT_EQ(NOX_SauvegarderReferentiel("essai"), NOX_CR_OK);
  tracer(0);
  std::set<std::string> connues = lignes(trace_);
  for (const char* ligne : {"ERREUR : R\xE9"
                            "f\xE9rentiel en cours de modification ( \xE9"
                            "crivain)",
                            "ERREUR : R\xE9"
                            "f\xE9rentiel en cours de lecture ou de modification ( lecteurs,  \xE9"
                            "crivain)",
                            "ERREUR : R\xE9"
                            "f\xE9rentiel non charg\xE9.",
                            "ERREUR : Table en cours de chargement par un autre thread"}) {
    connues.insert(ligne);
  }
  const std::string enChargement = " en cours de chargement par un autre thread";

  std::vector<std::thread> fils;
  for (std::size_t i = 1; i < 8; ++i) {
    fils.emplace_back([this, i] { interroger(i); });
  }
  const char* duree = std::getenv("NOXLUX_DUREE");
  const auto fin = Horloge::now() + std::chrono::seconds(duree == nullptr ? 2 : std::atoi(duree));
  unsigned tours = 0;
  for (; !fini_ && (tours == 0 || Horloge::now() < fin); ++tours) {
    tracer(2);
    EXPECT_EQ(insister(changer), NOX_CR_OK);
    EXPECT_EQ(insister([] { return NOX_SauvegarderReferentiel("essai"); }), NOX_CR_OK);
    EXPECT_EQ(insister(NOX_TermLIB), NOX_CR_OK);
    EXPECT_EQ(insister(NOX_InitLIB), NOX_CR_OK);
    EXPECT_EQ(insister(retablir), NOX_CR_OK);
    EXPECT_EQ(insister([] { return NOX_SauvegarderReferentiel("essai"); }), NOX_CR_OK);
    tracer(0);
    for (const std::string& ligne : lignes(trace_)) {
      const bool acte = ligne.starts_with("ERREUR : Acte ") && ligne.ends_with(enChargement) &&
                        ligne.size() == enChargement.size() + 24;
      EXPECT_TRUE(acte || connues.contains(ligne)) << ligne;
    }
    fini_ = fini_ || HasFailure();
  }
  fini_ = true;
  for (std::thread& f : fils) {
    f.join();
  }
  RecordProperty("tours", static_cast<int>(tours));
  std::cout << tours << " turns of changes\n";
  for (const Demande& demande : demandes_) {
    EXPECT_EQ(demande.poser(), demande.permises.front()) << "once everything is put back";
  }
}

}  // namespace
