// The walk over the records of the tables of a database, and the fields of one.
#ifndef NOXLUX_COMPILATEUR_LECTURE_DBF_H
#define NOXLUX_COMPILATEUR_LECTURE_DBF_H

#include <array>
#include <string>
#include <string_view>

#include "compilateur/bilan_import.h"
#include "compilateur/modele.h"
#include "compilateur/table_dbf.h"

namespace noxlux::compilateur {

// The fields of the current record, by rank among the columns asked for. A value that cannot be read is told
// once and leaves the record bad.
class ChampsDbf {
 public:
  ChampsDbf(const TableDbf& table, const std::vector<int>& rangs, BilanImport& bilan)
      : table_(table), rangs_(rangs), bilan_(bilan) {}

  void placer(Lieu lieu) {
    lieu_ = lieu;
    raison_.clear();
  }
  Lieu lieu() const { return lieu_; }
  // Why the record is bad; empty when it is good.
  const std::string& raison() const { return raison_; }
  bool bons() const { return raison_.empty(); }
  bool refuser(std::string_view raison);

  std::string_view brut(std::size_t k) const { return rognerChamp(table_.brut(rangs_[k])); }
  bool vide(std::size_t k) const { return brut(k).empty(); }
  // The field without any blank: how records of several tables are told to belong together.
  std::string cle(std::size_t k) const;
  std::string texte(std::size_t k);
  // A text cut in slices: they are joined as they stand, then trimmed.
  std::string texteEnTranches(const std::vector<int>& tranches);
  DateBrute date(std::size_t k, bool obligatoire);
  unsigned nombre(std::size_t k);
  std::uint16_t court(std::size_t k);
  double decimal(std::size_t k);
  char lettre(std::size_t k);
  template <std::size_t N>
  CodeFixe<N> code(std::size_t k) {
    const std::string lu = codeDeTaille(cle(k), N);
    return CodeFixe<N>(lu);
  }

 private:
  std::string codeDeTaille(std::string lu, std::size_t taille);
  std::string convertir(std::string_view cp850);

  const TableDbf& table_;
  const std::vector<int>& rangs_;
  BilanImport& bilan_;
  Lieu lieu_;
  std::string raison_;
};

class LectureDbf {
 public:
  LectureDbf(std::string repertoire, BilanImport& bilan, Rapport& rapport)
      : repertoire_(std::move(repertoire)), bilan_(bilan), rapport_(rapport) {}

  BilanImport& bilan() { return bilan_; }

  // Calls f(fields, table) for each record of a table that has all these columns ("NOM.." is one cut in
  // slices, "COD_*" the first that begins so); f answers whether it kept the record. A table that is
  // missing is a fault only if it is needed.
  template <class F>
  void parcourir(const char* nom, const std::vector<const char*>& colonnes, F&& f, bool necessaire = false) {
    std::vector<int> rangs;
    const std::unique_ptr<TableDbf> table = ouvrir(nom, colonnes, necessaire, rangs);
    if (table == nullptr) {
      return;
    }
    ChampsDbf champs(*table, rangs, bilan_);
    const std::uint32_t source = rapport_.declarerSource(table->chemin());
    std::size_t lus = 0;
    std::size_t gardes = 0;
    for (std::uint32_t i = 0; i < table->nombre(); ++i) {
      if (!table->lire(i)) {
        continue;
      }
      ++lus;
      champs.placer({source, i + 1});
      if (f(champs, *table)) {
        ++gardes;
      } else if (!champs.bons()) {
        bilan_.ecarter(phrase(nom, " : ", champs.raison()), champs.lieu());
      }
    }
    bilan_.lire(nom, lus);
    bilan_.garder(nom, gardes);
  }

 private:
  std::unique_ptr<TableDbf> ouvrir(const char* nom, const std::vector<const char*>& colonnes, bool necessaire,
                                   std::vector<int>& rangs);

  std::string repertoire_;
  BilanImport& bilan_;
  Rapport& rapport_;
};

// The tables other than those of acts (thresholds, modifiers, specialities, labels...).
void lireTablesDeReference(LectureDbf& lecture, unsigned grille, Modele& base);

}  // namespace noxlux::compilateur

#endif
