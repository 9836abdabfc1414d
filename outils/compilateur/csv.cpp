#include "compilateur/csv.h"

namespace noxlux::compilateur {

bool LecteurCsv::finDeChamp() const {
  return fini() || texte_[position_] == separateur_ || texte_[position_] == '\n' || texte_[position_] == '\r';
}

void LecteurCsv::lireChampEntreGuillemets(EnregistrementCsv& enregistrement, std::string& champ) {
  ++position_;
  while (!fini()) {
    const char c = texte_[position_++];
    if (c != '"') {
      ligne_ += c == '\n' ? 1U : 0U;
      champ += c;
    } else if (!fini() && texte_[position_] == '"') {
      champ += c;
      ++position_;
    } else {
      enregistrement.malForme = enregistrement.malForme || !finDeChamp();
      return;
    }
  }
  enregistrement.inacheve = true;
}

void LecteurCsv::lireChamp(EnregistrementCsv& enregistrement) {
  std::string champ;
  if (!fini() && texte_[position_] == '"') {
    lireChampEntreGuillemets(enregistrement, champ);
  }
  while (!finDeChamp()) {
    champ += texte_[position_++];
  }
  if (++enregistrement.nombre <= EnregistrementCsv::CHAMPS_GARDES) {
    enregistrement.champs.push_back(std::move(champ));
  }
}

bool LecteurCsv::lire(EnregistrementCsv& enregistrement) {
  if (fini()) {
    return false;
  }
  enregistrement = EnregistrementCsv();
  enregistrement.ligne = ligne_;
  lireChamp(enregistrement);
  while (!fini() && texte_[position_] == separateur_) {
    ++position_;
    lireChamp(enregistrement);
  }
  enregistrement.sansFinDeLigne = fini();
  if (!fini() && texte_[position_] == '\r') {
    ++position_;
  }
  if (!fini() && texte_[position_] == '\n') {
    ++position_;
  }
  ++ligne_;
  return true;
}

}  // namespace noxlux::compilateur
