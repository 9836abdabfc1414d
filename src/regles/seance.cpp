#include "regles/seance.h"

#include "basics/trace.h"
#include "regles/deroulement.h"
#include "regles/facture.h"
#include "regles/tarification.h"
#include "regles/trace_regles.h"

namespace noxlux {

Seance::Seance(const Nombre& numeroSeance, const Date* dateSeance) : numero(numeroSeance), date(dateSeance) {
  exiger(date != nullptr, "date != __null");
}

void Seance::ajouterLigne(LigneCCAM* ligne) {
  exiger(lignes.size() < MAX_LIGNES, "nbLignes < MAX_LIGNES");
  exiger(ligne != nullptr, "ligne != __null");
  lignes.push_back(ligne);
  ligne->seance = this;
  topDebrayage = topDebrayage || ligne->topDebrayage;
}

CodeRetour Seance::controlerExoFacture(Tarification& tarification, ListeErreurs& erreurs,
                                       Code& factureExoneree) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Seance::controlerExoFacture");
  Deroulement<Tarification> deroulement(tarification, erreurs);
  const Code& caisse = codeOuVide(lignes.front()->factureParent->caissePS);
  seuilVerifie = deroulement.calcul(Tarification::PROD790B, *this, Portee::SEANCE, [&] {
    return tarification.appliquerProd790B(*this, caisse, factureExoneree);
  });
  cr = deroulement.code();
  if (cr == NOX_CR_OK && !seuilVerifie && factureExoneree.vue() != Facture::EXONEREE) {
    factureExoneree = Code(Facture::NON_VERIFIABLE);
  }
  return cr;
}

void Seance::dump() const {
  if (Trace::niveau(TRACE_CONTROLE) == 0) {
    return;
  }
  const BlocParticulier bloc(FinMuette{}, "Seance n° %d::dump", numero.lireValeur());
  Trace::ecrire(TRACE_CONTROLE, "date         = %s", date->lireValeur().c_str());
  Trace::ecrire(TRACE_CONTROLE, "topDebrayage = %s", vraiFaux(topDebrayage));
  for (std::size_t i = 0; i < lignes.size(); ++i) {
    Trace::ecrire(TRACE_CONTROLE, "acte[%d] = %s (ligne = %d)", static_cast<int>(i),
                  lignes[i]->acte.lireTexte(), lignes[i]->numero.lireValeur());
  }
}

}  // namespace noxlux
