// What a value of a source may be at most.
#ifndef NOXLUX_COMPILATEUR_PLAFONDS_H
#define NOXLUX_COMPILATEUR_PLAFONDS_H

#include <cstddef>

namespace noxlux::compilateur {

constexpr double PLAFOND_DECIMAL = 1000000.0;
constexpr std::size_t PLAFOND_LISTE = 65535;  // runs of lines are counted on 16 bits

}  // namespace noxlux::compilateur

#endif
