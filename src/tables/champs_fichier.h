// One value of a table line or an act record, whatever its type: how it is read, written, checked, printed,
// and the fewest bytes it takes in a file.
#ifndef NOXLUX_TABLES_CHAMPS_FICHIER_H
#define NOXLUX_TABLES_CHAMPS_FICHIER_H

#include <algorithm>
#include <array>
#include <cstdint>

#include "basics/codes_retour.h"
#include "basics/trace.h"
#include "fichier/ecrivain.h"
#include "fichier/lecteur.h"
#include "tables/ligne_table.h"

namespace noxlux::champs {

inline CodeRetour lire(Lecteur& lecteur, char& valeur) {
  unsigned char octet = 0;
  const CodeRetour cr = lecteur.lireUnsignedChar(octet);
  valeur = static_cast<char>(octet);
  return cr;
}
inline CodeRetour lire(Lecteur& lecteur, std::uint16_t& valeur) { return lecteur.lireUnsignedShort(valeur); }
inline CodeRetour lire(Lecteur& lecteur, std::uint32_t& valeur) { return lecteur.lireUnsignedLong(valeur); }
inline CodeRetour lire(Lecteur& lecteur, double& valeur) { return lecteur.lireDouble(valeur); }
inline CodeRetour lire(Lecteur& lecteur, DateBrute& valeur) { return lecteur.lireDate(valeur); }
CodeRetour lire(Lecteur& lecteur, TexteVariable& valeur);
template <std::size_t N>
CodeRetour lire(Lecteur& lecteur, CodeFixe<N>& valeur) {
  return lecteur.lireChaineFixe(valeur.caracteres.data(), N);
}
template <unsigned CIBLE, class P>
CodeRetour lire(Lecteur& lecteur, Plage<CIBLE, P>& valeur) {
  const CodeRetour cr = lire(lecteur, valeur.premiere);
  return cr == NOX_CR_OK ? lire(lecteur, valeur.nombre) : cr;
}
template <std::size_t N>
CodeRetour lire(Lecteur& lecteur, std::array<double, N>& valeurs) {
  CodeRetour cr = NOX_CR_OK;
  for (std::size_t i = 0; i < N && cr == NOX_CR_OK; ++i) {
    cr = lire(lecteur, valeurs[i]);
  }
  return cr;
}

CodeRetour ecrire(Ecrivain& ecrivain, char valeur);
CodeRetour ecrire(Ecrivain& ecrivain, std::uint16_t valeur);
CodeRetour ecrire(Ecrivain& ecrivain, std::uint32_t valeur);
CodeRetour ecrire(Ecrivain& ecrivain, double valeur);
CodeRetour ecrire(Ecrivain& ecrivain, const DateBrute& valeur);
CodeRetour ecrire(Ecrivain& ecrivain, const TexteVariable& valeur);
template <std::size_t N>
CodeRetour ecrire(Ecrivain& ecrivain, const CodeFixe<N>& valeur) {
  return ecrivain.ecrireChaineFixe(valeur.entier());
}
template <unsigned CIBLE, class P>
CodeRetour ecrire(Ecrivain& ecrivain, const Plage<CIBLE, P>& valeur) {
  const CodeRetour cr = ecrire(ecrivain, valeur.premiere);
  return cr == NOX_CR_OK ? ecrire(ecrivain, valeur.nombre) : cr;
}
template <std::size_t N>
CodeRetour ecrire(Ecrivain& ecrivain, const std::array<double, N>& valeurs) {
  CodeRetour cr = NOX_CR_OK;
  for (std::size_t i = 0; i < N && cr == NOX_CR_OK; ++i) {
    cr = ecrire(ecrivain, valeurs[i]);
  }
  return cr;
}

template <class T>
struct TailleMinimale {
  static_assert(std::is_arithmetic_v<T>);
  static constexpr std::uint32_t VALEUR = sizeof(T);
};
template <>
struct TailleMinimale<DateBrute> {
  static constexpr std::uint32_t VALEUR = 4;
};
template <>
struct TailleMinimale<TexteVariable> {
  static constexpr std::uint32_t VALEUR = 1;
};
template <std::size_t N>
struct TailleMinimale<CodeFixe<N>> {
  static constexpr std::uint32_t VALEUR = N;
};
template <unsigned CIBLE, class P>
struct TailleMinimale<Plage<CIBLE, P>> {
  static constexpr std::uint32_t VALEUR = sizeof(P) + sizeof(std::uint16_t);
};
template <std::size_t N>
struct TailleMinimale<std::array<double, N>> {
  static constexpr std::uint32_t VALEUR = N * sizeof(double);
};

// A code of one character or of several: filled if it must be, and valid.
bool controlerCode(std::string_view code, Controle controle);
bool controler(char valeur, Controle controle);
template <std::size_t N>
bool controler(const CodeFixe<N>& valeur, Controle controle) {
  return controle == Controle::Libre || controlerCode(valeur.entier(), controle);
}
bool controler(const TexteVariable& valeur, Controle controle);
bool controler(const DateBrute& valeur, Controle controle);
bool controler(double valeur, Controle controle);
bool controler(std::uint32_t valeur, Controle controle);
bool controler(std::uint16_t valeur, Controle controle);
template <unsigned CIBLE, class P>
bool controler(const Plage<CIBLE, P>& /*valeur*/, Controle /*controle*/) {
  return true;  // checked once the table it points into is there
}
template <std::size_t N>
bool controler(const std::array<double, N>& valeurs, Controle controle) {
  return std::all_of(valeurs.begin(), valeurs.end(), [&](double v) { return controler(v, controle); });
}

// One line of the trace: the label, then the value.
void dump(unsigned short module, const char* libelle, const char* separateur, char valeur);
void dump(unsigned short module, const char* libelle, const char* separateur, std::uint32_t valeur);
void dump(unsigned short module, const char* libelle, const char* separateur, std::uint16_t valeur);
void dump(unsigned short module, const char* libelle, const char* separateur, double valeur);
void dump(unsigned short module, const char* libelle, const char* separateur, const DateBrute& valeur);
void dump(unsigned short module, const char* libelle, const char* separateur, const TexteVariable& valeur);
template <std::size_t N>
void dump(unsigned short module, const char* libelle, const char* separateur, const CodeFixe<N>& valeur) {
  Trace::ecrire(module, "%s%s\"%.*s\"", libelle, separateur, static_cast<int>(N), valeur.entier().data());
}
template <unsigned CIBLE, class P>
void dump(unsigned short module, const char* libelle, const char* separateur, const Plage<CIBLE, P>& valeur) {
  Trace::ecrire(module, "%s%sposition = %lu, nombre = %u", libelle, separateur,
                static_cast<unsigned long>(valeur.premiere), valeur.nombre);
}
template <std::size_t N>
void dump(unsigned short module, const char* libelle, const char* separateur,
          const std::array<double, N>& valeurs) {
  for (std::size_t i = 0; i < N; ++i) {
    Trace::ecrire(module, "%s %u%s%f", libelle, static_cast<unsigned>(i + 1), separateur, valeurs[i]);
  }
}

}  // namespace noxlux::champs

#endif
