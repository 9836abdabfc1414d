// The values of one type each: out of line, since all the line classes use them.
#include "tables/champs_fichier.h"

#include <new>

namespace noxlux::champs {

CodeRetour lire(Lecteur& lecteur, TexteVariable& valeur) {
  std::string_view texte;
  const CodeRetour cr = lecteur.lireChaineVariable(texte);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  try {
    valeur = TexteVariable(texte);
  } catch (const std::bad_alloc&) {
    Trace::erreur(TRACE_CHARGEMENT, "probleme d'allocation memoire : texte");
    return NOX_CR_MEMOIRE;
  }
  return NOX_CR_OK;
}

CodeRetour ecrire(Ecrivain& ecrivain, char valeur) {
  return ecrivain.ecrireUnsignedChar(static_cast<unsigned char>(valeur));
}

CodeRetour ecrire(Ecrivain& ecrivain, std::uint16_t valeur) { return ecrivain.ecrireUnsignedShort(valeur); }

CodeRetour ecrire(Ecrivain& ecrivain, std::uint32_t valeur) { return ecrivain.ecrireUnsignedLong(valeur); }

CodeRetour ecrire(Ecrivain& ecrivain, double valeur) { return ecrivain.ecrireDouble(valeur); }

CodeRetour ecrire(Ecrivain& ecrivain, const DateBrute& valeur) { return ecrivain.ecrireDate(valeur); }

CodeRetour ecrire(Ecrivain& ecrivain, const TexteVariable& valeur) {
  return ecrivain.ecrireChaineVariable(valeur.vue());
}

bool controlerCode(std::string_view code, Controle controle) {
  const bool facultatif = controle == Controle::CodeFacultatif;
  return Lecteur::controlerCode(code) && (facultatif || Lecteur::codeRenseigne(code));
}

bool controler(char valeur, Controle controle) {
  switch (controle) {
    case Controle::Libre:
      return true;
    case Controle::Booleen:
      return Lecteur::controlerBooleen(valeur);
    case Controle::Octet:
      return valeur == '\0' || Lecteur::controlerCode({&valeur, 1});
    default:
      return controlerCode({&valeur, 1}, controle);
  }
}

bool controler(const TexteVariable& valeur, Controle controle) {
  return controle == Controle::Libre || !valeur.estVide();
}

bool controler(const DateBrute& valeur, Controle controle) {
  return valeur.estValide() || (controle == Controle::DateFacultative && valeur.estNulle());
}

bool controler(double valeur, Controle controle) {
  switch (controle) {
    case Controle::Positif:
      return Lecteur::controlerCoefficient(valeur);
    case Controle::AuMoinsUn:
      return valeur >= 1;
    default:
      return true;
  }
}

bool controler(std::uint32_t valeur, Controle controle) {
  return controle != Controle::NonNul || valeur != 0;
}

bool controler(std::uint16_t valeur, Controle controle) {
  return controler(static_cast<std::uint32_t>(valeur), controle);
}

void dump(unsigned short module, const char* libelle, const char* separateur, char valeur) {
  Trace::ecrire(module, "%s%s%c", libelle, separateur, valeur == '\0' ? ' ' : valeur);
}

void dump(unsigned short module, const char* libelle, const char* separateur, std::uint32_t valeur) {
  Trace::ecrire(module, "%s%s%lu", libelle, separateur, static_cast<unsigned long>(valeur));
}

void dump(unsigned short module, const char* libelle, const char* separateur, std::uint16_t valeur) {
  dump(module, libelle, separateur, static_cast<std::uint32_t>(valeur));
}

void dump(unsigned short module, const char* libelle, const char* separateur, double valeur) {
  Trace::ecrire(module, "%s%s%f", libelle, separateur, valeur);
}

void dump(unsigned short module, const char* libelle, const char* separateur, const DateBrute& valeur) {
  Trace::ecrire(module, "%s%s%02u/%02u/%04u", libelle, separateur, valeur.jour, valeur.mois, valeur.annee);
}

void dump(unsigned short module, const char* libelle, const char* separateur, const TexteVariable& valeur) {
  Trace::ecrire(module, "%s%s%s", libelle, separateur, valeur.lireTexte());
}

}  // namespace noxlux::champs
