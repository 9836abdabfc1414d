// Single rules about pairs of acts: whether they may be billed together, whether an association is planned.
#include <algorithm>

#include "regles/reglementation.h"
#include "regles/relations_actes.h"
#include "regles/trace_regles.h"

namespace noxlux {

CodeRetour Reglementation::lireActeCompare(const Code& acte, const Code& activite, const Code& numeroPS,
                                           const Date& date, ActeCompare& compare) {
  compare.acte = &acte;
  compare.activite = &activite;
  compare.numeroPS = &numeroPS;
  const CodeRetour cr = lecture().rechercherActesIncompatibles(acte, date, compare.incompatibles);
  return cr == NOX_CR_OK ? lecture().rechercherProcedures(acte, date, compare.procedures) : cr;
}

// Acts carried out by two professionals, or in two activities, do not make one procedure; acts that are
// incompatible are so for everyone.
const char* Reglementation::comparer(const ActeCompare& a, const ActeCompare& b, Code& procedure) {
  procedure = Code();
  if (a.incompatibles.contient(*b.acte) || b.incompatibles.contient(*a.acte)) {
    Trace::ecrire(TRACE_CONTROLE, "Les deux actes sont incompatibles");
    return INCOMPATIBLES;
  }
  if (*a.activite == *b.activite && *a.numeroPS == *b.numeroPS && !(*a.acte == *b.acte)) {
    if (a.procedures.contient(*b.acte) || b.procedures.contient(*a.acte)) {
      Trace::ecrire(TRACE_CONTROLE, "Les 2 actes appartiennent à la même procédure et son incompatibles");
      procedure = a.procedures.contient(*b.acte) ? *b.acte : *a.acte;
      return MEME_PROCEDURE_INCOMPATIBLES;
    }
    const Code* const commune = std::find_if(a.procedures.begin(), a.procedures.end(),
                                             [&](const Code& code) { return b.procedures.contient(code); });
    if (commune != a.procedures.end()) {
      Trace::ecrire(TRACE_CONTROLE, "Les 2 actes appartiennent à la même procédure et sont compatibles");
      procedure = *commune;
      return MEME_PROCEDURE_COMPATIBLES;
    }
  }
  Trace::ecrire(TRACE_CONTROLE, "Les deux actes sont compatibles");
  return COMPATIBLES;
}

CodeRetour Reglementation::appliquerCCompatibilite(const Code& acte1, const Code& activite1,
                                                   const Code& numeroPS1, const Code& acte2,
                                                   const Code& activite2, const Code& numeroPS2,
                                                   const Date& date, Code& compatibilite, Code& procedure) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Reglementation::appliquerCCompatibilite");
  if (Trace::estDetaille(TRACE_CONTROLE)) {
    Trace::ecrire(TRACE_CONTROLE,
                  "acte1 = %s, activite1 = %s, numeroPS1 = %s, acte2 = %s, activite2 = %s, numeroPS2 = %s, "
                  "date = %s",
                  acte1.lireTexte(), activite1.lireTexte(), numeroPS1.lireTexte(), acte2.lireTexte(),
                  activite2.lireTexte(), numeroPS2.lireTexte(), date.lireValeur());
  }
  ActeCompare premier;
  ActeCompare second;
  cr = lireActeCompare(acte1, activite1, numeroPS1, date, premier);
  if (cr == NOX_CR_OK) {
    cr = lireActeCompare(acte2, activite2, numeroPS2, date, second);
  }
  if (cr == NOX_CR_OK) {
    compatibilite = Code(comparer(premier, second, procedure));
  }
  return cr;
}

CodeRetour Reglementation::comparerPaires(const AssociationCCAM& association, bool& prevue) {
  const Date& date = *association.date;
  const std::size_t nombre = association.lignes.size();
  std::vector<ActeCompare> actes(nombre);
  CodeRetour cr = NOX_CR_OK;
  for (std::size_t i = 0; i < nombre && cr == NOX_CR_OK; ++i) {
    const LigneCCAM& ligne = *association.lignes[i];
    cr = lireActeCompare(ligne.acte, ligne.activite, ligne.numeroPS, date, actes[i]);
  }
  RelationsActes relations(association);
  if (cr == NOX_CR_OK) {
    cr = relations.lireAssociationsPrevues(lecture());
  }
  for (std::size_t i = 0; i < nombre && cr == NOX_CR_OK; ++i) {
    for (std::size_t j = i + 1; j < nombre && cr == NOX_CR_OK; ++j) {
      Code procedure;
      const std::string_view reponse = comparer(actes[i], actes[j], procedure);
      if (reponse == INCOMPATIBLES || reponse == MEME_PROCEDURE_INCOMPATIBLES) {
        cr = NOX_CR_REGLE_REPONSE_1;
      }
      prevue = prevue && relations.estPrevu(i, j);
    }
  }
  return cr;
}

CodeRetour Reglementation::appliquerCAssociation(AssociationCCAM& association) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Reglementation::appliquerCAssociation sur une association");
  bool prevue = true;
  cr = comparerPaires(association, prevue);
  if (cr != NOX_CR_OK) {
    Trace::ecrire(TRACE_CONTROLE, "Erreur C_Association");
    return cr;
  }
  association.typeAssociation = Code(prevue ? AssociationCCAM::PREVUE : AssociationCCAM::NON_PREVUE);
  if (prevue) {
    Trace::ecrire(TRACE_CONTROLE, "Association prévue");
  } else {
    Trace::ecrire(TRACE_CONTROLE, "Association non prévue");
  }
  if (Trace::estDetaille(TRACE_CONTROLE)) {
    tracerCategories(association);
  }
  return cr;
}

void Reglementation::tracerCategories(const AssociationCCAM& association) {
  for (const LigneCCAM* ligne : association.lignes) {
    Code categorie;
    if (lecture().rechercherCategorieMedicale(ligne->acte, ligne->activite, ligne->date, categorie) ==
        NOX_CR_OK) {
      Trace::ecrire(TRACE_CONTROLE, "La catégorie médicale = %s", categorie.lireTexte());
    }
  }
}

std::string Reglementation::listerElements(const ListeCodes& codes) {
  std::string texte;
  for (const Code& code : codes) {
    if (!texte.empty()) {
      texte += ", ";
    }
    texte += code.vue();
  }
  return texte;
}

}  // namespace noxlux
