// Start-up and shutdown of the library.
#include <string>
#include <utility>

#include "basics/fichier_ini.h"
#include "nox_commun.h"

using namespace noxlux;

namespace {

// A reference being loaded. Unless it is kept, the library is unloaded again when this goes, however far the
// load went.
class Chargement {
 public:
  Chargement() = default;
  ~Chargement() {
    if (!garde_) {
      bibliotheque.vider();
    }
  }
  Chargement(const Chargement&) = delete;
  Chargement& operator=(const Chargement&) = delete;

  CodeRetour executer(const FichierIni& fichierIni);

 private:
  static CodeRetour chargerReference(const FichierIni& fichierIni);
  static CodeRetour suivreVersions(LectureDonnees& lecture);

  bool garde_ = false;
};

CodeRetour Chargement::chargerReference(const FichierIni& fichierIni) {
  const char* repertoire = fichierIni.lireValeur("NOX", "repertoiretable");
  if (repertoire == nullptr) {
    Trace::erreur(TRACE_CHARGEMENT, "ERREUR : la cle repertoiretable manque a la section NOX");
    return NOX_CR_CONFIGURATION;
  }
  const char* repertoireModification = fichierIni.lireValeur("NOX", "repertoireModification");
  if (repertoireModification == nullptr) {
    repertoireModification = repertoire;
  }
  try {
    bibliotheque.referentiel = std::make_unique<Referentiel>(&bibliotheque.acces);
  } catch (const std::bad_alloc&) {
    Trace::erreur(TRACE_CHARGEMENT, "Construction du référentiel impossible.");
    return NOX_CR_MEMOIRE;
  }
  bibliotheque.modification = false;
  return bibliotheque.referentiel->chargerReferentiel(repertoire, repertoireModification, VERSION_LOGICIELLE,
                                                      VERSION_REFERENCE_ATTENDUE);
}

// Tells the host's installation which versions run: the reference in file 21, the software in file 20.
CodeRetour Chargement::suivreVersions(LectureDonnees& lecture) {
  std::string repertoire;
  CodeRetour cr = SuiviDeParc::lireRepertoire(repertoire);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  Code variante;
  Code version;
  lecture.lireVariante(variante);
  lecture.lireVersionReferentiel(version);
  const std::string reference =
      std::string(variante.vue().substr(0, 1)) + std::string(version.vue().substr(0, 4));
  cr = SuiviDeParc::sauvegarderVersion(repertoire.c_str(), 21, reference.c_str());
  if (cr == NOX_CR_OK) {
    cr = SuiviDeParc::sauvegarderVersion(repertoire.c_str(), 20, VERSION_LOGICIELLE);
  }
  return cr;
}

CodeRetour Chargement::executer(const FichierIni& fichierIni) {
  CodeRetour cr = chargerReference(fichierIni);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  LectureDonnees lecture(bibliotheque.referentiel.get());
  cr = bibliotheque.interface.initialiser(lecture);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  const CodeRetour crSuivi = suivreVersions(lecture);
  garde_ = true;
  return crSuivi;
}

// Whether a reference is loaded, also while others read it.
bool estDejaChargee() {
  const Acces acces(bibliotheque.acces, NatureAcces::LECTURE);
  return acces.estTenu() && bibliotheque.estChargee();
}

}  // namespace

unsigned short NOX_InitLIB(void) {
  Trace::debutService("NOX_InitLIB");
  return rendreService(TRACE_CHARGEMENT, [] {
    FichierIni fichierIni;
    const Acces acces(bibliotheque.acces, NatureAcces::ECRITURE);
    if (acces.estTenu() ? bibliotheque.estChargee() : estDejaChargee()) {
      Trace::erreur(TRACE_CHARGEMENT, "Référentiel déjà chargé.");
      initialiserTrace(fichierIni);
      return CodeRetour{NOX_CR_DEJA_CHARGE};
    }
    if (!acces.estTenu()) {
      return acces.code();
    }
    const CodeRetour crIni = fichierIni.parserOrvanIni();
    initialiserTrace(fichierIni);
    // Whatever else is wrong with the file, its valid lines count.
    if (crIni == NOX_CR_INI_OUVERTURE) {
      Trace::erreur(TRACE_CHARGEMENT, "ERREUR : le fichier orvan.ini ne s'ouvre pas");
      return CodeRetour{NOX_CR_CONFIGURATION};
    }
    return Chargement().executer(fichierIni);
  });
}

unsigned short NOX_TermLIB(void) {
  Trace::debutService("NOX_TermLIB");
  return rendreService(TRACE_CHARGEMENT, [] {
    Requete requete(NatureAcces::ECRITURE);
    requete.exigerAcces().suivre([] {
      bibliotheque.vider();
      return CodeRetour{NOX_CR_OK};
    });
    return requete.code();
  });
}
