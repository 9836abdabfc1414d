// The dated tables of the database that are not of acts: modifiers, specialities, associations, thresholds...
#include <algorithm>
#include <map>

#include "compilateur/lecture_dbf.h"

namespace noxlux::compilateur {

namespace {

constexpr unsigned GRILLE_COMMUNE = 0;

// Below 1, what is added to the price; from 1 on, what the price is multiplied by.
double multiplicateur(double coefficient) { return coefficient < 1.0 ? 1.0 + coefficient : coefficient; }

// The item of a code, made when it is not there yet. It has no place of its own: its records have.
template <class E, class L, class C>
E& elementDe(std::vector<E>& elements, C L::*membre, const C& code) {
  const auto trouve =
      std::find_if(elements.begin(), elements.end(), [&](const E& e) { return e.*membre == code; });
  if (trouve != elements.end()) {
    return *trouve;
  }
  E& nouveau = elements.emplace_back();
  nouveau.*membre = code;
  return nouveau;
}

// The label that the newest record of each code gives.
template <class C>
class Libelles {
 public:
  void noter(const C& code, const DateBrute& date, std::string libelle) {
    const auto [place, nouveau] = libelles_.try_emplace(code);
    if (!libelle.empty() && (nouveau || place->second.first <= date)) {
      place->second = {date, std::move(libelle)};
    }
  }
  std::string de(const C& code, std::string defaut) const {
    const auto libelle = libelles_.find(code);
    return libelle == libelles_.end() || libelle->second.second.empty() ? defaut : libelle->second.second;
  }

 private:
  std::map<C, std::pair<DateBrute, std::string>> libelles_;
};

// Values that depend on the tariff grid. A code has those of the grid asked for and, when they are silent,
// those common to all; without a grid, the common ones and then those of the first grid. A code that only
// other grids know stays, without values.
template <class V>
class ParGrille {
 public:
  explicit ParGrille(Grille grille) : grille_(grille) {}

  void ajouter(char code, unsigned grille, const V& valeur) { valeurs_[code][grille].push_back(valeur); }
  // Calls f(code, values) for each code.
  template <class F>
  void pourChaque(LectureDbf& lecture, F&& f) {
    for (auto& [code, grilles] : valeurs_) {
      for (auto& [numero, valeurs] : grilles) {
        lecture.enchainer(valeurs);
      }
      const unsigned propre = grille_.value_or(GRILLE_COMMUNE);
      const unsigned autre = grille_ ? GRILLE_COMMUNE
                             : grilles.upper_bound(GRILLE_COMMUNE) == grilles.end()
                                 ? GRILLE_COMMUNE
                                 : grilles.upper_bound(GRILLE_COMMUNE)->first;
      f(code, propre == autre ? grilles[propre] : completer(grilles[propre], grilles[autre]));
    }
  }

 private:
  Grille grille_;
  std::map<char, std::map<unsigned, std::vector<V>>> valeurs_;
};

class LectureTables {
 public:
  LectureTables(LectureDbf& lecture, Grille grille, Modele& base)
      : lecture_(lecture), grille_(grille), base_(base) {}

  void lire() {
    lireCoefficients("R_TB02", "COD_ASSONP", base_.associationsNonPrevues);
    lireCoefficients("R_TB03", "COD_REGLE", base_.reglesTarifaires);
    lireSpecialites();
    lireObligations();
    lireValeursDeModificateurs();
    lireControlesDeModificateurs();
    lireFeries();
    lirePeriodes("R_TB07", {"METROPOLE", "ANTILLES", "REUNION", "GUYANE"}, base_.seuils,
                 [](ChampsDbf& c, SeuilDate& seuil) {
                   seuil.metropole = c.decimal(2);
                   seuil.antilles = c.decimal(3);
                   seuil.reunion = c.decimal(4);
                   seuil.guyane = c.decimal(5);
                 });
    lirePeriodes("R_TB12", {"FORFAIT_RN", "COEF_RNC"}, base_.reductionsNonConventionne,
                 [](ChampsDbf& c, Reduction& reduction) {
                   reduction.forfait = c.decimal(2);
                   reduction.coefficient = c.decimal(3);
                 });
    lirePeriodes(
        "R_TB19", {"NB_MODIFIC"}, base_.nombresModificateursTarifants,
        [](ChampsDbf& c, ElementDe<NombreModificateurTarifant>& nombre) { nombre.nombre = c.court(2); });
  }

