#include "requetes/magasin_essai.h"

#include <unistd.h>

#include <filesystem>
#include <tuple>

namespace noxlux {

MagasinEssai::MagasinEssai()
    : repertoire(::testing::TempDir() + "requetes_" + std::to_string(::getpid()) + "/"),
      lecture(&referentiel),
      modification(&referentiel) {
  std::filesystem::create_directories(repertoire);
  referentiel.repertoire = repertoire;
  creerTables(referentiel);
}
MagasinEssai::~MagasinEssai() { std::filesystem::remove_all(repertoire); }

void MagasinEssai::creerTables(Referentiel& magasin) {
  [&]<class... L>(std::type_identity<std::tuple<L...>>) {
    ((magasin.tables[L::IDENTIFIANT] = std::make_unique<Table>(std::vector<L>{})), ...);
  }(std::type_identity<Catalogue>{});
}

NiveauActe& MagasinEssai::poserActe(const char* code) {
  auto acte = std::make_unique<NiveauActe>();
  acte->codeStructure = CodeActe(code);
  acte->libelleCourt = TexteVariable("court");
  acte->libelleLong = TexteVariable("long");
  acte->typeActe = '1';
  acte->dateCreation = jour(20050301);
  acte->historiques.resize(1);
  acte->historiques[0].dateEffet = jour(20050301);
  acte->historiques[0].admissionRemboursement = '1';
  NiveauActivite activite;
  activite.codeActivite = '1';
  activite.historiques.resize(1);
  activite.historiques[0].dateEffet = jour(20050301);
  activite.historiques[0].categorieMedicale = CodeFixe<2>("01");
  activite.historiques[0].codeRegroupement = CodeFixe<3>("ADC");
  NiveauPhase phase;
  phase.codePhase = '0';
  phase.historiques = {{jour(20200601), 30.0, 3.0, {1.0, 1.1, 1.2, 1.3}},
                       {jour(20150101), 20.0, 2.0, {1.0, 1.0, 1.0, 1.0}},
                       {jour(20050301), 10.0, 1.0, {1.0, 1.0, 1.0, 1.0}}};
  activite.phases.push_back(std::move(phase));
  acte->activites.push_back(std::move(activite));
  NiveauActe& pose = *acte;
  referentiel.lignes<Index>().push_back({CodeActe(code), 0});
  referentiel.actes.push_back({std::move(acte), false});
  return pose;
}

std::string MagasinEssai::contenu(const Referentiel& magasin) const {
  const std::string nom = repertoire + "dump.txt";
  constexpr unsigned short MODULE_LIBRE = 5;
  EXPECT_EQ(Trace::activer(nom.c_str(), "w", MODULE_LIBRE, 3), NOX_CR_OK);
  magasin.dump(MODULE_LIBRE);
  Trace::activer(nom.c_str(), "w", MODULE_LIBRE, 0);
  std::ostringstream texte;
  texte << std::ifstream(nom).rdbuf();
  EXPECT_GT(texte.str().size(), 1000U);
  return texte.str();
}

}  // namespace noxlux
