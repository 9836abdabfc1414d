// What the full check costs by the number of lines, in one association or spread over dates, and zone
// decoding alone.
#include <benchmark/benchmark.h>

#include <cstdio>

#include "bench/reference_bench.h"
#include "manip/zone.h"
#include "noxlux/noxlux.h"

namespace noxlux::bench {
namespace {

std::string longueur(std::size_t n) {
  if (n <= 127) {
    return {static_cast<char>(n)};
  }
  return {'\x81', static_cast<char>(n)};
}

// Contents here stay below 255 bytes.
std::string groupe(unsigned numero, std::initializer_list<std::string> champs) {
  std::string contenu;
  for (const std::string& champ : champs) {
    contenu += longueur(champ.size()) + champ;
  }
  return std::string{static_cast<char>(numero >> 8U), static_cast<char>(numero & 0xFFU)} +
         longueur(contenu.size()) + contenu;
}

std::string centimes(double montant) {
  char texte[24];
  std::snprintf(texte, sizeof texte, "%.0f", montant * 100);
  return texte;
}

// An invoice of n CCAM lines without fault, on one date or one a day.
std::string facture(unsigned n, bool memeDate) {
  std::string zone = groupe(1110, {"75123456", "7", "", "", "1", "03", "", "", "", "", "", "", "19800517"}) +
                     groupe(1511, {""});
  for (unsigned i = 0; i < n; ++i) {
    const std::string numero = std::to_string(i + 1);
    char date[16];
    std::snprintf(date, sizeof date, "2025%02u%02u", memeDate ? 1 : 1 + i / 28 % 12,
                  memeDate ? 15 : 1 + i % 28);
    const PhaseTarifee phase = phaseTarifee(rangAssocie(i));
    const std::string prix = centimes(phase.prix[0]);
    zone += groupe(1610, {numero, date, "1", "ATM", "", "", "", "", "", "", prix, prix, "100"}) +
            groupe(1820, {numero, "C"}) + groupe(2020, {numero, prix}) +
            groupe(2100, {numero, phase.acte, "", "1", "0", "", "", "", "", "", "", "", ""});
  }
  return zone + groupe(3500, {"751"});
}

void controler(benchmark::State& etat, bool memeDate) {
  const BibliothequeChargee bibliotheque;
  const auto n = static_cast<unsigned>(etat.range(0));
  std::string zone = facture(n, memeDate);
  for (auto _ : etat) {
    void* sortie = nullptr;
    unsigned int taille = 0;
    const unsigned short cr =
        NOX_ControleComplet(zone.data(), static_cast<unsigned int>(zone.size()), &sortie, &taille);
    if (cr != NOX_CR_OK) {
      etat.SkipWithError("the invoice is not without fault");
    }
    NOX_LibererZoneMem(sortie);
  }
  etat.SetItemsProcessed(etat.iterations() * etat.range(0));
}

void controleAssociation(benchmark::State& etat) { controler(etat, true); }
void controleDates(benchmark::State& etat) { controler(etat, false); }
BENCHMARK(controleAssociation)->Arg(1)->Arg(5)->Arg(20)->Arg(100)->Arg(200)->Unit(benchmark::kMicrosecond);
BENCHMARK(controleDates)->Arg(1)->Arg(5)->Arg(20)->Arg(100)->Arg(200)->Unit(benchmark::kMicrosecond);

void decodageZone(benchmark::State& etat) {
  std::string octets = facture(static_cast<unsigned>(etat.range(0)), true);
  for (auto _ : etat) {
    Zone zone(reinterpret_cast<byte*>(octets.data()), static_cast<std::uint32_t>(octets.size()));
    unsigned short identifiant = 0;
    while (!zone.finZone() && zone.avancerGroupeSuivant(identifiant) == NOX_CR_OK) {
      unsigned short numero = 0;
      std::span<const byte> donnees;
      while (!zone.finGroupe() && zone.avancerChampSuivant(numero, donnees) == NOX_CR_OK) {
        benchmark::DoNotOptimize(donnees.data());
      }
    }
  }
  etat.SetBytesProcessed(etat.iterations() * static_cast<std::int64_t>(octets.size()));
}
BENCHMARK(decodageZone)->Arg(5)->Arg(200);

}  // namespace
}  // namespace noxlux::bench
