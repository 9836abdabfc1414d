// What a check tells on its way, kept as the steps of its amounts and the reasons of its errors.
#ifndef NOXLUX_COMMANDE_EXPLICATION_H
#define NOXLUX_COMMANDE_EXPLICATION_H

#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "noxlux/donnees_lues.h"
#include "noxlux/zone_json.h"

namespace noxlux::commande {

class Explication final : public ObservateurRegles {
 public:
  Explication() : ecoute_(*this) {}
  Json cause(unsigned short code) const { return faute_.cause(code); }

  // {"regle", "detail", "donnees": [...]} of each error answered, in the order of the answer.
  const std::vector<Json>& raisons() const { return rendues_; }
  // What the check computed of the line of that rank: {"prixCalcule", "baseCalculee"}, each null where there
  // is none, the base unrounded.
  Json montants(std::size_t rang) const;
  // {"prix": [steps], "base": [steps], "association", "modificateurs", "rembourse", "conventionPS",
  // "exoneration"} of the line of that rank. A step: {"etape", "libelle", "operation", "operande",
  // "resultat", "donnees", "phrase", "precisions"}.
  Json etapes(std::size_t rang) const;
  // {"etat", "libelle", "seances": [...]}; null when the check did not come to it.
  Json exoneration() const { return exoneration_; }

  void donneeLue(DonneeLue&& donnee) override;
  void donneeModifiee(const Date& depuis) override;
  void regleDebutee(const char* regle, const Lignes& lignes) override;
  void regleFinie() override;
  void faitDit(const char* fait, std::span<const ValeurLue> valeurs) override;
  void etapeDite(const EtapeCalcul& etape) override;
  void erreurLevee(const Erreur& erreur) override;
  void ligneLue(std::int32_t numero) override { faute_.noterLigne(numero); }
  void factureControlee(const Facture& facture) override;
  void erreurRendue(const Erreur& erreur) override;

 private:
  struct Dit {
    std::string fait;
    std::vector<ValeurLue> valeurs;
  };
  // What was told of a line.
  struct Recit {
    std::vector<DonneeLue> lues;  // by the rules that compute
    std::vector<EtapeCalcul> etapes;
    std::vector<Dit> faits;
    Json seuil;  // the data of the threshold that the line is compared with
  };
  struct Raison {
    std::string reference;
    std::string detail;
    Json json;
  };

  static Json etape(const Recit& recit, const EtapeCalcul& dite);
  static Json association(const Recit& recit);
  static Json modificateurs(const Recit& recit);

  std::string regle_;            // the one under way
  Lignes sujet_;                 // what it runs on
  std::vector<DonneeLue> lues_;  // by it
  std::map<const LigneActe*, Recit> recits_;
  std::vector<Raison> levees_;
  std::vector<Json> rendues_;
  std::vector<Recit> lignes_;  // by rank, once the check has come to its end
  std::vector<Json> montants_;
  std::vector<Json> comptees_;  // {"numero", "montant"} of the séance under way
  Json seances_ = Json::array();
  Json exoneration_;
  Faute faute_;
  Ecoute ecoute_;
};

// Adds to each step its "phrase" and its "precisions", for people.
void phraser(Json& etapes);
// The steps of each line and the exemption, for a person; `resultat` is the answer of controlerFacture.
void afficherEtapes(const Json& resultat, std::ostream& sortie);

}  // namespace noxlux::commande

#endif
