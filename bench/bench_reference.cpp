// What the library costs: start-up, checksum, consultation, first read of an act, search, memory.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <malloc.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <ctime>
#include <memory>
#include <stdexcept>
#include <vector>

#include "bench/reference_bench.h"
#include "fichier/crc16.h"
#include "noxlux/noxlux.h"

namespace noxlux::bench {
namespace {

std::vector<unsigned char> lireFichier() {
  const int fichier = open(fichierReference().c_str(), O_RDONLY);
  struct stat etat {};
  if (fichier < 0 || fstat(fichier, &etat) != 0) {
    throw std::runtime_error("no reference to measure");
  }
  std::vector<unsigned char> octets(static_cast<std::size_t>(etat.st_size));
  std::size_t lus = 0;
  while (lus < octets.size()) {
    const ssize_t n = read(fichier, octets.data() + lus, octets.size() - lus);
    if (n <= 0) {
      throw std::runtime_error("the reference does not read");
    }
    lus += static_cast<std::size_t>(n);
  }
  close(fichier);
  return octets;
}

// The time that the processor gave to this thread, in seconds.
double tempsProcesseur() {
  std::timespec temps{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &temps);
  return static_cast<double>(temps.tv_sec) + static_cast<double>(temps.tv_nsec) * 1e-9;
}

void exigerReponse(unsigned short cr, benchmark::State& etat) {
  if (cr != 0) {
    etat.SkipWithError("the library answered an error code");
  }
}

void lectureEtCrc32(benchmark::State& etat) {
  for (auto _ : etat) {
    const auto octets = lireFichier();
    benchmark::DoNotOptimize(crc32_z(0, octets.data(), octets.size()));
  }
}
BENCHMARK(lectureEtCrc32)->Unit(benchmark::kMillisecond);

void demarrage(benchmark::State& etat) {
  configurer();
  for (auto _ : etat) {
    const double debut = tempsProcesseur();
    const unsigned short cr = NOX_InitLIB();
    etat.SetIterationTime(tempsProcesseur() - debut);
    exigerReponse(cr, etat);
    NOX_TermLIB();
  }
}
BENCHMARK(demarrage)->Unit(benchmark::kMillisecond)->UseManualTime();

void sommeZlib(benchmark::State& etat) {
  const auto octets = lireFichier();
  for (auto _ : etat) {
    benchmark::DoNotOptimize(crc32_z(0, octets.data(), octets.size()));
  }
}
BENCHMARK(sommeZlib)->Unit(benchmark::kMillisecond);

void sommeNoxlux(benchmark::State& etat) {
  const auto octets = lireFichier();
  for (auto _ : etat) {
    Crc16 crc;
    crc.ajouter(octets.data(), octets.size());
    benchmark::DoNotOptimize(crc.resultat());
  }
}
BENCHMARK(sommeNoxlux)->Unit(benchmark::kMillisecond);

unsigned short consulter(std::string& zone, const char* date = jourMesure()) {
  void* sortie = nullptr;
  unsigned int taille = 0;
  const unsigned short cr = NOX_ConsulterDonnee("CCAM_37", date, zone.data(),
                                                static_cast<unsigned int>(zone.size()), &sortie, &taille);
  benchmark::DoNotOptimize(sortie);
  NOX_LibererZoneMem(sortie);
  return cr;
}

void consultationNoxlux(benchmark::State& etat) {
  const std::vector<std::string>& actes = actesMesures();
  const BibliothequeChargee bibliotheque;
  for (const std::string& acte : actes) {
    std::string zone = zoneActe(acte);
    exigerReponse(consulter(zone), etat);
  }
  std::string zone = zoneActe(actes[0]);
  const std::size_t place = zone.find(actes[0]);
  std::size_t i = 0;
  for (auto _ : etat) {
    i = (i + 4093) % actes.size();
    zone.replace(place, actes[i].size(), actes[i]);
    exigerReponse(consulter(zone), etat);
  }
}
BENCHMARK(consultationNoxlux);

// The same question as the consultation: is the act in force, what is its price, was it changed locally.
class BaseSQLite {
 public:
  explicit BaseSQLite(const std::string& chemin) {
    sqlite3_open(chemin.c_str(), &base_);
    executer(
        "DROP TABLE IF EXISTS acte; DROP TABLE IF EXISTS prix; DROP TABLE IF EXISTS modification;"
        "CREATE TABLE acte(code TEXT PRIMARY KEY, creation INTEGER, fin INTEGER) WITHOUT ROWID;"
        "CREATE TABLE prix(acte TEXT, activite TEXT, phase TEXT, effet INTEGER, prix REAL,"
        "                  PRIMARY KEY(acte, activite, phase, effet)) WITHOUT ROWID;"
        "CREATE TABLE modification(acte TEXT, activite TEXT, phase TEXT, effet INTEGER, prix REAL,"
        "                          PRIMARY KEY(acte, activite, phase, effet)) WITHOUT ROWID; BEGIN");
    sqlite3_stmt* vie = preparer("INSERT INTO acte VALUES(?1, 20050301, 99991231)");
    sqlite3_stmt* ajout = preparer("INSERT INTO prix VALUES(?1, '1', '0', ?2, ?3)");
    for (unsigned i = 0; i < NOMBRE_ACTES; ++i) {
      const PhaseTarifee phase = phaseTarifee(i);
      sqlite3_bind_text(vie, 1, phase.acte.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_step(vie);
      sqlite3_reset(vie);
      for (unsigned h = 0; h < 3; ++h) {
        sqlite3_bind_text(ajout, 1, phase.acte.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_int(ajout, 2, std::atoi(DATES_EFFET[h]));
        sqlite3_bind_double(ajout, 3, phase.prix[h]);
        sqlite3_step(ajout);
        sqlite3_reset(ajout);
      }
    }
    sqlite3_finalize(vie);
    sqlite3_finalize(ajout);
    // The transaction of a careful host: opened once, and read in ever after.
    executer("COMMIT; BEGIN; SELECT count(*) FROM acte");
    question_ = preparer(
        "SELECT prix.prix,"
        "  (SELECT max(m.effet) FROM modification m WHERE m.acte=?1 AND m.activite='1' AND m.phase='0'"
        "     AND m.effet<=?2)"
        " FROM acte JOIN prix ON prix.acte=acte.code"
        " WHERE acte.code=?1 AND acte.creation<=?2 AND acte.fin>=?2 AND prix.activite='1' AND prix.phase='0'"
        "   AND prix.effet<=?2"
        " ORDER BY prix.effet DESC LIMIT 1");
  }
  ~BaseSQLite() {
    sqlite3_finalize(question_);
    sqlite3_close(base_);
  }
  BaseSQLite(const BaseSQLite&) = delete;
  BaseSQLite& operator=(const BaseSQLite&) = delete;

  double prix(const std::string& acte, int date) {
    sqlite3_bind_text(question_, 1, acte.c_str(), static_cast<int>(acte.size()), SQLITE_STATIC);
    sqlite3_bind_int(question_, 2, date);
    const double resultat =
        sqlite3_step(question_) == SQLITE_ROW ? sqlite3_column_double(question_, 0) : -1.0;
    sqlite3_reset(question_);
    return resultat;
  }

 private:
  void executer(const char* sql) { sqlite3_exec(base_, sql, nullptr, nullptr, nullptr); }
  sqlite3_stmt* preparer(const char* sql) {
    sqlite3_stmt* requete = nullptr;
    sqlite3_prepare_v2(base_, sql, -1, &requete, nullptr);
    return requete;
  }
  sqlite3* base_ = nullptr;
  sqlite3_stmt* question_ = nullptr;
};

void consulterSQLite(benchmark::State& etat, const std::string& chemin) {
  BaseSQLite base(chemin);
  const std::vector<std::string>& actes = actesMesures();
  std::size_t i = 0;
  for (auto _ : etat) {
    i = (i + 4093) % actes.size();
    const double prix = base.prix(actes[i], 20200101);
    if (prix < 0) {
      etat.SkipWithError("no price");
    }
    benchmark::DoNotOptimize(prix);
  }
}

// A database where a host would keep it, in a file beside the reference.
void consultationSQLite(benchmark::State& etat) {
  consulterSQLite(etat, repertoireReference() + "prix.sqlite");
}
BENCHMARK(consultationSQLite);

void consultationSQLiteEnMemoire(benchmark::State& etat) { consulterSQLite(etat, ":memory:"); }
BENCHMARK(consultationSQLiteEnMemoire);

// The same consultations from one thread and from two, each on acts of its own choosing.
class Fils : public benchmark::Fixture {
 public:
  void SetUp(const benchmark::State& etat) override {
    if (etat.thread_index() == 0) {
      actesMesures();
      bibliotheque_ = std::make_unique<BibliothequeChargee>();
      for (const std::string& acte : actesMesures()) {
        std::string zone = zoneActe(acte);
        consulter(zone);
      }
    }
  }
  void TearDown(const benchmark::State& etat) override {
    if (etat.thread_index() == 0) {
      bibliotheque_.reset();
    }
  }

 private:
  std::unique_ptr<BibliothequeChargee> bibliotheque_;
};

BENCHMARK_DEFINE_F(Fils, consultationFils)(benchmark::State& etat) {
  const std::vector<std::string>& actes = actesMesures();
  std::string zone = zoneActe(actes[0]);
  const std::size_t place = zone.find(actes[0]);
  std::size_t i = static_cast<std::size_t>(etat.thread_index()) * actes.size() / 2;
  for (auto _ : etat) {
    i = (i + 4093) % actes.size();
    zone.replace(place, actes[i].size(), actes[i]);
    exigerReponse(consulter(zone), etat);
  }
  etat.SetItemsProcessed(etat.iterations());
}
BENCHMARK_REGISTER_F(Fils, consultationFils)->Name("consultationFils")->Threads(1)->Threads(2)->UseRealTime();

void premiereLectureActe(benchmark::State& etat) {
  std::vector<std::string> zones;
  for (const std::string& acte : actesMesures()) {
    zones.push_back(zoneActe(acte));
  }
  for (auto _ : etat) {
    const BibliothequeChargee bibliotheque;
    const double debut = tempsProcesseur();
    for (std::string& zone : zones) {
      exigerReponse(consulter(zone), etat);
    }
    etat.SetIterationTime((tempsProcesseur() - debut) / static_cast<double>(zones.size()));
  }
}
BENCHMARK(premiereLectureActe)->UseManualTime()->Iterations(5);

void filtreTousLesActes(benchmark::State& etat) {
  const BibliothequeChargee bibliotheque;
  for (auto _ : etat) {
    void* sortie = nullptr;
    unsigned int taille = 0;
    exigerReponse(NOX_RechercherParFiltre("", &sortie, &taille), etat);
    NOX_LibererZoneMem(sortie);
  }
}
BENCHMARK(filtreTousLesActes)->Unit(benchmark::kMicrosecond);

std::size_t octetsAlloues() {
  const struct mallinfo2 etat = mallinfo2();
  return etat.uordblks + etat.hblkhd;
}

// Bytes on the heap per byte of the file: after start-up, then with every deferred table and every act
// loaded.
void memoire(benchmark::State& etat) {
  const auto taille = static_cast<double>(lireFichier().size());
  actesMesures();
  configurer();
  for (auto _ : etat) {
    const std::size_t avant = octetsAlloues();
    const BibliothequeChargee bibliotheque;
    etat.counters["au_demarrage"] = static_cast<double>(octetsAlloues() - avant) / taille;
    for (const std::string& acte : actesMesures()) {
      std::string zone = zoneActe(acte);
      exigerReponse(consulter(zone), etat);
    }
    void* sortie = nullptr;
    unsigned int n = 0;
    exigerReponse(NOX_RechercherParMotCle("exploration", 0, &sortie, &n), etat);
    NOX_LibererZoneMem(sortie);
    etat.counters["tout_charge"] = static_cast<double>(octetsAlloues() - avant) / taille;
    etat.counters["taille_fichier"] = taille;
  }
}
BENCHMARK(memoire)->Iterations(1);

}  // namespace
}  // namespace noxlux::bench

BENCHMARK_MAIN();
