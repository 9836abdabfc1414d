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

namespace {

void tracerPaire(const Code& acte1, const Code& activite1, const Code& numeroPS1, const Code& acte2,
                 const Code& activite2, const Code& numeroPS2, const Date& date) {
  if (Trace::estDetaille(TRACE_CONTROLE)) {
    Trace::ecrire(TRACE_CONTROLE,
                  "acte1 = %s, activite1 = %s, numeroPS1 = %s, acte2 = %s, activite2 = %s, numeroPS2 = %s, "
                  "date = %s",
                  acte1.lireTexte(), activite1.lireTexte(), numeroPS1.lireTexte(), acte2.lireTexte(),
                  activite2.lireTexte(), numeroPS2.lireTexte(), date.lireValeur().c_str());
  }
}

// What is traced of each answer.
struct TexteReponse {
  std::string_view reponse;
  FormatVerifie<> texte;
};
constexpr TexteReponse TEXTES_REPONSES[] = {
    {Reglementation::COMPATIBLES, "Les deux actes sont compatibles"},
    {Reglementation::INCOMPATIBLES, "Les deux actes sont incompatibles"},
    {Reglementation::MEME_PROCEDURE_COMPATIBLES,
     "Les 2 actes appartiennent à la même procédure et sont compatibles"},
    {Reglementation::MEME_PROCEDURE_INCOMPATIBLES,
     "Les 2 actes appartiennent à la même procédure et son incompatibles"},
};

// The procedure that is for one act what the other is part of, or that both are part of; null when there is
// none.
const Code* procedureDe(const Code& acteA, const ListeCodes& proceduresA, const Code& acteB,
                        const ListeCodes& proceduresB) {
  if (proceduresA.contient(acteB)) {
    return &acteB;
  }
  if (proceduresB.contient(acteA)) {
    return &acteA;
  }
  const Code* const commune = std::find_if(proceduresA.begin(), proceduresA.end(),
                                           [&](const Code& code) { return proceduresB.contient(code); });
  return commune == proceduresA.end() ? nullptr : commune;
}

}  // namespace

// Acts carried out by two professionals, or in two activities, do not make one procedure, nor do acts that
// are planned together; acts that are incompatible are so for everyone.
template <class EstPrevue>
CodeRetour Reglementation::comparer(const ActeCompare& a, const ActeCompare& b, EstPrevue estPrevue,
                                    Code& compatibilite, Code& procedure) {
  CodeRetour cr = NOX_CR_OK;
  procedure = Code();
  const char* reponse = COMPATIBLES;
  if (a.incompatibles.contient(*b.acte) || b.incompatibles.contient(*a.acte)) {
    reponse = INCOMPATIBLES;
  } else if (*a.activite == *b.activite && *a.numeroPS == *b.numeroPS && !(*a.acte == *b.acte)) {
    const Code* const commune = procedureDe(*a.acte, a.procedures, *b.acte, b.procedures);
    bool prevue = false;
    if (commune != nullptr) {
      cr = estPrevue(prevue);
    }
    if (cr == NOX_CR_OK && commune != nullptr && !prevue) {
      procedure = *commune;
      reponse = *commune == *a.acte || *commune == *b.acte ? MEME_PROCEDURE_INCOMPATIBLES
                                                           : MEME_PROCEDURE_COMPATIBLES;
    }
  }
  if (cr == NOX_CR_OK) {
    compatibilite = Code(reponse);
    Trace::ecrire(
        TRACE_CONTROLE,
        std::ranges::find(TEXTES_REPONSES, std::string_view(reponse), &TexteReponse::reponse)->texte);
  }
  return cr;
}

CodeRetour Reglementation::sontPrevus(const ActeCompare& a, const ActeCompare& b, const Date& date,
                                      bool& prevus) {
  for (const auto& [premier, second] : {std::pair{&a, &b}, std::pair{&b, &a}}) {
    ListeCodes compatibles;
    const CodeRetour cr =
        lecture().rechercherActesCompatibles(*premier->acte, *premier->activite, date, compatibles);
    if (cr != NOX_CR_OK) {
      return cr;
    }
    prevus = prevus || compatibles.contient(*second->acte);
  }
  return NOX_CR_OK;
}

CodeRetour Reglementation::appliquerCCompatibilite(const Code& acte1, const Code& activite1,
                                                   const Code& numeroPS1, const Code& acte2,
                                                   const Code& activite2, const Code& numeroPS2,
                                                   const Date& date, Code& compatibilite, Code& procedure) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Reglementation::appliquerCCompatibilite");
  tracerPaire(acte1, activite1, numeroPS1, acte2, activite2, numeroPS2, date);
  ActeCompare premier;
  ActeCompare second;
  cr = lireActeCompare(acte1, activite1, numeroPS1, date, premier);
  if (cr == NOX_CR_OK) {
    cr = lireActeCompare(acte2, activite2, numeroPS2, date, second);
  }
  if (cr == NOX_CR_OK) {
    cr = comparer(
        premier, second, [&](bool& prevus) { return sontPrevus(premier, second, date, prevus); },
        compatibilite, procedure);
  }
  return cr;
}

CodeRetour Reglementation::comparerPaire(const ActeCompare& a, const ActeCompare& b, bool prevus,
                                         const Date& date) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Reglementation::appliquerCCompatibilite");
  tracerPaire(*a.acte, *a.activite, *a.numeroPS, *b.acte, *b.activite, *b.numeroPS, date);
  const auto lirePrevus = [prevus](bool& reponse) {
    reponse = prevus;
    return static_cast<CodeRetour>(NOX_CR_OK);
  };
  Code compatibilite;
  Code procedure;
  cr = comparer(a, b, lirePrevus, compatibilite, procedure);
  const bool incompatibles =
      compatibilite.vue() == INCOMPATIBLES || compatibilite.vue() == MEME_PROCEDURE_INCOMPATIBLES;
  return cr == NOX_CR_OK && incompatibles ? static_cast<CodeRetour>(NOX_CR_REGLE_REPONSE_1) : cr;
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
      const bool prevus = relations.estPrevu(i, j);
      cr = comparerPaire(actes[i], actes[j], prevus, date);
      prevue = prevue && prevus;
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
