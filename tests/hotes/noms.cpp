// A host by the names of fields: every kind of request and of answer. Usage: noms CONFIGURATION_DIRECTORY
// Compiled with FAUTE=n, one fault that must not compile stands in it.
#include <noxlux/noxlux.hpp>

#include <cstdio>
#include <cstdlib>
#include <vector>

using namespace noxlux::champ;
using noxlux::Date;
using noxlux::Montant;
namespace entree = noxlux::entree;
namespace reponse = noxlux::reponse;

#define EXIGER(condition)                                       \
  if (!(condition)) {                                           \
    std::printf("%s:%d: %s\n", __FILE__, __LINE__, #condition); \
    std::exit(1);                                               \
  }

#ifndef FAUTE
#define FAUTE 0
#endif

static noxlux::DemandeFacture facture(long centimes) {
  noxlux::DemandeFacture f;
  f.ajouter(entree::professionnel_beneficiaire, {{numeroPS, "75123456"},
                                                 {cleNumeroPS, "7"},
                                                 {conventionPS, "1"},
                                                 {specialitePS, "04"},
                                                 {dateNaissance, Date(1980, 5, 17)}})
      .ajouter(entree::assurance_maladie, {})
      .ajouter(entree::prestation, {{numero, 1},
                                    {date, Date(2026, 1, 15)},
                                    {lieuExecution, "1"},
                                    {prestation, "ADC"},
                                    {prixUnitaire, Montant{centimes}},
                                    {baseRemboursement, Montant{17679}},
                                    {tauxRemboursement, noxlux::Taux{100}}})
      .ajouter(entree::exoneration, {{numero, 1}, {exonerationTM, "C"}})
      .ajouter(entree::base_amo, {{numero, 1}, {baseTheoriqueAMO, Montant{17679}}})
      .ajouter(entree::acte_ccam, {{numero, 1}, {acte, "HHFA001"}, {activite, "1"}, {phase, "0"}})
      .ajouter(entree::caisse_professionnel, {{caissePS, "751"}});
  return f;
}

template <class Appel>
static unsigned short codeDe(Appel appel) {
  try {
    appel();
  } catch (const noxlux::Erreur& erreur) {
    return erreur.code();
  }
  return 0;
}

int main(int, char** argv) {
  const Date jour(2026, 1, 15);
  noxlux::Reference ccam(argv[1]);
  EXIGER(ccam.suivi() == NOX_CR_SUIVI_REPERTOIRE);

  // One answer of each type.
  EXIGER(ccam.consulter(noxlux::CCAM_18, {{acte, "HHFA001"}}, jour)[date].estRenseignee());
  EXIGER(!ccam.consulter(noxlux::CCAM_19, {{acte, "HHFA001"}}, jour)[date].estRenseignee());
  EXIGER(ccam.consulter(noxlux::CCAM_1, {{acte, "HHFA001"}}, jour)[noxlux::champ::reponse]);
  EXIGER(ccam.consulter(noxlux::CCAM_4a, {{activite, "1"}, {acte, "HHFA001"}}, jour)[nombre] == 1);
  const auto libelleLong = ccam.consulter(noxlux::CCAM_8, {{acte, "JQGD010"}}, jour);
  EXIGER(noxlux::enUtf8(libelleLong[texte]).find("tête première") != std::string::npos);
  long codesValides = 0;
  for (const auto& element : ccam.consulter(noxlux::TB02_2, jour)) {
    codesValides += element.en(reponse::code_libelle) && !(*element.en(reponse::code_libelle))[code].empty();
  }
  EXIGER(codesValides > 1);
  std::vector<std::string> actes;
  const auto trouves = ccam.rechercherFiltre("HHFA");
  for (const std::string_view trouve : trouves[acte]) {
    actes.emplace_back(trouve);
  }
  EXIGER(static_cast<long>(actes.size()) == trouves[nombre] && actes.front() == "HHFA001");
  EXIGER(ccam.rechercherMotCle("appendice")[nombre] > 0);
  EXIGER(ccam.version()[versionLogicielle] == "0113");
  EXIGER(ccam.verifier(noxlux::C_Executant, {{specialite, "04"}, {acte, "HHFA001"}, {activite, "1"}}, jour));

  // Rules, the whole check, and a change that both see.
  noxlux::Demande<noxlux::C_Pu_t::Regle> prix;
  prix.ajouter(entree::entete_tarif, {{conventionPS, "1"}, {caissePS, "751"}})
      .ajouter(entree::ligne_prix,
               {{numero, 1}, {date, jour}, {acte, "HHFA001"}, {activite, "1"}, {phase, "0"}});
  EXIGER(ccam.appliquer(noxlux::C_Pu, prix)[prixUnitaire] == Montant{17679});
  EXIGER(ccam.controler(facture(17679)).code() == NOX_CR_OK);
  const auto refus = ccam.controler(facture(12));
  EXIGER(refus.code() == NOX_CR_CONTROLE_NIVEAU_1 && refus[niveau] == "O" && refus[forcage] == "X");
  for (const long ligne : refus[prestation]) {
    EXIGER(ligne == 1);
  }
  ccam.modifier(noxlux::CCAM_37,
                {{acte, "HHFA001"}, {activite, "1"}, {phase, "0"}, {montant, Montant{20500}}},
                Date(2026, 1, 1));
  EXIGER(ccam.appliquer(noxlux::C_Pu, prix)[prixUnitaire] == Montant{20500});
  ccam.annuler(noxlux::CCAM_37, {{acte, "HHFA001"}, {activite, "1"}, {phase, "0"}});
  EXIGER(ccam.appliquer(noxlux::C_Pu, prix)[prixUnitaire] == Montant{17679});

  // Codes are exceptions, and tell their names.
  EXIGER(codeDe([&] { ccam.annuler(noxlux::TB12); }) == NOX_CR_NON_MODIFIE);
  EXIGER(codeDe([&] { ccam.consulter(noxlux::CCAM_7, {{acte, "ZZZZ999"}}, jour); }) == NOX_CR_CODE_INCONNU);
  EXIGER(codeDe([&] { noxlux::Reference seconde(argv[1]); }) == NOX_CR_DEJA_CHARGE);
  EXIGER(codeDe([&] {
           ccam.consulter(noxlux::CCAM_37, {{acte, "HHFA001"}, {activite, "1"}}, jour)[dateModification];
         }) == NOX_CR_GROUPE_ABSENT);
  EXIGER(std::string(noxlux::Erreur(0x9003).nom()) == "NOX_CR_CHAMP_INVALIDE" &&
         std::string(noxlux::Erreur(0x9003).what()) ==
             "0x9003 : contenu du champ n° 3 de la zone d'entrée refusé");

#if FAUTE == 1  // a field that does not exist
  ccam.consulter(noxlux::CCAM_7, {{actte, "HHFA001"}}, jour);
#elif FAUTE == 2  // a field of another request
  ccam.consulter(noxlux::CCAM_7, {{caisse, "751"}}, jour);
#elif FAUTE == 3  // a value of another type
  ccam.modifier(noxlux::TB12_1, {{montant, 3.5}}, jour);
#elif FAUTE == 4  // a field that the answer does not have
  ccam.consulter(noxlux::CCAM_7, {{acte, "HHFA001"}}, jour)[montant];
#elif FAUTE == 5  // a function of another family
  ccam.consulter(noxlux::C_Pu, {{acte, "HHFA001"}}, jour);
#elif FAUTE == 6  // a group of another function
  prix.ajouter(entree::ligne_base, {});
#elif FAUTE == 7  // fields for a question that takes none
  ccam.consulter(noxlux::TB02_2, {{acte, "HHFA001"}}, jour);
#endif
}
