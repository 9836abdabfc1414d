// The text headers of the two files: one road, and what each file says on the way.
#include <cstring>

#include "basics/trace.h"
#include "referent/lecteur.h"
#include "referent/referentiel.h"
#include "types/texte.h"

namespace noxlux {

namespace {

struct Echec {
  FormatVerifie<> message;
  CodeRetour code;
};

struct ModeleEntete {
  const char* nomFichier;
  Echec debut;
  Echec crc;
  Echec separateur;
  Echec nom;
  Echec nomIncorrect;
  Echec version;
  Echec versionBase;
  Echec date;
  Echec versionMinimale;
  Echec revision;
  Echec variante;
  Echec commentaire;
  Echec fin;
};

constexpr CodeRetour CR_REF = NOX_CR_LECTURE_REFERENCE;
constexpr CodeRetour CR_MODIF = NOX_CR_LECTURE_MODIF;

constexpr ModeleEntete ENTETE_REFERENCE{
    NOM_FICHIER_REFERENCE,
    {"ERREUR de positionnement en debut de fichier", CR_REF},
    {"ERREUR: probleme lors de la lecture du CRC du fichier", CR_REF},
    {"ERREUR: probleme lors de la lecture du separateur", CR_REF},
    {"ERREUR: probleme lors de la lecture du nom du fichier", CR_REF},
    {"ERREUR: nom de fichier incorrect", CR_REF},
    {"ERREUR: probleme lors de la lecture du numero de version du referentiel", CR_REF},
    {"ERREUR: probleme lors de la lecture du numéro de version de la base CCAM", CR_REF},
    {"ERREUR: probleme lors de la lecture de la date", CR_REF},
    {"ERREUR: probleme lors de la lecture de la version minimale de la partie logicielle", CR_REF},
    {"ERREUR: probleme lors de la lecture du numero de revision", CR_REF},
    {"ERREUR: probleme lors de la lecture de la variante", CR_REF},
    {"ERREUR: probleme lors de la lecture du commentaire", CR_REF},
    {"ERREUR de positionnement en fin d'entete", CR_REF}};

constexpr ModeleEntete ENTETE_MODIFICATION{
    NOM_FICHIER_MODIFICATION,
    {"ERREUR : probleme de positionnement en debut de fichier", CR_MODIF},
    {"ERREUR : probleme de lecture du CRC", CR_MODIF},
    {"ERREUR : probleme lors de la lecture du separateur", CR_REF},
    {"ERREUR : probleme de lecture du nom de fichier", CR_MODIF},
    {"ERREUR : nom de fichier incorrect", CR_MODIF},
    {"ERREUR : probleme lors de la lecture du numero de version du referentiel", CR_MODIF},
    {"ERREUR : probleme lors de la lecture du numéro de version de la base CCAM", CR_MODIF},
    {"ERREUR : probleme lors de la lecture de la date de derniere modification", CR_MODIF},
    {"ERREUR : probleme lors de la lecture de la version minimale de la partie logicielle", CR_MODIF},
    {"ERREUR : probleme lors de la lecture du numero de revision", CR_MODIF},
    {"ERREUR: probleme lors de la lecture de la variante", CR_REF},
    {"ERREUR : probleme lors de la lecture du commentaire", CR_MODIF},
    {"ERREUR : probleme de positionnement en fin de fichier", CR_MODIF}};

// The codes that only the reference must fill; only their first 4 characters are checked.
constexpr Echec VERSION_INVALIDE{"ERREUR: numero de version du referentiel n est pas un code valide", CR_REF};
constexpr Echec BASE_INVALIDE{"ERREUR: numero de version de la base CCAM n est pas un code valide", CR_REF};
constexpr Echec MINIMUM_INVALIDE{"ERREUR: numero de version minimum logicielle n est pas un code valide",
                                 CR_REF};
constexpr Echec VARIANTE_INVALIDE{"ERREUR: numero de la variante n est pas un code valide", CR_REF};

constexpr Echec AUTRE_VERSION{
    "ERREUR : numero de version du referentiel, lu dans le fichier de modifications, different de celui du "
    "referentiel",
    NOX_CR_VERSION_MODIF};

// A header being read, each step only as long as all went well before it.
class LectureEntete {
 public:
  LectureEntete(Lecteur& lecteur, const ModeleEntete& modele) : lecteur_(lecteur), modele_(modele) {}

