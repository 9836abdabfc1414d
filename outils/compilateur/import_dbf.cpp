#include "compilateur/import_dbf.h"

#include <algorithm>
#include <map>
#include <unordered_map>

#include "compilateur/lecture_dbf.h"

namespace noxlux::compilateur {

namespace {

constexpr std::uint32_t MENU_RACINE = 1;
constexpr unsigned PREMIER_DOM = 971;

// Where a level lies in the model: its act, and the ranks below.
struct Place {
  std::size_t acte = 0;
  std::size_t activite = 0;
  std::size_t phase = 0;
};
using Places = std::unordered_map<std::string, Place>;

template <class H>
H* historiqueDu(std::vector<H>& historiques, const DateBrute& date) {
  const auto trouve =
      std::find_if(historiques.begin(), historiques.end(), [&](const H& h) { return h.effet == date; });
  return trouve == historiques.end() ? nullptr : &*trouve;
}

// Whether a record describes the level as it is now: the newest seen so far.
template <class H>
bool estDerniere(const std::vector<H>& historiques, const DateBrute& date) {
  return std::none_of(historiques.begin(), historiques.end(), [&](const H& h) { return date < h.effet; });
}

template <class T>
bool ajouterUneFois(std::vector<T>& liste, const T& valeur) {
  if (std::find(liste.begin(), liste.end(), valeur) == liste.end()) {
    liste.push_back(valeur);
  }
  return true;
}

void ajouterTexte(std::string& notes, std::string_view texte) {
  if (!texte.empty()) {
    notes.append(notes.empty() ? "" : "\n").append(texte);
  }
}

// A note, by the order told for it.
struct Note {
  DateBrute date;
  unsigned ordre = 0;
  std::string texte;
};

// The notes of the last date, in their order.
std::string assembler(std::vector<Note>& notes) {
  DateBrute derniere;
  for (const Note& note : notes) {
    derniere = std::max(derniere, note.date);
  }
  std::stable_sort(notes.begin(), notes.end(),
                   [](const Note& g, const Note& d) { return g.ordre < d.ordre; });
  std::string texte;
  for (const Note& note : notes) {
    if (note.date == derniere) {
      ajouterTexte(texte, note.texte);
    }
  }
  return texte;
}

class LectureBase {
 public:
  LectureBase(LectureDbf& lecture, unsigned grille, Modele& base)
      : lecture_(lecture), grille_(grille), base_(base) {}

  void lire() {
    lireMenus();
    lireActes();
    lireListesDActes();
    lireActivites();
    lireListesDActivites();
    lirePhases();
    lirePrix();
    lireListesDePhases();
    lireTextes();
    corrigerCreations();
    entete();
  }

 private:
  Acte* acteDe(const std::string& cle) {
    const auto place = actes_.find(cle);
    return place == actes_.end() ? nullptr : &base_.actes[place->second.acte];
  }
  Activite* activiteDe(const std::string& cle) {
    const auto place = activites_.find(cle);
    return place == activites_.end() ? nullptr
                                     : &base_.actes[place->second.acte].activites[place->second.activite];
  }
  Phase* phaseDe(const std::string& cle) {
    const auto place = phases_.find(cle);
    return place == phases_.end() ? nullptr
                                  : &base_.actes[place->second.acte]
                                         .activites[place->second.activite]
                                         .phases[place->second.phase];
  }

