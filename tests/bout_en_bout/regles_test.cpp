// What rules write to the trace.
#include "bout_en_bout/bibliotheque_essai.h"

namespace essai {
namespace {

class Regles : public AvecReference {};

TEST_F(Regles, messages) {
  const TraceEssai trace({1, 4});
  // The rules that disengage a service are asked before the request is read.
  EXPECT_EQ(appliquer("C_Pu", {{3400, {"1", "7511"}}}).code, 0x9002U);
  EXPECT_TRUE(trace.contient("rechercherReglesEntrainantDebrayage"));
  const Groupe endoscopies[] = {{3310, {"1", "20240301", "HHQE002", "1", "991234567", "8"}},
                                {3310, {"2", "20240301", "HEQE002", "1", "991234567", "8"}}};
  EXPECT_EQ(appliquer("C_Association", {endoscopies[0], endoscopies[1]}).code, 0U);
  controlerComplet(factureDentaire("2603"));
  for (const char* texte :
       {"Reglementation::appliquerCAssociation sur une association\n",
        "Reglementation::appliquerCCompatibilite\n",
        "acte1 = HHQE002, activite1 = 1, numeroPS1 = 9912345678, acte2 = HEQE002, activite2 = 1, numeroPS2 = "
        "9912345678, date = 01/03/2024\n",
        "Les deux actes sont compatibles\n", "Regle PROD500 (reference = R500) vérifiable = vrai\n",
        "Reglementation::appliquerProd500\n", "Reglementation::appliquerProd136A\n",
        "Reglementation::appliquerProd696\n", "Reglementation::appliquerProd600\n",
        "Reglementation::appliquerProd654\n", "Tarification::appliquerProd763A\n",
        "Tarification::appliquerProd850\n", "Tarification::appliquerProd790A\n",
        "LigneCCAM::controlerBaseActe\n", "E, majoration DOM = 1.000000\n"}) {
    EXPECT_TRUE(trace.contient(texte)) << texte;
  }
}

}  // namespace
}  // namespace essai
