// The checks of every entry point on what it is given, before any question is looked at.
#include <functional>

#include "bibliotheque_essai.h"

using namespace essai;

namespace {

using Parametres = AvecReference;

const Zone ACTE = {{3010, {"HBFD008"}}};

TEST_F(Parametres, entreesRefusees) {
  Bloc bloc(ACTE);
  void* const in = bloc.adresse();
  const unsigned n = bloc.taille();
  char resultat = '?';
  const struct {
    const char* cas;
    std::function<unsigned(void**, unsigned*)> appel;
    unsigned code;
  } cas[] = {
      {"no identifier",
       [&](void** z, unsigned* t) { return NOX_ConsulterDonnee(nullptr, DATE, in, n, z, t); }, 0xF802},
      {"empty identifier", [&](void** z, unsigned* t) { return NOX_ConsulterDonnee("", DATE, in, n, z, t); },
       0xF802},
      {"no date", [&](void** z, unsigned* t) { return NOX_ConsulterDonnee("CCAM_1", nullptr, in, n, z, t); },
       0xF802},
      {"29 February",
       [&](void** z, unsigned* t) { return NOX_ConsulterDonnee("CCAM_1", "20230229", in, n, z, t); }, 0xF802},
      {"date too short",
       [&](void** z, unsigned* t) { return NOX_ConsulterDonnee("CCAM_1", "2026011", in, n, z, t); }, 0xF802},
      {"date with hour",
       [&](void** z, unsigned* t) { return NOX_ConsulterDonnee("CCAM_1", "202601151200", in, n, z, t); },
       0xF802},
      {"date before the identifier's lookup",
       [&](void** z, unsigned* t) { return NOX_ConsulterDonnee("?", "", in, n, z, t); }, 0xF802},
      {"unknown identifier",
       [&](void** z, unsigned* t) { return NOX_ConsulterDonnee("CCAM_99", DATE, in, n, z, t); }, 0xD000},
      {"control identifier",
       [&](void** z, unsigned* t) { return NOX_ConsulterDonnee("C_Radio", DATE, in, n, z, t); }, 0xD000},
      {"no zone",
       [&](void** z, unsigned* t) { return NOX_ConsulterDonnee("CCAM_1", DATE, nullptr, n, z, t); }, 0xF803},
      {"zone of size 0",
       [&](void** z, unsigned* t) { return NOX_ConsulterDonnee("CCAM_1", DATE, in, 0, z, t); }, 0xF803},
      {"zone not expected",
       [&](void** z, unsigned* t) { return NOX_ConsulterDonnee("TB12_1", DATE, in, n, z, t); }, 0xA000},
      {"null zone not expected, with a size",
       [&](void** z, unsigned* t) { return NOX_ConsulterDonnee("TB12_1", DATE, nullptr, 1, z, t); }, 0xA000},
      {"no keyword", [](void** z, unsigned* t) { return NOX_RechercherParMotCle(nullptr, 0, z, t); }, 0xF802},
      {"empty keyword", [](void** z, unsigned* t) { return NOX_RechercherParMotCle("", 0, z, t); }, 0xF802},
      {"keyword without letters",
       [](void** z, unsigned* t) { return NOX_RechercherParMotCle(" -!? ", 0, z, t); }, 0xF802},
      {"no filter", [](void** z, unsigned* t) { return NOX_RechercherParFiltre(nullptr, z, t); }, 0xF802},
      {"filter of 5", [](void** z, unsigned* t) { return NOX_RechercherParFiltre("ABCDE", z, t); }, 0xF802},
      {"filter with a digit", [](void** z, unsigned* t) { return NOX_RechercherParFiltre("AB1", z, t); },
       0xF802},
      {"filter in small letters", [](void** z, unsigned* t) { return NOX_RechercherParFiltre("ab", z, t); },
       0xF802},
      {"rule: no identifier", [&](void** z, unsigned* t) { return NOX_AppliquerRegle(nullptr, in, n, z, t); },
       0xF802},
      {"rule: no zone", [&](void** z, unsigned* t) { return NOX_AppliquerRegle("C_Pu", nullptr, n, z, t); },
       0xF803},
      {"rule: unknown identifier",
       [&](void** z, unsigned* t) { return NOX_AppliquerRegle("CCAM_1", in, n, z, t); }, 0xD100},
      {"check: no zone", [&](void** z, unsigned* t) { return NOX_ControleComplet(nullptr, n, z, t); },
       0xF803},
      {"check: zone of size 0", [&](void** z, unsigned* t) { return NOX_ControleComplet(in, 0, z, t); },
       0xF803},
      {"change: no identifier", [&](void**, unsigned*) { return NOX_ModifierDonnee(nullptr, DATE, in, n); },
       0xF802},
      {"change: wrong date",
       [&](void**, unsigned*) { return NOX_ModifierDonnee("TB12_1", "20261301", in, n); }, 0xF802},
      {"change: no zone", [&](void**, unsigned*) { return NOX_ModifierDonnee("TB12_1", DATE, nullptr, 0); },
       0xF803},
      {"change: zone before identifier",
       [&](void**, unsigned*) { return NOX_ModifierDonnee("?", DATE, in, 0); }, 0xF803},
      {"change: unknown identifier",
       [&](void**, unsigned*) { return NOX_ModifierDonnee("CCAM_1", DATE, in, n); }, 0xD000},
      {"cancel: no identifier", [&](void**, unsigned*) { return NOX_AnnulerModification("", in, n); },
       0xF802},
      {"cancel: identifier of a change",
       [&](void**, unsigned*) { return NOX_AnnulerModification("TB11_1", in, n); }, 0xD000},
      {"cancel: no zone", [&](void**, unsigned*) { return NOX_AnnulerModification("TB11", nullptr, 0); },
       0xF803},
      {"cancel: zone not expected", [&](void**, unsigned*) { return NOX_AnnulerModification("TB12", in, n); },
       0xA000},
      {"control: no identifier",
       [&](void**, unsigned*) { return NOX_ControlerDonnees(nullptr, DATE, in, n, &resultat); }, 0xF802},
      {"control: no date",
       [&](void**, unsigned*) { return NOX_ControlerDonnees("C_Radio", nullptr, in, n, &resultat); }, 0xF802},
      {"control: no zone",
       [&](void**, unsigned*) { return NOX_ControlerDonnees("C_Radio", DATE, in, 0, &resultat); }, 0xF803},
      {"control: no answer",
       [&](void**, unsigned*) { return NOX_ControlerDonnees("C_Radio", DATE, in, n, nullptr); }, 0xF802},
      {"control: unknown identifier",
       [&](void**, unsigned*) { return NOX_ControlerDonnees("C_Pu", DATE, in, n, &resultat); }, 0xD100},
  };
  for (const auto& [nom, appel, code] : cas) {
    SCOPED_TRACE(nom);
    // What has no answer zone leaves the addresses alone: they are made as after a failure.
    const Reponse reponse = recevoir([&](void** zone, unsigned* taille) {
      const unsigned cr = appel(zone, taille);
      if (*taille == 0xDEAD) {
        *zone = nullptr;
        *taille = 0;
      }
      return cr;
    });
    EXPECT_EQ(reponse, (Reponse{code, {}, false}));
  }
  EXPECT_EQ(resultat, '?');
}

TEST_F(Parametres, adressesDeSortie) {
  Bloc bloc(ACTE);
  const std::function<unsigned(void**, unsigned*)> appels[] = {
      [&](void** z, unsigned* t) {
        return NOX_ConsulterDonnee("CCAM_1", DATE, bloc.adresse(), bloc.taille(), z, t);
      },
      [&](void** z, unsigned* t) { return NOX_AppliquerRegle("C_Pu", bloc.adresse(), bloc.taille(), z, t); },
      [&](void** z, unsigned* t) { return NOX_ControleComplet(bloc.adresse(), bloc.taille(), z, t); },
      [](void** z, unsigned* t) { return NOX_RechercherParMotCle("dent", 0, z, t); },
      [](void** z, unsigned* t) { return NOX_RechercherParFiltre("", z, t); },
      [](void** z, unsigned* t) { return NOX_LireVersion(z, t); },
  };
  for (const auto& appel : appels) {
    SCOPED_TRACE(&appel - appels);
    void* zone = &bloc;
    unsigned taille = 7;
    EXPECT_EQ(appel(nullptr, &taille), NOX_CR_PARAMETRE_SORTIE);
    EXPECT_EQ(taille, 0U);
    EXPECT_EQ(appel(&zone, nullptr), NOX_CR_PARAMETRE_SORTIE);
    EXPECT_EQ(zone, nullptr);
    const TraceEssai trace({6});
    EXPECT_EQ(appel(nullptr, nullptr), NOX_CR_PARAMETRE_SORTIE);
    EXPECT_TRUE(trace.contient("ERREUR: buffer = pointeur nul."));
    EXPECT_FALSE(trace.contient("ERREUR: taille nulle.")) << "one fault is told";
  }
}

// The zone that an act function expects, spoilt in every way.
TEST_F(Parametres, zonesMalFormees) {
  const struct {
    const char* cas;
    std::string octets;
    unsigned code;
  } cas[] = {
      {"another group", ecrire({{3011, {"HBFD008", "1"}}}), 0xB000 + 3010},
      {"group twice", ecrire({{3010, {"HBFD008"}}, {3010, {"HBFD008"}}}), 0xA001 + 1},
      {"group after", ecrire({{3010, {"HBFD008"}}, {3011, {"HBFD008", "1"}}}), 0xA001 + 1},
      {"no field", ecrire({{3010, {}}}), 0xA800 + 1},
      {"too many fields", ecrire({{3010, {"HBFD008", "1"}}}), 0xA800 + 1},
      {"small letters", ecrire({{3010, {"hbfd008"}}}), 0x9001},
      {"inner space", ecrire({{3010, {"HBFD 008"}}}), 0x9001},
      {"too short", ecrire({{3010, {"HBFD"}}}), 0x9001},
      {"too long", ecrire({{3010, {std::string(14, 'A')}}}), 0x9001},
      {"cut in the identifier", "\x0B", 0xF810},
      {"cut in the group", ecrire(ACTE).substr(0, 6), 0xF810},
      {"length prefix too wide", std::string("\x0B\xC2\x85\x01\x41", 5), 0xF810},
      {"length near 2^32", std::string("\x0B\xC2\x84\xFF\xFF\xFF\xFF\x07HBFD008", 15), 0xF810},
      {"field beyond its group", std::string("\x0B\xC2\x08\x7FHBFD008", 11), 0xF810},
  };
  for (const auto& [nom, octets, code] : cas) {
    SCOPED_TRACE(nom);
    Bloc bloc(octets);
    const Reponse reponse = recevoir([&](void** z, unsigned* t) {
      return NOX_ConsulterDonnee("CCAM_1", DATE, bloc.adresse(), bloc.taille(), z, t);
    });
    EXPECT_EQ(reponse, (Reponse{code, {}, false}));
  }
  // A code may come padded, as searches give it, and its length in a longer form than needed.
  EXPECT_EQ(consulter("ccam_1", "202601150000", {{3010, {"HBFD008      "}}}).code, NOX_CR_OK);
  Bloc long_(std::string("\x0B\xC2\x81\x0A\x82\x00\x07HBFD008", 14));
  EXPECT_EQ(recevoir([&](void** z, unsigned* t) {
              return NOX_ConsulterDonnee("CCAM_1", DATE, long_.adresse(), long_.taille(), z, t);
            }).zone,
            (Zone{{3116, {"O"}}}));
}

// Faults at places that do not fit in their family of codes: the last code of the family stands for them all.
TEST_F(Parametres, placesAuDelaDeLeurFamille) {
  const Zone prix = {{3400, {"1", "974"}}, {3410, {"1", DATE, "HBFD008", "1", "0"}}};
  Zone facture = factureDentaire("10400");
  facture.pop_back();
  const Groupe outrepassee = {3530, {"1", "PROD999"}};
  const Groupe sansChamp = {3530, {}};
  const Groupe inconnu = {4000, {""}};
  constexpr unsigned CHAMP = 0;  // the fault is a refused field at that place, instead of a group
  const struct {
    unsigned place;
    Groupe fautif;
    unsigned regle;
    unsigned complet;
  } cas[] = {
      {2046, sansChamp, 0xAFFE, 0xAFFE},
      {2047, sansChamp, 0xAFFF, 0xAFFF},
      {2048, sansChamp, 0xAFFF, 0xAFFF},
      {22528, sansChamp, 0xAFFF, 0xAFFF},
      {65537, sansChamp, 0xAFFF, 0xAFFF},
      {4094, {CHAMP, {}}, 0x9FFE, 0x9FFE},
      {4096, {CHAMP, {}}, 0x9FFF, 0x9FFF},
      {16673, {CHAMP, {}}, 0x9FFF, 0x9FFF},
      {28672, {CHAMP, {}}, 0x9FFF, 0x9FFF},
      {2046, inconnu, 0xA7FE, 0},
      {2048, inconnu, 0xA7FF, 0},
      {24576, inconnu, 0xA7FF, 0},
      {22528, {3530, {"1", "PROD999", ""}}, 0xAFFF, 0},
  };
  for (const auto& [place, fautif, regle, complet] : cas) {
    for (const bool unique : {true, false}) {
      SCOPED_TRACE(testing::Message() << place << " " << fautif << (unique ? " rule" : " full check"));
      Zone zone = unique ? prix : facture;
      std::size_t champs = 0;
      for (const Groupe& groupe : zone) {
        champs += groupe.champs.size();
      }
      const bool parGroupes = fautif.identifiant != CHAMP;
      zone.resize(zone.size() + (parGroupes ? place - 1 - zone.size() : (place - 1 - champs) / 2),
                  outrepassee);
      zone.push_back(parGroupes                      ? fautif
                     : (place - 1 - champs) % 2 != 0 ? Groupe{3530, {"1", "prod"}}
                                                     : Groupe{3530, {"x", "PROD999"}});
      if (!unique) {
        zone.push_back({3500, {""}});
      }
      const unsigned code = unique ? regle : complet;
      EXPECT_EQ((unique ? appliquer("C_Pu", zone) : controlerComplet(zone)).code, code);
    }
  }
}

// Every cut and every changed byte of real requests: an answer or a code, never a byte read outside.
TEST_F(Parametres, zonesCoupeesEtChangees) {
  const std::string facture = ecrire(factureDentaire("10400"));
  const std::string base = ecrire(
      {{3400, {"1", "974"}},
       {3420,
        {"1", DATE, "HBFD008", "1", "0", "F", "", "", "", "", "0", "", "", "123456789", "01", "10400"}}});
  const auto demander = [](const std::string& octets, bool complet) {
    Bloc bloc(octets);
    return recevoir([&](void** z, unsigned* t) {
      return complet ? NOX_ControleComplet(bloc.adresse(), bloc.taille(), z, t)
                     : NOX_AppliquerRegle("C_Base", bloc.adresse(), bloc.taille(), z, t);
    });
  };
  unsigned refus = 0;
  for (const bool complet : {true, false}) {
    const std::string& octets = complet ? facture : base;
    const Reponse entiere = demander(octets, complet);
    ASSERT_EQ(entiere.code, unsigned{NOX_CR_OK});
    for (std::size_t i = 0; i < octets.size(); ++i) {
      SCOPED_TRACE(i);
      // A rule may be asked of no line at all.
      const bool sansLigne = !complet && i == ecrire({{3400, {"1", "974"}}}).size();
      EXPECT_EQ(demander(octets.substr(0, i), complet).remise, sansLigne);
      for (const unsigned masque : {0x01U, 0x80U, 0xFFU}) {
        std::string abimee = octets;
        abimee[i] = static_cast<char>(static_cast<unsigned char>(abimee[i]) ^ masque);
        refus += demander(abimee, complet).remise ? 0U : 1U;
      }
    }
    EXPECT_EQ(demander(octets, complet), entiere);
  }
  EXPECT_GT(refus, facture.size());
}

}  // namespace
