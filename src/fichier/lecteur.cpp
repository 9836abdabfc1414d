#include "fichier/lecteur.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <limits>
#include <new>

#include "basics/trace.h"
#include "types/texte.h"

namespace noxlux {

Lecteur::Lecteur(std::FILE* fichier) : fichier_(fichier) {
  exiger(fichier != nullptr, "fichier!=__null");
  const off_t position = ftello(fichier);
  offset_ = position > 0 ? static_cast<std::uint64_t>(position) : 0;
  struct stat etat {};
  if (fstat(fileno(fichier), &etat) == 0 && etat.st_size > 0) {
    taille_ = static_cast<std::uint64_t>(etat.st_size);
  }
  taille_ = std::max(taille_, offset_);
}

CodeRetour Lecteur::positionner(std::uint32_t position) {
  if (position > taille_) {
    errno = EINVAL;  // as the system tells other places that do not exist
    return NOX_CR_LECTURE_REFERENCE;
  }
  if (fseeko(fichier_, static_cast<off_t>(position), SEEK_SET) != 0) {
    return NOX_CR_LECTURE_REFERENCE;
  }
  offset_ = position;
  return NOX_CR_OK;
}

CodeRetour Lecteur::tableSuivante() {
  const std::uint64_t suivante = offset_ + tailleTable_;
  return suivante > std::numeric_limits<std::uint32_t>::max()
             ? static_cast<CodeRetour>(NOX_CR_LECTURE_REFERENCE)
             : positionner(static_cast<std::uint32_t>(suivante));
}

// Files are read by one thread at a time: the streams need no lock.
bool Lecteur::lireOctets(void* cible, std::size_t n) {
  const std::size_t lus = fread_unlocked(cible, 1, n, fichier_);
  offset_ += lus;
  return lus == n;
}

template <class T>
CodeRetour Lecteur::lireGrosBoutiste(T& valeur) {
  position_ = static_cast<std::int32_t>(offset_);
  byte octets[sizeof(T)];
  if (!lireOctets(octets, sizeof octets)) {
    return NOX_CR_LECTURE_REFERENCE;
  }
  std::uint32_t lue = 0;
  for (const byte octet : octets) {
    lue = lue << 8 | octet;
  }
  valeur = static_cast<T>(lue);
  return NOX_CR_OK;
}

CodeRetour Lecteur::lireChaineFixe(char* tampon, std::size_t n) {
  const bool lue = lireOctets(tampon, n);
  position_ = static_cast<std::int32_t>(offset_);
  return lue ? NOX_CR_OK : NOX_CR_LECTURE_REFERENCE;
}

CodeRetour Lecteur::lireChaineVariable(std::string& texte, char fin) {
  position_ = static_cast<std::int32_t>(offset_);
  texte.clear();
  const int terminateur = static_cast<unsigned char>(fin);
  int c = EOF;
  try {
    while ((c = getc_unlocked(fichier_)) != EOF && c != terminateur) {
      texte.push_back(static_cast<char>(c));
    }
  } catch (const std::bad_alloc&) {
    Trace::erreur(TRACE_CHARGEMENT, "probleme d'allocation memoire : texte");
    return NOX_CR_MEMOIRE;
  }
  offset_ += texte.size() + (c == EOF ? 0 : 1);
  return c == EOF ? NOX_CR_LECTURE_REFERENCE : NOX_CR_OK;
}

CodeRetour Lecteur::lireChaineVariable(std::string_view& texte) {
  const CodeRetour cr = lireChaineVariable(tampon_);
  texte = tampon_;
  return cr;
}

CodeRetour Lecteur::lireUnsignedChar(unsigned char& valeur) { return lireGrosBoutiste(valeur); }
CodeRetour Lecteur::lireUnsignedShort(std::uint16_t& valeur) { return lireGrosBoutiste(valeur); }
CodeRetour Lecteur::lireSignedShort(std::int16_t& valeur) { return lireGrosBoutiste(valeur); }
CodeRetour Lecteur::lireUnsignedLong(std::uint32_t& valeur) { return lireGrosBoutiste(valeur); }
CodeRetour Lecteur::lireSignedLong(std::int32_t& valeur) { return lireGrosBoutiste(valeur); }

CodeRetour Lecteur::lireDouble(double& valeur) {
  position_ = static_cast<std::int32_t>(offset_);
  byte octets[8];
  if (!lireOctets(octets, sizeof octets)) {
    return NOX_CR_LECTURE_REFERENCE;
  }
  valeur = convertirDecimal(octets);
  return NOX_CR_OK;
}

CodeRetour Lecteur::lireDate(DateBrute& date) {
  position_ = static_cast<std::int32_t>(offset_);
  byte octets[4];
  if (!lireOctets(octets, sizeof octets)) {
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
  if (tailleTable_ > reste() || offset_ > POSITION_MAX) {
    Trace::erreur(TRACE_CHARGEMENT, "ERREUR: la table depasse la fin du fichier, taille = %u", tailleTable_);
    return NOX_CR_LECTURE_REFERENCE;
  }
  offset = static_cast<std::int32_t>(offset_);
  Trace::ecrire(TRACE_CHARGEMENT, "Taille de la table = %lu, offset des données = %ld",
                static_cast<unsigned long>(tailleTable_), static_cast<long>(offset));
  return NOX_CR_OK;
}

bool Lecteur::controlerCode(std::string_view texte) {
  const std::string_view code = texte.substr(0, texte.find(' '));
  return Code::estValide(code) && texte.find_first_not_of(' ', code.size()) == std::string_view::npos;
}

bool Lecteur::codeRenseigne(std::string_view texte) {
  return texte.find_first_not_of(' ') != std::string_view::npos;
}

// The text is read as a decimal number without its first point, then divided by the power of ten that the
// point stood for: one rounding, so that decimals come out as a compiler would read them.
double convertirDecimal(const byte (&octets)[8]) {
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

}  // namespace noxlux
