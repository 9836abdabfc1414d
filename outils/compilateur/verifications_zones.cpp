#include <algorithm>
#include <map>
#include <set>

#include "compilateur/transcodage.h"
#include "compilateur/verifications.h"

namespace noxlux::compilateur {

namespace {

constexpr std::string_view FORMATS = "ANDEI";
constexpr std::string_view TYPES = "CTBDNMFXA";
constexpr std::string_view TYPES_REPONSE = "CTBDNMFXAP";
constexpr std::string_view FAMILLES_ZONES[] = {"consultation", "modification", "annulation",
                                               "controle",     "regle",        "controle_complet"};
constexpr std::string_view FAMILLE_CONTROLE_COMPLET = FAMILLES_ZONES[5];

// Identifiers are looked up whatever their case.
std::string minuscules(std::string texte) {
  for (char& c : texte) {
    c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return texte;
}

class VerificationZones {
 public:
  VerificationZones(const Modele& modele, Rapport& rapport) : modele_(modele), rapport_(rapport) {}

  void verifier() {
    verifierGroupes(modele_.groupes, groupes_, false);
    verifierGroupes(modele_.groupesReponse, groupesReponse_, true);
    verifierSuperGroupes();
    verifierFonctions();
  }

 private:
  template <class... T>
  void refuser(Lieu lieu, const T&... morceaux) {
    rapport_.signaler(lieu, phrase(morceaux...));
  }

  void verifierGroupes(const std::vector<GroupeZone>& groupes, std::set<std::uint16_t>& numeros,
                       bool reponse) {
    std::set<std::string> noms;
    if (groupes.empty() && !reponse) {
      refuser({}, "aucune des sources ne contient de table [[groupe]]");
    }
    for (const GroupeZone& groupe : groupes) {
      if (groupe.numero == 0) {
        refuser(groupe.lieu, "les groupes sont numérotés à partir de 1");
      }
      if (!numeros.insert(groupe.numero).second) {
        refuser(groupe.lieu, "le groupe ", std::to_string(groupe.numero), " est en double");
      }
      if (!noms.insert(groupe.nom).second) {
        refuser(groupe.lieu, "le nom de groupe « ", versUtf8(groupe.nom), " » est en double");
      }
      verifierChamps(groupe, reponse);
    }
  }

  void verifierChamps(const GroupeZone& groupe, bool reponse) {
    std::set<std::string> noms;
    for (const ChampZone& champ : groupe.champs) {
      const std::string nom = phrase("le champ « ", versUtf8(champ.nom), " »");
      if (!noms.insert(champ.nom).second) {
        refuser(champ.lieu, nom, " est en double");
      }
      if ((reponse ? TYPES_REPONSE : TYPES).find(champ.type) == std::string_view::npos) {
        refuser(champ.lieu, nom, " est d'un type inconnu : ", std::string(1, champ.type));
      }
      if (champ.repete && &champ != &groupe.champs.back()) {
        refuser(champ.lieu, nom, " se répète : il doit être le dernier du groupe");
      }
      if (reponse) {
        continue;
      }
      if (FORMATS.find(champ.format) == std::string_view::npos) {
        refuser(champ.lieu, nom, " est d'un format inconnu ou absent");
      }
      if (champ.repete) {
        refuser(champ.lieu, nom, " : seul un champ de réponse se répète");
      }
      verifierTailles(champ, nom);
    }
  }

  void verifierTailles(const ChampZone& champ, const std::string& nom) {
    if (champ.tailleMax != 0 && champ.tailleMax < champ.tailleMin) {
      refuser(champ.lieu, nom, " : la taille maximale est inférieure à la taille minimale");
    }
    for (const std::string& valeur : champ.valeurs) {
      if (valeur.size() < champ.tailleMin || (champ.tailleMax != 0 && valeur.size() > champ.tailleMax)) {
        refuser(champ.lieu, nom, " : la valeur « ", versUtf8(valeur), " » n'est pas de la taille permise");
      }
    }
  }

  void verifierFils(const std::vector<FilsZone>& fils, bool reponse) {
    for (const FilsZone& f : fils) {
      if ((f.groupe != 0) == !f.superGroupe.empty()) {
        refuser(f.lieu, "un fils nomme un groupe ou un super-groupe, et un seul");
      } else if (f.groupe != 0 && !(reponse ? groupesReponse_ : groupes_).contains(f.groupe)) {
        refuser(f.lieu, "le groupe ", std::to_string(f.groupe), " est inconnu");
      } else if (!f.superGroupe.empty() && reponse) {
        refuser(f.lieu, "une réponse est faite de groupes, sans super-groupe");
      } else if (!f.superGroupe.empty() && !superGroupes_.contains(f.superGroupe)) {
        refuser(f.lieu, "le super-groupe « ", versUtf8(f.superGroupe), " » est inconnu");
      }
      if (f.max != 0 && f.max < f.min) {
        refuser(f.lieu, "le nombre maximal d'occurrences est inférieur au minimal");
      }
    }
  }

  void verifierSuperGroupes() {
    for (const SuperGroupeZone& superGroupe : modele_.superGroupes) {
      if (!superGroupes_.emplace(superGroupe.nom, &superGroupe).second) {
        refuser(superGroupe.lieu, "le super-groupe « ", versUtf8(superGroupe.nom), " » est en double");
      }
    }
    for (const SuperGroupeZone& superGroupe : modele_.superGroupes) {
      verifierFils(superGroupe.fils, false);
      std::set<std::string> vus;
      if (mene(superGroupe, superGroupe.nom, vus)) {
        refuser(superGroupe.lieu, "le super-groupe « ", versUtf8(superGroupe.nom),
                " » s'imbrique en lui-même");
      }
    }
  }

  // Whether a super-group contains another, at any depth.
  bool mene(const SuperGroupeZone& depart, const std::string& cible, std::set<std::string>& vus) const {
    return std::any_of(depart.fils.begin(), depart.fils.end(), [&](const FilsZone& fils) {
      const auto trouve = superGroupes_.find(fils.superGroupe);
      return trouve != superGroupes_.end() &&
             (fils.superGroupe == cible ||
              (vus.insert(fils.superGroupe).second && mene(*trouve->second, cible, vus)));
    });
  }

  void verifierFonctions() {
    std::map<std::string, std::set<std::string>> noms;
    std::map<std::string, std::set<std::uint16_t>> numeros;
    for (const FonctionZone& fonction : modele_.fonctions) {
      if (std::find(std::begin(FAMILLES_ZONES), std::end(FAMILLES_ZONES), fonction.famille) ==
          std::end(FAMILLES_ZONES)) {
        refuser(fonction.lieu, "la famille « ", versUtf8(fonction.famille), " » est inconnue");
      }
      if (!noms[fonction.famille].insert(minuscules(fonction.nom)).second) {
        refuser(fonction.lieu, "la fonction « ", versUtf8(fonction.nom), " » est en double dans sa famille");
      }
      if (!numeros[fonction.famille].insert(fonction.numero).second) {
        refuser(fonction.lieu, "le numéro ", std::to_string(fonction.numero),
                " est en double dans la famille « ", versUtf8(fonction.famille), " »");
      }
      verifierFils(fonction.fils, false);
      verifierFils(fonction.reponse, true);
    }
    for (const std::string_view famille : FAMILLES_ZONES) {
      const std::size_t nombre = noms[std::string(famille)].size();
      if (nombre == 0 || (famille == FAMILLE_CONTROLE_COMPLET && nombre != 1)) {
        refuser({}, "la famille « ", famille, " » compte ", std::to_string(nombre), " fonction, il en faut ",
                famille == FAMILLE_CONTROLE_COMPLET ? "une et une seule" : "au moins une");
      }
    }
  }

  const Modele& modele_;
  Rapport& rapport_;
  std::set<std::uint16_t> groupes_;
  std::set<std::uint16_t> groupesReponse_;
  std::map<std::string, const SuperGroupeZone*> superGroupes_;
};

}  // namespace

void verifierZones(const Modele& modele, Rapport& rapport) { VerificationZones(modele, rapport).verifier(); }

}  // namespace noxlux::compilateur
