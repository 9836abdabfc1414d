#include "interapp/fonctions_donnees.h"

#include <algorithm>
#include <string_view>

#include "basics/trace.h"

namespace noxlux {

unsigned short FonctionsDonnees::positionDOM(CodeRetour& cr, const Code& caisse) {
  static constexpr std::array<std::string_view, 4> CAISSES_DOM = {"971", "972", "973", "974"};
  if (cr != NOX_CR_OK) {
    return 0;
  }
  const auto trouvee = std::ranges::find(CAISSES_DOM, caisse.vue());
  if (trouvee == CAISSES_DOM.end()) {
    cr = NOX_CR_CAISSE_NON_DOM;
    return 0;
  }
  return static_cast<unsigned short>(trouvee - CAISSES_DOM.begin() + 1);
}

void FonctionsDonnees::refuserCaisse(const Code& caisse) const {
  Trace::erreur(module_, "ERREUR: Le numéro de caisse PS (%s) n'est pas un numéro de DOM.",
                caisse.lireTexte());
}

void FonctionsDonnees::controlerVieActe(CodeRetour& cr, LectureDonnees& acces, const Code& acte,
                                        const Date& date, const ControleVie& controle) const {
  if (cr != NOX_CR_OK) {
    return;
  }
  const BlocTrace bloc(module_, cr, controle.banniere);
  Date creation;
  cr = acces.rechercherDateCreation(acte, creation);
  if (cr == NOX_CR_OK && date < creation) {
    Trace::erreur(module_, controle.tropTot);
    cr = controle.refus;
  }
  Date fin;
  if (cr == NOX_CR_OK) {
    cr = acces.rechercherDateFin(acte, fin);
  }
  if (cr == NOX_CR_OK && fin.lireBrute().estComplete() && fin < date) {
    Trace::erreur(module_, controle.tropTard);
    cr = controle.refus;
  }
}

}  // namespace noxlux
