// The check of invoices against references by profile: each invoice is answered by the reference of its
// professional's speciality, in the order in which they came.
#ifndef NOXLUX_COMMANDE_CONTROLE_PAR_PROFILS_H
#define NOXLUX_COMMANDE_CONTROLE_PAR_PROFILS_H

#include <string>
#include <vector>

#include "noxlux/profils.h"

namespace noxlux::commande {

// Checks the invoices of files, one a line, each profile in a process of its own; a file "-" is the standard
// input. `options` are those of a batch but the reference. Answers the status of the command.
int controlerParProfils(const Profils& profils, const std::vector<std::string>& fichiers,
                        const std::vector<std::string>& options);

}  // namespace noxlux::commande

#endif
