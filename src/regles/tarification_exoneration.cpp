// Exemption of the patient's share: what a line claims, what its act and the amounts allow.
#include <limits>

#include "regles/departements.h"
#include "regles/tarification.h"
#include "regles/trace_regles.h"

namespace noxlux {

namespace {

// The line's exemption justification; none given is no exemption.
Code motif(const LigneActe& ligne) {
  return estDonne(ligne.exonerationTM) ? *ligne.exonerationTM : Code(Tarification::SANS_EXONERATION);
}

bool reclameActeCouteux(const LigneActe& ligne) { return motif(ligne).vue() == Tarification::ACTE_COUTEUX; }

bool estSansExoneration(const Code& motifExoneration) {
  return motifExoneration.vue() == Tarification::SANS_EXONERATION ||
         motifExoneration.vue() == Tarification::SANS_EXONERATION_9;
}

const Coefficient TAUX_PLEIN(1.0);

// A rate that was not given says nothing.
bool laisseUnePart(const LigneActe& ligne) {
  return ligne.tauxRemboursement.has_value() && *ligne.tauxRemboursement < TAUX_PLEIN;
}

bool neReclameRien(const LigneActe& ligne) {
  return estSansExoneration(motif(ligne)) && laisseUnePart(ligne);
}

void exonerer(LigneActe& ligne) {
  ligne.tauxRemboursement = TAUX_PLEIN;
  ligne.exonerationTM = Code(Tarification::ACTE_COUTEUX);
}

void tracerExoneration(const LigneActe& ligne) {
  if (Trace::estDetaille(TRACE_CONTROLE)) {
    Trace::ecrire(TRACE_CONTROLE, "exonerationTM = %s, tauxRemboursement = %f", motif(ligne).lireTexte(),
                  ligne.tauxRemboursement.value_or(Coefficient()).lireValeur());
  }
}

}  // namespace

CodeRetour Tarification::aCodeExoneration(const Code& acte, const Date& date, Concept numero, bool& commun) {
  ListeCodes valeurs;
  ListeCodes codes;
  CodeRetour cr = lireConceptFacultatif(lecture(), numero, date, valeurs);
  if (cr == NOX_CR_OK && !valeurs.estVide()) {
    cr = lecture().rechercherCodesExonerationTM(acte, date, codes);
  }
  if (cr == NOX_CR_OK) {
    commun = ontUneValeurCommune(codes, valeurs);
  }
  return cr;
}

CodeRetour Tarification::estMotifPrevention(const LigneCCAM& ligne, bool& prevention) {
  ListeCodes valeurs;
  const CodeRetour cr = lireConceptFacultatif(lecture(), CONCEPT_EXO_PREVENTION, ligne.date, valeurs);
  if (cr == NOX_CR_OK) {
    prevention = valeurs.contient(motif(ligne));
  }
  return cr;
}

CodeRetour Tarification::lireSeuil(const Code& caissePS, const Date& date, Montant& seuil) {
  return lecture().rechercherSeuilExoTM(departementDe(caissePS).zoneSeuil, date, seuil);
}

CodeRetour Tarification::compteDansSeuil(const LigneCCAM& ligne, const ListeCodes& codesSeuil, bool& compte) {
  compte = false;
  if (!reclameActeCouteux(ligne) && !neReclameRien(ligne)) {
    return NOX_CR_OK;
  }
  ListeCodes codes;
  const CodeRetour cr = lecture().rechercherCodesExonerationTM(ligne.acte, ligne.date, codes);
  compte = cr == NOX_CR_OK && ontUneValeurCommune(codes, codesSeuil);
  return cr;
}

CodeRetour Tarification::sommerSeance(const Seance& seance, const Montant& arret, Montant& somme) {
  ListeCodes codesSeuil;
  CodeRetour cr = lecture().rechercherValeursConcept(CONCEPT_EXO_SEUIL, *seance.date, codesSeuil);
  for (const LigneCCAM* ligne : seance.lignes) {
    if (cr != NOX_CR_OK || somme >= arret) {
      break;
    }
    bool compte = false;
    cr = compteDansSeuil(*ligne, codesSeuil, compte);
    if (estAbsent(cr)) {
      cr = NOX_CR_OK;  // an act that the reference does not know at the date counts for nothing
    }
    if (cr == NOX_CR_OK && compte) {
      somme = somme + ligne->baseHorsForfait.value_or(Montant());
    }
  }
  return cr;
}

CodeRetour Tarification::estExonereeParSeuil(const LigneCCAM& ligne, const Code& caissePS, bool& exoneree) {
  ListeCodes codesSeuil;
  Montant seuil;
  Montant somme;
  bool compte = false;
  CodeRetour cr = lecture().rechercherValeursConcept(CONCEPT_EXO_SEUIL, ligne.date, codesSeuil);
  if (cr == NOX_CR_OK) {
    cr = compteDansSeuil(ligne, codesSeuil, compte);
  }
  if (cr == NOX_CR_OK && compte) {
    cr = lireSeuil(caissePS, ligne.date, seuil);
  }
  if (cr == NOX_CR_OK && compte) {
    cr = sommerSeance(*ligne.seance, seuil, somme);
  }
  exoneree = cr == NOX_CR_OK && compte && somme >= seuil;
  return cr;
}

CodeRetour Tarification::atteintSeuilSeule(const LigneCCAM& ligne, Montant& seuil, bool& atteint) {
  ListeCodes codesSeuil;
  bool compte = false;
  CodeRetour cr = lecture().rechercherValeursConcept(CONCEPT_EXO_SEUIL, ligne.date, codesSeuil);
  if (cr == NOX_CR_OK) {
    cr = compteDansSeuil(ligne, codesSeuil, compte);
  }
  if (cr == NOX_CR_OK && compte) {
    cr = lireSeuil(codeOuVide(ligne.factureParent->caissePS), ligne.date, seuil);
    Trace::ecrire(TRACE_CONTROLE, "Le seuil d'exonération est %.2fE", seuil.lireValeur());
  }
  atteint = cr == NOX_CR_OK && compte && ligne.baseHorsForfait.value_or(Montant()) >= seuil;
  return cr;
}

CodeRetour Tarification::appliquerProd785(const LigneCCAM& ligne, Erreur& erreur) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Tarification::appliquerProd785");
  tracerExoneration(ligne);
  const Code motifLigne = motif(ligne);
  if (estSansExoneration(motifLigne) || reclameActeCouteux(ligne)) {
    return cr;
  }
  ListeCodes connus;
  cr = lireConceptFacultatif(lecture(), CONCEPT_MOTIFS_EXO, ligne.date, connus);
  if (cr == NOX_CR_OK && !connus.estVide() && !connus.contient(motifLigne)) {
    cr = copierValeurErreur(erreur, "PROD785", {motifLigne});
  }
  return cr;
}

