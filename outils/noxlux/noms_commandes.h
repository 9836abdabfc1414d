// The names that a command line may hold, for suggestions and completion.
#ifndef NOXLUX_COMMANDE_NOMS_COMMANDES_H
#define NOXLUX_COMMANDE_NOMS_COMMANDES_H

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace noxlux::commande {

// Those that help shows.
inline std::vector<std::string> nomsDeCommandes(const CLI::App& application) {
  std::vector<std::string> noms;
  for (const CLI::App* const commande : application.get_subcommands({})) {
    if (!commande->get_group().empty()) {
      noms.push_back(commande->get_name());
    }
  }
  return noms;
}

inline std::vector<std::string> nomsDOptions(const CLI::App& application) {
  std::vector<std::string> noms;
  for (const CLI::Option* const option : application.get_options()) {
    for (const std::string& nom : option->get_lnames()) {
      noms.push_back("--" + nom);
    }
  }
  return noms;
}

// Null when there is none of that name.
inline const CLI::App* sousCommande(const CLI::App& application, const std::string& nom) {
  for (const CLI::App* const commande : application.get_subcommands({})) {
    if (commande->check_name(nom)) {
      return commande;
    }
  }
  return nullptr;
}

}  // namespace noxlux::commande

#endif
