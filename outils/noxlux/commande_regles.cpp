// noxlux verifier and appliquer: data controls and single rules.
#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "noxlux/bibliotheque.h"
#include "noxlux/commandes.h"
#include "noxlux/requete.h"
#include "noxlux/sortie.h"

namespace noxlux::commande {

namespace {

struct OptionsRegle {
  OptionsReference reference;
  std::string identifiant;
  std::vector<std::string> champs;
  std::string date;
  std::string demande;
  bool json = false;

  void declarer(CLI::App& commande, const char* exemples) {
    commande.add_option("identifiant", identifiant, exemples)->required()->type_name("IDENTIFIANT");
    commande.add_option("champs", champs, "champs de la demande")->type_name("champ=valeur");
    reference.declarer(commande);
    commande.add_flag("--json", json, "réponse en JSON, pour un programme");
  }
};

void verifier(const OptionsRegle& options) {
  const FonctionDecrite& fonction = trouverFonction("controle", options.identifiant);
  std::string zone = construireZone(fonction, options.champs);
  const std::string date = dateReference(options.date);
  const Bibliotheque bibliotheque(options.reference);
  char reponse = 'N';
  const EcouteFaute ecoute;
  const unsigned short code = NOX_ControlerDonnees(fonction.nom.c_str(), date.c_str(), zone.data(),
                                                   static_cast<unsigned int>(zone.size()), &reponse);
  if (code != NOX_CR_OK) {
    throw ErreurBibliotheque("NOX_ControlerDonnees", code, ecoute.cause(code));
  }
  if (options.json) {
    ecrireJson(Json{{"controle", fonction.nom}, {"reponse", reponse == 'O'}});
  } else {
    std::cout << (reponse == 'O' ? "oui" : "non") << '\n';
  }
}

std::string zoneDemandee(const FonctionDecrite& fonction, const OptionsRegle& options) {
  if (options.demande.empty()) {
    return construireZone(fonction, options.champs);
  }
  return encoderZone(lireTout(options.demande), options.demande);
}

constexpr unsigned GROUPE_PRIX = 3411;
constexpr const char* PRIX_A_FACTURER = "prixAFacturer";

// The prices that a rule computes, line after line.
class EcoutePrix final : public EcouteFaute {
 public:
  void etapeDite(const EtapeCalcul& etape) override {
    if (etape.operation == Operation::DEPART) {
      prix_.emplace_back(etape.resultat);
    } else if (!prix_.empty()) {
      prix_.back() = Montant(etape.resultat);
    }
  }
  const std::vector<Montant>& prix() const { return prix_; }

 private:
  std::vector<Montant> prix_;
};

// C_Pu answers amounts cut to the cent below, while the check compares a price with the nearest cent: beside
// each price stands the one to bill.
void ajouterPrixAFacturer(const std::vector<Montant>& prix, Json& reponses) {
  std::size_t rang = 0;
  for (Json& reponse : reponses) {
    if (reponse["groupe"] == GROUPE_PRIX && rang < prix.size()) {
      reponse[PRIX_A_FACTURER] = prix[rang++].arrondir(Montant::DECIMALES);
    }
  }
}

// For a person the price to bill is one more field.
Json enChamps(Json groupes) {
  for (Json& groupe : groupes) {
    if (groupe.contains(PRIX_A_FACTURER)) {
      groupe["champs"][PRIX_A_FACTURER] = texteValeur(groupe[PRIX_A_FACTURER], 'M');
    }
  }
  return groupes;
}

void appliquer(const OptionsRegle& options, int& statut) {
  const FonctionDecrite& fonction = trouverFonction("regle", options.identifiant);
  std::string zone = zoneDemandee(fonction, options);
  const Bibliotheque bibliotheque(options.reference);
  const EcoutePrix ecoute;
  const Reponse reponse = appelerEnEcoutant(ecoute, [&](void** sortie, unsigned int* taille) {
    return NOX_AppliquerRegle(fonction.nom.c_str(), zone.data(), static_cast<unsigned int>(zone.size()),
                              sortie, taille);
  });
  if (reponse.zone.empty() && reponse.code != NOX_CR_OK) {
    throw ErreurBibliotheque("NOX_AppliquerRegle", reponse.code, reponse.cause);
  }
  Json groupes = decoderZone(reponse.zone, true);
  if (fonction.nom == "C_Pu") {
    ajouterPrixAFacturer(ecoute.prix(), groupes);
  }
  if (options.json) {
    ecrireJson(groupes);
  } else {
    afficherGroupes(enChamps(std::move(groupes)), std::cout);
  }
  if (reponse.code != NOX_CR_OK) {
    std::cerr << "noxlux : " << hexadecimal(reponse.code) << " : " << signification(reponse.code) << '\n';
    statut = STATUT_CODE_ERREUR;
  }
}

}  // namespace

void enregistrerVerifier(CLI::App& application) {
  auto options = std::make_shared<OptionsRegle>();
  CLI::App* commande = application.add_subcommand("verifier", "Contrôle une donnée : oui ou non");
  options->declarer(*commande, "contrôle (C_Age_1, C_Executant...)");
  commande->add_option("--date,-d", options->date, "date de référence (par défaut : aujourd'hui)")
      ->type_name("AAAA-MM-JJ");
  commande->callback([options] { verifier(*options); });
}

void enregistrerAppliquer(CLI::App& application, int& statut) {
  auto options = std::make_shared<OptionsRegle>();
  CLI::App* commande =
      application.add_subcommand("appliquer", "Applique une règle à une ou plusieurs lignes");
  options->declarer(*commande, "règle (C_Pu, C_Base, C_Compatibilite...)");
  commande
      ->add_option("--demande", options->demande,
                   "zone de la demande en JSON, quand il y a plusieurs lignes (voir « noxlux zone »)")
      ->type_name("FICHIER.json")
      ->excludes("champs");
  commande->callback([options, &statut] { appliquer(*options, statut); });
}

}  // namespace noxlux::commande
