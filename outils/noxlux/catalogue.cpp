#include "noxlux/catalogue.h"

#include <algorithm>
#include <cstdio>

#include "compilateur/tables_reference.h"
#include "compilateur/transcodage.h"
#include "fichier/lecteur.h"
#include "noxlux/erreurs.h"
#include "noxlux/ouverture.h"
#include "referent/referentiel.h"
#include "tables/catalogue.h"

namespace noxlux::commande {

namespace {

using compilateur::versUtf8;

std::string jour(const DateBrute& date) {
  char texte[16];
  std::snprintf(texte, sizeof texte, "%04u%02u%02u", unsigned{date.annee}, unsigned{date.mois},
                unsigned{date.jour});
  return texte;
}

}  // namespace

Catalogue::Catalogue(const std::string& fichier)
    : fichier_(ouvrirReference(fichier, NOM_FICHIER_REFERENCE)) {}

const std::vector<ActeConnu>& Catalogue::actes() const {
  if (actes_.empty()) {
    std::map<CodeActe, NiveauActe> lus;
    if (const CodeRetour cr = fichier_->lireActes(lus); cr != NOX_CR_OK) {
      throw ErreurUsage("un acte de la référence est illisible : " + signification(cr));
    }
    for (const auto& [code, acte] : lus) {
      actes_.push_back({versUtf8(code.vue()), versUtf8(acte.libelleCourt.vue()),
                        versUtf8(acte.libelleLong.vue()), acte.codeMenu});
    }
  }
  return actes_;
}

const std::map<std::uint32_t, Chapitre>& Catalogue::chapitres() const {
  const compilateur::TableLue* const table = fichier_->chercherTable(Arborescence::IDENTIFIANT);
  if (chapitres_.empty() && table != nullptr) {
    CodeRetour cr = NOX_CR_OK;
    const std::unique_ptr<LignesTable> lignes = fichier_->lireLignes(*table, cr);
    if (lignes != nullptr) {
      for (const Arborescence& menu : static_cast<const LignesDe<Arborescence>&>(*lignes).lignes) {
        chapitres_[menu.code] = {versUtf8(menu.libelle.vue()), menu.pere};
      }
    }
  }
  return chapitres_;
}

std::vector<std::string> Catalogue::codes() const {
  std::vector<std::string> liste;
  for (const ActeConnu& acte : actes()) {
    liste.push_back(acte.code);
  }
  return liste;
}

std::string Catalogue::libelle(const std::string& code) const {
  const auto trouve =
      std::lower_bound(actes().begin(), actes().end(), code,
                       [](const ActeConnu& acte, const std::string& c) { return acte.code < c; });
  return trouve != actes().end() && trouve->code == code ? trouve->libelleCourt : std::string();
}

std::vector<PhaseConnue> Catalogue::phases(const std::string& code) const {
  std::vector<PhaseConnue> phases;
  NiveauActe acte;
  if (code.size() > CodeActe().caracteres.size() || !Lecteur::controlerCode(code) ||
      fichier_->lireActe(CodeActe(code), acte) != NOX_CR_OK) {
    return phases;
  }
  for (const NiveauActivite& activite : acte.activites) {
    for (const NiveauPhase& phase : activite.phases) {
      PhaseConnue& connue = phases.emplace_back();
      connue.activite = activite.codeActivite;
      connue.phase = phase.codePhase;
      for (const HistoriqueNiveauPhase& historique : phase.historiques) {
        connue.effets.push_back(jour(historique.dateEffet));
      }
      std::reverse(connue.effets.begin(), connue.effets.end());
    }
  }
  return phases;
}

bool Catalogue::estDans(std::uint32_t chapitre, std::uint32_t dessus) const {
  // A file may tie chapters in a circle: no path is longer than there are chapters.
  for (std::size_t pas = 0; pas <= chapitres().size(); ++pas) {
    if (chapitre == dessus) {
      return true;
    }
    const auto trouve = chapitres().find(chapitre);
    if (trouve == chapitres().end()) {
      return false;
    }
    chapitre = trouve->second.pere;
  }
  return false;
}

}  // namespace noxlux::commande
