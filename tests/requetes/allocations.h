// Allocations of this program that fail on demand.
#ifndef NOXLUX_TESTS_REQUETES_ALLOCATIONS_H
#define NOXLUX_TESTS_REQUETES_ALLOCATIONS_H

namespace noxlux {

// The allocations that still succeed before one fails; negative: none fails.
extern long allocationsPermises;

}  // namespace noxlux

#endif
