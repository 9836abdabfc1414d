// What all queries are made of: the traced frame, the look-ups in tables, the copies into typed values.
#ifndef NOXLUX_REFERENT_REQUETE_H
#define NOXLUX_REFERENT_REQUETE_H

#include <algorithm>
#include <array>
#include <concepts>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "basics/trace.h"
#include "referent/lecture_donnees.h"

namespace noxlux {

// --- The frame -----------------------------------------------------------------------------------------

// A traced input of a call.
template <class T>
struct Entree {
  const char* libelle;
  const T& valeur;
};
template <class T>
Entree(const char*, const T&) -> Entree<T>;

inline void tracerEntree(unsigned short module, const char* libelle, const Texte& valeur) {
  Trace::ecrire(module, "%s : %s", libelle, valeur.lireTexte());
}
inline void tracerEntree(unsigned short module, const char* libelle, const char* valeur) {
  Trace::ecrire(module, "%s : %s", libelle, valeur);
}
inline void tracerEntree(unsigned short module, const char* libelle, const Date& valeur) {
  Trace::ecrire(module, "%s : %04u/%02u/%02u", libelle, valeur.lireAnnee(), valeur.lireMois(),
                valeur.lireJour());
}
inline void tracerEntree(unsigned short module, const char* libelle, double valeur) {
  Trace::ecrire(module, "%s : %f", libelle, valeur);
}
template <std::unsigned_integral T>
void tracerEntree(unsigned short module, const char* libelle, T valeur) {
  Trace::ecrire(module, "%s : %lu", libelle, static_cast<unsigned long>(valeur));
}

// The trace block of one call of a method: its banner, then the line of its return code, however it is left.
class BlocMethode {
 public:
  BlocMethode(unsigned short module, const char* classe, const char* methode, const char* objet,
              const CodeRetour& cr)
      : module_(module), classe_(classe), methode_(methode), cr_(cr) {
    Trace::debut(module, "%s::%s%s", classe, methode, objet);
  }
  ~BlocMethode() { Trace::fin(module_, "Code retour de %s::%s : 0x%04X", classe_, methode_, cr_); }
  BlocMethode(const BlocMethode&) = delete;
  BlocMethode& operator=(const BlocMethode&) = delete;

