// Mutations that know groups and lengths: fields changed, groups added, dropped, doubled, swapped, renamed;
// the zone is written again with the lengths that fit. One time in eight the bytes change blindly.
#include <algorithm>
#include <cstring>
#include <random>

#include "atelier.h"
#include "bout_en_bout/zones_essai.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* octets, std::size_t taille, std::size_t maximum);

namespace {

using Hasard = std::minstd_rand;

std::size_t tirer(Hasard& hasard, std::size_t n) { return hasard() % n; }

void changerChamp(std::string& champ, Hasard& hasard) {
  static const char* const VALEURS[] = {"",   "0",        "1",       "99999",    "20260115", "19800229",
                                        "N",  "HBFD008",  "HHFA001", "ZZHA001",  "HEAE001",  "0000000000",
                                        "01", "20261301", "974",     "99999999", "A",        "C-Base"};
  switch (tirer(hasard, 4)) {
    case 0:
      champ = VALEURS[tirer(hasard, std::size(VALEURS))];
      break;
    case 1:
      champ.insert(tirer(hasard, champ.size() + 1), 1, static_cast<char>(tirer(hasard, 256)));
      break;
    case 2:
      champ.resize(champ.size() * 2 + tirer(hasard, 200), '9');
      break;
    default: {
      std::uint8_t octets[64];
      const std::size_t n = std::min(champ.size(), sizeof octets);
      std::memcpy(octets, champ.data(), n);
      const std::size_t nouveau = LLVMFuzzerMutate(octets, n, sizeof octets);
      champ.assign(octets, octets + nouveau);
    }
  }
}

void changerZone(essai::Zone& zone, Hasard& hasard) {
  static const unsigned GROUPES[] = {1110, 1150, 1511, 1512, 1513, 1514, 1610, 1620, 1630,
                                     1820, 1840, 1870, 1880, 2020, 2100, 2200, 3010, 3011,
                                     3012, 3013, 3300, 3310, 3400, 3410, 3420, 3500, 3530};
  const std::size_t place = tirer(hasard, zone.size() + 1);
  if (place == zone.size()) {
    zone.push_back({GROUPES[tirer(hasard, std::size(GROUPES))], std::vector<std::string>(tirer(hasard, 18))});
    return;
  }
  const auto groupe = zone.begin() + static_cast<std::ptrdiff_t>(place);
  auto& champs = groupe->champs;
  switch (tirer(hasard, 8)) {
    case 0:
      zone.insert(groupe, essai::Groupe(*groupe));
      break;
    case 1:
      zone.erase(groupe);
      break;
    case 2:
      std::swap(*groupe, zone[tirer(hasard, zone.size())]);
      break;
    case 3:
      groupe->identifiant = GROUPES[tirer(hasard, std::size(GROUPES))];
      break;
    case 4:
      champs.resize(tirer(hasard, 20));
      break;
    default:
      if (!champs.empty()) {
        changerChamp(champs[tirer(hasard, champs.size())], hasard);
      }
  }
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* octets, std::size_t taille, std::size_t maximum,
                                               unsigned graine) {
  Hasard hasard(graine);
  essai::Zone zone;
  const std::string_view lus(reinterpret_cast<const char*>(octets), taille);
  if (lus.empty() || tirer(hasard, 8) == 0 || !essai::lire(lus.substr(1), zone)) {
    return LLVMFuzzerMutate(octets, taille, maximum);
  }
  if (tirer(hasard, 16) == 0) {
    octets[0] = static_cast<std::uint8_t>(hasard());
  }
  changerZone(zone, hasard);
  const std::string ecrite = essai::ecrire(zone);
  if (1 + ecrite.size() > maximum) {
    return taille;
  }
  std::memcpy(octets + 1, ecrite.data(), ecrite.size());
  return 1 + ecrite.size();
}
