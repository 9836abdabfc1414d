#include "interapp/interface.h"

#include <algorithm>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

#include "basics/assertion.h"
#include "basics/systeme.h"
#include "basics/trace.h"
#include "referent/lecture_donnees.h"

namespace noxlux {

namespace {

constexpr std::uint16_t AUCUNE_POSITION = 65535;
// Bounds that real descriptors stay far below, so that damaged ones can neither nest nor multiply endlessly.
constexpr std::size_t PROFONDEUR_MAX = 16;
constexpr std::uint32_t FILS_MAX = 65535;
constexpr std::uint32_t CHAMPS_MAX = 65535;

// The meaning of a letter of the descriptor tables.
template <class E>
struct Lettre {
  char lettre;
  E valeur;
};

constexpr Lettre<Champ::Format> FORMATS[] = {{'A', Champ::Format::Alphanumerique},
                                             {'N', Champ::Format::Numerique},
                                             {'D', Champ::Format::Date},
                                             {'E', Champ::Format::Libre},
                                             {'I', Champ::Format::Indifferent}};
constexpr Lettre<Champ::Type> TYPES[] = {
    {'C', Champ::Type::Code},        {'T', Champ::Type::Texte},  {'B', Champ::Type::Booleen},
    {'D', Champ::Type::Date},        {'N', Champ::Type::Nombre}, {'M', Champ::Type::Montant},
    {'F', Champ::Type::Coefficient}, {'X', Champ::Type::Taux},   {'A', Champ::Type::Aucun}};

template <class E, std::size_t N>
std::optional<E> traduire(const Lettre<E> (&lettres)[N], char lettre) {
  const auto* trouvee =
      std::find_if(std::begin(lettres), std::end(lettres), [&](const auto& l) { return l.lettre == lettre; });
  return trouvee == std::end(lettres) ? std::nullopt : std::optional<E>(trouvee->valeur);
}

CodeRetour refuser(FormatVerifie<> texte, CodeRetour cr) {
  Trace::erreur(TRACE_CHARGEMENT, texte);
  return cr;
}

CodeRetour refuserLettre(FormatVerifie<const char*> texte, char lettre) {
  const char chaine[] = {lettre, '\0'};
  Trace::erreur(TRACE_CHARGEMENT, texte, chaine);
  return NOX_CR_DONNEE_ABSENTE;
}

// Runs an allocation; false when memory lacks.
template <class F>
bool allouer(F&& f) {
  try {
    f();
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

}  // namespace

// Reads the descriptor tables into a tree.
class Interface::Constructeur {
 public:
  Constructeur(LectureDonnees& lecture, Arbre& arbre) : lecture_(lecture), arbre_(arbre) {}

  CodeRetour initialiserGroupes();
  CodeRetour initialiserSuperGroupes();

 private:
  // What the table tells of a super-group.
  struct Descriptif {
    std::uint16_t numero = 0;
    Texte nom;
    Code codeFonction;
    std::uint16_t nombreFils = 0;
  };

  CodeRetour creerGroupe(std::uint16_t position);
  CodeRetour ajouterChamp(Groupe& groupe, std::uint16_t position, std::uint16_t rang);
  CodeRetour lireDescriptif(std::uint16_t position, Descriptif& descriptif);
  CodeRetour creerSuperGroupeRacine(std::uint16_t position);
  void fermerFamille(const Code& codeFonction);
  CodeRetour ajouterTousFils(SuperGroupe& superGroupe, std::uint16_t position, std::uint16_t nombre);
  CodeRetour ajouterFils(SuperGroupe& superGroupe, std::uint16_t position, std::uint16_t rang);
  CodeRetour creerSuperGroupeFils(std::uint16_t position, std::unique_ptr<const SuperGroupe>& fils);
  CodeRetour controlerImbrication(std::uint16_t position);

  LectureDonnees& lecture_;
  Arbre& arbre_;
  std::vector<std::uint16_t> chemin_;  // positions of the nested super-groups being built
  std::uint32_t nombreFils_ = 0;
  std::uint32_t nombreChamps_ = 0;
};

// --- Groups ---

CodeRetour Interface::Constructeur::initialiserGroupes() {
  Trace::debut(TRACE_CHARGEMENT, "Interface::initialiserGroupes");
  std::uint16_t nombre = 0;
  CodeRetour cr = lecture_.rechercherNombreGroupes(nombre);
  if (cr == NOX_CR_OK && !allouer([&] { arbre_.groupes.reserve(nombre); })) {
    cr = refuser("ERREUR : Allocation tableau des groupes", NOX_CR_MEMOIRE);
  }
  for (std::uint16_t position = 0; cr == NOX_CR_OK && position < nombre; ++position) {
    cr = creerGroupe(position);
  }
  Trace::fin(TRACE_CHARGEMENT, "%d groupes, cr = 0x%04X", nombre, cr);
  return cr;
}

CodeRetour Interface::Constructeur::creerGroupe(std::uint16_t position) {
  std::uint16_t identifiant = 0;
  std::uint16_t nombreChamps = 0;
  CodeRetour cr = lecture_.rechercherDescriptifGroupe(position, identifiant, nombreChamps);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  nombreChamps_ += nombreChamps;
  if (nombreChamps_ > CHAMPS_MAX) {
    return refuser("ERREUR : Champs trop nombreux", NOX_CR_DONNEE_ABSENTE);
  }
  std::unique_ptr<Groupe> groupe;
  if (!allouer([&] { groupe = std::make_unique<Groupe>(identifiant, nombreChamps); })) {
    return refuser("ERREUR : Création nouveau groupe", NOX_CR_MEMOIRE);
  }
  for (std::uint16_t rang = 0; cr == NOX_CR_OK && rang < nombreChamps; ++rang) {
    cr = ajouterChamp(*groupe, position, rang);
  }
  if (cr == NOX_CR_OK) {
    arbre_.groupes.push_back(std::move(groupe));
  }
  return cr;
}

CodeRetour Interface::Constructeur::ajouterChamp(Groupe& groupe, std::uint16_t position, std::uint16_t rang) {
  char lettreFormat = ' ';
  char lettreType = ' ';
  std::uint16_t tailleMin = 0;
  std::uint16_t tailleMax = 0;
  ListeCodes valeurs;
  const CodeRetour cr = lecture_.rechercherDescriptifChamp(position, rang, lettreFormat, lettreType,
                                                           tailleMin, tailleMax, valeurs);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  const auto format = traduire(FORMATS, lettreFormat);
  if (!format) {
    return refuserLettre("ERREUR : Format de champ (%s) inconnu.", lettreFormat);
  }
  const auto type = traduire(TYPES, lettreType);
  if (!type) {
    return refuserLettre("ERREUR : Type de champ (%s) inconnu.", lettreType);
  }
  return groupe.ajouterChamp(*format, *type, tailleMin, tailleMax, valeurs);
}

// --- Super-groups ---

CodeRetour Interface::Constructeur::initialiserSuperGroupes() {
  Trace::debut(TRACE_CHARGEMENT, "Interface::initialiserSuperGroupes");
  std::uint16_t nombre = 0;
  CodeRetour cr = lecture_.rechercherNombreSuperGroupes(nombre);
  if (cr == NOX_CR_OK && !allouer([&] {
        arbre_.superGroupes.reserve(nombre);
        arbre_.prefixes.reserve(nombre);
      })) {
    cr = refuser("ERREUR : Allocation tableau des super-groupes", NOX_CR_MEMOIRE);
  }
  for (std::uint16_t position = 0; cr == NOX_CR_OK && position < nombre; ++position) {
    cr = creerSuperGroupeRacine(position);
  }
  // A family without roots, or out of order, is an empty range after the one before it.
  for (std::size_t famille = 1; famille < arbre_.bornes.size(); ++famille) {
    arbre_.bornes[famille] = std::max(arbre_.bornes[famille], arbre_.bornes[famille - 1]);
  }
  Trace::fin(TRACE_CHARGEMENT, "%d super-groupes, cr = 0x%04X", static_cast<int>(arbre_.superGroupes.size()),
             cr);
  return cr;
}

CodeRetour Interface::Constructeur::lireDescriptif(std::uint16_t position, Descriptif& descriptif) {
  const CodeRetour cr = lecture_.rechercherDescriptifSuperGroupe(
      position, descriptif.numero, descriptif.nom, descriptif.codeFonction, descriptif.nombreFils);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  nombreFils_ += descriptif.nombreFils;
  return nombreFils_ <= FILS_MAX ? CodeRetour{NOX_CR_OK}
                                 : refuser("ERREUR : Fils trop nombreux", NOX_CR_DONNEE_ABSENTE);
}

CodeRetour Interface::Constructeur::creerSuperGroupeRacine(std::uint16_t position) {
  Descriptif descriptif;
  CodeRetour cr = lireDescriptif(position, descriptif);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  if (!descriptif.codeFonction.estRenseigne()) {
    Trace::ecrire(TRACE_CHARGEMENT, "Ce super-groupe n'est pas une racine ; il est ignoré.");
    return NOX_CR_OK;
  }
  std::unique_ptr<SuperGroupe> racine;
  if (!allouer([&] {
        racine =
            std::make_unique<SuperGroupe>(descriptif.numero, descriptif.nom.vue(), descriptif.nombreFils);
      })) {
    return refuser("ERREUR : Création nouveau super-groupe", NOX_CR_MEMOIRE);
  }
  cr = ajouterTousFils(*racine, position, descriptif.nombreFils);
  if (cr == NOX_CR_OK) {
    arbre_.prefixes.push_back(Systeme::prefixeIdentifiant(racine->lireNom()));
    arbre_.superGroupes.push_back(std::move(racine));
    fermerFamille(descriptif.codeFonction);
  }
  return cr;
}

// The family of the root just added ends, so far, with it.
void Interface::Constructeur::fermerFamille(const Code& codeFonction) {
  constexpr char PREMIERE = '1';
  constexpr char CONTROLE_COMPLET = '6';
  const char lettre = codeFonction.vue().front();
  if (lettre >= PREMIERE && lettre < CONTROLE_COMPLET) {
    arbre_.bornes[static_cast<std::size_t>(lettre - PREMIERE)] =
        static_cast<std::uint16_t>(arbre_.superGroupes.size());
  } else if (lettre != CONTROLE_COMPLET) {
    Trace::erreur(TRACE_CHARGEMENT, "ERREUR : Code fonction (%s) inconnu", codeFonction.lireTexte());
  }
}

CodeRetour Interface::Constructeur::ajouterTousFils(SuperGroupe& superGroupe, std::uint16_t position,
                                                    std::uint16_t nombre) {
  CodeRetour cr = NOX_CR_OK;
  for (std::uint16_t rang = 0; cr == NOX_CR_OK && rang < nombre; ++rang) {
    cr = ajouterFils(superGroupe, position, rang);
  }
  return cr;
}

CodeRetour Interface::Constructeur::ajouterFils(SuperGroupe& superGroupe, std::uint16_t position,
                                                std::uint16_t rang) {
  std::uint16_t positionSuperGroupe = AUCUNE_POSITION;
  std::uint16_t positionGroupe = AUCUNE_POSITION;
  std::uint16_t minimum = 0;
  std::uint16_t maximum = 0;
  CodeRetour cr = lecture_.rechercherDescriptifFils(position, rang, positionSuperGroupe, positionGroupe,
                                                    minimum, maximum);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  if (positionGroupe != AUCUNE_POSITION) {
    if (positionGroupe >= arbre_.groupes.size()) {
      Trace::erreur(TRACE_CHARGEMENT, "ERREUR : Position de groupe (%hu) hors limite", positionGroupe);
      return NOX_CR_DONNEE_ABSENTE;
    }
    return superGroupe.ajouterFils(arbre_.groupes[positionGroupe].get(), minimum, maximum);
  }
  if (positionSuperGroupe == AUCUNE_POSITION) {
    return refuser("ERREUR : Type de fils inconnu", NOX_CR_DONNEE_ABSENTE);
  }
  std::unique_ptr<const SuperGroupe> fils;
  cr = creerSuperGroupeFils(positionSuperGroupe, fils);
  return cr == NOX_CR_OK ? superGroupe.ajouterFils(std::move(fils), minimum, maximum) : cr;
}

CodeRetour Interface::Constructeur::creerSuperGroupeFils(std::uint16_t position,
                                                         std::unique_ptr<const SuperGroupe>& fils) {
  CodeRetour cr = controlerImbrication(position);
  Descriptif descriptif;
  if (cr == NOX_CR_OK) {
    cr = lireDescriptif(position, descriptif);
  }
  if (cr != NOX_CR_OK) {
    return cr;
  }
  if (descriptif.codeFonction.estRenseigne()) {
    Trace::erreur(TRACE_CHARGEMENT, "ERREUR : Super-groupe fils avec code fonction (%s)",
                  descriptif.codeFonction.lireTexte());
    return NOX_CR_DONNEE_ABSENTE;
  }
  std::unique_ptr<SuperGroupe> nouveau;
  if (!allouer([&] {
        nouveau =
            std::make_unique<SuperGroupe>(descriptif.numero, descriptif.nom.vue(), descriptif.nombreFils);
      })) {
    return refuser("ERREUR : Création nouveau super-groupe fils", NOX_CR_MEMOIRE);
  }
  chemin_.push_back(position);
  cr = ajouterTousFils(*nouveau, position, descriptif.nombreFils);
  chemin_.pop_back();
  fils = std::move(nouveau);
  return cr;
}

CodeRetour Interface::Constructeur::controlerImbrication(std::uint16_t position) {
  if (std::find(chemin_.begin(), chemin_.end(), position) != chemin_.end()) {
    Trace::erreur(TRACE_CHARGEMENT, "ERREUR : Super-groupe (%u) contenu dans lui-même", position);
    return NOX_CR_DONNEE_ABSENTE;
  }
  return chemin_.size() < PROFONDEUR_MAX
             ? CodeRetour{NOX_CR_OK}
             : refuser("ERREUR : Super-groupes trop imbriqués", NOX_CR_DONNEE_ABSENTE);
}

// --- Life ---

Interface::~Interface() {
  if (estInitialise()) {
    liberer();
  }
}

CodeRetour Interface::initialiser(LectureDonnees& lecture) {
  exiger(!estInitialise(), "!estInitialise()");
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CHARGEMENT, cr, "Interface::initialiser");
  auto arbre = std::make_unique<Arbre>();
  Constructeur constructeur(lecture, *arbre);
  cr = constructeur.initialiserGroupes();
  if (cr == NOX_CR_OK) {
    cr = constructeur.initialiserSuperGroupes();
  }
  if (cr == NOX_CR_OK) {
    arbre_ = std::move(arbre);
  }
  return cr;
}

void Interface::liberer() {
  exiger(estInitialise(), "estInitialise()");
  Trace::debut(TRACE_CHARGEMENT, "Interface::liberer");
  Trace::ecrire(TRACE_CHARGEMENT, "destruction des super-groupes");
  arbre_->superGroupes.clear();
  Trace::ecrire(TRACE_CHARGEMENT, "destruction des groupes");
  arbre_.reset();
  Trace::fin(TRACE_CHARGEMENT, "");
}

// --- From an identifier to its function ---

// Binary search among the roots from `inf` to `sup`, both included.
CodeRetour Interface::rechercher(const char* identifiant, std::uint16_t inf, std::uint16_t sup,
                                 std::uint16_t& position) const {
  exiger(sup >= inf, "sup >= inf");
  Trace::debut(TRACE_PARAMETRES, "Interface::rechercher : identifiant = %s", identifiant);
  const std::uint64_t prefixe = Systeme::prefixeIdentifiant(identifiant);
  const std::uint64_t* const prefixes = arbre_->prefixes.data();
  // Prefixes tell apart all but those that go on beyond them.
  const auto comparer = [&](unsigned rang) {
    const bool egaux = prefixes[rang] == prefixe;
    return !egaux ? (prefixe < prefixes[rang] ? -1 : 1)
           : Systeme::estPrefixeEntier(prefixe)
               ? 0
               : Systeme::comparerIdentifiant(identifiant, arbre_->superGroupes[rang]->lireNom());
  };
  unsigned premier = inf;
  unsigned dernier = sup;
  while (dernier > premier) {
    const unsigned milieu = (premier + dernier) / 2;
    if (comparer(milieu) > 0) {
      premier = milieu + 1;
    } else {
      dernier = milieu;
    }
  }
  position = static_cast<std::uint16_t>(premier);
  const CodeRetour cr = comparer(premier) == 0 ? CodeRetour{NOX_CR_OK} : refuserIdentifiant(identifiant);
  Trace::fin(TRACE_PARAMETRES, "position = %u, cr = 0x%04X", position, cr);
  return cr;
}

CodeRetour Interface::refuserIdentifiant(const char* identifiant) {
  Trace::erreur(TRACE_PARAMETRES, "ERREUR : identifiant %s non trouve", identifiant);
  return NOX_CR_IDENTIFIANT_INCONNU;
}

CodeRetour Interface::lireSuperGroupe(Famille famille, const char* identifiant,
                                      const SuperGroupe*& superGroupe, std::uint16_t& numero) const {
  exiger(estInitialise(), "estInitialise()");
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_PARAMETRES, cr, "Interface::lireSuperGroupe : famille = %d, identifiant = %s",
                       static_cast<int>(famille), identifiant);
  const std::uint16_t debut = famille == CONSULTATION ? std::uint16_t{0} : arbre_->bornes[famille - 1U];
  const std::uint16_t fin = arbre_->bornes[famille];
  std::uint16_t position = 0;
  cr = debut == fin ? refuserIdentifiant(identifiant)
                    : rechercher(identifiant, debut, static_cast<std::uint16_t>(fin - 1), position);
  if (cr == NOX_CR_OK) {
    superGroupe = arbre_->superGroupes[position].get();
    numero = superGroupe->lireNumero();
  } else if (famille == CONTROLE || famille == REGLE) {
    cr = NOX_CR_REGLE_IDENTIFIANT;
  }
  return cr;
}

CodeRetour Interface::lireSuperGroupeConsulter(const char* identifiant, const SuperGroupe*& superGroupe,
                                               std::uint16_t& numero) const {
  return lireSuperGroupe(CONSULTATION, identifiant, superGroupe, numero);
}

CodeRetour Interface::lireSuperGroupeModifier(const char* identifiant, const SuperGroupe*& superGroupe,
                                              std::uint16_t& numero) const {
  return lireSuperGroupe(MODIFICATION, identifiant, superGroupe, numero);
}

CodeRetour Interface::lireSuperGroupeAnnuler(const char* identifiant, const SuperGroupe*& superGroupe,
                                             std::uint16_t& numero) const {
  return lireSuperGroupe(ANNULATION, identifiant, superGroupe, numero);
}

CodeRetour Interface::lireSuperGroupeControler(const char* identifiant, const SuperGroupe*& superGroupe,
                                               std::uint16_t& numero) const {
  return lireSuperGroupe(CONTROLE, identifiant, superGroupe, numero);
}

CodeRetour Interface::lireSuperGroupeRegle(const char* identifiant, const SuperGroupe*& superGroupe,
                                           std::uint16_t& numero) const {
  return lireSuperGroupe(REGLE, identifiant, superGroupe, numero);
}

CodeRetour Interface::lireSuperGroupeControleComplet(const SuperGroupe*& superGroupe) const {
  exiger(estInitialise(), "estInitialise()");
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_PARAMETRES, cr, "Interface::lireSuperGroupeControleComplet");
  const std::uint16_t position = arbre_->bornes[REGLE];
  if (position < arbre_->superGroupes.size()) {
    superGroupe = arbre_->superGroupes[position].get();
  } else {
    Trace::erreur(TRACE_PARAMETRES, "ERREUR : super-groupe du contrôle complet absent");
    cr = NOX_CR_DONNEE_ABSENTE;
  }
  return cr;
}

}  // namespace noxlux
