#include "serveur/service.h"

#include <netdb.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <iostream>
#include <memory>

#include "compilateur/systeme.h"
#include "noxlux/erreurs.h"
#include "noxlux/noxlux.h"
#include "noxlux/sortie.h"

namespace noxlux::serveur {

namespace {

using commande::ErreurUsage;

constexpr Veille::Cle CLE_ECOUTE = 1;
constexpr Veille::Cle CLE_SIGNAUX = 2;
constexpr Veille::Cle PREMIERE_CONNEXION = 3;
// Keys of processes: no number of connections reaches them.
constexpr Veille::Cle PREMIER_OUVRIER = Veille::Cle{1} << 62U;

constexpr std::size_t MEMOIRE_MAX = 256U << 20U;  // of all that is received and answered at once
constexpr milliseconds TOUR{100};
constexpr seconds OISIVETE{60};       // of a connection between two requests
constexpr seconds TETE_COMPLETE{10};  // from the first byte of a head to its last
constexpr seconds VIDANGE{2};         // of what a refused client still sends

Instant maintenant() { return std::chrono::steady_clock::now(); }

// The signals come as something to read. Processes that answer inherit that they are blocked: a stop at the
// terminal reaches them too, and is for the service to carry out.
Descripteur prendreSignaux() {
  sigset_t jeu;
  sigemptyset(&jeu);
  for (const int numero : {SIGTERM, SIGINT, SIGHUP}) {
    sigaddset(&jeu, numero);
  }
  sigprocmask(SIG_BLOCK, &jeu, nullptr);
  return Descripteur(signalfd(-1, &jeu, SFD_NONBLOCK | SFD_CLOEXEC));
}

// What a process holds in memory is not written when it breaks; descriptors, as many as the system allows.
// Answers how many connections there may be.
std::size_t reglerLimites() {
  constexpr std::size_t CONNEXIONS_MAX = 4000;
  constexpr std::size_t AUTRES_DESCRIPTEURS = 200;
  const rlimit sansImage{0, 0};
  setrlimit(RLIMIT_CORE, &sansImage);
  rlimit fichiers{};
  getrlimit(RLIMIT_NOFILE, &fichiers);
  fichiers.rlim_cur = fichiers.rlim_max;
  setrlimit(RLIMIT_NOFILE, &fichiers);
  return std::clamp<std::size_t>(fichiers.rlim_cur, AUTRES_DESCRIPTEURS + 1,
                                 CONNEXIONS_MAX + AUTRES_DESCRIPTEURS) -
         AUTRES_DESCRIPTEURS;
}

Descripteur ouvrirEcoute(const Options& options) {
  addrinfo souhaits{};
  souhaits.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV | AI_PASSIVE;
  souhaits.ai_socktype = SOCK_STREAM;
  addrinfo* trouvees = nullptr;
  if (getaddrinfo(options.adresse.c_str(), std::to_string(options.port).c_str(), &souhaits, &trouvees) != 0) {
    throw ErreurUsage("--adresse : « " + options.adresse + " » n'est pas une adresse de cette machine");
  }
  const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> liste(trouvees, &freeaddrinfo);
  Descripteur ecoute(socket(liste->ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  const int oui = 1;
  setsockopt(ecoute.numero(), SOL_SOCKET, SO_REUSEADDR, &oui, sizeof oui);
  if (!ecoute.ouvert() || bind(ecoute.numero(), liste->ai_addr, liste->ai_addrlen) != 0 ||
      listen(ecoute.numero(), SOMAXCONN) != 0) {
    throw ErreurUsage("impossible d'écouter sur " + options.adresse + ", port " +
                      std::to_string(options.port) + " : " + compilateur::raisonSysteme(errno));
  }
  return ecoute;
}

}  // namespace

Service::Service(const Options& options, Ouvriers::Travail travail)
    : options_(options),
      ecoute_(ouvrirEcoute(options)),
      signaux_(prendreSignaux()),
      connexionsMax_(reglerLimites()),
      port_(adresseLocale(ecoute_.numero()).port),
      prochaine_(PREMIERE_CONNEXION),
      ouvriers_(
          veille_, options, std::move(travail),
          [this](Cle cle, std::string reponse) { livrer(cle, std::move(reponse)); }, PREMIER_OUVRIER) {
  veille_.suivre(ecoute_.numero(), CLE_ECOUTE, EPOLLIN);
  veille_.suivre(signaux_.numero(), CLE_SIGNAUX, EPOLLIN);
}

void Service::servir() {
  while (!arret_ || (!connexions_.empty() && maintenant() < fin_)) {
    // A client that sent several requests at once has the next one answered in its turn.
    for (const Cle cle : std::exchange(aReprendre_, {})) {
      const auto trouvee = connexions_.find(cle);
      if (trouvee != connexions_.end() && trouvee->second.etat == Etat::LIT) {
        avancer(cle, trouvee->second);
      }
    }
    const milliseconds attente = aReprendre_.empty() ? TOUR : milliseconds(0);
    for (const epoll_event& e : veille_.attendre(static_cast<int>(attente.count()))) {
      const Cle cle = e.data.u64;
      if (cle == CLE_ECOUTE) {
        accepter();
      } else if (cle == CLE_SIGNAUX) {
        signaux();
      } else if (cle >= PREMIER_OUVRIER) {
        ouvriers_.evenement(cle, e.events);
      } else {
        evenement(cle);
      }
    }
    veiller(maintenant());
    annoncer();
  }
}

// Once the reference is there. Throws ErreurUsage when the first one cannot be taken.
void Service::annoncer() {
  if (annonce_) {
    return;
  }
  if (ouvriers_.prets()) {
    const std::string hote =
        options_.adresse.find(':') == std::string::npos ? options_.adresse : "[" + options_.adresse + "]";
    std::cerr << "noxlux : prêt sur http://" << hote << ":" << port_ << "/\n";
    annonce_ = true;
  } else if (!ouvriers_.echec().empty()) {
    throw ErreurUsage(ouvriers_.echec());
  }
}

void Service::signaux() {
  signalfd_siginfo recu{};
  while (read(signaux_.numero(), &recu, sizeof recu) == sizeof recu) {
    if (recu.ssi_signo == SIGHUP) {
      ouvriers_.renouveler();
    } else {
      arreter();
    }
  }
}

// Nothing new; what was begun is finished. Asked for twice, it is at once.
void Service::arreter() {
  if (arret_) {
    fin_ = maintenant();
    return;
  }
  accepter();  // those that were waiting at the door
  arret_ = true;
  fin_ = maintenant() + 2 * seconds(options_.delai);
  ecoute_.fermer();
  for (auto suivante = connexions_.begin(); suivante != connexions_.end();) {
    const auto courante = suivante++;
    Connexion& connexion = courante->second;
    const Cle cle = courante->first;
    if (connexion.etat == Etat::LIT) {
      lire(cle, connexion);  // what has arrived meanwhile
    }
    if (connexions_.contains(cle) && connexion.etat == Etat::LIT && connexion.recu.empty() &&
        !connexion.tete) {
      fermer(cle);
    }
  }
}

// --- Connections ---

void Service::accepter() {
  while (ecoute_.ouvert()) {
    Descripteur fd(accept4(ecoute_.numero(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (!fd.ouvert()) {
      const bool plein = errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM;
      if (plein && faireDeLaPlace()) {
        continue;
      }
      return;
    }
    if (connexions_.size() >= connexionsMax_ && !faireDeLaPlace()) {
      continue;
    }
    const Cle cle = prochaine_++;
    Connexion& connexion = connexions_[cle];
    veille_.suivre(fd.numero(), cle, EPOLLIN);
    connexion.adresse = adresseLocale(fd.numero());
    connexion.fd = std::move(fd);
    connexion.echeance = maintenant() + std::min<milliseconds>(OISIVETE, seconds(options_.delai));
  }
}

// Of those that only listen or trickle, the one whose time ends first leaves.
bool Service::faireDeLaPlace() {
  auto premiere = connexions_.end();
  for (auto courante = connexions_.begin(); courante != connexions_.end(); ++courante) {
    const bool cede = courante->second.etat == Etat::LIT || courante->second.etat == Etat::VIDE;
    if (cede && (premiere == connexions_.end() || courante->second.echeance < premiere->second.echeance)) {
      premiere = courante;
    }
  }
  if (premiere == connexions_.end()) {
    return false;
  }
  fermer(premiere->first);
  return true;
}

void Service::fermer(Cle cle) {
  const auto trouvee = connexions_.find(cle);
  if (trouvee != connexions_.end()) {
    memoire_ -= trouvee->second.memoire;
    connexions_.erase(trouvee);
  }
}

void Service::evenement(Cle cle) {
  const auto trouvee = connexions_.find(cle);
  if (trouvee == connexions_.end()) {
    return;
  }
  Connexion& connexion = trouvee->second;
  switch (connexion.etat) {
    case Etat::LIT:
      lire(cle, connexion);
      break;
    case Etat::ATTEND:
      fermer(cle);  // only a client that has gone is told here
      break;
    case Etat::ECRIT:
      ecrire(cle, connexion);
      break;
    case Etat::VIDE:
      vider(cle, connexion);
      break;
  }
}

// One piece: others have their turn before the next one.
void Service::lire(Cle cle, Connexion& connexion) {
  char octets[MORCEAU];
  const ssize_t n = recv(connexion.fd.numero(), octets, sizeof octets, 0);
  if (n == 0 || (n < 0 && errno != EAGAIN && errno != EINTR)) {
    fermer(cle);
    return;
  }
  if (n > 0) {
    if (connexion.recu.empty() && !connexion.tete) {
      connexion.echeance = maintenant() + std::min<milliseconds>(TETE_COMPLETE, seconds(options_.delai));
    }
    connexion.recu.append(octets, static_cast<std::size_t>(n));
    avancer(cle, connexion);
  }
}

// Whatever can be done with what was received.
void Service::avancer(Cle cle, Connexion& connexion) {
  if (!connexion.tete && !admettre(cle, connexion)) {
    return;
  }
  if (connexion.recu.size() >= connexion.tete->taille + connexion.corps) {
    soumettre(cle, connexion);
  }
}

// Whether a head is there, and let in.
bool Service::admettre(Cle cle, Connexion& connexion) {
  // Blank lines before a request are let pass.
  connexion.recu.erase(0, std::min(connexion.recu.find_first_not_of("\r\n"), connexion.recu.size()));
  Tete tete;
  const Lecture lecture = lireTete(connexion.recu, tete);
  if (lecture == Lecture::INCOMPLETE) {
    if (connexion.recu.size() >= TETE_MAX) {
      refuserEtFermer(cle, connexion,
                      {431, "l'entête de la demande dépasse " + std::to_string(TETE_MAX) + " octets"});
    }
    return false;
  }
  if (lecture == Lecture::MAL_FORMEE) {
    refuserEtFermer(cle, connexion, {400, "la demande n'est pas du HTTP/1.1"});
    return false;
  }
  connexion.fermer = arret_ || tete.fermeture() || tete.methode == "HEAD";
  std::size_t corps = 0;
  std::optional<Refus> refus = refuser(tete, connexion.adresse, options_, corps);
  if (!refus && memoire_ + corps > MEMOIRE_MAX) {
    refus = Refus{503, "trop de grandes demandes à la fois"};
  }
  connexion.tete = std::move(tete);
  if (refus) {
    refuserEtFermer(cle, connexion, *refus);
    return false;
  }
  connexion.corps = corps;
  connexion.memoire = corps;
  memoire_ += corps;
  connexion.echeance = maintenant() + seconds(options_.delai);
  const std::string* const attente = connexion.tete->champ("expect");
  if (attente != nullptr && connexion.recu.size() == connexion.tete->taille) {
    constexpr std::string_view CONTINUER = "HTTP/1.1 100 Continue\r\n\r\n";
    send(connexion.fd.numero(), CONTINUER.data(), CONTINUER.size(), MSG_NOSIGNAL);
  }
  return true;
}

// A whole request: as little of it as its answer needs goes to the process that answers.
void Service::soumettre(Cle cle, Connexion& connexion) {
  const Tete& tete = *connexion.tete;
  const bool teteSeule = tete.methode == "HEAD";
  const std::string corps = connexion.recu.substr(tete.taille, connexion.corps);
  connexion.recu.erase(0, tete.taille + connexion.corps);
  connexion.etat = Etat::ATTEND;
  veille_.changer(connexion.fd.numero(), cle, 0);
  if (tete.chemin() == "/sante" && tete.methode != "POST") {
    repondre(cle, connexion, sante(connexion.fermer, teteSeule));
    return;
  }
  if (ouvriers_.enCours() >= options_.requetesMax) {
    ++refus_;
    const Refus refus{429, "trop de demandes à la fois", options_.requetesMax};
    repondre(cle, connexion, reponseDeRefus(refus, connexion.fermer, teteSeule));
    return;
  }
  std::string demande = tete.methode + " " + tete.cible +
                        " HTTP/1.1\r\nContent-Length: " + std::to_string(corps.size()) +
                        (connexion.fermer ? "\r\nConnection: close\r\n" : "\r\n");
  if (const std::string* const type = tete.champ("content-type")) {
    demande += "Content-Type: " + *type + "\r\n";
  }
  ouvriers_.soumettre(cle, demande + "\r\n" + corps);
}

void Service::livrer(Cle cle, std::string reponse) {
  const auto trouvee = connexions_.find(cle);
  if (trouvee != connexions_.end() && trouvee->second.etat == Etat::ATTEND) {
    repondre(cle, trouvee->second, std::move(reponse));
  }
}

void Service::repondre(Cle cle, Connexion& connexion, std::string reponse) {
  ++reponses_;
  connexion.memoire += reponse.size();
  memoire_ += reponse.size();
  connexion.envoi = std::move(reponse);
  connexion.envoyes = 0;
  connexion.etat = Etat::ECRIT;
  connexion.echeance = maintenant() + seconds(options_.delai);
  ecrire(cle, connexion);
}

void Service::refuserEtFermer(Cle cle, Connexion& connexion, const Refus& refus) {
  ++refus_;
  connexion.fermer = true;
  const bool teteSeule = connexion.tete && connexion.tete->methode == "HEAD";
  repondre(cle, connexion, reponseDeRefus(refus, true, teteSeule));
}

void Service::ecrire(Cle cle, Connexion& connexion) {
  while (connexion.envoyes < connexion.envoi.size()) {
    const ssize_t n = send(connexion.fd.numero(), connexion.envoi.data() + connexion.envoyes,
                           connexion.envoi.size() - connexion.envoyes, MSG_NOSIGNAL);
    if (n < 0 && errno == EAGAIN) {
      veille_.changer(connexion.fd.numero(), cle, EPOLLOUT);
      return;
    }
    if (n < 0) {
      fermer(cle);
      return;
    }
    connexion.envoyes += static_cast<std::size_t>(n);
  }
  connexion.envoi.clear();
  memoire_ -= std::exchange(connexion.memoire, 0U);
  connexion.corps = 0;
  connexion.tete.reset();
  veille_.changer(connexion.fd.numero(), cle, EPOLLIN);
  if (connexion.fermer || (arret_ && connexion.recu.empty())) {
    // A client that still sends would lose the answer if the connection were cut.
    shutdown(connexion.fd.numero(), SHUT_WR);
    connexion.etat = Etat::VIDE;
    connexion.recu.clear();
    connexion.echeance = maintenant() + VIDANGE;
    vider(cle, connexion);
    return;
  }
  connexion.etat = Etat::LIT;
  connexion.echeance = maintenant() + OISIVETE;
  if (!connexion.recu.empty()) {
    connexion.echeance = maintenant() + TETE_COMPLETE;
    aReprendre_.push_back(cle);
  }
}

void Service::vider(Cle cle, Connexion& connexion) {
  char octets[MORCEAU];
  const ssize_t n = recv(connexion.fd.numero(), octets, sizeof octets, 0);
  if (n == 0 || (n < 0 && errno != EAGAIN && errno != EINTR)) {
    fermer(cle);
  }
}

void Service::veiller(Instant instant) {
  ouvriers_.veiller(instant);
  for (auto suivante = connexions_.begin(); suivante != connexions_.end();) {
    const auto courante = suivante++;
    Connexion& connexion = courante->second;
    // One that waits is told by those who answer.
    if (connexion.etat == Etat::ATTEND || instant < connexion.echeance) {
      continue;
    }
    if (connexion.etat == Etat::LIT && (connexion.tete || !connexion.recu.empty())) {
      refuserEtFermer(courante->first, connexion, {408, "la demande n'est pas arrivée à temps"});
    } else {
      fermer(courante->first);
    }
  }
}

std::string Service::sante(bool fermer, bool teteSeule) const {
  const Json etat = {{"etat", arret_              ? "arret"
                              : ouvriers_.prets() ? "pret"
                                                  : "chargement"},
                     {"version", NOXLUX_VERSION_TEXTE},
                     {"processus", options_.processus},
                     {"demandesEnCours", ouvriers_.enCours()},
                     {"connexions", connexions_.size()},
                     {"reponses", reponses_},
                     {"refus", refus_},
                     {"referenceRefusee", ouvriers_.echec().empty() ? Json() : Json(ouvriers_.echec())}};
  return reponseHttp(ouvriers_.prets() ? 200 : 503, commande::texteJson(etat, -1), fermer, teteSeule);
}

}  // namespace noxlux::serveur
