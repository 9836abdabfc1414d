// The line between a process and one that works for it: bytes, whole whatever interrupts.
#ifndef NOXLUX_COMMANDE_LIGNE_H
#define NOXLUX_COMMANDE_LIGNE_H

#include <string>
#include <string_view>

namespace noxlux::commande {

// False when nobody is at the other end any more.
bool envoyerSurLigne(int ligne, std::string_view octets);

// Adds what has come to what was received, and waits for it. False at the end of the line.
bool recevoirDeLigne(int ligne, std::string& recu);

}  // namespace noxlux::commande

#endif
