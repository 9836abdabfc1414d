// Asks the same question again and again, for a program that counts instructions: its count for 2 N questions
// less its count for N is that of N questions, whatever starting costs.
//
// Usage: instructions preparer           the directory of the reference to measure, then its acts that have a
// price
//        instructions consultation N     the price of acts that are loaded; reads what `preparer` told
//        instructions premiereLecture N  the price of acts that are not, a new one each time; likewise
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string_view>

#include "bench/reference_bench.h"
#include "noxlux/noxlux.h"

namespace noxlux::bench {
namespace {

constexpr std::size_t ACTES_CHARGES = 500;

void preparer() {
  std::cout << repertoireReference() << '\n';
  for (const std::string& acte : actesMesures()) {
    std::cout << acte << '\n';
  }
}

void consulter(std::string& zone) {
  static const char* const jour = jourMesure();
  void* sortie = nullptr;
  unsigned int taille = 0;
  if (NOX_ConsulterDonnee("CCAM_37", jour, zone.data(), static_cast<unsigned int>(zone.size()), &sortie,
                          &taille) != 0) {
    throw std::runtime_error("an act has no price");
  }
  NOX_LibererZoneMem(sortie);
}

// All that is prepared is the same whatever `nombre`.
[[noreturn]] void compter(bool actesCharges, std::size_t nombre) {
  std::string ligne;
  std::getline(std::cin, ligne);
  setenv("NOXLUX_BENCH_REFERENCE", ligne.c_str(), 1);
  std::vector<std::string> questions;
  while (std::getline(std::cin, ligne)) {
    questions.push_back(zoneActe(ligne));
  }
  const std::size_t nombreActes = actesCharges ? std::min(ACTES_CHARGES, questions.size()) : questions.size();
  if (nombreActes == 0 || (!actesCharges && nombreActes < nombre)) {
    throw std::runtime_error("the reference has too few acts");
  }
  const BibliothequeChargee bibliotheque;
  for (std::size_t i = 0; actesCharges && i < nombreActes; ++i) {
    consulter(questions[i]);
  }
  for (std::size_t i = 0; i < nombre; ++i) {
    consulter(questions[i % nombreActes]);
  }
  std::_Exit(EXIT_SUCCESS);  // what is loaded is not freed: that is no part of a question
}

}  // namespace
}  // namespace noxlux::bench

int main(int argc, char** argv) try {
  using namespace noxlux::bench;
  const std::string_view mesure = argc > 1 ? argv[1] : "";
  if (mesure == "preparer") {
    preparer();
    return 0;
  }
  if (argc != 3 || (mesure != "consultation" && mesure != "premiereLecture")) {
    std::fputs("usage: instructions preparer | consultation N | premiereLecture N\n", stderr);
    return 2;
  }
  compter(mesure == "consultation", std::strtoul(argv[2], nullptr, 10));
} catch (const std::exception& faute) {
  std::fprintf(stderr, "%s\n", faute.what());
  return 1;
}
