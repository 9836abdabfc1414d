#include "ctrl_in/champ.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <type_traits>

#include "basics/assertion.h"
#include "basics/trace.h"
#include "types/booleen.h"
#include "types/date.h"
#include "types/decimal.h"

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

// What a byte may be, a bit each: the classes of a field are those of its bytes together.
constexpr byte CHIFFRE = 1;
constexpr byte CAPITALE = 2;
constexpr byte ESPACE = 4;
constexpr byte AUTRE = 8;
constexpr auto CLASSES = [] {
  std::array<byte, 256> classes{};
  for (std::size_t i = 0; i < classes.size(); ++i) {
    const auto octet = static_cast<byte>(i);
    classes[i] = octet == ' '                   ? ESPACE
                 : !estCapitaleOuChiffre(octet) ? AUTRE
                 : octet <= '9'                 ? CHIFFRE
                                                : CAPITALE;
  }
  return classes;
}();

byte classesDe(Octets donnees) {
  byte classes = 0;
  for (const byte b : donnees) {
    classes = static_cast<byte>(classes | CLASSES[b]);
  }
  return classes;
}

// Shows the first byte that is of none of the classes.
CodeRetour refuserCaractere(Octets donnees, byte permises, FormatVerifie<byte> format) {
  const auto refuse = std::ranges::find_if(donnees, [=](byte b) { return (CLASSES[b] & permises) == 0; });
  Trace::erreur(TRACE_PARAMETRES, format, *refuse);
  return NOX_CR_CHAMP_INVALIDE;
}

template <class T>
constexpr Champ::Type TYPE_DE = Champ::Type::Aucun;
template <>
constexpr Champ::Type TYPE_DE<Code> = Champ::Type::Code;
template <>
constexpr Champ::Type TYPE_DE<Texte> = Champ::Type::Texte;
template <>
constexpr Champ::Type TYPE_DE<Booleen> = Champ::Type::Booleen;
template <>
constexpr Champ::Type TYPE_DE<Date> = Champ::Type::Date;
template <>
constexpr Champ::Type TYPE_DE<Nombre> = Champ::Type::Nombre;
template <>
constexpr Champ::Type TYPE_DE<Montant> = Champ::Type::Montant;
template <>
constexpr Champ::Type TYPE_DE<Coefficient> = Champ::Type::Coefficient;

// `classes` may tell more than the bytes of a code: a field is looked at before its padding is taken off.
CodeRetour convertir(Octets donnees, byte classes, Code& code) {
  if ((classes & (ESPACE | AUTRE)) != 0 && !Code::estValide(donnees.data(), donnees.size())) {
    return refuser("ERREUR: le champ [%s] n'est pas un code valide.", donnees);
  }
  code.affecter(donnees.data(), donnees.size());
  return NOX_CR_OK;
}

CodeRetour convertir(Octets donnees, Champ::Type /*type*/, Texte& texte) {
  texte.affecter(donnees.data(), donnees.size());
  return NOX_CR_OK;
}

CodeRetour convertir(Octets donnees, Champ::Type /*type*/, Booleen& booleen) {
  if (donnees.size() != 1 || !Booleen::estValide(static_cast<char>(donnees.front()))) {
    return refuser("ERREUR: le champ [%s] n'est pas un booléen valide.", donnees);
  }
  booleen = Booleen(donnees.data(), donnees.size());
  return NOX_CR_OK;
}

CodeRetour convertir(Octets donnees, Champ::Type /*type*/, Date& date) {
  const Date lue(donnees.data(), donnees.size());
  if (!lue.ok()) {
    return refuser("ERREUR: date (%s) invalide.", donnees);
  }
  date = lue;
  return NOX_CR_OK;
}

// The other types tell by themselves whether they could be built.
template <class T>
CodeRetour convertir(Octets donnees, Champ::Type type, T& valeur) {
  T lue;
  if constexpr (std::is_same_v<T, Coefficient>) {
    lue = T(donnees.data(), donnees.size(),
            type == Champ::Type::Taux ? Coefficient::DECIMALES_TAUX : Coefficient::DECIMALES);
  } else {
    lue = T(donnees.data(), donnees.size());
  }
  if (!lue.ok()) {
    Trace::erreur(TRACE_PARAMETRES, "ERREUR: Construction type simple (%d) impossible",
                  static_cast<int>(type));
    return NOX_CR_MEMOIRE;
  }
  valeur = lue;
  return NOX_CR_OK;
}

template <class T>
CodeRetour convertirEn(Octets donnees, Champ::Type type, byte classes, T& valeur) {
  if constexpr (std::is_same_v<T, Code>) {
    return convertir(donnees, classes, valeur);
  } else {
    return convertir(donnees, type, valeur);
  }
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
  byte classes = AUTRE;
  return controler(donnees, classes);
}

