// Clients of the service, each asking one thing again and again over one connection.
//
// client_serveur PORT CLIENTS SECONDS PATH [BODY_FILE]    prints: requests a second, 50th and 99th percentile
// in milliseconds, requests that were not answered 200
#include <httplib.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

namespace {

using Horloge = std::chrono::steady_clock;

struct Releve {
  std::vector<double> durees;  // in milliseconds
  std::size_t refus = 0;
};

void demander(int port, Horloge::time_point fin, const std::string& chemin, const std::string& corps,
              Releve& releve) {
  httplib::Client client("127.0.0.1", port);
  client.set_keep_alive(true);
  client.set_tcp_nodelay(true);
  for (auto debut = Horloge::now(); debut < fin; debut = Horloge::now()) {
    const httplib::Result reponse =
        corps.empty() ? client.Get(chemin) : client.Post(chemin, corps, "application/json");
    releve.durees.push_back(std::chrono::duration<double, std::milli>(Horloge::now() - debut).count());
    releve.refus += reponse && reponse->status == 200 ? 0U : 1U;
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 5) {
    return 2;
  }
  const int port = std::atoi(argv[1]);
  const auto clients = static_cast<std::size_t>(std::atoi(argv[2]));
  const double secondes = std::atof(argv[3]);
  std::string corps;
  if (argc > 5) {
    std::ifstream fichier(argv[5]);
    corps.assign(std::istreambuf_iterator<char>(fichier), {});
  }
  std::vector<Releve> releves(clients);
  std::vector<std::thread> fils;
  const auto debut = Horloge::now();
  const auto fin =
      debut + std::chrono::duration_cast<Horloge::duration>(std::chrono::duration<double>(secondes));
  for (Releve& releve : releves) {
    fils.emplace_back(demander, port, fin, argv[4], std::cref(corps), std::ref(releve));
  }
  std::vector<double> durees;
  std::size_t refus = 0;
  for (std::size_t i = 0; i < clients; ++i) {
    fils[i].join();
    durees.insert(durees.end(), releves[i].durees.begin(), releves[i].durees.end());
    refus += releves[i].refus;
  }
  const double passees = std::chrono::duration<double>(Horloge::now() - debut).count();
  std::sort(durees.begin(), durees.end());
  const auto centile = [&](std::size_t n) {
    return durees[std::min(durees.size() - 1, durees.size() * n / 100)];
  };
  std::printf("%.0f %.3f %.3f %zu\n", static_cast<double>(durees.size()) / passees, centile(50), centile(99),
              refus);
  return 0;
}
