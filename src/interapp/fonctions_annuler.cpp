#include "interapp/fonctions_annuler.h"

#include "basics/trace.h"
#include "interapp/aiguillage.h"

namespace noxlux {

FonctionsAnnuler::FonctionsAnnuler(Zone* zin, const SuperGroupe* superGroupe, ModificationDonnees* acces)
    : FonctionsDonnees(zin, superGroupe, TRACE_MODIFICATION), acces_(acces) {
  exiger(acces != nullptr, "acces != __null");
}

template <auto ANNULATION>
CodeRetour FonctionsAnnuler::annuler() {
  CodeRetour cr = NOX_CR_OK;
  auto cle = extraireCle<ANNULATION>(cr);
  verifierFinDonnees(cr);
  placerCaisse<ANNULATION>(cr, cle);
  if (cr == NOX_CR_OK) {
    cr =
        std::apply([&](const auto&... parts) { return (acces_->*ANNULATION)(parts...); },
                   std::tuple_cat(cle.lireCodes(), siPrevu<SignatureDe<ANNULATION>::POSITION>(cle.position)));
  }
  return cr;
}

struct FonctionsAnnuler::Table {
  using F = FonctionsAnnuler;
  using M = ModificationDonnees;

  static constexpr auto LIGNES = std::to_array<LigneAiguillage<Methode>>({
      {85, "CCAM_37", &F::annuler<&M::annulerModificationsPrixUnitaire>},
      {86, "CCAM_39", &F::annuler<&M::annulerModificationsSupplementCharges>},
      {87, "CCAM_42", &F::annuler<&M::annulerModificationsCodeRegroupement>},
      {88, "CCAM_47a", &F::annuler<&M::annulerModificationsMajorationDOM>},
      {89, "TB02_1", &F::annuler<&M::annulerModificationsCoefficientAssociationNonPrevue>},
      {90, "TB07_1", &F::annuler<&M::annulerModificationsSeuilExoTM>},
      {91, "TB11", &F::annuler<&M::annulerModificationsValeurModificateur>},
      {93, "TB13_1", &F::annuler<&M::annulerNouveauxCodesRegroupement>},
      {94, "TB12", &F::annuler<&M::annulerModificationsValeurNonConventionnes>},
  });
  static_assert(estOrdonnee(LIGNES));
};

CodeRetour FonctionsAnnuler::executer(std::uint16_t numero) {
  static constexpr TextesFamille TEXTES = {TRACE_MODIFICATION, "FonctionsAnnuler::%s", TRACE_CONTROLE,
                                           "Identifiant (%d) non prévu dans les fonctions d'annulations"};
  return executerLigne(*this, Table::LIGNES, TEXTES, numero);
}

}  // namespace noxlux
