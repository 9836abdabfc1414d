#include "ctrl_in/groupe.h"

#include <new>

#include "basics/assertion.h"
#include "basics/trace.h"

namespace noxlux {

Groupe::Groupe(std::uint16_t identifiant, std::uint16_t maxChamps)
    : identifiant_(identifiant), maxChamps_(maxChamps) {
  champs_.reserve(maxChamps);
}

CodeRetour Groupe::ajouterChamp(Champ::Format format, Champ::Type type, std::uint16_t tailleMin,
                                std::uint16_t tailleMax, const ListeCodes& valeurs) {
  if (champs_.size() >= maxChamps_) {
    Trace::erreur(TRACE_PARAMETRES,
                  "Groupe::ajouterChamp : ERREUR: Nombre max de champs (%u) atteint pour le groupe %u.",
                  maxChamps_, identifiant_);
    return NOX_CR_INCOHERENCE;
  }
  Champ champ;
  const CodeRetour cr = champ.initialiser(format, type, tailleMin, tailleMax, valeurs);
  if (cr == NOX_CR_OK) {
    champs_.push_back(std::move(champ));  // within the capacity reserved at construction
  }
  return cr;
}

void Groupe::dump() const {
  Trace::debut(TRACE_PARAMETRES, "Groupe::dump : identifiant = %u, nbChamps = %u", identifiant_,
               lireNbChamps());
  for (const Champ& champ : champs_) {
    champ.dump();
  }
  Trace::fin(TRACE_PARAMETRES, "");
}

}  // namespace noxlux
