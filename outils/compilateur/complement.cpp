#include "compilateur/complement.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>

#include "compilateur/ecriture_valeurs.h"
#include "compilateur/valeurs_listing.h"

namespace noxlux::compilateur {

namespace {

constexpr DateBrute DEBUT_DE_LA_CCAM{2005, 3, 25};
constexpr unsigned DERNIERE_COLONNE = 2;  // grids 1 and 2 are the columns of the listing
constexpr std::string_view TOUS = "*";

template <class E, class K, class L, class M>
E* trouver(std::vector<E>& elements, M L::*membre, const K& cle) {
  const auto trouve =
      std::find_if(elements.begin(), elements.end(), [&](const E& e) { return e.*membre == cle; });
  return trouve == elements.end() ? nullptr : &*trouve;
}

// --- Facts of acts ---

// The facts of one act or of one of its parts, the most particular first.
struct Fait {
  const ComplementActe* dit;
  Origine origine;
};
using Faits = std::vector<Fait>;

bool estRenseigne(char valeur) { return valeur != ' '; }
bool estRenseigne(const DateBrute& date) { return !date.estNulle(); }
bool estRenseigne(double valeur) { return valeur != 0.0; }
bool estRenseigne(std::uint16_t valeur) { return valeur != 0; }
bool estRenseigne(const std::array<double, 4>& valeurs) { return valeurs[0] != 0.0; }
template <std::size_t N>
bool estRenseigne(const CodeFixe<N>& code) {
  return !code.vue().empty();
}
template <class T>
bool estRenseigne(const std::vector<T>& liste) {
  return !liste.empty();
}

class CompletionActes {
 public:
  CompletionActes(const Modele& sources, const DateBrute& premiere, Modele& liste, BilanImport& bilan)
      : liste_(liste), premiere_(premiere), bilan_(bilan) {
    for (const ComplementActe& dit : sources.complementsActes) {
      parCle_[dit.cle].push_back(&dit);
    }
    for (const Denture& denture : sources.dentures) {
      denture_.insert(denture_.end(), denture.codes.begin(), denture.codes.end());
    }
    for (Acte& acte : liste.actes) {
      actes_.emplace(acte.code, &acte);
    }
  }

  void completer(const Modele& sources) {
    for (Acte& acte : liste_.actes) {
      completer(acte);
    }
    for (const ComplementActe& dit : sources.complementsActes) {
      if (!employes_.contains(&dit)) {
        bilan_.prevenir("clé du complément qui ne correspond à rien", dit.lieu,
                        phrase(dit.cle, dit.activite == ' ' ? "" : " ", enTexte(dit.activite)));
      }
    }
  }

 private:
  void ajouter(Faits& faits, std::string_view cle, Origine origine, char activite, char phase) {
    const auto trouves = parCle_.find(cle);
    if (trouves == parCle_.end()) {
      return;
    }
    for (const ComplementActe* dit : trouves->second) {
      const bool actif = dit->activite == ' ' || dit->activite == activite;
      if (actif && (dit->phase == ' ' || dit->phase == phase)) {
        employes_.insert(dit);
        faits.push_back({dit, origine});
      }
    }
  }

  // The chapters from the most particular: "19.02.04", "19.02", "19".
  Faits faitsDe(const Acte& acte, const CodeFixe<3>& regroupement, char activite, char phase) {
    Faits faits;
    ajouter(faits, acte.code.vue(), DU_COMPLEMENT, activite, phase);
    for (std::string chapitre = numeroChapitre(acte.menu); !chapitre.empty();
         chapitre.resize(chapitre.size() < 3 ? 0 : chapitre.size() - 3)) {
      ajouter(faits, chapitre, PAR_DEFAUT, activite, phase);
    }
    if (!regroupement.vue().empty()) {
      ajouter(faits, regroupement.vue(), PAR_DEFAUT, activite, phase);
    }
    ajouter(faits, TOUS, PAR_DEFAUT, activite, phase);
    return faits;
  }

