#include "noxlux/facture_json.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <map>
#include <span>
#include <string_view>
#include <tuple>

#include "noxlux/erreurs.h"
#include "noxlux/noxlux.h"
#include "types/date.h"

namespace noxlux::commande {

namespace {

constexpr unsigned GROUPE_ENTETE = 1110;
constexpr unsigned GROUPE_REMPLACANT = 1150;
constexpr unsigned GROUPE_LIGNE = 1610;
constexpr unsigned GROUPE_EXONERATION = 1820;
constexpr unsigned GROUPE_ENTENTE = 1840;
constexpr unsigned GROUPE_EXECUTANT = 1870;
constexpr unsigned GROUPE_LIEU = 1880;
constexpr unsigned GROUPE_BASE_AMO = 2020;
constexpr unsigned GROUPE_ACTE = 2100;
constexpr unsigned GROUPE_DENTS = 2200;
constexpr unsigned GROUPE_CAISSE = 3500;
constexpr unsigned GROUPE_OUTREPASSEE = 3530;
constexpr unsigned GROUPE_REPONSE_FORCAGE = 2000;
constexpr unsigned GROUPE_REPONSE_ERREUR = 3520;

// The natures of insurance and the groups that say them.
constexpr std::array<std::pair<const char*, unsigned>, 4> NATURES = {
    {{"AS", 1511}, {"MA", 1512}, {"AT", 1513}, {"PM", 1514}}};
// The kinds of travel and their groups.
constexpr std::array<std::pair<const char*, unsigned>, 2> DEPLACEMENTS = {
    {{"forfait", 1620}, {"kilometres", 1630}}};
// Fields of the header that are the patient's.
constexpr std::array<std::string_view, 2> CHAMPS_BENEFICIAIRE = {"numeroBeneficiaire", "dateNaissance"};
// Lists that the zone spreads over numbered fields: the field before its number, and the list.
constexpr std::array<std::pair<std::string_view, const char*>, 2> LISTES_ETALEES = {
    {{"modificateur", "modificateurs"}, {"dent", "dents"}}};

[[noreturn]] void refuser(const std::string& chemin, const std::string& raison) {
  throw ErreurUsage(chemin + " : " + raison);
}

const GroupeDecrit& groupe(unsigned numero) {
  const GroupeDecrit* decrit = DescriptionZones::socle().groupe(numero, false);
  if (decrit == nullptr) {
    throw std::logic_error("the socle does not describe group " + std::to_string(numero));
  }
  return *decrit;
}

const ChampDecrit* champNomme(const GroupeDecrit& decrit, const std::string& nom) {
  const auto trouve = std::find_if(decrit.champs.begin(), decrit.champs.end(),
                                   [&](const ChampDecrit& champ) { return champ.nom == nom; });
  return trouve == decrit.champs.end() ? nullptr : &*trouve;
}

void controlerDate(const std::string& texte, const std::string& chemin) {
  const bool forme = texte.size() == 10 && texte[4] == '-' && texte[7] == '-';
  const std::string chiffres =
      forme ? texte.substr(0, 4) + texte.substr(5, 2) + texte.substr(8, 2) : std::string();
  if (!Date::estValide(reinterpret_cast<const byte*>(chiffres.data()), chiffres.size())) {
    refuser(chemin, "une date AAAA-MM-JJ du calendrier est attendue");
  }
}

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
                     [&](const auto& liste) { return rangEtale(nom, liste.first) != 0; });
}

// Where a field of a group stands in the invoice.
std::string cheminDuChamp(const std::string& chemin, const std::string& nom) {
  for (const auto& [prefixe, liste] : LISTES_ETALEES) {
    if (const std::size_t rang = rangEtale(nom, prefixe); rang != 0) {
      return chemin + "." + liste + "[" + std::to_string(rang - 1) + "]";
    }
  }
  const bool beneficiaire =
      std::find(CHAMPS_BENEFICIAIRE.begin(), CHAMPS_BENEFICIAIRE.end(), nom) != CHAMPS_BENEFICIAIRE.end();
  return (beneficiaire ? "$.beneficiaire" : chemin) + "." + nom;
}