  void lireActes() {
    lecture_.parcourir(
        "R_ACTE",
        {"COD_ACTE", "DT_MODIF", "MENU_COD", "FRAIDP_COD", "REMBOU_COD", "TYPE_COD", "NOM_COURT", "SEXE",
         "DT_CREATIO", "DT_FIN", "ENTENTE"},
        [&](ChampsDbf& c, const TableDbf& table) {
          const CodeActe code = c.code<13>(0);
          const DateBrute effet = c.date(1, true);
          Acte lu;
          lu.lieu = c.lieu();
          lu.code = code;
          lu.menu = c.nombre(2);
          lu.fraisDeplacement = c.lettre(3);
          lu.type = c.lettre(5);
          lu.libelleCourt = c.texte(6);
          lu.sexe = c.lettre(7) == '0' ? ' ' : c.lettre(7);
          lu.creation = c.date(8, false);
          lu.fin = c.date(9, false);
          lu.libelleLong = c.texteEnTranches(table.tranches("NOM_LONG"));
          HistoriqueActe historique;
          historique.lieu = c.lieu();
          historique.effet = effet;
          historique.admission = c.lettre(4);
          historique.ententePrealable = c.lettre(10) == 'O' || c.lettre(10) == '1';
          if (code.vue().empty()) {
            return c.refuser("code d'acte absent");
          }
          return c.bons() && ajouterActe(c, std::move(lu), std::move(historique));
        },
        true);
  }

  bool ajouterActe(ChampsDbf& c, Acte&& lu, HistoriqueActe&& historique) {
    const auto [place, nouveau] = actes_.emplace(c.cle(0), Place{base_.actes.size()});
    if (nouveau) {
      base_.actes.push_back(std::move(lu));
      base_.actes.back().historiques.push_back(std::move(historique));
      return true;
    }
    Acte& acte = base_.actes[place->second.acte];
    if (historiqueDu(acte.historiques, historique.effet) != nullptr) {
      return c.refuser("deux enregistrements du même code et de la même date");
    }
    if (estDerniere(acte.historiques, historique.effet)) {
      std::swap(lu.historiques, acte.historiques);
      acte = std::move(lu);
    }
    acte.historiques.push_back(std::move(historique));
    return true;
  }

  // Lists of an act at a date: table, column of the act, its date, and what is listed.
  template <class F>
  void listeDActe(const char* table, const std::vector<const char*>& colonnes, F&& f) {
    lecture_.parcourir(table, colonnes, [&](ChampsDbf& c, const TableDbf&) {
      Acte* const acte = acteDe(c.cle(0));
      HistoriqueActe* const historique =
          acte == nullptr ? nullptr : historiqueDu(acte->historiques, c.date(1, true));
      return historique == nullptr ? c.refuser("acte inconnu à cette date") : f(c, *historique);
    });
  }

  void lireListesDActes() {
    listeDActe("R_ACTE_EXO_TM", {"ACTE_COD", "ACDT_MODIF", "EXOTM_COD"}, [](ChampsDbf& c, HistoriqueActe& h) {
      const char code = c.lettre(2);
      return c.bons() && ajouterUneFois(h.exonerations, code);
    });
    listeDActe("R_PROCEDURE", {"ACTE_COD", "ACDT_MODIF", "PROC_COD"}, [](ChampsDbf& c, HistoriqueActe& h) {
      const CodeActe code = c.code<13>(2);
      return c.bons() && ajouterUneFois(h.procedures, code);
    });
    listeDActe("R_INCOMPATIBILITES", {"ACTE_COD1", "DT_MODIF1", "ACTE_COD2"},
               [](ChampsDbf& c, HistoriqueActe& h) {
                 const CodeActe code = c.code<13>(2);
                 return c.bons() && ajouterUneFois(h.incompatibles, code);
               });
    lecture_.parcourir("R_ACTE_NAT_ASS", {"ACTE_COD", "NATASS_COD"}, [&](ChampsDbf& c, const TableDbf&) {
      Acte* const acte = acteDe(c.cle(0));
      const CodeFixe<2> code = c.code<2>(1);
      return acte == nullptr ? c.refuser("acte inconnu")
                             : c.bons() && ajouterUneFois(acte->naturesAssurance, code);
    });
  }

