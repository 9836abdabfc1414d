// Dates of the last local modifications.
#include "referent/requete.h"

namespace noxlux {

CodeRetour LectureDonnees::rechercherDateModificationCodeRegroupement(const Code& acte, const Code& activite,
                                                                      const Date& date, Date& modification) {
  return lireDateModification<ModificationCodeRegroupement>(__func__, date, modification, acte, activite);
}

CodeRetour LectureDonnees::rechercherDateModificationCoefficientAssociationNP(const Code& association,
                                                                              const Date& date,
                                                                              Date& modification) {
  return lireDateModification<ModificationRegleAssociationNonPrevue>(__func__, date, modification,
                                                                     association);
}

CodeRetour LectureDonnees::rechercherDateModificationModificateur(const Code& modificateur, const Date& date,
                                                                  Date& modification) {
  return lireDateModification<ModificationModificateur>(__func__, date, modification, modificateur);
}

CodeRetour LectureDonnees::rechercherDateModificationNonConventionnes(const Date& date, Date& modification) {
  return lireDateModification<ModificationNonConventionne>(__func__, date, modification);
}

CodeRetour LectureDonnees::rechercherDateModificationMajorationDOM(const Code& acte, const Code& activite,
                                                                   const Code& phase,
                                                                   unsigned short positionDOM,
                                                                   const Date& date, Date& modification) {
  return lireDateModification<ModificationMajorationDOM>(__func__, date, modification, acte, activite, phase,
                                                         positionDOM);
}

CodeRetour LectureDonnees::rechercherDateModificationPrixUnitaire(const Code& acte, const Code& activite,
                                                                  const Code& phase, const Date& date,
                                                                  Date& modification) {
  return lireDateModification<ModificationPrixUnitaire>(__func__, date, modification, acte, activite, phase);
}

CodeRetour LectureDonnees::rechercherDateModificationSeuilExoTM(unsigned short positionSeuil,
                                                                const Date& date, Date& modification) {
  return lireDateModification<ModificationSeuil>(__func__, date, modification, positionSeuil);
}

CodeRetour LectureDonnees::rechercherDateModificationSupplementCharges(const Code& acte, const Code& activite,
                                                                       const Code& phase, const Date& date,
                                                                       Date& modification) {
  return lireDateModification<ModificationSupplementCharge>(__func__, date, modification, acte, activite,
                                                            phase);
}

}  // namespace noxlux
