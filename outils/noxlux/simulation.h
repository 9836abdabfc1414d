// What changes of the reference would do to a batch of invoices. Nothing is saved.
#ifndef NOXLUX_COMMANDE_SIMULATION_H
#define NOXLUX_COMMANDE_SIMULATION_H

#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "noxlux/zone_json.h"

namespace noxlux::commande {

// One change, as `noxlux modifier` takes it.
struct ChangementSimule {
  std::string identifiant;          // CCAM_37, TB07_1...
  std::vector<std::string> champs;  // "champ=valeur"
  std::string effet;                // AAAAMMJJ
};

// "CCAM_37 acte=HHFA001 activite=1 phase=0 montant=190,00". Throws ErreurUsage.
ChangementSimule lireChangement(const std::string& texte, const std::string& effet);
// A list of {"identifiant", "effet", "champs": {...}}; `effet` holds where a change has none. Throws
// ErreurUsage, with the JSON path.
std::vector<ChangementSimule> lireChangements(const std::string& texte, const std::string& source,
                                              const std::string& effet);
// Makes the change in the reference that is loaded, for as long as it is. Throws ErreurUsage or
// ErreurBibliotheque.
void appliquer(const ChangementSimule& changement);

// The totals of a batch at one state of the reference.
class Totaux {
 public:
  // Checks the invoice as it is for its verdict and errors; with the prices of the reference for its amounts.
  void compter(const Json& facture);

 private:
  friend class Simulation;
  struct ParActe {
    std::size_t lignes = 0;
    double prix = 0;
    double base = 0;
  };
  std::map<std::string, std::size_t> verdicts_;
  std::map<std::string, std::size_t> regles_;  // errors by reference
  std::map<std::string, ParActe> actes_;
};

// {"factures", "avant": {...}, "apres": {...}, "parActe": [...], "parRegle": [...]}, acts and rules on which
// something changes.
class Simulation {
 public:
  static Json comparer(const Totaux& avant, const Totaux& apres);
};

void afficherSimulation(const Json& resultat, std::ostream& sortie);

}  // namespace noxlux::commande

#endif