  CodeRetour code() const { return cr_; }
  bool echouer(const Echec& echec) {
    Trace::erreur(TRACE_CHARGEMENT, echec.message);
    cr_ = echec.code;
    return false;
  }
  bool exigerLecture(CodeRetour cr, const Echec& echec) {
    if (cr == NOX_CR_OK) {
      return true;
    }
    echouer(echec);
    if (cr == NOX_CR_MEMOIRE) {
      cr_ = cr;
    }
    return false;
  }

  bool lireDebut() {
    char crc[4];
    if (!exigerLecture(lecteur_.positionner(0), modele_.debut) ||
        !exigerLecture(lecteur_.lireChaineFixe(crc, sizeof crc), modele_.crc)) {
      return false;
    }
    Trace::ecrire(TRACE_CHARGEMENT, "CRC = %.4s", crc);
    return lireSeparateur() && lireNom();
  }
  template <std::size_t N>
  bool lireTexte(CodeFixe<N>& texte, const Echec& echec) {
    return exigerLecture(lecteur_.lireChaineFixe(texte.caracteres.data(), N), echec);
  }
  template <std::size_t N>
  bool exigerCode(const CodeFixe<N>& texte, const Echec& echec) {
    return Code::estValide(texte.entier().substr(0, 4)) || echouer(echec);
  }
  bool lireSeparateur() {
    char separateur = 0;
    return exigerLecture(lecteur_.lireChaineFixe(&separateur, 1), modele_.separateur);
  }
  bool lireVersion(EnteteReferentiel& entete) {
    if (!lireTexte(entete.version, modele_.version)) {
      return false;
    }
    Trace::ecrire(TRACE_CHARGEMENT, "Numero de version du referentiel : %.4s",
                  entete.version.entier().data());
    return true;
  }
  // The changes of another reference do not apply to this one.
  bool exigerVersion(const EnteteReferentiel& entete, const EnteteReferentiel& charge) {
    if (entete.version == charge.version) {
      return true;
    }
    echouer(AUTRE_VERSION);
    Trace::erreur(TRACE_CHARGEMENT, "Numero de version lu dans le fichier de modifications : %.4s",
                  entete.version.entier().data());
    Trace::erreur(TRACE_CHARGEMENT, "Numero de version du Referentiel : %.4s",
                  charge.version.entier().data());
    return false;
  }
  bool lireVersionBase(EnteteReferentiel& entete) {
    if (!lireSeparateur() || !lireTexte(entete.versionBaseCCAM, modele_.versionBase)) {
      return false;
    }
    Trace::ecrire(TRACE_CHARGEMENT, "Numero de version de la base CCAM : %.5s",
                  entete.versionBaseCCAM.entier().data());
    return true;
  }
  bool lireDate(EnteteReferentiel& entete) {
    if (!lireSeparateur() || !exigerLecture(lecteur_.lireDateEntete(entete.dateModification), modele_.date)) {
      return false;
    }
    Trace::ecrire(TRACE_CHARGEMENT, "Date : %s", Date(entete.dateModification).lireValeur().c_str());
    return true;
  }
  bool lireVersionMinimale(EnteteReferentiel& entete) {
    if (!lireSeparateur() || !lireTexte(entete.versionMinLogicielle, modele_.versionMinimale)) {
      return false;
    }
    Trace::ecrire(TRACE_CHARGEMENT, "Numero de version minimum : %.4s",
                  entete.versionMinLogicielle.entier().data());
    return true;
  }
  bool lireRevision(EnteteReferentiel& entete) {
    CodeFixe<5> texte;
    if (!lireSeparateur() || !lireTexte(texte, modele_.revision)) {
      return false;
    }
    Trace::ecrire(TRACE_CHARGEMENT, "Numero de revision : %.5s", texte.entier().data());
    entete.numeroRevision = static_cast<std::uint16_t>(lireNombreDecimal(texte.entier()));
    return true;
  }
  bool lireVariante(EnteteReferentiel& entete) {
    if (!lireSeparateur() || !lireTexte(entete.variante, modele_.variante)) {
      return false;
    }
    Trace::ecrire(TRACE_CHARGEMENT, "Variante du referentiel : %.10s", entete.variante.entier().data());
    return true;
  }
  // The comment ends with a carriage return; two more bytes end the header.
  bool lireFin(EnteteReferentiel& entete) {
    if (!lireSeparateur() ||
        !exigerLecture(lecteur_.lireChaineVariable(entete.commentaire, '\r'), modele_.commentaire)) {
      return false;
    }
    Trace::ecrire(TRACE_CHARGEMENT, "Commentaire : %s", entete.commentaire.c_str());
    return exigerLecture(lecteur_.positionner(lecteur_.positionCourante() + 2), modele_.fin);
  }

