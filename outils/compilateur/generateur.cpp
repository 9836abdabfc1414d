#include "compilateur/generateur.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <map>
#include <set>

#include "basics/systeme.h"
#include "compilateur/cles_toml.h"
#include "compilateur/mots_cles.h"
#include "compilateur/periodes.h"
#include "types/date.h"

namespace noxlux::compilateur {

namespace {

constexpr std::uint16_t AUCUNE_POSITION = 65535;
constexpr std::uint16_t NOMBRE_CONCEPTS = 20;

// What a key compares by.
std::string_view comparable(const TexteVariable& valeur) { return valeur.vue(); }
template <class T>
const T& comparable(const T& valeur) {
  return valeur;
}

template <class E, class F>
std::vector<const E*> trier(const std::vector<E>& elements, F&& precede) {
  std::vector<const E*> ordre;
  ordre.reserve(elements.size());
  for (const E& element : elements) {
    ordre.push_back(&element);
  }
  std::stable_sort(ordre.begin(), ordre.end(), [&](const E* g, const E* d) { return precede(*g, *d); });
  return ordre;
}

// The rank of the key "debut" or "effet" among the first two; 2 when neither is one.
template <class E>
constexpr std::size_t rangDeLaDate() {
  const auto estDate = [](std::string_view nom) { return nom == "debut" || nom == "effet"; };
  std::size_t trouve = 2;
  std::size_t rang = 0;
  const auto comparer = [&](const auto& cle) {
    trouve = trouve == 2 && rang < 2 && estDate(cle.nom) ? rang : trouve;
    ++rang;
  };
  std::apply([&](const auto&... cle) { (comparer(cle), ...); }, CLES<E>);
  return trouve;
}

// Items as lines lie: in ascending order of their first key, then of the start of validity that follows it.
// Those that begin with it lie the newest first: the library takes the first one for the current one, which
// local changes follow.
template <class E>
std::vector<const E*> ordonner(const std::vector<E>& elements) {
  constexpr auto PREMIERE = std::get<0>(CLES<E>).membre;
  if constexpr (rangDeLaDate<E>() == 0) {
    return trier(elements, [](const E& g, const E& d) { return d.*PREMIERE < g.*PREMIERE; });
  } else if constexpr (rangDeLaDate<E>() == 1) {
    constexpr auto SECONDE = std::get<1>(CLES<E>).membre;
    return trier(elements, [](const E& g, const E& d) {
      return std::tie(g.*PREMIERE, g.*SECONDE) < std::tie(d.*PREMIERE, d.*SECONDE);
    });
  } else {
    return trier(elements,
                 [](const E& g, const E& d) { return comparable(g.*PREMIERE) < comparable(d.*PREMIERE); });
  }
}

TexteVariable texte(std::string_view valeur) { return TexteVariable(valeur); }

// What an item holds in a form of its own, as its line or its level holds it.
template <class T>
void traduire(T& cible, const T& valeur) {
  cible = valeur;
}
void traduire(TexteVariable& cible, const std::string& valeur) { cible = texte(valeur); }
void traduire(char& cible, bool valeur) { cible = valeur ? 'O' : 'N'; }
template <class T>
void traduire(ListeCompacte<T>& cible, const std::vector<T>& valeurs) {
  cible = ListeCompacte<T>(std::span<const T>(valeurs));
}

template <class E>
typename E::Ligne niveauDe(const E& element);

void traduire(ListeCompacte<Association>& cible, const std::vector<AssociationActe>& elements) {
  std::vector<Association> associations;
  std::transform(elements.begin(), elements.end(), std::back_inserter(associations),
                 niveauDe<AssociationActe>);
  traduire(cible, associations);
}
// Histories and levels below alike.
template <class N, class E>
requires std::is_same_v<typename N::value_type, typename E::Ligne>
void traduire(N& niveaux, const std::vector<E>& elements) {
  for (const E* element : ordonner(elements)) {
    niveaux.push_back(niveauDe(*element));
  }
}

template <class E>
typename E::Ligne niveauDe(const E& element) {
  typename E::Ligne niveau;
  std::apply([&](const auto&... f) { (traduire(niveau.*(f.CHAMP), element.*(f.membre)), ...); }, CLES<E>);
  return niveau;
}

// Order of the families in the descriptor table, and the codes that mark them.
struct Famille {
  std::string_view nom;
  char code;
};
constexpr Famille FAMILLES[] = {{"consultation", '1'}, {"modification", '2'}, {"annulation", '3'},
                                {"controle", '4'},     {"regle", '5'},        {"controle_complet", '6'}};

class Generateur {
 public:
  Generateur(const Modele& modele, const Etiquettes& etiquettes, Rapport& rapport)
      : modele_(modele), etiquettes_(etiquettes), rapport_(rapport) {}

