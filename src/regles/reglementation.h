// The regulation rules: one method a rule. A method answers 0 or the code of a query that failed; a violation
// is told by filling the error, and an error that is not filled is no violation.
//
// The order in which rules run, whether each may be checked and where its error is filed are the business of
// the invoice's elements (LigneActe, LigneCCAM, Facture, AssociationCCAM).
#ifndef NOXLUX_REGLES_REGLEMENTATION_H
#define NOXLUX_REGLES_REGLEMENTATION_H

#include <string>

#include "regles/association_ccam.h"
#include "regles/facture.h"
#include "regles/ligne_ccam.h"
#include "regles/regles.h"

namespace noxlux {

// What appliquerCCompatibilite says of two acts.
struct Diagnostic {
  static constexpr const char* COMPATIBLES = "0";
  static constexpr const char* PROCEDURE_COMPATIBLES = "1";  // same procedure, may be associated with a code
  static constexpr const char* PROCEDURE_INCOMPATIBLES = "2";  // same procedure, may not be associated
  static constexpr const char* INCOMPATIBLES = "3";            // medically incompatible
};

class Reglementation : public Regles {
 public:
  using Regles::Regles;

  // Lines that are not CCAM. PROD690A is asked of a travel line attached to a CCAM line.
  CodeRetour appliquerProd170(const LigneActe& ligne, Erreur& erreur);
  CodeRetour appliquerProd211(const LigneActe& ligne, Erreur& erreur);
  CodeRetour appliquerProd690A(const LigneActe& ligne, Erreur& erreur);

  // CCAM lines; the invoice is the line's factureParent, never null here.
  CodeRetour appliquerProd500(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd510(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd511A(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd890(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd780(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd760(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd765(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd530(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd220(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd798(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd670(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd895A(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd136A(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd136B(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd190(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd550(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd555(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd798A(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd540(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd720(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd730(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd700(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd702(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd710(const LigneCCAM& ligne, Erreur& erreur);

  // Séance rules, asked of each CCAM line; the line's séance and invoice are set. The number of the line is
  // put first in the error's lines when it is filed: PROD240 gives the others behind a first one.
  CodeRetour appliquerProd580(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd600(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd240(const LigneCCAM& ligne, Erreur& erreur);

  // Association rules. PROD137 is asked of each line; the others give the numbers of the lines concerned.
  CodeRetour appliquerProd590(const AssociationCCAM& association, Erreur& erreur);
  CodeRetour appliquerProd137(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd648(const AssociationCCAM& association, Erreur& erreur);
  CodeRetour appliquerProd649(const AssociationCCAM& association, Erreur& erreur);
  CodeRetour appliquerProd650(const AssociationCCAM& association, Erreur& erreur);
  CodeRetour appliquerProd653(const AssociationCCAM& association, Erreur& erreur);
  CodeRetour appliquerProd654(const AssociationCCAM& association, Erreur& erreur);

  // Questions that decide whether other rules run.
  CodeRetour appliquerProd696(const LigneCCAM& ligne, Booleen& resultat);
  CodeRetour appliquerProd695(const LigneCCAM& ligne, Booleen& resultat);
  CodeRetour appliquerProd580A(const LigneCCAM& ligne, Booleen& resultat);

  // Single questions and rules, asked without an invoice.
  CodeRetour appliquerCAge1(const Date& dateNaissance, const Code& modificateur, const Date& date,
                            Booleen& resultat);
  CodeRetour appliquerCAge2(const Date& dateNaissance, const Code& acte, const Code& activite,
                            const Code& phase, const Date& date, Booleen& resultat);
  CodeRetour appliquerCAssurance(const Code& natureAssurance, const Code& acte, const Date& date,
                                 Booleen& resultat);
  CodeRetour appliquerCCcam(const Code& specialite, const Code& prestation, const Date& date,
                            Booleen& resultat);
  CodeRetour appliquerCExecutant(const Code& specialite, const Code& acte, const Code& activite,
                                 const Date& date, Booleen& resultat);
  CodeRetour appliquerCRadio(const Code& agrementRadio, const Code& acte, const Code& activite,
                             const Date& date, Booleen& resultat);
  // One answer per tooth, in their order.
  CodeRetour appliquerCDent(const Code& acte, const Code& activite, const Code& phase, const Date& date,
                            const ListeCodes& dents, TypeListe<Booleen>& reponses);
  // The diagnostic, and the procedure both acts belong to when it speaks of one (else empty).
  CodeRetour appliquerCCompatibilite(const Code& acte1, const Code& activite1, const Code& numeroPS1,
                                     const Code& acte2, const Code& activite2, const Code& numeroPS2,
                                     const Date& date, Code& diagnostic, Code& procedure);
  // Decides the association's typeAssociation.
  CodeRetour appliquerCAssociation(AssociationCCAM& association);
};

}  // namespace noxlux

#endif
