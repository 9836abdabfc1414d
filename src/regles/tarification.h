// The tariff rules: unit price, association coefficient, supplement for charges, reimbursement base,
// exemption of the patient's share. Amounts are computed in doubles, in the order told by docs/rules.md, and
// rounded only where it says so.
#ifndef NOXLUX_REGLES_TARIFICATION_H
#define NOXLUX_REGLES_TARIFICATION_H

#include "regles/concepts.h"
#include "regles/facture.h"
#include "regles/regles.h"
#include "types/booleen.h"

namespace noxlux {

class Tarification final : public Regles {
 public:
  static constexpr const char* NOM = "Tarification";
  // Computations are asked for by name: by the steps of a line, which ask first whether they may be checked,
  // and by the single rules.
  static constexpr const char* PROD640 = "PROD640";
  static constexpr const char* PROD655 = "PROD655";
  static constexpr const char* PROD656A = "PROD656A";
  static constexpr const char* PROD656B = "PROD656B";
  static constexpr const char* PROD740 = "PROD740";
  static constexpr const char* PROD790A = "PROD790A";
  static constexpr const char* PROD790B = "PROD790B";
  static constexpr const char* PROD790C = "PROD790C";
  static constexpr const char* PROD790D = "PROD790D";
  static constexpr const char* PROD840 = "PROD840";
  static constexpr const char* PROD860 = "PROD860";
  static constexpr const char* PROD870 = "PROD870";
  // Exemption justifications with a meaning of their own; all others are data of the reference.
  static constexpr const char* SANS_EXONERATION = "0";
  static constexpr const char* SANS_EXONERATION_9 = "9";
  static constexpr const char* ACTE_COUTEUX = "C";

  using Regles::Regles;

  // Unit price of an act billed to a fund, the overseas increase of the fund included.
  CodeRetour appliquerProd840(const Code& acte, const Code& activite, const Code& phase, const Date& date,
                              const Code& caissePS, Montant& prixUnitaire);
  // Compares the line's computed price with the billed one.
  CodeRetour appliquerProd850(const LigneCCAM& ligne, Constat& constat);