  void lireActivites() {
    lecture_.parcourir(
        "R_ACTE_IVITE", {"COD_AA", "DT_MODIF", "ACTE_COD", "ACTIV_COD", "REGROU_COD", "CATMED_COD"},
        [&](ChampsDbf& c, const TableDbf&) {
          HistoriqueActivite historique;
          historique.lieu = c.lieu();
          historique.effet = c.date(1, true);
          historique.regroupement = c.code<3>(4);
          historique.categorieMedicale = c.code<2>(5);
          const char code = c.lettre(3);
          const auto acte = actes_.find(c.cle(2));
          if (acte == actes_.end()) {
            return c.refuser("acte inconnu");
          }
          if (!c.bons() || code == ' ') {
            return c.refuser("code d'activité absent");
          }
          std::vector<Activite>& activites = base_.actes[acte->second.acte].activites;
          const auto [place, nouvelle] =
              activites_.emplace(c.cle(0), Place{acte->second.acte, activites.size()});
          if (nouvelle) {
            Activite& activite = activites.emplace_back();
            activite.lieu = c.lieu();
            activite.code = code;
          }
          return ajouterHistorique(c, activites[place->second.activite].historiques, std::move(historique));
        },
        true);
  }

  template <class H>
  static bool ajouterHistorique(ChampsDbf& c, std::vector<H>& historiques, H&& historique) {
    if (historiqueDu(historiques, historique.effet) != nullptr) {
      return c.refuser("deux enregistrements du même code et de la même date");
    }
    historiques.push_back(std::move(historique));
    return true;
  }

  template <class F>
  void listeDActivite(const char* table, const std::vector<const char*>& colonnes, F&& f) {
    lecture_.parcourir(table, colonnes, [&](ChampsDbf& c, const TableDbf&) {
      Activite* const activite = activiteDe(c.cle(0));
      HistoriqueActivite* const historique =
          activite == nullptr ? nullptr : historiqueDu(activite->historiques, c.date(1, true));
      return historique == nullptr ? c.refuser("activité inconnue à cette date") : f(c, *historique);
    });
  }

  void lireListesDActivites() {
    listeDActivite("R_ACTIVITE_MODIFICATEUR", {"AA_CODE", "AADT_MODIF", "MODIFI_COD"},
                   [](ChampsDbf& c, HistoriqueActivite& h) {
                     const char code = c.lettre(2);
                     return c.bons() && ajouterUneFois(h.modificateurs, code);
                   });
    listeDActivite("R_ACTIVITE_EXECUTANT", {"AA_COD", "AADT_MODIF", "CATSPE_COD"},
                   [](ChampsDbf& c, HistoriqueActivite& h) {
                     const CodeFixe<2> code = c.code<2>(2);
                     return c.bons() && ajouterUneFois(h.classesSpecialite, code);
                   });
    listeDActivite("R_ASSOCIATIONS", {"AA_CODE1", "DT_MODIF1", "AA_CODE2", "REGLE_COD"},
                   [&](ChampsDbf& c, HistoriqueActivite& h) {
                     const auto associe = activites_.find(c.cle(2));
                     if (associe == activites_.end()) {
                       return c.refuser("activité associée inconnue");
                     }
                     AssociationActe association;
                     association.lieu = c.lieu();
                     association.acte = base_.actes[associe->second.acte].code;
                     association.regle = c.lettre(3);
                     const auto meme = [&](const AssociationActe& a) { return a.acte == association.acte; };
                     // An act may be associated by several of its activities.
                     if (c.bons() && std::none_of(h.associations.begin(), h.associations.end(), meme)) {
                       h.associations.push_back(association);
                     }
                     return c.bons();
                   });
    sansDate("R_ACTIVITE_AGRE_RADIO", {"AA_CODE", "AGRAD_COD"}, [](ChampsDbf& c, Activite& activite) {
      const CodeFixe<2> code = c.code<2>(1);
      return c.bons() && ajouterUneFois(activite.agrementsRadio, code);
    });
    sansDate("R_ACTIVITE_EXTENSION", {"AA_COD", "EXTENS_COD"}, [](ChampsDbf& c, Activite& activite) {
      const char code = c.lettre(1);
      return c.bons() && ajouterUneFois(activite.extensions, code);
    });
    std::map<std::string, CodeFixe<5>> rmo;
    lecture_.parcourir("R_RMO", {"COD_INTERN", "REF_RMO"}, [&](ChampsDbf& c, const TableDbf&) {
      const CodeFixe<5> reference = c.code<5>(1);
      return c.bons() && rmo.emplace(c.cle(0), reference).second;
    });
    sansDate("R_ACTIVITE_RMO", {"AA_COD", "INTERN_COD"}, [&](ChampsDbf& c, Activite& activite) {
      const auto reference = rmo.find(c.cle(1));
      return reference == rmo.end() ? c.refuser("RMO inconnue")
                                    : ajouterUneFois(activite.rmo, reference->second);
    });
  }

