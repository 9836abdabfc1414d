#include "noxlux/zone_json.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <optional>

#include "compilateur/transcodage.h"
#include "noxlux/dates.h"
#include "noxlux/erreurs.h"

namespace noxlux::commande {

namespace {

using compilateur::versLatin1;
using compilateur::versUtf8;

// --- bytes ---

void ajouterLongueur(std::string& zone, std::size_t n) {
  const unsigned suivants = n <= 127 ? 0 : n < 0xFF ? 1 : n < 0xFFFF ? 2 : n < 0xFFFFFF ? 3 : 4;
  if (suivants != 0) {
    zone += static_cast<char>(0x80 + suivants);
  }
  for (int i = suivants == 0 ? 0 : static_cast<int>(suivants) - 1; i >= 0; --i) {
    zone += static_cast<char>((n >> (8 * i)) & 0xFFU);
  }
}

// Walks the bytes of a zone; each step checks what is left.
class Curseur {
 public:
  Curseur(const std::string& octets, std::size_t debut, std::size_t fin)
      : octets_(octets), position_(debut), fin_(fin) {}

  bool estAuBout() const { return position_ == fin_; }
  std::size_t position() const { return position_; }

  std::size_t lire(unsigned n) {
    exigerReste(n);
    std::size_t valeur = 0;
    for (unsigned i = 0; i < n; ++i) {
      valeur = valeur << 8U | static_cast<unsigned char>(octets_[position_++]);
    }
    return valeur;
  }
  // A length, and the place where what it measures ends.
  std::size_t lireFin() {
    std::size_t longueur = lire(1);
    if (longueur > 0x84) {
      echouer("longueur mal codée");
    }
    if (longueur > 0x80) {
      longueur = lire(static_cast<unsigned>(longueur - 0x80));
    }
    exigerReste(longueur);
    return position_ + longueur;
  }
  void allerA(std::size_t position) { position_ = position; }

 private:
  void exigerReste(std::size_t n) const {
    if (n > fin_ - position_) {
      echouer("données coupées");
    }
  }
  [[noreturn]] void echouer(const char* raison) const {
    throw ErreurUsage("zone mal formée à l'octet " + std::to_string(position_) + " : " + raison);
  }
  const std::string& octets_;
  std::size_t position_;
  std::size_t fin_;
};

// --- values ---

unsigned decimales(char type) {
  switch (type) {
    case 'M':
    case 'X':
      return 2;
    case 'F':
      return 3;
    default:
      return 0;
  }
}

constexpr double PUISSANCES[] = {1.0, 10.0, 100.0, 1000.0};

bool estNumerique(char type) { return type == 'N' || type == 'M' || type == 'F' || type == 'X'; }

// Whole numbers of answers have at least five digits.
constexpr std::size_t CHIFFRES_NOMBRE_REPONSE = 5;

std::string encoderNombre(const ChampDecrit& champ, const Json& valeur, const Chemin& chemin) {
  const unsigned apresVirgule = decimales(champ.type);
  const double exactes = valeur.get<double>() * PUISSANCES[apresVirgule];
  const double unites = std::round(exactes);
  if (!(unites >= 0) || unites > 999999999.0) {
    chemin.refuser("un nombre de 0 à 9 chiffres est attendu");
  }
  if (std::fabs(exactes - unites) > 1e-4) {
    chemin.refuser("trop de décimales (" + std::to_string(apresVirgule) + " au plus)");
  }
  const std::size_t largeur = champ.type == 'N' && champ.reponse ? CHIFFRES_NOMBRE_REPONSE : apresVirgule + 1;
  const std::string chiffres = std::to_string(static_cast<long long>(unites));
  return chiffres.size() >= largeur ? chiffres : std::string(largeur - chiffres.size(), '0') + chiffres;
}

std::string texteLatin1(const std::string& utf8, const Chemin& chemin) {
  if (std::all_of(utf8.begin(), utf8.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; })) {
    return utf8;
  }
  const compilateur::TexteLatin1 converti = versLatin1(utf8);
  if (!converti.sansEquivalent.empty()) {
    chemin.refuser("caractère hors ISO-8859-1 : " + converti.sansEquivalent.front().caractere);
  }
  return converti.texte;
}

// The typed reading of a field's bytes; null when they are not of the type.
Json valeurTypee(char type, const std::string& octets) {
  const bool chiffres =
      !octets.empty() && octets.size() <= 9 && octets.find_first_not_of("0123456789") == std::string::npos;
  if (estNumerique(type) && chiffres) {
    const long long entier = std::stoll(octets);
    return type == 'N' ? Json(entier) : Json(static_cast<double>(entier) / PUISSANCES[decimales(type)]);
  }
  if (type == 'B' && (octets == "O" || octets == "N")) {
    return octets == "O";
  }
  if (type == 'D' && (octets.size() == 8 || octets.size() == 12) &&
      octets.find_first_not_of("0123456789") == std::string::npos) {
    return dateLisible(octets);
  }
  return nullptr;
}

}  // namespace

