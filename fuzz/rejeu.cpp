// Runs a target over inputs kept in files: the seeds it starts from, and what was found with it.
//
//   rejeu_TARGET DIRECTORY...
#include <cstdio>
#include <filesystem>

#include "atelier.h"

int main(int nombre, char** dossiers) {
  std::size_t rejoues = 0;
  for (int i = 1; i < nombre; ++i) {
    std::error_code absent;  // nothing was found yet with some targets
    for (const auto& entree : std::filesystem::directory_iterator(dossiers[i], absent)) {
      if (!entree.is_regular_file()) {
        continue;
      }
      std::fprintf(stderr, "%s\n", entree.path().c_str());
      const std::string octets = fuzz::lire(entree.path().string());
      // A block of exactly its size: a read beyond it is seen by the sanitizers.
      const std::vector<std::uint8_t> bloc(octets.begin(), octets.end());
      LLVMFuzzerTestOneInput(bloc.data(), bloc.size());
      ++rejoues;
    }
  }
  std::printf("%zu inputs\n", rejoues);
  return rejoues == 0 ? 1 : 0;
}