// What the JSON type of a value must be, by the type of its field.
void controlerType(const ChampDecrit& champ, const Json& valeur, const std::string& chemin) {
  switch (champ.type) {
    case 'N':
      if (!valeur.is_number_unsigned()) {
        refuser(chemin, "un nombre entier est attendu");
      }
      break;
    case 'M':
    case 'F':
    case 'X':
      if (!valeur.is_number()) {
        refuser(chemin, champ.type == 'M' ? "un montant en euros est attendu" : "un nombre est attendu");
      }
      break;
    case 'D':
      if (!valeur.is_string()) {
        refuser(chemin, "une date AAAA-MM-JJ est attendue");
      }
      controlerDate(valeur.get<std::string>(), chemin);
      break;
    default:
      if (!valeur.is_string()) {
        refuser(chemin, "un texte est attendu");
      }
  }
}

void controlerOctets(const ChampDecrit& champ, const std::string& octets, const std::string& chemin) {
  const auto caracteres = [](std::size_t n) {
    return std::to_string(n) + (n > 1 ? " caractères" : " caractère");
  };
  if (octets.size() < champ.min) {
    refuser(chemin, octets.empty() ? "manque (" + champ.libelle + ")" : caracteres(champ.min) + " au moins");
  }
  if (champ.max != 0 && octets.size() > champ.max) {
    refuser(chemin, caracteres(champ.max) + " au plus");
  }
  const auto refuse = [&](char c) {
    return champ.format == 'A' && !(c == ' ' || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'));
  };
  if (std::any_of(octets.begin(), octets.end(), refuse)) {
    refuser(chemin, "lettres capitales et chiffres seulement");
  }
}

// A group, once every value is known to suit a field of it.
std::string ecrireGroupe(const GroupeDecrit& decrit, const Json& valeurs, const std::string& chemin) {
  for (const auto& [nom, valeur] : valeurs.items()) {
    if (champNomme(decrit, nom) == nullptr) {
      refuser(cheminDuChamp(chemin, nom), "champ inconnu");
    }
  }
  for (const ChampDecrit& champ : decrit.champs) {
    const std::string place = cheminDuChamp(chemin, champ.nom);
    const auto valeur = valeurs.find(champ.nom);
    const bool donnee = valeur != valeurs.end() && !valeur->is_null();
    if (donnee) {
      controlerType(champ, *valeur, place);
    }
    controlerOctets(champ, donnee ? encoderChamp(champ, *valeur, place) : std::string(), place);
  }
  return encoderGroupe(decrit, valeurs, chemin);
}

const Json& exigerObjet(const Json& valeur, const std::string& chemin) {
  if (!valeur.is_object()) {
    refuser(chemin, "un objet est attendu");
  }
  return valeur;
}

// A list of at most `maximum` texts, put into fields <prefixe>1, <prefixe>2...
void etaler(const Json& liste, const std::string& prefixe, std::size_t maximum, Json& valeurs,
            const std::string& chemin) {
  if (!liste.is_array()) {
    refuser(chemin, "une liste est attendue");
  }
  if (liste.size() > maximum) {
    refuser(chemin, std::to_string(maximum) + " éléments au plus");
  }
  for (std::size_t i = 0; i < liste.size(); ++i) {
    if (!liste[i].is_string()) {
      refuser(chemin + "[" + std::to_string(i) + "]", "un texte est attendu");
    }
    valeurs[prefixe + std::to_string(i + 1)] = liste[i];
  }
}

// The values of a line, sorted by the group that each belongs to.
class LigneRangee {
 public:
  LigneRangee(const Json& ligne, std::span<const unsigned> groupes, const std::string& chemin,
              std::size_t numeroParDefaut)
      : chemin_(chemin), numero_(ligne.value("numero", Json(numeroParDefaut))) {
    for (const auto& [nom, valeur] : ligne.items()) {
      if (nom != "numero") {
        ranger(nom, valeur, groupes);
      }
    }
  }

  bool contient(unsigned numero) const { return valeurs_.contains(numero); }
  Json& valeurs(unsigned numero) { return valeurs_[numero]; }
  // A key that is no field, taken out; null when it was not given.
  Json prendre(const std::string& cle) {
    const auto trouve = autres_.find(cle);
    Json valeur = trouve == autres_.end() ? Json() : trouve->second;
    autres_.erase(cle);
    return valeur;
  }
  void exigerToutPris() const {
    if (!autres_.empty()) {
      refuser(chemin_ + "." + autres_.begin()->first, "champ inconnu");
    }
  }
  std::string ecrire(unsigned numero) { return ecrire(numero, chemin_); }
  std::string ecrire(unsigned numero, const std::string& chemin) {
    Json valeurs = {{"numero", numero_}};
    valeurs.update(valeurs_.contains(numero) ? valeurs_[numero] : Json::object());
    return ecrireGroupe(groupe(numero), valeurs, chemin);
  }
  std::string ecrireSiDonne(unsigned numero) { return contient(numero) ? ecrire(numero) : std::string(); }
  std::string ecrireOutrepassees(const Json& references) const {
    std::string zone;
    if (!references.is_null() && !references.is_array()) {
      refuser(chemin_ + ".outrepassees", "une liste de références de règles est attendue");
    }
    for (std::size_t i = 0; i < references.size(); ++i) {
      const std::string place = chemin_ + ".outrepassees[" + std::to_string(i) + "]";
      zone += ecrireGroupe(groupe(GROUPE_OUTREPASSEE), {{"numero", numero_}, {"reference", references[i]}},
                           place);
    }
    return zone;
  }

 private:
  void ranger(const std::string& nom, const Json& valeur, std::span<const unsigned> groupes) {
    for (const unsigned numero : groupes) {
      if (champNomme(groupe(numero), nom) != nullptr && !estEtale(nom)) {
        valeurs_[numero][nom] = valeur;
        return;
      }
    }
    autres_.emplace(nom, valeur);
  }

  std::string chemin_;
  Json numero_;
  std::map<unsigned, Json> valeurs_;
  std::map<std::string, Json> autres_;
};

template <std::size_t N>
unsigned trouverGroupe(const std::array<std::pair<const char*, unsigned>, N>& choix, const Json& valeur,
                       const std::string& chemin) {
  std::string connus;
  for (const auto& [nom, numero] : choix) {
    if (valeur == nom) {
      return numero;
    }
    connus += (connus.empty() ? "" : ", ") + std::string(nom);
  }
  refuser(chemin, "attendu : " + connus);
}

std::string zoneDeplacement(const Json& deplacement, const std::string& chemin, std::size_t numero) {
  exigerObjet(deplacement, chemin);
  const unsigned genre = trouverGroupe(DEPLACEMENTS, deplacement.value("type", Json()), chemin + ".type");
  const std::array groupes = {genre, GROUPE_EXONERATION};
  LigneRangee ligne(deplacement, groupes, chemin, numero);
  ligne.prendre("type");
  const Json outrepassees = ligne.prendre("outrepassees");
  ligne.exigerToutPris();
  return ligne.ecrire(genre) + ligne.ecrireSiDonne(GROUPE_EXONERATION) +
         ligne.ecrireOutrepassees(outrepassees);
}

// One line with its travel lines; `compte` counts all lines, for those that give no number.
std::string zoneLigne(const Json& json, const std::string& chemin, std::size_t& compte) {
  static constexpr std::array GROUPES = {GROUPE_LIGNE, GROUPE_EXONERATION, GROUPE_ENTENTE,
                                         GROUPE_LIEU,  GROUPE_BASE_AMO,    GROUPE_ACTE};
  exigerObjet(json, chemin);
  LigneRangee ligne(json, GROUPES, chemin, ++compte);
  const std::string cheminExecutant = chemin + ".executant";
  if (const Json executant = ligne.prendre("executant"); !executant.is_null()) {
    if (exigerObjet(executant, cheminExecutant).contains("numero")) {
      refuser(cheminExecutant + ".numero", "champ inconnu");
    }
    ligne.valeurs(GROUPE_EXECUTANT) = executant;
  }
  if (const Json modificateurs = ligne.prendre("modificateurs"); !modificateurs.is_null()) {
    etaler(modificateurs, "modificateur", 4, ligne.valeurs(GROUPE_ACTE), chemin + ".modificateurs");
  }
  if (const Json dents = ligne.prendre("dents"); !dents.is_null()) {
    etaler(dents, "dent", 16, ligne.valeurs(GROUPE_DENTS), chemin + ".dents");
  }
  const Json outrepassees = ligne.prendre("outrepassees");
  const Json deplacements = ligne.prendre("deplacements");
  ligne.exigerToutPris();

  std::string zone = ligne.ecrire(GROUPE_LIGNE);
  zone += ligne.ecrireSiDonne(GROUPE_EXONERATION) + ligne.ecrireSiDonne(GROUPE_ENTENTE);
  if (ligne.contient(GROUPE_EXECUTANT)) {
    zone += ligne.ecrire(GROUPE_EXECUTANT, cheminExecutant);
  }
  for (const unsigned numero : {GROUPE_LIEU, GROUPE_BASE_AMO, GROUPE_ACTE, GROUPE_DENTS}) {
    zone += ligne.ecrireSiDonne(numero);
  }
  zone += ligne.ecrireOutrepassees(outrepassees);
  if (!deplacements.is_null() && !deplacements.is_array()) {
    refuser(chemin + ".deplacements", "une liste est attendue");
  }
  for (std::size_t i = 0; i < deplacements.size(); ++i) {
    zone += zoneDeplacement(deplacements[i], chemin + ".deplacements[" + std::to_string(i) + "]", ++compte);
  }
  return zone;
}

void exigerCles(const Json& objet, std::span<const std::string_view> connues, const std::string& chemin) {
  for (const auto& [nom, valeur] : objet.items()) {
    if (std::find(connues.begin(), connues.end(), nom) == connues.end()) {
      refuser(chemin + "." + nom, "champ inconnu");
    }
  }
}

std::string zoneEntete(const Json& facture) {
  const Json professionnel = exigerObjet(facture.value("professionnel", Json()), "$.professionnel");
  const Json beneficiaire = exigerObjet(facture.value("beneficiaire", Json()), "$.beneficiaire");
  exigerCles(beneficiaire, CHAMPS_BENEFICIAIRE, "$.beneficiaire");
  for (const std::string_view champ : CHAMPS_BENEFICIAIRE) {
    if (professionnel.contains(champ)) {
      refuser("$.professionnel." + std::string(champ), "se donne dans $.beneficiaire");
    }
  }
  if (!beneficiaire.contains("dateNaissance")) {
    refuser("$.beneficiaire.dateNaissance", "manque (date de naissance du bénéficiaire)");
  }
  Json entete = professionnel;
  entete.update(beneficiaire);
  return ecrireGroupe(groupe(GROUPE_ENTETE), entete, "$.professionnel");
}

// A member that is null is one that was not given. A list keeps its nulls: they are no elements of it.
void oterNuls(Json& valeur) {
  if (valeur.is_object()) {
    for (auto membre = valeur.begin(); membre != valeur.end();) {
      membre = membre->is_null() ? valeur.erase(membre) : std::next(membre);
    }
  }
  if (valeur.is_structured()) {
    for (Json& element : valeur) {
      oterNuls(element);
    }
  }
}

}  // namespace

