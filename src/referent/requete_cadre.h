// The traced frame of the methods of the query and change layers.
#ifndef NOXLUX_REFERENT_REQUETE_CADRE_H
#define NOXLUX_REFERENT_REQUETE_CADRE_H

#include <concepts>

#include "basics/trace.h"
#include "types/date.h"
#include "types/texte.h"

namespace noxlux {

// A traced input of a call.
template <class T>
struct Entree {
  const char* libelle;
  const T& valeur;
};
template <class T>
Entree(const char*, const T&) -> Entree<T>;

inline void tracerEntree(unsigned short module, const char* libelle, const Texte& valeur) {
  Trace::ecrire(module, "%s : %s", libelle, valeur.lireTexte());
}
inline void tracerEntree(unsigned short module, const char* libelle, const char* valeur) {
  Trace::ecrire(module, "%s : %s", libelle, valeur);
}
inline void tracerEntree(unsigned short module, const char* libelle, const Date& valeur) {
  Trace::ecrire(module, "%s : %04u/%02u/%02u", libelle, valeur.lireAnnee(), valeur.lireMois(),
                valeur.lireJour());
}
inline void tracerEntree(unsigned short module, const char* libelle, double valeur) {
  Trace::ecrire(module, "%s : %f", libelle, valeur);
}
template <std::unsigned_integral T>
void tracerEntree(unsigned short module, const char* libelle, T valeur) {
  Trace::ecrire(module, "%s : %lu", libelle, static_cast<unsigned long>(valeur));
}

// The trace block of one call of a method: its banner, then the line of its return code, however it is left.
class BlocMethode {
 public:
  BlocMethode(unsigned short module, const char* classe, const char* methode, const char* objet,
              const CodeRetour& cr)
      : module_(module), classe_(classe), methode_(methode), cr_(cr) {
    if (Trace::niveau(module) != 0) [[unlikely]] {
      commencer(module, classe, methode, objet);
    }
  }
  ~BlocMethode() {
    if (Trace::niveau(module_) != 0) [[unlikely]] {
      terminer(module_, classe_, methode_, cr_);
    }
  }
  BlocMethode(const BlocMethode&) = delete;
  BlocMethode& operator=(const BlocMethode&) = delete;

 private:
  static void commencer(unsigned short module, const char* classe, const char* methode, const char* objet);
  static void terminer(unsigned short module, const char* classe, const char* methode, CodeRetour cr);

  unsigned short module_;
  const char* classe_;
  const char* methode_;
  const CodeRetour& cr_;
};

// Runs `corps` in the frame of a method. `objet` follows the method's name in the banner.
template <class F, class... T>
CodeRetour executer(unsigned short module, const char* classe, const char* methode, const char* objet,
                    F&& corps, const Entree<T>&... entrees) {
  CodeRetour cr = NOX_CR_MEMOIRE;  // what the trace tells when the body is left for lack of memory
  const BlocMethode bloc(module, classe, methode, objet, cr);
  if (Trace::estDetaille(module)) [[unlikely]] {
    (tracerEntree(module, entrees.libelle, entrees.valeur), ...);
  }
  cr = corps();
  return cr;
}

// The frame of a query.
template <class F, class... T>
CodeRetour requete(const char* methode, F&& corps, const Entree<T>&... entrees) {
  return executer(TRACE_CONSULTATION, "LectureDonnees", methode, "", corps, entrees...);
}

// Traces why a look-up fails.
CodeRetour refuser(CodeRetour cr, FormatVerifie<> message);

}  // namespace noxlux

#endif
