// Loading the two files: what passes, what is refused and by which code.
#include <gtest/gtest.h>

#include "referent/fabrique_reference.h"

using namespace noxlux;
using namespace essai;

namespace {

TEST(Chargement, referenceEntiere) {
  Repertoire repertoire;
  Reference().ecrire(repertoire);
  Referentiel referentiel;
  ASSERT_EQ(charger(referentiel, repertoire), 0);
  EXPECT_EQ(referentiel.nombreTables, 58);
  EXPECT_EQ(referentiel.entete.commentaire, "reference d'essai");
  EXPECT_EQ(referentiel.entete.numeroRevision, 7);
  EXPECT_TRUE(referentiel.entete.dateModification.estNulle());
  EXPECT_EQ(referentiel.lignes<HistoriqueValeurModificateur>()[0].coefficient, 1.057);
  EXPECT_EQ(referentiel.lignes<Seuil>()[0].guyane, 123.01);
  EXPECT_TRUE(referentiel.lignes<MotCle>().empty());
  EXPECT_EQ(referentiel.assurerTable(58), 0);
  EXPECT_EQ(referentiel.lignes<MotCle>()[0].motCle.vue(), "DENTAIRE");
  NiveauActe acte;
  ASSERT_EQ(referentiel.chargerActe(referentiel.lignes<Index>()[1].position, acte, "ZZQX001"), 0);
  EXPECT_EQ(acte.codeStructure.vue(), "ZZQX001");
  EXPECT_EQ(acte.activites[0].phases[0].historiques[1].prixUnitaire, 9.05);
}

}  // namespace
