// The acts of the database: three levels, each with the dates of its own changes.
//
// A level is found by its code, its description by code and date. What a table tells for a code alone, and
// what the reference does not date (labels, ages, notes...), is that of the newest description.
#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

#include "compilateur/lecture_dbf.h"
#include "compilateur/liens_dates.h"

namespace noxlux::compilateur {

namespace {

constexpr unsigned PREMIER_DOM = 971;
constexpr std::size_t LONGUEUR_LIBELLE_COURT = 70;

// Where a level lies in the model: its act, and the ranks below.
struct Place {
  std::size_t acte = 0;
  std::size_t activite = 0;
  std::size_t phase = 0;
};
using Places = std::unordered_map<std::string, Place>;

struct LienActe : LienDate {
  CodeActe acte;
  bool procedure = false;  // or incompatible
};

struct LienAssociation : LienDate {
  AssociationActe association;
  // Of the activities of one act: the one of the same code first, then the first code.
  std::pair<bool, char> preference;
};

template <class H>
DateBrute dernierEffet(const std::vector<H>& historiques) {
  return std::max_element(historiques.begin(), historiques.end(),
                          [](const H& g, const H& d) { return g.effet < d.effet; })
      ->effet;
}

template <class T>
bool ajouterUneFois(std::vector<T>& liste, const T& valeur) {
  if (std::find(liste.begin(), liste.end(), valeur) == liste.end()) {
    liste.push_back(valeur);
  }
  return true;
}

void ajouterTexte(std::string& textes, std::string_view texte) {
  if (!texte.empty()) {
    textes.append(textes.empty() ? "" : "\n").append(texte);
  }
}

class LectureActes {
 public:
  LectureActes(LectureDbf& lecture, Grille grille, std::uint32_t menuUn, Modele& base)
      : lecture_(lecture), grille_(grille), menuUn_(menuUn), actes_(base.actes) {}

  void lire() {
    lireActes();
    lireListesDActes();
    lireConditions();
    lireNotes();
    lireActivites();
    lireListesDActivites();
    lireAssociations();
    lireRmo();
    lirePhases();
    lirePrix();
    lireListesDePhases();
    scinderSelonLesLiens();
    retarderCreations();
  }

