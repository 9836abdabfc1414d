// The names that the socle gives to the groups and fields of the data zones.
#ifndef NOXLUX_COMMANDE_DESCRIPTION_ZONES_H
#define NOXLUX_COMMANDE_DESCRIPTION_ZONES_H

#include <string>
#include <string_view>
#include <vector>

namespace noxlux::commande {

struct ChampDecrit {
  std::string nom;
  std::string libelle;
  char format = 'E';
  char type = 'T';
  unsigned min = 0;
  unsigned max = 0;
  std::vector<std::string> valeurs;
  bool repete = false;   // any number of them, at the end of a group
  bool reponse = false;  // a field of an answer
};

struct GroupeDecrit {
  unsigned numero = 0;
  std::string nom;
  std::string libelle;
  bool reponse = false;
  std::vector<ChampDecrit> champs;

  // The field at a place counted from 0; a repeated last field stands for all that follow. Null beyond.
  const ChampDecrit* champ(std::size_t rang) const;
  // Null when there is none of that name.
  const ChampDecrit* champNomme(std::string_view nomChamp) const;
};

struct FilsDecrit {
  unsigned groupe = 0;      // 0: a super-group
  std::string superGroupe;  // empty: a group
  unsigned min = 0;
  unsigned max = 0;  // 0: unbounded
};

struct FonctionDecrite {
  std::string famille;
  std::string nom;
  std::string libelle;
  std::vector<FilsDecrit> fils;
  std::vector<FilsDecrit> reponse;
};

struct SuperGroupeDecrit {
  std::string nom;
  std::vector<FilsDecrit> fils;
};

class DescriptionZones {
 public:
  // The descriptions built into the command.
  static const DescriptionZones& socle();

  // A group by its number, of answers first when `reponse`; null when neither side knows it.
  const GroupeDecrit* groupe(unsigned numero, bool reponse) const;
  // An input group that the command counts on.
  const GroupeDecrit& groupeEntree(unsigned numero) const;
  // A group of either side by its name; null when there is none.
  const GroupeDecrit* groupeNomme(std::string_view nom) const;
  // A function of a family, whatever the letter case of its identifier; null when there is none.
  const FonctionDecrite* fonction(std::string_view famille, std::string_view identifiant) const;
  std::vector<std::string> identifiants(std::string_view famille) const;
  // The input groups of a function in zone order, those of nested super-groups in their place.
  std::vector<FilsDecrit> groupesEntree(const FonctionDecrite& fonction) const;

 private:
  explicit DescriptionZones(std::string_view toml);

  std::vector<GroupeDecrit> groupes_;
  std::vector<SuperGroupeDecrit> superGroupes_;
  std::vector<FonctionDecrite> fonctions_;
};

}  // namespace noxlux::commande

#endif
