// Entry points on the reference as a whole: its versions, and the saving of its changes.
#include <cstring>
#include <string_view>
#include <utility>

#include "interapp/reponse.h"
#include "nox_commun.h"

using namespace noxlux;

namespace {

constexpr std::uint16_t GROUPE_VERSIONS = 3600;
constexpr std::size_t LONGUEUR_MAX_COMMENTAIRE = 200;

struct Versions {
  Code referentiel;
  Code baseCCAM;
  Date modification;
  Code variante;
  Texte commentaire;
  Nombre revision;
  Code logiciel{std::string_view(VERSION_LOGICIELLE)};
};

CodeRetour lireVersions(const LectureDonnees& lecture, Versions& versions) {
  CodeRetour cr = lecture.lireVersionReferentiel(versions.referentiel);
  const auto puis = [&cr](CodeRetour suivant) { cr = cr == NOX_CR_OK ? suivant : cr; };
  puis(lecture.lireVersionBaseCCAM(versions.baseCCAM));
  puis(lecture.lireDateModification(versions.modification));
  puis(lecture.lireVariante(versions.variante));
  puis(lecture.lireCommentaireReferentiel(versions.commentaire));
  puis(lecture.lireNumeroRevisionReferentiel(versions.revision));
  return cr;
}

ZoneSortie ecrireVersions(CodeRetour& cr, const Versions& versions) {
  return ecrireReponse(cr, [&](auto& reponse) {
    reponse.groupe(GROUPE_VERSIONS);
    reponse.champ(versions.referentiel);
    reponse.champ(versions.baseCCAM);
    reponse.champ(versions.modification);
    reponse.champ(versions.variante);
    reponse.champ(versions.commentaire);
    reponse.champ(versions.revision);
    reponse.champ(versions.logiciel);
  });
}

CodeRetour verifierCommentaire(const char* commentaire) {
  if (commentaire != nullptr && std::strlen(commentaire) > LONGUEUR_MAX_COMMENTAIRE) {
    Trace::erreur(TRACE_SAUVEGARDE, "La taille du commentaire est superieure à 200 caractères.");
    return NOX_CR_PARAMETRE_ENTREE;
  }
  return NOX_CR_OK;
}

// What the header told before a save: put back unless the save succeeds, so that memory and file go on
// telling the same.
class EnteteAvantSauvegarde {
 public:
  EnteteAvantSauvegarde() : entete_(bibliotheque.referentiel->entete) {}
  ~EnteteAvantSauvegarde() {
    if (!sauvegardee_) {
      std::swap(bibliotheque.referentiel->entete, entete_);
    }
  }
  EnteteAvantSauvegarde(const EnteteAvantSauvegarde&) = delete;
  EnteteAvantSauvegarde& operator=(const EnteteAvantSauvegarde&) = delete;
  void oublier() { sauvegardee_ = true; }

 private:
  EnteteReferentiel entete_;
  bool sauvegardee_ = false;
};

// Saves under the next revision number, and a new comment unless it is empty.
CodeRetour sauvegarder(ModificationDonnees& modification, const char* commentaire) {
  EnteteAvantSauvegarde avant;
  CodeRetour cr = NOX_CR_OK;
  if (*commentaire != '\0') {
    cr = modification.modifierCommentaireReferentiel(Texte(std::string_view(commentaire)));
  }
  Nombre revision;
  if (cr == NOX_CR_OK) {
    cr = modification.lireNumeroRevisionReferentiel(revision);
  }
  if (cr == NOX_CR_OK) {
    cr = modification.modifierNumeroRevisionReferentiel(Nombre(revision.lireValeur() + 1));
  }
  if (cr == NOX_CR_OK) {
    cr = bibliotheque.referentiel->sauvegarderModifications();
  }
  if (cr == NOX_CR_OK) {
    avant.oublier();
    bibliotheque.modification = false;
  }
  return cr;
}

}  // namespace

unsigned short NOX_LireVersion(void** zoneOut, unsigned int* tailleZoneOut) {
  Trace::debutService("NOX_LireVersion");
  const SortieAppelant sortie(zoneOut, tailleZoneOut);
  return rendreService(TRACE_SYSTEME, [&] {
    Versions versions;
    Requete requete(NatureAcces::LECTURE);
    requete.verifierSortie(sortie).lire(
        [&](LectureDonnees& lecture) { return lireVersions(lecture, versions); });
    CodeRetour cr = requete.code();
    ZoneSortie reponse = ecrireVersions(cr, versions);
    return cr == NOX_CR_OK ? sortie.remettre(reponse) : cr;
  });
}

unsigned short NOX_SauvegarderReferentiel(const char* commentaire) {
  Trace::debutService("NOX_SauvegarderReferentiel : commentaire = %s", affichable(commentaire));
  bool rienASauver = false;
  const CodeRetour cr = proteger([&] {
    Requete requete(NatureAcces::ECRITURE);
    requete.suivre([&] { return verifierCommentaire(commentaire); })
        .ecrire([&](ModificationDonnees& modification) -> CodeRetour {
          const char* texte = commentaire == nullptr ? "" : commentaire;
          rienASauver = !bibliotheque.modification && *texte == '\0';
          return rienASauver ? CodeRetour{NOX_CR_OK} : sauvegarder(modification, texte);
        });
    return requete.code();
  });
  if (rienASauver) {
    Trace::ecrire(TRACE_SAUVEGARDE, "Aucune modification à sauvegarder ; cr = 0x%04X", cr);
  } else {
    Trace::ecrire(TRACE_SAUVEGARDE, "cr = 0x%04X", cr);
  }
  return cr;
}
