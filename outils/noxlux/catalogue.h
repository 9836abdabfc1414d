// What the reference file tells besides what the library answers: the words of every act, the chapters, and
// the days on which a price changes.
#ifndef NOXLUX_COMMANDE_CATALOGUE_H
#define NOXLUX_COMMANDE_CATALOGUE_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "compilateur/fichier_reference.h"

namespace noxlux::commande {

struct ActeConnu {
  std::string code;
  std::string libelleCourt;
  std::string libelleLong;
  std::uint32_t menu = 0;
};

struct Chapitre {
  std::string titre;
  std::uint32_t pere = 0;
};

struct PhaseConnue {
  char activite = ' ';
  char phase = ' ';
  std::vector<std::string> effets;  // AAAAMMJJ, oldest first
};

class Catalogue {
 public:
  // REQUIRES: `fichier` is a tablebin.nox. Throws ErreurUsage when it cannot be read.
  explicit Catalogue(const std::string& fichier);

  // Every act, in the order of codes; read once, when first asked for.
  const std::vector<ActeConnu>& actes() const;
  const std::map<std::uint32_t, Chapitre>& chapitres() const;
  std::vector<std::string> codes() const;
  // The label of an act; empty when the file has none of that code.
  std::string libelle(const std::string& code) const;
  // The phases of an act and the days from which a price holds; none for an unknown act.
  std::vector<PhaseConnue> phases(const std::string& code) const;
  // Whether a chapter is another one or stands below it.
  bool estDans(std::uint32_t chapitre, std::uint32_t dessus) const;

 private:
  std::unique_ptr<compilateur::FichierReference> fichier_;
  mutable std::vector<ActeConnu> actes_;
  mutable std::map<std::uint32_t, Chapitre> chapitres_;
};

}  // namespace noxlux::commande

#endif