  template <class F>
  void sansDate(const char* table, const std::vector<const char*>& colonnes, F&& f) {
    lecture_.parcourir(table, colonnes, [&](ChampsDbf& c, const TableDbf&) {
      Activite* const activite = activiteDe(c.cle(0));
      return activite == nullptr ? c.refuser("activité inconnue") : f(c, *activite);
    });
  }

  void lirePhases() {
    lecture_.parcourir(
        "R_ACTE_IVITE_PHASE",
        {"COD_AAP", "DT_MODIF", "AA_COD", "PHASE_COD", "PU_BASE", "SUPPLEMENT", "NB_DENTS", "AGE_MIN",
         "AGE_MAX"},
        [&](ChampsDbf& c, const TableDbf&) {
          Phase lue;
          lue.lieu = c.lieu();
          lue.code = c.lettre(3);
          lue.nombreDents = c.code<2>(6);
          lue.ageMinimum = c.court(7);
          lue.ageMaximum = c.court(8);
          HistoriquePhase historique;
          historique.lieu = c.lieu();
          historique.effet = c.date(1, true);
          historique.prix = c.decimal(4);
          historique.supplement = c.decimal(5);
          const auto activite = activites_.find(c.cle(2));
          if (activite == activites_.end()) {
            return c.refuser("activité inconnue");
          }
          if (!c.bons() || lue.code == ' ') {
            return c.refuser("code de phase absent");
          }
          return ajouterPhase(c, activite->second, std::move(lue), std::move(historique));
        },
        true);
  }

  bool ajouterPhase(ChampsDbf& c, const Place& activite, Phase&& lue, HistoriquePhase&& historique) {
    std::vector<Phase>& phases = base_.actes[activite.acte].activites[activite.activite].phases;
    const auto [place, nouvelle] =
        phases_.emplace(c.cle(0), Place{activite.acte, activite.activite, phases.size()});
    if (nouvelle) {
      phases.push_back(std::move(lue));
    } else if (Phase& phase = phases[place->second.phase]; estDerniere(phase.historiques, historique.effet)) {
      std::swap(lue.historiques, phase.historiques);
      phase = std::move(lue);
    }
    return ajouterHistorique(c, phases[place->second.phase].historiques, std::move(historique));
  }

  // The prices of the grid take the place of the base prices.
  void lirePrix() {
    if (grille_ == 0) {
      return;
    }
    lecture_.parcourir("R_PU_BASE", {"AAP_COD", "GRILLE_COD", "PU_BASE", "APDT_MODIF"},
                       [&](ChampsDbf& c, const TableDbf&) {
                         if (c.nombre(1) != grille_) {
                           return false;
                         }
                         HistoriquePhase* const historique = historiqueDePhase(c, 0, 3);
                         const double prix = c.decimal(2);
                         if (historique != nullptr && c.bons()) {
                           historique->prix = prix;
                         }
                         return c.bons();
                       });
  }

  HistoriquePhase* historiqueDePhase(ChampsDbf& c, std::size_t code, std::size_t date) {
    Phase* const phase = phaseDe(c.cle(code));
    HistoriquePhase* const historique =
        phase == nullptr ? nullptr : historiqueDu(phase->historiques, c.date(date, true));
    if (historique == nullptr) {
      c.refuser("phase inconnue à cette date");
    }
    return historique;
  }

