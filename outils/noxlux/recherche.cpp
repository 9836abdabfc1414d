#include "noxlux/recherche.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <unordered_map>

#include "compilateur/proches.h"
#include "noxlux/demandes.h"
#include "noxlux/erreurs.h"
#include "noxlux/presentation.h"
#include "noxlux/tableau.h"

namespace noxlux::commande {

namespace {

// Words that hold others together, and say nothing of an act.
const std::set<std::string>& motsVides() {
  static const std::set<std::string> MOTS = {"a",   "au",   "aux",  "avec", "d",  "dans", "de",  "des",
                                             "du",  "en",   "et",   "l",    "la", "le",   "les", "ou",
                                             "par", "pour", "sans", "sur",  "un", "une",  "son", "ses"};
  return MOTS;
}

// The words of a text, without accents, each in its singular.
std::vector<std::string> motsSimples(const std::string& texte) {
  std::vector<std::string> mots;
  std::string mot;
  for (const char c : compilateur::sansAccents(texte) + ' ') {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0) {
      mot += c;
      continue;
    }
    if (mot.size() > 3 && (mot.back() == 's' || mot.back() == 'x')) {
      mot.pop_back();
    }
    if (!mot.empty()) {
      mots.push_back(std::move(mot));
    }
    mot.clear();
  }
  return mots;
}

std::vector<std::string> motsCherches(const std::string& texte) {
  std::vector<std::string> mots = motsSimples(texte);
  std::vector<std::string> gardes;
  std::copy_if(mots.begin(), mots.end(), std::back_inserter(gardes),
               [](const std::string& mot) { return !motsVides().contains(mot); });
  return gardes.empty() ? mots : gardes;
}

// How well a word stands among others: the whole word, else the beginning of one.
int accord(const std::string& cherche, const std::vector<std::string>& mots) {
  constexpr std::size_t DEBUT_MINIMAL = 3;
  int meilleur = 0;
  for (const std::string& mot : mots) {
    if (mot == cherche) {
      return 2;
    }
    meilleur = cherche.size() >= DEBUT_MINIMAL && mot.starts_with(cherche) ? 1 : meilleur;
  }
  return meilleur;
}

class Recherche {
 public:
  Recherche(const CriteresRecherche& criteres, std::string date, const MotsDesActes& mots)
      : criteres_(criteres), date_(std::move(date)), catalogue_(mots.catalogue()), fiches_(mots.fiches()) {}

  Json chercher() {
    const std::vector<std::string> cherches = motsCherches(criteres_.texte);
    std::unordered_map<std::string, int> points;
    Json suggestions = Json::array();
    bool premier = true;
    for (const std::string& cherche : cherches) {
      const auto trouves = pointsDuMot(cherche);
      if (trouves.empty()) {
        suggestions.push_back(
            {{"mot", cherche}, {"propositions", compilateur::proches(cherche, vocabulaire())}});
      }
      points = premier ? trouves : communs(points, trouves);
      premier = false;
    }
    Json actes = retenir(points);
    const std::size_t nombre = actes.size();
    if (criteres_.limite != 0 && nombre > criteres_.limite) {
      actes.erase(actes.begin() + static_cast<std::ptrdiff_t>(criteres_.limite), actes.end());
    }
    return {{"nombre", nombre}, {"actes", std::move(actes)}, {"suggestions", std::move(suggestions)}};
  }

 private:
  using Fiche = MotsDesActes::Fiche;

  std::unordered_map<std::string, int> pointsDuMot(const std::string& cherche) const {
    constexpr int COURT = 8;
    constexpr int COMPLET = 5;
    constexpr int AILLEURS = 2;  // notes, chapters, synonyms
    constexpr int CODE = 40;
    std::unordered_map<std::string, int> points;
    for (const Fiche& fiche : fiches_) {
      const std::string code = compilateur::sansAccents(fiche.acte->code);
      int total = COURT * accord(cherche, fiche.court) + COMPLET * accord(cherche, fiche.complet);
      total += cherche.size() >= 3 && code.starts_with(cherche) ? CODE : 0;
      if (total != 0) {
        points[fiche.acte->code] = total;
      }
    }
    for (const std::string& code : actesDuMotCle(cherche)) {
      points[code] += AILLEURS;
    }
    return points;
  }

  static std::unordered_map<std::string, int> communs(const std::unordered_map<std::string, int>& gauche,
                                                      const std::unordered_map<std::string, int>& droite) {
    std::unordered_map<std::string, int> resultat;
    for (const auto& [code, points] : gauche) {
      if (const auto autre = droite.find(code); autre != droite.end()) {
        resultat[code] = points + autre->second;
      }
    }
    return resultat;
  }

  std::vector<std::string> vocabulaire() const {
    std::set<std::string> mots;
    for (const Fiche& fiche : fiches_) {
      for (const auto* liste : {&fiche.court, &fiche.complet}) {
        std::copy_if(liste->begin(), liste->end(), std::inserter(mots, mots.end()),
                     [](const std::string& mot) { return mot.size() >= 4; });
      }
    }
    return {mots.begin(), mots.end()};
  }

