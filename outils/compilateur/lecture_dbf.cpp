#include "compilateur/lecture_dbf.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <filesystem>
#include <limits>

#include "compilateur/cp850.h"
#include "compilateur/transcodage.h"

namespace noxlux::compilateur {

namespace {

namespace fs = std::filesystem;

constexpr double PLAFOND = 1000000.0;

bool estCaractereDeCode(char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z'); }

std::string enCapitales(std::string texte) {
  std::transform(texte.begin(), texte.end(), texte.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return texte;
}

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

std::string ChampsDbf::texte(std::size_t k) {
  std::string entier;
  for (const int rang : colonnes_[k]) {
    entier += table_.brut(rang);
  }
  const TexteCp850 lu = depuisCp850(rognerChamp(entier));
  for (const char octet : lu.remplaces) {
    char ecrit[8];
    std::snprintf(ecrit, sizeof ecrit, "0x%02X", static_cast<unsigned>(static_cast<unsigned char>(octet)));
    bilan_.ajuster(phrase("caractère ", ecrit, " de la page de codes 850 remplacé par « ",
                          std::string(1, equivalentCp850(octet)), " »"),
                   lieu_);
  }
  return lu.latin1;
}

DateBrute ChampsDbf::date(std::size_t k) {
  const DateBrute lue = dateOuVide(k);
  if (lue.estNulle()) {
    refuser("date absente");
  }
  return lue;
}

DateBrute ChampsDbf::dateOuVide(std::size_t k) {
  const std::string_view lu = brut(k);
  if (lu.empty() || lu.find_first_not_of('0') == lu.npos) {
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

char ChampsDbf::lettreOuVide(std::size_t k) {
  const std::string lu = codeDeTaille(k, 1);
  return lu.empty() ? ' ' : lu[0];
}

void ChampsDbf::exigerCode(std::size_t k) {
  if (vide(k)) {
    refuser("code absent");
  }
}

std::string ChampsDbf::codeDeTaille(std::size_t k, std::size_t taille) {
  std::string lu = cle(k);
  while (lu.size() > taille && lu[0] == '0') {
    lu.erase(0, 1);
  }
  if (lu.size() > taille || !std::all_of(lu.begin(), lu.end(), estCaractereDeCode)) {
    refuser("code mal écrit");
    return {};
  }
  return lu;
}

std::string ChampsDbf::detail() const {
  constexpr std::size_t COLONNES_DITES = 4;
  std::string resultat;
  for (std::size_t k = 0; k < std::min(colonnes_.size(), COLONNES_DITES); ++k) {
    resultat += phrase(resultat.empty() || vide(k) ? "" : " ", depuisCp850(brut(k)).latin1);
  }
  return versUtf8(resultat);
}

LectureDbf::LectureDbf(const std::string& repertoire, const Avancement& avancement, BilanImport& bilan,
                       Rapport& rapport)
    : repertoire_(repertoire),
      avancement_(avancement),
      bilan_(bilan),
      rapport_(rapport),
      fautes_(rapport.nombreFautes()) {
  std::error_code erreur;
  for (fs::directory_iterator it(repertoire, erreur), fin; !erreur && it != fin; it.increment(erreur)) {
    const std::string extension = it->path().extension().string();
    if (extension == ".dbf" || extension == ".DBF") {
      tables_.emplace(enCapitales(it->path().stem().string()), it->path().string());
    }
  }
  if (erreur) {
    signaler("le répertoire ne peut pas être lu");
  } else if (tables_.empty()) {
    signaler("le répertoire ne contient aucune table dBASE (.dbf)");
  }
}

void LectureDbf::exiger(std::string_view nom) {
  if (!contient(nom)) {
    signaler("la table ", nom, " manque");
  }
}

std::unique_ptr<TableDbf> LectureDbf::ouvrir(const char* nom, const std::vector<std::string_view>& colonnes,
                                             std::vector<std::vector<int>>& rangs) {
  const auto chemin = tables_.find(nom);
  if (chemin == tables_.end()) {
    bilan_.ajuster("table absente : ce qu'elle dirait vient du complément, ou manque", {},
                   phrase("la table ", nom));
    return nullptr;
  }
  std::string raison;
  std::unique_ptr<TableDbf> table = TableDbf::ouvrir(chemin->second, raison);
  if (table == nullptr) {
    rapport_.signaler({}, phrase(chemin->second, " : ", raison));
    return nullptr;
  }
  std::string absentes;
  for (const std::string_view colonne : colonnes) {
    rangs.push_back(table->colonnes(colonne));
    if (rangs.back().empty()) {
      absentes += phrase(absentes.empty() ? "" : ", ", colonne.substr(0, colonne.find('.')));
    }
  }
  if (!absentes.empty()) {
    rapport_.signaler({}, phrase(chemin->second, " : colonnes manquantes : ", absentes));
  }
  return table;
}

}  // namespace noxlux::compilateur
