/*
 * noxlux.hpp - the same library for C++17: requests built and answers read by the names of fields.
 *
 *   noxlux::Reference ccam("/etc/cabinet");                    // the directory of orvan.ini
 *   using namespace noxlux::champ;
 *   auto prix = ccam.consulter(noxlux::CCAM_37, {{acte, "HHFA001"}, {activite, "1"}, {phase, "0"}},
 *                                   noxlux::Date(2026, 1, 15));
 *   std::cout << prix[montant].euros();
 *
 * Header only, over noxlux.h. What it adds:
 *   - Names. noxlux::champ names the fields, noxlux::entree and noxlux::reponse the groups, and noxlux the
 *     functions by their identifiers. They are generated from the descriptions of the zones: a name that does
 *     not exist, a field that the request or the answer does not have, or a value of another type than the
 *     field's, does not compile.
 *   - Types. Codes and texts are std::string_view (ISO-8859-1; enUtf8 converts), whole numbers long, and
 *     amounts, coefficients, rates and dates types of their own that do not mix.
 *   - Owners. Reference loads the library and unloads it; Reponse owns an answer zone and gives views into
 * it, which live as long as it does.
 *   - Erreur, thrown for every code that is not an answer, with the code, its name and what it means in
 * French. Memory: a request takes one block for its bytes, an answer none beside the library's own. As the
 * library itself: one Reference a process, threads as the C header tells.
 */
#ifndef NOXLUX_NOXLUX_HPP
#define NOXLUX_NOXLUX_HPP

#include <noxlux/noxlux.h>

#include <charconv>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace noxlux {

// --- Values ---

// Euros and cents.
struct Montant {
  long centimes = 0;
  constexpr double euros() const { return static_cast<double>(centimes) / 100; }
};
// Three decimals.
struct Coefficient {
  long milliemes = 0;
  constexpr double valeur() const { return static_cast<double>(milliemes) / 1000; }
};
// Two decimals: Taux{70} is 70 %.
struct Taux {
  long centiemes = 0;
  constexpr double valeur() const { return static_cast<double>(centiemes) / 100; }
};
struct Date {
  int annee = 0, mois = 0, jour = 0;
  constexpr Date() = default;
  constexpr Date(int a, int m, int j) : annee(a), mois(m), jour(j) {}
  constexpr bool estRenseignee() const { return annee != 0; }
};
constexpr bool operator==(Montant a, Montant b) { return a.centimes == b.centimes; }
constexpr bool operator==(Coefficient a, Coefficient b) { return a.milliemes == b.milliemes; }
constexpr bool operator==(Taux a, Taux b) { return a.centiemes == b.centiemes; }
constexpr bool operator==(Date a, Date b) {
  return a.annee == b.annee && a.mois == b.mois && a.jour == b.jour;
}

// A text of the library, for a program that speaks UTF-8.
inline std::string enUtf8(std::string_view latin1) {
  std::string utf8;
  for (const char c : latin1) {
    const auto octet = static_cast<unsigned char>(c);
    if (octet < 0x80) {
      utf8 += c;
    } else {
      utf8 += static_cast<char>(0xC0U | octet >> 6U);
      utf8 += static_cast<char>(0x80U | (octet & 0x3FU));
    }
  }
  return utf8;
}

// --- Descriptions: what the generated names are made of ---

namespace detail {

template <class N, char T, bool REPETE = false>
struct Champ {
  using Nom = N;
  static constexpr char TYPE = T;
  static constexpr bool EST_REPETE = REPETE;
};

constexpr std::size_t ABSENT = static_cast<std::size_t>(-1);

template <unsigned NUMERO, class... C>
struct Groupe {
  static constexpr unsigned numero = NUMERO;
  static constexpr std::size_t TAILLE = sizeof...(C);

