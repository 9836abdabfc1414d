#include "regles/ligne_acte.h"

#include "basics/trace.h"
#include "regles/depot_erreur.h"
#include "regles/deroulement.h"
#include "regles/dump_regles.h"
#include "regles/facture.h"
#include "regles/reglementation.h"
#include "regles/tarification.h"

namespace noxlux {

namespace {

constexpr Regle<Reglementation, LigneActe> REGLES_PRESTATION[] = {
    {"PROD170", &Reglementation::appliquerProd170},
    {"PROD211", &Reglementation::appliquerProd211},
};
constexpr Regle<Reglementation, LigneActe> DEPLACEMENT_ADMIS{"PROD690A", &Reglementation::appliquerProd690A};
constexpr Regle<Tarification, LigneActe> DEPLACEMENT_EXONERE{"PROD792B", &Tarification::appliquerProd792B,
                                                             Portee::ASSOCIATION};

}  // namespace

CodeRetour LigneActe::rattacher() {
  exiger(factureParent != nullptr, "factureParent != __null");
  const auto& lignes = factureParent->lignes;
  exiger(lignes.size() >= 2, "factureParent->nbLignes >= 2");
  const LigneActe* const precedente = lignes[lignes.size() - 2].get();
  rattachement = precedente->rattachement != nullptr ? precedente->rattachement : precedente;
  Trace::ecrire(TRACE_CONTROLE, "Déplacement n° %d [%s] rattaché à la prestation n° %d.", numero.lireValeur(),
                prestation.lireTexte(), rattachement->numero.lireValeur());
  if (rattachement->date != date) {
    Trace::erreur(TRACE_CONTROLE, "Déplacement pas à la même date que la prestation de rattachement.");
    return NOX_CR_DATE_DEPLACEMENT;
  }
  return NOX_CR_OK;
}

CodeRetour LigneActe::traiterErreur(ListeErreurs& erreurs, Erreur& erreur, Regles& regles) {
  if (!erreur.estRenseigne()) {
    return NOX_CR_OK;
  }
  const ViderErreur videur(erreur);
  CodeRetour cr = erreur.ecrireUnePrestation(numero);
  if (cr == NOX_CR_OK) {
    cr = erreurs.ajouterElement(erreur);
  }
  erreur.dump(TRACE_CONTROLE);
  if (cr == NOX_CR_OK && erreur.imposeForcage()) {
    if (forcage.has_value()) {
      cr = CombinaisonForcage(regles, erreur.lireIndicateurForcage()).combiner(*this);
    } else {
      forcage = erreur.lireIndicateurForcage();
      Trace::ecrire(TRACE_CONTROLE, "Le nouveau code forcage de l'acte est %s", forcage->lireTexte());
    }
  }
  ListeCodes exclues;
  if (cr == NOX_CR_OK) {
    cr = regles.rechercherReglesNonVerifiables(erreur.lireReference(), exclues);
  }
  return cr != NOX_CR_OK ? cr : exclureRegles(*this, exclues);
}

CodeRetour LigneActe::verifierModificationReferentiel(Regles& regles, char indicateur) {
  Nombre compteur;
  CodeRetour cr = regles.lireCompteurModification(compteur);
  if (cr == NOX_CR_OK && compteur.lireValeur() > 0) {
    const Code nouveau(indicateur);
    if (forcage.has_value()) {
      Trace::ecrire(TRACE_CONTROLE, "ancien = %s, nouveau = %c", forcage->lireTexte(), indicateur);
      Code resultat;
      cr = regles.rechercherValeurCombinaisonIndicateurs(nouveau, *forcage, resultat);
      if (cr == NOX_CR_OK) {
        forcage = resultat;
        Trace::ecrire(TRACE_CONTROLE, "resultat = %s", forcage->lireTexte());
      }
    } else {
      forcage = nouveau;
      Trace::ecrire(TRACE_CONTROLE, "nouvelle valeur indicateur de forcage = %s", forcage->lireTexte());
    }
  }
  regles.activerVerificationModification(false);
  return cr;
}

CodeRetour LigneActe::controlerReglementation(Reglementation& reglementation, ListeErreurs& erreurs) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "LigneActe::controlerReglementation");
  reglesNonVerifiables.emplace();
  cr = compterModifications(reglementation, FORCAGE_REGLEMENTATION, [&] {
    Deroulement<Reglementation> deroulement(reglementation, erreurs);
    if (type == Type::PRESTATION) {
      deroulement.suite(REGLES_PRESTATION, *this);
    } else if (estDeplacement() && enLigneCCAM(rattachement) != nullptr) {
      deroulement.regle(DEPLACEMENT_ADMIS, *this);
    }
    return deroulement.code();
  });
  return cr;
}

CodeRetour LigneActe::controlerPU(Tarification& tarification, ListeErreurs&) {
  return compterModifications(tarification, FORCAGE_PRIX, [] { return NOX_CR_OK; });
}

CodeRetour LigneActe::controlerBaseActe(Tarification& tarification, ListeErreurs&) {
  return compterModifications(tarification, FORCAGE_BASE, [] { return NOX_CR_OK; });
}

CodeRetour LigneActe::controlerExoActe(Tarification& tarification, ListeErreurs&, Code&) {
  return compterModifications(tarification, FORCAGE_EXONERATION, [] { return NOX_CR_OK; });
}

// A travel line follows the exemption of the CCAM line it is attached to.
CodeRetour LigneActe::controlerExoFactureExoneree(Tarification& tarification, ListeErreurs& erreurs) {
  Deroulement<Tarification> deroulement(tarification, erreurs);
  if (estDeplacement() && enLigneCCAM(rattachement) != nullptr) {
    deroulement.regle(DEPLACEMENT_EXONERE, *this);
  }
  return deroulement.code();
}

CodeRetour LigneActe::controlerExoFactureNonExoneree(Tarification&, ListeErreurs&) { return NOX_CR_OK; }

void LigneActe::debrayerService() {
  topDebrayage = true;
  if (factureParent != nullptr) {
    factureParent->topDebrayage = true;
  }
}

void LigneActe::dump() const {
  const BlocParticulier bloc(FinMuette{}, "LigneActe::dump");
  tracerIdentite(*this);
  tracer("prixUnitaire        = %.2f", prixUnitaire);
  tracer("baseRemboursement   = %.2f", baseRemboursement);
  tracerDroits(*this);
  tracer("forcage             = %s", forcage);
  if (rattachement != nullptr) {
    Trace::ecrire(TRACE_CONTROLE, "rattachement        = %d", rattachement->numero.lireValeur());
  }
  Trace::ecrire(TRACE_CONTROLE, "top débrayage       = %s", vraiFaux(topDebrayage));
  if (reglesNonVerifiables.has_value()) {
    Trace::ecrire(TRACE_CONTROLE, "règles non vérifiables = ");
    reglesNonVerifiables->dump(TRACE_CONTROLE);
  }
  tracer("baseTheoriqueAMO     = %.2fE", baseTheoriqueAMO);
}

}  // namespace noxlux
