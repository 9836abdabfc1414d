// The numbered concepts of the reference that rules read: lists of codes that share a meaning, at a date.
#ifndef NOXLUX_REGLES_CONCEPTS_H
#define NOXLUX_REGLES_CONCEPTS_H

#include "referent/lecture_donnees.h"

namespace noxlux {

enum Concept : unsigned short {
  CONCEPT_ACTES_COMPLEMENTAIRES = 1,       // act types
  CONCEPT_ACTES_ISOLES = 2,                // act types: isolated acts and procedures
  CONCEPT_DENTAIRE = 4,                    // medical categories under the rules of age and teeth
  CONCEPT_NON_REMBOURSES = 6,              // admission codes
  CONCEPT_REMBOURSES_SOUS_CONDITIONS = 7,  // admission codes
  CONCEPT_DEPLACEMENT_1 = 11,              // travel-fee codes
  CONCEPT_DEPLACEMENT_2 = 12,              // travel-fee codes
  CONCEPT_EXO_SEUIL = 13,                  // exemption codes of acts: exempt from the threshold on
  CONCEPT_EXO_PREVENTION = 14,             // exemption codes, of acts and of lines alike: prevention
  CONCEPT_MOTIFS_EXO = 15,                 // exemption codes of lines: all that exist
  CONCEPT_EXO_NATURE = 16,                 // exemption codes of acts: exempt whatever their amount
  CONCEPT_SANS_LIMITE = 20,  // medical categories and association codes without limit on the number of acts
  CONCEPT_EXO_SEUIL_SEUL = 23,  // exemption codes of acts: compared with the threshold by themselves
  CONCEPT_SUPPLEMENTS = 24      // acts that are supplements
};

// The reimbursement code of a line whose act is reimbursed for once.
constexpr const char* REMBOURSEMENT_EXCEPTIONNEL = "O";

// Whether the code behind `cr` says that the reference holds no such datum, for the key or at the date.
constexpr bool estAbsent(CodeRetour cr) { return cr == NOX_CR_CODE_INCONNU || cr == NOX_CR_PAS_D_HISTORIQUE; }

// Whether a code is among the values of a concept.
CodeRetour estDansConcept(LectureDonnees& lecture, Concept numero, const Date& date, const Code& code,
                          bool& present);
// The values of a concept that a reference may leave out: none then.
CodeRetour lireConceptFacultatif(LectureDonnees& lecture, Concept numero, const Date& date,
                                 ListeCodes& valeurs);
// Whether the act is of a complementary type.
CodeRetour estActeComplementaire(LectureDonnees& lecture, const Code& acte, const Date& date,
                                 bool& complementaire);
// The exemption codes of acts that are compared with the threshold by themselves; where a reference does not
// tell them, those that exempt the invoice.
CodeRetour lireCodesSeuilSeul(LectureDonnees& lecture, const Date& date, ListeCodes& valeurs);
bool ontUneValeurCommune(const ListeCodes& gauche, const ListeCodes& droite);

}  // namespace noxlux

#endif