 private:
  // Levels, by the key that records bear.
  static Place* chercher(Places& places, const std::string& cle) {
    const auto place = places.find(cle);
    return place == places.end() ? nullptr : &place->second;
  }
  Acte* acteDe(const std::string& cle) {
    const Place* const place = chercher(placesActes_, cle);
    return place == nullptr ? nullptr : &actes_[place->acte];
  }
  Activite* activiteDe(const std::string& cle) {
    const Place* const place = chercher(placesActivites_, cle);
    return place == nullptr ? nullptr : &actes_[place->acte].activites[place->activite];
  }
  Phase* phaseDe(const std::string& cle) {
    const Place* const place = chercher(placesPhases_, cle);
    return place == nullptr ? nullptr : &actes_[place->acte].activites[place->activite].phases[place->phase];
  }
  // The history of the day that a record tells.
  template <class N>
  static auto historiqueDe(N* niveau, ChampsDbf& c, std::size_t date) {
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

  // R_ACTE. COD_STRUCT, DT_EFFET, DT_ARRETE, DT_JO, PRECEDENT and SUIVANT are left: the reference has no
  // place for them.
  void lireActes() {
    enum : std::size_t {
      COD_ACTE,
      DT_MODIF,
      MENU_COD,
      FRAIDP_COD,
      REMBOU_COD,
      TYPE_COD,
      SEXE,
      DT_CREATIO,
      DT_FIN,
      ENTENTE,
      NOM_COURT,
      NOM_LONG
    };
    lecture_.parcourir("R_ACTE",
                       {"COD_ACTE", "DT_MODIF", "MENU_COD", "FRAIDP_COD", "REMBOU_COD", "TYPE_COD", "SEXE",
                        "DT_CREATIO", "DT_FIN", "ENTENTE", "NOM_COURT", "NOM_LONG.."},
                       [&](ChampsDbf& c) {
                         Acte lu;
                         lu.lieu = c.lieu();
                         lu.code = c.code<13>(COD_ACTE);
                         lu.menu = c.nombre(MENU_COD) == 1 ? menuUn_ : c.nombre(MENU_COD);
                         lu.fraisDeplacement = c.lettreOuVide(FRAIDP_COD);
                         lu.type = c.lettreOuVide(TYPE_COD);
                         lu.sexe = lireSexe(c, SEXE);
                         lu.creation = c.dateOuVide(DT_CREATIO);
                         lu.fin = c.dateOuVide(DT_FIN);
                         lu.libelleCourt = c.texte(NOM_COURT);
                         lu.libelleLong = c.texte(NOM_LONG);
                         HistoriqueActe historique;
                         historique.lieu = c.lieu();
                         historique.effet = c.date(DT_MODIF);
                         historique.admission = c.lettreOuVide(REMBOU_COD);
                         historique.ententePrealable = c.oui(ENTENTE);
                         completerLibelles(c, lu);
                         if (!lu.fin.estNulle() && lu.fin < lu.creation) {
                           c.refuser("fin qui précède la création");
                         }
                         return c.bons() && ajouterActe(c, std::move(lu), std::move(historique));
                       });
  }

  static char lireSexe(ChampsDbf& c, std::size_t k) {
    const char lu = c.lettreOuVide(k);
    if (lu != ' ' && (lu < '0' || lu > '2')) {
      c.refuser("sexe inconnu");
    }
    return lu == '0' ? ' ' : lu;
  }

  static void completerLibelles(ChampsDbf& c, Acte& acte) {
    if (acte.libelleLong.empty()) {
      acte.libelleLong = acte.libelleCourt;
    } else if (acte.libelleCourt.empty()) {
      acte.libelleCourt = acte.libelleLong.substr(0, LONGUEUR_LIBELLE_COURT);
    }
    if (acte.libelleLong.empty()) {
      c.refuser("libellé absent");
    }
  }

  bool ajouterActe(ChampsDbf& c, Acte&& lu, HistoriqueActe&& historique) {
    const auto [place, nouveau] = placesActes_.try_emplace(c.cle(0), Place{actes_.size()});
    Acte& acte = nouveau ? actes_.emplace_back(lu) : actes_[place->second.acte];
    return decrire(c, acte, std::move(lu), std::move(historique));
  }

  void lireListesDActes() {
    lecture_.parcourir("R_ACTE_EXO_TM", {"ACTE_COD", "ACDT_MODIF", "EXOTM_COD"}, [&](ChampsDbf& c) {
      HistoriqueActe* const historique = historiqueDe(acteDe(c.cle(0)), c, 1);
      const char code = c.lettre(2);
      return c.bons() && ajouterUneFois(historique->exonerations, code);
    });
    lecture_.parcourir("R_ACTE_NAT_ASS", {"ACTE_COD", "NATASS_COD"}, [&](ChampsDbf& c) {
      Acte* const acte = acteDe(c.cle(0));
      const auto code = c.code<2>(1);
      return acte == nullptr ? c.refuser("acte inconnu")
                             : c.bons() && ajouterUneFois(acte->naturesAssurance, code);
    });
    lireLiens("R_PROCEDURE", {"ACTE_COD", "ACDT_MODIF", "PROC_COD", "PRDT_MODIF"}, true);
    lireLiens("R_INCOMPATIBILITES", {"ACTE_COD1", "DT_MODIF1", "ACTE_COD2", "DT_MODIF2"}, false);
  }

  // A link between the descriptions of two days.
  template <class L, class N>
  static L lireLien(ChampsDbf& c, const N* niveau) {
    L lien;
    lien.fiche = c.date(1);
    lien.depuis = std::max(lien.fiche, c.dateOuVide(3));
    if (historiqueDe(niveau, c, 1) != nullptr &&
        !encoreCourante(niveau->historiques, lien.fiche, lien.depuis)) {
      c.refuser("lien entre des descriptions qui n'ont jamais valu ensemble");
    }
    return lien;
  }

  void lireLiens(const char* table, const std::vector<std::string_view>& colonnes, bool procedure) {
    lecture_.parcourir(table, colonnes, [&](ChampsDbf& c) {
      auto lien = lireLien<LienActe>(c, acteDe(c.cle(0)));
      lien.acte = c.code<13>(2);
      lien.procedure = procedure;
      if (c.bons()) {
        liensActes_[placesActes_.at(c.cle(0)).acte].push_back(lien);
      }
      return c.bons();
    });
  }

  void lireConditions() {
    std::unordered_map<std::string, std::string> conditions;
    lecture_.parcourir("R_COND_GEN", {"COD_CONDGE", "LIBELLE.."},
                       [&](ChampsDbf& c) { return conditions.emplace(c.cle(0), c.texte(1)).second; });
    lecture_.parcourir("R_ACTE_COND_GEN", {"ACTE_COD", "CONDGE_COD"}, [&](ChampsDbf& c) {
      Acte* const acte = acteDe(c.cle(0));
      const auto condition = conditions.find(c.cle(1));
      if (acte == nullptr || condition == conditions.end()) {
        return c.refuser("acte inconnu, ou condition générale inconnue");
      }
      ajouterTexte(acte->conditions, condition->second);
      return true;
    });
  }

  // A list without date is that of the newest description: the records of the others are no loss.
  template <class N>
  static bool estDeLaDerniere(const N* niveau, ChampsDbf& c, std::size_t date) {
    const auto* const historique = historiqueDe(niveau, c, date);
    return historique != nullptr && historique->effet == dernierEffet(niveau->historiques);
  }

  // The kind of a note (TYPNOT_COD) is left; an act that it refers to is told behind it.
  void lireNotes() {
    std::unordered_map<std::string, std::multimap<unsigned, std::string>> notes;
    lecture_.parcourir("R_NOTE_ACTE", {"ACTE_COD", "ACDT_MODIF", "ORDRE_NOTE", "RENVOI_COD", "TEXTE_NOTE.."},
                       [&](ChampsDbf& c) {
                         const bool garde = estDeLaDerniere(acteDe(c.cle(0)), c, 1);
                         const unsigned ordre = c.nombre(2);
                         const std::string renvoi = c.cle(3);
                         if (!garde || !c.bons()) {
                           return false;
                         }
                         std::string texte = c.texte(4);
                         if (!renvoi.empty() && texte.find(renvoi) == texte.npos) {
                           texte += phrase(texte.empty() ? "(" : " (", renvoi, ")");
                         }
                         notes[c.cle(0)].emplace(ordre, std::move(texte));
                         return true;
                       });
    for (const auto& [cle, deLActe] : notes) {
      for (const auto& [ordre, texte] : deLActe) {
        ajouterTexte(acteDe(cle)->notes, texte);
      }
    }
  }

  void lireActivites() {
    enum : std::size_t { COD_AA, DT_MODIF, ACTE_COD, ACDT_MODIF, ACTIV_COD, REGROU_COD, CATMED_COD };
    lecture_.parcourir(
        "R_ACTE_IVITE",
        {"COD_AA", "DT_MODIF", "ACTE_COD", "ACDT_MODIF", "ACTIV_COD", "REGROU_COD", "CATMED_COD"},
        [&](ChampsDbf& c) {
          Activite lue;
          lue.lieu = c.lieu();
          lue.code = c.lettre(ACTIV_COD);
          HistoriqueActivite historique;
          historique.lieu = c.lieu();
          historique.effet = c.date(DT_MODIF);
          historique.regroupement = c.codeOuVide<3>(REGROU_COD);
          historique.categorieMedicale = c.codeOuVide<2>(CATMED_COD);
          const Place* const placeActe = chercher(placesActes_, c.cle(ACTE_COD));
          if (!c.bons() || placeActe == nullptr) {
            return c.refuser("acte inconnu");
          }
          Acte& acte = actes_[placeActe->acte];
          ajusterSiInconnue(c, acte.historiques, ACDT_MODIF);
          const auto [place, nouvelle] =
              placesActivites_.try_emplace(c.cle(COD_AA), Place{placeActe->acte, acte.activites.size()});
          if (place->second.acte != placeActe->acte) {
            return c.refuser("activité d'un autre acte");
          }
          Activite& activite =
              nouvelle ? acte.activites.emplace_back(lue) : acte.activites[place->second.activite];
          return decrire(c, activite, std::move(lue), std::move(historique));
        });
  }

  // Levels change at dates of their own: a description holds from its own date on, whatever the date of the
  // level above that it was written for.
  template <class H>
  void ajusterSiInconnue(ChampsDbf& c, const std::vector<H>& auDessus, std::size_t date) {
    if (historiqueDu(auDessus, c.dateOuVide(date)) == nullptr) {
      lecture_.bilan().ajuster(
          "description rattachée par son seul code : le niveau au-dessus n'en a pas à la date dite", c.lieu(),
          c.detail());
    }
  }

  // A list of codes of an activity at a date.
  template <class F>
  void deLActivite(const char* table, const std::vector<std::string_view>& colonnes, F&& ajouter) {
    lecture_.parcourir(table, colonnes, [&](ChampsDbf& c) {
      HistoriqueActivite* const historique = historiqueDe(activiteDe(c.cle(0)), c, 1);
      return historique != nullptr && ajouter(c, *historique);
    });
  }
  // The same, whatever the date.
  template <class F>
  void deLActiviteSansDate(const char* table, const std::vector<std::string_view>& colonnes, F&& ajouter) {
    lecture_.parcourir(table, colonnes, [&](ChampsDbf& c) {
      Activite* const activite = activiteDe(c.cle(0));
      return activite == nullptr ? c.refuser("activité inconnue") : ajouter(c, *activite);
    });
  }

  void lireListesDActivites() {
    deLActivite("R_ACTIVITE_MODIFICATEUR", {"AA_CODE", "AADT_MODIF", "MODIFI_COD"},
                [](ChampsDbf& c, HistoriqueActivite& h) {
                  const char code = c.lettre(2);
                  return c.bons() && ajouterUneFois(h.modificateurs, code);
                });
    deLActivite("R_ACTIVITE_EXECUTANT", {"AA_COD", "AADT_MODIF", "CATSPE_COD"},
                [](ChampsDbf& c, HistoriqueActivite& h) {
                  const auto code = c.code<2>(2);
                  return c.bons() && ajouterUneFois(h.classesSpecialite, code);
                });
    deLActiviteSansDate("R_ACTIVITE_AGRE_RADIO", {"AA_CODE", "AGRAD_COD"}, [](ChampsDbf& c, Activite& a) {
      const auto code = c.code<2>(1);
      return c.bons() && ajouterUneFois(a.agrementsRadio, code);
    });
    deLActiviteSansDate("R_ACTIVITE_EXTENSION", {"AA_COD", "EXTENS_COD"}, [](ChampsDbf& c, Activite& a) {
      const char code = c.lettre(1);
      return c.bons() && ajouterUneFois(a.extensions, code);
    });
  }

  // The reference tells the act that an activity goes with, not the activity of it.
  void lireAssociations() {
    lecture_.parcourir("R_ASSOCIATIONS", {"AA_CODE1", "DT_MODIF1", "AA_CODE2", "DT_MODIF2", "REGLE_COD"},
                       [&](ChampsDbf& c) {
                         const Activite* const activite = activiteDe(c.cle(0));
                         auto lien = lireLien<LienAssociation>(c, activite);
                         const Place* const associee = chercher(placesActivites_, c.cle(2));
                         if (associee == nullptr) {
                           return c.refuser("activité associée inconnue");
                         }
                         const char codeAssociee = actes_[associee->acte].activites[associee->activite].code;
                         lien.association.lieu = c.lieu();
                         lien.association.acte = actes_[associee->acte].code;
                         lien.association.regle = c.lettre(4);
                         if (!c.bons()) {
                           return false;
                         }
                         lien.preference = {codeAssociee != activite->code, codeAssociee};
                         const Place& place = placesActivites_.at(c.cle(0));
                         associations_[{place.acte, place.activite}].push_back(lien);
                         return true;
                       });
  }

  // Titles and texts of the recommendations are left: the reference holds their codes.
  void lireRmo() {
    std::unordered_map<std::string, CodeFixe<5>> references;
    lecture_.parcourir("R_RMO", {"COD_INTERN", "REF_RMO"}, [&](ChampsDbf& c) {
      const auto reference = c.code<5>(1);
      return c.bons() && references.emplace(c.cle(0), reference).second;
    });
    lecture_.parcourir("R_ACTIVITE_RMO", {"AA_COD", "AADT_MODIF", "INTERN_COD"}, [&](ChampsDbf& c) {
      Activite* const activite = activiteDe(c.cle(0));
      const bool garde = estDeLaDerniere(activite, c, 1);
      const auto reference = references.find(c.cle(2));
      if (reference == references.end()) {
        return c.refuser("RMO inconnue");
      }
      return garde && ajouterUneFois(activite->rmo, reference->second);
    });
  }

  // NB_SEANCES and COEFFICIEN are left: the reference has no place for them.
  void lirePhases() {
    enum : std::size_t {
      COD_AAP,
      DT_MODIF,
      AA_COD,
      AADT_MODIF,
      PHASE_COD,
      PU_BASE,
      SUPPLEMENT,
      NB_DENTS,
      AGE_MIN,
      AGE_MAX
    };
    lecture_.parcourir(
        "R_ACTE_IVITE_PHASE",
        {"COD_AAP", "DT_MODIF", "AA_COD", "AADT_MODIF", "PHASE_COD", "PU_BASE", "SUPPLEMENT", "NB_DENTS",
         "AGE_MIN", "AGE_MAX"},
        [&](ChampsDbf& c) {
          Phase lue;
          lue.lieu = c.lieu();
          lue.code = c.lettre(PHASE_COD);
          lue.nombreDents = c.codeOuVide<2>(NB_DENTS);
          lue.ageMinimum = c.court(AGE_MIN);
          lue.ageMaximum = c.court(AGE_MAX);
          HistoriquePhase historique;
          historique.lieu = c.lieu();
          historique.effet = c.date(DT_MODIF);
          historique.prix = c.decimal(PU_BASE);
          historique.supplement = c.decimal(SUPPLEMENT);
          if (lue.ageMaximum != 0 && lue.ageMaximum < lue.ageMinimum) {
            c.refuser("âge maximum inférieur à l'âge minimum");
          }
          const Place* const placeActivite = chercher(placesActivites_, c.cle(AA_COD));
          if (!c.bons() || placeActivite == nullptr) {
            return c.refuser("activité inconnue");
          }
          Activite& activite = actes_[placeActivite->acte].activites[placeActivite->activite];
          ajusterSiInconnue(c, activite.historiques, AADT_MODIF);
          const auto [place, nouvelle] = placesPhases_.try_emplace(
              c.cle(COD_AAP), Place{placeActivite->acte, placeActivite->activite, activite.phases.size()});
          if (place->second.acte != placeActivite->acte ||
              place->second.activite != placeActivite->activite) {
            return c.refuser("phase d'une autre activité");
          }
          Phase& phase = nouvelle ? activite.phases.emplace_back(lue) : activite.phases[place->second.phase];
          return decrire(c, phase, std::move(lue), std::move(historique));
        });
  }

  // The prices of the grid take the place of the base prices.
  void lirePrix() {
    if (!grille_) {
      return;
    }
    std::set<unsigned> grilles;
    std::unordered_set<const HistoriquePhase*> donnes;
    DateBrute premier;
    lecture_.parcourir("R_PU_BASE", {"AAP_COD", "APDT_MODIF", "GRILLE_COD", "PU_BASE"}, [&](ChampsDbf& c) {
      const unsigned grille = c.nombre(2);
      grilles.insert(grille);
      if (grille != *grille_) {
        return false;
      }
      HistoriquePhase* const historique = historiqueDe(phaseDe(c.cle(0)), c, 1);
      const double prix = c.decimal(3);
      if (!c.bons()) {
        return false;
      }
      if (!donnes.insert(historique).second) {
        return c.refuser("deux prix de la phase à la même date");
      }
      historique->prix = prix;
      premier = premier.estNulle() ? historique->effet : std::min(premier, historique->effet);
      return true;
    });
    if (lecture_.saine() && !grilles.contains(*grille_)) {
      refuserGrille(grilles);
    }
    direPrixDeBase(donnes, premier);
  }

  void refuserGrille(const std::set<unsigned>& grilles) {
    std::string connues;
    for (const unsigned grille : grilles) {
      connues += phrase(connues.empty() ? "" : ", ", std::to_string(grille));
    }
    lecture_.signaler("la table R_PU_BASE ne donne aucun prix de la grille tarifaire ",
                      std::to_string(*grille_), connues.empty() ? "" : " ; elle en donne des grilles ",
                      connues);
  }

  // Where the grid is silent although it has begun, the base price stays.
  void direPrixDeBase(const std::unordered_set<const HistoriquePhase*>& donnes, const DateBrute& premier) {
    for (const Acte& acte : actes_) {
      for (const Activite& activite : acte.activites) {
        for (const Phase& phase : activite.phases) {
          for (const HistoriquePhase& historique : phase.historiques) {
            if (!premier.estNulle() && premier <= historique.effet && !donnes.contains(&historique)) {
              lecture_.bilan().ajuster("prix de base gardé, la grille n'en donnant pas", historique.lieu,
                                       std::string(acte.code.vue()));
            }
          }
        }
      }
    }
  }

  void lireListesDePhases() {
    lecture_.parcourir("R_ACTIVITE_PHASE_DOM", {"AAP_COD", "APDT_MODIF", "DOM_COD", "MAJORATION"},
                       [&](ChampsDbf& c) {
                         HistoriquePhase* const historique = historiqueDe(phaseDe(c.cle(0)), c, 1);
                         const std::size_t rang = c.nombre(2) - PREMIER_DOM;
                         const double majoration = c.decimal(3);
                         if (c.bons() && rang >= historique->dom.size()) {
                           c.refuser("département d'outre-mer inconnu");
                         }
                         if (c.bons()) {
                           // Below 1, what is added to the price; from 1 on, what the price is multiplied by.
                           historique->dom[rang] = majoration < 1.0 ? 1.0 + majoration : majoration;
                         }
                         return c.bons();
                       });
    lecture_.parcourir("R_ACTIVITE_PHASE_DENT", {"AAP_COD", "DEN_NUMERO"}, [&](ChampsDbf& c) {
      Phase* const phase = phaseDe(c.cle(0));
      const auto dent = c.code<2>(1);
      return phase == nullptr ? c.refuser("phase inconnue")
                              : c.bons() && ajouterUneFois(phase->dentsIncompatibles, dent);
    });
  }

  void scinderSelonLesLiens() {
    for (auto& [rang, liens] : liensActes_) {
      std::stable_sort(liens.begin(), liens.end(),
                       [](const LienActe& g, const LienActe& d) { return g.acte < d.acte; });
      scinder(actes_[rang].historiques, liens, [](HistoriqueActe& historique, const LienActe& lien) {
        std::vector<CodeActe>& liste = lien.procedure ? historique.procedures : historique.incompatibles;
        if (liste.empty() || liste.back() != lien.acte) {
          liste.push_back(lien.acte);
        }
      });
    }
    for (auto& [rangs, liens] : associations_) {
      // The last one of an act holds: the preferred activity, and of it the newest link.
      std::stable_sort(liens.begin(), liens.end(), [](const LienAssociation& g, const LienAssociation& d) {
        return std::tie(g.association.acte, d.preference, g.depuis) <
               std::tie(d.association.acte, g.preference, d.depuis);
      });
      scinder(actes_[rangs.first].activites[rangs.second].historiques, liens,
              [](HistoriqueActivite& historique, const LienAssociation& lien) {
                std::vector<AssociationActe>& liste = historique.associations;
                if (!liste.empty() && liste.back().acte == lien.association.acte) {
                  liste.back() = lien.association;
                } else {
                  liste.push_back(lien.association);
                }
              });
    }
  }

  // Acts are not created before their first description takes effect.
  void retarderCreations() {
    for (Acte& acte : actes_) {
      const DateBrute premier =
          std::min_element(acte.historiques.begin(), acte.historiques.end(),
                           [](const HistoriqueActe& g, const HistoriqueActe& d) { return g.effet < d.effet; })
              ->effet;
      if (acte.creation < premier) {
        if (!acte.creation.estNulle()) {
          lecture_.bilan().ajuster("acte créé avant sa première description, création retardée", acte.lieu,
                                   std::string(acte.code.vue()));
        }
        acte.creation = premier;
      }
    }
  }

  LectureDbf& lecture_;
  Grille grille_;
  std::uint32_t menuUn_;
  std::vector<Acte>& actes_;
  Places placesActes_;
  Places placesActivites_;
  Places placesPhases_;
  std::unordered_map<std::size_t, std::vector<LienActe>> liensActes_;
  std::map<std::pair<std::size_t, std::size_t>, std::vector<LienAssociation>> associations_;
};

}  // namespace

void lireActes(LectureDbf& lecture, Grille grille, std::uint32_t menuUn, Modele& base) {
  LectureActes(lecture, grille, menuUn, base).lire();
}

}  // namespace noxlux::compilateur
