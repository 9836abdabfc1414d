// The base of every function family: reading of the input zone, writing of the output zone.
//
// Every service takes the running code first, does nothing once it is not 0, and sets it when it fails: a
// function chains its services and ends with the first failure.
#ifndef NOXLUX_INTERAPP_FONCTIONS_H
#define NOXLUX_INTERAPP_FONCTIONS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

#include "basics/codes_retour.h"
#include "ctrl_in/controleur_zone.h"
#include "manip/zone_sortie.h"
#include "types/booleen.h"
#include "types/date.h"
#include "types/decimal.h"
#include "types/liste_codes.h"

namespace noxlux {

constexpr unsigned short MAX_MODIFICATEURS = 4;
constexpr unsigned short MAX_DENTS = 16;

class Fonctions {
 public:
  // Neither is owned. A function without input has no zone. REQUIRES: superGroupe not null when zin is not
  Fonctions(Zone* zin, const SuperGroupe* superGroupe);
  virtual ~Fonctions() = default;
  Fonctions(const Fonctions&) = delete;
  Fonctions& operator=(const Fonctions&) = delete;

  // --- Output zone ---
  // A new zone of `taille` bytes: 0xF801, and none, when it cannot be had.
  static ZoneSortie allouerZoneOut(CodeRetour& cr, std::size_t taille);
  static void ajouterGroupe(CodeRetour& cr, ZoneSortie& zone, std::uint16_t identifiant);
  static void ajouterChamp(CodeRetour& cr, ZoneSortie& zone, const TypeSimple& valeur);
  static void ajouterChamp(CodeRetour& cr, ZoneSortie& zone, const Texte& texte);
  static void ajouterChampVide(CodeRetour& cr, ZoneSortie& zone);
  // A rate, with 2 decimals.
  static void ajouterTaux(CodeRetour& cr, ZoneSortie& zone, const Coefficient& taux);

 protected:
  // --- Input zone ---
  // Null for a function without input.
  ControleurZone* controleur() { return controleur_ ? &*controleur_ : nullptr; }

  // The identifier of the next expected group; 0 at the end of the data.
  void positionnerGroupeSuivant(CodeRetour& cr, std::uint16_t& identifiant);
  // Reads and checks the next field.
  void ignoreChamp(CodeRetour& cr);

  // The next field as a T; an empty T for a field without type, or once the code is not 0. 0xDFFF when the
  // field is described as something else.
  template <class T>
  T extraire(CodeRetour& cr) {
    T valeur;
    extraireDans(cr, valeur);
    return valeur;
  }
  template <class T>
  void extraireDans(CodeRetour& cr, T& valeur) {
    if (cr == NOX_CR_OK && (controleur_ || refuserSansZone(cr))) {
      std::uint16_t identifiant = 0;
      std::uint16_t numero = 0;
      cr = controleur_->extraireChamp(identifiant, numero, valeur);
    }
  }
  Code extraireCode(CodeRetour& cr) { return extraire<Code>(cr); }
  Texte extraireTexte(CodeRetour& cr) { return extraire<Texte>(cr); }
  Nombre extraireNombre(CodeRetour& cr) { return extraire<Nombre>(cr); }
  Date extraireDate(CodeRetour& cr) { return extraire<Date>(cr); }
  Montant extraireMontant(CodeRetour& cr) { return extraire<Montant>(cr); }
  Booleen extraireBooleen(CodeRetour& cr) { return extraire<Booleen>(cr); }
  // Of a coefficient or a rate: how many decimals it has is in the description of the field.
  Coefficient extraireCoefficient(CodeRetour& cr) { return extraire<Coefficient>(cr); }

  // A rate; none when it is empty or zero, which says nothing of the patient's share.
  std::optional<Coefficient> extraireTaux(CodeRetour& cr) {
    const Coefficient taux = extraireCoefficient(cr);
    return taux.estRenseigne() ? std::optional(taux) : std::nullopt;
  }

  // A code, "0" when it is empty.
  Code extrairePhase(CodeRetour& cr);
  // 4 fields, the empty ones last: 0xD107 otherwise.
  ListeCodes extraireModificateurs(CodeRetour& cr);
  // One field, each of whose characters is a code.
  ListeCodes extraireModificateursOC(CodeRetour& cr);
  // 16 fields, the empty ones last, none twice: 0xD108 otherwise.
  ListeCodes extraireDents(CodeRetour& cr);
  // Two fields in one code.
  Code extraireNumeroPS(CodeRetour& cr);
  // An empty date is 0x9000 + its field. A day that is not known (month above 12, day above 31) is taken as
  // 1 January of its year.
  Date extraireDateNaissance(CodeRetour& cr);
  // A number that must be `attendu`: otherwise 0xE000 + ligne.
  void verifierNumeroPrestation(CodeRetour& cr, const Nombre& attendu, std::uint16_t ligne);
  void verifierFinDonnees(CodeRetour& cr);

 private:
  struct RegleListe;

  ListeCodes extraireListe(CodeRetour& cr, const RegleListe& regle);
  static bool refuserSansZone(CodeRetour& cr);

  std::optional<ControleurZone> controleur_;
};

}  // namespace noxlux

#endif