  // The most particular value told. `sujet` is what the report calls it; null: not counted.
  template <class T>
  bool donner(const Faits& faits, T ComplementActe::*membre, T& cible, const char* sujet) {
    const auto fait =
        std::find_if(faits.begin(), faits.end(), [&](const Fait& f) { return estRenseigne(f.dit->*membre); });
    const bool dit = fait != faits.end();
    if (dit) {
      cible = fait->dit->*membre;
    }
    if (sujet != nullptr) {
      bilan_.fonder(sujet, dit ? fait->origine : ABSENT);
    }
    return dit;
  }

  void reunir(const Faits& faits, const Acte& acte, std::vector<CodeActe> ComplementActe::*membre,
              std::vector<CodeActe>& cible) {
    for (const Fait& fait : faits) {
      for (const CodeActe& code : fait.dit->*membre) {
        if (!actes_.contains(code)) {
          if (signales_.insert({fait.dit, code}).second) {
            bilan_.prevenir("acte nommé par le complément et absent de la liste", fait.dit->lieu,
                            enTexte(code));
          }
        } else if (code != acte.code && std::find(cible.begin(), cible.end(), code) == cible.end()) {
          cible.push_back(code);
        }
      }
    }
  }

  void completer(Acte& acte) {
    const Activite& premiere = acte.activites.front();
    const CodeFixe<3> regroupement = premiere.historiques.back().regroupement;
    const Faits faits = faitsDe(acte, regroupement, premiere.code, premiere.phases.front().code);
    donner(faits, &ComplementActe::type, acte.type, "types d'acte");
    donner(faits, &ComplementActe::sexe, acte.sexe, nullptr);
    if (acte.creation == premiere_) {
      donner(faits, &ComplementActe::creation, acte.creation, "dates de création");
    }
    donner(faits, &ComplementActe::fraisDeplacement, acte.fraisDeplacement, "frais de déplacement");
    donner(faits, &ComplementActe::naturesAssurance, acte.naturesAssurance, "natures d'assurance");
    std::vector<CodeActe> procedures;
    reunir(faits, acte, &ComplementActe::procedures, procedures);
    for (HistoriqueActe& historique : acte.historiques) {
      historique.procedures = procedures;
    }
    std::vector<CodeActe> incompatibles;
    reunir(faits, acte, &ComplementActe::incompatibles, incompatibles);
    for (const CodeActe& autre : incompatibles) {
      opposer(acte, autre);
      opposer(*actes_.at(autre), acte.code);
    }
    for (Activite& activite : acte.activites) {
      completer(acte, activite);
    }
  }

  static void opposer(Acte& acte, const CodeActe& autre) {
    for (HistoriqueActe& historique : acte.historiques) {
      std::vector<CodeActe>& liste = historique.incompatibles;
      if (std::find(liste.begin(), liste.end(), autre) == liste.end()) {
        liste.push_back(autre);
      }
    }
  }

  void completer(const Acte& acte, Activite& activite) {
    for (HistoriqueActivite& historique : activite.historiques) {
      const bool courant = &historique == &activite.historiques.back();
      const Faits faits = faitsDe(acte, historique.regroupement, activite.code, activite.phases.front().code);
      donner(faits, &ComplementActe::categorieMedicale, historique.categorieMedicale,
             courant ? "catégories médicales" : nullptr);
      donner(faits, &ComplementActe::classesSpecialite, historique.classesSpecialite,
             courant ? "classes de spécialités des actes" : nullptr);
    }
    for (Phase& phase : activite.phases) {
      completer(faitsDe(acte, activite.historiques.back().regroupement, activite.code, phase.code), phase,
                activite.code);
    }
  }

