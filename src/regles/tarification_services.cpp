// Single rules: the bases of an association, the exemption of one act.
#include "regles/exoneration.h"

namespace noxlux {

CodeRetour Tarification::calculerBaseLigne(const Code& conventionPS, LigneCCAM& ligne,
                                           bool reductionPossible) {
  Coefficient coefficient(1.0);
  Montant supplement;
  Montant base;
  Montant horsForfait;
  ligne.topReduction = Booleen(false);
  CodeRetour cr = reductionPossible ? appliquerProd656B(ligne) : static_cast<CodeRetour>(NOX_CR_OK);
  if (cr == NOX_CR_OK) {
    cr = estDonne(ligne.codeAssociation) ? appliquerProd655(ligne, coefficient)
                                         : appliquerProd640(ligne, coefficient);
  }
  if (cr == NOX_CR_OK) {
    cr = appliquerProd860(ligne, supplement);
  }
  if (cr == NOX_CR_OK) {
    cr = appliquerProd870(ligne, coefficient, supplement, base, horsForfait);
  }
  if (cr == NOX_CR_OK) {
    cr = appliquerProd740(conventionPS, ligne.date, base);
  }
  if (cr == NOX_CR_OK) {
    ligne.baseRemboursement = Montant(base.arrondir(2));
    ligne.baseHorsForfait = Montant(horsForfait.arrondir(2));
    if (ligne.baseTheoriqueAMO.has_value()) {
      ligne.baseTheoriqueAMO = Montant(ligne.baseTheoriqueAMO->arrondir(2));
    }
  }
  return cr;
}

CodeRetour Tarification::appliquerCBase(const Code& conventionPS, AssociationCCAM& association) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Tarification::appliquerCBase");
  Trace::ecrire(TRACE_CONTROLE, "conventionPS = %s", conventionPS.lireTexte());
  cr = appliquerProd656A(association);
  for (LigneCCAM* ligne : association.lignes) {
    if (cr != NOX_CR_OK) {
      break;
    }
    cr = calculerBaseLigne(conventionPS, *ligne, association.actePlusFort.has_value());
  }
  return cr;
}

CodeRetour Tarification::appliquerCExoPrevention(const Code& acte, bool prevention, const Date& date,
                                                 Coefficient& taux, Code& code) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Tarification::appliquerCExoPrevention");
  if (Trace::estDetaille(TRACE_CONTROLE)) {
    Trace::ecrire(TRACE_CONTROLE, "acte = %s, prevention = %d, date = %s", acte.lireTexte(),
                  static_cast<int>(prevention), date.lireValeur().c_str());
  }
  ListeCodes codesPrevention;
  ListeCodes codesActe;
  cr = lecture().rechercherCodesExonerationTM(acte, date, codesActe);
  if (cr == NOX_CR_OK) {
    cr = lireConceptFacultatif(lecture(), CONCEPT_EXO_PREVENTION, date, codesPrevention);
  }
  if (cr != NOX_CR_OK || !prevention) {
    return cr;
  }
  ListeCodes communs;
  cr = communs.intersectionListe(codesActe, codesPrevention);
  if (cr == NOX_CR_OK && communs.estVide()) {
    cr = NOX_CR_REGLE_REPONSE_2;
  } else if (cr == NOX_CR_OK) {
    taux = TAUX_PLEIN;
    code = communs[0];
  }
  return cr;
}

CodeRetour Tarification::appliquerCExoActe(const Code& caissePS, const Code& acte, const Date& date,
                                           const Montant& baseHorsForfait, const Code& motifExoneration,
                                           std::optional<Coefficient>& taux, Code& code, Booleen& exonere) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Tarification::appliquerCExoActe");
  if (Trace::estDetaille(TRACE_CONTROLE)) {
    Trace::ecrire(TRACE_CONTROLE,
                  "caissePS = %s, acte = %s, date = %s, baseHorsForfait = %.2fE, motifExoneration = %s",
                  caissePS.lireTexte(), acte.lireTexte(), date.lireValeur().c_str(),
                  baseHorsForfait.lireValeur(), motifExoneration.lireTexte());
  }
  LigneCCAM ligne;
  ligne.acte = acte;
  ligne.date = date;
  ligne.exonerationTM = motifExoneration;
  ligne.tauxRemboursement = taux;
  ListeCodes codesSeuls;
  ListeCodes codesFacture;
  Montant seuil;
  bool compte = false;
  bool compteFacture = false;
  cr = lireCodesSeuilSeul(lecture(), date, codesSeuls);
  if (cr == NOX_CR_OK) {
    cr = lecture().rechercherValeursConcept(CONCEPT_EXO_SEUIL, date, codesFacture);
  }
  if (cr == NOX_CR_OK) {
    cr = compteDansSeuil(ligne, codesSeuls, compte);
  }
  if (cr == NOX_CR_OK) {
    cr = compteDansSeuil(ligne, codesFacture, compteFacture);
  }
  if (cr == NOX_CR_OK) {
    cr = lireSeuil(caissePS, date, seuil);
    Trace::ecrire(TRACE_CONTROLE, "le seuil d'exonération du TM = %f", seuil.lireValeur());
  }
  if (cr != NOX_CR_OK) {
    return cr;
  }
  const bool atteint = baseHorsForfait >= seuil;
  exonere = Booleen(compteFacture && atteint);
  if (compte && atteint) {
    exonerer(ligne);
  } else if (reclameActeCouteux(ligne)) {
    ligne.exonerationTM = Code(SANS_EXONERATION);
  }
  taux = ligne.tauxRemboursement;
  code = motif(ligne);
  return cr;
}

}  // namespace noxlux
