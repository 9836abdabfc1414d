// Answers: described once, walked twice. A first pass sums the size, so that the zone is allocated exactly;
// a second one writes it.
#ifndef NOXLUX_INTERAPP_REPONSE_H
#define NOXLUX_INTERAPP_REPONSE_H

#include <cstddef>
#include <cstdint>

#include "interapp/fonctions.h"

namespace noxlux {

// Sums the size of the groups that it is told.
class MesureReponse {
 public:
  void groupe(std::uint16_t) {
    clore();
    ouvert_ = true;
  }
  void champ(const Texte& texte) { ajouter(texte.lireLongueur()); }
  void champ(const TypeSimple& valeur) { ajouter(valeur.lireTaille()); }
  void taux(const Coefficient& valeur) { ajouter(valeur.lireTaille(Coefficient::DECIMALES_TAUX)); }
  void champVide() { ajouter(0); }
  std::size_t taille() {
    clore();
    return taille_;
  }

 private:
  void ajouter(std::size_t longueur) { contenu_ += Zone::calculerTailleChamp(longueur); }
  void clore() {
    taille_ += ouvert_ ? Zone::calculerTailleGroupe(contenu_) : 0;
    contenu_ = 0;
    ouvert_ = false;
  }

  std::size_t taille_ = 0;
  std::size_t contenu_ = 0;
  bool ouvert_ = false;
};

// Writes them.
class EcritureReponse {
 public:
  EcritureReponse(CodeRetour& cr, ZoneSortie& zone) : cr_(cr), zone_(zone) {}
  void groupe(std::uint16_t identifiant) { Fonctions::ajouterGroupe(cr_, zone_, identifiant); }
  template <class V>
  void champ(const V& valeur) {
    Fonctions::ajouterChamp(cr_, zone_, valeur);
  }
  void taux(const Coefficient& valeur) { Fonctions::ajouterTaux(cr_, zone_, valeur); }
  void champVide() { Fonctions::ajouterChampVide(cr_, zone_); }

 private:
  CodeRetour& cr_;
  ZoneSortie& zone_;
};

// The zone that `decrire` tells: a callable that calls groupe(identifier) and champ(value) on its argument.
// Nothing once the code is not 0.
template <class Description>
ZoneSortie ecrireReponse(CodeRetour& cr, const Description& decrire) {
  ZoneSortie zone;
  if (cr == NOX_CR_OK) {
    MesureReponse mesure;
    decrire(mesure);
    zone = Fonctions::allouerZoneOut(cr, mesure.taille());
  }
  if (cr == NOX_CR_OK) {
    EcritureReponse ecriture(cr, zone);
    decrire(ecriture);
  }
  return zone;
}

}  // namespace noxlux

#endif
