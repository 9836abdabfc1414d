// Rules of an association: the codes its acts carry, and whether its acts may stand together.
//
// Two acts are planned together when one lists the other. Two that are not are each to carry an
// unforeseen-association code. Complementary acts are billed on top of an act that plans them: they ask no
// code of the others, and carry none unless those do; they may then carry one that keeps their price in full,
// as supplements may. An act with both a complementary act and a supplement may carry one too.
#include <algorithm>

#include "regles/reglementation.h"
#include "regles/relations_actes.h"
#include "regles/trace_regles.h"

namespace noxlux {

namespace {

bool estCodee(const LigneCCAM* ligne) { return estDonne(ligne->codeAssociation); }

// The numbers of some lines, for an error.
template <class Garder>
CodeRetour listerNumeros(const AssociationCCAM& association, TypeListe<Nombre>& numeros, Garder garder) {
  CodeRetour cr = NOX_CR_OK;
  for (std::size_t i = 0; i < association.lignes.size() && cr == NOX_CR_OK; ++i) {
    if (garder(i)) {
      cr = numeros.ajouterElement(association.lignes[i]->numero);
    }
  }
  return cr;
}

// Whether the lines that come on top of no other are there, and carry a code each.
bool sontCodees(const std::vector<LigneCCAM*>& lignes, const std::vector<bool>& enSus) {
  std::size_t principales = 0;
  for (std::size_t i = 0; i < enSus.size(); ++i) {
    if (!enSus[i] && !estCodee(lignes[i])) {
      return false;
    }
    principales += enSus[i] ? 0U : 1U;
  }
  return principales > 0;
}

void tracerAssociation(const AssociationCCAM& association) {
  Trace::ecrire(TRACE_CONTROLE, "association n° %d, %d lignes", association.numero.lireValeur(),
                static_cast<int>(association.lignes.size()));
}

}  // namespace

template <class Garder>
CodeRetour Reglementation::leverPour(const AssociationCCAM& association, ArgumentsLibelle arguments,
                                     Garder garder, Constat& constat) {
  TypeListe<Nombre> numeros;
  const CodeRetour cr = listerNumeros(association, numeros, garder);
  return cr == NOX_CR_OK ? constat.lever(numeros, arguments) : cr;
}

CodeRetour Reglementation::estIncompatible(const Code& acte1, const Code& acte2, const Date& date,
                                           bool& incompatible) {
  ListeCodes incompatibles1;
  ListeCodes incompatibles2;
  CodeRetour cr = lecture().rechercherActesIncompatibles(acte1, date, incompatibles1);
  if (cr == NOX_CR_OK) {
    cr = lecture().rechercherActesIncompatibles(acte2, date, incompatibles2);
  }
  incompatible = incompatibles1.contient(acte2) || incompatibles2.contient(acte1);
  return cr;
}

CodeRetour Reglementation::appliquerProd590(const AssociationCCAM& association, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
  tracerAssociation(association);
  const auto& lignes = association.lignes;
  if (lignes.size() < 2) {
    return cr;
  }
  RelationsActes relations(association);
  cr = relations.lireProcedures(lecture());
  bool prevuesLues = false;
  for (std::size_t i = 0; i < lignes.size(); ++i) {
    for (std::size_t j = i + 1; j < lignes.size(); ++j) {
      if (cr != NOX_CR_OK || constat.estLeve()) {
        return cr;
      }
      if (!relations.aDesProcedures(i) && !relations.aDesProcedures(j)) {
        continue;
      }
      const Code* const procedure = relations.procedureCommune(i, j);
      if (procedure == nullptr) {
        continue;
      }
      if (!prevuesLues) {
        prevuesLues = true;
        cr = relations.lireAssociationsPrevues(lecture());
        if (cr != NOX_CR_OK) {
          return cr;
        }
      }
      if (!relations.estPrevu(i, j) && !relations.estComplementaire(i) && !relations.estComplementaire(j)) {
        cr = leverProcedure(association, i, j, *procedure, constat);
      }
    }
  }
  return cr;
}

CodeRetour Reglementation::leverProcedure(const AssociationCCAM& association, std::size_t i, std::size_t j,
                                          const Code& procedure, Constat& constat) {
  const LigneCCAM& premiere = *association.lignes[i];
  const LigneCCAM& seconde = *association.lignes[j];
  const bool unePartie = procedure == premiere.acte || procedure == seconde.acte;
  if (unePartie) {
    // An act that is part of the other; incompatible acts are the matter of PROD600.
    bool incompatible = false;
    const CodeRetour cr = estIncompatible(premiere.acte, seconde.acte, *association.date, incompatible);
    if (cr != NOX_CR_OK || incompatible) {
      return cr;
    }
  } else if (estCodee(&premiere) && estCodee(&seconde)) {
    return NOX_CR_OK;
  }
  Constat variante = constat.sous(unePartie ? "PROD590B" : "PROD590A");
  return leverPour(
      association, {premiere.acte, seconde.acte, procedure},
      [=](std::size_t rang) { return rang == i || rang == j; }, variante);
}

CodeRetour Reglementation::appliquerProd137(const LigneCCAM& ligne, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
  const Code& code = codeOuVide(ligne.codeAssociation);
  Trace::ecrire(TRACE_CONTROLE, "codeAssociation = %s", code.lireTexte());
  tracerDate("date = %s", ligne.date);
  if (code.estRenseigne() && !lecture().rechercherExistenceAssociationNP(code, ligne.date)) {
    cr = constat.lever({code});
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd648(const AssociationCCAM& association, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
  tracerAssociation(association);
  const auto& lignes = association.lignes;
  if (std::none_of(lignes.begin(), lignes.end(), estCodee)) {
    return cr;
  }
  RelationsActes relations(association);
  cr = relations.lireAssociationsPrevues(lecture());
  // A code belongs on an act that some other is not planned with.
  const auto appelleUnCode = [&](std::size_t i) {
    for (std::size_t j = 0; j < lignes.size(); ++j) {
      if (j != i && !relations.estComplementaire(i) && !relations.estComplementaire(j) &&
          !relations.estPrevu(i, j)) {
        return true;
      }
    }
    return false;
  };
  std::vector<bool> enSus;
  bool lesDeux = false;
  if (cr == NOX_CR_OK) {
    cr = lireEnSus(association, relations, enSus, lesDeux);
  }
  const bool autresCodees = sontCodees(lignes, enSus);
  for (std::size_t i = 0; i < lignes.size() && cr == NOX_CR_OK && !constat.estLeve(); ++i) {
    if (!estCodee(lignes[i]) || appelleUnCode(i)) {
      continue;
    }
    bool plein = false;
    if (enSus[i] ? autresCodees : lesDeux) {
      cr = gardeLePrixPlein(*lignes[i], plein);
    }
    if (cr == NOX_CR_OK && !plein) {
      Trace::ecrire(TRACE_CONTROLE, "L'acte %s contient un code association renseigné à tort ",
                    lignes[i]->acte.lireTexte());
      cr = leverPour(
          association, {lignes[i]->acte}, [i](std::size_t rang) { return rang == i; }, constat);
    }
  }
  return cr;
}

// Which lines come on top of the others: complementary acts and supplements; whether there are both.
CodeRetour Reglementation::lireEnSus(const AssociationCCAM& association, const RelationsActes& relations,
                                     std::vector<bool>& enSus, bool& lesDeux) {
  ListeCodes supplements;
  const CodeRetour cr = lireConceptFacultatif(lecture(), CONCEPT_SUPPLEMENTS, *association.date, supplements);
  bool complement = false;
  bool supplement = false;
  for (std::size_t i = 0; i < association.lignes.size(); ++i) {
    // A supplement may be of the type of complementary acts too.
    const bool estSupplement = supplements.contient(association.lignes[i]->acte);
    const bool estComplement = !estSupplement && relations.estComplementaire(i);
    enSus.push_back(estSupplement || estComplement);
    supplement = supplement || estSupplement;
    complement = complement || estComplement;
  }
  lesDeux = complement && supplement;
  return cr;
}

// A code that does not exist keeps nothing: it is the matter of PROD137.
CodeRetour Reglementation::gardeLePrixPlein(const LigneCCAM& ligne, bool& plein) {
  Coefficient coefficient;
  const CodeRetour cr =
      lecture().rechercherCoefficientAssociationNonPrevue(*ligne.codeAssociation, ligne.date, coefficient);
  plein = cr == NOX_CR_OK && coefficient == Coefficient(1.0);
  return estAbsent(cr) ? static_cast<CodeRetour>(NOX_CR_OK) : cr;
}

CodeRetour Reglementation::appliquerProd649(const AssociationCCAM& association, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
  tracerAssociation(association);
  const auto& lignes = association.lignes;
  // Of the acts with a code, the dearest is to be one that its code keeps in full.
  const LigneCCAM* plusCher = nullptr;
  Montant prixPlein(-1.0);
  unsigned codees = 0;
  const auto prix = [](const LigneCCAM& ligne) { return ligne.prixUnitaire.value_or(Montant()); };
  for (const LigneCCAM* ligne : lignes) {
    if (!estCodee(ligne)) {
      continue;
    }
    Coefficient coefficient;
    cr = lecture().rechercherCoefficientAssociationNonPrevue(*ligne->codeAssociation, ligne->date,
                                                             coefficient);
    if (estAbsent(cr)) {
      cr = NOX_CR_OK;  // the matter of PROD137
      continue;
    }
    if (cr != NOX_CR_OK) {
      return cr;
    }
    ++codees;
    if (plusCher == nullptr || prix(*ligne) > prix(*plusCher)) {
      plusCher = ligne;
    }
    if (coefficient == Coefficient(1.0) && prix(*ligne) > prixPlein) {
      prixPlein = prix(*ligne);
    }
  }
  if (codees >= 2 && prix(*plusCher) > prixPlein) {
    cr = leverPour(
        association, {plusCher->acte, *plusCher->codeAssociation},
        [&](std::size_t rang) { return estCodee(lignes[rang]); }, constat);
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd650(const AssociationCCAM& association, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
  tracerAssociation(association);
  const auto& lignes = association.lignes;
  if (lignes.size() - static_cast<std::size_t>(std::count_if(lignes.begin(), lignes.end(), estCodee)) < 2) {
    return cr;
  }
  RelationsActes relations(association);
  cr = lireToutesLesRelations(relations);
  for (std::size_t i = 0; i < lignes.size(); ++i) {
    if (estCodee(lignes[i])) {
      continue;
    }
    for (std::size_t j = i + 1; j < lignes.size(); ++j) {
      if (cr != NOX_CR_OK || constat.estLeve()) {
        return cr;
      }
      if (!estCodee(lignes[j]) && appellentUnCode(relations, i, j)) {
        Trace::ecrire(TRACE_CONTROLE, "Les deux actes dont l'association n'est pas prévue sont %s et %s",
                      lignes[i]->acte.lireTexte(), lignes[j]->acte.lireTexte());
        cr = leverPour(
            association, {lignes[i]->acte, lignes[j]->acte},
            [=](std::size_t rang) { return rang == i || rang == j; }, constat);
      }
    }
  }
  return cr;
}

CodeRetour Reglementation::lireToutesLesRelations(RelationsActes& relations) {
  const CodeRetour cr = relations.lireAssociationsPrevues(lecture());
  return cr == NOX_CR_OK ? relations.lireProcedures(lecture()) : cr;
}

// Whether two acts are to carry codes. Acts of one procedure are the matter of PROD590.
bool Reglementation::appellentUnCode(const RelationsActes& relations, std::size_t i, std::size_t j) {
  return !relations.estPrevu(i, j) && !relations.estComplementaire(i) && !relations.estComplementaire(j) &&
         relations.procedureCommune(i, j) == nullptr;
}

CodeRetour Reglementation::appliquerProd653(const AssociationCCAM& association, Constat& constat) {
  CodeRetour cr = NOX_CR_OK;
  tracerAssociation(association);
  const auto& lignes = association.lignes;
  if (lignes.size() < 2 || std::all_of(lignes.begin(), lignes.end(), estCodee)) {
    return cr;
  }
  RelationsActes relations(association);
  cr = lireToutesLesRelations(relations);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  std::size_t principaux = 0;
  for (std::size_t i = 0; i < lignes.size(); ++i) {
    principaux += relations.estComplementaire(i) ? 0U : 1U;
  }
  for (std::size_t i = 0; i < lignes.size() && cr == NOX_CR_OK && !constat.estLeve(); ++i) {
    if (estCodee(lignes[i])) {
      continue;
    }
    if (relations.estComplementaire(i)) {
      bool admis = principaux == 0;  // complementary acts alone are the matter of PROD580
      for (std::size_t j = 0; j < lignes.size() && !admis; ++j) {
        admis = j != i && relations.estPrevu(i, j);
      }
      if (!admis) {
        cr = leverPour(
            association, {lignes[i]->acte}, [i](std::size_t rang) { return rang == i; }, constat);
      }
      continue;
    }
    const auto refuse = [&](std::size_t j) {
      return j != i && estCodee(lignes[j]) && appellentUnCode(relations, i, j);
    };
    bool refusee = false;
    for (std::size_t j = 0; j < lignes.size() && !refusee; ++j) {
      refusee = refuse(j);
    }
    if (refusee) {
      cr = leverPour(
          association, {lignes[i]->acte}, [&](std::size_t rang) { return rang == i || refuse(rang); },
          constat);
    }
  }
  return cr;
}

CodeRetour Reglementation::appliquerProd654(const AssociationCCAM& association, Constat& constat) {
  const auto& lignes = association.lignes;
  Trace::ecrire(TRACE_CONTROLE, "nb d'actes dans l'association = %d", static_cast<int>(lignes.size()));
  const Date& date = *association.date;
  Nombre maximum;
  ListeCodes supplements;
  CodeRetour cr = lecture().rechercherNombreActeAssociation(date, maximum);
  if (cr == NOX_CR_OK) {
    cr = lireConceptFacultatif(lecture(), CONCEPT_SUPPLEMENTS, date, supplements);
  }
  const auto compte = [&](const LigneCCAM* ligne) { return !supplements.contient(ligne->acte); };
  const auto nombre = static_cast<std::int32_t>(std::count_if(lignes.begin(), lignes.end(), compte));
  if (cr != NOX_CR_OK || nombre <= maximum.lireValeur()) {
    return cr;
  }
  ListeCodes sansLimite;
  ListeCodes dentaires;
  cr = lecture().rechercherValeursConcept(CONCEPT_SANS_LIMITE, date, sansLimite);
  if (cr == NOX_CR_OK) {
    cr = lecture().rechercherValeursConcept(CONCEPT_DENTAIRE, date, dentaires);
  }
  // An act is outside the limit by its association code or by its medical category.
  const auto estLimitee = [&](const LigneCCAM* ligne) {
    if (cr != NOX_CR_OK || !compte(ligne) ||
        (estCodee(ligne) && sansLimite.contient(*ligne->codeAssociation))) {
      return false;
    }
    Code categorie;
    cr = lecture().rechercherCategorieMedicale(ligne->acte, ligne->activite, date, categorie);
    return cr == NOX_CR_OK && !sansLimite.contient(categorie) && !dentaires.contient(categorie);
  };
  const bool limitee = std::any_of(lignes.begin(), lignes.end(), estLimitee);
  if (cr == NOX_CR_OK && limitee) {
    cr = leverPour(
        association, {nombre}, [&](std::size_t rang) { return compte(lignes[rang]); }, constat);
  }
  return cr;
}

}  // namespace noxlux
