// Rules about the modifiers of a line. A modifier that does not exist is the matter of PROD136A and PROD136B
// alone: the other rules pass it over.
#include <algorithm>

#include "regles/reglementation.h"
#include "regles/trace_regles.h"

namespace noxlux {

CodeRetour Reglementation::chercherModificateurInconnu(const LigneCCAM& ligne, Rang rang, Constat& constat) {
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
  return constat.lever({*inconnu});
}

CodeRetour Reglementation::appliquerProd136A(const LigneCCAM& ligne, Constat& constat) {
  return chercherModificateurInconnu(ligne, Rang::TARIFANTS, constat);
}

CodeRetour Reglementation::appliquerProd136B(const LigneCCAM& ligne, Constat& constat) {
  return chercherModificateurInconnu(ligne, Rang::AU_DELA, constat);
}

CodeRetour Reglementation::appliquerProd190(const LigneCCAM& ligne, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
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
        cr = constat.lever({*vu.modificateur, modificateur});
        return cr;
      }
    }
    vus.push_back({&modificateur, std::move(compatibles)});
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd550(const LigneCCAM& ligne, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
  tracerActivite(ligne.acte, ligne.activite, ligne.date);
  if (ligne.modificateur.estVide()) {
    return cr;
  }
  ListeCodes applicables;
  cr = lecture().rechercherModificateursApplicables(ligne.acte, ligne.activite, ligne.date, applicables);
  for (const Code& modificateur : ligne.modificateur) {
    if (cr != NOX_CR_OK || constat.estLeve()) {
      break;
    }
    if (!applicables.contient(modificateur) &&
        lecture().rechercherExistenceModificateur(modificateur, ligne.date)) {
      cr = constat.lever({modificateur, ligne.acte, ligne.activite});
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

CodeRetour Reglementation::appliquerProd555(const LigneCCAM& ligne, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
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
      cr = constat.lever({modificateur});
      return cr;
    }
    if (cr != NOX_CR_OK) {
      return cr;
    }
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd798A(const LigneCCAM& ligne, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
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
      cr = constat.lever({code});
      return cr;
    }
  }
  return cr;
}

}  // namespace noxlux
