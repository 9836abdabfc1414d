#include "noxlux/erreurs.h"

#include <array>
#include <cstdio>

#include "noxlux/noxlux.h"

namespace noxlux::commande {

using Json = nlohmann::ordered_json;

namespace {

struct Signification {
  unsigned short code;
  const char* phrase;
};

constexpr std::array SIGNIFICATIONS = {
    Signification{NOX_CR_OK, "tout va bien"},
    Signification{NOX_CR_IDENTIFIANT_INCONNU, "identifiant de fonction inconnu"},
    Signification{NOX_CR_RECHERCHE_VIDE, "aucun acte ne répond à la recherche"},
    Signification{NOX_CR_CODE_INCONNU, "code absent de sa table de référence"},
    Signification{NOX_CR_PAS_D_HISTORIQUE, "rien de valable à la date de référence"},
    Signification{NOX_CR_DATE_EFFET, "date d'effet hors des bornes permises"},
    Signification{NOX_CR_NON_MODIFIE, "donnée non modifiée : rien à annuler"},
    Signification{NOX_CR_CAISSE_NON_DOM, "la caisse n'est pas celle d'un DOM (971 à 974)"},
    Signification{NOX_CR_REGROUPEMENT_INCONNU, "code regroupement absent du référentiel"},
    Signification{NOX_CR_REGROUPEMENT_EXISTANT, "code regroupement déjà présent"},
    Signification{NOX_CR_OBLIGATION_EXISTANTE, "code déjà présent parmi les natures de prestation"},
    Signification{NOX_CR_REGLE_IDENTIFIANT, "identifiant de fonction inconnu"},
    Signification{NOX_CR_REGLE_CODE, "code absent de sa table de référence"},
    Signification{NOX_CR_REGLE_HISTORIQUE, "rien de valable à la date de la ligne"},
    Signification{NOX_CR_DATE_DEPLACEMENT, "déplacement à une autre date que sa prestation"},
    Signification{NOX_CR_MODIFICATEURS, "trou dans la liste des modificateurs"},
    Signification{NOX_CR_DENTS, "numéro de dent en double, ou trou dans la liste des dents"},
    Signification{NOX_CR_NATURE_ASSURANCE, "nature d'assurance absente ou donnée plusieurs fois"},
    Signification{NOX_CR_REGLE_NEGATIVE_1, "réponse négative d'un contrôle"},
    Signification{NOX_CR_REGLE_NEGATIVE_2, "réponse négative d'un contrôle"},
    Signification{NOX_CR_REGLE_REPONSE_1, "la règle répond avec une réserve"},
    Signification{NOX_CR_REGLE_NEGATIVE_3, "réponse négative d'un contrôle"},
    Signification{NOX_CR_BASE_AMO_ABSENTE, "ligne CCAM sans base théorique AMO"},
    Signification{NOX_CR_REGLE_REPONSE_2, "la règle répond avec une réserve"},
    Signification{NOX_CR_CONTROLE_NIVEAU_1, "erreurs, toutes outrepassables"},
    Signification{NOX_CR_CONTROLE_NIVEAU_2, "erreurs dont une au moins n'est pas outrepassable"},
    Signification{NOX_CR_MODULE_TRACE, "numéro de module de trace supérieur à 9"},
    Signification{NOX_CR_FICHIER_TRACE, "fichier de trace impossible à ouvrir"},
    Signification{NOX_CR_DEJA_CHARGE, "référentiel déjà chargé"},
    Signification{NOX_CR_OUVERTURE_REFERENCE, "tablebin.nox impossible à ouvrir"},
    Signification{NOX_CR_OUVERTURE_MODIF, "modifref.nox impossible à ouvrir"},
    Signification{NOX_CR_VERSION_REFERENCE, "version du référentiel ou du logiciel refusée"},
    Signification{NOX_CR_VERSION_MODIF, "modifref.nox est d'une autre version que le référentiel"},
    Signification{NOX_CR_CRC_REFERENCE, "tablebin.nox est abîmé (CRC)"},
    Signification{NOX_CR_CRC_MODIF, "modifref.nox est abîmé (CRC)"},
    Signification{NOX_CR_LECTURE_REFERENCE, "fichier de référence illisible ou mal formé"},
    Signification{NOX_CR_LECTURE_MODIF, "entête de modifref.nox illisible"},
    Signification{NOX_CR_TABLES_REFERENCE, "il manque des tables dans tablebin.nox"},
    Signification{NOX_CR_TABLES_MODIF, "il manque des tables dans modifref.nox"},
    Signification{NOX_CR_CONFIGURATION, "orvan.ini absent, ou sans la clé repertoiretable"},
    Signification{NOX_CR_ECRITURE_MODIF, "écriture de modifref.nox impossible"},
    Signification{NOX_CR_NON_CHARGE, "référentiel non chargé"},
    Signification{NOX_CR_OCCUPE, "référentiel occupé"},
    Signification{NOX_CR_MEMOIRE, "mémoire insuffisante"},
    Signification{NOX_CR_DONNEE_ABSENTE, "donnée attendue absente du référentiel"},
    Signification{NOX_CR_INCOHERENCE, "incohérence interne, ou fonction non prévue"},
    Signification{NOX_CR_TROP_DE_GROUPES, "trop de lignes (200 au plus)"},
    Signification{NOX_CR_SUIVI_REPERTOIRE, "répertoire de suivi absent d'orvan.ini"},
    Signification{NOX_CR_SUIVI_ECRITURE, "fichier de suivi de version impossible à écrire"},
    Signification{NOX_CR_PARAMETRE_SORTIE, "paramètre de sortie nul"},
    Signification{NOX_CR_MEMOIRE_ZONE, "mémoire insuffisante pour une zone"},
    Signification{NOX_CR_PARAMETRE_ENTREE, "paramètre d'entrée refusé"},
    Signification{NOX_CR_ZONE_ENTREE, "zone d'entrée absente"},
    Signification{NOX_CR_ZONE_PLEINE, "zone pleine"},
    Signification{NOX_CR_FIN_ZONE, "fin de la zone ou du groupe atteinte"},
    Signification{NOX_CR_GROUPE_ABSENT, "groupe absent de la zone"},
    Signification{NOX_CR_GROUPE_COURANT, "pas de groupe courant"},
    Signification{NOX_CR_ZONE_MAL_FORMEE, "zone mal formée"},
};

// Families of codes that carry a position.
struct Famille {
  unsigned base, fin;
  const char* debut;
  const char* suite;
};

constexpr std::array FAMILLES = {
    Famille{0x9000, 0xA000, "contenu du champ n° ", " de la zone d'entrée refusé"},
    Famille{0xA000, 0xA800, "groupe n° ", " de la zone d'entrée inattendu, ou données en trop"},
    Famille{0xA800, 0xB000, "trop ou trop peu de champs dans le groupe n° ", " de la zone d'entrée"},
    Famille{0xB000, 0xD000, "le groupe ", " manque, ou se répète trop"},
    Famille{0xE000, 0xE100, "numéros de prestation incohérents à la ligne ", ""},
};

}  // namespace

std::string hexadecimal(unsigned short code) {
  char texte[8];
  std::snprintf(texte, sizeof texte, "0x%04X", code);
  return texte;
}

std::string signification(unsigned short code) {
  for (const Signification& s : SIGNIFICATIONS) {
    if (s.code == code) {
      return s.phrase;
    }
  }
  if (code == NOX_CR_GROUPE_INATTENDU) {
    return "zone d'entrée donnée à une fonction qui n'en attend pas";
  }
  for (const Famille& famille : FAMILLES) {
    if (code >= famille.base && code < famille.fin) {
      // The last code of a family stands for all the places that follow.
      const char* auDela = code + 1U == famille.fin ? " ou au-delà" : "";
      return famille.debut + std::to_string(code - famille.base) + auDela + famille.suite;
    }
  }
  return "code inconnu";
}

namespace {

std::string avecCause(unsigned short code, const Json& cause) {
  return signification(code) + (cause.is_object() ? " : " + cause["phrase"].get<std::string>() : "");
}

}  // namespace

ErreurBibliotheque::ErreurBibliotheque(const std::string& fonction, unsigned short code, Json cause)
    : std::runtime_error(fonction + " a répondu " + hexadecimal(code) + " : " + avecCause(code, cause)),
      code_(code),
      cause_(std::move(cause)) {}

Json ErreurBibliotheque::enJson() const {
  Json json = {{"code", hexadecimal(code_)}, {"erreur", avecCause(code_, cause_)}};
  if (cause_.is_object()) {
    json["cause"] = cause_;
  }
  return json;
}

}  // namespace noxlux::commande