 private:
  // The records of a table whose first columns are a period; ranger(fields, element) answers whether it kept
  // it.
  template <class E, class F>
  void parcourirPeriodes(const char* table, std::vector<std::string_view> colonnes, F&& ranger) {
    colonnes.insert(colonnes.begin(), {"DT_DEBUT", "DT_FIN"});
    lecture_.parcourir(table, colonnes, [&](ChampsDbf& c) { return ranger(c, c.periode<E>()); });
  }

  // A table of periods that have no code.
  template <class E, class F>
  void lirePeriodes(const char* table, std::vector<std::string_view> colonnes, std::vector<E>& elements,
                    F&& remplir) {
    parcourirPeriodes<E>(table, std::move(colonnes), [&](ChampsDbf& c, E element) {
      remplir(c, element);
      if (c.bons()) {
        elements.push_back(element);
      }
      return c.bons();
    });
    lecture_.enchainer(elements);
  }

  template <class L, class H>
  void lireCoefficients(const char* table, const char* colonneCode,
                        std::vector<CodeACoefficients<L, H>>& codes) {
    using CoefficientDate = ElementDe<H>;
    ParGrille<CoefficientDate> parGrille(grille_);
    Libelles<char> libelles;
    parcourirPeriodes<CoefficientDate>(table, {colonneCode, "COEF", "GRILLE_COD", "LIBELLE.."},
                                       [&](ChampsDbf& c, CoefficientDate valeur) {
                                         const char code = c.lettre(2);
                                         valeur.coefficient = c.decimal(3);
                                         const unsigned grille = c.nombre(4);
                                         if (c.bons()) {
                                           libelles.noter(code, valeur.debut, c.texte(5));
                                           parGrille.ajouter(code, grille, valeur);
                                         }
                                         return c.bons();
                                       });
    parGrille.pourChaque(lecture_, [&](char code, std::vector<CoefficientDate> valeurs) {
      CodeACoefficients<L, H>& element = codes.emplace_back();
      element.code = code;
      element.libelle = libelles.de(code, std::string(1, code));
      element.historiques = std::move(valeurs);
    });
  }

  void lireSpecialites() {
    Libelles<CodeFixe<2>> libelles;
    parcourirPeriodes<ClasseDate>(
        "R_TB04", {"COD_SPECIA", "CATSPE_COD", "LIBELLE.."}, [&](ChampsDbf& c, ClasseDate classe) {
          const auto code = c.code<2>(2);
          classe.classe = c.code<2>(3);
          if (c.bons()) {
            libelles.noter(code, classe.debut, c.texte(4));
            elementDe(base_.specialites, &SpecialitePS::code, code).historiques.push_back(classe);
          }
          return c.bons();
        });
    for (SpecialitePS& specialite : base_.specialites) {
      specialite.libelle = libelles.de(specialite.code, {});
      lecture_.enchainer(specialite.historiques);
    }
  }

  void lireObligations() {
    lecture_.parcourir("R_TB17", {"COD_NATURE", "SPECIA_COD", "DT_OBLIGAT"}, [&](ChampsDbf& c) {
      const auto prestation = c.code<3>(0);
      SpecialiteObligee obligee;
      obligee.lieu = c.lieu();
      obligee.code = c.code<2>(1);
      obligee.date = c.date(2);
      if (!c.bons()) {
        return false;
      }
      auto& specialites = elementDe(base_.obligations, &Obligation::prestation, prestation).specialites;
      const bool connue = std::any_of(specialites.begin(), specialites.end(),
                                      [&](const SpecialiteObligee& s) { return s.code == obligee.code; });
      if (connue) {
        return c.refuser("spécialité en double pour la nature de prestation");
      }
      specialites.push_back(obligee);
      return true;
    });
  }

  void lireValeursDeModificateurs() {
    ParGrille<ForfaitEtTaux> parGrille(grille_);
    Libelles<char> libelles;
    parcourirPeriodes<ForfaitEtTaux>("R_TB11", {"COD_MODIFI", "COEF", "FORFAIT", "GRILLE_COD", "LIBELLE.."},
                                     [&](ChampsDbf& c, ForfaitEtTaux valeur) {
                                       const char code = c.lettre(2);
                                       valeur.coefficient = multiplicateur(c.decimal(3));
                                       valeur.forfait = c.decimal(4);
                                       const unsigned grille = c.nombre(5);
                                       if (c.bons()) {
                                         libelles.noter(code, valeur.debut, c.texte(6));
                                         parGrille.ajouter(code, grille, valeur);
                                       }
                                       return c.bons();
                                     });
    parGrille.pourChaque(lecture_, [&](char code, std::vector<ForfaitEtTaux> valeurs) {
      ModificateurActe& modificateur = base_.modificateurs.emplace_back();
      modificateur.code = code;
      modificateur.libelle = libelles.de(code, std::string(1, code));
      modificateur.valeurs = std::move(valeurs);
    });
  }

