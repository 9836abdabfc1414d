// A small reference in memory, whose rule catalogue is the real one, and one invoice line that breaks no
// rule: each case of a test changes something and names what is then raised.
#ifndef NOXLUX_TESTS_REGLES_REGLES_ESSAI_H
#define NOXLUX_TESTS_REGLES_REGLES_ESSAI_H

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "magasin_essai.h"
#include "regles/reglementation.h"
#include "regles/tarification.h"

namespace noxlux {

// What a rule is to raise: nothing when there is no reference; else its reference, and texts that its detail
// must show, in this order.
struct Attente {
  const char* reference = nullptr;
  std::vector<std::string> details;
};
inline const Attente RIEN;

class ReglesEssai : public ::testing::Test, protected MagasinEssai {
 protected:
  static constexpr unsigned DEBUT = 20000101;
  static constexpr unsigned JOUR = 20240610;

  ReglesEssai() {
    copierCatalogue();
    poserConcepts();
    poserActes();
    poserModificateurs();
    poserAssociations();
    poserProfessionnels();
    poser<Seuil>({{jour(DEBUT), {}, 120.0, 130.0, 140.0, 150.0}});
    facture.dateNaissance = date(19800501);
    facture.natureAssurance = Code("AS");
    facture.caissePS = Code("751");
    facture.conventionPS = Code("1");
    facture.agrementRadio = Code("2410");
    ligne = &ajouter("AAAA001");
  }

  // A line that breaks no rule by itself.
  LigneCCAM& ajouter(const char* acte) {
    auto nouvelle = std::make_unique<LigneCCAM>();
    nouvelle->numero = Nombre(static_cast<std::int32_t>(facture.lignes.size() + 1));
    nouvelle->date = date(JOUR);
    nouvelle->numeroPS = Code("751234567");
    nouvelle->specialitePS = Code("04");
    nouvelle->prestation = Code("ADC");
    nouvelle->acte = Code(acte);
    nouvelle->activite = Code("1");
    nouvelle->phase = Code("0");
    nouvelle->prixUnitaire = Montant(100.0);
    nouvelle->tauxRemboursement = Coefficient(0.7);
    nouvelle->exonerationTM = Code("0");
    nouvelle->ententePrealable = Code("9");
    return static_cast<LigneCCAM&>(facture.ajouterLigne(std::move(nouvelle)));
  }

  LigneActe& ajouterDeplacement(LigneActe::Type type, const LigneActe& rattachement) {
    auto deplacement = std::make_unique<LigneActe>(type);
    deplacement->numero = Nombre(static_cast<std::int32_t>(facture.lignes.size() + 1));
    deplacement->date = date(JOUR);
    deplacement->prestation = Code("IFD");
    deplacement->rattachement = &rattachement;
    return facture.ajouterLigne(std::move(deplacement));
  }

  void grouper() {
    facture.grouperParAssociations();
    facture.grouperParDates();
  }
  AssociationCCAM& association() { return facture.associations.front(); }

  static ListeCodes codes(std::initializer_list<const char*> textes) {
    ListeCodes liste;
    for (const char* texte : textes) {
      liste.ajouterElement(Code(texte));
    }
    return liste;
  }

  // Runs a rule, and compares what it raised.
  template <class R, class E, class Cible>
  void verifier(const char* cas, R& regles, CodeRetour (R::*regle)(const E&, Constat&), const Cible& cible,
                const Attente& attente) {
    SCOPED_TRACE(cas);
    // PROD500 is raised as R500.
    const std::string identifiant =
        attente.reference == nullptr ? "" : "PROD" + std::string(attente.reference).substr(1);
    Erreur erreur;
    Constat constat(regles, identifiant.c_str(), erreur);
    ASSERT_EQ((regles.*regle)(cible, constat), NOX_CR_OK);
    if (attente.reference == nullptr) {
      EXPECT_FALSE(erreur.estRenseigne())
          << erreur.lireReference().lireTexte() << " " << erreur.lireLibelleSecondaire().lireTexte();
      return;
    }
    EXPECT_EQ(erreur.lireReference().vue(), attente.reference);
    const std::string detail(erreur.lireLibelleSecondaire().vue());
    std::size_t position = 0;
    for (const std::string& texte : attente.details) {
      position = detail.find(texte, position);
      ASSERT_NE(position, std::string::npos) << texte << " dans : " << detail;
      position += texte.size();
    }
    prestations = erreur.lirePrestations();
  }

