// The fields of each level of an act record, in file order: their names in sources and listings, and what the
// trace says of them.
#ifndef NOXLUX_TABLES_NIVEAUX_CHAMPS_H
#define NOXLUX_TABLES_NIVEAUX_CHAMPS_H

#include <optional>
#include <tuple>

#include "basics/format_verifie.h"
#include "tables/ligne_table.h"
#include "tables/niveaux_acte.h"

namespace noxlux {

// The message of a refused value; it takes the position of the field.
using RefusNiveau = FormatVerifie<unsigned long>;

// Each says how its class follows from its member, which not every compiler finds by itself.
template <class N, class T>
struct ValeurNiveau {
  T N::*membre;
  NomChamp nom;
  const char* libelle;
  Controle controle = Controle::Libre;
  std::optional<RefusNiveau> refus = std::nullopt;
};
template <class N, class T, class... R>
ValeurNiveau(T N::*, R...) -> ValeurNiveau<N, T>;

// A count, then that many codes.
template <class N, class T>
struct ListeNiveau {
  ListeCompacte<T> N::*membre;
  NomChamp nom;
  const char* libelleNombre;
  const char* libelleElement;
  RefusNiveau incorrect;
  std::optional<RefusNiveau> obligatoire = std::nullopt;  // of a blank code, where none may be
};
template <class N, class T, class... R>
ListeNiveau(ListeCompacte<T> N::*, R...) -> ListeNiveau<N, T>;

// A count, then that many histories, newest first; never none.
template <class N, class H>
struct HistoriquesNiveau {
  ChaineHistoriques<H> N::*membre;
  NomChamp nom;
  const char* titre;
  RefusNiveau absents;
};
template <class N, class H, class... R>
HistoriquesNiveau(ChaineHistoriques<H> N::*, R...) -> HistoriquesNiveau<N, H>;

// A count, then that many records of the level below.
template <class N, class S>
struct SousNiveaux {
  std::vector<S> N::*membre;
  NomChamp nom;
  FormatVerifie<unsigned> libelleNombre;
  FormatVerifie<unsigned> titre;
  std::optional<RefusNiveau> absents = std::nullopt;
};
template <class N, class S, class... R>
SousNiveaux(std::vector<S> N::*, R...) -> SousNiveaux<N, S>;

template <class N>
struct ChampsDuNiveau;

template <>
struct ChampsDuNiveau<Association> {
  static constexpr auto liste() {
    using N = Association;
    return std::tuple{ValeurNiveau{&N::acte, "acte", "Association : "},
                      ValeurNiveau{&N::regleTarifaire, "regle", "regle tarifaire : "}};
  }
};

template <>
struct ChampsDuNiveau<HistoriqueNiveauActe> {
  static constexpr auto liste() {
    using N = HistoriqueNiveauActe;
    return std::tuple{
        ValeurNiveau{&N::dateEffet, "effet", "Date d'effet : ", Controle::DateValide,
                     RefusNiveau("ERREUR position 0x%08lX : date d'effet incorrecte")},
        ValeurNiveau{&N::admissionRemboursement, "admission",
                     "Admission au remboursement : ", Controle::Octet,
                     RefusNiveau("ERREUR position 0x%08lX : Code admission au remboursement incorrect")},
        ValeurNiveau{&N::ententePrealable, facultatif("entente_prealable"),
                     "Entente prealable : ", Controle::Octet,
                     RefusNiveau("ERREUR position 0x%08lX : Code entente prealable incorrect")},
        ListeNiveau{&N::exonerationsTM, facultatif("exonerations"), "Nombre d'exonerations TM : ",
                    "Exoneration TM : ", RefusNiveau("ERREUR position 0x%08lX : Code Exo TM incorrect"),
                    RefusNiveau("ERREUR position 0x%08lX : Code Exo TM obligatoire")},
        ListeNiveau{&N::procedures, facultatif("procedures"), "Nombre de procedures : ", "Procedure : ",
                    RefusNiveau("ERREUR position 0x%08lX : Code procedure incorrect")},
        ListeNiveau{&N::incompatibilites, facultatif("incompatibles"),
                    "Nombre d'actes incompatibles : ", "Acte incompatible : ",
                    RefusNiveau("ERREUR position 0x%08lX : Code acte incompatible incorrect")}};
  }
};

template <>
struct ChampsDuNiveau<HistoriqueNiveauActivite> {
  static constexpr auto liste() {
    using N = HistoriqueNiveauActivite;
    return std::tuple{
        ValeurNiveau{&N::dateEffet, "effet", "Date d'effet : ", Controle::DateValide,
                     RefusNiveau("ERREUR position 0x%08lX : date d'effet incorrecte")},
        ValeurNiveau{&N::categorieMedicale, facultatif("categorie_medicale"),
                     "Categorie medicale : ", Controle::CodeFacultatif,
                     RefusNiveau("ERREUR position 0x%08lX : Categorie medicale incorrecte")},
        ValeurNiveau{&N::codeRegroupement, facultatif("regroupement"),
                     "Code regroupement : ", Controle::CodeFacultatif,
                     RefusNiveau("ERREUR position 0x%08lX : Code regroupement incorrect")},
        ListeNiveau{&N::modificateurs, facultatif("modificateurs"), "Nombre de modificateurs : ",
                    "Modificateur : ", RefusNiveau("ERREUR position 0x%08lX : Code modificateur incorrect")},
        ListeNiveau{&N::classesSpecialites, facultatif("classes_specialite"),
                    "Nombre de classes de specialites : ", "Classe specialite : ",
                    RefusNiveau("ERREUR position 0x%08lX : Classe specialite incorrecte"),
                    RefusNiveau("ERREUR position 0x%08lX : Classe specialite executant obligatoire")},
        ListeNiveau{&N::associations, facultatif("associations"),
                    "Nombre d'associations : ", "Association : ",
                    RefusNiveau("ERREUR position 0x%08lX : Code association acte incorrect")}};
  }
};

template <>
struct ChampsDuNiveau<HistoriqueNiveauPhase> {
  static constexpr auto liste() {
    using N = HistoriqueNiveauPhase;
    return std::tuple{ValeurNiveau{&N::dateEffet, "effet", "Date d'effet : ", Controle::DateValide,
                                   RefusNiveau("ERREUR position 0x%08lX : date d'effet incorrecte")},
                      ValeurNiveau{&N::prixUnitaire, "prix", "Prix unitaire : ", Controle::Positif,
                                   RefusNiveau("ERREUR position 0x%08lX : prix unitaire incorrect")},
                      ValeurNiveau{&N::supplementCharges, facultatif("supplement"),
                                   "Supplement de charges : ", Controle::Positif,
                                   RefusNiveau("ERREUR position 0x%08lX : supplement de charges incorrect")},
                      ValeurNiveau{&N::majorationsDOM, facultatif("dom"), "Majoration DOM", Controle::Positif,
                                   RefusNiveau("ERREUR position 0x%08lX : majoration DOM incorrecte")}};
  }
};

template <>
struct ChampsDuNiveau<NiveauPhase> {
  static constexpr auto liste() {
    using N = NiveauPhase;
    return std::tuple{
        ValeurNiveau{&N::codePhase, "code", "Code phase : ", Controle::Renseigne,
                     RefusNiveau("ERREUR position 0x%08lX : code phase incorrect")},
        ValeurNiveau{&N::nombreDents, facultatif("nombre_dents"),
                     "Nombre de dents a traiter : ", Controle::CodeFacultatif,
                     RefusNiveau("ERREUR position 0x%08lX : code nombre dents a traiter incorrect")},
        ValeurNiveau{&N::ageMinimum, facultatif("age_minimum"), "Age minimum : "},
        ValeurNiveau{&N::ageMaximum, facultatif("age_maximum"), "Age maximum : "},
        ListeNiveau{&N::dentsIncompatibles, facultatif("dents_incompatibles"),
                    "Nombre de dents incompatibles : ", "Dent incompatible : ",
                    RefusNiveau("ERREUR position 0x%08lX : Code dent incompatible incorrect")},
        HistoriquesNiveau{
            &N::historiques, "historique", "HISTORIQUES NIVEAU PHASE:",
            RefusNiveau(
                "ERREUR position 0x%08lX : Le nombre d'historiques de niveau phase ne doit pas etre nul")}};
  }
};

template <>
struct ChampsDuNiveau<NiveauActivite> {
  static constexpr auto liste() {
    using N = NiveauActivite;
    return std::tuple{
        ValeurNiveau{&N::codeActivite, "code", "Code activite : ", Controle::Renseigne,
                     RefusNiveau("ERREUR position 0x%08lX : code activite incorrect")},
        ListeNiveau{&N::agrementsRadio, facultatif("agrements_radio"),
                    "Nombre de types d'agrement radio : ", "Agrement radio : ",
                    RefusNiveau("ERREUR position 0x%08lX : Code agrement radio incorrect")},
        ListeNiveau{&N::rmo, facultatif("rmo"), "Nombre de RMO : ", "RMO : ",
                    RefusNiveau("ERREUR position 0x%08lX : Code rmo incorrect")},
        ListeNiveau{&N::extensionsDocumentaires, facultatif("extensions"),
                    "Nombre de codes extension docmentaire: ", "Extension documentaire : ",
                    RefusNiveau("ERREUR position 0x%08lX : Code extension documentaire incorrect")},
        HistoriquesNiveau{
            &N::historiques, "historique", "HISTORIQUES NIVEAU ACTIVITE:",
            RefusNiveau(
                "ERREUR position 0x%08lX : Le nombre d'historiques de niveau activite ne doit pas etre nul")},
        SousNiveaux<N, NiveauPhase>{&N::phases, "phase", "Nombre de phases de traitement : %u",
                                    "PHASE D'INDICE %u:"}};
  }
};

template <>
struct ChampsDuNiveau<NiveauActe> {
  static constexpr auto liste() {
    using N = NiveauActe;
    return std::tuple{
        ValeurNiveau{&N::codeStructure, "code", "Code structure : ", Controle::Renseigne,
                     RefusNiveau("ERREUR position 0x0x%08lX : Code totalement structure incorrect")},
        ValeurNiveau{&N::libelleCourt, "libelle_court", "Libelle court : ", Controle::Renseigne,
                     RefusNiveau("ERREUR position 0x%08lX : libelle court non renseigne")},
        ValeurNiveau{&N::libelleLong, "libelle_long", "Libelle long  : ", Controle::Renseigne,
                     RefusNiveau("ERREUR position 0x%08lX : libelle long non renseigne")},
        ValeurNiveau{&N::typeActe, "type", "Type d'acte   : ", Controle::Octet,
                     RefusNiveau("ERREUR position 0x%08lX : type d'acte incorrect")},
        ValeurNiveau{&N::conditionsGenerales, facultatif("conditions"), "Conditions generales : "},
        ValeurNiveau{&N::notes, facultatif("notes"), "Notes : "},
        ValeurNiveau{&N::sexeCompatible, facultatif("sexe"), "Sexe compatible : ", Controle::Octet,
                     RefusNiveau("ERREUR position 0x%08lX : sexe compatible incorrect")},
        ValeurNiveau{&N::codeMenu, "menu", "Code menu : "},
        ValeurNiveau{&N::dateCreation, "creation", "Date de creation : ", Controle::DateValide,
                     RefusNiveau("ERREUR position 0x%08lX : date de creation incorrecte")},
        ValeurNiveau{&N::dateFin, facultatif("fin"), "Date de fin : ", Controle::DateFacultative,
                     RefusNiveau("ERREUR position 0x%08lX : date de fin du code incorrecte")},
        ValeurNiveau{&N::fraisDeplacement, facultatif("frais_deplacement"),
                     "Frais de deplacement : ", Controle::Octet,
                     RefusNiveau("ERREUR position 0x%08lX : Code Frais de deplacement incorrect")},
        ListeNiveau{&N::naturesAssurance, facultatif("natures_assurance"),
                    "Nombre de natures d'assurance : ", "Nature d'assurance : ",
                    RefusNiveau("ERREUR position 0x%08lX : Code Nature d'assurance incorrect"),
                    RefusNiveau("ERREUR position 0x%08lX : Nature d'assurance obligatoire")},
        HistoriquesNiveau{
            &N::historiques, "historique", "HISTORIQUES NIVEAU ACTE:",
            RefusNiveau(
                "ERREUR position 0x%08lX : Le nombre d'historiques de niveau acte ne doit pas etre nul")},
        SousNiveaux<N, NiveauActivite>{
            &N::activites, "activite", "Nombre d'activites : %u", "ACTIVITE D'INDICE %u:",
            RefusNiveau("ERREUR position 0x%08lX : Le nombre d'activites ne doit pas etre nul")}};
  }
};

}  // namespace noxlux

#endif