  void completer(const Faits& faits, Phase& phase, char activite) {
    const bool dents = donner(faits, &ComplementActe::nombreDents, phase.nombreDents, nullptr);
    if (dents) {
      bilan_.fonder("nombres de dents", DU_COMPLEMENT);
    } else if (activite == '1' && estDentaire(faits)) {
      bilan_.fonder("nombres de dents", ABSENT);
    }
    std::vector<CodeFixe<2>> permises;
    if (donner(faits, &ComplementActe::dentsPermises, permises, nullptr)) {
      std::copy_if(denture_.begin(), denture_.end(), std::back_inserter(phase.dentsIncompatibles),
                   [&](const CodeFixe<2>& dent) {
                     return std::find(permises.begin(), permises.end(), dent) == permises.end();
                   });
    }
    donner(faits, &ComplementActe::ageMinimum, phase.ageMinimum, nullptr);
    donner(faits, &ComplementActe::ageMaximum, phase.ageMaximum, nullptr);
    std::array<double, 4> dom = phase.historiques.front().dom;
    const bool majore = donner(faits, &ComplementActe::dom, dom, nullptr);
    bilan_.fonder("majorations d'outre-mer", majore ? DU_COMPLEMENT : PAR_DEFAUT);
    double supplement = 0.0;
    donner(faits, &ComplementActe::supplement, supplement, nullptr);
    for (HistoriquePhase& historique : phase.historiques) {
      historique.dom = dom;
      historique.supplement = supplement;
    }
  }

  // Whether the complement puts the act among those that numbers of teeth are told of.
  bool estDentaire(const Faits& faits) const {
    return std::any_of(faits.begin(), faits.end(), [&](const Fait& fait) {
      const std::string_view categorie = fait.dit->categorieMedicale.vue();
      return std::find(std::begin(CATEGORIES_DENTAIRES), std::end(CATEGORIES_DENTAIRES), categorie) !=
             std::end(CATEGORIES_DENTAIRES);
    });
  }

  static constexpr std::string_view CATEGORIES_DENTAIRES[] = {"07", "08", "09"};

