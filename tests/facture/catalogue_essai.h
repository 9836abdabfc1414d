// A rule catalogue made in memory: a few rules, what they make non-verifiable, and forcing indicators.
#ifndef NOXLUX_TESTS_FACTURE_CATALOGUE_ESSAI_H
#define NOXLUX_TESTS_FACTURE_CATALOGUE_ESSAI_H

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "magasin_essai.h"
#include "regles/facture.h"
#include "regles/regles.h"

namespace noxlux::essai {

struct RegleEssai {
  std::string_view identifiant;
  std::string_view reference;
  char niveau;
  char forcage;
  std::string_view format;
  std::vector<std::string_view> exclues;  // references
};

// Sorted by identifier and by reference, as the tables must be.
inline const std::vector<RegleEssai>& reglesEssai() {
  static const std::vector<RegleEssai> REGLES{
      {"PROD500", "R500", 'N', ' ', "L'acte %s est inconnu.", {"R510", "R600"}},
      {"PROD510", "R510", 'O', 'E', "L'acte %s, le %s.", {"R760"}},
      {"PROD600", "R600", 'O', 'A', "", {"R240", "R760"}},
      {"PROD650", "R650", 'O', ' ', "%d actes", {"R653"}},
      {"PROD700", "R700", 'O', '9', "", {}},
      {"PROD900", "R900", 'N', ' ', "%s %n", {}},
  };
  return REGLES;
}

// Priorities: A 1, E 2, X 2, G 3, T 4; A imposed on X gives T. The indicator 9 has no priority.
class CatalogueEssai : public MagasinEssai {
 public:
  CatalogueEssai() {
    std::vector<InformationRegle> informations;
    std::vector<ReferenceCdC> references;
    std::vector<ReferenceRegleEnErreur> enErreur;
    std::vector<ReferenceRegleNonVerifiable> nonVerifiables;
    for (const RegleEssai& regle : reglesEssai()) {
      InformationRegle information;
      information.identifiant = CodeFixe<9>(regle.identifiant);
      information.libellePrincipal = TexteVariable("Libellé");
      information.libelleSecondaire = TexteVariable(regle.format);
      information.typeRegle = regle.niveau;
      information.reference = CodeFixe<10>(regle.reference);
      information.indicateurForcage = regle.forcage;
      informations.push_back(std::move(information));
      references.push_back({CodeFixe<10>(regle.identifiant), CodeFixe<10>(regle.reference)});
      enErreur.push_back({CodeFixe<10>(regle.reference),
                          {static_cast<std::uint16_t>(nonVerifiables.size()),
                           static_cast<std::uint16_t>(regle.exclues.size())}});
      for (const std::string_view exclue : regle.exclues) {
        nonVerifiables.push_back({CodeFixe<10>(exclue)});
      }
    }
    poser(std::move(informations));
    poser(std::move(references));
    poser(std::move(enErreur));
    poser(std::move(nonVerifiables));
    poser(std::vector<PrioriteIndicateurForcage>{{'A', 1}, {'E', 2}, {'G', 3}, {'T', 4}, {'X', 2}});
    poser(std::vector<ExceptionPrioriteIndicateur>{{'A', {0, 1}}});
    poser(std::vector<ValeurException>{{'X', 'T'}});
  }
};

// The catalogue alone.
class ReglesEssai : public Regles {
 public:
  using Regles::Regles;
};

inline LigneCCAM& ajouterActe(Facture& facture, std::int32_t numero, const Date& date, const char* acte,
                              const char* activite = "1", const char* numeroPS = "991234567") {
  auto ligne = std::make_unique<LigneCCAM>();
  ligne->numero = Nombre(numero);
  ligne->date = date;
  ligne->acte = Code(acte);
  ligne->activite = Code(activite);
  ligne->numeroPS = Code(numeroPS);
  return static_cast<LigneCCAM&>(facture.ajouterLigne(std::move(ligne)));
}

inline LigneActe& ajouterLigne(Facture& facture, LigneActe::Type type, std::int32_t numero,
                               const Date& date) {
  auto ligne = std::make_unique<LigneActe>(type);
  ligne->numero = Nombre(numero);
  ligne->date = date;
  return facture.ajouterLigne(std::move(ligne));
}

inline std::string joindre(const TypeListe<Nombre>& nombres) {
  std::string texte;
  for (const Nombre& nombre : nombres) {
    texte += std::to_string(nombre.lireValeur()) + "/";
  }
  return texte;
}

}  // namespace noxlux::essai

#endif