Json lireFacture(const std::string& texte, const std::string& source) {
  // What an invoice needs, with room; deeper values would only exhaust the stack.
  constexpr int PROFONDEUR_MAX = 32;
  const auto filtre = [&](int profondeur, Json::parse_event_t, const Json&) {
    if (profondeur > PROFONDEUR_MAX) {
      throw ErreurUsage(source + " : JSON trop imbriqué");
    }
    return true;
  };
  try {
    Json facture = Json::parse(texte, filtre);
    oterNuls(facture);
    return facture;
  } catch (const Json::parse_error& faute) {
    throw ErreurUsage(source + " : JSON mal formé, octet " + std::to_string(faute.byte));
  }
}

std::string zoneDeFacture(const Json& facture) {
  static constexpr std::array<std::string_view, 6> CLES = {"professionnel",   "beneficiaire", "remplacant",
                                                           "natureAssurance", "lignes",       "caissePS"};
  exigerObjet(facture, "$");
  exigerCles(facture, CLES, "$");
  std::string zone = zoneEntete(facture);
  if (const Json remplacant = facture.value("remplacant", Json()); !remplacant.is_null()) {
    zone += ecrireGroupe(groupe(GROUPE_REMPLACANT), exigerObjet(remplacant, "$.remplacant"), "$.remplacant");
  }
  const unsigned nature =
      trouverGroupe(NATURES, facture.value("natureAssurance", Json()), "$.natureAssurance");
  zone += ecrireGroupe(groupe(nature), Json::object(), "$.natureAssurance");
  const Json lignes = facture.value("lignes", Json());
  if (!lignes.is_array()) {
    refuser("$.lignes", "une liste est attendue");
  }
  std::size_t compte = 0;
  for (std::size_t i = 0; i < lignes.size(); ++i) {
    zone += zoneLigne(lignes[i], "$.lignes[" + std::to_string(i) + "]", compte);
  }
  return zone + ecrireGroupe(groupe(GROUPE_CAISSE), {{"caissePS", facture.value("caissePS", Json(""))}}, "$");
}

