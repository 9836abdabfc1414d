// The zone itself: encodings, cursor, insertion, search, hostile bytes.
#include "manip/zone.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "basics/systeme.h"
#include "manip/zone_sortie.h"
#include "octets_essai.h"
#include "types/date.h"
#include "types/decimal.h"
#include "types/liste_codes.h"

namespace noxlux {
namespace {

// Walks a whole zone into groups, and returns the code that ends the walk when it is a fault.
CodeRetour parcourir(Zone& zone, essai::Zone& lus) {
  lus.clear();
  zone.positionnerDebut();
  while (!zone.finZone()) {
    std::uint16_t identifiant = 0;
    if (const CodeRetour cr = zone.avancerGroupeSuivant(identifiant); cr != NOX_CR_OK) {
      return cr;
    }
    lus.push_back({identifiant, {}});
    while (!zone.finGroupe()) {
      std::uint16_t numero = 0;
      Octets donnees;
      if (const CodeRetour cr = zone.avancerChampSuivant(numero, donnees); cr != NOX_CR_OK) {
        return cr;
      }
      lus.back().champs.push_back(texte(donnees));
      EXPECT_EQ(numero, lus.back().champs.size());
    }
  }
  return NOX_CR_OK;
}

essai::Zone groupesDe(Zone& zone) {
  essai::Zone lus;
  EXPECT_EQ(parcourir(zone, lus), NOX_CR_OK);
  return lus;
}

// --- Encodings ---

struct CasLongueur {
  std::uint32_t longueur;
  std::string prefixe;
};

const std::vector<CasLongueur> LONGUEURS = {{0, brut("\x00")},
                                            {1, brut("\x01")},
                                            {127, brut("\x7F")},
                                            {128, brut("\x81\x80")},
                                            {254, brut("\x81\xFE")},
                                            {255, brut("\x82\x00\xFF")},
                                            {65534, brut("\x82\xFF\xFE")},
                                            {65535, brut("\x83\x00\xFF\xFF")},
                                            {16777214, brut("\x83\xFF\xFF\xFE")},
                                            {16777215, brut("\x84\x00\xFF\xFF\xFF")}};

TEST(Longueur, changeDeFormeAuxSeuils) {
  for (const auto& [longueur, prefixe] : LONGUEURS) {
    SCOPED_TRACE(longueur);
    ASSERT_EQ(Zone::calculerTailleLongueur(longueur), prefixe.size());
    ZoneSortie sortie;
    ASSERT_EQ(sortie.allouer(Zone::calculerTailleGroupe({longueur})), NOX_CR_OK);
    const std::string donnees(longueur, 'x');
    ASSERT_EQ(sortie->ajouterGroupe(3000), NOX_CR_OK);
    ASSERT_EQ(sortie->ajouterChamp(octets(donnees)), NOX_CR_OK);
    // The size told in advance is the size taken, and what is written reads back.
    EXPECT_EQ(sortie->lireTailleDonnees(), sortie->lireTailleBuffer());
    EXPECT_TRUE(contenu(*sortie) == essai::ecrire({{3000, {donnees}}}));
    EXPECT_EQ(
        contenu(*sortie).substr(sortie->lireTailleDonnees() - longueur - prefixe.size(), prefixe.size()),
        prefixe);
    EXPECT_TRUE(groupesDe(*sortie) == (essai::Zone{{3000, {donnees}}}));
  }
}

TEST(Longueur, dUnGroupeSuitLesMemesSeuils) {
  // A content of exactly the length wanted, made of fields of 1 byte (2 with their prefix) and a last one.
  for (const std::uint32_t voulue : {127U, 128U, 254U, 255U, 65534U, 65535U}) {
    SCOPED_TRACE(voulue);
    ZoneSortie sortie;
    ASSERT_EQ(sortie.allouer(Zone::calculerTailleGroupe(voulue)), NOX_CR_OK);
    ASSERT_EQ(sortie->ajouterGroupe(1610), NOX_CR_OK);
    essai::Zone attendu = {{1610, {}}};
    for (std::uint32_t pris = 0; pris < voulue;) {
      const std::string donnees(voulue - pris == 3 ? 2 : (voulue - pris == 1 ? 0 : 1), 'y');
      ASSERT_EQ(sortie->ajouterChamp(octets(donnees)), NOX_CR_OK);
      attendu[0].champs.push_back(donnees);
      pris += 1 + static_cast<std::uint32_t>(donnees.size());
    }
    EXPECT_EQ(sortie->lireTailleDonnees(), sortie->lireTailleBuffer());
    EXPECT_TRUE(contenu(*sortie) == essai::ecrire(attendu));
  }
}

TEST(Longueur, lit0x80Comme128) {
  ZoneEssai essai(brut("\x0B\xB8\x81\x81\x80") + std::string(128, 'z'));
  EXPECT_EQ(groupesDe(essai.zone), (essai::Zone{{3000, {std::string(128, 'z')}}}));
}

TEST(Longueur, litLesFormesPlusLonguesQueNecessaire) {
  ZoneEssai essai(brut("\x0B\xB8\x84\x00\x00\x00\x05\x83\x00\x00\x01Q"));
  EXPECT_EQ(groupesDe(essai.zone), (essai::Zone{{3000, {"Q"}}}));
}

// --- Writing ---

TEST(Zone, refuseCeQuiNeTientPasEtResteIntacte) {
  const std::string longue(128, 'a');
  const std::size_t taille = Zone::calculerTailleGroupe({3, 128}) - 1;
  ZoneSortie sortie;
  ASSERT_EQ(sortie.allouer(taille), NOX_CR_OK);
  EXPECT_EQ(sortie->ajouterChamp(octets("abc")), NOX_CR_GROUPE_COURANT);
  ASSERT_EQ(sortie->ajouterGroupe(3000), NOX_CR_OK);
  ASSERT_EQ(sortie->ajouterChamp(octets("abc")), NOX_CR_OK);
  const std::string avant = contenu(*sortie);
  // One byte short: the data fit, the wider group prefix does not.
  EXPECT_EQ(sortie->ajouterChamp(octets(longue)), NOX_CR_ZONE_PLEINE);
  EXPECT_EQ(sortie->ajouterChamp(octets(std::string(200, 'b'))), NOX_CR_ZONE_PLEINE);
  EXPECT_EQ(contenu(*sortie), avant);
  ASSERT_EQ(sortie->redimensionner(static_cast<std::uint32_t>(taille + 1)), NOX_CR_OK);
  EXPECT_EQ(sortie->ajouterChamp(octets(longue)), NOX_CR_OK);
  EXPECT_EQ(sortie->ajouterGroupe(3001), NOX_CR_ZONE_PLEINE);
  EXPECT_EQ(sortie->redimensionner(static_cast<std::uint32_t>(taille)), NOX_CR_MEMOIRE_ZONE);
  EXPECT_EQ(groupesDe(*sortie), (essai::Zone{{3000, {"abc", longue}}}));

  ZoneSortie vide;
  ASSERT_EQ(vide.allouer(0), NOX_CR_OK);
  EXPECT_EQ(vide->lireTailleBuffer(), 1U);
  EXPECT_EQ(vide->ajouterGroupe(3000), NOX_CR_ZONE_PLEINE);
}

TEST(Zone, insereAuMilieu) {
  // For each place, the field inserted there widens the group's prefix (short and long field) or does not.
  for (const std::size_t longueur : {1U, 126U, 300U, 70000U}) {
    for (std::uint16_t apres = 0; apres <= 2; ++apres) {
      SCOPED_TRACE(testing::Message() << "longueur " << longueur << " apres le champ " << apres);
      essai::Zone groupes = {{3000, {"A"}}, {3001, {"un", "deux"}}, {3002, {"fin", ""}}};
      const std::string initiale = essai::ecrire(groupes);
      const std::string nouveau(longueur, 'n');
      groupes[1].champs.insert(groupes[1].champs.begin() + apres, nouveau);
      groupes.insert(groupes.begin() + 2, {2999, {}});
      const std::string attendue = essai::ecrire(groupes);

      ZoneSortie sortie;
      ASSERT_EQ(sortie.allouer(attendue.size()), NOX_CR_OK);
      ASSERT_EQ(sortie->ajouterGroupe(3000), NOX_CR_OK);
      ASSERT_EQ(sortie->ajouterChamp(octets("A")), NOX_CR_OK);
      ASSERT_EQ(sortie->ajouterGroupe(3001), NOX_CR_OK);
      ASSERT_EQ(sortie->ajouterChamp(octets("un")), NOX_CR_OK);
      ASSERT_EQ(sortie->ajouterChamp(octets("deux")), NOX_CR_OK);
      ASSERT_EQ(sortie->ajouterGroupe(3002), NOX_CR_OK);
      ASSERT_EQ(sortie->ajouterChamp(octets("fin")), NOX_CR_OK);
      ASSERT_EQ(sortie->ajouterChamp(Octets()), NOX_CR_OK);
      ASSERT_EQ(contenu(*sortie), initiale);

      Octets lu;
      ASSERT_EQ(apres == 0 ? sortie->rechercherGroupe(3001, 1) : sortie->rechercherChamp(3001, 1, apres, lu),
                NOX_CR_OK);
      ASSERT_EQ(sortie->ajouterChamp(octets(nouveau)), NOX_CR_OK);
      EXPECT_EQ(sortie->lireNumeroChamp(), apres + 1);
      ASSERT_EQ(sortie->ajouterGroupe(2999), NOX_CR_OK);
      EXPECT_TRUE(contenu(*sortie) == attendue);
    }
  }
}

TEST(Zone, ecritLesValeursSousLeurFormeDeZone) {
  ZoneSortie sortie;
  ASSERT_EQ(sortie.allouer(200), NOX_CR_OK);
  ASSERT_EQ(sortie->ajouterGroupe(3117), NOX_CR_OK);
  EXPECT_EQ(sortie->ajouterChamp(Montant(12.5)), NOX_CR_OK);
  EXPECT_EQ(sortie->ajouterChamp(Coefficient(0.25)), NOX_CR_OK);
  EXPECT_EQ(sortie->ajouterChamp(Date(2024, 2, 29)), NOX_CR_OK);
  EXPECT_EQ(sortie->ajouterChamp(Date()), NOX_CR_OK);
  EXPECT_EQ(sortie->ajouterChamp(Code("HHFA001")), NOX_CR_OK);
  EXPECT_EQ(sortie->ajouterChamp(Nombre(42)), NOX_CR_OK);
  EXPECT_EQ(groupesDe(*sortie),
            (essai::Zone{{3117, {"1250", "0250", "202402290000", "", "HHFA001", "00042"}}}));
}

TEST(Zone, modifieUnChampSurPlace) {
  ZoneEssai essai(essai::Zone{{3000, {"abc", "d"}}, {3001, {"e"}}});
  EXPECT_EQ(essai.zone.modifierChamp(octets("abc")), NOX_CR_FIN_ZONE);
  Octets donnees;
  ASSERT_EQ(essai.zone.rechercherChamp(3000, 1, 1, donnees), NOX_CR_OK);
  EXPECT_EQ(essai.zone.modifierChamp(octets("xy")), NOX_CR_INCOHERENCE);
  EXPECT_EQ(essai.zone.modifierChamp(octets("xyz")), NOX_CR_OK);
  EXPECT_EQ(groupesDe(essai.zone), (essai::Zone{{3000, {"xyz", "d"}}, {3001, {"e"}}}));
}

TEST(ZoneSortie, cedeUnBlocDExactementSesDonnees) {
  for (const essai::Zone& groupes :
       {essai::Zone{}, essai::Zone{{3000, {}}}, essai::Zone{{3000, {"abc"}}, {3001, {}}}}) {
    ZoneSortie sortie;
    ASSERT_EQ(sortie.allouer(500), NOX_CR_OK);
    for (const essai::Groupe& groupe : groupes) {
      ASSERT_EQ(sortie->ajouterGroupe(static_cast<std::uint16_t>(groupe.identifiant)), NOX_CR_OK);
      for (const std::string& champ : groupe.champs) {
        ASSERT_EQ(sortie->ajouterChamp(octets(champ)), NOX_CR_OK);
      }
    }
    void* bloc = nullptr;
    unsigned taille = 999;
    ASSERT_EQ(sortie.ceder(bloc, taille), NOX_CR_OK);
    EXPECT_FALSE(sortie);
    ASSERT_NE(bloc, nullptr);
    EXPECT_EQ(texte({static_cast<byte*>(bloc), taille}), essai::ecrire(groupes));
    Systeme::liberer(bloc);
  }
  if constexpr (sizeof(std::size_t) > 4) {
    ZoneSortie sortie;
    EXPECT_EQ(sortie.allouer(std::size_t{1} << (sizeof(std::size_t) * 8 - 8)), NOX_CR_MEMOIRE_ZONE);
    EXPECT_FALSE(sortie);
  }
}

// --- Cursor and search ---

const essai::Zone REPETEE = {{3000, {"a", "b"}}, {3001, {}}, {3000, {"c"}}, {3002, {"d"}}, {3000, {}}};

TEST(Zone, rechercheParOccurrence) {
  struct Cas {
    std::uint16_t identifiant, occurrence, numero;
    CodeRetour code;
    const char* donnees;
  };
  ZoneEssai essai(REPETEE);
  for (const Cas& cas : std::vector<Cas>{{3000, 1, 1, NOX_CR_OK, "a"},
                                         {3000, 1, 2, NOX_CR_OK, "b"},
                                         {3000, 2, 1, NOX_CR_OK, "c"},
                                         {3002, 1, 1, NOX_CR_OK, "d"},
                                         {3000, 1, 3, NOX_CR_FIN_ZONE, ""},
                                         {3000, 3, 1, NOX_CR_FIN_ZONE, ""},
                                         {3000, 4, 1, NOX_CR_GROUPE_ABSENT, ""},
                                         {3002, 2, 1, NOX_CR_GROUPE_ABSENT, ""},
                                         {3003, 1, 1, NOX_CR_FIN_ZONE, ""}}) {
    SCOPED_TRACE(testing::Message() << cas.identifiant << '/' << cas.occurrence << '/' << cas.numero);
    Octets donnees;
    EXPECT_EQ(essai.zone.rechercherChamp(cas.identifiant, cas.occurrence, cas.numero, donnees), cas.code);
    EXPECT_EQ(texte(donnees), cas.donnees);
  }
}

TEST(Zone, deplaceSonCurseur) {
  ZoneEssai essai(REPETEE);
  Zone& zone = essai.zone;
  std::uint16_t identifiant = 0;
  std::uint16_t numero = 0;
  Octets donnees;
  EXPECT_EQ(zone.lireChampCourant(identifiant, numero, donnees), NOX_CR_FIN_ZONE);
  ASSERT_EQ(zone.avancerGroupeSuivant(identifiant, 3), NOX_CR_OK);
  EXPECT_EQ(zone.lireNombreChamps(), 0U);  // the fields of the groups left behind were not walked
  ASSERT_EQ(zone.avancerChampSuivant(numero, donnees), NOX_CR_OK);
  ASSERT_EQ(zone.lireChampCourant(identifiant, numero, donnees), NOX_CR_OK);
  EXPECT_EQ(identifiant, 3000);
  EXPECT_EQ(texte(donnees), "c");

  zone.positionnerDebut();
  ASSERT_EQ(zone.avancerGroupeSuivant(identifiant, 4, true), NOX_CR_OK);
  EXPECT_EQ(identifiant, 3002);
  EXPECT_EQ(zone.lireNombreChamps(), 3U);
  EXPECT_EQ(zone.lireNombreGroupes(), 4);
  EXPECT_FALSE(zone.finZone());
  ASSERT_EQ(zone.lireGroupeSuivant(identifiant), NOX_CR_OK);
  EXPECT_EQ(identifiant, 3000);
  EXPECT_EQ(zone.lireIdentifiant(), 3002);

  std::uint16_t occurrence = 0;
  ASSERT_EQ(zone.lireGroupeSuivant(identifiant, occurrence), NOX_CR_OK);
  EXPECT_EQ(occurrence, 3);
  EXPECT_TRUE(zone.finZone());
  EXPECT_EQ(zone.lireGroupeSuivant(identifiant), NOX_CR_FIN_ZONE);

  zone.positionnerDebut();
  ASSERT_EQ(zone.positionnerFin(), NOX_CR_OK);
  EXPECT_TRUE(zone.finDonnees());
  EXPECT_EQ(zone.lireNombreGroupes(), 5);
  EXPECT_EQ(zone.lireNombreChamps(), 4U);
}

// --- Hostile bytes ---

TEST(Zone, refuseLesOctetsMalFormes) {
  struct Cas {
    const char* quoi;
    std::string octets;
  };
  for (const Cas& cas : std::vector<Cas>{
           {"identifiant coupé", brut("\x0B")},
           {"longueur absente", brut("\x0B\xB8")},
           {"groupe plus long que la zone", brut("\x0B\xB8\x02\x00")},
           {"cinq octets de longueur", brut("\x0B\xB8\x85\x00\x00\x00\x00\x01\x00")},
           {"longueur réservée", brut("\x0B\xB8\xFF")},
           {"longueur coupée", brut("\x0B\xB8\x82\x00")},
           {"longueur sans octets", brut("\x0B\xB8\x84")},
           {"groupe de 2^32 - 1", brut("\x0B\xB8\x84\xFF\xFF\xFF\xFF\x00")},
           {"groupe de 2^32 - 7, qui revient au début", brut("\x0B\xB8\x84\xFF\xFF\xFF\xF9\x00")},
           {"groupe de 2^31", brut("\x0B\xB8\x84\x80\x00\x00\x00")},
           {"champ plus long que le groupe", brut("\x0B\xB8\x02\x02\x41\x0B\xB8\x00")},
           {"champ de 2^32 - 1", brut("\x0B\xB8\x05\x84\xFF\xFF\xFF\xFF")},
           {"champ de 2^32 - 5, qui revient au début", brut("\x0B\xB8\x05\x84\xFF\xFF\xFF\xFB")},
           {"longueur de champ à cheval sur le groupe suivant", brut("\x0B\xB8\x01\x82\x0B\xB8\x00")},
           {"longueur de champ coupée", brut("\x0B\xB8\x01\x81")},
           {"longueur de champ réservée", brut("\x0B\xB8\x02\x90\x00")},
           {"0x80 vaut 128", brut("\x0B\xB8\x80\x00")},
           {"second groupe coupé", brut("\x0B\xB8\x01\x00\x0B\xB8")}}) {
    SCOPED_TRACE(cas.quoi);
    ZoneEssai essai(cas.octets);
    essai::Zone lus;
    EXPECT_EQ(parcourir(essai.zone, lus), NOX_CR_ZONE_MAL_FORMEE);
    essai.zone.positionnerDebut();
    EXPECT_EQ(essai.zone.positionnerFin(), NOX_CR_ZONE_MAL_FORMEE);
    essai.zone.dump();
    EXPECT_EQ(contenu(essai.zone), cas.octets);
  }
}

// Whatever the bytes, the walk agrees with an independent reader on what is well formed and what it says.
TEST(Zone, saccordeAvecUnAutreLecteurSurDesOctetsAbimes) {
  const std::string saine =
      essai::ecrire({{3000, {"HHFA001", "", std::string(130, 'x')}}, {1610, {"1"}}, {3001, {}}});
  std::vector<std::string> abimees;
  for (std::size_t i = 0; i < saine.size(); ++i) {
    for (const int octet : {0x00, 0x01, 0x7F, 0x80, 0x81, 0x82, 0x84, 0x85, 0xFF}) {
      abimees.push_back(saine);
      abimees.back()[i] = static_cast<char>(octet);
    }
    if (i > 0) {
      abimees.push_back(saine.substr(0, i));
    }
  }
  std::size_t refusees = 0;
  for (const std::string& abimee : abimees) {
    ZoneEssai essai(abimee);
    essai::Zone attendus;
    essai::Zone lus;
    const CodeRetour cr = parcourir(essai.zone, lus);
    if (essai::lire(abimee, attendus)) {
      ASSERT_EQ(cr, NOX_CR_OK);
      ASSERT_EQ(lus, attendus);
    } else {
      ASSERT_EQ(cr, NOX_CR_ZONE_MAL_FORMEE);
      ++refusees;
    }
  }
  EXPECT_GT(refusees, saine.size());
}

TEST(Zone, montreUnChampSansOctetsDeCommande) {
  EXPECT_EQ(Zone::dumpChamp(octets(brut("A\x00\n\x7F\x85\xE9"))), "A....\xE9");
  EXPECT_EQ(Zone::dumpChamp(octets(std::string(100, 'k'))), std::string(60, 'k'));
}

}  // namespace
}  // namespace noxlux
