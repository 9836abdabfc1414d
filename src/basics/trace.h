// The library's one diagnostic log: a text file shared by the whole process, filtered by module. Several
// threads may write to it: each has its own nesting depth, and each piece is written at once, so that lines
// stay whole.
#ifndef NOXLUX_BASICS_TRACE_H
#define NOXLUX_BASICS_TRACE_H

#include <array>
#include <atomic>

#include "basics/assertion.h"
#include "basics/codes_retour.h"
#include "basics/format_verifie.h"

namespace noxlux {

class FichierIni;

constexpr unsigned short TRACE_NB_MODULES = 10;

// What each trace module is used for. Modules 5 and 8 are free.
enum ModuleTrace : unsigned short {
  TRACE_CHARGEMENT = 0,
  TRACE_CONSULTATION = 1,
  TRACE_MODIFICATION = 2,
  TRACE_SAUVEGARDE = 3,
  TRACE_CONTROLE = 4,
  TRACE_PARAMETRES = 6,
  TRACE_SYSTEME = 7,
  TRACE_ZONE = 9
};

// Levels of a module: 0 silent; 1 errors, and start and end lines down to a nesting depth of 8; 2 errors and
// all start and end lines; 3 and above, the detail lines too. A silent module costs one comparison a line.
class Trace {
 public:
  Trace() = delete;

  // Sets a module's level; opens the file at the first level set, closes it with the last one. 0xDF01 while
  // another thread sets a level.
  static CodeRetour activer(const char* nomFichier, const char* mode, unsigned short module,
                            unsigned char niveau);

  static unsigned char niveau(unsigned short module) {
    exiger(module < TRACE_NB_MODULES, "module < TRACE_NB_MODULES");
    return niveaux[module].load(std::memory_order_relaxed);
  }
  static bool estDetaille(unsigned short module) { return niveau(module) >= NIVEAU_DETAIL; }

  // The service-start block of an exported function: written whenever the file is open.
  template <class... A>
  static void debutService(FormatVerifie<std::type_identity_t<A>...> format, A... arguments) {
    if (ouverte.load(std::memory_order_relaxed)) {
      ecrireDebutService(format.texte(), arguments...);
    }
  }
  // Start of a function: opens a brace level, which `fin` closes.
  template <class... A>
  static void debut(unsigned short module, FormatVerifie<std::type_identity_t<A>...> format, A... arguments) {
    if (niveau(module) != 0) [[unlikely]] {
      ecrireDebut(module, format.texte(), arguments...);
    }
  }
  template <class... A>
  static void fin(unsigned short module, FormatVerifie<std::type_identity_t<A>...> format, A... arguments) {
    if (niveau(module) != 0) [[unlikely]] {
      ecrireFin(module, format.texte(), arguments...);
    }
  }
  // A start and its end in one block.
  template <class... A>
  static void debutFin(unsigned short module, FormatVerifie<std::type_identity_t<A>...> format,
                       A... arguments) {
    if (niveau(module) != 0) [[unlikely]] {
      ecrireDebutFin(module, format.texte(), arguments...);
    }
  }
  // One detail line, from level 3 on.
  template <class... A>
  static void ecrire(unsigned short module, FormatVerifie<std::type_identity_t<A>...> format,
                     A... arguments) {
    if (niveau(module) >= NIVEAU_DETAIL) [[unlikely]] {
      ecrireLigne("", format.texte(), arguments...);
    }
  }
  // One error line, from level 1 on. "ERREUR : " is put before it, unless the text already opens with
  // "ERREUR".
  template <class... A>
  static void erreur(unsigned short module, FormatVerifie<std::type_identity_t<A>...> format,
                     A... arguments) {
    if (niveau(module) != 0) [[unlikely]] {
      ecrireLigne(prefixeErreur(format.texte()), format.texte(), arguments...);
    }
  }

 private:
  static constexpr unsigned char NIVEAU_DETAIL = 3;

  static CodeRetour regler(const char* nomFichier, const char* mode, unsigned short module,
                           unsigned char niveau);
  static CodeRetour ouvrir(const char* nomFichier, const char* mode);
  static void fermer();

  static const char* prefixeErreur(const char* texte);
  static void ecrireDebutService(const char* format, ...);
  static void ecrireDebut(unsigned short module, const char* format, ...);
  static void ecrireFin(unsigned short module, const char* format, ...);
  static void ecrireDebutFin(unsigned short module, const char* format, ...);
  static void ecrireLigne(const char* prefixe, const char* format, ...);

  static std::atomic<bool> ouverte;
  static std::array<std::atomic<unsigned char>, TRACE_NB_MODULES> niveaux;
};

// The block of a function that ends with its return code: the end line is written when the block is left,
// however it is left.
class BlocTrace {
 public:
  template <class... A>
  BlocTrace(unsigned short module, const CodeRetour& cr, FormatVerifie<std::type_identity_t<A>...> format,
            A... arguments)
      : module_(module), cr_(cr) {
    Trace::debut(module, format, arguments...);
  }
  ~BlocTrace() { Trace::fin(module_, finLigne_, cr_); }
  BlocTrace(const BlocTrace&) = delete;
  BlocTrace& operator=(const BlocTrace&) = delete;

  // Another end line; it takes the code as its one argument.
  void terminerPar(FormatVerifie<CodeRetour> format) { finLigne_ = format; }

 private:
  unsigned short module_;
  const CodeRetour& cr_;
  static constexpr FormatVerifie<CodeRetour> FIN_ORDINAIRE = "cr = 0x%04X";
  FormatVerifie<CodeRetour> finLigne_ = FIN_ORDINAIRE;
};

// Configures the trace from section NOX of the INI file, once per process.
void initialiserTrace(const FichierIni& fichierIni);

inline const char* vraiFaux(bool valeur) { return valeur ? "vrai" : "faux"; }

}  // namespace noxlux

#endif
