#include "basics/fichiers.h"

#include <fcntl.h>
#include <unistd.h>

#include <climits>
#include <memory>

namespace noxlux {

std::FILE* creerFichier(const std::string& nom, mode_t droits) {
  unlink(nom.c_str());
  const int descripteur = open(nom.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, droits);
  if (descripteur < 0) {
    return nullptr;
  }
  std::FILE* const fichier = fdopen(descripteur, "w+");
  if (fichier == nullptr) {
    close(descripteur);
    unlink(nom.c_str());
  }
  return fichier;
}

bool lireFichier(const std::string& nom, std::string& contenu) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> fichier(std::fopen(nom.c_str(), "rbe"), &std::fclose);
  contenu.clear();
  char bloc[4096];
  for (std::size_t lus = fichier ? sizeof bloc : 0; lus == sizeof bloc;) {
    lus = std::fread(bloc, 1, sizeof bloc, fichier.get());
    contenu.append(bloc, lus);
  }
  return fichier != nullptr;
}

std::string suivreLiens(std::string nom) {
  constexpr int LIENS_MAX = 40;
  char cible[PATH_MAX];
  for (int i = 0; i < LIENS_MAX; ++i) {
    const ssize_t longueur = readlink(nom.c_str(), cible, sizeof cible);
    if (longueur <= 0) {
      break;
    }
    const std::string suite(cible, static_cast<std::size_t>(longueur));
    nom = suite.front() == '/' ? suite : repertoireDe(nom) + suite;
  }
  return nom;
}

std::string repertoireDe(const std::string& nom) { return nom.substr(0, nom.rfind('/') + 1); }

}  // namespace noxlux
