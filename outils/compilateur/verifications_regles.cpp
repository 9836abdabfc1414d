#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <utility>

#include "compilateur/transcodage.h"
#include "compilateur/verifications.h"

namespace noxlux::compilateur {

namespace {

// The conversions that a detail may hold, and the arguments they are for.
struct Conversion {
  std::string_view motif;
  std::string_view argument;
};
constexpr Conversion CONVERSIONS[] = {{"s", "texte"},     {"d", "entier"}, {"u", "entier"}, {"ld", "entier"},
                                      {".2f", "montant"}, {".2f", "taux"}, {"f", "taux"}};

constexpr std::string_view ARGUMENTS[] = {"texte", "entier", "montant", "taux"};

// Forcing indicators that the library sets by itself.
constexpr char INDICATEURS_INTERNES[] = {'G', 'R', 'S'};

// Takes the conversion for that argument off the front of a format; false when it is another one.
bool prendreConversion(std::string_view& format, std::string_view argument) {
  for (const Conversion& conversion : CONVERSIONS) {
    if (conversion.argument == argument && format.starts_with(conversion.motif)) {
      format.remove_prefix(conversion.motif.size());
      return true;
    }
  }
  return false;
}

// "" when the format asks for the arguments, in order; or what is wrong.
std::string comparerFormat(std::string_view format, const std::vector<std::string>& arguments) {
  std::size_t rang = 0;
  while (true) {
    const std::size_t pourcent = format.find('%');
    if (pourcent == std::string_view::npos) {
      break;
    }
    format.remove_prefix(pourcent + 1);
    if (format.starts_with('%')) {
      format.remove_prefix(1);
      continue;
    }
    if (rang == arguments.size()) {
      return "le détail demande plus d'arguments que la liste n'en donne";
    }
    if (!prendreConversion(format, arguments[rang++])) {
      return phrase("le détail n'accorde pas sa conversion n° ", std::to_string(rang), " à l'argument « ",
                    arguments[rang - 1], " »");
    }
  }
  return rang == arguments.size() ? "" : "le détail n'emploie pas tous les arguments de la liste";
}

class VerificationRegles {
 public:
  VerificationRegles(const Modele& modele, Rapport& rapport) : modele_(modele), rapport_(rapport) {
    for (const Regle& regle : modele.regles) {
      if (!regles_.insert(regle.identifiant).second) {
        refuser(regle.lieu, "la règle « ", regle.identifiant.vue(), " » est en double");
      }
    }
    for (const PrioriteForcage& priorite : modele.prioritesForcage) {
      if (!indicateurs_.insert(priorite.indicateur).second) {
        refuser(priorite.lieu, "l'indicateur de forçage « ", std::string(1, priorite.indicateur),
                " » a deux priorités");
      }
    }
  }

  void verifier() {
    if (modele_.regles.empty()) {
      refuser({}, "aucune des sources ne contient de table [[regle]]");
    }
    if (modele_.services.empty()) {
      refuser({}, "aucune des sources ne contient de table [[service_debrayable]]");
    }
    if (modele_.exceptionsForcage.empty()) {
      refuser({}, "aucune des sources ne contient de table [[exception_forcage]]");
    }
    for (const char indicateur : INDICATEURS_INTERNES) {
      if (!indicateurs_.contains(indicateur)) {
        refuser({}, "aucune des sources ne donne de priorité à l'indicateur de forçage « ",
                std::string(1, indicateur), " »");
      }
    }
    for (const Regle& regle : modele_.regles) {
      verifierRegle(regle);
    }
    for (const NonVerifiable& groupe : modele_.nonVerifiables) {
      verifierReferences(groupe.lieu, groupe.apres);
      verifierReferences(groupe.lieu, groupe.regles);
    }
    verifierExceptions();
    verifierServices();
  }

 private:
  template <class... T>
  void refuser(Lieu lieu, const T&... morceaux) {
    rapport_.signaler(lieu, phrase(morceaux...));
  }

  void verifierRegle(const Regle& regle) {
    bool argumentsConnus = true;
    for (const std::string& argument : regle.arguments) {
      if (std::find(std::begin(ARGUMENTS), std::end(ARGUMENTS), argument) == std::end(ARGUMENTS)) {
        refuser(regle.lieu, "l'argument « ", versUtf8(argument),
                " » n'est ni texte, ni entier, ni montant, ni taux");
        argumentsConnus = false;
      }
    }
    if (argumentsConnus && !regle.libelleSecondaire.estVide()) {
      const std::string ecart = comparerFormat(regle.libelleSecondaire.vue(), regle.arguments);
      if (!ecart.empty()) {
        refuser(regle.lieu, "règle « ", regle.identifiant.vue(), " » : ", ecart);
      }
    }
    if (regle.typeRegle != 'O' && regle.typeRegle != 'N') {
      refuser(regle.lieu, "le niveau d'une règle est « O » (outrepassable) ou « N »");
    }
    verifierIndicateur(regle.lieu, regle.indicateurForcage);
    verifierReferences(regle.lieu, regle.nonVerifiables);
  }

  void verifierIndicateur(Lieu lieu, char indicateur) {
    if (indicateur != ' ' && !indicateurs_.contains(indicateur)) {
      refuser(lieu, "l'indicateur de forçage « ", std::string(1, indicateur), " » n'a pas de priorité");
    }
  }

  void verifierReferences(Lieu lieu, const std::vector<CodeFixe<9>>& regles) {
    std::set<CodeFixe<9>> vues;
    for (const CodeFixe<9>& regle : regles) {
      if (!regles_.contains(regle)) {
        refuser(lieu, "la règle « ", regle.vue(), " » est inconnue");
      }
      if (!vues.insert(regle).second) {
        refuser(lieu, "la règle « ", regle.vue(), " » est en double dans la liste");
      }
    }
  }

  void verifierExceptions() {
    std::set<std::pair<char, char>> paires;
    for (const ExceptionForcage& exception : modele_.exceptionsForcage) {
      for (const char indicateur :
           {exception.indicateur, exception.indicateurPresent, exception.indicateurRetourne}) {
        verifierIndicateur(exception.lieu, indicateur);
      }
      if (!paires.emplace(exception.indicateur, exception.indicateurPresent).second) {
        refuser(exception.lieu, "l'exception de forçage « ", std::string(1, exception.indicateur),
                " » sur « ", std::string(1, exception.indicateurPresent), " » est en double");
      }
    }
  }

  void verifierServices() {
    std::set<std::string> services;
    for (const Service& service : modele_.services) {
      if (!services.emplace(service.identifiant.vue()).second) {
        refuser(service.lieu, "le service « ", versUtf8(service.identifiant.vue()), " » est en double");
      }
      verifierReferences(service.lieu, service.regles);
    }
  }

  const Modele& modele_;
  Rapport& rapport_;
  std::set<CodeFixe<9>> regles_;
  std::set<char> indicateurs_;
};

}  // namespace

void verifierRegles(const Modele& modele, Rapport& rapport) {
  VerificationRegles(modele, rapport).verifier();
}

}  // namespace noxlux::compilateur
