#include "compilateur/listage.h"

#include <cctype>
#include <utility>

#include "compilateur/tables_reference.h"
#include "compilateur/transcodage.h"
#include "tables/niveaux_champs.h"

namespace noxlux::compilateur {

namespace {

// One conversion a type of value.
JsonOrdonne enJson(char valeur) {
  return valeur == ' ' || valeur == '\0' ? std::string() : versUtf8({&valeur, 1});
}
JsonOrdonne enJson(std::uint16_t valeur) { return valeur; }
JsonOrdonne enJson(std::uint32_t valeur) { return valeur; }
JsonOrdonne enJson(double valeur) { return valeur; }
JsonOrdonne enJson(const TexteVariable& valeur) { return versUtf8(valeur.vue()); }
JsonOrdonne enJson(const DateBrute& valeur) {
  if (valeur.estNulle()) {
    return nullptr;
  }
  char texte[16];
  std::snprintf(texte, sizeof texte, "%04u-%02u-%02u", unsigned{valeur.annee}, unsigned{valeur.mois},
                unsigned{valeur.jour});
  return texte;
}
template <std::size_t N>
JsonOrdonne enJson(const CodeFixe<N>& valeur) {
  return versUtf8(valeur.vue());
}
template <unsigned CIBLE, class P>
JsonOrdonne enJson(const Plage<CIBLE, P>& valeur) {
  return {{"premiere", valeur.premiere}, {"nombre", valeur.nombre}};
}
JsonOrdonne enJson(const Association& valeur);
template <class T>
JsonOrdonne enListe(const T& valeurs) {
  JsonOrdonne liste = JsonOrdonne::array();
  for (const auto& valeur : valeurs) {
    liste.push_back(enJson(valeur));
  }
  return liste;
}
template <std::size_t N>
JsonOrdonne enJson(const std::array<double, N>& valeurs) {
  return enListe(valeurs);
}

template <class L>
JsonOrdonne ligneEnJson(const L& ligne) {
  JsonOrdonne objet = JsonOrdonne::object();
  visiterChamps(ligne,
                [&](const auto& champ, const auto& valeur) { objet[cleJson(champ.nom)] = enJson(valeur); });
  return objet;
}

template <class N>
JsonOrdonne niveauEnJson(const N& niveau);

template <class N, class T>
void ajouterChamp(JsonOrdonne& objet, const N& niveau, const ValeurNiveau<N, T>& champ) {
  objet[cleJson(champ.nom)] = enJson(niveau.*(champ.membre));
}
template <class N, class T>
void ajouterChamp(JsonOrdonne& objet, const N& niveau, const ListeNiveau<N, T>& champ) {
  objet[cleJson(champ.nom)] = enListe(niveau.*(champ.membre));
}
// Histories and levels below alike.
template <class Champ, class N>
void ajouterChamp(JsonOrdonne& objet, const N& niveau, const Champ& champ) {
  JsonOrdonne& liste = objet[cleJson(champ.nom)] = JsonOrdonne::array();
  for (const auto& dessous : niveau.*(champ.membre)) {
    liste.push_back(niveauEnJson(dessous));
  }
}

template <class N>
JsonOrdonne niveauEnJson(const N& niveau) {
  JsonOrdonne objet = JsonOrdonne::object();
  std::apply([&](const auto&... champ) { (ajouterChamp(objet, niveau, champ), ...); },
             ChampsDuNiveau<N>::liste());
  return objet;
}

JsonOrdonne enJson(const Association& valeur) { return niveauEnJson(valeur); }

template <class L>
JsonOrdonne lignesEnJson(const LignesTable& lignes) {
  JsonOrdonne liste = JsonOrdonne::array();
  for (const L& ligne : static_cast<const LignesDe<L>&>(lignes).lignes) {
    liste.push_back(ligneEnJson(ligne));
  }
  return liste;
}

// The listing of each line class, by rank in the catalogue.
template <class... L>
JsonOrdonne lignesEnJson(unsigned numero, const LignesTable& lignes, std::type_identity<std::tuple<L...>>) {
  JsonOrdonne liste;
  ((L::IDENTIFIANT == numero ? void(liste = lignesEnJson<L>(lignes)) : void()), ...);
  return liste;
}

const char* nomEtat(const FichierReference& fichier, EtatTable etat) {
  switch (etat) {
    case ETAT_CHARGEE:
      return fichier.estModification() ? "modifications" : "chargée au démarrage";
    case ETAT_NON_CHARGEE:
      return "chargée à la demande";
    default:
      return "inconnue, ignorée";
  }
}

}  // namespace

std::string cleJson(const NomChamp& nom) {
  std::string cle;
  bool capitale = false;
  for (const char c : std::string_view(nom.texte)) {
    if (c != '_') {
      cle += capitale ? static_cast<char>(std::toupper(static_cast<unsigned char>(c))) : c;
    }
    capitale = c == '_';
  }
  return cle;
}

JsonOrdonne listerFichier(const FichierReference& fichier) {
  const EnteteFichier& entete = fichier.entete();
  JsonOrdonne resultat;
  resultat["entete"] = {{"nom", versUtf8(entete.nom)},
                        {"version du référentiel", versUtf8(entete.version)},
                        {"version de la base CCAM", versUtf8(entete.versionBaseCCAM)},
                        {"date", versUtf8(entete.date)},
                        {"version minimale du logiciel", versUtf8(entete.versionMinimum)},
                        {"révision", versUtf8(entete.revision)},
                        {"variante", versUtf8(entete.variante)},
                        {"commentaire", versUtf8(entete.commentaire)},
                        {"CRC écrit", versUtf8(entete.crc)},
                        {"CRC calculé", entete.crcCalcule}};
  JsonOrdonne& tables = resultat["tables"] = JsonOrdonne::array();
  for (const TableLue& table : fichier.tables()) {
    char identifiant[16];
    std::snprintf(identifiant, sizeof identifiant, "%03u", table.numero);
    const char* const nom = nomClasseLigne(table.numero);
    tables.push_back({{"table", identifiant},
                      {"nom", nom == nullptr ? "" : nom},
                      {"lignes", table.nombreLignes},
                      {"octets", table.taille},
                      {"état", nomEtat(fichier, table.etat)}});
  }
  if (!fichier.anomalie().empty()) {
    resultat["anomalie"] = fichier.anomalie();
  }
  return resultat;
}

JsonOrdonne listerTable(const FichierReference& fichier, const TableLue& table, CodeRetour& cr) {
  const std::unique_ptr<LignesTable> lignes = fichier.lireLignes(table, cr);
  return lignes == nullptr ? JsonOrdonne()
                           : lignesEnJson(table.numero, *lignes, std::type_identity<Catalogue>{});
}

JsonOrdonne listerActe(const NiveauActe& acte) { return niveauEnJson(acte); }

unsigned numeroDeTable(std::string_view nom) {
  const bool chiffres = !nom.empty() && nom.size() <= 3 && nom.find_first_not_of("0123456789") == nom.npos;
  unsigned numero = 0;
  if (chiffres) {
    for (const char c : nom) {
      numero = numero * 10 + static_cast<unsigned>(c - '0');
    }
    return numero < NOMBRE_TABLES ? numero : NOMBRE_TABLES;
  }
  while (numero < NOMBRE_TABLES && (nomClasseLigne(numero) == nullptr || nom != nomClasseLigne(numero))) {
    ++numero;
  }
  return numero;
}

}  // namespace noxlux::compilateur