  template <class Nom>
  static constexpr std::size_t rang() {
    constexpr bool EGAUX[] = {std::is_same_v<typename C::Nom, Nom>...};
    for (std::size_t i = 0; i < TAILLE; ++i) {
      if (EGAUX[i]) {
        return i;
      }
    }
    return ABSENT;
  }
  static constexpr char type(std::size_t rang) {
    constexpr char TYPES[] = {C::TYPE...};
    return TYPES[rang];
  }
  static constexpr bool estRepete(std::size_t rang) {
    constexpr bool REPETES[] = {C::EST_REPETE...};
    return REPETES[rang];
  }
};

template <class G, class Nom>
inline constexpr bool A_CHAMP = G::template rang<Nom>() != ABSENT;

template <class... G>
struct Groupes {
  static constexpr std::size_t NOMBRE = sizeof...(G);
  template <class Cherche>
  static constexpr bool contient = (std::is_same_v<G, Cherche> || ...);
};

// The first group of a list that has a field of that name.
template <class Nom, class Liste>
struct GroupeDuChamp {
  static_assert(!std::is_same_v<Liste, Groupes<>>, "no group of this answer has a field of that name");
};
template <class Nom, class G, class... Suite>
struct GroupeDuChamp<Nom, Groupes<G, Suite...>>
    : std::conditional_t<A_CHAMP<G, Nom>, std::enable_if<true, G>, GroupeDuChamp<Nom, Groupes<Suite...>>> {};

template <class E, class R>
struct Fonction {
  using Entrees = E;
  using Reponses = R;
};

template <class E>
struct PremierGroupe;
template <class G, class... Suite>
struct PremierGroupe<Groupes<G, Suite...>> {
  using type = G;
};

// The only group of most requests.
template <class F>
using GroupeDe = typename PremierGroupe<typename F::Entrees>::type;

// The C++ type of a field.
template <char T>
struct TypeDe {
  using type = std::string_view;
};
template <>
struct TypeDe<'N'> {
  using type = long;
};
template <>
struct TypeDe<'M'> {
  using type = Montant;
};
template <>
struct TypeDe<'F'> {
  using type = Coefficient;
};
template <>
struct TypeDe<'X'> {
  using type = Taux;
};
template <>
struct TypeDe<'D'> {
  using type = Date;
};
template <>
struct TypeDe<'B'> {
  using type = bool;
};
template <class G, class Nom>
using TypeChamp = typename TypeDe<G::type(G::template rang<Nom>())>::type;

}  // namespace detail
}  // namespace noxlux

#include <noxlux/noms.hpp>

namespace noxlux {

// --- Errors ---

class Erreur : public std::runtime_error {
 public:
  explicit Erreur(unsigned short code)
      : std::runtime_error(hexadecimal(code) + " : " + signification(code)), code_(code) {}

  unsigned short code() const { return code_; }
  // Of a code that carries a position, the name of its family.
  const char* nom() const {
    const detail::Code* const exact = chercher(code_);
    const detail::Position* const famille = position(code_);
    const detail::Code* const base =
        exact == nullptr && famille != nullptr ? chercher(static_cast<unsigned short>(famille->base)) : exact;
    return base == nullptr ? "" : base->nom;
  }
  std::string texte() const { return signification(code_); }

  static std::string hexadecimal(unsigned short code) {
    std::string texte = "0x0000";
    for (std::size_t i = 5; i >= 2; --i, code = static_cast<unsigned short>(code >> 4U)) {
      texte[i] = "0123456789ABCDEF"[code & 0xFU];
    }
    return texte;
  }
  // In UTF-8.
  static std::string signification(unsigned short code) {
    const detail::Code* const exact = chercher(code);
    if (exact != nullptr && *exact->texte != '\0') {
      return exact->texte;
    }
    const detail::Position* const famille = position(code);
    return famille == nullptr ? "code inconnu"
                              : famille->debut + std::to_string(code - famille->base) + famille->suite;
  }

