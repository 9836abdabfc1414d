// Exemption rules of one line: what it claims, against its act, its rate and its base.
#include "regles/exoneration.h"

namespace noxlux {

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

CodeRetour Tarification::appliquerProd785(const LigneCCAM& ligne, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
  tracerExoneration(ligne);
  const Code motifLigne = motif(ligne);
  if (estSansExoneration(motifLigne) || reclameActeCouteux(ligne)) {
    return cr;
  }
  ListeCodes connus;
  cr = lireConceptFacultatif(lecture(), CONCEPT_MOTIFS_EXO, ligne.date, connus);
  if (cr == NOX_CR_OK && !connus.estVide() && !connus.contient(motifLigne)) {
    cr = constat.lever({motifLigne});
  }
  return cr;
}

CodeRetour Tarification::appliquerProd786(const LigneCCAM& ligne, Constat& constat) {
  tracerExoneration(ligne);
  bool reclamee = false;
  bool admise = true;
  CodeRetour cr = estMotifPrevention(ligne, reclamee);
  if (cr == NOX_CR_OK && reclamee) {
    cr = aCodeExoneration(ligne.acte, ligne.date, CONCEPT_EXO_PREVENTION, admise);
  }
  if (cr == NOX_CR_OK && !admise) {
    cr = constat.lever({ligne.acte, motif(ligne)});
  }
  return cr;
}

CodeRetour Tarification::appliquerProd787(const LigneCCAM& ligne, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
  tracerExoneration(ligne);
  bool exonerable = false;
  if (reclameActeCouteux(ligne) && laisseUnePart(ligne)) {
    cr = estExonerableParSeuil(ligne, exonerable);
  }
  if (cr == NOX_CR_OK && exonerable) {
    cr = constat.lever({ligne.acte, *ligne.tauxRemboursement});
  }
  return cr;
}

CodeRetour Tarification::appliquerProd791B(const LigneCCAM& ligne, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
  tracerExoneration(ligne);
  bool exonerable = true;
  if (reclameActeCouteux(ligne)) {
    cr = estExonerableParSeuil(ligne, exonerable);
  }
  if (cr == NOX_CR_OK && !exonerable) {
    cr = constat.lever({ligne.acte});
  }
  return cr;
}

CodeRetour Tarification::appliquerProd788(const LigneCCAM& ligne, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
  tracerExoneration(ligne);
  bool exonere = false;
  if (neReclameRien(ligne)) {
    cr = aCodeExoneration(ligne.acte, ligne.date, CONCEPT_EXO_NATURE, exonere);
  }
  if (cr == NOX_CR_OK && exonere) {
    cr = constat.lever({ligne.acte, *ligne.tauxRemboursement});
  }
  return cr;
}

CodeRetour Tarification::appliquerProd789(const LigneCCAM& ligne, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
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
    cr = constat.lever({ligne.acte, *ligne.tauxRemboursement});
  }
  return cr;
}

CodeRetour Tarification::appliquerProd793(const LigneCCAM& ligne, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
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
    cr = constat.lever({ligne.acte, seuil});
  }
  return cr;
}

CodeRetour Tarification::appliquerProd795A(const LigneCCAM& ligne, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
  tracerExoneration(ligne);
  if (ligne.tauxRemboursement.has_value() && *ligne.tauxRemboursement > TAUX_PLEIN) {
    cr = constat.lever({ligne.acte, *ligne.tauxRemboursement});
  }
  return cr;
}

}  // namespace noxlux
