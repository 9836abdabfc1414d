// Rules of age and teeth, which hold for the acts of some medical categories.
#include <algorithm>
#include <cstdlib>

#include "regles/reglementation.h"
#include "regles/trace_regles.h"

namespace noxlux {

CodeRetour Reglementation::appliquerProd696(const LigneCCAM& ligne, Booleen& resultat) {
  tracerActivite(ligne.acte, ligne.activite, ligne.date);
  Code categorie;
  bool dentaire = false;
  CodeRetour cr = lecture().rechercherCategorieMedicale(ligne.acte, ligne.activite, ligne.date, categorie);
  if (cr == NOX_CR_OK) {
    Trace::ecrire(TRACE_CONTROLE, "La catégorie médicale = %s", categorie.lireTexte());
    cr = estDansConcept(lecture(), CONCEPT_DENTAIRE, ligne.date, categorie, dentaire);
  }
  if (cr == NOX_CR_OK) {
    resultat = Booleen(dentaire);
  }
  return cr;
}

CodeRetour Reglementation::verifierAgeMinimal(const Periode& age, const Code& acte, const Code& activite,
                                              const Code& phase, Periode& limite, bool& respecte) {
  const CodeRetour cr = lecture().rechercherAgeMinimal(acte, activite, phase, limite);
  if (cr == NOX_CR_OK) {
    tracerAge("l'âge minimal = %d années %d jours", limite);
    respecte = !limite.estRenseigne() || age >= limite;
  }
  return cr;
}

CodeRetour Reglementation::verifierAgeMaximal(const Periode& age, const Code& acte, const Code& activite,
                                              const Code& phase, Periode& limite, bool& respecte) {
  const CodeRetour cr = lecture().rechercherAgeMaximal(acte, activite, phase, limite);
  if (cr == NOX_CR_OK) {
    tracerAge("l'âge maximal = %d années %d jours", limite);
    respecte = !limite.estRenseigne() || age <= limite;
  }
  return cr;
}

CodeRetour Reglementation::verifierAgeLigne(const LigneCCAM& ligne, VerificationAge verifier,
                                            Constat& constat) {
  tracerPhase(ligne.acte, ligne.activite, ligne.phase);
  const Date naissance = ligne.factureParent->dateNaissance.value_or(Date());
  if (!aUnAge(naissance, ligne.date)) {
    return NOX_CR_OK;
  }
  const Periode age = ligne.date - naissance;
  tracerAge("l'âge du bénéficiare = %d années %d jours", age);
  Periode limite;
  bool respecte = true;
  const CodeRetour cr = (this->*verifier)(age, ligne.acte, ligne.activite, ligne.phase, limite, respecte);
  return cr == NOX_CR_OK && !respecte ? constat.lever({ligne.acte, limite.lireAnnees()}) : cr;
}

CodeRetour Reglementation::appliquerProd720(const LigneCCAM& ligne, Constat& constat) {
  return verifierAgeLigne(ligne, &Reglementation::verifierAgeMinimal, constat);
}

CodeRetour Reglementation::appliquerProd730(const LigneCCAM& ligne, Constat& constat) {
  return verifierAgeLigne(ligne, &Reglementation::verifierAgeMaximal, constat);
}

CodeRetour Reglementation::lireNombreDents(const LigneCCAM& ligne, std::int32_t& nombre) {
  tracerPhase(ligne.acte, ligne.activite, ligne.phase);
  Code code;
  const CodeRetour cr = lecture().rechercherNombreDents(ligne.acte, ligne.activite, ligne.phase, code);
  if (cr == NOX_CR_OK) {
    Trace::ecrire(TRACE_CONTROLE, "nombre minimum de dents a traiter : %s", code.lireTexte());
    nombre = std::atoi(code.lireTexte());
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd695(const LigneCCAM& ligne, Booleen& resultat) {
  std::int32_t nombre = 0;
  CodeRetour cr = lireNombreDents(ligne, nombre);
  if (cr == NOX_CR_OK) {
    resultat = Booleen(nombre > 0);
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd700(const LigneCCAM& ligne, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
  tracerPhase(ligne.acte, ligne.activite, ligne.phase);
  if (ligne.dent.estVide()) {
    cr = constat.lever({ligne.acte});
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd702(const LigneCCAM& ligne, Constat& constat) {
  std::int32_t minimum = 0;
  CodeRetour cr = lireNombreDents(ligne, minimum);
  if (cr == NOX_CR_OK && minimum >= 1 && minimum <= MAX_DENTS && minimum > ligne.dent.lireNombreElements()) {
    cr = constat.lever({ligne.acte, minimum});
  }
  return cr;
}

CodeRetour Reglementation::lireDentsIncompatibles(const Code& acte, const Code& activite, const Code& phase,
                                                  ListeCodes& dents) {
  const CodeRetour cr = lecture().rechercherDentsIncompatibles(acte, activite, phase, dents);
  if (cr == NOX_CR_OK && Trace::estDetaille(TRACE_CONTROLE)) {
    Trace::ecrire(TRACE_CONTROLE, "dents incomatibles =");
    dents.dump(TRACE_CONTROLE);
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd710(const LigneCCAM& ligne, Constat& constat) {
  tracerPhase(ligne.acte, ligne.activite, ligne.phase);
  ListeCodes incompatibles;
  CodeRetour cr = lireDentsIncompatibles(ligne.acte, ligne.activite, ligne.phase, incompatibles);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  const Code* const dent = std::find_if(ligne.dent.begin(), ligne.dent.end(),
                                        [&](const Code& d) { return incompatibles.contient(d); });
  if (dent != ligne.dent.end()) {
    cr = constat.lever({*dent, ligne.acte});
  }
  return cr;
}

CodeRetour Reglementation::appliquerCDent(const Code& acte, const Code& activite, const Code& phase,
                                          const Date& date, const ListeCodes& dents,
                                          TypeListe<Booleen>& resultats) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Reglementation::appliquerCDent");
  if (Trace::estDetaille(TRACE_CONTROLE)) {
    Trace::ecrire(TRACE_CONTROLE, "acte = %s, activite = %s, phase = %s, date = %s", acte.lireTexte(),
                  activite.lireTexte(), phase.lireTexte(), date.lireValeur().c_str());
  }
  resultats.reinitialiser();
  ListeCodes incompatibles;
  cr = lireDentsIncompatibles(acte, activite, phase, incompatibles);
  for (const Code& dent : dents) {
    if (cr != NOX_CR_OK) {
      break;
    }
    cr = resultats.ajouterElement(Booleen(!incompatibles.contient(dent)));
  }
  return cr;
}

}  // namespace noxlux
