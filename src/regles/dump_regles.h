// Lines of the invoice's dumps: a datum that was not supplied prints nothing.
#ifndef NOXLUX_REGLES_DUMP_REGLES_H
#define NOXLUX_REGLES_DUMP_REGLES_H

#include <optional>

#include "basics/trace.h"
#include "regles/ligne_acte.h"
#include "regles/trace_regles.h"

namespace noxlux {

inline void tracer(FormatVerifie<const char*> format, const Code& code) {
  if (code.estRenseigne()) {
    Trace::ecrire<const char*>(TRACE_CONTROLE, format, code.lireTexte());
  }
}

inline void tracer(FormatVerifie<const char*> format, const std::optional<Code>& code) {
  if (code.has_value()) {
    Trace::ecrire<const char*>(TRACE_CONTROLE, format, code->lireTexte());
  }
}

inline void tracer(FormatVerifie<const char*> format, const std::optional<Date>& date) {
  if (date.has_value() && Trace::estDetaille(TRACE_CONTROLE)) {
    Trace::ecrire<const char*>(TRACE_CONTROLE, format, date->lireValeur().c_str());
  }
}

inline void tracer(FormatVerifie<double> format, const std::optional<Montant>& montant) {
  if (montant.has_value()) {
    Trace::ecrire<double>(TRACE_CONTROLE, format, montant->lireValeur());
  }
}

// Positions and codes of a list, under a format of a position and a text.
inline void tracer(FormatVerifie<int, const char*> format, const ListeCodes& codes) {
  for (unsigned short i = 0; i < codes.lireNombreElements(); ++i) {
    Trace::ecrire<int, const char*>(TRACE_CONTROLE, format, i, codes[i].lireTexte());
  }
}

// The lines that both kinds of invoice lines print around their amounts.
inline void tracerIdentite(const LigneActe& ligne) {
  Trace::ecrire(TRACE_CONTROLE, "numero              = %d", ligne.numero.lireValeur());
  tracer("date                = %s", std::optional(ligne.date));
  tracer("numeroPS            = %s", ligne.numeroPS);
  tracer("specialitePS        = %s", ligne.specialitePS);
  tracer("prestation          = %s", ligne.prestation);
  tracer("lieuExecution       = %s", ligne.lieuExecution);
  tracer("identifiantLieu     = %s", ligne.identifiantLieu);
  tracer("qualificatifDepense = %s", ligne.qualificatifDepense);
}

inline void tracerDroits(const LigneActe& ligne) {
  if (ligne.tauxRemboursement.has_value()) {
    Trace::ecrire(TRACE_CONTROLE, "tauxRemboursement   = %.f%%",
                  ligne.tauxRemboursement->lireValeur() * 100.0);
  }
  tracer("exonerationTM       = %s", ligne.exonerationTM);
  tracer("ententePrealable    = %s", ligne.ententePrealable);
}

}  // namespace noxlux

#endif
