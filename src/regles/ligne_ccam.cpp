#include "regles/ligne_ccam.h"

#include "basics/trace.h"
#include "regles/association_ccam.h"
#include "regles/deroulement.h"
#include "regles/dump_regles.h"
#include "regles/facture.h"
#include "regles/reglementation.h"
#include "regles/seance.h"
#include "regles/tarification.h"
#include "regles/trace_regles.h"

namespace noxlux {

namespace {

using R = Reglementation;
using EtapeActeCCAM = EtapeRegle<R, const LigneCCAM>;

constexpr EtapeActeCCAM REGLES_ACTE[] = {
    {"PROD500", &R::appliquerProd500},   {"PROD510", &R::appliquerProd510},
    {"PROD511A", &R::appliquerProd511A}, {"PROD890", &R::appliquerProd890},
    {"PROD780", &R::appliquerProd780},   {"PROD760", &R::appliquerProd760},
    {"PROD765", &R::appliquerProd765},   {"PROD530", &R::appliquerProd530},
    {"PROD220", &R::appliquerProd220},   {"PROD798", &R::appliquerProd798},
    {"PROD670", &R::appliquerProd670},   {"PROD895A", &R::appliquerProd895A},
    {"PROD136A", &R::appliquerProd136A}, {"PROD136B", &R::appliquerProd136B},
    {"PROD190", &R::appliquerProd190},   {"PROD550", &R::appliquerProd550},
    {"PROD555", &R::appliquerProd555},   {"PROD798A", &R::appliquerProd798A},
    {"PROD540", &R::appliquerProd540},
};
constexpr EtapeActeCCAM REGLES_AGE[] = {
    {"PROD720", &R::appliquerProd720},
    {"PROD730", &R::appliquerProd730},
};
constexpr EtapeActeCCAM REGLES_DENTS[] = {
    {"PROD700", &R::appliquerProd700},
    {"PROD702", &R::appliquerProd702},
    {"PROD710", &R::appliquerProd710},
};

constexpr EtapeRegle<Tarification, const LigneCCAM> REGLES_EXONERATION[] = {
    {"PROD785", &Tarification::appliquerProd785}, {"PROD786", &Tarification::appliquerProd786},
    {"PROD787", &Tarification::appliquerProd787}, {"PROD791B", &Tarification::appliquerProd791B},
    {"PROD788", &Tarification::appliquerProd788}, {"PROD789", &Tarification::appliquerProd789},
    {"PROD793", &Tarification::appliquerProd793}, {"PROD795A", &Tarification::appliquerProd795A},
};

// The reimbursement base of a line, and its part outside flat fees. `calculee` is false when a rule it stands
// on may not be checked: there is then nothing to compare the billed base with.
struct BaseActe {
  bool calculee = false;
  Montant base;
  Montant horsForfait;
};

template <class Rules>
BaseActe calculerBase(Tarification& tarification, LigneCCAM& ligne, Rules& deroulement) {
  BaseActe calcul;
  if (!deroulement.question(
          "PROD763A", [&](Booleen& reponse) { return tarification.appliquerProd763A(ligne, reponse); })) {
    return calcul;
  }
  ligne.topReduction = Booleen(false);
  if (ligne.association->actePlusFort.has_value() &&
      !deroulement.calcul("PROD656B", [&] { return tarification.appliquerProd656B(ligne); })) {
    return calcul;
  }
  Coefficient coefficient(1.0);
  Montant supplement;
  const bool codee = estDonne(ligne.codeAssociation);
  calcul.calculee = deroulement.calcul(codee ? "PROD655" : "PROD640", [&] {
    return codee ? tarification.appliquerProd655(ligne, coefficient)
                 : tarification.appliquerProd640(ligne, coefficient);
  }) && deroulement.calcul("PROD860", [&] {
    return tarification.appliquerProd860(ligne, supplement);
  }) && deroulement.calcul("PROD870", [&] {
    return tarification.appliquerProd870(ligne, coefficient, supplement, calcul.base, calcul.horsForfait);
  }) && deroulement.calcul("PROD740", [&] {
    return tarification.appliquerProd740(codeOuVide(ligne.factureParent->conventionPS), ligne.date,
                                         calcul.base);
  });
  return calcul;
}

}  // namespace

CodeRetour LigneCCAM::controlerReglementation(Reglementation& reglementation, ListeErreurs& erreurs) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "LigneCCAM::controlerReglementation");
  reglesNonVerifiables.emplace();
  cr = compterModifications(reglementation, FORCAGE_REGLEMENTATION, [&] {
    auto deroulement = deroulerSurLigne(reglementation, *this, *this, erreurs);
    deroulement.suite(REGLES_ACTE, *this);
    if (deroulement.question(
            "PROD696", [&](Booleen& reponse) { return reglementation.appliquerProd696(*this, reponse); })) {
      deroulement.suite(REGLES_AGE, *this);
      if (deroulement.question(
              "PROD695", [&](Booleen& reponse) { return reglementation.appliquerProd695(*this, reponse); })) {
        deroulement.suite(REGLES_DENTS, *this);
      }
    }
    return deroulement.code();
  });
  return cr;
}

CodeRetour LigneCCAM::controlerPU(Tarification& tarification, ListeErreurs& erreurs) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "LigneCCAM::controlerPU");
  cr = compterModifications(tarification, FORCAGE_PRIX, [&] {
    auto deroulement = deroulerSurLigne(tarification, *this, *this, erreurs);
    Montant prixCalcule;
    if (deroulement.calcul("PROD840", [&] {
          return tarification.appliquerProd840(acte, activite, phase, date,
                                               codeOuVide(factureParent->caissePS), prixCalcule);
        })) {
      deroulement.regle("PROD850", [&](Erreur& erreur) {
        return tarification.appliquerProd850(*this, prixCalcule, erreur);
      });
    }
    return deroulement.code();
  });
  return cr;
}

