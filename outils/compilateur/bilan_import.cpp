#include "compilateur/bilan_import.h"

#include <algorithm>

namespace noxlux::compilateur {

namespace {

// Advice is told case by case up to here, even to who did not ask for each.
constexpr std::size_t AVIS_DITS_UN_A_UN = 20;

}  // namespace

BilanImport::Compte& BilanImport::compte(std::string_view quoi) {
  const auto trouve =
      std::find_if(comptes_.begin(), comptes_.end(), [&](const Compte& c) { return c.quoi == quoi; });
  return trouve != comptes_.end() ? *trouve : comptes_.emplace_back(Compte{std::string(quoi)});
}

void BilanImport::noter(Genres& genres, std::string_view raison, Lieu lieu, std::string detail,
                        std::size_t nombre) {
  auto genre = genres.find(raison);
  if (genre == genres.end()) {
    genre = genres.emplace(raison, Genre()).first;
  }
  genre->second.nombre += nombre;
  if (genre->second.cas.size() < Genre::CAS_GARDES) {
    genre->second.cas.push_back({lieu, std::move(detail)});
  }
}

std::size_t BilanImport::nombreEcartes() const {
  std::size_t nombre = 0;
  for (const auto& [raison, genre] : ecartes_) {
    nombre += genre.nombre;
  }
  return nombre;
}

std::vector<std::string> BilanImport::lignes(const Rapport& rapport, bool verbeux) const {
  std::vector<std::string> resultat;
  for (const Compte& compte : comptes_) {
    resultat.push_back(
        phrase(compte.quoi, " : ", std::to_string(compte.lus), " lus",
               compte.gardes == 0 ? "" : phrase(", ", std::to_string(compte.gardes), " gardés")));
  }
  const auto decrire = [&](const Genres& genres, const char* titre, std::size_t sansDemander) {
    for (const auto& [raison, genre] : genres) {
      resultat.push_back(phrase(titre, std::to_string(genre.nombre), " : ", raison));
      for (const Cas& un : verbeux || genre.nombre <= sansDemander ? genre.cas : std::vector<Cas>()) {
        const std::string ligne = un.lieu.ligne == 0 ? "" : phrase(":", std::to_string(un.lieu.ligne));
        resultat.push_back(phrase("    ", rapport.nomSource(un.lieu.source), ligne,
                                  un.detail.empty() ? "" : phrase(": ", un.detail)));
      }
      if (verbeux && genre.cas.size() == Genre::CAS_GARDES) {
        resultat.push_back("    ... (la suite n'est pas montrée)");
      }
    }
  };
  decrire(ajustes_, "ajustés, ", 0);
  decrire(ecartes_, "écartés, ", 0);
  decrire(avis_, "à savoir, ", AVIS_DITS_UN_A_UN);
  resultat.insert(resultat.end(), phrases_.begin(), phrases_.end());
  constexpr std::array<const char*, NOMBRE_ORIGINES> ORIGINES = {" importés", " du complément", " par défaut",
                                                                 " absents"};
  for (const auto& [sujet, nombres] : fondements_) {
    std::string detail;
    for (std::size_t i = 0; i < ORIGINES.size(); ++i) {
      if (nombres[i] != 0) {
        detail += phrase(detail.empty() ? "" : ", ", std::to_string(nombres[i]), ORIGINES[i]);
      }
    }
    resultat.push_back(phrase("fondement, ", sujet, " : ", detail));
  }
  return resultat;
}

}  // namespace noxlux::compilateur
