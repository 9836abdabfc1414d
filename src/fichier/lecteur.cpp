#include "fichier/lecteur.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <charconv>
#include <limits>
#include <new>

#include "basics/trace.h"
#include "types/texte.h"

namespace noxlux {

Lecteur::Lecteur(std::FILE* fichier) : descripteur_(-1) {
  exiger(fichier != nullptr, "fichier!=__null");
  descripteur_ = fileno(fichier);
  const off_t position = ftello(fichier);
  finTampon_ = position > 0 ? static_cast<std::uint64_t>(position) : 0;
  struct stat etat {};
  if (fstat(descripteur_, &etat) == 0 && etat.st_size > 0) {
    taille_ = static_cast<std::uint64_t>(etat.st_size);
  }
  taille_ = std::max(taille_, finTampon_);
}

CodeRetour Lecteur::positionner(std::uint32_t position) {
  if (position > taille_) {
    errno = EINVAL;  // as the system tells other places that do not exist
    return NOX_CR_LECTURE_REFERENCE;
  }
  const std::uint64_t debutTampon = finTampon_ - static_cast<std::uint64_t>(fin_ - tampon_);
  if (position >= debutTampon && position <= finTampon_) {
    curseur_ = tampon_ + (position - debutTampon);
  } else {
    curseur_ = fin_ = tampon_;
    finTampon_ = position;
    prochaineLecture_ = PREMIERE_LECTURE;
  }
  return NOX_CR_OK;
}

CodeRetour Lecteur::tableSuivante() {
  const std::uint64_t suivante = offset() + tailleTable_;
  return suivante > std::numeric_limits<std::uint32_t>::max()
             ? static_cast<CodeRetour>(NOX_CR_LECTURE_REFERENCE)
             : positionner(static_cast<std::uint32_t>(suivante));
}

// What follows in the file, in place of what was read. False at its end, or when it does not read.
bool Lecteur::remplir() {
  ssize_t lus = 0;
  do {
    lus = pread(descripteur_, tampon_, prochaineLecture_, static_cast<off_t>(finTampon_));
  } while (lus < 0 && errno == EINTR);
  curseur_ = tampon_;
  fin_ = tampon_ + std::max<ssize_t>(lus, 0);
  finTampon_ += static_cast<std::uint64_t>(fin_ - tampon_);
  prochaineLecture_ = CAPACITE;
  return fin_ != tampon_;
}

bool Lecteur::lireAuDela(unsigned char* cible, std::size_t n) {
  while (n != 0 && (curseur_ != fin_ || remplir())) {
    const std::size_t pris = std::min(n, static_cast<std::size_t>(fin_ - curseur_));
    std::memcpy(cible, curseur_, pris);
    curseur_ += pris;
    cible += pris;
    n -= pris;
  }
  return n == 0;
}

CodeRetour Lecteur::lireChaineVariable(std::string& texte, char fin) {
  position_ = static_cast<std::int32_t>(offset());
  texte.clear();
  try {
    while (curseur_ != fin_ || remplir()) {
      const unsigned char* const terminateur = std::find(curseur_, fin_, static_cast<unsigned char>(fin));
      texte.append(curseur_, terminateur);
      curseur_ = terminateur;
      if (terminateur != fin_) {
        ++curseur_;
        return NOX_CR_OK;
      }
    }
  } catch (const std::bad_alloc&) {
    Trace::erreur(TRACE_CHARGEMENT, "probleme d'allocation memoire : texte");
    return NOX_CR_MEMOIRE;
  }
  return NOX_CR_LECTURE_REFERENCE;
}

CodeRetour Lecteur::lireChaineVariable(std::string_view& texte) {
  const auto reste = static_cast<std::size_t>(fin_ - curseur_);
  const void* const terminateur = reste == 0 ? nullptr : std::memchr(curseur_, '\0', reste);
  if (terminateur != nullptr) {
    position_ = static_cast<std::int32_t>(offset());
    texte = {reinterpret_cast<const char*>(curseur_),
             static_cast<std::size_t>(static_cast<const unsigned char*>(terminateur) - curseur_)};
    curseur_ += texte.size() + 1;
    return NOX_CR_OK;
  }
  const CodeRetour cr = lireChaineVariable(texte_);
  texte = texte_;
  return cr;
}

CodeRetour Lecteur::lireDouble(double& valeur) {
  const byte* const octets = prendre(TAILLE_VALEUR);
  if (octets == nullptr) {
    return NOX_CR_LECTURE_REFERENCE;
  }
  valeur = convertirDecimal(octets);
  return NOX_CR_OK;
}

CodeRetour Lecteur::lireDate(DateBrute& date) {
  const byte* const octets = prendre(4);
  if (octets == nullptr) {
    return NOX_CR_LECTURE_REFERENCE;
  }
  date = {static_cast<std::uint16_t>(octets[0] << 8 | octets[1]), octets[2], octets[3]};
  return NOX_CR_OK;
}

unsigned long lireNombreDecimal(std::string_view texte) {
  const std::size_t debut = std::min(texte.find_first_not_of(' '), texte.size());
  unsigned long valeur = 0;
  std::from_chars(texte.data() + debut, texte.data() + texte.size(), valeur);
  return valeur;
}

CodeRetour Lecteur::lireCRC(std::uint16_t& crc) {
  char texte[4];
  if (positionner(0) != NOX_CR_OK || lireChaineFixe(texte, sizeof texte) != NOX_CR_OK) {
    return NOX_CR_LECTURE_REFERENCE;
  }
  std::uint16_t lu = 0;
  const auto [fin, faute] = std::from_chars(texte, texte + sizeof texte, lu, 16);
  if (faute != std::errc{} || fin != texte + sizeof texte) {
    return NOX_CR_LECTURE_REFERENCE;
  }
  crc = lu;
  return NOX_CR_OK;
}

CodeRetour Lecteur::lireEnteteTable(char (&identifiant)[4], std::uint32_t& nombreLignes,
                                    std::int32_t& offset) {
  if (reste() == 0) {
    Trace::ecrire(TRACE_CHARGEMENT, "Fin de fichier");
    return FIN_DE_FICHIER;
  }
  CodeRetour cr = lireChaineFixe(identifiant, 3);
  if (cr != NOX_CR_OK) {
    Trace::erreur(TRACE_CHARGEMENT, "ERREUR: probleme de lecture de l'identifiant");
    return cr;
  }
  identifiant[3] = '\0';
  if (!std::all_of(identifiant, identifiant + 3, [](char c) { return c >= '0' && c <= '9'; })) {
    Trace::erreur(TRACE_CHARGEMENT, "ERREUR: Identifiant de table non numerique, identifiant = %s",
                  identifiant);
    return NOX_CR_LECTURE_REFERENCE;
  }
  cr = lireUnsignedLong(nombreLignes);
  if (cr != NOX_CR_OK) {
    Trace::erreur(TRACE_CHARGEMENT, "ERREUR: probleme de lecture du nombre de lignes");
    return cr;
  }
  cr = lireUnsignedLong(tailleTable_);
  if (cr != NOX_CR_OK) {
    Trace::erreur(TRACE_CHARGEMENT, "ERREUR: probleme de lecture de la taille de la table");
    return cr;
  }
  constexpr auto POSITION_MAX = static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max());
  if (tailleTable_ > reste() || this->offset() > POSITION_MAX) {
    Trace::erreur(TRACE_CHARGEMENT, "ERREUR: la table depasse la fin du fichier, taille = %u", tailleTable_);
    return NOX_CR_LECTURE_REFERENCE;
  }
  offset = static_cast<std::int32_t>(this->offset());
  Trace::ecrire(TRACE_CHARGEMENT, "Taille de la table = %lu, offset des données = %ld",
                static_cast<unsigned long>(tailleTable_), static_cast<long>(offset));
  return NOX_CR_OK;
}

