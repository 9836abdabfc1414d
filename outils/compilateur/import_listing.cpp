#include "compilateur/import_listing.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>

#include "compilateur/csv.h"
#include "compilateur/ecriture_valeurs.h"
#include "compilateur/systeme.h"
#include "compilateur/transcodage.h"
#include "compilateur/valeurs_listing.h"

namespace noxlux::compilateur {

namespace {

enum Colonne : std::size_t {
  COL_CODE,
  COL_VIDE,
  COL_TEXTE,
  COL_ACTIVITE,
  COL_PHASE,
  COL_PRIX,
  COL_PRIX_HORS_SECTEUR,
  COL_REMBOURSEMENT,
  COL_ACCORD,
  COL_EXONERATION,
  COL_REGROUPEMENT,
  NOMBRE_COLONNES
};

// The columns as corrections name them.
constexpr std::array<std::string_view, NOMBRE_COLONNES> NOMS_COLONNES = {
    "code",          "",       "texte",       "activite",    "phase", "prix", "prix_hors_secteur",
    "remboursement", "accord", "exoneration", "regroupement"};
// Not a column: the whole record, found by its text.
constexpr std::string_view LIGNE_ENTIERE = "ligne";

// What the title of each column holds.
constexpr std::array<std::string_view, NOMBRE_COLONNES> TITRES = {"Code",
                                                                  "",
                                                                  "Texte",
                                                                  "Activité",
                                                                  "Phase",
                                                                  "Secteur 1",
                                                                  "Hors secteur 1",
                                                                  "Rembt",
                                                                  "Accord Préalable",
                                                                  "Exo",
                                                                  "Regroupement"};

constexpr std::string_view CHAPITRE_MODIFICATEURS = "19.03";
constexpr std::uint32_t NIVEAU_1 = 1000000;  // from a chapter of the first level to the next
// A dozen times what the listing holds: more would only exhaust the memory.
constexpr std::size_t ENREGISTREMENTS_MAX = 300000;
constexpr std::size_t ACTES_MAX = 100000;
constexpr std::size_t ASSOCIES_MAX = 10000;
constexpr std::size_t USAGES_D_UN_MODIFICATEUR = 10;
constexpr unsigned PREMIERE_VERSION = 200;
// What an act is that nothing more is told of.
constexpr char ACTE_ISOLE = '0';
constexpr char TOUS_FRAIS = 'A';

// Whether the bytes can be the listing at all; what is wrong otherwise.
std::string controlerOctets(std::string_view texte) {
  if (texte.find_first_not_of(" \t\r\n") == std::string_view::npos) {
    return "le fichier est vide";
  }
  if (texte.starts_with("\xFF\xFE") || texte.starts_with("\xFE\xFF") ||
      texte.find('\0') != std::string_view::npos) {
    return "le fichier est en UTF-16 : l'enregistrer en CSV UTF-8";
  }
  const std::size_t invalide = premierOctetInvalide(texte);
  if (invalide != std::string_view::npos) {
    const auto ligne =
        1 + std::count(texte.begin(), texte.begin() + static_cast<std::ptrdiff_t>(invalide), '\n');
    return phrase("le fichier n'est pas en UTF-8 (premier caractère fautif à la ligne ",
                  std::to_string(ligne), ") : l'enregistrer en CSV UTF-8");
  }
  return {};
}

// French spreadsheets separate by semicolons: the title, alone on its line, tells.
char separateurDe(std::string_view texte) {
  const std::string_view titre = texte.substr(0, texte.find('\n'));
  return std::count(titre.begin(), titre.end(), ';') > std::count(titre.begin(), titre.end(), ',') ? ';'
                                                                                                   : ',';
}

std::string nomColonne(std::size_t colonne) { return std::string(1, static_cast<char>('A' + colonne)); }

std::string surUneLigne(std::string_view texte) {
  std::string ligne(texte);
  std::replace(ligne.begin(), ligne.end(), '\n', ' ');
  return ligne;
}

// What is wrong with the column titles; empty when nothing is.
std::string controlerTitres(const std::vector<std::string>& champs) {
  for (std::size_t colonne = 0; colonne < NOMBRE_COLONNES; ++colonne) {
    const bool presente = colonne < champs.size();
    const std::string_view titre = presente ? rogner(champs[colonne]) : std::string_view();
    const bool juste = TITRES[colonne].empty() ? titre.empty() : titre.find(TITRES[colonne]) != titre.npos;
    if (!presente || !juste) {
      return phrase("la colonne ", nomColonne(colonne), " devrait être « ",
                    TITRES[colonne].empty() ? "(sans titre)" : TITRES[colonne], " », ",
                    !presente       ? "et elle manque"
                    : titre.empty() ? "et elle est sans titre"
                                    : phrase("et non « ", surUneLigne(titre), " »"));
    }
  }
  return champs.size() == NOMBRE_COLONNES
             ? std::string()
             : phrase("il y a ", std::to_string(champs.size()), " colonnes au lieu de ",
                      std::to_string(std::size_t{NOMBRE_COLONNES}));
}

template <class T>
void ajouterUneFois(std::vector<T>& liste, const T& valeur) {
  if (std::find(liste.begin(), liste.end(), valeur) == liste.end()) {
    liste.push_back(valeur);
  }
}

class LectureListing {
 public:
  LectureListing(std::uint32_t source, const OptionsListing& options, char separateur, Modele& liste,
                 BilanImport& bilan, Rapport& rapport)
      : colonne_(options.colonne == ColonnePrix::SECTEUR_1 ? COL_PRIX : COL_PRIX_HORS_SECTEUR),
        reglePleine_(options.reglePleine),
        separateur_(separateur),
        correctifs_(options.correctifs),
        liste_(liste),
        bilan_(bilan),
        rapport_(rapport),
        lieu_{source, 0} {}

