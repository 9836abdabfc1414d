#include "referent/referentiel.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <new>

#include "basics/trace.h"
#include "fichier/crc16.h"
#include "fichier/fichier_ouvert.h"
#include "fichier/lecteur.h"
#include "referent/modification_donnees.h"

namespace noxlux {

Referentiel::Referentiel(CompteursAcces* compteurs)
    : acces(compteurs == nullptr ? accesPropre_ : *compteurs) {
  Trace::ecrire(TRACE_CHARGEMENT, "Referentiel::Referentiel : construction du referentiel");
}

Referentiel::~Referentiel() {
  Trace::ecrire(TRACE_CHARGEMENT, "~Referentiel::Referentiel : Destruction du referentiel");
}

void Referentiel::lireDateSysteme(Date& date) {
  const std::time_t maintenant = std::time(nullptr);
  std::tm local{};
  localtime_r(&maintenant, &local);
  date = Date(static_cast<unsigned short>(local.tm_year + 1900), static_cast<unsigned char>(local.tm_mon + 1),
              static_cast<unsigned char>(local.tm_mday));
}

namespace {

// Copies a directory given by the caller; out of memory, the store can still tell why.
bool copierRepertoire(std::string& repertoire, const char* source) {
  try {
    repertoire = source;
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

CodeRetour signalerOuverture(const std::string& nom, CodeRetour cr) {
  Trace::erreur(TRACE_CHARGEMENT, "ERREUR : Probleme d'ouverture du fichier %s, %s", nom.c_str(),
                std::strerror(errno));
  return cr;
}

// The first failure is kept; a file that does not close is one.
CodeRetour fermer(FichierOuvert& fichier, CodeRetour cr, CodeRetour crFermeture) {
  Trace::ecrire(TRACE_CHARGEMENT, "Fermeture du fichier");
  if (!fichier.fermer()) {
    Trace::erreur(TRACE_CHARGEMENT, "ERREUR : probleme lors de la fermeture du fichier: %s",
                  std::strerror(errno));
    return cr == NOX_CR_OK ? crFermeture : cr;
  }
  return cr;
}

// What the two files say of the same faults in their tables.
struct MessagesTables {
  FormatVerifie<> allocation;
  FormatVerifie<> construction;
  FormatVerifie<> inconnue;
  FormatVerifie<> dejaChargee;
};
constexpr MessagesTables MESSAGES_REFERENCE{
    "ERREUR : probleme lors de la creation de la table",
    "ERREUR : probleme d'allocation memoire : Table* table = new Table(...)",
    "WARNING : Identifiant de la table inconnu : table ignoree", "ERREUR : Table deja chargee"};
constexpr MessagesTables MESSAGES_MODIFICATION{
    "ERREUR: probleme d'allocation memoire lors de la creation de la table",
    "ERREUR: probleme d'allocation memoire table = new Table(...)",
    "WARNING: identifiant de table inconnu, table ignoree", "ERREUR : table deja chargee"};

CodeRetour echouer(FormatVerifie<> message, CodeRetour cr) {
  Trace::erreur(TRACE_CHARGEMENT, message);
  return cr;
}

// What the two files answer for the same faults of their checksum.
struct CodesCRC {
  CodeRetour lecture;
  CodeRetour different;
};
constexpr CodesCRC CRC_REFERENCE{NOX_CR_LECTURE_REFERENCE, NOX_CR_CRC_REFERENCE};
constexpr CodesCRC CRC_MODIFICATION{NOX_CR_LECTURE_MODIF, NOX_CR_CRC_MODIF};

CodeRetour controlerCRC(Lecteur& lecteur, std::FILE* fichier, const std::string& nom, const CodesCRC& codes) {
  std::uint16_t lu = 0;
  std::uint16_t calcule = 0;
  if (lecteur.lireCRC(lu) != NOX_CR_OK) {
    return echouer("ERREUR : probleme de lecture du CRC", codes.lecture);
  }
  if (!calculerCRC16(fichier, calcule)) {
    return echouer("ERREUR : le CRC du fichier ne peut etre calcule", codes.lecture);
  }
  if (lu != calcule) {
    Trace::erreur(TRACE_CHARGEMENT, "ERREUR : CRC du fichier %s different du CRC calcule", nom.c_str());
    return codes.different;
  }
  return NOX_CR_OK;
}

}  // namespace

CodeRetour Referentiel::chargerReferentiel(const char* pcRepertoire, const char* pcRepertoireModification,
                                           const char* pcVersionLogicielle, const char* pcVersionMinimale) {
  exiger(pcRepertoire != nullptr, "pcRepertoire!=__null");
  exiger(pcRepertoireModification != nullptr, "pcRepertoireModification!=__null");
  exiger(pcVersionLogicielle != nullptr, "pcVersionLogicielle!=__null");
  exiger(pcVersionMinimale != nullptr, "pcVersionMinimale!=__null");
  exiger(nombreTables == 0, "nombreTables==0");
  CodeRetour cr = NOX_CR_OK;
  BlocTrace bloc(TRACE_CHARGEMENT, cr, "Referentiel::chargerReferentiel : Chargement du referentiel");
  bloc.terminerPar("Code retour de Referentiel::chargerReferentiel : 0x%04X");
  Trace::ecrire(TRACE_CHARGEMENT, "Parametres:");
  Trace::ecrire(TRACE_CHARGEMENT, "   Repertoire = %s", pcRepertoire);
  Trace::ecrire(TRACE_CHARGEMENT, "   RepertoireModification = %s", pcRepertoireModification);
  Trace::ecrire(TRACE_CHARGEMENT, "   Version logicielle NOX = %s", pcVersionLogicielle);
  Trace::ecrire(TRACE_CHARGEMENT, "   Version minimale exigee du referentiel = %s", pcVersionMinimale);

  cr = chargerFichiers(pcRepertoire, pcRepertoireModification, pcVersionLogicielle, pcVersionMinimale);
  if (cr == NOX_CR_OK) {
    cr = appliquerModifications();
  }
  return cr;
}

CodeRetour Referentiel::chargerFichiers(const char* pcRepertoire, const char* pcRepertoireModification,
                                        const char* pcVersionLogicielle, const char* pcVersionMinimale) {
  if (!copierRepertoire(repertoire, pcRepertoire)) {
    return echouer("ERREUR : Probleme lors de l'allocation memoire du nom de repertoire", NOX_CR_MEMOIRE);
  }
  if (!copierRepertoire(repertoireModification, pcRepertoireModification)) {
    return echouer("ERREUR : Probleme lors de l'allocation memoire du nom de repertoire de modification",
                   NOX_CR_MEMOIRE);
  }
  const CodeRetour cr = chargerFichierReference(pcVersionLogicielle, pcVersionMinimale);
  return cr == NOX_CR_OK ? chargerModifications() : cr;
}

CodeRetour Referentiel::chargerFichierReference(const char* versionLogicielle, const char* versionMinimale) {
  const std::string nom = nomCompletFichier(repertoire, NOM_FICHIER_REFERENCE);
  Trace::ecrire(TRACE_CHARGEMENT, "Ouverture du fichier %s", nom.c_str());
  FichierOuvert fichier(nom);
  if (!fichier.estOuvert()) {
    return signalerOuverture(nom, NOX_CR_OUVERTURE_REFERENCE);
  }
  Lecteur lecteur(fichier.lire());
  CodeRetour cr = controlerCRC(lecteur, fichier.lire(), nom, CRC_REFERENCE);
  if (cr == NOX_CR_OK) {
    cr = lireEnteteRef(lecteur, entete);
  }
  if (cr == NOX_CR_OK) {
    cr = controlerNumerosVersions(versionLogicielle, versionMinimale);
  }
  if (cr == NOX_CR_OK) {
    cr = retenirReference(lecteur);
  }
  if (cr == NOX_CR_OK) {
    cr = lireTablesReference(lecteur);
  }
  if (cr == NOX_CR_OK) {
    cr = controlerTables();
  }
  return fermer(fichier, cr, NOX_CR_OUVERTURE_REFERENCE);
}

CodeRetour Referentiel::retenirReference(Lecteur& lecteur) {
  const std::uint32_t fin = lecteur.positionCourante();
  tailleReference_ = lecteur.taille();
  debutReference_.resize(fin);
  CodeRetour cr = lecteur.positionner(0);
  if (cr == NOX_CR_OK) {
    cr = lecteur.lireChaineFixe(debutReference_.data(), fin);
  }
  return cr == NOX_CR_OK ? cr : echouer("ERREUR : l'entete ne se relit pas", cr);
}

CodeRetour Referentiel::exigerReferenceChargee(Lecteur& lecteur, const std::string& nom) const {
  if (debutReference_.empty()) {
    return NOX_CR_OK;  // a store made in memory
  }
  std::string debut(debutReference_.size(), '\0');
  if (lecteur.taille() == tailleReference_ &&
      lecteur.lireChaineFixe(debut.data(), debut.size()) == NOX_CR_OK && debut == debutReference_) {
    return NOX_CR_OK;
  }
  Trace::erreur(TRACE_CHARGEMENT, "ERREUR : le fichier %s n'est plus celui qui a ete charge", nom.c_str());
  return NOX_CR_LECTURE_REFERENCE;
}

CodeRetour Referentiel::controlerNumerosVersions(const char* versionLogicielle,
                                                 const char* versionMinimale) const {
  constexpr std::size_t LONGUEUR = 4;
  if (std::strncmp(entete.version.entier().data(), versionMinimale, LONGUEUR) < 0) {
    return echouer(
        "ERREUR: Version du referentiel differente de la version attendue par la partie logicielle",
        NOX_CR_VERSION_REFERENCE);
  }
  if (std::strncmp(versionLogicielle, entete.versionMinLogicielle.entier().data(), LONGUEUR) < 0) {
    return echouer("ERREUR: Version logicielle différente de la version minimale attendue par le progiciel",
                   NOX_CR_VERSION_REFERENCE);
  }
  return NOX_CR_OK;
}

// The index is the last table: what follows it is act records.
CodeRetour Referentiel::lireTablesReference(Lecteur& lecteur) {
  bool indexLu = false;
  while (nombreTables < NOMBRE_TABLES_REFERENCE && !indexLu) {
    char identifiant[4];
    std::uint32_t nombreLignes = 0;
    std::int32_t offset = 0;
    CodeRetour cr = lecteur.lireEnteteTable(identifiant, nombreLignes, offset);
    if (cr == FIN_DE_FICHIER) {
      break;
    }
    if (cr == NOX_CR_OK) {
      cr = lireUneTable(lecteur, identifiant, nombreLignes, offset, true);
    }
    if (cr != NOX_CR_OK) {
      return cr;
    }
    indexLu = std::strcmp(identifiant, "000") == 0;
  }
  if (!indexLu) {
    return echouer("ERREUR : la table d'index n'a pas ete trouvee", NOX_CR_LECTURE_REFERENCE);
  }
  if (nombreTables < NOMBRE_TABLES_REFERENCE) {
    return echouer("ERREUR : Nombre de tables inferieur au nombre attendu", NOX_CR_TABLES_REFERENCE);
  }
  actes.resize(lignes<Index>().size());
  return NOX_CR_OK;
}

// Reads the table whose header has been read, or skips it, and puts it into its slot.
CodeRetour Referentiel::lireUneTable(Lecteur& lecteur, const char* identifiant, std::uint32_t nombreLignes,
                                     std::int32_t offset, bool tableReference) {
  const MessagesTables& messages = tableReference ? MESSAGES_REFERENCE : MESSAGES_MODIFICATION;
  const auto numero = static_cast<unsigned>(lireNombreDecimal(identifiant));
  const bool inconnue = (tableReference ? Table::testerIdentifiantTableRef(numero)
                                        : Table::testerIdentifiantTableModif(numero)) == ETAT_INCONNUE;
  if (!inconnue && !Table::nombreLignesPlausible(numero, nombreLignes, lecteur.tailleTable())) {
    return echouer("ERREUR : nombre de lignes superieur a ce que la table contient",
                   NOX_CR_LECTURE_REFERENCE);
  }
  std::unique_ptr<Table> table;
  try {
    table = std::make_unique<Table>(identifiant, nombreLignes, offset, tableReference);
  } catch (const std::bad_alloc&) {
    return echouer(messages.construction, NOX_CR_MEMOIRE);
  }
  const EtatTable etat = table->etatTable();
  if (etat == ETAT_ERREUR_ALLOCATION) {
    return echouer(messages.allocation, NOX_CR_MEMOIRE);
  }
  if (inconnue) {
    Trace::ecrire(TRACE_CHARGEMENT, messages.inconnue);
    return lecteur.tableSuivante();
  }
  if (tables[numero] != nullptr) {
    return echouer(messages.dejaChargee, NOX_CR_LECTURE_REFERENCE);
  }
  CodeRetour cr = NOX_CR_OK;
  if (etat == ETAT_NON_CHARGEE) {
    Trace::ecrire(TRACE_CHARGEMENT, "Chargement de la table %03hu différé",
                  static_cast<unsigned short>(numero));
    cr = lecteur.tableSuivante();
  } else {
    cr = table->lireDonnees(lecteur, lecteur.tailleTable());
  }
  if (cr == NOX_CR_OK) {
    tables[numero] = std::move(table);
    ++nombreTables;
  }
  return cr;
}

CodeRetour Referentiel::chargerModifications() {
  const std::string nom = nomCompletFichier(repertoireModification, NOM_FICHIER_MODIFICATION);
  Trace::ecrire(TRACE_CHARGEMENT, "Ouverture du fichier %s", nom.c_str());
  FichierOuvert fichier(nom);
  if (!fichier.estOuvert() && errno != ENOENT) {
    return signalerOuverture(nom, NOX_CR_OUVERTURE_MODIF);
  }
  signalerRestes(fichier.estOuvert());
  if (!fichier.estOuvert()) {
    return creerTablesModifications();
  }
  return fermer(fichier, lireModifications(fichier.lire(), nom), NOX_CR_OUVERTURE_MODIF);
}

// What an interrupted save left beside modifref.nox is not taken up: it is told.
void Referentiel::signalerRestes(bool modification) const {
  const std::string sauvegarde = nomCompletFichier(repertoireModification, NOM_SAUVEGARDE_MODIFICATION);
  const std::string temporaire = nomCompletFichier(repertoireModification, NOM_TEMPORAIRE_MODIFICATION);
  if (!modification && access(sauvegarde.c_str(), F_OK) == 0) {
    Trace::erreur(TRACE_CHARGEMENT, "ERREUR : le fichier %s est seul, une sauvegarde a ete interrompue",
                  sauvegarde.c_str());
  }
  if (access(temporaire.c_str(), F_OK) == 0) {
    Trace::erreur(TRACE_CHARGEMENT,
                  "ERREUR : le fichier %s est le reste d'une sauvegarde, interrompue ou en cours",
                  temporaire.c_str());
  }
}

CodeRetour Referentiel::lireModifications(std::FILE* fichier, const std::string& nom) {
  versionConnue_ = lireEmpreinte(fichier);
  Lecteur lecteur(fichier);
  CodeRetour cr = controlerCRC(lecteur, fichier, nom, CRC_MODIFICATION);
  CodeFixe<4> version;
  if (cr != NOX_CR_OK) {
    return cr;
  }
  if (lireVersionEntete(lecteur, version) != NOX_CR_OK) {
    return echouer("ERREUR : probleme lors de la lecture du numero de version du referentiel",
                   NOX_CR_LECTURE_MODIF);
  }
  if (version != entete.version) {
    // Changes made to another reference: set aside.
    return creerTablesModifications();
  }
  cr = lireEnteteModif(lecteur, entete);
  return cr == NOX_CR_OK ? lireTablesModifications(lecteur) : cr;
}

CodeRetour Referentiel::lireTablesModifications(Lecteur& lecteur) {
  char identifiant[4];
  std::uint32_t nombreLignes = 0;
  std::int32_t offset = 0;
  CodeRetour cr = lecteur.lireEnteteTable(identifiant, nombreLignes, offset);
  while (cr == NOX_CR_OK) {
    cr = lireUneTable(lecteur, identifiant, nombreLignes, offset, false);
    if (cr != NOX_CR_OK) {
      return cr;
    }
    cr = lecteur.lireEnteteTable(identifiant, nombreLignes, offset);
  }
  if (cr != FIN_DE_FICHIER) {
    return echouer("ERREUR lors de la lecture de l'entete de la table", NOX_CR_LECTURE_MODIF);
  }
  Trace::ecrire(TRACE_CHARGEMENT, "Fin du fichier");
  if (nombreTables < NOMBRE_TABLES_REFERENCE + NOMBRE_TABLES_MODIFICATION) {
    return echouer("ERREUR: nombre de tables trouvees inferieur au nombre attendu", NOX_CR_TABLES_MODIF);
  }
  return NOX_CR_OK;
}

CodeRetour Referentiel::creerTablesModifications() {
  for (unsigned i = 0; i < NOMBRE_TABLES_MODIFICATION; ++i) {
    const unsigned numero = PREMIERE_TABLE_MODIFICATION + i;
    char identifiant[4];
    std::snprintf(identifiant, sizeof identifiant, "%03u", numero % 1000);
    tables[numero] = std::make_unique<Table>(identifiant, 0, 0, false);
  }
  nombreTables = static_cast<std::uint16_t>(nombreTables + NOMBRE_TABLES_MODIFICATION);
  return NOX_CR_OK;
}

CodeRetour Referentiel::appliquerModifications() {
  using Application = CodeRetour (ModificationDonnees::*)();
  constexpr Application APPLICATIONS[] = {
      &ModificationDonnees::appliquerModificationsReglesAssociationsNP,
      &ModificationDonnees::appliquerModificationsModificateurs,
      &ModificationDonnees::appliquerModificationsReductionNC,
      &ModificationDonnees::appliquerModificationsSeuils,
      &ModificationDonnees::appliquerModificationsNouveauCodeRegroupement};
  ModificationDonnees modification(this);
  for (const Application application : APPLICATIONS) {
    const CodeRetour cr = (modification.*application)();
    if (cr != NOX_CR_OK) {
      return cr;
    }
  }
  return NOX_CR_OK;
}

// One deferred table at a time: the check that follows looks at the others.
CodeRetour Referentiel::chargerTable(unsigned short identifiant) {
  CodeRetour cr = NOX_CR_OK;
  BlocTrace bloc(TRACE_CHARGEMENT, cr, "Referentiel::chargerTable : Chargement d'une table");
  bloc.terminerPar("Referentiel::chargerTable : retour = 0x%04X");
  if (tableEnChargement_.exchange(true, std::memory_order_acquire)) {
    Trace::erreur(TRACE_CHARGEMENT, "Table en cours de chargement par un autre thread");
    cr = NOX_CR_OCCUPE;
    return cr;
  }
  struct Reservation {
    std::atomic<bool>& reserve;
    ~Reservation() { reserve.store(false, std::memory_order_release); }
  } const reservation{tableEnChargement_};
  Table& cible = table(identifiant);
  // Another may have loaded it in between.
  cr = cible.etatTable() == ETAT_CHARGEE ? CodeRetour{NOX_CR_OK} : chargerTableReservee(cible);
  return cr;
}

CodeRetour Referentiel::chargerTableReservee(Table& cible) {
  const std::string nom = nomCompletFichier(repertoire, NOM_FICHIER_REFERENCE);
  FichierOuvert fichier(nom);
  if (!fichier.estOuvert()) {
    Trace::erreur(TRACE_CHARGEMENT, "ERREUR : Probleme d'ouverture du fichier %s: %s", nom.c_str(),
                  std::strerror(errno));
    return NOX_CR_OUVERTURE_REFERENCE;
  }
  Lecteur lecteur(fichier.lire());
  CodeRetour cr = exigerReferenceChargee(lecteur, nom);
  if (cr == NOX_CR_OK) {
    cr = cible.chargerTable(lecteur);
  }
  if (cr == NOX_CR_OK) {
    cr = controlerTables();
  }
  cr = fermer(fichier, cr, NOX_CR_OUVERTURE_REFERENCE);
  if (cr == NOX_CR_OK) {
    cible.publier();
  } else {
    cible.dechargerTable();
  }
  return cr;
}

CodeRetour Referentiel::chargerActe(std::uint32_t positionActe, NiveauActe& acte, const char* code) {
  CodeRetour cr = NOX_CR_OK;
  BlocTrace bloc(TRACE_CHARGEMENT, cr, "Referentiel::chargerActe : Chargement de l'acte %s", code);
  bloc.terminerPar("Code retour de Referentiel::chargerActe : 0x%04X");
  Trace::ecrire(TRACE_CHARGEMENT, "Parametres positionActe = 0x%08lX",
                static_cast<unsigned long>(positionActe));
  const std::string nom = nomCompletFichier(repertoire, NOM_FICHIER_REFERENCE);
  FichierOuvert fichier(nom);
  if (!fichier.estOuvert()) {
    Trace::erreur(TRACE_CHARGEMENT, "ERREUR : Probleme d'ouverture du fichier %s: %s", nom.c_str(),
                  std::strerror(errno));
    cr = NOX_CR_OUVERTURE_REFERENCE;
    return cr;
  }
  Lecteur lecteur(fichier.lire());
  if (exigerReferenceChargee(lecteur, nom) != NOX_CR_OK) {
    cr = NOX_CR_LECTURE_REFERENCE;
  } else if (lecteur.positionner(positionActe) != NOX_CR_OK) {
    Trace::erreur(TRACE_CHARGEMENT, "ERREUR : probleme lors du positionnement dans le fichier: %s",
                  std::strerror(errno));
    cr = NOX_CR_LECTURE_REFERENCE;
  } else {
    cr = acte.lireNiveauActe(lecteur);
  }
  if (cr == NOX_CR_OK) {
    cr = appliquerModificationsActe(acte, code);
  }
  cr = fermer(fichier, cr, NOX_CR_OUVERTURE_REFERENCE);
  return cr;
}

CodeRetour Referentiel::appliquerModificationsActe(NiveauActe& acte, const char* code) {
  ModificationDonnees modification(this);
  const Code codeActe{std::string_view(code)};
  const CodeRetour cr = modification.appliquerModificationsCodesRegroupement(codeActe, acte);
  return cr == NOX_CR_OK ? modification.appliquerModificationsHistoriquePhase(codeActe, acte) : cr;
}

void Referentiel::dump(unsigned short module) const {
  Trace::ecrire(module, "-------------------------------");
  Trace::ecrire(module, "DUMP DES DONNEES DU REFERENTIEL");
  Trace::ecrire(module, "-------------------------------");
  Trace::ecrire(module, "");
  Trace::ecrire(module, "Version du Referentiel  : \"%.4s\"", entete.version.entier().data());
  Trace::ecrire(module, "Version de la Base CCAM : \"%.5s\"", entete.versionBaseCCAM.entier().data());
  Trace::ecrire(module, "Date de derniere modification : %02u/%02u/%04u", entete.dateModification.jour,
                entete.dateModification.mois, entete.dateModification.annee);
  Trace::ecrire(module, "Version minimum de la partie logicielle : \"%.4s\"",
                entete.versionMinLogicielle.entier().data());
  Trace::ecrire(module, "Numero de revision : %u", entete.numeroRevision);
  Trace::ecrire(module, "Variante du référentiel : \"%.10s\"", entete.variante.entier().data());
  Trace::ecrire(module, "Commentaire : %s", entete.commentaire.c_str());
  // The request that asks for the dump is no reader of the data.
  Trace::ecrire(module, "Compteur lecture  : %u", std::max(acces.lecteurs(), 1U) - 1);
  Trace::ecrire(module, "Compteur ecriture : %u", acces.ecrivains());
  Trace::ecrire(module, "Repertoire : %s", repertoire.c_str());
  Trace::ecrire(module, "");
  Trace::ecrire(module, "Nombre de tables en memoire : %u", nombreTables);
  Trace::ecrire(module, "");
  for (unsigned i = 0; i < NOMBRE_TABLES; ++i) {
    if (tables[i] != nullptr) {
      Trace::ecrire(module, "TABLE D'INDICE %u :", i);
      tables[i]->dump(module);
    }
  }
  dumpActes(module);
  Trace::ecrire(module, "");
  Trace::ecrire(module, "FIN DUMP");
}

void Referentiel::dumpActes(unsigned short module) const {
  Trace::ecrire(module, "");
  Trace::ecrire(module, "*********************");
  Trace::ecrire(module, "DONNEES DE TYPE ACTE:");
  Trace::ecrire(module, "*********************");
  bool aucun = true;
  for (unsigned i = 0; i < actes.size(); ++i) {
    const NiveauActe* acte = actes[i].acte();
    if (acte == nullptr) {
      continue;
    }
    aucun = false;
    Trace::ecrire(module, "");
    Trace::ecrire(module, "-----------------");
    Trace::ecrire(module, "ACTE D'INDICE %u:", i);
    Trace::ecrire(module, "-----------------");
    acte->dump(module);
  }
  if (aucun) {
    Trace::ecrire(module, "Aucune donnee de type acte en memoire");
  }
}

}  // namespace noxlux
