#include "compilateur/listings.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <iterator>
#include <map>
#include <set>

#include "compilateur/complement.h"
#include "compilateur/csv.h"
#include "compilateur/ecriture_valeurs.h"
#include "compilateur/fusion.h"
#include "compilateur/import_listing.h"
#include "compilateur/lecteur_tableau.h"
#include "compilateur/periodes.h"
#include "compilateur/valeurs_listing.h"

namespace noxlux::compilateur {

namespace {

constexpr DateBrute DEBUT_DES_LISTES{2005, 3, 25};

bool memes(const std::vector<AssociationActe>& gauche, const std::vector<AssociationActe>& droite) {
  return std::equal(gauche.begin(), gauche.end(), droite.begin(), droite.end(),
                    [](const AssociationActe& g, const AssociationActe& d) {
                      return g.acte == d.acte && g.regle == d.regle;
                    });
}
bool meme(const HistoriqueActe& g, const HistoriqueActe& d) {
  return g.admission == d.admission && g.ententePrealable == d.ententePrealable &&
         g.exonerations == d.exonerations;
}
bool meme(const HistoriqueActivite& g, const HistoriqueActivite& d) {
  return g.regroupement == d.regroupement && g.modificateurs == d.modificateurs &&
         memes(g.associations, d.associations);
}
bool meme(const HistoriquePhase& g, const HistoriquePhase& d) { return g.prix == d.prix; }

template <class H>
void prolonger(std::vector<H>& historiques, std::vector<H>& nouveaux) {
  if (!meme(historiques.back(), nouveaux.front())) {
    historiques.push_back(std::move(nouveaux.front()));
  }
}

template <class E>
E* deCode(std::vector<E>& elements, char code) {
  const auto trouve =
      std::find_if(elements.begin(), elements.end(), [&](const E& e) { return e.code == code; });
  return trouve == elements.end() ? nullptr : &*trouve;
}

// Parts of an act have no end of their own: one that is gone keeps its last value.
template <class E, class F>
void prolongerParties(const Acte& acte, std::vector<E>& anciennes, std::vector<E>& nouvelles,
                      const char* quoi, BilanImport& bilan, F&& meme) {
  for (const E& ancienne : anciennes) {
    if (deCode(nouvelles, ancienne.code) == nullptr) {
      bilan.prevenir(phrase(quoi, " disparue d'une liste plus récente : elle garde sa dernière valeur"),
                     ancienne.lieu, phrase(acte.code.vue(), " ", enTexte(ancienne.code)));
    }
  }
  for (E& nouvelle : nouvelles) {
    if (E* const ancienne = deCode(anciennes, nouvelle.code)) {
      meme(*ancienne, nouvelle);
    } else {
      anciennes.push_back(std::move(nouvelle));
    }
  }
}

void prolonger(Acte& ancien, Acte& nouveau, BilanImport& bilan) {
  ancien.lieu = nouveau.lieu;
  ancien.libelleCourt = std::move(nouveau.libelleCourt);
  ancien.libelleLong = std::move(nouveau.libelleLong);
  ancien.notes = std::move(nouveau.notes);
  ancien.menu = nouveau.menu;
  ancien.fin = {};
  prolonger(ancien.historiques, nouveau.historiques);
  prolongerParties(ancien, ancien.activites, nouveau.activites, "activité", bilan,
                   [&](Activite& ancienne, Activite& nouvelle) {
                     prolonger(ancienne.historiques, nouvelle.historiques);
                     prolongerParties(ancien, ancienne.phases, nouvelle.phases, "phase", bilan,
                                      [](Phase& p, Phase& n) { prolonger(p.historiques, n.historiques); });
                   });
}

void cumulerModificateurs(const DateBrute& date, Modele& liste, Modele& cumul) {
  for (ModificateurActe& ancien : cumul.modificateurs) {
    ModificateurActe* const nouveau = deCode(liste.modificateurs, ancien.code);
    ForfaitEtTaux& derniere = ancien.valeurs.back();
    const bool change = nouveau == nullptr || nouveau->valeurs.front().forfait != derniere.forfait ||
                        nouveau->valeurs.front().coefficient != derniere.coefficient;
    if (change && derniere.fin.estNulle()) {
      derniere.fin = veille(date);
    }
    if (nouveau != nullptr) {
      ancien.libelle = std::move(nouveau->libelle);
      if (change) {
        ancien.valeurs.push_back(nouveau->valeurs.front());
      }
    }
  }
  for (ModificateurActe& nouveau : liste.modificateurs) {
    if (deCode(cumul.modificateurs, nouveau.code) == nullptr) {
      cumul.modificateurs.push_back(std::move(nouveau));
    }
  }
  cumul.valeursModificateurs = std::move(liste.valeursModificateurs);
}

// What the first listing tells, from the creation of its acts on.
class Anteriorite {
 public:
  Anteriorite(const DateBrute& premiere, const Modele& sources, Modele& cumul, BilanImport& bilan)
      : premiere_(premiere), cumul_(cumul), bilan_(bilan) {
    for (const Acte& acte : sources.actes) {
      dits_.insert(acte.code);
    }
  }

