#include "compilateur/fusion.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

#include "compilateur/periodes.h"

namespace noxlux::compilateur {

namespace {

// What of an act the sources say otherwise than the listing that prints it.
class Ecarts {
 public:
  void noter(const char* quoi, bool autre) {
    if (autre && std::find(noms_.begin(), noms_.end(), ou_ + quoi) == noms_.end()) {
      noms_.push_back(ou_ + quoi);
    }
  }
  // The part of the act that follows is of: "activité 1, ".
  void situer(std::string ou) { ou_ = std::move(ou); }
  std::string texte() const {
    std::string texte;
    for (const std::string& nom : noms_) {
      texte += (texte.empty() ? "" : " ; ") + nom;
    }
    return texte;
  }

 private:
  std::string ou_;
  std::vector<std::string> noms_;
};

void comparer(const HistoriqueActe& liste, const HistoriqueActe& dit, Ecarts& ecarts) {
  ecarts.noter("admission au remboursement", liste.admission != dit.admission);
  ecarts.noter("entente préalable", liste.ententePrealable != dit.ententePrealable);
  ecarts.noter("exonérations", liste.exonerations != dit.exonerations);
}
void comparer(const HistoriqueActivite& liste, const HistoriqueActivite& dit, Ecarts& ecarts) {
  const auto memeActe = [](const AssociationActe& a, const AssociationActe& b) { return a.acte == b.acte; };
  ecarts.noter("code de regroupement", liste.regroupement != dit.regroupement);
  ecarts.noter("modificateurs", !std::is_permutation(liste.modificateurs.begin(), liste.modificateurs.end(),
                                                     dit.modificateurs.begin(), dit.modificateurs.end()));
  ecarts.noter("actes associés",
               !std::is_permutation(liste.associations.begin(), liste.associations.end(),
                                    dit.associations.begin(), dit.associations.end(), memeActe));
}
void comparer(const HistoriquePhase& liste, const HistoriquePhase& dit, Ecarts& ecarts) {
  ecarts.noter("prix", liste.prix != dit.prix);
}

// The histories of the sources before the listing's, then these, completed by what the sources told then;
// then those that the sources tell of after it.
template <class H, class F>
void succeder(std::vector<H>& historiques, std::vector<H>& sources, Ecarts& ecarts, F&& completer) {
  std::vector<H> nouveaux = std::move(historiques);
  historiques.clear();
  for (H& nouveau : nouveaux) {
    const H* courant = nullptr;
    for (const H& ancien : sources) {
      if (ancien.effet <= nouveau.effet && (courant == nullptr || courant->effet < ancien.effet)) {
        courant = &ancien;
      }
    }
    if (courant != nullptr) {
      completer(nouveau, *courant);
      comparer(nouveau, *courant, ecarts);
    }
  }
  std::copy_if(sources.begin(), sources.end(), std::back_inserter(historiques),
               [&](const H& ancien) { return ancien.effet < nouveaux.front().effet; });
  const DateBrute derniere = nouveaux.back().effet;
  std::move(nouveaux.begin(), nouveaux.end(), std::back_inserter(historiques));
  std::copy_if(sources.begin(), sources.end(), std::back_inserter(historiques),
               [&](const H& ancien) { return derniere < ancien.effet; });
}

template <class E>
E* trouver(std::vector<E>& elements, char code) {
  const auto trouve =
      std::find_if(elements.begin(), elements.end(), [&](const E& e) { return e.code == code; });
  return trouve == elements.end() ? nullptr : &*trouve;
}

void completerPhase(Phase& phase, Phase& source, Ecarts& ecarts) {
  phase.nombreDents = source.nombreDents;
  phase.ageMinimum = source.ageMinimum;
  phase.ageMaximum = source.ageMaximum;
  phase.dentsIncompatibles = std::move(source.dentsIncompatibles);
  succeder(phase.historiques, source.historiques, ecarts,
           [](HistoriquePhase& nouveau, const HistoriquePhase& courant) {
             nouveau.supplement = courant.supplement;
             nouveau.dom = courant.dom;
           });
}

// The parts of an act that the listing does not print.
template <class E>
void direPartiesInconnues(const std::vector<E>& parties, std::vector<E>& liste, const char* quoi,
                          Ecarts& ecarts) {
  for (const E& partie : parties) {
    ecarts.noter(phrase(quoi, std::string(1, partie.code)).c_str(), trouver(liste, partie.code) == nullptr);
  }
}

void completerActivite(Activite& activite, Activite& source, Ecarts& ecarts) {
  const std::string ou = phrase("activité ", std::string(1, activite.code), ", ");
  ecarts.situer(ou);
  activite.agrementsRadio = std::move(source.agrementsRadio);
  activite.rmo = std::move(source.rmo);
  activite.extensions = std::move(source.extensions);
  succeder(activite.historiques, source.historiques, ecarts,
           [](HistoriqueActivite& nouveau, const HistoriqueActivite& courant) {
             nouveau.classesSpecialite = courant.classesSpecialite;
             if (!courant.categorieMedicale.vue().empty()) {
               nouveau.categorieMedicale = courant.categorieMedicale;
             }
           });
  for (Phase& phase : activite.phases) {
    if (Phase* const memePhase = trouver(source.phases, phase.code)) {
      ecarts.situer(phrase(ou, "phase ", std::string(1, phase.code), ", "));
      completerPhase(phase, *memePhase, ecarts);
    }
  }
  ecarts.situer(ou);
  direPartiesInconnues(source.phases, activite.phases, "phase ", ecarts);
}

void completerActe(Acte& acte, Acte& source, BilanImport& bilan) {
  Ecarts ecarts;
  ecarts.noter("libellé", acte.libelleLong != source.libelleLong);
  ecarts.noter("notes", !source.notes.empty() && acte.notes != source.notes);
  ecarts.noter("date de fin", !source.fin.estNulle() && !(acte.fin == source.fin));
  acte.libelleCourt = std::move(source.libelleCourt);
  acte.type = source.type;
  acte.conditions = std::move(source.conditions);
  acte.sexe = source.sexe;
  acte.creation = source.creation;
  acte.fraisDeplacement = source.fraisDeplacement;
  acte.naturesAssurance = std::move(source.naturesAssurance);
  succeder(acte.historiques, source.historiques, ecarts,
           [](HistoriqueActe& nouveau, const HistoriqueActe& courant) {
             nouveau.procedures = courant.procedures;
             nouveau.incompatibles = courant.incompatibles;
           });
  direPartiesInconnues(source.activites, acte.activites, "activité ", ecarts);
  for (Activite& activite : acte.activites) {
    if (Activite* const meme = trouver(source.activites, activite.code)) {
      completerActivite(activite, *meme, ecarts);
    }
  }
  if (!ecarts.texte().empty()) {
    bilan.prevenir(
        "acte du complément dit autrement par la liste, qui l'emporte à sa date ([[correctif]] la mend)",
        source.lieu, phrase(acte.code.vue(), " : ", ecarts.texte()));
  }
}

// The import's acts, and those of the sources that it does not hold; `completer(act, source)` is told those
// that both hold.
template <class F>
void fusionnerActes(std::vector<Acte>& liste, std::vector<Acte>& actes, F&& completer) {
  std::map<CodeActe, Acte*> sources;
  for (Acte& acte : actes) {
    sources.emplace(acte.code, &acte);
  }
  for (Acte& acte : liste) {
    const auto source = sources.find(acte.code);
    if (source != sources.end()) {
      completer(acte, *source->second);
      sources.erase(source);
    }
  }
  // Chapters of the others are those of another tree.
  for (const auto& [code, acte] : sources) {
    acte->menu = 1;
    liste.push_back(std::move(*acte));
  }
  actes = std::move(liste);
}

void fusionnerRegroupements(std::vector<Regroupement>& liste, std::vector<Regroupement>& regroupements) {
  const std::size_t deSources = regroupements.size();
  for (Regroupement& nouveau : liste) {
    const auto fin = regroupements.begin() + static_cast<std::ptrdiff_t>(deSources);
    const bool connu = std::any_of(regroupements.begin(), fin,
                                   [&](const Regroupement& r) { return r.code == nouveau.code; });
    if (!connu) {
      nouveau.libelle = phrase("Code de regroupement ", nouveau.code.vue());
      regroupements.push_back(std::move(nouveau));
    }
  }
}

// What the import tells of the header; the rest is the sources'.
void fusionnerEntete(const Modele& importe, Modele& modele) {
  if (importe.entetes.empty() || modele.entetes.empty()) {
    return;
  }
  const Entete& nouveau = importe.entetes.front();
  Entete& entete = modele.entetes.front();
  if (!nouveau.versionBaseCCAM.vue().empty()) {
    entete.versionBaseCCAM = nouveau.versionBaseCCAM;
  }
  if (!nouveau.version.vue().empty()) {
    entete.version = nouveau.version;
  }
  entete.date = nouveau.date;
  entete.variante = nouveau.variante;
  entete.commentaire = nouveau.commentaire;
}

template <class E>
void remplacer(std::vector<E>& importe, std::vector<E>& modele) {
  if (!importe.empty()) {
    modele = std::move(importe);
  }
}

template <class E>
void remplacerUnAUn(std::vector<E>& importe, std::vector<E>& modele) {
  for (const E& nouveau : importe) {
    std::erase_if(modele, [&](const E& ancien) { return ancien.numero == nouveau.numero; });
  }
  std::move(importe.begin(), importe.end(), std::back_inserter(modele));
}

// A list that no modifier of the import has is that of the sources.
template <class T>
void garderListe(std::vector<ModificateurActe>& importes, const std::vector<ModificateurActe>& sources,
                 std::vector<T> ModificateurActe::*liste) {
  const bool absente = std::all_of(importes.begin(), importes.end(),
                                   [&](const ModificateurActe& m) { return (m.*liste).empty(); });
  for (const ModificateurActe& source : sources) {
    ModificateurActe* const importe = trouver(importes, source.code);
    if (absente && importe != nullptr) {
      importe->*liste = source.*liste;
    }
  }
}

void remplacerModificateurs(std::vector<ModificateurActe>& importes, std::vector<ModificateurActe>& modele) {
  garderListe(importes, modele, &ModificateurActe::ages);
  garderListe(importes, modele, &ModificateurActe::compatibles);
  garderListe(importes, modele, &ModificateurActe::coherences);
  garderListe(importes, modele, &ModificateurActe::oc);
  for (ModificateurActe& modificateur : importes) {
    std::erase_if(modificateur.compatibles, [&](const Compatibilite& compatible) {
      return trouver(importes, compatible.code) == nullptr;
    });
  }
  remplacer(importes, modele);
}

// Obligations of the sources whose specialities the import does not know.
void retirerObligationsOrphelines(Modele& modele, BilanImport& bilan) {
  std::set<CodeFixe<2>> connues;
  for (const SpecialitePS& specialite : modele.specialites) {
    connues.insert(specialite.code);
  }
  for (Obligation& obligation : modele.obligations) {
    std::erase_if(obligation.specialites, [&](const SpecialiteObligee& specialite) {
      const bool orpheline = !connues.contains(specialite.code);
      if (orpheline) {
        bilan.ajuster("obligation de codage du complément retirée, sa spécialité étant inconnue",
                      specialite.lieu,
                      phrase(obligation.prestation.vue(), ", spécialité ", specialite.code.vue()));
      }
      return orpheline;
    });
  }
}

}  // namespace

void fusionnerListing(Modele&& liste, Modele& modele, BilanImport& bilan) {
  fusionnerEntete(liste, modele);
  modele.menus = std::move(liste.menus);
  fusionnerActes(liste.actes, modele.actes,
                 [&](Acte& acte, Acte& source) { completerActe(acte, source, bilan); });
  fusionnerRegroupements(liste.regroupements, modele.regroupements);
}

void fusionnerBase(Modele&& base, Modele& modele, BilanImport& bilan) {
  fusionnerEntete(base, modele);
  fusionnerActes(base.actes, modele.actes, [](const Acte&, const Acte&) {});
  remplacer(base.menus, modele.menus);
  if (!base.modificateurs.empty()) {
    remplacerModificateurs(base.modificateurs, modele.modificateurs);
  }
  const bool autresSpecialites = !base.specialites.empty() && base.obligations.empty();
  remplacer(base.specialites, modele.specialites);
  remplacer(base.associationsNonPrevues, modele.associationsNonPrevues);
  remplacer(base.reglesTarifaires, modele.reglesTarifaires);
  remplacer(base.seuils, modele.seuils);
  remplacer(base.caisses, modele.caisses);
  remplacer(base.regroupements, modele.regroupements);
  remplacer(base.reductionsNonConventionne, modele.reductionsNonConventionne);
  remplacer(base.nombresModificateursTarifants, modele.nombresModificateursTarifants);
  remplacer(base.obligations, modele.obligations);
  remplacerUnAUn(base.tablesDeCodes, modele.tablesDeCodes);
  remplacerUnAUn(base.concepts, modele.concepts);
  if (autresSpecialites) {
    retirerObligationsOrphelines(modele, bilan);
  }
}

}  // namespace noxlux::compilateur
