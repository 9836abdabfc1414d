#include "referent/verrou_modifications.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <string_view>
#include <thread>

#include "basics/fichiers.h"
#include "referent/referentiel.h"

namespace noxlux {

namespace {

bool memeRepertoire(int gauche, int droite) {
  struct stat etatGauche {};
  struct stat etatDroite {};
  return fstat(gauche, &etatGauche) == 0 && fstat(droite, &etatDroite) == 0 &&
         etatGauche.st_dev == etatDroite.st_dev && etatGauche.st_ino == etatDroite.st_ino;
}

// The descriptor by which this process says that it holds a lock; -1 when it says none.
int descripteurPrete() {
  const char* const texte = secure_getenv(VARIABLE_VERROU);
  int descripteur = -1;
  if (texte != nullptr) {
    const std::string_view vue(texte);
    std::from_chars(vue.data(), vue.data() + vue.size(), descripteur);
  }
  return descripteur;
}

}  // namespace

VerrouModifications::VerrouModifications(const std::string& repertoire, std::chrono::milliseconds attente) {
  const std::string nom = repertoireDe(suivreLiens(repertoire + NOM_FICHIER_MODIFICATION));
  descripteur_ = open(nom.empty() ? "." : nom.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descripteur_ < 0) {
    return;
  }
  const int prete = descripteurPrete();
  if (prete >= 0 && memeRepertoire(prete, descripteur_) && tenter(prete)) {
    return;
  }
  constexpr std::chrono::milliseconds PAS{10};
  const auto fin = std::chrono::steady_clock::now() + attente;
  while (!tenter(descripteur_) && etat_ == Etat::Occupe && std::chrono::steady_clock::now() < fin) {
    std::this_thread::sleep_for(PAS);
  }
}

VerrouModifications::~VerrouModifications() {
  if (prete_) {
    unsetenv(VARIABLE_VERROU);
  }
  if (descripteur_ >= 0) {
    close(descripteur_);
  }
}

void VerrouModifications::preter() {
  prete_ = setenv(VARIABLE_VERROU, std::to_string(descripteur_).c_str(), 1) == 0;
}

bool VerrouModifications::tenter(int descripteur) {
  const bool pris = flock(descripteur, LOCK_EX | LOCK_NB) == 0;
  etat_ = pris ? Etat::Pris : errno == EWOULDBLOCK || errno == EINTR ? Etat::Occupe : Etat::Absent;
  return pris;
}

}  // namespace noxlux