 private:
  unsigned short module_;
  const char* classe_;
  const char* methode_;
  const CodeRetour& cr_;
};

// Runs `corps` in the frame of a method. `objet` follows the method's name in the banner.
template <class F, class... T>
CodeRetour executer(unsigned short module, const char* classe, const char* methode, const char* objet,
                    F&& corps, const Entree<T>&... entrees) {
  CodeRetour cr = NOX_CR_MEMOIRE;  // what the trace tells when the body is left for lack of memory
  const BlocMethode bloc(module, classe, methode, objet, cr);
  if (Trace::estDetaille(module)) [[unlikely]] {
    (tracerEntree(module, entrees.libelle, entrees.valeur), ...);
  }
  cr = corps();
  return cr;
}

// The frame of a query.
template <class F, class... T>
CodeRetour requete(const char* methode, F&& corps, const Entree<T>&... entrees) {
  return executer(TRACE_CONSULTATION, "LectureDonnees", methode, "", corps, entrees...);
}

// Traces why a look-up fails.
inline CodeRetour refuser(CodeRetour cr, FormatVerifie<> message) {
  Trace::erreur(TRACE_CONSULTATION, message);
  return cr;
}

// --- Keys ----------------------------------------------------------------------------------------------

inline CodeRetour refuserCleTropLongue() {
  return refuser(NOX_CR_DONNEE_ABSENTE, "La taille du code excede la taille attendue pour le buffer");
}

// A code as the key of a table: padded with spaces to the width of the key.
template <std::size_t N>
CodeRetour composerCle(const Code& code, CodeFixe<N>& cle) {
  if (code.lireLongueur() > N) {
    return refuserCleTropLongue();
  }
  cle = CodeFixe<N>(code.vue());
  return NOX_CR_OK;
}
inline CodeRetour composerCle(const Code& code, char& cle) {
  if (code.lireLongueur() > 1) {
    return refuserCleTropLongue();
  }
  cle = code.estRenseigne() ? code.vue().front() : ' ';
  return NOX_CR_OK;
}
inline CodeRetour composerCle(const Texte& texte, std::string_view& cle) {
  cle = texte.vue();
  return NOX_CR_OK;
}
template <std::unsigned_integral T>
CodeRetour composerCle(T valeur, T& cle) {
  cle = valeur;
  return NOX_CR_OK;
}

// What a key field is compared with.
template <class T>
using TypeCle = std::conditional_t<std::is_same_v<T, TexteVariable>, std::string_view, T>;

// Keys are sorted in byte order.
inline std::strong_ordering comparer(char champ, char cle) {
  return static_cast<unsigned char>(champ) <=> static_cast<unsigned char>(cle);
}
inline std::strong_ordering comparer(const TexteVariable& champ, std::string_view cle) {
  return champ.vue() <=> cle;
}
template <class T>
std::strong_ordering comparer(const T& champ, const T& cle) {
  return champ <=> cle;
}

// Binary search of a sorted table; null when the key is not there.
template <class L, class T>
const L* chercherParDichotomie(const std::vector<L>& lignes, T L::*champ, const TypeCle<T>& cle) {
  std::size_t bas = 0;
  std::size_t haut = lignes.size();
  while (bas < haut) {
    const std::size_t milieu = bas + (haut - bas) / 2;
    const std::strong_ordering ordre = comparer(lignes[milieu].*champ, cle);
    if (ordre == 0) {
      return &lignes[milieu];
    }
    (ordre < 0 ? bas : haut) = ordre < 0 ? milieu + 1 : milieu;
  }
  return nullptr;
}

// The key of a table found by binary search, and what is said of a key that is not there.
template <class L, class T>
struct CleTable {
  T L::*champ;
  FormatVerifie<> absente;
};
template <class L, class T>
CleTable(T L::*, const char*) -> CleTable<L, T>;

constexpr auto cleDe(std::type_identity<Index>) {
  return CleTable{&Index::acte, "code acte non trouve dans la table d'Index"};
}
constexpr auto cleDe(std::type_identity<AssociationNonPrevue>) {
  return CleTable{&AssociationNonPrevue::code,
                  "Code 'Association Non Prevue' non trouve dans la table des associations non prevues"};
}
constexpr auto cleDe(std::type_identity<RegleTarifaire>) {
  return CleTable{&RegleTarifaire::code,
                  "Code 'Regle Tarifaire' non trouve dans la table des Regles Tarifaires"};
}
constexpr auto cleDe(std::type_identity<Specialite>) {
  return CleTable{&Specialite::code, "Code specialite non trouve dans la table Specialite"};
}
constexpr auto cleDe(std::type_identity<ClasseSpecialite>) {
  return CleTable{&ClasseSpecialite::code,
                  "Code classe specialite non trouve dans la table Classes Specialites"};
}
constexpr auto cleDe(std::type_identity<JourFerieCaisse>) {
  return CleTable{&JourFerieCaisse::caisse, "Code caisse non trouve dans la table des Jours Feries Caisse"};
}
constexpr auto cleDe(std::type_identity<ObligationCodage>) {
  return CleTable{&ObligationCodage::prestation,
                  "Code prestation non trouve dans la table des Obligations de Codage"};
}
constexpr auto cleDe(std::type_identity<Modificateur>) {
  return CleTable{&Modificateur::code, "Code modificateur non trouve dans la table des modificateurs"};
}
constexpr auto cleDe(std::type_identity<Arborescence>) {
  return CleTable{&Arborescence::code, "Code menu non trouve dans la table Arborescence"};
}
constexpr auto cleDe(std::type_identity<ServiceDebrayable>) {
  return CleTable{&ServiceDebrayable::identifiant, "Identifiant service non trouve"};
}
constexpr auto cleDe(std::type_identity<ReferenceRegleEnErreur>) {
  return CleTable{&ReferenceRegleEnErreur::reference,
                  "Identifiant regle outrepassee non trouve dans la table References Regles En Erreur"};
}
constexpr auto cleDe(std::type_identity<PrioriteIndicateurForcage>) {
  return CleTable{&PrioriteIndicateurForcage::indicateur,
                  "Code indicateur de forcage non trouve dans la table Priorites Indicateurs Forcage"};
}
constexpr auto cleDe(std::type_identity<ReferenceCdC>) {
  return CleTable{&ReferenceCdC::identifiant, "Identifiant regle non trouve"};
}
constexpr auto cleDe(std::type_identity<ExceptionPrioriteIndicateur>) {
  return CleTable{&ExceptionPrioriteIndicateur::indicateur,
                  "Indicateur de forcage non trouve dans la table Exceptions Priorite Indicateurs"};
}
constexpr auto cleDe(std::type_identity<MotCle>) {
  return CleTable{&MotCle::formeCanonique, "Mot cle non trouve dans la table Mots Cles"};
}

// The line of a keyed table. REQUIRES: the table is loaded.
template <class L, class V>
CodeRetour chercherLigne(const Referentiel& referentiel, const V& valeur, const L*& ligne) {
  constexpr auto cleTable = cleDe(std::type_identity<L>{});
  TypeCle<std::remove_cvref_t<decltype(std::declval<L>().*(cleTable.champ))>> cle{};
  const CodeRetour cr = composerCle(valeur, cle);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  const L* trouvee = chercherParDichotomie(referentiel.lignes<L>(), cleTable.champ, cle);
  if (trouvee == nullptr) {
    return refuser(NOX_CR_CODE_INCONNU, cleTable.absente);
  }
  ligne = trouvee;
  return NOX_CR_OK;
}

// --- Runs and dates ------------------------------------------------------------------------------------

// The lines that a run designates; none when it goes past its table, which loading does not let happen.
template <class H, unsigned CIBLE, class P>
std::span<const H> lignesDe(const Referentiel& referentiel, const Plage<CIBLE, P>& plage) {
  static_assert(H::IDENTIFIANT == CIBLE);
  const std::vector<H>& lignes = referentiel.lignes<H>();
  if (plage.premiere > lignes.size() || plage.nombre > lignes.size() - plage.premiere) {
    Trace::erreur(TRACE_CONSULTATION, "plage de lignes hors de la table %03u", CIBLE);
    return {};
  }
  return std::span(lignes).subspan(plage.premiere, plage.nombre);
}

template <class H>
const DateBrute& debutValidite(const H& ligne) {
  if constexpr (requires { ligne.dateDebut; }) {
    return ligne.dateDebut;
  } else {
    return ligne.dateEffet;
  }
}

// Whether a dated line holds at a date: both bounds included, an end date not filled is open.
template <class H>
bool estValideALaDate(const H& ligne, const Date& date) {
  return debutValidite(ligne) <= date.lireBrute() &&
         (!ligne.dateFin.estComplete() || date.lireBrute() <= ligne.dateFin);
}

inline constexpr FormatVerifie<> PAS_D_HISTORIQUE = "ERREUR : pas d'historique trouve a la date de reference";

// The first line, in table order, that holds at the date.
template <class H>
CodeRetour choisirALaDate(std::span<const H> lignes, const Date& date, const H*& ligne,
                          FormatVerifie<> absente = PAS_D_HISTORIQUE) {
  for (const H& candidate : lignes) {
    if (estValideALaDate(candidate, date)) {
      ligne = &candidate;
      return NOX_CR_OK;
    }
  }
  return refuser(NOX_CR_PAS_D_HISTORIQUE, absente);
}

// The history at a date of the line that a code designates.
template <class L, class H, unsigned CIBLE>
CodeRetour chercherHistorique(const Referentiel& referentiel, Plage<CIBLE> L::*plage, const Code& code,
                              const Date& date, const H*& historique,
                              FormatVerifie<> absent = PAS_D_HISTORIQUE) {
  const L* ligne = nullptr;
  const CodeRetour cr = chercherLigne(referentiel, code, ligne);
  return cr == NOX_CR_OK ? choisirALaDate(lignesDe<H>(referentiel, ligne->*plage), date, historique, absent)
                         : cr;
}

// The four amounts of a threshold line, by position.
inline constexpr std::array MONTANTS_SEUIL = {&Seuil::metropole, &Seuil::antilles, &Seuil::reunion,
                                              &Seuil::guyane};

// --- Copies --------------------------------------------------------------------------------------------

// The text of a stored code, without its padding. A byte that is a space or zero is an empty code.
inline std::string_view texteDe(const char& octet) {
  return {&octet, octet == ' ' || octet == '\0' ? 0U : 1U};
}
template <std::size_t N>
std::string_view texteDe(const CodeFixe<N>& code) {
  return code.vue();
}
inline std::string_view texteDe(const TexteVariable& texte) { return texte.vue(); }

template <class T>
CodeRetour copier(const T& source, Code& sortie) requires requires {
  texteDe(source);
}
{
  sortie = Code(texteDe(source));
  return NOX_CR_OK;
}
inline CodeRetour copier(const TexteVariable& source, Texte& sortie) {
  sortie = Texte(source.vue());
  return NOX_CR_OK;
}
inline CodeRetour copier(const DateBrute& source, Date& sortie) {
  sortie = Date(source);
  return NOX_CR_OK;
}
inline CodeRetour copier(char source, Booleen& sortie) {
  sortie = Booleen(source == 'O');
  return NOX_CR_OK;
}
inline CodeRetour copier(std::uint16_t source, Nombre& sortie) {
  sortie = Nombre(source);
  return NOX_CR_OK;
}
inline CodeRetour copier(std::uint32_t source, std::uint32_t& sortie) {
  sortie = source;
  return NOX_CR_OK;
}
// An age in years.
inline CodeRetour copier(std::uint16_t source, Periode& sortie) {
  sortie = Periode(source, 0);
  return NOX_CR_OK;
}
// Amounts and ratios are never negative; act records hold them unchecked.
template <std::derived_from<Flottant> F>
CodeRetour copier(double source, F& sortie) {
  if (!(source >= 0)) {
    return refuser(NOX_CR_DONNEE_ABSENTE, "valeur negative dans le referentiel");
  }
  sortie = F(source);
  return NOX_CR_OK;
}

// Appends the code of each entry. An entry that makes no code stops the copy.
template <class R, class P = std::identity>
CodeRetour ajouterCodes(const R& entrees, ListeCodes& liste, P projection = {}) {
  unsigned indice = 0;
  for (const auto& entree : entrees) {
    const std::string_view texte = texteDe(std::invoke(projection, entree));
    if (!Code::estValide(texte)) {
      Trace::erreur(TRACE_CONSULTATION, "probleme lors de la creation de l'objet Code, indice %u : %.*s",
                    indice, static_cast<int>(texte.size()), texte.data());
      return NOX_CR_DONNEE_ABSENTE;
    }
    const CodeRetour cr = liste.ajouterElement(Code(texte));
    if (cr != NOX_CR_OK) {
      return cr;
    }
    ++indice;
  }
  return NOX_CR_OK;
}
// The list becomes the codes of the entries.
template <class R, class P = std::identity>
CodeRetour copierCodes(const R& entrees, ListeCodes& liste, P projection = {}) {
  liste.reinitialiser();
  return ajouterCodes(entrees, liste, projection);
}
template <class T>
CodeRetour copier(const ListeCompacte<T>& source, ListeCodes& sortie) {
  return copierCodes(source, sortie);
}

// --- Modification tables -------------------------------------------------------------------------------

constexpr auto clesModification(std::type_identity<ModificationPrixUnitaire>) {
  using M = ModificationPrixUnitaire;
  return std::tuple{&M::acte, &M::activite, &M::phase};
}
constexpr auto clesModification(std::type_identity<ModificationSupplementCharge>) {
  using M = ModificationSupplementCharge;
  return std::tuple{&M::acte, &M::activite, &M::phase};
}
constexpr auto clesModification(std::type_identity<ModificationMajorationDOM>) {
  using M = ModificationMajorationDOM;
  return std::tuple{&M::acte, &M::activite, &M::phase, &M::position};
}
constexpr auto clesModification(std::type_identity<ModificationCodeRegroupement>) {
  using M = ModificationCodeRegroupement;
  return std::tuple{&M::acte, &M::activite};
}
constexpr auto clesModification(std::type_identity<ModificationRegleAssociationNonPrevue>) {
  return std::tuple{&ModificationRegleAssociationNonPrevue::code};
}
constexpr auto clesModification(std::type_identity<ModificationSeuil>) {
  return std::tuple{&ModificationSeuil::position};
}
constexpr auto clesModification(std::type_identity<ModificationModificateur>) {
  return std::tuple{&ModificationModificateur::code};
}
constexpr auto clesModification(std::type_identity<ModificationNonConventionne>) { return std::tuple{}; }

// The key of the lines of a modification table: those of one changed value.
template <class M>
class CleModification {
 public:
  template <class... V>
  CodeRetour composer(const V&... valeurs) {
    CodeRetour cr = NOX_CR_OK;
    std::apply(
        [&](const auto&... champ) {
          static_cast<void>(((cr = composerCle(valeurs, ligne_.*champ), cr == NOX_CR_OK) && ...));
        },
        CHAMPS);
    return cr;
  }
  bool egale(const M& ligne) const {
    return std::apply([&](const auto&... champ) { return ((ligne.*champ == ligne_.*champ) && ...); }, CHAMPS);
  }
  // Whether the line changes the value that is read at a date.
  bool couvre(const M& ligne, const Date& date) const {
    return egale(ligne) && ligne.dateEffet <= date.lireBrute();
  }
  // A line of this key.
  M ligne(const Date& dateEffet) const {
    M copie = ligne_;
    copie.dateEffet = dateEffet.lireBrute();
    return copie;
  }

