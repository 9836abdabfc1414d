#include "fichier/fichier_ouvert.h"

#include <fcntl.h>
#include <unistd.h>

namespace noxlux {

bool FichierOuvert::synchroniser() { return std::fflush(fichier_) == 0 && fsync(fileno(fichier_)) == 0; }

bool FichierOuvert::fermer() {
  std::FILE* ouvert = fichier_;
  fichier_ = nullptr;
  return ouvert == nullptr || std::fclose(ouvert) == 0;
}

void synchroniserRepertoire(const std::string& repertoire) {
  const int descripteur =
      open(repertoire.empty() ? "." : repertoire.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descripteur >= 0) {
    fsync(descripteur);
    close(descripteur);
  }
}

}  // namespace noxlux
