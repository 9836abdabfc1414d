// The tables of the database other than those of acts.
#include <algorithm>
#include <map>

#include "compilateur/etiquettes.h"
#include "compilateur/lecture_dbf.h"

namespace noxlux::compilateur {

namespace {

// The item of a code, made when it is not there yet.
template <class E, class C>
E& elementDe(std::vector<E>& elements, C E::*membre, const C& code, Lieu lieu) {
  const auto trouve =
      std::find_if(elements.begin(), elements.end(), [&](const E& e) { return e.*membre == code; });
  if (trouve != elements.end()) {
    return *trouve;
  }
  E& nouveau = elements.emplace_back();
  nouveau.lieu = lieu;
  nouveau.*membre = code;
  return nouveau;
}

// Start and end of validity.
template <class E>
E periode(ChampsDbf& c, std::size_t debut, std::size_t fin) {
  E element;
  element.lieu = c.lieu();
  element.debut = c.date(debut, true);
  element.fin = c.date(fin, false);
  return element;
}

// A tariff by grid: for each code, the records of the grid asked for, or of grid 0, or of the first there is.
template <class V>
class ParGrille {
 public:
  explicit ParGrille(unsigned grille) : grille_(grille) {}

  void ajouter(char code, unsigned grille, V valeur) { valeurs_[code][grille].push_back(std::move(valeur)); }
  template <class F>
  void pourChaque(F&& f) {
    for (auto& [code, grilles] : valeurs_) {
      auto choisie = grilles.find(grille_);
      choisie = choisie == grilles.end() ? grilles.begin() : choisie;
      f(code, std::move(choisie->second));
    }
  }

 private:
  unsigned grille_;
  std::map<char, std::map<unsigned, std::vector<V>>> valeurs_;
};

class LectureTables {
 public:
  LectureTables(LectureDbf& lecture, unsigned grille, Modele& base)
      : lecture_(lecture), grille_(grille), base_(base) {}

  void lire() {
    lireEtiquettes();
    lireCoefficients("R_TB02", "COD_ASSONP", base_.associationsNonPrevues);
    lireCoefficients("R_TB03", "COD_REGLE", base_.reglesTarifaires);
    lireSpecialites();
    lireValeursDeModificateurs();
    lireAgesEtCoherences();
    lireSeuils();
    lireFeries();
    lireRegroupements();
    lireDivers();
    lireConcepts();
  }

 private:
  void lireCoefficients(const char* table, const char* colonneCode, std::vector<CodeACoefficients>& codes) {
    ParGrille<CoefficientDate> parGrille(grille_);
    std::map<char, std::string> libelles;
    lecture_.parcourir(table, {colonneCode, "DT_DEBUT", "DT_FIN", "COEF", "GRILLE_COD"},
                       [&](ChampsDbf& c, const TableDbf& dbf) {
                         auto valeur = periode<CoefficientDate>(c, 1, 2);
                         valeur.coefficient = c.decimal(3);
                         const unsigned grille = c.nombre(4);
                         const char code = c.lettre(0);
                         if (!c.bons() || code == ' ') {
                           return c.refuser("code absent");
                         }
                         libelles[code] = c.texteEnTranches(dbf.tranches("LIBELLE"));
                         parGrille.ajouter(code, grille, valeur);
                         return true;
                       });
    parGrille.pourChaque([&](char code, std::vector<CoefficientDate> valeurs) {
      CodeACoefficients& element = elementDe(codes, &CodeACoefficients::code, code, valeurs.front().lieu);
      element.libelle = libelles[code].empty() ? std::string(1, code) : libelles[code];
      element.historiques = std::move(valeurs);
    });
  }

  void lireSpecialites() {
    lecture_.parcourir("R_TB04", {"COD_SPECIA", "DT_DEBUT", "DT_FIN", "CATSPE_COD", "LIBELLE"},
                       [&](ChampsDbf& c, const TableDbf&) {
                         auto classe = periode<ClasseDate>(c, 1, 2);
                         classe.classe = c.code<2>(3);
                         std::string code = c.cle(0);
                         code.erase(0, code.size() == 3 && code[0] == '0' ? 1 : 0);
                         if (!c.bons() || code.empty() || code.size() > 2) {
                           return c.refuser("code de spécialité mal écrit");
                         }
                         SpecialitePS& specialite =
                             elementDe(base_.specialites, &SpecialitePS::code, CodeFixe<2>(code), c.lieu());
                         specialite.libelle = c.texte(4);
                         specialite.historiques.push_back(classe);
                         return true;
                       });
  }

