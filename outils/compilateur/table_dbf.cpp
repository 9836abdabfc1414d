#include "compilateur/table_dbf.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <fstream>

namespace noxlux::compilateur {

namespace {

namespace fs = std::filesystem;

// ISO-8859-1 of the characters 0x80 to 0xFF of code page 850; 0 for those it does not have.
constexpr std::array<unsigned char, 128> CP850 = {
    0xC7, 0xFC, 0xE9, 0xE2, 0xE4, 0xE0, 0xE5, 0xE7, 0xEA, 0xEB, 0xE8, 0xEF, 0xEE, 0xEC, 0xC4, 0xC5,
    0xC9, 0xE6, 0xC6, 0xF4, 0xF6, 0xF2, 0xFB, 0xF9, 0xFF, 0xD6, 0xDC, 0xF8, 0xA3, 0xD8, 0xD7, 0x00,
    0xE1, 0xED, 0xF3, 0xFA, 0xF1, 0xD1, 0xAA, 0xBA, 0xBF, 0xAE, 0xAC, 0xBD, 0xBC, 0xA1, 0xAB, 0xBB,
    0x00, 0x00, 0x00, 0x00, 0x00, 0xC1, 0xC2, 0xC0, 0xA9, 0x00, 0x00, 0x00, 0x00, 0xA2, 0xA5, 0x00,
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xE3, 0xC3, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xA4,
    0xF0, 0xD0, 0xCA, 0xCB, 0xC8, 0x00, 0xCD, 0xCE, 0xCF, 0x00, 0x00, 0x00, 0x00, 0xA6, 0xCC, 0x00,
    0xD3, 0xDF, 0xD4, 0xD2, 0xF5, 0xD5, 0xB5, 0xFE, 0xDE, 0xDA, 0xDB, 0xD9, 0xFD, 0xDD, 0xAF, 0xB4,
    0xAD, 0xB1, 0x00, 0xBE, 0xB6, 0xA7, 0xF7, 0xB8, 0xB0, 0xA8, 0xB7, 0xB9, 0xB3, 0xB2, 0x00, 0xA0,
};

bool memeNom(std::string_view gauche, std::string_view droite) {
  return std::equal(gauche.begin(), gauche.end(), droite.begin(), droite.end(), [](char a, char b) {
    return std::toupper(static_cast<unsigned char>(a)) == std::toupper(static_cast<unsigned char>(b));
  });
}

// What the header announces against what the file holds; empty when it holds it.
std::string controlerTaille(const fs::path& chemin) {
  std::ifstream flux(chemin, std::ios::binary);
  std::array<char, 32> entete{};
  if (!flux.read(entete.data(), entete.size())) {
    return "le fichier est trop court pour une table dBASE";
  }
  const auto octet = [&](std::size_t i) { return std::uint64_t{static_cast<unsigned char>(entete[i])}; };
  const std::uint64_t nombre = octet(4) | octet(5) << 8U | octet(6) << 16U | octet(7) << 24U;
  const std::uint64_t debut = octet(8) | octet(9) << 8U;
  const std::uint64_t longueur = octet(10) | octet(11) << 8U;
  std::error_code erreur;
  const std::uint64_t taille = fs::file_size(chemin, erreur);
  if ((octet(0) & 0x07U) != 3 || debut < entete.size() || longueur == 0 || erreur) {
    return "le fichier n'est pas une table dBASE III";
  }
  return debut + nombre * longueur > taille
             ? "le fichier est tronqué : il annonce plus d'enregistrements qu'il n'en contient"
             : std::string();
}

}  // namespace

std::unique_ptr<TableDbf> TableDbf::ouvrir(const std::string& repertoire, std::string_view nom,
                                           std::string& raison) {
  raison.clear();
  std::error_code erreur;
  for (fs::directory_iterator it(repertoire, erreur), fin; !erreur && it != fin; it.increment(erreur)) {
    const fs::path& chemin = it->path();
    if (!memeNom(chemin.extension().string(), ".dbf") || !memeNom(chemin.stem().string(), nom)) {
      continue;
    }
    std::unique_ptr<TableDbf> table(new TableDbf);
    table->chemin_ = chemin.string();
    raison = controlerTaille(chemin);
    if (raison.empty()) {
      table->table_.reset(DBFOpen(chemin.c_str(), "rb"));
      raison = table->table_ == nullptr ? "la table dBASE est illisible" : "";
    }
    if (!raison.empty()) {
      raison = chemin.string() + " : " + raison;
      return nullptr;
    }
    table->nombre_ = static_cast<std::uint32_t>(std::max(0, DBFGetRecordCount(table->table_.get())));
    return table;
  }
  return nullptr;
}

std::optional<int> TableDbf::colonne(const char* nom) const {
  const int rang = DBFGetFieldIndex(table_.get(), nom);
  return rang < 0 ? std::nullopt : std::optional(rang);
}

std::optional<int> TableDbf::premiereColonne(std::string_view debut) const {
  for (int rang = 0; rang < DBFGetFieldCount(table_.get()); ++rang) {
    char nom[XBASE_FLDNAME_LEN_READ + 1] = {};
    DBFGetFieldInfo(table_.get(), rang, nom, nullptr, nullptr);
    if (std::string_view(nom).starts_with(debut)) {
      return rang;
    }
  }
  return std::nullopt;
}

std::vector<int> TableDbf::tranches(const std::string& nom) const {
  std::vector<int> rangs;
  if (const std::optional<int> premiere = colonne(nom.c_str())) {
    rangs.push_back(*premiere);
  }
  for (const char suite : std::string_view("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ")) {
    if (const std::optional<int> rang = colonne((nom + suite).c_str())) {
      rangs.push_back(*rang);
    }
  }
  return rangs;
}

bool TableDbf::lire(std::uint32_t i) {
  enregistrement_ = DBFReadTuple(table_.get(), static_cast<int>(i));
  return enregistrement_ != nullptr && *enregistrement_ != '*';
}

std::string_view TableDbf::brut(int colonne) const {
  return {enregistrement_ + table_->panFieldOffset[colonne],
          static_cast<std::size_t>(table_->panFieldSize[colonne])};
}

std::string depuisCp850(std::string_view texte, std::size_t& perdus) {
  std::string latin1;
  latin1.reserve(texte.size());
  for (const char c : texte) {
    const auto octet = static_cast<unsigned char>(c);
    if (octet >= 0x80 && CP850[octet - 0x80U] == 0) {
      ++perdus;
      latin1 += '?';
    } else if (octet >= 0x80) {
      latin1 += static_cast<char>(CP850[octet - 0x80U]);
    } else if (octet >= 0x20 || c == '\n' || c == '\t') {
      latin1 += c;
    }
  }
  return latin1;
}

std::string_view rognerChamp(std::string_view champ) {
  constexpr std::string_view BLANCS(" \0\t\r\n", 5);
  const std::size_t debut = champ.find_first_not_of(BLANCS);
  return debut == champ.npos ? std::string_view()
                             : champ.substr(debut, champ.find_last_not_of(BLANCS) - debut + 1);
}

}  // namespace noxlux::compilateur
