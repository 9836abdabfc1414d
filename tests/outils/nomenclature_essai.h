// A small nomenclature in TOML, complete with the repository's socle, and the compiler run on it.
#ifndef NOXLUX_TESTS_NOMENCLATURE_ESSAI_H
#define NOXLUX_TESTS_NOMENCLATURE_ESSAI_H

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "compilateur/compilation.h"
#include "compilateur/lecteur_toml.h"

namespace noxlux::essai {

namespace fs = std::filesystem;
using namespace noxlux::compilateur;

inline const char* const NOMENCLATURE = R"([entete]
version = "0121"
version_base_ccam = "81000"
date = 2026-01-01
version_minimum = "0113"
revision = 7
variante = "ESSAI"
commentaire = "Petit essai"

[[acte]]
code = "HHFA001"
libelle_court = "Appendicectomie"
libelle_long = "Ablation de l'appendice du rein gauche"
type = "1"
notes = "Avec ou sans drainage"
conditions = "Hospitalisation"
menu = 3
creation = 2005-03-25
natures_assurance = ["10"]
[[acte.historique]]
effet = 2005-03-25
admission = "1"
entente_prealable = true
exonerations = ["1"]
incompatibles = ["ZZLP025"]
[[acte.activite]]
code = "1"
rmo = ["RMO01"]
[[acte.activite.historique]]
effet = 2005-03-25
categorie_medicale = "01"
regroupement = "ADC"
modificateurs = ["A", "F"]
classes_specialite = ["10"]
associations = [ { acte = "ZZLP025", regle = "A" } ]
[[acte.activite.phase]]
code = "0"
age_minimum = 2
age_maximum = 90
[[acte.activite.phase.historique]]
effet = 2005-03-25
prix = 100.01
[[acte.activite.phase.historique]]
effet = 2012-07-01
prix = 193.51
supplement = 12.5
dom = [1.1, 1.2, 1.3, 1.4]

[[acte]]
code = "ZZLP025"
libelle_court = "Anesthesie"
libelle_long = "Anesthesie generale du rein"
type = "1"
menu = 2
creation = 2005-03-25
[[acte.historique]]
effet = 2005-03-25
admission = "1"
[[acte.activite]]
code = "4"
[[acte.activite.historique]]
effet = 2005-03-25
[[acte.activite.phase]]
code = "0"
[[acte.activite.phase.historique]]
effet = 2005-03-25
prix = 48

[[menu]]
code = 1
libelle = "CCAM"
[[menu]]
code = 2
libelle = "Appareil digestif"
pere = 1
[[menu]]
code = 3
libelle = "Actes sur l'intestin"
pere = 2

[[modificateur]]
code = "A"
libelle = "Urgence"
ages = [ { debut = 2005-03-25, minimum = 3, unite_minimum = "M", maximum = 80 } ]
compatibles = [ { code = "F", debut = 2005-03-25 } ]
coherences = [ { debut = 2005-03-25, controle = true, presence_multiple = false } ]
valeurs = [ { debut = 2005-03-25, fin = 2010-12-31, forfait = 20 }, { debut = 2011-01-01, forfait = 22.5 } ]
[[modificateur]]
code = "F"
libelle = "Jour de repos"
valeurs = [ { debut = 2005-03-25, coefficient = 1.49 } ]

[[specialite]]
code = "01"
historiques = [ { debut = 2005-01-01, fin = 2011-12-31, classe = "10" }, { debut = 2012-01-01, classe = "20" } ]
[[specialite]]
code = "02"
historiques = [ { debut = 2008-06-15, classe = "10" } ]

[[association_non_prevue]]
code = "1"
libelle = "Seul acte"
historiques = [ { debut = 2005-03-25, coefficient = 1.0 } ]
[[regle_tarifaire]]
code = "A"
historiques = [ { debut = 2005-03-25, coefficient = 0.5 } ]
[[seuil]]
debut = 2005-03-25
metropole = 120
antilles = 121.5
reunion = 122
guyane = 123
[[caisse]]
code = "000"
jours = [ { jour = 2026-01-01, debut = 2005-03-25 }, { jour = 2026-05-01, debut = 2005-03-25 } ]
[[regroupement]]
code = "ADC"
libelle = "Acte de chirurgie"
debut = 2005-03-25
[[reduction_non_conventionne]]
debut = 2005-03-25
forfait = 3.5
coefficient = 0.8
[[nombre_modificateurs_tarifants]]
debut = 2005-03-25
nombre = 4
[[nombre_modificateurs_transmissibles]]
debut = 2005-03-25
nombre = 2
[[nombre_actes_association]]
debut = 2005-03-25
nombre = 3
[[obligation_codage]]
prestation = "K"
specialites = [ { code = "01", date = 2005-03-25 } ]
[recherche]
mots_vides = ["du", "avec"]
longueur_minimale = 3
[[synonyme]]
mot = "rein"
synonymes = ["renal"]

[[table_codes]]
numero = 1
valeurs = [ { code = "1", libelle = "Activite 1" }, { code = "4", libelle = "Anesthesie" } ]
[[table_codes]]
numero = 3
valeurs = [ { code = "1", libelle = "Isole" } ]
[[table_codes]]
numero = 4
valeurs = [ { code = "01", libelle = "Chirurgie" } ]
[[table_codes]]
numero = 5
valeurs = [ { code = "1", libelle = "Remboursable" } ]
[[table_codes]]
numero = 6
valeurs = [ { code = "1", libelle = "Seuil" } ]
[[table_codes]]
numero = 7
valeurs = [ { code = "10", libelle = "Maladie" } ]
[[table_codes]]
numero = 8
valeurs = [ { code = "A", libelle = "Deplacement" } ]
[[table_codes]]
numero = 11
valeurs = [ { code = "0", libelle = "Aucune" } ]
[[concept]]
numero = 4
historiques = [ { debut = 2005-03-25, valeurs = ["07", "08"] } ]
)";

