// The checks across tables, once a file is read: what must not be empty, and the runs that point from one
// table into another.
#include "basics/trace.h"
#include "referent/referentiel.h"

namespace noxlux {

namespace {

constexpr FormatVerifie<> TABLE_VIDE = "ERREUR : table vide";

struct ControleTable {
  const char* nom;
  unsigned identifiant;
  bool peutEtreVide = true;
  FormatVerifie<> vide = TABLE_VIDE;
  const char* nomTable = nullptr;  // when the check bears another name
};

// In the order in which they are made.
constexpr ControleTable CONTROLES[] = {
    {"Arborescence", Arborescence::IDENTIFIANT, false},
    {"AssociationsNP", AssociationNonPrevue::IDENTIFIANT},
    {"ClassesSpecialites", ClasseSpecialite::IDENTIFIANT},
    {"Codes", Codes::IDENTIFIANT, false},
    {"CodesRegroupement", CodeRegroupement::IDENTIFIANT},
    {"ConceptsCCAM", ConceptCCAM::IDENTIFIANT},
    {"HistoriquesClasseSpecialite", HistoriqueClasseSpecialite::IDENTIFIANT},
    {"HistoriquesConceptsCCAM", HistoriqueConceptCCAM::IDENTIFIANT},
    {"Index", Index::IDENTIFIANT, false},
    {"InformationsRegles", InformationRegle::IDENTIFIANT},
    {"JoursFeriesCaisse", JourFerieCaisse::IDENTIFIANT},
    {"Modificateurs", Modificateur::IDENTIFIANT, false,
     "ERREUR : la table Modificateurs ne doit pas etre vide"},
    {"MotsCles", MotCle::IDENTIFIANT},
    {"MotsCles", ActeIndexe::IDENTIFIANT, true, TABLE_VIDE, "ActesIndexes"},
    {"NombreModificateursTarifiants", NombreModificateurTarifant::IDENTIFIANT},
    {"ObligationsCodage", ObligationCodage::IDENTIFIANT},
    {"ReductionsNC", ReductionNonConventionne::IDENTIFIANT},
    {"ReglesTarifaires", RegleTarifaire::IDENTIFIANT},
    {"Seuils", Seuil::IDENTIFIANT},
    {"Specialites", Specialite::IDENTIFIANT},
    {"ModificateursTransmissibles", NombreModificateurTransmissible::IDENTIFIANT},
    {"ActeAssociation", NombreActeAssociation::IDENTIFIANT},
    {"ServicesDebrayables", ServiceDebrayable::IDENTIFIANT},
    {"ReferencesReglesEntrainantDebrayage", ReferenceRegleEntrainantDebrayage::IDENTIFIANT},
    {"ReferencesReglesEnErreur", ReferenceRegleEnErreur::IDENTIFIANT},
    {"ReferencesReglesNonVerifiables", ReferenceRegleNonVerifiable::IDENTIFIANT},
    {"SuperGroupes", DescriptifSuperGroupe::IDENTIFIANT, false},
    {"Groupes", DescriptifGroupe::IDENTIFIANT, false},
    {"Champs", DescriptifChamp::IDENTIFIANT, false},
    {"ValeursAutorisees", ValeurAutorisee::IDENTIFIANT},
    {"FilsSuperGroupes", FilsSuperGroupe::IDENTIFIANT, false},
    {"PrioriteIndicateurForcage", PrioriteIndicateurForcage::IDENTIFIANT},
    {"ReferencesCdC", ReferenceCdC::IDENTIFIANT},
    {"Exceptions", ExceptionPrioriteIndicateur::IDENTIFIANT},
};

CodeRetour controlerTable(const ControleTable& controle, const Referentiel& referentiel) {
  const Table& table = referentiel.table(controle.identifiant);
  if (table.etatTable() == ETAT_NON_CHARGEE) {
    Trace::ecrire(TRACE_CHARGEMENT, "Referentiel::controlerTable%s non fait car table %s non chargée",
                  controle.nom, controle.nomTable != nullptr ? controle.nomTable : controle.nom);
    return NOX_CR_OK;
  }
  if (!controle.peutEtreVide && table.lireNombreLignes() == 0) {
    Trace::erreur(TRACE_CHARGEMENT, controle.vide);
    return NOX_CR_LECTURE_REFERENCE;
  }
  if (!table.controlerLignes(referentiel.tables)) {
    Trace::erreur(TRACE_CHARGEMENT, "Referentiel::controlerTable%s : une ligne sort de la table visee",
                  controle.nom);
    return NOX_CR_LECTURE_REFERENCE;
  }
  return NOX_CR_OK;
}

}  // namespace

CodeRetour Referentiel::controlerTables() const {
  CodeRetour cr = NOX_CR_OK;
  BlocTrace bloc(TRACE_CHARGEMENT, cr, "Referentiel::controlerTables : Controle des tables");
  bloc.terminerPar("Code retour de Referentiel::controlerTables : 0x%04X");
  for (const ControleTable& controle : CONTROLES) {
    cr = controlerTable(controle, *this);
    if (cr != NOX_CR_OK) {
      break;
    }
  }
  return cr;
}

}  // namespace noxlux
