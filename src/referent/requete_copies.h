// Copies of stored fields into the typed values of answers.
#ifndef NOXLUX_REFERENT_REQUETE_COPIES_H
#define NOXLUX_REFERENT_REQUETE_COPIES_H

#include <concepts>
#include <cstdint>
#include <functional>
#include <string_view>

#include "referent/requete_cadre.h"
#include "tables/valeurs_ligne.h"
#include "types/booleen.h"
#include "types/decimal.h"
#include "types/liste_codes.h"

namespace noxlux {

// The text of a stored code, without its padding. A byte that is a space or zero is an empty code.
inline std::string_view texteDe(const char& octet) {
  return {&octet, octet == ' ' || octet == '\0' ? 0U : 1U};
}
template <std::size_t N>
std::string_view texteDe(const CodeFixe<N>& code) {
  return code.vue();
}
inline std::string_view texteDe(const TexteVariable& texte) { return texte.vue(); }

template <class T>
CodeRetour copier(const T& source, Code& sortie) requires requires {
  texteDe(source);
}
{
  sortie = Code(texteDe(source));
  return NOX_CR_OK;
}
inline CodeRetour copier(const TexteVariable& source, Texte& sortie) {
  sortie = Texte(source.vue());
  return NOX_CR_OK;
}
inline CodeRetour copier(const DateBrute& source, Date& sortie) {
  sortie = Date(source);
  return NOX_CR_OK;
}
inline CodeRetour copier(char source, Booleen& sortie) {
  sortie = Booleen(source == 'O');
  return NOX_CR_OK;
}
inline CodeRetour copier(std::uint16_t source, Nombre& sortie) {
  sortie = Nombre(source);
  return NOX_CR_OK;
}
inline CodeRetour copier(std::uint32_t source, std::uint32_t& sortie) {
  sortie = source;
  return NOX_CR_OK;
}
// An age in years.
inline CodeRetour copier(std::uint16_t source, Periode& sortie) {
  sortie = Periode(source, 0);
  return NOX_CR_OK;
}
// Amounts and ratios are never negative; act records hold them unchecked.
template <std::derived_from<Flottant> F>
CodeRetour copier(double source, F& sortie) {
  if (!(source >= 0)) {
    return refuser(NOX_CR_DONNEE_ABSENTE, "valeur negative dans le referentiel");
  }
  sortie = F(source);
  return NOX_CR_OK;
}

// Appends the code of each entry. An entry that makes no code stops the copy.
template <class R, class P = std::identity>
CodeRetour ajouterCodes(const R& entrees, ListeCodes& liste, P projection = {}) {
  unsigned indice = 0;
  for (const auto& entree : entrees) {
    const std::string_view texte = texteDe(std::invoke(projection, entree));
    if (!Code::estValide(texte)) {
      Trace::erreur(TRACE_CONSULTATION, "probleme lors de la creation de l'objet Code, indice %u : %.*s",
                    indice, static_cast<int>(texte.size()), texte.data());
      return NOX_CR_DONNEE_ABSENTE;
    }
    const CodeRetour cr = liste.ajouterElement(Code(texte));
    if (cr != NOX_CR_OK) {
      return cr;
    }
    ++indice;
  }
  return NOX_CR_OK;
}
// The list becomes the codes of the entries.
template <class R, class P = std::identity>
CodeRetour copierCodes(const R& entrees, ListeCodes& liste, P projection = {}) {
  liste.reinitialiser();
  return ajouterCodes(entrees, liste, projection);
}
template <class T>
CodeRetour copier(const ListeCompacte<T>& source, ListeCodes& sortie) {
  return copierCodes(source, sortie);
}

}  // namespace noxlux

#endif
