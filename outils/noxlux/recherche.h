// Acts found by words as people type them, best first.
#ifndef NOXLUX_COMMANDE_RECHERCHE_H
#define NOXLUX_COMMANDE_RECHERCHE_H

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "noxlux/catalogue.h"
#include "noxlux/zone_json.h"

namespace noxlux::commande {

struct CriteresRecherche {
  std::string texte;     // several words: all of them
  std::string chapitre;  // the code of a chapter, or words of its title; empty: all
  std::optional<double> prixMinimum;
  std::optional<double> prixMaximum;
  std::size_t limite = 20;  // 0: all
};

// The words of every act, taken apart once for all the searches.
class MotsDesActes {
 public:
  // REQUIRES: the catalogue outlives this.
  explicit MotsDesActes(const Catalogue& catalogue);

  struct Fiche {
    const ActeConnu* acte = nullptr;
    std::vector<std::string> court;
    std::vector<std::string> complet;
  };
  const std::vector<Fiche>& fiches() const { return fiches_; }
  const Catalogue& catalogue() const { return catalogue_; }

 private:
  const Catalogue& catalogue_;
  std::vector<Fiche> fiches_;
};

// The bounds that "100..200", "100.." or "..200" tell, in euros. Throws ErreurUsage.
void lirePrix(const std::string& texte, CriteresRecherche& criteres);

// {"nombre", "actes": [{"code", "libelle", "prix", "chapitre": {"code", "titre"}}], "suggestions": [{"mot",
// "propositions"}]}: accents, case, plurals and the ends of words are forgiven; a word that leads to no act
// has its suggestions. Prices are those of the first activity and phase at the date, AAAAMMJJ.
Json rechercherActes(const CriteresRecherche& criteres, const std::string& date, const MotsDesActes& mots);

void afficherRecherche(const Json& resultat, std::ostream& sortie);

}  // namespace noxlux::commande

#endif
