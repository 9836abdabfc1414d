// noxlux modifier and annuler: local changes of the reference, saved at once, told from which value to which.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "compilateur/transcodage.h"
#include "noxlux/bibliotheque.h"
#include "noxlux/changements_sauves.h"
#include "noxlux/commandes.h"
#include "noxlux/mises_de_cote.h"
#include "noxlux/requete.h"
#include "noxlux/sortie.h"

namespace noxlux::commande {

namespace {

struct OptionsModifier {
  OptionsReference reference;
  std::string identifiant;
  std::vector<std::string> champs;
  std::string date;
  std::string commentaire;
  bool json = false;
  bool oui = false;
  bool remplacer = false;

  void declarer(CLI::App& commande) {
    commande.add_option("identifiant", identifiant, "donnée (CCAM_37, TB07_1...)")
        ->required()
        ->type_name("IDENTIFIANT");
    commande.add_option("champs", champs, "champs de la demande")->type_name("champ=valeur");
    commande.add_option("--commentaire,-c", commentaire,
                        "commentaire gardé avec le référentiel (200 caractères)");
    reference.declarer(commande);
    commande.add_flag("--json", json, "réponse en JSON, pour un programme");
  }
};

// The consultations that show what a change or a cancellation touches: the one of the same name, or those
// whose names it begins (TB11 undoes TB11_1 and TB11_2).
std::vector<const FonctionDecrite*> consultationsDe(const std::string& identifiant) {
  const DescriptionZones& socle = DescriptionZones::socle();
  if (const FonctionDecrite* fonction = socle.fonction("consultation", identifiant)) {
    return {fonction};
  }
  std::vector<const FonctionDecrite*> consultations;
  for (const char* suite : {"_1", "_2"}) {
    if (const FonctionDecrite* fonction = socle.fonction("consultation", identifiant + suite)) {
      consultations.push_back(fonction);
    }
  }
  return consultations;
}

// The values in force at a date, group by group; null for one that the reference does not have.
Json valeursEnVigueur(const std::string& identifiant, const std::vector<std::string>& champs,
                      const std::string& date) {
  Json valeurs = Json::array();
  for (const FonctionDecrite* fonction : consultationsDe(identifiant)) {
    std::string zone = construireZone(*fonction, argumentsPour(*fonction, champs));
    const Reponse reponse = appeler([&](void** sortie, unsigned int* taille) {
      return NOX_ConsulterDonnee(fonction->nom.c_str(), date.c_str(), zone.data(),
                                 static_cast<unsigned int>(zone.size()), sortie, taille);
    });
    if (reponse.code != NOX_CR_OK) {
      valeurs.push_back(nullptr);
      continue;
    }
    for (const Json& groupe : decoderZone(reponse.zone, true)) {
      valeurs.push_back(groupe["champs"]);
    }
  }
  return valeurs;
}

std::string enClair(const Json& valeurs) {
  std::string texte;
  for (const Json& valeur : valeurs) {
    for (const auto& [nom, element] : valeur.items()) {
      texte += (texte.empty() ? "" : ", ") + nom + " " +
               texteValeur(element, nom == "montant"          ? 'M'
                                    : nom == "coefficient"    ? 'F'
                                    : nom.starts_with("date") ? 'D'
                                                              : 'T');
    }
  }
  return texte.empty() ? "(rien)" : texte;
}

// The fund of TB07_1 numbers the columns of the thresholds: 971 is the metropole's, not Guadeloupe's. What is
// changed is told by its name; "" for the other data.
std::string colonneDuSeuil(const std::string& identifiant, const std::vector<std::string>& champs) {
  constexpr std::pair<const char*, const char*> COLONNES[] = {{"caisse=971", "métropole"},
                                                              {"caisse=972", "Antilles"},
                                                              {"caisse=973", "La Réunion"},
                                                              {"caisse=974", "Guyane"}};
  for (const auto& [champ, colonne] : COLONNES) {
    if (identifiant == "TB07_1" && std::find(champs.begin(), champs.end(), champ) != champs.end()) {
      return colonne;
    }
  }
  return "";
}

// Keeps of two lists of values those that are not in both.
void garderLesDifferences(Json& avant, Json& apres) {
  const auto retirer = [](Json& liste, const Json& autre) {
    Json reste = Json::array();
    for (const Json& valeur : liste) {
      if (std::find(autre.begin(), autre.end(), valeur) == autre.end()) {
        reste.push_back(valeur);
      }
    }
    return reste;
  };
  Json seulementAvant = retirer(avant, apres);
  apres = retirer(apres, avant);
  avant = std::move(seulementAvant);
}

// Whether a value becomes more than ten times another, or nothing: an amount typed in cents, most often.
bool changeDOrdre(double avant, double apres) {
  constexpr double FOIS = 10;
  return avant > 0 && (apres > avant * FOIS || apres < avant / FOIS);
}

bool changeDOrdre(const Json& avant, const Json& apres) {
  for (std::size_t i = 0; i < avant.size() && i < apres.size(); ++i) {
    for (const char* nom : {"montant", "coefficient"}) {
      if (avant[i].is_object() && apres[i].is_object() && avant[i].contains(nom) && apres[i].contains(nom) &&
          changeDOrdre(avant[i][nom].get<double>(), apres[i][nom].get<double>())) {
        return true;
      }
    }
  }
  return false;
}

// Asks the person before such a change; a script says --oui.
void confirmer(const OptionsModifier& options, const Json& avant, const Json& apres) {
  if (options.oui || !changeDOrdre(avant, apres)) {
    return;
  }
  const std::string question = "de " + enClair(avant) + " à " + enClair(apres) + ", plus de dix fois autre";
  if (::isatty(STDIN_FILENO) != 1) {
    throw ErreurUsage(question + " : rien n'est changé. Les montants sont en euros ; --oui confirme.");
  }
  std::cerr << "De " << enClair(avant) << " à " << enClair(apres)
            << " : plus de dix fois autre. Sauvegarder ? (oui/non) " << std::flush;
  std::string reponse;
  std::getline(std::cin, reponse);
  if (reponse != "oui" && reponse != "o") {
    throw ErreurUsage("rien n'est changé");
  }
}

void exigerSucces(const char* fonction, unsigned short code) {
  if (code != NOX_CR_OK) {
    throw ErreurBibliotheque(fonction, code);
  }
}

template <class F>
void changer(const OptionsModifier& options, const std::string& identifiant, const std::string& date,
             const char* verbe, F changement) {
  const compilateur::TexteLatin1 commentaire = compilateur::versLatin1(options.commentaire);
  const Bibliotheque bibliotheque(options.reference);
  Json avant = valeursEnVigueur(identifiant, options.champs, date);
  changement();
  Json apres = valeursEnVigueur(identifiant, options.champs, date);
  garderLesDifferences(avant, apres);
  confirmer(options, avant, apres);
  exigerSucces("NOX_SauvegarderReferentiel", NOX_SauvegarderReferentiel(commentaire.texte.c_str()));
  const std::string colonne = colonneDuSeuil(identifiant, options.champs);
  if (options.json) {
    Json resultat = {{"identifiant", identifiant}, {"date", date}, {"avant", avant}, {"apres", apres}};
    if (!colonne.empty()) {
      resultat["colonne"] = colonne;
    }
    ecrireJson(resultat);
    return;
  }
  const std::string jour = date.substr(6, 2) + "/" + date.substr(4, 2) + "/" + date.substr(0, 4);
  std::cout << identifiant << (colonne.empty() ? "" : " (seuil : " + colonne + ")") << " " << verbe << " au "
            << jour << '\n'
            << "  avant : " << enClair(avant) << '\n'
            << "  après : " << enClair(apres) << '\n'
            << "Sauvegardé dans modifref.nox.\n";
}

void modifier(const OptionsModifier& options) {
  const FonctionDecrite& fonction = trouverFonction("modification", options.identifiant);
  std::string zone = construireZone(fonction, options.champs);
  const std::string effet = dateReference(options.date);
  const Exclusivite exclusivite(options.reference.repertoireModification());
  const std::string misDeCote = direMiseDeCote(options.reference);
  if (!misDeCote.empty() && !options.remplacer) {
    throw ErreurUsage(misDeCote + " ; « noxlux reporter » les refait, --remplacer les abandonne");
  }
  changer(options, fonction.nom, effet, "modifié, valeurs", [&] {
    appelerOuEchouer("NOX_ModifierDonnee", [&](void** /*sortie*/, unsigned int* /*taille*/) {
      return NOX_ModifierDonnee(fonction.nom.c_str(), effet.c_str(), zone.data(),
                                static_cast<unsigned int>(zone.size()));
    });
  });
}

// Where a saved change keeps the library from starting, there are no values to show.
void annulerSansBibliotheque(const OptionsModifier& options, const FonctionDecrite& fonction,
                             const std::string& zone) {
  const std::size_t retires = retirerDuFichier(options.reference, fonction.nom, zone,
                                               compilateur::versLatin1(options.commentaire).texte);
  if (retires == 0) {
    throw ErreurBibliotheque("NOX_AnnulerModification", NOX_CR_NON_MODIFIE);
  }
  const std::string reste = direRefus(options.reference);
  if (options.json) {
    ecrireJson({{"identifiant", fonction.nom}, {"retires", retires}, {"refus", reste}});
    return;
  }
  std::cout << fonction.nom << " : " << retires
            << (retires > 1 ? " changements retirés" : " changement retiré")
            << " de modifref.nox, que la référence "
            << (reste.empty() ? "accepte maintenant.\n" : "refuse encore.\n");
  if (!reste.empty()) {
    std::cerr << "noxlux : " << reste << '\n';
  }
}

void annuler(const OptionsModifier& options) {
  const FonctionDecrite& fonction = trouverFonction("annulation", options.identifiant);
  std::string zone = construireZone(fonction, options.champs);
  const std::string date = dateReference(options.date);
  const Exclusivite exclusivite(options.reference.repertoireModification());
  if (!direRefus(options.reference).empty()) {
    annulerSansBibliotheque(options, fonction, zone);
    return;
  }
  changer(options, fonction.nom, date, "rétabli, valeurs", [&] {
    appelerOuEchouer("NOX_AnnulerModification", [&](void** /*sortie*/, unsigned int* /*taille*/) {
      return NOX_AnnulerModification(fonction.nom.c_str(), zone.data(),
                                     static_cast<unsigned int>(zone.size()));
    });
  });
}

}  // namespace

void enregistrerModifier(CLI::App& application) {
  auto options = std::make_shared<OptionsModifier>();
  CLI::App* commande =
      application.add_subcommand("modifier", "Change une valeur du référentiel, et la sauvegarde");
  options->declarer(*commande);
  commande->add_option("--effet,-e", options->date, "date d'effet")->required()->type_name("DATE");
  commande->add_flag("--oui", options->oui,
                     "ne rien demander quand la valeur devient plus de dix fois autre");
  commande->add_flag("--remplacer", options->remplacer,
                     "écrire à la place de changements mis de côté, faits sur une autre référence");
  commande->callback([options] { modifier(*options); });
}

void enregistrerAnnuler(CLI::App& application) {
  auto options = std::make_shared<OptionsModifier>();
  options->oui = true;  // taking a change back is never refused
  CLI::App* commande = application.add_subcommand("annuler", "Annule les changements d'une valeur");
  options->declarer(*commande);
  commande->add_option("--date,-d", options->date, "date des valeurs montrées (par défaut : aujourd'hui)")
      ->type_name("DATE");
  commande->callback([options] { annuler(*options); });
}

}  // namespace noxlux::commande