  TablesReference generer() {
    genererIndex();
    ajouter(modele_.menus);
    ajouter(modele_.associationsNonPrevues);
    ajouter(modele_.reglesTarifaires);
    ajouter(modele_.specialites);
    genererClasses();
    ajouter(modele_.seuils);
    ajouter(modele_.caisses);
    ajouter(modele_.regroupements);
    ajouter(modele_.reductionsNonConventionne);
    ajouter(modele_.obligations);
    ajouter(modele_.nombresModificateursTarifants);
    ajouter(modele_.nombresModificateursTransmissibles);
    ajouter(modele_.nombresActesAssociation);
    ajouter(modele_.modificateurs);
    genererCodes();
    genererConcepts();
    genererRegles();
    ajouter(modele_.prioritesForcage);
    genererExceptions();
    ajouter(modele_.services);
    genererGroupes();
    genererSuperGroupes();
    genererMotsCles(modele_, tables_, rapport_);
    return std::move(tables_);
  }

 private:
  template <class L>
  std::vector<L>& lignes() {
    return tables_.template lignes<L>();
  }

  // The run of the lines that `f` adds to the table that the run points into.
  template <class P, class F>
  void remplir(P& plage, Lieu lieu, F&& f) {
    auto& cible = lignes<LigneDe<P::CIBLE>>();
    const std::size_t premiere = cible.size();
    f(cible);
    const std::size_t nombre = cible.size() - premiere;
    using Position = decltype(plage.premiere);
    if (premiere > std::numeric_limits<Position>::max() ||
        nombre > std::numeric_limits<std::uint16_t>::max()) {
      if (debordements_.insert(P::CIBLE).second) {
        rapport_.signaler(lieu, phrase("la table ", nomClasseLigne(P::CIBLE),
                                       " déborde à partir d'ici : une plage de lignes tient sur 16 bits"));
      }
      return;
    }
    if (nombre != 0) {
      plage.premiere = static_cast<Position>(premiere);
      plage.nombre = static_cast<std::uint16_t>(nombre);
    }
  }

  // The line of an item, after the lines that its runs point to.
  template <class E>
  typename E::Ligne ligneDe(const E& element) {
    typename E::Ligne ligne = element;
    const auto remplacer = [&](const auto& cle) {
      if constexpr (requires { cle.CHAMP; }) {
        remplirChamp(ligne.*(cle.CHAMP), element.*(cle.membre), element.lieu);
      }
    };
    std::apply([&](const auto&... cle) { (remplacer(cle), ...); }, CLES<E>);
    return ligne;
  }

  template <class T, class V>
  void remplirChamp(T& champ, const V& valeur, Lieu /*lieu*/) {
    traduire(champ, valeur);
  }
  template <unsigned CIBLE, class P, class E>
  void remplirChamp(Plage<CIBLE, P>& plage, const std::vector<E>& elements, Lieu lieu) {
    remplir(plage, lieu, [&](auto& cible) {
      for (const E* element : ordonner(elements)) {
        cible.push_back(ligneDe(*element));
      }
    });
  }
  template <unsigned CIBLE, class P>
  void remplirChamp(Plage<CIBLE, P>& plage, const std::vector<std::string>& textes, Lieu lieu) {
    remplir(plage, lieu, [&](auto& cible) {
      for (const std::string& valeur : textes) {
        cible.push_back({texte(valeur)});
      }
    });
  }
  // Rules are named by identifier in the model, by reference where the library compares references.
  template <unsigned CIBLE, class P>
  void remplirChamp(Plage<CIBLE, P>& plage, const std::vector<CodeFixe<9>>& regles, Lieu lieu) {
    remplir(plage, lieu, [&](auto& cible) {
      for (const CodeFixe<9>& regle : regles) {
        cible.push_back({references_.at(regle)});
      }
    });
  }
  // Fields of a zone keep the order of their sources.
  template <unsigned CIBLE, class P>
  void remplirChamp(Plage<CIBLE, P>& plage, const std::vector<ChampZone>& champs, Lieu lieu) {
    remplir(plage, lieu, [&](auto& cible) {
      for (const ChampZone& champ : champs) {
        cible.push_back(ligneDe(champ));
      }
    });
  }