bool Lecteur::controlerCode(std::string_view texte) {
  std::size_t i = 0;
  while (i < texte.size() && estCapitaleOuChiffre(static_cast<byte>(texte[i]))) {
    ++i;
  }
  while (i < texte.size() && texte[i] == ' ') {
    ++i;
  }
  return i == texte.size();
}

bool Lecteur::codeRenseigne(std::string_view texte) {
  return texte.find_first_not_of(' ') != std::string_view::npos;
}

namespace {

// The text is read as a decimal number without its first point, then divided by the power of ten that the
// point stood for: one rounding, so that decimals come out as a compiler would read them.
double lireQuartets(const byte* octets) {
  constexpr std::size_t POSITIONS = 15;
  constexpr unsigned POINT = 15;
  std::array<unsigned, POSITIONS> chiffres{};
  for (std::size_t i = 0; i < POSITIONS; ++i) {
    const unsigned octet = octets[(i + 1) / 2];
    chiffres[i] = (i % 2 == 0) ? octet & 0x0FU : octet >> 4;
  }
  auto fin = chiffres.end();
  if (chiffres.back() == POINT) {
    --fin;
  }
  const auto point = std::find(chiffres.begin(), fin, POINT);
  auto decimales = point == fin ? 0 : fin - point - 1;
  double mantisse = 0;
  bool fraction = false;  // past a second point
  for (auto chiffre = chiffres.begin(); chiffre != fin; ++chiffre) {
    if (chiffre == point) {
      continue;
    }
    if (*chiffre == POINT && !fraction) {
      fraction = true;
      continue;
    }
    if (*chiffre > 9) {
      break;
    }
    mantisse = mantisse * 10 + *chiffre;
    decimales += fraction ? 1 : 0;
  }
  double diviseur = 1;
  for (; decimales > 0; --decimales) {
    diviseur *= 10;
  }
  const double valeur = mantisse / diviseur;
  return octets[0] >> 4 != 0 && valeur != 0 ? -valeur : valeur;
}

// What the 14 or 15 digits of the quarters of a word are worth: pairs of neighbours together, then pairs of
// pairs.
constexpr std::uint64_t valeurDesQuartets(std::uint64_t quartets) {
  quartets -= (quartets >> 4 & 0x0F0F0F0F0F0F0F0FU) * 6;
  quartets = (quartets & 0x00FF00FF00FF00FFU) + (quartets >> 8 & 0x00FF00FF00FF00FFU) * 100;
  quartets = (quartets & 0x0000FFFF0000FFFFU) + (quartets >> 16 & 0x0000FFFF0000FFFFU) * 10000;
  return (quartets & 0xFFFFFFFFU) + (quartets >> 32) * 100000000;
}

constexpr bool sontDesChiffres(std::uint64_t quartets) {
  // Six more carry into the next quarter from 10 on.
  constexpr std::uint64_t SIX = 0x0666666666666666U;
  return (((quartets + SIX) ^ quartets ^ SIX) & 0x1111111111111110U) == 0;
}

}  // namespace

// A number as it is always written, its digits with one point or none, is read a word at once.
double convertirDecimal(const byte* octets) {
  constexpr double PUISSANCES[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6, 1e7,
                                   1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14};
  constexpr std::uint64_t UNITES = 0x0111111111111111U;
  auto mot = lireMot<std::uint64_t>(octets);
  const bool negatif = mot >> 60 != 0;
  mot &= 0x0FFFFFFFFFFFFFFFU;
  const std::uint64_t points = mot & mot >> 1 & mot >> 2 & mot >> 3 & UNITES;
  unsigned decimales = 0;
  if (points != 0) {
    const auto position = static_cast<unsigned>(std::countr_zero(points));
    decimales = position / 4;
    const std::uint64_t fraction = (std::uint64_t{1} << position) - 1;
    mot = (mot >> 4 & ~fraction) | (mot & fraction);
  }
  if (!sontDesChiffres(mot)) [[unlikely]] {
    return lireQuartets(octets);
  }
  const double valeur = static_cast<double>(valeurDesQuartets(mot)) / PUISSANCES[decimales];
  return negatif && valeur != 0 ? -valeur : valeur;
}

}  // namespace noxlux
