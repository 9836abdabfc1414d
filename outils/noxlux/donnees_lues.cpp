#include "noxlux/donnees_lues.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "compilateur/proches.h"
#include "compilateur/transcodage.h"
#include "nox_commun.h"
#include "noxlux/erreurs.h"
#include "noxlux/presentation.h"
#include "referent/requete_copies.h"

namespace noxlux::commande {

namespace {

// What a key is: its name in JSON and in words, and the table that knows its codes.
struct Cle {
  const char* nom;
  const char* mots;
  const char* table;
};
constexpr Cle ACTE{"acte", "acte", "actes"};
constexpr Cle ACTE_ASSOCIE{"acteAssocie", "acte associé", "actes"};
constexpr Cle ACTIVITE{"activite", "activité", "activités de l'acte"};
constexpr Cle PHASE{"phase", "phase", "phases de l'activité"};
constexpr Cle MODIFICATEUR{"modificateur", "modificateur", "modificateurs"};
constexpr Cle ASSOCIATION{"codeAssociation", "code", "associations non prévues"};
constexpr Cle REGLE_TARIFAIRE{"regleTarifaire", "règle", "règles tarifaires"};
constexpr Cle SPECIALITE{"specialite", "spécialité", "spécialités"};
constexpr Cle CLASSE{"classe", "classe", "classes de spécialités"};
constexpr Cle PRESTATION{"prestation", "prestation", "natures de prestation"};
constexpr Cle REGROUPEMENT{"regroupement", "code", "codes de regroupement"};
constexpr Cle CAISSE{"caisse", "caisse", "jours fériés des caisses"};
constexpr Cle CONCEPT{"concept", "n°", "concepts"};
constexpr Cle ZONE{"zone", "zone", "seuils d'exonération"};
constexpr Cle DEPARTEMENT{"departement", "département d'outre-mer", "phases des actes"};
constexpr Cle DATE{"date", "date", ""};

// How a value is shown.
enum class Unite : unsigned char { TEXTE, EUROS, RATIO, OUI_NON };

struct Question {
  std::string_view nom;
  const char* mots;
  const char* table;
  Unite unite;
  std::array<const Cle*, 5> cles;  // in the order in which the query takes them
};

using enum Unite;
constexpr const char* ACTES = "actes";
constexpr const char* HISTOIRES_ACTES = "histoires des actes";
constexpr const char* ACTIVITES = "activités des actes";
constexpr const char* PHASES = "phases des actes";
constexpr const char* MODIFICATEURS = "modificateurs";

constexpr Question QUESTIONS[] = {
    {"rechercherExistenceActe", "l'acte existe", ACTES, OUI_NON, {&ACTE}},
    {"rechercherActivites", "activités de l'acte", ACTES, TEXTE, {&ACTE}},
    {"rechercherDateCreation", "date de création", ACTES, TEXTE, {&ACTE}},
    {"rechercherDateFin", "date de fin", ACTES, TEXTE, {&ACTE}},
    {"rechercherFraisDeplacement", "frais de déplacement", ACTES, TEXTE, {&ACTE}},
    {"rechercherNaturesAssurance", "natures d'assurance", ACTES, TEXTE, {&ACTE}},
    {"rechercherTypeActe", "type de l'acte", ACTES, TEXTE, {&ACTE}},
    {"rechercherCodeMenu", "menu de l'acte", ACTES, TEXTE, {&ACTE}},
    {"rechercherCodeStructure", "code structure", ACTES, TEXTE, {&ACTE}},
    {"rechercherConditionsGenerales", "conditions générales", ACTES, TEXTE, {&ACTE}},
    {"rechercherLibelleCourt", "libellé court", ACTES, TEXTE, {&ACTE}},
    {"rechercherLibelleLong", "libellé long", ACTES, TEXTE, {&ACTE}},
    {"rechercherNotesActe", "notes", ACTES, TEXTE, {&ACTE}},
    {"rechercherSexeCompatible", "sexe compatible", ACTES, TEXTE, {&ACTE}},
    {"rechercherActesIncompatibles", "actes incompatibles", HISTOIRES_ACTES, TEXTE, {&ACTE, &DATE}},
    {"rechercherAdmissionRemboursement",
     "admission au remboursement",
     HISTOIRES_ACTES,
     TEXTE,
     {&ACTE, &DATE}},
    {"rechercherCodesExonerationTM", "codes d'exonération", HISTOIRES_ACTES, TEXTE, {&ACTE, &DATE}},
    {"rechercherEntentePrealable", "soumis à entente préalable", HISTOIRES_ACTES, OUI_NON, {&ACTE, &DATE}},
    {"rechercherProcedures", "procédures", HISTOIRES_ACTES, TEXTE, {&ACTE, &DATE}},
    {"rechercherAgrementsRadio", "agréments radio", ACTIVITES, TEXTE, {&ACTE, &ACTIVITE}},
    {"rechercherCodesExtensionDocumentaire", "extensions", ACTIVITES, TEXTE, {&ACTE, &ACTIVITE}},
    {"rechercherPhasesDeTraitement", "phases de traitement", ACTIVITES, TEXTE, {&ACTE, &ACTIVITE}},
    {"rechercherRMO", "références médicales opposables", ACTIVITES, TEXTE, {&ACTE, &ACTIVITE}},
    {"rechercherActesCompatibles", "actes associables", ACTIVITES, TEXTE, {&ACTE, &ACTIVITE, &DATE}},
    {"rechercherRegleAssociation",
     "règle tarifaire du couple",
     ACTIVITES,
     TEXTE,
     {&ACTE, &ACTIVITE, &ACTE_ASSOCIE, &DATE}},
    {"rechercherCategorieMedicale", "catégorie médicale", ACTIVITES, TEXTE, {&ACTE, &ACTIVITE, &DATE}},
    {"rechercherClassesSpecialitesExecutant",
     "classes de spécialités admises",
     ACTIVITES,
     TEXTE,
     {&ACTE, &ACTIVITE, &DATE}},
    {"rechercherCodeRegroupement", "code de regroupement", ACTIVITES, TEXTE, {&ACTE, &ACTIVITE, &DATE}},
    {"rechercherModificateursApplicables",
     "modificateurs applicables",
     ACTIVITES,
     TEXTE,
     {&ACTE, &ACTIVITE, &DATE}},
    {"rechercherAgeMaximal", "âge maximal", PHASES, TEXTE, {&ACTE, &ACTIVITE, &PHASE}},
    {"rechercherAgeMinimal", "âge minimal", PHASES, TEXTE, {&ACTE, &ACTIVITE, &PHASE}},
    {"rechercherDentsIncompatibles", "dents incompatibles", PHASES, TEXTE, {&ACTE, &ACTIVITE, &PHASE}},
    {"rechercherNombreDents", "nombre de dents", PHASES, TEXTE, {&ACTE, &ACTIVITE, &PHASE}},
    {"rechercherPrixUnitaire", "prix unitaire", PHASES, EUROS, {&ACTE, &ACTIVITE, &PHASE, &DATE}},
    {"rechercherSupplementCharges",
     "supplément pour charges",
     PHASES,
     EUROS,
     {&ACTE, &ACTIVITE, &PHASE, &DATE}},
    {"rechercherMajorationDOM",
     "majoration d'outre-mer",
     PHASES,
     RATIO,
     {&ACTE, &ACTIVITE, &PHASE, &DEPARTEMENT, &DATE}},
    {"rechercherExistenceModificateur",
     "le modificateur existe",
     MODIFICATEURS,
     OUI_NON,
     {&MODIFICATEUR, &DATE}},
    {"rechercherAgeMaximumModificateur", "âge maximal", MODIFICATEURS, TEXTE, {&MODIFICATEUR, &DATE}},
    {"rechercherAgeMinimumModificateur", "âge minimal", MODIFICATEURS, TEXTE, {&MODIFICATEUR, &DATE}},
    {"rechercherForfaitModificateur",
     "forfait du modificateur",
     MODIFICATEURS,
     EUROS,
     {&MODIFICATEUR, &DATE}},
    {"rechercherTauxModificateur", "taux du modificateur", MODIFICATEURS, RATIO, {&MODIFICATEUR, &DATE}},
    {"rechercherModificateursCompatibles",
     "modificateurs compatibles",
     MODIFICATEURS,
     TEXTE,
     {&MODIFICATEUR, &DATE}},
    {"rechercherModificateurOC", "code pour la complémentaire", MODIFICATEURS, TEXTE, {&MODIFICATEUR, &DATE}},
    {"rechercherTopControleCoherence", "cohérence contrôlée", MODIFICATEURS, OUI_NON, {&MODIFICATEUR, &DATE}},
    {"rechercherTopPresenceMultiple",
     "présence multiple admise",
     MODIFICATEURS,
     OUI_NON,
     {&MODIFICATEUR, &DATE}},
    {"rechercherNombreModificateursTarifants",
     "nombre de modificateurs qui comptent",
     "nombres de modificateurs tarifants",
     TEXTE,
     {&DATE}},
    {"rechercherNombreModificateursTransmissibles",
     "nombre de modificateurs transmissibles",
     "nombres de modificateurs transmissibles",
     TEXTE,
     {&DATE}},
    {"rechercherExistenceAssociationNP", "le code existe", ASSOCIATION.table, OUI_NON, {&ASSOCIATION, &DATE}},
    {"rechercherCoefficientAssociationNonPrevue",
     "coefficient du code association",
     ASSOCIATION.table,
     RATIO,
     {&ASSOCIATION, &DATE}},
    {"rechercherCoefficientRegle",
     "coefficient de la règle tarifaire",
     REGLE_TARIFAIRE.table,
     RATIO,
     {&REGLE_TARIFAIRE, &DATE}},
    {"rechercherNombreActeAssociation",
     "nombre d'actes associables",
     "nombres d'actes d'une association",
     TEXTE,
     {&DATE}},
    {"rechercherRegroupementSpecialites",
     "classe de la spécialité",
     SPECIALITE.table,
     TEXTE,
     {&SPECIALITE, &DATE}},
    {"rechercherSpecialitesDansClasse", "spécialités de la classe", CLASSE.table, TEXTE, {&CLASSE, &DATE}},
    {"rechercherExistenceCodeRegroupement", "le code existe", REGROUPEMENT.table, OUI_NON, {&REGROUPEMENT}},
    {"rechercherDateObligationCodage",
     "codage en CCAM obligatoire le",
     "obligations de codage",
     TEXTE,
     {&PRESTATION, &SPECIALITE}},
    {"rechercherExistenceNaturePrestation",
     "la nature de prestation existe",
     PRESTATION.table,
     OUI_NON,
     {&PRESTATION}},
    {"rechercherSeuilExoTM", "seuil d'exonération", ZONE.table, EUROS, {&ZONE, &DATE}},
    {"rechercherForfaitNonConventionnes",
     "forfait des non-conventionnés",
     "réductions des non-conventionnés",
     EUROS,
     {&DATE}},
    {"rechercherTauxNonConventionnes",
     "taux des non-conventionnés",
     "réductions des non-conventionnés",
     RATIO,
     {&DATE}},
    {"rechercherJoursFeriesCaisse", "jours fériés", CAISSE.table, TEXTE, {&CAISSE, &DATE}},
    {"rechercherValeursConcept", "valeurs du concept", CONCEPT.table, TEXTE, {&CONCEPT, &DATE}},
};

const Question* questionDe(const DonneeLue& donnee) {
  const auto* const trouvee = std::find_if(std::begin(QUESTIONS), std::end(QUESTIONS),
                                           [&](const Question& q) { return q.nom == donnee.question; });
  return trouvee == std::end(QUESTIONS) ? nullptr : trouvee;
}

// DD/MM/AAAA as AAAA-MM-JJ; any other text in UTF-8.
Json texteJson(const std::string& latin1) {
  const bool date = latin1.size() == 10 && latin1[2] == '/' && latin1[5] == '/';
  return date ? latin1.substr(6, 4) + "-" + latin1.substr(3, 2) + "-" + latin1.substr(0, 2)
              : compilateur::versUtf8(rogner(latin1));
}

struct VersJson {
  Json operator()(std::monostate) const { return nullptr; }
  Json operator()(bool valeur) const { return valeur; }
  Json operator()(double valeur) const { return valeur; }
  Json operator()(const std::string& valeur) const { return texteJson(valeur); }
  Json operator()(const std::vector<std::string>& valeurs) const {
    Json liste = Json::array();
    for (const std::string& valeur : valeurs) {
      liste.push_back(texteJson(valeur));
    }
    return liste;
  }
};

std::string texteDeCle(const Json& valeur) {
  return valeur.is_string()   ? valeur.get<std::string>()
         : valeur.is_number() ? nombrePourProgramme(valeur.get<double>(), 0)
                              : std::string();
}

std::string valeurEnClair(const Json& valeur, Unite unite) {
  if (valeur.is_boolean()) {
    return valeur.get<bool>() ? "oui" : "non";
  }
  if (valeur.is_number()) {
    const double nombre = valeur.get<double>();
    return unite == EUROS   ? euros(nombre)
           : unite == RATIO ? nombreLisible(nombre, 3)
                            : nombreLisible(nombre, 0);
  }
  if (valeur.is_array()) {
    constexpr std::size_t MONTREES = 12;
    std::string texte;
    for (std::size_t i = 0; i < valeur.size() && i < MONTREES; ++i) {
      texte += (texte.empty() ? "" : " ") + texteDeCle(valeur[i]);
    }
    return texte.empty() ? "aucun" : texte + (valeur.size() > MONTREES ? "…" : "");
  }
  return valeur.is_string() && valeur != "" ? dateFrancaise(valeur.get<std::string>()) : "aucun";
}

// " (acte HHFA001, activité 1)", without the date.
std::string clesEnClair(const Question& question, const Json& cles) {
  std::string texte;
  for (const Cle* cle : question.cles) {
    if (cle != nullptr && cle != &DATE && cles.contains(cle->nom)) {
      texte += (texte.empty() ? " (" : ", ") + std::string(cle->mots) + " " + texteDeCle(cles[cle->nom]);
    }
  }
  return texte.empty() ? texte : texte + ")";
}

std::string phraseDe(const Question& question, const Json& donnee) {
  std::string texte = question.mots + clesEnClair(question, donnee["cles"]) + " : " +
                      valeurEnClair(donnee["valeur"], question.unite);
  if (donnee["depuis"].is_string()) {
    texte += ", depuis le " + dateFrancaise(donnee["depuis"].get<std::string>());
  }
  texte += std::string(" (table : ") + question.table + ")";
  if (donnee["modifieeDepuis"].is_string()) {
    texte += ", modifié localement au " + dateFrancaise(donnee["modifieeDepuis"].get<std::string>());
  }
  return texte;
}

}  // namespace

std::string jourIso(const Date& date) { return texteJson(date.lireValeur()); }

Json donneeEnJson(const DonneeLue& donnee) {
  const Question* const question = questionDe(donnee);
  if (question == nullptr) {
    return nullptr;
  }
  Json cles = Json::object();
  for (std::size_t i = 0; i < donnee.cles.size() && question->cles[i] != nullptr; ++i) {
    cles[question->cles[i]->nom] = std::visit(VersJson{}, donnee.cles[i]);
  }
  // Who asks whether something exists is answered, too, when it does not.
  const bool absente = question->unite == OUI_NON && donnee.code != NOX_CR_OK;
  Json json = {{"donnee", question->mots},
               {"cles", std::move(cles)},
               {"valeur", absente ? Json(false) : std::visit(VersJson{}, donnee.valeur)},
               {"table", question->table},
               {"depuis", donnee.depuis ? Json(jourIso(*donnee.depuis)) : Json()},
               {"modifieeDepuis", donnee.modifiee ? Json(jourIso(*donnee.modifiee)) : Json()}};
  json["phrase"] = phraseDe(*question, json);
  return json;
}

// --- Faults ---

namespace {

template <class L, class T>
std::vector<std::string> codesDe(const Referentiel& referentiel, T L::*champ) {
  std::vector<std::string> codes;
  for (const L& ligne : referentiel.lignes<L>()) {
    codes.emplace_back(texteDe(ligne.*champ));
  }
  return codes;
}

std::vector<std::string> enTextes(const ListeCodes& liste) {
  return std::get<std::vector<std::string>>(valeurLue(liste));
}

// The codes that the table of a key knows, beside the keys before it; none when they cannot be told.
std::vector<std::string> codesConnus(const Cle& cle, const std::vector<std::string>& avant,
                                     LectureDonnees& lecture, const Referentiel& referentiel) {
  const auto est = [&](const Cle& autre) { return &cle == &autre; };
  const auto code = [&](std::size_t i) { return i < avant.size() ? Code(avant[i]) : Code(); };
  ListeCodes liste;
  if (est(ACTIVITE) && lecture.rechercherActivites(code(0), liste) == NOX_CR_OK) {
    return enTextes(liste);
  }
  if (est(PHASE) && lecture.rechercherPhasesDeTraitement(code(0), code(1), liste) == NOX_CR_OK) {
    return enTextes(liste);
  }
  return est(ACTE) || est(ACTE_ASSOCIE) ? codesDe(referentiel, &Index::acte)
         : est(MODIFICATEUR)            ? codesDe(referentiel, &Modificateur::code)
         : est(ASSOCIATION)             ? codesDe(referentiel, &AssociationNonPrevue::code)
         : est(REGLE_TARIFAIRE)         ? codesDe(referentiel, &RegleTarifaire::code)
         : est(SPECIALITE)              ? codesDe(referentiel, &Specialite::code)
         : est(CLASSE)                  ? codesDe(referentiel, &ClasseSpecialite::code)
         : est(PRESTATION)              ? codesDe(referentiel, &ObligationCodage::prestation)
         : est(REGROUPEMENT)            ? codesDe(referentiel, &CodeRegroupement::code)
         : est(CAISSE)                  ? codesDe(referentiel, &JourFerieCaisse::code)
                                        : std::vector<std::string>();
}

// The few codes of a small table that resemble none of the typed one are told all.
std::vector<std::string> propositionsPour(const std::string& code, const std::vector<std::string>& connus) {
  constexpr std::size_t PETITE = 8;
  std::vector<std::string> proches = compilateur::proches(code, connus);
  return proches.empty() && connus.size() <= PETITE ? connus : proches;
}

std::string citer(const std::vector<std::string>& codes) {
  std::string texte;
  for (const std::string& code : codes) {
    texte += (texte.empty() ? " ; vouliez-vous « " : " », « ") + code;
  }
  return texte.empty() ? texte : texte + " » ?";
}

// The first key that its table does not know.
Json codeEnFaute(const Question& question, const DonneeLue& donnee) {
  Json cause;
  Requete requete(NatureAcces::LECTURE);
  requete.lire([&](LectureDonnees& lecture) {
    std::vector<std::string> avant;
    for (std::size_t i = 0; i < donnee.cles.size() && question.cles[i] != nullptr; ++i) {
      const Cle& cle = *question.cles[i];
      const std::string* const code = std::get_if<std::string>(&donnee.cles[i]);
      const std::vector<std::string> connus =
          code == nullptr || &cle == &DATE ? std::vector<std::string>()
                                           : codesConnus(cle, avant, lecture, *bibliotheque.referentiel);
      if (!connus.empty() && std::find(connus.begin(), connus.end(), *code) == connus.end()) {
        const std::vector<std::string> propositions = propositionsPour(*code, connus);
        cause = {{"phrase", std::string(cle.mots) + " « " + *code + " » absent de la table des " + cle.table +
                                citer(propositions)},
                 {"table", cle.table},
                 {"champ", cle.nom},
                 {"valeur", *code},
                 {"propositions", propositions}};
        break;
      }
      if (code != nullptr) {
        avant.push_back(*code);
      }
    }
    return CodeRetour{NOX_CR_OK};
  });
  return cause;
}

// The code of a query behind the one of a function.
unsigned short codeDeQuestion(unsigned short code) {
  switch (code) {
    case NOX_CR_REGLE_CODE:
      return NOX_CR_CODE_INCONNU;
    case NOX_CR_REGLE_HISTORIQUE:
      return NOX_CR_PAS_D_HISTORIQUE;
    default:
      return code;
  }
}

}  // namespace

void Faute::noter(const DonneeLue& donnee) {
  if (donnee.code != NOX_CR_OK) {
    echecs_.push_back(donnee);
  } else if (const std::string_view nom = donnee.question; nom == "rechercherDateCreation") {
    vie_ = {donnee};
  } else if (nom == "rechercherDateFin") {
    vie_.push_back(donnee);
  }
}

// What is refused without a question that failed: a day outside the life of an act; an invoice that is not
// well made, told by the line that was being read.
Json Faute::causeSansEchec(unsigned short code) const {
  const unsigned short question = codeDeQuestion(code);
  if (!vie_.empty() && (question == NOX_CR_PAS_D_HISTORIQUE || question == NOX_CR_DATE_EFFET)) {
    const Json creation = donneeEnJson(vie_.front());
    std::string phrase = "l'acte " + creation["cles"]["acte"].get<std::string>() + " vaut à partir du " +
                         dateFrancaise(creation["valeur"].get<std::string>());
    if (const Json fin = donneeEnJson(vie_.back()); vie_.size() > 1 && fin["valeur"].is_string()) {
      phrase += ", jusqu'au " + dateFrancaise(fin["valeur"].get<std::string>());
    }
    phrase += " (table des actes)";
    if (question == NOX_CR_DATE_EFFET) {
      phrase += ", et un changement ne précède pas la valeur en vigueur";
    }
    return {{"phrase", phrase}, {"table", "actes"}, {"cles", creation["cles"]}};
  }
  const bool deLigne = ligne_ != 0 && code >= NOX_CR_REGLE_IDENTIFIANT && code < NOX_CR_CONTROLE;
  return deLigne ? Json{{"phrase", "à la ligne " + std::to_string(ligne_)}, {"ligne", ligne_}} : Json();
}

Json Faute::cause(unsigned short code) const {
  const auto echec = std::find_if(echecs_.rbegin(), echecs_.rend(), [&](const DonneeLue& donnee) {
    return donnee.code == codeDeQuestion(code) && questionDe(donnee) != nullptr;
  });
  if (echec == echecs_.rend()) {
    return causeSansEchec(code);
  }
  const DonneeLue echouee = *echec;  // what is asked from here on is listened to as well
  const Question& question = *questionDe(echouee);
  const Json donnee = donneeEnJson(echouee);
  const Json& cles = donnee["cles"];
  Json cause = echouee.code == NOX_CR_CODE_INCONNU ? codeEnFaute(question, echouee) : Json();
  if (cause.is_null()) {
    const std::string date = cles.contains(DATE.nom) ? cles[DATE.nom].get<std::string>() : std::string();
    cause = {{"phrase", std::string(question.mots) + clesEnClair(question, cles) + " : rien" +
                            (date.empty() ? "" : " au " + dateFrancaise(date)) + " dans la table des " +
                            question.table},
             {"table", question.table},
             {"donnee", question.mots},
             {"cles", cles}};
    if (!date.empty()) {
      cause["date"] = date;
    }
  }
  if (ligne_ != 0) {
    cause["ligne"] = ligne_;
  }
  return cause;
}

}  // namespace noxlux::commande
