// The lists of act records are counted on 16 bits.
#include <tuple>

#include "compilateur/cles_toml.h"
#include "compilateur/plafonds.h"
#include "compilateur/verifications.h"

namespace noxlux::compilateur {

namespace {

template <class E>
void verifierListes(const E& element, Rapport& rapport);

template <class E, class T>
void verifierListe(const E& element, const char* nom, const std::vector<T>& liste, Rapport& rapport) {
  if (liste.size() > PLAFOND_LISTE) {
    rapport.signaler(element.lieu, phrase("« ", nom, " » : la liste compte ", std::to_string(liste.size()),
                                          " éléments, et ", std::to_string(PLAFOND_LISTE), " au plus"));
  }
  if constexpr (std::is_base_of_v<Element, T>) {
    for (const T& membre : liste) {
      verifierListes(membre, rapport);
    }
  }
}
template <class E, class T>
void verifierListe(const E&, const char*, const T&, Rapport&) {}

template <class E>
void verifierListes(const E& element, Rapport& rapport) {
  std::apply(
      [&](const auto&... cle) { (verifierListe(element, cle.nom, element.*(cle.membre), rapport), ...); },
      CLES<E>);
}

}  // namespace

void verifierTailles(const Modele& modele, Rapport& rapport) {
  for (const Acte& acte : modele.actes) {
    verifierListes(acte, rapport);
  }
}

}  // namespace noxlux::compilateur
