#include "compilateur/mots_cles.h"

#include <algorithm>
#include <map>
#include <set>
#include <unordered_map>
#include <unordered_set>

#include "compilateur/transcodage.h"
#include "types/texte.h"

namespace noxlux::compilateur {

namespace {

constexpr std::size_t PLAFOND_ACTES = 65535;

struct Entree {
  CodeActe acte;
  std::uint32_t masque;
};

class Index {
 public:
  explicit Index(const Modele& modele) : modele_(modele) {
    for (const Recherche& recherche : modele.recherches) {
      longueurMinimale_ = recherche.longueurMinimale;
      for (const std::string& mot : recherche.motsVides) {
        const std::vector<std::string> mots = motsDe(mot);
        vides_.insert(mots.begin(), mots.end());
      }
    }
    for (const Menu& menu : modele.menus) {
      menus_.emplace(menu.code, &menu);
    }
  }

  // REQUIRES: in ascending order of codes
  void indexer(const Acte& acte) {
    indexerTexte(acte, acte.libelleCourt, CADRE_LIBELLE_COURT);
    indexerTexte(acte, acte.libelleLong, CADRE_LIBELLE_LONG);
    indexerTexte(acte, acte.notes, CADRE_NOTES);
    indexerTexte(acte, acte.conditions, CADRE_CONDITIONS);
    for (const std::string& mot : motsDuChemin(acte.menu)) {
      ajouter(mot, acte.code, CADRE_MENUS);
    }
  }

  // A word of the group that no text holds leads to the acts of the others.
  void relierSynonymes() {
    for (const SynonymesDeMot& groupe : modele_.synonymes) {
      std::set<std::string> mots;
      for (const std::string& texte : groupe.synonymes) {
        mots.merge(ensemble(texte));
      }
      mots.merge(ensemble(groupe.mot));
      const std::vector<Entree> reunion = reunir(mots);
      if (reunion.empty()) {
        continue;
      }
      for (const std::string& mot : mots) {
        std::vector<Entree>& entrees = mots_[mot];
        if (entrees.empty()) {
          entrees = reunion;
        }
        for (const std::string& autre : mots) {
          if (autre != mot) {
            synonymes_[mot].insert(autre);
          }
        }
      }
    }
  }

  void ecrire(TablesReference& tables, Rapport& rapport) const {
    std::vector<const std::string*> ordre;
    ordre.reserve(mots_.size());
    for (const auto& [mot, entrees] : mots_) {
      ordre.push_back(&mot);
    }
    std::sort(ordre.begin(), ordre.end(), [](const auto* g, const auto* d) { return *g < *d; });
    for (const std::string* mot : ordre) {
      ecrireMot(*mot, tables, rapport);
    }
  }

 private:
  static std::set<std::string> ensemble(std::string_view texte) {
    const std::vector<std::string> mots = motsDe(texte);
    return {mots.begin(), mots.end()};
  }

  bool estMotCle(const std::string& mot) const {
    return mot.size() >= longueurMinimale_ && !vides_.contains(mot);
  }

  void indexerTexte(const Acte& acte, std::string_view texte, std::uint32_t cadre) {
    for (const std::string& mot : motsDe(texte)) {
      if (estMotCle(mot)) {
        ajouter(mot, acte.code, cadre);
      }
    }
  }

  void ajouter(const std::string& mot, const CodeActe& acte, std::uint32_t cadre) {
    std::vector<Entree>& entrees = mots_[mot];
    if (entrees.empty() || entrees.back().acte != acte) {
      entrees.push_back({acte, 0});
    }
    entrees.back().masque |= cadre;
  }