CodeRetour LigneCCAM::controlerBaseActe(Tarification& tarification, ListeErreurs& erreurs) {
  exiger(association != nullptr, "association != __null");
  CodeRetour cr = NOX_CR_OK;
  baseHorsForfait = Montant();
  Trace::debut(TRACE_CONTROLE, "LigneCCAM::controlerBaseActe");
  const EnSortant fin([&] {
    Trace::fin(TRACE_CONTROLE, "cr = 0x%04X, base hors forfait = %.2fE", cr, baseHorsForfait->lireValeur());
  });
  cr = compterModifications(tarification, FORCAGE_BASE, [&] {
    auto deroulement = deroulerSurLigne(tarification, *this, *association, erreurs);
    const BaseActe calcul = calculerBase(tarification, *this, deroulement);
    if (calcul.calculee) {
      deroulement.regle("PROD880", [&](Erreur& erreur) {
        return tarification.appliquerProd880(*this, calcul.base, erreur);
      });
      deroulement.regle("PROD880A", [&](Erreur& erreur) {
        return tarification.appliquerProd880A(*this, calcul.base, erreur);
      });
    }
    baseHorsForfait = calcul.horsForfait;
    return deroulement.code();
  });
  return cr;
}

CodeRetour LigneCCAM::controlerExoActe(Tarification& tarification, ListeErreurs& erreurs,
                                       Code& factureExoneree) {
  exiger(association != nullptr, "association != __null");
  CodeRetour cr = NOX_CR_OK;
  Trace::debut(TRACE_CONTROLE, "LigneCCAM::controlerExoActe");
  const EnSortant fin([&] {
    Trace::fin(TRACE_CONTROLE, "cr = 0x%04X, facture exoneree = %s", cr, factureExoneree.lireTexte());
  });
  cr = compterModifications(tarification, FORCAGE_EXONERATION, [&] {
    auto deroulement = deroulerSurLigne(tarification, *this, *association, erreurs);
    deroulement.suite(REGLES_EXONERATION, *this);
    deroulement.calcul("PROD790A", [&] { return tarification.appliquerProd790A(*this, factureExoneree); });
    return deroulement.code();
  });
  return cr;
}

CodeRetour LigneCCAM::controlerExoFactureExoneree(Tarification& tarification, ListeErreurs& erreurs) {
  exiger(association != nullptr, "association != __null");
  auto deroulement = deroulerSurLigne(tarification, *this, *association, erreurs);
  deroulement.regle("PROD792", [&](Erreur& erreur) { return tarification.appliquerProd792(*this, erreur); });
  return deroulement.code();
}

CodeRetour LigneCCAM::controlerExoFactureNonExoneree(Tarification& tarification, ListeErreurs& erreurs) {
  exiger(association != nullptr, "association != __null");
  auto deroulement = deroulerSurLigne(tarification, *this, *association, erreurs);
  deroulement.regle("PROD791A",
                    [&](Erreur& erreur) { return tarification.appliquerProd791A(*this, erreur); });
  return deroulement.code();
}

void LigneCCAM::debrayerService() {
  LigneActe::debrayerService();
  if (association != nullptr) {
    association->topDebrayage = true;
  }
  if (seance != nullptr) {
    seance->topDebrayage = true;
  }
}

void LigneCCAM::dump() const {
  Trace::debut(TRACE_CONTROLE, "LigneCCAM::dump");
  tracerIdentite(*this);
  tracer("prixUnitaire        = %.2fE", prixUnitaire);
  tracer("baseRemboursement   = %.2fE", baseRemboursement);
  tracerDroits(*this);
  tracer("acte                = %s", acte);
  tracer("activite            = %s", activite);
  tracer("phase               = %s", phase);
  tracer("modificateur[%d]     = %s", modificateur);
  tracer("codeAssociation     = %s", codeAssociation);
  tracer("codeRemboursement   = %s", codeRemboursement);
  tracer("supplementCharges   = %s", supplementCharges);
  tracer("donneesComplementaires[%d] = %s", donneesComplementaires);
  tracer("dent[%d]             = %s", dent);
  tracer("baseHorsForfait     = %.2fE", baseHorsForfait);
  tracer("baseTheoriqueAMO    = %.2fE", baseTheoriqueAMO);
  tracer("forcage             = %s", forcage);
  if (reglesNonVerifiables.has_value()) {
    Trace::ecrire(TRACE_CONTROLE, "%d règles non vérifiables ", reglesNonVerifiables->lireNombreElements());
    tracer("\treglesNonVerifiables[%d]     = %s", *reglesNonVerifiables);
  }
  if (rattachement != nullptr) {
    Trace::ecrire(TRACE_CONTROLE, "rattachement        = %d", rattachement->numero.lireValeur());
  }
  if (topReduction.has_value()) {
    Trace::ecrire(TRACE_CONTROLE, "top réduction       = %s", vraiFaux(topReduction->estVrai()));
  }
  Trace::ecrire(TRACE_CONTROLE, "topActePuMax        = %s", vraiFaux(topActePuMax));
  Trace::fin(TRACE_CONTROLE, "top débrayage       = %s", vraiFaux(topDebrayage));
}

}  // namespace noxlux