  NiveauActe& acte(const char* code) {
    for (CaseActe& place : referentiel.actes) {
      if (place.acte()->codeStructure == CodeActe(code)) {
        return *place.acte();
      }
    }
    ADD_FAILURE() << "acte " << code << " absent";
    return *referentiel.actes.front().acte();
  }
  NiveauActivite& activite(const char* code) { return acte(code).activites.front(); }
  NiveauPhase& phase(const char* code) { return activite(code).phases.front(); }

  Facture facture;
  LigneCCAM* ligne = nullptr;
  TypeListe<Nombre> prestations;  // of the last error raised
  Reglementation reglementation{lecture};
  Tarification tarification{lecture};

 private:
  // The labels and references of the rules, as the compiled example has them.
  void copierCatalogue() {
    const char* const chemin = std::getenv("NOXLUX_REFERENCE_EXEMPLE");
    ASSERT_NE(chemin, nullptr);
    static Referentiel exemple;
    static const CodeRetour cr = exemple.chargerReferentiel(chemin, chemin, "0113", "0121");
    ASSERT_EQ(cr, NOX_CR_OK);
    poser(exemple.lignes<InformationRegle>());
    poser(exemple.lignes<ReferenceCdC>());
  }

  void poserConcepts() {
    const std::vector<std::vector<const char*>> valeurs{
        {"3"}, {"1", "2"}, {},    {"07"},      {},    {"2"}, {"3"},      {},
        {},    {},         {"1"}, {"2"},       {"1"}, {"7"}, {"4", "7"}, {"3"},
        {},    {},         {},    {"05", "4"}, {},    {},    {"1", "2"}, {"SSSS001"}};
    for (const auto& concept_ : valeurs) {
      const auto rang = static_cast<std::uint16_t>(referentiel.lignes<HistoriqueConceptCCAM>().size());
      const auto debut = static_cast<std::uint16_t>(referentiel.lignes<ValeurConceptCCAM>().size());
      referentiel.lignes<ConceptCCAM>().push_back({{rang, 1}});
      referentiel.lignes<HistoriqueConceptCCAM>().push_back(
          {jour(DEBUT), {}, {debut, static_cast<std::uint16_t>(concept_.size())}});
      for (const char* valeur : concept_) {
        referentiel.lignes<ValeurConceptCCAM>().push_back({TexteVariable(valeur)});
      }
    }
  }

  // AAAA001 plans BBBB001 and ZZZZ001, nothing else; CCCC001 and CCCC002 belong to procedure PPPP001;
  // CCCC001 excludes DDDD001; EEEE001 is dental; SSSS001 is a supplement that plans AAAA001; ZZZZ001 is
  // complementary.
  void poserActes() {
    for (const char* code : {"AAAA001", "BBBB001", "CCCC001", "CCCC002", "DDDD001", "EEEE001", "PPPP001",
                             "SSSS001", "ZZZZ001"}) {
      auto pose = std::make_unique<NiveauActe>();
      pose->codeStructure = CodeActe(code);
      pose->typeActe = '1';
      pose->dateCreation = jour(20050301);
      pose->fraisDeplacement = '1';
      pose->historiques.resize(1);
      pose->historiques[0].dateEffet = jour(20050301);
      pose->historiques[0].admissionRemboursement = '1';
      pose->historiques[0].ententePrealable = 'N';
      pose->historiques[0].exonerationsTM = compacte<char>({'1'});
      NiveauActivite& activite_ = pose->activites.emplace_back();
      activite_.codeActivite = '1';
      activite_.historiques.resize(1);
      activite_.historiques[0].dateEffet = jour(20050301);
      activite_.historiques[0].categorieMedicale = CodeFixe<2>("01");
      activite_.historiques[0].codeRegroupement = CodeFixe<3>("ADC");
      activite_.historiques[0].modificateurs = compacte<char>({'A', 'B', 'E', 'F'});
      NiveauPhase& phase_ = activite_.phases.emplace_back();
      phase_.codePhase = '0';
      phase_.historiques = {{jour(20050301), 100.0, 12.0, {1.5, 1.25, 1.1, 1.2}}};
      referentiel.lignes<Index>().push_back({CodeActe(code), 0});
      referentiel.actes.emplace_back(std::move(pose));
    }
    activite("AAAA001").historiques[0].associations =
        compacte<Association>({{CodeActe("BBBB001"), '2'}, {CodeActe("ZZZZ001"), '1'}});
    activite("SSSS001").historiques[0].associations = compacte<Association>({{CodeActe("AAAA001"), '1'}});
    for (const char* code : {"CCCC001", "CCCC002"}) {
      acte(code).historiques[0].procedures = compacte<CodeActe>({CodeActe("PPPP001")});
    }
    acte("CCCC001").historiques[0].incompatibilites = compacte<CodeActe>({CodeActe("DDDD001")});
    activite("EEEE001").historiques[0].categorieMedicale = CodeFixe<2>("07");
    phase("EEEE001").nombreDents = CodeFixe<2>("02");
    phase("EEEE001").ageMinimum = 6;
    phase("EEEE001").ageMaximum = 44;
    phase("EEEE001").dentsIncompatibles = compacte<CodeDent>({CodeDent("18"), CodeDent("28")});
    acte("PPPP001").typeActe = '2';
    acte("ZZZZ001").typeActe = '3';
  }

