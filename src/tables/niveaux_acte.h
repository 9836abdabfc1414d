// An act record: the act, its activities, their treatment phases, each with its dated histories.
#ifndef NOXLUX_TABLES_NIVEAUX_ACTE_H
#define NOXLUX_TABLES_NIVEAUX_ACTE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <utility>
#include <vector>

#include "basics/codes_retour.h"
#include "tables/valeurs_ligne.h"

namespace noxlux {

class Date;
class Ecrivain;
class Lecteur;

using CodeNatureAssurance = CodeFixe<2>;
using CodeAgrementRadio = CodeFixe<2>;
using CodeRMO = CodeFixe<5>;
using CodeClasseSpecialite = CodeFixe<2>;
using CodeDent = CodeFixe<2>;

// An act that may be associated, with the tariff rule of the pair.
struct Association {
  CodeActe acte;
  char regleTarifaire = ' ';
};

struct HistoriqueNiveauActe {
  DateBrute dateEffet;
  char admissionRemboursement = ' ';
  char ententePrealable = ' ';
  ListeCompacte<char> exonerationsTM;
  ListeCompacte<CodeActe> procedures;
  ListeCompacte<CodeActe> incompatibilites;

  CodeRetour lireHistorique(Lecteur& lecteur);
  CodeRetour ecrireHistorique(Ecrivain& ecrivain) const;
  void dump(unsigned short module) const;
};

struct HistoriqueNiveauActivite {
  DateBrute dateEffet;
  CodeFixe<2> categorieMedicale;
  CodeFixe<3> codeRegroupement;
  ListeCompacte<char> modificateurs;
  ListeCompacte<CodeClasseSpecialite> classesSpecialites;
  ListeCompacte<Association> associations;

  CodeRetour lireHistorique(Lecteur& lecteur);
  CodeRetour ecrireHistorique(Ecrivain& ecrivain) const;
  void dump(unsigned short module) const;
};

// Prices in euros; increases are ratios (1.0 is none).
struct HistoriqueNiveauPhase {
  DateBrute dateEffet;
  double prixUnitaire = 0.0;
  double supplementCharges = 0.0;
  std::array<double, 4> majorationsDOM{};

  CodeRetour lireHistorique(Lecteur& lecteur);
  CodeRetour ecrireHistorique(Ecrivain& ecrivain) const;
  void dump(unsigned short module) const;
};

// The histories of a level, newest first. They lie in memory the other way round: a newer one is added
// without moving those there, however many they are.
template <class H>
class ChaineHistoriques {
 public:
  using value_type = H;

  ChaineHistoriques() = default;
  ChaineHistoriques(std::initializer_list<H> historiques)
      : duPlusAncien_(std::rbegin(historiques), std::rend(historiques)) {}

  auto begin() { return duPlusAncien_.rbegin(); }
  auto end() { return duPlusAncien_.rend(); }
  auto begin() const { return duPlusAncien_.rbegin(); }
  auto end() const { return duPlusAncien_.rend(); }
  H& operator[](std::size_t i) { return *(begin() + static_cast<std::ptrdiff_t>(i)); }
  const H& operator[](std::size_t i) const { return *(begin() + static_cast<std::ptrdiff_t>(i)); }
  const H& front() const { return duPlusAncien_.back(); }
  std::size_t size() const { return duPlusAncien_.size(); }
  bool empty() const { return duPlusAncien_.empty(); }
  void clear() { duPlusAncien_.clear(); }
  // Histories to be filled in. REQUIRES: empty
  void resize(std::size_t n) { duPlusAncien_.resize(n); }
  // An older one than those there.
  H& emplace_back(H&& historique = {}) {
    return *duPlusAncien_.insert(duPlusAncien_.begin(), std::move(historique));
  }
  void push_back(H historique) { emplace_back(std::move(historique)); }
  // A newer one, in room taken beforehand.
  void reserverRecent() { reserverElement(duPlusAncien_); }
  void ajouterRecent(H&& historique) noexcept { duPlusAncien_.push_back(std::move(historique)); }

 private:
  std::vector<H> duPlusAncien_;
};

// In each level, what every look-up goes through comes first: it fits in one cache line.
struct NiveauPhase {
  char codePhase = ' ';
  CodeFixe<2> nombreDents;
  std::uint16_t ageMinimum = 0;  // years; 0: none
  std::uint16_t ageMaximum = 0;  // years; 0: none
  ChaineHistoriques<HistoriqueNiveauPhase> historiques;
  ListeCompacte<CodeDent> dentsIncompatibles;

  CodeRetour lireNiveauPhase(Lecteur& lecteur);
  CodeRetour ecrireNiveauPhase(Ecrivain& ecrivain) const;
  CodeRetour chercherHistorique(const HistoriqueNiveauPhase*& historique, const Date& date) const;
  std::uint16_t nombreHistoriques() const { return static_cast<std::uint16_t>(historiques.size()); }
  void dump(unsigned short module) const;
};

struct NiveauActivite {
  char codeActivite = ' ';
  std::vector<NiveauPhase> phases;
  ChaineHistoriques<HistoriqueNiveauActivite> historiques;
  ListeCompacte<CodeAgrementRadio> agrementsRadio;
  ListeCompacte<CodeRMO> rmo;
  ListeCompacte<char> extensionsDocumentaires;

  CodeRetour lireNiveauActivite(Lecteur& lecteur);
  CodeRetour ecrireNiveauActivite(Ecrivain& ecrivain) const;
  // Not found: 0xD002, `phase` untouched.
  CodeRetour chercherNiveauPhase(char code, NiveauPhase*& phase);
  CodeRetour chercherHistorique(const HistoriqueNiveauActivite*& historique, const Date& date) const;
  std::uint16_t nombreHistoriques() const { return static_cast<std::uint16_t>(historiques.size()); }
  void dump(unsigned short module) const;
};

struct NiveauActe {
  DateBrute dateCreation;
  DateBrute dateFin;
  std::vector<NiveauActivite> activites;
  ChaineHistoriques<HistoriqueNiveauActe> historiques;
  std::uint32_t codeMenu = 0;
  char typeActe = ' ';
  char sexeCompatible = ' ';
  char fraisDeplacement = ' ';
  CodeActe codeStructure;
  TexteVariable libelleCourt;
  TexteVariable libelleLong;
  TexteVariable conditionsGenerales;
  TexteVariable notes;
  ListeCompacte<CodeNatureAssurance> naturesAssurance;

  CodeRetour lireNiveauActe(Lecteur& lecteur);
  CodeRetour ecrireNiveauActe(Ecrivain& ecrivain) const;
  // Not found: 0xD002, `activite` untouched.
  CodeRetour chercherActivite(char code, NiveauActivite*& activite);
  // No history at the date: 0xD003, `historique` untouched.
  CodeRetour chercherHistorique(const HistoriqueNiveauActe*& historique, const Date& date) const;
  std::uint16_t nombreHistoriques() const { return static_cast<std::uint16_t>(historiques.size()); }
  void dump(unsigned short module) const;
};

}  // namespace noxlux

#endif
