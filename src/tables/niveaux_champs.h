// The fields of each level of an act record, in file order, with what the trace says of them.
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
  const char* libelle;
  Controle controle = Controle::Libre;
  std::optional<RefusNiveau> refus = std::nullopt;
};
template <class N, class T, class... R>
ValeurNiveau(T N::*, const char*, R...) -> ValeurNiveau<N, T>;

// A count, then that many codes.
template <class N, class T>
struct ListeNiveau {
  ListeCompacte<T> N::*membre;
  const char* libelleNombre;
  const char* libelleElement;
  RefusNiveau incorrect;
  std::optional<RefusNiveau> obligatoire = std::nullopt;  // of a blank code, where none may be
};
template <class N, class T, class... R>
ListeNiveau(ListeCompacte<T> N::*, const char*, const char*, R...) -> ListeNiveau<N, T>;

// A count, then that many histories, newest first; never none.
template <class N, class H>
struct HistoriquesNiveau {
  ChaineHistoriques<H> N::*membre;
  const char* titre;
  RefusNiveau absents;
};
template <class N, class H, class... R>
HistoriquesNiveau(ChaineHistoriques<H> N::*, const char*, R...) -> HistoriquesNiveau<N, H>;

// A count, then that many records of the level below.
template <class N, class S>
struct SousNiveaux {
  std::vector<S> N::*membre;
  FormatVerifie<unsigned> libelleNombre;
  FormatVerifie<unsigned> titre;
  std::optional<RefusNiveau> absents = std::nullopt;
};
template <class N, class S, class... R>
SousNiveaux(std::vector<S> N::*, R...) -> SousNiveaux<N, S>;

template <class N>
struct ChampsDuNiveau;

template <>
struct ChampsDuNiveau<HistoriqueNiveauActe> {
  static constexpr auto liste() {
    using N = HistoriqueNiveauActe;
    return std::tuple{
        ValeurNiveau{&N::dateEffet, "Date d'effet : ", Controle::DateValide,
                     RefusNiveau("ERREUR position 0x%08lX : date d'effet incorrecte")},
        ValeurNiveau{&N::admissionRemboursement, "Admission au remboursement : ", Controle::Octet,
                     RefusNiveau("ERREUR position 0x%08lX : Code admission au remboursement incorrect")},
        ValeurNiveau{&N::ententePrealable, "Entente prealable : ", Controle::Octet,
                     RefusNiveau("ERREUR position 0x%08lX : Code entente prealable incorrect")},
        ListeNiveau{&N::exonerationsTM, "Nombre d'exonerations TM : ", "Exoneration TM : ",
                    RefusNiveau("ERREUR position 0x%08lX : Code Exo TM incorrect"),
                    RefusNiveau("ERREUR position 0x%08lX : Code Exo TM obligatoire")},
        ListeNiveau{&N::procedures, "Nombre de procedures : ", "Procedure : ",
                    RefusNiveau("ERREUR position 0x%08lX : Code procedure incorrect")},
        ListeNiveau{&N::incompatibilites, "Nombre d'actes incompatibles : ", "Acte incompatible : ",
                    RefusNiveau("ERREUR position 0x%08lX : Code acte incompatible incorrect")}};
  }
};

template <>
struct ChampsDuNiveau<HistoriqueNiveauActivite> {
  static constexpr auto liste() {
    using N = HistoriqueNiveauActivite;
    return std::tuple{
        ValeurNiveau{&N::dateEffet, "Date d'effet : ", Controle::DateValide,
                     RefusNiveau("ERREUR position 0x%08lX : date d'effet incorrecte")},
        ValeurNiveau{&N::categorieMedicale, "Categorie medicale : ", Controle::CodeFacultatif,
                     RefusNiveau("ERREUR position 0x%08lX : Categorie medicale incorrecte")},
        ValeurNiveau{&N::codeRegroupement, "Code regroupement : ", Controle::CodeFacultatif,
                     RefusNiveau("ERREUR position 0x%08lX : Code regroupement incorrect")},
        ListeNiveau{&N::modificateurs, "Nombre de modificateurs : ", "Modificateur : ",
                    RefusNiveau("ERREUR position 0x%08lX : Code modificateur incorrect")},
        ListeNiveau{&N::classesSpecialites, "Nombre de classes de specialites : ", "Classe specialite : ",
                    RefusNiveau("ERREUR position 0x%08lX : Classe specialite incorrecte"),
                    RefusNiveau("ERREUR position 0x%08lX : Classe specialite executant obligatoire")},
        ListeNiveau{&N::associations, "Nombre d'associations : ", "Association : ",
                    RefusNiveau("ERREUR position 0x%08lX : Code association acte incorrect")}};
  }
};

template <>
struct ChampsDuNiveau<HistoriqueNiveauPhase> {
  static constexpr auto liste() {
    using N = HistoriqueNiveauPhase;
    return std::tuple{ValeurNiveau{&N::dateEffet, "Date d'effet : ", Controle::DateValide,
                                   RefusNiveau("ERREUR position 0x%08lX : date d'effet incorrecte")},
                      ValeurNiveau{&N::prixUnitaire, "Prix unitaire : ", Controle::Positif,
                                   RefusNiveau("ERREUR position 0x%08lX : prix unitaire incorrect")},
                      ValeurNiveau{&N::supplementCharges, "Supplement de charges : ", Controle::Positif,
                                   RefusNiveau("ERREUR position 0x%08lX : supplement de charges incorrect")},
                      ValeurNiveau{&N::majorationsDOM, "Majoration DOM", Controle::Positif,
                                   RefusNiveau("ERREUR position 0x%08lX : majoration DOM incorrecte")}};
  }
};