  ModificateurActe* modificateur(char code) {
    const auto trouve = std::find_if(base_.modificateurs.begin(), base_.modificateurs.end(),
                                     [&](const ModificateurActe& m) { return m.code == code; });
    return trouve == base_.modificateurs.end() ? nullptr : &*trouve;
  }

  // What a table tells of the modifiers; `code` is their column.
  template <class E, class F>
  void deModificateurs(const char* table, const char* code, std::vector<std::string_view> colonnes,
                       std::vector<E> ModificateurActe::*liste, F&& remplir) {
    if (base_.modificateurs.empty()) {
      return;  // those of the complement come with what it tells of them
    }
    colonnes.insert(colonnes.begin(), code);
    parcourirPeriodes<E>(table, std::move(colonnes), [&](ChampsDbf& c, E element) {
      ModificateurActe* const porteur = modificateur(c.lettre(2));
      remplir(c, element);
      if (porteur == nullptr) {
        return c.refuser("modificateur inconnu");
      }
      if (c.bons()) {
        (porteur->*liste).push_back(element);
      }
      return c.bons();
    });
  }

  void lireControlesDeModificateurs() {
    deModificateurs("R_TB06", "MODIFI_COD", {"UNI_AGEMIN", "AGE_MIN", "UNI_AGEMAX", "AGE_MAX"},
                    &ModificateurActe::ages, [](ChampsDbf& c, AgeModificateur& age) {
                      const auto unite = [&](std::size_t k) {
                        const char lue = c.vide(k) ? 'A' : c.lettre(k);
                        if (lue != 'A' && lue != 'M' && lue != 'J') {
                          c.refuser("unité d'âge inconnue");
                        }
                        return lue;
                      };
                      age.uniteMinimum = unite(3);
                      age.minimum = c.court(4);
                      age.uniteMaximum = unite(5);
                      age.maximum = c.court(6);
                    });
    deModificateurs("R_TB09", "MODIF_COD1", {"MODIF_COD2"}, &ModificateurActe::compatibles,
                    [&](ChampsDbf& c, Compatibilite& compatible) {
                      compatible.code = c.lettre(3);
                      if (modificateur(compatible.code) == nullptr) {
                        c.refuser("modificateur inconnu");
                      }
                    });
    deModificateurs("R_TB10", "MODIFI_COD", {"TOP_CTRLE", "TOP_MULTIP"}, &ModificateurActe::coherences,
                    [](ChampsDbf& c, CoherenceModificateur& coherence) {
                      coherence.controle = c.oui(3);
                      coherence.presenceMultiple = c.oui(4);
                    });
    deModificateurs("R_TB15", "MODIFI_COD", {"COD_MODOC"}, &ModificateurActe::oc,
                    [](ChampsDbf& c, CodeOC& oc) { oc.code = c.lettre(3); });
    for (ModificateurActe& modificateur : base_.modificateurs) {
      lecture_.enchainer(modificateur.ages);
      lecture_.enchainer(modificateur.compatibles, &Compatibilite::code);
      lecture_.enchainer(modificateur.coherences);
      lecture_.enchainer(modificateur.oc);
    }
  }

  void lireFeries() {
    parcourirPeriodes<JourFerie>(
        "R_TB08", {"COD_CAISSE", "JOUR_FERIE", "TYPE_JOUR"}, [&](ChampsDbf& c, JourFerie jour) {
          std::string code(c.code<3>(2).vue());
          code.insert(0, 3 - code.size(), '0');
          jour.jour = c.date(3);
          jour.type = c.vide(4) ? 'F' : c.lettre(4);
          if (c.bons()) {
            elementDe(base_.caisses, &Caisse::code, CodeFixe<3>(code)).jours.push_back(jour);
          }
          return c.bons();
        });
    for (Caisse& caisse : base_.caisses) {
      lecture_.enchainer(caisse.jours, &JourFerie::jour);
    }
  }

  LectureDbf& lecture_;
  Grille grille_;
  Modele& base_;
};

}  // namespace

void lireTablesDeReference(LectureDbf& lecture, Grille grille, Modele& base) {
  LectureTables(lecture, grille, base).lire();
}

}  // namespace noxlux::compilateur