namespace {

Json erreurLisible(const Json& champs) {
  return {{"reference", champs["reference"]},
          {"niveau", champs["niveau"]},
          {"indicateurForcage", champs["indicateurForcage"]},
          {"libelle", champs["libelle"]},
          {"lignes", champs["prestation"]}};
}

const char* verdict(unsigned short code) {
  switch (code) {
    case NOX_CR_OK:
      return "acceptee";
    case NOX_CR_CONTROLE_NIVEAU_1:
      return "a_outrepasser";
    default:
      return "refusee";
  }
}

}  // namespace

Json controlerFacture(const std::string& zone) {
  std::string entree = zone;
  const Reponse reponse = appeler([&](void** sortie, unsigned int* taille) {
    return NOX_ControleComplet(entree.data(), static_cast<unsigned int>(entree.size()), sortie, taille);
  });
  const bool controlee = reponse.code == NOX_CR_OK || reponse.code == NOX_CR_CONTROLE_NIVEAU_1 ||
                         reponse.code == NOX_CR_CONTROLE_NIVEAU_2;
  if (!controlee) {
    throw ErreurBibliotheque("NOX_ControleComplet", reponse.code);
  }
  Json resultat = {{"code", hexadecimal(reponse.code)},
                   {"verdict", verdict(reponse.code)},
                   {"erreurs", Json::array()},
                   {"forcages", Json::array()}};
  for (const Json& element : decoderZone(reponse.zone, true)) {
    if (element["groupe"] == GROUPE_REPONSE_ERREUR) {
      resultat["erreurs"].push_back(erreurLisible(element["champs"]));
    } else if (element["groupe"] == GROUPE_REPONSE_FORCAGE) {
      resultat["forcages"].push_back(element["champs"]);
    }
  }
  return resultat;
}

