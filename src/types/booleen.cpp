#include "types/booleen.h"

#include "basics/assertion.h"
#include "basics/trace.h"

namespace noxlux {

Booleen::Booleen(char caractere) : valeur_(caractere == 'O') {
  exiger(estValide(caractere), "estValide(caractere)");
}

Booleen::Booleen(const byte* champ, std::size_t longueur) {
  exiger(champ != nullptr && longueur > 0, "champ != __null && longueur > 0");
  *this = Booleen(static_cast<char>(champ[0]));
}

void Booleen::afficher(std::FILE* sortie) const { std::fputs(vraiFaux(valeur_), sortie); }

void Booleen::dump(unsigned short module) const {
  Trace::ecrire(module, "  booleen = %s", vraiFaux(valeur_));
}

}  // namespace noxlux
