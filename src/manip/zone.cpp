#include "manip/zone.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "basics/assertion.h"
#include "basics/systeme.h"
#include "basics/trace.h"

namespace noxlux {

namespace {

constexpr std::uint32_t TAILLE_IDENTIFIANT = 2;
constexpr std::uint32_t TAILLE_ENTETE_MIN = TAILLE_IDENTIFIANT + 1;
constexpr std::uint32_t OCTETS_LONGUEUR_MAX = 4;

void copier(byte* destination, Octets source) {
  if (!source.empty()) {
    std::memcpy(destination, source.data(), source.size());
  }
}

}  // namespace

Zone::Zone(std::uint32_t taille) {
  void* bloc = nullptr;
  const std::uint32_t capacite = std::max(taille, 1U);
  if (Systeme::allouer(bloc, capacite) == NOX_CR_OK) {
    buffer_ = static_cast<byte*>(bloc);
    tailleBuffer_ = capacite;
  }
}

Zone::Zone(byte* buffer, std::uint32_t taille)
    : buffer_(buffer), tailleBuffer_(taille), tailleDonnees_(taille) {}

CodeRetour Zone::redimensionner(std::uint32_t taille) {
  exiger(ok(), "ok()");
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_ZONE, cr, "Zone::redimensionner : taille = %u", taille);
  if (taille < tailleDonnees_) {
    Trace::erreur(TRACE_ZONE, "ERREUR: Nouvelle taille (%u) inférieure à la taille des données (%u).", taille,
                  tailleDonnees_);
    return cr = NOX_CR_MEMOIRE_ZONE;
  }
  const Zone nouvelle(taille);
  if (!nouvelle.ok()) {
    return cr = NOX_CR_MEMOIRE_ZONE;
  }
  copier(nouvelle.buffer_, {buffer_, tailleDonnees_});
  Systeme::liberer(buffer_);
  buffer_ = nouvelle.buffer_;
  tailleBuffer_ = nouvelle.tailleBuffer_;
  return cr;
}

// --- Decoding ---

// REQUIRES: position < tailleBuffer
CodeRetour Zone::decoderLongueurLongue(std::uint32_t position, Longueur& longueur) const {
  const std::uint32_t octets = buffer_[position] - std::uint32_t{LONGUEUR_COURTE_MAX};
  if (octets > OCTETS_LONGUEUR_MAX) {
    Trace::erreur(TRACE_ZONE, "ERREUR: Nombre d'octets pour coder la longueur (%u) > %d.", octets,
                  OCTETS_LONGUEUR_MAX);
    return NOX_CR_ZONE_MAL_FORMEE;
  }
  if (octets > tailleBuffer_ - position - 1) {
    Trace::erreur(TRACE_ZONE, "ERREUR: Buffer trop petit pour coder la longueur (%u) (tailleBuffer = %u).",
                  octets, tailleBuffer_);
    return NOX_CR_ZONE_MAL_FORMEE;
  }
  std::uint32_t valeur = 0;
  for (std::uint32_t i = 1; i <= octets; ++i) {
    valeur = (valeur << 8U) | buffer_[position + i];
  }
  longueur = {1 + octets, valeur};
  return NOX_CR_OK;
}

// REQUIRES: position < tailleDonnees
CodeRetour Zone::decoderEntete(std::uint32_t position, EnteteGroupe& entete) const {
  if (tailleBuffer_ - position < TAILLE_ENTETE_MIN) {
    Trace::erreur(TRACE_ZONE, "ERREUR: Buffer trop petit pour coder l'identifiant (tailleBuffer = %u).",
                  tailleBuffer_);
    return NOX_CR_ZONE_MAL_FORMEE;
  }
  Longueur longueur;
  if (const CodeRetour cr = decoderLongueur(position + TAILLE_IDENTIFIANT, longueur); cr != NOX_CR_OK) {
    return cr;
  }
  const std::uint32_t reste = tailleDonnees_ - position;
  const std::uint32_t taille = TAILLE_IDENTIFIANT + longueur.taillePrefixe;
  if (taille > reste || longueur.valeur > reste - taille) {
    Trace::erreur(TRACE_ZONE, "ERREUR: La taille du groupe (%u) dépasse la taille des données.",
                  longueur.valeur);
    return NOX_CR_ZONE_MAL_FORMEE;
  }
  entete.identifiant = static_cast<std::uint16_t>(buffer_[position] << 8U | buffer_[position + 1]);
  entete.taille = taille;
  entete.longueur = longueur.valeur;
  return NOX_CR_OK;
}

// --- Cursor ---

void Zone::positionnerDebut() {
  exiger(ok(), "ok()");
  identifiant_ = 0;
  positionGroupe_ = tailleEntete_ = longueurGroupe_ = 0;
  nombreGroupes_ = 0;
  nombreChamps_ = 0;
  positionnerAvantChamps();
}

