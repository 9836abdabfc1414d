// What an import read, kept, adjusted and dropped, and why: told at the end, one line per kind.
#ifndef NOXLUX_COMPILATEUR_BILAN_IMPORT_H
#define NOXLUX_COMPILATEUR_BILAN_IMPORT_H

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "compilateur/rapport.h"

namespace noxlux::compilateur {

// Where a fact of a reference comes from.
enum Origine : std::size_t { DE_L_IMPORT, DU_COMPLEMENT, PAR_DEFAUT, ABSENT, NOMBRE_ORIGINES };

class BilanImport {
 public:
  void lire(std::string_view quoi, std::size_t nombre = 1) { compte(quoi).lus += nombre; }
  void garder(std::string_view quoi, std::size_t nombre = 1) { compte(quoi).gardes += nombre; }
  // A record, or a part of one, that is lost; `raison` is its kind, `detail` tells which one it is.
  void ecarter(std::string_view raison, Lieu lieu, std::string detail = {}) {
    noter(ecartes_, raison, lieu, std::move(detail));
  }
  // A value kept, not quite as it was written.
  void ajuster(std::string_view raison, Lieu lieu, std::string detail = {}, std::size_t nombre = 1) {
    noter(ajustes_, raison, lieu, std::move(detail), nombre);
  }

  // What a person ought to know: nothing is lost, something is assumed, absent or without effect.
  void prevenir(std::string_view raison, Lieu lieu, std::string detail = {}) {
    noter(avis_, raison, lieu, std::move(detail));
  }
  // A sentence of its own.
  void dire(std::string ligne) { phrases_.push_back(std::move(ligne)); }
  // A fact of a subject, and where it comes from.
  void fonder(std::string_view sujet, Origine origine, std::size_t nombre = 1) {
    fondements_[std::string(sujet)][origine] += nombre;
  }

  std::size_t nombreEcartes() const;
  // One line per kind; with `verbeux`, one more per record, "file:line: detail". `rapport` names the sources.
  std::vector<std::string> lignes(const Rapport& rapport, bool verbeux) const;

 private:
  struct Compte {
    std::string quoi;
    std::size_t lus = 0;
    std::size_t gardes = 0;
  };
  struct Cas {
    Lieu lieu;
    std::string detail;
  };
  // One kind: how many cases, and the first of them.
  struct Genre {
    static constexpr std::size_t CAS_GARDES = 20000;
    std::size_t nombre = 0;
    std::vector<Cas> cas;
  };
  using Genres = std::map<std::string, Genre, std::less<>>;

  Compte& compte(std::string_view quoi);
  static void noter(Genres& genres, std::string_view raison, Lieu lieu, std::string detail,
                    std::size_t nombre = 1);

  std::vector<Compte> comptes_;  // in the order they were first met
  Genres ecartes_;
  Genres ajustes_;
  Genres avis_;
  std::vector<std::string> phrases_;
  std::map<std::string, std::array<std::size_t, NOMBRE_ORIGINES>> fondements_;
};

}  // namespace noxlux::compilateur

#endif
