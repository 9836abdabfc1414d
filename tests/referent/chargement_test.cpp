// Loading the two files: what passes, what is refused and by which code.
#include "referent/fabrique_reference.h"

using namespace noxlux;
using namespace essai;

namespace {

class Chargement : public testing::Test {
 protected:
  CodeRetour charger() {
    referentiel_ = std::make_unique<Referentiel>();
    return essai::charger(*referentiel_, repertoire_);
  }
  CodeRetour ecrireEtCharger() {
    reference_.ecrire(repertoire_);
    return charger();
  }
  // Changes the bytes of a file, whose checksum is made right again.
  template <class F>
  void retoucher(const char* fichier, F&& retouche) {
    Octets octets = repertoire_.lire(fichier);
    retouche(octets);
    refaireCRC(octets);
    repertoire_.ecrire(fichier, octets);
  }
  template <class... I>
  void retirerTables(const char* fichier, I... identifiants) {
    retoucher(fichier, [&](Octets& octets) {
      const auto retirer = [&](const char* identifiant) {
        const TableFichier table = trouverTable(octets, identifiant);
        octets.erase(octets.begin() + static_cast<std::ptrdiff_t>(table.entete),
                     octets.begin() + static_cast<std::ptrdiff_t>(table.fin));
      };
      (retirer(identifiants), ...);
    });
  }
  void ecrireModifications() {
    ASSERT_EQ(ecrireEtCharger(), 0);
    referentiel_->entete.numeroRevision = 12;
    referentiel_->lignes<ModificationSeuil>().push_back({1, {2026, 1, 1}, 125.0});
    ASSERT_EQ(referentiel_->sauvegarderModifications(), 0);
  }

