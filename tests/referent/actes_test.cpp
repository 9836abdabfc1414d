// Act records: what reads back, what is refused and where, what the trace shows.
#include "fichier/lecteur.h"
#include "referent/fabrique_reference.h"

using namespace noxlux;
using namespace essai;

namespace {

class Actes : public testing::Test {
 protected:
  static Octets ecrire(const NiveauActe& acte) {
    return octetsEcrits([&](Ecrivain& ecrivain) { return acte.ecrireNiveauActe(ecrivain); });
  }
  static CodeRetour lire(const Octets& octets, NiveauActe& acte) {
    Repertoire repertoire;
    repertoire.ecrire("acte", octets);
    std::FILE* fichier = std::fopen(repertoire.chemin("acte").c_str(), "rb");
    Lecteur lecteur(fichier);
    const CodeRetour cr = acte.lireNiveauActe(lecteur);
    std::fclose(fichier);
    return cr;
  }
  NiveauActe acte_ = Reference().actes[0];
};

TEST_F(Actes, ceQuiEstEcritSeRelit) {
  std::vector<CodeActe> incompatibles;
  for (unsigned i = 0; i < 300; ++i) {
    char code[16];
    std::snprintf(code, sizeof code, "ABCD%03u", i);
    incompatibles.emplace_back(code);
  }
  acte_.historiques[0].incompatibilites.affecter(incompatibles);
  const Octets octets = ecrire(acte_);
  NiveauActe relu;
  ASSERT_EQ(lire(octets, relu), 0);
  EXPECT_EQ(ecrire(relu), octets);
  EXPECT_EQ(relu.historiques[0].incompatibilites[299].vue(), "ABCD299");
  EXPECT_EQ(relu.activites[0].historiques[1].associations[0].regleTarifaire, 'A');
  EXPECT_EQ(relu.activites[0].phases[0].historiques[0].prixUnitaire, 38.35);
  EXPECT_EQ(relu.activites[0].phases[0].historiques[0].majorationsDOM[3], 1.3);
}

TEST_F(Actes, valeursRefusees) {
  using Defaut = void (*)(NiveauActe&);
  const struct {
    Defaut defaut;
    const char* message;
  } CAS[] = {
      {[](NiveauActe& a) { a.codeStructure = CodeActe("HB D038"); },
       "ERREUR position 0x0x0000000D : Code totalement structure incorrect"},
      {[](NiveauActe& a) { a.libelleCourt = {}; },
       "ERREUR position 0x0000000D : libelle court non renseigne"},
      {[](NiveauActe& a) { a.libelleLong = {}; }, "ERREUR position 0x0000001B : libelle long non renseigne"},
      {[](NiveauActe& a) { a.typeActe = '?'; }, " : type d'acte incorrect"},
      {[](NiveauActe& a) { a.sexeCompatible = 'f'; }, " : sexe compatible incorrect"},
      {[](NiveauActe& a) { a.dateCreation = {}; }, " : date de creation incorrecte"},
      {[](NiveauActe& a) {
         a.dateFin = {2020, 2, 30};
       },
       " : date de fin du code incorrecte"},
      {[](NiveauActe& a) { a.fraisDeplacement = '-'; }, " : Code Frais de deplacement incorrect"},
      {[](NiveauActe& a) {
         const CodeNatureAssurance natures[] = {CodeNatureAssurance("AS"), CodeNatureAssurance()};
         a.naturesAssurance.affecter(natures);
       },
       "ERREUR position 0x00000043 : Nature d'assurance obligatoire"},
      {[](NiveauActe& a) {
         const CodeNatureAssurance natures[] = {CodeNatureAssurance("as"), CodeNatureAssurance("AS")};
         a.naturesAssurance.affecter(natures);
       },
       "ERREUR position 0x00000041 : Code Nature d'assurance incorrect"},
      {[](NiveauActe& a) {
         const char codes[] = {'4', '?'};
         a.naturesAssurance = {};
         a.historiques[0].exonerationsTM.affecter(codes);
       },
       "ERREUR position 0x0000004A : Code Exo TM incorrect"},
      {[](NiveauActe& a) { a.historiques.clear(); },
       " : Le nombre d'historiques de niveau acte ne doit pas etre nul"},
      {[](NiveauActe& a) { a.activites.clear(); }, " : Le nombre d'activites ne doit pas etre nul"},
      {[](NiveauActe& a) { a.historiques[1].dateEffet = {}; }, " : date d'effet incorrecte"},
      {[](NiveauActe& a) { a.activites[0].codeActivite = ' '; }, " : code activite incorrect"},
      {[](NiveauActe& a) { a.activites[0].historiques.clear(); },
       " : Le nombre d'historiques de niveau activite ne doit pas etre nul"},
      {[](NiveauActe& a) {
         const Association associations[] = {{CodeActe("ZZLP025"), '!'}};
         a.activites[0].historiques[0].associations.affecter(associations);
       },
       " : Code regle tarifaire incorrect"},
      {[](NiveauActe& a) { a.activites[0].phases[0].historiques.clear(); },
       " : Le nombre d'historiques de niveau phase ne doit pas etre nul"},
      {[](NiveauActe& a) { a.activites[0].phases[0].historiques[1].majorationsDOM[2] = -1; },
       " : majoration DOM incorrecte"},
  };
  for (const auto& cas : CAS) {
    NiveauActe mauvais = acte_;
    cas.defaut(mauvais);
    Ecoute ecoute;
    NiveauActe relu;
    EXPECT_EQ(lire(ecrire(mauvais), relu), 0xD640) << cas.message;
    EXPECT_TRUE(ecoute.contient(cas.message)) << cas.message << ecoute.texte();
  }
  NiveauActe sansPhase = acte_;
  sansPhase.activites[0].phases.clear();
  NiveauActe relu;
  EXPECT_EQ(lire(ecrire(sansPhase), relu), 0);
}

TEST_F(Actes, historiquesDuPlusRecentAuPlusAncien) {
  std::swap(acte_.historiques[0], acte_.historiques[1]);
  NiveauActe relu;
  ASSERT_EQ(lire(ecrire(acte_), relu), 0);
  const struct {
    Date date;
    CodeRetour cr;
    std::uint16_t annee;
  } CAS[] = {{Date(2026, 1, 1), 0, 2015},
             {Date(2015, 3, 1), 0, 2015},
             {Date(2015, 2, 28), 0, 2005},
             {Date(2005, 3, 1), 0, 2005},
             {Date(2005, 2, 28), 0xD003, 0}};
  for (const auto& cas : CAS) {
    const HistoriqueNiveauActe* historique = nullptr;
    EXPECT_EQ(relu.chercherHistorique(historique, cas.date), cas.cr);
    EXPECT_EQ(historique == nullptr ? 0 : historique->dateEffet.annee, cas.annee);
  }
  NiveauActivite* activite = nullptr;
  EXPECT_EQ(relu.chercherActivite('4', activite), 0xD002);
  EXPECT_EQ(activite, nullptr);
  ASSERT_EQ(relu.chercherActivite('1', activite), 0);
  NiveauPhase* phase = nullptr;
  EXPECT_EQ(activite->chercherNiveauPhase('1', phase), 0xD002);
  EXPECT_EQ(phase, nullptr);
}

TEST_F(Actes, dump) {
  Ecoute ecoute;
  acte_.dump(2);
  EXPECT_TRUE(
      ecoute.contient("Code structure : \"HBLD038      \"\nLibelle court : libelle court\n"
                      "Libelle long  : libelle long\nType d'acte   : 1\nConditions generales : \n"
                      "Notes : note\nSexe compatible :  \nCode menu : 1\nDate de creation : 01/03/2005\n"
                      "Date de fin : 00/00/0000\nFrais de deplacement :  \n"
                      "Nombre de natures d'assurance : 2\n"))
      << ecoute.texte();
  for (const char* ligne :
       {"HISTORIQUES NIVEAU ACTE:\nHISTORIQUE D'INDICE 0:\n",
        "Nombre d'activites : 1\nACTIVITE D'INDICE 0:\n",
        "Nombre de codes extension docmentaire: 0\nHISTORIQUES NIVEAU ACTIVITE:\n",
        "Nombre de phases de traitement : 1\nPHASE D'INDICE 0:\n", "HISTORIQUES NIVEAU PHASE:\n"}) {
    EXPECT_TRUE(ecoute.contient(ligne)) << ligne;
  }
}

}  // namespace