namespace {

constexpr unsigned GROUPE_ENTETE_TARIF = 3400;
constexpr unsigned GROUPE_ACTE_PHASE = 3012;
constexpr unsigned GROUPE_CAISSE_ACTE_PHASE = 3013;
constexpr unsigned GROUPE_LIGNE_BASE = 3420;

// Asks one rule, and gives the groups of its answer; none when it could not be applied.
Json appliquer(const char* regle, std::string zone) {
  const Reponse reponse = appeler([&](void** sortie, unsigned int* taille) {
    return NOX_AppliquerRegle(regle, zone.data(), static_cast<unsigned int>(zone.size()), sortie, taille);
  });
  return reponse.code == NOX_CR_OK ? decoderZone(reponse.zone, true) : Json::array();
}

// The fields of a group, picked by name among the sources given, the first that has one winning.
std::string grouperDe(unsigned numero, std::initializer_list<const Json*> sources) {
  Json valeurs = Json::object();
  for (const ChampDecrit& champ : groupe(numero).champs) {
    for (const Json* source : sources) {
      if (source->contains(champ.nom)) {
        valeurs[champ.nom] = (*source)[champ.nom];
        break;
      }
    }
  }
  return encoderGroupe(groupe(numero), valeurs, "$");
}

// Asks the reference for one number about a line; null without an answer, its code in `code`.
Json consulter(const char* identifiant, const Json& ligne, std::string zone, const char* champ,
               unsigned short& code) {
  const std::string date = ligne["date"].get<std::string>();
  const std::string chiffres = date.substr(0, 4) + date.substr(5, 2) + date.substr(8, 2);
  const Reponse reponse = appeler([&](void** sortie, unsigned int* taille) {
    return NOX_ConsulterDonnee(identifiant, chiffres.c_str(), zone.data(),
                               static_cast<unsigned int>(zone.size()), sortie, taille);
  });
  code = reponse.code;
  return code == NOX_CR_OK ? decoderZone(reponse.zone, true)[0]["champs"][champ] : Json();
}

// The price that the check compares with: the act's with the increase of the fund, to the nearest cent.
// C_Pu does not tell it: an amount in a zone is cut to the cent below.
Json prixCalcule(const Json& ligne, const std::string& caisse) {
  unsigned short code = NOX_CR_OK;
  Json prix = consulter("CCAM_37", ligne, grouperDe(GROUPE_ACTE_PHASE, {&ligne}), "montant", code);
  if (code != NOX_CR_OK || caisse.empty()) {
    return prix;
  }
  const Json cle = {{"caisse", caisse}};
  const Json majoration =
      consulter("CCAM_47a", ligne, grouperDe(GROUPE_CAISSE_ACTE_PHASE, {&cle, &ligne}), "coefficient", code);
  if (code == NOX_CR_CAISSE_NON_DOM) {
    return prix;
  }
  if (code != NOX_CR_OK) {
    return Json();
  }
  const long long milliemes =
      std::llround(prix.get<double>() * 100) * std::llround(majoration.get<double>() * 1000);
  return static_cast<double>((milliemes + 500) / 1000) / 100;
}

}  // namespace

