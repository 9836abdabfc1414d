#include "noxlux/fiche.h"

#include <algorithm>

#include "compilateur/proches.h"
#include "noxlux/dates.h"
#include "noxlux/demandes.h"

namespace noxlux::commande {

namespace {

// The funds whose increases an act may bear.
constexpr const char* CAISSES_OUTREMER[] = {"971", "972", "973", "974"};

// The specialities of health insurance, by code.
struct Specialite {
  const char* code;
  const char* nom;
};
constexpr Specialite SPECIALITES[] = {
    {"01", "médecine générale"},
    {"02", "anesthésie-réanimation"},
    {"03", "cardiologie"},
    {"04", "chirurgie générale"},
    {"05", "dermatologie"},
    {"06", "radiologie"},
    {"07", "gynécologie-obstétrique"},
    {"08", "hépato-gastro-entérologie"},
    {"09", "médecine interne"},
    {"10", "neurochirurgie"},
    {"11", "oto-rhino-laryngologie"},
    {"12", "pédiatrie"},
    {"13", "pneumologie"},
    {"14", "rhumatologie"},
    {"15", "ophtalmologie"},
    {"16", "urologie"},
    {"17", "neuropsychiatrie"},
    {"18", "stomatologie"},
    {"19", "chirurgie dentaire"},
    {"20", "réanimation médicale"},
    {"21", "sage-femme"},
    {"31", "médecine physique et de réadaptation"},
    {"32", "neurologie"},
    {"33", "psychiatrie"},
    {"34", "gériatrie"},
    {"35", "néphrologie"},
    {"36", "orthopédie dentofaciale"},
    {"37", "anatomie pathologique"},
    {"38", "biologie médicale"},
    {"41", "chirurgie orthopédique"},
    {"42", "endocrinologie"},
    {"43", "chirurgie infantile"},
    {"44", "chirurgie maxillo-faciale"},
    {"45", "chirurgie maxillo-faciale et stomatologie"},
    {"46", "chirurgie plastique"},
    {"47", "chirurgie thoracique"},
    {"48", "chirurgie vasculaire"},
    {"49", "chirurgie viscérale"},
};

std::string nomSpecialite(const std::string& code) {
  const auto* const trouvee = std::find_if(std::begin(SPECIALITES), std::end(SPECIALITES),
                                           [&](const Specialite& s) { return code == s.code; });
  return trouvee == std::end(SPECIALITES) ? std::string() : trouvee->nom;
}

class Redaction {
 public:
  Redaction(std::string code, std::string date, const Catalogue& catalogue)
      : code_(std::move(code)), date_(std::move(date)), catalogue_(catalogue) {}

  Json rediger() {
    const Json acte = {{"acte", code_}};
    fiche_ = {{"code", code_}, {"date", dateLisible(date_)}};
    fiche_["libelleCourt"] = champ("CCAM_7", acte, "texte");
    fiche_["libelle"] = champ("CCAM_8", acte, "texte");
    fiche_["chemin"] = chemin(acte);
    fiche_["type"] = premier(codes("CCAM_9", acte));
    fiche_["creation"] = champ("CCAM_18", acte, "date");
    fiche_["fin"] = champ("CCAM_19", acte, "date");
    fiche_["notes"] = champ("CCAM_11", acte, "texte");
    fiche_["conditionsGenerales"] = champ("CCAM_10", acte, "texte");
    fiche_["remboursement"] = premier(codes("CCAM_22", acte));
    fiche_["ententePrealable"] = champ("CCAM_24", acte, "reponse");
    fiche_["exonerations"] = codes("CCAM_25", acte);
    fiche_["naturesAssurance"] = codes("CCAM_30_1", acte);
    fiche_["fraisDeplacement"] = premier(codes("CCAM_41", acte));
    const Json sexe = liste("CCAM_15", acte);
    fiche_["sexe"] = sexe.empty() ? Json() : sexe[0];
    fiche_["procedures"] = actes(liste("CCAM_9_1", acte));
    fiche_["incompatibles"] = actes(liste("CCAM_14", acte));
    fiche_["activites"] = activites();
    fiche_["modificationsLocales"] = modifications_;
    return std::move(fiche_);
  }

