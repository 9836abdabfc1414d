// Single questions of the data control: the same facts as the rules of a line, asked one at a time.
#include "regles/reglementation.h"
#include "regles/trace_regles.h"

namespace noxlux {

bool Reglementation::aUnAge(const Date& dateNaissance, const Date& date) {
  return dateNaissance.estRenseigne() && date >= dateNaissance;
}

CodeRetour Reglementation::appliquerCAge1(const Date& dateNaissance, const Code& modificateur,
                                          const Date& date, Booleen& resultat) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Reglementation::appliquerCAge1");
  if (Trace::estDetaille(TRACE_CONTROLE)) {
    Trace::ecrire(TRACE_CONTROLE, "dateNaissance = %s, modificateur = %s, date = %s",
                  dateNaissance.lireValeur().c_str(), modificateur.lireTexte(), date.lireValeur().c_str());
  }
  const bool connu = aUnAge(dateNaissance, date);
  bool respecte = false;
  cr = verifierAgeModificateur(connu ? date - dateNaissance : Periode(), modificateur, date, respecte);
  if (cr == NOX_CR_OK && !lecture().rechercherExistenceModificateur(modificateur, date)) {
    cr = NOX_CR_PAS_D_HISTORIQUE;
  }
  if (cr == NOX_CR_OK) {
    resultat = Booleen(connu && respecte);
  }
  return cr;
}

CodeRetour Reglementation::appliquerCAge2(const Date& dateNaissance, const Code& acte, const Code& activite,
                                          const Code& phase, const Date& date, Booleen& resultat) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Reglementation::appliquerCAge2");
  if (Trace::estDetaille(TRACE_CONTROLE)) {
    Trace::ecrire(TRACE_CONTROLE, "dateNaissance = %s, acte = %s, activite = %s, phase = %s, date = %s",
                  dateNaissance.lireValeur().c_str(), acte.lireTexte(), activite.lireTexte(),
                  phase.lireTexte(), date.lireValeur().c_str());
  }
  const bool connu = aUnAge(dateNaissance, date);
  const Periode age = connu ? date - dateNaissance : Periode();
  Periode limite;
  bool assezAge = false;
  bool assezJeune = false;
  cr = verifierAgeMinimal(age, acte, activite, phase, limite, assezAge);
  if (cr == NOX_CR_OK) {
    cr = verifierAgeMaximal(age, acte, activite, phase, limite, assezJeune);
  }
  if (cr == NOX_CR_OK) {
    resultat = Booleen(connu && assezAge && assezJeune);
  }
  return cr;
}

CodeRetour Reglementation::appliquerCAssurance(const Code& natureAssurance, const Code& acte,
                                               const Date& date, Booleen& resultat) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Reglementation::appliquerCAssurance");
  if (Trace::estDetaille(TRACE_CONTROLE)) {
    Trace::ecrire(TRACE_CONTROLE, "natureAssurance = %s, acte = %s, date = %s", natureAssurance.lireTexte(),
                  acte.lireTexte(), date.lireValeur().c_str());
  }
  bool admise = false;
  cr = verifierNatureAssurance(natureAssurance, acte, admise);
  if (cr == NOX_CR_OK) {
    resultat = Booleen(admise);
  }
  return cr;
}

CodeRetour Reglementation::appliquerCCcam(const Code& specialite, const Code& prestation, const Date& date,
                                          Booleen& resultat) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Reglementation::appliquerCCcam");
  if (Trace::estDetaille(TRACE_CONTROLE)) {
    Trace::ecrire(TRACE_CONTROLE, "specialite = %s, prestation = %s, date = %s", specialite.lireTexte(),
                  prestation.lireTexte(), date.lireValeur().c_str());
  }
  bool obligatoire = false;
  cr = verifierObligationCodage(specialite, prestation, date, obligatoire);
  if (cr == NOX_CR_OK) {
    resultat = Booleen(obligatoire);
  }
  return cr;
}

CodeRetour Reglementation::appliquerCExecutant(const Code& specialite, const Code& acte, const Code& activite,
                                               const Date& date, Booleen& resultat) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Reglementation::appliquerCExecutant");
  if (Trace::estDetaille(TRACE_CONTROLE)) {
    Trace::ecrire(TRACE_CONTROLE, "specialite = %s, acte = %s, activite = %s, date = %s",
                  specialite.lireTexte(), acte.lireTexte(), activite.lireTexte(), date.lireValeur().c_str());
  }
  bool admis = false;
  cr = verifierExecutant(specialite, acte, activite, date, admis);
  if (cr == NOX_CR_OK) {
    resultat = Booleen(admis);
  }
  return cr;
}

CodeRetour Reglementation::appliquerCRadio(const Code& agrementRadio, const Code& acte, const Code& activite,
                                           const Date& date, Booleen& resultat) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Reglementation::appliquerCRadio");
  if (Trace::estDetaille(TRACE_CONTROLE)) {
    Trace::ecrire(TRACE_CONTROLE, "agrementRadio = %s, acte = %s, activite = %s, date = %s",
                  agrementRadio.lireTexte(), acte.lireTexte(), activite.lireTexte(),
                  date.lireValeur().c_str());
  }
  ListeCodes requis;
  cr = lecture().rechercherAgrementsRadio(acte, activite, requis);
  if (cr == NOX_CR_OK) {
    resultat = Booleen(suffit(agrementRadio, requis));
  }
  return cr;
}

}  // namespace noxlux