CodeRetour Zone::positionnerFin() {
  exiger(ok(), "ok()");
  CodeRetour cr = NOX_CR_OK;
  while (cr == NOX_CR_OK && !finZone()) {
    cr = avancerFinGroupe();
    if (cr == NOX_CR_OK) {
      cr = avancerUnGroupe();
    }
  }
  return cr == NOX_CR_OK ? avancerFinGroupe() : cr;
}

// No current field: the next one is the first of the current group.
void Zone::positionnerAvantChamps() {
  numeroChamp_ = 0;
  positionChamp_ = positionGroupe_ + tailleEntete_;
  taillePrefixe_ = 0;
  longueurChamp_ = 0;
}

CodeRetour Zone::avancerUnGroupe() {
  if (finZone()) {
    Trace::erreur(TRACE_ZONE, "ERREUR: Fin de la zone atteinte.");
    return NOX_CR_FIN_ZONE;
  }
  const std::uint32_t position = finGroupeCourant();
  EnteteGroupe entete;
  if (const CodeRetour cr = decoderEntete(position, entete); cr != NOX_CR_OK) {
    return cr;
  }
  identifiant_ = entete.identifiant;
  positionGroupe_ = position;
  tailleEntete_ = entete.taille;
  longueurGroupe_ = entete.longueur;
  compter(nombreGroupes_);
  positionnerAvantChamps();
  return NOX_CR_OK;
}

CodeRetour Zone::refuserFinGroupe() {
  Trace::erreur(TRACE_ZONE, "ERREUR: Fin du groupe atteinte.");
  return NOX_CR_FIN_ZONE;
}

CodeRetour Zone::refuserChampLong(std::uint32_t longueur) {
  Trace::erreur(TRACE_ZONE, "ERREUR: La taille du champ (%u) dépasse la taille du groupe.", longueur);
  return NOX_CR_ZONE_MAL_FORMEE;
}

CodeRetour Zone::avancerFinGroupe() {
  CodeRetour cr = NOX_CR_OK;
  while (cr == NOX_CR_OK && !finGroupe()) {
    cr = avancerUnChamp();
  }
  return cr;
}

CodeRetour Zone::avancerGroupeSuivant(std::uint16_t& identifiant, int nombre, bool parChamps) {
  exiger(ok(), "ok()");
  exiger(nombre > 0, "nombre > 0");
  CodeRetour cr = NOX_CR_OK;
  for (; cr == NOX_CR_OK && nombre > 0; --nombre) {
    if (parChamps && !finZone()) {
      cr = avancerFinGroupe();
    }
    if (cr == NOX_CR_OK) {
      cr = avancerUnGroupe();
    }
  }
  if (cr == NOX_CR_OK) {
    identifiant = identifiant_;
  }
  return cr;
}

CodeRetour Zone::lireChampCourant(std::uint16_t& identifiant, std::uint16_t& numero, Octets& donnees) const {
  exiger(ok(), "ok()");
  if (taillePrefixe_ == 0) {
    Trace::erreur(TRACE_ZONE, "ERREUR: champ courant invalide.");
    return NOX_CR_FIN_ZONE;
  }
  identifiant = identifiant_;
  numero = numeroChamp_;
  donnees = donneesChamp();
  return NOX_CR_OK;
}

CodeRetour Zone::lireGroupeSuivant(std::uint16_t& identifiant) const {
  Zone suivante(*this);
  return suivante.avancerGroupeSuivant(identifiant);
}

CodeRetour Zone::lireGroupeSuivant(std::uint16_t& identifiant, std::uint16_t& occurrence) {
  std::uint16_t cherche = 0;
  if (const CodeRetour cr = lireGroupeSuivant(cherche); cr != NOX_CR_OK) {
    return cr;
  }
  const std::uint32_t cible = finGroupeCourant();
  std::uint16_t rang = 0;
  positionnerDebut();
  do {
    // The groups up to the target were walked once already: they are well formed.
    if (const CodeRetour cr = avancerUnGroupe(); cr != NOX_CR_OK) {
      return cr;
    }
    if (identifiant_ == cherche) {
      compter(rang);
    }
  } while (positionGroupe_ != cible);
  identifiant = cherche;
  occurrence = rang;
  return NOX_CR_OK;
}

// --- Search ---

CodeRetour Zone::rechercherGroupe(std::uint16_t identifiant, std::uint16_t occurrence) {
  positionnerDebut();
  return rechercherGroupeSuivant(identifiant, occurrence);
}

