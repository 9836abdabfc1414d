// The level of acts of the database. What a table tells for a code alone, and what the reference does not
// date (labels, notes...), is that of the newest description.
#include <map>

#include "compilateur/ecriture_valeurs.h"
#include "compilateur/niveaux_dbf.h"

namespace noxlux::compilateur {

namespace {

struct LienActe : LienDate {
  CodeActe acte;
  bool procedure = false;  // or incompatible
};

class LectureNiveauActe {
 public:
  LectureNiveauActe(LectureDbf& lecture, std::uint32_t menuUn, NiveauxDbf& niveaux)
      : lecture_(lecture), menuUn_(menuUn), niveaux_(niveaux) {}

  void lire() {
    lireActes();
    lireListesDActes();
    lireConditions();
    lireNotes();
    scinderSelonLesLiens();
    retarderCreations();
  }

 private:
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
      acte.libelleCourt = abreger(acte.libelleLong);
    }
    if (acte.libelleLong.empty()) {
      c.refuser("libellé absent");
    }
  }

  bool ajouterActe(ChampsDbf& c, Acte&& lu, HistoriqueActe&& historique) {
    const auto [place, nouveau] = niveaux_.placesActes.try_emplace(c.cle(0), PlaceDbf{niveaux_.actes.size()});
    Acte& acte = nouveau ? niveaux_.actes.emplace_back(lu) : niveaux_.actes[place->second.acte];
    return decrire(c, acte, std::move(lu), std::move(historique));
  }

  void lireListesDActes() {
    lecture_.parcourir("R_ACTE_EXO_TM", {"ACTE_COD", "ACDT_MODIF", "EXOTM_COD"}, [&](ChampsDbf& c) {
      HistoriqueActe* const historique = historiqueDe(niveaux_.acte(c.cle(0)), c, 1);
      const char code = c.lettre(2);
      return c.bons() && ajouterUneFois(historique->exonerations, code);
    });
    lecture_.parcourir("R_ACTE_NAT_ASS", {"ACTE_COD", "NATASS_COD"}, [&](ChampsDbf& c) {
      Acte* const acte = niveaux_.acte(c.cle(0));
      const auto code = c.code<2>(1);
      return acte == nullptr ? c.refuser("acte inconnu")
                             : c.bons() && ajouterUneFois(acte->naturesAssurance, code);
    });
    lireLiens("R_PROCEDURE", {"ACTE_COD", "ACDT_MODIF", "PROC_COD", "PRDT_MODIF"}, true);
    lireLiens("R_INCOMPATIBILITES", {"ACTE_COD1", "DT_MODIF1", "ACTE_COD2", "DT_MODIF2"}, false);
  }

  void lireLiens(const char* table, const std::vector<std::string_view>& colonnes, bool procedure) {
    lecture_.parcourir(table, colonnes, [&](ChampsDbf& c) {
      auto lien = lireLien<LienActe>(c, niveaux_.acte(c.cle(0)));
      lien.acte = c.code<13>(2);
      lien.procedure = procedure;
      if (c.bons()) {
        liensActes_[niveaux_.placesActes.at(c.cle(0)).acte].push_back(lien);
      }
      return c.bons();
    });
  }

  void lireConditions() {
    std::unordered_map<std::string, std::string> conditions;
    lecture_.parcourir("R_COND_GEN", {"COD_CONDGE", "LIBELLE.."},
                       [&](ChampsDbf& c) { return conditions.emplace(c.cle(0), c.texte(1)).second; });
    lecture_.parcourir("R_ACTE_COND_GEN", {"ACTE_COD", "CONDGE_COD"}, [&](ChampsDbf& c) {
      Acte* const acte = niveaux_.acte(c.cle(0));
      const auto condition = conditions.find(c.cle(1));
      if (acte == nullptr || condition == conditions.end()) {
        return c.refuser("acte inconnu, ou condition générale inconnue");
      }
      ajouterTexte(acte->conditions, condition->second);
      return true;
    });
  }

  // The kind of a note (TYPNOT_COD) is left; an act that it refers to is told behind it.
  void lireNotes() {
    std::unordered_map<std::string, std::multimap<unsigned, std::string>> notes;
    lecture_.parcourir("R_NOTE_ACTE", {"ACTE_COD", "ACDT_MODIF", "ORDRE_NOTE", "RENVOI_COD", "TEXTE_NOTE.."},
                       [&](ChampsDbf& c) {
                         const bool garde = estDeLaDerniere(niveaux_.acte(c.cle(0)), c, 1);
                         const unsigned ordre = c.nombre(2);
                         const std::string renvoi(c.codeOuVide<13>(3).vue());
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
        ajouterTexte(niveaux_.acte(cle)->notes, texte);
      }
    }
  }

  void scinderSelonLesLiens() {
    for (auto& [rang, liens] : liensActes_) {
      std::stable_sort(liens.begin(), liens.end(),
                       [](const LienActe& g, const LienActe& d) { return g.acte < d.acte; });
      scinder(niveaux_.actes[rang].historiques, liens, [](HistoriqueActe& historique, const LienActe& lien) {
        std::vector<CodeActe>& liste = lien.procedure ? historique.procedures : historique.incompatibles;
        if (liste.empty() || liste.back() != lien.acte) {
          liste.push_back(lien.acte);
        }
      });
    }
  }

  // Acts are not created before their first description takes effect.
  void retarderCreations() {
    for (Acte& acte : niveaux_.actes) {
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
  std::uint32_t menuUn_;
  NiveauxDbf& niveaux_;
  std::unordered_map<std::size_t, std::vector<LienActe>> liensActes_;
};

}  // namespace

void lireNiveauActe(LectureDbf& lecture, std::uint32_t menuUn, NiveauxDbf& niveaux) {
  LectureNiveauActe(lecture, menuUn, niveaux).lire();
}

void lireActes(LectureDbf& lecture, Grille grille, std::uint32_t menuUn, Modele& base) {
  NiveauxDbf niveaux(base.actes);
  lireNiveauActe(lecture, menuUn, niveaux);
  lireNiveauActivite(lecture, niveaux);
  lireNiveauPhase(lecture, grille, niveaux);
}

}  // namespace noxlux::compilateur
