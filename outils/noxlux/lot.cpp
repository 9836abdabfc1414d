#include "noxlux/lot.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>

#include "compilateur/csv.h"
#include "compilateur/proches.h"
#include "compilateur/systeme.h"
#include "compilateur/transcodage.h"
#include "noxlux/erreurs.h"
#include "noxlux/facture_json.h"
#include "noxlux/presentation.h"
#include "noxlux/sortie.h"

namespace noxlux::commande {

class LectureLot::Source {
 public:
  Source() = default;
  virtual ~Source() = default;
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;
  virtual bool suivante(FactureLue& lue) = 0;
  virtual std::uint64_t octetsLus() const = 0;
  virtual bool attend() const { return false; }
};

namespace {

namespace fs = std::filesystem;
using compilateur::raisonSysteme;

bool estBlanche(const std::string& ligne) { return ligne.find_first_not_of(" \t\r") == std::string::npos; }

// --- One JSON a line, or spread over several ---

class SourceJson : public LectureLot::Source {
 public:
  SourceJson(std::unique_ptr<std::istream> entree, std::optional<std::string> premiere)
      : entree_(std::move(entree)), enAttente_(std::move(premiere)) {}

  bool suivante(FactureLue& lue) override {
    std::string texte;
    if (!lireLigne(texte)) {
      return false;
    }
    // An invoice spread over lines goes on until its braces are closed; the next line that opens one at its
    // very beginning is the next record, whatever this one lacks.
    constexpr std::size_t TAILLE_MAX = 64U << 20U;
    int ouverts = accolades(texte);
    while (ouverts > 0 && texte.size() < TAILLE_MAX) {
      std::string suite;
      if (!lireLigne(suite)) {
        break;
      }
      if (std::string_view(" \t]}").find(suite[0]) == std::string_view::npos) {
        enAttente_ = std::move(suite);
        break;
      }
      ouverts += accolades(suite);
      texte += '\n' + suite;
    }
    lue = {std::move(texte), nullptr, "", ""};
    return true;
  }
  std::uint64_t octetsLus() const override { return octets_; }
  bool attend() const override { return !enAttente_ && entree_->rdbuf()->in_avail() <= 0; }

 private:
  bool lireLigne(std::string& ligne) {
    if (enAttente_) {
      ligne = std::move(*enAttente_);
      enAttente_.reset();
      return true;
    }
    while (std::getline(*entree_, ligne)) {
      octets_ += ligne.size() + 1;
      if (!estBlanche(ligne)) {
        return true;
      }
    }
    return false;
  }
  // Opened less closed, outside texts.
  static int accolades(const std::string& ligne) {
    int ouverts = 0;
    bool dansTexte = false;
    for (std::size_t i = 0; i < ligne.size(); ++i) {
      const char c = ligne[i];
      if (dansTexte) {
        i += c == '\\' ? 1U : 0U;
        dansTexte = c != '"';
      } else {
        dansTexte = c == '"';
        ouverts += c == '{' ? 1 : c == '}' ? -1 : 0;
      }
    }
    return ouverts;
  }

  std::unique_ptr<std::istream> entree_;
  std::optional<std::string> enAttente_;
  std::uint64_t octets_ = 0;
};

// --- A list ---

class SourceListe : public LectureLot::Source {
 public:
  SourceListe(const std::string& texte, const std::string& nom) : octets_(texte.size()) {
    liste_ = lireFacture(texte, nom);
  }

  bool suivante(FactureLue& lue) override {
    if (rang_ == liste_.size()) {
      return false;
    }
    lue = {"", std::move(liste_[rang_++]), "", ""};
    return true;
  }
  std::uint64_t octetsLus() const override { return liste_.empty() ? 0 : octets_ * rang_ / liste_.size(); }

