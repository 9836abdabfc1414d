// One road through both headers, and what each file says on the way.
#include "referent/entetes.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

#include "basics/trace.h"
#include "fichier/ecrivain.h"
#include "fichier/lecteur.h"
#include "types/texte.h"

namespace noxlux {

namespace {

struct Echec {
  FormatVerifie<> message;
  CodeRetour code;
};

// The fields of fixed width, in file order.
enum Rang : std::size_t { CRC, NOM, VERSION, BASE, DATE, MINIMUM, REVISION, VARIANTE, NOMBRE };

struct ChampEntete {
  std::string EnteteTexte::*membre;
  std::size_t largeur;
  FormatVerifie<const char*> trace;
};
constexpr ChampEntete CHAMPS[NOMBRE] = {
    {&EnteteTexte::crc, 4, "CRC = %s"},
    {&EnteteTexte::nom, 12, "Nom du fichier : %s"},
    {&EnteteTexte::version, 4, "Numero de version du referentiel : %s"},
    {&EnteteTexte::versionBaseCCAM, 5, "Numero de version de la base CCAM : %s"},
    {&EnteteTexte::date, 8, "Date : %s"},
    {&EnteteTexte::versionMinimum, 4, "Numero de version minimum : %s"},
    {&EnteteTexte::revision, 5, "Numero de revision : %s"},
    {&EnteteTexte::variante, 10, "Variante du referentiel : %s"}};

// What each file says of the same faults.
struct ModeleEntete {
  const char* nomFichier;
  Echec debut;
  Echec lecture[NOMBRE];
  Echec separateur;
  Echec nomIncorrect;
  Echec commentaire;
  Echec fin;
};

constexpr CodeRetour CR_REF = NOX_CR_LECTURE_REFERENCE;
constexpr CodeRetour CR_MODIF = NOX_CR_LECTURE_MODIF;

constexpr ModeleEntete ENTETE_REFERENCE{
    NOM_FICHIER_REFERENCE,
    {"ERREUR de positionnement en debut de fichier", CR_REF},
    {{"ERREUR: probleme lors de la lecture du CRC du fichier", CR_REF},
     {"ERREUR: probleme lors de la lecture du nom du fichier", CR_REF},
     {"ERREUR: probleme lors de la lecture du numero de version du referentiel", CR_REF},
     {"ERREUR: probleme lors de la lecture du numéro de version de la base CCAM", CR_REF},
     {"ERREUR: probleme lors de la lecture de la date", CR_REF},
     {"ERREUR: probleme lors de la lecture de la version minimale de la partie logicielle", CR_REF},
     {"ERREUR: probleme lors de la lecture du numero de revision", CR_REF},
     {"ERREUR: probleme lors de la lecture de la variante", CR_REF}},
    {"ERREUR: probleme lors de la lecture du separateur", CR_REF},
    {"ERREUR: nom de fichier incorrect", CR_REF},
    {"ERREUR: probleme lors de la lecture du commentaire", CR_REF},
    {"ERREUR de positionnement en fin d'entete", CR_REF}};

constexpr ModeleEntete ENTETE_MODIFICATION{
    NOM_FICHIER_MODIFICATION,
    {"ERREUR : probleme de positionnement en debut de fichier", CR_MODIF},
    {{"ERREUR : probleme de lecture du CRC", CR_MODIF},
     {"ERREUR : probleme de lecture du nom de fichier", CR_MODIF},
     {"ERREUR : probleme lors de la lecture du numero de version du referentiel", CR_MODIF},
     {"ERREUR : probleme lors de la lecture du numéro de version de la base CCAM", CR_MODIF},
     {"ERREUR : probleme lors de la lecture de la date de derniere modification", CR_MODIF},
     {"ERREUR : probleme lors de la lecture de la version minimale de la partie logicielle", CR_MODIF},
     {"ERREUR : probleme lors de la lecture du numero de revision", CR_MODIF},
     {"ERREUR: probleme lors de la lecture de la variante", CR_REF}},
    {"ERREUR : probleme lors de la lecture du separateur", CR_REF},
    {"ERREUR : nom de fichier incorrect", CR_MODIF},
    {"ERREUR : probleme lors de la lecture du commentaire", CR_MODIF},
    {"ERREUR : probleme de positionnement en fin de fichier", CR_MODIF}};

// The codes that only the reference must fill; only their first 4 characters are checked.
constexpr Echec NON_CONTROLE{"", NOX_CR_OK};
constexpr Echec CODES_INVALIDES[NOMBRE] = {
    NON_CONTROLE,
    NON_CONTROLE,
    {"ERREUR: numero de version du referentiel n est pas un code valide", CR_REF},
    {"ERREUR: numero de version de la base CCAM n est pas un code valide", CR_REF},
    NON_CONTROLE,
    {"ERREUR: numero de version minimum logicielle n est pas un code valide", CR_REF},
    NON_CONTROLE,
    {"ERREUR: numero de la variante n est pas un code valide", CR_REF}};

constexpr Echec AUTRE_VERSION{
    "ERREUR : numero de version du referentiel, lu dans le fichier de modifications, different de celui du "
    "referentiel",
    NOX_CR_VERSION_MODIF};

DateBrute convertirDate(std::string_view texte) {
  return {static_cast<std::uint16_t>(lireNombreDecimal(texte.substr(0, 4))),
          static_cast<std::uint8_t>(lireNombreDecimal(texte.substr(4, 2))),
          static_cast<std::uint8_t>(lireNombreDecimal(texte.substr(6, 2)))};
}

// A header being read, each step only as long as all went well before it.
class LectureEntete {
 public:
  LectureEntete(Lecteur& lecteur, const ModeleEntete& modele) : lecteur_(lecteur), modele_(modele) {}

