// The socle's zone descriptions, as the text that the build put into the command.
#ifndef NOXLUX_COMMANDE_ZONES_TOML_H
#define NOXLUX_COMMANDE_ZONES_TOML_H

#include <string_view>

namespace noxlux::commande {

extern const std::string_view ZONES_TOML;

}  // namespace noxlux::commande

#endif