inline fs::path depot() {
  const char* const sources = std::getenv("NOXLUX_SOURCES");
  return sources == nullptr ? fs::current_path() : fs::path(sources);
}

// A directory of its own for each test, removed with what it holds.
class Repertoire {
 public:
  Repertoire() {
    std::string modele = (fs::temp_directory_path() / "noxlux-essai-XXXXXX").string();
    chemin_ = ::mkdtemp(modele.data());
  }
  ~Repertoire() { fs::remove_all(chemin_); }
  Repertoire(const Repertoire&) = delete;
  Repertoire& operator=(const Repertoire&) = delete;
  const fs::path& chemin() const { return chemin_; }
  fs::path ecrire(const std::string& nom, const std::string& contenu) const {
    std::ofstream(chemin_ / nom, std::ios::binary) << contenu;
    return chemin_ / nom;
  }
  std::size_t nombreFichiers() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(chemin_), fs::directory_iterator()));
  }

 private:
  fs::path chemin_;
};

inline std::string lireOctets(const fs::path& chemin) {
  std::ifstream flux(chemin, std::ios::binary);
  return {std::istreambuf_iterator<char>(flux), std::istreambuf_iterator<char>()};
}

inline const Avancement SANS_AVANCEMENT = [](std::string_view, std::size_t, std::size_t) {};

// What a compilation begins with: the repository's rules and zones, read once. Its code labels and concepts
// are left out: the small nomenclature has its own.
struct Socle {
  Modele modele;
  Rapport rapport;
  Socle() {
    const fs::path socle = depot() / "reference/socle";
    lireSourcesToml({(socle / "regles.toml").string(), (socle / "zones.toml").string()}, modele, rapport);
  }
};

// The faults of the socle and a TOML text compiled together.
inline std::vector<std::string> compilerTexte(const std::string& texte, const fs::path& sortie) {
  static const Socle SOCLE;
  Modele modele = SOCLE.modele;
  Rapport rapport = SOCLE.rapport;
  Bilan bilan;
  lireTexteToml(texte, "essai.toml", modele, rapport);
  compiler(modele, sortie.string(), SANS_AVANCEMENT, rapport, bilan);
  return rapport.lignes();
}

// The text with one passage replaced. REQUIRES: the passage is there.
inline std::string remplacer(std::string texte, const std::string& ancien, const std::string& nouveau) {
  const std::size_t position = texte.find(ancien);
  if (position == std::string::npos) {
    throw std::logic_error("no such passage: " + ancien);
  }
  return texte.replace(position, ancien.size(), nouveau);
}

}  // namespace noxlux::essai

#endif
