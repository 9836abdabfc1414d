// The TOML form of the model: for each kind of item, its keys and the members they fill. A member's type
// tells what its key may hold.
#ifndef NOXLUX_COMPILATEUR_CLES_TOML_H
#define NOXLUX_COMPILATEUR_CLES_TOML_H

#include <tuple>

#include "compilateur/modele.h"

namespace noxlux::compilateur {

template <class E, class T>
struct Cle {
  T E::*membre;
  const char* nom;
  bool obligatoire;
};

template <class E, class T>
constexpr Cle<E, T> requis(const char* nom, T E::*membre) {
  return {membre, nom, true};
}
template <class E, class T>
constexpr Cle<E, T> option(const char* nom, T E::*membre) {
  return {membre, nom, false};
}

// The start and end of validity, before the other keys.
template <class... C>
constexpr auto dates(C... autres) {
  return std::tuple{requis("debut", &ElementDate::debut), option("fin", &ElementDate::fin), autres...};
}

template <class E>
inline constexpr auto CLES = nullptr;

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
    std::tuple{requis("acte", &AssociationActe::acte), requis("regle", &AssociationActe::regle)};

template <>
inline constexpr auto CLES<HistoriquePhase> =
    std::tuple{requis("effet", &HistoriquePhase::effet), requis("prix", &HistoriquePhase::prix),
               option("supplement", &HistoriquePhase::supplement), option("dom", &HistoriquePhase::dom)};

template <>
inline constexpr auto CLES<Phase> = std::tuple{requis("code", &Phase::code),
                                               option("nombre_dents", &Phase::nombreDents),
                                               option("age_minimum", &Phase::ageMinimum),
                                               option("age_maximum", &Phase::ageMaximum),
                                               option("dents_incompatibles", &Phase::dentsIncompatibles),
                                               requis("historique", &Phase::historiques)};

template <>
inline constexpr auto CLES<HistoriqueActivite> =
    std::tuple{requis("effet", &HistoriqueActivite::effet),
               option("categorie_medicale", &HistoriqueActivite::categorieMedicale),
               option("regroupement", &HistoriqueActivite::regroupement),
               option("modificateurs", &HistoriqueActivite::modificateurs),
               option("classes_specialite", &HistoriqueActivite::classesSpecialite),
               option("associations", &HistoriqueActivite::associations)};

template <>
inline constexpr auto CLES<Activite> = std::tuple{requis("code", &Activite::code),
                                                  option("agrements_radio", &Activite::agrementsRadio),
                                                  option("rmo", &Activite::rmo),
                                                  option("extensions", &Activite::extensions),
                                                  requis("historique", &Activite::historiques),
                                                  requis("phase", &Activite::phases)};

template <>
inline constexpr auto CLES<HistoriqueActe> =
    std::tuple{requis("effet", &HistoriqueActe::effet),
               requis("admission", &HistoriqueActe::admission),
               option("entente_prealable", &HistoriqueActe::ententePrealable),
               option("exonerations", &HistoriqueActe::exonerations),
               option("procedures", &HistoriqueActe::procedures),
               option("incompatibles", &HistoriqueActe::incompatibles)};

template <>
inline constexpr auto CLES<Acte> = std::tuple{requis("code", &Acte::code),
                                              requis("libelle_court", &Acte::libelleCourt),
                                              requis("libelle_long", &Acte::libelleLong),
                                              requis("type", &Acte::type),
                                              option("conditions", &Acte::conditions),
                                              option("notes", &Acte::notes),
                                              option("sexe", &Acte::sexe),
                                              requis("menu", &Acte::menu),
                                              requis("creation", &Acte::creation),
                                              option("fin", &Acte::fin),
                                              option("frais_deplacement", &Acte::fraisDeplacement),
                                              option("natures_assurance", &Acte::naturesAssurance),
                                              requis("historique", &Acte::historiques),
                                              requis("activite", &Acte::activites)};

template <>
inline constexpr auto CLES<Menu> = std::tuple{requis("code", &Menu::code), requis("libelle", &Menu::libelle),
                                              option("pere", &Menu::pere), option("notes", &Menu::notes)};

template <>
inline constexpr auto CLES<AgeModificateur> = dates(option("minimum", &AgeModificateur::minimum),
                                                    option("unite_minimum", &AgeModificateur::uniteMinimum),
                                                    option("maximum", &AgeModificateur::maximum),
                                                    option("unite_maximum", &AgeModificateur::uniteMaximum));

template <>
inline constexpr auto CLES<CodeModificateurDate> = dates(requis("code", &CodeModificateurDate::code));

template <>
inline constexpr auto CLES<CoherenceModificateur> =
    dates(requis("controle", &CoherenceModificateur::controle),
          requis("presence_multiple", &CoherenceModificateur::presenceMultiple));

template <>
inline constexpr auto CLES<ForfaitEtTaux> = dates(option("forfait", &ForfaitEtTaux::forfait),
                                                  option("coefficient", &ForfaitEtTaux::coefficient));

template <>
inline constexpr auto CLES<ModificateurActe> =
    std::tuple{requis("code", &ModificateurActe::code),
               requis("libelle", &ModificateurActe::libelle),
               option("activites", &ModificateurActe::activites),
               option("ages", &ModificateurActe::ages),
               option("compatibles", &ModificateurActe::compatibles),
               option("coherences", &ModificateurActe::coherences),
               option("valeurs", &ModificateurActe::valeurs),
               option("oc", &ModificateurActe::oc)};

template <>
inline constexpr auto CLES<ClasseDate> = dates(requis("classe", &ClasseDate::classe));

template <>
inline constexpr auto CLES<SpecialitePS> =
    std::tuple{requis("code", &SpecialitePS::code), option("libelle", &SpecialitePS::libelle),
               option("profil", &SpecialitePS::profil), option("historiques", &SpecialitePS::historiques)};

template <>
inline constexpr auto CLES<CoefficientDate> = dates(requis("coefficient", &CoefficientDate::coefficient));

template <>
inline constexpr auto CLES<CodeACoefficients> =
    std::tuple{requis("code", &CodeACoefficients::code), option("libelle", &CodeACoefficients::libelle),
               requis("historiques", &CodeACoefficients::historiques)};

template <>
inline constexpr auto CLES<SeuilDate> = dates(requis("metropole", &SeuilDate::metropole),
                                              requis("antilles", &SeuilDate::antilles),
                                              requis("reunion", &SeuilDate::reunion),
                                              requis("guyane", &SeuilDate::guyane));

template <>
inline constexpr auto CLES<JourFerie> = dates(requis("jour", &JourFerie::jour),
                                              option("type", &JourFerie::type));

template <>
inline constexpr auto CLES<Caisse> = std::tuple{
    requis("code", &Caisse::code), option("libelle", &Caisse::libelle), option("jours", &Caisse::jours)};

template <>
inline constexpr auto CLES<Regroupement> = dates(requis("code", &Regroupement::code),
                                                 requis("libelle", &Regroupement::libelle));

template <>
inline constexpr auto CLES<NombreDate> = dates(requis("nombre", &NombreDate::nombre));

template <>
inline constexpr auto CLES<SpecialiteObligee> =
    std::tuple{requis("code", &SpecialiteObligee::code), requis("date", &SpecialiteObligee::date)};

template <>
inline constexpr auto CLES<Obligation> = std::tuple{requis("prestation", &Obligation::prestation),
                                                    requis("specialites", &Obligation::specialites)};

template <>
inline constexpr auto CLES<Recherche> = std::tuple{option("mots_vides", &Recherche::motsVides),
                                                   option("longueur_minimale", &Recherche::longueurMinimale)};

template <>
inline constexpr auto CLES<SynonymesDeMot> =
    std::tuple{requis("mot", &SynonymesDeMot::mot), requis("synonymes", &SynonymesDeMot::synonymes)};

template <>
inline constexpr auto CLES<ValeurDeCode> =
    std::tuple{requis("code", &ValeurDeCode::code), requis("libelle", &ValeurDeCode::libelle)};

template <>
inline constexpr auto CLES<TableDeCodes> =
    std::tuple{requis("numero", &TableDeCodes::numero), option("nom", &TableDeCodes::nom),
               requis("valeurs", &TableDeCodes::valeurs)};

template <>
inline constexpr auto CLES<ValeursDate> = dates(requis("valeurs", &ValeursDate::valeurs));

template <>
inline constexpr auto CLES<Concept> =
    std::tuple{requis("numero", &Concept::numero), option("libelle", &Concept::libelle),
               requis("historiques", &Concept::historiques)};

template <>
inline constexpr auto CLES<Regle> =
    std::tuple{requis("identifiant", &Regle::identifiant), requis("reference", &Regle::reference),
               requis("libelle", &Regle::libelle),         option("detail", &Regle::detail),
               option("arguments", &Regle::arguments),     requis("niveau", &Regle::niveau),
               option("forcage", &Regle::forcage),         option("non_verifiables", &Regle::nonVerifiables)};

template <>
inline constexpr auto CLES<NonVerifiable> =
    std::tuple{requis("apres", &NonVerifiable::apres), requis("regles", &NonVerifiable::regles)};

template <>
inline constexpr auto CLES<PrioriteForcage> = std::tuple{requis("indicateur", &PrioriteForcage::indicateur),
                                                         requis("priorite", &PrioriteForcage::priorite)};

template <>
inline constexpr auto CLES<ExceptionForcage> = std::tuple{requis("indicateur", &ExceptionForcage::indicateur),
                                                          requis("present", &ExceptionForcage::present),
                                                          requis("resultat", &ExceptionForcage::resultat)};

template <>
inline constexpr auto CLES<Service> =
    std::tuple{requis("identifiant", &Service::identifiant), requis("regles", &Service::regles)};

template <>
inline constexpr auto CLES<ChampZone> =
    std::tuple{requis("nom", &ChampZone::nom),         option("format", &ChampZone::format),
               requis("type", &ChampZone::type),       option("min", &ChampZone::min),
               option("max", &ChampZone::max),         option("valeurs", &ChampZone::valeurs),
               option("libelle", &ChampZone::libelle), option("repete", &ChampZone::repete)};

template <>
inline constexpr auto CLES<GroupeZone> =
    std::tuple{requis("numero", &GroupeZone::numero), requis("nom", &GroupeZone::nom),
               option("libelle", &GroupeZone::libelle), requis("champs", &GroupeZone::champs)};

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
