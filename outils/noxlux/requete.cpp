#include "noxlux/requete.h"

#include <algorithm>
#include <ctime>
#include <iterator>
#include <map>
#include <optional>
#include <set>

#include "compilateur/proches.h"
#include "noxlux/dates.h"
#include "noxlux/erreurs.h"
#include "noxlux/presentation.h"
#include "noxlux/tableau.h"
#include "types/date.h"

namespace noxlux::commande {

namespace {

std::string joindre(const std::vector<std::string>& textes) {
  std::string resultat;
  for (const std::string& texte : textes) {
    resultat += (resultat.empty() ? "" : ", ") + texte;
  }
  return resultat;
}

// The field that a person means: its case and accents are forgiven.
std::string nomDeChamp(const std::string& saisi, const std::vector<std::string>& connus) {
  const std::string simple = compilateur::sansAccents(saisi);
  for (const std::string& connu : connus) {
    if (compilateur::sansAccents(connu) == simple) {
      return connu;
    }
  }
  return saisi;
}

// The values of all arguments by field name, each in the order given.
std::map<std::string, std::vector<std::string>> lireArguments(const std::vector<std::string>& arguments,
                                                              const std::vector<std::string>& connus) {
  std::map<std::string, std::vector<std::string>> valeurs;
  for (const std::string& argument : arguments) {
    const std::size_t egal = argument.find('=');
    if (egal == std::string::npos || egal == 0) {
      throw ErreurUsage("« " + argument + " » : un argument de la forme champ=valeur est attendu");
    }
    valeurs[nomDeChamp(argument.substr(0, egal), connus)].push_back(argument.substr(egal + 1));
  }
  return valeurs;
}

// A value typed by a person: numbers of numeric fields may have a decimal point or comma.
Json valeurSaisie(const ChampDecrit& champ, const std::string& texte) {
  const bool numerique = champ.type == 'N' || champ.type == 'M' || champ.type == 'F' || champ.type == 'X';
  if (!numerique || texte.empty()) {
    return champ.format == 'A' ? enCapitales(texte) : texte;
  }
  const std::optional<double> valeur = lireNombre(texte);
  if (!valeur) {
    throw ErreurUsage(champ.nom + " : « " + texte + " » n'est pas " +
                      (champ.type == 'M' ? "un montant en euros" : "un nombre"));
  }
  return *valeur;
}

void controlerTaille(const ChampDecrit& champ, const std::string& octets) {
  if (octets.size() < champ.min) {
    throw ErreurUsage(champ.nom + " : " + (octets.empty() ? "une valeur est attendue" : "trop court") + " (" +
                      champ.libelle + ")");
  }
  if (champ.max != 0 && octets.size() > champ.max) {
    throw ErreurUsage(champ.nom + " : trop long, " + std::to_string(champ.max) + " caractères au plus");
  }
}

}  // namespace

const FonctionDecrite& trouverFonction(const std::string& famille, const std::string& identifiant) {
  const DescriptionZones& socle = DescriptionZones::socle();
  if (const FonctionDecrite* fonction = socle.fonction(famille, identifiant)) {
    return *fonction;
  }
  const std::string proches = compilateur::vouliezVous(identifiant, socle.identifiants(famille));
  throw ErreurUsage(
      "identifiant « " + identifiant + " » inconnu" +
      (proches.empty() ? " ; identifiants connus : " + joindre(socle.identifiants(famille)) : proches));
}

std::string construireZone(const FonctionDecrite& fonction, const std::vector<std::string>& arguments) {
  const DescriptionZones& socle = DescriptionZones::socle();
  const std::vector<std::string> connus = champsDe(fonction);
  const auto saisies = lireArguments(arguments, connus);
  for (const auto& [nom, valeurs] : saisies) {
    if (std::find(connus.begin(), connus.end(), nom) == connus.end()) {
      throw ErreurUsage(nom + " : " + fonction.nom + " n'a pas de champ de ce nom" +
                        (connus.empty()
                             ? " (aucun champ attendu)"
                             : compilateur::vouliezVous(nom, connus) + " ; champs : " + joindre(connus)));
    }
    if (valeurs.size() > 1) {
      throw ErreurUsage(nom + " : donné plusieurs fois");
    }
  }
  std::set<std::string> vus;
  std::string zone;
  for (const FilsDecrit& fils : socle.groupesEntree(fonction)) {
    const GroupeDecrit& groupe = *socle.groupe(fils.groupe, false);
    Json champs = Json::object();
    bool propre = false;  // a field that no group before had was given
    for (const ChampDecrit& champ : groupe.champs) {
      const bool nouveau = vus.insert(champ.nom).second;
      if (const auto saisie = saisies.find(champ.nom); saisie != saisies.end()) {
        propre = propre || nouveau;
        champs[champ.nom] = valeurSaisie(champ, saisie->second.front());
      }
    }
    if (fils.min == 0 && !propre) {
      continue;
    }
    for (const ChampDecrit& champ : groupe.champs) {
      controlerTaille(champ, champs.contains(champ.nom)
                                 ? encoderChamp(champ, champs[champ.nom], Chemin(champ.nom))
                                 : std::string());
    }
    zone += encoderGroupe(groupe, champs, Chemin(fonction.nom));
  }
  return zone;
}

std::vector<std::string> champsDe(const FonctionDecrite& fonction) {
  std::vector<std::string> noms;
  for (const FilsDecrit& fils : DescriptionZones::socle().groupesEntree(fonction)) {
    for (const ChampDecrit& champ : DescriptionZones::socle().groupe(fils.groupe, false)->champs) {
      if (std::find(noms.begin(), noms.end(), champ.nom) == noms.end()) {
        noms.push_back(champ.nom);
      }
    }
  }
  return noms;
}

std::string enCapitales(std::string code) {
  std::transform(code.begin(), code.end(), code.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  return code;
}

std::vector<std::string> argumentsPour(const FonctionDecrite& fonction,
                                       const std::vector<std::string>& arguments) {
  std::vector<std::string> gardes;
  for (const FilsDecrit& fils : DescriptionZones::socle().groupesEntree(fonction)) {
    for (const ChampDecrit& champ : DescriptionZones::socle().groupe(fils.groupe, false)->champs) {
      std::copy_if(arguments.begin(), arguments.end(), std::back_inserter(gardes),
                   [&](const std::string& argument) {
                     return compilateur::sansAccents(argument.substr(0, argument.find('='))) ==
                            compilateur::sansAccents(champ.nom);
                   });
    }
  }
  return gardes;
}

std::string dateReference(const std::string& texte) {
  std::string chiffres;
  if (texte.empty()) {
    const std::time_t maintenant = std::time(nullptr);
    std::tm local{};
    localtime_r(&maintenant, &local);
    char tampon[16];
    std::strftime(tampon, sizeof tampon, "%Y%m%d", &local);
    chiffres = tampon;
  } else {
    chiffres = dateCompacte(texte).value_or(texte);
  }
  if (chiffres.size() != 8 || !Date::estValide(reinterpret_cast<const byte*>(chiffres.data()), 8)) {
    throw ErreurUsage("« " + texte + " » n'est pas une date du calendrier (2026-01-15 ou 15/01/2026)");
  }
  return chiffres;
}

std::string texteValeur(const Json& valeur, char type) {
  if (valeur.is_boolean()) {
    return valeur.get<bool>() ? "oui" : "non";
  }
  if (valeur.is_number_float()) {
    const double nombre = valeur.get<double>();
    return type == 'M' ? euros(nombre) : nombreLisible(nombre, type == 'F' ? 3 : 2);
  }
  if (valeur.is_array()) {
    std::vector<std::string> textes;
    for (const Json& element : valeur) {
      textes.push_back(texteValeur(element, type));
    }
    return joindre(textes);
  }
  if (!valeur.is_string()) {
    return valeur.dump();
  }
  const std::string texte = rogner(valeur.get<std::string>());
  return type == 'D' ? dateFrancaise(texte) : texte;
}

namespace {

char typeDuChamp(const GroupeDecrit* groupe, const std::string& nom) {
  if (groupe != nullptr) {
    for (const ChampDecrit& champ : groupe->champs) {
      if (champ.nom == nom) {
        return champ.type;
      }
    }
  }
  return 'T';
}

void afficherUn(const Json& element, const GroupeDecrit* groupe, std::ostream& sortie) {
  std::size_t plusLong = 0;
  for (const auto& [nom, valeur] : element["champs"].items()) {
    plusLong = std::max(plusLong, largeur(nom));
  }
  const std::size_t colonnes = largeurTerminal();
  for (const auto& [nom, valeur] : element["champs"].items()) {
    const std::string marge(plusLong + 3, ' ');
    std::string debut = nom + std::string(plusLong - largeur(nom), ' ') + " : ";
    const std::size_t place = colonnes > plusLong + 23 ? colonnes - plusLong - 3 : 20;
    for (const std::string& pli : plier(texteValeur(valeur, typeDuChamp(groupe, nom)), place)) {
      sortie << debut << pli << '\n';
      debut = marge;
    }
  }
}

void afficherPlusieurs(const Json& groupes, std::size_t debut, std::size_t fin, const GroupeDecrit* groupe,
                       std::ostream& sortie) {
  std::vector<std::string> titres;
  for (std::size_t i = debut; i < fin; ++i) {
    for (const auto& [nom, valeur] : groupes[i]["champs"].items()) {
      if (std::find(titres.begin(), titres.end(), nom) == titres.end()) {
        titres.push_back(nom);
      }
    }
  }
  Tableau tableau(titres);
  for (std::size_t i = debut; i < fin; ++i) {
    std::vector<std::string> cellules;
    for (const std::string& titre : titres) {
      cellules.push_back(groupes[i]["champs"].contains(titre)
                             ? texteValeur(groupes[i]["champs"][titre], typeDuChamp(groupe, titre))
                             : std::string());
    }
    tableau.ajouter(std::move(cellules));
  }
  tableau.afficher(sortie);
}

}  // namespace

void afficherGroupes(const Json& groupes, std::ostream& sortie) {
  if (groupes.empty()) {
    sortie << "(rien)\n";
  }
  for (std::size_t i = 0; i < groupes.size();) {
    const unsigned numero = groupes[i]["groupe"].get<unsigned>();
    const GroupeDecrit* groupe = DescriptionZones::socle().groupe(numero, true);
    std::size_t fin = i + 1;
    while (fin < groupes.size() && groupes[fin]["groupe"] == numero) {
      ++fin;
    }
    if (fin - i > 1) {
      afficherPlusieurs(groupes, i, fin, groupe, sortie);
    } else {
      afficherUn(groupes[i], groupe, sortie);
    }
    i = fin;
  }
}

}  // namespace noxlux::commande
