#include "interapp/controleur_parametres.h"

#include <string_view>

#include "basics/trace.h"
#include "types/booleen.h"

namespace noxlux {

CodeRetour ControleurParametres::verifierChaine(const char* chaine, bool nonVide) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_PARAMETRES, cr, "ControleurParametres::verifierChaine");
  if (chaine == nullptr) {
    Trace::erreur(TRACE_PARAMETRES, "ERREUR: chaine = pointeur nul.");
    cr = NOX_CR_PARAMETRE_ENTREE;
  } else if (nonVide && *chaine == '\0') {
    Trace::erreur(TRACE_PARAMETRES, "ERREUR: chaine vide.");
    cr = NOX_CR_PARAMETRE_ENTREE;
  }
  return cr;
}

CodeRetour ControleurParametres::verifierDate(const char* texte, Date& date) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_PARAMETRES, cr, "ControleurParametres::verifierDate");
  if (texte == nullptr) {
    Trace::erreur(TRACE_PARAMETRES, "ERREUR: date = pointeur nul.");
    return cr = NOX_CR_PARAMETRE_ENTREE;
  }
  const Date lue{std::string_view(texte)};
  if (!lue.lireBrute().estValide()) {
    Trace::erreur(TRACE_PARAMETRES, "ERREUR: date %s invalide.", texte);
    return cr = NOX_CR_PARAMETRE_ENTREE;
  }
  date = lue;
  return cr;
}

CodeRetour ControleurParametres::verifierZoneIn(void* buffer, unsigned int taille,
                                                std::optional<Zone>& zone) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_PARAMETRES, cr, "ControleurParametres::verifierZoneIn");
  zone.reset();
  if (buffer == nullptr) {
    Trace::erreur(TRACE_PARAMETRES, "ERREUR: buffer = pointeur nul.");
    cr = NOX_CR_ZONE_ENTREE;
  } else if (taille == 0) {
    Trace::erreur(TRACE_PARAMETRES, "ERREUR: taille nulle.");
    cr = NOX_CR_ZONE_ENTREE;
  } else {
    zone.emplace(static_cast<byte*>(buffer), taille);
  }
  return cr;
}

CodeRetour ControleurParametres::verifierZoneOut(void** buffer, unsigned int* taille) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_PARAMETRES, cr, "ControleurParametres::verifierZoneOut");
  if (buffer == nullptr) {
    Trace::erreur(TRACE_PARAMETRES, "ERREUR: buffer = pointeur nul.");
    cr = NOX_CR_PARAMETRE_SORTIE;
  } else if (taille == nullptr) {
    Trace::erreur(TRACE_PARAMETRES, "ERREUR: taille nulle.");
    cr = NOX_CR_PARAMETRE_SORTIE;
  } else {
    *buffer = nullptr;
    *taille = 0;
  }
  return cr;
}

CodeRetour ControleurParametres::verifierBooleen(unsigned char caractere, bool& valeur) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_PARAMETRES, cr, "ControleurParametres::verifierBooleen");
  if (Booleen::estValide(static_cast<char>(caractere))) {
    valeur = caractere == 'O';
  } else {
    cr = NOX_CR_PARAMETRE_ENTREE;
  }
  return cr;
}

CodeRetour ControleurParametres::verifierPointeur(const void* pointeur, bool parametre) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_PARAMETRES, cr, "ControleurParametres::verifierPointeur");
  if (pointeur == nullptr) {
    Trace::erreur(TRACE_PARAMETRES, "ERREUR: pointeur nul.");
    cr = parametre ? NOX_CR_PARAMETRE_ENTREE : NOX_CR_PARAMETRE_SORTIE;
  }
  return cr;
}

}  // namespace noxlux
