// What the targets share: files written where they cost nothing, base files with their retouches, answers
// checked.
#ifndef NOXLUX_FUZZ_ATELIER_H
#define NOXLUX_FUZZ_ATELIER_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "noxlux/noxlux.h"

namespace fuzz {

// Bytes taken one after the other; zeros once there are none left.
class Source {
 public:
  Source(const std::uint8_t* octets, std::size_t taille)
      : reste_(reinterpret_cast<const char*>(octets), taille) {}
  bool vide() const { return reste_.empty(); }
  std::size_t entier(unsigned octets);
  std::string_view prendre(std::size_t n);
  std::string_view tout() { return prendre(reste_.size()); }

 private:
  std::string_view reste_;
};

// The process goes on only while this holds.
inline void exiger(bool vrai) {
  if (!vrai) {
    std::abort();
  }
}

// A directory of this process, made at its first use and removed at the end; with a trailing '/'.
const std::string& dossier();
void ecrire(const std::string& nom, std::string_view octets);
std::string lire(const std::string& chemin);

// A directory of the sources' fuzz/bases, and its files in the order of their names.
struct Fichier {
  std::string nom;
  std::string octets;
};
std::vector<Fichier> base(const std::string& nom);

// Applies what is left of the source: retouches of an operation (bytes written over, inserted, removed, end
// cut), a file, a place, a length, and bytes.
void retoucher(std::vector<Fichier>& fichiers, Source& source);

// The checksum in front of a file of the library made right.
void refaireCrc(std::string& octets);

// orvan.ini in `dossier()`, telling that everything is there.
void configurer();
// What an exported function answered: either null, or whole groups. Frees it.
void verifierReponse(void* zone, unsigned taille);
// The library loaded on what lies in `dossier()` is asked a little of everything, then unloaded.
void interroger();
// The first file of a base, retouched, its checksum right, is written, and the library asked.
void essayerRetouche(std::vector<Fichier> fichiers, Source retouches);

}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* octets, std::size_t taille);

#endif