  CodeRetour code() const { return cr_; }
  EnteteTexte& texte() { return texte_; }

  // Reads it whole; `controler(rang)` judges each field as soon as it is read.
  template <class Controle>
  bool lire(Controle&& controler) {
    if (!exiger(lecteur_.positionner(0), modele_.debut)) {
      return false;
    }
    for (std::size_t rang = CRC; rang < NOMBRE; ++rang) {
      // The separator of the name is its last byte: a white space ends it.
      const bool separe = rang == CRC || rang == VERSION || lireSeparateur();
      if (!separe || !lireChamp(rang) || (rang == NOM && !lireSeparateur()) || !controler(rang)) {
        return false;
      }
    }
    return lireFin();
  }
  bool controlerNom() {
    const bool blanc = separateur_ != '\0' && std::strchr(" \t\n\v\f\r", separateur_) != nullptr;
    return (blanc && texte_.nom == modele_.nomFichier) || echouer(modele_.nomIncorrect);
  }
  bool controlerCode(std::size_t rang) {
    const Echec& invalide = CODES_INVALIDES[rang];
    const std::string_view texte(texte_.*(CHAMPS[rang].membre));
    return invalide.code == NOX_CR_OK || Code::estValide(texte.substr(0, 4)) || echouer(invalide);
  }
  // The changes of another reference do not apply to this one.
  bool controlerVersion(const CodeFixe<4>& attendue) {
    if (texte_.version == attendue.entier()) {
      return true;
    }
    echouer(AUTRE_VERSION);
    Trace::erreur(TRACE_CHARGEMENT, "Numero de version lu dans le fichier de modifications : %s",
                  texte_.version.c_str());
    Trace::erreur(TRACE_CHARGEMENT, "Numero de version du Referentiel : %.4s", attendue.entier().data());
    return false;
  }

 private:
  bool echouer(const Echec& echec) {
    Trace::erreur(TRACE_CHARGEMENT, echec.message);
    cr_ = echec.code;
    return false;
  }
  bool exiger(CodeRetour cr, const Echec& echec) {
    if (cr == NOX_CR_OK) {
      return true;
    }
    echouer(echec);
    if (cr == NOX_CR_MEMOIRE) {
      cr_ = cr;
    }
    return false;
  }
  bool lireSeparateur() { return exiger(lecteur_.lireChaineFixe(&separateur_, 1), modele_.separateur); }
  bool lireChamp(std::size_t rang) {
    const ChampEntete& champ = CHAMPS[rang];
    std::string& valeur = texte_.*(champ.membre);
    valeur.resize(champ.largeur);
    if (!exiger(lecteur_.lireChaineFixe(valeur.data(), champ.largeur), modele_.lecture[rang])) {
      return false;
    }
    Trace::ecrire(TRACE_CHARGEMENT, champ.trace,
                  (rang == DATE ? Date(convertirDate(valeur)).lireValeur() : valeur).c_str());
    return true;
  }
  // The comment ends with a carriage return; two more bytes end the header.
  bool lireFin() {
    if (!lireSeparateur() ||
        !exiger(lecteur_.lireChaineVariable(texte_.commentaire, '\r'), modele_.commentaire)) {
      return false;
    }
    Trace::ecrire(TRACE_CHARGEMENT, "Commentaire : %s", texte_.commentaire.c_str());
    return exiger(lecteur_.positionner(lecteur_.positionCourante() + 2), modele_.fin);
  }

