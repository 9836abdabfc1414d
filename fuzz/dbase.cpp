// The tables of the public database, retouched.
#include <filesystem>

#include "atelier.h"
#include "compilateur/import_dbf.h"

using namespace noxlux::compilateur;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* octets, std::size_t taille) {
  static const std::vector<fuzz::Fichier> BASE = fuzz::base("dbase");
  static const bool PRET = std::filesystem::create_directory(fuzz::dossier() + "dbase");
  std::vector<fuzz::Fichier> fichiers = BASE;
  fuzz::Source source(octets, taille);
  const std::size_t grille = source.entier(1);
  fuzz::retoucher(fichiers, source);
  for (std::size_t i = 0; PRET && i < fichiers.size(); ++i) {
    fuzz::ecrire("dbase/" + fichiers[i].nom, fichiers[i].octets);
  }
  Modele modele;
  BilanImport bilan;
  Rapport rapport;
  const auto muet = [](const auto&...) {};
  const bool lu =
      importerBaseDbf(fuzz::dossier() + "dbase", grille == 0 ? std::nullopt : std::optional<unsigned>(grille),
                      muet, modele, bilan, rapport);
  fuzz::exiger(lu == (rapport.nombreFautes() == 0));
  return 0;
}
