// The catalogue of table lines: every line class, in the order of the table identifiers, which is that of the
// files.
//
// A line class says once what a table is: its identifier, its name, and its fields in file order, each with
// its name in sources and listings, its words in messages and what it must satisfy.
#ifndef NOXLUX_TABLES_CATALOGUE_H
#define NOXLUX_TABLES_CATALOGUE_H

#include <tuple>

#include "tables/catalogue_actes.h"
#include "tables/catalogue_exercice.h"
#include "tables/catalogue_modificateurs.h"
#include "tables/catalogue_modifications.h"
#include "tables/catalogue_mots.h"
#include "tables/catalogue_regles.h"
#include "tables/catalogue_zones.h"

namespace noxlux {

using Catalogue =
    std::tuple<Index, AssociationNonPrevue, HistoriqueAssociationNonPrevue, RegleTarifaire,
               HistoriqueRegleTarifaire, Specialite, HistoriqueSpecialite, ClasseSpecialite,
               HistoriqueClasseSpecialite, SpecialiteDansClasse, Seuil, JourFerieCaisse, JourFerieListe,
               ReductionNonConventionne, CodeRegroupement, ObligationCodage, DateObligationCodage,
               NombreModificateurTarifant, ConceptCCAM, HistoriqueConceptCCAM, ValeurConceptCCAM,
               Modificateur, HistoriqueAgeModificateur, ModificateurCompatible,
               HistoriqueCoherenceModificateur, HistoriqueValeurModificateur, HistoriqueModificateurOC,
               Synonyme, ActeIndexe, Arborescence, Codes, LibelleCode, InformationRegle,
               ModificationPrixUnitaire, ModificationSupplementCharge, ModificationMajorationDOM,
               ModificationRegleAssociationNonPrevue, ModificationSeuil, ModificationModificateur,
               ModificationNonConventionne, ModificationCodeRegroupement, ModificationNouveauCodeRegroupement,
               NombreModificateurTransmissible, ServiceDebrayable, ReferenceRegleEntrainantDebrayage,
               ReferenceRegleEnErreur, ReferenceRegleNonVerifiable, DescriptifSuperGroupe, DescriptifGroupe,
               DescriptifChamp, ValeurAutorisee, FilsSuperGroupe, PrioriteIndicateurForcage, ReferenceCdC,
               ExceptionPrioriteIndicateur, ValeurException, MotCle, NombreActeAssociation>;

}  // namespace noxlux

#endif
