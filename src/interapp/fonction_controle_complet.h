// The full check: reads a whole invoice from the input zone, has it checked, answers the forcing indicators
// of its lines and the errors found.
#ifndef NOXLUX_INTERAPP_FONCTION_CONTROLE_COMPLET_H
#define NOXLUX_INTERAPP_FONCTION_CONTROLE_COMPLET_H

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "interapp/fonctions.h"
#include "regles/erreur.h"

namespace noxlux {

class Reglementation;
class Tarification;
struct Facture;
struct LigneActe;

class FonctionControleComplet final : public Fonctions {
 public:
  // None is owned. Groups that the description does not expect are skipped. REQUIRES: none is null
  FonctionControleComplet(Zone* zin, const SuperGroupe* superGroupe, Reglementation* reglementation,
                          Tarification* tarification);

  // `niveau`: 2 when an error returned may not be overridden, 1 when all of them may, 0 when there is none.
  CodeRetour executer(ZoneSortie& zoneOut, unsigned short& niveau);

 private:
  using Restituees = std::vector<const Erreur*>;
  struct Table;

  // --- Fields ---
  template <auto MEMBRE, auto EXTRAIRE, class O>
  void lireMembre(CodeRetour& cr, O& objet);
  template <class O>
  void ignorerMembre(CodeRetour& cr, O& objet);
  template <class Champs, class O>
  void lireChamps(CodeRetour& cr, const Champs& champs, O& objet);
  template <const auto& CHAMPS>
  void lireSuite(CodeRetour& cr, std::unique_ptr<LigneActe>& ligne);

  // --- Reading; each does nothing once the code is not 0 ---
  void lireFacture(CodeRetour& cr, Facture& facture);
  void lireEntete(CodeRetour& cr, Facture& facture);
  void lireNatureAssurance(CodeRetour& cr, Facture& facture);
  void lireLignes(CodeRetour& cr, Facture& facture);
  void lirePrestation(CodeRetour& cr, Facture& facture);
  void lireDeplacement(CodeRetour& cr, Facture& facture, std::uint16_t groupe);
  void lireActe(CodeRetour& cr, std::unique_ptr<LigneActe>& ligne);
  void lireDents(CodeRetour& cr, std::unique_ptr<LigneActe>& ligne);
  // The groups that follow the one that opened the line, the first `nombre` of those there may be.
  void lireSuites(CodeRetour& cr, const Facture& facture, std::size_t nombre,
                  std::unique_ptr<LigneActe>& ligne);
  void extraireGroupes3530(CodeRetour& cr, const Nombre& numero, std::uint16_t ligne);
  // Whether that group of the line comes next; its line number is then read and checked.
  bool groupeDeLaLigne(CodeRetour& cr, std::uint16_t groupe, const Nombre& numero, std::uint16_t ligne);
  std::uint16_t groupeSuivant(CodeRetour& cr);

  // --- Answer ---
  // The errors that are answered, and their level.
  Restituees filtrer(const ListeErreurs& erreurs, unsigned short& niveau) const;
  bool estOutrepassee(const Erreur& erreur) const;

  Reglementation* reglementation_;
  Tarification* tarification_;
  // Rules that the professional overrides: reference, line number.
  std::set<std::pair<std::string, std::int32_t>> outrepassees_;
};

}  // namespace noxlux

#endif