 private:
  static const detail::Code* chercher(unsigned short code) {
    for (const detail::Code& connu : detail::CODES) {
      if (connu.code == code) {
        return &connu;
      }
    }
    return nullptr;
  }
  static const detail::Position* position(unsigned short code) {
    for (const detail::Position& famille : detail::POSITIONS) {
      if (code >= famille.base && code < famille.fin) {
        return &famille;
      }
    }
    return nullptr;
  }
  unsigned short code_;
};

// --- Requests ---

// One field of a group and its value: {acte, "HHFA001"}. A text is looked at until the group is written.
template <class G>
class Donnee {
 public:
  template <class Nom, class = std::enable_if_t<detail::A_CHAMP<G, Nom>>>
  Donnee(Nom, detail::TypeChamp<G, Nom> valeur) : rang_(G::template rang<Nom>()) {
    constexpr char TYPE = G::type(G::template rang<Nom>());
    static_assert(!G::estRepete(G::template rang<Nom>()), "a repeated field is not written by name");
    if constexpr (TYPE == 'N') {
      ecrire(valeur, 1);
    } else if constexpr (TYPE == 'M') {
      ecrire(valeur.centimes, 3);
    } else if constexpr (TYPE == 'F') {
      ecrire(valeur.milliemes, 4);
    } else if constexpr (TYPE == 'X') {
      ecrire(valeur.centiemes, 3);
    } else if constexpr (TYPE == 'D') {
      if (valeur.estRenseignee()) {
        ecrire(valeur.annee * 10000L + valeur.mois * 100L + valeur.jour, 8);
      }
    } else if constexpr (TYPE == 'B') {
      texte_ = valeur ? "O" : "N";
    } else {
      texte_ = valeur;
    }
  }
  std::size_t rang() const { return rang_; }
  std::string_view octets() const {
    return taille_ == 0 ? texte_ : std::string_view(chiffres_ + sizeof chiffres_ - taille_, taille_);
  }

 private:
  void ecrire(long valeur, std::size_t largeur) {
    if (valeur < 0) {
      throw std::out_of_range("noxlux : une valeur positive est attendue");
    }
    for (; valeur != 0 || taille_ < largeur; valeur /= 10) {
      chiffres_[sizeof chiffres_ - ++taille_] = static_cast<char>('0' + valeur % 10);
    }
  }
  std::size_t rang_;
  std::string_view texte_;
  std::size_t taille_ = 0;
  char chiffres_[20];
};

// The input zone of a function, group after group. F: one of its families, CCAM_37_t::Consultation.
template <class F>
class Demande {
 public:
  Demande() = default;

  // Fields in any order; those that are not given are empty. Of a field given twice the last one counts.
  template <class G>
  Demande& ajouter(G, std::initializer_list<Donnee<G>> donnees) {
    static_assert(F::Entrees::template contient<G>, "this function does not read that group");
    std::string_view octets[G::TAILLE] = {};
    for (const Donnee<G>& donnee : donnees) {
      octets[donnee.rang()] = donnee.octets();
    }
    std::size_t contenu = 0;
    for (const std::string_view champ : octets) {
      contenu += tailleLongueur(champ.size()) + champ.size();
    }
    zone_.reserve(zone_.size() + 2 + tailleLongueur(contenu) + contenu);
    zone_ += static_cast<char>(G::numero >> 8U);
    zone_ += static_cast<char>(G::numero & 0xFFU);
    ajouterLongueur(contenu);
    for (const std::string_view champ : octets) {
      ajouterLongueur(champ.size());
      zone_ += champ;
    }
    return *this;
  }
  // Its bytes, as the C functions take them: the library does not change them.
  void* octets() const { return const_cast<char*>(zone_.data()); }
  unsigned int taille() const { return static_cast<unsigned int>(zone_.size()); }

