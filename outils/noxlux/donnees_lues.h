// The data that the library reads, in words: what each is, of what table, since when; which code of a
// question is at fault when it has no answer, and what resembles it.
#ifndef NOXLUX_COMMANDE_DONNEES_LUES_H
#define NOXLUX_COMMANDE_DONNEES_LUES_H

#include <string>

#include "noxlux/zone_json.h"
#include "regles/observateur.h"

namespace noxlux::commande {

// AAAA-MM-JJ
std::string jourIso(const Date& date);

// {"donnee", "cles": {...}, "valeur", "table", "depuis", "modifieeDepuis", "phrase"}; of a query of another
// kind, null. The phrase: "prix unitaire (acte HHFA001, activité 1, phase 0) : 176,79 €, depuis le
// 01/01/2026".
Json donneeEnJson(const DonneeLue& donnee);
// Why a function answered a code of the families 0xD0xx and 0xD1xx: {"phrase", "table", "champ", "valeur",
// "propositions", "date", "ligne"}, of which only what is known. Null when nothing is.
class Faute {
 public:
  void noter(const DonneeLue& donnee);
  void noterLigne(std::int32_t numero) { ligne_ = numero; }
  // REQUIRES: the reference is still loaded.
  Json cause(unsigned short code) const;

 private:
  Json causeSansEchec(unsigned short code) const;

  std::vector<DonneeLue> echecs_;
  std::vector<DonneeLue> vie_;  // of the act last asked for: when it was created, when it ends
  std::int32_t ligne_ = 0;
};

// Listens to one function for the sake of its fault alone.
class EcouteFaute : public ObservateurRegles {
 public:
  EcouteFaute() : ecoute_(*this) {}
  Json cause(unsigned short code) const { return faute_.cause(code); }

  void donneeLue(DonneeLue&& donnee) override { faute_.noter(donnee); }
  void donneeModifiee(const Date&) override {}
  void regleDebutee(const char*, const Lignes&) override {}
  void regleFinie() override {}
  void faitDit(const char*, std::span<const ValeurLue>) override {}
  void etapeDite(const EtapeCalcul&) override {}
  void erreurLevee(const Erreur&) override {}
  void ligneLue(std::int32_t numero) override { faute_.noterLigne(numero); }
  void factureControlee(const Facture&) override {}
  void erreurRendue(const Erreur&) override {}

 private:
  Faute faute_;
  Ecoute ecoute_;
};

}  // namespace noxlux::commande

#endif