  void lireListesDePhases() {
    lecture_.parcourir("R_ACTIVITE_PHASE_DOM", {"AAP_COD", "APDT_MODIF", "DOM_COD", "MAJORATION"},
                       [&](ChampsDbf& c, const TableDbf&) {
                         const unsigned rang = c.nombre(2) - PREMIER_DOM;
                         const double majoration = c.decimal(3);
                         HistoriquePhase* const historique = historiqueDePhase(c, 0, 1);
                         if (historique == nullptr || !c.bons()) {
                           return false;
                         }
                         if (rang >= historique->dom.size()) {
                           return c.refuser("département d'outre-mer inconnu");
                         }
                         // Below 1, what is added to the price; from 1 on, what the price is multiplied by.
                         historique->dom[rang] = majoration < 1.0 ? 1.0 + majoration : majoration;
                         return true;
                       });
    lecture_.parcourir(
        "R_ACTIVITE_PHASE_DENT", {"AAP_COD", "DEN_NUMERO"}, [&](ChampsDbf& c, const TableDbf&) {
          Phase* const phase = phaseDe(c.cle(0));
          const CodeFixe<2> dent = c.code<2>(1);
          return phase == nullptr ? c.refuser("phase inconnue")
                                  : c.bons() && ajouterUneFois(phase->dentsIncompatibles, dent);
        });
  }

  // General conditions and notes of the acts.
  void lireTextes() {
    std::map<std::string, std::string> conditions;
    lecture_.parcourir("R_COND_GEN", {"COD_CONDGE"}, [&](ChampsDbf& c, const TableDbf& table) {
      return conditions.emplace(c.cle(0), c.texteEnTranches(table.tranches("LIBELLE"))).second;
    });
    lecture_.parcourir("R_ACTE_COND_GEN", {"ACTE_COD", "CONDGE_COD"}, [&](ChampsDbf& c, const TableDbf&) {
      Acte* const acte = acteDe(c.cle(0));
      const auto condition = conditions.find(c.cle(1));
      if (acte == nullptr || condition == conditions.end()) {
        return c.refuser("acte ou condition générale inconnus");
      }
      ajouterTexte(acte->conditions, condition->second);
      return true;
    });
    std::map<std::string, std::vector<Note>> notes;
    lecture_.parcourir(
        "R_NOTE_ACTE", {"ACTE_COD", "ACDT_MODIF", "ORDRE_NOTE"}, [&](ChampsDbf& c, const TableDbf& table) {
          Note note{c.date(1, false), c.nombre(2), c.texteEnTranches(table.tranches("TEXTE_NOTE"))};
          if (acteDe(c.cle(0)) == nullptr) {
            return c.refuser("acte inconnu");
          }
          notes[c.cle(0)].push_back(std::move(note));
          return c.bons();
        });
    for (auto& [cle, liste] : notes) {
      acteDe(cle)->notes = assembler(liste);
    }
  }

  void lireMenus() {
    lecture_.parcourir(
        "R_MENU", {"COD_MENU", "LIBELLE", "COD_PERE"},
        [&](ChampsDbf& c, const TableDbf&) {
          Menu menu;
          menu.lieu = c.lieu();
          menu.code = c.nombre(0);
          menu.libelle = c.texte(1);
          menu.pere = c.nombre(2);
          if (!c.bons() || menu.code == 0 || menu.libelle.empty()) {
            return c.refuser("menu sans code ou sans libellé");
          }
          base_.menus.push_back(std::move(menu));
          return true;
        },
        true);
    std::map<std::uint32_t, std::vector<Note>> notes;
    lecture_.parcourir("R_NOTE_MENU", {"MENU_COD", "ORDRE_NOTE"}, [&](ChampsDbf& c, const TableDbf& table) {
      Note note{{}, c.nombre(1), c.texteEnTranches(table.tranches("TEXTE_NOTE"))};
      notes[c.nombre(0)].push_back(std::move(note));
      return c.bons();
    });
    for (Menu& menu : base_.menus) {
      menu.notes = assembler(notes[menu.code]);
    }
    poserRacine();
  }