Json detaillerLignes(const Json& facture) {
  const Json professionnel =
      facture.contains("remplacant") ? facture["remplacant"] : facture["professionnel"];
  const Json entete = {{"conventionPS", facture["professionnel"].value("conventionPS", "")},
                       {"caissePS", facture.value("caissePS", "")}};
  const std::string zoneEnteteTarif = encoderGroupe(groupe(GROUPE_ENTETE_TARIF), entete, "$");
  Json lignes = Json::array();
  // Lines of one date, activity and professional are priced together.
  std::map<std::tuple<std::string, std::string, std::string>,
           std::pair<std::string, std::vector<std::size_t>>>
      bases;
  std::size_t compte = 0;
  for (const Json& ligne : facture["lignes"]) {
    Json detail = {{"numero", ligne.value("numero", Json(++compte))},
                   {"acte", ligne.value("acte", ligne.value("prestation", ""))},
                   {"prixFacture", ligne.value("prixUnitaire", Json())},
                   {"prixCalcule", nullptr},
                   {"baseFacturee", ligne.value("baseRemboursement", Json())},
                   {"baseCalculee", nullptr}};
    compte += ligne.value("deplacements", Json::array()).size();
    if (ligne.contains("acte")) {
      Json valeurs = ligne;
      valeurs["numero"] = detail["numero"];
      if (ligne.contains("modificateurs")) {
        etaler(ligne["modificateurs"], "modificateur", 4, valeurs, "$");
      }
      const Json executant = ligne.value("executant", professionnel);
      detail["prixCalcule"] = prixCalcule(ligne, facture.value("caissePS", ""));
      auto& [zone, rangs] =
          bases[{ligne.value("date", ""), ligne.value("activite", ""), executant.value("numeroPS", "")}];
      zone += grouperDe(GROUPE_LIGNE_BASE, {&valeurs, &executant});
      rangs.push_back(lignes.size());
    }
    lignes.push_back(std::move(detail));
  }
  for (auto& [cle, association] : bases) {
    const Json reponse = appliquer("C_Base", zoneEnteteTarif + association.first);
    for (std::size_t i = 0; i < reponse.size() && i < association.second.size(); ++i) {
      if (reponse[i]["champs"].contains("baseRemboursement")) {
        lignes[association.second[i]]["baseCalculee"] = reponse[i]["champs"]["baseRemboursement"];
      }
    }
  }
  return lignes;
}

}  // namespace noxlux::commande
