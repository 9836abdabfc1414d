// One request on the example reference: a byte chooses the function, the others are its input zone. With the
// first bit of the choice, the trace tells everything on the way.
#include <cstring>
#include <iterator>

#include "atelier.h"

namespace {

constexpr const char* JOUR = "20260115";
enum Genre { CONSULTER, MODIFIER, ANNULER, CONTROLER, APPLIQUER, COMPLET };
struct Demande {
  Genre genre;
  const char* identifiant;
};
// An identifier of each shape of input zone, then every change, every control and every rule.
constexpr Demande DEMANDES[] = {
    {COMPLET, ""},
    {CONSULTER, "CCAM_8"},
    {CONSULTER, "CCAM_16a"},
    {CONSULTER, "CCAM_32a"},
    {CONSULTER, "CCAM_37"},
    {CONSULTER, "CCAM_47a"},
    {CONSULTER, "TB02_1"},
    {CONSULTER, "TB06_1"},
    {CONSULTER, "TB07_1"},
    {CONSULTER, "TB09_1"},
    {CONSULTER, "TB13_1"},
    {MODIFIER, "CCAM_37"},
    {MODIFIER, "CCAM_39"},
    {MODIFIER, "CCAM_42"},
    {MODIFIER, "CCAM_47a"},
    {MODIFIER, "TB02_1"},
    {MODIFIER, "TB07_1"},
    {MODIFIER, "TB11_1"},
    {MODIFIER, "TB11_2"},
    {MODIFIER, "TB12_1"},
    {MODIFIER, "TB12_2"},
    {MODIFIER, "TB13_1"},
    {ANNULER, "CCAM_37"},
    {ANNULER, "CCAM_42"},
    {ANNULER, "CCAM_47a"},
    {ANNULER, "TB02_1"},
    {ANNULER, "TB07_1"},
    {ANNULER, "TB11"},
    {ANNULER, "TB12"},
    {ANNULER, "TB13_1"},
    {CONTROLER, "C_Age_1"},
    {CONTROLER, "C_Age_2"},
    {CONTROLER, "C_Assurance"},
    {CONTROLER, "C_Ccam"},
    {CONTROLER, "C_Executant"},
    {CONTROLER, "C_Radio"},
    {APPLIQUER, "C_Association"},
    {APPLIQUER, "C_Base"},
    {APPLIQUER, "C_Compatibilite"},
    {APPLIQUER, "C_Dent"},
    {APPLIQUER, "C_ExoActe"},
    {APPLIQUER, "C_ExoFacture"},
    {APPLIQUER, "C_ExoPrevention"},
    {APPLIQUER, "C_Pu"},
};

void tracer(unsigned char niveau) {
  for (unsigned short module = 0; module < 6; ++module) {
    NOX_InitTrace("/dev/null", "w", module, niveau);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* octets, std::size_t taille) {
  static const bool CHARGEE = [] {
    fuzz::configurer();
    for (const fuzz::Fichier& fichier : fuzz::base("reference")) {
      fuzz::ecrire(fichier.nom, fichier.octets);
    }
    return NOX_InitLIB() == NOX_CR_OK;
  }();
  fuzz::exiger(CHARGEE);
  fuzz::Source source(octets, taille);
  const std::size_t choix = source.entier(1);
  const Demande& demande = DEMANDES[(choix & 0x7FU) % std::size(DEMANDES)];
  const std::string_view corps = source.tout();
  std::vector<char> bloc(corps.begin(), corps.end());
  void* entree = bloc.empty() ? nullptr : bloc.data();
  const auto longueur = static_cast<unsigned>(bloc.size());
  void* zone = nullptr;
  unsigned reponse = 0;
  char resultat = 0;
  unsigned code = 1;
  if ((choix & 0x80U) != 0) {
    tracer(9);
  }
  switch (demande.genre) {
    case CONSULTER:
      code = NOX_ConsulterDonnee(demande.identifiant, JOUR, entree, longueur, &zone, &reponse);
      break;
    case MODIFIER:
      code = NOX_ModifierDonnee(demande.identifiant, JOUR, entree, longueur);
      break;
    case ANNULER:
      code = NOX_AnnulerModification(demande.identifiant, entree, longueur);
      break;
    case CONTROLER:
      code = NOX_ControlerDonnees(demande.identifiant, JOUR, entree, longueur, &resultat);
      break;
    case APPLIQUER:
      code = NOX_AppliquerRegle(demande.identifiant, entree, longueur, &zone, &reponse);
      break;
    case COMPLET:
      NOX_ControleComplet(entree, longueur, &zone, &reponse);
      break;
  }
  fuzz::verifierReponse(zone, reponse);
  if ((choix & 0x80U) != 0) {
    tracer(0);
  }
  // A change made is told by what follows it: it is taken back by loading again.
  if (code == NOX_CR_OK && (demande.genre == MODIFIER || demande.genre == ANNULER)) {
    void* encore = nullptr;
    NOX_ConsulterDonnee("TB13_1", JOUR, nullptr, 0, &encore, &reponse);
    fuzz::verifierReponse(encore, reponse);
    fuzz::exiger(NOX_TermLIB() == NOX_CR_OK && NOX_InitLIB() == NOX_CR_OK);
  }
  return 0;
}
