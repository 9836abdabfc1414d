// Texts between UTF-8, as people write them, and ISO-8859-1, as the reference holds them.
#ifndef NOXLUX_COMPILATEUR_TRANSCODAGE_H
#define NOXLUX_COMPILATEUR_TRANSCODAGE_H

#include <string>
#include <string_view>
#include <vector>

namespace noxlux::compilateur {

// A character that was replaced, in UTF-8, and how often it was.
struct Remplacement {
  std::string caractere;
  std::size_t nombre = 0;
};

struct TexteLatin1 {
  std::string texte;                         // what has no equivalent is a question mark
  std::vector<Remplacement> translitteres;   // the characters replaced by their equivalent
  std::vector<Remplacement> sansEquivalent;  // the characters that have none; invalid bytes as "0xNN"
  bool estFidele() const { return translitteres.empty() && sansEquivalent.empty(); }
};

// Typographic characters get their plain equivalent: ' " - oe OE ... <= >= and so on.
TexteLatin1 versLatin1(std::string_view utf8);
// The plain equivalent of a character in UTF-8; empty when there is none.
std::string_view equivalentLatin1(std::string_view caractere);
// Where the first byte that is no well-formed UTF-8 stands; npos when there is none.
std::size_t premierOctetInvalide(std::string_view texte);
std::string versUtf8(std::string_view latin1);

}  // namespace noxlux::compilateur

#endif
