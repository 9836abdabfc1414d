#include "compilateur/import_dbf.h"

#include <algorithm>

#include "compilateur/niveaux_dbf.h"
#include "compilateur/transcodage.h"

namespace noxlux::compilateur {

namespace {

constexpr const char* TABLES_NECESSAIRES[] = {"R_ACTE", "R_ACTE_IVITE", "R_ACTE_IVITE_PHASE", "R_MENU"};

// The label of the grid; a fault that lists the grids when it is not among them.
std::string verifierGrille(LectureDbf& lecture, unsigned grille) {
  std::map<unsigned, std::string> grilles;
  lecture.parcourir("R_TB23", {"COD_GRILLE", "LIBELLE"}, [&](ChampsDbf& c) {
    const unsigned numero = c.nombre(0);
    std::string libelle = c.texte(1);
    std::replace(libelle.begin(), libelle.end(), '\n', ' ');
    return c.bons() && grilles.emplace(numero, std::move(libelle)).second;
  });
  if (!lecture.contient("R_TB23") || !lecture.saine() || grilles.contains(grille)) {
    return grilles[grille];
  }
  std::string connues;
  for (const auto& [numero, libelle] : grilles) {
    connues += phrase(connues.empty() ? "" : ", ", std::to_string(numero), " (", versUtf8(libelle), ")");
  }
  lecture.signaler("la grille tarifaire ", std::to_string(grille),
                   " n'existe pas ; celles de la base : ", connues.empty() ? "aucune" : connues);
  return {};
}

// The date of the newest change of an act, an activity, a price, a modifier or a threshold.
DateBrute derniereModification(const Modele& base) {
  DateBrute derniere;
  for (const ModificateurActe& modificateur : base.modificateurs) {
    for (const ForfaitEtTaux& valeur : modificateur.valeurs) {
      derniere = std::max(derniere, valeur.debut);
    }
  }
  for (const auto& seuil : base.seuils) {
    derniere = std::max(derniere, seuil.debut);
  }
  for (const Acte& acte : base.actes) {
    derniere = std::max(derniere, dernierEffet(acte.historiques));
    for (const Activite& activite : acte.activites) {
      derniere = std::max(derniere, dernierEffet(activite.historiques));
      for (const Phase& phase : activite.phases) {
        derniere = std::max(derniere, dernierEffet(phase.historiques));
      }
    }
  }
  return derniere;
}

// The tables tell no version of the database: the day of its newest change is one that rises, two digits of
// the year, then the month and the day as one digit or letter each ("2611" for 1 January 2026).
std::string versionDuJour(const DateBrute& date) {
  constexpr std::string_view CHIFFRES = "0123456789ABCDEFGHIJKLMNOPQRSTUV";
  const unsigned annee = date.annee % 100;
  return {CHIFFRES[annee / 10], CHIFFRES[annee % 10], CHIFFRES[date.mois % 32U], CHIFFRES[date.jour % 32U]};
}

Entete entete(const Modele& base, Grille grille, const std::string& libelle) {
  const std::string numero = std::to_string(grille.value_or(0) % 1000);
  Entete entete;
  entete.date = derniereModification(base);
  entete.version = CodeFixe<4>(versionDuJour(entete.date));
  entete.variante = CodeFixe<10>("BASEDBF" + std::string(3 - numero.size(), '0') + numero);
  entete.commentaire = grille ? phrase("Base publique de la CCAM, grille ", std::to_string(*grille),
                                       libelle.empty() ? "" : " : ", libelle)
                              : "Base publique de la CCAM, prix de base";
  return entete;
}

}  // namespace

bool importerBaseDbf(const std::string& repertoire, Grille grille, const Avancement& avancement, Modele& base,
                     BilanImport& bilan, Rapport& rapport) {
  LectureDbf lecture(repertoire, avancement, bilan, rapport);
  if (!lecture.saine()) {
    return false;
  }
  for (const char* nom : TABLES_NECESSAIRES) {
    lecture.exiger(nom);
  }
  std::string libelle;
  if (grille) {
    lecture.exiger("R_PU_BASE");
    libelle = verifierGrille(lecture, *grille);
  }
  const std::uint32_t menuUn = lireMenus(lecture, base);
  lireActes(lecture, grille, menuUn, base);
  lireTablesDeReference(lecture, grille, base);
  lireCodes(lecture, base);
  if (lecture.saine() && base.actes.empty()) {
    lecture.signaler("la table R_ACTE ne contient aucun acte");
  }
  if (lecture.saine()) {
    base.entetes.push_back(entete(base, grille, libelle));
  }
  return lecture.saine();
}

}  // namespace noxlux::compilateur
