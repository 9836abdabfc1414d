#include "types/texte.h"

#include <cstring>

#include "basics/assertion.h"
#include "basics/trace.h"

namespace noxlux {

std::unique_ptr<byte[]> copierBytes(const void* source, std::size_t longueur) {
  if (longueur == 0) {
    return nullptr;
  }
  std::unique_ptr<byte[]> copie(new byte[longueur]);
  std::memcpy(copie.get(), source, longueur);
  return copie;
}

Texte::Texte(const byte* champ, std::size_t longueur)
    : texte_(reinterpret_cast<const char*>(champ), longueur) {}

void Texte::afficher(std::FILE* sortie) const { std::fputs(texte_.c_str(), sortie); }

void Texte::dump(unsigned short module) const { Trace::ecrire(module, "  texte = %s", texte_.c_str()); }

std::unique_ptr<byte[]> Texte::lireBytes(std::size_t& longueur) const {
  longueur = texte_.size();
  return copierBytes(texte_.data(), longueur);
}

namespace {

bool estCapitaleOuChiffre(char c) { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); }

// Canonical spelling of the ISO-8859-1 characters from 0xC0 on; the lower-case half repeats the upper.
constexpr const char* CANONIQUES[32] = {"A", "A", "A", "A", "A", "A", "AE", "C", "E",  "E", "E",
                                        "E", "I", "I", "I", "I", "D", "N",  "O", "O",  "O", "O",
                                        "O", "",  "O", "U", "U", "U", "U",  "Y", "TH", "SS"};

// The canonical spelling of one character; empty when it is neither a letter nor a digit.
std::string_view canonique(char& c) {
  if (c >= 'a' && c <= 'z') {
    c = static_cast<char>(c - 'a' + 'A');
  }
  if (estCapitaleOuChiffre(c)) {
    return {&c, 1};
  }
  const auto octet = static_cast<unsigned char>(c);
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
  exiger(estCapitaleOuChiffre(caractere),
         "(caractere >= '0' && caractere <= '9') || (caractere >= 'A' && caractere <= 'Z')");
}

void Code::dump(unsigned short module) const { Trace::ecrire(module, "  code = %s", lireTexte()); }

bool Code::estValide(const byte* octets, std::size_t n) {
  return estValide(std::string_view(reinterpret_cast<const char*>(octets), n));
}

bool Code::estValide(std::string_view texte) {
  for (const char c : texte) {
    if (!estCapitaleOuChiffre(c)) {
      return false;
    }
  }
  return true;
}

Code Code::extrairePartie(std::size_t debut, std::size_t longueur) const {
  return debut >= lireLongueur() ? Code() : Code(vue().substr(debut, longueur));
}

}  // namespace noxlux
