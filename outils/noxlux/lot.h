// The invoices of a batch, from whatever an office has: one JSON a line, one a file, a list of them, or CSV
// with one line of invoice a row (docs/facture.md tells the columns).
#ifndef NOXLUX_COMMANDE_LOT_H
#define NOXLUX_COMMANDE_LOT_H

#include <cstdint>
#include <deque>
#include <istream>
#include <memory>
#include <string>
#include <vector>

#include "noxlux/zone_json.h"

namespace noxlux::commande {

struct FactureLue {
  std::string texte;  // of an invoice that is still to be read; empty once it is
  Json facture;       // null when the record is no invoice
  std::string faute;  // why, then
  std::string fichier;

  // Reads the text, where there is one.
  void lire();
};

class LectureLot {
 public:
  // Files in order; "-" is the standard input.
  explicit LectureLot(std::vector<std::string> fichiers);
  ~LectureLot();

  // The next invoice; false at the end of the last file. Throws ErreurUsage for a
  // file that cannot be read.
  bool suivante(FactureLue& lue) {
    const bool une = prochaine(lue);
    lue.lire();
    return une;
  }
  // The same, left to be read where it is a text.
  bool prochaine(FactureLue& lue);
  // Whether the next invoice is not at hand yet.
  bool attend() const;
  // For progress: bytes read and bytes in all; 0 when it is not known.
  std::uint64_t octetsLus() const;
  std::uint64_t octetsEnTout() const { return octets_; }

  // One file, whatever it holds.
  class Source;

 private:
  std::vector<std::string> fichiers_;
  std::size_t rang_ = 0;
  std::unique_ptr<Source> source_;
  std::uint64_t octets_ = 0;
  std::uint64_t octetsFinis_ = 0;
};

}  // namespace noxlux::commande

#endif
