// The labels of codes, the concepts and the grouping codes of the database.
#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "compilateur/etiquettes.h"
#include "compilateur/lecture_dbf.h"
#include "compilateur/periodes.h"

namespace noxlux::compilateur {

namespace {

// R_AGRE_RADIO, R_CATE_SPEC and R_PHASE are left: no answer bears labels of theirs.
constexpr struct {
  const char* table;
  TableCode numero;
  std::size_t largeur;
} TABLES_DE_CODES[] = {{"R_ACTIVITE", CODES_ACTIVITE, 1},         {"R_TYPE", CODES_TYPE_ACTE, 1},
                       {"R_CATEGORIE_MEDIC", CODES_CATEGORIE, 2}, {"R_REMBOURSEMENT", CODES_ADMISSION, 1},
                       {"R_EXO_TM", CODES_EXONERATION, 1},        {"R_NAT_ASS", CODES_NATURE_ASSURANCE, 2},
                       {"R_FRAIS_DEP", CODES_FRAIS, 1},           {"R_EXTENSION", CODES_EXTENSION, 1}};

void lireEtiquettes(LectureDbf& lecture, std::vector<TableDeCodes>& tables) {
  for (const auto& [table, numero, largeur] : TABLES_DE_CODES) {
    TableDeCodes codes;
    codes.numero = numero;
    lecture.parcourir(table, {"COD_*", "LIBELLE.."}, [&, largeur = largeur](ChampsDbf& c) {
      ValeurDeCode valeur;
      valeur.lieu = c.lieu();
      valeur.code = largeur == 1 ? std::string(1, c.lettre(0)) : std::string(c.code<2>(0).vue());
      valeur.libelle = c.texte(1);
      if (!c.bons() || valeur.libelle.empty()) {
        return c.refuser("code sans libellé");
      }
      const bool connu = std::any_of(codes.valeurs.begin(), codes.valeurs.end(),
                                     [&](const ValeurDeCode& v) { return v.code == valeur.code; });
      if (connu) {
        return c.refuser("code en double");
      }
      codes.valeurs.push_back(std::move(valeur));
      return true;
    });
    if (!codes.valeurs.empty()) {
      tables.push_back(std::move(codes));
    }
  }
}

struct ValeurDeConcept : ElementDate {
  std::string code;
};

// Each value of a concept has its own period; the model wants what holds together.
Concept assembler(std::uint16_t numero, const std::vector<ValeurDeConcept>& valeurs) {
  Concept resultat;
  resultat.numero = numero;
  for (const ElementDate& intervalle : intervalles(valeurs)) {
    ValeursDate historique;
    historique.lieu = valeurs.front().lieu;
    historique.debut = intervalle.debut;
    historique.fin = intervalle.fin;
    std::set<std::string> codes;
    for (const ValeurDeConcept& valeur : valeurs) {
      if (couvre(valeur, intervalle.debut) && codes.insert(valeur.code).second) {
        historique.valeurs.push_back(valeur.code);
      }
    }
    resultat.historiques.push_back(std::move(historique));
  }
  return resultat;
}

// What a published concept holds: values of one width, end to end, and which concepts of a reference they
// serve. Exemption codes have numbers of their own there: each stands for one way of being exempt, where the
// rules ask for all those that exempt likewise.
struct ConceptPublie {
  std::uint16_t numero;
  std::size_t largeur;
  std::array<std::uint16_t, 2> sert;
};
constexpr ConceptPublie CONCEPTS_PUBLIES[] = {{1, 1, {1}},   {2, 1, {2}},   {3, 2, {3}},       {4, 2, {4}},
                                              {5, 2, {5}},   {6, 1, {6}},   {7, 1, {7}},       {8, 1, {8}},
                                              {11, 1, {11}}, {12, 1, {12}}, {13, 1, {13, 23}}, {14, 1, {23}},
                                              {15, 1, {16}}, {16, 1, {16}}, {17, 1, {14}},     {18, 1, {18}},
                                              {19, 1, {19}}, {20, 1, {20}}, {21, 1, {21}},     {22, 1, {22}}};

// The values of a published code: single characters may be padded with zeros to the width of the column.
std::vector<std::string> decouper(std::string_view code, std::size_t largeur) {
  constexpr std::size_t COLONNE = 10;
  if (largeur == 1 && code.size() == COLONNE) {
    code = code.substr(0, code.find_last_not_of('0') + 1);
  }
  std::vector<std::string> valeurs;
  for (; !code.empty(); code.remove_prefix(std::min(largeur, code.size()))) {
    valeurs.emplace_back(code.substr(0, largeur));
  }
  return valeurs;
}

void lireConcepts(LectureDbf& lecture, std::vector<Concept>& concepts) {
  std::map<std::uint16_t, std::vector<ValeurDeConcept>> valeurs;
  lecture.parcourir("R_TB20", {"DT_DEBUT", "DT_FIN", "CONCEPT", "CODE"}, [&](ChampsDbf& c) {
    auto valeur = c.periode<ValeurDeConcept>();
    const std::uint16_t numero = c.court(2);
    const CodeFixe<10> code = c.code<10>(3);
    if (!c.bons() || numero == 0) {
      return c.refuser("concept sans numéro");
    }
    const auto publie = std::find_if(std::begin(CONCEPTS_PUBLIES), std::end(CONCEPTS_PUBLIES),
                                     [&](const ConceptPublie& connu) { return connu.numero == numero; });
    if (publie == std::end(CONCEPTS_PUBLIES)) {
      return c.refuser("concept dont aucune règle ne sait l'emploi");
    }
    for (const std::string& partie : decouper(code.vue(), publie->largeur)) {
      if (partie.size() != publie->largeur) {
        return c.refuser("concept dont les valeurs ne se découpent pas");
      }
      valeur.code = partie;
      for (const std::uint16_t servi : publie->sert) {
        if (servi != 0) {
          valeurs[servi].push_back(valeur);
        }
      }
    }
    return true;
  });
  for (const auto& [numero, deConcept] : valeurs) {
    concepts.push_back(assembler(numero, deConcept));
  }
}

void lireRegroupements(LectureDbf& lecture, std::vector<Regroupement>& regroupements) {
  std::map<std::string, std::string> libelles;
  lecture.parcourir("R_REGROUPEMENT", {"COD_*", "LIBELLE.."},
                    [&](ChampsDbf& c) { return libelles.emplace(c.cle(0), c.texte(1)).second; });
  lecture.parcourir("R_TB13", {"DT_DEBUT", "DT_FIN", "COD_NATURE"}, [&](ChampsDbf& c) {
    auto regroupement = c.periode<Regroupement>();
    regroupement.code = c.code<3>(2);
    const std::string& libelle = libelles[c.cle(2)];
    regroupement.libelle = libelle.empty() ? phrase("Code de regroupement ", c.cle(2)) : libelle;
    if (c.bons()) {
      regroupements.push_back(std::move(regroupement));
    }
    return c.bons();
  });
  lecture.enchainer(regroupements, &Regroupement::code);
}

}  // namespace

void lireCodes(LectureDbf& lecture, Modele& base) {
  lireEtiquettes(lecture, base.tablesDeCodes);
  lireConcepts(lecture, base.concepts);
  lireRegroupements(lecture, base.regroupements);
}

}  // namespace noxlux::compilateur
