// noxlux rechercher, acte: the acts that words lead to, and the whole sheet of one.
#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "compilateur/proches.h"
#include "compilateur/transcodage.h"
#include "noxlux/bibliotheque.h"
#include "noxlux/catalogue.h"
#include "noxlux/commandes.h"
#include "noxlux/fiche.h"
#include "noxlux/presentation.h"
#include "noxlux/recherche.h"
#include "noxlux/requete.h"
#include "noxlux/sortie.h"

namespace noxlux::commande {

namespace {

struct OptionsRechercher {
  OptionsReference reference;
  std::vector<std::string> mots;
  std::string chapitre;
  std::string prix;
  std::string date;
  std::size_t limite = 20;
  bool json = false;
  // The two searches of the library.
  std::string motCle;
  std::string filtre;
  unsigned long cadre = 0;

  void declarer(CLI::App& commande) {
    reference.declarer(commande);
    commande.add_flag("--json", json, "réponse en JSON, pour un programme");
  }
  void montrer(const std::string& zone) const {
    const Json groupes = rognerTextes(decoderZone(zone, true));
    if (json) {
      ecrireJson(groupes);
    } else {
      afficherGroupes(groupes, std::cout);
    }
  }
};

void rechercher(const OptionsRechercher& options, int& statut) {
  CriteresRecherche criteres;
  for (const std::string& mot : options.mots) {
    criteres.texte += (criteres.texte.empty() ? "" : " ") + mot;
  }
  if (criteres.texte.find_first_not_of(' ') == std::string::npos) {
    throw ErreurUsage("il faut des mots à chercher, comme : noxlux rechercher fracture fémur");
  }
  criteres.chapitre = options.chapitre;
  criteres.limite = options.limite;
  lirePrix(options.prix, criteres);
  const std::string date = dateReference(options.date);
  const Bibliotheque bibliotheque(options.reference);
  const Catalogue catalogue(options.reference.fichierReference());
  const Json resultat = rechercherActes(criteres, date, MotsDesActes(catalogue));
  if (options.json) {
    ecrireJson(resultat);
  } else {
    afficherRecherche(resultat, std::cout);
  }
  statut = resultat["nombre"] == 0 ? STATUT_CODE_ERREUR : STATUT_REPONDU;
}

void rechercherParMotCle(const OptionsRechercher& options) {
  const compilateur::TexteLatin1 motCle = compilateur::versLatin1(options.motCle);
  const Bibliotheque bibliotheque(options.reference);
  options.montrer(appelerOuEchouer("NOX_RechercherParMotCle", [&](void** sortie, unsigned int* taille) {
    return NOX_RechercherParMotCle(motCle.texte.c_str(), options.cadre, sortie, taille);
  }));
}

void rechercherParFiltre(const OptionsRechercher& options) {
  const std::string filtre = enCapitales(options.filtre);
  const Bibliotheque bibliotheque(options.reference);
  options.montrer(appelerOuEchouer("NOX_RechercherParFiltre", [&](void** sortie, unsigned int* taille) {
    return NOX_RechercherParFiltre(filtre.c_str(), sortie, taille);
  }));
}

struct OptionsActe {
  OptionsReference reference;
  std::string code;
  std::string date;
  bool json = false;
  bool html = false;
  std::string sortie = "-";
};

void montrerActe(const OptionsActe& options) {
  const std::string date = dateReference(options.date);
  const Bibliotheque bibliotheque(options.reference);
  const Catalogue catalogue(options.reference.fichierReference());
  const Json fiche = ficheActe(options.code, date, catalogue);
  if (options.html) {
    ecrireTout(options.sortie, pageFiche(fiche));
  } else if (options.json) {
    ecrireTout(options.sortie, texteJson(fiche));
  } else {
    afficherFiche(fiche, std::cout);
  }
}

}  // namespace

void enregistrerRechercher(CLI::App& application, int& statut) {
  auto options = std::make_shared<OptionsRechercher>();
  CLI::App* const commande =
      application.add_subcommand("rechercher", "Cherche des actes par des mots, le meilleur d'abord");
  commande->require_subcommand(0, 1);
  commande->add_option("mots", options->mots, "mots du libellé, tous ; accents, pluriels et fins oubliés")
      ->type_name("MOT");
  commande->add_option("--chapitre", options->chapitre,
                       "dans un chapitre : son code, ou des mots de son titre");
  commande->add_option("--prix", options->prix, "prix en euros, de..à (100..200, ..50)")->type_name("DE..A");
  commande->add_option("--limite", options->limite, "nombre d'actes montrés (20 ; 0 : tous)")->type_name("N");
  commande->add_option("--date,-d", options->date, "date des prix (par défaut : aujourd'hui)")
      ->type_name("DATE");
  options->declarer(*commande);

  CLI::App* const mot = commande->add_subcommand("mot", "par un mot clé de la référence");
  mot->add_option("mot", options->motCle, "mot cherché, accents et casse indifférents")->required();
  mot->add_option("--cadre,-c", options->cadre,
                  "somme de 1 libellé court, 2 libellé long, 4 notes, 8 conditions générales, 16 titres de "
                  "menus ; 0 : partout")
      ->type_name("N");
  options->declarer(*mot);
  mot->callback([options] { rechercherParMotCle(*options); });
  CLI::App* const filtre = commande->add_subcommand("filtre", "par le début de leur code");
  filtre->add_option("filtre", options->filtre, "de 0 à 4 lettres ; rien : tous les actes");
  options->declarer(*filtre);
  filtre->callback([options] { rechercherParFiltre(*options); });
  commande->callback([options, commande, &statut] {
    if (commande->get_subcommands().empty()) {
      rechercher(*options, statut);
    }
  });
}

void enregistrerActe(CLI::App& application) {
  auto options = std::make_shared<OptionsActe>();
  CLI::App* const commande =
      application.add_subcommand("acte", "Tout ce que la référence dit d'un acte, sur un écran ou une page");
  commande->add_option("code", options->code, "code de l'acte (HHFA001)")->required()->type_name("CODE");
  commande->add_option("--date,-d", options->date, "date de référence (par défaut : aujourd'hui)")
      ->type_name("DATE");
  options->reference.declarer(*commande);
  CLI::Option* const json = commande->add_flag("--json", options->json, "réponse en JSON, pour un programme");
  commande->add_flag("--html", options->html, "une page HTML")->excludes(json);
  commande->add_option("--sortie,-o", options->sortie, "fichier écrit (- : sortie standard)")
      ->type_name("FICHIER");
  commande->callback([options] { montrerActe(*options); });
}

}  // namespace noxlux::commande
