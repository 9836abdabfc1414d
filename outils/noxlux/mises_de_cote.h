// Local changes that the library sets aside, because they were made on another reference, or refuses; and
// what a save that was cut short left.
#ifndef NOXLUX_COMMANDE_MISES_DE_COTE_H
#define NOXLUX_COMMANDE_MISES_DE_COTE_H

#include <chrono>
#include <string>
#include <vector>

#include "referent/verrou_modifications.h"

namespace noxlux::commande {

struct OptionsReference;

// A directory of modifications by what its file's name follows at once.
// A sentence without final stop when its modifref.nox was made on another reference than this tablebin.nox;
// "" when it was not, or when one of them cannot be read.
std::string direMiseDeCote(const std::string& fichierReference, const std::string& repertoireModification);
std::string direMiseDeCote(const OptionsReference& options);

// Whether both files can be read and a saved change keeps the library from starting: which one, in a sentence
// without final stop; "" otherwise.
std::string direRefus(const OptionsReference& options);
// The same of the acts that their saved changes keep from being answered.
std::string direActesRefuses(const OptionsReference& options);

// The lock of the modification directory, for the length of a change: what is loaded is what is saved over.
class Exclusivite {
 public:
  // Throws ErreurUsage when another keeps it.
  explicit Exclusivite(const std::string& repertoire);

 private:
  static constexpr std::chrono::seconds ATTENTE{10};
  VerrouModifications verrou_;
};

// A sentence for each file that an interrupted save left.
std::vector<std::string> direRestes(const std::string& repertoireModification);

}  // namespace noxlux::commande

#endif
