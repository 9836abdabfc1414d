// noxlux controler: the full check of invoices, one or many.
#include <chrono>
#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "noxlux/bibliotheque.h"
#include "noxlux/commandes.h"
#include "noxlux/controle_lot.h"
#include "noxlux/controle_par_profils.h"
#include "noxlux/explication.h"
#include "noxlux/facture_json.h"
#include "noxlux/presentation.h"
#include "noxlux/requete.h"
#include "noxlux/sortie.h"
#include "noxlux/tableau.h"

namespace noxlux::commande {

namespace {

struct OptionsControler {
  OptionsReference reference;
  std::vector<std::string> fichiers;
  OptionsLot duLot;
  bool json = false;
  bool lot = false;
  bool detail = false;
  bool expliquer = false;

  Detail combien(Detail minimum) const {
    return expliquer ? Detail::ETAPES : detail ? Detail::MONTANTS : minimum;
  }

  // One answer a line: asked for, or the only form that so many invoices have.
  bool estUnLot() const {
    const auto deLot = [](const std::string& nom) {
      return nom.ends_with(".csv") || nom.ends_with(".ndjson") || nom.ends_with(".jsonl");
    };
    return lot || duLot.csv || duLot.taches > 1 || !duLot.rapport.empty() || fichiers.size() > 1 ||
           (fichiers.size() == 1 && deLot(fichiers.front()));
  }
};

// --- One invoice, for a person ---

std::string forcageDe(const Json& resultat, const Json& numero) {
  for (const Json& forcage : resultat["forcages"]) {
    if (forcage["numero"] == numero) {
      return forcage["forcage"].get<std::string>();
    }
  }
  return "";
}

void afficherLignes(const Json& resultat) {
  Tableau tableau(
      {"ligne", "acte", "prix facturé", "prix calculé", "base facturée", "base calculée", "forçage"});
  for (const Json& ligne : resultat["lignes"]) {
    tableau.ajouter({ligne["numero"].dump(), ligne["acte"].get<std::string>(),
                     eurosOuTiret(ligne["prixFacture"]), eurosOuTiret(ligne["prixCalcule"]),
                     eurosOuTiret(ligne["baseFacturee"]), eurosOuTiret(ligne["baseCalculee"]),
                     forcageDe(resultat, ligne["numero"])});
  }
  tableau.afficher(std::cout);
}

void ecrireRetrait(std::size_t marge, const std::string& texte) {
  for (const std::string& pli : plier(texte, largeurTerminal() - marge)) {
    std::cout << std::string(marge, ' ') << pli << '\n';
  }
}

// What decided. All of it is in the JSON.
void afficherDonnees(const Json& donnees) {
  constexpr std::size_t MONTREES = 6;
  for (std::size_t i = 0; i < donnees.size() && i < MONTREES; ++i) {
    ecrireRetrait(4, "· " + donnees[i]["phrase"].get<std::string>());
  }
  if (donnees.size() > MONTREES) {
    ecrireRetrait(4, "· et " + std::to_string(donnees.size() - MONTREES) + " autres données (--json)");
  }
}

void afficherErreurs(const Json& erreurs) {
  for (const Json& erreur : erreurs) {
    const bool outrepassable = erreur["niveau"] == "O";
    std::cout << '\n'
              << erreur["reference"].get<std::string>() << " — "
              << (outrepassable ? "peut être outrepassée" : "ne peut pas être outrepassée");
    if (!erreur["lignes"].empty()) {
      std::cout << " — ligne" << (erreur["lignes"].size() > 1 ? "s " : " ")
                << texteValeur(erreur["lignes"], 'N');
    }
    std::cout << '\n';
    ecrireRetrait(2, erreur["libelle"].get<std::string>());
    if (erreur.contains("detail") && erreur["detail"] != "") {
      ecrireRetrait(2, erreur["detail"].get<std::string>());
    }
    afficherDonnees(erreur.value("donnees", Json::array()));
  }
}

void afficher(const Json& resultat) {
  afficherLignes(resultat);
  if (resultat.contains("exoneration")) {
    afficherEtapes(resultat, std::cout);
  }
  afficherErreurs(resultat["erreurs"]);
  const std::size_t n = resultat["erreurs"].size();
  const std::string erreurs = std::to_string(n) + (n > 1 ? " erreurs" : " erreur");
  const std::string verdict = resultat["verdict"].get<std::string>();
  std::cout << '\n'
            << (verdict == "acceptee"        ? "Facture acceptée."
                : verdict == "a_outrepasser" ? "Facture à corriger ou à outrepasser : " + erreurs + "."
                                             : "Facture refusée : " + erreurs + ".")
            << '\n';
}

int controlerUne(const OptionsControler& options) {
  const std::string nom = options.fichiers.empty() ? "-" : options.fichiers.front();
  const Json facture = lireFacture(lireTout(nom), nom);
  const std::string source = nom == "-" ? "entrée standard" : nom;
  try {
    zoneDeFacture(facture);
  } catch (const FauteJson& faute) {
    throw ErreurUsage(source + " : " + faute.what() + faute.complement());
  } catch (const ErreurUsage& faute) {
    throw ErreurUsage(source + " : " + faute.what());
  }
  OptionsReference reference = options.reference;
  const Profils profils(reference.reference);
  if (profils.existent()) {
    reference.reference = profils.referencePour(facture);
  }
  const Bibliotheque bibliotheque(reference);
  const Json resultat = controlerFacture(facture, options.combien(Detail::MONTANTS));
  if (options.json) {
    ecrireJson(resultat);
  } else {
    afficher(resultat);
  }
  return resultat["verdict"] == "acceptee" ? STATUT_REPONDU : STATUT_CODE_ERREUR;
}

// --- Many invoices ---

void direLeCompte(const CompteLot& compte, double duree) {
  const auto accord = [](std::size_t nombre, const char* nom) {
    return std::to_string(nombre) + " " + nom + (nombre > 1 ? "s" : "");
  };
  std::cerr << accord(compte.factures, "facture") << " : " << compte.acceptees << " acceptées, "
            << compte.enErreur << " avec erreurs, " << compte.impossibles << " non contrôlées ; "
            << nombrePourProgramme(duree > 0 ? static_cast<double>(compte.factures) / duree : 0.0, 0)
            << " factures/s\n";
}

// Those that each process of a batch by profiles takes too.
std::vector<std::string> optionsDUnLot(const OptionsControler& options) {
  std::vector<std::string> siennes;
  if (options.detail || options.expliquer) {
    siennes.emplace_back(options.expliquer ? "--expliquer" : "--detail");
  }
  if (!options.reference.modification.empty()) {
    siennes.insert(siennes.end(), {"--modifications", options.reference.modification});
  }
  return siennes;
}

int controlerLot(const OptionsControler& options) {
  const std::vector<std::string> fichiers =
      options.fichiers.empty() ? std::vector<std::string>{"-"} : options.fichiers;
  LectureLot lecture(fichiers);
  OptionsLot lot = options.duLot;
  lot.detail = options.combien(Detail::VERDICT);
  const Profils profils(options.reference.reference);
  std::unique_ptr<ControleParProfils> parProfils;
  std::unique_ptr<Bibliotheque> bibliotheque;
  if (profils.existent()) {
    if (lot.taches > 1) {
      throw ErreurUsage(
          "--taches demande une référence, et non un répertoire de profils : chacun a déjà son processus");
    }
    parProfils = std::make_unique<ControleParProfils>(profils, optionsDUnLot(options));
    lot.profils = parProfils.get();
  } else {
    bibliotheque = std::make_unique<Bibliotheque>(options.reference);
  }
  const auto debut = std::chrono::steady_clock::now();
  const CompteLot compte = controlerLesFactures(lecture, lot);
  direLeCompte(compte, std::chrono::duration<double>(std::chrono::steady_clock::now() - debut).count());
  return compte.impossibles == 0 ? STATUT_REPONDU : STATUT_CODE_ERREUR;
}

}  // namespace

void enregistrerControler(CLI::App& application, int& statut) {
  auto options = std::make_shared<OptionsControler>();
  CLI::App* commande =
      application.add_subcommand("controler", "Contrôle une facture, ou des lots de factures");
  commande
      ->add_option("fichiers", options->fichiers,
                   "facture en JSON, ou lots en JSON ou en CSV (rien ou - : entrée standard)")
      ->type_name("FICHIER");
  auto* lot =
      commande->add_flag("--lot", options->lot, "une réponse par ligne, dans l'ordre des factures ; filtre");
  commande->add_flag("--detail", options->detail, "montants calculés dans les réponses d'un lot")->needs(lot);
  commande->add_flag("--expliquer", options->expliquer,
                     "étapes de chaque montant et de l'exonération, avec leurs données");
  commande->add_flag("--csv", options->duLot.csv, "d'un lot, une ligne de CSV par erreur");
  commande
      ->add_option("--rapport", options->duLot.rapport,
                   "d'un lot, une page HTML : comptes, montants, factures refusées")
      ->type_name("FICHIER.html");
  commande
      ->add_option(
          "--taches", options->duLot.taches,
          "d'un lot, nombre de processus qui contrôlent ; l'ordre des réponses reste celui des factures")
      ->type_name("N")
      ->check(CLI::Range(1U, 64U));
  commande->add_flag("--json", options->json, "réponse en JSON, pour un programme")->excludes(lot);
  options->reference.declarer(*commande);
  commande->callback(
      [options, &statut] { statut = options->estUnLot() ? controlerLot(*options) : controlerUne(*options); });
}

}  // namespace noxlux::commande
