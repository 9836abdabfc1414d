#include "interapp/fonctions_modifier.h"

#include <type_traits>

#include "basics/trace.h"
#include "interapp/aiguillage.h"

namespace noxlux {

namespace {

using M = ModificationDonnees;

// What follows the value in a change: it is to be recorded, and the level is to be found by its key.
template <auto CHANGEMENT>
constexpr auto finArguments() {
  using S = SignatureDe<CHANGEMENT>;
  constexpr std::size_t PLACE_ENREGISTRER = S::CLES + (S::POSITION ? 3 : 2);
  if constexpr (S::NOMBRE > PLACE_ENREGISTRER + 1) {
    return std::tuple<bool, std::nullptr_t>(true, nullptr);
  } else {
    return std::tuple<bool>(true);
  }
}

}  // namespace

FonctionsModifier::FonctionsModifier(const Date& dateEffet, Zone* zin, const SuperGroupe* superGroupe,
                                     ModificationDonnees* acces)
    : FonctionsDonnees(zin, superGroupe, TRACE_MODIFICATION), dateEffet_(dateEffet), acces_(acces) {
  exiger(zin != nullptr, "zin != __null");
  exiger(acces != nullptr, "acces != __null");
}

void FonctionsModifier::controlerDateEffet(CodeRetour& cr, const Code& acte) const {
  static constexpr ControleVie CONTROLE = {"FonctionsModifier::controlerDateEffet", NOX_CR_DATE_EFFET,
                                           "date d'effet antérieure a la date de création de l'acte",
                                           "date d'effet postérieure a la date de fin de l'acte"};
  controlerVieActe(cr, *acces_, acte, dateEffet_, CONTROLE);
}

void FonctionsModifier::controlerRegroupement(CodeRetour& cr, const Code& code) const {
  if (cr == NOX_CR_OK && !acces_->rechercherExistenceCodeRegroupement(code, dateEffet_)) {
    Trace::erreur(TRACE_MODIFICATION, "code regroupement inexistant dans le référentiel");
    cr = NOX_CR_REGROUPEMENT_INCONNU;
  }
}

template <Validite VALIDITE, auto CHANGEMENT>
CodeRetour FonctionsModifier::modifier() {
  using S = SignatureDe<CHANGEMENT>;
  using Valeur = ValeurDe<CHANGEMENT>;
  CodeRetour cr = NOX_CR_OK;
  auto cle = extraireCle<CHANGEMENT>(cr);
  const auto valeur = extraire<Valeur>(cr);
  verifierFinDonnees(cr);
  placerCaisse<CHANGEMENT>(cr, cle);
  if constexpr (VALIDITE == Validite::ACTE_EN_VIGUEUR) {
    controlerDateEffet(cr, cle.codes[0]);
  }
  if constexpr (std::is_same_v<Valeur, Code>) {
    controlerRegroupement(cr, valeur);
  }
  if (cr == NOX_CR_OK) {
    cr = std::apply([&](const auto&... parts) { return (acces_->*CHANGEMENT)(parts...); },
                    std::tuple_cat(cle.lireCodes(), std::tie(dateEffet_), siPrevu<S::POSITION>(cle.position),
                                   std::tie(valeur), finArguments<CHANGEMENT>()));
  }
  // A value that the change refuses is that of the last field read.
  return controleur()->situerFaute(cr);
}

CodeRetour FonctionsModifier::TB13_1() {
  CodeRetour cr = NOX_CR_OK;
  const Code code = extraireCode(cr);
  const Texte libelle = extraireTexte(cr);
  verifierFinDonnees(cr);
  if (cr == NOX_CR_OK && acces_->rechercherExistenceCodeRegroupement(code)) {
    Trace::erreur(TRACE_MODIFICATION, "le code regroupement existe déjà dans la table Codes Regroupement");
    cr = NOX_CR_REGROUPEMENT_EXISTANT;
  }
  if (cr == NOX_CR_OK && acces_->rechercherExistenceNaturePrestation(code)) {
    Trace::erreur(TRACE_MODIFICATION, "le code regroupement existe déjà dans la table Obligation Codage");
    cr = NOX_CR_OBLIGATION_EXISTANTE;
  }
  return cr != NOX_CR_OK ? cr : acces_->ajouterCodeRegroupement(dateEffet_, code, libelle, true);
}

struct FonctionsModifier::Table {
  using F = FonctionsModifier;
  static constexpr Validite ACTE = Validite::ACTE_EN_VIGUEUR;
  static constexpr Validite LIBRE = Validite::SANS_CONTROLE;

  static constexpr auto LIGNES = std::to_array<LigneAiguillage<Methode>>({
      {51, "CCAM_37", &F::modifier<ACTE, &M::modifierPrixUnitaire>},
      {52, "CCAM_39", &F::modifier<ACTE, &M::modifierSupplementCharges>},
      {53, "CCAM_42", &F::modifier<ACTE, &M::modifierCodeRegroupement>},
      {54, "CCAM_47a", &F::modifier<ACTE, &M::modifierMajorationDOM>},
      {55, "TB02_1", &F::modifier<LIBRE, &M::modifierCoefficientAssociationNonPrevue>},
      {56, "TB07_1", &F::modifier<LIBRE, &M::modifierSeuil>},
      {57, "TB11_1", &F::modifier<LIBRE, &M::modifierForfaitModificateur>},
      {58, "TB11_2", &F::modifier<LIBRE, &M::modifierTauxModificateur>},
      {59, "TB12_1", &F::modifier<LIBRE, &M::modifierForfaitNonConventionnes>},
      {60, "TB12_2", &F::modifier<LIBRE, &M::modifierTauxNonConventionnes>},
      {96, "TB13_1", &F::TB13_1},
  });
  static_assert(estOrdonnee(LIGNES));
};

CodeRetour FonctionsModifier::executer(std::uint16_t numero) {
  static constexpr TextesFamille TEXTES = {TRACE_MODIFICATION, "FonctionsModifier::%s", TRACE_CONTROLE,
                                           "Identifiant (%d) non prévu dans les fonctions de modifications"};
  return executerLigne(*this, Table::LIGNES, TEXTES, numero);
}

}  // namespace noxlux
