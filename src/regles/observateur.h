// Who listens to a check: what the rules read, compute and find, as they do it. The trace listens too: a fact
// that it shows bears the line that it writes.
#ifndef NOXLUX_REGLES_OBSERVATEUR_H
#define NOXLUX_REGLES_OBSERVATEUR_H

#include <cstdint>
#include <span>
#include <vector>

#include "basics/format_verifie.h"
#include "referent/observateur_lecture.h"

namespace noxlux {

class Erreur;
struct Facture;
struct LigneActe;

// One operation on an amount that is being computed: what is done with `operande`, and the amount then.
enum class Operation : unsigned char { DEPART, FOIS, PLUS, PLAFOND, ARRONDI };
struct EtapeCalcul {
  const char* nom;
  Operation operation;
  double operande;
  double resultat;
};

// What a rule tells besides. V: what the line of the trace takes.
template <class... V>
struct Fait {
  const char* nom;
  FormatVerifie<V...> ligne;
};
// One that the trace does not show.
struct FaitMuet {
  const char* nom;
};

class ObservateurRegles : public ObservateurLecture {
 public:
  using Lignes = std::vector<const LigneActe*>;

  // The rule, question or computation of that identifier runs on these lines, until it ends.
  virtual void regleDebutee(const char* regle, const Lignes& lignes) = 0;
  virtual void regleFinie() = 0;
  virtual void faitDit(const char* fait, std::span<const ValeurLue> valeurs) = 0;
  virtual void etapeDite(const EtapeCalcul& etape) = 0;
  // The rule under way found this; its lines may still be added to.
  virtual void erreurLevee(const Erreur& erreur) = 0;
  // The line of that number is being read out of the zone.
  virtual void ligneLue(std::int32_t numero) = 0;
  // The check came to its end; then its errors, those that are answered, in the order of the answer.
  virtual void factureControlee(const Facture& facture) = 0;
  virtual void erreurRendue(const Erreur& erreur) = 0;

 protected:
  ~ObservateurRegles() = default;
};

// Listens to the functions that this thread calls, as long as it lives.
class Ecoute {
 public:
  explicit Ecoute(ObservateurRegles& observateur);
  ~Ecoute();
  Ecoute(const Ecoute&) = delete;
  Ecoute& operator=(const Ecoute&) = delete;
  // Null when nobody listens.
  static ObservateurRegles* observateur();

 private:
  ObservateurRegles* precedent_;
};

}  // namespace noxlux

#endif
