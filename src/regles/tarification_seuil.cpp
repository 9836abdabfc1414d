// Exemption by the threshold: of an act, of the acts of a séance, of an invoice.
#include "regles/departements.h"
#include "regles/exoneration.h"
#include "regles/faits.h"

namespace noxlux {

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

CodeRetour Tarification::sommerSeance(const Seance& seance, Montant& somme) {
  if (seance.sommeHorsForfait.has_value()) {
    somme = *seance.sommeHorsForfait;
    return NOX_CR_OK;
  }
  ListeCodes codesSeuil;
  CodeRetour cr = lecture().rechercherValeursConcept(CONCEPT_EXO_SEUIL, *seance.date, codesSeuil);
  for (const LigneCCAM* ligne : seance.lignes) {
    // A line on which the sum may not be checked counts for nothing.
    bool verifiable = false;
    bool compte = false;
    if (cr == NOX_CR_OK) {
      cr = estVerifiable(Code(PROD790B), *ligne, verifiable);
    }
    if (cr == NOX_CR_OK && verifiable) {
      cr = compteDansSeuil(*ligne, codesSeuil, compte);
    }
    if (cr != NOX_CR_OK) {
      return cr;
    }
    if (compte) {
      const Montant base = ligne->baseHorsForfait.value_or(Montant());
      somme = somme + base;
      dire(faits::LIGNE_COMPTEE, ligne->numero, base);
    }
  }
  if (cr == NOX_CR_OK) {
    seance.sommeHorsForfait = somme;
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
    cr = sommerSeance(*ligne.seance, somme);
  }
  exoneree = cr == NOX_CR_OK && compte && somme >= seuil;
  return cr;
}

CodeRetour Tarification::atteintSeuil(const LigneCCAM& ligne, const ListeCodes& codesSeuil, Montant& seuil,
                                      bool& atteint) {
  bool compte = false;
  CodeRetour cr = compteDansSeuil(ligne, codesSeuil, compte);
  if (cr == NOX_CR_OK && compte) {
    cr = lireSeuil(codeOuVide(ligne.factureParent->caissePS), ligne.date, seuil);
    Trace::ecrire(TRACE_CONTROLE, "Le seuil d'exonération est %.2fE", seuil.lireValeur());
  }
  const Montant base = ligne.baseHorsForfait.value_or(Montant());
  atteint = cr == NOX_CR_OK && compte && base >= seuil;
  if (cr == NOX_CR_OK && compte) {
    dire(faits::SEUIL_ACTE, seuil, base, Booleen(atteint));
  }
  return cr;
}

CodeRetour Tarification::atteintSeuilSeule(const LigneCCAM& ligne, Montant& seuil, bool& atteint) {
  ListeCodes codesSeuil;
  const CodeRetour cr = lireCodesSeuilSeul(lecture(), ligne.date, codesSeuil);
  return cr == NOX_CR_OK ? atteintSeuil(ligne, codesSeuil, seuil, atteint) : cr;
}

CodeRetour Tarification::estExonerableParSeuil(const LigneCCAM& ligne, bool& exonerable) {
  ListeCodes codesSeuil;
  ListeCodes codes;
  CodeRetour cr = lireCodesSeuilSeul(lecture(), ligne.date, codesSeuil);
  if (cr == NOX_CR_OK) {
    cr = lecture().rechercherCodesExonerationTM(ligne.acte, ligne.date, codes);
  }
  exonerable = cr == NOX_CR_OK && ontUneValeurCommune(codes, codesSeuil);
  return cr;
}

CodeRetour Tarification::appliquerProd790A(const LigneCCAM& ligne, Code& factureExoneree) {
  CodeRetour cr = NOX_CR_OK;
  const auto bloc = blocRegle(cr, NOM, PROD790A);
  tracerExoneration(ligne);
  ListeCodes codesSeuil;
  Montant seuil;
  bool atteint = false;
  if (factureExoneree.vue() != Facture::EXONEREE) {
    cr = lecture().rechercherValeursConcept(CONCEPT_EXO_SEUIL, ligne.date, codesSeuil);
    cr = cr == NOX_CR_OK ? atteintSeuil(ligne, codesSeuil, seuil, atteint) : cr;
  }
  if (cr == NOX_CR_OK && atteint) {
    factureExoneree = Code(Facture::EXONEREE);
  }
  return cr;
}

CodeRetour Tarification::appliquerProd790B(const Seance& seance, const Code& caissePS,
                                           Code& factureExoneree) {
  CodeRetour cr = NOX_CR_OK;
  const auto bloc = blocRegle(cr, NOM, PROD790B);
  Montant somme;
  Montant seuil;
  cr = sommerSeance(seance, somme);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  dire(faits::SOMME_SEANCE, somme);
  cr = lireSeuil(caissePS, *seance.date, seuil);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  dire(faits::SEUIL_SEANCE, seuil);
  if (!(somme < seuil)) {
    factureExoneree = Code(Facture::EXONEREE);
  }
  return cr;
}

CodeRetour Tarification::appliquerProd790C(LigneCCAM& ligne, const Code& caissePS,
                                           const Code& factureExoneree) {
  CodeRetour cr = NOX_CR_OK;
  const auto bloc = blocRegle(cr, NOM, PROD790C);
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
  const auto bloc = blocRegle(cr, NOM, PROD790D);
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

CodeRetour Tarification::appliquerProd792(const LigneCCAM& ligne, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
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
    cr = constat.lever({ligne.acte});
  }
  return cr;
}

CodeRetour Tarification::appliquerProd792B(const LigneActe& deplacement, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
  tracerExoneration(deplacement);
  const LigneCCAM& acte = static_cast<const LigneCCAM&>(*deplacement.rattachement);
  bool exoneree = false;
  if (neReclameRien(deplacement)) {
    cr = estExonereeParSeuil(acte, codeOuVide(deplacement.factureParent->caissePS), exoneree);
  }
  if (cr == NOX_CR_OK && exoneree) {
    cr = constat.lever({deplacement.prestation, acte.acte});
  }
  return cr;
}

CodeRetour Tarification::appliquerProd791A(const LigneCCAM& ligne, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
  tracerExoneration(ligne);
  Montant seuil;
  bool exonerable = false;
  bool atteint = false;
  if (reclameActeCouteux(ligne) && !laisseUnePart(ligne)) {
    cr = estExonerableParSeuil(ligne, exonerable);
  }
  if (cr == NOX_CR_OK && exonerable) {
    cr = atteintSeuilSeule(ligne, seuil, atteint);
  }
  if (cr == NOX_CR_OK && exonerable && !atteint) {
    cr = constat.lever({ligne.acte});
  }
  return cr;
}

}  // namespace noxlux
