// The TOML form of the model: for each kind of item, its keys and the members they fill. A member's type
// tells what its key may hold.
//
// The keys of an item that is a line are the names of the line's fields: they are told here only where the
// item holds a field in a form of its own, and where it holds what the line does not.
#ifndef NOXLUX_COMPILATEUR_CLES_TOML_H
#define NOXLUX_COMPILATEUR_CLES_TOML_H

#include <tuple>
#include <utility>

#include "compilateur/modele.h"
#include "tables/niveaux_champs.h"

namespace noxlux::compilateur {

template <class E, class T>
struct Cle {
  using Valeur = T;
  T E::*membre;
  const char* nom;
  bool obligatoire;

  template <auto CHAMP>
  static constexpr bool dit() {
    return false;
  }
};

template <class E, class T>
constexpr Cle<E, T> requis(const char* nom, T E::*membre) {
  return {membre, nom, true};
}
template <class E, class T>
constexpr Cle<E, T> option(const char* nom, T E::*membre) {
  return {membre, nom, false};
}

namespace detail {

template <auto GAUCHE, auto DROITE>
constexpr bool estLeMeme() {
  if constexpr (std::is_same_v<decltype(GAUCHE), decltype(DROITE)>) {
    return GAUCHE == DROITE;
  } else {
    return false;
  }
}

template <class M>
struct Membre;
template <class L, class T>
struct Membre<T L::*> {
  using Ligne = L;
  using Valeur = T;
};

template <class L>
constexpr auto champsDe() {
  if constexpr (requires { L::champs(); }) {
    return L::champs();
  } else {
    return ChampsDuNiveau<L>::liste();
  }
}

template <class L>
inline constexpr auto CHAMPS = champsDe<L>();
template <class L>
using Rangs = std::make_index_sequence<std::tuple_size_v<decltype(champsDe<L>())>>;

template <auto CHAMP>
constexpr NomChamp nomDe() {
  using L = typename Membre<decltype(CHAMP)>::Ligne;
  NomChamp nom(nullptr);
  const auto chercher = [&]<std::size_t... I>(std::index_sequence<I...>) {
    ((estLeMeme<CHAMP, std::get<I>(CHAMPS<L>).membre>() ? void(nom = std::get<I>(CHAMPS<L>).nom) : void()),
     ...);
  };
  chercher(Rangs<L>{});
  return nom;
}

}  // namespace detail

// The key of a field of the line that the item holds in a form of its own.
template <auto CHAMP_, class E, class T>
struct Forme : Cle<E, T> {
  static constexpr auto CHAMP = CHAMP_;

