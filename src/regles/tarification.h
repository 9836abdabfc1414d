// The tariff rules: unit price, association coefficient, supplement, bases, exemption of the patient's share.
// Same conventions as the regulation rules.
#ifndef NOXLUX_REGLES_TARIFICATION_H
#define NOXLUX_REGLES_TARIFICATION_H

#include "regles/association_ccam.h"
#include "regles/facture.h"
#include "regles/ligne_ccam.h"
#include "regles/regles.h"
#include "regles/seance.h"

namespace noxlux {

class Tarification : public Regles {
 public:
  using Regles::Regles;

  // The unit price, with the overseas increase of the fund; no fund, no increase.
  CodeRetour appliquerProd840(const Code& acte, const Code& activite, const Code& phase, const Date& date,
                              const std::optional<Code>& caisse, Montant& prixUnitaire);
  // Raised when the billed unit price is not the computed one.
  CodeRetour appliquerProd850(const LigneCCAM& ligne, const Montant& prixCalcule, Erreur& erreur);

  // Whether the bases are computed.
  CodeRetour appliquerProd763A(const LigneCCAM& ligne, Booleen& resultat);
  // Sets actePlusFort, and topActePuMax of its line.
  CodeRetour appliquerProd656A(AssociationCCAM& association);
  // Sets the line's topReduction. REQUIRES: the association's actePlusFort
  CodeRetour appliquerProd656B(LigneCCAM& ligne);
  // The association coefficient: of the code billed, of the tariff rule.
  CodeRetour appliquerProd655(const LigneCCAM& ligne, Coefficient& coefficient);
  CodeRetour appliquerProd640(const LigneCCAM& ligne, Coefficient& coefficient);
  CodeRetour appliquerProd860(const LigneCCAM& ligne, Montant& supplement);
  CodeRetour appliquerProd870(const LigneCCAM& ligne, const Coefficient& coefficient,
                              const Montant& supplement, Montant& base, Montant& baseHorsForfait);
  CodeRetour appliquerProd740(const Code& conventionPS, const Date& date, Montant& base);
  // Raised when the billed base exceeds the computed one.
  CodeRetour appliquerProd880(const LigneCCAM& ligne, const Montant& baseCalculee, Erreur& erreur);
  CodeRetour appliquerProd880A(const LigneCCAM& ligne, const Montant& baseCalculee, Erreur& erreur);

  // Exemption of one act. PROD790A adjusts the state of the invoice and the rate of the line, and raises
  // nothing.
  CodeRetour appliquerProd785(LigneCCAM& ligne, Code& factureExoneree, Erreur& erreur);
  CodeRetour appliquerProd786(LigneCCAM& ligne, Code& factureExoneree, Erreur& erreur);
  CodeRetour appliquerProd787(LigneCCAM& ligne, Code& factureExoneree, Erreur& erreur);
  CodeRetour appliquerProd791B(LigneCCAM& ligne, Code& factureExoneree, Erreur& erreur);
  CodeRetour appliquerProd788(LigneCCAM& ligne, Code& factureExoneree, Erreur& erreur);
  CodeRetour appliquerProd789(LigneCCAM& ligne, Code& factureExoneree, Erreur& erreur);
  CodeRetour appliquerProd793(LigneCCAM& ligne, Code& factureExoneree, Erreur& erreur);
  CodeRetour appliquerProd795A(LigneCCAM& ligne, Code& factureExoneree, Erreur& erreur);
  CodeRetour appliquerProd790A(LigneCCAM& ligne, Code& factureExoneree, Erreur& erreur);

  // Exemption of the invoice by the threshold. 790B asks the séance; 790C and 790D then draw the consequence
  // on one CCAM line, and on one travel line attached to a CCAM line (their rate and exemption).
  CodeRetour appliquerProd790B(const Seance& seance, const std::optional<Code>& caisse,
                               Code& factureExoneree);
  CodeRetour appliquerProd790C(LigneCCAM& ligne, const std::optional<Code>& caisse, Code& factureExoneree);
  CodeRetour appliquerProd790D(LigneActe& ligne, Code& factureExoneree);
  // What is claimed, against what was found.
  CodeRetour appliquerProd791A(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd792(const LigneCCAM& ligne, Erreur& erreur);
  CodeRetour appliquerProd792B(const LigneActe& ligne, Erreur& erreur);

  // Single rules, asked without a whole invoice.
  // Computes baseRemboursement and baseHorsForfait of every line of the association.
  CodeRetour appliquerCBase(const Code& conventionPS, AssociationCCAM& association);
  // The rate and the exemption code that a prevention act, or an act of this base, is entitled to.
  CodeRetour appliquerCExoPrevention(const Code& acte, const Booleen& prevention, const Date& date,
                                     Coefficient& taux, Code& code);
  CodeRetour appliquerCExoActe(const Code& caissePS, const Code& acte, const Date& date,
                               const Montant& baseHorsForfait, const Code& motifExoneration,
                               Coefficient& taux, Code& code, Booleen& exonere);
};

}  // namespace noxlux

#endif
