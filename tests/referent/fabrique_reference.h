// Makes small valid reference files, and damages them: a test changes the lines or the bytes it is about.
#ifndef NOXLUX_TESTS_REFERENT_FABRIQUE_REFERENCE_H
#define NOXLUX_TESTS_REFERENT_FABRIQUE_REFERENCE_H

#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <tuple>
#include <vector>

#include "basics/trace.h"
#include "fichier/ecrivain.h"
#include "referent/referentiel.h"

namespace essai {

using Octets = std::vector<unsigned char>;

constexpr unsigned short TABLES_DIFFEREES[] = {30, 31, 58};

// A directory of its own, gone with what it holds. Its name ends with "/".
class Repertoire {
 public:
  Repertoire() {
    std::string modele = (std::filesystem::temp_directory_path() / "noxlux-XXXXXX").string();
    EXPECT_NE(mkdtemp(modele.data()), nullptr);
    nom_ = modele + "/";
  }
  ~Repertoire() {
    std::error_code ignoree;
    std::filesystem::remove_all(nom_, ignoree);
  }
  Repertoire(const Repertoire&) = delete;
  Repertoire& operator=(const Repertoire&) = delete;

  const char* c_str() const { return nom_.c_str(); }
  std::string chemin(const char* fichier) const { return nom_ + fichier; }
  bool contient(const char* fichier) const { return std::filesystem::exists(chemin(fichier)); }
  Octets lire(const char* fichier) const {
    std::ifstream flux(chemin(fichier), std::ios::binary);
    return {std::istreambuf_iterator<char>(flux), {}};
  }
  void ecrire(const char* fichier, const Octets& octets) const {
    std::ofstream flux(chemin(fichier), std::ios::binary);
    flux.write(reinterpret_cast<const char*>(octets.data()), static_cast<std::streamsize>(octets.size()));
  }

 private:
  std::string nom_;
};

// The checksum, bit by bit as the file format defines it.
inline unsigned avancerBitABit(unsigned registre, unsigned octet) {
  registre |= octet << 16;
  for (int bit = 0; bit < 8; ++bit) {
    registre = (registre >> 1) ^ ((registre & 1U) != 0 ? 0x8408U : 0U);
  }
  return registre;
}

inline std::uint16_t crcBitABit(const Octets& octets, std::size_t debut) {
  unsigned registre = 0;
  for (std::size_t i = debut; i < octets.size(); ++i) {
    registre = avancerBitABit(registre, octets[i]);
  }
  return static_cast<std::uint16_t>((registre & 0xFFU) << 8 | registre >> 8);
}

// What `ecrire(ecrivain)` writes into a new file.
template <class F>
Octets octetsEcrits(const F& ecrire) {
  const Repertoire repertoire;
  std::FILE* fichier = std::fopen(repertoire.chemin("f").c_str(), "wb+");
  noxlux::Ecrivain ecrivain(fichier);
  EXPECT_EQ(ecrire(ecrivain), 0);
  std::fclose(fichier);
  return repertoire.lire("f");
}

inline void refaireCRC(Octets& octets) {
  char texte[8];
  std::snprintf(texte, sizeof texte, "%04X", crcBitABit(octets, 4));
  std::copy(texte, texte + 4, octets.begin());
}

// Where a table lies in a file: its header, its data.
struct TableFichier {
  std::string identifiant;
  std::size_t entete;
  std::size_t donnees;
  std::size_t fin;
};

inline std::size_t lireEntier(const Octets& octets, std::size_t position) {
  std::size_t valeur = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    valeur = valeur << 8 | octets.at(position + i);
  }
  return valeur;
}

inline void ecrireEntier(Octets& octets, std::size_t position, std::uint32_t valeur) {
  for (std::size_t i = 0; i < 4; ++i) {
    octets.at(position + i) = static_cast<unsigned char>(valeur >> (8 * (3 - i)));
  }
}

inline std::size_t finEntete(const Octets& octets) {
  return static_cast<std::size_t>(std::find(octets.begin() + 60, octets.end(), '\r') - octets.begin()) + 3;
}

// The tables of a sound file, up to the index or to the end.
inline std::vector<TableFichier> listerTables(const Octets& octets) {
  std::vector<TableFichier> tables;
  std::size_t position = finEntete(octets);
  while (position < octets.size() && (tables.empty() || tables.back().identifiant != "000")) {
    const std::size_t donnees = position + 11;
    const std::size_t fin = donnees + lireEntier(octets, position + 7);
    tables.push_back({std::string(octets.begin() + static_cast<std::ptrdiff_t>(position),
                                  octets.begin() + static_cast<std::ptrdiff_t>(position) + 3),
                      position, donnees, fin});
    position = fin;
  }
  return tables;
}

