// Rules about the prestation code of a line, its travel, and the professional who executes it.
#include "regles/reglementation.h"
#include "regles/trace_regles.h"

namespace noxlux {

CodeRetour Reglementation::appliquerProd170(const LigneActe& ligne, Constat& constat) {
  return verifierPrestation(ligne, constat);
}

CodeRetour Reglementation::appliquerProd220(const LigneCCAM& ligne, Constat& constat) {
  return verifierPrestation(ligne, constat);
}

CodeRetour Reglementation::verifierPrestation(const LigneActe& ligne, Constat& constat) {
  Trace::ecrire(TRACE_CONTROLE, "prestation = %s", ligne.prestation.lireTexte());
  tracerDate("date = %s", ligne.date);
  if (lecture().rechercherExistenceCodeRegroupement(ligne.prestation, ligne.date)) {
    return NOX_CR_OK;
  }
  return constat.lever({ligne.prestation});
}

CodeRetour Reglementation::verifierObligationCodage(const Code& specialite, const Code& prestation,
                                                    const Date& date, bool& obligatoire) {
  Date obligation;
  const CodeRetour cr = lecture().rechercherDateObligationCodage(prestation, specialite, obligation);
  if (cr != NOX_CR_OK && cr != NOX_CR_CODE_INCONNU) {
    return cr;
  }
  tracerDate("date d'obligation de codage = %s", obligation);
  obligatoire = obligation.estRenseigne() && date >= obligation;
  return NOX_CR_OK;
}

CodeRetour Reglementation::appliquerProd211(const LigneActe& ligne, Constat& constat) {
  Trace::ecrire(TRACE_CONTROLE, "specialite = %s, prestation = %s", ligne.specialitePS.lireTexte(),
                ligne.prestation.lireTexte());
  tracerDate("date = %s", ligne.date);
  bool obligatoire = false;
  CodeRetour cr = verifierObligationCodage(ligne.specialitePS, ligne.prestation, ligne.date, obligatoire);
  if (cr == NOX_CR_OK && obligatoire) {
    cr = constat.lever({ligne.prestation, ligne.specialitePS});
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd690A(const LigneActe& ligne, Constat& constat) {
  const Code& acte = static_cast<const LigneCCAM&>(*ligne.rattachement).acte;
  Trace::ecrire(TRACE_CONTROLE, "prestation = %s, type = %d", ligne.prestation.lireTexte(),
                static_cast<int>(ligne.type));
  tracerActe(acte, ligne.date);
  const Concept admis =
      ligne.type == LigneActe::Type::DEPLACEMENT_1 ? CONCEPT_DEPLACEMENT_1 : CONCEPT_DEPLACEMENT_2;
  Code frais;
  bool present = true;
  CodeRetour cr = lecture().rechercherFraisDeplacement(acte, frais);
  if (estAbsent(cr)) {
    cr = NOX_CR_OK;  // an unknown act is told once, on its own line
  } else if (cr == NOX_CR_OK) {
    Trace::ecrire(TRACE_CONTROLE, "frais de deplacement = %s", frais.lireTexte());
    cr = estDansConcept(lecture(), admis, ligne.date, frais, present);
  }
  if (cr == NOX_CR_OK && !present) {
    cr = constat.lever({ligne.prestation, acte});
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd798(const LigneCCAM& ligne, Constat& constat) {
  tracerActivite(ligne.acte, ligne.activite, ligne.date);
  Code regroupement;
  CodeRetour cr = lecture().rechercherCodeRegroupement(ligne.acte, ligne.activite, ligne.date, regroupement);
  if (cr == NOX_CR_OK) {
    Trace::ecrire(TRACE_CONTROLE, "code regroupement = %s, prestation = %s", regroupement.lireTexte(),
                  ligne.prestation.lireTexte());
    if (!(regroupement == ligne.prestation)) {
      cr = constat.lever({ligne.acte, ligne.activite, regroupement});
    }
  }
  return cr;
}

CodeRetour Reglementation::verifierExecutant(const Code& specialite, const Code& acte, const Code& activite,
                                             const Date& date, bool& admis) {
  ListeCodes classes;
  CodeRetour cr = lecture().rechercherClassesSpecialitesExecutant(acte, activite, date, classes);
  if (cr != NOX_CR_OK || classes.estVide()) {
    admis = true;  // an act that names no class is open to all, to specialities not known too
    return cr;
  }
  Code classe;
  cr = lecture().rechercherRegroupementSpecialites(specialite, date, classe);
  if (cr == NOX_CR_OK) {
    Trace::ecrire(TRACE_CONTROLE, "classe de specialite = %s", classe.lireTexte());
    admis = classes.contient(classe);
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd670(const LigneCCAM& ligne, Constat& constat) {
  tracerActivite(ligne.acte, ligne.activite, ligne.date);
  Trace::ecrire(TRACE_CONTROLE, "specialite = %s", ligne.specialitePS.lireTexte());
  bool admis = true;
  CodeRetour cr = verifierExecutant(ligne.specialitePS, ligne.acte, ligne.activite, ligne.date, admis);
  if (cr == NOX_CR_OK && !admis) {
    cr = constat.lever({ligne.acte, ligne.activite, ligne.specialitePS});
  }
  return cr;
}

namespace {

// A professional's approvals stand one after the other, two characters each: the first counts.
constexpr std::size_t LONGUEUR_AGREMENT = 2;

}  // namespace

bool Reglementation::suffit(const Code& agrementRadio, const ListeCodes& requis) {
  const Code premier = agrementRadio.extrairePartie(0, LONGUEUR_AGREMENT);
  Trace::ecrire(TRACE_CONTROLE, "premier agrement = %s", premier.lireTexte());
  return requis.estVide() || requis.contient(premier);
}

CodeRetour Reglementation::appliquerProd895A(const LigneCCAM& ligne, Constat& constat) {
  const Code& agrement = codeOuVide(ligne.factureParent->agrementRadio);
  tracerActivite(ligne.acte, ligne.activite, ligne.date);
  ListeCodes requis;
  CodeRetour cr = lecture().rechercherAgrementsRadio(ligne.acte, ligne.activite, requis);
  if (cr == NOX_CR_OK && !suffit(agrement, requis)) {
    cr = constat.lever({ligne.acte, ligne.activite, listerElements(requis)});
  }
  return cr;
}

}  // namespace noxlux
