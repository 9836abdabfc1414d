// Texts in code page 850, as the tables of the public database hold them.
#ifndef NOXLUX_COMPILATEUR_CP850_H
#define NOXLUX_COMPILATEUR_CP850_H

#include <string>
#include <string_view>

namespace noxlux::compilateur {

struct TexteCp850 {
  std::string latin1;
  std::string remplaces;  // the bytes that ISO-8859-1 has no character for, one for each replaced
};

// Control characters other than line ends and tabulations are left out.
TexteCp850 depuisCp850(std::string_view texte);
// What replaces a byte that ISO-8859-1 has no character for.
char equivalentCp850(char octet);

}  // namespace noxlux::compilateur

#endif