inline TableFichier trouverTable(const Octets& octets, const std::string& identifiant) {
  for (const TableFichier& table : listerTables(octets)) {
    if (table.identifiant == identifiant) {
      return table;
    }
  }
  ADD_FAILURE() << "table " << identifiant << " absente";
  return {};
}

inline noxlux::TexteVariable texte(const char* valeur) { return noxlux::TexteVariable(valeur); }

// The lines of every table and the acts of a reference; small, whole and valid as constructed.
class Reference {
 public:
  noxlux::EnteteReferentiel entete;
  std::vector<noxlux::NiveauActe> actes;

  Reference() {
    using namespace noxlux;
    entete.version = CodeFixe<4>("0121");
    entete.versionBaseCCAM = CodeFixe<5>("V0810");
    entete.versionMinLogicielle = CodeFixe<4>("0113");
    entete.variante = CodeFixe<10>("ESSAI");
    entete.numeroRevision = 7;
    entete.commentaire = "reference d'essai";
    constexpr DateBrute DEBUT{2005, 3, 1};
    lignes<AssociationNonPrevue>() = {{'1', {0, 1}}, {'2', {1, 1}}};
    lignes<HistoriqueAssociationNonPrevue>() = {{DEBUT, {}, 1.0}, {DEBUT, {}, 0.5}};
    lignes<Seuil>() = {{DEBUT, {}, 120.0, 121.5, 122.25, 123.01}};
    lignes<CodeRegroupement>() = {{CodeFixe<3>("ADC"), DEBUT, {}}};
    lignes<ReductionNonConventionne>() = {{DEBUT, {}, 0.5, 0.25}};
    lignes<Modificateur>() = {{'A', {0, 1}, {0, 0}, {0, 1}, {0, 2}, {0, 0}}};
    lignes<HistoriqueAgeModificateur>() = {{DEBUT, {}, 'A', 4, 'A', 80}};
    lignes<HistoriqueCoherenceModificateur>() = {{DEBUT, {}, 'O', 'N'}};
    lignes<HistoriqueValeurModificateur>() = {{{2010, 1, 1}, {}, 26.88, 1.057},
                                              {DEBUT, {2009, 12, 31}, 23.0, 1.0}};
    lignes<Codes>() = {{{0, 1}}};
    lignes<LibelleCode>().push_back({texte("1"), texte("activite 1")});
    lignes<Arborescence>().push_back({1, texte("RACINE"), 0, {}});
    lignes<Synonyme>().push_back({texte("DENT")});
    lignes<ActeIndexe>() = {{CodeActe("HBLD038"), 3}};
    lignes<MotCle>().push_back({texte("DENTAIRE"), texte("DENTAIRE"), {0, 1}, {0, 1}});
    lignes<DescriptifSuperGroupe>().push_back({1, texte("CCAM_37"), '1', {0, 1}});
    lignes<DescriptifGroupe>() = {{3012, {0, 1}}};
    lignes<DescriptifChamp>() = {{'A', 'C', 7, 13, {0, 1}}};
    lignes<ValeurAutorisee>().push_back({texte("HBLD038")});
    lignes<FilsSuperGroupe>() = {{0, 65535, 1, 1}};
    ajouterActe("HBLD038", 38.35);
    ajouterActe("ZZQX001", 10.05);
  }

  template <class L>
  std::vector<L>& lignes() {
    return std::get<std::vector<L>>(tables_);
  }

