// The check of the invoices of a batch, by this process or by several, and what becomes of their answers.
#ifndef NOXLUX_COMMANDE_CONTROLE_LOT_H
#define NOXLUX_COMMANDE_CONTROLE_LOT_H

#include <string>

#include "noxlux/controle_par_profils.h"
#include "noxlux/facture_json.h"
#include "noxlux/lot.h"

namespace noxlux::commande {

struct OptionsLot {
  Detail detail = Detail::VERDICT;
  bool csv = false;     // a line of CSV an error, in place of the answers
  std::string rapport;  // the page of HTML to write; empty: none
  unsigned taches = 1;  // processes
  ControleParProfils* profils =
      nullptr;  // by whom they are checked, where not by the library of this process
};

struct CompteLot {
  std::size_t factures = 0;
  std::size_t acceptees = 0;
  std::size_t enErreur = 0;     // checked, with errors
  std::size_t impossibles = 0;  // not checked: its record says why

  static char sorte(const Json& reponse) {
    return !reponse.contains("verdict")       ? IMPOSSIBLE
           : reponse["verdict"] == "acceptee" ? ACCEPTEE
                                              : EN_ERREUR;
  }
  void compter(char sorte) {
    ++factures;
    ++(sorte == IMPOSSIBLE ? impossibles : sorte == ACCEPTEE ? acceptees : enErreur);
  }
  void compter(const Json& reponse) { compter(sorte(reponse)); }

 private:
  static constexpr char ACCEPTEE = 'A';
  static constexpr char EN_ERREUR = 'E';
  static constexpr char IMPOSSIBLE = 'I';
};

// Writes the answers on the standard output, in the order of the invoices. REQUIRES: a library is loaded, or
// there are profiles and one process
CompteLot controlerLesFactures(LectureLot& lecture, const OptionsLot& options);

}  // namespace noxlux::commande

#endif
