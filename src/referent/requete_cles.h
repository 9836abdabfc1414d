// Look-ups in sorted tables: how a value asked for becomes a key, which field each table is sorted by.
#ifndef NOXLUX_REFERENT_REQUETE_CLES_H
#define NOXLUX_REFERENT_REQUETE_CLES_H

#include <compare>
#include <concepts>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "referent/referentiel.h"
#include "referent/requete_cadre.h"

namespace noxlux {

CodeRetour refuserCleTropLongue();

// A code as the key of a table: padded with spaces to the width of the key.
template <std::size_t N>
CodeRetour composerCle(const Code& code, CodeFixe<N>& cle) {
  if (code.lireLongueur() > N) [[unlikely]] {
    return refuserCleTropLongue();
  }
  cle = CodeFixe<N>(code.vue());
  return NOX_CR_OK;
}
inline CodeRetour composerCle(const Code& code, char& cle) {
  if (code.lireLongueur() > 1) [[unlikely]] {
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
// Texts that are short, and differ early: a byte at a time, up to the end of either.
inline std::strong_ordering comparer(const TexteVariable& champ, std::string_view cle) {
  const char* texte = champ.lireTexte();
  for (const char attendu : cle) {
    if (*texte == '\0') {
      return std::strong_ordering::less;
    }
    if (*texte != attendu) {
      return comparer(*texte, attendu);
    }
    ++texte;
  }
  return *texte == '\0' ? std::strong_ordering::equal : std::strong_ordering::greater;
}
template <class T>
std::strong_ordering comparer(const T& champ, const T& cle) {
  return champ <=> cle;
}
template <std::size_t N, class O>
requires(!std::is_same_v<O, CodeFixe<N>>) std::strong_ordering
    comparer(const CodeFixe<N>& champ, const O& cle) {
  return champ.ordre() <=> cle;
}

// A key as fields are compared with it many times.
template <class T>
T enOrdre(const T& cle) {
  return cle;
}
template <std::size_t N>
auto enOrdre(const CodeFixe<N>& cle) {
  return cle.ordre();
}

// Binary search of a sorted table; null when the key is not there.
template <class L, class T>
const L* chercherParDichotomie(const std::vector<L>& lignes, T L::*champ, const TypeCle<T>& cle) {
  // Where the search turns is not to be predicted: each step moves without a branch.
  const L* debut = lignes.data();
  const auto ordre = enOrdre(cle);
  for (std::size_t reste = lignes.size(); reste > 1;) {
    const std::size_t moitie = reste / 2;
    debut += comparer(debut[moitie].*champ, ordre) <= 0 ? moitie : 0;
    reste -= moitie;
  }
  return !lignes.empty() && comparer(debut->*champ, ordre) == 0 ? debut : nullptr;
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
  return CleTable{&JourFerieCaisse::code, "Code caisse non trouve dans la table des Jours Feries Caisse"};
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

}  // namespace noxlux

#endif
