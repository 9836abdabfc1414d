#include "compilateur/fichier_reference.h"

#include <algorithm>
#include <cerrno>

#include "compilateur/rapport.h"
#include "compilateur/systeme.h"
#include "fichier/crc16.h"
#include "fichier/lecteur.h"

namespace noxlux::compilateur {

std::unique_ptr<FichierReference> FichierReference::ouvrir(const std::string& chemin, std::string& raison) {
  std::unique_ptr<FichierReference> resultat(new FichierReference(chemin));
  if (!resultat->fichier_.estOuvert()) {
    raison = phrase("impossible à ouvrir (", raisonSysteme(errno), ")");
    return nullptr;
  }
  Lecteur lecteur(resultat->fichier_.lire());
  if (!resultat->lireEntete(lecteur)) {
    raison = "ce n'est ni un tablebin.nox ni un modifref.nox : l'entête manque";
    return nullptr;
  }
  resultat->lireTables(lecteur);
  return resultat;
}

bool FichierReference::lireEntete(Lecteur& lecteur) {
  if (lireEnteteTexte(lecteur, entete_) != NOX_CR_OK) {
    return false;
  }
  modification_ = entete_.nom == NOM_FICHIER_MODIFICATION;
  return modification_ || entete_.nom == NOM_FICHIER_REFERENCE;
}

void FichierReference::lireTables(Lecteur& lecteur) {
  CodeRetour cr = NOX_CR_OK;
  bool indexLu = false;
  while (cr == NOX_CR_OK && !indexLu) {
    char identifiant[4] = {};
    std::uint32_t nombreLignes = 0;
    std::int32_t position = 0;
    cr = lecteur.lireEnteteTable(identifiant, nombreLignes, position);
    if (cr != NOX_CR_OK) {
      break;
    }
    TableLue& table = tables_.emplace_back();
    table.numero = static_cast<unsigned>(std::strtoul(identifiant, nullptr, 10));
    table.nombreLignes = nombreLignes;
    table.taille = lecteur.tailleTable();
    table.position = static_cast<std::uint32_t>(position);
    table.etat = modification_ ? Table::testerIdentifiantTableModif(table.numero)
                               : Table::testerIdentifiantTableRef(table.numero);
    indexLu = !modification_ && table.numero == Index::IDENTIFIANT;
    cr = lecteur.tableSuivante();
  }
  if (cr != NOX_CR_OK && cr != FIN_DE_FICHIER) {
    anomalie_ = "la suite du fichier est illisible";
  } else if (!modification_ && !indexLu) {
    anomalie_ = "la table d'index manque";
  }
  std::uint16_t crc = 0;
  char texte[8] = "????";
  if (calculerCRC16(fichier_.lire(), crc)) {
    std::snprintf(texte, sizeof texte, "%04X", crc);
  }
  entete_.crcCalcule = texte;
}

const TableLue* FichierReference::chercherTable(unsigned numero) const {
  const auto trouvee = std::find_if(tables_.begin(), tables_.end(),
                                    [&](const TableLue& table) { return table.numero == numero; });
  return trouvee == tables_.end() ? nullptr : &*trouvee;
}

std::unique_ptr<LignesTable> FichierReference::lireLignes(const TableLue& table, CodeRetour& cr) const {
  std::unique_ptr<LignesTable> lignes = creerLignes(table.numero);
  Lecteur lecteur(fichier_.lire());
  cr = lecteur.positionner(table.position);
  if (lignes == nullptr || !Table::nombreLignesPlausible(table.numero, table.nombreLignes, lecteur.reste())) {
    cr = NOX_CR_LECTURE_REFERENCE;
  }
  if (cr == NOX_CR_OK) {
    lignes->creer(table.nombreLignes);
  }
  for (std::uint32_t i = 0; cr == NOX_CR_OK && i < table.nombreLignes; ++i) {
    cr = lignes->lireLigne(i, lecteur);
  }
  return cr == NOX_CR_OK ? std::move(lignes) : nullptr;
}

CodeRetour FichierReference::lireActe(const CodeActe& code, NiveauActe& acte) const {
  const TableLue* const table = modification_ ? nullptr : chercherTable(Index::IDENTIFIANT);
  if (table == nullptr) {
    return NOX_CR_CODE_INCONNU;
  }
  CodeRetour cr = NOX_CR_OK;
  const std::unique_ptr<LignesTable> lignes = lireLignes(*table, cr);
  if (lignes == nullptr) {
    return cr;
  }
  const auto& index = static_cast<const LignesDe<Index>&>(*lignes).lignes;
  const auto ligne = std::find_if(index.begin(), index.end(),
                                  [&](const Index& candidate) { return candidate.acte == code; });
  if (ligne == index.end()) {
    return NOX_CR_CODE_INCONNU;
  }
  return lireActeEn(ligne->position, acte);
}

CodeRetour FichierReference::lireActeEn(std::uint32_t position, NiveauActe& acte) const {
  Lecteur lecteur(fichier_.lire());
  const CodeRetour cr = lecteur.positionner(position);
  return cr == NOX_CR_OK ? acte.lireNiveauActe(lecteur) : cr;
}

CodeRetour FichierReference::lireActes(std::map<CodeActe, NiveauActe>& actes) const {
  const TableLue* const table = modification_ ? nullptr : chercherTable(Index::IDENTIFIANT);
  if (table == nullptr) {
    return NOX_CR_OK;
  }
  CodeRetour cr = NOX_CR_OK;
  const std::unique_ptr<LignesTable> lignes = lireLignes(*table, cr);
  if (lignes == nullptr) {
    return cr;
  }
  for (const Index& ligne : static_cast<const LignesDe<Index>&>(*lignes).lignes) {
    cr = lireActeEn(ligne.position, actes[ligne.acte]);
    if (cr != NOX_CR_OK) {
      return cr;
    }
  }
  return cr;
}

}  // namespace noxlux::compilateur