std::string encoderChamp(const ChampDecrit& champ, const Json& valeur, const Chemin& chemin) {
  if (valeur.is_null()) {
    return {};
  }
  if (valeur.is_boolean()) {
    return valeur.get<bool>() ? "O" : "N";
  }
  if (valeur.is_number()) {
    if (!estNumerique(champ.type)) {
      chemin.refuser("un texte est attendu, pas un nombre");
    }
    return encoderNombre(champ, valeur, chemin);
  }
  if (!valeur.is_string()) {
    chemin.refuser("un texte, un nombre ou un booléen est attendu");
  }
  const std::string& texte = valeur.get_ref<const std::string&>();
  if (champ.type == 'D') {
    if (const auto date = dateCompacte(texte)) {
      return *date + (champ.reponse ? "0000" : "");
    }
  }
  return texteLatin1(texte, chemin);
}

Json decoderChamp(const ChampDecrit* champ, const std::string& octets) {
  if (champ != nullptr) {
    Json typee = valeurTypee(champ->type, octets);
    if (!typee.is_null() && encoderChamp(*champ, typee, Chemin("$")) == octets) {
      return typee;
    }
  }
  return versUtf8(octets);
}

void ajouterChamp(std::string& champs, const std::string& octets) {
  ajouterLongueur(champs, octets.size());
  champs += octets;
}

std::string emballerGroupe(unsigned numero, const std::string& champs) {
  std::string zone{static_cast<char>(numero >> 8U), static_cast<char>(numero & 0xFFU)};
  ajouterChamp(zone, champs);
  return zone;
}

std::string encoderGroupe(const GroupeDecrit& groupe, const Json& champs, const Chemin& chemin) {
  if (!champs.is_object()) {
    chemin.refuser("un objet de champs est attendu");
  }
  std::string contenu;
  std::size_t pris = 0;
  for (const ChampDecrit& champ : groupe.champs) {
    const auto trouve = champs.find(champ.nom);
    const bool donne = trouve != champs.end();
    const Chemin place = chemin.membre(champ.nom);
    pris += donne ? 1U : 0U;
    if (!champ.repete) {
      ajouterChamp(contenu, donne ? encoderChamp(champ, *trouve, place) : std::string());
    } else if (donne && !trouve->is_array()) {
      place.refuser("une liste est attendue");
    } else if (donne) {
      for (std::size_t i = 0; i < trouve->size(); ++i) {
        ajouterChamp(contenu, encoderChamp(champ, (*trouve)[i], place.element(i)));
      }
    }
  }
  if (pris != champs.size()) {
    for (const auto& [nom, valeur] : champs.items()) {
      if (groupe.champNomme(nom) == nullptr) {
        chemin.membre(nom).refuser("le groupe " + std::to_string(groupe.numero) +
                                   " n'a pas de champ de ce nom");
      }
    }
  }
  return emballerGroupe(groupe.numero, contenu);
}

