// What a line says of the exemption of the patient's share.
#ifndef NOXLUX_REGLES_EXONERATION_H
#define NOXLUX_REGLES_EXONERATION_H

#include "regles/tarification.h"
#include "regles/trace_regles.h"

namespace noxlux {

// The line's exemption justification; none given is no exemption.
inline Code motif(const LigneActe& ligne) {
  return estDonne(ligne.exonerationTM) ? *ligne.exonerationTM : Code(Tarification::SANS_EXONERATION);
}

inline bool reclameActeCouteux(const LigneActe& ligne) {
  return motif(ligne).vue() == Tarification::ACTE_COUTEUX;
}

inline bool estSansExoneration(const Code& motifExoneration) {
  return motifExoneration.vue() == Tarification::SANS_EXONERATION ||
         motifExoneration.vue() == Tarification::SANS_EXONERATION_9;
}

inline const Coefficient TAUX_PLEIN(1.0);

// A rate that was not given says nothing.
inline bool laisseUnePart(const LigneActe& ligne) {
  return ligne.tauxRemboursement.has_value() && *ligne.tauxRemboursement < TAUX_PLEIN;
}

inline bool neReclameRien(const LigneActe& ligne) {
  return estSansExoneration(motif(ligne)) && laisseUnePart(ligne);
}

inline void exonerer(LigneActe& ligne) {
  ligne.tauxRemboursement = TAUX_PLEIN;
  ligne.exonerationTM = Code(Tarification::ACTE_COUTEUX);
}

inline void tracerExoneration(const LigneActe& ligne) {
  if (Trace::estDetaille(TRACE_CONTROLE)) {
    Trace::ecrire(TRACE_CONTROLE, "exonerationTM = %s, tauxRemboursement = %f", motif(ligne).lireTexte(),
                  ligne.tauxRemboursement.value_or(Coefficient()).lireValeur());
  }
}

}  // namespace noxlux

#endif
