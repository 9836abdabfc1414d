// Variants of the requests whose zones travel through the host's session data manager.
#include "nox_commun.h"

using namespace noxlux;

// Weak: a host without a session manager loads the library all the same.
extern "C" {
[[gnu::weak]] unsigned short KEP_LireZoneIn(unsigned short numeroSession, void** zone, unsigned int* taille);
[[gnu::weak]] unsigned short KEP_EcrireZoneOut(unsigned short numeroSession, void* zone, unsigned int taille,
                                               void (*liberer)(void* zone));
}

namespace {

// What a variant exchanges with its session.
enum Echange : unsigned { AUCUN = 0, ENTREE = 1, SORTIE = 2 };
constexpr unsigned ENTREE_SORTIE = ENTREE | SORTIE;

// A zone of the session, in one direction or the other.
struct ZoneSession {
  void* adresse = nullptr;
  unsigned int taille = 0;
};

bool aGestionnaire(unsigned echange) {
  const bool lecture = (echange & ENTREE) == 0 || &KEP_LireZoneIn != nullptr;
  const bool ecriture = (echange & SORTIE) == 0 || &KEP_EcrireZoneOut != nullptr;
  return lecture && ecriture;
}

CodeRetour donnerASession(unsigned short numeroSession, const ZoneSession& zone) {
  const CodeRetour cr = KEP_EcrireZoneOut(numeroSession, zone.adresse, zone.taille, NOX_LibererZoneMem);
  if (cr != NOX_CR_OK) {
    NOX_LibererZoneMem(zone.adresse);
  }
  return cr;
}

bool estReussite(CodeRetour cr) { return cr == NOX_CR_OK; }
// The full check answers also when it has found errors of these levels.
bool estControleRendu(CodeRetour cr) {
  return cr == NOX_CR_OK || cr == NOX_CR_CONTROLE_NIVEAU_1 || cr == NOX_CR_CONTROLE_NIVEAU_2;
}

// Fetches the input zone, calls the function, passes its answer on when `estRendue` says so.
template <class Fonction>
CodeRetour echanger(unsigned short module, unsigned short numeroSession, unsigned echange,
                    const Fonction& fonction, bool (*estRendue)(CodeRetour) = estReussite) {
  return rendreService(module, [&]() -> CodeRetour {
    if (!aGestionnaire(echange)) {
      Trace::erreur(module, "gestionnaire de sessions absent.");
      return NOX_CR_INCOHERENCE;
    }
    ZoneSession entree;
    ZoneSession sortie;
    CodeRetour cr = NOX_CR_OK;
    if ((echange & ENTREE) != 0) {
      cr = KEP_LireZoneIn(numeroSession, &entree.adresse, &entree.taille);
    }
    if (cr == NOX_CR_OK) {
      cr = fonction(entree, sortie);
    }
    // The test looks at the code alone, wherever it comes from.
    if ((echange & SORTIE) != 0 && estRendue(cr)) {
      const CodeRetour crSortie = donnerASession(numeroSession, sortie);
      cr = crSortie != NOX_CR_OK ? crSortie : cr;
    }
    return cr;
  });
}

}  // namespace

unsigned short NOX_RechercherParMotCle_S(const char* motCle, unsigned long cadreRecherche,
                                         unsigned short numeroSession) {
  Trace::debutService("NOX_RechercherParMotCle_S : numeroSession = %hu", numeroSession);
  return echanger(TRACE_CONSULTATION, numeroSession, SORTIE, [&](const ZoneSession&, ZoneSession& sortie) {
    return NOX_RechercherParMotCle(motCle, cadreRecherche, &sortie.adresse, &sortie.taille);
  });
}

unsigned short NOX_RechercherParFiltre_S(const char* filtre, unsigned short numeroSession) {
  Trace::debutService("NOX_RechercherParFiltre_S : numeroSession = %hu", numeroSession);
  return echanger(TRACE_CONSULTATION, numeroSession, SORTIE, [&](const ZoneSession&, ZoneSession& sortie) {
    return NOX_RechercherParFiltre(filtre, &sortie.adresse, &sortie.taille);
  });
}

unsigned short NOX_ConsulterDonnee_S(const char* identifiant, const char* dateReference,
                                     unsigned short numeroSession) {
  Trace::debutService("NOX_ConsulterDonnee_S : numeroSession = %hu", numeroSession);
  return echanger(TRACE_CONSULTATION, numeroSession, ENTREE_SORTIE,
                  [&](const ZoneSession& entree, ZoneSession& sortie) {
                    return NOX_ConsulterDonnee(identifiant, dateReference, entree.adresse, entree.taille,
                                               &sortie.adresse, &sortie.taille);
                  });
}

unsigned short NOX_ModifierDonnee_S(const char* identifiant, const char* dateEffet,
                                    unsigned short numeroSession) {
  Trace::debutService("NOX_ModifierDonnee_S : numeroSession = %hu", numeroSession);
  return echanger(TRACE_MODIFICATION, numeroSession, ENTREE, [&](const ZoneSession& entree, ZoneSession&) {
    return NOX_ModifierDonnee(identifiant, dateEffet, entree.adresse, entree.taille);
  });
}

unsigned short NOX_AnnulerModification_S(const char* identifiant, unsigned short numeroSession) {
  Trace::debutService("NOX_AnnulerModification_S : numeroSession = %hu", numeroSession);
  return echanger(TRACE_MODIFICATION, numeroSession, ENTREE, [&](const ZoneSession& entree, ZoneSession&) {
    return NOX_AnnulerModification(identifiant, entree.adresse, entree.taille);
  });
}

unsigned short NOX_ControlerDonnees_S(const char* identifiant, const char* dateReference,
                                      unsigned short numeroSession, char* resultat) {
  Trace::debutService("NOX_ControlerDonnees_S : numeroSession = %hu", numeroSession);
  return echanger(TRACE_CONTROLE, numeroSession, ENTREE, [&](const ZoneSession& entree, ZoneSession&) {
    return NOX_ControlerDonnees(identifiant, dateReference, entree.adresse, entree.taille, resultat);
  });
}

unsigned short NOX_AppliquerRegle_S(const char* identifiant, unsigned short numeroSession) {
  Trace::debutService("NOX_AppliquerRegle_S : numeroSession = %hu", numeroSession);
  return echanger(TRACE_CONTROLE, numeroSession, ENTREE_SORTIE,
                  [&](const ZoneSession& entree, ZoneSession& sortie) {
                    return NOX_AppliquerRegle(identifiant, entree.adresse, entree.taille, &sortie.adresse,
                                              &sortie.taille);
                  });
}

unsigned short NOX_ControleComplet_S(unsigned short numeroSession) {
  Trace::debutService("NOX_ControleComplet_S : numeroSession = %hu", numeroSession);
  return echanger(
      TRACE_CONTROLE, numeroSession, ENTREE_SORTIE,
      [&](const ZoneSession& entree, ZoneSession& sortie) {
        return NOX_ControleComplet(entree.adresse, entree.taille, &sortie.adresse, &sortie.taille);
      },
      estControleRendu);
}

unsigned short NOX_LireVersion_S(unsigned short numeroSession) {
  Trace::debutService("NOX_LireVersion_S : numeroSession = %hu", numeroSession);
  return echanger(TRACE_SYSTEME, numeroSession, SORTIE, [&](const ZoneSession&, ZoneSession& sortie) {
    return NOX_LireVersion(&sortie.adresse, &sortie.taille);
  });
}
