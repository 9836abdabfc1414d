#include "noxlux/requete.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <iterator>
#include <map>
#include <set>

#include "noxlux/dates.h"
#include "noxlux/erreurs.h"
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

// The values of all arguments by field name, each in the order given.
std::map<std::string, std::vector<std::string>> lireArguments(const std::vector<std::string>& arguments) {
  std::map<std::string, std::vector<std::string>> valeurs;
  for (const std::string& argument : arguments) {
    const std::size_t egal = argument.find('=');
    if (egal == std::string::npos || egal == 0) {
      throw ErreurUsage("« " + argument + " » : un argument de la forme champ=valeur est attendu");
    }
    valeurs[argument.substr(0, egal)].push_back(argument.substr(egal + 1));
  }
  return valeurs;
}

// A value typed by a person: numbers of numeric fields may have a decimal point or comma.
Json valeurSaisie(const ChampDecrit& champ, std::string texte) {
  const bool numerique = champ.type == 'N' || champ.type == 'M' || champ.type == 'F' || champ.type == 'X';
  if (!numerique || texte.empty()) {
    return texte;
  }
  std::replace(texte.begin(), texte.end(), ',', '.');
  char* fin = nullptr;
  const double valeur = std::strtod(texte.c_str(), &fin);
  if (fin == texte.c_str() || *fin != '\0') {
    throw ErreurUsage(champ.nom + " : « " + texte + " » n'est pas un nombre");
  }
  return valeur;
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
  throw ErreurUsage("identifiant « " + identifiant +
                    " » inconnu ; identifiants connus : " + joindre(socle.identifiants(famille)));
}

std::string construireZone(const FonctionDecrite& fonction, const std::vector<std::string>& arguments) {
  const DescriptionZones& socle = DescriptionZones::socle();
  const auto saisies = lireArguments(arguments);
  std::set<std::string> pris;
  std::vector<std::string> attendus;
  std::string zone;
  for (const FilsDecrit& fils : socle.groupesEntree(fonction)) {
    const GroupeDecrit& groupe = *socle.groupe(fils.groupe, false);
    Json champs = Json::object();
    bool propre = false;  // a field that no group before had was given
    for (const ChampDecrit& champ : groupe.champs) {
      const bool nouveau = std::find(attendus.begin(), attendus.end(), champ.nom) == attendus.end();
      if (nouveau) {
        attendus.push_back(champ.nom);
      }
      const auto saisie = saisies.find(champ.nom);
      if (saisie == saisies.end()) {
        continue;
      }
      pris.insert(champ.nom);
      if (saisie->second.size() > 1) {
        throw ErreurUsage(champ.nom + " : donné plusieurs fois");
      }
      propre = propre || nouveau;
      champs[champ.nom] = valeurSaisie(champ, saisie->second.front());
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
  for (const auto& [nom, valeurs] : saisies) {
    if (!pris.contains(nom)) {
      throw ErreurUsage(nom + " : " + fonction.nom + " n'a pas de champ de ce nom" +
                        (attendus.empty() ? " (aucun champ attendu)" : " ; champs : " + joindre(attendus)));
    }
  }
  return zone;
}

std::vector<std::string> argumentsPour(const FonctionDecrite& fonction,
                                       const std::vector<std::string>& arguments) {
  std::vector<std::string> gardes;
  for (const FilsDecrit& fils : DescriptionZones::socle().groupesEntree(fonction)) {
    for (const ChampDecrit& champ : DescriptionZones::socle().groupe(fils.groupe, false)->champs) {
      std::copy_if(arguments.begin(), arguments.end(), std::back_inserter(gardes),
                   [&](const std::string& argument) { return argument.starts_with(champ.nom + "="); });
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
    throw ErreurUsage("« " + texte + " » n'est pas une date AAAA-MM-JJ du calendrier");
  }
  return chiffres;
}

std::string texteValeur(const Json& valeur, char type) {
  if (valeur.is_boolean()) {
    return valeur.get<bool>() ? "oui" : "non";
  }
  if (valeur.is_number_float()) {
    // An amount has two decimals, and more only where they tell something.
    char texte[32];
    std::snprintf(texte, sizeof texte, "%.*f", type == 'F' ? 3 : type == 'M' ? 5 : 2, valeur.get<double>());
    std::string resultat = texte;
    while (type == 'M' && resultat.back() == '0' && resultat[resultat.size() - 3] != '.') {
      resultat.pop_back();
    }
    std::replace(resultat.begin(), resultat.end(), '.', ',');
    return type == 'M' ? resultat + " €" : resultat;
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
  std::string texte = valeur.get<std::string>();
  texte.erase(texte.find_last_not_of(' ') + 1);  // codes come padded to their width
  return texte;
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