  template <auto AUTRE>
  static constexpr bool dit() {
    return detail::estLeMeme<CHAMP, AUTRE>();
  }
};
template <auto CHAMP, class E, class T>
constexpr Forme<CHAMP, E, T> forme(T E::*membre) {
  constexpr NomChamp NOM = detail::nomDe<CHAMP>();
  static_assert(NOM.texte != nullptr, "a field that the line does not describe");
  return {{membre, NOM.texte, NOM.obligatoire}};
}

namespace detail {

// The key of the field of that rank; none where another one tells it.
template <class L, std::size_t I, class... A>
constexpr auto cleDuChamp() {
  constexpr auto CHAMP = std::get<I>(CHAMPS<L>);
  using T = typename Membre<decltype(CHAMP.membre)>::Valeur;
  if constexpr ((A::template dit<CHAMP.membre>() || ...)) {
    return std::tuple{};
  } else {
    static_assert(!EST_PLAGE<T>, "a run, whose lines nothing tells");
    return std::tuple{Cle<L, T>{CHAMP.membre, CHAMP.nom.texte, CHAMP.nom.obligatoire}};
  }
}

}  // namespace detail

// The keys of an item that is a line: those of its fields, then the others.
template <class E, class... A>
constexpr auto cles(A... autres) {
  using L = typename E::Ligne;
  return [&]<std::size_t... I>(std::index_sequence<I...>) {
    return std::tuple_cat(detail::cleDuChamp<L, I, A...>()..., std::tuple{autres...});
  }
  (detail::Rangs<L>{});
}

// The keys of an item that holds every field of a level in a form of its own.
template <class E, class... F>
constexpr auto niveau(F... formes) {
  static_assert(sizeof...(F) == detail::Rangs<typename E::Ligne>::size(), "a field that nothing tells");
  return std::tuple{formes...};
}

// The start and end of validity, before the other keys.
template <class... C>
constexpr auto dates(C... autres) {
  return std::tuple{requis("debut", &ElementDate::debut), option("fin", &ElementDate::fin), autres...};
}

template <class E>
inline constexpr auto CLES = nullptr;

template <class L>
inline constexpr auto CLES<ElementDe<L>> = cles<ElementDe<L>>();

template <>
inline constexpr auto CLES<Entete> = std::tuple{requis("version", &Entete::version),
                                                requis("version_base_ccam", &Entete::versionBaseCCAM),
                                                requis("date", &Entete::date),
                                                requis("version_minimum", &Entete::versionMinimum),
                                                option("revision", &Entete::revision),
                                                requis("variante", &Entete::variante),
                                                option("commentaire", &Entete::commentaire)};

template <>
inline constexpr auto CLES<AssociationActe> =
    niveau<AssociationActe>(forme<&Association::acte>(&AssociationActe::acte),
                            forme<&Association::regleTarifaire>(&AssociationActe::regle));

template <>
inline constexpr auto CLES<HistoriquePhase> =
    niveau<HistoriquePhase>(forme<&HistoriqueNiveauPhase::dateEffet>(&HistoriquePhase::effet),
                            forme<&HistoriqueNiveauPhase::prixUnitaire>(&HistoriquePhase::prix),
                            forme<&HistoriqueNiveauPhase::supplementCharges>(&HistoriquePhase::supplement),
                            forme<&HistoriqueNiveauPhase::majorationsDOM>(&HistoriquePhase::dom));

template <>
inline constexpr auto CLES<Phase> = niveau<Phase>(
    forme<&NiveauPhase::codePhase>(&Phase::code), forme<&NiveauPhase::nombreDents>(&Phase::nombreDents),
    forme<&NiveauPhase::ageMinimum>(&Phase::ageMinimum), forme<&NiveauPhase::ageMaximum>(&Phase::ageMaximum),
    forme<&NiveauPhase::dentsIncompatibles>(&Phase::dentsIncompatibles),
    forme<&NiveauPhase::historiques>(&Phase::historiques));

template <>
inline constexpr auto CLES<HistoriqueActivite> = niveau<HistoriqueActivite>(
    forme<&HistoriqueNiveauActivite::dateEffet>(&HistoriqueActivite::effet),
    forme<&HistoriqueNiveauActivite::categorieMedicale>(&HistoriqueActivite::categorieMedicale),
    forme<&HistoriqueNiveauActivite::codeRegroupement>(&HistoriqueActivite::regroupement),
    forme<&HistoriqueNiveauActivite::modificateurs>(&HistoriqueActivite::modificateurs),
    forme<&HistoriqueNiveauActivite::classesSpecialites>(&HistoriqueActivite::classesSpecialite),
    forme<&HistoriqueNiveauActivite::associations>(&HistoriqueActivite::associations));

template <>
inline constexpr auto CLES<Activite> =
    niveau<Activite>(forme<&NiveauActivite::codeActivite>(&Activite::code),
                     forme<&NiveauActivite::agrementsRadio>(&Activite::agrementsRadio),
                     forme<&NiveauActivite::rmo>(&Activite::rmo),
                     forme<&NiveauActivite::extensionsDocumentaires>(&Activite::extensions),
                     forme<&NiveauActivite::historiques>(&Activite::historiques),
                     forme<&NiveauActivite::phases>(&Activite::phases));

template <>
inline constexpr auto CLES<HistoriqueActe> =
    niveau<HistoriqueActe>(forme<&HistoriqueNiveauActe::dateEffet>(&HistoriqueActe::effet),
                           forme<&HistoriqueNiveauActe::admissionRemboursement>(&HistoriqueActe::admission),
                           forme<&HistoriqueNiveauActe::ententePrealable>(&HistoriqueActe::ententePrealable),
                           forme<&HistoriqueNiveauActe::exonerationsTM>(&HistoriqueActe::exonerations),
                           forme<&HistoriqueNiveauActe::procedures>(&HistoriqueActe::procedures),
                           forme<&HistoriqueNiveauActe::incompatibilites>(&HistoriqueActe::incompatibles));

template <>
inline constexpr auto CLES<Acte> = niveau<Acte>(
    forme<&NiveauActe::codeStructure>(&Acte::code), forme<&NiveauActe::libelleCourt>(&Acte::libelleCourt),
    forme<&NiveauActe::libelleLong>(&Acte::libelleLong), forme<&NiveauActe::typeActe>(&Acte::type),
    forme<&NiveauActe::conditionsGenerales>(&Acte::conditions), forme<&NiveauActe::notes>(&Acte::notes),
    forme<&NiveauActe::sexeCompatible>(&Acte::sexe), forme<&NiveauActe::codeMenu>(&Acte::menu),
    forme<&NiveauActe::dateCreation>(&Acte::creation), forme<&NiveauActe::dateFin>(&Acte::fin),
    forme<&NiveauActe::fraisDeplacement>(&Acte::fraisDeplacement),
    forme<&NiveauActe::naturesAssurance>(&Acte::naturesAssurance),
    forme<&NiveauActe::historiques>(&Acte::historiques), forme<&NiveauActe::activites>(&Acte::activites));

template <>
inline constexpr auto CLES<Menu> = cles<Menu>(forme<&Arborescence::libelle>(&Menu::libelle),
                                              forme<&Arborescence::notes>(&Menu::notes));

template <>
inline constexpr auto CLES<CoherenceModificateur> = cles<CoherenceModificateur>(
    forme<&HistoriqueCoherenceModificateur::topControleCoherence>(&CoherenceModificateur::controle),
    forme<&HistoriqueCoherenceModificateur::topPresenceMultiple>(&CoherenceModificateur::presenceMultiple));

template <>
inline constexpr auto CLES<ModificateurActe> = cles<ModificateurActe>(
    requis("libelle", &ModificateurActe::libelle), option("activites", &ModificateurActe::activites),
    forme<&Modificateur::ages>(&ModificateurActe::ages),
    forme<&Modificateur::compatibles>(&ModificateurActe::compatibles),
    forme<&Modificateur::coherences>(&ModificateurActe::coherences),
    forme<&Modificateur::valeurs>(&ModificateurActe::valeurs),
    forme<&Modificateur::oc>(&ModificateurActe::oc));

template <>
inline constexpr auto CLES<SpecialitePS> =
    cles<SpecialitePS>(option("libelle", &SpecialitePS::libelle), option("profil", &SpecialitePS::profil),
                       forme<&Specialite::historiques>(&SpecialitePS::historiques));

template <class L, class H>
inline constexpr auto CLES<CodeACoefficients<L, H>> =
    cles<CodeACoefficients<L, H>>(option("libelle", &CodeACoefficients<L, H>::libelle),
                                  forme<&L::historiques>(&CodeACoefficients<L, H>::historiques));

template <>
inline constexpr auto CLES<Caisse> = cles<Caisse>(option("libelle", &Caisse::libelle),
                                                  forme<&JourFerieCaisse::jours>(&Caisse::jours));

template <>
inline constexpr auto CLES<Regroupement> = cles<Regroupement>(requis("libelle", &Regroupement::libelle));

template <>
inline constexpr auto CLES<Obligation> =
    cles<Obligation>(forme<&ObligationCodage::specialites>(&Obligation::specialites));

template <>
inline constexpr auto CLES<Recherche> = std::tuple{option("mots_vides", &Recherche::motsVides),
                                                   option("longueur_minimale", &Recherche::longueurMinimale)};

template <>
inline constexpr auto CLES<SynonymesDeMot> =
    std::tuple{requis("mot", &SynonymesDeMot::mot), requis("synonymes", &SynonymesDeMot::synonymes)};

template <>
inline constexpr auto CLES<ValeurDeCode> = niveau<ValeurDeCode>(
    forme<&LibelleCode::code>(&ValeurDeCode::code), forme<&LibelleCode::libelle>(&ValeurDeCode::libelle));

template <>
inline constexpr auto CLES<TableDeCodes> = cles<TableDeCodes>(requis("numero", &TableDeCodes::numero),
                                                              option("nom", &TableDeCodes::nom),
                                                              forme<&Codes::valeurs>(&TableDeCodes::valeurs));

template <>
inline constexpr auto CLES<ValeursDate> =
    cles<ValeursDate>(forme<&HistoriqueConceptCCAM::valeurs>(&ValeursDate::valeurs));

template <>
inline constexpr auto CLES<Concept> = cles<Concept>(requis("numero", &Concept::numero),
                                                    option("libelle", &Concept::libelle),
                                                    forme<&ConceptCCAM::historiques>(&Concept::historiques));

template <>
inline constexpr auto CLES<Regle> = cles<Regle>(option("arguments", &Regle::arguments),
                                                option("non_verifiables", &Regle::nonVerifiables));

template <>
inline constexpr auto CLES<NonVerifiable> =
    std::tuple{requis("apres", &NonVerifiable::apres), requis("regles", &NonVerifiable::regles)};

template <>
inline constexpr auto CLES<ExceptionForcage> = cles<ExceptionForcage>(requis("indicateur",
                                                                             &ExceptionForcage::indicateur));

template <>
inline constexpr auto CLES<Service> = cles<Service>(forme<&ServiceDebrayable::regles>(&Service::regles));

template <>
inline constexpr auto CLES<ChampZone> = cles<ChampZone>(requis("nom", &ChampZone::nom),
                                                        forme<&DescriptifChamp::valeurs>(&ChampZone::valeurs),
                                                        option("libelle", &ChampZone::libelle),
                                                        option("repete", &ChampZone::repete));

template <>
inline constexpr auto CLES<GroupeZone> =
    cles<GroupeZone>(requis("nom", &GroupeZone::nom), option("libelle", &GroupeZone::libelle),
                     forme<&DescriptifGroupe::listeChamps>(&GroupeZone::champs));

template <>
inline constexpr auto CLES<FilsZone> =
    std::tuple{option("groupe", &FilsZone::groupe), option("super_groupe", &FilsZone::superGroupe),
               requis("min", &FilsZone::min), requis("max", &FilsZone::max)};

template <>
inline constexpr auto CLES<SuperGroupeZone> =
    std::tuple{requis("nom", &SuperGroupeZone::nom), requis("fils", &SuperGroupeZone::fils)};

template <>
inline constexpr auto CLES<FonctionZone> =
    std::tuple{requis("famille", &FonctionZone::famille), requis("nom", &FonctionZone::nom),
               requis("numero", &FonctionZone::numero),   option("libelle", &FonctionZone::libelle),
               option("note", &FonctionZone::note),       option("fils", &FonctionZone::fils),
               option("reponse", &FonctionZone::reponse)};

template <>
inline constexpr auto CLES<JourDeCaisses> = dates(requis("jour", &JourDeCaisses::jour),
                                                  requis("caisses", &JourDeCaisses::caisses),
                                                  option("nom", &JourDeCaisses::nom));

template <>
inline constexpr auto CLES<CompatibilitesDeModificateur> = dates(
    requis("code", &CompatibilitesDeModificateur::code), requis("avec", &CompatibilitesDeModificateur::avec));

template <>
inline constexpr auto CLES<ValeurDeModificateur> =
    std::tuple{requis("code", &ValeurDeModificateur::code),
               option("grilles", &ValeurDeModificateur::grilles),
               option("debut", &ValeurDeModificateur::debut),
               option("fin", &ValeurDeModificateur::fin),
               option("forfait", &ValeurDeModificateur::forfait),
               option("coefficient", &ValeurDeModificateur::coefficient),
               option("condition", &ValeurDeModificateur::condition)};

template <>
inline constexpr auto CLES<GrilleTarifaire> =
    std::tuple{requis("numero", &GrilleTarifaire::numero), option("libelle", &GrilleTarifaire::libelle),
               requis("colonne", &GrilleTarifaire::colonne), option("profil", &GrilleTarifaire::profil)};

template <>
inline constexpr auto CLES<ComplementActe> =
    std::tuple{requis("acte", &ComplementActe::cle),
               option("activite", &ComplementActe::activite),
               option("phase", &ComplementActe::phase),
               option("type", &ComplementActe::type),
               option("sexe", &ComplementActe::sexe),
               option("creation", &ComplementActe::creation),
               option("frais_deplacement", &ComplementActe::fraisDeplacement),
               option("natures_assurance", &ComplementActe::naturesAssurance),
               option("procedures", &ComplementActe::procedures),
               option("incompatibles", &ComplementActe::incompatibles),
               option("classes_specialite", &ComplementActe::classesSpecialite),
               option("categorie_medicale", &ComplementActe::categorieMedicale),
               option("nombre_dents", &ComplementActe::nombreDents),
               option("dents_permises", &ComplementActe::dentsPermises),
               option("age_minimum", &ComplementActe::ageMinimum),
               option("age_maximum", &ComplementActe::ageMaximum),
               option("dom", &ComplementActe::dom),
               option("supplement", &ComplementActe::supplement)};

template <>
inline constexpr auto CLES<Denture> = std::tuple{requis("codes", &Denture::codes)};

template <>
inline constexpr auto CLES<Correctif> =
    std::tuple{requis("acte", &Correctif::acte), requis("colonne", &Correctif::colonne),
               requis("imprime", &Correctif::imprime), option("voulu", &Correctif::voulu),
               requis("raison", &Correctif::raison)};

// The tables of a file.
template <>
inline constexpr auto CLES<Modele> =
    std::tuple{option("entete", &Modele::entetes),
               option("acte", &Modele::actes),
               option("menu", &Modele::menus),
               option("modificateur", &Modele::modificateurs),
               option("specialite", &Modele::specialites),
               option("association_non_prevue", &Modele::associationsNonPrevues),
               option("regle_tarifaire", &Modele::reglesTarifaires),
               option("seuil", &Modele::seuils),
               option("caisse", &Modele::caisses),
               option("regroupement", &Modele::regroupements),
               option("reduction_non_conventionne", &Modele::reductionsNonConventionne),
               option("nombre_modificateurs_tarifants", &Modele::nombresModificateursTarifants),
               option("nombre_modificateurs_transmissibles", &Modele::nombresModificateursTransmissibles),
               option("nombre_actes_association", &Modele::nombresActesAssociation),
               option("obligation_codage", &Modele::obligations),
               option("recherche", &Modele::recherches),
               option("synonyme", &Modele::synonymes),
               option("complement_acte", &Modele::complementsActes),
               option("correctif", &Modele::correctifs),
               option("valeur_modificateur", &Modele::valeursModificateurs),
               option("compatibilite_modificateurs", &Modele::compatibilites),
               option("jour_ferie", &Modele::joursFeries),
               option("grille", &Modele::grilles),
               option("denture", &Modele::dentures),
               option("table_codes", &Modele::tablesDeCodes),
               option("concept", &Modele::concepts),
               option("regle", &Modele::regles),
               option("non_verifiable", &Modele::nonVerifiables),
               option("priorite_forcage", &Modele::prioritesForcage),
               option("exception_forcage", &Modele::exceptionsForcage),
               option("service_debrayable", &Modele::services),
               option("groupe", &Modele::groupes),
               option("groupe_reponse", &Modele::groupesReponse),
               option("super_groupe", &Modele::superGroupes),
               option("fonction", &Modele::fonctions)};

}  // namespace noxlux::compilateur

#endif
