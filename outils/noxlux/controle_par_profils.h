// The check of invoices against references by profile: each invoice is answered by the reference of its
// professional's speciality, in the order in which they came.
#ifndef NOXLUX_COMMANDE_CONTROLE_PAR_PROFILS_H
#define NOXLUX_COMMANDE_CONTROLE_PAR_PROFILS_H

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "noxlux/profils.h"

namespace noxlux::commande {

class ControleParProfils {
 public:
  // `options` are those of a batch but the reference.
  ControleParProfils(const Profils& profils, std::vector<std::string> options);
  ~ControleParProfils();

  // The answer to an invoice, by the process of its profile. Throws ErreurUsage when the speciality has no
  // profile, or a process stops.
  Json repondre(const Json& facture);

 private:
  class Controleur;
  const Profils& profils_;
  std::vector<std::string> options_;
  std::map<std::string, std::unique_ptr<Controleur>> controleurs_;  // by reference
};

}  // namespace noxlux::commande

#endif