 private:
  static unsigned suivants(std::size_t n) {
    return n <= 127 ? 0 : n < 0xFF ? 1 : n < 0xFFFF ? 2 : n < 0xFFFFFF ? 3 : 4;
  }
  static std::size_t tailleLongueur(std::size_t n) { return 1 + suivants(n); }
  void ajouterLongueur(std::size_t n) {
    const unsigned octets = suivants(n);
    if (octets != 0) {
      zone_ += static_cast<char>(0x80U + octets);
    }
    for (unsigned i = octets == 0 ? 1 : octets; i-- > 0;) {
      zone_ += static_cast<char>(n >> (8U * i) & 0xFFU);
    }
  }
  std::string zone_;
};

using DemandeFacture = Demande<ControleComplet_t::Complet>;

// --- Answers ---

namespace detail {

// What is left to read of a zone or of a group.
class Curseur {
 public:
  explicit Curseur(std::string_view octets) : reste_(octets) {}
  bool estAuBout() const { return reste_.empty(); }

  unsigned lire(std::size_t n) {
    unsigned valeur = 0;
    for (const char c : prendre(n)) {
      valeur = valeur << 8U | static_cast<unsigned char>(c);
    }
    return valeur;
  }
  // A length and what it measures.
  std::string_view lireMesure() {
    unsigned longueur = lire(1);
    if (longueur > 0x84) {
      throw Erreur(NOX_CR_ZONE_MAL_FORMEE);
    }
    if (longueur > 0x80) {
      longueur = lire(longueur - 0x80U);
    }
    return prendre(longueur);
  }

 private:
  std::string_view prendre(std::size_t n) {
    if (n > reste_.size()) {
      throw Erreur(NOX_CR_ZONE_MAL_FORMEE);
    }
    const std::string_view pris = reste_.substr(0, n);
    reste_.remove_prefix(n);
    return pris;
  }
  std::string_view reste_;
};

inline long lireNombre(std::string_view octets) {
  long valeur = 0;
  const auto [fin, faute] = std::from_chars(octets.data(), octets.data() + octets.size(), valeur);
  if (octets.empty() || faute != std::errc() || fin != octets.data() + octets.size()) {
    throw Erreur(NOX_CR_FIN_ZONE);
  }
  return valeur;
}

template <char T>
typename TypeDe<T>::type lireValeur(std::string_view octets) {
  if constexpr (T == 'N') {
    return lireNombre(octets);
  } else if constexpr (T == 'M') {
    return Montant{lireNombre(octets)};
  } else if constexpr (T == 'F') {
    return Coefficient{lireNombre(octets)};
  } else if constexpr (T == 'X') {
    return Taux{lireNombre(octets)};
  } else if constexpr (T == 'B') {
    return octets == "O";
  } else if constexpr (T == 'D') {
    if (octets.empty()) {
      return Date();
    }
    const long jour = lireNombre(octets.substr(0, 8));
    return Date(static_cast<int>(jour / 10000), static_cast<int>(jour / 100 % 100),
                static_cast<int>(jour % 100));
  } else {
    // Codes come padded with spaces to the width of their table.
    return octets.substr(0, octets.find_last_not_of(' ') + 1);
  }
}

}  // namespace detail

// A group of an answer, of known fields.
template <class G>
class GroupeLu {
 public:
  explicit GroupeLu(std::string_view contenu) : contenu_(contenu) {}

  // The value of a field; of a repeated field, a list to go through. Throws Erreur 0xF805 when the field is
  // empty and its type has no empty value.
  template <class Nom>
  auto operator[](Nom) const {
    static_assert(detail::A_CHAMP<G, Nom>, "this group has no field of that name");
    constexpr std::size_t RANG = G::template rang<Nom>();
    if constexpr (G::estRepete(RANG)) {
      return Suite<G::type(RANG)>(apres(RANG));
    } else {
      detail::Curseur curseur = apres(RANG);
      return detail::lireValeur<G::type(RANG)>(curseur.estAuBout() ? std::string_view()
                                                                   : curseur.lireMesure());
    }
  }

