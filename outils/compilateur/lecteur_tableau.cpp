#include "compilateur/lecteur_tableau.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <functional>
#include <map>

#include "compilateur/cles_toml.h"
#include "compilateur/csv.h"
#include "compilateur/plafonds.h"
#include "compilateur/transcodage.h"
#include "compilateur/valeurs_listing.h"
#include "fichier/lecteur.h"

namespace noxlux::compilateur {

namespace {

constexpr std::string_view MARQUE_UTF8 = "\xEF\xBB\xBF";

// One conversion a type of member; what is wrong with the cell, or nothing.
std::string convertir(std::string_view cellule, std::string& cible) {
  TexteLatin1 latin1 = versLatin1(cellule);
  cible = std::move(latin1.texte);
  return latin1.estFidele() ? std::string() : "un caractère n'existe pas en ISO-8859-1";
}

std::string convertir(std::string_view cellule, TexteVariable& cible) {
  std::string texte;
  std::string faute = convertir(cellule, texte);
  cible = TexteVariable(texte);
  return faute;
}

std::string convertirCode(std::string_view cellule, std::size_t largeur) {
  if (cellule.size() > largeur) {
    return phrase("le code « ", cellule, " » dépasse ", std::to_string(largeur), " caractères");
  }
  return Lecteur::controlerCode(std::string(cellule)) && cellule.find(' ') == std::string_view::npos
             ? std::string()
             : phrase("le code « ", cellule, " » n'est pas fait de lettres capitales et de chiffres");
}

std::string convertir(std::string_view cellule, char& cible) {
  std::string faute = convertirCode(cellule, 1);
  cible = faute.empty() ? cellule[0] : ' ';
  return faute;
}

template <std::size_t N>
std::string convertir(std::string_view cellule, CodeFixe<N>& cible) {
  std::string faute = convertirCode(cellule, N);
  if (faute.empty()) {
    cible = CodeFixe<N>(cellule);
  }
  return faute;
}

std::string convertir(std::string_view cellule, std::uint16_t& cible) {
  const char* const fin = cellule.data() + cellule.size();
  const auto [arret, erreur] = std::from_chars(cellule.data(), fin, cible);
  return erreur == std::errc() && arret == fin ? std::string()
                                               : phrase("« ", cellule, " » n'est pas un nombre entier");
}

std::string convertir(std::string_view cellule, double& cible) {
  const char* const fin = cellule.data() + cellule.size();
  const auto [arret, erreur] = std::from_chars(cellule.data(), fin, cible, std::chars_format::fixed);
  return erreur == std::errc() && arret == fin && cible >= 0.0 && cible < PLAFOND_DECIMAL
             ? std::string()
             : phrase("« ", cellule, " » n'est pas un nombre entre 0 et 999999");
}

std::string convertir(std::string_view cellule, DateBrute& cible) {
  const std::optional<DateBrute> lue = lireJour(cellule);
  cible = lue.value_or(DateBrute{});
  return lue ? std::string() : phrase("« ", cellule, " » n'est pas un jour AAAA-MM-JJ");
}

// What stands between blanks, in order; `ranger` answers what is wrong with a piece.
template <class F>
std::string parMorceaux(std::string_view cellule, F&& ranger) {
  std::string faute;
  while (!cellule.empty() && faute.empty()) {
    const std::size_t fin = std::min(cellule.find(' '), cellule.size());
    if (fin != 0) {
      faute = ranger(cellule.substr(0, fin));
    }
    cellule.remove_prefix(std::min(fin + 1, cellule.size()));
  }
  return faute;
}

std::string listePleine() { return phrase("la liste dépasse ", std::to_string(PLAFOND_LISTE), " éléments"); }

template <class T>
requires(!std::is_base_of_v<Element, T>) std::string
    convertir(std::string_view cellule, std::vector<T>& cible) {
  return parMorceaux(cellule, [&](std::string_view morceau) {
    return cible.size() == PLAFOND_LISTE ? listePleine() : convertir(morceau, cible.emplace_back());
  });
}

std::string convertir(std::string_view cellule, std::array<double, 4>& cible) {
  std::size_t rang = 0;
  std::string faute = parMorceaux(cellule, [&](std::string_view morceau) {
    return rang == cible.size() ? std::string("il y a plus de quatre nombres")
                                : convertir(morceau, cible[rang++]);
  });
  return !faute.empty() || rang == cible.size() ? faute : "il faut quatre nombres";
}

template <class T>
concept Cellule = requires(std::string_view cellule, T& cible) {
  convertir(cellule, cible);
};

template <class E, class T>
constexpr bool estCellule(const Cle<E, T>&) {
  return Cellule<T>;
}

// Whether rows can tell all that an item of a table holds: no list of items within.
template <class E>
constexpr bool estPlate() {
  return std::apply([](const auto&... cle) { return (... && estCellule(cle)); }, CLES<E>);
}

class LectureTableau {
 public:
  LectureTableau(std::string_view texte, std::uint32_t source, Modele& modele, Rapport& rapport)
      : texte_(texte), modele_(modele), rapport_(rapport), lieu_{source, 1} {}