  // The keywords of the titles from a menu up, the root's excepted.
  const std::set<std::string>& motsDuChemin(std::uint32_t code) {
    static const std::set<std::string> AUCUN;
    constexpr std::uint32_t RACINE = 1;
    const auto menu = menus_.find(code);
    if (code == RACINE || menu == menus_.end()) {
      return AUCUN;
    }
    const auto connu = chemins_.find(code);
    if (connu != chemins_.end()) {
      return connu->second;
    }
    std::set<std::string> mots = motsDuChemin(menu->second->pere);
    for (const std::string& mot : motsDe(menu->second->libelle)) {
      if (estMotCle(mot)) {
        mots.insert(mot);
      }
    }
    return chemins_.emplace(code, std::move(mots)).first->second;
  }

  std::vector<Entree> reunir(const std::set<std::string>& mots) const {
    std::map<CodeActe, std::uint32_t> reunion;
    for (const std::string& mot : mots) {
      const auto trouve = mots_.find(mot);
      if (trouve != mots_.end()) {
        for (const Entree& entree : trouve->second) {
          reunion[entree.acte] |= entree.masque;
        }
      }
    }
    std::vector<Entree> entrees;
    for (const auto& [acte, masque] : reunion) {
      entrees.push_back({acte, masque});
    }
    return entrees;
  }

  void ecrireMot(const std::string& mot, TablesReference& tables, Rapport& rapport) const {
    const std::vector<Entree>& entrees = mots_.at(mot);
    if (entrees.size() > PLAFOND_ACTES) {
      rapport.signaler({}, phrase("le mot « ", versUtf8(mot), " » mène à plus de ",
                                  std::to_string(PLAFOND_ACTES), " actes : en faire un mot vide"));
      return;
    }
    auto& synonymes = tables.lignes<Synonyme>();
    auto& actes = tables.lignes<ActeIndexe>();
    MotCle ligne;
    ligne.motCle = TexteVariable(mot);
    ligne.formeCanonique = TexteVariable(mot);
    ligne.actes.premiere = static_cast<std::uint32_t>(actes.size());
    ligne.actes.nombre = static_cast<std::uint16_t>(entrees.size());
    for (const Entree& entree : entrees) {
      actes.push_back({entree.acte, entree.masque});
    }
    const auto groupe = synonymes_.find(mot);
    if (groupe != synonymes_.end()) {
      ligne.synonymes.premiere = static_cast<std::uint32_t>(synonymes.size());
      ligne.synonymes.nombre = static_cast<std::uint16_t>(groupe->second.size());
      for (const std::string& synonyme : groupe->second) {
        synonymes.push_back({TexteVariable(synonyme)});
      }
    }
    tables.lignes<MotCle>().push_back(std::move(ligne));
  }

  const Modele& modele_;
  std::size_t longueurMinimale_ = Recherche().longueurMinimale;
  std::unordered_set<std::string> vides_;
  std::unordered_map<std::uint32_t, const Menu*> menus_;
  std::unordered_map<std::uint32_t, std::set<std::string>> chemins_;
  std::unordered_map<std::string, std::vector<Entree>> mots_;
  std::map<std::string, std::set<std::string>> synonymes_;
};

}  // namespace

std::vector<std::string> motsDe(std::string_view texte) {
  Texte canonique(texte);
  canonique.transformerFormeCanonique(true);
  std::vector<std::string> mots;
  std::string_view reste = canonique.vue();
  while (!reste.empty()) {
    const std::size_t fin = std::min(reste.find(' '), reste.size());
    mots.emplace_back(reste.substr(0, fin));
    reste.remove_prefix(std::min(fin + 1, reste.size()));
  }
  return mots;
}

void genererMotsCles(const Modele& modele, TablesReference& tables, Rapport& rapport) {
  std::vector<const Acte*> actes;
  for (const Acte& acte : modele.actes) {
    actes.push_back(&acte);
  }
  std::sort(actes.begin(), actes.end(), [](const Acte* g, const Acte* d) { return g->code < d->code; });
  Index index(modele);
  for (const Acte* acte : actes) {
    index.indexer(*acte);
  }
  index.relierSynonymes();
  index.ecrire(tables, rapport);
}

}  // namespace noxlux::compilateur
