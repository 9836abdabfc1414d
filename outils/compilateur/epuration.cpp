// What cannot be compiled is taken out of an import, and told.
#include <algorithm>
#include <functional>
#include <set>
#include <tuple>

#include "compilateur/cles_toml.h"
#include "compilateur/ecriture_valeurs.h"
#include "compilateur/etiquettes.h"
#include "compilateur/fusion.h"
#include "compilateur/transcodage.h"
#include "compilateur/verifications.h"

namespace noxlux::compilateur {

namespace {

constexpr int PASSES = 8;

// Keeps the first of each code that is known.
class Tri {
 public:
  Tri(const Modele& modele, const Etiquettes& etiquettes, std::uint32_t premiereSource, BilanImport& bilan)
      : etiquettes_(etiquettes), premiereSource_(premiereSource), bilan_(bilan) {
    for (const Acte& acte : modele.actes) {
      actes_.insert(acte.code);
    }
    for (const ModificateurActe& modificateur : modele.modificateurs) {
      modificateurs_.insert(modificateur.code);
    }
    for (const SpecialitePS& specialite : modele.specialites) {
      for (const ClasseDate& historique : specialite.historiques) {
        classes_.insert(historique.classe);
      }
    }
    for (const Regroupement& regroupement : modele.regroupements) {
      regroupements_.insert(regroupement.code);
    }
    for (const Menu& menu : modele.menus) {
      menus_.insert(menu.code);
    }
  }

  void trier(Acte& acte) {
    if (acte.lieu.source < premiereSource_) {
      return;
    }
    acte_ = &acte;
    if (!menus_.contains(acte.menu)) {
      bilan_.ajuster("acte d'un menu inconnu, rattaché à la racine", acte.lieu, enTexte(acte.code));
      acte.menu = 1;
    }
    trierEtiquette(acte.lieu, acte.type, CODES_TYPE_ACTE, "type d'acte inconnu");
    trierEtiquette(acte.lieu, acte.fraisDeplacement, CODES_FRAIS, "code de frais de déplacement inconnu");
    trierEtiquettes(acte.lieu, acte.naturesAssurance, CODES_NATURE_ASSURANCE, "nature d'assurance inconnue");
    for (HistoriqueActe& historique : acte.historiques) {
      trierEtiquette(historique.lieu, historique.admission, CODES_ADMISSION, "code d'admission inconnu");
      trierEtiquettes(historique.lieu, historique.exonerations, CODES_EXONERATION,
                      "code d'exonération inconnu");
      trierConnus(historique.lieu, historique.procedures, actes_, "acte de procédure inconnu");
      trierConnus(historique.lieu, historique.incompatibles, actes_, "acte incompatible inconnu");
      std::erase(historique.incompatibles, acte.code);
    }
    for (Activite& activite : acte.activites) {
      trierEtiquettes(activite.lieu, activite.extensions, CODES_EXTENSION, "extension documentaire inconnue");
      for (HistoriqueActivite& historique : activite.historiques) {
        trierHistorique(historique);
      }
      trierDoublons(activite.lieu, activite.agrementsRadio, "agrément radio en double");
      trierDoublons(activite.lieu, activite.rmo, "RMO en double");
      for (Phase& phase : activite.phases) {
        trierDoublons(phase.lieu, phase.dentsIncompatibles, "dent incompatible en double");
      }
    }
  }

 private:
  void trierHistorique(HistoriqueActivite& historique) {
    if (!historique.categorieMedicale.vue().empty() &&
        !etiquettes_.connait(CODES_CATEGORIE, historique.categorieMedicale.vue())) {
      ecarter("catégorie médicale inconnue", historique.lieu, enTexte(historique.categorieMedicale));
      historique.categorieMedicale = {};
    }
    if (!historique.regroupement.vue().empty() && !regroupements_.contains(historique.regroupement)) {
      ecarter("code de regroupement inconnu", historique.lieu, enTexte(historique.regroupement));
      historique.regroupement = {};
    }
    trierConnus(historique.lieu, historique.modificateurs, modificateurs_, "modificateur inconnu");
    trierConnus(historique.lieu, historique.classesSpecialite, classes_, "classe de spécialité inconnue");
  }

  void ecarter(std::string_view raison, Lieu lieu, std::string_view code) {
    bilan_.ecarter(raison, lieu, phrase("acte ", acte_->code.vue(), " : « ", code, " »"));
  }

  template <class T, class F>
  void garder(Lieu lieu, std::vector<T>& codes, std::string_view raison, F&& connu) {
    std::set<T> vus;
    std::erase_if(codes, [&](const T& code) {
      const bool inconnu = !connu(code);
      if (inconnu) {
        ecarter(raison, lieu, enTexte(code));
      }
      return inconnu || !vus.insert(code).second;
    });
  }
  template <class T, class S>
  void trierConnus(Lieu lieu, std::vector<T>& codes, const S& connus, std::string_view raison) {
    garder(lieu, codes, raison, [&](const T& code) { return connus.contains(code); });
  }
  template <class T>
  void trierDoublons(Lieu lieu, std::vector<T>& codes, std::string_view raison) {
    garder(lieu, codes, raison, [](const T&) { return true; });
  }
  template <class T>
  void trierEtiquettes(Lieu lieu, std::vector<T>& codes, TableCode table, std::string_view raison) {
    garder(lieu, codes, raison, [&](const T& code) { return etiquettes_.connait(table, enTexte(code)); });
  }
  void trierEtiquette(Lieu lieu, char& code, TableCode table, std::string_view raison) {
    if (code != ' ' && !etiquettes_.connait(table, enTexte(code))) {
      ecarter(raison, lieu, enTexte(code));
      code = ' ';
    }
  }