 private:
  // The name is one word: a white space must follow, which is its separator.
  bool lireNom() {
    CodeFixe<12> nom;
    if (!lireTexte(nom, modele_.nom)) {
      return false;
    }
    Trace::ecrire(TRACE_CHARGEMENT, "Nom du fichier : %.12s", nom.entier().data());
    char suite = 0;
    if (!exigerLecture(lecteur_.lireChaineFixe(&suite, 1), modele_.separateur)) {
      return false;
    }
    const bool blanc = suite != '\0' && std::strchr(" \t\n\v\f\r", suite) != nullptr;
    return (blanc && nom.entier() == modele_.nomFichier) || echouer(modele_.nomIncorrect);
  }

  Lecteur& lecteur_;
  const ModeleEntete& modele_;
  CodeRetour cr_ = NOX_CR_OK;
};

}  // namespace

CodeRetour Lecteur::lireEnteteRef() {
  LectureEntete lecture(*this, ENTETE_REFERENCE);
  EnteteReferentiel lu;
  if (lecture.lireDebut() && lecture.lireVersion(lu) && lecture.exigerCode(lu.version, VERSION_INVALIDE) &&
      lecture.lireVersionBase(lu) && lecture.exigerCode(lu.versionBaseCCAM, BASE_INVALIDE) &&
      lecture.lireDate(lu) && lecture.lireVersionMinimale(lu) &&
      lecture.exigerCode(lu.versionMinLogicielle, MINIMUM_INVALIDE) && lecture.lireRevision(lu) &&
      lecture.lireVariante(lu) && lecture.exigerCode(lu.variante, VARIANTE_INVALIDE) && lecture.lireFin(lu)) {
    lu.dateModification = referentiel_->entete.dateModification;
    referentiel_->entete = std::move(lu);
  }
  Trace::ecrire(TRACE_CHARGEMENT, "Code retour Lecteur::lireEnteteRef : 0x%04X", lecture.code());
  return lecture.code();
}

CodeRetour Lecteur::lireEnteteModif() {
  LectureEntete lecture(*this, ENTETE_MODIFICATION);
  EnteteReferentiel& entete = referentiel_->entete;
  EnteteReferentiel lu;
  if (lecture.lireDebut() && lecture.lireVersion(lu) && lecture.exigerVersion(lu, entete) &&
      lecture.lireVersionBase(lu) && lecture.lireDate(lu) && lecture.lireVersionMinimale(lu) &&
      lecture.lireRevision(lu) && lecture.lireVariante(lu) && lecture.lireFin(lu)) {
    entete.dateModification = lu.dateModification;
    entete.numeroRevision = lu.numeroRevision;
    entete.variante = lu.variante;
    entete.commentaire = std::move(lu.commentaire);
  }
  Trace::ecrire(TRACE_CHARGEMENT, "Code retour Lecteur::lireEnteteModif : 0x%04X", lecture.code());
  return lecture.code();
}

}  // namespace noxlux
