#include "types/liste_codes.h"

namespace noxlux {

bool ListeCodes::estValide() const {
  for (const Code* code = begin(); code != end(); ++code) {
    if (!code->estValide() || std::find(begin(), code, *code) != code) {
      return false;
    }
  }
  return true;
}

bool ListeCodes::operator==(const ListeCodes& autre) const {
  return lireNombreElements() == autre.lireNombreElements() &&
         std::all_of(begin(), end(), [&](const Code& code) { return autre.contient(code); });
}

CodeRetour ListeCodes::unionListe(const ListeCodes& right) {
  exiger(ok(), "ok()");
  exiger(right.ok(), "right.ok()");
  if (&right == this) {
    return NOX_CR_OK;
  }
  for (const Code& code : right) {
    if (!contient(code)) {
      if (const CodeRetour cr = ajouterElement(code); cr != NOX_CR_OK) {
        return cr;
      }
    }
  }
  return NOX_CR_OK;
}

CodeRetour ListeCodes::unionListe(const ListeCodes& l1, const ListeCodes& l2) {
  ListeCodes resultat(l1);
  const CodeRetour cr = resultat.unionListe(l2);
  *this = std::move(resultat);
  return cr;
}

CodeRetour ListeCodes::intersectionListe(const ListeCodes& liste1, const ListeCodes& liste2) {
  exiger(liste1.ok(), "liste1.ok()");
  exiger(liste2.ok(), "liste2.ok()");
  ListeCodes resultat;
  CodeRetour cr = NOX_CR_OK;
  for (const Code& code : liste1) {
    if (cr == NOX_CR_OK && liste2.contient(code)) {
      cr = resultat.ajouterElement(code);
    }
  }
  *this = std::move(resultat);
  return cr;
}

}  // namespace noxlux