  // Whether the line is reimbursed at all.
  CodeRetour appliquerProd763A(const LigneCCAM& ligne, Booleen& rembourse);
  // Marks the line with the highest unit price, complementary acts left aside, and keeps its act.
  CodeRetour appliquerProd656A(AssociationCCAM& association);
  // Sets the line's topReduction. REQUIRES: the association has an actePlusFort
  CodeRetour appliquerProd656B(LigneCCAM& ligne);
  // Association coefficient, of a line with an association code and of a line without.
  CodeRetour appliquerProd655(const LigneCCAM& ligne, Coefficient& coefficient);
  CodeRetour appliquerProd640(const LigneCCAM& ligne, Coefficient& coefficient);
  CodeRetour appliquerProd860(const LigneCCAM& ligne, Montant& supplement);
  CodeRetour appliquerProd870(const LigneCCAM& ligne, const Coefficient& coefficient,
                              const Montant& supplement, Montant& base, Montant& baseHorsForfait);
  // The base of a professional who is not under agreement.
  CodeRetour appliquerProd740(const Code& conventionPS, const Date& date, Montant& base);
  // Compare the line's computed base with the billed ones.
  CodeRetour appliquerProd880(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd880A(const LigneCCAM& ligne, Constat& constat);

  // Exemption of the patient's share, line by line. REQUIRES: factureParent != null
  CodeRetour appliquerProd785(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd786(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd787(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd791B(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd788(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd789(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd793(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd795A(const LigneCCAM& ligne, Constat& constat);
  // "2" when the act reaches the threshold by itself.
  CodeRetour appliquerProd790A(const LigneCCAM& ligne, Code& factureExoneree);

  // Exemption with the séance. "2" when the acts of the séance reach the threshold together.
  CodeRetour appliquerProd790B(const Seance& seance, const Code& caissePS, Code& factureExoneree);
  // Brings the rate of a CCAM line of an exempt invoice, then of a travel line attached to one, to 1 when its
  // séance reaches the threshold.
  CodeRetour appliquerProd790C(LigneCCAM& ligne, const Code& caissePS, const Code& factureExoneree);
  CodeRetour appliquerProd790D(LigneActe& deplacement, const Code& caissePS, const Code& factureExoneree);
  // Of an exempt invoice: PROD792 for CCAM lines, PROD792B for travel lines attached to one.
  CodeRetour appliquerProd792(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd792B(const LigneActe& deplacement, Constat& constat);
  // Of an invoice that is not.
  CodeRetour appliquerProd791A(const LigneCCAM& ligne, Constat& constat);

  // Single rules. Computes the bases of all the lines of an association, rounded to the cent.
  CodeRetour appliquerCBase(const Code& conventionPS, AssociationCCAM& association);
  // A patient under prevention: the rate becomes 1 and the code that of prevention when the act is one of
  // prevention; else 0xD115, both left as they are.
  CodeRetour appliquerCExoPrevention(const Code& acte, bool prevention, const Date& date, Coefficient& taux,
                                     Code& code);
  // One act by itself: exempt, at rate 1 and code "C", when it reaches the threshold of the fund; `exonere`
  // tells whether it exempts the invoice with it. A claim "C" that it does not reach becomes "0"; another
  // justification stays, and so does a rate that was not given.
  CodeRetour appliquerCExoActe(const Code& caissePS, const Code& acte, const Date& date,
                               const Montant& baseHorsForfait, const Code& motifExoneration,
                               std::optional<Coefficient>& taux, Code& code, Booleen& exonere);

 private:
  // The act's unit price times the fund's overseas increase.
  CodeRetour calculerPrix(const Code& acte, const Code& activite, const Code& phase, const Date& date,
                          const Code& caissePS, Montant& prix, Coefficient& majoration);
  CodeRetour lireCoefficientRegle(const LigneCCAM& ligne, const Code& actePlusFort, Coefficient& coefficient);
  // What the modifiers that count add: flat amounts, and the factor of their rates.
  CodeRetour lireModificateurs(const LigneCCAM& ligne, Montant& forfaits, Coefficient& facteur);
  CodeRetour comparerBase(const LigneCCAM& ligne, const std::optional<Montant>& facturee, Constat& constat);
  CodeRetour calculerBaseLigne(const Code& conventionPS, LigneCCAM& ligne, bool reductionPossible);

  // Whether the act's exemption codes share one with a concept; none with a concept that is not there.
  CodeRetour aCodeExoneration(const Code& acte, const Date& date, Concept numero, bool& commun);
  CodeRetour estMotifPrevention(const LigneCCAM& ligne, bool& prevention);
  CodeRetour lireSeuil(const Code& caissePS, const Date& date, Montant& seuil);
  // Whether the line counts in the sum that is compared with the threshold.
  CodeRetour compteDansSeuil(const LigneCCAM& ligne, const ListeCodes& codesSeuil, bool& compte);
  // The sum of the lines of a séance that count. It is kept with the séance: each of its lines asks for it.
  CodeRetour sommerSeance(const Seance& seance, Montant& somme);
  // Whether the line counts, and its séance reaches the threshold.
  CodeRetour estExonereeParSeuil(const LigneCCAM& ligne, const Code& caissePS, bool& exoneree);
  // Whether the line counts, of acts with one of these exemption codes, and reaches the threshold by itself.
  CodeRetour atteintSeuil(const LigneCCAM& ligne, const ListeCodes& codesSeuil, Montant& seuil,
                          bool& atteint);
  // The same, of acts that are compared by themselves.
  CodeRetour atteintSeuilSeule(const LigneCCAM& ligne, Montant& seuil, bool& atteint);
  // Whether the act is one that is compared with the threshold by itself.
  CodeRetour estExonerableParSeuil(const LigneCCAM& ligne, bool& exonerable);
};

}  // namespace noxlux

#endif