template <>
struct ChampsDuNiveau<NiveauPhase> {
  static constexpr auto liste() {
    using N = NiveauPhase;
    return std::tuple{
        ValeurNiveau{&N::codePhase, "Code phase : ", Controle::Renseigne,
                     RefusNiveau("ERREUR position 0x%08lX : code phase incorrect")},
        ValeurNiveau{&N::nombreDents, "Nombre de dents a traiter : ", Controle::CodeFacultatif,
                     RefusNiveau("ERREUR position 0x%08lX : code nombre dents a traiter incorrect")},
        ValeurNiveau{&N::ageMinimum, "Age minimum : "},
        ValeurNiveau{&N::ageMaximum, "Age maximum : "},
        ListeNiveau{&N::dentsIncompatibles, "Nombre de dents incompatibles : ", "Dent incompatible : ",
                    RefusNiveau("ERREUR position 0x%08lX : Code dent incompatible incorrect")},
        HistoriquesNiveau{
            &N::historiques, "HISTORIQUES NIVEAU PHASE:",
            RefusNiveau(
                "ERREUR position 0x%08lX : Le nombre d'historiques de niveau phase ne doit pas etre nul")}};
  }
};

template <>
struct ChampsDuNiveau<NiveauActivite> {
  static constexpr auto liste() {
    using N = NiveauActivite;
    return std::tuple{
        ValeurNiveau{&N::codeActivite, "Code activite : ", Controle::Renseigne,
                     RefusNiveau("ERREUR position 0x%08lX : code activite incorrect")},
        ListeNiveau{&N::agrementsRadio, "Nombre de types d'agrement radio : ", "Agrement radio : ",
                    RefusNiveau("ERREUR position 0x%08lX : Code agrement radio incorrect")},
        ListeNiveau{&N::rmo, "Nombre de RMO : ", "RMO : ",
                    RefusNiveau("ERREUR position 0x%08lX : Code rmo incorrect")},
        ListeNiveau{&N::extensionsDocumentaires,
                    "Nombre de codes extension docmentaire: ", "Extension documentaire : ",
                    RefusNiveau("ERREUR position 0x%08lX : Code extension documentaire incorrect")},
        HistoriquesNiveau{
            &N::historiques, "HISTORIQUES NIVEAU ACTIVITE:",
            RefusNiveau(
                "ERREUR position 0x%08lX : Le nombre d'historiques de niveau activite ne doit pas etre nul")},
        SousNiveaux<N, NiveauPhase>{&N::phases, "Nombre de phases de traitement : %u", "PHASE D'INDICE %u:"}};
  }
};

template <>
struct ChampsDuNiveau<NiveauActe> {
  static constexpr auto liste() {
    using N = NiveauActe;
    return std::tuple{
        ValeurNiveau{&N::codeStructure, "Code structure : ", Controle::Renseigne,
                     RefusNiveau("ERREUR position 0x0x%08lX : Code totalement structure incorrect")},
        ValeurNiveau{&N::libelleCourt, "Libelle court : ", Controle::Renseigne,
                     RefusNiveau("ERREUR position 0x%08lX : libelle court non renseigne")},
        ValeurNiveau{&N::libelleLong, "Libelle long  : ", Controle::Renseigne,
                     RefusNiveau("ERREUR position 0x%08lX : libelle long non renseigne")},
        ValeurNiveau{&N::typeActe, "Type d'acte   : ", Controle::Octet,
                     RefusNiveau("ERREUR position 0x%08lX : type d'acte incorrect")},
        ValeurNiveau{&N::conditionsGenerales, "Conditions generales : "},
        ValeurNiveau{&N::notes, "Notes : "},
        ValeurNiveau{&N::sexeCompatible, "Sexe compatible : ", Controle::Octet,
                     RefusNiveau("ERREUR position 0x%08lX : sexe compatible incorrect")},
        ValeurNiveau{&N::codeMenu, "Code menu : "},
        ValeurNiveau{&N::dateCreation, "Date de creation : ", Controle::DateValide,
                     RefusNiveau("ERREUR position 0x%08lX : date de creation incorrecte")},
        ValeurNiveau{&N::dateFin, "Date de fin : ", Controle::DateFacultative,
                     RefusNiveau("ERREUR position 0x%08lX : date de fin du code incorrecte")},
        ValeurNiveau{&N::fraisDeplacement, "Frais de deplacement : ", Controle::Octet,
                     RefusNiveau("ERREUR position 0x%08lX : Code Frais de deplacement incorrect")},
        ListeNiveau{&N::naturesAssurance, "Nombre de natures d'assurance : ", "Nature d'assurance : ",
                    RefusNiveau("ERREUR position 0x%08lX : Code Nature d'assurance incorrect"),
                    RefusNiveau("ERREUR position 0x%08lX : Nature d'assurance obligatoire")},
        HistoriquesNiveau{
            &N::historiques, "HISTORIQUES NIVEAU ACTE:",
            RefusNiveau(
                "ERREUR position 0x%08lX : Le nombre d'historiques de niveau acte ne doit pas etre nul")},
        SousNiveaux<N, NiveauActivite>{
            &N::activites, "Nombre d'activites : %u", "ACTIVITE D'INDICE %u:",
            RefusNiveau("ERREUR position 0x%08lX : Le nombre d'activites ne doit pas etre nul")}};
  }
};

}  // namespace noxlux

#endif
