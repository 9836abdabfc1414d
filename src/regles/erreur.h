// A rule violation: what the rule catalogue says of the rule, and the invoice lines it concerns.
#ifndef NOXLUX_REGLES_ERREUR_H
#define NOXLUX_REGLES_ERREUR_H

#include <cstdio>

#include "types/decimal.h"
#include "types/texte.h"
#include "types/type_liste.h"

namespace noxlux {

// One object serves a whole sequence of rules: a rule fills it, the element that ran the rule files a copy of
// it and empties it.
class Erreur {
 public:
  static constexpr const char* OUTREPASSABLE = "O";

  Erreur() = default;
  // A null secondary label gives an empty text.
  Erreur(const char* reference, char niveau, const TypeListe<Nombre>& prestations, char indicateurForcage,
         const char* libellePrincipal, const char* libelleSecondaire);

  const Code& lireReference() const { return reference_; }
  const Code& lireNiveau() const { return niveau_; }
  const TypeListe<Nombre>& lirePrestations() const { return prestations_; }
  const Code& lireIndicateurForcage() const { return indicateurForcage_; }
  const Texte& lireLibellePrincipal() const { return libellePrincipal_; }
  const Texte& lireLibelleSecondaire() const { return libelleSecondaire_; }

  void ecrireReference(const Code& reference) { reference_ = reference; }
  void ecrireNiveau(const Code& niveau) { niveau_ = niveau; }
  void ecrirePrestations(const TypeListe<Nombre>& prestations) { prestations_ = prestations; }
  void ecrireIndicateurForcage(const Code& indicateur) { indicateurForcage_ = indicateur; }
  void ecrireLibellePrincipal(const Texte& libelle) { libellePrincipal_ = libelle; }
  void ecrireLibelleSecondaire(const Texte& libelle) { libelleSecondaire_ = libelle; }

  // Appends a line number.
  CodeRetour ecrireUnePrestation(const Nombre& numero) { return prestations_.ajouterElement(numero); }
  // Replaces the first line number; appends it to an empty list.
  CodeRetour renseignerPremierePrestation(const Nombre& numero);

  // Empties every field.
  void initialiser();
  // Whether a violation was found.
  bool estRenseigne() const { return reference_.estRenseigne(); }
  // Whether it may be overridden; whether that leaves a forcing indicator on the lines.
  bool estOutrepassable() const { return niveau_.vue() == OUTREPASSABLE; }
  bool imposeForcage() const;

  void dump(unsigned short module) const;
  void afficher(std::FILE* sortie) const;

  // Same reference and same secondary label; the lines do not count.
  friend bool operator==(const Erreur& gauche, const Erreur& droite) {
    return gauche.reference_ == droite.reference_ && gauche.libelleSecondaire_ == droite.libelleSecondaire_;
  }

 private:
  Code reference_;
  Code niveau_;
  TypeListe<Nombre> prestations_;
  Code indicateurForcage_;
  Texte libellePrincipal_;
  Texte libelleSecondaire_;
};

using ListeErreurs = TypeListe<Erreur>;

}  // namespace noxlux

#endif
