#include "compilateur/etiquettes.h"

#include <algorithm>

#include "compilateur/transcodage.h"

namespace noxlux::compilateur {

Etiquettes::Etiquettes(const Modele& modele, Rapport& rapport) {
  for (const TableDeCodes& table : modele.tablesDeCodes) {
    for (const ValeurDeCode& valeur : table.valeurs) {
      ajouter(table.numero, valeur.code, valeur.libelle, valeur.lieu, rapport);
    }
  }
  for (const ModificateurActe& modificateur : modele.modificateurs) {
    ajouter(CODES_MODIFICATEUR, {&modificateur.code, 1}, modificateur.libelle, modificateur.lieu, rapport);
  }
  for (const CodeAssociation& association : modele.associationsNonPrevues) {
    ajouter(CODES_ASSOCIATION, {&association.code, 1}, association.libelle, association.lieu, rapport);
  }
  // A grouping code has one line for each period: the newest one gives the label.
  std::map<std::string_view, const Regroupement*> regroupements;
  for (const Regroupement& regroupement : modele.regroupements) {
    const Regroupement*& dernier = regroupements[regroupement.code.vue()];
    if (dernier == nullptr || dernier->debut < regroupement.debut) {
      dernier = &regroupement;
    }
  }
  for (const auto& [code, regroupement] : regroupements) {
    ajouter(CODES_REGROUPEMENT, code, regroupement->libelle, regroupement->lieu, rapport);
  }
}

void Etiquettes::ajouter(std::uint16_t table, std::string_view code, const std::string& libelle, Lieu lieu,
                         Rapport& rapport) {
  const auto [place, nouveau] = tables_[table].try_emplace(std::string(code), Etiquette{libelle, lieu});
  if (!nouveau) {
    rapport.signaler(lieu, phrase("le code « ", versUtf8(code), " » est en double dans la table de codes ",
                                  std::to_string(table)));
  }
}

bool Etiquettes::connait(std::uint16_t numero, std::string_view code) const {
  return table(numero).contains(code);
}

const std::map<std::string, Etiquette, std::less<>>& Etiquettes::table(std::uint16_t numero) const {
  static const std::map<std::string, Etiquette, std::less<>> VIDE;
  const auto trouve = tables_.find(numero);
  return trouve == tables_.end() ? VIDE : trouve->second;
}

std::uint16_t Etiquettes::derniereTable() const {
  const std::uint16_t derniere = tables_.empty() ? std::uint16_t{0} : tables_.rbegin()->first;
  return std::max<std::uint16_t>(derniere, NOMBRE_TABLES_CODES);
}

}  // namespace noxlux::compilateur
