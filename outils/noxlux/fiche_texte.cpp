// The sheet of an act on a screen, and as a page.
#include <algorithm>
#include <cmath>

#include "noxlux/fiche.h"
#include "noxlux/html.h"
#include "noxlux/presentation.h"
#include "noxlux/tableau.h"

namespace noxlux::commande {

namespace {

std::string texte(const Json& valeur) {
  return valeur.is_string() ? valeur.get<std::string>() : std::string();
}

std::string jour(const Json& valeur) { return dateFrancaise(texte(valeur)); }

// "1 — Remboursable"; only what there is of the two.
std::string codeEtLibelle(const Json& valeur, const char* cle = "code") {
  if (!valeur.is_object()) {
    return "";
  }
  const std::string code = texte(valeur.value(cle, Json()));
  const std::string libelle = texte(valeur.value("libelle", Json()));
  return code.empty() ? libelle : libelle.empty() ? code : code + " " + libelle;
}

std::string enumerer(const Json& liste, const char* cle = "code", const char* entre = " ; ") {
  std::string resultat;
  for (const Json& element : liste) {
    resultat += (resultat.empty() ? "" : entre) +
                (element.is_string() ? texte(element) : codeEtLibelle(element, cle));
  }
  return resultat;
}

// "16A0J" as "16 ans"
std::string age(const Json& periode) {
  const std::string brut = texte(periode);
  const std::size_t annees = brut.find('A');
  if (annees == std::string::npos) {
    return brut;
  }
  const std::string ans = brut.substr(0, annees);
  const std::string jours = brut.substr(annees + 1, brut.size() - annees - 2);
  return (ans == "0" ? "" : ans + " ans") +
         (jours == "0" || jours.empty() ? "" : (ans == "0" ? "" : " et ") + jours + " jours");
}

std::string ages(const Json& phase) {
  const std::string minimum = age(phase["ageMinimum"]);
  const std::string maximum = age(phase["ageMaximum"]);
  return minimum.empty() && maximum.empty() ? ""
         : maximum.empty()                  ? "à partir de " + minimum
         : minimum.empty()                  ? "jusqu'à " + maximum
                                            : "de " + minimum + " à " + maximum;
}

std::string valeurModificateur(const Json& modificateur) {
  const Json& forfait = modificateur["forfait"];
  const Json& taux = modificateur["taux"];
  std::string valeur;
  if (forfait.is_number() && forfait != 0.0) {
    valeur = "+ " + euros(forfait.get<double>());
  }
  if (taux.is_number() && taux != 1.0) {
    valeur += (valeur.empty() ? "" : " et ") + std::string("+ ") +
              nombreLisible((taux.get<double>() - 1) * 100, 1) + " %";
  }
  return valeur.empty() ? "sans effet sur le prix" : valeur;
}

std::string executants(const Json& classes) {
  if (classes.empty()) {
    return "toutes les spécialités";
  }
  std::string resultat;
  for (const Json& classe : classes) {
    const std::string specialites = enumerer(classe["specialites"], "code", ", ");
    resultat += (resultat.empty() ? "" : " ; ") +
                (specialites.empty() ? "classe " + texte(classe["classe"]) : specialites);
  }
  return resultat;
}

// Months since the year 0, for the place of a day on a line of time.
double mois(const Json& date) {
  const std::string iso = texte(date);
  return iso.size() == 10 ? std::stod(iso.substr(0, 4)) * 12 + std::stod(iso.substr(5, 2)) +
                                std::stod(iso.substr(8, 2)) / 31
                          : 0;
}

std::vector<Palier> paliers(const Json& historique, const Json& date) {
  std::vector<Palier> resultat;
  if (historique.empty()) {
    return resultat;
  }
  const double debut = mois(historique.front()["depuis"]);
  const double fin = std::max(mois(date), mois(historique.back()["depuis"])) + 6;
  for (const Json& palier : historique) {
    resultat.push_back({(mois(palier["depuis"]) - debut) / (fin - debut), palier["prix"].get<double>()});
  }
  return resultat;
}

// The price over time in one line of blocks.
std::string courbe(const Json& historique, const Json& date, std::size_t colonnes) {
  constexpr const char* BLOCS[] = {"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
  const std::vector<Palier> etapes = paliers(historique, date);
  double minimum = etapes.front().valeur;
  double maximum = minimum;
  for (const Palier& etape : etapes) {
    minimum = std::min(minimum, etape.valeur);
    maximum = std::max(maximum, etape.valeur);
  }
  std::string ligne;
  for (std::size_t i = 0; i < colonnes; ++i) {
    const double place = (static_cast<double>(i) + 0.5) / static_cast<double>(colonnes);
    double valeur = etapes.front().valeur;
    for (const Palier& etape : etapes) {
      valeur = etape.debut <= place ? etape.valeur : valeur;
    }
    const double hauteur = maximum > minimum ? (valeur - minimum) / (maximum - minimum) : 0;
    ligne += BLOCS[static_cast<std::size_t>(std::lround(hauteur * 7))];
  }
  return ligne;
}

// What a sheet says of the act as a whole, then of an activity, then of a phase: title and text, empty ones
// left out. One list for both renderings.
using Rubriques = std::vector<std::pair<std::string, std::string>>;

Rubriques rubriquesActe(const Json& f) {
  std::string chemin;
  std::string notesChemin;
  for (const Json& menu : f["chemin"]) {
    chemin += (chemin.empty() ? "" : " > ") + texte(menu["titre"]);
    notesChemin +=
        texte(menu["notes"]).empty() ? "" : (notesChemin.empty() ? "" : "\n") + texte(menu["notes"]);
  }
  std::string vie = f["creation"].is_null() ? "" : "créé le " + jour(f["creation"]);
  vie += f["fin"].is_null() ? "" : ", fin le " + jour(f["fin"]);
  const std::string sexe = texte(f["sexe"]);
  return {{"Chapitre", chemin},
          {"Notes du chapitre", notesChemin},
          {"Type", codeEtLibelle(f["type"])},
          {"Vie", vie},
          {"Notes", texte(f["notes"])},
          {"Conditions générales", texte(f["conditionsGenerales"])},
          {"Remboursement", codeEtLibelle(f["remboursement"])},
          {"Entente préalable",
           f["ententePrealable"].is_boolean() ? (f["ententePrealable"] == true ? "oui" : "non") : ""},
          {"Exonération", enumerer(f["exonerations"])},
          {"Assurance", enumerer(f["naturesAssurance"])},
          {"Déplacement", codeEtLibelle(f["fraisDeplacement"])},
          {"Sexe", sexe == "1"   ? "masculin"
                   : sexe == "2" ? "féminin"
                                 : sexe},
          {"Procédures", enumerer(f["procedures"], "acte")},
          {"Incompatible avec", enumerer(f["incompatibles"], "acte", "\n")}};
}

Rubriques rubriquesActivite(const Json& a) {
  return {{"Catégorie", codeEtLibelle(a["categorie"])},
          {"Regroupement", codeEtLibelle(a["regroupement"])},
          {"Qui peut le faire", executants(a["executants"])},
          {"Agrément radiologie", a["agrementRadio"] == true ? "exigé" : ""},
          {"Références médicales", enumerer(a["rmo"])},
          {"Documents associés", enumerer(a["extensions"])},
          {"Associable à", enumerer(a["associes"], "acte", "\n")}};
}

Rubriques rubriquesPhase(const Json& p) {
  std::string majorations;
  for (const Json& majoration : p["majorations"]) {
    majorations += (majorations.empty() ? "" : " ; ") + texte(majoration["caisse"]) + " + " +
                   nombreLisible((majoration["taux"].get<double>() - 1) * 100, 1) + " %";
  }
  const Json& supplement = p["supplementCharges"];
  return {{"Supplément en cabinet",
           supplement.is_number() && supplement != 0.0 ? euros(supplement.get<double>()) : ""},
          {"Âge", ages(p)},
          {"Dents traitées", p["nombreDents"].is_number() ? p["nombreDents"].dump() : ""},
          {"Dents exclues", enumerer(p["dentsIncompatibles"], "code", " ")},
          {"Outre-mer", majorations}};
}

std::string prixPhase(const Json& p) {
  const Json& historique = p["historique"];
  std::string depuis;
  for (const Json& palier : historique) {
    depuis = palier["prix"] == p["prix"] ? " depuis le " + jour(palier["depuis"]) : depuis;
  }
  return eurosOuTiret(p["prix"]) + (p["prix"].is_number() ? depuis : "");
}

std::string enClair(const Json& modification) {
  std::string ligne = texte(modification["donnee"]) + ", depuis le " + jour(modification["depuis"]);
  for (const auto& [cle, valeur] : modification.items()) {
    if (cle != "donnee" && cle != "depuis") {
      ligne += ", " + cle + " " + texte(valeur);
    }
  }
  return ligne;
}

class Ecran {
 public:
  explicit Ecran(std::ostream& sortie) : sortie_(sortie), colonnes_(largeurTerminal()) {}

  void rubriques(const Rubriques& liste, std::size_t retrait) {
    for (const auto& [titre, contenu] : liste) {
      if (!contenu.empty()) {
        rubrique(titre, contenu, retrait);
      }
    }
  }
  void rubrique(const std::string& titre, const std::string& contenu, std::size_t retrait) {
    constexpr std::size_t TITRE = 21;
    const std::size_t gauche = retrait + TITRE + 1;
    std::string debut =
        std::string(retrait, ' ') + titre + std::string(TITRE - std::min(TITRE, largeur(titre)), ' ') + ' ';
    for (const std::string& pli : plier(contenu, colonnes_ > gauche + 20 ? colonnes_ - gauche : 20)) {
      sortie_ << debut << pli << '\n';
      debut.assign(gauche, ' ');
    }
  }
  void titre(const std::string& contenu) {
    for (const std::string& pli : plier(contenu, colonnes_)) {
      sortie_ << pli << '\n';
    }
  }
  std::size_t colonnes() const { return colonnes_; }

 private:
  std::ostream& sortie_;
  std::size_t colonnes_;
};

}  // namespace

void afficherFiche(const Json& f, std::ostream& sortie) {
  Ecran ecran(sortie);
  ecran.titre(texte(f["code"]) + " — " + texte(f["libelle"]));
  sortie << '\n';
  ecran.rubrique("Au", jour(f["date"]), 0);
  ecran.rubriques(rubriquesActe(f), 0);
  for (const Json& activite : f["activites"]) {
    sortie << '\n';
    ecran.titre("Activité " + codeEtLibelle(activite));
    ecran.rubriques(rubriquesActivite(activite), 2);
    for (const Json& modificateur : activite["modificateurs"]) {
      ecran.rubrique(&modificateur == &activite["modificateurs"].front() ? "Modificateurs" : "",
                     codeEtLibelle(modificateur) + " : " + valeurModificateur(modificateur), 2);
    }
    for (const Json& phase : activite["phases"]) {
      ecran.rubrique("Prix, phase " + texte(phase["phase"]), prixPhase(phase), 2);
      const Json& historique = phase["historique"];
      if (historique.size() > 1) {
        for (const Json& palier : historique) {
          ecran.rubrique("", jour(palier["depuis"]) + "  " + euros(palier["prix"].get<double>()), 2);
        }
        ecran.rubrique("", courbe(historique, f["date"], 40), 2);
      }
      ecran.rubriques(rubriquesPhase(phase), 2);
    }
  }
  if (!f["modificationsLocales"].empty()) {
    sortie << "\nModifié localement\n";
    for (const Json& modification : f["modificationsLocales"]) {
      ecran.rubrique("", enClair(modification), 2);
    }
  }
}

namespace {

std::string listeHtml(const Rubriques& liste) {
  std::string html;
  for (const auto& [titre, contenu] : liste) {
    if (!contenu.empty()) {
      std::string valeur = echapperHtml(contenu);
      for (std::size_t ou = 0; (ou = valeur.find('\n', ou)) != std::string::npos; ou += 4) {
        valeur.replace(ou, 1, "<br>");
      }
      html += "<dt>" + titre + "</dt><dd>" + valeur + "</dd>\n";
    }
  }
  return html.empty() ? html : "<dl>\n" + html + "</dl>\n";
}

std::string phaseHtml(const Json& phase, const Json& date) {
  std::string html =
      "<h3>Phase " + echapperHtml(texte(phase["phase"])) + " : " + prixPhase(phase) + "</h3>\n";
  const Json& historique = phase["historique"];
  if (historique.size() > 1) {
    std::vector<std::vector<std::string>> lignes;
    for (const Json& palier : historique) {
      lignes.push_back({jour(palier["depuis"]), euros(palier["prix"].get<double>())});
    }
    html += escalierSvg("Le prix au fil du temps", paliers(historique, date)) +
            tableHtml({"depuis le", "prix"}, lignes, 1);
  }
  return html + listeHtml(rubriquesPhase(phase));
}

}  // namespace

std::string pageFiche(const Json& f) {
  const std::string titre = texte(f["code"]) + " — " + texte(f["libelle"]);
  std::string corps = "<h1>" + echapperHtml(titre) + "</h1>\n<p class=\"pale\">Au " + jour(f["date"]) +
                      "</p>\n" + listeHtml(rubriquesActe(f));
  for (const Json& activite : f["activites"]) {
    corps += "<h2>Activité " + echapperHtml(codeEtLibelle(activite)) + "</h2>\n";
    for (const Json& phase : activite["phases"]) {
      corps += phaseHtml(phase, f["date"]);
    }
    corps += listeHtml(rubriquesActivite(activite));
    std::vector<std::vector<std::string>> modificateurs;
    for (const Json& modificateur : activite["modificateurs"]) {
      modificateurs.push_back(
          {echapperHtml(codeEtLibelle(modificateur)), echapperHtml(valeurModificateur(modificateur))});
    }
    if (!modificateurs.empty()) {
      corps += tableHtml({"modificateur", "valeur"}, modificateurs, 1);
    }
  }
  if (!f["modificationsLocales"].empty()) {
    corps += "<h2>Modifié localement</h2>\n<ul>\n";
    for (const Json& modification : f["modificationsLocales"]) {
      corps += "<li>" + echapperHtml(enClair(modification)) + "</li>\n";
    }
    corps += "</ul>\n";
  }
  return pageHtml(titre, corps);
}

}  // namespace noxlux::commande
