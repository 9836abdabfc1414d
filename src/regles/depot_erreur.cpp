#include "regles/depot_erreur.h"

#include "basics/trace.h"
#include "regles/association_ccam.h"
#include "regles/seance.h"

namespace noxlux {

CodeRetour CombinaisonForcage::combiner(LigneActe& ligne) {
  Trace::ecrire(TRACE_CONTROLE, "L'ancien code forcage de l'acte est %s", ligne.forcage->lireTexte());
  Trace::ecrire(TRACE_CONTROLE, "L'indicateur de forcage lié à l'erreur est %s", indicateur_.lireTexte());
  if (present_ != ligne.forcage) {
    Code resultat;
    const CodeRetour cr =
        regles_.rechercherValeurCombinaisonIndicateurs(indicateur_, *ligne.forcage, resultat);
    if (cr != NOX_CR_OK) {
      return cr;
    }
    present_ = ligne.forcage;
    resultat_ = resultat;
  }
  ligne.forcage = resultat_;
  Trace::ecrire(TRACE_CONTROLE, "Le nouveau code forcage de l'acte est %s", resultat_.lireTexte());
  return NOX_CR_OK;
}

CodeRetour exclureRegles(LigneActe& ligne, const ListeCodes& regles) {
  if (!ligne.reglesNonVerifiables.has_value()) {
    ligne.reglesNonVerifiables.emplace();
  }
  if (LigneCCAM* const ligneCCAM = enLigneCCAM(&ligne); ligneCCAM != nullptr) {
    for (const Code& reference : regles) {
      if (ligneCCAM->association != nullptr) {
        ligneCCAM->association->depot.exclues.emplace(reference.vue());
      }
      if (ligneCCAM->seance != nullptr) {
        ligneCCAM->seance->depot.exclues.emplace(reference.vue());
      }
    }
  }
  return ligne.reglesNonVerifiables->unionListe(regles);
}

}  // namespace noxlux