 private:
  Json liste_;
  std::size_t rang_ = 0;
  std::uint64_t octets_;
};

// --- CSV ---

enum class Place { FACTURE, DU_PROFESSIONNEL, DU_BENEFICIAIRE, DE_LA_LIGNE, LISTE, LIBRE };

struct Colonne {
  std::string nom;  // the JSON member
  Place place = Place::LIBRE;
  char type = 'T';
};

std::string cleDeColonne(const std::string& titre) {
  return compilateur::sansAccents(cleCamel(rogner(titre)));
}

// Where each known column goes.
const std::map<std::string, Colonne>& colonnesConnues() {
  static const std::map<std::string, Colonne> CONNUES = [] {
    std::map<std::string, Colonne> connues;
    const auto ajouter = [&](const std::string& nom, Place place, char type) {
      connues.emplace(cleDeColonne(nom), Colonne{nom, place, type});
    };
    for (const char* nom : {"reference", "natureAssurance", "caissePS"}) {
      ajouter(nom, Place::FACTURE, 'T');
    }
    connues.emplace("facture", Colonne{"reference", Place::FACTURE, 'T'});
    for (const char* nom : {"modificateurs", "dents", "outrepassees"}) {
      ajouter(nom, Place::LISTE, 'T');
    }
    for (const char* nom : {"numeroBeneficiaire", "dateNaissance"}) {
      ajouter(nom, Place::DU_BENEFICIAIRE, 'T');
    }
    const DescriptionZones& socle = DescriptionZones::socle();
    for (const ChampDecrit& champ : socle.groupeEntree(1110).champs) {
      ajouter(champ.nom, Place::DU_PROFESSIONNEL, champ.type);
    }
    for (const unsigned groupe : {1610U, 1820U, 1840U, 1880U, 2020U, 2100U}) {
      for (const ChampDecrit& champ : socle.groupeEntree(groupe).champs) {
        if (champ.nom.starts_with("modificateur")) {
          connues.emplace(cleDeColonne(champ.nom), Colonne{"modificateurs", Place::LISTE, 'T'});
        }
        ajouter(champ.nom, Place::DE_LA_LIGNE, champ.type);
      }
    }
    return connues;
  }();
  return CONNUES;
}

// "J K", "J,K" or, of one-letter codes, "JK".
Json liste(const std::string& cellule, bool uneLettre) {
  Json resultat = Json::array();
  std::string mot;
  for (const char c : cellule + ' ') {
    const bool separe = c == ' ' || c == ',' || c == '/' || c == '+';
    if (!separe) {
      mot += c;
    }
    if (!mot.empty() && (separe || uneLettre)) {
      resultat.push_back(std::move(mot));
      mot.clear();
    }
  }
  return resultat;
}

class SourceCsv : public LectureLot::Source {
 public:
  SourceCsv(std::string texte, std::string nom)
      : texte_(enUtf8(std::move(texte))), lecteur_(texte_, separateur(texte_)) {
    compilateur::EnregistrementCsv titres;
    lecteur_.lire(titres);
    bool connue = false;
    for (const std::string& titre : titres.champs) {
      const auto trouvee = colonnesConnues().find(cleDeColonne(titre));
      connue = connue || trouvee != colonnesConnues().end();
      colonnes_.push_back(trouvee != colonnesConnues().end() ? trouvee->second
                                                             : Colonne{rogner(titre), Place::LIBRE, 'T'});
    }
    if (!connue) {
      throw ErreurUsage(nom +
                        " : ni une facture en JSON, ni un CSV dont la première ligne nomme les colonnes");
    }
    avancer();
  }

  bool suivante(FactureLue& lue) override {
    if (!ligne_) {
      return false;
    }
    const std::string reference = referenceDe(*ligne_);
    lue = {"", entete(*ligne_), "", ""};
    do {
      if (ligne_->size() > colonnes_.size()) {
        lue.faute = "$ : la ligne du CSV a " + std::to_string(ligne_->size()) + " cellules pour " +
                    std::to_string(colonnes_.size()) + " colonnes";
      }
      lue.facture["lignes"].push_back(ligneDe(*ligne_));
      avancer();
    } while (ligne_ && !reference.empty() && referenceDe(*ligne_) == reference);
    if (!lue.faute.empty()) {
      lue.facture = nullptr;
    }
    return true;
  }
  std::uint64_t octetsLus() const override { return lecteur_.position(); }

