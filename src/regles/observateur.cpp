#include "regles/observateur.h"

namespace noxlux {

namespace {

thread_local constinit ObservateurRegles* courant = nullptr;

}  // namespace

Ecoute::Ecoute(ObservateurRegles& observateur) : precedent_(courant) { courant = &observateur; }

Ecoute::~Ecoute() { courant = precedent_; }

ObservateurRegles* Ecoute::observateur() { return courant; }

}  // namespace noxlux
