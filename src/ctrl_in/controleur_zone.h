// Reads an input zone field by field, in order, against its description.
#ifndef NOXLUX_CTRL_IN_CONTROLEUR_ZONE_H
#define NOXLUX_CTRL_IN_CONTROLEUR_ZONE_H

#include <cstdint>

#include "basics/assertion.h"
#include "basics/codes_retour.h"
#include "basics/trace.h"
#include "ctrl_in/controleur_super_groupe.h"
#include "manip/zone.h"

namespace noxlux {

// Codes tell the place of the fault: 0x9000 + f (f-th field of the zone), 0xA000 + n and 0xA800 + n (n-th
// group), 0xB000 + identifier, places too far for their family being its last code; a malformed zone is
// 0xF810, reading past its end 0xF805.
class ControleurZone {
 public:
  // Neither is owned. Exhaustive: every group of the zone must be described; otherwise the others are
  // skipped. REQUIRES: both not null, zone->ok()
  ControleurZone(Zone* zone, const SuperGroupe* superGroupe, bool exhaustif = true);

  void modifierExhaustif(bool exhaustif) { exhaustif_ = exhaustif; }
  bool lireExhaustif() const { return exhaustif_; }
  const Zone& lireZone() const { return *zone_; }

  // The identifier of the current group, the next expected one when none is current.
  CodeRetour positionnerGroupeSuivant(std::uint16_t& identifiant);
  // The next field, checked: its group's identifier, its number in the group, and its bytes or its value.
  CodeRetour extraireChamp(std::uint16_t& identifiant, std::uint16_t& numero, Octets& donnees);
  template <class T>
  CodeRetour extraireChamp(std::uint16_t& identifiant, std::uint16_t& numero, T& valeur);
  // Once the last field is read: 0xA001 + number of groups read when the zone holds more.
  CodeRetour verifierFinDonnees() const;
  // A fault of content, 0x9000, with the place of the field just read; another code stays.
  CodeRetour situerFaute(CodeRetour cr) const {
    return cr == NOX_CR_CHAMP_INVALIDE ? codeAvecPosition(NOX_CR_CHAMP_INVALIDE, zone_->lireNombreChamps())
                                       : cr;
  }

 private:
  CodeRetour rechercherGroupe();
  CodeRetour rechercherGroupeExhaustif(const Groupe*& groupe);
  CodeRetour rechercherGroupeTolerant(const Groupe*& groupe);
  CodeRetour lireChampSuivant(std::uint16_t& identifiant, std::uint16_t& numero, Octets& donnees,
                              const Champ*& champ);
  CodeRetour refuserTropPeuDeChamps() const;
  CodeRetour quitterGroupe();
  CodeRetour verifierMinima();

  Zone* zone_;
  ControleurSuperGroupe racine_;
  bool exhaustif_;
  const Groupe* groupe_ = nullptr;
  std::uint16_t numeroChamp_ = 0;
};

// The next field, and its description.
inline CodeRetour ControleurZone::lireChampSuivant(std::uint16_t& identifiant, std::uint16_t& numero,
                                                   Octets& donnees, const Champ*& champ) {
  if (groupe_ == nullptr) {
    if (const CodeRetour cr = rechercherGroupe(); cr != NOX_CR_OK) {
      return cr;
    }
  }
  exiger(groupe_ != nullptr, "groupe != __null");
  if (zone_->finGroupe()) [[unlikely]] {
    return refuserTropPeuDeChamps();
  }
  if (const CodeRetour cr = zone_->avancerChampSuivant(numero, donnees); cr != NOX_CR_OK) [[unlikely]] {
    return cr;
  }
  identifiant = zone_->lireIdentifiant();
  const std::uint16_t attendus = groupe_->lireNbChamps();
  if (numeroChamp_ < attendus) {
    champ = &groupe_->lireChamp(numeroChamp_);
  }
  return ++numeroChamp_ < attendus ? CodeRetour{NOX_CR_OK} : quitterGroupe();
}

template <class T>
CodeRetour ControleurZone::extraireChamp(std::uint16_t& identifiant, std::uint16_t& numero, T& valeur) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_PARAMETRES, cr, "ControleurZone::extraireChamp");
  const Champ* champ = nullptr;
  Octets donnees;
  cr = lireChampSuivant(identifiant, numero, donnees, champ);
  if (cr == NOX_CR_OK) {
    cr = situerFaute(champ->transformer(donnees, valeur));
  }
  if (cr == NOX_CR_OK && Trace::estDetaille(TRACE_PARAMETRES)) {
    Trace::ecrire(TRACE_PARAMETRES, "Groupe %u, champ %u (%u) :", identifiant, numero,
                  zone_->lireNombreChamps());
    valeur.dump(TRACE_PARAMETRES);
  }
  return cr;
}

}  // namespace noxlux

#endif