  // Those that the other criteria admit, best first.
  Json retenir(const std::unordered_map<std::string, int>& points) const {
    const std::set<std::uint32_t> chapitres = chapitresDemandes();
    std::vector<std::pair<int, const ActeConnu*>> ordre;
    for (const Fiche& fiche : fiches_) {
      const auto trouve = points.find(fiche.acte->code);
      const bool place = criteres_.chapitre.empty() ||
                         std::any_of(chapitres.begin(), chapitres.end(), [&](std::uint32_t dessus) {
                           return catalogue_.estDans(fiche.acte->menu, dessus);
                         });
      if (trouve != points.end() && place) {
        ordre.emplace_back(trouve->second, fiche.acte);
      }
    }
    std::stable_sort(ordre.begin(), ordre.end(),
                     [](const auto& gauche, const auto& droite) { return gauche.first > droite.first; });
    const bool parPrix = criteres_.prixMinimum || criteres_.prixMaximum;
    Json actes = Json::array();
    for (const auto& [total, acte] : ordre) {
      // Beyond the limit only their number is told.
      const bool montre = criteres_.limite == 0 || actes.size() < criteres_.limite;
      Json prix = montre || parPrix ? prixDe(acte->code) : Json();
      if (parPrix && !(prix.is_number() && prix >= criteres_.prixMinimum.value_or(0.0) &&
                       prix <= criteres_.prixMaximum.value_or(1e9))) {
        continue;
      }
      const auto chapitre = catalogue_.chapitres().find(acte->menu);
      actes.push_back(
          {{"code", acte->code},
           {"libelle", acte->libelleCourt},
           {"prix", std::move(prix)},
           {"chapitre",
            {{"code", acte->menu},
             {"titre", chapitre == catalogue_.chapitres().end() ? std::string() : chapitre->second.titre}}}});
    }
    return actes;
  }

  // By its code, or every one whose title holds the words.
  std::set<std::uint32_t> chapitresDemandes() const {
    std::set<std::uint32_t> codes;
    const std::vector<std::string> mots = motsCherches(criteres_.chapitre);
    std::vector<std::string> titres;
    for (const auto& [code, chapitre] : catalogue_.chapitres()) {
      const std::vector<std::string> titre = motsSimples(chapitre.titre);
      titres.push_back(chapitre.titre);
      const bool tous = std::all_of(mots.begin(), mots.end(),
                                    [&](const std::string& mot) { return accord(mot, titre) != 0; });
      if (std::to_string(code) == criteres_.chapitre || (tous && !mots.empty())) {
        codes.insert(code);
      }
    }
    if (codes.empty() && !criteres_.chapitre.empty()) {
      throw ErreurUsage("aucun chapitre « " + criteres_.chapitre + " »" +
                        compilateur::vouliezVous(criteres_.chapitre, titres));
    }
    return codes;
  }

  Json prixDe(const std::string& code) const {
    const std::vector<PhaseConnue> phases = catalogue_.phases(code);
    if (phases.empty()) {
      return nullptr;
    }
    const Json cle = {{"acte", code},
                      {"activite", std::string(1, phases.front().activite)},
                      {"phase", std::string(1, phases.front().phase)}};
    return consulter("CCAM_37", cle, date_).champ("montant");
  }

  const CriteresRecherche& criteres_;
  std::string date_;
  const Catalogue& catalogue_;
  const std::vector<Fiche>& fiches_;
};

}  // namespace

void lirePrix(const std::string& texte, CriteresRecherche& criteres) {
  const std::size_t points = texte.find("..");
  if (texte.empty()) {
    return;
  }
  const auto borne = [&](const std::string& morceau) -> std::optional<double> {
    if (morceau.empty()) {
      return std::nullopt;
    }
    const std::optional<double> valeur = lireNombre(morceau);
    if (!valeur) {
      throw ErreurUsage("prix : « " + morceau + " » n'est pas un montant en euros");
    }
    return valeur;
  };
  if (points == std::string::npos) {
    throw ErreurUsage("prix : deux montants en euros sont attendus, comme 100..200");
  }
  criteres.prixMinimum = borne(texte.substr(0, points));
  criteres.prixMaximum = borne(texte.substr(points + 2));
}

MotsDesActes::MotsDesActes(const Catalogue& catalogue) : catalogue_(catalogue) {
  for (const ActeConnu& acte : catalogue.actes()) {
    fiches_.push_back({&acte, motsSimples(acte.libelleCourt), motsSimples(acte.libelleLong)});
  }
}

Json rechercherActes(const CriteresRecherche& criteres, const std::string& date, const MotsDesActes& mots) {
  return Recherche(criteres, date, mots).chercher();
}

void afficherRecherche(const Json& resultat, std::ostream& sortie) {
  Tableau tableau({"code", "prix", "libellé", "chapitre"});
  for (const Json& acte : resultat["actes"]) {
    tableau.ajouter({acte["code"].get<std::string>(), eurosOuTiret(acte["prix"]),
                     acte["libelle"].get<std::string>(), acte["chapitre"]["titre"].get<std::string>()});
  }
  if (!tableau.estVide()) {
    tableau.afficher(sortie);
  }
  const std::size_t nombre = resultat["nombre"].get<std::size_t>();
  const std::size_t montres = resultat["actes"].size();
  sortie << (nombre == 0 ? "Aucun acte." : std::to_string(nombre) + (nombre > 1 ? " actes" : " acte"))
         << (montres < nombre ? ", les " + std::to_string(montres) + " premiers (--limite 0 les montre tous)."
                              : "")
         << '\n';
  for (const Json& suggestion : resultat["suggestions"]) {
    std::string propositions;
    for (const Json& mot : suggestion["propositions"]) {
      propositions += (propositions.empty() ? " ; vouliez-vous « " : " », « ") + mot.get<std::string>();
    }
    sortie << "« " << suggestion["mot"].get<std::string>() << " » ne mène à aucun acte"
           << (propositions.empty() ? "." : propositions + " » ?") << '\n';
  }
}

}  // namespace noxlux::commande
