// A nomenclature and the socle it is compiled with, in memory, whatever the source they were read from.
//
// Texts are ISO-8859-1. Codes are valid (capital letters and digits) or empty: the readers see to it, and the
// types to their width. Everything else is for the checks to find: duplicates, unknown codes, overlapping
// dates. Each item keeps its place in the sources.
//
// What a line of the reference holds is told by its class in the catalogue; an item adds what the reference
// does not keep, and replaces what grows while sources are read: a member that hides one of the line holds
// the same thing as a text, a list, or the items that a run will point to.
#ifndef NOXLUX_COMPILATEUR_MODELE_H
#define NOXLUX_COMPILATEUR_MODELE_H

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "compilateur/rapport.h"
#include "tables/catalogue.h"
#include "tables/niveaux_acte.h"
#include "types/date.h"

namespace noxlux::compilateur {

struct Element {
  Lieu lieu;
};

// An item that is a line of class L.
template <class L>
struct ElementDe : Element, L {
  using Ligne = L;
};

// What holds from a day to another; a null end is open.
struct ElementDate : Element {
  DateBrute debut;
  DateBrute fin;
};

struct Entete : Element {
  CodeFixe<4> version;
  CodeFixe<5> versionBaseCCAM;
  DateBrute date;
  CodeFixe<4> versionMinimum;
  std::uint16_t revision = 0;
  CodeFixe<10> variante;
  std::string commentaire;
};

// Acts. Their records are made of lists of lists: the model has its own, that grow.
struct AssociationActe : Element {
  using Ligne = Association;
  CodeActe acte;
  char regle = ' ';
};

struct HistoriquePhase : Element {
  using Ligne = HistoriqueNiveauPhase;
  DateBrute effet;
  double prix = 0.0;
  double supplement = 0.0;
  std::array<double, 4> dom{1.0, 1.0, 1.0, 1.0};
};

struct Phase : Element {
  using Ligne = NiveauPhase;
  char code = ' ';
  CodeFixe<2> nombreDents;
  std::uint16_t ageMinimum = 0;
  std::uint16_t ageMaximum = 0;
  std::vector<CodeFixe<2>> dentsIncompatibles;
  std::vector<HistoriquePhase> historiques;
};

struct HistoriqueActivite : Element {
  using Ligne = HistoriqueNiveauActivite;
  DateBrute effet;
  CodeFixe<2> categorieMedicale;
  CodeFixe<3> regroupement;
  std::vector<char> modificateurs;
  std::vector<CodeFixe<2>> classesSpecialite;
  std::vector<AssociationActe> associations;
};

struct Activite : Element {
  using Ligne = NiveauActivite;
  char code = ' ';
  std::vector<CodeFixe<2>> agrementsRadio;
  std::vector<CodeFixe<5>> rmo;
  std::vector<char> extensions;
  std::vector<HistoriqueActivite> historiques;
  std::vector<Phase> phases;
};

struct HistoriqueActe : Element {
  using Ligne = HistoriqueNiveauActe;
  DateBrute effet;
  char admission = ' ';
  bool ententePrealable = false;
  std::vector<char> exonerations;
  std::vector<CodeActe> procedures;
  std::vector<CodeActe> incompatibles;
};

struct Acte : Element {
  using Ligne = NiveauActe;
  CodeActe code;
  std::string libelleCourt;
  std::string libelleLong;
  char type = ' ';
  std::string conditions;
  std::string notes;
  char sexe = ' ';
  std::uint32_t menu = 0;
  DateBrute creation;
  DateBrute fin;
  char fraisDeplacement = ' ';
  std::vector<CodeFixe<2>> naturesAssurance;
  std::vector<HistoriqueActe> historiques;
  std::vector<Activite> activites;
};

struct Menu : ElementDe<Arborescence> {
  std::string libelle;
  std::string notes;
};

// Modifiers.
using AgeModificateur = ElementDe<HistoriqueAgeModificateur>;
using Compatibilite = ElementDe<ModificateurCompatible>;
using CodeOC = ElementDe<HistoriqueModificateurOC>;

struct CoherenceModificateur : ElementDe<HistoriqueCoherenceModificateur> {
  bool controle = false;
  bool presenceMultiple = false;
};

using ForfaitEtTaux = ElementDe<HistoriqueValeurModificateur>;

struct ModificateurActe : ElementDe<Modificateur> {
  std::string libelle;
  std::vector<char> activites;  // those whose acts may bear it; empty: all of them
  std::vector<AgeModificateur> ages;
  std::vector<Compatibilite> compatibles;
  std::vector<CoherenceModificateur> coherences;
  std::vector<ForfaitEtTaux> valeurs;
  std::vector<CodeOC> oc;
};

// Which modifiers may stand beside one.
struct CompatibilitesDeModificateur : ElementDate {
  char code = ' ';
  std::vector<char> avec;
};

// What a modifier is worth in some tariff grids; no grid: in all of them. Without a start: from the
// beginning.
struct ValeurDeModificateur : Element {
  char code = ' ';
  std::vector<std::uint16_t> grilles;
  DateBrute debut;
  DateBrute fin;
  double forfait = 0.0;
  double coefficient = 1.0;
  std::string condition;
};

// A public tariff grid: the column of the listing that it takes its prices from, and the profile of
// professionals whose ordinary grid it is.
struct GrilleTarifaire : Element {
  std::uint16_t numero = 0;
  std::string libelle;
  std::uint16_t colonne = 1;
  std::string profil;
};

// What a listing does not tell of its acts. `cle` is an act, a chapter, a grouping code, or "*" for all acts;
// what is told of fewer acts prevails. Blank members tell nothing.
struct ComplementActe : Element {
  std::string cle;
  char activite = ' ';
  char phase = ' ';
  char type = ' ';
  char sexe = ' ';
  DateBrute creation;
  char fraisDeplacement = ' ';
  std::vector<CodeFixe<2>> naturesAssurance;
  std::vector<CodeActe> procedures;
  std::vector<CodeActe> incompatibles;
  std::vector<CodeFixe<2>> classesSpecialite;
  CodeFixe<2> categorieMedicale;
  CodeFixe<2> nombreDents;
  std::vector<CodeFixe<2>> dentsPermises;  // among those of [[denture]]; the others are incompatible
  std::uint16_t ageMinimum = 0;
  std::uint16_t ageMaximum = 0;
  std::array<double, 4> dom{};
  double supplement = 0.0;
};

// The places in a mouth that an act without a list of its own may be done at.
struct Denture : Element {
  std::vector<CodeFixe<2>> codes;
};

// A misprint of a listing.
struct Correctif : Element {
  CodeActe acte;
  std::string colonne;  // as the heading names it: texte, activite, phase, prix...
  std::string imprime;
  std::string voulu;
  std::string raison;
};

// The other subjects.
using ClasseDate = ElementDe<HistoriqueSpecialite>;

struct SpecialitePS : ElementDe<Specialite> {
  std::string libelle;
  std::string profil;  // which values of modifiers its members are paid; empty: none of its own
  std::vector<ClasseDate> historiques;
};

// An unforeseen association, or a tariff rule.
template <class L, class H>
struct CodeACoefficients : ElementDe<L> {
  std::string libelle;
  std::vector<ElementDe<H>> historiques;
};
using CodeAssociation = CodeACoefficients<AssociationNonPrevue, HistoriqueAssociationNonPrevue>;
using CodeRegleTarifaire = CodeACoefficients<RegleTarifaire, HistoriqueRegleTarifaire>;

using SeuilDate = ElementDe<Seuil>;
using Reduction = ElementDe<ReductionNonConventionne>;

using JourFerie = ElementDe<JourFerieListe>;

struct Caisse : ElementDe<JourFerieCaisse> {
  std::string libelle;
  std::vector<JourFerie> jours;
};

// The same day for several funds; the library wants it fund by fund.
struct JourDeCaisses : ElementDate {
  DateBrute jour;
  std::vector<CodeFixe<3>> caisses;
  std::string nom;
};

struct Regroupement : ElementDe<CodeRegroupement> {
  std::string libelle;
};

using SpecialiteObligee = ElementDe<DateObligationCodage>;

struct Obligation : ElementDe<ObligationCodage> {
  std::vector<SpecialiteObligee> specialites;
};

struct Recherche : Element {
  std::vector<std::string> motsVides;
  std::uint16_t longueurMinimale = 2;
};

struct SynonymesDeMot : Element {
  std::string mot;
  std::vector<std::string> synonymes;
};

// Labels of codes, concepts.
struct ValeurDeCode : Element {
  using Ligne = LibelleCode;
  std::string code;
  std::string libelle;
};

struct TableDeCodes : ElementDe<Codes> {
  std::uint16_t numero = 0;
  std::string nom;
  std::vector<ValeurDeCode> valeurs;
};

struct ValeursDate : ElementDe<HistoriqueConceptCCAM> {
  std::vector<std::string> valeurs;
};

struct Concept : ElementDe<ConceptCCAM> {
  std::uint16_t numero = 0;
  std::string libelle;
  std::vector<ValeursDate> historiques;
};

// The rule catalogue.
struct Regle : ElementDe<InformationRegle> {
  std::vector<std::string> arguments;
  std::vector<CodeFixe<9>> nonVerifiables;
};

// Each rule of `apres` makes each of `regles` non-verifiable, besides what the rules' own lists tell.
struct NonVerifiable : Element {
  std::vector<CodeFixe<9>> apres;
  std::vector<CodeFixe<9>> regles;
};

using PrioriteForcage = ElementDe<PrioriteIndicateurForcage>;

struct ExceptionForcage : ElementDe<ValeurException> {
  char indicateur = ' ';
};

struct Service : ElementDe<ServiceDebrayable> {
  std::vector<CodeFixe<9>> regles;
};

// The zones.
// A format is blank in answers.
struct ChampZone : ElementDe<DescriptifChamp> {
  std::string nom;
  std::vector<std::string> valeurs;
  std::string libelle;
  bool repete = false;
};

struct GroupeZone : ElementDe<DescriptifGroupe> {
  std::string nom;
  std::string libelle;
  std::vector<ChampZone> champs;
};

// A child names a group, or a super-group.
struct FilsZone : Element {
  std::uint16_t groupe = 0;
  std::string superGroupe;
  std::uint16_t min = 0;
  std::uint16_t max = 0;
};

struct SuperGroupeZone : Element {
  std::string nom;
  std::vector<FilsZone> fils;
};

struct FonctionZone : Element {
  std::string famille;
  std::string nom;
  std::uint16_t numero = 0;
  std::string libelle;
  std::string note;
  std::vector<FilsZone> fils;
  std::vector<FilsZone> reponse;
};

// Everything that a reference is compiled from.
struct Modele {
  std::vector<Entete> entetes;  // one is wanted
  std::vector<Acte> actes;
  std::vector<Menu> menus;
  std::vector<ModificateurActe> modificateurs;
  std::vector<SpecialitePS> specialites;
  std::vector<CodeAssociation> associationsNonPrevues;
  std::vector<CodeRegleTarifaire> reglesTarifaires;
  std::vector<SeuilDate> seuils;
  std::vector<Caisse> caisses;
  std::vector<Regroupement> regroupements;
  std::vector<Reduction> reductionsNonConventionne;
  std::vector<ElementDe<NombreModificateurTarifant>> nombresModificateursTarifants;
  std::vector<ElementDe<NombreModificateurTransmissible>> nombresModificateursTransmissibles;
  std::vector<ElementDe<NombreActeAssociation>> nombresActesAssociation;
  std::vector<Obligation> obligations;
  std::vector<Recherche> recherches;  // at most one
  std::vector<SynonymesDeMot> synonymes;

  // What completes an import; nothing of it is compiled as it stands.
  std::vector<ComplementActe> complementsActes;
  std::vector<Correctif> correctifs;
  std::vector<ValeurDeModificateur> valeursModificateurs;
  std::vector<CompatibilitesDeModificateur> compatibilites;
  std::vector<JourDeCaisses> joursFeries;
  std::vector<GrilleTarifaire> grilles;
  std::vector<Denture> dentures;

  std::vector<TableDeCodes> tablesDeCodes;
  std::vector<Concept> concepts;
  std::vector<Regle> regles;
  std::vector<NonVerifiable> nonVerifiables;
  std::vector<PrioriteForcage> prioritesForcage;
  std::vector<ExceptionForcage> exceptionsForcage;
  std::vector<Service> services;
  std::vector<GroupeZone> groupes;
  std::vector<GroupeZone> groupesReponse;
  std::vector<SuperGroupeZone> superGroupes;
  std::vector<FonctionZone> fonctions;
};

}  // namespace noxlux::compilateur

#endif
