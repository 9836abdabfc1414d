// Files of the sources that the build put into the command, as they are.
#ifndef NOXLUX_COMMANDE_TEXTES_EMBARQUES_H
#define NOXLUX_COMMANDE_TEXTES_EMBARQUES_H

#include <string_view>

namespace noxlux::commande {

extern const std::string_view ZONES_TOML;   // the socle's zone descriptions
extern const std::string_view REGLES_TOML;  // the socle's catalogue of rules
extern const std::string_view RULES_MD;     // docs/rules.md

}  // namespace noxlux::commande

#endif
