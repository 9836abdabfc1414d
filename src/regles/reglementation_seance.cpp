// Rules about a line among the lines of its date.
#include <algorithm>

#include "regles/reglementation.h"
#include "regles/trace_regles.h"

namespace noxlux {

CodeRetour Reglementation::appliquerProd580A(const LigneCCAM& ligne, Booleen& resultat) {
  tracerActe(ligne.acte, ligne.date);
  bool complementaire = false;
  CodeRetour cr = estActeComplementaire(lecture(), ligne.acte, ligne.date, complementaire);
  if (cr == NOX_CR_OK) {
    resultat = Booleen(complementaire);
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd580(const LigneCCAM& ligne, Constat& constat) {
  tracerActe(ligne.acte, ligne.date);
  ListeCodes typesIsoles;
  CodeRetour cr = lecture().rechercherValeursConcept(CONCEPT_ACTES_ISOLES, ligne.date, typesIsoles);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  for (const LigneCCAM* autre : ligne.seance->lignes) {
    if (autre->acte == ligne.acte) {
      continue;
    }
    Code type;
    cr = lecture().rechercherTypeActe(autre->acte, type);
    if (cr != NOX_CR_OK) {
      return cr;
    }
    if (typesIsoles.contient(type)) {
      Trace::ecrire(TRACE_CONTROLE, "Le code de l'acte isolé ou procédure est %s.", autre->acte.lireTexte());
      return cr;
    }
  }
  cr = constat.lever({ligne.acte});
  return cr;
}

CodeRetour Reglementation::appliquerProd600(const LigneCCAM& ligne, Constat& constat) {
  tracerActe(ligne.acte, ligne.date);
  ListeCodes incompatibles;
  CodeRetour cr = lecture().rechercherActesIncompatibles(ligne.acte, ligne.date, incompatibles);
  if (cr != NOX_CR_OK || incompatibles.estVide()) {
    return cr;
  }
  const auto& lignes = ligne.seance->lignes;
  const auto autre = std::find_if(lignes.begin(), lignes.end(), [&](const LigneCCAM* candidat) {
    return candidat != &ligne && incompatibles.contient(candidat->acte);
  });
  if (autre != lignes.end()) {
    Trace::ecrire(TRACE_CONTROLE, "Les deux actes incompatibles sont %s et %s .", ligne.acte.lireTexte(),
                  (*autre)->acte.lireTexte());
    cr = constat.lever({ligne.acte, (*autre)->acte});
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd240(const LigneCCAM& ligne, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
  tracerActe(ligne.acte, ligne.date);
  Trace::ecrire(TRACE_CONTROLE, "numeroPS = %s", ligne.numeroPS.lireTexte());
  const auto& lignes = ligne.seance->lignes;
  for (const Code& modificateur : ligne.modificateur) {
    Booleen multiple(true);
    cr = lecture().rechercherTopPresenceMultiple(modificateur, ligne.date, multiple);
    if (estAbsent(cr)) {
      cr = NOX_CR_OK;
    }
    if (cr != NOX_CR_OK) {
      return cr;
    }
    if (multiple.estVrai()) {
      continue;
    }
    const auto autre = std::find_if(lignes.begin(), lignes.end(), [&](const LigneCCAM* candidat) {
      return candidat != &ligne && candidat->modificateur.contient(modificateur) &&
             candidat->numeroPS == ligne.numeroPS && !(candidat->acte == ligne.acte);
    });
    if (autre != lignes.end()) {
      Trace::ecrire(TRACE_CONTROLE, "code de l'acte A = %s.", ligne.acte.lireTexte());
      TypeListe<Nombre> prestations;
      for (const Nombre& numero : {ligne.numero, (*autre)->numero}) {
        if (cr == NOX_CR_OK) {
          cr = prestations.ajouterElement(numero);
        }
      }
      if (cr == NOX_CR_OK) {
        cr = constat.lever(prestations, {modificateur, ligne.acte, (*autre)->acte});
      }
      return cr;
    }
  }
  return cr;
}

}  // namespace noxlux
