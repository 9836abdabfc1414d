// The rule functions: one regulation or tariff rule over a few lines, without a whole invoice.
#ifndef NOXLUX_INTERAPP_FONCTIONS_APPLIQUER_H
#define NOXLUX_INTERAPP_FONCTIONS_APPLIQUER_H

#include <cstdint>
#include <memory>

#include "basics/format_verifie.h"
#include "interapp/fonctions.h"

namespace noxlux {

class LectureDonnees;
class Reglementation;
class Tarification;
struct Facture;
struct LigneActe;
struct LigneCCAM;

class FonctionsAppliquer final : public Fonctions {
 public:
  // None is owned. REQUIRES: none is null
  FonctionsAppliquer(Zone* zin, const SuperGroupe* superGroupe, LectureDonnees* acces,
                     Reglementation* reglementation, Tarification* tarification);

  // Runs the function of that number. 0xDFFF: there is none. An answer zone comes with 0, and with the
  // outcomes 0xD112 and 0xD115.
  CodeRetour executer(std::uint16_t numero, ZoneSortie& zoneOut);

 private:
  struct Table;

  // --- Functions ---
  CodeRetour C_Association(ZoneSortie& zoneOut);
  CodeRetour C_Base(ZoneSortie& zoneOut);
  CodeRetour C_Compatibilite(ZoneSortie& zoneOut);
  CodeRetour C_Dent(ZoneSortie& zoneOut);
  CodeRetour C_ExoActe(ZoneSortie& zoneOut);
  CodeRetour C_ExoFacture(ZoneSortie& zoneOut);
  CodeRetour C_ExoPrevention(ZoneSortie& zoneOut);
  CodeRetour C_Pu(ZoneSortie& zoneOut);

  // --- Steps; each does nothing once the code is not 0 ---
  // The rules whose overriding disengages a service.
  ListeCodes lireDebrayantes(CodeRetour& cr, const char* service);
  // Whether data remain, and the group that comes next.
  bool resteDonnees(CodeRetour& cr, std::uint16_t& groupe);
  // Reads lines to the end of the data: creer(cr, groupe) reads one; debrayer(ligne, reference) is told each
  // rule that is overridden on it. Travel lines are attached. Beyond 200: 0xE100.
  template <class Creer, class Debrayer>
  void lireLignes(CodeRetour& cr, Facture& facture, FormatVerifie<> tropDeLignes, Creer creer,
                  Debrayer debrayer);
  // CCAM lines, disengaged by some rules: lireSuite(cr, ligne) reads what follows line number,
  // date and act.
  template <class LireSuite>
  void lireLignesCCAM(CodeRetour& cr, Facture& facture, const ListeCodes& debrayantes,
                      FormatVerifie<> tropDeLignes, LireSuite lireSuite);
  template <class Debrayer>
  void extraireGroupes3530(CodeRetour& cr, LigneActe& ligne, std::uint16_t position, Debrayer debrayer);
  void lireIdentite(CodeRetour& cr, LigneCCAM& ligne);
  std::unique_ptr<LigneActe> lireLigneExoneration(CodeRetour& cr, std::uint16_t groupe, bool premiere);

  LectureDonnees* acces_;
  Reglementation* reglementation_;
  Tarification* tarification_;
};

}  // namespace noxlux

#endif