  // One activity, one phase, two histories a level. REQUIRES: codes added in order.
  void ajouterActe(const char* code, double prix) {
    using namespace noxlux;
    NiveauActe acte;
    acte.codeStructure = CodeActe(code);
    acte.libelleCourt = texte("libelle court");
    acte.libelleLong = texte("libelle long");
    acte.notes = texte("note");
    acte.typeActe = '1';
    acte.codeMenu = 1;
    acte.dateCreation = {2005, 3, 1};
    const CodeNatureAssurance natures[] = {CodeNatureAssurance("AS"), CodeNatureAssurance("MA")};
    acte.naturesAssurance.affecter(natures);
    NiveauActivite activite;
    activite.codeActivite = '1';
    NiveauPhase phase;
    phase.codePhase = '0';
    for (const std::uint16_t annee : {std::uint16_t{2015}, std::uint16_t{2005}}) {
      HistoriqueNiveauActe histoActe;
      histoActe.dateEffet = {annee, 3, 1};
      histoActe.admissionRemboursement = '1';
      const CodeActe incompatibles[] = {CodeActe("YYYY001"), CodeActe("YYYY002")};
      histoActe.incompatibilites.affecter(incompatibles);
      acte.historiques.push_back(histoActe);
      HistoriqueNiveauActivite histoActivite;
      histoActivite.dateEffet = {annee, 3, 1};
      histoActivite.codeRegroupement = CodeFixe<3>("ADC");
      const char modificateurs[] = {'A', 'F'};
      histoActivite.modificateurs.affecter(modificateurs);
      const Association associations[] = {{CodeActe("ZZLP025"), 'A'}};
      histoActivite.associations.affecter(associations);
      activite.historiques.push_back(histoActivite);
      phase.historiques.push_back({{annee, 3, 1}, prix, 0.0, {1.0, 1.1, 1.2, 1.3}});
      prix -= 1;
    }
    activite.phases.push_back(phase);
    acte.activites.push_back(activite);
    lignes<Index>().push_back({acte.codeStructure, 0});
    actes.push_back(acte);
  }

  void ecrire(const Repertoire& repertoire) {
    std::FILE* fichier = std::fopen(repertoire.chemin("tablebin.nox").c_str(), "wb+");
    ASSERT_NE(fichier, nullptr);
    noxlux::Ecrivain ecrivain(fichier);
    ASSERT_EQ(noxlux::ecrireEntete(ecrivain, "tablebin.nox", entete, {2026, 1, 1},
                                   entete.versionMinLogicielle.entier()),
              0);
    std::apply([&](const auto&... lignesTable) { (ecrireTable(ecrivain, lignesTable), ...); }, tables_);
    const std::int32_t index = ecrivain.lirePositionFinFichier();
    ASSERT_EQ(noxlux::Table(lignes<noxlux::Index>()).ecrireTable(ecrivain), 0);
    for (std::uint32_t i = 0; i < actes.size(); ++i) {
      ASSERT_EQ(ecrivain.ecrirePositionActe(index, i), 0);
      ASSERT_EQ(actes[i].ecrireNiveauActe(ecrivain), 0);
    }
    ASSERT_EQ(std::fclose(fichier), 0);
    Octets octets = repertoire.lire("tablebin.nox");
    refaireCRC(octets);
    repertoire.ecrire("tablebin.nox", octets);
  }

 private:
  template <class L>
  static void ecrireTable(noxlux::Ecrivain& ecrivain, const std::vector<L>& lignesTable) {
    const noxlux::EtatTable etat = noxlux::Table::testerIdentifiantTableRef(L::IDENTIFIANT);
    if (etat != noxlux::ETAT_INCONNUE && L::IDENTIFIANT != noxlux::Index::IDENTIFIANT) {
      ASSERT_EQ(noxlux::Table(lignesTable).ecrireTable(ecrivain), 0);
    }
  }

  template <class Classes>
  struct Vecteurs;
  template <class... L>
  struct Vecteurs<std::tuple<L...>> {
    using Type = std::tuple<std::vector<L>...>;
  };
  Vecteurs<noxlux::Catalogue>::Type tables_;
};

// Loads what a directory holds, as a library of version 0113 that wants reference 0113 at least.
inline noxlux::CodeRetour charger(noxlux::Referentiel& referentiel, const Repertoire& repertoire) {
  return referentiel.chargerReferentiel(repertoire.c_str(), repertoire.c_str(), "0113", "0113");
}

// What the trace says while it lives: module 0 to 3 in detail.
class Ecoute {
 public:
  Ecoute() { regler(9); }
  ~Ecoute() { regler(0); }
  Ecoute(const Ecoute&) = delete;
  Ecoute& operator=(const Ecoute&) = delete;
  std::string texte() const {
    const Octets octets = repertoire_.lire("trace");
    return {octets.begin(), octets.end()};
  }
  bool contient(const std::string& ligne) const { return texte().find(ligne) != std::string::npos; }

 private:
  void regler(unsigned char niveau) {
    for (unsigned short module = 0; module < 4; ++module) {
      noxlux::Trace::activer(repertoire_.chemin("trace").c_str(), "w", module, niveau);
    }
  }
  Repertoire repertoire_;
};

}  // namespace essai

#endif
