// Out of memory: the n-th allocation fails, for every n in turn, over a scenario that touches each entry
// point. Each time a code tells it, the outputs are null, the same request made again answers as if nothing
// had happened, and the modifications, saved, are the same file to the byte.
#include <cerrno>
#include <cstdlib>
#include <functional>
#include <new>

#include "bout_en_bout/bibliotheque_essai.h"

using namespace essai;

namespace {

// Allocations left before the one that fails; negative: none fails.
long restantes = -1;
bool echec = false;

bool doitEchouer() {
  if (restantes < 0 || restantes-- > 0) {
    return false;
  }
  echec = true;
  return true;
}

}  // namespace

#if defined(__SANITIZE_ADDRESS__)
// The sanitizer keeps malloc for itself: only what goes through new fails. Every form is replaced, so that
// none mixes with those of the sanitizer.
void* operator new(std::size_t taille, const std::nothrow_t& /*sans exception*/) noexcept {
  return doitEchouer() ? nullptr : std::malloc(taille == 0 ? 1 : taille);
}
void* operator new(std::size_t taille) {
  void* bloc = operator new(taille, std::nothrow);
  if (bloc == nullptr) {
    throw std::bad_alloc();
  }
  return bloc;
}
void* operator new[](std::size_t taille) { return operator new(taille); }
void* operator new[](std::size_t taille, const std::nothrow_t& sans) noexcept {
  return operator new(taille, sans);
}
void operator delete(void* bloc) noexcept { std::free(bloc); }
void operator delete[](void* bloc) noexcept { std::free(bloc); }
void operator delete(void* bloc, std::size_t /*taille*/) noexcept { std::free(bloc); }
void operator delete[](void* bloc, std::size_t /*taille*/) noexcept { std::free(bloc); }
#else
// Everything fails: new, the blocks of zones, the buffers of files.
extern "C" void* __libc_malloc(std::size_t taille);
extern "C" void* malloc(std::size_t taille) {
  if (doitEchouer()) {
    errno = ENOMEM;
    return nullptr;
  }
  return __libc_malloc(taille);
}
#endif

namespace {

constexpr const char* DATE = "20260201";

// Calls `appel` with the n-th allocation failing; false when it did not come to that many.
template <class Appel>
bool avecEchec(long n, Reponse& reponse, const Appel& appel) {
  char rebut = 0;
  void* zone = &rebut;
  unsigned taille = 0;
  echec = false;
  restantes = n;
  const unsigned code = appel(&zone, &taille);
  restantes = -1;
  if (zone == &rebut) {
    zone = nullptr;  // a function without answer zone
  }
  reponse = lireReponse(code, zone, taille);
  return echec;
}

// Codes by which a lack of memory is told: that of the place, or that of a file that cannot be opened for it.
testing::AssertionResult diteMemoire(unsigned code) {
  for (const unsigned permis :
       {0xDFFCU, 0xF801U, 0xD201U, 0xD610U, 0xD611U, 0xD700U, 0xD680U, 0xF6F1U, 0xF6F2U}) {
    if (code == permis) {
      return testing::AssertionSuccess();
    }
  }
  return testing::AssertionFailure() << "code " << code;
}

using Appel = std::function<unsigned(void**, unsigned*)>;

Appel consultation(const char* identifiant, const Zone& entree) {
  return [identifiant, bloc = Bloc(entree)](void** z, unsigned* t) mutable {
    return NOX_ConsulterDonnee(identifiant, DATE, bloc.adresse(), bloc.taille(), z, t);
  };
}
Appel regle(const char* identifiant, const Zone& entree) {
  return [identifiant, bloc = Bloc(entree)](void** z, unsigned* t) mutable {
    return NOX_AppliquerRegle(identifiant, bloc.adresse(), bloc.taille(), z, t);
  };
}
Appel changement(const char* identifiant, const Zone& entree) {
  return [identifiant, bloc = Bloc(entree)](void**, unsigned*) mutable {
    return NOX_ModifierDonnee(identifiant, DATE, bloc.adresse(), bloc.taille());
  };
}
Appel annulation(const char* identifiant, const Zone& entree) {
  return [identifiant, bloc = Bloc(entree)](void**, unsigned*) mutable {
    return NOX_AnnulerModification(identifiant, bloc.adresse(), bloc.taille());
  };
}

// The session manager of this program: one input zone, and the answer kept where a plain function would put
// it. It allocates nothing.
struct Session {
  Bloc* entree = nullptr;
  void** zone = nullptr;
  unsigned* taille = nullptr;
};
Session session;

}  // namespace

