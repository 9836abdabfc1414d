// What a batch came to: counts and amounts by verdict, by rule, by act and by professional.
#ifndef NOXLUX_COMMANDE_BILAN_LOT_H
#define NOXLUX_COMMANDE_BILAN_LOT_H

#include <map>
#include <ostream>
#include <string>

#include "noxlux/zone_json.h"

namespace noxlux::commande {

class BilanLot {
 public:
  // An invoice (null when it was none) and its answer.
  void compter(const Json& facture, const Json& reponse, const std::string& fichier);
  // {"factures", "montant", "parVerdict": [...], "parRegle": [...], "parActe": [...], "parProfessionnel":
  // [...], "refusees": [...]}; amounts are the billed bases, in euros.
  Json valeur() const;

 private:
  struct Compte {
    std::size_t factures = 0;
    std::size_t erreurs = 0;
    double montant = 0;
    std::string libelle;
  };
  using Comptes = std::map<std::string, Compte>;
  static Json enListe(const Comptes& comptes, const char* cle);

  std::size_t factures_ = 0;
  double montant_ = 0;
  Comptes verdicts_;
  Comptes regles_;
  Comptes actes_;
  Comptes professionnels_;
  Json refusees_ = Json::array();
  std::size_t autresRefusees_ = 0;
};

// The page that can be sent to a colleague.
std::string pageBilan(const Json& bilan);

// The errors of a batch as CSV, one a line, with semicolons.
void ecrireTitresCsv(std::ostream& sortie);
void ecrireErreursCsv(std::ostream& sortie, std::size_t rang, const Json& facture, const Json& reponse,
                      const std::string& fichier);

}  // namespace noxlux::commande

#endif
