// What the exported functions share: the state of the library, the frame that no exception leaves, and the
// steps of a request.
#ifndef NOXLUX_NOX_COMMUN_H
#define NOXLUX_NOX_COMMUN_H

#include <atomic>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>

#include "basics/codes_retour.h"
#include "basics/systeme.h"
#include "basics/trace.h"
#include "interapp/interface.h"
#include "manip/zone_sortie.h"
#include "referent/modification_donnees.h"
#include "regles/observateur.h"
#include "types/date.h"

namespace noxlux {

constexpr const char* VERSION_LOGICIELLE = "0113";
constexpr const char* VERSION_REFERENCE_ATTENDUE = "0121";

// The one state of the library. A request looks at it, and goes on with the store, under an access; loading
// and unloading are writers like the others.
struct Bibliotheque {
  CompteursAcces acces;                      // here and not in the store, which comes and goes under them
  std::unique_ptr<Referentiel> referentiel;  // null while no reference is loaded
  Interface interface;                       // the zone descriptors
  // Whether something was changed or cancelled since the load or the last save.
  std::atomic<bool> modification = false;

  bool estChargee() const { return interface.estInitialise() && referentiel != nullptr && referentiel->ok(); }
  // Back to the unloaded state.
  void vider();
};
extern Bibliotheque bibliotheque;

// 0xDF00, told in the trace, while nothing is loaded.
CodeRetour verifierReferentiel();

inline const char* affichable(const char* texte) { return texte == nullptr ? "(null)" : texte; }

// Runs the body of an exported function: nothing that it throws reaches the caller.
template <class Corps>
CodeRetour proteger(const Corps& corps) noexcept {
  try {
    return corps();
  } catch (const std::bad_alloc&) {
    return NOX_CR_MEMOIRE;
  } catch (...) {
    return NOX_CR_INCOHERENCE;
  }
}

// The same, and writes the result line.
template <class Corps>
CodeRetour rendreService(unsigned short module, const Corps& corps) noexcept {
  const CodeRetour cr = proteger(corps);
  Trace::ecrire(module, "cr = 0x%04X", cr);
  return cr;
}

// The addresses at which a caller wants an answer zone. They hold null and 0 from the start, whatever happens
// until a zone is handed over.
class SortieAppelant {
 public:
  SortieAppelant(void** zone, unsigned int* taille);
  // 0xF800 when one of them is null.
  CodeRetour verifier() const;
  // REQUIRES: verifier() answered 0, a zone is held
  CodeRetour remettre(ZoneSortie& zone) const { return zone.ceder(*zone_, *taille_); }

 private:
  void** zone_;
  unsigned int* taille_;
};

// A request on its way: its access to the library, its parameters once checked, and the code so far. Each
// step does nothing once the code is not 0, and sets it when it fails. A request that found others at work
// still checks its parameters; the first step that needs the reference is refused.
class Requete {
 public:
  explicit Requete(NatureAcces nature)
      : acces_(bibliotheque.acces, nature),
        cr_(acces_.estTenu() ? verifierReferentiel() : CodeRetour{NOX_CR_OK}) {}
  Requete(const Requete&) = delete;
  Requete& operator=(const Requete&) = delete;

  using Recherche = CodeRetour (Interface::*)(const char*, const SuperGroupe*&, std::uint16_t&) const;

  Requete& verifierIdentifiant(const char* identifiant);
  Requete& verifierDate(const char* texte);
  Requete& verifierZoneIn(void* zoneIn, unsigned int taille);
  // The same for a function that may expect no zone, which is then not looked at: 0xA000 when it has a size.
  Requete& verifierZoneInEventuelle(void* zoneIn, unsigned int taille);
  Requete& verifierSortie(const SortieAppelant& sortie);
  // The address of the one-character answer.
  Requete& verifierResultat(const char* resultat);
  // The function of that identifier in a family.
  Requete& chercherFonction(Recherche recherche, const char* identifiant);
  Requete& chercherControleComplet();

  // 0xDF01 when others are at work.
  Requete& exigerAcces();
  // A step of the caller's own.
  template <class Etape>
  Requete& suivre(const Etape& etape) {
    if (ok()) {
      cr_ = etape();
    }
    return *this;
  }
  // Runs `action` on a query layer, or a modification layer.
  template <class Action>
  Requete& lire(const Action& action);
  template <class Action>
  Requete& ecrire(const Action& action);

  bool ok() const { return cr_ == NOX_CR_OK; }
  CodeRetour code() const { return cr_; }
  const Date& date() const { return date_; }
  // Null for a function without input.
  Zone* zone() { return zone_ ? &*zone_ : nullptr; }
  const SuperGroupe* superGroupe() const { return superGroupe_; }
  std::uint16_t numero() const { return numero_; }

 private:
  Acces acces_;
  CodeRetour cr_;
  Date date_;
  std::optional<Zone> zone_;
  const SuperGroupe* superGroupe_ = nullptr;
  std::uint16_t numero_ = 0;
};

template <class Action>
Requete& Requete::lire(const Action& action) {
  return exigerAcces().suivre([&] {
    LectureDonnees lecture(bibliotheque.referentiel.get());
    lecture.ecouter(Ecoute::observateur());
    return action(lecture);
  });
}

template <class Action>
Requete& Requete::ecrire(const Action& action) {
  return exigerAcces().suivre([&] {
    ModificationDonnees modification(bibliotheque.referentiel.get());
    modification.ecouter(Ecoute::observateur());
    return action(modification);
  });
}

}  // namespace noxlux

#endif
