// The INI file orvan.ini: sections of keys and values, looked up without regard to letter case.
#ifndef NOXLUX_BASICS_FICHIER_INI_H
#define NOXLUX_BASICS_FICHIER_INI_H

#include <string>
#include <string_view>
#include <vector>

#include "basics/codes_retour.h"

namespace noxlux {

constexpr std::size_t MAX_SECTIONS_INI = 30;
constexpr std::size_t MAX_RUBRIQUES_INI = 30;

// One key and its value.
struct RubriqueIni {
  std::string cle;
  std::string valeur;
};

// One section, its name as written between the brackets.
class SectionIni {
 public:
  explicit SectionIni(std::string_view nom) : nom_(nom) {}

  const std::string& lireNom() const { return nom_; }
  // Beyond 30 keys: 0xDF13; out of memory: 0xDFFC.
  CodeRetour ajouterRubrique(const char* cle, const char* valeur);
  // The first key of that name; null when there is none.
  const RubriqueIni* chercher(const char* cle) const;

 private:
  std::string nom_;
  std::vector<RubriqueIni> rubriques_;
};

class FichierIni {
 public:
  // Parses orvan.ini in the configuration directory.
  CodeRetour parserOrvanIni();
  // Parses a file, in place of what was held. Returns the first fault met: 0xDF10 not opened, 0xDF11 syntax,
  // 0xDF12 key outside any section, 0xDF13 limit reached, 0xDFFC; the valid lines are kept all the same.
  CodeRetour parserFichier(const char* nomFichier);
  // The value of the first such key of the first such section, or null. Valid while the object lives.
  const char* lireValeur(const char* section, const char* cle) const;

  CodeRetour ajouterSection(const char* nom);
  CodeRetour ajouterRubrique(const char* cle, const char* valeur);

 private:
  CodeRetour parserLigne(std::string_view ligne);
  CodeRetour parserSection(std::string_view ligne);
  CodeRetour parserRubrique(std::string_view ligne);

  std::vector<SectionIni> sections_;
};

}  // namespace noxlux

#endif
