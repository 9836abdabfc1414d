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
#include <string>

#include "noxlux/description_zones.h"

namespace noxlux::commande {

// Keeps fields in zone order.
using Json = nlohmann::ordered_json;

// `reponse`: which side's names to prefer. Throws ErreurUsage on bytes that are no zone.
Json decoderZone(const std::string& octets, bool reponse);
// Throws ErreurUsage, with the JSON path, on what cannot be encoded.
std::string encoderZone(const Json& groupes);

// One group; `chemin` is the JSON path of `champs`, for messages. A field that is not given is empty.
std::string encoderGroupe(const GroupeDecrit& groupe, const Json& champs, const std::string& chemin);
// One field's bytes (ISO-8859-1).
std::string encoderChamp(const ChampDecrit& champ, const Json& valeur, const std::string& chemin);
Json decoderChamp(const ChampDecrit* champ, const std::string& octets);

}  // namespace noxlux::commande

#endif
