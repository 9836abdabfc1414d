#include "regles/association_ccam.h"

#include "basics/trace.h"
#include "regles/depot_erreur.h"
#include "regles/deroulement.h"
#include "regles/dump_regles.h"
#include "regles/reglementation.h"
#include "regles/tarification.h"

namespace noxlux {

namespace {

using R = Reglementation;

constexpr Regle<R, AssociationCCAM> PROCEDURES{"PROD590", &R::appliquerProd590};
constexpr Regle<R, LigneCCAM> CODE_CONNU{"PROD137", &R::appliquerProd137};
// Each runs only while the ones before raised nothing.
constexpr Regle<R, AssociationCCAM> REGLES_ASSOCIATION[] = {
    {"PROD648", &R::appliquerProd648}, {"PROD649", &R::appliquerProd649}, {"PROD650", &R::appliquerProd650},
    {"PROD653", &R::appliquerProd653}, {"PROD654", &R::appliquerProd654},
};

}  // namespace

AssociationCCAM::AssociationCCAM(const Nombre& numeroAssociation, const Date* dateAssociation,
                                 const Code* codeActivite, const Code* numeroExecutant)
    : numero(numeroAssociation), date(dateAssociation), activite(codeActivite), numeroPS(numeroExecutant) {
  exiger(date != nullptr, "date != __null");
  exiger(activite != nullptr, "activite != __null");
  exiger(numeroPS != nullptr, "numeroPS != __null");
}

bool AssociationCCAM::estAssociee(const LigneCCAM* ligne) const {
  return ligne->date == *date && ligne->activite == *activite && ligne->numeroPS == *numeroPS;
}

void AssociationCCAM::ajouterLigne(LigneCCAM* ligne) {
  exiger(lignes.size() < MAX_LIGNES, "nbLignes < MAX_LIGNES");
  exiger(ligne != nullptr, "ligne != __null");
  lignes.push_back(ligne);
  ligne->association = this;
  topDebrayage = topDebrayage || ligne->topDebrayage;
}

CodeRetour AssociationCCAM::controlerReglementation(Reglementation& reglementation, ListeErreurs& erreurs) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Association::controlerReglementation");
  Deroulement<R> deroulement(reglementation, erreurs);
  deroulement.regle(PROCEDURES, *this);
  for (LigneCCAM* ligne : lignes) {
    deroulement.regle(CODE_CONNU, *ligne);
  }
  for (const auto& regle : REGLES_ASSOCIATION) {
    if (!deroulement.ok() || !deroulement.regle(regle, *this)) {
      break;
    }
  }
  cr = deroulement.code();
  return cr;
}

CodeRetour AssociationCCAM::rechercherActePu(Tarification& tarification, ListeErreurs& erreurs) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Association::rechercheActePu");
  Deroulement<Tarification> deroulement(tarification, erreurs);
  deroulement.calcul(Tarification::PROD656A, *this, Portee::ASSOCIATION,
                     [&] { return tarification.appliquerProd656A(*this); });
  cr = deroulement.code();
  return cr;
}

CodeRetour AssociationCCAM::traiterErreur(ListeErreurs& erreurs, Erreur& erreur, Regles& regles) {
  if (!erreur.estRenseigne()) {
    return NOX_CR_OK;
  }
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Association::traiterErreur");
  const ViderErreur videur(erreur);
  erreur.dump(TRACE_CONTROLE);
  cr = erreurs.ajouterElement(erreur);
  if (cr == NOX_CR_OK) {
    cr = deposerSurGroupe(*this, erreur, regles, [](const LigneCCAM& ligne) {
      Trace::ecrire(TRACE_CONTROLE, "Le nouveau code forcage de l'acte %s de l'association est %s",
                    ligne.acte.lireTexte(), ligne.forcage->lireTexte());
    });
  }
  return cr;
}

void AssociationCCAM::dump() const {
  if (Trace::niveau(TRACE_CONTROLE) == 0) {
    return;
  }
  const BlocParticulier bloc(FinMuette{}, "Association n° %d::dump", numero.lireValeur());
  Trace::ecrire(TRACE_CONTROLE, "date            = %s", date->lireValeur().c_str());
  Trace::ecrire(TRACE_CONTROLE, "activite        = %s", activite->lireTexte());
  Trace::ecrire(TRACE_CONTROLE, "numeroPS        = %s", numeroPS->lireTexte());
  tracer("actePlusFort    = %s", actePlusFort);
  tracer("typeAssociation = %s", typeAssociation);
  Trace::ecrire(TRACE_CONTROLE, "topDebrayage    = %s", vraiFaux(topDebrayage));
  for (std::size_t i = 0; i < lignes.size(); ++i) {
    Trace::ecrire(TRACE_CONTROLE, "acte[%d]         = %s (ligne %d)", static_cast<int>(i),
                  lignes[i]->acte.lireTexte(), lignes[i]->numero.lireValeur());
  }
}

}  // namespace noxlux