  // The values of a repeated field.
  template <char T>
  class Suite {
   public:
    explicit Suite(detail::Curseur curseur) : curseur_(curseur) {}
    class Iterateur {
     public:
      explicit Iterateur(detail::Curseur curseur) : curseur_(curseur) { ++*this; }
      typename detail::TypeDe<T>::type operator*() const { return detail::lireValeur<T>(octets_); }
      Iterateur& operator++() {
        auBout_ = curseur_.estAuBout();
        octets_ = auBout_ ? std::string_view() : curseur_.lireMesure();
        return *this;
      }
      friend bool operator!=(const Iterateur& a, const Iterateur& b) { return a.auBout_ != b.auBout_; }

     private:
      detail::Curseur curseur_;
      std::string_view octets_;
      bool auBout_ = false;
    };
    Iterateur begin() const { return Iterateur(curseur_); }
    Iterateur end() const { return Iterateur(detail::Curseur({})); }

   private:
    detail::Curseur curseur_;
  };

 private:
  detail::Curseur apres(std::size_t rang) const {
    detail::Curseur curseur(contenu_);
    for (; rang != 0 && !curseur.estAuBout(); --rang) {
      curseur.lireMesure();
    }
    return curseur;
  }
  std::string_view contenu_;
};

// The answer of a function: owns its zone. F as for Demande.
template <class F>
class Reponse {
 public:
  Reponse(unsigned short code, void* zone, unsigned int taille) : code_(code), zone_(zone), taille_(taille) {}
  Reponse(Reponse&& autre) noexcept
      : code_(autre.code_),
        zone_(std::exchange(autre.zone_, nullptr)),
        taille_(std::exchange(autre.taille_, 0)) {}
  Reponse& operator=(Reponse&& autre) noexcept {
    std::swap(code_, autre.code_);
    std::swap(zone_, autre.zone_);
    std::swap(taille_, autre.taille_);
    return *this;
  }
  ~Reponse() { NOX_LibererZoneMem(zone_); }

  // NOX_CR_OK, or one of the codes that come with an answer.
  unsigned short code() const { return code_; }

  // A group that may be one of several kinds: `if (auto base = groupe.en(reponse::base_ligne))`.
  class Element {
   public:
    unsigned numero() const { return numero_; }
    template <class G>
    std::optional<GroupeLu<G>> en(G) const {
      static_assert(F::Reponses::template contient<G>, "this answer has no such group");
      return numero_ == G::numero ? std::optional(GroupeLu<G>(contenu_)) : std::nullopt;
    }

   private:
    friend class Reponse;
    unsigned numero_ = 0;
    std::string_view contenu_;
  };

  // All groups, in the order of the answer.
  class Iterateur {
   public:
    explicit Iterateur(std::string_view zone) : curseur_(zone) { ++*this; }
    const Element& operator*() const { return element_; }
    const Element* operator->() const { return &element_; }
    Iterateur& operator++() {
      element_.numero_ = curseur_.estAuBout() ? 0 : curseur_.lire(2);
      element_.contenu_ = element_.numero_ == 0 ? std::string_view() : curseur_.lireMesure();
      return *this;
    }
    bool operator!=(const Iterateur& autre) const {
      return element_.numero_ != autre.element_.numero_ ||
             element_.contenu_.data() != autre.element_.contenu_.data();
    }

   private:
    detail::Curseur curseur_;
    Element element_;
  };
  Iterateur begin() const { return Iterateur({static_cast<const char*>(zone_), taille_}); }
  Iterateur end() const { return Iterateur({}); }

