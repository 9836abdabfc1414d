#include "basics/trace.h"

#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstring>
#include <ctime>
#include <string>
#include <string_view>

#include "basics/fichier_ini.h"

namespace noxlux {

std::FILE* Trace::fichier = nullptr;
int Trace::indentation = 0;
std::array<unsigned char, TRACE_NB_MODULES> Trace::niveaux{};

namespace {

// Depth beyond which level 1 writes no start line; end lines are one deeper.
constexpr int PROFONDEUR_MAX = 7;

}  // namespace

CodeRetour Trace::ouvrir(const char* nomFichier, const char* mode) {
  exiger(fichier == nullptr, "fichier == __null");
  if (nomFichier == nullptr || *nomFichier == '\0' || mode == nullptr) {
    return NOX_CR_PARAMETRE_ENTREE;
  }
  const std::string_view demande = mode;
  const bool ecrasement = demande == "w" || demande == "wb";
  if (!ecrasement && demande != "a" && demande != "ab") {
    return NOX_CR_PARAMETRE_ENTREE;
  }
  fichier = std::fopen(nomFichier, ecrasement ? "we" : "ae");
  if (fichier == nullptr) {
    return NOX_CR_FICHIER_TRACE;
  }
  std::fputs("### DEBUT TRACE ###", fichier);
  finLigne();
  return NOX_CR_OK;
}

void Trace::fermer() {
  std::fputs("### FIN TRACE ###\n\n", fichier);
  std::fclose(fichier);
  fichier = nullptr;
}

CodeRetour Trace::activer(const char* nomFichier, const char* mode, unsigned short module,
                          unsigned char niveau) {
  exiger(module < TRACE_NB_MODULES, "module < TRACE_NB_MODULES");
  niveaux[module] = niveau;
  if (niveau != 0) {
    if (fichier != nullptr) {
      return NOX_CR_OK;
    }
    const CodeRetour cr = ouvrir(nomFichier, mode);
    if (cr != NOX_CR_OK) {
      niveaux[module] = 0;
    }
    return cr;
  }
  if (fichier != nullptr &&
      std::all_of(niveaux.begin(), niveaux.end(), [](unsigned char n) { return n == 0; })) {
    fermer();
  }
  return NOX_CR_OK;
}

void Trace::debutLigne() {
  exiger(fichier != nullptr, "fichier != __null");
  for (int i = 0; i < indentation; ++i) {
    std::fputs("  ", fichier);
  }
}

void Trace::finLigne() {
  std::fputc('\n', fichier);
  std::fflush(fichier);
}

void Trace::debutFonction() {
  debutLigne();
  std::fputs("{ ", fichier);
  ++indentation;
}

void Trace::finFonction() {
  exiger(indentation > 0, "indentation > 0");
  finLigne();
  --indentation;
  debutLigne();
  std::fputc('}', fichier);
  finLigne();
}

void Trace::ecrireDebutService(const char* format, ...) {
  const std::time_t maintenant = std::time(nullptr);
  char heure[32] = "";
  std::tm local{};
  if (localtime_r(&maintenant, &local) != nullptr) {
    std::strftime(heure, sizeof heure, "%a %b %e %H:%M:%S %Y ", &local);
  }
  std::fprintf(fichier, "\n%s[%ld]\n", heure, static_cast<long>(std::clock()));
  std::va_list arguments;
  va_start(arguments, format);
  std::vfprintf(fichier, format, arguments);
  va_end(arguments);
  finLigne();
}

void Trace::ecrireDebut(unsigned short module, const char* format, ...) {
  if (niveaux[module] == 1 && indentation > PROFONDEUR_MAX) {
    ++indentation;
    return;
  }
  debutFonction();
  std::va_list arguments;
  va_start(arguments, format);
  std::vfprintf(fichier, format, arguments);
  va_end(arguments);
  finLigne();
}

void Trace::ecrireFin(unsigned short module, const char* format, ...) {
  if (niveaux[module] == 1 && indentation > PROFONDEUR_MAX + 1) {
    --indentation;
    return;
  }
  debutLigne();
  std::va_list arguments;
  va_start(arguments, format);
  std::vfprintf(fichier, format, arguments);
  va_end(arguments);
  finFonction();
}

void Trace::ecrireDebutFin(unsigned short module, const char* format, ...) {
  if (niveaux[module] == 1 && indentation > PROFONDEUR_MAX) {
    return;
  }
  debutFonction();
  std::va_list arguments;
  va_start(arguments, format);
  std::vfprintf(fichier, format, arguments);
  va_end(arguments);
  finFonction();
}

const char* Trace::prefixeErreur(const char* texte) {
  return std::string_view(texte).starts_with("ERREUR") ? "" : "ERREUR : ";
}

void Trace::ecrireLigne(const char* prefixe, const char* format, ...) {
  debutLigne();
  std::fputs(prefixe, fichier);
  std::va_list arguments;
  va_start(arguments, format);
  std::vfprintf(fichier, format, arguments);
  va_end(arguments);
  finLigne();
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
  static bool dejaVu = false;
  if (dejaVu) {
    return;
  }
  dejaVu = true;
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
