// Rules of one CCAM line about its act: that it exists, its dates, its reimbursement, its activity and phase.
#include "regles/reglementation.h"
#include "regles/trace_regles.h"

namespace noxlux {

CodeRetour Reglementation::appliquerProd500(const LigneCCAM& ligne, Constat& constat) {
  Trace::ecrire(TRACE_CONTROLE, "acte = %s", ligne.acte.lireTexte());
  CodeRetour cr = lecture().rechercherExistenceActe(ligne.acte);
  if (cr == NOX_CR_CODE_INCONNU) {
    Trace::ecrire(TRACE_CONTROLE, "le code acte non trouvé est : %s", ligne.acte.lireTexte());
    cr = constat.lever({ligne.acte});
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd510(const LigneCCAM& ligne, Constat& constat) {
  tracerActe(ligne.acte, ligne.date);
  Date creation;
  Date fin;
  CodeRetour cr = lecture().rechercherDateCreation(ligne.acte, creation);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  tracerDate("La date de creation est %s", creation);
  cr = lecture().rechercherDateFin(ligne.acte, fin);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  tracerDate("La date de fin est %s", fin);
  if (ligne.date < creation || (fin.estRenseigne() && ligne.date > fin)) {
    cr = constat.lever({ligne.acte});
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd511A(const LigneCCAM& ligne, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
  tracerActe(ligne.acte, ligne.date);
  const std::optional<Date>& naissance = ligne.factureParent->dateNaissance;
  if (naissance.has_value()) {
    tracerDate("dateNaissance = %s", *naissance);
    if (ligne.date < *naissance) {
      cr = constat.lever({ligne.acte});
    }
  }
  return cr;
}

CodeRetour Reglementation::verifierNatureAssurance(const Code& natureAssurance, const Code& acte,
                                                   bool& admise) {
  ListeCodes natures;
  const CodeRetour cr = lecture().rechercherNaturesAssurance(acte, natures);
  if (cr == NOX_CR_OK) {
    // An act that names no nature is open to all.
    admise = natures.estVide() || natures.contient(natureAssurance);
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd890(const LigneCCAM& ligne, Constat& constat) {
  const Code& nature = codeOuVide(ligne.factureParent->natureAssurance);
  Trace::ecrire(TRACE_CONTROLE, "acte = %s, natureAssurance = %s", ligne.acte.lireTexte(),
                nature.lireTexte());
  bool admise = true;
  CodeRetour cr = verifierNatureAssurance(nature, ligne.acte, admise);
  if (cr == NOX_CR_OK && !admise) {
    cr = constat.lever({ligne.acte, nature});
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd780(const LigneCCAM& ligne, Constat& constat) {
  const std::string_view entente = codeOuVide(ligne.ententePrealable).vue();
  tracerActe(ligne.acte, ligne.date);
  Trace::ecrire(TRACE_CONTROLE, "ententePrealable = %s", codeOuVide(ligne.ententePrealable).lireTexte());
  Booleen soumis;
  CodeRetour cr = lecture().rechercherEntentePrealable(ligne.acte, ligne.date, soumis);
  if (cr == NOX_CR_OK && soumis.estVrai() && entente != "0" && entente != "4" && entente != "5") {
    cr = constat.lever({ligne.acte});
  }
  return cr;
}

namespace {

// An act that is not reimbursed is billed without base, with its theoretical base, as non-reimbursable
// expense.
bool estFactureeRemboursable(const LigneCCAM& ligne) {
  return estDonne(ligne.baseRemboursement) || !estDonne(ligne.baseTheoriqueAMO) ||
         codeOuVide(ligne.qualificatifDepense).vue() != "N";
}

}  // namespace

CodeRetour Reglementation::verifierNonRembourse(const LigneCCAM& ligne, Concept admissions,
                                                Constat& constat) {
  tracerActe(ligne.acte, ligne.date);
  Code admission;
  bool nonRembourse = false;
  CodeRetour cr = lecture().rechercherAdmissionRemboursement(ligne.acte, ligne.date, admission);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  Trace::ecrire(TRACE_CONTROLE, "admission au remboursement = %s", admission.lireTexte());
  cr = estDansConcept(lecture(), admissions, ligne.date, admission, nonRembourse);
  if (cr == NOX_CR_OK && nonRembourse && estFactureeRemboursable(ligne)) {
    cr = constat.lever({ligne.acte});
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd760(const LigneCCAM& ligne, Constat& constat) {
  return verifierNonRembourse(ligne, CONCEPT_NON_REMBOURSES, constat);
}

CodeRetour Reglementation::appliquerProd765(const LigneCCAM& ligne, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
  const Code& exceptionnel = codeOuVide(ligne.codeRemboursement);
  Trace::ecrire(TRACE_CONTROLE, "codeRemboursement = %s", exceptionnel.lireTexte());
  if (exceptionnel.vue() != REMBOURSEMENT_EXCEPTIONNEL) {
    cr = verifierNonRembourse(ligne, CONCEPT_REMBOURSES_SOUS_CONDITIONS, constat);
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd530(const LigneCCAM& ligne, Constat& constat) {
  Trace::ecrire(TRACE_CONTROLE, "acte = %s, activite = %s", ligne.acte.lireTexte(),
                ligne.activite.lireTexte());
  ListeCodes activites;
  CodeRetour cr = lecture().rechercherActivites(ligne.acte, activites);
  if (cr == NOX_CR_OK && !activites.contient(ligne.activite)) {
    cr = constat.lever({ligne.acte, ligne.activite});
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd540(const LigneCCAM& ligne, Constat& constat) {
  tracerPhase(ligne.acte, ligne.activite, ligne.phase);
  ListeCodes phases;
  CodeRetour cr = lecture().rechercherPhasesDeTraitement(ligne.acte, ligne.activite, phases);
  if (cr == NOX_CR_OK && !phases.contient(ligne.phase)) {
    cr = constat.lever({ligne.acte, ligne.activite, ligne.phase});
  }
  return cr;
}

}  // namespace noxlux