  Modele& liste_;
  DateBrute premiere_;
  BilanImport& bilan_;
  std::map<std::string, std::vector<const ComplementActe*>, std::less<>> parCle_;
  std::vector<CodeFixe<2>> denture_;
  std::map<CodeActe, Acte*> actes_;
  std::set<const ComplementActe*> employes_;
  std::set<std::pair<const ComplementActe*, CodeActe>> signales_;
};

// --- Values of modifiers ---

bool vautPour(const ValeurDeModificateur& valeur, unsigned grille) {
  return valeur.grilles.empty() ||
         std::find(valeur.grilles.begin(), valeur.grilles.end(), grille) != valeur.grilles.end();
}

bool memeValeur(const ForfaitEtTaux& gauche, const ValeurDeModificateur& droite) {
  return gauche.forfait == droite.forfait && gauche.coefficient == droite.coefficient;
}

std::string decrire(const ValeurDeModificateur& valeur) {
  char nombre[32];
  if (valeur.forfait != 0.0) {
    std::snprintf(nombre, sizeof nombre, "%.2f euros", valeur.forfait);
  } else {
    std::snprintf(nombre, sizeof nombre, "%+.1f %%", (valeur.coefficient - 1.0) * 100.0);
  }
  return phrase(std::string(1, valeur.code), " ", nombre, valeur.condition.empty() ? "" : " : ",
                versUtf8(valeur.condition));
}

ForfaitEtTaux tarif(const ValeurDeModificateur& valeur, const DateBrute& debut) {
  ForfaitEtTaux resultat;
  resultat.lieu = valeur.lieu;
  resultat.debut = valeur.debut.estNulle() ? debut : valeur.debut;
  resultat.fin = valeur.fin;
  resultat.forfait = valeur.forfait;
  resultat.coefficient = valeur.coefficient;
  return resultat;
}

// A new item of a list, of the place and the period of what tells it.
template <class E>
E& ajouterDurant(const ElementDate& dit, std::vector<E>& elements) {
  E& element = elements.emplace_back();
  element.lieu = dit.lieu;
  element.debut = dit.debut;
  element.fin = dit.fin;
  return element;
}

}  // namespace

void rassembler(Modele& modele, BilanImport& bilan) {
  for (const CompatibilitesDeModificateur& dite : modele.compatibilites) {
    ModificateurActe* const modificateur = trouver(modele.modificateurs, &ModificateurActe::code, dite.code);
    if (modificateur == nullptr) {
      bilan.prevenir("compatibilités d'un modificateur inconnu", dite.lieu, std::string(1, dite.code));
      continue;
    }
    for (const char autre : dite.avec) {
      ajouterDurant(dite, modificateur->compatibles).code = autre;
    }
  }
  for (const JourDeCaisses& dit : modele.joursFeries) {
    for (const CodeFixe<3>& code : dit.caisses) {
      Caisse* const caisse = trouver(modele.caisses, &Caisse::code, code);
      if (caisse == nullptr) {
        bilan.prevenir("jour férié d'une caisse inconnue", dit.lieu, enTexte(code));
        continue;
      }
      ajouterDurant(dit, caisse->jours).jour = dit.jour;
    }
  }
  modele.compatibilites.clear();
  modele.joursFeries.clear();
}

void completerActes(const Modele& sources, const DateBrute& premiere, Modele& liste, BilanImport& bilan) {
  CompletionActes(sources, premiere, liste, bilan).completer(sources);
}

void repartirModificateurs(const Modele& sources, Modele& liste) {
  std::map<char, const std::vector<char>*> activites;
  for (const ModificateurActe& modificateur : sources.modificateurs) {
    if (!modificateur.activites.empty()) {
      activites.emplace(modificateur.code, &modificateur.activites);
    }
  }
  for (Acte& acte : liste.actes) {
    for (Activite& activite : acte.activites) {
      const auto interdite = [&](char code) {
        const auto permises = activites.find(code);
        return permises != activites.end() && std::find(permises->second->begin(), permises->second->end(),
                                                        activite.code) == permises->second->end();
      };
      for (HistoriqueActivite& historique : activite.historiques) {
        std::erase_if(historique.modificateurs, interdite);
      }
    }
  }
}

void choisirValeurs(unsigned grille, const Modele& liste, Modele& modele, BilanImport& bilan) {
  for (const ModificateurActe& imprime : liste.modificateurs) {
    if (trouver(modele.modificateurs, &ModificateurActe::code, imprime.code) == nullptr) {
      modele.modificateurs.push_back(imprime);
      modele.modificateurs.back().valeurs.clear();
    }
  }
  for (ModificateurActe& modificateur : modele.modificateurs) {
    const auto duCode = [&](const auto& v) { return v.code == modificateur.code; };
    const bool dites =
        std::any_of(modele.valeursModificateurs.begin(), modele.valeursModificateurs.end(), duCode);
    if (modificateur.valeurs.empty()) {
      for (const ValeurDeModificateur& valeur : modele.valeursModificateurs) {
        if (duCode(valeur) && vautPour(valeur, grille)) {
          modificateur.valeurs.push_back(tarif(valeur, DEBUT_DE_LA_CCAM));
        }
      }
    }
    const bool duComplement = !modificateur.valeurs.empty();
    const auto imprime = std::find_if(liste.modificateurs.begin(), liste.modificateurs.end(), duCode);
    if (!duComplement && imprime != liste.modificateurs.end() && (!dites || grille <= DERNIERE_COLONNE)) {
      modificateur.valeurs = imprime->valeurs;
    }
    bilan.fonder("valeurs des modificateurs", duComplement                   ? DU_COMPLEMENT
                                              : modificateur.valeurs.empty() ? ABSENT
                                                                             : DE_L_IMPORT);
    for (const ValeurDeModificateur& imprimee : liste.valeursModificateurs) {
      const bool retenue = std::any_of(modificateur.valeurs.begin(), modificateur.valeurs.end(),
                                       [&](const ForfaitEtTaux& v) { return memeValeur(v, imprimee); });
      if (duCode(imprimee) && !retenue) {
        bilan.prevenir("valeur de modificateur imprimée et non retenue", imprimee.lieu, decrire(imprimee));
      }
    }
  }
}

}  // namespace noxlux::compilateur
