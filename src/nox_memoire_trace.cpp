// Entry points that need no reference: the trace, and the memory of zones.
#include "interapp/controleur_parametres.h"
#include "nox_commun.h"

using namespace noxlux;

unsigned short NOX_InitTrace(const char* nomFichier, const char* modeOuverture, unsigned short module,
                             unsigned char niveau) {
  Trace::debutService("NOX_InitTrace : nomFichier = %s, modeOuverture = %s, module = %d, niveau = %d",
                      affichable(nomFichier), affichable(modeOuverture), int{module}, int{niveau});
  return rendreService(TRACE_SYSTEME, [&] {
    if (module >= TRACE_NB_MODULES) {
      Trace::erreur(TRACE_PARAMETRES, "numéro de module incorrect.");
      return CodeRetour{NOX_CR_MODULE_TRACE};
    }
    return Trace::activer(nomFichier, modeOuverture, module, niveau);
  });
}

unsigned short NOX_AllouerZoneMem(void** zone, unsigned int tailleZone) {
  Trace::debutService("NOX_AllouerZoneMem : tailleZone = %u", tailleZone);
  if (zone != nullptr) {
    *zone = nullptr;
  }
  return rendreService(TRACE_SYSTEME, [&] {
    const CodeRetour cr = ControleurParametres::verifierPointeur(zone, false);
    if (cr != NOX_CR_OK) {
      return cr;
    }
    if (tailleZone == 0) {
      Trace::erreur(TRACE_PARAMETRES, "taille nulle.");
      return CodeRetour{NOX_CR_PARAMETRE_ENTREE};
    }
    return Systeme::allouer(*zone, tailleZone);
  });
}

void NOX_LibererZoneMem(void* zone) {
  Trace::debutService("NOX_LibererZoneMem : zone = 0x%p", zone);
  Systeme::liberer(zone);
}