 private:
  // Spreadsheets save ISO-8859-1 too, or put a mark before UTF-8.
  static std::string enUtf8(std::string texte) {
    constexpr std::string_view MARQUE = "\xEF\xBB\xBF";
    if (texte.starts_with(MARQUE)) {
      texte.erase(0, MARQUE.size());
    }
    return compilateur::premierOctetInvalide(texte) == std::string_view::npos ? texte
                                                                              : compilateur::versUtf8(texte);
  }
  // The one that the first line has most of.
  static char separateur(const std::string& texte) {
    const auto fin = std::find(texte.begin(), texte.end(), '\n');
    char choisi = ';';
    for (const char candidat : {',', '\t'}) {
      choisi = std::count(texte.begin(), fin, candidat) > std::count(texte.begin(), fin, choisi) ? candidat
                                                                                                 : choisi;
    }
    return choisi;
  }

  void avancer() {
    compilateur::EnregistrementCsv enregistrement;
    ligne_.reset();
    while (lecteur_.lire(enregistrement)) {
      const bool vide = std::all_of(enregistrement.champs.begin(), enregistrement.champs.end(),
                                    [](const std::string& champ) { return estBlanche(champ); });
      if (!vide) {
        ligne_ = std::move(enregistrement.champs);
        return;
      }
    }
  }
  std::string cellule(const std::vector<std::string>& ligne, std::size_t rang) const {
    const std::string texte = rang < ligne.size() ? ligne[rang] : std::string();
    const std::size_t debut = std::min(texte.find_first_not_of(' '), texte.size());
    return rogner(texte.substr(debut));
  }
  std::string referenceDe(const std::vector<std::string>& ligne) const {
    for (std::size_t i = 0; i < colonnes_.size(); ++i) {
      if (colonnes_[i].nom == "reference" && colonnes_[i].place == Place::FACTURE) {
        return cellule(ligne, i);
      }
    }
    return {};
  }
  // A number when the column holds numbers; a text that is none is left to the check of the invoice, which
  // says where it is.
  static Json valeur(const Colonne& colonne, const std::string& texte) {
    const bool nombre =
        colonne.type == 'M' || colonne.type == 'F' || colonne.type == 'X' || colonne.type == 'N';
    if (const std::optional<double> lu = nombre ? lireNombre(texte) : std::nullopt) {
      return colonne.type == 'N' && *lu >= 0 && *lu < 1e9 ? Json(static_cast<unsigned>(*lu)) : Json(*lu);
    }
    return texte;
  }

  Json entete(const std::vector<std::string>& ligne) const {
    Json facture = {{"professionnel", Json::object()}, {"beneficiaire", Json::object()}};
    for (std::size_t i = 0; i < colonnes_.size(); ++i) {
      const std::string texte = cellule(ligne, i);
      const Colonne& colonne = colonnes_[i];
      if (texte.empty()) {
        continue;
      }
      switch (colonne.place) {
        case Place::FACTURE:
          facture[colonne.nom] = texte;
          break;
        case Place::DU_PROFESSIONNEL:
          facture["professionnel"][colonne.nom] = valeur(colonne, texte);
          break;
        case Place::DU_BENEFICIAIRE:
          facture["beneficiaire"][colonne.nom] = texte;
          break;
        case Place::LIBRE:
          facture["libre"][colonne.nom] = texte;
          break;
        default:
          break;
      }
    }
    facture["lignes"] = Json::array();
    return facture;
  }
  Json ligneDe(const std::vector<std::string>& ligne) const {
    Json objet = Json::object();
    for (std::size_t i = 0; i < colonnes_.size(); ++i) {
      const std::string texte = cellule(ligne, i);
      const Colonne& colonne = colonnes_[i];
      if (!texte.empty() && colonne.place == Place::DE_LA_LIGNE) {
        objet[colonne.nom] = valeur(colonne, texte);
      } else if (!texte.empty() && colonne.place == Place::LISTE) {
        for (Json& element : liste(texte, colonne.nom == "modificateurs")) {
          objet[colonne.nom].push_back(std::move(element));
        }
      }
    }
    return objet;
  }

