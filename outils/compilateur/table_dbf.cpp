#include "compilateur/table_dbf.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <limits>

namespace noxlux::compilateur {

namespace {

constexpr std::string_view SUITES = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr std::size_t LONGUEUR_NOM = 10;  // of a column: names are cut there

// What the header announces against what the file holds; empty when it holds it.
std::string controlerTaille(const std::string& chemin) {
  std::ifstream flux(chemin, std::ios::binary);
  if (!flux.is_open()) {
    return "le fichier ne peut pas être lu";
  }
  std::array<char, 32> entete{};
  if (!flux.read(entete.data(), entete.size())) {
    return "le fichier est trop court pour une table dBASE";
  }
  const auto octet = [&](std::size_t i) { return std::uint64_t{static_cast<unsigned char>(entete[i])}; };
  const std::uint64_t nombre = octet(4) | octet(5) << 8U | octet(6) << 16U | octet(7) << 24U;
  const std::uint64_t debut = octet(8) | octet(9) << 8U;
  const std::uint64_t longueur = octet(10) | octet(11) << 8U;
  std::error_code erreur;
  const std::uint64_t taille = std::filesystem::file_size(chemin, erreur);
  if ((octet(0) & 0x07U) != 3 || debut <= entete.size() || longueur == 0 || erreur) {
    return "le fichier n'est pas une table dBASE III";
  }
  if (nombre > std::uint64_t{std::numeric_limits<int>::max()} || debut + nombre * longueur > taille) {
    return "le fichier est tronqué : il annonce " + std::to_string(nombre) +
           " enregistrements et n'en contient pas autant";
  }
  return {};
}

}  // namespace

std::unique_ptr<TableDbf> TableDbf::ouvrir(const std::string& chemin, std::string& raison) {
  raison = controlerTaille(chemin);
  if (!raison.empty()) {
    return nullptr;
  }
  std::unique_ptr<TableDbf> table(new TableDbf);
  table->chemin_ = chemin;
  table->table_.reset(DBFOpen(chemin.c_str(), "rb"));
  // Columns wider than the records are refused here.
  if (table->table_ == nullptr) {
    raison = "la table dBASE est illisible";
    return nullptr;
  }
  table->lireNoms();
  table->nombre_ = static_cast<std::uint32_t>(DBFGetRecordCount(table->table_.get()));
  return table;
}

void TableDbf::lireNoms() {
  for (int rang = 0; rang < DBFGetFieldCount(table_.get()); ++rang) {
    std::array<char, XBASE_FLDNAME_LEN_READ + 1> nom{};
    DBFGetFieldInfo(table_.get(), rang, nom.data(), nullptr, nullptr);
    std::string& capitales = noms_.emplace_back(nom.data());
    std::transform(capitales.begin(), capitales.end(), capitales.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  }
}

std::vector<int> TableDbf::colonnes(std::string_view nom) const {
  if (nom.ends_with("..")) {
    return tranches(nom.substr(0, nom.size() - 2));
  }
  const bool prefixe = nom.ends_with('*');
  const std::string_view debut = prefixe ? nom.substr(0, nom.size() - 1) : nom;
  const auto trouve = std::find_if(noms_.begin(), noms_.end(), [&](const std::string& colonne) {
    return prefixe ? colonne.starts_with(debut) : colonne == debut;
  });
  return trouve == noms_.end() ? std::vector<int>() : std::vector{static_cast<int>(trouve - noms_.begin())};
}

// The slices in the order of their numbers. Where the name leaves no room for a number, the number takes the
// place of its last character, or is lost: such columns are taken in the order of the file.
std::vector<int> TableDbf::tranches(std::string_view nom) const {
  const bool coupe = nom.size() >= LONGUEUR_NOM;
  const std::string_view debut = coupe ? nom.substr(0, LONGUEUR_NOM - 1) : nom;
  std::vector<std::pair<std::size_t, int>> trouvees;
  for (std::size_t rang = 0; rang < noms_.size(); ++rang) {
    const std::string& colonne = noms_[rang];
    const std::size_t suite = colonne.size() == debut.size() + 1 && colonne.starts_with(debut)
                                  ? SUITES.find(colonne.back())
                                  : SUITES.npos;
    if (colonne == nom || suite != SUITES.npos) {
      trouvees.emplace_back(coupe || colonne == nom ? 0 : suite + 1, static_cast<int>(rang));
    }
  }
  std::stable_sort(trouvees.begin(), trouvees.end(),
                   [](const auto& g, const auto& d) { return g.first < d.first; });
  std::vector<int> rangs;
  for (const auto& [ordre, rang] : trouvees) {
    rangs.push_back(rang);
  }
  return rangs;
}

bool TableDbf::lire(std::uint32_t i) {
  enregistrement_ = DBFReadTuple(table_.get(), static_cast<int>(i));
  return enregistrement_ != nullptr;
}

std::string_view TableDbf::brut(int colonne) const {
  return {enregistrement_ + table_->panFieldOffset[colonne],
          static_cast<std::size_t>(table_->panFieldSize[colonne])};
}

std::string_view rognerChamp(std::string_view champ) {
  constexpr std::string_view BLANCS(" \0\t\r\n", 5);
  const std::size_t debut = champ.find_first_not_of(BLANCS);
  return debut == champ.npos ? std::string_view()
                             : champ.substr(debut, champ.find_last_not_of(BLANCS) - debut + 1);
}

}  // namespace noxlux::compilateur
