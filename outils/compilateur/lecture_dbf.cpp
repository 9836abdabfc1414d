#include "compilateur/lecture_dbf.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace noxlux::compilateur {

namespace {

constexpr double PLAFOND = 1000000.0;

bool estCaractereDeCode(char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z'); }

}  // namespace

bool ChampsDbf::refuser(std::string_view raison) {
  if (raison_.empty()) {
    raison_ = raison;
  }
  return false;
}

std::string ChampsDbf::cle(std::size_t k) const {
  std::string cle(brut(k));
  std::erase(cle, ' ');
  return cle;
}

std::string ChampsDbf::convertir(std::string_view cp850) {
  std::size_t perdus = 0;
  std::string texte = depuisCp850(cp850, perdus);
  if (perdus != 0) {
    bilan_.ajuster("caractères de la page de codes 850 sans équivalent, remplacés par « ? »", lieu_);
  }
  return std::string(rognerChamp(texte));
}

std::string ChampsDbf::texte(std::size_t k) { return convertir(brut(k)); }

std::string ChampsDbf::texteEnTranches(const std::vector<int>& tranches) {
  std::string entier;
  for (const int rang : tranches) {
    entier += table_.brut(rang);
  }
  return convertir(entier);
}

DateBrute ChampsDbf::date(std::size_t k, bool obligatoire) {
  const std::string_view lu = brut(k);
  if (lu.empty() || lu == "00000000") {
    if (obligatoire) {
      refuser("date absente");
    }
    return {};
  }
  unsigned valeur = 0;
  const auto [fin, erreur] = std::from_chars(lu.data(), lu.data() + lu.size(), valeur);
  const DateBrute date{static_cast<std::uint16_t>(valeur / 10000),
                       static_cast<std::uint8_t>(valeur / 100 % 100),
                       static_cast<std::uint8_t>(valeur % 100)};
  if (erreur != std::errc() || fin != lu.data() + lu.size() || lu.size() != 8 || !date.estValide()) {
    refuser("date qui n'est pas un jour du calendrier");
    return {};
  }
  return date;
}

unsigned ChampsDbf::nombre(std::size_t k) {
  const double valeur = decimal(k);
  const auto entier = static_cast<unsigned>(valeur);
  if (valeur != entier) {
    refuser("nombre qui n'est pas entier");
  }
  return entier;
}

std::uint16_t ChampsDbf::court(std::size_t k) {
  const unsigned valeur = nombre(k);
  if (valeur > std::numeric_limits<std::uint16_t>::max()) {
    refuser("nombre trop grand");
  }
  return static_cast<std::uint16_t>(valeur);
}

double ChampsDbf::decimal(std::size_t k) {
  const std::string_view lu = brut(k);
  double valeur = 0.0;
  if (lu.empty()) {
    return valeur;
  }
  const auto [fin, erreur] = std::from_chars(lu.data(), lu.data() + lu.size(), valeur);
  if (erreur != std::errc() || fin != lu.data() + lu.size() || !(valeur >= 0.0) || valeur >= PLAFOND) {
    refuser("nombre illisible");
    return 0.0;
  }
  return valeur;
}

char ChampsDbf::lettre(std::size_t k) {
  const std::string lu = codeDeTaille(cle(k), 1);
  return lu.empty() ? ' ' : lu[0];
}

std::string ChampsDbf::codeDeTaille(std::string lu, std::size_t taille) {
  if (lu.size() > taille || !std::all_of(lu.begin(), lu.end(), estCaractereDeCode)) {
    refuser("code mal écrit");
    return {};
  }
  return lu;
}

std::unique_ptr<TableDbf> LectureDbf::ouvrir(const char* nom, const std::vector<const char*>& colonnes,
                                             bool necessaire, std::vector<int>& rangs) {
  std::string raison;
  std::unique_ptr<TableDbf> table = TableDbf::ouvrir(repertoire_, nom, raison);
  if (table == nullptr) {
    if (!raison.empty()) {
      rapport_.signaler({}, raison);
    } else if (necessaire) {
      rapport_.signaler({}, phrase(repertoire_, " : la table ", nom, " manque"));
    } else {
      bilan_.ajuster("table absente, ce qu'elle dirait vient du complément ou manque", {}, nom);
    }
    return nullptr;
  }
  for (const std::string_view colonne : colonnes) {
    const std::optional<int> rang = colonne.ends_with('*')
                                        ? table->premiereColonne(colonne.substr(0, colonne.size() - 1))
                                        : table->colonne(std::string(colonne).c_str());
    if (!rang) {
      rapport_.signaler({}, phrase(table->chemin(), " : la colonne ", colonne, " manque"));
      return nullptr;
    }
    rangs.push_back(*rang);
  }
  return table;
}

}  // namespace noxlux::compilateur
