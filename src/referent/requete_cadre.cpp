// What the frame of a query says when it is traced or refuses: kept out of the way of what it runs.
#include "referent/requete_cadre.h"

#include "referent/requete_cles.h"

namespace noxlux {

void BlocMethode::commencer(unsigned short module, const char* classe, const char* methode,
                            const char* objet) {
  Trace::debut(module, "%s::%s%s", classe, methode, objet);
}

void BlocMethode::terminer(unsigned short module, const char* classe, const char* methode, CodeRetour cr) {
  Trace::fin(module, "Code retour de %s::%s : 0x%04X", classe, methode, cr);
}

CodeRetour refuser(CodeRetour cr, FormatVerifie<> message) {
  Trace::erreur(TRACE_CONSULTATION, message);
  return cr;
}

CodeRetour refuserCleTropLongue() {
  return refuser(NOX_CR_DONNEE_ABSENTE, "La taille du code excede la taille attendue pour le buffer");
}

}  // namespace noxlux
