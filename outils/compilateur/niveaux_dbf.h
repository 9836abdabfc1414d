// The acts being read from a database, and their levels by the keys that its records bear.
//
// Each level changes at dates of its own: it is found by its code, its description by code and date.
#ifndef NOXLUX_COMPILATEUR_NIVEAUX_DBF_H
#define NOXLUX_COMPILATEUR_NIVEAUX_DBF_H

#include <algorithm>
#include <string>
#include <unordered_map>
#include <vector>

#include "compilateur/lecture_dbf.h"
#include "compilateur/liens_dates.h"
#include "compilateur/modele.h"

namespace noxlux::compilateur {

// Where a level lies in the model: its act, and the ranks below.
struct PlaceDbf {
  std::size_t acte = 0;
  std::size_t activite = 0;
  std::size_t phase = 0;
};

struct NiveauxDbf {
  using Places = std::unordered_map<std::string, PlaceDbf>;

  explicit NiveauxDbf(std::vector<Acte>& a) : actes(a) {}

  // A level; null when the key is unknown.
  Acte* acte(const std::string& cle) {
    const PlaceDbf* const place = chercher(placesActes, cle);
    return place == nullptr ? nullptr : &actes[place->acte];
  }
  Activite* activite(const std::string& cle) {
    const PlaceDbf* const place = chercher(placesActivites, cle);
    return place == nullptr ? nullptr : &actes[place->acte].activites[place->activite];
  }
  Phase* phase(const std::string& cle) {
    const PlaceDbf* const place = chercher(placesPhases, cle);
    return place == nullptr ? nullptr : &actes[place->acte].activites[place->activite].phases[place->phase];
  }
  static const PlaceDbf* chercher(const Places& places, const std::string& cle) {
    const auto place = places.find(cle);
    return place == places.end() ? nullptr : &place->second;
  }

  std::vector<Acte>& actes;
  Places placesActes;
  Places placesActivites;
  Places placesPhases;
};

// The levels, one after the other.
void lireNiveauActe(LectureDbf& lecture, std::uint32_t menuUn, NiveauxDbf& niveaux);
void lireNiveauActivite(LectureDbf& lecture, NiveauxDbf& niveaux);
void lireNiveauPhase(LectureDbf& lecture, Grille grille, NiveauxDbf& niveaux);

template <class H>
DateBrute dernierEffet(const std::vector<H>& historiques) {
  DateBrute dernier;
  for (const H& historique : historiques) {
    dernier = std::max(dernier, historique.effet);
  }
  return dernier;
}

// The history of the day that a record tells.
template <class N>
auto historiqueDe(N* niveau, ChampsDbf& c, std::size_t date) {
  auto* const historique = niveau == nullptr ? nullptr : historiqueDu(niveau->historiques, c.date(date));
  if (historique == nullptr) {
    c.refuser("code inconnu, ou sans description à cette date");
  }
  return historique;
}

// Adds a description of a level; a level's own members are those of the newest one.
template <class N, class H>
bool decrire(ChampsDbf& c, N& niveau, N&& lu, H&& historique) {
  if (historiqueDu(niveau.historiques, historique.effet) != nullptr) {
    return c.refuser("deux descriptions du même code prennent effet le même jour");
  }
  if (!niveau.historiques.empty() && dernierEffet(niveau.historiques) < historique.effet) {
    std::swap(lu.historiques, niveau.historiques);
    niveau = std::move(lu);
  }
  niveau.historiques.push_back(std::forward<H>(historique));
  return true;
}

// Levels change at dates of their own: a description holds from its own date on, whatever the date of the
// level above that it was written for.
template <class H>
void ajusterSiInconnue(LectureDbf& lecture, const ChampsDbf& c, const std::vector<H>& auDessus,
                       const DateBrute& date) {
  if (historiqueDu(auDessus, date) == nullptr) {
    lecture.bilan().ajuster(
        "description rattachée par son seul code : le niveau au-dessus n'en a pas à la date dite", c.lieu(),
        c.detail());
  }
}

// A list without date is that of the newest description: the records of the others are no loss.
template <class N>
bool estDeLaDerniere(const N* niveau, ChampsDbf& c, std::size_t date) {
  const auto* const historique = historiqueDe(niveau, c, date);
  return historique != nullptr && historique->effet == dernierEffet(niveau->historiques);
}

// A link between the descriptions of two days.
template <class L, class N>
L lireLien(ChampsDbf& c, const N* niveau) {
  L lien;
  lien.fiche = c.date(1);
  lien.depuis = std::max(lien.fiche, c.dateOuVide(3));
  if (historiqueDe(niveau, c, 1) != nullptr &&
      !encoreCourante(niveau->historiques, lien.fiche, lien.depuis)) {
    c.refuser("lien entre des descriptions qui n'ont jamais valu ensemble");
  }
  return lien;
}

template <class T>
bool ajouterUneFois(std::vector<T>& liste, const T& valeur) {
  if (std::find(liste.begin(), liste.end(), valeur) == liste.end()) {
    liste.push_back(valeur);
  }
  return true;
}

}  // namespace noxlux::compilateur

#endif