  std::string texte_;
  compilateur::LecteurCsv lecteur_;
  std::vector<Colonne> colonnes_;
  std::optional<std::vector<std::string>> ligne_;
};

// --- Which one a file is ---

std::unique_ptr<std::istream> ouvrir(const std::string& nom) {
  if (nom == "-") {
    return std::make_unique<std::istream>(std::cin.rdbuf());
  }
  std::error_code erreur;
  errno = 0;
  auto fichier = std::make_unique<std::ifstream>(nom, std::ios::binary);
  if (!*fichier || fs::is_directory(nom, erreur)) {
    throw ErreurUsage("fichier illisible : " + nom + " (" + raisonSysteme(*fichier ? EISDIR : errno) + ")");
  }
  return fichier;
}

std::unique_ptr<LectureLot::Source> ouvrirSource(const std::string& nom) {
  std::unique_ptr<std::istream> entree = ouvrir(nom);
  std::string premiere;
  while (std::getline(*entree, premiere) && estBlanche(premiere)) {
  }
  if (estBlanche(premiere)) {
    return std::make_unique<SourceJson>(std::move(entree), std::nullopt);
  }
  const std::size_t debut = std::min(premiere.find_first_not_of(" \t\xEF\xBB\xBF"), premiere.size() - 1);
  const char signe = premiere[debut];
  if (signe == '{') {
    return std::make_unique<SourceJson>(std::move(entree), premiere.substr(debut));
  }
  std::string texte = premiere + '\n';
  texte.append(std::istreambuf_iterator<char>(*entree), {});
  if (signe == '[') {
    return std::make_unique<SourceListe>(texte.substr(debut), nom);
  }
  return std::make_unique<SourceCsv>(std::move(texte), nom);
}

}  // namespace

void FactureLue::lire() {
  if (texte.empty()) {
    return;
  }
  try {
    facture = lireFacture(texte, "$");
  } catch (const ErreurUsage& erreur) {
    faute = erreur.what();
  }
  texte.clear();
}

LectureLot::LectureLot(std::vector<std::string> fichiers) : fichiers_(std::move(fichiers)) {
  for (const std::string& nom : fichiers_) {
    std::error_code erreur;
    const std::uintmax_t taille = nom == "-" ? 0 : fs::file_size(nom, erreur);
    octets_ += erreur ? 0 : taille;
  }
}

LectureLot::~LectureLot() = default;

std::uint64_t LectureLot::octetsLus() const {
  return octetsFinis_ + (source_ == nullptr ? 0 : source_->octetsLus());
}

bool LectureLot::attend() const { return source_ != nullptr && source_->attend(); }

bool LectureLot::prochaine(FactureLue& lue) {
  for (;;) {
    if (source_ == nullptr) {
      if (rang_ == fichiers_.size()) {
        return false;
      }
      source_ = ouvrirSource(fichiers_[rang_]);
    }
    if (source_->suivante(lue)) {
      lue.fichier = fichiers_[rang_];
      return true;
    }
    std::error_code erreur;
    const std::uintmax_t taille = fichiers_[rang_] == "-" ? 0 : fs::file_size(fichiers_[rang_], erreur);
    octetsFinis_ += erreur ? 0 : taille;
    source_.reset();
    ++rang_;
  }
}

}  // namespace noxlux::commande