  bool lire(std::string_view texte) {
    LecteurCsv lecteur(texte, separateur_);
    EnregistrementCsv enregistrement;
    if (!lireEntete(lecteur)) {
      return false;
    }
    std::size_t enregistrements = 0;
    while (lecteur.lire(enregistrement)) {
      bilan_.lire("enregistrements");
      lieu_.ligne = enregistrement.ligne;
      if (++enregistrements > ENREGISTREMENTS_MAX || liste_.actes.size() > ACTES_MAX) {
        return refuser("le fichier est bien plus grand que la liste publique : ce n'est pas elle");
      }
      if (enregistrement.inacheve || enregistrement.sansFinDeLigne) {
        return refuser("le fichier est tronqué : il s'arrête au milieu de cet enregistrement");
      }
      if (enregistrement.malForme || enregistrement.nombre != NOMBRE_COLONNES) {
        bilan_.ecarter("enregistrement mal formé", lieu_,
                       phrase(std::to_string(enregistrement.nombre), " champs"));
        quitter();
        continue;
      }
      corriger(enregistrement.champs);
      interpreter(enregistrement.champs);
    }
    finirActe();
    direCorrectifsSansObjet();
    return controlerFin();
  }

 private:
  template <class... T>
  bool refuser(const T&... morceaux) {
    rapport_.signaler(lieu_, phrase(morceaux...));
    return false;
  }

  // Title and column titles.
  bool lireEntete(LecteurCsv& lecteur) {
    EnregistrementCsv titre;
    EnregistrementCsv colonnes;
    const bool deux = lecteur.lire(titre) && lecteur.lire(colonnes);
    lieu_.ligne = 1;
    if (!deux || colonnes.inacheve || colonnes.sansFinDeLigne) {
      return refuser("le fichier est tronqué : les titres de colonnes manquent");
    }
    bilan_.lire("enregistrements", 2);
    const std::optional<TitreListe> lu = lireTitre(titre.champs[0]);
    if (!lu) {
      return refuser(
          "le titre ne dit pas la version et la date d'application, comme dans « CCAM version 81 "
          "applicable 01/01/2026 »");
    }
    lieu_.ligne = colonnes.ligne;
    const std::string faute = controlerTitres(colonnes.champs);
    if (!faute.empty()) {
      return refuser(faute);
    }
    date_ = lu->date;
    Entete& entete = liste_.entetes.emplace_back();
    entete.lieu = {lieu_.source, 1};
    const std::string version = std::to_string(lu->version);
    entete.versionBaseCCAM = CodeFixe<5>(std::string(5 - version.size(), '0') + version);
    // Above the first version that the library reads, and rising with the published one.
    const std::string propre = std::to_string(lu->version + PREMIERE_VERSION);
    entete.version = CodeFixe<4>(std::string(4 - std::min<std::size_t>(propre.size(), 4), '0') + propre);
    entete.date = date_;
    entete.variante = CodeFixe<10>("LISTE" + std::string(5 - version.size(), '0') + version);
    entete.commentaire = convertir(titre.champs[0]);
    Menu& racine = liste_.menus.emplace_back();
    racine.lieu = entete.lieu;
    racine.code = MENU_RACINE;
    racine.libelle = entete.commentaire;
    positionsMenus_[MENU_RACINE] = 0;
    return true;
  }

