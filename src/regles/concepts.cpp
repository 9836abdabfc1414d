#include "regles/concepts.h"

#include <algorithm>

namespace noxlux {

CodeRetour estDansConcept(LectureDonnees& lecture, Concept numero, const Date& date, const Code& code,
                          bool& present) {
  ListeCodes valeurs;
  const CodeRetour cr = lecture.rechercherValeursConcept(numero, date, valeurs);
  if (cr == NOX_CR_OK) {
    present = valeurs.contient(code);
  }
  return cr;
}

CodeRetour lireConceptFacultatif(LectureDonnees& lecture, Concept numero, const Date& date,
                                 ListeCodes& valeurs) {
  const CodeRetour cr = lecture.rechercherValeursConcept(numero, date, valeurs);
  if (estAbsent(cr)) {
    valeurs.reinitialiser();
    return NOX_CR_OK;
  }
  return cr;
}

CodeRetour estActeComplementaire(LectureDonnees& lecture, const Code& acte, const Date& date,
                                 bool& complementaire) {
  Code type;
  const CodeRetour cr = lecture.rechercherTypeActe(acte, type);
  return cr != NOX_CR_OK ? cr
                         : estDansConcept(lecture, CONCEPT_ACTES_COMPLEMENTAIRES, date, type, complementaire);
}

CodeRetour lireCodesSeuilSeul(LectureDonnees& lecture, const Date& date, ListeCodes& valeurs) {
  const CodeRetour cr = lireConceptFacultatif(lecture, CONCEPT_EXO_SEUIL_SEUL, date, valeurs);
  return cr == NOX_CR_OK && valeurs.estVide()
             ? lecture.rechercherValeursConcept(CONCEPT_EXO_SEUIL, date, valeurs)
             : cr;
}

bool ontUneValeurCommune(const ListeCodes& gauche, const ListeCodes& droite) {
  return std::any_of(gauche.begin(), gauche.end(), [&](const Code& code) { return droite.contient(code); });
}

}  // namespace noxlux
