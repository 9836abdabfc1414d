// One line of an invoice.
#ifndef NOXLUX_REGLES_LIGNE_ACTE_H
#define NOXLUX_REGLES_LIGNE_ACTE_H

#include <optional>

#include "regles/erreur.h"
#include "regles/regles.h"
#include "types/date.h"
#include "types/decimal.h"
#include "types/liste_codes.h"

namespace noxlux {

class Reglementation;
class Tarification;
struct Facture;

constexpr unsigned short MAX_LIGNES = 200;

// Whether an optional datum is there and filled: an empty code, or an amount of 0, was not given.
template <class T>
bool estDonne(const std::optional<T>& valeur) {
  return valeur.has_value() && valeur->estRenseigne();
}
// The code, or the empty one.
inline const Code& codeOuVide(const std::optional<Code>& code) {
  static const Code VIDE;
  return code.has_value() ? *code : VIDE;
}

// An ordinary prestation or a travel line; an act coded in CCAM is a LigneCCAM. What every rule reads is held
// plain (an empty code was not supplied), the rest is absent until supplied or computed.
struct LigneActe {
  enum class Type : unsigned char { PRESTATION = 0, DEPLACEMENT_1 = 1, DEPLACEMENT_2 = 2, CCAM = 3 };

  explicit LigneActe(Type typeLigne = Type::PRESTATION) : type(typeLigne) {}
  virtual ~LigneActe() = default;

  bool estDeplacement() const { return type == Type::DEPLACEMENT_1 || type == Type::DEPLACEMENT_2; }

  // Attaches a travel line, the last one added, to the line it belongs to: the last that is not a travel
  // line. 0xD106 when they are not on the same date; the attachment stays. REQUIRES: at least 2 lines
  CodeRetour rattacher();

  // Files the error of a line rule on this line, then empties it. Does nothing for an error that is not set.
  CodeRetour traiterErreur(ListeErreurs& erreurs, Erreur& erreur, Regles& regles);
  // Forcing caused by modified reference data: called at the end of a step that counted them.
  CodeRetour verifierModificationReferentiel(Regles& regles, char indicateur);

  virtual void dump() const;
  // Marks the line, and what holds it, as disengaged from the service.
  virtual void debrayerService();
  virtual CodeRetour controlerReglementation(Reglementation& reglementation, ListeErreurs& erreurs);
  virtual CodeRetour controlerPU(Tarification& tarification, ListeErreurs& erreurs);
  virtual CodeRetour controlerBaseActe(Tarification& tarification, ListeErreurs& erreurs);
  virtual CodeRetour controlerExoActe(Tarification& tarification, ListeErreurs& erreurs,
                                      Code& factureExoneree);
  virtual CodeRetour controlerExoFactureExoneree(Tarification& tarification, ListeErreurs& erreurs);
  virtual CodeRetour controlerExoFactureNonExoneree(Tarification& tarification, ListeErreurs& erreurs);

  Type type;
  Nombre numero;
  Date date;
  Code numeroPS;
  Code specialitePS;
  Code prestation;
  std::optional<Code> lieuExecution;
  std::optional<Code> identifiantLieu;
  std::optional<Code> qualificatifDepense;
  std::optional<Montant> prixUnitaire;       // billed
  std::optional<Montant> baseRemboursement;  // billed
  std::optional<Coefficient> tauxRemboursement;
  std::optional<Code> exonerationTM;
  std::optional<Code> ententePrealable;
  const LigneActe* rattachement = nullptr;  // the line a travel line belongs to; not owned
  Facture* factureParent = nullptr;         // set by Facture::ajouterLigne
  std::optional<Code> forcage;
  std::optional<ListeCodes> reglesNonVerifiables;  // references that may no longer be checked on this line
  bool topDebrayage = false;
  std::optional<Montant> baseTheoriqueAMO;

 protected:
  LigneActe(const LigneActe&) = default;
  LigneActe& operator=(const LigneActe&) = default;

  // What a step imposes on a line that read reference data changed by a local modification.
  static constexpr char FORCAGE_REGLEMENTATION = 'G';
  static constexpr char FORCAGE_PRIX = 'R';
  static constexpr char FORCAGE_BASE = 'R';
  static constexpr char FORCAGE_EXONERATION = 'S';

  // Runs a step while those reads are counted, then draws the consequence.
  template <class Etape>
  CodeRetour compterModifications(Regles& regles, char indicateur, Etape etape) {
    regles.activerVerificationModification(true);
    const CodeRetour cr = etape();
    if (cr != NOX_CR_OK) {
      regles.activerVerificationModification(false);
      return cr;
    }
    return verifierModificationReferentiel(regles, indicateur);
  }
};

}  // namespace noxlux

#endif