  // A and B: flat 10 and 5; E: rate 1.5, from 6 to 60 years; F: rate 1.2, on one act a day. A goes with E, F
  // goes with E.
  void poserModificateurs() {
    poser<Modificateur>({{'A', {}, {0, 1}, {}, {0, 1}, {0, 1}},
                         {'B', {}, {}, {}, {1, 1}, {}},
                         {'E', {0, 1}, {1, 2}, {}, {2, 1}, {}},
                         {'F', {}, {}, {0, 1}, {3, 1}, {1, 1}}});
    poser<HistoriqueAgeModificateur>({{jour(DEBUT), {}, 'A', 6, 'A', 60}});
    poser<ModificateurCompatible>({{'E', jour(DEBUT), {}}, {'A', jour(DEBUT), {}}, {'F', jour(DEBUT), {}}});
    poser<HistoriqueCoherenceModificateur>({{jour(DEBUT), {}, 'O', 'N'}});
    poser<HistoriqueValeurModificateur>({{jour(DEBUT), {}, 10.0, 1.0},
                                         {jour(DEBUT), {}, 5.0, 1.0},
                                         {jour(DEBUT), {}, 0.0, 1.5},
                                         {jour(DEBUT), {}, 0.0, 1.2}});
    poser<HistoriqueModificateurOC>({{jour(DEBUT), {}, 'X'}, {jour(DEBUT), {}, 'Y'}});
    poser<NombreModificateurTarifant>({{jour(DEBUT), {}, 2}});
    poser<NombreModificateurTransmissible>({{jour(DEBUT), {}, 1}});
  }

  void poserAssociations() {
    poser<AssociationNonPrevue>({{'1', {0, 1}}, {'2', {1, 1}}, {'4', {0, 1}}});
    poser<HistoriqueAssociationNonPrevue>({{jour(DEBUT), {}, 1.0}, {jour(DEBUT), {}, 0.5}});
    poser<RegleTarifaire>({{'1', {0, 1}}, {'2', {1, 1}}});
    poser<HistoriqueRegleTarifaire>({{jour(DEBUT), {}, 1.0}, {jour(DEBUT), {}, 0.75}});
    poser<NombreActeAssociation>({{jour(DEBUT), {}, 3}});
    poser<ReductionNonConventionne>(
        {{jour(DEBUT), jour(20191231), 0.0, 0.16}, {jour(20200101), {}, 10.0, 0.5}});
  }

  void poserProfessionnels() {
    poser<CodeRegroupement>({{CodeFixe<3>("ADC"), jour(DEBUT), jour(20301231)}});
    poser<Specialite>({{CodeFixe<2>("04"), {0, 1}}, {CodeFixe<2>("19"), {1, 1}}});
    poser<HistoriqueSpecialite>({{jour(DEBUT), {}, CodeFixe<2>("C1")}, {jour(DEBUT), {}, CodeFixe<2>("D1")}});
    poser<ObligationCodage>({{CodeFixe<3>("K"), {0, 1}}});
    poser<DateObligationCodage>({{CodeFixe<2>("04"), jour(20240610)}});
  }
};

}  // namespace noxlux

#endif