  void lireValeursDeModificateurs() {
    ParGrille<ForfaitEtTaux> parGrille(grille_);
    std::map<char, std::string> libelles;
    lecture_.parcourir("R_TB11",
                       {"COD_MODIFI", "DT_DEBUT", "DT_FIN", "LIBELLE", "COEF", "FORFAIT", "GRILLE_COD"},
                       [&](ChampsDbf& c, const TableDbf&) {
                         auto valeur = periode<ForfaitEtTaux>(c, 1, 2);
                         valeur.coefficient = multiplicateur(c.decimal(4));
                         valeur.forfait = c.decimal(5);
                         const unsigned grille = c.nombre(6);
                         const char code = c.lettre(0);
                         if (!c.bons() || code == ' ') {
                           return c.refuser("code absent");
                         }
                         libelles[code] = c.texte(3);
                         parGrille.ajouter(code, grille, valeur);
                         return true;
                       });
    parGrille.pourChaque([&](char code, std::vector<ForfaitEtTaux> valeurs) {
      ModificateurActe& modificateur =
          elementDe(base_.modificateurs, &ModificateurActe::code, code, valeurs.front().lieu);
      modificateur.libelle = libelles[code].empty() ? std::string(1, code) : libelles[code];
      modificateur.valeurs = std::move(valeurs);
    });
  }

  // Below 1, what is added to the price; from 1 on, what the price is multiplied by.
  static double multiplicateur(double coefficient) {
    return coefficient < 1.0 ? 1.0 + coefficient : coefficient;
  }

  // What a table tells of a modifier that has values: f(fields, modifier).
  template <class F>
  void deModificateur(const char* table, const std::vector<const char*>& colonnes, F&& f) {
    lecture_.parcourir(table, colonnes, [&](ChampsDbf& c, const TableDbf&) {
      const char code = c.lettre(0);
      const auto modificateur = std::find_if(base_.modificateurs.begin(), base_.modificateurs.end(),
                                             [&](const ModificateurActe& m) { return m.code == code; });
      if (modificateur == base_.modificateurs.end()) {
        return c.refuser("modificateur inconnu");
      }
      f(c, *modificateur);
      return c.bons();
    });
  }

  template <class T>
  static void garderSiBon(ChampsDbf& c, std::vector<T>& liste, const T& element) {
    if (c.bons()) {
      liste.push_back(element);
    }
  }

  void lireAgesEtCoherences() {
    const auto oui = [](ChampsDbf& c, std::size_t k) {
      const char lu = c.lettre(k);
      return lu == 'O' || lu == '1';
    };
    deModificateur("R_TB06",
                   {"MODIFI_COD", "DT_DEBUT", "DT_FIN", "UNI_AGEMIN", "AGE_MIN", "UNI_AGEMAX", "AGE_MAX"},
                   [](ChampsDbf& c, ModificateurActe& modificateur) {
                     auto age = periode<AgeModificateur>(c, 1, 2);
                     age.uniteMinimum = c.vide(3) ? 'A' : c.lettre(3);
                     age.minimum = c.court(4);
                     age.uniteMaximum = c.vide(5) ? 'A' : c.lettre(5);
                     age.maximum = c.court(6);
                     garderSiBon(c, modificateur.ages, age);
                   });
    deModificateur("R_TB09", {"MODIF_COD1", "MODIF_COD2", "DT_DEBUT", "DT_FIN"},
                   [](ChampsDbf& c, ModificateurActe& modificateur) {
                     auto compatible = periode<CodeModificateurDate>(c, 2, 3);
                     compatible.code = c.lettre(1);
                     garderSiBon(c, modificateur.compatibles, compatible);
                   });
    deModificateur("R_TB10", {"MODIFI_COD", "DT_DEBUT", "DT_FIN", "TOP_CTRLE", "TOP_MULTIP"},
                   [&](ChampsDbf& c, ModificateurActe& modificateur) {
                     auto coherence = periode<CoherenceModificateur>(c, 1, 2);
                     coherence.controle = oui(c, 3);
                     coherence.presenceMultiple = oui(c, 4);
                     garderSiBon(c, modificateur.coherences, coherence);
                   });
    deModificateur("R_TB15", {"MODIFI_COD", "COD_MODOC", "DT_DEBUT", "DT_FIN"},
                   [](ChampsDbf& c, ModificateurActe& modificateur) {
                     auto oc = periode<CodeModificateurDate>(c, 2, 3);
                     oc.code = c.lettre(1);
                     garderSiBon(c, modificateur.oc, oc);
                   });
  }

