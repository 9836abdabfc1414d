// The values that the fields of the public listing hold, written as people write them.
#ifndef NOXLUX_COMPILATEUR_VALEURS_LISTING_H
#define NOXLUX_COMPILATEUR_VALEURS_LISTING_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "compilateur/modele.h"

namespace noxlux::compilateur {

// Without the blanks, no-break spaces and line breaks around.
std::string_view rogner(std::string_view texte);

bool estCodeActe(std::string_view texte);        // "AHQB027"
bool estNumeroChapitre(std::string_view texte);  // "1", "01.02", "01.02.03.04"
// "01.02.03" gives 1020300. REQUIRES: estNumeroChapitre
std::uint32_t codeMenu(std::string_view numero);
std::string numeroChapitre(std::uint32_t menu);  // the way back

struct PrixListe {
  double montant = 0.0;
  bool prisEnCharge = true;
  bool ajuste = false;  // "248, 15", or more decimals than cents
};
std::optional<PrixListe> lirePrix(std::string_view texte);

// "25.15" is a flat amount; "+49%", "21,5%" and "0.49" are rates.
struct ValeurListe {
  double forfait = 0.0;
  double coefficient = 1.0;
};
std::optional<ValeurListe> lireValeurModificateur(std::string_view texte);

// "1", "5-7", "5 -7": the codes, one or several.
std::optional<std::vector<char>> lireExonerations(std::string_view texte);
// "[A, F , J,K]": the codes, each once.
std::optional<std::vector<char>> lireModificateurs(std::string_view texte);

// "(GELE001, ZZHA001)": the codes, each once, and what stands among them that is no code.
struct CodesAssocies {
  std::vector<std::string> codes;
  std::vector<std::string> malEcrits;
};
// Nothing when the text is no such list.
std::optional<CodesAssocies> lireAssociations(std::string_view texte);

// The version and the date of "CCAM version 81 applicable 01/01/2026".
struct TitreListe {
  unsigned version = 0;
  DateBrute date;
};
std::optional<TitreListe> lireTitre(std::string_view texte);

}  // namespace noxlux::compilateur

#endif