CodeRetour Zone::rechercherGroupeSuivant(std::uint16_t identifiant, std::uint16_t nombre) {
  exiger(ok(), "ok()");
  exiger(nombre > 0, "nombre > 0");
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_ZONE, cr, "Zone::rechercherGroupeSuivant : identifiant = %u, nombre = %u",
                       identifiant, nombre);
  std::uint16_t trouves = 0;
  while (cr == NOX_CR_OK && trouves < nombre) {
    cr = avancerUnGroupe();
    if (cr == NOX_CR_OK && identifiant_ == identifiant) {
      ++trouves;
    }
  }
  if (cr == NOX_CR_FIN_ZONE && nombre > 1) {
    cr = NOX_CR_GROUPE_ABSENT;
  }
  return cr;
}

CodeRetour Zone::rechercherChamp(std::uint16_t identifiant, std::uint16_t occurrenceGroupe,
                                 std::uint16_t numero, Octets& donnees) {
  exiger(occurrenceGroupe > 0, "occurrenceGroupe > 0");
  exiger(numero > 0, "numero > 0");
  std::uint16_t atteint = 0;
  const CodeRetour cr = rechercherGroupe(identifiant, occurrenceGroupe);
  return cr == NOX_CR_OK ? avancerChampSuivant(atteint, donnees, numero) : cr;
}

// --- Writing ---

// Makes room for `decalage` bytes at a position. REQUIRES: they fit in the buffer
inline void Zone::decalerFin(std::uint32_t position, std::uint32_t decalage) {
  if (position != tailleDonnees_) {
    std::memmove(buffer_ + position + decalage, buffer_ + position, tailleDonnees_ - position);
  }
  tailleDonnees_ += decalage;
}

// Writes a length in a prefix of that size, which may be wider than the length needs.
inline void Zone::ecrireLongueur(std::uint32_t position, std::uint32_t taillePrefixe,
                                 std::uint32_t longueur) {
  byte* prefixe = buffer_ + position;
  if (taillePrefixe == 1) {
    *prefixe = static_cast<byte>(longueur);
    return;
  }
  *prefixe = static_cast<byte>(LONGUEUR_COURTE_MAX + taillePrefixe - 1);
  for (std::uint32_t i = taillePrefixe; i > 1; longueur >>= 8U) {
    prefixe[--i] = static_cast<byte>(longueur & 0xFFU);
  }
}

CodeRetour Zone::refuserBufferPlein() const {
  Trace::erreur(TRACE_ZONE, "ERREUR: buffer plein (tailleBuffer = %u).", tailleBuffer_);
  return NOX_CR_ZONE_PLEINE;
}

CodeRetour Zone::ajouterGroupe(std::uint16_t identifiant) {
  exiger(ok(), "ok()");
  Trace::debut(TRACE_ZONE, "Zone::ajouterGroupe : identifiant = %u", identifiant);
  CodeRetour cr = NOX_CR_OK;
  if (tailleBuffer_ - tailleDonnees_ < TAILLE_ENTETE_MIN) {
    cr = refuserBufferPlein();
  } else {
    const std::uint32_t position = finGroupeCourant();
    decalerFin(position, TAILLE_ENTETE_MIN);
    buffer_[position] = static_cast<byte>(identifiant >> 8U);
    buffer_[position + 1] = static_cast<byte>(identifiant & 0xFFU);
    buffer_[position + TAILLE_IDENTIFIANT] = 0;
    identifiant_ = identifiant;
    positionGroupe_ = position;
    tailleEntete_ = TAILLE_ENTETE_MIN;
    longueurGroupe_ = 0;
    compter(nombreGroupes_);
    positionnerAvantChamps();
  }
  Trace::fin(TRACE_ZONE, "cr = 0x%04X, tailleDonnees = %u", cr, tailleDonnees_);
  return cr;
}

CodeRetour Zone::ajouterChamp(Octets donnees) {
  exiger(ok(), "ok()");
  Trace::debut(TRACE_ZONE, "Zone::ajouterChamp : longueur = %u", static_cast<unsigned>(donnees.size()));
  const CodeRetour cr = insererChamp(donnees);
  Trace::fin(TRACE_ZONE, "cr = 0x%04X, tailleDonnees = %u", cr, tailleDonnees_);
  return cr;
}