  // The first group of a kind, if there is one.
  template <class G>
  std::optional<GroupeLu<G>> premier(G groupe) const {
    for (const Element& element : *this) {
      if (auto lu = element.en(groupe)) {
        return lu;
      }
    }
    return std::nullopt;
  }
  // A field of the first group that has it. Throws Erreur 0xF806 when the answer has no such group.
  template <class Nom>
  auto operator[](Nom champ) const {
    using G = typename detail::GroupeDuChamp<Nom, typename F::Reponses>::type;
    const auto lu = premier(G());
    if (!lu) {
      throw Erreur(NOX_CR_GROUPE_ABSENT);
    }
    return (*lu)[champ];
  }

 private:
  unsigned short code_;
  void* zone_;
  unsigned int taille_;
};

// The answers of calls that have no identifier.
struct Recherche : detail::Fonction<detail::Groupes<>, detail::Groupes<reponse::actes_trouves_t>> {};
struct Version : detail::Fonction<detail::Groupes<>, detail::Groupes<reponse::version_t>> {};

// --- The library ---

// The library loaded, until the end of the scope. One at a time.
class Reference {
 public:
  // `configuration`: the directory of orvan.ini. Follow-up files that cannot be written do not keep the
  // library from being used: suivi() tells.
  explicit Reference(std::string configuration)
      : configuration_(std::move(configuration)), precedent_(REPERTOIRE_SYSTEME) {
    REPERTOIRE_SYSTEME = configuration_.c_str();
    suivi_ = NOX_InitLIB();
    if (suivi_ != NOX_CR_OK && suivi_ != NOX_CR_SUIVI_REPERTOIRE && suivi_ != NOX_CR_SUIVI_ECRITURE) {
      REPERTOIRE_SYSTEME = precedent_;
      throw Erreur(suivi_);
    }
  }
  Reference(const Reference&) = delete;
  Reference& operator=(const Reference&) = delete;
  ~Reference() {
    NOX_TermLIB();
    REPERTOIRE_SYSTEME = precedent_;
  }

  // 0, 0xF6F1 or 0xF6F2.
  unsigned short suivi() const { return suivi_; }

  // A question at a date. Below, one group of fields is the whole request of all consultations, changes,
  // cancellations and data controls; those that take none are asked without.
  template <class I, class F = typename I::Consultation>
  Reponse<F> consulter(I, std::initializer_list<Donnee<detail::GroupeDe<F>>> donnees, Date date) const {
    return consulterZone<F>(I::nom, demander<F>(donnees), date);
  }
  template <class I, class F = typename I::Consultation>
  Reponse<F> consulter(I, Date date) const {
    static_assert(F::Entrees::NOMBRE == 0, "this consultation takes fields");
    return consulterZone<F>(I::nom, Demande<F>(), date);
  }

  // Changes a value in memory from a day on; sauvegarder() keeps it.
  template <class I, class F = typename I::Modification>
  void modifier(I, std::initializer_list<Donnee<detail::GroupeDe<F>>> donnees, Date effet) {
    const Demande<F> demande = demander<F>(donnees);
    exiger(NOX_ModifierDonnee(I::nom, TexteDate(effet).texte, demande.octets(), demande.taille()));
  }

  template <class I, class F = typename I::Annulation>
  void annuler(I, std::initializer_list<Donnee<detail::GroupeDe<F>>> donnees) {
    const Demande<F> demande = demander<F>(donnees);
    exiger(NOX_AnnulerModification(I::nom, demande.octets(), demande.taille()));
  }
  template <class I, class F = typename I::Annulation>
  void annuler(I) {
    static_assert(F::Entrees::NOMBRE == 0, "this cancellation takes fields");
    exiger(NOX_AnnulerModification(I::nom, nullptr, 0));
  }

  // `commentaire`: ISO-8859-1, 200 characters at most; empty keeps the one of the reference.
  void sauvegarder(const std::string& commentaire = {}) {
    exiger(NOX_SauvegarderReferentiel(commentaire.empty() ? nullptr : commentaire.c_str()));
  }

