// The reference that is measured: 8,000 generated acts, or any compiled reference named by
// NOXLUX_BENCH_REFERENCE.
#ifndef NOXLUX_BENCH_REFERENCE_BENCH_H
#define NOXLUX_BENCH_REFERENCE_BENCH_H

#include <cstdint>
#include <string>
#include <vector>

namespace noxlux::bench {

constexpr unsigned NOMBRE_ACTES = 8000;

// A priced phase of the generated reference: what consultations ask about.
struct PhaseTarifee {
  std::string acte;
  double prix[3];  // newest first, from DATES_EFFET
};

// Effect dates of the three histories of each act, newest first, AAAAMMJJ.
constexpr const char* DATES_EFFET[3] = {"20240101", "20150701", "20050301"};

// Acts that plan one another, each dear enough to be exempt by itself and of the category without limit on
// their number: an invoice of them is without fault, so that every rule runs and every pair of lines is
// looked at. Each act excludes the next one: they are every other act.
constexpr unsigned ACTES_ASSOCIES = 20;
constexpr unsigned PREMIER_ASSOCIE = 400;
constexpr unsigned rangAssocie(unsigned k) { return PREMIER_ASSOCIE + k % ACTES_ASSOCIES * 2; }

// The code of generated act number i: ascending with i.
std::string codeActe(unsigned i);
PhaseTarifee phaseTarifee(unsigned i);

// The directory, with its trailing '/', of the reference under measure; generated at the first call.
const std::string& repertoireReference();
std::string fichierReference();

// The library loaded on that reference for as long as the object lives.
class BibliothequeChargee {
 public:
  BibliothequeChargee();
  ~BibliothequeChargee();
  BibliothequeChargee(const BibliothequeChargee&) = delete;
  BibliothequeChargee& operator=(const BibliothequeChargee&) = delete;
};

// Points REPERTOIRE_SYSTEME at an orvan.ini for that reference.
void configurer();

// The acts asked about, their codes of one length: the generated ones, or those of the imposed reference whose
// activity 1 has a price for phase 0 (the library must not be loaded then). And a day on which they have one,
// AAAAMMJJ.
const std::vector<std::string>& actesMesures();
const char* jourMesure();

// The input zone of group 3012 for an act, activity 1, phase 0.
std::string zoneActe(const std::string& acte);

}  // namespace noxlux::bench

#endif