  Repertoire repertoire_;
  Reference reference_;
  std::unique_ptr<Referentiel> referentiel_;
};

TEST_F(Chargement, referenceEntiere) {
  ASSERT_EQ(ecrireEtCharger(), 0);
  EXPECT_EQ(referentiel_->nombreTables, 58);
  EXPECT_EQ(referentiel_->lignes<HistoriqueValeurModificateur>()[0].coefficient, 1.057);
  EXPECT_EQ(referentiel_->lignes<Seuil>()[0].guyane, 123.01);
  EXPECT_TRUE(referentiel_->lignes<MotCle>().empty());
  for (const unsigned short differee : TABLES_DIFFEREES) {
    EXPECT_EQ(referentiel_->assurerTable(differee), 0);
  }
  EXPECT_EQ(referentiel_->lignes<MotCle>()[0].motCle.vue(), "DENTAIRE");
  NiveauActe acte;
  ASSERT_EQ(referentiel_->chargerActe(referentiel_->lignes<Index>()[1].position, acte, "ZZQX001"), 0);
  EXPECT_EQ(acte.codeStructure.vue(), "ZZQX001");
  EXPECT_EQ(acte.activites[0].phases[0].historiques[1].prixUnitaire, 9.05);
}

TEST_F(Chargement, versions) {
  const struct {
    const char* logicielle;
    const char* minimale;
    CodeRetour cr;
  } CAS[] = {{"0113", "0121", 0},      {"0113", "0122", 0xD620}, {"0113", "1000", 0xD620},
             {"0112", "0121", 0xD620}, {"0114", "0120", 0},      {"01", "0121", 0xD620}};
  reference_.ecrire(repertoire_);
  for (const auto& cas : CAS) {
    Referentiel referentiel;
    EXPECT_EQ(referentiel.chargerReferentiel(repertoire_.c_str(), repertoire_.c_str(), cas.logicielle,
                                             cas.minimale),
              cas.cr)
        << cas.logicielle << ' ' << cas.minimale;
  }
}

TEST_F(Chargement, fichiersAbsentsOuAbimes) {
  EXPECT_EQ(charger(), 0xD610);
  reference_.ecrire(repertoire_);
  Octets octets = repertoire_.lire("tablebin.nox");
  std::transform(octets.begin(), octets.begin() + 4, octets.begin(),
                 [](unsigned char c) { return static_cast<unsigned char>(std::tolower(c)); });
  repertoire_.ecrire("tablebin.nox", octets);
  EXPECT_EQ(charger(), 0) << "the digits of the checksum are of either case";
  for (const std::size_t position : {std::size_t{4}, std::size_t{22}, std::size_t{62}, octets.size() - 1}) {
    octets[position] ^= 0x01;
    repertoire_.ecrire("tablebin.nox", octets);
    EXPECT_EQ(charger(), 0xD630) << position;
    octets[position] ^= 0x01;
  }
  octets[0] = 'G';
  repertoire_.ecrire("tablebin.nox", octets);
  EXPECT_EQ(charger(), 0xD640);
  repertoire_.ecrire("tablebin.nox", {});
  EXPECT_EQ(charger(), 0xD640);
}

TEST_F(Chargement, suiteDesTables) {
  reference_.ecrire(repertoire_);
  const Octets entier = repertoire_.lire("tablebin.nox");
  const struct {
    const char* table;  // whose identifier is replaced
    const char* identifiant;
    CodeRetour cr;
  } CAS[] = {{"000", "015", 0xD640},  // no index
             {"000", "0A1", 0xD640}, {"059", "999", 0xD650},
             {"002", "001", 0xD640}, {"059", "035", 0xD650},  // a modification table has no place here
             {"003", "000", 0xD650}};
  for (const auto& cas : CAS) {
    repertoire_.ecrire("tablebin.nox", entier);
    retoucher("tablebin.nox", [&](Octets& octets) {
      const TableFichier table = trouverTable(octets, cas.table);
      std::copy(cas.identifiant, cas.identifiant + 3,
                octets.begin() + static_cast<std::ptrdiff_t>(table.entete));
    });
    EXPECT_EQ(charger(), cas.cr) << cas.table << " -> " << cas.identifiant;
  }
  repertoire_.ecrire("tablebin.nox", entier);
  retirerTables("tablebin.nox", "044");
  EXPECT_EQ(charger(), 0xD650);
  // Tables of unknown identifiers are passed over, whatever they announce.
  repertoire_.ecrire("tablebin.nox", entier);
  retoucher("tablebin.nox", [](Octets& octets) {
    const Octets inconnue = {'0', '2', '8', 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 2, 'X', 'Y'};
    octets.insert(octets.begin() + static_cast<std::ptrdiff_t>(finEntete(octets)), inconnue.begin(),
                  inconnue.end());
  });
  EXPECT_EQ(charger(), 0);
}

TEST_F(Chargement, controlesEntreTables) {
  using Defaut = void (*)(Reference&);
  const struct {
    Defaut defaut;
    CodeRetour cr;
  } CAS[] = {
      {[](Reference& r) {
         r.lignes<Modificateur>()[0].valeurs = {1, 2};
       },
       0xD640},
      {[](Reference& r) {
         r.lignes<Modificateur>()[0].valeurs = {1, 1};
       },
       0},
      {[](Reference& r) {
         r.lignes<Modificateur>()[0].valeurs = {65535, 0};
       },
       0},
      {[](Reference& r) {
         r.lignes<Modificateur>()[0].valeurs = {65535, 65535};
       },
       0xD640},
      {[](Reference& r) {
         r.lignes<DescriptifChamp>()[0].valeurs = {0, 2};
       },
       0xD640},
      {[](Reference& r) {
         r.lignes<DescriptifSuperGroupe>()[0].fils = {1, 1};
       },
       0xD640},
      {[](Reference& r) { r.lignes<Modificateur>().clear(); }, 0xD640},
      {[](Reference& r) { r.lignes<Codes>().clear(); }, 0xD640},
      {[](Reference& r) { r.lignes<FilsSuperGroupe>().clear(); }, 0xD640},
      {[](Reference& r) {
         r.lignes<Index>().clear();
         r.actes.clear();
       },
       0xD640},
      {[](Reference& r) { r.lignes<Seuil>().clear(); }, 0},
  };
  for (const auto& cas : CAS) {
    reference_ = Reference();
    cas.defaut(reference_);
    EXPECT_EQ(ecrireEtCharger(), cas.cr) << &cas - CAS;
  }
}

TEST_F(Chargement, tableDiffereeQuiEchoueResteARecharger) {
  reference_.lignes<MotCle>()[0].actes = {0, 2};  // one indexed act too many
  ASSERT_EQ(ecrireEtCharger(), 0);
  EXPECT_EQ(referentiel_->assurerTable(58), 0) << "nothing to check against yet";
  EXPECT_EQ(referentiel_->assurerTable(30), 0xD640);
  EXPECT_EQ(referentiel_->table(30).etatTable(), ETAT_NON_CHARGEE);
  EXPECT_TRUE(referentiel_->lignes<ActeIndexe>().empty());

  reference_ = Reference();
  reference_.lignes<MotCle>()[0].synonymes = {0xFFFFFFFF, 2};
  ASSERT_EQ(ecrireEtCharger(), 0);
  EXPECT_EQ(referentiel_->assurerTable(58), 0xD640);

  reference_ = Reference();
  ASSERT_EQ(ecrireEtCharger(), 0);
  const Octets entier = repertoire_.lire("tablebin.nox");
  const TableFichier menus = trouverTable(entier, "031");
  repertoire_.ecrire("tablebin.nox", {entier.begin(), entier.begin() + static_cast<long>(menus.donnees) + 9});
  EXPECT_EQ(referentiel_->assurerTable(31), 0xD640);
  repertoire_.ecrire("tablebin.nox", {entier.begin(), entier.begin() + 70});
  EXPECT_EQ(referentiel_->assurerTable(31), 0xD640);
  std::filesystem::remove(repertoire_.chemin("tablebin.nox"));
  EXPECT_EQ(referentiel_->assurerTable(31), 0xD610);
  EXPECT_EQ(referentiel_->table(31).etatTable(), ETAT_NON_CHARGEE);
  repertoire_.ecrire("tablebin.nox", entier);
  EXPECT_EQ(referentiel_->assurerTable(31), 0);
  EXPECT_EQ(referentiel_->lignes<Arborescence>()[0].libelle.vue(), "RACINE");
}

TEST_F(Chargement, modifications) {
  ecrireModifications();
  const Octets sauve = repertoire_.lire("modifref.nox");
  ASSERT_EQ(charger(), 0);
  EXPECT_EQ(referentiel_->entete.numeroRevision, 12);
  EXPECT_EQ(referentiel_->lignes<Seuil>()[0].metropole, 125.0);
  EXPECT_EQ(referentiel_->lignes<Seuil>()[1].fin, (DateBrute{2025, 12, 31}));

  retirerTables("modifref.nox", "043");
  EXPECT_EQ(charger(), 0xD651);
  repertoire_.ecrire("modifref.nox", sauve);
  retoucher("modifref.nox", [](Octets& octets) { octets.push_back('0'); });
  EXPECT_EQ(charger(), 0xD641) << "a table header cut short";
  repertoire_.ecrire("modifref.nox", sauve);
  retoucher("modifref.nox", [](Octets& octets) { octets[trouverTable(octets, "039").donnees + 4] = 13; });
  EXPECT_EQ(charger(), 0xD640) << "month 13 in a line";
  repertoire_.ecrire("modifref.nox", Octets(sauve.begin(), sauve.end() - 1));
  EXPECT_EQ(charger(), 0xD631);
  repertoire_.ecrire("modifref.nox", {'0', '0'});
  EXPECT_EQ(charger(), 0xD641);

  // One that the reference refuses is named; the file can be read all the same, to be mended.
  repertoire_.ecrire("modifref.nox", sauve);
  reference_.lignes<Seuil>()[0].debut = {2027, 1, 1};
  EXPECT_EQ(ecrireEtCharger(), NOX_CR_DATE_EFFET);
  EXPECT_EQ(referentiel_->refus, "table 039, ligne 1, position seuil 1, date d'effet 2026/01/01");
  reference_ = Reference();

  // Changes made to another version of the reference are set aside.
  repertoire_.ecrire("modifref.nox", sauve);
  reference_.entete.version = CodeFixe<4>("0122");
  ASSERT_EQ(ecrireEtCharger(), 0);
  EXPECT_EQ(referentiel_->nombreTables, 58);
  EXPECT_EQ(referentiel_->entete.numeroRevision, 7);
  EXPECT_EQ(referentiel_->lignes<Seuil>()[0].metropole, 120.0);
}

// The file that answers for an act is the one whose index was loaded, or none answers.
TEST_F(Chargement, referenceRemplacee) {
  ASSERT_EQ(ecrireEtCharger(), 0);
  const Octets chargee = repertoire_.lire("tablebin.nox");
  const std::uint32_t position = referentiel_->lignes<Index>()[0].position;
  Reference autre;
  autre.actes[0].libelleCourt = texte("libelle ruoct");
  autre.ecrire(repertoire_);
  const Octets memeTaille = repertoire_.lire("tablebin.nox");
  Octets plusLongue = chargee;
  plusLongue.push_back('x');
  for (const Octets& octets : {memeTaille, plusLongue, Octets(chargee.begin(), chargee.begin() + 30)}) {
    repertoire_.ecrire("tablebin.nox", octets);
    Ecoute ecoute;
    NiveauActe acte;
    EXPECT_EQ(referentiel_->chargerActe(position, acte, "HBLD038"), 0xD640);
    EXPECT_EQ(referentiel_->assurerTable(31), 0xD640);
    EXPECT_TRUE(ecoute.contient("tablebin.nox n'est plus celui qui a ete charge"));
  }
  repertoire_.ecrire("tablebin.nox", chargee);
  NiveauActe acte;
  EXPECT_EQ(referentiel_->chargerActe(position, acte, "HBLD038"), 0);
  EXPECT_EQ(referentiel_->assurerTable(31), 0);
}

TEST_F(Chargement, chaqueEchecLaisseUneLigne) {
  ecrireModifications();
  const Octets reference = repertoire_.lire("tablebin.nox");
  const Octets modification = repertoire_.lire("modifref.nox");
  const auto debut = [](const Octets& octets, std::size_t taille) {
    Octets coupes(octets.begin(), octets.begin() + static_cast<std::ptrdiff_t>(taille));
    refaireCRC(coupes);
    return coupes;
  };
  const struct {
    const char* fichier;
    Octets octets;
    CodeRetour cr;
    const char* ligne;
  } CAS[] = {
      {"tablebin.nox", {}, 0xD640, "ERREUR : probleme de lecture du CRC"},
      {"tablebin.nox", {'X', 'Y', 'Z', 'T', ' '}, 0xD640, "ERREUR : probleme de lecture du CRC"},
      {"tablebin.nox", debut(reference, 40), 0xD640, "ERREUR: probleme lors de la lecture de la version"},
      {"modifref.nox", {'X'}, 0xD641, "ERREUR : probleme de lecture du CRC"},
      {"modifref.nox", debut(modification, 20), 0xD641, "ERREUR : probleme lors de la lecture du numero de"},
      {"modifref.nox", debut(modification, 40), 0xD641, "ERREUR : probleme lors de la lecture de la version"},
      {"modif~.nox", modification, 0, "modif~.nox est seul, une sauvegarde a ete interrompue"},
      {"modiftmp.nox", {}, 0, "modiftmp.nox est le reste d'une sauvegarde, interrompue ou en cours"},
  };
  for (const auto& cas : CAS) {
    std::filesystem::remove(repertoire_.chemin("modifref.nox"));
    repertoire_.ecrire("tablebin.nox", reference);
    repertoire_.ecrire(cas.fichier, cas.octets);
    Ecoute ecoute;
    EXPECT_EQ(charger(), cas.cr) << cas.ligne;
    EXPECT_TRUE(ecoute.contient(cas.ligne)) << cas.ligne << ecoute.texte();
  }
}

TEST_F(Chargement, dump) {
  ASSERT_EQ(ecrireEtCharger(), 0);
  Ecoute ecoute;
  referentiel_->dump(2);
  EXPECT_TRUE(ecoute.contient(
      "-------------------------------\nDUMP DES DONNEES DU REFERENTIEL\n"
      "-------------------------------\n\nVersion du Referentiel  : \"0121\"\n"
      "Version de la Base CCAM : \"V0810\"\nDate de derniere modification : 00/00/0000\n"
      "Version minimum de la partie logicielle : \"0113\"\nNumero de revision : 7\n"
      "Variante du r\xE9"
      "f\xE9rentiel : \"ESSAI     \"\nCommentaire : reference d'essai\nCompteur lecture  : 0\n"
      "Compteur ecriture : 0\nRepertoire : " +
      std::string(repertoire_.c_str()) +
      "\n\nNombre de tables en memoire : 58\n\nTABLE D'INDICE 0 :\nIdentifiant : \"000\"\n"))
      << ecoute.texte();
  EXPECT_TRUE(
      ecoute.contient("\n*********************\nDONNEES DE TYPE ACTE:\n*********************\n"
                      "Aucune donnee de type acte en memoire\n\nFIN DUMP\n"));
  ASSERT_TRUE(referentiel_->actes[1].reserver());
  referentiel_->actes[1].remplir(std::make_unique<NiveauActe>(reference_.actes[1]));
  referentiel_->dump(2);
  EXPECT_TRUE(
      ecoute.contient("\n\n-----------------\nACTE D'INDICE 1:\n-----------------\nCode structure : \"ZZQX"));
}

}  // namespace
