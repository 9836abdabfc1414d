// Data zones to and from JSON.
//
// A zone is an array of groups {"groupe": 3012, "nom": "...", "champs": {"acte": "HHFA001", ...}}, in zone
// order. A repeated field is an array. In a field, a JSON number, boolean or date "AAAA-MM-JJ" stands for a
// value of the field's type; any other text stands for the field's very bytes. Decoding gives a typed value
// only where encoding it gives the same bytes back, so that a zone decoded and encoded again is the same
// zone.
#ifndef NOXLUX_COMMANDE_ZONE_JSON_H
#define NOXLUX_COMMANDE_ZONE_JSON_H

#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

#include "noxlux/chemin.h"
#include "noxlux/description_zones.h"

namespace noxlux::commande {

// Keeps fields in zone order.
using Json = nlohmann::ordered_json;

// `reponse`: which side's names to prefer. Throws ErreurUsage on bytes that are no zone.
Json decoderZone(const std::string& octets, bool reponse);
// The same as text, written group by group: a large zone takes no more memory than its bytes.
void decoderZoneVers(std::ostream& sortie, const std::string& octets, bool reponse);
// The zone that a text tells, read group by group; `source` names the text. Throws ErreurUsage, with the JSON
// path, on what cannot be encoded.
std::string encoderZone(const std::string& texte, const std::string& source);
// The same of a value.
std::string encoderZone(const Json& groupes);

// One group; `chemin` is the place of `champs`. A field that is not given is empty.
std::string encoderGroupe(const GroupeDecrit& groupe, const Json& champs, const Chemin& chemin);
// A group of its fields' bytes, each behind its length.
std::string emballerGroupe(unsigned numero, const std::string& champs);
// Adds a field's bytes (ISO-8859-1) behind their length.
void ajouterChamp(std::string& champs, const std::string& octets);
// One field's bytes.
std::string encoderChamp(const ChampDecrit& champ, const Json& valeur, const Chemin& chemin);
Json decoderChamp(const ChampDecrit* champ, const std::string& octets);

}  // namespace noxlux::commande

#endif
