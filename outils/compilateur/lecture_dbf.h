// The walk over the records of the tables of a database, and the fields of one.
#ifndef NOXLUX_COMPILATEUR_LECTURE_DBF_H
#define NOXLUX_COMPILATEUR_LECTURE_DBF_H

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "compilateur/bilan_import.h"
#include "compilateur/ecriture.h"
#include "compilateur/modele.h"
#include "compilateur/periodes.h"
#include "compilateur/table_dbf.h"

namespace noxlux::compilateur {

// The fields of the current record, by rank among the columns asked for. A value that cannot be read leaves
// the record bad, for the first reason met.
class ChampsDbf {
 public:
  ChampsDbf(const TableDbf& table, std::vector<std::vector<int>> colonnes, BilanImport& bilan)
      : table_(table), colonnes_(std::move(colonnes)), bilan_(bilan) {}

  void placer(Lieu lieu) {
    lieu_ = lieu;
    raison_.clear();
  }
  Lieu lieu() const { return lieu_; }
  const std::string& raison() const { return raison_; }
  bool bons() const { return raison_.empty(); }
  // Makes the record bad; false.
  bool refuser(std::string_view raison);
  bool vide(std::size_t k) const { return brut(k).empty(); }

  // The field without any blank: how records of several tables are told to belong together.
  std::string cle(std::size_t k) const;
  // A text; where it is cut in slices they are joined as they stand, then trimmed.
  std::string texte(std::size_t k);
  // A day; refused when absent.
  DateBrute date(std::size_t k);
  // A day, or the null date.
  DateBrute dateOuVide(std::size_t k);
  // Numbers are not negative; 0 when absent.
  unsigned nombre(std::size_t k);
  std::uint16_t court(std::size_t k);
  double decimal(std::size_t k);
  // Capital letters and digits, without the leading zeros for which there is no room. `code` and `lettre`
  // refuse an absent one.
  template <std::size_t N>
  CodeFixe<N> codeOuVide(std::size_t k) {
    return CodeFixe<N>(codeDeTaille(k, N));
  }
  template <std::size_t N>
  CodeFixe<N> code(std::size_t k) {
    exigerCode(k);
    return codeOuVide<N>(k);
  }
  char lettreOuVide(std::size_t k);
  char lettre(std::size_t k) {
    exigerCode(k);
    return lettreOuVide(k);
  }
  bool oui(std::size_t k) {
    const char lu = lettreOuVide(k);
    return lu == 'O' || lu == '1';
  }
  // An element and its period, in the first two columns.
  template <class E>
  E periode() {
    E element;
    element.lieu = lieu_;
    element.debut = date(0);
    element.fin = dateOuVide(1);
    if (finitAvant(element, element.debut)) {
      refuser("fin qui précède le début");
    }
    return element;
  }
  // What a person recognises the record by.
  std::string detail() const;

 private:
  std::string_view brut(std::size_t k) const { return rognerChamp(table_.brut(colonnes_[k].front())); }
  void exigerCode(std::size_t k);
  std::string codeDeTaille(std::size_t k, std::size_t taille);

  const TableDbf& table_;
  std::vector<std::vector<int>> colonnes_;
  BilanImport& bilan_;
  Lieu lieu_;
  std::string raison_;
};

class LectureDbf {
 public:
  LectureDbf(const std::string& repertoire, const Avancement& avancement, BilanImport& bilan,
             Rapport& rapport);

  BilanImport& bilan() { return bilan_; }
  // Whether no fault has been told.
  bool saine() const { return rapport_.nombreFautes() == fautes_; }
  template <class... T>
  void signaler(const T&... morceaux) {
    rapport_.signaler({}, phrase(repertoire_, " : ", morceaux...));
  }
  bool contient(std::string_view nom) const { return tables_.contains(nom); }
  // A table that must be there: a fault when it is not.
  void exiger(std::string_view nom);

  // Calls f(fields) for each record of a table, `colonnes` being names as TableDbf::colonnes takes them; f
  // answers whether it kept the record. One that it neither keeps nor refuses is no loss. A table that is not
  // there is passed over; one that cannot be read, or has not all the columns, is a fault. Records are no
  // longer walked once there is a fault.
  template <class F>
  void parcourir(const char* nom, const std::vector<std::string_view>& colonnes, F&& f) {
    std::vector<std::vector<int>> rangs;
    const std::unique_ptr<TableDbf> table = ouvrir(nom, colonnes, rangs);
    if (table == nullptr || !saine()) {
      return;
    }
    ChampsDbf champs(*table, std::move(rangs), bilan_);
    const std::uint32_t source = rapport_.declarerSource(table->chemin());
    std::size_t lus = 0;
    std::size_t gardes = 0;
    for (std::uint32_t i = 0; i < table->nombre(); ++i) {
      if (i % PAS_AVANCEMENT == 0) {
        avancement_(phrase("lecture de ", nom), i, table->nombre());
      }
      if (!table->lire(i)) {
        rapport_.signaler({source, i + 1}, "l'enregistrement ne peut pas être lu");
        return;
      }
      if (table->estEfface()) {
        continue;
      }
      ++lus;
      champs.placer({source, i + 1});
      const bool garde = f(champs);
      if (!champs.bons()) {
        bilan_.ecarter(phrase(nom, " : ", champs.raison()), champs.lieu(), champs.detail());
      } else if (garde) {
        ++gardes;
      }
    }
    bilan_.lire(nom, lus);
    bilan_.garder(nom, gardes);
  }

  // Among elements of one key, no period overlaps the next one.
  template <class E, class C>
  void enchainer(std::vector<E>& elements, C cle) {
    std::map<std::decay_t<decltype(std::invoke(cle, elements[0]))>, std::vector<E>> parCle;
    for (E& element : elements) {
      parCle[std::invoke(cle, element)].push_back(std::move(element));
    }
    elements.clear();
    for (auto& [code, memes] : parCle) {
      compilateur::enchainer(
          memes, [&](const E& e) { bilan_.ecarter("deux périodes qui commencent le même jour", e.lieu); },
          [&](const E& e) { bilan_.ajuster("période fermée la veille de la suivante", e.lieu); });
      std::move(memes.begin(), memes.end(), std::back_inserter(elements));
    }
  }
  template <class E>
  void enchainer(std::vector<E>& elements) {
    enchainer(elements, [](const E&) { return 0; });
  }

 private:
  static constexpr std::uint32_t PAS_AVANCEMENT = 4096;

  std::unique_ptr<TableDbf> ouvrir(const char* nom, const std::vector<std::string_view>& colonnes,
                                   std::vector<std::vector<int>>& rangs);

  std::string repertoire_;
  const Avancement& avancement_;
  BilanImport& bilan_;
  Rapport& rapport_;
  std::size_t fautes_;
  std::map<std::string, std::string, std::less<>> tables_;  // paths, by name in capitals
};

// A tariff grid; nothing for the base prices.
using Grille = std::optional<unsigned>;

// The parts of a database, each adding to the model.

// The menu tree. Answers the code that menu 1 has been given, for the root to bear its own; 1 when it kept
// it.
std::uint32_t lireMenus(LectureDbf& lecture, Modele& base);
// Acts, their activities and phases; REQUIRES: the menus have been read.
void lireActes(LectureDbf& lecture, Grille grille, std::uint32_t menuUn, Modele& base);
// Modifiers, specialities, associations, thresholds, holidays and the like.
void lireTablesDeReference(LectureDbf& lecture, Grille grille, Modele& base);
// Labels of codes, concepts, grouping codes.
void lireCodes(LectureDbf& lecture, Modele& base);

}  // namespace noxlux::compilateur

#endif
