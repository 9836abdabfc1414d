#include "compilateur/lecteur_toml.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <iterator>
#include <set>
#include <type_traits>
#include <utility>

#define TOML_EXCEPTIONS 0
#define TOML_HEADER_ONLY 1
#include <toml++/toml.h>

#include "compilateur/cles_toml.h"
#include "compilateur/lecteur_tableau.h"
#include "compilateur/plafonds.h"
#include "compilateur/proches.h"
#include "compilateur/systeme.h"
#include "compilateur/transcodage.h"
#include "fichier/lecteur.h"

namespace noxlux::compilateur {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view EXTENSION_TABLEAU = ".csv";

// What is being read: the source, and the path of keys down to the current node.
struct Contexte {
  Rapport& rapport;
  std::uint32_t source;
  std::vector<std::string_view> chemin;

  Lieu lieu(const toml::source_region& region) const { return {source, region.begin.line}; }
  std::string nomChemin() const {
    std::string nom;
    for (const std::string_view cle : chemin) {
      nom.append(nom.empty() ? "" : ".").append(cle);
    }
    return nom;
  }
  template <class... T>
  void refuser(const toml::node& noeud, const T&... morceaux) {
    rapport.signaler(lieu(noeud.source()), phrase("« ", nomChemin(), " » : ", morceaux...));
  }
};

class Etape {
 public:
  Etape(Contexte& contexte, std::string_view cle) : contexte_(contexte) { contexte.chemin.push_back(cle); }
  ~Etape() { contexte_.chemin.pop_back(); }
  Etape(const Etape&) = delete;
  Etape& operator=(const Etape&) = delete;