  template <class E>
  void ajouter(const std::vector<E>& elements) {
    for (const E* element : ordonner(elements)) {
      lignes<typename E::Ligne>().push_back(ligneDe(*element));
    }
  }

  void genererIndex() {
    for (const Acte* acte : ordonner(modele_.actes)) {
      lignes<Index>().push_back({acte->code, 0});
    }
  }

  // The members of each class over time, from the class of each speciality over time.
  void genererClasses() {
    struct Membre : ElementDate {
      CodeFixe<2> specialite;
    };
    std::map<CodeFixe<2>, std::vector<Membre>> classes;
    for (const SpecialitePS* specialite : ordonner(modele_.specialites)) {
      for (const ClasseDate& historique : specialite->historiques) {
        classes[historique.classe].push_back(
            {{{historique.lieu}, historique.debut, historique.fin}, specialite->code});
      }
    }
    for (const auto& classe : classes) {
      const std::vector<Membre>& membres = classe.second;
      ClasseSpecialite ligne;
      ligne.code = classe.first;
      remplir(ligne.historiques, membres.front().lieu, [&](auto& cible) {
        for (const ElementDate& intervalle : intervalles(membres)) {
          HistoriqueClasseSpecialite h;
          h.debut = intervalle.debut;
          h.fin = intervalle.fin;
          remplir(h.specialites, membres.front().lieu, [&](auto& specialites) {
            for (const Membre& membre : membres) {
              if (couvre(membre, intervalle.debut)) {
                specialites.push_back({membre.specialite});
              }
            }
          });
          cible.push_back(h);
        }
      });
      lignes<ClasseSpecialite>().push_back(ligne);
    }
  }

  void genererCodes() {
    for (std::uint16_t numero = 1; numero <= etiquettes_.derniereTable(); ++numero) {
      Codes ligne;
      remplir(ligne.valeurs, {}, [&](auto& cible) {
        for (const auto& [code, etiquette] : etiquettes_.table(numero)) {
          cible.push_back({texte(code), texte(etiquette.libelle)});
        }
      });
      lignes<Codes>().push_back(ligne);
    }
  }

  void genererConcepts() {
    std::uint16_t dernier = NOMBRE_CONCEPTS;
    std::map<std::uint16_t, const Concept*> concepts;
    for (const Concept& concept_ : modele_.concepts) {
      concepts.emplace(concept_.numero, &concept_);
      dernier = std::max(dernier, concept_.numero);
    }
    for (std::uint16_t numero = 1; numero <= dernier; ++numero) {
      const auto trouve = concepts.find(numero);
      lignes<ConceptCCAM>().push_back(trouve == concepts.end() ? ConceptCCAM{} : ligneDe(*trouve->second));
    }
  }

  void genererRegles() {
    std::map<CodeFixe<10>, std::set<CodeFixe<10>>> nonVerifiables;
    for (const Regle& regle : modele_.regles) {
      references_.emplace(regle.identifiant, regle.reference);
    }
    for (const Regle* regle : ordonner(modele_.regles)) {
      lignes<InformationRegle>().push_back(*regle);
      lignes<ReferenceCdC>().push_back({CodeFixe<10>(regle->identifiant.vue()), regle->reference});
      for (const CodeFixe<9>& autre : regle->nonVerifiables) {
        nonVerifiables[regle->reference].insert(references_.at(autre));
      }
    }
    for (const NonVerifiable& groupe : modele_.nonVerifiables) {
      for (const CodeFixe<9>& apres : groupe.apres) {
        for (const CodeFixe<9>& regle : groupe.regles) {
          nonVerifiables[references_.at(apres)].insert(references_.at(regle));
        }
      }
    }
    std::set<CodeFixe<10>> references;
    for (const Regle& regle : modele_.regles) {
      references.insert(regle.reference);
    }
    for (const CodeFixe<10>& reference : references) {
      ReferenceRegleEnErreur ligne;
      ligne.reference = reference;
      remplir(ligne.regles, {}, [&](auto& cible) {
        for (const CodeFixe<10>& autre : nonVerifiables[reference]) {
          cible.push_back({autre});
        }
      });
      lignes<ReferenceRegleEnErreur>().push_back(ligne);
    }
  }

