// The files of the page, held in the program: nothing of the disk is served.
#ifndef NOXLUX_SERVEUR_FICHIERS_PAGE_H
#define NOXLUX_SERVEUR_FICHIERS_PAGE_H

#include <span>
#include <string_view>

namespace noxlux::serveur {

struct FichierPage {
  const char* chemin;
  const char* type;
  std::string_view contenu;
};

std::span<const FichierPage> fichiersDeLaPage();

}  // namespace noxlux::serveur

#endif
