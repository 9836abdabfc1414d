// What the tariff rules tell of their computations.
#ifndef NOXLUX_REGLES_FAITS_H
#define NOXLUX_REGLES_FAITS_H

#include "regles/observateur.h"

namespace noxlux::faits {

// --- Association: the dearest act, its line and price; why a line is reduced or not; by how much ---
inline constexpr Fait<const char*> ACTE_LE_PLUS_FORT{"acteLePlusFort", "acte le plus fort = %s"};
inline constexpr FaitMuet LIGNE_LA_PLUS_FORTE{"ligneLaPlusForte"};  // its number, its price
inline constexpr FaitMuet COMPLEMENTAIRE{"complementaire"};
inline constexpr Fait<const char*> REDUITE{"reduite", "top réduction = %s"};
inline constexpr Fait<const char*> CODE_ASSOCIATION{"codeAssociation", "code association = %s"};
inline constexpr Fait<const char*> REGLE_TARIFAIRE{"regleTarifaire", "regle tarifaire = %s"};
inline constexpr Fait<double> COEFFICIENT{"coefficientAssociation", "coefficient = %f"};

// --- Base: whether there is one, its modifiers one by one, the agreement ---
inline constexpr Fait<const char*> REMBOURSE{"rembourse", "remboursé = %s"};
inline constexpr Fait<double> SUPPLEMENT{"supplement", "supplément = %.2fE"};
inline constexpr FaitMuet MODIFICATEUR{"modificateur"};
inline constexpr Fait<double> FORFAIT_MODIFICATEUR{"forfaitModificateur",
                                                   "le forfait du modificateur = %.2fE"};
inline constexpr Fait<double> TAUX_MODIFICATEUR{"tauxModificateur", "le taux du modificateur = %.f%%"};
inline constexpr FaitMuet MODIFICATEUR_AU_DELA{"modificateurAuDela"};  // its code, the number that counts
inline constexpr Fait<const char*> CONVENTION{"convention", "conventionPS = %s"};

// --- Exemption: the threshold, what is compared with it ---
inline constexpr FaitMuet SEUIL_ACTE{"seuilActe"};  // threshold, base of the line, whether it reaches it
inline constexpr FaitMuet LIGNE_COMPTEE{"ligneComptee"};  // number of the line, what it adds to its séance
inline constexpr Fait<double> SOMME_SEANCE{
    "sommeSeance", "la somme des bases de remboursement hors forfait pour la séance = %.2fE"};
inline constexpr Fait<double> SEUIL_SEANCE{"seuilSeance", "le seuil d'exonération est %.2fE"};

// --- The operations on an amount ---
inline constexpr const char* PRIX_UNITAIRE = "prixUnitaire";
inline constexpr const char* MAJORATION = "majoration";
inline constexpr const char* PRIX_AU_CENTIME = "prixAuCentime";
inline constexpr const char* PRIX_FACTURE = "prixFacture";
inline constexpr const char* TAUX_MODIFICATEURS = "tauxModificateurs";
inline constexpr const char* REDUCTION_ASSOCIATION = "reductionAssociation";
inline constexpr const char* FORFAITS_MODIFICATEURS = "forfaitsModificateurs";
inline constexpr const char* SUPPLEMENT_CHARGES = "supplementCharges";
inline constexpr const char* FORFAIT_NON_CONVENTIONNE = "forfaitNonConventionne";
inline constexpr const char* TAUX_NON_CONVENTIONNE = "tauxNonConventionne";
inline constexpr const char* BASE_AU_CENTIME = "baseAuCentime";

}  // namespace noxlux::faits

#endif
