#include "noxlux/mises_de_cote.h"

#include <filesystem>
#include <set>

#include "compilateur/transcodage.h"
#include "fichier/fichier_ouvert.h"
#include "fichier/lecteur.h"
#include "noxlux/bibliotheque.h"
#include "noxlux/changements_sauves.h"
#include "referent/lecture_donnees.h"
#include "referent/referentiel.h"

namespace noxlux::commande {

namespace fs = std::filesystem;
using compilateur::versUtf8;

namespace {

// The version in the header of either file; "" when there is none to read.
std::string versionDe(const std::string& chemin) {
  const FichierOuvert fichier(chemin);
  CodeFixe<4> version;
  if (!fichier.estOuvert()) {
    return {};
  }
  Lecteur lecteur(fichier.lire());
  return lireVersionEntete(lecteur, version) == NOX_CR_OK ? versUtf8(version.entier()) : std::string();
}

}  // namespace

std::string direMiseDeCote(const std::string& fichierReference, const std::string& repertoireModification) {
  const std::string chemin = repertoireModification + NOM_FICHIER_MODIFICATION;
  const std::string faits = versionDe(chemin);
  const std::string chargee = versionDe(fichierReference);
  return faits.empty() || chargee.empty() || faits == chargee
             ? std::string()
             : "les changements de " + chemin + ", faits sur la version " + faits +
                   ", sont mis de côté : la référence est en version " + chargee;
}

std::string direMiseDeCote(const OptionsReference& options) {
  return direMiseDeCote(options.fichierReference(), options.repertoireModification());
}

std::string direRefus(const OptionsReference& options) {
  Referentiel referentiel;
  if (chargerSansRefaire(options, referentiel) != NOX_CR_OK ||
      referentiel.appliquerModifications() == NOX_CR_OK) {
    return {};
  }
  return "la référence refuse un changement de " + options.repertoireModification() +
         NOM_FICHIER_MODIFICATION + " : " + referentiel.refus;
}

std::string direActesRefuses(const OptionsReference& options) {
  Referentiel referentiel;
  if (chargerSansRefaire(options, referentiel) != NOX_CR_OK ||
      referentiel.appliquerModifications() != NOX_CR_OK) {
    return {};
  }
  std::set<CodeActe> actes;
  const auto relever = [&](const auto& lignes) {
    for (const auto& ligne : lignes) {
      actes.insert(ligne.acte);
    }
  };
  relever(referentiel.lignes<ModificationPrixUnitaire>());
  relever(referentiel.lignes<ModificationSupplementCharge>());
  relever(referentiel.lignes<ModificationMajorationDOM>());
  relever(referentiel.lignes<ModificationCodeRegroupement>());
  LectureDonnees lecture(&referentiel);
  std::string refuses;
  for (const CodeActe& acte : actes) {
    Code type;
    const CodeRetour cr = lecture.rechercherTypeActe(Code(std::string(acte.vue())), type);
    if (cr != NOX_CR_OK) {
      refuses += (refuses.empty() ? "" : ", ") + versUtf8(acte.vue()) + " (" + hexadecimal(cr) + ")";
    }
  }
  return refuses.empty() ? refuses
                         : "la référence refuse les changements d'actes de " +
                               options.repertoireModification() + NOM_FICHIER_MODIFICATION + " : " + refuses;
}

Exclusivite::Exclusivite(const std::string& repertoire) : verrou_(repertoire, ATTENTE) {
  if (verrou_.etat() == VerrouModifications::Etat::Occupe) {
    throw ErreurUsage("une autre sauvegarde tient " + repertoire + " : à reprendre plus tard");
  }
  verrou_.preter();
}

std::vector<std::string> direRestes(const std::string& repertoireModification) {
  const auto present = [&](const char* nom) {
    std::error_code erreur;
    return fs::exists(repertoireModification + nom, erreur);
  };
  std::vector<std::string> phrases;
  for (const char* nom : {NOM_TEMPORAIRE_MODIFICATION, NOM_SECURITE_MODIFICATION}) {
    if (present(nom)) {
      phrases.push_back(repertoireModification + nom +
                        " : reste d'une sauvegarde interrompue (ou en cours), sans effet");
    }
  }
  if (present(NOM_SAUVEGARDE_MODIFICATION) && !present(NOM_FICHIER_MODIFICATION)) {
    phrases.push_back(repertoireModification + NOM_SAUVEGARDE_MODIFICATION +
                      " : seul, une sauvegarde a été interrompue ; c'est la dernière bonne version, à "
                      "renommer en " +
                      NOM_FICHIER_MODIFICATION);
  }
  return phrases;
}

}  // namespace noxlux::commande
