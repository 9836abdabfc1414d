// What the rule functions share: reading their lines with the rules overridden on them, answering line by
// line.
#ifndef NOXLUX_INTERAPP_FONCTIONS_APPLIQUER_LIGNES_H
#define NOXLUX_INTERAPP_FONCTIONS_APPLIQUER_LIGNES_H

#include <utility>

#include "basics/trace.h"
#include "interapp/fonctions_appliquer.h"
#include "interapp/reponse.h"
#include "regles/facture.h"

namespace noxlux {

constexpr std::uint16_t GROUPE_REGLE_OUTREPASSEE = 3530;
constexpr std::uint16_t GROUPE_LIGNE_DEBRAYEE = 3531;

template <class Creer, class Debrayer>
void FonctionsAppliquer::lireLignes(CodeRetour& cr, Facture& facture, FormatVerifie<> tropDeLignes,
                                    Creer creer, Debrayer debrayer) {
  std::uint16_t groupe = 0;
  while (resteDonnees(cr, groupe)) {
    if (facture.lignes.size() == MAX_LIGNES) {
      Trace::erreur(TRACE_CONTROLE, tropDeLignes);
      cr = NOX_CR_TROP_DE_GROUPES;
      return;
    }
    std::unique_ptr<LigneActe> ligne = creer(cr, groupe);
    if (ligne == nullptr) {
      return;
    }
    const auto position = static_cast<std::uint16_t>(facture.lignes.size() + 1);
    extraireGroupes3530(cr, *ligne, position, debrayer);
    if (cr == NOX_CR_OK) {
      LigneActe& ajoutee = facture.ajouterLigne(std::move(ligne));
      cr = ajoutee.estDeplacement() ? ajoutee.rattacher() : cr;
    }
  }
}

template <class LireSuite>
void FonctionsAppliquer::lireLignesCCAM(CodeRetour& cr, Facture& facture, const ListeCodes& debrayantes,
                                        FormatVerifie<> tropDeLignes, LireSuite lireSuite) {
  lireLignes(
      cr, facture, tropDeLignes,
      [&](CodeRetour& code, std::uint16_t) {
        auto ligne = std::make_unique<LigneCCAM>();
        lireIdentite(code, *ligne);
        lireSuite(code, *ligne);
        return ligne;
      },
      [&](LigneActe& ligne, const Code& reference) {
        if (debrayantes.contient(reference)) {
          ligne.debrayerService();
        }
      });
}

template <class Debrayer>
void FonctionsAppliquer::extraireGroupes3530(CodeRetour& cr, LigneActe& ligne, std::uint16_t position,
                                             Debrayer debrayer) {
  std::uint16_t groupe = 0;
  while (resteDonnees(cr, groupe) && groupe == GROUPE_REGLE_OUTREPASSEE) {
    verifierNumeroPrestation(cr, ligne.numero, position);
    const Code reference = extraireCode(cr);
    if (cr == NOX_CR_OK) {
      Trace::ecrire(TRACE_CONTROLE, "Règle %s outrepassée à la prestation n° %d", reference.lireTexte(),
                    ligne.numero.lireValeur());
      debrayer(ligne, reference);
      Trace::ecrire(TRACE_CONTROLE, "top débrayage = %s", vraiFaux(ligne.topDebrayage));
    }
  }
}

// In the order of the request: decrire(reponse, ligne) for each line, or the line's number alone when
// estDebrayee(ligne). REQUIRES: L is the class of every line
template <class L, class R, class EstDebrayee, class Decrire>
void decrireLignes(R& reponse, const Facture& facture, EstDebrayee estDebrayee, Decrire decrire) {
  for (const auto& element : facture.lignes) {
    const L& ligne = static_cast<const L&>(*element);
    if (estDebrayee(ligne)) {
      reponse.groupe(GROUPE_LIGNE_DEBRAYEE);
      reponse.champ(ligne.numero);
    } else {
      decrire(reponse, ligne);
    }
  }
}

inline bool ligneDebrayee(const LigneActe& ligne) { return ligne.topDebrayage; }

}  // namespace noxlux

#endif
