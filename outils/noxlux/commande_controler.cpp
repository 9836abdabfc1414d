// noxlux controler: the full check of invoices, one or many.
#include <chrono>
#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>
#include <memory>

#include "noxlux/bibliotheque.h"
#include "noxlux/commandes.h"
#include "noxlux/controle_par_profils.h"
#include "noxlux/facture_json.h"
#include "noxlux/requete.h"
#include "noxlux/tableau.h"

namespace noxlux::commande {

namespace {

struct OptionsControler {
  OptionsReference reference;
  std::vector<std::string> fichiers;
  bool json = false;
  bool lot = false;
  bool detail = false;
};

std::unique_ptr<std::istream> ouvrir(const std::string& nom) {
  if (nom == "-") {
    return std::make_unique<std::istream>(std::cin.rdbuf());
  }
  auto fichier = std::make_unique<std::ifstream>(nom);
  if (!*fichier) {
    throw ErreurUsage("fichier illisible : " + nom);
  }
  return fichier;
}

// --- One invoice, for a person ---

std::string montant(const Json& valeur) {
  return valeur.is_number() ? texteValeur(Json(valeur.get<double>()), 'M') : "—";
}

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
    tableau.ajouter({ligne["numero"].dump(), ligne["acte"].get<std::string>(), montant(ligne["prixFacture"]),
                     montant(ligne["prixCalcule"]), montant(ligne["baseFacturee"]),
                     montant(ligne["baseCalculee"]), forcageDe(resultat, ligne["numero"])});
  }
  tableau.afficher(std::cout);
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
    for (const std::string& pli : plier(erreur["libelle"].get<std::string>(), largeurTerminal() - 2)) {
      std::cout << "  " << pli << '\n';
    }
  }
}

void afficher(const Json& resultat) {
  afficherLignes(resultat);
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
  const auto entree = ouvrir(nom);
  const Json facture = lireFacture({std::istreambuf_iterator<char>(*entree), {}}, nom);
  const std::string zone = zoneDeFacture(facture);
  OptionsReference reference = options.reference;
  const Profils profils(reference.reference);
  if (profils.existent()) {
    reference.reference = profils.referencePour(facture);
  }
  const Bibliotheque bibliotheque(reference);
  Json resultat = controlerFacture(zone);
  resultat["lignes"] = detaillerLignes(facture);
  if (options.json) {
    std::cout << resultat.dump(2) << '\n';
  } else {
    afficher(resultat);
  }
  return resultat["verdict"] == "acceptee" ? STATUT_REPONDU : STATUT_CODE_ERREUR;
}

// --- Many invoices, one a line ---

struct Compte {
  std::size_t factures = 0;
  std::size_t acceptees = 0;
  std::size_t enErreur = 0;     // checked, with errors
  std::size_t impossibles = 0;  // not checked: its record says why
};

Json repondre(const std::string& ligne, const OptionsControler& options, Compte& compte) {
  try {
    const Json facture = lireFacture(ligne, "$");
    Json resultat = controlerFacture(zoneDeFacture(facture));
    if (options.detail) {
      resultat["lignes"] = detaillerLignes(facture);
    }
    ++(resultat["verdict"] == "acceptee" ? compte.acceptees : compte.enErreur);
    return resultat;
  } catch (const ErreurBibliotheque& erreur) {
    ++compte.impossibles;
    return {{"code", hexadecimal(erreur.code())}, {"erreur", signification(erreur.code())}};
  } catch (const ErreurUsage& erreur) {
    ++compte.impossibles;
    return {{"code", nullptr}, {"erreur", erreur.what()}};
  }
}

int controlerLot(const OptionsControler& options) {
  std::vector<std::string> fichiers = options.fichiers;
  if (fichiers.empty()) {
    fichiers.emplace_back("-");
  }
  std::ios::sync_with_stdio(false);
  std::cin.tie(nullptr);
  const Profils profils(options.reference.reference);
  if (profils.existent()) {
    return controlerParProfils(
        profils, fichiers,
        options.detail ? std::vector<std::string>{"--detail"} : std::vector<std::string>());
  }
  const Bibliotheque bibliotheque(options.reference);
  Compte compte;
  const auto debut = std::chrono::steady_clock::now();
  for (const std::string& nom : fichiers) {
    const auto entree = ouvrir(nom);
    for (std::string ligne; std::getline(*entree, ligne);) {
      if (ligne.find_first_not_of(" \t\r") == std::string::npos) {
        continue;
      }
      ++compte.factures;
      std::cout << repondre(ligne, options, compte).dump(-1, ' ', false, Json::error_handler_t::replace)
                << '\n';
      if (entree->rdbuf()->in_avail() <= 0) {
        std::cout.flush();  // who writes one invoice at a time waits for its answer
      }
    }
  }
  if (!std::cout.flush()) {
    throw ErreurUsage("écriture impossible sur la sortie standard");
  }
  const double duree = std::chrono::duration<double>(std::chrono::steady_clock::now() - debut).count();
  std::fprintf(stderr,
               "%zu facture%s : %zu acceptées, %zu avec erreurs, %zu non contrôlées ; %.0f factures/s\n",
               compte.factures, compte.factures > 1 ? "s" : "", compte.acceptees, compte.enErreur,
               compte.impossibles, duree > 0 ? static_cast<double>(compte.factures) / duree : 0.0);
  return compte.impossibles == 0 ? STATUT_REPONDU : STATUT_CODE_ERREUR;
}

}  // namespace

void enregistrerControler(CLI::App& application, int& statut) {
  auto options = std::make_shared<OptionsControler>();
  CLI::App* commande = application.add_subcommand("controler", "Contrôle une facture, ou un lot de factures");
  commande->add_option("fichiers", options->fichiers, "facture en JSON (rien ou - : entrée standard)")
      ->type_name("FACTURE.json");
  auto* lot = commande->add_flag("--lot", options->lot,
                                 "une facture par ligne, une réponse par ligne, dans l'ordre ; filtre");
  commande->add_flag("--detail", options->detail, "montants calculés dans les réponses d'un lot")->needs(lot);
  commande->add_flag("--json", options->json, "réponse en JSON, pour un programme")->excludes(lot);
  options->reference.declarer(*commande);
  commande->callback([options, &statut] {
    if (!options->lot && options->fichiers.size() > 1) {
      throw ErreurUsage("une seule facture à la fois, ou --lot");
    }
    statut = options->lot ? controlerLot(*options) : controlerUne(*options);
  });
}

}  // namespace noxlux::commande
