#include "regles/relations_actes.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

#include "regles/concepts.h"

namespace noxlux {

RelationsActes::RelationsActes(const AssociationCCAM& association)
    : date_(*association.date), activite_(*association.activite) {
  std::unordered_map<std::string_view, std::size_t> connus;
  rangs_.reserve(association.lignes.size());
  for (const LigneCCAM* ligne : association.lignes) {
    const auto [place, nouveau] = connus.try_emplace(ligne->acte.vue(), actes_.size());
    if (nouveau) {
      actes_.push_back(&ligne->acte);
    }
    rangs_.push_back(place->second);
  }
}

CodeRetour RelationsActes::lireAssociationsPrevues(LectureDonnees& lecture) {
  const std::size_t nombre = actes_.size();
  std::unordered_map<std::string_view, std::size_t> rangs;
  for (std::size_t a = 0; a < nombre; ++a) {
    rangs.emplace(actes_[a]->vue(), a);
  }
  complementaires_.assign(nombre, false);
  prevus_.assign(nombre * nombre, false);
  ListeCodes typesComplementaires;
  CodeRetour cr =
      lecture.rechercherValeursConcept(CONCEPT_ACTES_COMPLEMENTAIRES, date_, typesComplementaires);
  for (std::size_t a = 0; cr == NOX_CR_OK && a < nombre; ++a) {
    Code type;
    ListeCodes compatibles;
    cr = lecture.rechercherTypeActe(*actes_[a], type);
    if (cr == NOX_CR_OK) {
      complementaires_[a] = typesComplementaires.contient(type);
      cr = lecture.rechercherActesCompatibles(*actes_[a], activite_, date_, compatibles);
    }
    for (const Code& compatible : compatibles) {
      if (const auto b = rangs.find(compatible.vue()); b != rangs.end()) {
        prevus_[a * nombre + b->second] = true;
        prevus_[b->second * nombre + a] = true;
      }
    }
  }
  return cr;
}

CodeRetour RelationsActes::lireProcedures(LectureDonnees& lecture) {
  procedures_.assign(actes_.size(), ListeCodes());
  CodeRetour cr = NOX_CR_OK;
  for (std::size_t a = 0; cr == NOX_CR_OK && a < actes_.size(); ++a) {
    cr = lecture.rechercherProcedures(*actes_[a], date_, procedures_[a]);
  }
  return cr;
}

const Code* RelationsActes::procedureCommune(std::size_t i, std::size_t j) const {
  if (memeActe(i, j)) {
    return nullptr;
  }
  if (estProcedureDe(j, i)) {
    return actes_[rangs_[j]];
  }
  if (estProcedureDe(i, j)) {
    return actes_[rangs_[i]];
  }
  const ListeCodes& deI = procedures_[rangs_[i]];
  const ListeCodes& deJ = procedures_[rangs_[j]];
  const Code* const commune =
      std::find_if(deI.begin(), deI.end(), [&](const Code& code) { return deJ.contient(code); });
  return commune == deI.end() ? nullptr : commune;
}

}  // namespace noxlux
