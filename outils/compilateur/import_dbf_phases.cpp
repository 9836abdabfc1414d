// The level of phases of the database, and its prices.
#include <set>
#include <unordered_set>

#include "compilateur/niveaux_dbf.h"

namespace noxlux::compilateur {

namespace {

constexpr unsigned PREMIER_DOM = 971;

class LectureNiveauPhase {
 public:
  LectureNiveauPhase(LectureDbf& lecture, Grille grille, NiveauxDbf& niveaux)
      : lecture_(lecture), grille_(grille), niveaux_(niveaux) {}

  void lire() {
    lirePhases();
    lirePrix();
    lireListesDePhases();
  }

 private:
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
          const DateBrute deLActivite = c.dateOuVide(AADT_MODIF);
          const PlaceDbf* const placeActivite = NiveauxDbf::chercher(niveaux_.placesActivites, c.cle(AA_COD));
          if (!c.bons() || placeActivite == nullptr) {
            return c.refuser("activité inconnue");
          }
          Activite& activite = niveaux_.actes[placeActivite->acte].activites[placeActivite->activite];
          ajusterSiInconnue(lecture_, c, activite.historiques, deLActivite);
          const auto [place, nouvelle] = niveaux_.placesPhases.try_emplace(
              c.cle(COD_AAP), PlaceDbf{placeActivite->acte, placeActivite->activite, activite.phases.size()});
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
      HistoriquePhase* const historique = historiqueDe(niveaux_.phase(c.cle(0)), c, 1);
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
    for (const Acte& acte : niveaux_.actes) {
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
                         HistoriquePhase* const historique = historiqueDe(niveaux_.phase(c.cle(0)), c, 1);
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
      Phase* const phase = niveaux_.phase(c.cle(0));
      const auto dent = c.code<2>(1);
      return phase == nullptr ? c.refuser("phase inconnue")
                              : c.bons() && ajouterUneFois(phase->dentsIncompatibles, dent);
    });
  }

  LectureDbf& lecture_;
  Grille grille_;
  NiveauxDbf& niveaux_;
};

}  // namespace

void lireNiveauPhase(LectureDbf& lecture, Grille grille, NiveauxDbf& niveaux) {
  LectureNiveauPhase(lecture, grille, niveaux).lire();
}

}  // namespace noxlux::compilateur