  Lecteur& lecteur_;
  const ModeleEntete& modele_;
  EnteteTexte texte_;
  char separateur_ = 0;
  CodeRetour cr_ = NOX_CR_OK;
};

std::string completer(std::string_view texte, std::size_t largeur) {
  std::string complet(texte.substr(0, largeur));
  complet.resize(largeur, ' ');
  return complet;
}

}  // namespace

CodeRetour lireEnteteRef(Lecteur& lecteur, EnteteReferentiel& entete) {
  LectureEntete lecture(lecteur, ENTETE_REFERENCE);
  if (lecture.lire([&](std::size_t rang) {
        return rang == NOM ? lecture.controlerNom() : lecture.controlerCode(rang);
      })) {
    EnteteTexte& lu = lecture.texte();
    entete.version = CodeFixe<4>(lu.version);
    entete.versionBaseCCAM = CodeFixe<5>(lu.versionBaseCCAM);
    entete.versionMinLogicielle = CodeFixe<4>(lu.versionMinimum);
    entete.numeroRevision = static_cast<std::uint16_t>(lireNombreDecimal(lu.revision));
    entete.variante = CodeFixe<10>(lu.variante);
    entete.commentaire = std::move(lu.commentaire);
  }
  Trace::ecrire(TRACE_CHARGEMENT, "Code retour Lecteur::lireEnteteRef : 0x%04X", lecture.code());
  return lecture.code();
}

CodeRetour lireEnteteModif(Lecteur& lecteur, EnteteReferentiel& entete) {
  LectureEntete lecture(lecteur, ENTETE_MODIFICATION);
  if (lecture.lire([&](std::size_t rang) {
        return rang == NOM       ? lecture.controlerNom()
               : rang == VERSION ? lecture.controlerVersion(entete.version)
                                 : true;
      })) {
    EnteteTexte& lu = lecture.texte();
    entete.dateModification = convertirDate(lu.date);
    entete.numeroRevision = static_cast<std::uint16_t>(lireNombreDecimal(lu.revision));
    entete.variante = CodeFixe<10>(lu.variante);
    entete.commentaire = std::move(lu.commentaire);
  }
  Trace::ecrire(TRACE_CHARGEMENT, "Code retour Lecteur::lireEnteteModif : 0x%04X", lecture.code());
  return lecture.code();
}

CodeRetour lireEnteteTexte(Lecteur& lecteur, EnteteTexte& entete) {
  LectureEntete lecture(lecteur, ENTETE_REFERENCE);
  if (lecture.lire([](std::size_t) { return true; })) {
    entete = std::move(lecture.texte());
  }
  return lecture.code();
}

CodeRetour lireVersionEntete(Lecteur& lecteur, CodeFixe<4>& version) {
  constexpr std::uint32_t POSITION_VERSION = 18;
  const std::uint32_t retour = lecteur.positionCourante();
  CodeRetour cr = lecteur.positionner(POSITION_VERSION);
  if (cr == NOX_CR_OK) {
    cr = lecteur.lireChaineFixe(version.caracteres.data(), version.caracteres.size());
  }
  const CodeRetour crRetour = lecteur.positionner(retour);
  return cr != NOX_CR_OK ? cr : crRetour;
}

CodeRetour ecrireEntete(Ecrivain& ecrivain, std::string_view nomFichier, const EnteteReferentiel& entete,
                        const DateBrute& date, std::string_view versionMinimum) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_SAUVEGARDE, cr, "Ecrivain::ecrireEntete : Ecriture de l'entete du fichier");
  char dateTexte[24];
  std::snprintf(dateTexte, sizeof dateTexte, "%04u%02u%02u", date.annee, date.mois, date.jour);
  char revision[16];
  std::snprintf(revision, sizeof revision, "%0*lu ", 5, static_cast<unsigned long>(entete.numeroRevision));

  std::string texte = "0000 " + completer(nomFichier, 12) + ' ';
  texte.append(entete.version.entier()) += ' ';
  texte.append(entete.versionBaseCCAM.entier()) += ' ';
  texte.append(dateTexte) += ' ';
  texte += completer(versionMinimum, 4) + ' ' + revision;
  texte.append(entete.variante.entier()) += ' ';
  // A carriage return would end the comment before its time.
  std::replace_copy(entete.commentaire.begin(), entete.commentaire.end(), std::back_inserter(texte), '\r',
                    ' ');
  texte += "\r\n\x1A";
  cr = ecrivain.ecrireDebut(texte);
  return cr;
}

}  // namespace noxlux