  void lire() {
    if (texte_.starts_with(MARQUE_UTF8)) {
      texte_.remove_prefix(MARQUE_UTF8.size());
    }
    lirePreambule();
    for (const char* const cle : {"table", "source", "vérifié le"}) {
      if (preambule_[cle].empty()) {
        refuser("il manque la ligne de commentaire « # ", cle, " : ... » en tête de la table");
        return;
      }
    }
    if (!lireJour(preambule_["vérifié le"])) {
      refuser("« # vérifié le : », il faut un jour AAAA-MM-JJ");
    }
    bool connue = false;
    const auto essayer = [&](const auto& cle) {
      using E = typename std::remove_reference_t<decltype(modele_.*(cle.membre))>::value_type;
      if constexpr (estPlate<E>()) {
        if (preambule_["table"] == cle.nom) {
          connue = true;
          lireLignes(modele_.*(cle.membre));
        }
      }
    };
    std::apply([&](const auto&... cle) { (essayer(cle), ...); }, CLES<Modele>);
    if (!connue) {
      refuser("« ", preambule_["table"], " » n'est pas une table que des lignes puissent dire");
    }
  }

 private:
  template <class... T>
  void refuser(const T&... morceaux) {
    rapport_.signaler(lieu_, phrase(morceaux...));
  }

  void lirePreambule() {
    while (texte_.starts_with('#')) {
      const std::size_t fin = std::min(texte_.find('\n'), texte_.size());
      const std::string_view ligne = texte_.substr(1, fin - 1);
      const std::size_t deuxPoints = ligne.find(':');
      if (deuxPoints != std::string_view::npos) {
        preambule_.try_emplace(std::string(rogner(ligne.substr(0, deuxPoints))),
                               rogner(ligne.substr(deuxPoints + 1)));
      }
      texte_.remove_prefix(std::min(fin + 1, texte_.size()));
      ++decalage_;
    }
  }

  template <class E>
  void lireLignes(std::vector<E>& elements) {
    LecteurCsv lecteur(texte_, ';');
    EnregistrementCsv titres;
    const bool presents = lecteur.lire(titres);
    lieu_.ligne = decalage_ + 1;
    std::vector<std::function<std::string(std::string_view, E&)>> colonnes;
    if (!presents || !trouverColonnes<E>(titres.champs, colonnes)) {
      return;
    }
    for (EnregistrementCsv ligne; lecteur.lire(ligne);) {
      lieu_.ligne = decalage_ + ligne.ligne;
      if (ligne.champs.front().starts_with('#') ||
          (ligne.champs.size() == 1 && rogner(ligne.champs[0]).empty())) {
        continue;
      }
      if (ligne.malForme || ligne.inacheve || ligne.champs.size() != titres.champs.size()) {
        refuser("la ligne a ", std::to_string(ligne.champs.size()), " champs, et la table ",
                std::to_string(titres.champs.size()), " colonnes");
        continue;
      }
      lireElement(ligne.champs, titres.champs, colonnes, elements.emplace_back());
    }
  }

