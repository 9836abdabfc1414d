#include "regles/ligne_ccam.h"

#include "basics/trace.h"
#include "regles/association_ccam.h"
#include "regles/deroulement.h"
#include "regles/dump_regles.h"
#include "regles/facture.h"
#include "regles/faits.h"
#include "regles/reglementation.h"
#include "regles/seance.h"
#include "regles/tarification.h"
#include "regles/trace_regles.h"

namespace noxlux {

namespace {

using R = Reglementation;
using T = Tarification;
using RegleActe = Regle<R, LigneCCAM>;
using RegleTarif = Regle<T, LigneCCAM>;

constexpr RegleActe REGLES_ACTE[] = {
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
constexpr Question<R, LigneCCAM> A_DES_LIMITES{"PROD696", &R::appliquerProd696};
constexpr RegleActe REGLES_AGE[] = {
    {"PROD720", &R::appliquerProd720},
    {"PROD730", &R::appliquerProd730},
};
constexpr Question<R, LigneCCAM> A_DES_DENTS{"PROD695", &R::appliquerProd695};
constexpr RegleActe REGLES_DENTS[] = {
    {"PROD700", &R::appliquerProd700},
    {"PROD702", &R::appliquerProd702},
    {"PROD710", &R::appliquerProd710},
};

constexpr RegleTarif PRIX_FACTURE{"PROD850", &T::appliquerProd850};
constexpr Question<T, LigneCCAM> EST_REMBOURSEE{"PROD763A", &T::appliquerProd763A, Portee::ASSOCIATION};
constexpr RegleTarif BASES_FACTUREES[] = {
    {"PROD880", &T::appliquerProd880, Portee::ASSOCIATION},
    {"PROD880A", &T::appliquerProd880A, Portee::ASSOCIATION},
};
constexpr RegleTarif REGLES_EXONERATION[] = {
    {"PROD785", &T::appliquerProd785, Portee::ASSOCIATION},
    {"PROD786", &T::appliquerProd786, Portee::ASSOCIATION},
    {"PROD787", &T::appliquerProd787, Portee::ASSOCIATION},
    {"PROD791B", &T::appliquerProd791B, Portee::ASSOCIATION},
    {"PROD788", &T::appliquerProd788, Portee::ASSOCIATION},
    {"PROD789", &T::appliquerProd789, Portee::ASSOCIATION},
    {"PROD793", &T::appliquerProd793, Portee::ASSOCIATION},
    {"PROD795A", &T::appliquerProd795A, Portee::ASSOCIATION},
};
constexpr RegleTarif EXONERATION_OUBLIEE{"PROD792", &T::appliquerProd792, Portee::ASSOCIATION};
constexpr RegleTarif EXONERATION_INDUE{"PROD791A", &T::appliquerProd791A, Portee::ASSOCIATION};

// Computes the reimbursement base of a line, and its part outside flat fees. The base is left absent when a
// rule it stands on may not be checked: there is then nothing to compare the billed base with.
void calculerBase(T& tarification, LigneCCAM& ligne, Deroulement<T>& deroulement) {
  const auto calcul = [&](const char* identifiant, auto calculer) {
    return deroulement.calcul(identifiant, ligne, Portee::ASSOCIATION, calculer);
  };
  if (!deroulement.question(EST_REMBOURSEE, ligne)) {
    return;
  }
  ligne.topReduction = Booleen(false);
  if (ligne.association->actePlusFort.has_value() &&
      !calcul(T::PROD656B, [&] { return tarification.appliquerProd656B(ligne); })) {
    return;
  }
  Coefficient coefficient(1.0);
  Montant supplement;
  Montant base;
  Montant horsForfait;
  const bool codee = estDonne(ligne.codeAssociation);
  const bool calculee =
      calcul(codee ? T::PROD655 : T::PROD640,
             [&] {
               return codee ? tarification.appliquerProd655(ligne, coefficient)
                            : tarification.appliquerProd640(ligne, coefficient);
             }) &&
      calcul(T::PROD860, [&] { return tarification.appliquerProd860(ligne, supplement); }) &&
      calcul(
          T::PROD870,
          [&] { return tarification.appliquerProd870(ligne, coefficient, supplement, base, horsForfait); }) &&
      calcul(T::PROD740, [&] {
        const Code& convention = codeOuVide(ligne.factureParent->conventionPS);
        const CodeRetour cr = tarification.appliquerProd740(convention, ligne.date, base);
        tarification.calculer(faits::BASE_AU_CENTIME, Operation::ARRONDI, base, base);
        return cr;
      });
  if (calculee) {
    ligne.baseCalculee = base;
  }
  ligne.baseHorsForfait = horsForfait;
}

}  // namespace

CodeRetour LigneCCAM::controlerReglementation(Reglementation& reglementation, ListeErreurs& erreurs) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "LigneCCAM::controlerReglementation");
  reglesNonVerifiables.emplace();
  cr = compterModifications(reglementation, FORCAGE_REGLEMENTATION, [&] {
    Deroulement<R> deroulement(reglementation, erreurs);
    deroulement.suite(REGLES_ACTE, *this);
    if (deroulement.question(A_DES_LIMITES, *this)) {
      deroulement.suite(REGLES_AGE, *this);
      if (deroulement.question(A_DES_DENTS, *this)) {
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
    Deroulement<T> deroulement(tarification, erreurs);
    prixCalcule.reset();
    Montant prix;
    if (deroulement.calcul(T::PROD840, *this, Portee::LIGNE, [&] {
          return tarification.appliquerProd840(acte, activite, phase, date,
                                               codeOuVide(factureParent->caissePS), prix);
        })) {
      prixCalcule = prix;
      deroulement.regle(PRIX_FACTURE, *this);
    }
    return deroulement.code();
  });
  return cr;
}

CodeRetour LigneCCAM::controlerBaseActe(Tarification& tarification, ListeErreurs& erreurs) {
  exiger(association != nullptr, "association != __null");
  CodeRetour cr = NOX_CR_OK;
  baseCalculee.reset();
  baseHorsForfait = Montant();
  const BlocParticulier bloc(
      [&] {
        Trace::fin(TRACE_CONTROLE, "cr = 0x%04X, base hors forfait = %.2fE", cr,
                   baseHorsForfait->lireValeur());
      },
      "LigneCCAM::controlerBaseActe");
  cr = compterModifications(tarification, FORCAGE_BASE, [&] {
    Deroulement<T> deroulement(tarification, erreurs);
    calculerBase(tarification, *this, deroulement);
    if (baseCalculee.has_value()) {
      deroulement.suite(BASES_FACTUREES, *this);
    }
    return deroulement.code();
  });
  return cr;
}

CodeRetour LigneCCAM::controlerExoActe(Tarification& tarification, ListeErreurs& erreurs,
                                       Code& factureExoneree) {
  CodeRetour cr = NOX_CR_OK;
  const BlocParticulier bloc(
      [&] {
        Trace::fin(TRACE_CONTROLE, "cr = 0x%04X, facture exoneree = %s", cr, factureExoneree.lireTexte());
      },
      "LigneCCAM::controlerExoActe");
  cr = compterModifications(tarification, FORCAGE_EXONERATION, [&] {
    Deroulement<T> deroulement(tarification, erreurs);
    deroulement.suite(REGLES_EXONERATION, *this);
    deroulement.calcul(T::PROD790A, *this, Portee::ASSOCIATION,
                       [&] { return tarification.appliquerProd790A(*this, factureExoneree); });
    return deroulement.code();
  });
  return cr;
}

CodeRetour LigneCCAM::controlerExoFactureExoneree(Tarification& tarification, ListeErreurs& erreurs) {
  Deroulement<T> deroulement(tarification, erreurs);
  deroulement.regle(EXONERATION_OUBLIEE, *this);
  return deroulement.code();
}

CodeRetour LigneCCAM::controlerExoFactureNonExoneree(Tarification& tarification, ListeErreurs& erreurs) {
  Deroulement<T> deroulement(tarification, erreurs);
  deroulement.regle(EXONERATION_INDUE, *this);
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
  const BlocParticulier bloc(
      [&] { Trace::fin(TRACE_CONTROLE, "top débrayage       = %s", vraiFaux(topDebrayage)); },
      "LigneCCAM::dump");
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
}

}  // namespace noxlux
