// The consultation functions: one question about the reference at a date, one answer zone.
//
// Most of them are a query and a way to present what it gives; the dispatch table in the .cpp says which.
// Those that are more have a method of their own name.
#ifndef NOXLUX_INTERAPP_FONCTIONS_CONSULTER_H
#define NOXLUX_INTERAPP_FONCTIONS_CONSULTER_H

#include <cstdint>
#include <span>
#include <vector>

#include "interapp/fonctions_donnees.h"

namespace noxlux {

class FonctionsConsulter final : public FonctionsDonnees {
 public:
  // `acces` is not owned and holds a read access. REQUIRES: acces not null
  FonctionsConsulter(const Date& dateReference, Zone* zin, const SuperGroupe* superGroupe,
                     LectureDonnees* acces);

  // Runs the function of that number. 0xDFFF: there is none.
  CodeRetour executer(std::uint16_t numero, ZoneSortie& zoneOut);

 private:
  using Methode = CodeRetour (FonctionsConsulter::*)(ZoneSortie&);
  struct Table;

  // --- The shapes of an answer ---
  // The value that the query gives, in the group of its type.
  template <Validite VALIDITE, auto REQUETE>
  CodeRetour valeur(ZoneSortie& zoneOut);
  // The value, and the date of its last local modification when there is one.
  template <Validite VALIDITE, auto REQUETE, auto DATE_MODIFICATION>
  CodeRetour valeurModifiable(ZoneSortie& zoneOut);
  // Each code that the query gives, with its label in a code table.
  template <Validite VALIDITE, auto REQUETE, unsigned short TABLE_CODES>
  CodeRetour libelles(ZoneSortie& zoneOut);

  // --- Functions of no common shape ---
  CodeRetour CCAM_1(ZoneSortie& zoneOut);
  CodeRetour CCAM_4a(ZoneSortie& zoneOut);
  CodeRetour CCAM_16a(ZoneSortie& zoneOut);
  CodeRetour CCAM_32a(ZoneSortie& zoneOut);
  CodeRetour CCAM_40a(ZoneSortie& zoneOut);
  CodeRetour CCAM_42(ZoneSortie& zoneOut);
  CodeRetour CCAM_43a(ZoneSortie& zoneOut);
  CodeRetour TB08_1(ZoneSortie& zoneOut);
  CodeRetour TB09_1(ZoneSortie& zoneOut);
  CodeRetour TB13_1(ZoneSortie& zoneOut);
  CodeRetour TB20_1(ZoneSortie& zoneOut);
  CodeRetour TB21_1(ZoneSortie& zoneOut);

  // --- Steps; each does nothing once the code is not 0 ---
  // The key that a query takes, alone in the input zone.
  template <Validite VALIDITE, auto REQUETE>
  auto lireCle(CodeRetour& cr);
  template <auto REQUETE, std::size_t N>
  SortieDe<REQUETE> demander(CodeRetour& cr, const Cle<N>& cle);
  std::vector<Texte> demanderLibelles(CodeRetour& cr, unsigned short tableCodes, std::span<const Code> codes);
  CodeRetour repondreLibelles(CodeRetour& cr, ZoneSortie& zoneOut, unsigned short tableCodes,
                              std::span<const Code> codes);
  // The reference date must be in the act's life: 0xD003.
  void controlerDateReference(CodeRetour& cr, const Code& acte) const;

  Date dateReference_;
  LectureDonnees* acces_;
};

}  // namespace noxlux

#endif