CodeRetour Tarification::appliquerProd786(const LigneCCAM& ligne, Erreur& erreur) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Tarification::appliquerProd786");
  tracerExoneration(ligne);
  bool reclamee = false;
  bool admise = true;
  cr = estMotifPrevention(ligne, reclamee);
  if (cr == NOX_CR_OK && reclamee) {
    cr = aCodeExoneration(ligne.acte, ligne.date, CONCEPT_EXO_PREVENTION, admise);
  }
  if (cr == NOX_CR_OK && !admise) {
    cr = copierValeurErreur(erreur, "PROD786", {ligne.acte, motif(ligne)});
  }
  return cr;
}

CodeRetour Tarification::appliquerProd787(const LigneCCAM& ligne, Erreur& erreur) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Tarification::appliquerProd787");
  tracerExoneration(ligne);
  bool exonerable = false;
  if (reclameActeCouteux(ligne) && laisseUnePart(ligne)) {
    cr = aCodeExoneration(ligne.acte, ligne.date, CONCEPT_EXO_SEUIL, exonerable);
  }
  if (cr == NOX_CR_OK && exonerable) {
    cr = copierValeurErreur(erreur, "PROD787", {ligne.acte, *ligne.tauxRemboursement});
  }
  return cr;
}

CodeRetour Tarification::appliquerProd791B(const LigneCCAM& ligne, Erreur& erreur) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Tarification::appliquerProd791B");
  tracerExoneration(ligne);
  bool exonerable = true;
  if (reclameActeCouteux(ligne)) {
    cr = aCodeExoneration(ligne.acte, ligne.date, CONCEPT_EXO_SEUIL, exonerable);
  }
  if (cr == NOX_CR_OK && !exonerable) {
    cr = copierValeurErreur(erreur, "PROD791B", {ligne.acte});
  }
  return cr;
}

CodeRetour Tarification::appliquerProd788(const LigneCCAM& ligne, Erreur& erreur) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Tarification::appliquerProd788");
  tracerExoneration(ligne);
  bool exonere = false;
  if (neReclameRien(ligne)) {
    cr = aCodeExoneration(ligne.acte, ligne.date, CONCEPT_EXO_NATURE, exonere);
  }
  if (cr == NOX_CR_OK && exonere) {
    cr = copierValeurErreur(erreur, "PROD788", {ligne.acte, *ligne.tauxRemboursement});
  }
  return cr;
}