 private:
  static constexpr auto CHAMPS = clesModification(std::type_identity<M>{});
  M ligne_;
};

// --- The shapes of queries -----------------------------------------------------------------------------

template <class N>
concept Historique = requires(N niveau) {
  niveau.dateEffet;
};

template <class N, class T, class S, class... C>
CodeRetour LectureDonnees::lireNiveau(const char* methode, T N::*champ, S& sortie, const C&... cles) {
  constexpr const char* LIBELLES[] = {"Code acte recherche    ", "Code activite recherche",
                                      "Code phase recherche   ", "Date de reference"};
  const auto corps = [&] {
    std::conditional_t<Historique<N>, const N*, N*> niveau = nullptr;
    const CodeRetour cr = atteindre(niveau, cles...);
    return cr == NOX_CR_OK ? copier(niveau->*champ, sortie) : cr;
  };
  return [&]<std::size_t... I>(std::index_sequence<I...>) {
    return requete(methode, corps, Entree<C>{LIBELLES[std::is_same_v<C, Date> ? 3 : I], cles}...);
  }
  (std::index_sequence_for<C...>{});
}

template <class L, class H, class T, class S, unsigned CIBLE>
CodeRetour LectureDonnees::lireHistorique(const char* methode, Plage<CIBLE> L::*plage, T H::*champ, S& sortie,
                                          const Code& code, const Date& date, FormatVerifie<> absent) {
  const auto corps = [&] {
    const H* historique = nullptr;
    const CodeRetour cr = chercherHistorique(donnees(), plage, code, date, historique, absent);
    return cr == NOX_CR_OK ? copier(historique->*champ, sortie) : cr;
  };
  return requete(methode, corps, Entree{"Code recherche", code}, Entree{"Date de reference", date});
}

template <class H, class T, class S>
CodeRetour LectureDonnees::lireLigneDatee(const char* methode, T H::*champ, S& sortie, const Date& date,
                                          FormatVerifie<> absente) {
  const auto corps = [&] {
    const H* ligne = nullptr;
    const CodeRetour cr = choisirALaDate<H>(donnees().lignes<H>(), date, ligne, absente);
    return cr == NOX_CR_OK ? copier(ligne->*champ, sortie) : cr;
  };
  return requete(methode, corps, Entree{"Date de reference", date});
}

template <class L, class V, class T, class S>
CodeRetour LectureDonnees::lireLigne(const char* methode, const V& cle, T L::*champ, S& sortie) {
  const auto corps = [&] {
    const L* ligne = nullptr;
    CodeRetour cr = donnees().assurerTable(L::IDENTIFIANT);
    cr = cr == NOX_CR_OK ? chercherLigne(donnees(), cle, ligne) : cr;
    return cr == NOX_CR_OK ? copier(ligne->*champ, sortie) : cr;
  };
  return requete(methode, corps, Entree{"Code recherche", cle});
}

template <class M, class... C>
CodeRetour LectureDonnees::lireDateModification(const char* methode, const Date& date, Date& modification,
                                                const C&... cles) {
  const auto corps = [&] {
    CleModification<M> cle;
    const CodeRetour cr = cle.composer(cles...);
    if (cr != NOX_CR_OK) {
      return cr;
    }
    const std::vector<M>& lignes = donnees().lignes<M>();
    const auto derniere =
        std::find_if(lignes.rbegin(), lignes.rend(), [&](const M& ligne) { return cle.couvre(ligne, date); });
    return derniere == lignes.rend() ? cr : copier(derniere->dateEffet, modification);
  };
  return requete(methode, corps, Entree{"Cle recherchee", cles}..., Entree{"Date de reference", date});
}

template <class M, class... C>
void LectureDonnees::compterModification(CodeRetour cr, const Date& date, const C&... cles) {
  if (cr != NOX_CR_OK || !verification_) {
    return;
  }
  CleModification<M> cle;
  if (cle.composer(cles...) != NOX_CR_OK) {
    return;
  }
  const std::vector<M>& lignes = donnees().lignes<M>();
  if (std::any_of(lignes.begin(), lignes.end(), [&](const M& ligne) { return cle.couvre(ligne, date); })) {
    ++compteurModifications_;
  }
}

}  // namespace noxlux

#endif