unsigned short KEP_LireZoneIn(unsigned short /*numeroSession*/, void** zone, unsigned int* taille) {
  *zone = session.entree->adresse();
  *taille = session.entree->taille();
  return 0;
}
unsigned short KEP_EcrireZoneOut(unsigned short /*numeroSession*/, void* zone, unsigned int taille,
                                 void (* /*liberer*/)(void* zone)) {
  *session.zone = zone;
  *session.taille = taille;
  return 0;
}

namespace {

template <class Fonction>
Appel parSession(const Zone& entree, Fonction fonction) {
  return [bloc = Bloc(entree), fonction](void** z, unsigned* t) mutable {
    *z = nullptr;
    *t = 0;
    session = {&bloc, z, t};
    return fonction();
  };
}

const Zone PHASE = {{3012, {"HBFD008", "1", "0"}}};
const Zone PRIX = {{3400, {"1", "974"}}, {3410, {"1", DATE, "HBFD008", "1", "0"}}};
const Zone RADIO = {{3025, {"", "HBFD008", "1"}}};

class Memoire : public AvecReference {
 protected:
  void TearDown() override {
    EXPECT_GT(essais_, 10) << "hardly anything was allocated: hardly anything was tried";
    AvecReference::TearDown();
  }

  // The n-th allocation fails, for n from 0 up to where none does any more, by growing steps beyond
  // `serre`; `preparer` runs before each call.
  template <class Preparation, class Verification>
  void epuiser(const Appel& appel, const Reponse& attendue, long serre, const Preparation& preparer,
               const Verification& verifier) {
    Reponse reponse;
    long n = 0;
    for (; preparer(), avecEchec(n, reponse, appel); n += n < serre ? 1 : 1 + n / 50) {
      SCOPED_TRACE(testing::Message() << "allocation " << n);
      // A failure that the library can do without changes nothing.
      if (!(reponse == attendue)) {
        ASSERT_TRUE(diteMemoire(reponse.code));
        ASSERT_FALSE(reponse.remise);
        verifier();
      }
    }
    EXPECT_EQ(reponse, attendue);
    essais_ += n;
  }

