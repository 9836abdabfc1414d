// What the rules write to the trace: values that cost a formatting are only formatted for a trace that shows
// them.
#ifndef NOXLUX_REGLES_TRACE_REGLES_H
#define NOXLUX_REGLES_TRACE_REGLES_H

#include <cstddef>
#include <type_traits>

#include "basics/trace.h"
#include "types/booleen.h"
#include "types/date.h"
#include "types/decimal.h"
#include "types/texte.h"

namespace noxlux {

// A value as the formats of the trace take it.
inline double pourTrace(const Flottant& valeur) { return valeur.lireValeur(); }
inline const char* pourTrace(const Texte& valeur) { return valeur.lireTexte(); }
inline const char* pourTrace(const Booleen& valeur) { return vraiFaux(valeur.estVrai()); }

inline void tracerDate(FormatVerifie<const char*> format, const Date& date) {
  if (Trace::estDetaille(TRACE_CONTROLE)) [[unlikely]] {
    Trace::ecrire(TRACE_CONTROLE, format, date.lireValeur().c_str());
  }
}

inline void tracerAge(FormatVerifie<unsigned short, unsigned short> format, const Periode& age) {
  Trace::ecrire(TRACE_CONTROLE, format, age.lireAnnees(), age.lireJours());
}

inline void tracerActe(const Code& acte, const Date& date) {
  if (Trace::estDetaille(TRACE_CONTROLE)) [[unlikely]] {
    Trace::ecrire(TRACE_CONTROLE, "acte = %s, date = %s", acte.lireTexte(), date.lireValeur().c_str());
  }
}

inline void tracerActivite(const Code& acte, const Code& activite, const Date& date) {
  if (Trace::estDetaille(TRACE_CONTROLE)) [[unlikely]] {
    Trace::ecrire(TRACE_CONTROLE, "acte = %s, activite = %s, date = %s", acte.lireTexte(),
                  activite.lireTexte(), date.lireValeur().c_str());
  }
}

inline void tracerPhase(const Code& acte, const Code& activite, const Code& phase) {
  Trace::ecrire(TRACE_CONTROLE, "acte = %s, activite = %s, phase = %s", acte.lireTexte(),
                activite.lireTexte(), phase.lireTexte());
}

// A trace block whose end line is one of its own: `fermer` writes it when the block is left, however it is
// left.
template <class Fermer>
class BlocParticulier {
 public:
  template <class... A>
  explicit BlocParticulier(Fermer fermer, FormatVerifie<std::type_identity_t<A>...> debut, A... arguments)
      : fermer_(fermer) {
    Trace::debut(TRACE_CONTROLE, debut, arguments...);
  }
  ~BlocParticulier() { fermer_(); }
  BlocParticulier(const BlocParticulier&) = delete;
  BlocParticulier& operator=(const BlocParticulier&) = delete;

 private:
  Fermer fermer_;
};

// The end of a block that says nothing.
struct FinMuette {
  void operator()() const { Trace::fin(TRACE_CONTROLE, ""); }
};
// The end that tells the code.
struct FinCode {
  const CodeRetour& cr;
  void operator()() const { Trace::fin(TRACE_CONTROLE, "cr = 0x%04X", cr); }
};

// The block of a rule, by the class that holds it and its identifier: "Tarification::appliquerProd840" for
// PROD840.
template <class Fermer>
BlocParticulier<Fermer> blocRegle(Fermer fermer, const char* classe, const char* regle) {
  constexpr std::size_t PREFIXE = sizeof "PROD" - 1;
  return BlocParticulier<Fermer>(fermer, "%s::appliquerProd%s", classe, regle + PREFIXE);
}
inline BlocParticulier<FinCode> blocRegle(const CodeRetour& cr, const char* classe, const char* regle) {
  return blocRegle(FinCode{cr}, classe, regle);
}

}  // namespace noxlux

#endif