  const Etiquettes& etiquettes_;
  std::uint32_t premiereSource_;
  BilanImport& bilan_;
  const Acte* acte_ = nullptr;
  std::set<CodeActe> actes_;
  std::set<char> modificateurs_;
  std::set<CodeFixe<2>> classes_;
  std::set<CodeFixe<3>> regroupements_;
  std::set<std::uint32_t> menus_;
};

using Lieux = std::set<std::pair<std::uint32_t, std::uint32_t>>;

// Takes the elements out that stand at the places; the others are searched in turn.
template <class T>
std::size_t retirer(std::vector<T>& elements, const Lieux& lieux) {
  if constexpr (std::is_base_of_v<Element, T>) {
    std::size_t nombre = std::erase_if(elements, [&](const T& e) {
      return lieux.contains({e.lieu.source, e.lieu.ligne});
    });
    const auto descendre = [&](auto& membre) {
      if constexpr (requires {
                      membre.emplace_back();
                      membre.begin()->lieu;
                    }) {
        nombre += retirer(membre, lieux);
      }
    };
    for (T& element : elements) {
      std::apply([&](const auto&... cle) { (descendre(element.*(cle.membre)), ...); }, CLES<T>);
    }
    return nombre;
  } else {
    return 0;
  }
}

// The kind of a fault: its sentence without the codes, dates and numbers that it tells.
std::string genre(std::string_view phraseDeFaute) {
  constexpr std::string_view OUVRANT = "« ";
  constexpr std::string_view FERMANT = " »";
  std::string resultat;
  while (!phraseDeFaute.empty()) {
    const std::size_t fin =
        phraseDeFaute.starts_with(OUVRANT) ? phraseDeFaute.find(FERMANT) : std::string::npos;
    if (fin != std::string::npos) {
      resultat += "…";
      phraseDeFaute.remove_prefix(fin + FERMANT.size());
    } else if (phraseDeFaute[0] >= '0' && phraseDeFaute[0] <= '9') {
      resultat += "…";
      phraseDeFaute.remove_prefix(
          std::min(phraseDeFaute.find_first_not_of("0123456789-."), phraseDeFaute.size()));
    } else if (phraseDeFaute.starts_with(" (déjà")) {
      break;
    } else {
      resultat += phraseDeFaute[0];
      phraseDeFaute.remove_prefix(1);
    }
  }
  return resultat;
}

// Acts, activities and phases that have nothing left to tell.
void retirerVides(Modele& modele, std::uint32_t premiereSource, BilanImport& bilan) {
  std::erase_if(modele.actes, [&](Acte& acte) {
    if (acte.lieu.source < premiereSource) {
      return false;
    }
    for (Activite& activite : acte.activites) {
      std::erase_if(activite.phases, [](const Phase& phase) { return phase.historiques.empty(); });
    }
    std::erase_if(acte.activites, [&](const Activite& activite) {
      const bool vide = activite.historiques.empty() || activite.phases.empty();
      if (vide) {
        bilan.ecarter("activité sans historique ou sans prix", activite.lieu,
                      phrase("acte ", enTexte(acte.code), ", activité ", enTexte(activite.code)));
      }
      return vide;
    });
    const bool vide = acte.activites.empty() || acte.historiques.empty();
    if (vide) {
      bilan.ecarter("acte sans historique ou sans prix", acte.lieu, enTexte(acte.code));
    }
    return vide;
  });
}

}  // namespace

void epurer(Modele& modele, std::uint32_t premiereSource, const Rapport& sources, BilanImport& bilan) {
  for (int passe = 0; passe < PASSES; ++passe) {
    retirerVides(modele, premiereSource, bilan);
    Rapport rapport = sources;
    const std::size_t debut = rapport.nombreFautes();
    const Etiquettes etiquettes(modele, rapport);
    Tri tri(modele, etiquettes, premiereSource, bilan);
    for (Acte& acte : modele.actes) {
      tri.trier(acte);
    }
    verifier(modele, etiquettes, rapport);
    Lieux lieux;
    for (std::size_t i = debut; i < rapport.nombreFautes(); ++i) {
      const Faute& faute = rapport.fautes()[i];
      if (faute.lieu.source >= premiereSource && faute.lieu.ligne != 0 &&
          lieux.emplace(faute.lieu.source, faute.lieu.ligne).second) {
        bilan.ecarter(genre(faute.phrase), faute.lieu, faute.phrase);
      }
    }
    const auto partout = [&](const auto&... cle) {
      return (std::size_t{0} + ... + retirer(modele.*(cle.membre), lieux));
    };
    if (lieux.empty() || std::apply(partout, CLES<Modele>) == 0) {
      return;
    }
  }
}

}  // namespace noxlux::compilateur