  // Where a column stands; the number of columns when it does not, which is a fault for one that must.
  std::size_t placeDe(const std::vector<std::string>& titres, std::string_view nom, bool obligatoire,
                      bool& toutes) {
    const auto place = std::find(titres.begin(), titres.end(), nom);
    if (place == titres.end() && obligatoire) {
      refuser("il manque la colonne « ", nom, " »");
      toutes = false;
    }
    return static_cast<std::size_t>(place - titres.begin());
  }

  template <class E, class C>
  bool trouverColonnes(const std::vector<std::string>& titres, C& colonnes) {
    colonnes.resize(titres.size());
    bool toutes = true;
    const auto chercher = [&](const auto& cle) {
      if (const std::size_t place = placeDe(titres, cle.nom, cle.obligatoire, toutes);
          place < titres.size()) {
        const auto membre = cle.membre;
        colonnes[place] = [membre](std::string_view cellule, E& element) {
          return convertir(cellule, element.*membre);
        };
      }
    };
    std::apply([&](const auto&... cle) { (chercher(cle), ...); }, CLES<E>);
    for (std::size_t i = 0; i < titres.size(); ++i) {
      if (!colonnes[i] && titres[i] != "remarque") {
        refuser("colonne inconnue « ", titres[i], " »");
        toutes = false;
      }
    }
    return toutes;
  }

  template <class E, class C>
  void lireElement(const std::vector<std::string>& champs, const std::vector<std::string>& titres,
                   const C& colonnes, E& element) {
    element.lieu = lieu_;
    for (std::size_t i = 0; i < champs.size(); ++i) {
      const std::string_view cellule = rogner(champs[i]);
      const std::string faute =
          colonnes[i] && !cellule.empty() ? colonnes[i](cellule, element) : std::string();
      if (!faute.empty()) {
        refuser("« ", titres[i], " » : ", faute);
      } else if (cellule.empty() && obligatoire<E>(titres[i])) {
        refuser("« ", titres[i], " » : valeur vide");
      }
    }
  }

  template <class E>
  static bool obligatoire(std::string_view titre) {
    return std::apply([&](const auto&... cle) { return (... || (cle.obligatoire && titre == cle.nom)); },
                      CLES<E>);
  }

  std::string_view texte_;
  Modele& modele_;
  Rapport& rapport_;
  Lieu lieu_;
  std::uint32_t decalage_ = 0;  // lines before the titles
  std::map<std::string, std::string, std::less<>> preambule_;
};

}  // namespace

std::optional<DateBrute> lireJour(std::string_view texte) {
  const auto nombre = [&](std::size_t debut, std::size_t taille) {
    unsigned valeur = 0;
    const char* const fin = texte.data() + debut + taille;
    const auto [arret, erreur] = std::from_chars(texte.data() + debut, fin, valeur);
    return erreur == std::errc() && arret == fin ? valeur : 0U;
  };
  if (texte.size() != 10 || texte[4] != '-' || texte[7] != '-') {
    return std::nullopt;
  }
  const DateBrute date{static_cast<std::uint16_t>(nombre(0, 4)), static_cast<std::uint8_t>(nombre(5, 2)),
                       static_cast<std::uint8_t>(nombre(8, 2))};
  return date.estValide() ? std::optional(date) : std::nullopt;
}

void lireTableau(std::string_view texte, std::uint32_t source, Modele& modele, Rapport& rapport) {
  LectureTableau(texte, source, modele, rapport).lire();
}

}  // namespace noxlux::compilateur
