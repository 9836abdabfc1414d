// The steps of an invoice for a person.
#include <iostream>

#include "noxlux/explication.h"
#include "noxlux/presentation.h"
#include "noxlux/tableau.h"

namespace noxlux::commande {

namespace {

std::string montant(const Json& valeur) { return eurosOuTiret(valeur); }

std::string operation(const Json& etape) {
  const std::string libelle = etape["libelle"].get<std::string>();
  const std::string nature = etape["operation"].get<std::string>();
  const double operande = etape["operande"].get<double>();
  const std::string resultat = montant(etape["resultat"]);
  if (nature == "depart" || nature == "arrondi") {
    return libelle + " : " + resultat;
  }
  const std::string faite = nature == "fois"   ? "× " + nombreLisible(operande, 3)
                            : nature == "plus" ? "+ " + euros(operande)
                                               : "au plus " + euros(operande);
  return faite + " " + libelle + " = " + resultat;
}

std::string association(const Json& association) {
  if (!association.contains("acteLePlusCher")) {
    return {};
  }
  std::string texte = "acte le plus cher : " + association["acteLePlusCher"].get<std::string>() + " (ligne " +
                      association["ligneLaPlusChere"].dump() + ", " + montant(association["prixLePlusCher"]) +
                      ")";
  if (association.value("complementaire", false)) {
    return texte + " ; acte complémentaire, jamais réduit";
  }
  const std::string code = association.value("codeAssociation", "");
  const std::string regle = association.value("regleTarifaire", "");
  texte += association.value("reduite", false) ? " ; réduit" : " ; non réduit";
  return texte + (!code.empty()    ? ", code association " + code
                  : !regle.empty() ? ", règle tarifaire " + regle
                                   : "");
}

// Those of one kind; those that do not count stand with the rates.
std::string modificateurs(const Json& liste, const char* genre) {
  std::string texte;
  for (const Json& modificateur : liste) {
    const bool auDela = modificateur["compte"] == false;
    if (!modificateur.contains(genre) && !(auDela && std::string(genre) == "taux")) {
      continue;
    }
    texte += (texte.empty() ? "" : " ; ") + modificateur["code"].get<std::string>() + " : " +
             (auDela ? "ne compte pas, au-delà des " + modificateur["nombreQuiComptent"].dump()
              : std::string(genre) == "taux" ? nombreLisible(modificateur["taux"].get<double>(), 3)
                                             : montant(modificateur["forfait"]));
  }
  return texte;
}

std::string preciser(const Json& etape, const Json& etapes) {
  return etape["etape"] == "reductionAssociation"    ? association(etapes["association"])
         : etape["etape"] == "tauxModificateurs"     ? modificateurs(etapes["modificateurs"], "taux")
         : etape["etape"] == "forfaitsModificateurs" ? modificateurs(etapes["modificateurs"], "forfait")
                                                     : std::string();
}

// What neither changes the amount nor has anything to tell is passed over.
bool estNeutre(const Json& etape) {
  const bool neutre = (etape["operation"] == "fois" && etape["operande"] == 1.0) ||
                      (etape["operation"] == "plus" && etape["operande"] == 0.0);
  return neutre && etape["donnees"].empty() && etape["precisions"] == "";
}

class Recit {
 public:
  explicit Recit(std::ostream& sortie) : sortie_(sortie) {}

  void ligne(const Json& ligne) {
    sortie_ << "\nLigne " << ligne["numero"].dump() << " — " << ligne["acte"].get<std::string>() << '\n';
    const Json& etapes = ligne["etapes"];
    if (etapes["prix"].empty() && etapes["base"].empty()) {
      ecrire(1,
             etapes.value("rembourse", true) ? "Rien n'est calculé." : "Acte non remboursé : pas de base.");
      return;
    }
    ecrire(1, "Prix unitaire");
    operations(etapes["prix"]);
    if (!etapes["base"].empty()) {
      ecrire(1, "Base de remboursement");
      operations(etapes["base"]);
    }
    if (etapes.contains("exoneration")) {
      const Json& seuil = etapes["exoneration"];
      ecrire(1, "Seuil d'exonération, l'acte seul : base hors forfait " + montant(seuil["base"]) +
                    ", seuil " + montant(seuil["seuil"]) +
                    (seuil["atteint"] == true ? " : atteint" : " : non atteint"));
      donnees(seuil);
    }
  }

  void exoneration(const Json& exoneration) {
    sortie_ << "\nExonération : facture " << exoneration["libelle"].get<std::string>() << '\n';
    for (const Json& seance : exoneration["seances"]) {
      std::string somme;
      for (const Json& comptee : seance["lignes"]) {
        somme += (somme.empty() ? "" : " + ") + montant(comptee["montant"]) + " (ligne " +
                 comptee["numero"].dump() + ")";
      }
      ecrire(1, "Actes du " + dateFrancaise(seance["date"].get<std::string>()) + " : " +
                    (somme.empty() ? "aucun ne compte" : somme + " = " + montant(seance["somme"])) +
                    ", seuil " + montant(seance["seuil"]));
      donnees(seance);
    }
  }

 private:
  static constexpr std::size_t RETRAIT = 2;

  void ecrire(std::size_t niveau, const std::string& texte) {
    const std::size_t marge = niveau * RETRAIT;
    for (const std::string& pli : plier(texte, largeurTerminal() - marge)) {
      sortie_ << std::string(marge, ' ') << pli << '\n';
    }
  }

  void donnees(const Json& objet) {
    for (const Json& donnee : objet["donnees"]) {
      ecrire(3, "· " + donnee["phrase"].get<std::string>());
    }
  }

  void operations(const Json& liste) {
    for (const Json& etape : liste) {
      if (estNeutre(etape)) {
        continue;
      }
      ecrire(2, etape["phrase"].get<std::string>());
      if (etape["precisions"] != "") {
        ecrire(3, "· " + etape["precisions"].get<std::string>());
      }
      donnees(etape);
    }
  }

  std::ostream& sortie_;
};

}  // namespace

void phraser(Json& etapes) {
  for (const char* montant : {"prix", "base"}) {
    for (Json& etape : etapes[montant]) {
      etape["phrase"] = operation(etape);
      etape["precisions"] = preciser(etape, etapes);
    }
  }
}

void afficherEtapes(const Json& resultat, std::ostream& sortie) {
  Recit recit(sortie);
  for (const Json& ligne : resultat["lignes"]) {
    recit.ligne(ligne);
  }
  if (resultat["exoneration"].is_object()) {
    recit.exoneration(resultat["exoneration"]);
  }
}

}  // namespace noxlux::commande
