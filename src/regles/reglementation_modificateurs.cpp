// Rules about the modifiers of a line. A modifier that does not exist is the matter of PROD136A and PROD136B
// alone: the other rules pass it over.
#include <algorithm>

#include "regles/reglementation.h"
#include "regles/trace_regles.h"

namespace noxlux {

CodeRetour Reglementation::chercherModificateurInconnu(const LigneCCAM& ligne, Rang rang, const char* regle,
                                                       Erreur& erreur) {
  tracerDate("date = %s", ligne.date);
  if (ligne.modificateur.estVide()) {
    return NOX_CR_OK;
  }
  Nombre tarifants;
  const CodeRetour cr = lecture().rechercherNombreModificateursTarifants(ligne.date, tarifants);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  Trace::ecrire(TRACE_CONTROLE, "Le nombre de modificateurs tarifants est %d", tarifants.lireValeur());
  const auto limite =
      std::clamp<std::int32_t>(tarifants.lireValeur(), 0, ligne.modificateur.lireNombreElements());
  const Code* const milieu = ligne.modificateur.begin() + limite;
  const Code* const debut = rang == Rang::TARIFANTS ? ligne.modificateur.begin() : milieu;
  const Code* const fin = rang == Rang::TARIFANTS ? milieu : ligne.modificateur.end();
  const Code* const inconnu = std::find_if(debut, fin, [&](const Code& modificateur) {
    return !lecture().rechercherExistenceModificateur(modificateur, ligne.date);
  });
  if (inconnu == fin) {
    return NOX_CR_OK;
  }
  return copierValeurErreur(erreur, regle, {*inconnu});
}

CodeRetour Reglementation::appliquerProd136A(const LigneCCAM& ligne, Erreur& erreur) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Reglementation::appliquerProd136A");
  cr = chercherModificateurInconnu(ligne, Rang::TARIFANTS, "PROD136A", erreur);
  return cr;
}

CodeRetour Reglementation::appliquerProd136B(const LigneCCAM& ligne, Erreur& erreur) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Reglementation::appliquerProd136B");
  cr = chercherModificateurInconnu(ligne, Rang::AU_DELA, "PROD136B", erreur);
  return cr;
}

CodeRetour Reglementation::appliquerProd190(const LigneCCAM& ligne, Erreur& erreur) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Reglementation::appliquerProd190");
  tracerDate("date = %s", ligne.date);
  // The modifiers already seen, with what each is compatible with.
  struct Vu {
    const Code* modificateur;
    ListeCodes compatibles;
  };
  std::vector<Vu> vus;
  for (const Code& modificateur : ligne.modificateur) {
    ListeCodes compatibles;
    cr = lecture().rechercherModificateursCompatibles(modificateur, ligne.date, compatibles);
    if (estAbsent(cr)) {
      cr = NOX_CR_OK;
      continue;
    }
    if (cr != NOX_CR_OK) {
      return cr;
    }
    for (const Vu& vu : vus) {
      const bool silence = compatibles.estVide() && vu.compatibles.estVide();
      if (!silence && !compatibles.contient(*vu.modificateur) && !vu.compatibles.contient(modificateur)) {
        cr = copierValeurErreur(erreur, "PROD190", {*vu.modificateur, modificateur});
        return cr;
      }
    }
    vus.push_back({&modificateur, std::move(compatibles)});
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd550(const LigneCCAM& ligne, Erreur& erreur) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Reglementation::appliquerProd550");
  tracerActivite(ligne.acte, ligne.activite, ligne.date);
  if (ligne.modificateur.estVide()) {
    return cr;
  }
  ListeCodes applicables;
  cr = lecture().rechercherModificateursApplicables(ligne.acte, ligne.activite, ligne.date, applicables);
  for (const Code& modificateur : ligne.modificateur) {
    if (cr != NOX_CR_OK || erreur.estRenseigne()) {
      break;
    }
    if (!applicables.contient(modificateur) &&
        lecture().rechercherExistenceModificateur(modificateur, ligne.date)) {
      cr = copierValeurErreur(erreur, "PROD550", {modificateur, ligne.acte, ligne.activite});
    }
  }
  return cr;
}

CodeRetour Reglementation::verifierAgeModificateur(const Periode& age, const Code& modificateur,
                                                   const Date& date, bool& respecte) {
  Periode minimum;
  Periode maximum;
  tracerAge("âge du bénéficiaire = %d années %d jours", age);
  CodeRetour cr = lecture().rechercherAgeMinimumModificateur(modificateur, date, minimum);
  if (cr == NOX_CR_OK) {
    tracerAge("L'âge minimum pour le modificateur est %d années %d jours", minimum);
    cr = lecture().rechercherAgeMaximumModificateur(modificateur, date, maximum);
  }
  if (cr == NOX_CR_OK) {
    tracerAge("L'âge maximum pour le modificateur est %d années %d jours", maximum);
    respecte = age >= minimum && (!maximum.estRenseigne() || age <= maximum);
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd555(const LigneCCAM& ligne, Erreur& erreur) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Reglementation::appliquerProd555");
  tracerDate("date = %s", ligne.date);
  const Date naissance = ligne.factureParent->dateNaissance.value_or(Date());
  if (!aUnAge(naissance, ligne.date)) {
    return cr;
  }
  for (const Code& modificateur : ligne.modificateur) {
    bool respecte = true;
    cr = verifierAgeModificateur(ligne.date - naissance, modificateur, ligne.date, respecte);
    if (estAbsent(cr)) {
      cr = NOX_CR_OK;  // a modifier without line of ages is for all ages
    }
    if (cr == NOX_CR_OK && !respecte) {
      cr = copierValeurErreur(erreur, "PROD555", {modificateur});
      return cr;
    }
    if (cr != NOX_CR_OK) {
      return cr;
    }
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd798A(const LigneCCAM& ligne, Erreur& erreur) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Reglementation::appliquerProd798A");
  tracerDate("date = %s", ligne.date);
  const ListeCodes& transmis = ligne.donneesComplementaires;
  if (transmis.estVide()) {
    return cr;
  }
  Nombre transmissibles;
  cr = lecture().rechercherNombreModificateursTransmissibles(ligne.date, transmissibles);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  Trace::ecrire(TRACE_CONTROLE, "Le nombre de modificateurs transmissibles est %d",
                transmissibles.lireValeur());
  ListeCodes attendus;
  for (const Code& modificateur : ligne.modificateur) {
    Code modificateurOC;
    cr = lecture().rechercherModificateurOC(modificateur, ligne.date, modificateurOC);
    if (cr == NOX_CR_OK) {
      cr = attendus.ajouterElement(modificateurOC);
    } else if (estAbsent(cr)) {
      cr = NOX_CR_OK;
    }
    if (cr != NOX_CR_OK) {
      return cr;
    }
  }
  // The first code passed on that stands for no modifier billed, or is one too many.
  std::int32_t rang = 0;
  for (const Code& code : transmis) {
    if (rang++ >= transmissibles.lireValeur() || !attendus.contient(code)) {
      cr = copierValeurErreur(erreur, "PROD798A", {code});
      return cr;
    }
  }
  return cr;
}

}  // namespace noxlux