namespace {

// A group of a zone, its fields beyond the description being named as decoding names them.
std::string encoderElement(const Json& element, const Chemin& chemin) {
  if (!element.is_object() || !element.contains("groupe") || !element["groupe"].is_number_unsigned()) {
    chemin.refuser("un objet avec un numéro \"groupe\" est attendu");
  }
  const std::uint64_t numero = element["groupe"].get<std::uint64_t>();
  if (numero == 0 || numero > 65535) {
    chemin.membre("groupe").refuser("un numéro de 1 à 65535 est attendu");
  }
  const GroupeDecrit* const decrit = DescriptionZones::socle().groupe(static_cast<unsigned>(numero), false);
  const Json champs = element.value("champs", Json::object());
  GroupeDecrit groupe;
  if (decrit == nullptr) {
    // An unknown group: its fields in the order given.
    groupe.numero = static_cast<unsigned>(numero);
    for (const auto& [nom, valeur] : champs.items()) {
      groupe.champs.emplace_back().nom = nom;
    }
  } else {
    groupe = *decrit;
    while (champs.is_object() && champs.contains("champ" + std::to_string(groupe.champs.size() + 1))) {
      const std::string nom = "champ" + std::to_string(groupe.champs.size() + 1);
      groupe.champs.emplace_back().nom = nom;
    }
  }
  return encoderGroupe(groupe, champs, chemin.membre("champs"));
}

// Takes the groups of a text as the parser meets them, so that no more than one is ever held.
class EncodeurZone {
 public:
  bool operator()(int profondeur, Json::parse_event_t evenement, const Json& valeur) {
    using E = Json::parse_event_t;
    const bool ouvre = evenement == E::object_start || evenement == E::array_start;
    const bool cle = evenement == E::key;
    if (profondeur == 0 && (evenement == E::value || evenement == E::object_start)) {
      RACINE.refuser("un tableau de groupes est attendu");
    }
    if (ouvre && profondeur > PROFONDEUR_MAX) {
      element().refuser("trop imbriqué");
    }
    nombre_ += cle || evenement == E::value ? 1U : 0U;
    if ((cle && nombre_ > CLES_MAX) || nombre_ > VALEURS_MAX) {
      element().refuser("trop de champs");
    }
    if (profondeur != 1 ||
        (evenement != E::value && evenement != E::object_end && evenement != E::array_end)) {
      return true;
    }
    zone_ += encoderElement(valeur, element());
    ++rang_;
    nombre_ = 0;
    return false;  // done with it
  }
  std::string zone() && { return std::move(zone_); }

 private:
  static constexpr int PROFONDEUR_MAX = 8;
  // No place beyond the 4095th field of a group, no list of more than 65535 values can be told.
  static constexpr std::size_t CLES_MAX = 2 * 4095 + 8;
  static constexpr std::size_t VALEURS_MAX = 65535 + 64;

  Chemin element() const { return RACINE.element(rang_); }

  std::size_t rang_ = 0;
  std::size_t nombre_ = 0;  // keys and values of the group at hand
  std::string zone_;
};

// Walks the groups of a zone and their fields: visiteur.groupe(number, description or null), then
// visiteur.champ(rank from 0, description or null, bytes) for each, then visiteur.finGroupe().
template <class V>
void parcourirZone(const std::string& octets, bool reponse, V& visiteur) {
  Curseur zone(octets, 0, octets.size());
  while (!zone.estAuBout()) {
    const auto numero = static_cast<unsigned>(zone.lire(2));
    const std::size_t fin = zone.lireFin();
    const GroupeDecrit* const groupe = DescriptionZones::socle().groupe(numero, reponse);
    visiteur.groupe(numero, groupe);
    Curseur contenu(octets, zone.position(), fin);
    for (std::size_t rang = 0; !contenu.estAuBout(); ++rang) {
      const std::size_t finChamp = contenu.lireFin();
      visiteur.champ(rang, groupe == nullptr ? nullptr : groupe->champ(rang),
                     octets.substr(contenu.position(), finChamp - contenu.position()));
      contenu.allerA(finChamp);
    }
    visiteur.finGroupe();
    zone.allerA(fin);
  }
}

const ChampDecrit* repeteDe(const GroupeDecrit* groupe) {
  const bool repete = groupe != nullptr && !groupe->champs.empty() && groupe->champs.back().repete;
  return repete ? &groupe->champs.back() : nullptr;
}

struct VersJson {
  Json groupes = Json::array();
  Json element;
  Json champs;
  const ChampDecrit* repete = nullptr;

