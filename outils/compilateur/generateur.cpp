#include "compilateur/generateur.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <map>
#include <set>

#include "basics/systeme.h"
#include "compilateur/mots_cles.h"
#include "compilateur/periodes.h"
#include "types/date.h"

namespace noxlux::compilateur {

namespace {

constexpr std::uint16_t AUCUNE_POSITION = 65535;
constexpr std::uint16_t NOMBRE_CONCEPTS = 20;

// The elements in ascending order of a key; equal keys keep the order of the sources.
template <class E, class C>
std::vector<const E*> trier(const std::vector<E>& elements, C cle) {
  std::vector<const E*> ordre;
  ordre.reserve(elements.size());
  for (const E& element : elements) {
    ordre.push_back(&element);
  }
  std::stable_sort(ordre.begin(), ordre.end(), [&](const E* gauche, const E* droite) {
    return std::invoke(cle, *gauche) < std::invoke(cle, *droite);
  });
  return ordre;
}

// Dated lines, the newest first: the library takes the first for the current one, which local changes follow.
template <class E>
std::vector<const E*> parDate(const std::vector<E>& elements) {
  std::vector<const E*> ordre = trier(elements, [](const E& element) { return element.debut; });
  std::reverse(ordre.begin(), ordre.end());
  return ordre;
}

TexteVariable texte(std::string_view valeur) { return TexteVariable(valeur); }

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
    genererMenus();
    genererCoefficients<AssociationNonPrevue>(modele_.associationsNonPrevues);
    genererCoefficients<RegleTarifaire>(modele_.reglesTarifaires);
    genererSpecialites();
    genererClasses();
    genererSeuils();
    genererCaisses();
    genererRegroupements();
    genererReductions();
    genererObligations();
    genererNombres<NombreModificateurTarifant>(modele_.nombresModificateursTarifants);
    genererNombres<NombreModificateurTransmissible>(modele_.nombresModificateursTransmissibles);
    genererNombres<NombreActeAssociation>(modele_.nombresActesAssociation);
    genererModificateurs();
    genererCodes();
    genererConcepts();
    genererRegles();
    genererForcages();
    genererServices();
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

  void genererIndex() {
    for (const Acte* acte : trier(modele_.actes, &Acte::code)) {
      lignes<Index>().push_back({acte->code, 0});
    }
  }

  void genererMenus() {
    for (const Menu* menu : trier(modele_.menus, &Menu::code)) {
      lignes<Arborescence>().push_back({menu->code, texte(menu->libelle), menu->pere, texte(menu->notes)});
    }
  }

  template <class L>
  void genererCoefficients(const std::vector<CodeACoefficients>& codes) {
    for (const CodeACoefficients* code : trier(codes, &CodeACoefficients::code)) {
      L ligne;
      ligne.code = code->code;
      remplir(ligne.historiques, code->lieu, [&](auto& cible) {
        for (const CoefficientDate* h : parDate(code->historiques)) {
          cible.push_back({h->debut, h->fin, h->coefficient});
        }
      });
      lignes<L>().push_back(ligne);
    }
  }

  void genererSpecialites() {
    for (const SpecialitePS* specialite : trier(modele_.specialites, &SpecialitePS::code)) {
      Specialite ligne;
      ligne.code = specialite->code;
      remplir(ligne.historiques, specialite->lieu, [&](auto& cible) {
        for (const ClasseDate* h : parDate(specialite->historiques)) {
          cible.push_back({h->debut, h->fin, h->classe});
        }
      });
      lignes<Specialite>().push_back(ligne);
    }
  }

