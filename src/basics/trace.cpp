#include "basics/trace.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdarg>
#include <cstring>
#include <ctime>
#include <string>
#include <string_view>

#include "basics/fichier_ini.h"
#include "basics/morceau_trace.h"

namespace noxlux {

std::atomic<bool> Trace::ouverte = false;
std::array<std::atomic<unsigned char>, TRACE_NB_MODULES> Trace::niveaux{};

namespace {

// Depth beyond which level 1 writes no start line; end lines are one deeper.
constexpr int PROFONDEUR_MAX = 7;

// The nesting depth of this thread.
thread_local int indentation = 0;

// Where the trace goes. Once opened, the number stays the trace's own: closing and opening again put another
// file behind it, so that a thread on its way to write never writes into a file of the host.
std::atomic<int> descripteur = -1;

// Puts a file behind the number of the trace. False when it cannot be opened.
bool placer(const char* nomFichier, int ouverture) {
  constexpr mode_t DROITS = 0666;
  const int ouvert = open(nomFichier, ouverture | O_WRONLY | O_CLOEXEC, DROITS);
  if (ouvert < 0) {
    return false;
  }
  const int place = descripteur.load(std::memory_order_relaxed);
  if (place < 0) {
    descripteur.store(ouvert, std::memory_order_release);
    return true;
  }
  const bool remplace = dup3(ouvert, place, O_CLOEXEC) >= 0;
  close(ouvert);
  return remplace;
}

void envoyer(const MorceauTrace& morceau) {
  const int raison = errno;  // a trace leaves no trace in what it tells about
  std::string_view reste = morceau.texte();
  while (!reste.empty()) {
    const ssize_t ecrits = write(descripteur.load(std::memory_order_acquire), reste.data(), reste.size());
    if (ecrits < 0 && errno == EINTR) {
      continue;
    }
    if (ecrits <= 0) {
      break;  // faults of the trace are nobody's business
    }
    reste.remove_prefix(static_cast<std::size_t>(ecrits));
  }
  errno = raison;
}

void ouvrirBloc(MorceauTrace& morceau) {
  morceau.indenter(indentation);
  morceau.ajouter("{ ");
  ++indentation;
}

void fermerBloc(MorceauTrace& morceau) {
  --indentation;
  morceau.indenter(indentation);
  morceau.ajouter("}\n");
}

}  // namespace

CodeRetour Trace::ouvrir(const char* nomFichier, const char* mode) {
  if (nomFichier == nullptr || *nomFichier == '\0' || mode == nullptr) {
    return NOX_CR_PARAMETRE_ENTREE;
  }
  const std::string_view demande = mode;
  const bool ecrasement = demande == "w" || demande == "wb";
  if (!ecrasement && demande != "a" && demande != "ab") {
    return NOX_CR_PARAMETRE_ENTREE;
  }
  // Appending in both modes: what several threads or processes write follows what the others wrote.
  if (!placer(nomFichier, O_CREAT | O_APPEND | (ecrasement ? O_TRUNC : 0))) {
    return NOX_CR_FICHIER_TRACE;
  }
  MorceauTrace morceau;
  morceau.ajouter("### DEBUT TRACE ###\n");
  envoyer(morceau);
  ouverte = true;
  return NOX_CR_OK;
}

void Trace::fermer() {
  ouverte = false;
  MorceauTrace morceau;
  morceau.ajouter("### FIN TRACE ###\n\n");
  envoyer(morceau);
  placer("/dev/null", 0);
}

CodeRetour Trace::activer(const char* nomFichier, const char* mode, unsigned short module,
                          unsigned char niveau) {
  exiger(module < TRACE_NB_MODULES, "module < TRACE_NB_MODULES");
  static std::atomic<bool> enReglage = false;
  if (enReglage.exchange(true, std::memory_order_acquire)) {
    return NOX_CR_OCCUPE;
  }
  const CodeRetour cr = regler(nomFichier, mode, module, niveau);
  enReglage.store(false, std::memory_order_release);
  return cr;
}

CodeRetour Trace::regler(const char* nomFichier, const char* mode, unsigned short module,
                         unsigned char niveau) {
  if (niveau != 0 && !ouverte) {
    const CodeRetour cr = ouvrir(nomFichier, mode);
    if (cr != NOX_CR_OK) {
      return cr;
    }
  }
  niveaux[module] = niveau;
  if (ouverte && std::all_of(niveaux.begin(), niveaux.end(), [](const auto& n) { return n == 0; })) {
    fermer();
  }
  return NOX_CR_OK;
}

void Trace::ecrireDebutService(const char* format, ...) {
  // A service starts at the margin, whatever a change of levels under way left open in this thread.
  indentation = 0;
  const std::time_t maintenant = std::time(nullptr);
  char heure[32] = "";
  std::tm local{};
  if (localtime_r(&maintenant, &local) != nullptr) {
    std::strftime(heure, sizeof heure, "%a %b %e %H:%M:%S %Y ", &local);
  }
  MorceauTrace morceau;
  morceau.ajouter("\n");
  morceau.ajouter(heure);
  char ticks[24];
  std::snprintf(ticks, sizeof ticks, "[%ld]\n", static_cast<long>(std::clock()));
  morceau.ajouter(ticks);
  std::va_list arguments;
  va_start(arguments, format);
  morceau.formater(format, arguments);
  va_end(arguments);
  morceau.ajouter("\n");
  envoyer(morceau);
}

void Trace::ecrireDebut(unsigned short module, const char* format, ...) {
  if (niveau(module) == 1 && indentation > PROFONDEUR_MAX) {
    ++indentation;
    return;
  }
  MorceauTrace morceau;
  ouvrirBloc(morceau);
  std::va_list arguments;
  va_start(arguments, format);
  morceau.formater(format, arguments);
  va_end(arguments);
  morceau.ajouter("\n");
  envoyer(morceau);
}

// A block whose start was not written, because the level has changed since, has no end either.
void Trace::ecrireFin(unsigned short module, const char* format, ...) {
  if (indentation == 0) {
    return;
  }
  if (niveau(module) == 1 && indentation > PROFONDEUR_MAX + 1) {
    --indentation;
    return;
  }
  MorceauTrace morceau;
  morceau.indenter(indentation);
  std::va_list arguments;
  va_start(arguments, format);
  morceau.formater(format, arguments);
  va_end(arguments);
  morceau.ajouter("\n");
  fermerBloc(morceau);
  envoyer(morceau);
}

void Trace::ecrireDebutFin(unsigned short module, const char* format, ...) {
  if (niveau(module) == 1 && indentation > PROFONDEUR_MAX) {
    return;
  }
  MorceauTrace morceau;
  ouvrirBloc(morceau);
  std::va_list arguments;
  va_start(arguments, format);
  morceau.formater(format, arguments);
  va_end(arguments);
  morceau.ajouter("\n");
  fermerBloc(morceau);
  envoyer(morceau);
}

const char* Trace::prefixeErreur(const char* texte) {
  return std::string_view(texte).starts_with("ERREUR") ? "" : "ERREUR : ";
}

void Trace::ecrireLigne(const char* prefixe, const char* format, ...) {
  MorceauTrace morceau;
  morceau.indenter(indentation);
  morceau.ajouter(prefixe);
  std::va_list arguments;
  va_start(arguments, format);
  morceau.formater(format, arguments);
  va_end(arguments);
  morceau.ajouter("\n");
  envoyer(morceau);
}

namespace {

constexpr std::size_t TAILLE_ELEMENT = 99;

std::string_view sansBlancs(std::string_view texte) {
  const auto blanc = [](char c) { return std::strchr(" \t\r\n\v\f", c) != nullptr; };
  while (!texte.empty() && blanc(texte.front())) {
    texte.remove_prefix(1);
  }
  while (!texte.empty() && blanc(texte.back())) {
    texte.remove_suffix(1);
  }
  return texte;
}

// Takes the text up to `separateur` (at most TAILLE_ELEMENT characters) and passes the separator.
std::string_view prendreElement(std::string_view& reste, char separateur) {
  const std::size_t fin = std::min(reste.find(separateur), reste.size());
  const std::string_view element = sansBlancs(reste.substr(0, std::min(fin, TAILLE_ELEMENT)));
  reste.remove_prefix(std::min(fin + 1, reste.size()));
  return element;
}

bool lireNombre(std::string_view texte, long maximum, long& valeur) {
  const auto [fin, faute] = std::from_chars(texte.data(), texte.data() + texte.size(), valeur);
  return faute == std::errc{} && fin == texte.data() + texte.size() && valeur >= 0 && valeur <= maximum;
}

void activerModules(const char* nomFichier, const char* mode, std::string_view modules) {
  while (!sansBlancs(modules).empty()) {
    const std::string module(prendreElement(modules, ':'));
    const std::string niveau(prendreElement(modules, ','));
    long numero = 0;
    long profondeur = 0;
    if (!lireNombre(module, TRACE_NB_MODULES - 1, numero)) {
      Trace::erreur(TRACE_SYSTEME, "numéro de module (%s) incorrect", module.c_str());
      continue;
    }
    if (!lireNombre(niveau, 255, profondeur)) {
      Trace::erreur(TRACE_SYSTEME, "niveau de profondeur (%s) incorrect", niveau.c_str());
      continue;
    }
    Trace::ecrire(TRACE_SYSTEME, "module = %d, niveau = %d", static_cast<int>(numero),
                  static_cast<int>(profondeur));
    const CodeRetour cr = Trace::activer(nomFichier, mode, static_cast<unsigned short>(numero),
                                         static_cast<unsigned char>(profondeur));
    Trace::ecrire(TRACE_SYSTEME, "Trace::activer -> 0x%04X", cr);
  }
}

}  // namespace

void initialiserTrace(const FichierIni& fichierIni) {
  static std::atomic<bool> dejaVu = false;
  if (dejaVu.exchange(true)) {
    return;
  }
  Trace::ecrire(TRACE_SYSTEME, "{ initialiserTrace");
  const char* nomFichier = fichierIni.lireValeur("NOX", "FichierTrace");
  const char* mode = fichierIni.lireValeur("NOX", "ModeTrace");
  const char* modules = fichierIni.lireValeur("NOX", "ModulesTrace");
  if (nomFichier == nullptr || mode == nullptr || modules == nullptr) {
    Trace::ecrire(TRACE_SYSTEME, "Pas d'informations suffisantes dans le fichier d'initialisation.");
  } else {
    Trace::ecrire(TRACE_SYSTEME, "fichier = %s, mode = %s, modules = %s", nomFichier, mode, modules);
    activerModules(nomFichier, mode, modules);
  }
  Trace::ecrire(TRACE_SYSTEME, "}");
}

}  // namespace noxlux
