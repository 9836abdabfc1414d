// noxlux reporter: local changes made on another reference, or refused by this one, made again where they
// still make sense.
#include <CLI/CLI.hpp>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <memory>

#include "compilateur/transcodage.h"
#include "fichier/fichier_ouvert.h"
#include "noxlux/bibliotheque.h"
#include "noxlux/changements_sauves.h"
#include "noxlux/commandes.h"
#include "noxlux/mises_de_cote.h"
#include "noxlux/ouverture.h"
#include "noxlux/presentation.h"
#include "noxlux/requete.h"
#include "noxlux/sortie.h"
#include "referent/entetes.h"
#include "referent/rotation_modifications.h"

namespace noxlux::commande {

namespace {

namespace fs = std::filesystem;
using namespace noxlux::compilateur;
using Demande = TableChangements::Demande;

struct OptionsReporter {
  OptionsReference reference;
  std::string depuis;
  bool essai = false;
  bool json = false;
};

// --- One change ---

constexpr const char* REFAIT = "refait";
constexpr const char* INUTILE = "inutile";  // the reference says the same by itself
constexpr const char* REFUSE = "refuse";

void ajouterArguments(const ChampsSauves& champs, const JsonOrdonne& ligne,
                      std::vector<std::string>& arguments) {
  for (const ChampSauve& champ : champs) {
    if (champ.demande != nullptr) {
      const JsonOrdonne valeur = valeurSauvee(champ, ligne);
      const std::string nom = champ.demande;
      arguments.push_back(nom + "=" +
                          (valeur.is_string() ? valeur.get<std::string>()
                                              : nombrePourProgramme(valeur, nom == "montant" ? 2 : 3)));
    }
  }
}

bool egales(const Json& a, const Json& b) {
  constexpr double ECART = 0.00001;
  return a.is_number() && b.is_number()   ? std::fabs(a.get<double>() - b.get<double>()) <= ECART
         : a.is_string() && b.is_string() ? rogner(a.get<std::string>()) == rogner(b.get<std::string>())
                                          : false;
}

// Whether the reference answers the value of a change already, on the day from which it holds.
bool ditDeja(const Demande& demande, const JsonOrdonne& ligne, const std::vector<std::string>& arguments,
             const std::string& date) {
  const FonctionDecrite* const fonction =
      DescriptionZones::socle().fonction("consultation", demande.modification);
  std::string zone = construireZone(*fonction, argumentsPour(*fonction, arguments));
  const Reponse reponse = appeler([&](void** sortie, unsigned int* taille) {
    return NOX_ConsulterDonnee(demande.modification, date.c_str(), zone.data(),
                               static_cast<unsigned int>(zone.size()), sortie, taille);
  });
  if (reponse.code != NOX_CR_OK) {
    return false;
  }
  const ChampSauve& valeur = demande.valeurs.front();
  for (const Json& groupe : decoderZone(reponse.zone, true)) {
    const Json& champs = groupe["champs"];
    const char* const nom = champs.contains(valeur.demande) ? valeur.demande : "code";
    if (champs.contains(nom) && egales(champs[nom], valeurSauvee(valeur, ligne))) {
      return true;
    }
  }
  return false;
}

// Makes a change again: what came of it, and why not.
std::pair<const char*, std::string> refaire(const Demande& demande, const JsonOrdonne& ligne,
                                            const std::vector<std::string>& arguments,
                                            const std::string& date) {
  try {
    if (ditDeja(demande, ligne, arguments, date)) {
      return {INUTILE, "la référence le dit déjà"};
    }
    std::string zone = construireZone(trouverFonction("modification", demande.modification), arguments);
    const unsigned short code = NOX_ModifierDonnee(demande.modification, date.c_str(), zone.data(),
                                                   static_cast<unsigned int>(zone.size()));
    if (code == NOX_CR_OK) {
      return {REFAIT, ""};
    }
    return {code == NOX_CR_REGROUPEMENT_EXISTANT ? INUTILE : REFUSE,
            hexadecimal(code) + ", " + signification(code)};
  } catch (const ErreurUsage& erreur) {
    return {REFUSE, erreur.what()};
  }
}

// --- All of them ---

// Every change of the file, with what came of it.
Json refaireTout(const FichierReference& fichier) {
  Json changements = Json::array();
  for (const TableChangements& table : tablesChangements()) {
    const TableLue* const lue = fichier.chercherTable(table.table);
    CodeRetour cr = NOX_CR_OK;
    const JsonOrdonne lignes = lue == nullptr ? JsonOrdonne::array() : listerTable(fichier, *lue, cr);
    if (cr != NOX_CR_OK) {
      throw ErreurUsage(std::string("la table « ") + table.sujet + " » est illisible : " + signification(cr));
    }
    for (const JsonOrdonne& ligne : lignes) {
      for (const Demande& demande : table.demandes) {
        if (demande.modification == nullptr) {
          continue;
        }
        std::vector<std::string> arguments;
        ajouterArguments(table.cles, ligne, arguments);
        ajouterArguments(demande.valeurs, ligne, arguments);
        const std::string effet = ligne["effet"].get<std::string>();
        const auto [issue, raison] = refaire(demande, ligne, arguments, dateReference(effet));
        changements.push_back({{"identifiant", demande.modification},
                               {"champs", arguments},
                               {"effet", effet},
                               {"issue", issue},
                               {"raison", raison}});
      }
    }
  }
  return changements;
}

std::size_t compter(const Json& changements, const char* issue) {
  return static_cast<std::size_t>(std::count_if(changements.begin(), changements.end(),
                                                [&](const Json& c) { return c["issue"] == issue; }));
}

void afficher(const Json& changements) {
  for (const Json& changement : changements) {
    const std::string raison = changement["raison"].get<std::string>();
    const Json& issue = changement["issue"];
    std::cout << (issue == REFAIT ? "refait  " : issue == INUTILE ? "inutile " : "refusé  ")
              << changement["identifiant"].get<std::string>();
    for (const Json& champ : changement["champs"]) {
      std::cout << ' ' << champ.get<std::string>();
    }
    std::cout << " au " << dateFrancaise(changement["effet"].get<std::string>())
              << (raison.empty() ? "" : " : " + raison) << '\n';
  }
}

// --- The file ---

// A name beside the file that no other has, under the version it was made on.
fs::path nomPourGarder(const fs::path& modifref, const std::string& version) {
  fs::path nom;
  unsigned rang = 1;
  do {
    nom = modifref.parent_path() /
          ("modifref-" + version + (rang == 1 ? "" : "-" + std::to_string(rang)) + ".nox");
    ++rang;
  } while (fs::exists(nom));
  return nom;
}

// Puts a new modification file in the place of the one there, as a save does.
void installer(const std::string& repertoire, const fs::path& nouveau) {
  std::string contenu;
  const std::string raison = lireFichier(nouveau.string(), contenu);
  if (!raison.empty()) {
    throw ErreurUsage(nouveau.string() + " : " + raison);
  }
  RotationModifications rotation(repertoire);
  FichierOuvert fichier(rotation.creerTemporaire());
  CodeRetour cr = fichier.estOuvert() &&
                          std::fwrite(contenu.data(), 1, contenu.size(), fichier.lire()) == contenu.size() &&
                          fichier.synchroniser() && fichier.fermer()
                      ? NOX_CR_OK
                      : NOX_CR_ECRITURE_MODIF;
  cr = cr == NOX_CR_OK ? rotation.tourner() : cr;
  rotation.terminer(cr);
  if (cr != NOX_CR_OK) {
    throw ErreurBibliotheque("NOX_SauvegarderReferentiel", cr);
  }
}

void sauvegarder(const FichierReference& fichier) {
  const TexteLatin1 commentaire = versLatin1("Reporté de la version " + versUtf8(fichier.entete().version));
  const unsigned short code = NOX_SauvegarderReferentiel(commentaire.texte.c_str());
  if (code != NOX_CR_OK) {
    throw ErreurBibliotheque("NOX_SauvegarderReferentiel", code);
  }
}

// The file of this reference itself: the library starts without it, so that a change that it refuses does not
// stop it, and the old one stays beside the new one.
Json reporterSurPlace(const OptionsReporter& options, const FichierReference& fichier, std::string& garde) {
  const std::string repertoire = options.reference.repertoireModification();
  const RepertoireTemporaire vide(fs::temp_directory_path(), "noxlux-report-");
  if (!vide.raison().empty()) {
    throw ErreurUsage("répertoire temporaire impossible à créer : " + vide.raison());
  }
  OptionsReference sansChangements;
  sansChangements.reference = fs::path(options.reference.fichierReference()).parent_path().string();
  sansChangements.modification = vide.chemin().string();
  const Bibliotheque bibliotheque(sansChangements);
  Json changements = refaireTout(fichier);
  if (!options.essai) {
    sauvegarder(fichier);
    const fs::path ancien = fs::path(repertoire) / NOM_FICHIER_MODIFICATION;
    const fs::path nom = nomPourGarder(ancien, versUtf8(fichier.entete().version));
    fs::copy_file(ancien, nom);
    installer(repertoire, vide.chemin() / NOM_FICHIER_MODIFICATION);
    garde = nom.string();
  }
  return changements;
}

// Another file: its changes come upon those of this reference.
Json reporterDAilleurs(const OptionsReporter& options, const FichierReference& fichier) {
  const std::string misDeCote = direMiseDeCote(options.reference);
  if (!misDeCote.empty()) {
    throw ErreurUsage(misDeCote + " ; « noxlux reporter » sans fichier les refait d'abord");
  }
  const Bibliotheque bibliotheque(options.reference);
  Json changements = refaireTout(fichier);
  if (!options.essai && compter(changements, REFAIT) != 0) {
    sauvegarder(fichier);
  }
  return changements;
}

int reporter(const OptionsReporter& options) {
  const std::string repertoire = options.reference.repertoireModification();
  const fs::path ici = fs::path(repertoire) / NOM_FICHIER_MODIFICATION;
  std::error_code erreur;
  fs::path source = options.depuis.empty() ? ici : fs::path(options.depuis);
  source = fs::is_directory(source, erreur) ? source / NOM_FICHIER_MODIFICATION : source;
  const auto fichier = ouvrirReference(source.string(), NOM_FICHIER_MODIFICATION);
  if (!fichier->estModification() || !fichier->anomalie().empty()) {
    throw ErreurUsage(source.string() + " : ce n'est pas un fichier de modifications entier");
  }
  const Exclusivite exclusivite(repertoire);
  std::string garde;
  const Json changements = fs::equivalent(source, ici, erreur) ? reporterSurPlace(options, *fichier, garde)
                                                               : reporterDAilleurs(options, *fichier);
  const std::size_t refuses = compter(changements, REFUSE);
  if (options.json) {
    ecrireJson({{"source", source.string()}, {"garde", garde}, {"changements", changements}});
  } else {
    afficher(changements);
    std::cout << "refaits : " << compter(changements, REFAIT)
              << " ; inutiles : " << compter(changements, INUTILE) << " ; refusés : " << refuses
              << (options.essai ? " ; rien n'est écrit (--essai)" : "")
              << (garde.empty() ? "" : " ; l'ancien fichier est gardé : " + garde) << ".\n";
  }
  return refuses == 0 ? STATUT_REPONDU : STATUT_CODE_ERREUR;
}

}  // namespace

void enregistrerReporter(CLI::App& application, int& statut) {
  const auto options = std::make_shared<OptionsReporter>();
  CLI::App* const commande = application.add_subcommand(
      "reporter", "Refait sur cette référence les changements locaux faits sur une autre");
  commande
      ->add_option("depuis", options->depuis,
                   "modifref.nox à reporter, ou son répertoire (par défaut : celui de la référence)")
      ->type_name("FICHIER");
  commande->add_flag("--essai", options->essai, "dire ce qui serait refait, sans rien écrire");
  commande->add_flag("--json", options->json, "réponse en JSON, pour un programme");
  options->reference.declarer(*commande);
  commande->callback([options, &statut] { statut = reporter(*options); });
}

}  // namespace noxlux::commande