  void lireSeuils() {
    lecture_.parcourir("R_TB07", {"DT_DEBUT", "DT_FIN", "METROPOLE", "ANTILLES", "REUNION", "GUYANE"},
                       [&](ChampsDbf& c, const TableDbf&) {
                         auto seuil = periode<SeuilDate>(c, 0, 1);
                         seuil.metropole = c.decimal(2);
                         seuil.antilles = c.decimal(3);
                         seuil.reunion = c.decimal(4);
                         seuil.guyane = c.decimal(5);
                         garderSiBon(c, base_.seuils, seuil);
                         return c.bons();
                       });
  }

  void lireFeries() {
    lecture_.parcourir(
        "R_TB08", {"COD_CAISSE", "JOUR_FERIE", "DT_DEBUT", "DT_FIN", "TYPE_JOUR"},
        [&](ChampsDbf& c, const TableDbf&) {
          auto jour = periode<JourFerie>(c, 2, 3);
          jour.jour = c.date(1, true);
          jour.type = c.vide(4) ? 'F' : c.lettre(4);
          std::string code = c.cle(0);
          code.insert(0, code.size() < 3 ? 3 - code.size() : 0, '0');
          if (!c.bons() || code.size() != 3) {
            return c.refuser("code de caisse mal écrit");
          }
          elementDe(base_.caisses, &Caisse::code, CodeFixe<3>(code), c.lieu()).jours.push_back(jour);
          return true;
        });
  }

  void lireRegroupements() {
    std::map<std::string, std::string> libelles;
    lecture_.parcourir("R_REGROUPEMENT", {"COD_*", "LIBELLE"}, [&](ChampsDbf& c, const TableDbf&) {
      return libelles.emplace(c.cle(0), c.texte(1)).second;
    });
    lecture_.parcourir("R_TB13", {"COD_NATURE", "DT_DEBUT", "DT_FIN"}, [&](ChampsDbf& c, const TableDbf&) {
      auto regroupement = periode<Regroupement>(c, 1, 2);
      regroupement.code = c.code<3>(0);
      const std::string& libelle = libelles[c.cle(0)];
      regroupement.libelle = libelle.empty() ? phrase("Code de regroupement ", c.cle(0)) : libelle;
      if (regroupement.code.vue().empty()) {
        return c.refuser("code absent");
      }
      garderSiBon(c, base_.regroupements, regroupement);
      return c.bons();
    });
  }

