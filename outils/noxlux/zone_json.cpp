#include "noxlux/zone_json.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
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
    chemin.refuser("caractère hors ISO-8859-1 : " + converti.sansEquivalent.front());
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

std::string encoderZone(const Json& groupes) {
  if (!groupes.is_array()) {
    RACINE.refuser("un tableau de groupes est attendu");
  }
  std::string zone;
  for (std::size_t i = 0; i < groupes.size(); ++i) {
    const Chemin chemin = RACINE.element(i);
    const Json& element = groupes[i];
    if (!element.is_object() || !element.contains("groupe") || !element["groupe"].is_number_unsigned()) {
      chemin.refuser("un objet avec un numéro \"groupe\" est attendu");
    }
    const std::uint64_t numero = element["groupe"].get<std::uint64_t>();
    const GroupeDecrit* groupe =
        numero > 65535 ? nullptr : DescriptionZones::socle().groupe(static_cast<unsigned>(numero), false);
    GroupeDecrit anonyme;
    const Json champs = element.value("champs", Json::object());
    if (numero == 0 || numero > 65535) {
      chemin.membre("groupe").refuser("un numéro de 1 à 65535 est attendu");
    }
    if (groupe == nullptr) {
      // An unknown group: its fields in the order given.
      anonyme.numero = static_cast<unsigned>(numero);
      for (const auto& [nom, valeur] : champs.items()) {
        anonyme.champs.emplace_back().nom = nom;
      }
      groupe = &anonyme;
    }
    // Fields beyond the description, as decoding names them.
    GroupeDecrit elargi = *groupe;
    while (champs.is_object() && champs.contains("champ" + std::to_string(elargi.champs.size() + 1))) {
      elargi.champs.emplace_back().nom = "champ" + std::to_string(elargi.champs.size());
    }
    zone += encoderGroupe(elargi, champs, chemin.membre("champs"));
  }
  return zone;
}

Json decoderZone(const std::string& octets, bool reponse) {
  Json groupes = Json::array();
  Curseur zone(octets, 0, octets.size());
  while (!zone.estAuBout()) {
    const auto numero = static_cast<unsigned>(zone.lire(2));
    const std::size_t fin = zone.lireFin();
    const GroupeDecrit* groupe = DescriptionZones::socle().groupe(numero, reponse);
    Json element = {{"groupe", numero}};
    if (groupe != nullptr) {
      element["nom"] = groupe->nom;
    }
    Json champs = Json::object();
    if (groupe != nullptr && !groupe->champs.empty() && groupe->champs.back().repete) {
      champs[groupe->champs.back().nom] = Json::array();
    }
    Curseur contenu(octets, zone.position(), fin);
    for (std::size_t rang = 0; !contenu.estAuBout(); ++rang) {
      const std::size_t finChamp = contenu.lireFin();
      const std::string valeur = octets.substr(contenu.position(), finChamp - contenu.position());
      contenu.allerA(finChamp);
      const ChampDecrit* champ = groupe == nullptr ? nullptr : groupe->champ(rang);
      Json decodee = decoderChamp(champ, valeur);
      if (champ == nullptr) {
        champs["champ" + std::to_string(rang + 1)] = std::move(decodee);
      } else if (champ->repete) {
        champs[champ->nom].push_back(std::move(decodee));
      } else {
        champs[champ->nom] = std::move(decodee);
      }
    }
    element["champs"] = std::move(champs);
    groupes.push_back(std::move(element));
    zone.allerA(fin);
  }
  return groupes;
}

}  // namespace noxlux::commande