  bool controlerFin() {
    if (!chapitreModificateurs_) {
      return refuser("le fichier est tronqué : le chapitre ", CHAPITRE_MODIFICATEURS,
                     " des modificateurs, le dernier, manque");
    }
    std::map<char, std::size_t> usages;
    for (const Acte& acte : liste_.actes) {
      for (const char code : acte.activites.front().historiques.front().modificateurs) {
        ++usages[code];
      }
    }
    for (const auto& [code, nombre] : usages) {
      if (nombre >= USAGES_D_UN_MODIFICATEUR && !definis_.contains(code)) {
        return refuser("le fichier est tronqué : le chapitre ", CHAPITRE_MODIFICATEURS,
                       " ne définit pas le modificateur « ", std::string(1, code), " », que portent ",
                       std::to_string(nombre), " actes");
      }
    }
    ecarterAssociationsInconnues();
    return true;
  }

  void ecarterAssociationsInconnues() {
    for (Acte& acte : liste_.actes) {
      bool premiere = true;  // all activities hold the same list
      for (Activite& activite : acte.activites) {
        std::erase_if(activite.historiques.front().associations, [&](const AssociationActe& association) {
          const bool inconnue = !positionsActes_.contains(association.acte);
          if (inconnue && premiere) {
            ecarterAssociation(association.lieu, acte, association.acte.vue());
          }
          return inconnue;
        });
        premiere = false;
      }
    }
  }

  void ecarterAssociation(Lieu lieu, const Acte& acte, std::string_view code) {
    bilan_.ecarter("acte associé inconnu", lieu,
                   phrase("acte ", acte.code.vue(), ", associé « ", code, " »"));
  }