// `classes` becomes those of the field when its format had them looked at.
inline CodeRetour Champ::controler(Octets donnees, byte& classes) const {
  exiger(donnees.data() != nullptr, "donnees != __null");
  if (donnees.size() < tailleMin_ || (tailleMax_ != 0 && donnees.size() > tailleMax_)) [[unlikely]] {
    return refuserTaille(donnees.size());
  }
  const CodeRetour cr = controlerFormat(donnees, classes);
  return cr == NOX_CR_OK && !valeursAutorisees_.empty() ? controlerValeurs(donnees) : cr;
}

CodeRetour Champ::refuserTaille(std::size_t longueur) const {
  if (longueur < tailleMin_) {
    Trace::erreur(TRACE_PARAMETRES, "ERREUR: taille des donnees (%u) inferieure au minimum (%u).",
                  static_cast<unsigned>(longueur), tailleMin_);
  } else {
    Trace::erreur(TRACE_PARAMETRES,
                  "Champ::controler: ERREUR: taille des donnees (%u) superieure au maximum (%u).",
                  static_cast<unsigned>(longueur), tailleMax_);
  }
  return NOX_CR_CHAMP_INVALIDE;
}

inline CodeRetour Champ::controlerFormat(Octets donnees, byte& classes) const {
  constexpr byte ALPHANUMERIQUE = CHIFFRE | CAPITALE | ESPACE;
  switch (format_) {
    case Format::Alphanumerique:
      classes = classesDe(donnees);
      return (classes & AUTRE) == 0
                 ? CodeRetour{NOX_CR_OK}
                 : refuserCaractere(donnees, ALPHANUMERIQUE,
                                    "ERREUR: caractere (%c) interdit dans le format alphanumerique.");
    case Format::Numerique:
      classes = classesDe(donnees);
      return (classes & ~CHIFFRE) == 0
                 ? CodeRetour{NOX_CR_OK}
                 : refuserCaractere(donnees, CHIFFRE,
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
  if (std::any_of(valeursAutorisees_.begin(), valeursAutorisees_.end(), estLaMeme)) {
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

template <class T>
bool Champ::estDecritComme() const {
  return type_ == TYPE_DE<T> || (std::is_same_v<T, Coefficient> && type_ == Type::Taux);
}

CodeRetour Champ::refuserType() const {
  if (type_ > Type::Aucun) {
    Trace::erreur(TRACE_PARAMETRES, "ERREUR: Type simple (%d) inconnu", static_cast<int>(type_));
  } else {
    Trace::erreur(TRACE_PARAMETRES, "ERREUR: type de champ différent de celui de la fonction");
  }
  return NOX_CR_INCOHERENCE;
}

// What a value of the described type would refuse.
CodeRetour Champ::controlerType(Octets donnees) const {
  const auto essayer = [&]<class T>(T valeur) { return convertirEn(donnees, type_, AUTRE, valeur); };
  switch (type_) {
    case Type::Code:
      return essayer(Code());
    case Type::Booleen:
      return essayer(Booleen());
    case Type::Date:
      return essayer(Date());
    case Type::Nombre:
      return essayer(Nombre());
    case Type::Montant:
      return essayer(Montant());
    case Type::Coefficient:
    case Type::Taux:
      return essayer(Coefficient());
    case Type::Texte:
    case Type::Aucun:
      break;
  }
  return NOX_CR_OK;
}

template <class T>
CodeRetour Champ::transformer(Octets donnees, T& valeur) const {
  byte classes = AUTRE;
  const CodeRetour cr = controler(donnees, classes);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  if (type_ == Type::Aucun) {
    valeur = T();
    return NOX_CR_OK;
  }
  if (estDecritComme<T>()) {
    return convertirEn(reduire(donnees), type_, classes, valeur);
  }
  // The content comes first: what the host can mend is told before what the reference describes otherwise.
  const CodeRetour contenu = controlerType(reduire(donnees));
  return contenu != NOX_CR_OK ? contenu : refuserType();
}

template CodeRetour Champ::transformer(Octets donnees, Code& valeur) const;
template CodeRetour Champ::transformer(Octets donnees, Texte& valeur) const;
template CodeRetour Champ::transformer(Octets donnees, Booleen& valeur) const;
template CodeRetour Champ::transformer(Octets donnees, Date& valeur) const;
template CodeRetour Champ::transformer(Octets donnees, Nombre& valeur) const;
template CodeRetour Champ::transformer(Octets donnees, Montant& valeur) const;
template CodeRetour Champ::transformer(Octets donnees, Coefficient& valeur) const;

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
