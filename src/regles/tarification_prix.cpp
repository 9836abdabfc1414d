// Unit prices and reimbursement bases.
#include <algorithm>

#include "regles/concepts.h"
#include "regles/departements.h"
#include "regles/faits.h"
#include "regles/tarification.h"
#include "regles/trace_regles.h"

namespace noxlux {

CodeRetour Tarification::calculerPrix(const Code& acte, const Code& activite, const Code& phase,
                                      const Date& date, const Code& caissePS, Montant& prix,
                                      Coefficient& majoration) {
  CodeRetour cr = lecture().rechercherPrixUnitaire(acte, activite, phase, date, prix);
  if (cr == NOX_CR_OK) {
    prix = calculer(faits::PRIX_UNITAIRE, Operation::DEPART, prix, prix);
  }
  const unsigned short position = departementDe(caissePS).positionMajoration;
  if (cr == NOX_CR_OK && position != 0) {
    cr = lecture().rechercherMajorationDOM(acte, activite, phase, position, date, majoration);
    if (cr == NOX_CR_OK) {
      prix = calculer(faits::MAJORATION, Operation::FOIS, prix, majoration);
    }
  }
  return cr;
}

CodeRetour Tarification::appliquerProd840(const Code& acte, const Code& activite, const Code& phase,
                                          const Date& date, const Code& caissePS, Montant& prixUnitaire) {
  CodeRetour cr = NOX_CR_OK;
  Coefficient majoration(1.0);
  const auto bloc = blocRegle(
      [&] {
        Trace::fin(TRACE_CONTROLE, "cr = 0x%04X, prix unitaire = %.2fE, majoration DOM = %f", cr,
                   prixUnitaire.lireValeur(), majoration.lireValeur());
      },
      NOM, PROD840);
  tracerPhase(acte, activite, phase);
  tracerDate("date = %s", date);
  Trace::ecrire(TRACE_CONTROLE, "caissePS = %s", caissePS.lireTexte());
  cr = calculerPrix(acte, activite, phase, date, caissePS, prixUnitaire, majoration);
  return cr;
}

CodeRetour Tarification::appliquerProd850(const LigneCCAM& ligne, Constat& constat) {
  const Montant calcule = ligne.prixCalcule.value_or(Montant());
  const Montant arrondi = calculer(faits::PRIX_AU_CENTIME, Operation::ARRONDI, calcule, calcule);
  const Montant facture = ligne.prixUnitaire.value_or(Montant());
  Trace::ecrire(TRACE_CONTROLE, "prix unitaire facturé = %.2fE, calculé = %.2fE", facture.lireValeur(),
                arrondi.lireValeur());
  return facture == arrondi ? static_cast<CodeRetour>(NOX_CR_OK)
                            : constat.lever({ligne.acte, ligne.activite, ligne.phase, arrondi});
}

CodeRetour Tarification::appliquerProd763A(const LigneCCAM& ligne, Booleen& rembourse) {
  tracerActe(ligne.acte, ligne.date);
  Code admission;
  bool nonRembourse = false;
  bool sousConditions = false;
  CodeRetour cr = lecture().rechercherAdmissionRemboursement(ligne.acte, ligne.date, admission);
  if (cr == NOX_CR_OK) {
    Trace::ecrire(TRACE_CONTROLE, "admission au remboursement = %s", admission.lireTexte());
    cr = estDansConcept(lecture(), CONCEPT_NON_REMBOURSES, ligne.date, admission, nonRembourse);
  }
  if (cr == NOX_CR_OK) {
    cr = estDansConcept(lecture(), CONCEPT_REMBOURSES_SOUS_CONDITIONS, ligne.date, admission, sousConditions);
  }
  if (cr == NOX_CR_OK) {
    const bool exceptionnel = codeOuVide(ligne.codeRemboursement).vue() == REMBOURSEMENT_EXCEPTIONNEL;
    rembourse = Booleen(!nonRembourse && (!sousConditions || exceptionnel));
    dire(faits::REMBOURSE, rembourse);
  }
  return cr;
}

CodeRetour Tarification::appliquerProd656A(AssociationCCAM& association) {
  CodeRetour cr = NOX_CR_OK;
  const auto bloc = blocRegle(cr, NOM, PROD656A);
  association.actePlusFort.reset();
  ListeCodes complementaires;
  cr = lecture().rechercherValeursConcept(CONCEPT_ACTES_COMPLEMENTAIRES, *association.date, complementaires);
  LigneCCAM* plusForte = nullptr;
  const auto prix = [](const LigneCCAM& ligne) { return ligne.prixUnitaire.value_or(Montant()); };
  for (LigneCCAM* ligne : association.lignes) {
    ligne->topActePuMax = false;
    Code type;
    if (cr == NOX_CR_OK) {
      cr = lecture().rechercherTypeActe(ligne->acte, type);
    }
    if (cr == NOX_CR_OK && !complementaires.contient(type) &&
        (plusForte == nullptr || prix(*ligne) > prix(*plusForte))) {
      plusForte = ligne;
    }
  }
  if (cr == NOX_CR_OK && plusForte != nullptr) {
    plusForte->topActePuMax = true;
    association.actePlusFort = plusForte->acte;
    dire(faits::ACTE_LE_PLUS_FORT, plusForte->acte);
    dire(faits::LIGNE_LA_PLUS_FORTE, plusForte->numero, prix(*plusForte));
  }
  return cr;
}

CodeRetour Tarification::appliquerProd656B(LigneCCAM& ligne) {
  CodeRetour cr = NOX_CR_OK;
  const auto bloc = blocRegle(cr, NOM, PROD656B);
  bool complementaire = false;
  cr = estActeComplementaire(lecture(), ligne.acte, ligne.date, complementaire);
  if (cr == NOX_CR_OK) {
    ligne.topReduction = Booleen(!complementaire && !ligne.topActePuMax);
    dire(faits::COMPLEMENTAIRE, Booleen(complementaire));
    dire(faits::REDUITE, *ligne.topReduction);
  }
  return cr;
}

namespace {

bool subitReduction(const LigneCCAM& ligne) {
  return ligne.topReduction.has_value() && ligne.topReduction->estVrai();
}

}  // namespace

CodeRetour Tarification::appliquerProd655(const LigneCCAM& ligne, Coefficient& coefficient) {
  CodeRetour cr = NOX_CR_OK;
  const auto bloc = blocRegle(cr, NOM, PROD655);
  const Code& code = codeOuVide(ligne.codeAssociation);
  dire(faits::CODE_ASSOCIATION, code);
  coefficient = Coefficient(1.0);
  if (subitReduction(ligne)) {
    cr = lecture().rechercherCoefficientAssociationNonPrevue(code, ligne.date, coefficient);
  }
  dire(faits::COEFFICIENT, coefficient);
  return cr;
}

// Either act of a planned pair may be the one that lists the other.
CodeRetour Tarification::lireCoefficientRegle(const LigneCCAM& ligne, const Code& actePlusFort,
                                              Coefficient& coefficient) {
  Code regle;
  CodeRetour cr =
      lecture().rechercherRegleAssociation(ligne.acte, ligne.activite, actePlusFort, ligne.date, regle);
  if (cr == NOX_CR_CODE_INCONNU) {
    cr = lecture().rechercherRegleAssociation(actePlusFort, ligne.activite, ligne.acte, ligne.date, regle);
  }
  if (cr == NOX_CR_OK) {
    dire(faits::REGLE_TARIFAIRE, regle);
    cr = lecture().rechercherCoefficientRegle(regle, ligne.date, coefficient);
  }
  return cr == NOX_CR_CODE_INCONNU ? static_cast<CodeRetour>(NOX_CR_DONNEE_ABSENTE) : cr;
}

CodeRetour Tarification::appliquerProd640(const LigneCCAM& ligne, Coefficient& coefficient) {
  CodeRetour cr = NOX_CR_OK;
  const auto bloc = blocRegle(cr, NOM, PROD640);
  tracerActivite(ligne.acte, ligne.activite, ligne.date);
  coefficient = Coefficient(1.0);
  if (subitReduction(ligne)) {
    cr = lireCoefficientRegle(ligne, codeOuVide(ligne.association->actePlusFort), coefficient);
  }
  dire(faits::COEFFICIENT, coefficient);
  return cr;
}

namespace {

// The supplement pays for the practice: it is due when the line asks for it, unless the line names another
// place that the act was carried out at.
bool ouvreSupplement(const LigneCCAM& ligne) {
  const auto vautOui = [](const std::optional<Code>& code) { return estDonne(code) && code->vue() != "0"; };
  const bool ailleurs = vautOui(ligne.lieuExecution) && vautOui(ligne.identifiantLieu);
  return vautOui(ligne.supplementCharges) && !ailleurs;
}

}  // namespace

CodeRetour Tarification::appliquerProd860(const LigneCCAM& ligne, Montant& supplement) {
  CodeRetour cr = NOX_CR_OK;
  const auto bloc = blocRegle(cr, NOM, PROD860);
  Trace::ecrire(TRACE_CONTROLE, "supplementCharges = %s, lieuExecution = %s, identifiantLieu = %s",
                codeOuVide(ligne.supplementCharges).lireTexte(), codeOuVide(ligne.lieuExecution).lireTexte(),
                codeOuVide(ligne.identifiantLieu).lireTexte());
  supplement = Montant();
  if (ouvreSupplement(ligne)) {
    cr = lecture().rechercherSupplementCharges(ligne.acte, ligne.activite, ligne.phase, ligne.date,
                                               supplement);
  }
  dire(faits::SUPPLEMENT, supplement);
  return cr;
}

CodeRetour Tarification::lireModificateurs(const LigneCCAM& ligne, Montant& forfaits, Coefficient& facteur) {
  if (ligne.modificateur.estVide()) {
    return NOX_CR_OK;
  }
  Nombre tarifants;
  CodeRetour cr = lecture().rechercherNombreModificateursTarifants(ligne.date, tarifants);
  std::int32_t reste = tarifants.lireValeur();
  double taux = 0.0;
  int nombreTaux = 0;
  for (const Code& modificateur : ligne.modificateur) {
    if (cr != NOX_CR_OK) {
      break;
    }
    if (reste-- < 1) {
      dire(faits::MODIFICATEUR_AU_DELA, modificateur, tarifants);
      continue;
    }
    dire(faits::MODIFICATEUR, modificateur);
    Montant forfait;
    cr = lecture().rechercherForfaitModificateur(modificateur, ligne.date, forfait);
    if (cr == NOX_CR_OK && forfait.estRenseigne()) {
      dire(faits::FORFAIT_MODIFICATEUR, forfait);
      forfaits = forfaits + forfait;
    } else if (cr == NOX_CR_OK) {
      Coefficient tauxModificateur;
      cr = lecture().rechercherTauxModificateur(modificateur, ligne.date, tauxModificateur);
      dire(faits::TAUX_MODIFICATEUR, Flottant(tauxModificateur.lireValeur() * 100));
      taux += tauxModificateur.lireValeur();
      ++nombreTaux;
    }
  }
  if (cr == NOX_CR_OK && nombreTaux > 0) {
    facteur = Coefficient(std::max(0.0, taux - (nombreTaux - 1)));
  }
  return cr;
}

CodeRetour Tarification::appliquerProd870(const LigneCCAM& ligne, const Coefficient& coefficient,
                                          const Montant& supplement, Montant& base,
                                          Montant& baseHorsForfait) {
  CodeRetour cr = NOX_CR_OK;
  const auto bloc = blocRegle(
      [&] {
        Trace::fin(TRACE_CONTROLE,
                   "cr = 0x%04X, base de remboursment = %.2fE, base de remboursement hors forfait = %.2fE",
                   cr, base.lireValeur(), baseHorsForfait.lireValeur());
      },
      NOM, PROD870);
  Montant forfaits;
  Coefficient facteur(1.0);
  cr = lireModificateurs(ligne, forfaits, facteur);
  if (cr == NOX_CR_OK) {
    const Montant prix = ligne.prixUnitaire.value_or(Montant());
    base = calculer(faits::PRIX_FACTURE, Operation::DEPART, prix, prix);
    base = calculer(faits::TAUX_MODIFICATEURS, Operation::FOIS, base, facteur);
    base = calculer(faits::REDUCTION_ASSOCIATION, Operation::FOIS, base, coefficient);
    baseHorsForfait = base;
    base = calculer(faits::FORFAITS_MODIFICATEURS, Operation::PLUS, base, forfaits);
    base = calculer(faits::SUPPLEMENT_CHARGES, Operation::PLUS, base, supplement);
  }
  return cr;
}

namespace {

constexpr std::string_view NON_CONVENTIONNE = "0";

}  // namespace

CodeRetour Tarification::appliquerProd740(const Code& conventionPS, const Date& date, Montant& base) {
  CodeRetour cr = NOX_CR_OK;
  const auto bloc = blocRegle(cr, NOM, PROD740);
  dire(faits::CONVENTION, conventionPS);
  if (conventionPS.vue() != NON_CONVENTIONNE) {
    Trace::ecrire(TRACE_CONTROLE, "Base de remboursement recalculée = base de remboursement calculée");
    return cr;
  }
  Montant forfait;
  cr = lecture().rechercherForfaitNonConventionnes(date, forfait);
  if (cr == NOX_CR_OK && forfait.estRenseigne()) {
    base = calculer(faits::FORFAIT_NON_CONVENTIONNE, Operation::PLAFOND, base, forfait);
  } else if (cr == NOX_CR_OK) {
    Coefficient taux;
    cr = lecture().rechercherTauxNonConventionnes(date, taux);
    if (cr == NOX_CR_OK) {
      base = calculer(faits::TAUX_NON_CONVENTIONNE, Operation::FOIS, base, taux);
    }
  }
  Trace::ecrire(TRACE_CONTROLE, "Base de remboursement recalculée = %.2fE", base.lireValeur());
  return cr;
}

CodeRetour Tarification::comparerBase(const LigneCCAM& ligne, const std::optional<Montant>& facturee,
                                      Constat& constat) {
  if (!facturee.has_value() || !ligne.baseCalculee.has_value()) {
    return NOX_CR_OK;
  }
  const Montant& calculee = *ligne.baseCalculee;
  Trace::ecrire(TRACE_CONTROLE, "base facturée = %.2fE, base calculée = %.2fE", facturee->lireValeur(),
                calculee.lireValeur());
  return *facturee <= calculee ? static_cast<CodeRetour>(NOX_CR_OK) : constat.lever({ligne.acte, calculee});
}

CodeRetour Tarification::appliquerProd880(const LigneCCAM& ligne, Constat& constat) {
  return comparerBase(ligne, ligne.baseRemboursement, constat);
}

CodeRetour Tarification::appliquerProd880A(const LigneCCAM& ligne, Constat& constat) {
  return comparerBase(ligne, ligne.baseTheoriqueAMO, constat);
}

}  // namespace noxlux
