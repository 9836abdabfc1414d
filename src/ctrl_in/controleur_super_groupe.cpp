#include "ctrl_in/controleur_super_groupe.h"

#include "basics/assertion.h"
#include "basics/trace.h"

namespace noxlux {

ControleurSuperGroupe::ControleurSuperGroupe(const SuperGroupe* superGroupe) : superGroupe_(superGroupe) {
  exiger(superGroupe != nullptr, "superGroupe != __null");
}

ControleurSuperGroupe::ControleurSuperGroupe(const ControleurSuperGroupe& autre)
    : superGroupe_(autre.superGroupe_),
      sousControleur_(autre.sousControleur_ == nullptr
                          ? nullptr
                          : std::make_unique<ControleurSuperGroupe>(*autre.sousControleur_)),
      indexFils_(autre.indexFils_),
      nbOccurrences_(autre.nbOccurrences_) {}

CodeRetour ControleurSuperGroupe::rechercherGroupe(std::uint16_t identifiant, const Groupe*& groupe,
                                                   bool strict) {
  groupe = nullptr;
  if (sousControleur_ != nullptr) {
    const CodeRetour cr = sousControleur_->rechercherGroupe(identifiant, groupe, strict);
    if (cr != NOX_CR_OK || groupe != nullptr) {
      return cr;
    }
    sousControleur_.reset();
  }
  while (indexFils_ < superGroupe_->lireNbFils()) {
    const OccurrenceGroupe& fils = superGroupe_->lireFils(indexFils_);
    if (identifiant != 0 && fils.lireIdentifiantAttendu() == identifiant) {
      return prendreFils(fils, identifiant, groupe);
    }
    if (nbOccurrences_ >= fils.lireMin()) {
      ++indexFils_;
      nbOccurrences_ = 0;
      continue;
    }
    if (!strict) {
      return NOX_CR_OK;
    }
    const CodeRetour cr = completerMinimum(fils, identifiant, groupe);
    if (cr != NOX_CR_OK || groupe != nullptr) {
      return cr;
    }
  }
  return NOX_CR_OK;
}

// The group is the first one of this child: one occurrence more.
CodeRetour ControleurSuperGroupe::prendreFils(const OccurrenceGroupe& fils, std::uint16_t identifiant,
                                              const Groupe*& groupe) {
  if (fils.lireMax() != 0 && nbOccurrences_ >= fils.lireMax()) {
    Trace::erreur(TRACE_PARAMETRES, "ERREUR: nombre d'occurrences du groupe %u supérieur au maximum (%u)",
                  identifiant, fils.lireMax());
    return codeAvecPosition(NOX_CR_NOMBRE_OCCURRENCES, identifiant);
  }
  compter(nbOccurrences_);
  if (fils.lireGroupe() != nullptr) {
    groupe = fils.lireGroupe();
    return NOX_CR_OK;
  }
  return entrerSuperGroupe(fils, identifiant, groupe);
}

// The child lacks occurrences and the group is not its first one: a fault, unless the child is a nested
// super-group whose first groups may be missing.
CodeRetour ControleurSuperGroupe::completerMinimum(const OccurrenceGroupe& fils, std::uint16_t identifiant,
                                                   const Groupe*& groupe) {
  if (fils.lireGroupe() != nullptr) {
    const std::uint16_t manquant = fils.lireGroupe()->lireIdentifiant();
    Trace::erreur(TRACE_PARAMETRES, "ERREUR: nombre d'occurrences du groupe %u inférieur au minimum (%u)",
                  manquant, fils.lireMin());
    return codeAvecPosition(NOX_CR_NOMBRE_OCCURRENCES, manquant);
  }
  const CodeRetour cr = entrerSuperGroupe(fils, identifiant, groupe);
  if (groupe != nullptr) {
    compter(nbOccurrences_);
  } else if (cr == NOX_CR_OK) {
    // An occurrence that takes no group can be had as many times as are lacking.
    nbOccurrences_ = fils.lireMin();
  }
  return cr;
}

CodeRetour ControleurSuperGroupe::entrerSuperGroupe(const OccurrenceGroupe& fils, std::uint16_t identifiant,
                                                    const Groupe*& groupe) {
  sousControleur_ = std::make_unique<ControleurSuperGroupe>(fils.lireSuperGroupe());
  const CodeRetour cr = sousControleur_->rechercherGroupe(identifiant, groupe, true);
  if (groupe == nullptr) {
    sousControleur_.reset();
  }
  return cr;
}

}  // namespace noxlux
