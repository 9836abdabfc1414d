// What every line class does, made from its field list.
#include <array>

#include "tables/champs_fichier.h"
#include "tables/table.h"

namespace noxlux {

namespace {

CodeRetour signalerLecture(const char* classe, const char* mots, CodeRetour cr) {
  Trace::erreur(TRACE_CHARGEMENT, "ERREUR de lecture %s, Code retour %s::lireLigne : 0x%04X", mots, classe,
                cr);
  return cr;
}

CodeRetour signalerRefus(const char* classe, const char* mots, const char* refus) {
  const CodeRetour cr = NOX_CR_LECTURE_REFERENCE;
  if (refus != nullptr) {
    Trace::erreur(TRACE_CHARGEMENT, "ERREUR : %s, Code retour %s::lireLigne : 0x%04X", refus, classe, cr);
  } else {
    Trace::erreur(TRACE_CHARGEMENT, "ERREUR : %s incorrect, Code retour %s::lireLigne : 0x%04X", mots, classe,
                  cr);
  }
  return cr;
}

// What is said of a field just read.
CodeRetour juger(CodeRetour lecture, bool correct, const char* classe, const char* mots, const char* refus) {
  if (lecture != NOX_CR_OK) {
    return signalerLecture(classe, mots, lecture);
  }
  return correct ? lecture : signalerRefus(classe, mots, refus);
}

template <class T>
bool plageCorrecte(const T& /*valeur*/, TablesParIdentifiant /*tables*/) {
  return true;
}

// An empty run points nowhere. A run into a table that is not loaded yet is checked when that one is.
template <unsigned CIBLE, class P>
bool plageCorrecte(const Plage<CIBLE, P>& plage, TablesParIdentifiant tables) {
  exiger(tables[CIBLE] != nullptr, "table != __null");
  const Table& cible = *tables[CIBLE];
  const std::uint64_t fin = std::uint64_t{plage.premiere} + plage.nombre;
  return plage.nombre == 0 || cible.etatTable() == ETAT_NON_CHARGEE || fin <= cible.lireNombreLignes();
}

}  // namespace

template <class L>
CodeRetour LignesDe<L>::lireLigne(std::uint32_t i, Lecteur& lecteur) {
  CodeRetour cr = NOX_CR_OK;
  visiterTantQue(lignes[i], [&](const auto& champ, auto& valeur) {
    cr = champs::lire(lecteur, valeur);
    cr = juger(cr, champs::controler(valeur, champ.controle), L::NOM, champ.mots, champ.refus);
    return cr == NOX_CR_OK;
  });
  return cr;
}

template <class L>
CodeRetour LignesDe<L>::ecrireLigne(std::uint32_t i, Ecrivain& ecrivain) const {
  CodeRetour cr = NOX_CR_OK;
  visiterTantQue(lignes[i], [&](const auto&, const auto& valeur) {
    cr = champs::ecrire(ecrivain, valeur);
    return cr == NOX_CR_OK;
  });
  return cr;
}

template <class L>
void LignesDe<L>::dump(std::uint32_t i, unsigned short module) const {
  visiterChamps(lignes[i], [&](const auto& champ, const auto& valeur) {
    champs::dump(module, champ.mots, " : ", valeur);
  });
}

template <class L>
bool LignesDe<L>::controlerLigne(std::uint32_t i, TablesParIdentifiant tables) const {
  return visiterTantQue(lignes[i],
                        [&](const auto&, const auto& valeur) { return plageCorrecte(valeur, tables); });
}

namespace {

struct ClasseLigne {
  std::unique_ptr<LignesTable> (*creer)();
  const char* nom;
  std::uint32_t tailleMinimale;
};

template <class L>
constexpr std::uint32_t calculerTailleMinimale() {
  return std::apply(
      []<class... T>(const DescriptionChamp<L, T>&...) { return (champs::TailleMinimale<T>::VALEUR + ...); },
      L::champs());
}

template <class L>
std::unique_ptr<LignesTable> creerLignesDe() {
  return std::make_unique<LignesDe<L>>();
}

template <class... L>
constexpr std::array<ClasseLigne, NOMBRE_TABLES> classer(std::type_identity<std::tuple<L...>> /*classes*/) {
  std::array<ClasseLigne, NOMBRE_TABLES> classes{};
  ((classes[L::IDENTIFIANT] = {creerLignesDe<L>, L::NOM, calculerTailleMinimale<L>()}), ...);
  return classes;
}

// The line class of each table identifier.
constexpr auto CLASSES = classer(std::type_identity<Catalogue>{});

}  // namespace

std::unique_ptr<LignesTable> creerLignes(unsigned identifiant) {
  const bool connu = identifiant < NOMBRE_TABLES && CLASSES[identifiant].creer != nullptr;
  return connu ? CLASSES[identifiant].creer() : nullptr;
}

const char* nomClasseLigne(unsigned identifiant) {
  return identifiant < NOMBRE_TABLES ? CLASSES[identifiant].nom : nullptr;
}

std::uint32_t tailleMinimaleLigne(unsigned identifiant) {
  return identifiant < NOMBRE_TABLES ? CLASSES[identifiant].tailleMinimale : 0;
}

}  // namespace noxlux
