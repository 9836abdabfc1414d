#include "fichier/ecrivain.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "basics/assertion.h"

namespace noxlux {

Ecrivain::Ecrivain(std::FILE* fichier) : fichier_(fichier) { exiger(fichier != nullptr, "pFichier!=__null"); }

CodeRetour Ecrivain::ecrireBrut(const void* octets, std::size_t n) {
  return std::fwrite(octets, 1, n, fichier_) == n ? NOX_CR_OK : NOX_CR_ECRITURE_MODIF;
}

CodeRetour Ecrivain::ecrireOctets(const void* octets, std::size_t n) {
  tailleDonnees_ += static_cast<std::uint32_t>(n);
  return ecrireBrut(octets, n);
}

CodeRetour Ecrivain::positionner(std::int32_t position, int origine) {
  return std::fseek(fichier_, position, origine) == 0 ? NOX_CR_OK : NOX_CR_ECRITURE_MODIF;
}

CodeRetour Ecrivain::ecrireEnteteTable(std::string_view identifiant, std::uint32_t nombreLignes) {
  CodeRetour cr = ecrireChaineFixe(identifiant.substr(0, 3));
  if (cr == NOX_CR_OK) {
    cr = ecrireUnsignedLong(nombreLignes);
  }
  positionTaille_ = static_cast<std::int32_t>(std::ftell(fichier_));
  if (cr == NOX_CR_OK) {
    cr = positionTaille_ < 0 ? static_cast<CodeRetour>(NOX_CR_ECRITURE_MODIF) : ecrireUnsignedLong(0);
  }
  tailleDonnees_ = 0;
  return cr;
}

// Writes a number at a place passed before, and comes back to the end.
CodeRetour Ecrivain::ecrireEnRetour(std::int32_t position, std::uint32_t valeur) {
  const std::uint32_t taille = tailleDonnees_;
  CodeRetour cr = positionner(position, SEEK_SET);
  if (cr == NOX_CR_OK) {
    cr = ecrireUnsignedLong(valeur);
    tailleDonnees_ = taille;
  }
  return cr == NOX_CR_OK ? positionner(0, SEEK_END) : cr;
}

CodeRetour Ecrivain::ecrireTailleDonnees() { return ecrireEnRetour(positionTaille_, tailleDonnees_); }

CodeRetour Ecrivain::ecrirePositionActe(std::int32_t base, std::uint32_t rang) {
  constexpr std::int32_t PREMIERE_POSITION = 24;
  constexpr std::uint32_t TAILLE_LIGNE = 17;
  const std::int32_t fin = lirePositionFinFichier();
  if (fin < 0) {
    return NOX_CR_ECRITURE_MODIF;
  }
  return ecrireEnRetour(base + PREMIERE_POSITION + static_cast<std::int32_t>(TAILLE_LIGNE * rang),
                        static_cast<std::uint32_t>(fin));
}

std::int32_t Ecrivain::lirePositionFinFichier() {
  return positionner(0, SEEK_END) == NOX_CR_OK ? static_cast<std::int32_t>(std::ftell(fichier_)) : -1;
}

CodeRetour Ecrivain::ecrireCRC(std::uint16_t crc) {
  char texte[8];
  std::snprintf(texte, sizeof texte, "%04X", crc);
  return ecrireDebut({texte, 4});
}

CodeRetour Ecrivain::ecrireDebut(std::string_view texte) {
  const CodeRetour cr = positionner(0, SEEK_SET);
  return cr == NOX_CR_OK ? ecrireBrut(texte.data(), texte.size()) : cr;
}

CodeRetour Ecrivain::ecrireChaineFixe(std::string_view texte) {
  return ecrireOctets(texte.data(), texte.size());
}

CodeRetour Ecrivain::ecrireChaineVariable(std::string_view texte) {
  const CodeRetour cr = ecrireOctets(texte.data(), texte.size());
  return cr == NOX_CR_OK ? ecrireUnsignedChar(0) : cr;
}

template <class T>
CodeRetour Ecrivain::ecrireGrosBoutiste(T valeur) {
  byte octets[sizeof(T)];
  for (std::size_t i = 0; i < sizeof(T); ++i) {
    octets[i] = static_cast<byte>(valeur >> (8 * (sizeof(T) - 1 - i)));
  }
  return ecrireOctets(octets, sizeof octets);
}

CodeRetour Ecrivain::ecrireUnsignedChar(unsigned char valeur) { return ecrireGrosBoutiste(valeur); }
CodeRetour Ecrivain::ecrireUnsignedShort(std::uint16_t valeur) { return ecrireGrosBoutiste(valeur); }
CodeRetour Ecrivain::ecrireSignedShort(std::int16_t valeur) { return ecrireGrosBoutiste(valeur); }
CodeRetour Ecrivain::ecrireUnsignedLong(std::uint32_t valeur) { return ecrireGrosBoutiste(valeur); }
CodeRetour Ecrivain::ecrireSignedLong(std::int32_t valeur) { return ecrireGrosBoutiste(valeur); }

CodeRetour Ecrivain::ecrireDouble(double valeur) {
  byte octets[8];
  return encoderDecimal(valeur, octets) ? ecrireOctets(octets, sizeof octets)
                                        : static_cast<CodeRetour>(NOX_CR_ECRITURE_MODIF);
}

CodeRetour Ecrivain::ecrireDate(const DateBrute& date) {
  const byte octets[4] = {static_cast<byte>(date.annee >> 8), static_cast<byte>(date.annee & 0xFFU),
                          date.mois, date.jour};
  return ecrireOctets(octets, sizeof octets);
}

bool encoderDecimal(double valeur, byte (&octets)[8]) {
  constexpr std::size_t POSITIONS = 15;
  constexpr std::size_t DECIMALES_MAX = 8;
  constexpr unsigned POINT = 15;
  constexpr double SANS_POINT = 1e15;  // whole numbers need no point
  constexpr double AVEC_POINT = 1e14;
  const double absolue = std::fabs(valeur);
  double unites = std::round(absolue);
  if (!(unites < SANS_POINT)) {
    return false;
  }
  // As few decimals as give the value back exactly, else as many as there is room for.
  std::size_t decimales = 0;
  double puissance = 1;
  while (unites / puissance != absolue && decimales < DECIMALES_MAX) {
    const double suivantes = std::round(absolue * puissance * 10);
    if (!(suivantes < AVEC_POINT)) {
      break;
    }
    unites = suivantes;
    puissance *= 10;
    ++decimales;
  }
  std::array<unsigned, POSITIONS + 1> quartets{};
  quartets[0] = valeur < 0 ? 1 : 0;
  auto reste = static_cast<std::uint64_t>(unites);
  for (std::size_t i = 0; i < POSITIONS; ++i) {
    unsigned& quartet = quartets[POSITIONS - i];
    if (decimales != 0 && i == decimales) {
      quartet = POINT;
      continue;
    }
    quartet = static_cast<unsigned>(reste % 10);
    reste /= 10;
  }
  for (std::size_t i = 0; i < sizeof octets; ++i) {
    octets[i] = static_cast<byte>(quartets[2 * i] << 4 | quartets[2 * i + 1]);
  }
  return true;
}

}  // namespace noxlux
