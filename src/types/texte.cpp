#include "types/texte.h"

#include "basics/assertion.h"
#include "basics/trace.h"

namespace noxlux {

Texte::Texte(const byte* champ, std::size_t longueur)
    : texte_(reinterpret_cast<const char*>(champ), longueur) {}

void Texte::afficher(std::FILE* sortie) const { std::fputs(texte_.c_str(), sortie); }

void Texte::dump(unsigned short module) const { Trace::ecrire(module, "  texte = %s", texte_.c_str()); }

namespace {

// Canonical spelling of the ISO-8859-1 characters from 0xC0 on; the lower-case half repeats the upper.
constexpr const char* CANONIQUES[32] = {"A", "A", "A", "A", "A", "A", "AE", "C", "E",  "E", "E",
                                        "E", "I", "I", "I", "I", "D", "N",  "O", "O",  "O", "O",
                                        "O", "",  "O", "U", "U", "U", "U",  "Y", "TH", "SS"};

// The canonical spelling of one character; empty when it is neither a letter nor a digit.
std::string_view canonique(char& c) {
  if (c >= 'a' && c <= 'z') {
    c = static_cast<char>(c - 'a' + 'A');
  }
  const auto octet = static_cast<byte>(c);
  if (estCapitaleOuChiffre(octet)) {
    return {&c, 1};
  }
  if (octet == 0xFF) {
    return "Y";
  }
  return octet >= 0xC0 ? std::string_view(CANONIQUES[octet & 0x1FU]) : std::string_view();
}

}  // namespace

void Texte::transformerFormeCanonique(bool separer) {
  std::string resultat;
  resultat.reserve(texte_.size() + 2);
  bool separation = false;
  for (char c : texte_) {
    const char original = c;
    const std::string_view forme = canonique(c);
    if (!forme.empty()) {
      if (separation && !resultat.empty()) {
        resultat += ' ';
      }
      separation = false;
      resultat += forme;
    } else if (separer) {
      separation = true;
    } else {
      resultat += original;
    }
  }
  texte_ = std::move(resultat);
}

Code::Code(char caractere) : Texte(std::string_view(&caractere, 1)) {
  exiger(estCapitaleOuChiffre(static_cast<byte>(caractere)),
         "(caractere >= '0' && caractere <= '9') || (caractere >= 'A' && caractere <= 'Z')");
}

void Code::dump(unsigned short module) const { Trace::ecrire(module, "  code = %s", lireTexte()); }

Code Code::extrairePartie(std::size_t debut, std::size_t longueur) const {
  return debut >= lireLongueur() ? Code() : Code(vue().substr(debut, longueur));
}

}  // namespace noxlux