  void genererExceptions() {
    std::map<char, std::map<char, char>> exceptions;
    for (const ExceptionForcage& e : modele_.exceptionsForcage) {
      exceptions[e.indicateur][e.indicateurPresent] = e.indicateurRetourne;
    }
    for (const auto& [indicateur, valeurs] : exceptions) {
      ExceptionPrioriteIndicateur ligne;
      ligne.indicateur = indicateur;
      remplir(ligne.valeurs, {}, [&, &paires = valeurs](auto& cible) {
        for (const auto& [present, resultat] : paires) {
          cible.push_back({present, resultat});
        }
      });
      lignes<ExceptionPrioriteIndicateur>().push_back(ligne);
    }
  }

  void genererGroupes() {
    for (const GroupeZone& groupe : modele_.groupes) {
      positionsGroupes_.emplace(groupe.numero, static_cast<std::uint16_t>(positionsGroupes_.size()));
      lignes<DescriptifGroupe>().push_back(ligneDe(groupe));
    }
  }

  // The functions by family and name, then the nested super-groups.
  void genererSuperGroupes() {
    std::vector<std::pair<const FonctionZone*, char>> racines;
    for (const Famille& famille : FAMILLES) {
      const std::size_t premiere = racines.size();
      for (const FonctionZone& fonction : modele_.fonctions) {
        if (fonction.famille == famille.nom) {
          racines.emplace_back(&fonction, famille.code);
        }
      }
      std::sort(racines.begin() + static_cast<std::ptrdiff_t>(premiere), racines.end(),
                [](const auto& gauche, const auto& droite) {
                  return Systeme::comparerIdentifiant(gauche.first->nom.c_str(), droite.first->nom.c_str()) <
                         0;
                });
    }
    for (const SuperGroupeZone& superGroupe : modele_.superGroupes) {
      const std::size_t position = racines.size() + positionsSuperGroupes_.size();
      positionsSuperGroupes_.emplace(superGroupe.nom, static_cast<std::uint16_t>(position));
    }
    for (const auto& [fonction, code] : racines) {
      ajouterSuperGroupe(fonction->numero, fonction->nom, code, fonction->fils, fonction->lieu);
    }
    for (const SuperGroupeZone& superGroupe : modele_.superGroupes) {
      ajouterSuperGroupe(0, superGroupe.nom, ' ', superGroupe.fils, superGroupe.lieu);
    }
  }

  void ajouterSuperGroupe(std::uint16_t numero, const std::string& nom, char code,
                          const std::vector<FilsZone>& fils, Lieu lieu) {
    DescriptifSuperGroupe ligne;
    ligne.numero = numero;
    ligne.nom = texte(nom);
    ligne.codeFonction = code;
    remplir(ligne.fils, lieu, [&](auto& cible) {
      for (const FilsZone& f : fils) {
        const bool estGroupe = f.superGroupe.empty();
        cible.push_back({estGroupe ? positionsGroupes_.at(f.groupe) : AUCUNE_POSITION,
                         estGroupe ? AUCUNE_POSITION : positionsSuperGroupes_.at(f.superGroupe), f.min,
                         f.max});
      }
    });
    lignes<DescriptifSuperGroupe>().push_back(std::move(ligne));
  }

  const Modele& modele_;
  const Etiquettes& etiquettes_;
  Rapport& rapport_;
  TablesReference tables_;
  std::set<unsigned> debordements_;
  std::map<CodeFixe<9>, CodeFixe<10>> references_;
  std::map<std::uint16_t, std::uint16_t> positionsGroupes_;
  std::map<std::string, std::uint16_t> positionsSuperGroupes_;
};

}  // namespace

TablesReference genererTables(const Modele& modele, const Etiquettes& etiquettes, Rapport& rapport) {
  return Generateur(modele, etiquettes, rapport).generer();
}

NiveauActe genererActe(const Acte& acte) { return niveauDe(acte); }

EnteteReferentiel genererEntete(const Entete& entete) {
  EnteteReferentiel resultat;
  resultat.version = entete.version;
  resultat.versionBaseCCAM = entete.versionBaseCCAM;
  resultat.versionMinLogicielle = entete.versionMinimum;
  resultat.numeroRevision = entete.revision;
  resultat.variante = entete.variante;
  resultat.commentaire = entete.commentaire;
  return resultat;
}

}  // namespace noxlux::compilateur
