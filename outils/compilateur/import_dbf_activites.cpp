// The level of activities of the database.
#include <map>
#include <tuple>

#include "compilateur/niveaux_dbf.h"

namespace noxlux::compilateur {

namespace {

struct LienAssociation : LienDate {
  AssociationActe association;
  // Of the activities of one act: the one of the same code first, then the first code.
  std::pair<bool, char> preference;
};

class LectureNiveauActivite {
 public:
  LectureNiveauActivite(LectureDbf& lecture, NiveauxDbf& niveaux) : lecture_(lecture), niveaux_(niveaux) {}

  void lire() {
    lireActivites();
    lireListesDActivites();
    lireAssociations();
    lireRmo();
    scinderSelonLesLiens();
  }

 private:
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
          const DateBrute deLActe = c.dateOuVide(ACDT_MODIF);
          const PlaceDbf* const placeActe = NiveauxDbf::chercher(niveaux_.placesActes, c.cle(ACTE_COD));
          if (!c.bons() || placeActe == nullptr) {
            return c.refuser("acte inconnu");
          }
          Acte& acte = niveaux_.actes[placeActe->acte];
          ajusterSiInconnue(lecture_, c, acte.historiques, deLActe);
          const auto [place, nouvelle] = niveaux_.placesActivites.try_emplace(
              c.cle(COD_AA), PlaceDbf{placeActe->acte, acte.activites.size()});
          if (place->second.acte != placeActe->acte) {
            return c.refuser("activité d'un autre acte");
          }
          Activite& activite =
              nouvelle ? acte.activites.emplace_back(lue) : acte.activites[place->second.activite];
          return decrire(c, activite, std::move(lue), std::move(historique));
        });
  }

  // A list of codes of an activity at a date.
  template <class F>
  void deLActivite(const char* table, const std::vector<std::string_view>& colonnes, F&& ajouter) {
    lecture_.parcourir(table, colonnes, [&](ChampsDbf& c) {
      HistoriqueActivite* const historique = historiqueDe(niveaux_.activite(c.cle(0)), c, 1);
      return historique != nullptr && ajouter(c, *historique);
    });
  }

  // The same, whatever the date.
  template <class F>
  void deLActiviteSansDate(const char* table, const std::vector<std::string_view>& colonnes, F&& ajouter) {
    lecture_.parcourir(table, colonnes, [&](ChampsDbf& c) {
      Activite* const activite = niveaux_.activite(c.cle(0));
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
    lecture_.parcourir(
        "R_ASSOCIATIONS", {"AA_CODE1", "DT_MODIF1", "AA_CODE2", "DT_MODIF2", "REGLE_COD"}, [&](ChampsDbf& c) {
          const Activite* const activite = niveaux_.activite(c.cle(0));
          auto lien = lireLien<LienAssociation>(c, activite);
          const PlaceDbf* const associee = NiveauxDbf::chercher(niveaux_.placesActivites, c.cle(2));
          if (associee == nullptr) {
            return c.refuser("activité associée inconnue");
          }
          const char codeAssociee = niveaux_.actes[associee->acte].activites[associee->activite].code;
          lien.association.lieu = c.lieu();
          lien.association.acte = niveaux_.actes[associee->acte].code;
          lien.association.regle = c.lettre(4);
          if (!c.bons()) {
            return false;
          }
          lien.preference = {codeAssociee != activite->code, codeAssociee};
          const PlaceDbf& place = niveaux_.placesActivites.at(c.cle(0));
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
      Activite* const activite = niveaux_.activite(c.cle(0));
      const bool garde = estDeLaDerniere(activite, c, 1);
      const auto reference = references.find(c.cle(2));
      if (reference == references.end()) {
        return c.refuser("RMO inconnue");
      }
      return garde && ajouterUneFois(activite->rmo, reference->second);
    });
  }

  void scinderSelonLesLiens() {
    for (auto& [rangs, liens] : associations_) {
      // The last one of an act holds: the preferred activity, and of it the newest link.
      std::stable_sort(liens.begin(), liens.end(), [](const LienAssociation& g, const LienAssociation& d) {
        return std::tie(g.association.acte, d.preference, g.depuis) <
               std::tie(d.association.acte, g.preference, d.depuis);
      });
      scinder(niveaux_.actes[rangs.first].activites[rangs.second].historiques, liens,
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

  LectureDbf& lecture_;
  NiveauxDbf& niveaux_;
  std::map<std::pair<std::size_t, std::size_t>, std::vector<LienAssociation>> associations_;
};

}  // namespace

void lireNiveauActivite(LectureDbf& lecture, NiveauxDbf& niveaux) {
  LectureNiveauActivite(lecture, niveaux).lire();
}

}  // namespace noxlux::compilateur
