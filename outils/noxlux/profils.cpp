#include "noxlux/profils.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "compilateur/transcodage.h"
#include "noxlux/erreurs.h"

namespace noxlux::commande {

namespace {

namespace fs = std::filesystem;
using namespace noxlux::compilateur;

constexpr const char* FICHIER_PROFILS = "profils.csv";
constexpr unsigned NOMBRE_COLONNES_LISTE = 2;

const GrilleTarifaire* chercher(unsigned numero, const Modele& modele) {
  const auto trouvee = std::find_if(modele.grilles.begin(), modele.grilles.end(),
                                    [&](const GrilleTarifaire& g) { return g.numero == numero; });
  return trouvee == modele.grilles.end() ? nullptr : &*trouvee;
}

}  // namespace

std::string enumererProfils(const Modele& modele) {
  std::string profils;
  for (const GrilleTarifaire& grille : modele.grilles) {
    if (!grille.profil.empty()) {
      profils += (profils.empty() ? "" : ", ") + grille.profil;
    }
  }
  return profils.empty() ? "aucun" : profils;
}

void verifierGrillePublique(unsigned grille, const Modele& modele) {
  if (chercher(grille, modele) == nullptr && (grille == 0 || grille > NOMBRE_COLONNES_LISTE)) {
    throw ErreurUsage(
        "la grille " + std::to_string(grille) +
        " n'existe pas : 1 et 2 sont les colonnes de la liste, les autres celles du complément (" +
        std::to_string(modele.grilles.size()) + ")");
  }
}

void nommerGrille(unsigned grille, Modele& modele) {
  const GrilleTarifaire* const dite = chercher(grille, modele);
  if (dite == nullptr || modele.entetes.empty()) {
    return;
  }
  Entete& entete = modele.entetes.front();
  const std::string numero = std::to_string(grille);
  entete.variante = CodeFixe<10>("L" + std::string(entete.versionBaseCCAM.vue()) + "G" +
                                 std::string(3 - std::min<std::size_t>(numero.size(), 3), '0') + numero);
  entete.commentaire += " - grille " + numero + " : " + dite->libelle +
                        (dite->profil.empty() ? "" : " (profil " + dite->profil + ")");
}

void ecrireProfils(const std::string& repertoire, const Modele& modele) {
  const fs::path chemin = fs::path(repertoire) / FICHIER_PROFILS;
  std::ofstream fichier(chemin);
  fichier << "specialite;profil\n";
  for (const SpecialitePS& specialite : modele.specialites) {
    if (!specialite.profil.empty()) {
      fichier << specialite.code.vue() << ';' << versUtf8(specialite.profil) << '\n';
    }
  }
  if (!fichier.flush()) {
    throw ErreurUsage("écriture impossible : " + chemin.string());
  }
}

Profils::Profils(const std::string& repertoire) : repertoire_(repertoire) {
  std::ifstream fichier(fs::path(repertoire) / FICHIER_PROFILS);
  if (fs::exists(fs::path(repertoire) / "tablebin.nox")) {
    return;
  }
  std::string ligne;
  std::getline(fichier, ligne);
  while (std::getline(fichier, ligne)) {
    const std::size_t separateur = ligne.find(';');
    if (separateur != std::string::npos) {
      profils_.emplace(ligne.substr(0, separateur), ligne.substr(separateur + 1));
    }
  }
}

std::string Profils::referencePour(const Json& facture) const {
  const auto professionnel = facture.find("professionnel");
  std::string specialite;
  if (professionnel != facture.end() && professionnel->is_object()) {
    specialite = professionnel->value("specialitePS", "");
  }
  const auto profil = profils_.find(specialite);
  if (profil == profils_.end()) {
    throw ErreurUsage("la spécialité « " + specialite + " » du professionnel n'a pas de profil dans " +
                      repertoire_);
  }
  return (fs::path(repertoire_) / profil->second).string();
}

}  // namespace noxlux::commande