  void groupe(unsigned numero, const GroupeDecrit* decrit) {
    element = {{"groupe", numero}};
    if (decrit != nullptr) {
      element["nom"] = decrit->nom;
    }
    champs = Json::object();
    repete = repeteDe(decrit);
  }
  void champ(std::size_t rang, const ChampDecrit* decrit, const std::string& octets) {
    Json valeur = decoderChamp(decrit, octets);
    if (decrit == nullptr) {
      champs["champ" + std::to_string(rang + 1)] = std::move(valeur);
    } else if (decrit->repete) {
      champs[decrit->nom].push_back(std::move(valeur));
    } else {
      champs[decrit->nom] = std::move(valeur);
    }
  }
  void finGroupe() {
    if (repete != nullptr && !champs.contains(repete->nom)) {
      champs[repete->nom] = Json::array();
    }
    element["champs"] = std::move(champs);
    groupes.push_back(std::move(element));
  }
};

struct VersRien {
  void groupe(unsigned, const GroupeDecrit*) {}
  void champ(std::size_t, const ChampDecrit*, const std::string&) {}
  void finGroupe() {}
};

// The text that VersJson's value has, without the value.
class VersTexte {
 public:
  explicit VersTexte(std::ostream& sortie) : sortie_(sortie) {}

  void groupe(unsigned numero, const GroupeDecrit* decrit) {
    sortie_ << (premierGroupe_ ? "[" : ",") << "\n  {\n    \"groupe\": " << numero;
    if (decrit != nullptr) {
      sortie_ << ",\n    \"nom\": " << Json(decrit->nom).dump();
    }
    sortie_ << ",\n    \"champs\": {";
    premierGroupe_ = false;
    premierChamp_ = true;
    repete_ = repeteDe(decrit);
    valeurs_ = 0;
  }
  void champ(std::size_t rang, const ChampDecrit* decrit, const std::string& octets) {
    const Json valeur = decoderChamp(decrit, octets);
    if (decrit != nullptr && decrit->repete) {
      if (!liste_) {
        ouvrirListe();
      }
      sortie_ << (valeurs_++ == 0 ? "" : ",") << "\n        " << valeur.dump();
      return;
    }
    nommer(decrit == nullptr ? "champ" + std::to_string(rang + 1) : decrit->nom);
    sortie_ << valeur.dump();
  }
  void finGroupe() {
    if (repete_ != nullptr && !liste_) {
      ouvrirListe();
    }
    if (liste_) {
      sortie_ << (valeurs_ == 0 ? "]" : "\n      ]");
      liste_ = false;
    }
    sortie_ << (premierChamp_ ? "}" : "\n    }") << "\n  }";
  }
  void finir() { sortie_ << (premierGroupe_ ? "[]\n" : "\n]\n"); }

 private:
  void nommer(const std::string& nom) {
    sortie_ << (premierChamp_ ? "" : ",") << "\n      " << Json(nom).dump() << ": ";
    premierChamp_ = false;
  }
  void ouvrirListe() {
    nommer(repete_->nom);
    sortie_ << '[';
    liste_ = true;
  }

  std::ostream& sortie_;
  bool premierGroupe_ = true;
  bool premierChamp_ = true;
  bool liste_ = false;
  std::size_t valeurs_ = 0;
  const ChampDecrit* repete_ = nullptr;
};

}  // namespace

std::string encoderZone(const std::string& texte, const std::string& source) {
  EncodeurZone encodeur;
  try {
    // The parser keeps a copy of its listener.
    [[maybe_unused]] const Json reste = Json::parse(texte, std::ref(encodeur));
  } catch (const Json::parse_error& faute) {
    throw ErreurUsage(source + " : JSON mal formé, octet " + std::to_string(faute.byte));
  }
  return std::move(encodeur).zone();
}

std::string encoderZone(const Json& groupes) {
  if (!groupes.is_array()) {
    RACINE.refuser("un tableau de groupes est attendu");
  }
  std::string zone;
  for (std::size_t i = 0; i < groupes.size(); ++i) {
    zone += encoderElement(groupes[i], RACINE.element(i));
  }
  return zone;
}

Json decoderZone(const std::string& octets, bool reponse) {
  VersJson visiteur;
  parcourirZone(octets, reponse, visiteur);
  return std::move(visiteur.groupes);
}

void decoderZoneVers(std::ostream& sortie, const std::string& octets, bool reponse) {
  VersRien controle;  // nothing is written of bytes that are no zone
  parcourirZone(octets, reponse, controle);
  VersTexte visiteur(sortie);
  parcourirZone(octets, reponse, visiteur);
  visiteur.finir();
}

}  // namespace noxlux::commande