  // The text in ISO-8859-1, each replaced character being counted.
  std::string convertir(std::string_view utf8) {
    TexteLatin1 latin1 = versLatin1(rogner(utf8));
    for (const auto& [caractere, nombre] : latin1.translitteres) {
      bilan_.ajuster(phrase("caractère « ", caractere, " » remplacé par « ",
                            versUtf8(equivalentLatin1(caractere)), " »"),
                     lieu_, {}, nombre);
    }
    for (const auto& [caractere, nombre] : latin1.sansEquivalent) {
      bilan_.ajuster(phrase("caractère « ", caractere, " » sans équivalent, remplacé par « ? »"), lieu_, {},
                     nombre);
    }
    std::erase_if(latin1.texte,
                  [](char c) { return static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\t'; });
    return std::move(latin1.texte);
  }

  // Mends the misprints of the act that the record is of.
  void corriger(std::vector<std::string>& champs) {
    const std::string_view code = rogner(champs[COL_CODE]);
    if (estCodeActe(code)) {
      acteLu_ = CodeActe(code);
    } else if (estNumeroChapitre(code)) {
      acteLu_ = CodeActe();
    }
    for (const Correctif& correctif : correctifs_) {
      if (correctif.acte == acteLu_ && corriger(correctif, champs)) {
        corriges_.insert(&correctif);
      }
    }
  }

  // A text is mended where the misprint stands in it, any other cell when it is the misprint; `ligne` takes
  // the record out.
  bool corriger(const Correctif& correctif, std::vector<std::string>& champs) {
    const std::string imprime = versUtf8(correctif.imprime);
    if (correctif.colonne == LIGNE_ENTIERE) {
      const bool visee = rogner(champs[COL_TEXTE]) == imprime;
      if (visee) {
        std::fill(champs.begin(), champs.end(), std::string());
        bilan_.ajuster("ligne retirée par un correctif", lieu_, versUtf8(correctif.raison));
      }
      return visee;
    }
    const auto nom = std::find(NOMS_COLONNES.begin(), NOMS_COLONNES.end(), correctif.colonne);
    if (nom == NOMS_COLONNES.end()) {
      return false;
    }
    std::string& champ = champs[static_cast<std::size_t>(nom - NOMS_COLONNES.begin())];
    const std::size_t place = champ.find(imprime);
    if (imprime.empty() || place == std::string::npos ||
        (nom != NOMS_COLONNES.begin() + COL_TEXTE && rogner(champ) != imprime)) {
      return false;
    }
    champ.replace(place, imprime.size(), versUtf8(correctif.voulu));
    bilan_.ajuster("coquille corrigée", lieu_, versUtf8(correctif.raison));
    return true;
  }

  void direCorrectifsSansObjet() {
    for (const Correctif& correctif : correctifs_) {
      if (!corriges_.contains(&correctif)) {
        bilan_.prevenir("correctif sans objet : la liste ne porte pas ce qu'il corrige", correctif.lieu,
                        phrase(enTexte(correctif.acte), " : ", versUtf8(correctif.imprime)));
      }
    }
  }

  Acte* acte() { return dansActe_ ? &liste_.actes.back() : nullptr; }

  // What follows belongs to nothing that is kept.
  void quitter() {
    finirActe();
    perdu_ = true;
  }

  void interpreter(const std::vector<std::string>& champs) {
    const std::string_view code = rogner(champs[COL_CODE]);
    const std::string_view texte = rogner(champs[COL_TEXTE]);
    const bool avecActivite = !rogner(champs[COL_ACTIVITE]).empty();
    if (estCodeActe(code)) {
      commencerActe(code, texte);
    } else if (chapitreModificateurs_ && code.size() == 1) {
      definirModificateur(code[0], texte, champs);
      return;
    } else if (estNumeroChapitre(code)) {
      commencerChapitre(code, texte);
      return;
    } else if (code.starts_with('[')) {
      lireListeModificateurs(code);
    } else if (!code.empty()) {
      bilan_.ecarter("premier champ incompréhensible", lieu_, std::string(code));
      quitter();
      return;
    }
    lireMentions(champs);
    if (avecActivite) {
      lireActivite(champs, texte, estCodeActe(code));
    } else if (!texte.empty() && !estCodeActe(code)) {
      lireTexteSeul(champs, texte);
    }
  }

  void commencerChapitre(std::string_view numero, std::string_view titre) {
    finirActe();
    perdu_ = false;
    const std::uint32_t codeDuMenu = codeMenu(numero);
    bilan_.lire("chapitres");
    if (!positionsMenus_.emplace(codeDuMenu, liste_.menus.size()).second) {
      bilan_.ecarter("chapitre en double", lieu_, std::string(numero));
      perdu_ = true;
      return;
    }
    bilan_.garder("chapitres");
    chapitreModificateurs_ = chapitreModificateurs_ || numero == CHAPITRE_MODIFICATEURS;
    Menu& menu = liste_.menus.emplace_back();
    menu.lieu = lieu_;
    menu.code = codeDuMenu;
    menu.libelle = convertir(titre);
    menu.pere = pereDe(codeDuMenu, numero);
    modificateur_ = ' ';
  }

  // The nearest chapter above that the listing holds.
  std::uint32_t pereDe(std::uint32_t code, std::string_view numero) {
    bool direct = true;
    for (std::uint32_t rang = 100; rang <= NIVEAU_1; rang *= 100) {
      const std::uint32_t pere = code / rang * rang;
      if (pere == code) {
        continue;
      }
      if (positionsMenus_.contains(pere)) {
        if (!direct) {
          bilan_.ajuster("chapitre rattaché plus haut, son chapitre père manquant", lieu_,
                         std::string(numero));
        }
        return pere;
      }
      direct = false;
    }
    return MENU_RACINE;
  }

  void commencerActe(std::string_view code, std::string_view libelle) {
    finirActe();
    bilan_.lire("actes");
    const CodeActe codeActe(code);
    if (!positionsActes_.emplace(codeActe, lieu_.ligne).second) {
      bilan_.ecarter("acte en double", lieu_, std::string(code));
      perdu_ = true;
      return;
    }
    perdu_ = false;
    dansActe_ = true;
    Acte& nouveau = liste_.actes.emplace_back();
    nouveau.lieu = lieu_;
    nouveau.code = codeActe;
    nouveau.libelleLong = convertir(libelle);
    nouveau.libelleCourt = abreger(nouveau.libelleLong);
    nouveau.menu = liste_.menus.back().code;
    nouveau.creation = date_;
    nouveau.type = ACTE_ISOLE;
    nouveau.fraisDeplacement = TOUS_FRAIS;
    HistoriqueActe& historique = nouveau.historiques.emplace_back();
    historique.lieu = lieu_;
    historique.effet = date_;
    sousConditions_ = false;
    nonPrisEnCharge_ = false;
    modificateurs_.clear();
    associations_.clear();
  }

  // Completes the act that ends here with what its records told of it as a whole.
  void finirActe() {
    if (!dansActe_) {
      return;
    }
    dansActe_ = false;
    Acte& fini = liste_.actes.back();
    if (fini.activites.empty() || fini.libelleLong.empty()) {
      bilan_.ecarter(fini.activites.empty() ? "acte sans aucun prix" : "acte sans libellé", fini.lieu,
                     std::string(fini.code.vue()));
      positionsActes_.erase(fini.code);
      liste_.actes.pop_back();
      return;
    }
    bilan_.garder("actes");
    fini.historiques.front().admission = nonPrisEnCharge_ ? '2' : sousConditions_ ? '3' : '1';
    for (Activite& activite : fini.activites) {
      // The listing tells modifiers and associated acts once for all the activities of an act.
      HistoriqueActivite& historique = activite.historiques.front();
      historique.modificateurs = modificateurs_;
      historique.associations = associations_;
    }
  }

  void lireListeModificateurs(std::string_view texte) {
    if (acte() == nullptr) {
      ecarterOrphelin("liste de modificateurs sans acte", texte);
      return;
    }
    const std::optional<std::vector<char>> codes = ::noxlux::compilateur::lireModificateurs(texte);
    if (!codes) {
      bilan_.ecarter("liste de modificateurs incompréhensible", lieu_, std::string(texte));
      return;
    }
    for (const char code : *codes) {
      ajouterUneFois(modificateurs_, code);
    }
  }

  void ecarterOrphelin(std::string_view raison, std::string_view texte) {
    bilan_.ecarter(perdu_ ? "suite d'un enregistrement écarté" : raison, lieu_, std::string(texte));
  }

  // Conditional reimbursement, prior agreement and exemption, told on any record of an act.
  void lireMentions(const std::vector<std::string>& champs) {
    if (acte() == nullptr) {
      return;
    }
    HistoriqueActe& historique = acte()->historiques.front();
    const auto mention = [&](std::size_t colonne, std::string_view attendue) {
      const std::string_view lue = rogner(champs[colonne]);
      if (!lue.empty() && lue != attendue) {
        bilan_.ecarter("mention incompréhensible", lieu_,
                       phrase("colonne ", nomColonne(colonne), " : ", lue));
      }
      return lue == attendue;
    };
    sousConditions_ = mention(COL_REMBOURSEMENT, "RC") || sousConditions_;
    historique.ententePrealable = mention(COL_ACCORD, "AP") || historique.ententePrealable;
    const std::string_view exoneration = rogner(champs[COL_EXONERATION]);
    if (exoneration.empty()) {
      return;
    }
    const std::optional<std::vector<char>> codes = lireExonerations(exoneration);
    if (!codes) {
      bilan_.ecarter("code d'exonération incompréhensible", lieu_, std::string(exoneration));
      return;
    }
    for (const char code : *codes) {
      ajouterUneFois(historique.exonerations, code);
    }
  }

  void lireActivite(const std::vector<std::string>& champs, std::string_view texte, bool ligneDeLActe) {
    bilan_.lire("prix");
    const std::string_view activite = rogner(champs[COL_ACTIVITE]);
    const std::string_view phase = rogner(champs[COL_PHASE]);
    if (acte() == nullptr) {
      ecarterOrphelin("activité sans acte", texte);
      return;
    }
    const std::string ou = phrase("acte ", acte()->code.vue(), " activité ", activite, " phase ", phase);
    const std::optional<PrixListe> prix = lirePrix(rogner(champs[colonne_]));
    if (activite.size() != 1 || activite[0] < '0' || activite[0] > '9' || phase.size() != 1 ||
        phase[0] < '0' || phase[0] > '9') {
      bilan_.ecarter("activité ou phase incompréhensible", lieu_, ou);
    } else if (!prix) {
      bilan_.ecarter("prix incompréhensible", lieu_, phrase(ou, " : ", rogner(champs[colonne_])));
    } else {
      if (prix->ajuste) {
        bilan_.ajuster("prix mal écrit", lieu_, phrase(ou, " : ", rogner(champs[colonne_])));
      }
      ajouterPrix(activite[0], phase[0], *prix, rogner(champs[COL_REGROUPEMENT]), ou);
    }
    if (!ligneDeLActe && texte != "anesthésie") {
      ajouterTexte(acte()->notes, convertir(texte));
    }
  }

  void ajouterPrix(char codeActivite, char codePhase, const PrixListe& prix, std::string_view regroupement,
                   const std::string& ou) {
    Activite& activite = activiteDe(codeActivite);
    const auto memePhase = [&](const Phase& phase) { return phase.code == codePhase; };
    if (std::any_of(activite.phases.begin(), activite.phases.end(), memePhase)) {
      bilan_.ecarter("activité et phase en double", lieu_, ou);
      return;
    }
    bilan_.garder("prix");
    nonPrisEnCharge_ = nonPrisEnCharge_ || !prix.prisEnCharge;
    Phase& phase = activite.phases.emplace_back();
    phase.lieu = lieu_;
    phase.code = codePhase;
    HistoriquePhase& historique = phase.historiques.emplace_back();
    historique.lieu = lieu_;
    historique.effet = date_;
    historique.prix = prix.montant;
    lireRegroupement(activite.historiques.front(), regroupement, ou);
  }

  Activite& activiteDe(char code) {
    for (Activite& activite : acte()->activites) {
      if (activite.code == code) {
        return activite;
      }
    }
    Activite& nouvelle = acte()->activites.emplace_back();
    nouvelle.lieu = lieu_;
    nouvelle.code = code;
    HistoriqueActivite& historique = nouvelle.historiques.emplace_back();
    historique.lieu = lieu_;
    historique.effet = date_;
    return nouvelle;
  }

  void lireRegroupement(HistoriqueActivite& historique, std::string_view code, const std::string& ou) {
    const auto permis = [](char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z'); };
    if (code.empty()) {
      return;
    }
    if (code.size() > 3 || !std::all_of(code.begin(), code.end(), permis)) {
      bilan_.ecarter("code de regroupement incompréhensible", lieu_, phrase(ou, " : ", code));
      return;
    }
    const CodeFixe<3> lu(code);
    if (!historique.regroupement.vue().empty() && historique.regroupement != lu) {
      bilan_.ecarter("code de regroupement autre que celui de la première phase", lieu_,
                     phrase(ou, " : ", code));
      return;
    }
    historique.regroupement = lu;
    if (regroupements_.emplace(std::string(code), lieu_.ligne).second) {
      Regroupement& regroupement = liste_.regroupements.emplace_back();
      regroupement.lieu = lieu_;
      regroupement.debut = date_;
      regroupement.code = lu;
    }
  }

  // A note, a list of associated acts, or one more value of a modifier.
  void lireTexteSeul(const std::vector<std::string>& champs, std::string_view texte) {
    if (modificateur_ != ' ' && !rogner(champs[colonne_]).empty()) {
      ajouterValeur(modificateur_, rogner(champs[colonne_]), texte);
    }
    if (modificateur_ != ' ') {
      const std::string valeur(rogner(champs[colonne_]));
      ajouterTexte(liste_.menus.back().notes,
                   phrase("Modificateur ", std::string(1, modificateur_), " : ", convertir(texte),
                          valeur.empty() ? "" : phrase(" (", valeur, ")")));
    } else if (acte() == nullptr) {
      perdu_ ? ecarterOrphelin("", texte) : ajouterTexte(liste_.menus.back().notes, convertir(texte));
    } else if (const std::optional<CodesAssocies> associes = lireAssociations(texte)) {
      ajouterAssociations(*associes);
    } else {
      ajouterTexte(acte()->notes, convertir(texte));
    }
  }

  void ajouterAssociations(const CodesAssocies& associes) {
    for (const std::string& code : associes.malEcrits) {
      ecarterAssociation(lieu_, *acte(), code);
    }
    for (const std::string& code : associes.codes) {
      if (associations_.size() >= ASSOCIES_MAX) {
        ecarterAssociation(lieu_, *acte(), code);
        return;
      }
      const CodeActe associe(code);
      const auto meme = [&](const AssociationActe& a) { return a.acte == associe; };
      if (std::none_of(associations_.begin(), associations_.end(), meme)) {
        AssociationActe& association = associations_.emplace_back();
        association.lieu = lieu_;
        association.acte = associe;
        association.regle = reglePleine_;
      }
    }
  }

  void definirModificateur(char code, std::string_view libelle, const std::vector<std::string>& champs) {
    finirActe();
    perdu_ = false;
    bilan_.lire("modificateurs");
    modificateur_ = code;
    const std::string_view ecrit = rogner(champs[colonne_]);
    const bool permis = (code >= '0' && code <= '9') || (code >= 'A' && code <= 'Z');
    if (!permis || !definis_.emplace(code, lieu_.ligne).second) {
      bilan_.ecarter(permis ? "modificateur en double" : "code de modificateur incompréhensible", lieu_,
                     std::string(1, code));
      return;
    }
    if (!ajouterValeur(code, ecrit, libelle)) {
      return;
    }
    bilan_.garder("modificateurs");
    ModificateurActe& modificateur = liste_.modificateurs.emplace_back();
    modificateur.lieu = lieu_;
    modificateur.code = code;
    modificateur.libelle = convertir(libelle);
    const ValeurDeModificateur& premiere = liste_.valeursModificateurs.back();
    ForfaitEtTaux& tarif = modificateur.valeurs.emplace_back();
    tarif.lieu = lieu_;
    tarif.debut = date_;
    tarif.forfait = premiere.forfait;
    tarif.coefficient = premiere.coefficient;
  }

  // What a modifier is worth for those that the text names.
  bool ajouterValeur(char code, std::string_view ecrit, std::string_view condition) {
    const std::optional<ValeurListe> lue = lireValeurModificateur(ecrit);
    if (!lue) {
      bilan_.ecarter("valeur de modificateur incompréhensible", lieu_,
                     phrase(std::string(1, code), " : ", ecrit));
      return false;
    }
    ValeurDeModificateur& valeur = liste_.valeursModificateurs.emplace_back();
    valeur.lieu = lieu_;
    valeur.code = code;
    valeur.debut = date_;
    valeur.forfait = lue->forfait;
    valeur.coefficient = lue->coefficient;
    valeur.condition = convertir(condition);
    return true;
  }

  std::size_t colonne_;
  char reglePleine_;
  char separateur_;
  std::span<const Correctif> correctifs_;
  std::set<const Correctif*> corriges_;
  CodeActe acteLu_;  // the act that the record is of
  Modele& liste_;
  BilanImport& bilan_;
  Rapport& rapport_;
  Lieu lieu_;
  DateBrute date_;

  std::map<std::uint32_t, std::size_t> positionsMenus_;
  std::map<CodeActe, std::uint32_t> positionsActes_;
  std::map<std::string, std::uint32_t, std::less<>> regroupements_;
  std::map<char, std::uint32_t> definis_;  // modifiers that the listing defines, well or badly

  bool chapitreModificateurs_ = false;
  char modificateur_ = ' ';  // the one being defined
  bool perdu_ = false;       // what is above has been dropped
  // The act being read.
  bool dansActe_ = false;
  bool sousConditions_ = false;
  bool nonPrisEnCharge_ = false;
  std::vector<char> modificateurs_;
  std::vector<AssociationActe> associations_;
};

}  // namespace

bool lireListing(std::string_view texte, std::string nom, const OptionsListing& options, Modele& liste,
                 BilanImport& bilan, Rapport& rapport) {
  const std::uint32_t source = rapport.declarerSource(std::move(nom));
  const std::string faute = controlerOctets(texte);
  if (!faute.empty()) {
    rapport.signaler({source, 0}, faute);
    return false;
  }
  constexpr std::string_view MARQUE_UTF8 = "\xEF\xBB\xBF";
  if (texte.starts_with(MARQUE_UTF8)) {
    texte.remove_prefix(MARQUE_UTF8.size());
  }
  return LectureListing(source, options, separateurDe(texte), liste, bilan, rapport).lire(texte);
}

bool importerListing(const std::string& chemin, const OptionsListing& options, Modele& liste,
                     BilanImport& bilan, Rapport& rapport) {
  std::string texte;
  const std::string raison = lireFichier(chemin, texte);
  if (!raison.empty()) {
    rapport.signaler({rapport.declarerSource(chemin), 0},
                     phrase("le fichier ne peut pas être lu (", raison, ")"));
    return false;
  }
  return lireListing(texte, chemin, options, liste, bilan, rapport);
}

}  // namespace noxlux::compilateur
