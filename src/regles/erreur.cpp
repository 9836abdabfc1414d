#include "regles/erreur.h"

#include <string_view>

#include "basics/trace.h"

namespace noxlux {

Erreur::Erreur(const char* reference, char niveau, const TypeListe<Nombre>& prestations,
               char indicateurForcage, const char* libellePrincipal, const char* libelleSecondaire)
    : reference_(reference),
      niveau_(std::string_view(&niveau, 1)),
      prestations_(prestations),
      indicateurForcage_(std::string_view(&indicateurForcage, 1)),
      libellePrincipal_(libellePrincipal),
      libelleSecondaire_(libelleSecondaire == nullptr ? "" : libelleSecondaire) {}

CodeRetour Erreur::renseignerPremierePrestation(const Nombre& numero) {
  if (prestations_.estVide()) {
    return prestations_.ajouterElement(numero);
  }
  prestations_[0] = numero;
  return NOX_CR_OK;
}

void Erreur::initialiser() {
  reference_ = Code();
  niveau_ = Code();
  prestations_.reinitialiser();
  indicateurForcage_ = Code();
  libellePrincipal_ = Texte();
  libelleSecondaire_ = Texte();
}

bool Erreur::imposeForcage() const { return estOutrepassable() && indicateurForcage_.estRenseigne(); }

void Erreur::dump(unsigned short module) const {
  if (Trace::niveau(module) == 0) {
    return;
  }
  Trace::debut(module, "Erreur::dump");
  Trace::ecrire(module, "%s (Outre-passable : %s ) :", reference_.lireTexte(), niveau_.lireTexte());
  Trace::ecrire(module, "%d prestations : ", prestations_.lireNombreElements());
  for (unsigned short i = 0; i < prestations_.lireNombreElements(); ++i) {
    Trace::ecrire(module, "prestations[%d] = %d", i, prestations_[i].lireValeur());
  }
  Trace::ecrire(module, "indicateur de forcage = %s", indicateurForcage_.lireTexte());
  Trace::ecrire(module, "%s", libellePrincipal_.lireTexte());
  Trace::fin(module, "%s", libelleSecondaire_.lireTexte());
}

void Erreur::afficher(std::FILE* sortie) const {
  std::fprintf(sortie, "Erreur %s (%s) : \n", reference_.lireTexte(), niveau_.lireTexte());
  for (const Nombre& numero : prestations_) {
    // The index is not printed: "[i]" is what readers of these listings know.
    std::fprintf(sortie, "   prestations[i] = %ld \n", static_cast<long>(numero.lireValeur()));
  }
  std::fprintf(sortie, "    %s\n", libellePrincipal_.lireTexte());
  if (libelleSecondaire_.estRenseigne()) {
    std::fprintf(sortie, "    %s\n", libelleSecondaire_.lireTexte());
  }
}

}  // namespace noxlux
