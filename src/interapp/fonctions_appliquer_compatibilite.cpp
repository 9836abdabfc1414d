#include <algorithm>
#include <string_view>
#include <unordered_map>

#include "interapp/fonctions_appliquer_lignes.h"
#include "regles/libelle_regle.h"
#include "regles/reglementation.h"

namespace noxlux {

namespace {

constexpr std::uint16_t GROUPE_COMPATIBILITE = 3311;

enum class Gravite { AUCUNE, CODE_REQUIS, MEME_PROCEDURE, INCOMPATIBLE };

struct Diagnostic {
  std::string_view code;
  Gravite gravite;
};
constexpr Diagnostic DIAGNOSTICS[] = {
    {Reglementation::COMPATIBLES, Gravite::AUCUNE},
    {Reglementation::MEME_PROCEDURE_COMPATIBLES, Gravite::CODE_REQUIS},
    {Reglementation::MEME_PROCEDURE_INCOMPATIBLES, Gravite::MEME_PROCEDURE},
    {Reglementation::INCOMPATIBLES, Gravite::INCOMPATIBLE},
};

// What is found of an act against the others of its date: the gravest answer, the first of that gravity, and
// the line it comes from.
struct Grief {
  Gravite gravite = Gravite::AUCUNE;
  Code diagnostic{Reglementation::COMPATIBLES};
  Code procedure;
  const LigneCCAM* autre = nullptr;

  void retenir(Gravite nouvelle, const Code& code, const Code& commune, const LigneCCAM* ligne) {
    if (nouvelle > gravite) {
      gravite = nouvelle;
      diagnostic = code;
      procedure = commune;
      autre = ligne;
    }
  }
};

Texte formater(const char* format, ArgumentsLibelle codes) { return Texte(*formaterLibelle(format, codes)); }

Texte expliquer(const LigneCCAM& ligne, const Grief& grief) {
  switch (grief.gravite) {
    case Gravite::CODE_REQUIS:
      return formater(
          "L'acte %s appartient à la même procédure %s que l'acte %s ; ces deux actes peuvent "
          "cependant être associés en renseignant le code \"association non prévue\".",
          {ligne.acte, grief.procedure, grief.autre->acte});
    case Gravite::MEME_PROCEDURE:
      return formater(
          "L'acte %s appartient à la même procédure %s que l'acte %s ; ces deux actes ne "
          "peuvent pas être associés.",
          {ligne.acte, grief.procedure, grief.autre->acte});
    case Gravite::INCOMPATIBLE:
      return formater(
          "L'acte %s est incompatible médicalement avec l'acte %s ; ces deux actes ne peuvent "
          "pas être associés.",
          {ligne.acte, grief.autre->acte});
    case Gravite::AUCUNE:
      break;
  }
  return formater("L'acte %s est compatible avec les autres actes.", {ligne.acte});
}

using Griefs = std::unordered_map<const LigneCCAM*, Grief>;

// Each pair of acts is asked once; what is found holds against both.
CodeRetour comparer(Reglementation& reglementation, const LigneCCAM& premiere, const LigneCCAM& seconde,
                    Griefs& griefs) {
  Code diagnostic;
  Code procedure;
  const CodeRetour cr = reglementation.appliquerCCompatibilite(
      premiere.acte, premiere.activite, premiere.numeroPS, seconde.acte, seconde.activite, seconde.numeroPS,
      premiere.date, diagnostic, procedure);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  const auto* const trouve = std::ranges::find(DIAGNOSTICS, diagnostic.vue(), &Diagnostic::code);
  if (trouve == std::ranges::end(DIAGNOSTICS)) {
    Trace::erreur(TRACE_CONTROLE, "Code diagnostic (%s) inconnu", diagnostic.lireTexte());
    return NOX_CR_INCOHERENCE;
  }
  if (trouve->gravite != Gravite::AUCUNE) {
    griefs[&premiere].retenir(trouve->gravite, diagnostic, procedure, &seconde);
    griefs[&seconde].retenir(trouve->gravite, diagnostic, procedure, &premiere);
  }
  return NOX_CR_OK;
}

CodeRetour comparerActes(Reglementation& reglementation, const Seance& seance, Griefs& griefs) {
  for (auto premiere = seance.lignes.begin(); premiere != seance.lignes.end(); ++premiere) {
    for (auto seconde = premiere + 1; seconde != seance.lignes.end(); ++seconde) {
      if ((*premiere)->topDebrayage || (*seconde)->topDebrayage) {
        continue;
      }
      const CodeRetour cr = comparer(reglementation, **premiere, **seconde, griefs);
      if (cr != NOX_CR_OK) {
        return cr;
      }
    }
  }
  return NOX_CR_OK;
}

}  // namespace

// Acts are compared with those of their own date.
CodeRetour FonctionsAppliquer::C_Compatibilite(ZoneSortie& zoneOut) {
  CodeRetour cr = NOX_CR_OK;
  Facture facture;
  lireLignesCCAM(cr, facture, lireDebrayantes(cr, "C-Compatibilite"),
                 "ERREUR: Nombre de groupes 3310 trop grand", [this](CodeRetour& code, LigneCCAM& ligne) {
                   ligne.activite = extraireCode(code);
                   ligne.numeroPS = extraireNumeroPS(code);
                 });
  facture.grouperParDates();
  facture.dump();
  Griefs griefs;
  for (const Seance& seance : facture.seances) {
    if (cr == NOX_CR_OK) {
      cr = comparerActes(*reglementation_, seance, griefs);
    }
  }
  zoneOut = ecrireReponse(cr, [&](auto& reponse) {
    decrireLignes<LigneCCAM>(reponse, facture, ligneDebrayee, [&](auto& sortie, const LigneCCAM& ligne) {
      const Grief& grief = griefs[&ligne];
      sortie.groupe(GROUPE_COMPATIBILITE);
      sortie.champ(ligne.numero);
      sortie.champ(grief.diagnostic);
      sortie.champ(grief.autre != nullptr ? grief.autre->numero : Nombre(0));
      sortie.champ(expliquer(ligne, grief));
    });
  });
  return cr;
}

}  // namespace noxlux
