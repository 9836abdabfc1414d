#include "ctrl_in/champ.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "basics/assertion.h"
#include "basics/trace.h"

namespace noxlux {

namespace {

constexpr const char* NOMS_TYPES[] = {"Code",        "Texte",   "Booleen",     "Date",
                                      "Nombre",      "Montant", "Coefficient", "Coefficient (taux)",
                                      "(aucun type)"};
constexpr char LETTRES_FORMATS[] = {'A', 'N', 'D', 'E', '*'};

// A refused field, shown in the trace. The text is made only when it will be written.
CodeRetour refuser(FormatVerifie<const char*> format, Octets donnees) {
  if (Trace::niveau(TRACE_PARAMETRES) != 0) {
    Trace::erreur(TRACE_PARAMETRES, format, Zone::dumpChamp(donnees).c_str());
  }
  return NOX_CR_CHAMP_INVALIDE;
}

bool estChiffre(byte b) { return b >= '0' && b <= '9'; }
bool estAlphanumerique(byte b) { return b == ' ' || (b >= 'A' && b <= 'Z') || estChiffre(b); }

CodeRetour controlerCaracteres(Octets donnees, bool (*estPermis)(byte), FormatVerifie<byte> format) {
  const auto interdit = std::find_if_not(donnees.begin(), donnees.end(), estPermis);
  if (interdit == donnees.end()) {
    return NOX_CR_OK;
  }
  Trace::erreur(TRACE_PARAMETRES, format, *interdit);
  return NOX_CR_CHAMP_INVALIDE;
}

template <class T, class... Precision>
bool construire(ValeurChamp& valeur, Octets donnees, Precision... precision) {
  return valeur.emplace<T>(donnees.data(), donnees.size(), precision...).ok();
}

}  // namespace

CodeRetour Champ::initialiser(Format format, Type type, std::uint16_t tailleMin, std::uint16_t tailleMax,
                              const ListeCodes& valeurs) {
  try {
    std::vector<std::string> copie;
    copie.reserve(valeurs.lireNombreElements());
    for (const Code& valeur : valeurs) {
      copie.emplace_back(valeur.vue());
    }
    valeursAutorisees_ = std::move(copie);
  } catch (const std::bad_alloc&) {
    return NOX_CR_MEMOIRE;
  }
  format_ = format;
  type_ = type;
  tailleMin_ = tailleMin;
  tailleMax_ = tailleMax;
  return NOX_CR_OK;
}

CodeRetour Champ::controler(Octets donnees) const {
  exiger(donnees.data() != nullptr, "donnees != __null");
  CodeRetour cr = controlerTaille(donnees.size());
  if (cr == NOX_CR_OK) {
    cr = controlerFormat(donnees);
  }
  return cr == NOX_CR_OK ? controlerValeurs(donnees) : cr;
}

CodeRetour Champ::controlerTaille(std::size_t longueur) const {
  if (tailleMin_ != 0 && longueur < tailleMin_) {
    Trace::erreur(TRACE_PARAMETRES, "ERREUR: taille des donnees (%u) inferieure au minimum (%u).",
                  static_cast<unsigned>(longueur), tailleMin_);
    return NOX_CR_CHAMP_INVALIDE;
  }
  if (tailleMax_ != 0 && longueur > tailleMax_) {
    Trace::erreur(TRACE_PARAMETRES,
                  "Champ::controler: ERREUR: taille des donnees (%u) superieure au maximum (%u).",
                  static_cast<unsigned>(longueur), tailleMax_);
    return NOX_CR_CHAMP_INVALIDE;
  }
  return NOX_CR_OK;
}

CodeRetour Champ::controlerFormat(Octets donnees) const {
  switch (format_) {
    case Format::Alphanumerique:
      return controlerCaracteres(donnees, estAlphanumerique,
                                 "ERREUR: caractere (%c) interdit dans le format alphanumerique.");
    case Format::Numerique:
      return controlerCaracteres(donnees, estChiffre,
                                 "ERREUR: caractere (%c) interdit dans le format numerique.");
    case Format::Date:
      return Date::estValide(donnees.data(), donnees.size())
                 ? CodeRetour{NOX_CR_OK}
                 : refuser("ERREUR: date (%s) invalide.", donnees);
    case Format::Libre:
    case Format::Indifferent:
      return NOX_CR_OK;
  }
  Trace::erreur(TRACE_PARAMETRES, "ERREUR: format inconnu (%d).", static_cast<int>(format_));
  return NOX_CR_INCOHERENCE;
}

CodeRetour Champ::controlerValeurs(Octets donnees) const {
  const auto estLaMeme = [donnees](const std::string& valeur) {
    return valeur.size() == donnees.size() && std::memcmp(valeur.data(), donnees.data(), valeur.size()) == 0;
  };
  if (valeursAutorisees_.empty() ||
      std::any_of(valeursAutorisees_.begin(), valeursAutorisees_.end(), estLaMeme)) {
    return NOX_CR_OK;
  }
  return refuser("ERREUR: le champ [%s] ne fait pas partie des valeurs autorisées.", donnees);
}

Octets Champ::reduire(Octets donnees) const {
  switch (format_) {
    case Format::Numerique:
      while (donnees.size() > 1 && donnees.front() == '0') {
        donnees = donnees.subspan(1);
      }
      return donnees;
    case Format::Alphanumerique:
    case Format::Libre:
      while (!donnees.empty() && donnees.back() == ' ') {
        donnees = donnees.first(donnees.size() - 1);
      }
      return donnees;
    case Format::Date:
    case Format::Indifferent:
      break;
  }
  return donnees;
}

CodeRetour Champ::transformer(Octets donnees, ValeurChamp& valeur) const {
  const CodeRetour cr = controler(donnees);
  return cr == NOX_CR_OK ? convertir(reduire(donnees), valeur) : cr;
}

CodeRetour Champ::convertir(Octets donnees, ValeurChamp& valeur) const {
  bool construite = false;
  switch (type_) {
    case Type::Code:
      if (!Code::estValide(donnees.data(), donnees.size())) {
        return refuser("ERREUR: le champ [%s] n'est pas un code valide.", donnees);
      }
      construite = construire<Code>(valeur, donnees);
      break;
    case Type::Texte:
      construite = construire<Texte>(valeur, donnees);
      break;
    case Type::Booleen:
      if (donnees.size() != 1 || !Booleen::estValide(static_cast<char>(donnees.front()))) {
        return refuser("ERREUR: le champ [%s] n'est pas un booléen valide.", donnees);
      }
      construite = construire<Booleen>(valeur, donnees);
      break;
    case Type::Date:
      construite = construire<Date>(valeur, donnees);
      break;
    case Type::Nombre:
      construite = construire<Nombre>(valeur, donnees);
      break;
    case Type::Montant:
      construite = construire<Montant>(valeur, donnees);
      break;
    case Type::Coefficient:
      construite = construire<Coefficient>(valeur, donnees, Coefficient::DECIMALES);
      break;
    case Type::Taux:
      construite = construire<Coefficient>(valeur, donnees, Coefficient::DECIMALES_TAUX);
      break;
    case Type::Aucun:
      valeur = std::monostate();
      return NOX_CR_OK;
    default:
      Trace::erreur(TRACE_PARAMETRES, "ERREUR: Type simple (%d) inconnu", static_cast<int>(type_));
      return NOX_CR_INCOHERENCE;
  }
  if (!construite) {
    Trace::erreur(TRACE_PARAMETRES, "ERREUR: Construction type simple (%d) impossible",
                  static_cast<int>(type_));
    return NOX_CR_MEMOIRE;
  }
  return NOX_CR_OK;
}

void Champ::dump() const {
  const auto format = static_cast<std::size_t>(format_);
  const auto type = static_cast<std::size_t>(type_);
  Trace::ecrire(TRACE_PARAMETRES, "format = %c, type = %s, tailleMin = %u, tailleMax = %u",
                format < std::size(LETTRES_FORMATS) ? LETTRES_FORMATS[format] : '?',
                type < std::size(NOMS_TYPES) ? NOMS_TYPES[type] : "?", tailleMin_, tailleMax_);
  for (const std::string& valeur : valeursAutorisees_) {
    Trace::ecrire(TRACE_PARAMETRES, "  valeur autorisée = %s", valeur.c_str());
  }
}

}  // namespace noxlux