  // One datum at a date: yes or no.
  template <class I, class F = typename I::Controle>
  bool verifier(I, std::initializer_list<Donnee<detail::GroupeDe<F>>> donnees, Date date) const {
    const Demande<F> demande = demander<F>(donnees);
    char resultat = 'N';
    exiger(
        NOX_ControlerDonnees(I::nom, TexteDate(date).texte, demande.octets(), demande.taille(), &resultat));
    return resultat == 'O';
  }

  // One rule on some lines. The answer may come with code 0xD112 or 0xD115.
  template <class I, class F = typename I::Regle>
  Reponse<F> appliquer(I, const Demande<F>& demande) const {
    return appeler<F>(
        [&](void** zone, unsigned int* taille) {
          return NOX_AppliquerRegle(I::nom, demande.octets(), demande.taille(), zone, taille);
        },
        {NOX_CR_REGLE_REPONSE_1, NOX_CR_REGLE_REPONSE_2});
  }

  // A whole invoice. The code of the answer is 0, or 0xD121 or 0xD122 when there are errors.
  Reponse<ControleComplet_t::Complet> controler(const DemandeFacture& facture) const {
    return appeler<ControleComplet_t::Complet>(
        [&](void** zone, unsigned int* taille) {
          return NOX_ControleComplet(facture.octets(), facture.taille(), zone, taille);
        },
        {NOX_CR_CONTROLE_NIVEAU_1, NOX_CR_CONTROLE_NIVEAU_2});
  }

  // Acts under a keyword (ISO-8859-1); `cadre` as in noxlux.h, 0 for all.
  Reponse<Recherche> rechercherMotCle(const std::string& motCle, unsigned long cadre = 0) const {
    return appeler<Recherche>([&](void** zone, unsigned int* taille) {
      return NOX_RechercherParMotCle(motCle.c_str(), cadre, zone, taille);
    });
  }
  Reponse<Recherche> rechercherFiltre(const std::string& filtre) const {
    return appeler<Recherche>([&](void** zone, unsigned int* taille) {
      return NOX_RechercherParFiltre(filtre.c_str(), zone, taille);
    });
  }
  Reponse<Version> version() const { return appeler<Version>(NOX_LireVersion); }

 private:
  // A date as the functions take it.
  struct TexteDate {
    char texte[9] = {};
    explicit TexteDate(Date date) {
      long reste = date.annee * 10000L + date.mois * 100L + date.jour;
      for (std::size_t i = 8; i-- > 0; reste /= 10) {
        texte[i] = static_cast<char>('0' + reste % 10);
      }
    }
  };

  static void exiger(unsigned short code) {
    if (code != NOX_CR_OK) {
      throw Erreur(code);
    }
  }
  template <class F>
  static Demande<F> demander(std::initializer_list<Donnee<detail::GroupeDe<F>>> donnees) {
    Demande<F> demande;
    demande.ajouter(detail::GroupeDe<F>(), donnees);
    return demande;
  }
  template <class F, class Appel>
  static Reponse<F> appeler(Appel appel, std::initializer_list<unsigned short> permis = {}) {
    void* zone = nullptr;
    unsigned int taille = 0;
    const unsigned short code = appel(&zone, &taille);
    Reponse<F> reponse(code, zone, taille);
    for (const unsigned short admis : permis) {
      if (code == admis) {
        return reponse;
      }
    }
    exiger(code);
    return reponse;
  }
  template <class F>
  static Reponse<F> consulterZone(const char* identifiant, const Demande<F>& demande, Date date) {
    return appeler<F>([&](void** zone, unsigned int* taille) {
      return NOX_ConsulterDonnee(identifiant, TexteDate(date).texte, demande.octets(), demande.taille(), zone,
                                 taille);
    });
  }

  std::string configuration_;
  const char* precedent_;
  unsigned short suivi_ = NOX_CR_OK;
};

}  // namespace noxlux

#endif
