#include "compilateur/compilation.h"

#include "compilateur/etiquettes.h"
#include "compilateur/generateur.h"
#include "compilateur/verifications.h"

namespace noxlux::compilateur {

namespace {

std::size_t nombrePrix(const Modele& modele) {
  std::size_t nombre = 0;
  for (const Acte& acte : modele.actes) {
    for (const Activite& activite : acte.activites) {
      for (const Phase& phase : activite.phases) {
        nombre += phase.historiques.size();
      }
    }
  }
  return nombre;
}

}  // namespace

bool compiler(const Modele& modele, const std::string& repertoire, const Avancement& avancement,
              Rapport& rapport, Bilan& bilan) {
  avancement("contrôle des sources", 0, 1);
  const Etiquettes etiquettes(modele, rapport);
  verifier(modele, etiquettes, rapport);
  if (!rapport.estVide()) {
    return false;
  }
  avancement("construction des tables", 0, 1);
  const TablesReference tables = genererTables(modele, etiquettes, rapport);
  if (!rapport.estVide() || !ecrireReference(modele, tables, repertoire, avancement, rapport, bilan.taille)) {
    return false;
  }
  bilan.actes = modele.actes.size();
  bilan.prix = nombrePrix(modele);
  bilan.menus = modele.menus.size();
  bilan.motsCles = tables.lignes<MotCle>().size();
  bilan.regles = modele.regles.size();
  bilan.fonctions = modele.fonctions.size();
  return true;
}

}  // namespace noxlux::compilateur
