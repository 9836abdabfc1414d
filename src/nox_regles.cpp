// Entry points that check data, apply single rules and check whole invoices.
#include "interapp/fonction_controle_complet.h"
#include "interapp/fonctions_appliquer.h"
#include "interapp/fonctions_controler.h"
#include "nox_commun.h"
#include "regles/reglementation.h"
#include "regles/tarification.h"

using namespace noxlux;

namespace {

// These entry points tell missing data by codes of their own; the others leave them as they are.
constexpr CodeRetour convertirCodeRetour(CodeRetour cr) {
  switch (cr) {
    case NOX_CR_IDENTIFIANT_INCONNU:
      return NOX_CR_REGLE_IDENTIFIANT;
    case NOX_CR_CODE_INCONNU:
      return NOX_CR_REGLE_CODE;
    case NOX_CR_PAS_D_HISTORIQUE:
      return NOX_CR_REGLE_HISTORIQUE;
    default:
      return cr;
  }
}

// Rule outcomes that come with an answer.
constexpr bool estReponse(CodeRetour cr) {
  return cr == NOX_CR_OK || cr == NOX_CR_REGLE_REPONSE_1 || cr == NOX_CR_REGLE_REPONSE_2;
}

// Hands the answer over, if there is one; the code stays unless that fails.
CodeRetour remettre(const SortieAppelant& sortie, ZoneSortie& reponse, CodeRetour cr) {
  const CodeRetour crSortie = reponse ? sortie.remettre(reponse) : CodeRetour{NOX_CR_OK};
  return crSortie != NOX_CR_OK ? crSortie : cr;
}

CodeRetour codeNiveau(unsigned short niveau) {
  if (niveau == 0) {
    return NOX_CR_OK;
  }
  Trace::erreur(TRACE_CONTROLE, "Le contrôle complet a détecté des erreurs de niveau %hu", niveau);
  return codeAvecPosition(NOX_CR_CONTROLE, niveau);
}

}  // namespace

unsigned short NOX_ControlerDonnees(const char* identifiant, const char* dateReference, void* zoneIn,
                                    unsigned int tailleZoneIn, char* resultat) {
  Trace::debutService("NOX_ControlerDonnees : identifiant = %s, dateReference = %s", affichable(identifiant),
                      affichable(dateReference));
  return rendreService(TRACE_CONTROLE, [&] {
    Requete requete(NatureAcces::LECTURE);
    requete.verifierIdentifiant(identifiant)
        .verifierDate(dateReference)
        .verifierZoneIn(zoneIn, tailleZoneIn)
        .verifierResultat(resultat)
        .chercherFonction(&Interface::lireSuperGroupeControler, identifiant)
        .lire([&](LectureDonnees& lecture) {
          Reglementation reglementation(lecture);
          Booleen reponse;
          const CodeRetour cr =
              FonctionsControler(requete.date(), requete.zone(), requete.superGroupe(), &reglementation)
                  .executer(requete.numero(), reponse);
          *resultat = reponse.estVrai() ? 'O' : 'N';
          return cr;
        });
    return convertirCodeRetour(requete.code());
  });
}

unsigned short NOX_AppliquerRegle(const char* identifiant, void* zoneIn, unsigned int tailleZoneIn,
                                  void** zoneOut, unsigned int* tailleZoneOut) {
  Trace::debutService("NOX_AppliquerRegle : identifiant = %s", affichable(identifiant));
  const SortieAppelant sortie(zoneOut, tailleZoneOut);
  return rendreService(TRACE_CONTROLE, [&] {
    ZoneSortie reponse;
    Requete requete(NatureAcces::LECTURE);
    requete.verifierIdentifiant(identifiant)
        .verifierZoneIn(zoneIn, tailleZoneIn)
        .verifierSortie(sortie)
        .chercherFonction(&Interface::lireSuperGroupeRegle, identifiant)
        .lire([&](LectureDonnees& lecture) {
          Reglementation reglementation(lecture);
          Tarification tarification(lecture);
          return FonctionsAppliquer(requete.zone(), requete.superGroupe(), &lecture, &reglementation,
                                    &tarification)
              .executer(requete.numero(), reponse);
        });
    const CodeRetour cr = requete.code();
    return convertirCodeRetour(estReponse(cr) ? remettre(sortie, reponse, cr) : cr);
  });
}

unsigned short NOX_ControleComplet(void* zoneIn, unsigned int tailleZoneIn, void** zoneOut,
                                   unsigned int* tailleZoneOut) {
  Trace::debutService("NOX_ControleComplet");
  const SortieAppelant sortie(zoneOut, tailleZoneOut);
  return rendreService(TRACE_CONTROLE, [&] {
    ZoneSortie reponse;
    unsigned short niveau = 0;
    Requete requete(NatureAcces::LECTURE);
    requete.verifierZoneIn(zoneIn, tailleZoneIn)
        .verifierSortie(sortie)
        .chercherControleComplet()
        .lire([&](LectureDonnees& lecture) {
          Reglementation reglementation(lecture);
          Tarification tarification(lecture);
          requete.superGroupe()->dump();
          return FonctionControleComplet(requete.zone(), requete.superGroupe(), &reglementation,
                                         &tarification)
              .executer(reponse, niveau);
        });
    CodeRetour cr = requete.code();
    if (cr == NOX_CR_OK) {
      cr = remettre(sortie, reponse, codeNiveau(niveau));
    }
    return convertirCodeRetour(cr);
  });
}