CodeRetour Tarification::appliquerProd789(const LigneCCAM& ligne, Erreur& erreur) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Tarification::appliquerProd789");
  tracerExoneration(ligne);
  bool reclamee = false;
  bool admise = false;
  if (laisseUnePart(ligne)) {
    cr = estMotifPrevention(ligne, reclamee);
  }
  if (cr == NOX_CR_OK && reclamee) {
    cr = aCodeExoneration(ligne.acte, ligne.date, CONCEPT_EXO_PREVENTION, admise);
  }
  if (cr == NOX_CR_OK && admise) {
    cr = copierValeurErreur(erreur, "PROD789", {ligne.acte, *ligne.tauxRemboursement});
  }
  return cr;
}

CodeRetour Tarification::appliquerProd793(const LigneCCAM& ligne, Erreur& erreur) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Tarification::appliquerProd793");
  tracerExoneration(ligne);
  Montant seuil;
  bool atteint = false;
  bool parNature = false;
  if (neReclameRien(ligne)) {
    cr = atteintSeuilSeule(ligne, seuil, atteint);
  }
  if (cr == NOX_CR_OK && atteint) {
    cr = aCodeExoneration(ligne.acte, ligne.date, CONCEPT_EXO_NATURE, parNature);
  }
  if (cr == NOX_CR_OK && atteint && !parNature) {
    cr = copierValeurErreur(erreur, "PROD793", {ligne.acte, seuil});
  }
  return cr;
}

CodeRetour Tarification::appliquerProd795A(const LigneCCAM& ligne, Erreur& erreur) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Tarification::appliquerProd795A");
  tracerExoneration(ligne);
  if (ligne.tauxRemboursement.has_value() && *ligne.tauxRemboursement > TAUX_PLEIN) {
    cr = copierValeurErreur(erreur, "PROD795A", {ligne.acte, *ligne.tauxRemboursement});
  }
  return cr;
}

CodeRetour Tarification::appliquerProd790A(const LigneCCAM& ligne, Code& factureExoneree) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Tarification::appliquerProd790A");
  tracerExoneration(ligne);
  Montant seuil;
  bool atteint = false;
  if (factureExoneree.vue() != Facture::EXONEREE) {
    cr = atteintSeuilSeule(ligne, seuil, atteint);
  }
  if (cr == NOX_CR_OK && atteint) {
    factureExoneree = Code(Facture::EXONEREE);
  }
  return cr;
}

CodeRetour Tarification::appliquerProd790B(const Seance& seance, const Code& caissePS,
                                           Code& factureExoneree) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Tarification::appliquerProd790B");
  Montant somme;
  Montant seuil;
  cr = sommerSeance(seance, Montant(std::numeric_limits<double>::infinity()), somme);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  Trace::ecrire(TRACE_CONTROLE, "la somme des bases de remboursement hors forfait pour la séance = %.2fE",
                somme.lireValeur());
  cr = lireSeuil(caissePS, *seance.date, seuil);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  Trace::ecrire(TRACE_CONTROLE, "le seuil d'exonération est %.2fE", seuil.lireValeur());
  if (!(somme < seuil)) {
    factureExoneree = Code(Facture::EXONEREE);
  }
  return cr;
}

CodeRetour Tarification::appliquerProd790C(LigneCCAM& ligne, const Code& caissePS,
                                           const Code& factureExoneree) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Tarification::appliquerProd790C");
  tracerExoneration(ligne);
  bool exoneree = false;
  if (factureExoneree.vue() == Facture::EXONEREE) {
    cr = estExonereeParSeuil(ligne, caissePS, exoneree);
  }
  if (exoneree) {
    exonerer(ligne);
  }
  return cr;
}

CodeRetour Tarification::appliquerProd790D(LigneActe& deplacement, const Code& caissePS,
                                           const Code& factureExoneree) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Tarification::appliquerProd790D");
  tracerExoneration(deplacement);
  const LigneCCAM& acte = static_cast<const LigneCCAM&>(*deplacement.rattachement);
  bool exoneree = false;
  if (factureExoneree.vue() == Facture::EXONEREE &&
      (neReclameRien(deplacement) || reclameActeCouteux(deplacement))) {
    cr = estExonereeParSeuil(acte, caissePS, exoneree);
  }
  if (exoneree) {
    exonerer(deplacement);
  }
  return cr;
}