  // The past of an act that the sources tell whole is theirs.
  void etendre() {
    for (Acte& acte : cumul_.actes) {
      if (acte.creation < premiere_ && !dits_.contains(acte.code)) {
        const DateBrute depuis = acte.creation;
        avancer(acte.historiques.front(), depuis);
        for (Activite& activite : acte.activites) {
          avancer(activite.historiques.front(), depuis);
          for (Phase& phase : activite.phases) {
            prix_ += avancer(phase.historiques.front(), depuis) ? 1U : 0U;
          }
        }
      }
    }
    for (Regroupement& regroupement : cumul_.regroupements) {
      regroupement.debut = std::min(regroupement.debut, DEBUT_DES_LISTES);
    }
    for (ModificateurActe& modificateur : cumul_.modificateurs) {
      if (modificateur.valeurs.front().debut == premiere_) {
        modificateur.valeurs.front().debut = DEBUT_DES_LISTES;
      }
    }
    if (prix_ != 0) {
      bilan_.dire(phrase("supposés, ", std::to_string(prix_), " prix : ceux de la liste du ", jour(premiere_),
                         ", avec leurs modificateurs et leurs codes, tenus pour vrais avant cette date "
                         "(--sans-anteriorite les en retire)"));
    }
  }

 private:
  template <class H>
  bool avancer(H& historique, const DateBrute& depuis) {
    const bool avance = historique.effet == premiere_;
    if (avance) {
      historique.effet = depuis;
    }
    return avance;
  }

