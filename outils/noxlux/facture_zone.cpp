// The input zone of an invoice in JSON.
//
// Values stay where the JSON holds them: what a line says is looked up once among the fields of the groups it
// may fill, and the groups are written from there.
#include <algorithm>
#include <array>
#include <charconv>
#include <span>

#include "compilateur/proches.h"
#include "compilateur/transcodage.h"
#include "interapp/groupes_facture.h"
#include "noxlux/dates.h"
#include "noxlux/facture_json.h"
#include "types/date.h"

namespace noxlux::commande {

namespace {

// The kinds of travel and their groups.
constexpr std::array<std::pair<const char*, unsigned>, 2> DEPLACEMENTS = {
    {{"forfait", DEPLACEMENT_FORFAITAIRE}, {"kilometres", INDEMNITE_KILOMETRIQUE}}};
// Fields of the header that are the patient's.
constexpr std::array<std::string_view, 2> CHAMPS_BENEFICIAIRE = {"numeroBeneficiaire", "dateNaissance"};
constexpr Chemin PROFESSIONNEL = RACINE.membre("professionnel");
constexpr Chemin BENEFICIAIRE = RACINE.membre("beneficiaire");

// Lists that the zone spreads over numbered fields: the field before its number, and the list.
struct ListeEtalee {
  std::string_view prefixe;
  std::string_view liste;
};
constexpr std::array<ListeEtalee, 2> LISTES_ETALEES = {
    {{"modificateur", "modificateurs"}, {"dent", "dents"}}};

// The number at the end of a spread field's name, 0 for any other name.
std::size_t rangEtale(std::string_view nom, std::string_view prefixe) {
  std::size_t rang = 0;
  if (nom.starts_with(prefixe)) {
    nom.remove_prefix(prefixe.size());
    const auto [fin, faute] = std::from_chars(nom.data(), nom.data() + nom.size(), rang);
    rang = faute == std::errc() && fin == nom.data() + nom.size() ? rang : 0;
  }
  return rang;
}

bool estEtale(std::string_view nom) {
  return std::any_of(LISTES_ETALEES.begin(), LISTES_ETALEES.end(),
                     [&](const ListeEtalee& etalee) { return rangEtale(nom, etalee.prefixe) != 0; });
}

bool estDuBeneficiaire(std::string_view nom) {
  return std::find(CHAMPS_BENEFICIAIRE.begin(), CHAMPS_BENEFICIAIRE.end(), nom) != CHAMPS_BENEFICIAIRE.end();
}

// Where a field of a group stands in the invoice.
Chemin placeDuChamp(const Chemin& chemin, std::string_view nom) {
  for (const ListeEtalee& etalee : LISTES_ETALEES) {
    if (const std::size_t rang = rangEtale(nom, etalee.prefixe); rang != 0) {
      return chemin.membre(etalee.liste, rang - 1);
    }
  }
  return (estDuBeneficiaire(nom) ? BENEFICIAIRE : chemin).membre(nom);
}

// --- What a field admits ---

std::string lu(const Json& valeur) { return valeur.dump(-1, ' ', false, Json::error_handler_t::replace); }

// A field of dates admits the days of the calendar; one of any format, a birth date, also a month or a day
// beyond the calendar, for a person whose day of birth is not known.
void controlerDate(const ChampDecrit& champ, const std::string& texte, const Chemin& chemin) {
  const Date date(dateCompacte(texte).value_or(""));
  const bool inconnue = champ.format != 'D' && date.lireBrute().estHorsCalendrier();
  if (!date.lireBrute().estValide() && !inconnue) {
    chemin.refuser("une date AAAA-MM-JJ du calendrier est attendue", texte);
  }
}

// What the JSON type of a value must be, by the type of its field.
void controlerType(const ChampDecrit& champ, const Json& valeur, const Chemin& chemin) {
  switch (champ.type) {
    case 'N':
      if (!valeur.is_number_unsigned()) {
        chemin.refuser("un nombre entier est attendu", lu(valeur));
      }
      break;
    case 'M':
    case 'F':
    case 'X':
      if (!valeur.is_number()) {
        chemin.refuser(champ.type == 'M' ? "un montant en euros est attendu" : "un nombre est attendu",
                       lu(valeur));
      }
      break;
    case 'D':
      if (!valeur.is_string()) {
        chemin.refuser("une date AAAA-MM-JJ est attendue", lu(valeur));
      }
      controlerDate(champ, valeur.get_ref<const std::string&>(), chemin);
      break;
    default:
      if (!valeur.is_string()) {
        chemin.refuser("un texte est attendu", lu(valeur));
      }
  }
}

void controlerOctets(const ChampDecrit& champ, const std::string& octets, const Chemin& chemin) {
  const auto caracteres = [](std::size_t n) {
    return std::to_string(n) + (n > 1 ? " caractères" : " caractère");
  };
  if (octets.size() < champ.min) {
    chemin.refuser(octets.empty() ? "manque (" + champ.libelle + ")" : caracteres(champ.min) + " au moins");
  }
  if (champ.max != 0 && octets.size() > champ.max) {
    chemin.refuser(caracteres(champ.max) + " au plus", compilateur::versUtf8(octets));
  }
  const auto refuse = [&](char c) {
    return champ.format == 'A' && !(c == ' ' || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'));
  };
  if (std::any_of(octets.begin(), octets.end(), refuse)) {
    chemin.refuser("lettres capitales et chiffres seulement", compilateur::versUtf8(octets));
  }
}

// The natures of insurance and the groups that say them.
std::array<std::pair<const char*, unsigned>, NATURES_ASSURANCE.size()> naturesAssurance() {
  std::array<std::pair<const char*, unsigned>, NATURES_ASSURANCE.size()> natures;
  std::transform(
      NATURES_ASSURANCE.begin(), NATURES_ASSURANCE.end(), natures.begin(),
      [](const NatureAssurance& nature) { return std::pair(nature.code, unsigned{nature.groupe}); });
  return natures;
}

const Json& exigerObjet(const Json& valeur, const Chemin& chemin) {
  if (!valeur.is_object()) {
    chemin.refuser("un objet est attendu");
  }
  return valeur;
}

const Json NUL;

// A list; empty when it was not given.
std::span<const Json> lireListe(const Json* valeur, const Chemin& chemin, const char* attendu) {
  if (valeur == nullptr) {
    return {};
  }
  if (!valeur->is_array()) {
    chemin.refuser(attendu);
  }
  return valeur->get_ref<const Json::array_t&>();
}

template <std::size_t N>
unsigned trouverGroupe(const std::array<std::pair<const char*, unsigned>, N>& choix, const Json& valeur,
                       const Chemin& chemin) {
  std::string connus;
  for (const auto& [nom, numero] : choix) {
    if (valeur == nom) {
      return numero;
    }
    connus += (connus.empty() ? "" : ", ") + std::string(nom);
  }
  chemin.refuser("attendu : " + connus, lu(valeur));
}

// --- Groups ---

// A group, from the value of each of its fields; null for a field that was not given.
std::string ecrireGroupe(const GroupeDecrit& groupe, std::span<const Json* const> valeurs,
                         const Chemin& chemin) {
  std::string champs;
  for (std::size_t i = 0; i < groupe.champs.size(); ++i) {
    const ChampDecrit& champ = groupe.champs[i];
    const Chemin place = placeDuChamp(chemin, champ.nom);
    std::string octets;
    if (valeurs[i] != nullptr) {
      controlerType(champ, *valeurs[i], place);
      octets = encoderChamp(champ, *valeurs[i], place);
    }
    controlerOctets(champ, octets, place);
    ajouterChamp(champs, octets);
  }
  return emballerGroupe(groupe.numero, champs);
}

// The members that an object may have: the fields of some groups. Of two groups with a field of one name the
// first has the member.
class Membres {
 public:
  Membres(std::initializer_list<unsigned> numeros) : Membres(std::span(numeros.begin(), numeros.size())) {}
  explicit Membres(std::span<const unsigned> numeros) {
    for (const unsigned numero : numeros) {
      const GroupeDecrit& groupe = DescriptionZones::socle().groupeEntree(numero);
      groupes_.push_back({&groupe, nombre_});
      for (const ChampDecrit& champ : groupe.champs) {
        const bool nouveau = std::none_of(champs_.begin(), champs_.end(),
                                          [&](const Champ& connu) { return connu.nom == champ.nom; });
        if (nouveau) {
          champs_.push_back({champ.nom, groupes_.size() - 1, nombre_});
        }
        ++nombre_;
      }
    }
    std::sort(champs_.begin(), champs_.end(),
              [](const Champ& gauche, const Champ& droite) { return gauche.nom < droite.nom; });
  }

  struct Champ {
    std::string_view nom;
    std::size_t groupe;  // among these groups
    std::size_t rang;    // among all their fields
  };
  struct Groupe {
    const GroupeDecrit* decrit;
    std::size_t debut;  // the rank of its first field
  };

  // Null when the name is no field's.
  const Champ* chercher(std::string_view nom) const {
    const auto trouve =
        std::lower_bound(champs_.begin(), champs_.end(), nom,
                         [](const Champ& champ, std::string_view cherche) { return champ.nom < cherche; });
    return trouve != champs_.end() && trouve->nom == nom ? &*trouve : nullptr;
  }
  std::vector<std::string> noms() const {
    std::vector<std::string> liste;
    for (const Champ& champ : champs_) {
      if (!estEtale(champ.nom)) {
        liste.emplace_back(champ.nom);
      }
    }
    return liste;
  }
  std::span<const Groupe> groupes() const { return groupes_; }
  std::size_t nombre() const { return nombre_; }

 private:
  std::vector<Groupe> groupes_;
  std::vector<Champ> champs_;
  std::size_t nombre_ = 0;
};

// The values of an object, sorted by the group that each belongs to. The object and the number outlive it.
class Valeurs {
 public:
  Valeurs(const Membres& membres, const Chemin& chemin)
      : membres_(membres), chemin_(chemin), valeurs_(membres.nombre()), donnes_(membres.groupes().size()) {}

  // A member by its name; false when it is no field.
  bool ranger(std::string_view nom, const Json& valeur) {
    const Membres::Champ* const champ = membres_.chercher(nom);
    if (champ != nullptr) {
      valeurs_[champ->rang] = &valeur;
      donnes_[champ->groupe] = true;
    }
    return champ != nullptr;
  }
  // The line number, that every group of a line begins with, is no sign that a group was given.
  void numeroter(const Json& numero) {
    for (const Membres::Groupe& groupe : membres_.groupes()) {
      valeurs_[groupe.debut] = &numero;
    }
  }
  // Spreads a list of texts over the fields of its name.
  void etaler(const ListeEtalee& etalee, const Json& liste) {
    const Chemin place = chemin_.membre(etalee.liste);
    if (!liste.is_array()) {
      place.refuser("une liste est attendue");
    }
    for (std::size_t i = 0; i < liste.size(); ++i) {
      if (!ranger(std::string(etalee.prefixe) + std::to_string(i + 1), liste[i])) {
        place.refuser(std::to_string(i) + " éléments au plus");
      }
    }
  }
  std::vector<std::string> noms() const { return membres_.noms(); }
  std::string ecrire(std::size_t groupe) const {
    const auto& [decrit, debut] = membres_.groupes()[groupe];
    return ecrireGroupe(*decrit, std::span(valeurs_).subspan(debut, decrit->champs.size()), chemin_);
  }
  // Nothing for a group that was not given.
  std::string ecrireDonne(std::size_t groupe) const {
    return donnes_[groupe] ? ecrire(groupe) : std::string();
  }

 private:
  const Membres& membres_;
  Chemin chemin_;
  std::vector<const Json*> valeurs_;
  std::vector<bool> donnes_;
};

// Sorts an object: each member is one of `autres`, whose place it fills, or a field.
struct Autre {
  std::string_view nom;
  const Json*& place;
};
void rangerMembres(const Json& objet, Valeurs& valeurs, const Chemin& chemin,
                   std::initializer_list<Autre> autres) {
  for (const auto& [nom, valeur] : objet.items()) {
    const auto* const autre = std::find_if(autres.begin(), autres.end(),
                                           [&cherche = nom](const Autre& a) { return a.nom == cherche; });
    if (autre != autres.end()) {
      autre->place = &valeur;
    } else if (estEtale(nom) || !valeurs.ranger(nom, valeur)) {
      std::vector<std::string> connus = valeurs.noms();
      for (const Autre& a : autres) {
        connus.emplace_back(a.nom);
      }
      throw FauteJson(chemin.membre(nom).texte() + " : champ inconnu", compilateur::vouliezVous(nom, connus));
    }
  }
}

// --- Lines ---

std::string zoneOutrepassees(const Json* references, const Json& numero, const Chemin& chemin) {
  static const Membres MEMBRES{REGLE_OUTREPASSEE};
  std::string zone;
  std::size_t rang = 0;
  for (const Json& reference : lireListe(references, chemin.membre("outrepassees"),
                                         "une liste de références de règles est attendue")) {
    Valeurs valeurs(MEMBRES, chemin.membre("outrepassees", rang++));
    valeurs.numeroter(numero);
    valeurs.ranger("reference", reference);
    zone += valeurs.ecrire(0);
  }
  return zone;
}

std::string zoneExecutant(const Json& executant, const Json& numero, const Chemin& chemin) {
  static const Membres MEMBRES{EXECUTANT};
  Valeurs valeurs(MEMBRES, chemin);
  rangerMembres(exigerObjet(executant, chemin), valeurs, chemin, {});
  if (executant.contains("numero")) {
    chemin.membre("numero").refuser("champ inconnu");
  }
  valeurs.numeroter(numero);
  return valeurs.ecrire(0);
}

std::string zoneDeplacement(const Json& deplacement, const Chemin& chemin, std::size_t rang) {
  static const Membres FORFAIT{DEPLACEMENT_FORFAITAIRE, EXONERATION};
  static const Membres KILOMETRES{INDEMNITE_KILOMETRIQUE, EXONERATION};
  exigerObjet(deplacement, chemin);
  const unsigned genre =
      trouverGroupe(DEPLACEMENTS, deplacement.value("type", Json()), chemin.membre("type"));
  const Json numeroParDefaut = rang;
  const Json* numero = &numeroParDefaut;
  const Json* type = nullptr;
  const Json* outrepassees = nullptr;
  Valeurs valeurs(genre == DEPLACEMENT_FORFAITAIRE ? FORFAIT : KILOMETRES, chemin);
  rangerMembres(deplacement, valeurs, chemin,
                {{"numero", numero}, {"type", type}, {"outrepassees", outrepassees}});
  valeurs.numeroter(*numero);
  return valeurs.ecrire(0) + valeurs.ecrireDonne(1) + zoneOutrepassees(outrepassees, *numero, chemin);
}

// The groups whose fields are members of a line: all but the executant's, who is an object of the line.
std::vector<unsigned> groupesDesMembres() {
  std::vector<unsigned> groupes{PRESTATION};
  std::copy_if(SUITES_PRESTATION.begin(), SUITES_PRESTATION.end(), std::back_inserter(groupes),
               [](GroupeFacture groupe) { return groupe != EXECUTANT; });
  return groupes;
}

// One line with its travel lines; `compte` counts all lines, for those that give no number.
std::string zoneLigne(const Json& ligne, const Chemin& chemin, std::size_t& compte) {
  static const Membres MEMBRES(groupesDesMembres());
  exigerObjet(ligne, chemin);
  const Json numeroParDefaut = ++compte;
  const Json* numero = &numeroParDefaut;
  std::array<const Json*, LISTES_ETALEES.size()> etalees{};
  const Json* executant = nullptr;
  const Json* outrepassees = nullptr;
  const Json* deplacements = nullptr;
  Valeurs valeurs(MEMBRES, chemin);
  rangerMembres(ligne, valeurs, chemin,
                {{"numero", numero},
                 {LISTES_ETALEES[0].liste, etalees[0]},
                 {LISTES_ETALEES[1].liste, etalees[1]},
                 {"executant", executant},
                 {"outrepassees", outrepassees},
                 {"deplacements", deplacements}});
  valeurs.numeroter(*numero);
  for (std::size_t i = 0; i < etalees.size(); ++i) {
    if (etalees[i] != nullptr) {
      valeurs.etaler(LISTES_ETALEES[i], *etalees[i]);
    }
  }

  std::string zone = valeurs.ecrire(0);
  std::size_t place = 0;
  for (const GroupeFacture groupe : SUITES_PRESTATION) {
    if (groupe != EXECUTANT) {
      zone += valeurs.ecrireDonne(++place);
    } else if (executant != nullptr) {
      zone += zoneExecutant(*executant, *numero, chemin.membre("executant"));
    }
  }
  zone += zoneOutrepassees(outrepassees, *numero, chemin);
  std::size_t rang = 0;
  for (const Json& deplacement :
       lireListe(deplacements, chemin.membre("deplacements"), "une liste est attendue")) {
    zone += zoneDeplacement(deplacement, chemin.membre("deplacements", rang++), ++compte);
  }
  return zone;
}

// --- The invoice ---

// The header: the professional's fields, and the patient's.
std::string zoneEntete(const Json& professionnel, const Json& beneficiaire) {
  static const Membres MEMBRES{ENTETE_FACTURE};
  Valeurs valeurs(MEMBRES, PROFESSIONNEL);
  exigerObjet(professionnel, PROFESSIONNEL);
  exigerObjet(beneficiaire, BENEFICIAIRE);
  for (const auto& [nom, valeur] : beneficiaire.items()) {
    if (!estDuBeneficiaire(nom)) {
      BENEFICIAIRE.membre(nom).refuser("champ inconnu");
    }
    valeurs.ranger(nom, valeur);
  }
  if (!beneficiaire.contains("dateNaissance")) {
    BENEFICIAIRE.membre("dateNaissance").refuser("manque (date de naissance du bénéficiaire)");
  }
  for (const std::string_view nom : CHAMPS_BENEFICIAIRE) {
    if (professionnel.contains(nom)) {
      PROFESSIONNEL.membre(nom).refuser("se donne dans $.beneficiaire");
    }
  }
  rangerMembres(professionnel, valeurs, PROFESSIONNEL, {});
  return valeurs.ecrire(0);
}

}  // namespace

std::string zoneDeFacture(const Json& facture) {
  static const Membres REMPLACANT{noxlux::REMPLACANT};
  static const Membres CAISSE{noxlux::CAISSE};
  const Json* professionnel = &NUL;
  const Json* beneficiaire = &NUL;
  const Json* remplacant = nullptr;
  const Json* nature = &NUL;
  const Json* lignes = &NUL;
  const Json* sienne = nullptr;  // the office's own: carried to the answer
  Valeurs caisse(CAISSE, RACINE);
  rangerMembres(exigerObjet(facture, RACINE), caisse, RACINE,
                {{"professionnel", professionnel},
                 {"beneficiaire", beneficiaire},
                 {"remplacant", remplacant},
                 {"natureAssurance", nature},
                 {"lignes", lignes},
                 {"reference", sienne},
                 {"libre", sienne}});
  std::string zone = zoneEntete(*professionnel, *beneficiaire);
  if (remplacant != nullptr) {
    const Chemin chemin = RACINE.membre("remplacant");
    Valeurs valeurs(REMPLACANT, chemin);
    rangerMembres(exigerObjet(*remplacant, chemin), valeurs, chemin, {});
    zone += valeurs.ecrire(0);
  }
  const GroupeDecrit& groupeNature = DescriptionZones::socle().groupeEntree(
      trouverGroupe(naturesAssurance(), *nature, RACINE.membre("natureAssurance")));
  zone += ecrireGroupe(groupeNature, std::vector<const Json*>(groupeNature.champs.size()), RACINE);
  if (!lignes->is_array() || lignes->empty()) {
    RACINE.membre("lignes").refuser(lignes->is_array() ? "il faut au moins une ligne"
                                                       : "une liste est attendue");
  }
  std::size_t compte = 0;
  for (std::size_t i = 0; i < lignes->size(); ++i) {
    zone += zoneLigne((*lignes)[i], RACINE.membre("lignes", i), compte);
  }
  return zone + caisse.ecrire(0);
}

}  // namespace noxlux::commande
