#include "noxlux/bilan_lot.h"

#include <algorithm>
#include <set>
#include <vector>

#include "noxlux/html.h"
#include "noxlux/presentation.h"

namespace noxlux::commande {

namespace {

// A page of more would be read by no one; the others are counted.
constexpr std::size_t REFUSEES_MONTREES = 1000;
constexpr const char* NON_CONTROLEE = "non_controlee";

std::string texte(const Json& valeur) {
  return valeur.is_string() ? valeur.get<std::string>() : valeur.is_null() ? std::string() : valeur.dump();
}

std::string membre(const Json& objet, const char* nom) {
  return objet.is_object() && objet.contains(nom) ? texte(objet[nom]) : std::string();
}

double montantLigne(const Json& ligne) {
  for (const char* nom : {"baseRemboursement", "prixUnitaire"}) {
    if (ligne.is_object() && ligne.contains(nom) && ligne[nom].is_number()) {
      return ligne[nom].get<double>();
    }
  }
  return 0;
}

const Json& lignesDe(const Json& facture) {
  static const Json AUCUNE = Json::array();
  const bool la = facture.is_object() && facture.contains("lignes") && facture["lignes"].is_array();
  return la ? facture["lignes"] : AUCUNE;
}

// The act, or the service, of each line by its number.
std::map<std::string, std::string> actesParNumero(const Json& facture) {
  std::map<std::string, std::string> actes;
  std::size_t compte = 0;
  for (const Json& ligne : lignesDe(facture)) {
    if (!ligne.is_object()) {
      continue;
    }
    ++compte;
    const std::string numero = ligne.contains("numero") ? texte(ligne["numero"]) : std::to_string(compte);
    const std::string acte = membre(ligne, "acte");
    actes[numero] = acte.empty() ? membre(ligne, "prestation") : acte;
    const bool deplacements = ligne.contains("deplacements") && ligne["deplacements"].is_array();
    compte += deplacements ? ligne["deplacements"].size() : 0;
  }
  return actes;
}

std::set<std::string> actesDe(const Json& erreur, const std::map<std::string, std::string>& parNumero) {
  std::set<std::string> actes;
  for (const Json& numero : erreur["lignes"]) {
    if (const auto acte = parNumero.find(texte(numero)); acte != parNumero.end()) {
      actes.insert(acte->second);
    }
  }
  return actes;
}

const Json& erreursDe(const Json& reponse) {
  static const Json AUCUNE = Json::array();
  return reponse.contains("erreurs") ? reponse["erreurs"] : AUCUNE;
}

}  // namespace

void BilanLot::compter(const Json& facture, const Json& reponse, const std::string& fichier) {
  const std::string verdict = reponse.contains("verdict") ? texte(reponse["verdict"]) : NON_CONTROLEE;
  double montant = 0;
  std::map<std::string, double> parActe;
  for (const Json& ligne : lignesDe(facture)) {
    const std::string acte = membre(ligne, "acte");
    parActe[acte.empty() ? membre(ligne, "prestation") : acte] += montantLigne(ligne);
    montant += montantLigne(ligne);
  }
  ++factures_;
  montant_ += montant;
  const bool fautive = verdict != "acceptee";
  const auto ajouter = [&](Compte& compte, double combien, std::size_t erreurs) {
    ++compte.factures;
    compte.montant += combien;
    compte.erreurs += erreurs;
  };
  ajouter(verdicts_[verdict], montant, erreursDe(reponse).size());
  const Json vide;
  const Json& professionnel =
      facture.is_object() && facture.contains("professionnel") ? facture["professionnel"] : vide;
  ajouter(professionnels_[membre(professionnel, "numeroPS")], montant, fautive ? 1 : 0);
  std::map<std::string, std::size_t> erreursParActe;
  std::set<std::string> regles;
  const auto parNumero = actesParNumero(facture);
  for (const Json& erreur : erreursDe(reponse)) {
    const std::string regle = membre(erreur, "reference");
    Compte& compte = regles_[regle];
    compte.libelle = membre(erreur, "libelle");
    ++compte.erreurs;
    if (regles.insert(regle).second) {
      ++compte.factures;
      compte.montant += montant;
    }
    for (const std::string& acte : actesDe(erreur, parNumero)) {
      ++erreursParActe[acte];
    }
  }
  for (const auto& [acte, combien] : parActe) {
    ajouter(actes_[acte], combien, erreursParActe[acte]);
  }
  if (fautive && refusees_.size() < REFUSEES_MONTREES) {
    Json refusee = {{"rang", factures_},  {"fichier", fichier}, {"reference", membre(facture, "reference")},
                    {"verdict", verdict}, {"montant", montant}, {"erreurs", Json::array()}};
    for (const Json& erreur : erreursDe(reponse)) {
      refusee["erreurs"].push_back({{"reference", erreur["reference"]},
                                    {"niveau", erreur["niveau"]},
                                    {"lignes", erreur["lignes"]},
                                    {"libelle", erreur["libelle"]},
                                    {"detail", membre(erreur, "detail")}});
    }
    if (reponse.contains("erreur")) {
      refusee["erreurs"].push_back({{"reference", membre(reponse, "code")},
                                    {"niveau", ""},
                                    {"lignes", Json::array()},
                                    {"libelle", reponse["erreur"]},
                                    {"detail", ""}});
    }
    refusees_.push_back(std::move(refusee));
  } else if (fautive) {
    ++autresRefusees_;
  }
}

Json BilanLot::enListe(const Comptes& comptes, const char* cle) {
  Json liste = Json::array();
  for (const auto& [nom, compte] : comptes) {
    Json objet = {{cle, nom}};
    if (!compte.libelle.empty()) {
      objet["libelle"] = compte.libelle;
    }
    objet["factures"] = compte.factures;
    objet["erreurs"] = compte.erreurs;
    objet["montant"] = compte.montant;
    liste.push_back(std::move(objet));
  }
  std::stable_sort(liste.begin(), liste.end(), [](const Json& gauche, const Json& droite) {
    return std::pair(gauche["erreurs"], gauche["factures"]) >
           std::pair(droite["erreurs"], droite["factures"]);
  });
  return liste;
}

Json BilanLot::valeur() const {
  return {{"factures", factures_},
          {"montant", montant_},
          {"parVerdict", enListe(verdicts_, "verdict")},
          {"parRegle", enListe(regles_, "regle")},
          {"parActe", enListe(actes_, "acte")},
          {"parProfessionnel", enListe(professionnels_, "professionnel")},
          {"refusees", refusees_},
          {"autresRefusees", autresRefusees_}};
}

// --- The page ---

namespace {

std::string nomVerdict(const std::string& verdict) {
  return verdict == "acceptee"        ? "acceptées"
         : verdict == "a_outrepasser" ? "à corriger ou à outrepasser"
         : verdict == "refusee"       ? "refusées"
                                      : "non contrôlées";
}

std::string compter(const Json& nombre) { return nombreLisible(nombre.get<double>(), 0); }

// A chart of the first ones by one of their numbers, and the table of them all.
std::string chapitre(const std::string& titre, const Json& liste, const char* cle, const char* mesure) {
  constexpr std::size_t BARRES = 15;
  if (liste.empty()) {
    return {};
  }
  std::vector<Barre> barres;
  std::vector<std::vector<std::string>> lignes;
  const bool libelles =
      std::any_of(liste.begin(), liste.end(), [](const Json& l) { return l.contains("libelle"); });
  for (const Json& element : liste) {
    const std::string brut = texte(element[cle]);
    const std::string nom = brut.empty() ? "(sans)" : std::string(cle) == "verdict" ? nomVerdict(brut) : brut;
    if (barres.size() < BARRES && element[mesure].get<double>() > 0) {
      barres.push_back({nom, element[mesure].get<double>(), compter(element[mesure])});
    }
    std::vector<std::string> ligne{echapperHtml(nom)};
    if (libelles) {
      ligne.push_back(echapperHtml(membre(element, "libelle")));
    }
    for (const char* nombre : {"factures", "erreurs"}) {
      ligne.push_back(compter(element[nombre]));
    }
    ligne.push_back(euros(element["montant"].get<double>()));
    lignes.push_back(std::move(ligne));
  }
  std::vector<std::string> titres{std::string(cle) == "regle" ? "règle" : cle};
  if (libelles) {
    titres.emplace_back("ce qu'elle dit");
  }
  titres.insert(titres.end(), {"factures", "erreurs", "montant"});
  const std::string quoi = std::string(mesure) == "factures" ? "factures" : "erreurs";
  return "<h2>" + titre + "</h2>\n" +
         (barres.empty() ? "" : barresSvg(titre + " : nombre de " + quoi, barres)) +
         tableHtml(titres, lignes, libelles ? 2 : 1);
}

}  // namespace

std::string pageBilan(const Json& bilan) {
  std::string corps = "<h1>Contrôle d'un lot de factures</h1>\n<p class=\"pale\">" +
                      compter(bilan["factures"]) + " factures, " + euros(bilan["montant"].get<double>()) +
                      " de bases facturées.</p>\n";
  corps += chapitre("Par verdict", bilan["parVerdict"], "verdict", "factures");
  corps += chapitre("Par règle", bilan["parRegle"], "regle", "erreurs");
  corps += chapitre("Par acte", bilan["parActe"], "acte", "erreurs");
  corps += chapitre("Par professionnel", bilan["parProfessionnel"], "professionnel", "factures");
  std::vector<std::vector<std::string>> lignes;
  for (const Json& refusee : bilan["refusees"]) {
    std::string raisons;
    for (const Json& erreur : refusee["erreurs"]) {
      std::string ou;
      for (const Json& numero : erreur["lignes"]) {
        ou += (ou.empty() ? ", ligne " : ", ") + texte(numero);
      }
      raisons += (raisons.empty() ? "" : "<br>") +
                 ("<b>" + echapperHtml(texte(erreur["reference"])) + "</b>" + echapperHtml(ou) + " : " +
                  echapperHtml(texte(erreur["libelle"])) + "<br><span class=\"pale\">" +
                  echapperHtml(texte(erreur["detail"])) + "</span>");
    }
    const std::string reference = texte(refusee["reference"]);
    lignes.push_back({echapperHtml(reference.empty() ? "n° " + texte(refusee["rang"]) : reference) +
                          "<br><span class=\"pale\">" + echapperHtml(texte(refusee["fichier"])) + "</span>",
                      nomVerdict(texte(refusee["verdict"])), raisons,
                      euros(refusee["montant"].get<double>())});
  }
  if (!lignes.empty()) {
    corps += "<h2>Factures à reprendre</h2>\n" +
             tableHtml({"facture", "verdict", "raisons", "montant"}, lignes, 3);
  }
  if (bilan["autresRefusees"] != 0) {
    corps += "<p class=\"pale\">Et " + compter(bilan["autresRefusees"]) +
             " autres, qui ne sont pas montrées.</p>\n";
  }
  return pageHtml("Contrôle d'un lot de factures", corps);
}

// --- CSV ---

namespace {

std::string celluleCsv(std::string valeur) {
  // A spreadsheet takes such a text for a formula.
  if (!valeur.empty() && std::string_view("=+@").find(valeur[0]) != std::string_view::npos) {
    valeur.insert(0, 1, '\'');
  }
  if (valeur.find_first_of(";\"\r\n") == std::string::npos) {
    return valeur;
  }
  std::string texteCite = "\"";
  for (const char c : valeur) {
    texteCite += c == '"' ? "\"\"" : std::string(1, c);
  }
  return texteCite + '"';
}

std::string joindre(const Json& liste) {
  std::string resultat;
  for (const Json& element : liste) {
    resultat += (resultat.empty() ? "" : " ") + texte(element);
  }
  return resultat;
}

void ecrireLigne(std::ostream& sortie, const std::vector<std::string>& cellules) {
  for (std::size_t i = 0; i < cellules.size(); ++i) {
    sortie << (i == 0 ? "" : ";") << celluleCsv(cellules[i]);
  }
  sortie << '\n';
}

}  // namespace

void ecrireTitresCsv(std::ostream& sortie) {
  ecrireLigne(sortie, {"rang", "fichier", "reference", "verdict", "code", "regle", "niveau", "lignes",
                       "actes", "libelle", "detail"});
}

void ecrireErreursCsv(std::ostream& sortie, std::size_t rang, const Json& facture, const Json& reponse,
                      const std::string& fichier) {
  const std::vector<std::string> debut = {
      std::to_string(rang), fichier, membre(facture, "reference"),
      reponse.contains("verdict") ? texte(reponse["verdict"]) : NON_CONTROLEE, membre(reponse, "code")};
  const auto ecrire = [&](const std::vector<std::string>& suite) {
    std::vector<std::string> cellules = debut;
    cellules.insert(cellules.end(), suite.begin(), suite.end());
    ecrireLigne(sortie, cellules);
  };
  const auto parNumero = actesParNumero(facture);
  for (const Json& erreur : erreursDe(reponse)) {
    const std::set<std::string> actes = actesDe(erreur, parNumero);
    ecrire({membre(erreur, "reference"), membre(erreur, "niveau"), joindre(erreur["lignes"]),
            joindre(Json(actes)), membre(erreur, "libelle"), membre(erreur, "detail")});
  }
  if (reponse.contains("erreur")) {
    ecrire({"", "", "", "", texte(reponse["erreur"]), ""});
  }
}

}  // namespace noxlux::commande
