#include "nox_commun.h"

#include "interapp/controleur_parametres.h"

namespace noxlux {

Bibliotheque bibliotheque;

void Bibliotheque::vider() {
  if (interface.estInitialise()) {
    interface.liberer();
  }
  referentiel.reset();
}

CodeRetour verifierReferentiel() {
  CodeRetour cr = NOX_CR_OK;
  BlocTrace bloc(TRACE_PARAMETRES, cr, "verifierReferentiel");
  bloc.terminerPar("cr = 0x%04x");
  if (!bibliotheque.estChargee()) {
    Trace::erreur(TRACE_PARAMETRES, "Référentiel non chargé.");
    cr = NOX_CR_NON_CHARGE;
  }
  return cr;
}

SortieAppelant::SortieAppelant(void** zone, unsigned int* taille) : zone_(zone), taille_(taille) {
  if (zone_ != nullptr) {
    *zone_ = nullptr;
  }
  if (taille_ != nullptr) {
    *taille_ = 0;
  }
}

CodeRetour SortieAppelant::verifier() const { return ControleurParametres::verifierZoneOut(zone_, taille_); }

Requete& Requete::exigerAcces() {
  return suivre([&] { return acces_.code(); });
}

Requete& Requete::verifierIdentifiant(const char* identifiant) {
  return suivre([&] { return ControleurParametres::verifierChaine(identifiant, true); });
}

Requete& Requete::verifierDate(const char* texte) {
  return suivre([&] { return ControleurParametres::verifierDate(texte, date_); });
}

Requete& Requete::verifierZoneIn(void* zoneIn, unsigned int taille) {
  return suivre([&] { return ControleurParametres::verifierZoneIn(zoneIn, taille, zone_); });
}

Requete& Requete::verifierZoneInEventuelle(void* zoneIn, unsigned int taille) {
  if (ok() && superGroupe_->lireNbFils() != 0) {
    return verifierZoneIn(zoneIn, taille);
  }
  return suivre([&]() -> CodeRetour {
    if (taille != 0) {
      Trace::erreur(TRACE_PARAMETRES, "taille de la zone d'entrée non nulle, alors aucune donnée attendue.");
      return NOX_CR_GROUPE_INATTENDU;
    }
    return NOX_CR_OK;
  });
}

Requete& Requete::verifierSortie(const SortieAppelant& sortie) {
  return suivre([&] { return sortie.verifier(); });
}

Requete& Requete::verifierResultat(const char* resultat) {
  return suivre([&] { return ControleurParametres::verifierPointeur(resultat, true); });
}

Requete& Requete::chercherFonction(Recherche recherche, const char* identifiant) {
  return exigerAcces().suivre(
      [&] { return (bibliotheque.interface.*recherche)(identifiant, superGroupe_, numero_); });
}

Requete& Requete::chercherControleComplet() {
  return exigerAcces().suivre(
      [&] { return bibliotheque.interface.lireSuperGroupeControleComplet(superGroupe_); });
}

}  // namespace noxlux