inline CodeRetour Zone::insererChamp(Octets donnees) {
  if (identifiant_ == 0) {
    Trace::erreur(TRACE_ZONE, "ERREUR: groupe courant invalide.");
    return NOX_CR_GROUPE_COURANT;
  }
  const std::uint32_t reste = tailleBuffer_ - tailleDonnees_;
  if (donnees.size() > reste) {
    return refuserBufferPlein();
  }
  // From here on the data fit in 32 bits, and so does what is added to what is already there.
  const auto longueur = static_cast<std::uint32_t>(donnees.size());
  const auto prefixe = static_cast<std::uint32_t>(calculerTailleLongueur(longueur));
  if (prefixe > reste - longueur) {
    return refuserBufferPlein();
  }
  const std::uint32_t taille = prefixe + longueur;
  const std::uint32_t ancien = tailleEntete_ - TAILLE_IDENTIFIANT;
  const std::uint32_t voulu = static_cast<std::uint32_t>(calculerTailleLongueur(longueurGroupe_ + taille));
  const std::uint32_t croissance = voulu > ancien ? voulu - ancien : 0;
  if (croissance > reste - taille) {
    return refuserBufferPlein();
  }
  decalerFin(finChampCourant(), taille);
  if (croissance != 0) {
    decalerFin(positionGroupe_ + tailleEntete_, croissance);
  }
  positionChamp_ = finChampCourant() + croissance;
  tailleEntete_ += croissance;
  longueurGroupe_ += taille;
  ecrireLongueur(positionGroupe_ + TAILLE_IDENTIFIANT, tailleEntete_ - TAILLE_IDENTIFIANT, longueurGroupe_);
  taillePrefixe_ = prefixe;
  longueurChamp_ = longueur;
  compter(numeroChamp_);
  ++nombreChamps_;
  ecrireLongueur(positionChamp_, prefixe, longueur);
  copier(buffer_ + positionChamp_ + prefixe, donnees);
  return NOX_CR_OK;
}

CodeRetour Zone::ajouterChamp(const Texte& texte) { return ajouterChamp(enOctets(texte.vue())); }

CodeRetour Zone::ajouterChamp(const TypeSimple& valeur) {
  std::string octets;
  try {
    octets = valeur.lireBytes();
  } catch (const std::bad_alloc&) {
    Trace::erreur(TRACE_ZONE, "ERREUR: Conversion d'un type simple en un champ d'octets impossible.");
    return NOX_CR_MEMOIRE;
  }
  return ajouterChamp(enOctets(octets));
}

CodeRetour Zone::modifierChamp(Octets donnees) {
  exiger(ok(), "ok()");
  if (taillePrefixe_ == 0) {
    Trace::erreur(TRACE_ZONE, "ERREUR: champ courant invalide.");
    return NOX_CR_FIN_ZONE;
  }
  if (donnees.size() != longueurChamp_) {
    Trace::erreur(TRACE_ZONE, "ERREUR: longueur des données différente de longueur du champ (%u).",
                  longueurChamp_);
    return NOX_CR_INCOHERENCE;
  }
  copier(buffer_ + positionChamp_ + taillePrefixe_, donnees);
  return NOX_CR_OK;
}

// --- Sizes ---

std::size_t Zone::calculerTailleGroupe(std::initializer_list<std::size_t> longueurs) {
  std::size_t contenu = 0;
  for (const std::size_t longueur : longueurs) {
    contenu += calculerTailleChamp(longueur);
  }
  return calculerTailleGroupe(contenu);
}

// --- Diagnostics ---

void Zone::dump() const {
  exiger(ok(), "ok()");
  Trace::debut(TRACE_ZONE, "Zone::dump : buffer = 0x%p, tailleBuffer = %u, tailleDonnees = %u", buffer_,
               tailleBuffer_, tailleDonnees_);
  if (Trace::estDetaille(TRACE_ZONE)) {
    Zone parcours(*this);
    parcours.positionnerDebut();
    parcours.dumpGroupes();
  }
  Trace::fin(TRACE_ZONE, "");
}

void Zone::dumpGroupes() {
  CodeRetour cr = NOX_CR_OK;
  while (cr == NOX_CR_OK && !finZone()) {
    cr = avancerUnGroupe();
    if (cr != NOX_CR_OK) {
      return;
    }
    Trace::ecrire(TRACE_ZONE, "%d - Groupe %u (l=%u) {", nombreGroupes_, identifiant_, longueurGroupe_);
    while (!finGroupe() && (cr = avancerUnChamp()) == NOX_CR_OK) {
      Trace::ecrire(TRACE_ZONE, "  %d - Champ %u (l=%u) = %s", nombreChamps_, numeroChamp_, longueurChamp_,
                    dumpChamp(donneesChamp()).c_str());
    }
    Trace::ecrire(TRACE_ZONE, "}");
  }
}

std::string Zone::dumpChamp(Octets donnees, std::size_t n) {
  exiger(n < 255, "n < 255");
  const Octets debut = donnees.first(std::min(donnees.size(), n));
  std::string copie(debut.begin(), debut.end());
  const auto estControle = [](char c) { return (static_cast<byte>(c) & 0x7FU) < 0x20 || c == 0x7F; };
  std::replace_if(copie.begin(), copie.end(), estControle, '.');
  return copie;
}

}  // namespace noxlux