  // The tree has one root, menu 1: made here when the table has several, or none.
  void poserRacine() {
    const auto sansPere = [](const Menu& menu) { return menu.pere == 0; };
    const auto premier = std::find_if(base_.menus.begin(), base_.menus.end(),
                                      [](const Menu& menu) { return menu.code == MENU_RACINE; });
    const auto racines = std::count_if(base_.menus.begin(), base_.menus.end(), sansPere);
    if (base_.menus.empty() || (premier != base_.menus.end() && sansPere(*premier) && racines == 1)) {
      return;
    }
    std::uint32_t libre = MENU_RACINE + 1;
    for (const Menu& menu : base_.menus) {
      libre = std::max(libre, menu.code + 1);
    }
    for (Menu& menu : base_.menus) {
      menu.pere = menu.pere == 0 ? MENU_RACINE : menu.pere == MENU_RACINE ? libre : menu.pere;
      menu.code = menu.code == MENU_RACINE ? libre : menu.code;
    }
    menuDeplace_ = premier == base_.menus.end() ? 0 : libre;
    Menu& racine = base_.menus.emplace_back();
    racine.code = MENU_RACINE;
    racine.libelle = "CCAM";
  }

  // Acts are not created before their first description takes effect.
  void corrigerCreations() {
    for (Acte& acte : base_.actes) {
      acte.menu = acte.menu == MENU_RACINE && menuDeplace_ != 0 ? menuDeplace_ : acte.menu;
      const auto premier = std::min_element(
          acte.historiques.begin(), acte.historiques.end(),
          [](const HistoriqueActe& g, const HistoriqueActe& d) { return g.effet < d.effet; });
      if (acte.creation < premier->effet) {
        if (!acte.creation.estNulle()) {
          lecture_.bilan().ajuster("acte créé avant sa première description, création retardée", acte.lieu);
        }
        acte.creation = premier->effet;
      }
      if (acte.libelleLong.empty()) {
        acte.libelleLong = acte.libelleCourt;
      }
      derniere_ = std::max(derniere_, std::max_element(acte.historiques.begin(), acte.historiques.end(),
                                                       [](const HistoriqueActe& g, const HistoriqueActe& d) {
                                                         return g.effet < d.effet;
                                                       })
                                          ->effet);
    }
  }

  void entete() {
    Entete& entete = base_.entetes.emplace_back();
    const std::string grille = std::to_string(grille_ % 1000);
    entete.date = derniere_;
    entete.variante =
        CodeFixe<10>("BASECCAM" + std::string(grille.size() < 2 ? 1 : 0, '0') + grille.substr(0, 2));
    entete.commentaire = "Base publique de la CCAM, grille " + std::to_string(grille_);
  }

  LectureDbf& lecture_;
  unsigned grille_;
  Modele& base_;
  Places actes_;
  Places activites_;
  Places phases_;
  std::uint32_t menuDeplace_ = 0;
  DateBrute derniere_;
};

}  // namespace

bool importerBaseDbf(const std::string& repertoire, unsigned grille, Modele& base, BilanImport& bilan,
                     Rapport& rapport) {
  const std::size_t fautes = rapport.nombreFautes();
  LectureDbf lecture(repertoire, bilan, rapport);
  LectureBase(lecture, grille, base).lire();
  lireTablesDeReference(lecture, grille, base);
  if (rapport.nombreFautes() == fautes && base.actes.empty()) {
    rapport.signaler({}, phrase(repertoire, " : la table R_ACTE ne contient aucun acte"));
  }
  return rapport.nombreFautes() == fautes;
}

}  // namespace noxlux::compilateur
