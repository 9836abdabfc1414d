#include "basics/systeme.h"

#include <cstdio>
#include <cstdlib>

#include "basics/fichier_ini.h"
#include "basics/fichiers.h"
#include "basics/trace.h"

namespace noxlux {

CodeRetour Systeme::allouer(void*& zone, unsigned int taille) {
  zone = std::malloc(taille);
  CodeRetour cr = NOX_CR_OK;
  if (zone == nullptr) {
    Trace::ecrire(TRACE_SYSTEME, "Systeme::allouer : ERREUR: impossible d'allouer %u octets.", taille);
    cr = NOX_CR_MEMOIRE_ZONE;
  } else {
    Trace::ecrire(TRACE_SYSTEME, "Systeme::allouer : allocation de %u octets a l'adresse 0x%p.", taille,
                  zone);
  }
  Trace::ecrire(TRACE_SYSTEME, "cr = 0x%04X.", cr);
  return cr;
}

void Systeme::liberer(void* zone) {
  if (zone != nullptr) {
    Trace::ecrire(TRACE_SYSTEME, "Systeme::liberer : liberation a l'adresse 0x%p.", zone);
    std::free(zone);
  }
}

CodeRetour Systeme::lireRepertoireSysteme(const char*& repertoire) {
  repertoire = REPERTOIRE_SYSTEME;
  Trace::ecrire(TRACE_SYSTEME, "Systeme::lireRepertoireSysteme : repertoire = %s.",
                repertoire == nullptr ? "" : repertoire);
  return NOX_CR_OK;
}

namespace {

unsigned char minuscule(char c) {
  return static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
}

}  // namespace

std::uint64_t Systeme::prefixeIdentifiant(const char* identifiant) {
  std::uint64_t prefixe = 0;
  for (std::size_t i = 0; i < sizeof prefixe; ++i) {
    prefixe = prefixe << 8U | minuscule(*identifiant);
    identifiant += *identifiant == '\0' ? 0 : 1;
  }
  return prefixe;
}

int Systeme::comparerIdentifiant(const char* gauche, const char* droite) {
  for (;; ++gauche, ++droite) {
    if (*gauche != *droite) {
      const int ecart = minuscule(*gauche) - minuscule(*droite);
      if (ecart != 0) {
        return ecart;
      }
    } else if (*gauche == '\0') {
      return 0;
    }
  }
}

CodeRetour SuiviDeParc::lireRepertoire(std::string& repertoire) {
  Trace::debut(TRACE_SYSTEME, "SuiviDeParc::lireRepertoire");
  FichierIni fichierIni;
  CodeRetour cr = NOX_CR_SUIVI_REPERTOIRE;
  if (fichierIni.parserOrvanIni() != NOX_CR_INI_OUVERTURE) {
    if (const char* valeur = fichierIni.lireValeur("COMMUN", "repertoiretravail"); valeur != nullptr) {
      repertoire = valeur;
      cr = NOX_CR_OK;
    }
  }
  Trace::fin(TRACE_SYSTEME, "cr = 0x%04X, repertoire = %s", cr, cr == NOX_CR_OK ? repertoire.c_str() : "");
  return cr;
}

CodeRetour SuiviDeParc::sauvegarderVersion(const char* repertoire, unsigned short numero,
                                           const char* version) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_SYSTEME, cr, "SuiviDeParc::sauvegarderVersion : version = %s", version);
  const std::string nom = std::string(repertoire) + '/' + std::to_string(numero) + ".adm";
  Trace::ecrire(TRACE_SYSTEME, "Le numero de version du composant est copie dans le fichier %s", nom.c_str());
  std::FILE* fichier = creerFichier(nom);
  if (fichier == nullptr) {
    cr = NOX_CR_SUIVI_ECRITURE;
    return cr;
  }
  const bool ecrit = std::fputs(version, fichier) >= 0;
  if (std::fclose(fichier) != 0 || !ecrit) {
    cr = NOX_CR_SUIVI_ECRITURE;
  }
  return cr;
}

}  // namespace noxlux
