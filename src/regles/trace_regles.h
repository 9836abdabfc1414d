// What the rules write to the trace: values that cost a formatting are only formatted for a trace that shows
// them.
#ifndef NOXLUX_REGLES_TRACE_REGLES_H
#define NOXLUX_REGLES_TRACE_REGLES_H

#include "basics/trace.h"
#include "types/date.h"
#include "types/texte.h"

namespace noxlux {

inline void tracerDate(FormatVerifie<const char*> format, const Date& date) {
  if (Trace::estDetaille(TRACE_CONTROLE)) [[unlikely]] {
    Trace::ecrire(TRACE_CONTROLE, format, date.lireValeur());
  }
}

inline void tracerAge(FormatVerifie<unsigned short, unsigned short> format, const Periode& age) {
  Trace::ecrire(TRACE_CONTROLE, format, age.lireAnnees(), age.lireJours());
}

inline void tracerActe(const Code& acte, const Date& date) {
  if (Trace::estDetaille(TRACE_CONTROLE)) [[unlikely]] {
    Trace::ecrire(TRACE_CONTROLE, "acte = %s, date = %s", acte.lireTexte(), date.lireValeur());
  }
}

inline void tracerActivite(const Code& acte, const Code& activite, const Date& date) {
  if (Trace::estDetaille(TRACE_CONTROLE)) [[unlikely]] {
    Trace::ecrire(TRACE_CONTROLE, "acte = %s, activite = %s, date = %s", acte.lireTexte(),
                  activite.lireTexte(), date.lireValeur());
  }
}

inline void tracerPhase(const Code& acte, const Code& activite, const Code& phase) {
  Trace::ecrire(TRACE_CONTROLE, "acte = %s, activite = %s, phase = %s", acte.lireTexte(),
                activite.lireTexte(), phase.lireTexte());
}

// Runs what closes a trace block when the block is left, however it is left.
template <class F>
class EnSortant {
 public:
  explicit EnSortant(F fermer) : fermer_(fermer) {}
  ~EnSortant() { fermer_(); }
  EnSortant(const EnSortant&) = delete;
  EnSortant& operator=(const EnSortant&) = delete;

 private:
  F fermer_;
};

}  // namespace noxlux

#endif
