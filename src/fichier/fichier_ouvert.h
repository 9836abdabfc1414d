// Files held open for the length of a scope, and brought down to the disk.
#ifndef NOXLUX_FICHIER_FICHIER_OUVERT_H
#define NOXLUX_FICHIER_FICHIER_OUVERT_H

#include <cstdio>
#include <string>

namespace noxlux {

class FichierOuvert {
 public:
  // Open for reading.
  explicit FichierOuvert(const std::string& nom) : fichier_(std::fopen(nom.c_str(), "rbe")) {}
  // Takes over an open file, or null.
  explicit FichierOuvert(std::FILE* fichier) : fichier_(fichier) {}
  ~FichierOuvert() { fermer(); }
  FichierOuvert(const FichierOuvert&) = delete;
  FichierOuvert& operator=(const FichierOuvert&) = delete;

  bool estOuvert() const { return fichier_ != nullptr; }
  std::FILE* lire() const { return fichier_; }
  // Hands everything written over to the disk. False when it cannot be.
  bool synchroniser();
  // False when the system refuses, errno telling why. The file is closed all the same.
  bool fermer();

 private:
  std::FILE* fichier_;
};

// Brings the names of a directory down to the disk, where the file system allows it. "" is the current one.
void synchroniserRepertoire(const std::string& repertoire);

}  // namespace noxlux

#endif