  void lireDivers() {
    lecture_.parcourir("R_TB12", {"DT_DEBUT", "DT_FIN", "FORFAIT_RN", "COEF_RNC"},
                       [&](ChampsDbf& c, const TableDbf&) {
                         auto reduction = periode<ForfaitEtTaux>(c, 0, 1);
                         reduction.forfait = c.decimal(2);
                         reduction.coefficient = c.decimal(3);
                         garderSiBon(c, base_.reductionsNonConventionne, reduction);
                         return c.bons();
                       });
    lecture_.parcourir("R_TB19", {"DT_DEBUT", "DT_FIN", "NB_MODIFIC"}, [&](ChampsDbf& c, const TableDbf&) {
      auto nombre = periode<NombreDate>(c, 0, 1);
      nombre.nombre = c.court(2);
      garderSiBon(c, base_.nombresModificateursTarifants, nombre);
      return c.bons();
    });
    lecture_.parcourir("R_TB17", {"COD_NATURE", "SPECIA_COD", "DT_OBLIGAT"},
                       [&](ChampsDbf& c, const TableDbf&) {
                         SpecialiteObligee obligee;
                         obligee.lieu = c.lieu();
                         std::string code = c.cle(1);
                         code.erase(0, code.size() == 3 && code[0] == '0' ? 1 : 0);
                         obligee.date = c.date(2, true);
                         const CodeFixe<3> prestation = c.code<3>(0);
                         if (!c.bons() || prestation.vue().empty() || code.empty() || code.size() > 2) {
                           return c.refuser("code absent ou mal écrit");
                         }
                         obligee.code = CodeFixe<2>(code);
                         elementDe(base_.obligations, &Obligation::prestation, prestation, c.lieu())
                             .specialites.push_back(obligee);
                         return true;
                       });
  }

  // One record a value: those of one concept and one period go together.
  void lireConcepts() {
    lecture_.parcourir(
        "R_TB20", {"CONCEPT", "CODE", "DT_DEBUT", "DT_FIN"}, [&](ChampsDbf& c, const TableDbf&) {
          auto lu = periode<ValeursDate>(c, 2, 3);
          const std::uint16_t numero = c.court(0);
          const std::string valeur = c.cle(1);
          if (!c.bons() || numero == 0 || valeur.empty()) {
            return c.refuser("concept sans numéro ou sans code");
          }
          Concept& concept_ = elementDe(base_.concepts, &Concept::numero, numero, c.lieu());
          const auto meme =
              std::find_if(concept_.historiques.begin(), concept_.historiques.end(),
                           [&](const ValeursDate& h) { return h.debut == lu.debut && h.fin == lu.fin; });
          if (meme != concept_.historiques.end()) {
            meme->valeurs.push_back(valeur);
          } else {
            lu.valeurs.push_back(valeur);
            concept_.historiques.push_back(std::move(lu));
          }
          return true;
        });
  }

  void lireEtiquettes() {
    constexpr struct {
      const char* table;
      TableCode numero;
      std::size_t largeur;
    } TABLES[] = {{"R_ACTIVITE", CODES_ACTIVITE, 1},         {"R_TYPE", CODES_TYPE_ACTE, 1},
                  {"R_CATEGORIE_MEDIC", CODES_CATEGORIE, 2}, {"R_REMBOURSEMENT", CODES_ADMISSION, 1},
                  {"R_EXO_TM", CODES_EXONERATION, 1},        {"R_NAT_ASS", CODES_NATURE_ASSURANCE, 2},
                  {"R_FRAIS_DEP", CODES_FRAIS, 1},           {"R_EXTENSION", CODES_EXTENSION, 1}};
    for (const auto& table : TABLES) {
      lecture_.parcourir(table.table, {"COD_*", "LIBELLE"}, [&](ChampsDbf& c, const TableDbf&) {
        const std::string code = c.cle(0);
        const std::string libelle = c.texte(1);
        if (code.empty() || code.size() > table.largeur || libelle.empty()) {
          return c.refuser("code absent ou mal écrit");
        }
        const std::uint16_t numero = table.numero;
        TableDeCodes& codes = elementDe(base_.tablesDeCodes, &TableDeCodes::numero, numero, c.lieu());
        const bool connu = std::any_of(codes.valeurs.begin(), codes.valeurs.end(),
                                       [&](const ValeurDeCode& v) { return v.code == code; });
        if (connu) {
          return c.refuser("code en double");
        }
        ValeurDeCode& valeur = codes.valeurs.emplace_back();
        valeur.lieu = c.lieu();
        valeur.code = code;
        valeur.libelle = libelle;
        return true;
      });
    }
  }

  LectureDbf& lecture_;
  unsigned grille_;
  Modele& base_;
};

}  // namespace

void lireTablesDeReference(LectureDbf& lecture, unsigned grille, Modele& base) {
  LectureTables(lecture, grille, base).lire();
}

}  // namespace noxlux::compilateur
