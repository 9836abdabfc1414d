#include "ctrl_in/controleur_zone.h"

#include <utility>

#include "basics/assertion.h"
#include "basics/trace.h"

namespace noxlux {

ControleurZone::ControleurZone(Zone* zone, const SuperGroupe* superGroupe, bool exhaustif)
    : zone_(zone), racine_(superGroupe), exhaustif_(exhaustif) {
  exiger(zone != nullptr, "zone != __null");
  exiger(zone->ok(), "zone->ok()");
}

// --- Groups ---

CodeRetour ControleurZone::positionnerGroupeSuivant(std::uint16_t& identifiant) {
  CodeRetour cr = NOX_CR_OK;
  if (groupe_ == nullptr) {
    cr = rechercherGroupe();
  }
  if (cr == NOX_CR_OK) {
    identifiant = zone_->lireIdentifiant();
  }
  return cr;
}

CodeRetour ControleurZone::rechercherGroupe() {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_PARAMETRES, cr, "ControleurZone::rechercherGroupe");
  const Groupe* groupe = nullptr;
  cr = exhaustif_ ? rechercherGroupeExhaustif(groupe) : rechercherGroupeTolerant(groupe);
  if (cr == NOX_CR_OK) {
    groupe_ = groupe;
    numeroChamp_ = 0;
  }
  return cr;
}

CodeRetour ControleurZone::rechercherGroupeExhaustif(const Groupe*& groupe) {
  std::uint16_t identifiant = 0;
  CodeRetour cr = zone_->avancerGroupeSuivant(identifiant, 1, true);
  if (cr == NOX_CR_OK) {
    cr = racine_.rechercherGroupe(identifiant, groupe, true);
  }
  if (cr == NOX_CR_OK && groupe == nullptr) {
    Trace::erreur(TRACE_PARAMETRES, "ERREUR: %uème groupe (%u) non attendu dans la zone d'entrée",
                  zone_->lireNombreGroupes(), identifiant);
    cr = codeAvecPosition(NOX_CR_GROUPE_INATTENDU, zone_->lireNombreGroupes());
  }
  return cr;
}

CodeRetour ControleurZone::rechercherGroupeTolerant(const Groupe*& groupe) {
  CodeRetour cr = NOX_CR_OK;
  while (cr == NOX_CR_OK && groupe == nullptr) {
    std::uint16_t identifiant = 0;
    cr = zone_->avancerGroupeSuivant(identifiant, 1, true);
    if (cr != NOX_CR_OK) {
      break;
    }
    ControleurSuperGroupe avant(racine_);
    cr = racine_.rechercherGroupe(identifiant, groupe, false);
    if (cr == NOX_CR_OK && groupe == nullptr) {
      Trace::ecrire(TRACE_PARAMETRES, "%uème groupe (%u) ignoré", zone_->lireNombreGroupes(), identifiant);
      racine_ = std::move(avant);
    }
    if (cr == NOX_CR_OK && zone_->finZone()) {
      cr = verifierMinima();
    }
  }
  return cr;
}

CodeRetour ControleurZone::verifierMinima() {
  const Groupe* aucun = nullptr;
  return racine_.rechercherGroupe(0, aucun, true);
}

// --- Fields ---

CodeRetour ControleurZone::refuserTropPeuDeChamps() const {
  Trace::erreur(TRACE_PARAMETRES,
                "ERREUR: nombre de champs insuffisant dans le %uème groupe (%u) (%u champs attendus, %u "
                "champs trouvés)",
                zone_->lireNombreGroupes(), zone_->lireIdentifiant(), groupe_->lireNbChamps(), numeroChamp_);
  return codeAvecPosition(NOX_CR_NOMBRE_CHAMPS, zone_->lireNombreGroupes());
}

// Once the last field that the group describes is read, or one that it does not describe.
CodeRetour ControleurZone::quitterGroupe() {
  const std::uint16_t attendus = groupe_->lireNbChamps();
  if (numeroChamp_ > attendus || (exhaustif_ && !zone_->finGroupe())) {
    Trace::erreur(TRACE_PARAMETRES, "ERREUR: trop de champs dans le %uème groupe (%u) (%u champs attendus)",
                  zone_->lireNombreGroupes(), zone_->lireIdentifiant(), attendus);
    return codeAvecPosition(NOX_CR_NOMBRE_CHAMPS, zone_->lireNombreGroupes());
  }
  groupe_ = nullptr;
  return zone_->finDonnees() ? verifierMinima() : CodeRetour{NOX_CR_OK};
}

CodeRetour ControleurZone::extraireChamp(std::uint16_t& identifiant, std::uint16_t& numero, Octets& donnees) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_PARAMETRES, cr, "ControleurZone::extraireChamp");
  const Champ* champ = nullptr;
  cr = lireChampSuivant(identifiant, numero, donnees, champ);
  if (cr == NOX_CR_OK) {
    cr = situerFaute(champ->controler(donnees));
  }
  if (cr == NOX_CR_OK && Trace::estDetaille(TRACE_PARAMETRES)) {
    Trace::ecrire(TRACE_PARAMETRES, "Groupe %u, champ %u (%u) (l=%u) = %s", identifiant, numero,
                  zone_->lireNombreChamps(), static_cast<unsigned>(donnees.size()),
                  Zone::dumpChamp(donnees).c_str());
  }
  return cr;
}

CodeRetour ControleurZone::verifierFinDonnees() const {
  if (zone_->finDonnees()) {
    return NOX_CR_OK;
  }
  Trace::erreur(TRACE_PARAMETRES, "ERREUR: trop de groupes dans la zone d'entree");
  return codeAvecPosition(NOX_CR_DONNEES_EN_TROP, zone_->lireNombreGroupes());
}

}  // namespace noxlux
