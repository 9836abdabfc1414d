// The changes that a modification file holds, as requests of the library: what each would be asked for again
// with, and which lines of the file a cancellation means.
#ifndef NOXLUX_COMMANDE_CHANGEMENTS_SAUVES_H
#define NOXLUX_COMMANDE_CHANGEMENTS_SAUVES_H

#include <array>
#include <span>
#include <string>

#include "basics/codes_retour.h"
#include "compilateur/listage.h"
#include "noxlux/zone_json.h"

namespace noxlux {
class Referentiel;
}

namespace noxlux::commande {

struct OptionsReference;

// A field under its name in a request and under that in the saved line.
struct ChampSauve {
  const char* demande = nullptr;
  const char* sauve = nullptr;
};
using ChampsSauves = std::array<ChampSauve, 4>;

// A table of a modification file.
struct TableChangements {
  unsigned table;
  const char* sujet;
  const char* annulation;  // the cancellation of its lines of one key
  ChampsSauves cles;
  struct Demande {
    const char* modification = nullptr;
    ChampsSauves valeurs;
  };
  std::array<Demande, 2> demandes;  // what the values of a line are asked for again with
};
std::span<const TableChangements> tablesChangements();

// A field of a saved line as a request has it: the fund instead of a position.
compilateur::JsonOrdonne valeurSauvee(const ChampSauve& champ, const compilateur::JsonOrdonne& ligne);

// Reads both files without making the changes, so that those that the reference refuses can be mended.
CodeRetour chargerSansRefaire(const OptionsReference& options, Referentiel& referentiel);

// Takes out of the modification file the changes that a cancellation means (`zone`: its input zone), where
// the library does not start because of one of them. The number of changes taken out; nothing is written for
// none. Throws ErreurUsage, ErreurBibliotheque.
std::size_t retirerDuFichier(const OptionsReference& options, const std::string& annulation,
                             const std::string& zone, const std::string& commentaire);

}  // namespace noxlux::commande

#endif