 private:
  // Empty texts are told as null.
  Json champ(const char* identifiant, const Json& demande, const char* nom) {
    Json valeur = consulter(identifiant, demande, date_).champ(nom);
    return valeur.is_string() && valeur.get_ref<const std::string&>().empty() ? Json() : valeur;
  }
  // [{"code", "libelle"}]
  Json codes(const char* identifiant, const Json& demande) {
    Json resultat = Json::array();
    for (const Json& groupe : consulter(identifiant, demande, date_).groupes) {
      if (groupe.contains("code") && groupe["code"] != "") {
        resultat.push_back({{"code", groupe["code"]}, {"libelle", groupe.value("libelle", "")}});
      }
    }
    return resultat;
  }
  static Json premier(const Json& liste) { return liste.empty() ? Json() : liste[0]; }
  // The codes of the only group of an answer.
  Json liste(const char* identifiant, const Json& demande) {
    Json resultat = Json::array();
    const Json codes = consulter(identifiant, demande, date_).champ("code");
    for (const Json& code : codes.is_array() ? codes : Json::array()) {
      if (code != "") {
        resultat.push_back(code);
      }
    }
    return resultat;
  }
  Json actes(const Json& codes) {
    Json resultat = Json::array();
    for (const Json& code : codes) {
      resultat.push_back({{"acte", code}, {"libelle", catalogue_.libelle(code.get<std::string>())}});
    }
    return resultat;
  }
  // From the root down.
  Json chemin(const Json& acte) {
    Json resultat = Json::array();
    const Consultation menus = consulter("CCAM_16a", acte, date_);
    for (auto menu = menus.groupes.rbegin(); menu != menus.groupes.rend(); ++menu) {
      const Json textes = menu->value("texte", Json::array());
      resultat.push_back({{"titre", textes.empty() ? Json("") : textes[0]},
                          {"notes", textes.size() > 1 ? textes[1] : Json("")}});
    }
    return resultat;
  }

  Json activites() {
    const std::vector<PhaseConnue> phases = catalogue_.phases(code_);
    Json resultat = Json::array();
    for (const Json& activite : codes("CCAM_2", {{"acte", code_}})) {
      const Json cle = {{"acte", code_}, {"activite", activite["code"]}};
      Json objet = activite;
      objet["categorie"] = premier(codes("CCAM_12", cle));
      objet["regroupement"] = premier(codes("CCAM_42", cle));
      noter("code de regroupement", cle, consulter("CCAM_42", cle, date_));
      objet["modificateurs"] = modificateurs(cle);
      objet["executants"] = executants(cle);
      objet["agrementRadio"] = champ("CCAM_40a", cle, "reponse");
      objet["rmo"] = liste("CCAM_20", cle);
      objet["extensions"] = codes("CCAM_3", cle);
      objet["associes"] = actes(liste("CCAM_13", cle));
      objet["phases"] = Json::array();
      for (const PhaseConnue& connue : phases) {
        if (activite["code"] == std::string(1, connue.activite)) {
          objet["phases"].push_back(phase(cle, connue));
        }
      }
      resultat.push_back(std::move(objet));
    }
    return resultat;
  }

  Json modificateurs(const Json& cle) {
    Json resultat = codes("CCAM_6", cle);
    for (Json& modificateur : resultat) {
      const Json demande = {{"modificateur", modificateur["code"]}};
      const Consultation forfait = consulter("TB11_1", demande, date_);
      const Consultation taux = consulter("TB11_2", demande, date_);
      modificateur["forfait"] = forfait.champ("montant");
      modificateur["taux"] = taux.champ("coefficient");
      noter("forfait du modificateur", demande, forfait);
      noter("taux du modificateur", demande, taux);
    }
    return resultat;
  }