  DateBrute premiere_;
  Modele& cumul_;
  BilanImport& bilan_;
  std::set<CodeActe> dits_;
  std::size_t prix_ = 0;
};

// The columns of a table of dated prices.
constexpr std::array<std::string_view, 5> COLONNES_HISTORIQUE = {"acte", "activite", "phase", "effet",
                                                                 "prix"};

struct PrixDate {
  CodeActe acte;
  char activite = ' ';
  char phase = ' ';
  DateBrute effet;
  double prix = 0.0;
};

std::optional<PrixDate> lirePrixDate(const std::vector<std::string>& champs,
                                     const std::array<std::size_t, COLONNES_HISTORIQUE.size()>& places) {
  const auto champ = [&](std::size_t i) { return rogner(champs[places[i]]); };
  const std::optional<DateBrute> effet = lireJour(champ(3));
  const std::optional<PrixListe> prix = lirePrix(champ(4));
  if (!estCodeActe(champ(0)) || champ(1).size() != 1 || champ(2).size() != 1 || !effet || !prix ||
      !prix->prisEnCharge) {
    return std::nullopt;
  }
  return PrixDate{CodeActe(champ(0)), champ(1)[0], champ(2)[0], *effet, prix->montant};
}

// Where a dated price goes; null: the listings know no such phase.
Phase* phaseDe(const PrixDate& prix, const std::map<CodeActe, Acte*>& actes) {
  const auto acte = actes.find(prix.acte);
  Activite* const activite = acte == actes.end() ? nullptr : deCode(acte->second->activites, prix.activite);
  return activite == nullptr ? nullptr : deCode(activite->phases, prix.phase);
}

// A price of the listings prevails on its day.
void inserer(const PrixDate& prix, Lieu lieu, Phase& phase, BilanImport& bilan) {
  const auto place = std::find_if(phase.historiques.begin(), phase.historiques.end(),
                                  [&](const HistoriquePhase& h) { return h.effet >= prix.effet; });
  if (place != phase.historiques.end() && place->effet == prix.effet) {
    if (place->prix != prix.prix) {
      bilan.prevenir("prix daté autre que celui du même jour, qui est gardé", lieu,
                     phrase(prix.acte.vue(), " ", jour(prix.effet)));
    }
    return;
  }
  HistoriquePhase historique;
  historique.lieu = lieu;
  historique.effet = prix.effet;
  historique.prix = prix.prix;
  phase.historiques.insert(place, historique);
}

bool lireListings(const DemandeListings& demande, char reglePleine, const Modele& modele,
                  std::vector<Modele>& listes, BilanImport& bilan, Rapport& rapport) {
  const auto grille = std::find_if(modele.grilles.begin(), modele.grilles.end(),
                                   [&](const GrilleTarifaire& g) { return g.numero == demande.grille; });
  const unsigned colonne = grille == modele.grilles.end() ? demande.grille : grille->colonne;
  for (const std::string& chemin : demande.chemins) {
    const OptionsListing options{colonne == 2 ? ColonnePrix::HORS_SECTEUR_1 : ColonnePrix::SECTEUR_1,
                                 reglePleine, modele.correctifs};
    const std::uint32_t source = rapport.nombreSources();
    if (!importerListing(chemin, options, listes.emplace_back(), bilan, rapport)) {
      return false;
    }
    const auto jumelle = std::find_if(listes.begin(), listes.end() - 1, [&](const Modele& autre) {
      return autre.entetes.front().date == listes.back().entetes.front().date;
    });
    if (jumelle != listes.end() - 1) {
      rapport.signaler({source, 1}, "une autre des listes est applicable à la même date");
      return false;
    }
  }
  std::sort(listes.begin(), listes.end(),
            [](const Modele& g, const Modele& d) { return g.entetes.front().date < d.entetes.front().date; });
  return true;
}

}  // namespace

void cumuler(Modele&& liste, Modele& cumul, BilanImport& bilan) {
  const DateBrute date = liste.entetes.front().date;
  std::map<CodeActe, Acte*> nouveaux;
  for (Acte& acte : liste.actes) {
    nouveaux.emplace(acte.code, &acte);
  }
  for (Acte& ancien : cumul.actes) {
    const auto nouveau = nouveaux.find(ancien.code);
    if (nouveau != nouveaux.end()) {
      prolonger(ancien, *nouveau->second, bilan);
      nouveaux.erase(nouveau);
    } else if (ancien.fin.estNulle()) {
      ancien.fin = veille(date);
      ancien.menu = MENU_RACINE;
      bilan.dire(phrase("fin, acte ", ancien.code.vue(), " : absent de la liste du ", jour(date)));
    }
  }
  for (Acte& acte : liste.actes) {
    if (nouveaux.contains(acte.code)) {
      cumul.actes.push_back(std::move(acte));
    }
  }
  cumulerModificateurs(date, liste, cumul);
  std::set<CodeFixe<3>> connus;
  for (const Regroupement& regroupement : cumul.regroupements) {
    connus.insert(regroupement.code);
  }
  std::copy_if(liste.regroupements.begin(), liste.regroupements.end(),
               std::back_inserter(cumul.regroupements),
               [&](const Regroupement& r) { return !connus.contains(r.code); });
  cumul.menus = std::move(liste.menus);
  cumul.entetes = std::move(liste.entetes);
}

bool lireHistoriquePrix(const std::string& chemin, Modele& cumul, BilanImport& bilan, Rapport& rapport) {
  Lieu lieu{rapport.declarerSource(chemin), 0};
  std::ifstream flux(chemin, std::ios::binary);
  const std::string texte{std::istreambuf_iterator<char>(flux), std::istreambuf_iterator<char>()};
  LecteurCsv lecteur(texte, ';');
  EnregistrementCsv ligne;
  if (!flux.is_open() || !lecteur.lire(ligne)) {
    rapport.signaler(lieu, "le fichier ne peut pas être lu, ou il est vide");
    return false;
  }
  std::array<std::size_t, COLONNES_HISTORIQUE.size()> places{};
  for (std::size_t i = 0; i < places.size(); ++i) {
    const auto place = std::find(ligne.champs.begin(), ligne.champs.end(), COLONNES_HISTORIQUE[i]);
    if (place == ligne.champs.end()) {
      rapport.signaler({lieu.source, 1}, phrase("il manque la colonne « ", COLONNES_HISTORIQUE[i], " »"));
      return false;
    }
    places[i] = static_cast<std::size_t>(place - ligne.champs.begin());
  }
  std::map<CodeActe, Acte*> actes;
  for (Acte& acte : cumul.actes) {
    actes.emplace(acte.code, &acte);
  }
  const std::size_t largeur = ligne.champs.size();
  while (lecteur.lire(ligne)) {
    lieu.ligne = ligne.ligne;
    bilan.lire("prix datés");
    const auto prix =
        ligne.champs.size() == largeur && !ligne.malForme ? lirePrixDate(ligne.champs, places) : std::nullopt;
    Phase* const phase = prix ? phaseDe(*prix, actes) : nullptr;
    if (!prix) {
      bilan.ecarter("prix daté incompréhensible", lieu, ligne.champs.front());
    } else if (phase == nullptr) {
      bilan.prevenir("prix daté d'un acte, d'une activité ou d'une phase que les listes n'ont pas", lieu,
                     phrase(prix->acte.vue(), " ", enTexte(prix->activite), " ", enTexte(prix->phase)));
    } else {
      inserer(*prix, lieu, *phase, bilan);
      bilan.garder("prix datés");
    }
  }
  return true;
}

bool importerListings(const DemandeListings& demande, char reglePleine, Modele& modele, BilanImport& bilan,
                      Rapport& rapport) {
  std::vector<Modele> listes;
  if (!lireListings(demande, reglePleine, modele, listes, bilan, rapport)) {
    return false;
  }
  Modele cumul = std::move(listes.front());
  const DateBrute premiere = cumul.entetes.front().date;
  for (std::size_t i = 1; i < listes.size(); ++i) {
    cumuler(std::move(listes[i]), cumul, bilan);
  }
  for (const std::string& chemin : demande.historiques) {
    if (!lireHistoriquePrix(chemin, cumul, bilan, rapport)) {
      return false;
    }
  }
  completerActes(modele, premiere, cumul, bilan);
  repartirModificateurs(modele, cumul);
  if (demande.anteriorite) {
    Anteriorite(premiere, modele, cumul, bilan).etendre();
  } else {
    // An act begins with what is told of it.
    for (Acte& acte : cumul.actes) {
      acte.creation = std::max(acte.creation, acte.historiques.front().effet);
    }
  }
  choisirValeurs(demande.grille, cumul, modele, bilan);
  fusionnerListing(std::move(cumul), modele, bilan);
  return true;
}

}  // namespace noxlux::compilateur