  // The members of each class over time, from the class of each speciality over time.
  void genererClasses() {
    struct Membre : ElementDate {
      CodeFixe<2> specialite;
    };
    std::map<CodeFixe<2>, std::vector<Membre>> classes;
    for (const SpecialitePS* specialite : trier(modele_.specialites, &SpecialitePS::code)) {
      for (const ClasseDate& historique : specialite->historiques) {
        classes[historique.classe].push_back({historique, specialite->code});
      }
    }
    for (const auto& classe : classes) {
      const std::vector<Membre>& membres = classe.second;
      ClasseSpecialite ligne;
      ligne.code = classe.first;
      remplir(ligne.historiques, membres.front().lieu, [&](auto& cible) {
        for (const ElementDate& intervalle : intervalles(membres)) {
          HistoriqueClasseSpecialite h;
          h.dateDebut = intervalle.debut;
          h.dateFin = intervalle.fin;
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

  void genererSeuils() {
    for (const SeuilDate* s : parDate(modele_.seuils)) {
      lignes<Seuil>().push_back({s->debut, s->fin, s->metropole, s->antilles, s->reunion, s->guyane});
    }
  }

  void genererCaisses() {
    for (const Caisse* caisse : trier(modele_.caisses, &Caisse::code)) {
      JourFerieCaisse ligne;
      ligne.caisse = caisse->code;
      remplir(ligne.jours, caisse->lieu, [&](auto& cible) {
        for (const JourFerie* jour : trier(caisse->jours, &JourFerie::jour)) {
          cible.push_back({jour->jour, jour->type, jour->debut, jour->fin});
        }
      });
      lignes<JourFerieCaisse>().push_back(ligne);
    }
  }

  void genererRegroupements() {
    const auto cle = [](const Regroupement& r) { return std::pair(r.code, r.debut); };
    for (const Regroupement* r : trier(modele_.regroupements, cle)) {
      lignes<CodeRegroupement>().push_back({r->code, r->debut, r->fin});
    }
  }

  void genererReductions() {
    for (const ForfaitEtTaux* r : parDate(modele_.reductionsNonConventionne)) {
      lignes<ReductionNonConventionne>().push_back({r->debut, r->fin, r->forfait, r->coefficient});
    }
  }

  void genererObligations() {
    for (const Obligation* obligation : trier(modele_.obligations, &Obligation::prestation)) {
      ObligationCodage ligne;
      ligne.prestation = obligation->prestation;
      remplir(ligne.specialites, obligation->lieu, [&](auto& cible) {
        for (const SpecialiteObligee* s : trier(obligation->specialites, &SpecialiteObligee::code)) {
          cible.push_back({s->code, s->date});
        }
      });
      lignes<ObligationCodage>().push_back(ligne);
    }
  }

  template <class L>
  void genererNombres(const std::vector<NombreDate>& nombres) {
    for (const NombreDate* n : parDate(nombres)) {
      lignes<L>().push_back({n->debut, n->fin, n->nombre});
    }
  }

  void genererModificateurs() {
    for (const ModificateurActe* modificateur : trier(modele_.modificateurs, &ModificateurActe::code)) {
      Modificateur ligne;
      ligne.code = modificateur->code;
      remplir(ligne.ages, modificateur->lieu, [&](auto& cible) {
        for (const AgeModificateur* a : parDate(modificateur->ages)) {
          cible.push_back({a->debut, a->fin, a->uniteMinimum, a->minimum, a->uniteMaximum, a->maximum});
        }
      });
      remplir(ligne.compatibles, modificateur->lieu, [&](auto& cible) {
        const auto cle = [](const CodeModificateurDate& c) { return std::pair(c.code, c.debut); };
        for (const CodeModificateurDate* c : trier(modificateur->compatibles, cle)) {
          cible.push_back({c->code, c->debut, c->fin});
        }
      });
      remplir(ligne.coherences, modificateur->lieu, [&](auto& cible) {
        for (const CoherenceModificateur* c : parDate(modificateur->coherences)) {
          cible.push_back({c->debut, c->fin, c->controle ? 'O' : 'N', c->presenceMultiple ? 'O' : 'N'});
        }
      });
      remplir(ligne.valeurs, modificateur->lieu, [&](auto& cible) {
        for (const ForfaitEtTaux* v : parDate(modificateur->valeurs)) {
          cible.push_back({v->debut, v->fin, v->forfait, v->coefficient});
        }
      });
      remplir(ligne.modificateursOC, modificateur->lieu, [&](auto& cible) {
        for (const CodeModificateurDate* c : parDate(modificateur->oc)) {
          cible.push_back({c->debut, c->fin, c->code});
        }
      });
      lignes<Modificateur>().push_back(ligne);
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
      ConceptCCAM ligne;
      const auto trouve = concepts.find(numero);
      if (trouve != concepts.end()) {
        remplir(ligne.historiques, trouve->second->lieu,
                [&](auto& cible) { genererHistoriquesConcept(*trouve->second, cible); });
      }
      lignes<ConceptCCAM>().push_back(ligne);
    }
  }

  void genererHistoriquesConcept(const Concept& concept_, std::vector<HistoriqueConceptCCAM>& cible) {
    for (const ValeursDate* historique : parDate(concept_.historiques)) {
      HistoriqueConceptCCAM h;
      h.dateDebut = historique->debut;
      h.dateFin = historique->fin;
      remplir(h.valeurs, historique->lieu, [&](auto& valeurs) {
        for (const std::string& valeur : historique->valeurs) {
          valeurs.push_back({texte(valeur)});
        }
      });
      cible.push_back(h);
    }
  }

  // Rules are named by identifier in the model, by reference where the library compares references.
  void genererRegles() {
    std::map<CodeFixe<10>, std::set<CodeFixe<10>>> nonVerifiables;
    for (const Regle& regle : modele_.regles) {
      references_.emplace(regle.identifiant, regle.reference);
    }
    for (const Regle* regle : trier(modele_.regles, &Regle::identifiant)) {
      lignes<InformationRegle>().push_back({regle->identifiant, texte(regle->libelle), texte(regle->detail),
                                            regle->niveau, regle->reference, regle->forcage});
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

  void genererForcages() {
    for (const PrioriteForcage* p : trier(modele_.prioritesForcage, &PrioriteForcage::indicateur)) {
      lignes<PrioriteIndicateurForcage>().push_back({p->indicateur, p->priorite});
    }
    std::map<char, std::map<char, char>> exceptions;
    for (const ExceptionForcage& e : modele_.exceptionsForcage) {
      exceptions[e.indicateur][e.present] = e.resultat;
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

  void genererServices() {
    for (const Service* service : trier(modele_.services, &Service::identifiant)) {
      ServiceDebrayable ligne;
      ligne.identifiant = texte(service->identifiant);
      remplir(ligne.regles, service->lieu, [&](auto& cible) {
        for (const CodeFixe<9>& regle : service->regles) {
          cible.push_back({references_.at(regle)});
        }
      });
      lignes<ServiceDebrayable>().push_back(std::move(ligne));
    }
  }

  void genererGroupes() {
    for (const GroupeZone& groupe : modele_.groupes) {
      positionsGroupes_.emplace(groupe.numero, static_cast<std::uint16_t>(positionsGroupes_.size()));
      DescriptifGroupe ligne;
      ligne.numero = groupe.numero;
      remplir(ligne.listeChamps, groupe.lieu, [&](auto& champs) {
        for (const ChampZone& champ : groupe.champs) {
          DescriptifChamp descriptif{champ.format, champ.type, champ.min, champ.max, {}};
          remplir(descriptif.valeurs, champ.lieu, [&](auto& valeurs) {
            for (const std::string& valeur : champ.valeurs) {
              valeurs.push_back({texte(valeur)});
            }
          });
          champs.push_back(descriptif);
        }
      });
      lignes<DescriptifGroupe>().push_back(ligne);
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

template <class T>
ListeCompacte<T> liste(const std::vector<T>& valeurs) {
  return ListeCompacte<T>(std::span<const T>(valeurs));
}

// From the newest effect date to the oldest.
template <class E>
std::vector<const E*> duPlusRecent(const std::vector<E>& historiques) {
  std::vector<const E*> ordre = trier(historiques, &E::effet);
  std::reverse(ordre.begin(), ordre.end());
  return ordre;
}

NiveauPhase genererPhase(const Phase& phase) {
  NiveauPhase niveau;
  niveau.codePhase = phase.code;
  niveau.nombreDents = phase.nombreDents;
  niveau.ageMinimum = phase.ageMinimum;
  niveau.ageMaximum = phase.ageMaximum;
  niveau.dentsIncompatibles = liste(phase.dentsIncompatibles);
  for (const HistoriquePhase* h : duPlusRecent(phase.historiques)) {
    niveau.historiques.push_back({h->effet, h->prix, h->supplement, h->dom});
  }
  return niveau;
}

NiveauActivite genererActivite(const Activite& activite) {
  NiveauActivite niveau;
  niveau.codeActivite = activite.code;
  niveau.agrementsRadio = liste(activite.agrementsRadio);
  niveau.rmo = liste(activite.rmo);
  niveau.extensionsDocumentaires = liste(activite.extensions);
  for (const HistoriqueActivite* h : duPlusRecent(activite.historiques)) {
    HistoriqueNiveauActivite& historique = niveau.historiques.emplace_back();
    historique.dateEffet = h->effet;
    historique.categorieMedicale = h->categorieMedicale;
    historique.codeRegroupement = h->regroupement;
    historique.modificateurs = liste(h->modificateurs);
    historique.classesSpecialites = liste(h->classesSpecialite);
    std::vector<Association> associations;
    for (const AssociationActe& association : h->associations) {
      associations.push_back({association.acte, association.regle});
    }
    historique.associations = liste(associations);
  }
  for (const Phase* phase : trier(activite.phases, &Phase::code)) {
    niveau.phases.push_back(genererPhase(*phase));
  }
  return niveau;
}

}  // namespace

TablesReference genererTables(const Modele& modele, const Etiquettes& etiquettes, Rapport& rapport) {
  return Generateur(modele, etiquettes, rapport).generer();
}

NiveauActe genererActe(const Acte& acte) {
  NiveauActe niveau;
  niveau.codeStructure = acte.code;
  niveau.libelleCourt = texte(acte.libelleCourt);
  niveau.libelleLong = texte(acte.libelleLong);
  niveau.typeActe = acte.type;
  niveau.conditionsGenerales = texte(acte.conditions);
  niveau.notes = texte(acte.notes);
  niveau.sexeCompatible = acte.sexe;
  niveau.codeMenu = acte.menu;
  niveau.dateCreation = acte.creation;
  niveau.dateFin = acte.fin;
  niveau.fraisDeplacement = acte.fraisDeplacement;
  niveau.naturesAssurance = liste(acte.naturesAssurance);
  for (const HistoriqueActe* h : duPlusRecent(acte.historiques)) {
    niveau.historiques.push_back({h->effet, h->admission, h->ententePrealable ? 'O' : 'N',
                                  liste(h->exonerations), liste(h->procedures), liste(h->incompatibles)});
  }
  for (const Activite* activite : trier(acte.activites, &Activite::code)) {
    niveau.activites.push_back(genererActivite(*activite));
  }
  return niveau;
}

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