CodeRetour Tarification::appliquerProd792(const LigneCCAM& ligne, Erreur& erreur) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Tarification::appliquerProd792");
  tracerExoneration(ligne);
  if (!neReclameRien(ligne)) {
    return cr;
  }
  Montant seuil;
  bool seule = false;
  bool exoneree = false;
  bool parNature = false;
  cr = atteintSeuilSeule(ligne, seuil, seule);
  if (cr == NOX_CR_OK && !seule) {
    cr = estExonereeParSeuil(ligne, codeOuVide(ligne.factureParent->caissePS), exoneree);
  }
  if (cr == NOX_CR_OK && exoneree) {
    cr = aCodeExoneration(ligne.acte, ligne.date, CONCEPT_EXO_NATURE, parNature);
  }
  if (cr == NOX_CR_OK && exoneree && !parNature) {
    cr = copierValeurErreur(erreur, "PROD792", {ligne.acte});
  }
  return cr;
}

CodeRetour Tarification::appliquerProd792B(const LigneActe& deplacement, Erreur& erreur) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Tarification::appliquerProd792B");
  tracerExoneration(deplacement);
  const LigneCCAM& acte = static_cast<const LigneCCAM&>(*deplacement.rattachement);
  bool exoneree = false;
  if (neReclameRien(deplacement)) {
    cr = estExonereeParSeuil(acte, codeOuVide(deplacement.factureParent->caissePS), exoneree);
  }
  if (cr == NOX_CR_OK && exoneree) {
    cr = copierValeurErreur(erreur, "PROD792B", {deplacement.prestation, acte.acte});
  }
  return cr;
}

CodeRetour Tarification::appliquerProd791A(const LigneCCAM& ligne, Erreur& erreur) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Tarification::appliquerProd791A");
  tracerExoneration(ligne);
  bool exonerable = false;
  if (reclameActeCouteux(ligne) && !laisseUnePart(ligne)) {
    cr = aCodeExoneration(ligne.acte, ligne.date, CONCEPT_EXO_SEUIL, exonerable);
  }
  if (cr == NOX_CR_OK && exonerable) {
    cr = copierValeurErreur(erreur, "PROD791A", {ligne.acte});
  }
  return cr;
}

CodeRetour Tarification::appliquerCExoPrevention(const Code& acte, bool prevention, const Date& date,
                                                 Coefficient& taux, Code& code) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Tarification::appliquerCExoPrevention");
  if (Trace::estDetaille(TRACE_CONTROLE)) {
    Trace::ecrire(TRACE_CONTROLE, "acte = %s, prevention = %d, date = %s", acte.lireTexte(),
                  static_cast<int>(prevention), date.lireValeur());
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
                                           Coefficient& taux, Code& code, Booleen& exonere) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Tarification::appliquerCExoActe");
  if (Trace::estDetaille(TRACE_CONTROLE)) {
    Trace::ecrire(TRACE_CONTROLE,
                  "caissePS = %s, acte = %s, date = %s, baseHorsForfait = %.2fE, motifExoneration = %s",
                  caissePS.lireTexte(), acte.lireTexte(), date.lireValeur(), baseHorsForfait.lireValeur(),
                  motifExoneration.lireTexte());
  }
  LigneCCAM ligne;
  ligne.acte = acte;
  ligne.date = date;
  ligne.exonerationTM = motifExoneration;
  ligne.tauxRemboursement = taux;
  ListeCodes codesSeuil;
  Montant seuil;
  bool compte = false;
  cr = lecture().rechercherValeursConcept(CONCEPT_EXO_SEUIL, date, codesSeuil);
  if (cr == NOX_CR_OK) {
    cr = compteDansSeuil(ligne, codesSeuil, compte);
  }
  if (cr == NOX_CR_OK) {
    cr = lireSeuil(caissePS, date, seuil);
    Trace::ecrire(TRACE_CONTROLE, "le seuil d'exonération du TM = %f", seuil.lireValeur());
  }
  if (cr != NOX_CR_OK) {
    return cr;
  }
  exonere = Booleen(compte && baseHorsForfait >= seuil);
  if (exonere.estVrai()) {
    exonerer(ligne);
  } else if (reclameActeCouteux(ligne)) {
    ligne.exonerationTM = Code(SANS_EXONERATION);
  }
  taux = *ligne.tauxRemboursement;
  code = motif(ligne);
  return cr;
}

}  // namespace noxlux
