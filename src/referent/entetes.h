// The text headers of the two files: how they are read, checked and written.
#ifndef NOXLUX_REFERENT_ENTETES_H
#define NOXLUX_REFERENT_ENTETES_H

#include <cstdint>
#include <string>
#include <string_view>

#include "basics/codes_retour.h"
#include "tables/valeurs_ligne.h"

namespace noxlux {

class Ecrivain;
class Lecteur;

constexpr const char* NOM_FICHIER_REFERENCE = "tablebin.nox";
constexpr const char* NOM_FICHIER_MODIFICATION = "modifref.nox";
// Beside it: the version before, the new one while it is written, a copy of the former while the files turn.
constexpr const char* NOM_SAUVEGARDE_MODIFICATION = "modif~.nox";
constexpr const char* NOM_TEMPORAIRE_MODIFICATION = "modiftmp.nox";
constexpr const char* NOM_SECURITE_MODIFICATION = "modif~.sav";

// What the headers of the two files tell.
struct EnteteReferentiel {
  CodeFixe<4> version;
  CodeFixe<5> versionBaseCCAM;
  DateBrute dateModification;  // from modifref.nox only
  CodeFixe<4> versionMinLogicielle;
  std::uint16_t numeroRevision = 0;
  CodeFixe<10> variante;
  std::string commentaire;
};

// A header as it stands in the file.
struct EnteteTexte {
  std::string crc;
  std::string nom;
  std::string version;
  std::string versionBaseCCAM;
  std::string date;
  std::string versionMinimum;
  std::string revision;
  std::string variante;
  std::string commentaire;
};

// Each leaves the reader at the first table; a header that is refused changes nothing.
CodeRetour lireEnteteRef(Lecteur& lecteur, EnteteReferentiel& entete);
// REQUIRES: `entete` is that of the reference.
CodeRetour lireEnteteModif(Lecteur& lecteur, EnteteReferentiel& entete);
// The header of either file, whatever its values: only what is cut short is refused.
CodeRetour lireEnteteTexte(Lecteur& lecteur, EnteteTexte& entete);
// The reference version at its fixed offset; the position does not move.
CodeRetour lireVersionEntete(Lecteur& lecteur, CodeFixe<4>& version);

// The header of a new file, whose CRC is left at "0000". `nomFichier`: at most 12 characters.
CodeRetour ecrireEntete(Ecrivain& ecrivain, std::string_view nomFichier, const EnteteReferentiel& entete,
                        const DateBrute& date, std::string_view versionMinimum);

}  // namespace noxlux

#endif
