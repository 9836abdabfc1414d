#include "compilateur/ecriture.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>

#include "basics/fichiers.h"
#include "compilateur/generateur.h"
#include "compilateur/systeme.h"
#include "fichier/crc16.h"
#include "fichier/ecrivain.h"
#include "fichier/fichier_ouvert.h"
#include "referent/referentiel.h"

namespace noxlux::compilateur {

namespace {

namespace fs = std::filesystem;

class Ecriture {
 public:
  Ecriture(const Modele& modele, const TablesReference& tables, const Avancement& avancement)
      : modele_(modele), tables_(tables), avancement_(avancement), entete_(modele.entetes.front()) {}

  // "" when the file is written, or what went wrong.
  std::string ecrire(const fs::path& chemin) {
    FichierOuvert fichier(creerFichier(chemin.string()));
    if (!fichier.estOuvert()) {
      return erreurSysteme("création du fichier");
    }
    Ecrivain ecrivain(fichier.lire());
    CodeRetour cr = ecrireEntete(ecrivain, NOM_FICHIER_REFERENCE, genererEntete(entete_), entete_.date,
                                 entete_.versionMinimum.entier());
    if (cr == NOX_CR_OK) {
      cr = ecrireTables(ecrivain);
    }
    if (cr == NOX_CR_OK) {
      cr = ecrireActes(ecrivain);
    }
    std::uint16_t crc = 0;
    if (cr == NOX_CR_OK && !calculerCRC16(fichier.lire(), crc)) {
      cr = NOX_CR_ECRITURE_MODIF;
    }
    if (cr == NOX_CR_OK) {
      cr = ecrivain.ecrireCRC(crc);
    }
    if (cr != NOX_CR_OK || !fichier.synchroniser()) {
      return erreurSysteme("écriture du fichier");
    }
    return "";
  }

 private:
  static std::string erreurSysteme(const char* action) {
    return phrase(action, " impossible (", raisonSysteme(errno), ")");
  }

  // All but the index, which is the last table that the loader reads.
  CodeRetour ecrireTables(Ecrivain& ecrivain) {
    CodeRetour cr = NOX_CR_OK;
    const auto ecrireUne = [&]<class L>(const std::vector<L>& lignes) {
      const bool deReference = Table::testerIdentifiantTableRef(L::IDENTIFIANT) != ETAT_INCONNUE;
      if (cr == NOX_CR_OK && deReference && L::IDENTIFIANT != Index::IDENTIFIANT) {
        cr = Table(lignes).ecrireTable(ecrivain);
      }
    };
    tables_.pourChaque(ecrireUne);
    if (cr == NOX_CR_OK) {
      baseIndex_ = ecrivain.lirePositionFinFichier();
      cr = Table(tables_.lignes<Index>()).ecrireTable(ecrivain);
    }
    return cr;
  }

  CodeRetour ecrireActes(Ecrivain& ecrivain) {
    std::vector<const Acte*> actes;
    for (const Acte& acte : modele_.actes) {
      actes.push_back(&acte);
    }
    std::sort(actes.begin(), actes.end(), [](const Acte* g, const Acte* d) { return g->code < d->code; });
    for (std::size_t rang = 0; rang < actes.size(); ++rang) {
      avancement_("écriture des actes", rang, actes.size());
      CodeRetour cr = ecrivain.ecrirePositionActe(baseIndex_, static_cast<std::uint32_t>(rang));
      if (cr == NOX_CR_OK) {
        cr = genererActe(*actes[rang]).ecrireNiveauActe(ecrivain);
      }
      if (cr != NOX_CR_OK) {
        return cr;
      }
    }
    return NOX_CR_OK;
  }

  const Modele& modele_;
  const TablesReference& tables_;
  const Avancement& avancement_;
  const Entete& entete_;
  std::int32_t baseIndex_ = 0;
};

std::string codeHexadecimal(CodeRetour cr) {
  char texte[8];
  std::snprintf(texte, sizeof texte, "0x%04X", cr);
  return texte;
}

// Loads the file as the library will: its tables, the deferred ones, every act.
std::string relire(const fs::path& repertoire, const Entete& entete, const Avancement& avancement) {
  Referentiel referentiel;
  const std::string chemin = repertoire.string() + '/';
  const std::string version(entete.versionMinimum.entier());
  CodeRetour cr =
      referentiel.chargerReferentiel(chemin.c_str(), chemin.c_str(), version.c_str(), version.c_str());
  for (const unsigned differee : {ActeIndexe::IDENTIFIANT, Arborescence::IDENTIFIANT, MotCle::IDENTIFIANT}) {
    if (cr == NOX_CR_OK) {
      cr = referentiel.assurerTable(static_cast<unsigned short>(differee));
    }
  }
  if (cr != NOX_CR_OK) {
    return phrase("la relecture du fichier produit échoue (", codeHexadecimal(cr), ")");
  }
  const std::vector<Index>& index = referentiel.lignes<Index>();
  for (std::size_t rang = 0; rang < index.size(); ++rang) {
    avancement("relecture des actes", rang, index.size());
    NiveauActe acte;
    const std::string code(index[rang].acte.vue());
    cr = referentiel.chargerActe(index[rang].position, acte, code.c_str());
    if (cr != NOX_CR_OK || acte.codeStructure != index[rang].acte) {
      return phrase("la relecture de l'acte ", code, " échoue (", codeHexadecimal(cr), ")");
    }
  }
  return "";
}

}  // namespace

bool ecrireReference(const Modele& modele, const TablesReference& tables, const std::string& repertoire,
                     const Avancement& avancement, Rapport& rapport, std::uint64_t& taille) {
  const std::uint32_t source = rapport.declarerSource(repertoire);
  const auto refuser = [&](std::string raison) {
    rapport.signaler({source, 0}, std::move(raison));
    return false;
  };
  std::error_code erreur;
  fs::create_directories(repertoire, erreur);
  if (erreur) {
    return refuser(phrase("création du répertoire impossible (", raisonSysteme(erreur.value()), ")"));
  }
  const RepertoireTemporaire temporaire(repertoire, ".noxlux-");
  if (!temporaire.raison().empty()) {
    return refuser(phrase("écriture impossible dans ce répertoire (", temporaire.raison(), ")"));
  }
  const fs::path provisoire = temporaire.chemin() / NOM_FICHIER_REFERENCE;
  std::string raison = Ecriture(modele, tables, avancement).ecrire(provisoire);
  if (raison.empty()) {
    raison = relire(temporaire.chemin(), modele.entetes.front(), avancement);
  }
  if (!raison.empty()) {
    return refuser(std::move(raison));
  }
  taille = fs::file_size(provisoire, erreur);
  fs::rename(provisoire, fs::path(repertoire) / NOM_FICHIER_REFERENCE, erreur);
  if (erreur) {
    return refuser(phrase("mise en place du fichier impossible (", raisonSysteme(erreur.value()), ")"));
  }
  synchroniserRepertoire(repertoire);
  return true;
}

}  // namespace noxlux::compilateur
