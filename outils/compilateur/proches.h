// Words that resemble one another: the "vouliez-vous" of every message.
#ifndef NOXLUX_COMPILATEUR_PROCHES_H
#define NOXLUX_COMPILATEUR_PROCHES_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace noxlux::compilateur {

// Number of insertions, deletions, replacements and swaps of neighbours from a word to another.
std::size_t ecart(std::string_view gauche, std::string_view droite);

// In small letters and without accents, as words are compared; in ISO-8859-1's plain letters.
std::string sansAccents(std::string_view utf8);

// Those of the candidates that a word was likely meant for, nearest first, `maximum` at most.
std::vector<std::string> proches(std::string_view mot, const std::vector<std::string>& candidats,
                                 std::size_t maximum = 3);

// " ; vouliez-vous « X » ?", or nothing when no candidate is near.
std::string vouliezVous(std::string_view mot, const std::vector<std::string>& candidats);

}  // namespace noxlux::compilateur

#endif