  // One class of specialities a group: its code, then those of its specialities. None: anyone.
  Json executants(const Json& cle) {
    Json resultat = Json::array();
    for (const Json& groupe : consulter("CCAM_32a", cle, date_).groupes) {
      const Json codes = groupe.value("code", Json::array());
      Json classe = {{"classe", codes.empty() ? Json("") : codes[0]}, {"specialites", Json::array()}};
      for (std::size_t i = 1; i < codes.size(); ++i) {
        classe["specialites"].push_back(
            {{"code", codes[i]}, {"libelle", nomSpecialite(codes[i].get<std::string>())}});
      }
      resultat.push_back(std::move(classe));
    }
    return resultat;
  }

  Json phase(const Json& cleActivite, const PhaseConnue& connue) {
    Json cle = cleActivite;
    cle["phase"] = std::string(1, connue.phase);
    const Consultation prix = consulter("CCAM_37", cle, date_);
    const Consultation supplement = consulter("CCAM_39", cle, date_);
    noter("prix unitaire", cle, prix);
    noter("supplément pour charges", cle, supplement);
    Json objet = {{"phase", cle["phase"]}, {"prix", prix.champ("montant")}};
    objet["historique"] = historique(cle, connue, prix.champ("dateModification"));
    objet["supplementCharges"] = supplement.champ("montant");
    objet["ageMinimum"] = age("CCAM_45", cle);
    objet["ageMaximum"] = age("CCAM_46", cle);
    objet["nombreDents"] =
        champ("CCAM_43a", cle, "reponse") == true ? champ("CCAM_43a", cle, "nombre") : Json();
    objet["dentsIncompatibles"] = liste("CCAM_44", cle);
    objet["majorations"] = Json::array();
    for (const char* caisse : CAISSES_OUTREMER) {
      Json demande = cle;
      demande["caisse"] = caisse;
      const Consultation majoration = consulter("CCAM_47a", demande, date_);
      noter("majoration d'outre-mer", demande, majoration);
      const Json taux = majoration.champ("coefficient");
      if (taux.is_number() && taux != 1.0) {
        objet["majorations"].push_back({{"caisse", caisse}, {"taux", taux}});
      }
    }
    return objet;
  }

  // An age without limit is none.
  Json age(const char* identifiant, const Json& cle) {
    const Json periode = champ(identifiant, cle, "periode");
    return periode == "0A0J" ? Json() : periode;
  }

  // Each price that was ever in force, as the library answers it at the first day of it.
  Json historique(const Json& cle, const PhaseConnue& connue, const Json& modifieLe) {
    std::vector<std::string> effets = connue.effets;
    if (modifieLe.is_string()) {
      effets.push_back(dateCompacte(modifieLe.get<std::string>()).value_or(""));
    }
    std::sort(effets.begin(), effets.end());
    Json resultat = Json::array();
    for (const std::string& effet : effets) {
      const Json montant = effet.size() == 8 ? consulter("CCAM_37", cle, effet).champ("montant") : Json();
      if (montant.is_number() && (resultat.empty() || resultat.back()["prix"] != montant)) {
        resultat.push_back({{"depuis", dateLisible(effet)}, {"prix", montant}});
      }
    }
    return resultat;
  }

  // Keeps what was changed here, once.
  void noter(const char* quoi, const Json& cle, const Consultation& reponse) {
    const Json date = reponse.champ("dateModification");
    if (!date.is_string() || date == "") {
      return;
    }
    Json modification = {{"donnee", quoi}, {"depuis", date}};
    modification.update(cle);
    modification.erase("acte");
    if (std::find(modifications_.begin(), modifications_.end(), modification) == modifications_.end()) {
      modifications_.push_back(std::move(modification));
    }
  }

  std::string code_;
  std::string date_;
  const Catalogue& catalogue_;
  Json fiche_;
  Json modifications_ = Json::array();
};

}  // namespace

Json ficheActe(const std::string& code, const std::string& date, const Catalogue& catalogue) {
  std::string capitales = compilateur::sansAccents(code);
  std::transform(capitales.begin(), capitales.end(), capitales.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  if (catalogue.phases(capitales).empty()) {
    throw Introuvable("l'acte « " + code + " » n'est pas dans la référence" +
                      compilateur::vouliezVous(capitales, catalogue.codes()));
  }
  return Redaction(capitales, date, catalogue).rediger();
}

}  // namespace noxlux::commande
