// Entry points that ask and change reference data.
#include "interapp/fonctions_annuler.h"
#include "interapp/fonctions_consulter.h"
#include "interapp/fonctions_modifier.h"
#include "nox_commun.h"

using namespace noxlux;

namespace {

// A change or a cancellation: the flag is set when it succeeds.
template <class Action>
CodeRetour changer(Requete& requete, const Action& action) {
  requete.ecrire(action);
  if (requete.ok()) {
    bibliotheque.modification = true;
  }
  return requete.code();
}

// Writes the whole reference to the trace, for an identifier that asks for it.
bool dumper(Requete& requete, const char* identifiant) {
  if (!requete.ok() || Systeme::comparerIdentifiant(identifiant, "Dump") != 0) {
    return false;
  }
  requete.exigerAcces().suivre([] {
    bibliotheque.referentiel->dump(TRACE_CONSULTATION);
    return CodeRetour{NOX_CR_OK};
  });
  return true;
}

}  // namespace

unsigned short NOX_ConsulterDonnee(const char* identifiant, const char* dateReference, void* zoneIn,
                                   unsigned int tailleZoneIn, void** zoneOut, unsigned int* tailleZoneOut) {
  Trace::debutService("NOX_ConsulterDonnee : identifiant = %s, dateReference = %s", affichable(identifiant),
                      affichable(dateReference));
  const SortieAppelant sortie(zoneOut, tailleZoneOut);
  bool dump = false;
  const CodeRetour cr = proteger([&] {
    Requete requete(NatureAcces::LECTURE);
    requete.verifierIdentifiant(identifiant).verifierDate(dateReference).verifierSortie(sortie);
    dump = dumper(requete, identifiant);
    if (dump) {
      return requete.code();
    }
    ZoneSortie reponse;
    requete.chercherFonction(&Interface::lireSuperGroupeConsulter, identifiant)
        .verifierZoneInEventuelle(zoneIn, tailleZoneIn)
        .lire([&](LectureDonnees& lecture) {
          return FonctionsConsulter(requete.date(), requete.zone(), requete.superGroupe(), &lecture)
              .executer(requete.numero(), reponse);
        });
    return requete.ok() ? sortie.remettre(reponse) : requete.code();
  });
  if (!dump) {
    Trace::ecrire(TRACE_CONSULTATION, "cr = 0x%04X", cr);
  }
  return cr;
}

unsigned short NOX_ModifierDonnee(const char* identifiant, const char* dateEffet, void* zoneIn,
                                  unsigned int tailleZoneIn) {
  Trace::debutService("NOX_ModifierDonnee : identifiant = %s, dateEffet = %s", affichable(identifiant),
                      affichable(dateEffet));
  return rendreService(TRACE_MODIFICATION, [&] {
    Requete requete(NatureAcces::ECRITURE);
    requete.verifierIdentifiant(identifiant)
        .verifierDate(dateEffet)
        .verifierZoneIn(zoneIn, tailleZoneIn)
        .chercherFonction(&Interface::lireSuperGroupeModifier, identifiant);
    return changer(requete, [&](ModificationDonnees& modification) {
      return FonctionsModifier(requete.date(), requete.zone(), requete.superGroupe(), &modification)
          .executer(requete.numero());
    });
  });
}

unsigned short NOX_AnnulerModification(const char* identifiant, void* zoneIn, unsigned int tailleZoneIn) {
  Trace::debutService("NOX_AnnulerModification : identifiant = %s", affichable(identifiant));
  return rendreService(TRACE_MODIFICATION, [&] {
    Requete requete(NatureAcces::ECRITURE);
    requete.verifierIdentifiant(identifiant)
        .chercherFonction(&Interface::lireSuperGroupeAnnuler, identifiant)
        .verifierZoneInEventuelle(zoneIn, tailleZoneIn);
    return changer(requete, [&](ModificationDonnees& modification) {
      return FonctionsAnnuler(requete.zone(), requete.superGroupe(), &modification)
          .executer(requete.numero());
    });
  });
}