  long essais_ = 0;
};

TEST_F(Memoire, demandesSurDonneesChargees) {
  Bloc controle(RADIO);
  const std::string trace = dossier_.fichier("trace.txt");
  char resultat = 0;
  const Appel appels[] = {
      consultation("CCAM_37", PHASE),
      consultation("CCAM_6", {{3011, {"HBFD008", "1"}}}),
      consultation("CCAM_16a", {{3010, {"HBFD008"}}}),
      consultation("CCAM_32a", {{3011, {"HEAE001", "1"}}}),
      consultation("TB13_1", {}),
      consultation("TB21_1", {}),
      [](void** z, unsigned* t) { return NOX_RechercherParMotCle("molaire", 0, z, t); },
      [](void** z, unsigned* t) { return NOX_RechercherParFiltre("", z, t); },
      [](void** z, unsigned* t) { return NOX_LireVersion(z, t); },
      regle("C_Pu", PRIX),
      regle("C_Association", {{3310, {"1", DATE, "HHFA002", "1", "123456789", "01"}},
                              {3310, {"2", DATE, "ZZHA001", "1", "123456789", "01"}}}),
      [&](void**, unsigned*) {
        return NOX_ControlerDonnees("C_Radio", DATE, controle.adresse(), controle.taille(), &resultat);
      },
      parSession(PHASE, [] { return NOX_ConsulterDonnee_S("CCAM_37", DATE, 1); }),
      parSession({}, [] { return NOX_RechercherParMotCle_S("molaire", 0, 1); }),
      parSession({}, [] { return NOX_RechercherParFiltre_S("HB", 1); }),
      parSession({}, [] { return NOX_LireVersion_S(1); }),
      parSession(PRIX, [] { return NOX_AppliquerRegle_S("C_Pu", 1); }),
      parSession(RADIO, [&] { return NOX_ControlerDonnees_S("C_Radio", DATE, 1, &resultat); }),
      [&](void**, unsigned*) {
        const unsigned code = NOX_InitTrace(trace.c_str(), "w", 1, 1);
        NOX_InitTrace(trace.c_str(), "w", 1, 0);
        return code;
      },
  };
  for (const Appel& appel : appels) {
    SCOPED_TRACE(&appel - appels);
    Reponse attendue;
    avecEchec(-1, attendue, appel);
    ASSERT_EQ(attendue.code, unsigned{NOX_CR_OK});
    epuiser(
        appel, attendue, 1000, [] {},
        [&] {
          Reponse encore;
          avecEchec(-1, encore, appel);
          ASSERT_EQ(encore, attendue);
        });
  }
}

TEST_F(Memoire, controleComplet) {
  Zone facture = {{1110, {"123456789", "01", "", "", "1", "08", "", "", "", "", "", "", "19800229"}},
                  {1511, {"N"}}};
  for (const char* numero : {"1", "2"}) {
    facture.push_back({1610, {numero, DATE, "0", "END", "", "", "", "", "", "", "10400", "10400", "70"}});
    facture.push_back({2020, {numero, "10400"}});
    facture.push_back({2100, {numero, "HBFD008", "", "1", "0", "", "", "", "", "", "", "", ""}});
    facture.push_back({3530, {numero, "ABC"}});
  }
  facture.push_back({3500, {""}});
  // Overseas: an association, a modifier, an age, a supplement, a travel.
  Zone outreMer = {{1110, {"123456789", "01", "", "", "1", "04", "", "", "01", "", "", "", "20200229"}},
                   {1511, {"N"}}};
  for (const char* numero : {"1", "2"}) {
    const bool premiere = *numero == '1';
    outreMer.push_back({1610, {numero, DATE, "0", "ADC", "", "", "", "", "", "", "20679", "20679", "70"}});
    outreMer.push_back({2020, {numero, "20679"}});
    outreMer.push_back({2100,
                        {numero, premiere ? "HHFA001" : "HHFA002", "", "1", "0", "F", "U", "", "",
                         premiere ? "1" : "2", "", "0", ""}});
  }
  outreMer.push_back({1620, {"3", DATE, "IFD", "", "", "", "", "70", "", "", ""}});
  outreMer.push_back({3500, {"974"}});
  Bloc bloc(facture);
  Bloc blocOutreMer(outreMer);
  const Appel appels[] = {
      [&](void** z, unsigned* t) { return NOX_ControleComplet(bloc.adresse(), bloc.taille(), z, t); },
      [&](void** z, unsigned* t) {
        return NOX_ControleComplet(blocOutreMer.adresse(), blocOutreMer.taille(), z, t);
      },
      parSession(facture, [] { return NOX_ControleComplet_S(1); }),
  };
  for (const Appel& appel : appels) {
    Reponse attendue;
    avecEchec(-1, attendue, appel);
    ASSERT_TRUE(attendue.remise) << attendue;
    epuiser(
        appel, attendue, 300, [] {},
        [&] {
          Reponse encore;
          avecEchec(-1, encore, appel);
          ASSERT_EQ(encore, attendue);
        });
  }
}

// What is read on first use is read again after a failure.
TEST_F(Memoire, premierUsage) {
  const Appel appels[] = {
      consultation("CCAM_37", PHASE),
      consultation("CCAM_16a", {{3010, {"HBFD008"}}}),
      [](void** z, unsigned* t) { return NOX_RechercherParMotCle("molaire", 0, z, t); },
  };
  for (const Appel& appel : appels) {
    SCOPED_TRACE(&appel - appels);
    Reponse attendue;
    avecEchec(-1, attendue, appel);
    ASSERT_EQ(attendue.code, unsigned{NOX_CR_OK});
    epuiser(
        appel, attendue, 150, [&] { ASSERT_EQ(recharger(), NOX_CR_OK); },
        [&] {
          Reponse encore;
          avecEchec(-1, encore, appel);
          ASSERT_EQ(encore, attendue);
        });
  }
}

TEST_F(Memoire, changementsAnnulationsEtSauvegardes) {
  const struct {
    const char* identifiant;
    Zone changement;
    const char* annulation;
    Zone cle;
  } cas[] = {
      {"CCAM_37", {{3201, {"HBFD008", "1", "0", "11050"}}}, "CCAM_37", PHASE},
      {"CCAM_42", {{3202, {"HHFA002", "1", "ADI"}}}, "CCAM_42", {{3011, {"HHFA002", "1"}}}},
      {"CCAM_47a",
       {{3203, {"973", "HBFD008", "1", "0", "1200"}}},
       "CCAM_47a",
       {{3013, {"973", "HBFD008", "1", "0"}}}},
      {"TB02_1", {{3204, {"2", "600"}}}, "TB02_1", {{3014, {"2"}}}},
      {"TB07_1", {{3205, {"972", "15000"}}}, "TB07_1", {{3017, {"972"}}}},
      {"TB11_1", {{3206, {"M", "3000"}}}, "TB11", {{3015, {"M"}}}},
      {"TB12_1", {{3208, {"1500"}}}, "TB12", {}},
      {"TB13_1", {{3210, {"ZZ9", "Actes du cabinet"}}}, "TB13_1", {}},
  };
  const auto fichier = [this] {
    EXPECT_EQ(NOX_SauvegarderReferentiel(nullptr), NOX_CR_OK);
    return lireFichier(dossier_.fichier("modifref.nox"));
  };
  const Reponse reussite{NOX_CR_OK, {}, false};
  int avantSessions = 6;  // the last ones go through a session
  for (const auto& [identifiant, nouvelle, annulee, cle] : cas) {
    SCOPED_TRACE(identifiant);
    const std::string nomAnnulation = annulee;
    const Zone& cleAnnulation = cle;
    const Zone entree = nomAnnulation == "TB11" ? Zone{{3015, {"M"}}} : cle;
    const Reponse avant = consulter(identifiant, DATE, entree);
    std::string sauvegarde = fichier();
    const bool enSession = avantSessions-- <= 0;
    epuiser(
        enSession ? parSession(nouvelle, [id = identifiant] { return NOX_ModifierDonnee_S(id, DATE, 1); })
                  : changement(identifiant, nouvelle),
        reussite, 1000, [] {},
        [&, id = identifiant] {
          ASSERT_EQ(consulter(id, DATE, entree), avant);
          ASSERT_EQ(annuler(nomAnnulation, cleAnnulation), NOX_CR_NON_MODIFIE);
          ASSERT_EQ(fichier(), sauvegarde);
        });
    const Reponse apres = consulter(identifiant, DATE, entree);
    EXPECT_FALSE(apres == avant);

    Reponse version;
    epuiser([](void**, unsigned*) { return NOX_SauvegarderReferentiel("essai"); }, reussite, 1000,
            [&] { version = lireVersion(); }, [&] { ASSERT_EQ(lireVersion(), version); });
    sauvegarde = fichier();
    epuiser(
        enSession ? parSession(cle, [id = annulee] { return NOX_AnnulerModification_S(id, 1); })
                  : annulation(annulee, cle),
        reussite, 1000, [] {},
        [&, id = identifiant] {
          ASSERT_EQ(consulter(id, DATE, entree), apres);
          ASSERT_EQ(fichier(), sauvegarde);
        });
    EXPECT_EQ(consulter(identifiant, DATE, entree), avant);
  }
}

TEST_F(Memoire, demarrage) {
  // With something to apply again.
  ASSERT_EQ(modifier("TB07_1", DATE, {{3205, {"972", "15000"}}}), NOX_CR_OK);
  ASSERT_EQ(modifier("TB11_1", DATE, {{3206, {"M", "3000"}}}), NOX_CR_OK);
  ASSERT_EQ(NOX_SauvegarderReferentiel(nullptr), NOX_CR_OK);
  const Reponse version = lireVersion();
  Reponse reponse;
  long n = 0;
  avecEchec(0, reponse, [](void**, unsigned*) { return NOX_TermLIB(); });
  ASSERT_EQ(reponse.code, unsigned{NOX_CR_OK}) << "shutting down asks for no memory";
  for (; NOX_TermLIB(), avecEchec(n, reponse, [](void**, unsigned*) { return NOX_InitLIB(); });
       n += n < 200 ? 1 : 1 + n / 40) {
    SCOPED_TRACE(testing::Message() << "allocation " << n);
    const bool chargee = reponse.code == NOX_CR_OK || reponse.code == NOX_CR_SUIVI_REPERTOIRE ||
                         reponse.code == NOX_CR_SUIVI_ECRITURE;
    if (!chargee) {
      ASSERT_TRUE(diteMemoire(reponse.code));
      ASSERT_EQ(lireVersion().code, unsigned{NOX_CR_NON_CHARGE});
    }
  }
  EXPECT_EQ(reponse.code, unsigned{NOX_CR_OK});
  EXPECT_EQ(lireVersion(), version);
  essais_ = n;
}

TEST(BlocsDeZone, sansMemoire) {
#if !defined(__SANITIZE_ADDRESS__)
  void* zone = &echec;
  restantes = 0;
  const unsigned code = NOX_AllouerZoneMem(&zone, 100);
  restantes = -1;
  EXPECT_EQ(code, unsigned{NOX_CR_MEMOIRE_ZONE});
  EXPECT_EQ(zone, nullptr);
#else
  GTEST_SKIP() << "the sanitizer keeps malloc for itself";
#endif
}

}  // namespace