 private:
  Contexte& contexte_;
};

const char* nomType(const toml::node& noeud) {
  switch (noeud.type()) {
    case toml::node_type::table:
      return "une table";
    case toml::node_type::array:
      return "une liste";
    case toml::node_type::string:
      return "un texte";
    case toml::node_type::integer:
      return "un nombre entier";
    case toml::node_type::floating_point:
      return "un nombre décimal";
    case toml::node_type::boolean:
      return "un booléen";
    case toml::node_type::date:
      return "une date";
    default:
      return "une heure";
  }
}

void refuserType(Contexte& contexte, const toml::node& noeud, const char* attendu) {
  contexte.refuser(noeud, "il faut ", attendu, ", et non ", nomType(noeud));
}

// The text in ISO-8859-1. False when there is no text, or a character that it cannot hold.
bool convertirTexte(Contexte& contexte, const toml::node& noeud, std::string& texte) {
  const auto* const valeur = noeud.as_string();
  if (valeur == nullptr) {
    refuserType(contexte, noeud, "un texte");
    return false;
  }
  TexteLatin1 latin1 = versLatin1(valeur->get());
  for (const auto& [caractere, nombre] : latin1.translitteres) {
    contexte.refuser(noeud, "le caractère « ", caractere, " » n'existe pas en ISO-8859-1, écrire « ",
                     versUtf8(equivalentLatin1(caractere)), " »");
  }
  for (const auto& [caractere, nombre] : latin1.sansEquivalent) {
    contexte.refuser(noeud, "le caractère « ", caractere, " » n'existe pas en ISO-8859-1");
  }
  const auto interdit = [](char c) { return static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\t'; };
  const bool commande = std::any_of(latin1.texte.begin(), latin1.texte.end(), interdit);
  if (commande) {
    contexte.refuser(noeud, "le texte contient un caractère de commande");
  }
  texte = std::move(latin1.texte);
  return latin1.translitteres.empty() && latin1.sansEquivalent.empty() && !commande;
}

// The text of a code of at most `largeur` characters.
bool convertirCode(Contexte& contexte, const toml::node& noeud, std::size_t largeur, std::string& texte) {
  if (!convertirTexte(contexte, noeud, texte)) {
    return false;
  }
  if (texte.size() > largeur) {
    contexte.refuser(noeud, "le code « ", versUtf8(texte), " » dépasse ", std::to_string(largeur),
                     largeur == 1 ? " caractère" : " caractères");
    return false;
  }
  if (!Lecteur::controlerCode(texte) || texte.find(' ') != std::string::npos) {
    contexte.refuser(noeud, "le code « ", versUtf8(texte),
                     " » n'est pas fait de lettres capitales et de chiffres");
    return false;
  }
  return true;
}

template <class T>
bool convertirEntier(Contexte& contexte, const toml::node& noeud, T& cible) {
  const auto* const valeur = noeud.as_integer();
  if (valeur == nullptr) {
    refuserType(contexte, noeud, "un nombre entier");
    return false;
  }
  if (valeur->get() < 0 || valeur->get() > static_cast<std::int64_t>(std::numeric_limits<T>::max())) {
    contexte.refuser(noeud, "le nombre ", std::to_string(valeur->get()), " n'est pas entre 0 et ",
                     std::to_string(std::numeric_limits<T>::max()));
    return false;
  }
  cible = static_cast<T>(valeur->get());
  return true;
}

template <class T>
struct EstListe : std::false_type {};
template <class T>
struct EstListe<std::vector<T>> : std::true_type {};

template <class E>
void lireTable(Contexte& contexte, const toml::table& table, E& element);

// One conversion a type of member. Each answers false, the fault being told, when the value is refused.
bool lireValeur(Contexte& contexte, const toml::node& noeud, std::string& cible) {
  return convertirTexte(contexte, noeud, cible);
}

bool lireValeur(Contexte& contexte, const toml::node& noeud, char& cible) {
  std::string texte;
  if (!convertirCode(contexte, noeud, 1, texte)) {
    return false;
  }
  cible = texte.empty() ? ' ' : texte[0];
  return true;
}

bool lireValeur(Contexte& contexte, const toml::node& noeud, TexteVariable& cible) {
  std::string texte;
  const bool lu = convertirTexte(contexte, noeud, texte);
  cible = TexteVariable(texte);
  return lu;
}

template <std::size_t N>
bool lireValeur(Contexte& contexte, const toml::node& noeud, CodeFixe<N>& cible) {
  std::string texte;
  if (!convertirCode(contexte, noeud, N, texte)) {
    return false;
  }
  cible = CodeFixe<N>(texte);
  return true;
}

bool lireValeur(Contexte& contexte, const toml::node& noeud, bool& cible) {
  const auto* const valeur = noeud.as_boolean();
  if (valeur == nullptr) {
    refuserType(contexte, noeud, "un booléen (true ou false)");
    return false;
  }
  cible = valeur->get();
  return true;
}

bool lireValeur(Contexte& contexte, const toml::node& noeud, std::uint16_t& cible) {
  return convertirEntier(contexte, noeud, cible);
}

bool lireValeur(Contexte& contexte, const toml::node& noeud, std::uint32_t& cible) {
  return convertirEntier(contexte, noeud, cible);
}

bool lireValeur(Contexte& contexte, const toml::node& noeud, double& cible) {
  const std::optional<double> valeur = noeud.is_number() ? noeud.value<double>() : std::nullopt;
  if (!valeur) {
    refuserType(contexte, noeud, "un nombre");
    return false;
  }
  if (!std::isfinite(*valeur) || *valeur < 0.0 || *valeur >= PLAFOND_DECIMAL) {
    contexte.refuser(noeud, "la valeur n'est pas entre 0 et 999999");
    return false;
  }
  cible = *valeur;
  return true;
}

bool lireValeur(Contexte& contexte, const toml::node& noeud, DateBrute& cible) {
  const auto* const valeur = noeud.as_date();
  if (valeur == nullptr) {
    refuserType(contexte, noeud, "une date (AAAA-MM-JJ)");
    return false;
  }
  cible = {valeur->get().year, valeur->get().month, valeur->get().day};
  if (!cible.estValide()) {
    contexte.refuser(noeud, "la date n'est pas un jour du calendrier");
    return false;
  }
  return true;
}

// Whether a value read without fault is left blank.
bool estVide(const std::string& valeur) { return valeur.empty(); }
bool estVide(const TexteVariable& valeur) { return valeur.estVide(); }
bool estVide(char valeur) { return valeur == ' '; }
template <std::size_t N>
bool estVide(const CodeFixe<N>& valeur) {
  return valeur.vue().empty();
}
template <class T>
bool estVide(const std::vector<T>& valeur) {
  return valeur.empty();
}
template <class T>
bool estVide(const T&) {
  return false;
}

bool lireValeur(Contexte& contexte, const toml::node& noeud, std::array<double, 4>& cible) {
  const auto* const liste = noeud.as_array();
  if (liste == nullptr || liste->size() != cible.size()) {
    contexte.refuser(noeud, "il faut une liste de quatre nombres");
    return false;
  }
  bool lue = true;
  for (std::size_t i = 0; i < cible.size(); ++i) {
    lue = lireValeur(contexte, *liste->get(i), cible[i]) && lue;
  }
  return lue;
}

template <class T>
bool lireValeur(Contexte& contexte, const toml::node& noeud, std::vector<T>& cible) {
  const auto* const liste = noeud.as_array();
  if (liste == nullptr) {
    refuserType(contexte, noeud, "une liste");
    return false;
  }
  if (liste->size() > PLAFOND_LISTE) {
    contexte.refuser(noeud, "la liste dépasse ", std::to_string(PLAFOND_LISTE), " éléments");
    return false;
  }
  cible.reserve(cible.size() + liste->size());
  for (const toml::node& membre : *liste) {
    if constexpr (std::is_base_of_v<Element, T>) {
      if (const auto* const table = membre.as_table()) {
        lireTable(contexte, *table, cible.emplace_back());
      } else {
        refuserType(contexte, membre, "une table");
      }
    } else {
      T valeur{};
      if (!lireValeur(contexte, membre, valeur)) {
        continue;
      }
      if (estVide(valeur)) {
        contexte.refuser(membre, "valeur vide dans la liste");
      } else {
        cible.push_back(std::move(valeur));
      }
    }
  }
  return true;
}

template <class E>
const std::vector<std::string>& nomsDesCles() {
  static const std::vector<std::string> NOMS = std::apply(
      [](const auto&... cle) { return std::vector<std::string>{std::string(cle.nom)...}; }, CLES<E>);
  return NOMS;
}

void refuserClesInconnues(Contexte& contexte, const toml::table& table,
                          const std::vector<std::string>& connues) {
  for (auto&& [cle, noeud] : table) {
    const std::string_view nom = cle.str();
    if (std::find(connues.begin(), connues.end(), nom) == connues.end()) {
      const std::string dans = contexte.chemin.empty() ? "" : phrase(" dans « ", contexte.nomChemin(), " »");
      contexte.rapport.signaler(contexte.lieu(cle.source()),
                                phrase("clé inconnue « ", nom, " »", dans, vouliezVous(nom, connues)));
    }
  }
}

// The value of a key, or nothing; one that must be there is told.
const toml::node* valeurDe(Contexte& contexte, const toml::table& table, std::string_view nom,
                           bool obligatoire) {
  const toml::node* const noeud = table.get(nom);
  if (noeud == nullptr && obligatoire) {
    contexte.refuser(table, "clé absente");
  }
  return noeud;
}

template <class E, class C, class T>
void lireCle(Contexte& contexte, const toml::table& table, const Cle<C, T>& cle, E& element) {
  const Etape etape(contexte, cle.nom);
  const toml::node* const noeud = valeurDe(contexte, table, cle.nom, cle.obligatoire);
  if (noeud == nullptr) {
    return;
  }
  T& cible = element.*(cle.membre);
  if (lireValeur(contexte, *noeud, cible) && cle.obligatoire && estVide(cible)) {
    contexte.refuser(*noeud, "valeur vide");
  }
}

template <class E>
void lireTable(Contexte& contexte, const toml::table& table, E& element) {
  element.lieu = contexte.lieu(table.source());
  refuserClesInconnues(contexte, table, nomsDesCles<E>());
  std::apply([&](const auto&... cle) { (lireCle(contexte, table, cle, element), ...); }, CLES<E>);
}

// `[entete]` and `[recherche]` stand alone; the other kinds of items are arrays of tables.
void lireModele(Contexte& contexte, const toml::table& table, Modele& modele) {
  refuserClesInconnues(contexte, table, nomsDesCles<Modele>());
  const auto lire = [&](const auto& cle) {
    const toml::node* const noeud = table.get(cle.nom);
    if (noeud == nullptr) {
      return;
    }
    auto& elements = modele.*(cle.membre);
    using E = typename std::remove_reference_t<decltype(elements)>::value_type;
    constexpr bool SEULE = std::is_same_v<E, Entete> || std::is_same_v<E, Recherche>;
    const Etape etape(contexte, cle.nom);
    if constexpr (SEULE) {
      if (const auto* const seule = noeud->as_table()) {
        lireTable(contexte, *seule, elements.emplace_back());
      } else {
        refuserType(contexte, *noeud, "une table");
      }
    } else {
      lireValeur(contexte, *noeud, elements);
    }
  };
  std::apply([&](const auto&... cle) { (lire(cle), ...); }, CLES<Modele>);
}

// Where the text in quotes that opens at a place ends, on its line at the latest.
std::size_t finDesGuillemets(std::string_view texte, std::size_t debut) {
  std::size_t fin = debut + 1;
  while (fin < texte.size() && texte[fin] != texte[debut] && texte[fin] != '\n') {
    fin += texte[fin] == '\\' && texte[debut] == '"' && texte.substr(fin + 1, 1) != "\n" ? 2U : 1U;
  }
  return fin < texte.size() && texte[fin] == '\n' ? fin - 1 : fin;
}

// The line of the first dotted key (a.b.c) of more segments than any source needs; 0 when there is none. A
// key of very many would make tables nested as deep, which the parser takes down by recursion. Words of a
// text are no key: no dot stands between them.
std::uint32_t ligneDeCleTropLongue(std::string_view texte) {
  constexpr unsigned POINTS_MAX = 32;
  std::uint32_t ligne = 1;
  unsigned points = 0;
  char avant = ' ';
  bool blanc = false;
  for (std::size_t i = 0; i < texte.size(); ++i) {
    const char c = texte[i];
    if (c == ' ' || c == '\t') {
      blanc = true;
      continue;
    }
    const bool guillemet = c == '"' || c == '\'';
    const bool deCle = guillemet || c == '_' || c == '-' || std::isalnum(static_cast<unsigned char>(c)) != 0;
    if (c == '.') {
      if (++points >= POINTS_MAX) {
        return ligne;
      }
    } else if (!deCle || (blanc && avant != '.')) {
      points = 0;
    }
    ligne += c == '\n' ? 1U : 0U;
    i = guillemet ? finDesGuillemets(texte, i) : i;
    avant = c;
    blanc = false;
  }
  return 0;
}

// What a fault of the parser, which speaks English, most often is.
std::string_view raisonToml(std::string_view description) {
  constexpr std::pair<std::string_view, std::string_view> RAISONS[] = {
      {"redefin", "cette clé ou cette table est donnée deux fois"},
      {"end-of-file", "le fichier s'arrête au milieu d'une valeur"},
      {"utf-8", "ce texte n'est pas de l'UTF-8"},
      {"line break", "la ligne s'arrête au milieu d'une valeur"},
      {"string", "ce texte entre guillemets n'est pas écrit comme il le doit"},
      {"date", "cette date n'est pas écrite comme elle le doit"},
      {"integer", "ce nombre n'est pas écrit comme il le doit"},
      {"float", "ce nombre n'est pas écrit comme il le doit"},
      {"array", "cette liste n'est pas écrite comme elle le doit"},
      {"table", "ce nom de table n'est pas écrit comme il le doit"},
      {"key", "une clé, « = » et une valeur sont attendus"}};
  const auto* const trouvee = std::find_if(std::begin(RAISONS), std::end(RAISONS), [&](const auto& raison) {
    return description.find(raison.first) != std::string_view::npos;
  });
  return trouvee == std::end(RAISONS) ? "ce texte n'est pas du TOML" : trouvee->second;
}

void lireTexte(std::string_view texte, std::uint32_t source, Modele& modele, Rapport& rapport) {
  const std::size_t invalide = premierOctetInvalide(texte);
  if (invalide != std::string_view::npos) {
    const auto lignes =
        std::count(texte.begin(), texte.begin() + static_cast<std::ptrdiff_t>(invalide), '\n');
    rapport.signaler({source, static_cast<std::uint32_t>(lignes + 1)}, "le fichier n'est pas en UTF-8");
    return;
  }
  if (rapport.nomSource(source).ends_with(EXTENSION_TABLEAU)) {
    lireTableau(texte, source, modele, rapport);
    return;
  }
  if (const std::uint32_t ligne = ligneDeCleTropLongue(texte); ligne != 0) {
    rapport.signaler({source, ligne}, "clé de trop de segments");
    return;
  }
  const toml::parse_result resultat = toml::parse(texte);
  if (!resultat) {
    rapport.signaler(
        {source, resultat.error().source().begin.line},
        phrase("TOML mal formé, colonne ", std::to_string(resultat.error().source().begin.column), " : ",
               raisonToml(resultat.error().description())));
    return;
  }
  Contexte contexte{rapport, source, {}};
  lireModele(contexte, resultat.table(), modele);
}

void lireSource(const fs::path& chemin, Modele& modele, Rapport& rapport) {
  const std::uint32_t source = rapport.declarerSource(chemin.string());
  std::string texte;
  const std::string raison = lireFichier(chemin.string(), texte);
  if (!raison.empty()) {
    rapport.signaler({source, 0}, phrase("le fichier ne peut pas être lu (", raison, ")"));
    return;
  }
  lireTexte(texte, source, modele, rapport);
}

// The files that a path stands for.
std::vector<fs::path> fichiersDe(const fs::path& chemin, Rapport& rapport) {
  std::vector<fs::path> fichiers;
  std::error_code erreur;
  const fs::file_status etat = fs::status(chemin, erreur);
  const auto refuser = [&](const char* raison) {
    rapport.signaler({rapport.declarerSource(chemin.string()), 0}, raison);
  };
  if (!fs::exists(etat)) {
    refuser("ce fichier ou ce répertoire n'existe pas");
  } else if (!fs::is_directory(etat)) {
    fichiers.push_back(chemin);
  } else {
    for (fs::directory_iterator it(chemin, erreur), fin; !erreur && it != fin; it.increment(erreur)) {
      if (it->path().extension() == ".toml" || it->path().extension() == EXTENSION_TABLEAU) {
        fichiers.push_back(it->path());
      }
    }
    std::sort(fichiers.begin(), fichiers.end());
    if (erreur) {
      refuser("le répertoire ne peut pas être lu");
    } else if (fichiers.empty()) {
      refuser("le répertoire ne contient aucun fichier .toml ni .csv");
    }
  }
  return fichiers;
}

}  // namespace

void lireTexteToml(std::string_view texte, std::string nom, Modele& modele, Rapport& rapport) {
  lireTexte(texte, rapport.declarerSource(std::move(nom)), modele, rapport);
}

void lireSourcesToml(const std::vector<std::string>& chemins, Modele& modele, Rapport& rapport) {
  std::set<fs::path> lus;
  for (const std::string& chemin : chemins) {
    for (const fs::path& fichier : fichiersDe(chemin, rapport)) {
      std::error_code erreur;
      const fs::path reel = fs::canonical(fichier, erreur);
      if (lus.insert(erreur ? fichier : reel).second) {
        lireSource(fichier, modele, rapport);
      }
    }
  }
}

}  // namespace noxlux::compilateur
