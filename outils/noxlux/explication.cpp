#include "noxlux/explication.h"

#include <algorithm>

#include "compilateur/transcodage.h"
#include "regles/facture.h"
#include "regles/faits.h"

namespace noxlux::commande {

namespace {

// A step: what it is called, the data it stands on.
struct Etape {
  std::string_view nom;
  const char* libelle;
  std::vector<std::string_view> questions;
};

const Etape* etapeDe(std::string_view nom) {
  static const std::vector<Etape> ETAPES = {
      {faits::PRIX_UNITAIRE, "prix unitaire de l'acte", {"rechercherPrixUnitaire"}},
      {faits::MAJORATION, "majoration d'outre-mer", {"rechercherMajorationDOM"}},
      {faits::PRIX_AU_CENTIME, "arrondi au centime", {}},
      {faits::PRIX_FACTURE, "prix facturé", {}},
      {faits::TAUX_MODIFICATEURS,
       "modificateurs à taux",
       {"rechercherNombreModificateursTarifants", "rechercherTauxModificateur"}},
      {faits::REDUCTION_ASSOCIATION,
       "coefficient d'association",
       {"rechercherTypeActe", "rechercherCoefficientAssociationNonPrevue", "rechercherRegleAssociation",
        "rechercherCoefficientRegle"}},
      {faits::FORFAITS_MODIFICATEURS, "modificateurs à forfait", {"rechercherForfaitModificateur"}},
      {faits::SUPPLEMENT_CHARGES, "supplément pour charges", {"rechercherSupplementCharges"}},
      {faits::FORFAIT_NON_CONVENTIONNE,
       "plafond des non-conventionnés",
       {"rechercherForfaitNonConventionnes"}},
      {faits::TAUX_NON_CONVENTIONNE, "réduction des non-conventionnés", {"rechercherTauxNonConventionnes"}},
      {faits::BASE_AU_CENTIME, "arrondi au centime", {}},
  };
  const auto trouvee =
      std::find_if(ETAPES.begin(), ETAPES.end(), [&](const Etape& e) { return e.nom == nom; });
  return trouvee == ETAPES.end() ? nullptr : &*trouvee;
}

const char* enTexte(Operation operation) {
  switch (operation) {
    case Operation::DEPART:
      return "depart";
    case Operation::FOIS:
      return "fois";
    case Operation::PLUS:
      return "plus";
    case Operation::PLAFOND:
      return "plafond";
    case Operation::ARRONDI:
      break;
  }
  return "arrondi";
}

// The rules that compute prices and bases: what they read is what the amounts stand on.
bool estCalcul(std::string_view regle) {
  constexpr std::string_view CALCULS[] = {"PROD840", "PROD763A", "PROD656A", "PROD656B", "PROD655",
                                          "PROD640", "PROD860",  "PROD870",  "PROD740"};
  return std::find(std::begin(CALCULS), std::end(CALCULS), regle) != std::end(CALCULS);
}
bool estPrix(std::string_view etape) {
  return etape == faits::PRIX_UNITAIRE || etape == faits::MAJORATION || etape == faits::PRIX_AU_CENTIME;
}

template <class T>
T valeur(const std::vector<ValeurLue>& valeurs, std::size_t i) {
  const T* const trouvee = i < valeurs.size() ? std::get_if<T>(&valeurs[i]) : nullptr;
  return trouvee == nullptr ? T() : *trouvee;
}

bool estMeme(const DonneeLue& gauche, const DonneeLue& droite) {
  return std::string_view(gauche.question) == droite.question && gauche.cles == droite.cles;
}

// Each datum once, of those that are told.
Json enListe(const std::vector<DonneeLue>& lues, const std::vector<std::string_view>* questions = nullptr) {
  Json liste = Json::array();
  for (auto lue = lues.begin(); lue != lues.end(); ++lue) {
    const bool voulue = questions == nullptr ||
                        std::find(questions->begin(), questions->end(), lue->question) != questions->end();
    const bool deja =
        std::any_of(lues.begin(), lue, [&](const DonneeLue& autre) { return estMeme(autre, *lue); });
    if (voulue && !deja) {
      if (Json json = donneeEnJson(*lue); !json.is_null()) {
        liste.push_back(std::move(json));
      }
    }
  }
  return liste;
}

Json seuilLu(const std::vector<DonneeLue>& lues) {
  static const std::vector<std::string_view> SEUIL = {"rechercherSeuilExoTM"};
  return enListe(lues, &SEUIL);
}

// What the state of an invoice says.
const char* etatEnClair(std::string_view etat) {
  return etat == Facture::EXONEREE         ? "exonérée par le seuil"
         : etat == Facture::NON_VERIFIABLE ? "exonération non vérifiable"
                                           : "non exonérée par le seuil";
}

}  // namespace

// --- Listening ---

void Explication::donneeLue(DonneeLue&& donnee) {
  faute_.noter(donnee);
  lues_.push_back(std::move(donnee));
}

void Explication::donneeModifiee(const Date& depuis) {
  if (!lues_.empty()) {
    lues_.back().modifiee = depuis;
  }
}

void Explication::regleDebutee(const char* regle, const Lignes& lignes) {
  regle_ = regle;
  sujet_ = lignes;
  lues_.clear();
  comptees_.clear();
}

void Explication::regleFinie() {
  if (estCalcul(regle_)) {
    for (const LigneActe* ligne : sujet_) {
      Recit& recit = recits_[ligne];
      recit.lues.insert(recit.lues.end(), lues_.begin(), lues_.end());
    }
  }
  regle_.clear();
  sujet_.clear();
  lues_.clear();
}

void Explication::faitDit(const char* fait, std::span<const ValeurLue> valeurs) {
  const std::string_view nom = fait;
  const std::vector<ValeurLue> copie(valeurs.begin(), valeurs.end());
  if (nom == faits::LIGNE_COMPTEE.nom) {
    comptees_.push_back({{"numero", static_cast<std::int32_t>(valeur<double>(copie, 0))},
                         {"montant", valeur<double>(copie, 1)}});
    return;
  }
  if (nom == faits::SOMME_SEANCE.nom && !sujet_.empty()) {
    seances_.push_back({{"date", jourIso(sujet_.front()->date)},
                        {"lignes", comptees_},
                        {"somme", valeur<double>(copie, 0)},
                        {"seuil", nullptr},
                        {"donnees", Json::array()}});
    return;
  }
  if (nom == faits::SEUIL_SEANCE.nom && !seances_.empty()) {
    seances_.back()["seuil"] = valeur<double>(copie, 0);
    seances_.back()["donnees"] = seuilLu(lues_);
    return;
  }
  for (const LigneActe* ligne : sujet_) {
    recits_[ligne].faits.push_back({fait, copie});
    if (nom == faits::SEUIL_ACTE.nom) {
      recits_[ligne].seuil = seuilLu(lues_);
    }
  }
}

void Explication::etapeDite(const EtapeCalcul& etape) {
  for (const LigneActe* ligne : sujet_) {
    recits_[ligne].etapes.push_back(etape);
  }
}

// What decided: all that the rule read; of one that only compares, what the amount stands on.
void Explication::erreurLevee(const Erreur& erreur) {
  const bool lue = !lues_.empty() || sujet_.size() != 1;
  levees_.push_back({std::string(erreur.lireReference().vue()),
                     std::string(erreur.lireLibelleSecondaire().vue()),
                     {{"regle", regle_},
                      {"detail", compilateur::versUtf8(erreur.lireLibelleSecondaire().vue())},
                      {"donnees", enListe(lue ? lues_ : recits_[sujet_.front()].lues)}}});
}

void Explication::erreurRendue(const Erreur& erreur) {
  const auto levee = std::find_if(levees_.begin(), levees_.end(), [&](const Raison& raison) {
    return raison.reference == erreur.lireReference().vue() &&
           raison.detail == erreur.lireLibelleSecondaire().vue();
  });
  rendues_.push_back(levee == levees_.end() ? Json() : levee->json);
}

void Explication::factureControlee(const Facture& facture) {
  for (const auto& ligne : facture.lignes) {
    const LigneCCAM* const acte = enLigneCCAM(ligne.get());
    lignes_.push_back(recits_[ligne.get()]);
    const auto montant = [](const std::optional<Montant>& m) { return m ? Json(m->lireValeur()) : Json(); };
    montants_.push_back(
        {{"prixCalcule",
          acte != nullptr && acte->prixCalcule ? Json(acte->prixCalcule->arrondir(2)) : Json()},
         {"baseCalculee", acte != nullptr ? montant(acte->baseCalculee) : Json()},
         {"baseHorsForfait", acte != nullptr ? montant(acte->baseHorsForfait) : Json()}});
  }
  if (facture.factureExoneree.has_value()) {
    const std::string_view etat = facture.factureExoneree->vue();
    exoneration_ = {{"etat", etat}, {"libelle", etatEnClair(etat)}, {"seances", seances_}};
  }
}

// --- Telling ---

Json Explication::montants(std::size_t rang) const {
  return rang < montants_.size() ? montants_[rang]
                                 : Json{{"prixCalcule", nullptr}, {"baseCalculee", nullptr}};
}

Json Explication::etape(const Recit& recit, const EtapeCalcul& dite) {
  const Etape* const connue = etapeDe(dite.nom);
  Json json = {{"etape", dite.nom},
               {"libelle", connue == nullptr ? dite.nom : connue->libelle},
               {"operation", enTexte(dite.operation)},
               {"operande", dite.operande},
               {"resultat", dite.resultat},
               {"donnees", Json::array()}};
  if (connue != nullptr && !connue->questions.empty()) {
    for (Json& donnee : enListe(recit.lues, &connue->questions)) {
      // A flat amount of zero is the mark of a modifier with a rate.
      if (dite.nom != std::string_view(faits::FORFAITS_MODIFICATEURS) || donnee["valeur"] != 0.0) {
        json["donnees"].push_back(std::move(donnee));
      }
    }
  }
  return json;
}

Json Explication::association(const Recit& recit) {
  Json json = Json::object();
  for (const Dit& dit : recit.faits) {
    if (dit.fait == faits::ACTE_LE_PLUS_FORT.nom) {
      json["acteLePlusCher"] = valeur<std::string>(dit.valeurs, 0);
    } else if (dit.fait == faits::LIGNE_LA_PLUS_FORTE.nom) {
      json["ligneLaPlusChere"] = static_cast<std::int32_t>(valeur<double>(dit.valeurs, 0));
      json["prixLePlusCher"] = valeur<double>(dit.valeurs, 1);
    } else if (dit.fait == faits::COMPLEMENTAIRE.nom || dit.fait == faits::REDUITE.nom) {
      json[dit.fait] = valeur<bool>(dit.valeurs, 0);
    } else if (dit.fait == faits::CODE_ASSOCIATION.nom || dit.fait == faits::REGLE_TARIFAIRE.nom) {
      json[dit.fait] = valeur<std::string>(dit.valeurs, 0);
    } else if (dit.fait == faits::COEFFICIENT.nom) {
      json["coefficient"] = valeur<double>(dit.valeurs, 0);
    }
  }
  return json;
}

Json Explication::modificateurs(const Recit& recit) {
  Json liste = Json::array();
  for (const Dit& dit : recit.faits) {
    if (dit.fait == faits::MODIFICATEUR.nom) {
      liste.push_back({{"code", valeur<std::string>(dit.valeurs, 0)}, {"compte", true}});
    } else if (dit.fait == faits::MODIFICATEUR_AU_DELA.nom) {
      liste.push_back({{"code", valeur<std::string>(dit.valeurs, 0)},
                       {"compte", false},
                       {"nombreQuiComptent", static_cast<std::int32_t>(valeur<double>(dit.valeurs, 1))}});
    } else if (dit.fait == faits::FORFAIT_MODIFICATEUR.nom && !liste.empty()) {
      liste.back()["forfait"] = valeur<double>(dit.valeurs, 0);
    } else if (dit.fait == faits::TAUX_MODIFICATEUR.nom && !liste.empty()) {
      liste.back()["taux"] = valeur<double>(dit.valeurs, 0) / 100;
    }
  }
  return liste;
}

Json Explication::etapes(std::size_t rang) const {
  Json json = {{"prix", Json::array()}, {"base", Json::array()}};
  if (rang >= lignes_.size()) {
    return json;
  }
  const Recit& recit = lignes_[rang];
  for (const EtapeCalcul& dite : recit.etapes) {
    json[estPrix(dite.nom) ? "prix" : "base"].push_back(etape(recit, dite));
  }
  json["association"] = association(recit);
  json["modificateurs"] = modificateurs(recit);
  for (const Dit& dit : recit.faits) {
    if (dit.fait == faits::REMBOURSE.nom) {
      json["rembourse"] = valeur<bool>(dit.valeurs, 0);
    } else if (dit.fait == faits::CONVENTION.nom) {
      json["conventionPS"] = valeur<std::string>(dit.valeurs, 0);
    } else if (dit.fait == faits::SEUIL_ACTE.nom) {
      json["exoneration"] = {{"seuil", valeur<double>(dit.valeurs, 0)},
                             {"base", valeur<double>(dit.valeurs, 1)},
                             {"atteint", valeur<bool>(dit.valeurs, 2)},
                             {"donnees", recit.seuil}};
    }
  }
  phraser(json);
  return json;
}

}  // namespace noxlux::commande
