#include "noxlux/changements_sauves.h"

#include <algorithm>
#include <tuple>
#include <type_traits>

#include "compilateur/fichier_reference.h"
#include "noxlux/bibliotheque.h"
#include "noxlux/ouverture.h"
#include "noxlux/presentation.h"
#include "referent/referentiel.h"
#include "tables/catalogue.h"

namespace noxlux::commande {

namespace {

using namespace noxlux::compilateur;

constexpr ChampSauve ACTE{"acte", "acte"};
constexpr ChampSauve ACTIVITE{"activite", "activite"};
constexpr ChampSauve PHASE{"phase", "phase"};
constexpr const char* CAISSE = "caisse";
constexpr unsigned CAISSE_POSITION_ZERO = 970;  // 971 names the first position of increases and thresholds

constexpr TableChangements TABLES[] = {
    {ModificationNouveauCodeRegroupement::IDENTIFIANT,
     "nouveau code de regroupement",
     "TB13_1",
     {},
     {{{"TB13_1", {{{"regroupement", "code"}, {"libelle", "libelle"}}}}}}},
    {ModificationPrixUnitaire::IDENTIFIANT,
     "prix unitaire",
     "CCAM_37",
     {{ACTE, ACTIVITE, PHASE}},
     {{{"CCAM_37", {{{"montant", "prix"}}}}}}},
    {ModificationSupplementCharge::IDENTIFIANT,
     "supplément de charges",
     "CCAM_39",
     {{ACTE, ACTIVITE, PHASE}},
     {{{"CCAM_39", {{{"montant", "supplement"}}}}}}},
    {ModificationMajorationDOM::IDENTIFIANT,
     "majoration d'outre-mer",
     "CCAM_47a",
     {{{CAISSE, "position"}, ACTE, ACTIVITE, PHASE}},
     {{{"CCAM_47a", {{{"coefficient", "dom"}}}}}}},
    {ModificationRegleAssociationNonPrevue::IDENTIFIANT,
     "association non prévue",
     "TB02_1",
     {{{"association", "code"}}},
     {{{"TB02_1", {{{"coefficient", "coefficient"}}}}}}},
    {ModificationSeuil::IDENTIFIANT,
     "seuil d'exonération",
     "TB07_1",
     {{{CAISSE, "position"}}},
     {{{"TB07_1", {{{"montant", "seuil"}}}}}}},
    {ModificationModificateur::IDENTIFIANT,
     "valeur de modificateur",
     "TB11",
     {{{"modificateur", "code"}}},
     {{{"TB11_1", {{{"montant", "forfait"}}}}, {"TB11_2", {{{"coefficient", "coefficient"}}}}}}},
    {ModificationNonConventionne::IDENTIFIANT,
     "praticien non conventionné",
     "TB12",
     {},
     {{{"TB12_1", {{{"montant", "forfait"}}}}, {"TB12_2", {{{"coefficient", "coefficient"}}}}}}},
    {ModificationCodeRegroupement::IDENTIFIANT,
     "code de regroupement d'un acte",
     "CCAM_42",
     {{ACTE, ACTIVITE}},
     {{{"CCAM_42", {{{"regroupement", "regroupement"}}}}}}}};

// Takes out of a table of changes the lines that are told.
template <class M>
void retirerLignes(Referentiel& referentiel, const std::vector<bool>& retirees) {
  std::vector<M>& lignes = referentiel.lignes<M>();
  std::size_t rang = 0;
  std::erase_if(lignes, [&](const M&) { return retirees[rang++]; });
}

std::string texteSimple(const Json& valeur) {
  return valeur.is_string() ? rogner(valeur.get<std::string>()) : valeur.dump();
}

// The groups of a request as one list of fields.
Json champsDeLaZone(const std::string& zone) {
  Json champs = Json::object();
  for (const Json& groupe : decoderZone(zone, false)) {
    champs.update(groupe["champs"]);
  }
  return champs;
}

bool estLaCle(const TableChangements& table, const JsonOrdonne& ligne, const Json& demande) {
  return std::all_of(table.cles.begin(), table.cles.end(), [&](const ChampSauve& champ) {
    return champ.demande == nullptr ||
           (demande.contains(champ.demande) &&
            texteSimple(demande[champ.demande]) == texteSimple(valeurSauvee(champ, ligne)));
  });
}

}  // namespace

std::span<const TableChangements> tablesChangements() { return TABLES; }

JsonOrdonne valeurSauvee(const ChampSauve& champ, const JsonOrdonne& ligne) {
  const JsonOrdonne& valeur = ligne.at(champ.sauve);
  return champ.demande == std::string_view(CAISSE)
             ? JsonOrdonne(std::to_string(CAISSE_POSITION_ZERO + valeur.get<unsigned>()))
             : valeur;
}

CodeRetour chargerSansRefaire(const OptionsReference& options, Referentiel& referentiel) {
  const std::string fichier = options.fichierReference();
  const std::string repertoire =
      fichier.substr(0, fichier.size() - std::string_view(NOM_FICHIER_REFERENCE).size());
  // Versions are the library's business: what it refuses by them, it has refused.
  return referentiel.chargerFichiers(repertoire.c_str(), options.repertoireModification().c_str(), "\xFF",
                                     "");
}

std::size_t retirerDuFichier(const OptionsReference& options, const std::string& annulation,
                             const std::string& zone, const std::string& commentaire) {
  Referentiel referentiel;
  const CodeRetour cr = chargerSansRefaire(options, referentiel);
  if (cr != NOX_CR_OK) {
    throw ErreurBibliotheque("NOX_InitLIB", cr);
  }
  const TableChangements& table =
      *std::find_if(std::begin(TABLES), std::end(TABLES),
                    [&](const TableChangements& t) { return annulation == t.annulation; });
  const auto fichier = ouvrirReference(options.repertoireModification(), NOM_FICHIER_MODIFICATION);
  const TableLue* const lue = fichier->chercherTable(table.table);
  CodeRetour crTable = NOX_CR_OK;
  const Json demande = champsDeLaZone(zone);
  std::vector<bool> retirees;
  if (lue != nullptr) {
    for (const JsonOrdonne& ligne : listerTable(*fichier, *lue, crTable)) {
      retirees.push_back(estLaCle(table, ligne, demande));
    }
  }
  const auto nombre = static_cast<std::size_t>(std::count(retirees.begin(), retirees.end(), true));
  if (nombre == 0) {
    return 0;
  }
  [&]<class... M>(std::type_identity<std::tuple<M...>>) {
    (static_cast<void>(M::IDENTIFIANT == table.table && (retirerLignes<M>(referentiel, retirees), true)),
     ...);
  }(std::type_identity<noxlux::Catalogue>{});
  ++referentiel.entete.numeroRevision;
  if (!commentaire.empty()) {
    referentiel.entete.commentaire = commentaire;
  }
  if (const CodeRetour crSauve = referentiel.sauvegarderModifications(); crSauve != NOX_CR_OK) {
    throw ErreurBibliotheque("NOX_SauvegarderReferentiel", crSauve);
  }
  return nombre;
}

}  // namespace noxlux::commande
