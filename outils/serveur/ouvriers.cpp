#include "serveur/ouvriers.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <iostream>

#include "serveur/reponses.h"
#include "serveur/trames.h"

namespace noxlux::serveur {

namespace {

std::string indisponible(const std::string& message) { return reponseDeRefus({503, message}, false); }

// In the new process: nothing stays open but the three standard descriptors and the line.
int garderLaLigne(int ligne) {
  constexpr int PLACE = 3;
  if (ligne != PLACE) {
    dup2(ligne, PLACE);
  }
  close_range(PLACE + 1, ~0U, 0);
  return PLACE;
}

}  // namespace

Ouvriers::Ouvriers(Veille& veille, const Options& options, Travail travail, Livraison livraison,
                   Cle premiereCle)
    : veille_(veille),
      options_(options),
      travail_(std::move(travail)),
      livraison_(std::move(livraison)),
      prochaineCle_(premiereCle) {
  renouveler();
}

Ouvriers::~Ouvriers() {
  for (auto& [cle, ouvrier] : ouvriers_) {
    ouvrier.ligne.fermer();
    if (ouvrier.demande != 0) {
      kill(ouvrier.processus, SIGKILL);  // no one waits for its answer any more
    }
    waitpid(ouvrier.processus, nullptr, 0);
  }
}

void Ouvriers::renouveler() {
  if (enPreparation_ != 0) {
    encore_ = true;
    return;
  }
  encore_ = false;
  enPreparation_ = ++derniere_;
  for (unsigned i = 0; i < options_.processus; ++i) {
    lancer(enPreparation_);
  }
  if (ouvriers_.empty() || ouvriers_.rbegin()->second.generation != enPreparation_) {
    echec_ = "pas de processus de plus";
    enPreparation_ = 0;
  }
}

void Ouvriers::lancer(unsigned generation) {
  int bouts[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, bouts) != 0) {
    return;
  }
  Descripteur mien(bouts[0]);
  const Descripteur sien(bouts[1]);
  const pid_t processus = fork();
  if (processus == 0) {
    // Nothing of the service's is undone here: its files and directories go on being its own.
    _exit(travail_(garderLaLigne(sien.numero())));
  }
  fcntl(mien.numero(), F_SETFL, O_NONBLOCK);
  if (processus < 0) {
    return;
  }
  veille_.suivre(mien.numero(), prochaineCle_, EPOLLIN);
  Ouvrier& ouvrier = ouvriers_[prochaineCle_++];
  ouvrier.processus = processus;
  ouvrier.ligne = std::move(mien);
  ouvrier.generation = generation;
}

Ouvriers::Cle Ouvriers::oisif() const {
  const auto libre = std::find_if(ouvriers_.begin(), ouvriers_.end(), [&](const auto& element) {
    const Ouvrier& ouvrier = element.second;
    return ouvrier.pret && ouvrier.demande == 0 && ouvrier.generation == enService_;
  });
  return libre == ouvriers_.end() ? 0 : libre->first;
}

std::size_t Ouvriers::enCours() const {
  return attente_.size() +
         static_cast<std::size_t>(std::count_if(ouvriers_.begin(), ouvriers_.end(), [](const auto& element) {
           return element.second.demande != 0;
         }));
}

void Ouvriers::soumettre(Cle demande, std::string octets) {
  attente_.push_back(
      {demande, std::move(octets), std::chrono::steady_clock::now() + seconds(options_.delai)});
  distribuer();
}

void Ouvriers::distribuer() {
  for (Cle cle = oisif(); cle != 0 && !attente_.empty(); cle = oisif()) {
    Demande demande = std::move(attente_.front());
    attente_.pop_front();
    Ouvrier& ouvrier = ouvriers_[cle];
    ouvrier.demande = demande.cle;
    ouvrier.echeance = std::chrono::steady_clock::now() + seconds(options_.delai);
    ouvrier.envoi = emballer(demande.octets);
    ouvrier.envoyes = 0;
    envoyer(cle, ouvrier);
  }
}

void Ouvriers::envoyer(Cle cle, Ouvrier& ouvrier) {
  while (ouvrier.envoyes < ouvrier.envoi.size()) {
    const ssize_t n = send(ouvrier.ligne.numero(), ouvrier.envoi.data() + ouvrier.envoyes,
                           ouvrier.envoi.size() - ouvrier.envoyes, MSG_NOSIGNAL);
    if (n < 0) {
      break;  // full for now; a line that is broken is told by reading it
    }
    ouvrier.envoyes += static_cast<std::size_t>(n);
  }
  const bool reste = ouvrier.envoyes < ouvrier.envoi.size();
  veille_.changer(ouvrier.ligne.numero(), cle, reste ? EPOLLIN | EPOLLOUT : EPOLLIN);
}

// False when the process has gone.
bool Ouvriers::recevoir(Ouvrier& ouvrier) {
  char octets[MORCEAU];
  for (;;) {
    const ssize_t n = recv(ouvrier.ligne.numero(), octets, sizeof octets, 0);
    if (n <= 0) {
      return n < 0 && (errno == EAGAIN || errno == EINTR);
    }
    ouvrier.recu.append(octets, static_cast<std::size_t>(n));
  }
}

void Ouvriers::evenement(Cle cle, std::uint32_t evenements) {
  const auto trouve = ouvriers_.find(cle);
  if (trouve == ouvriers_.end()) {
    return;
  }
  Ouvrier& ouvrier = trouve->second;
  if ((evenements & EPOLLOUT) != 0) {
    envoyer(cle, ouvrier);
  }
  const bool la = recevoir(ouvrier);
  while (auto trame = deballer(ouvrier.recu)) {
    if (!ouvrier.pret) {
      ouvrier.pret = trame->starts_with(PRET);
      echec_ = ouvrier.pret ? "" : trame->substr(1);
      accueillir(cle, ouvrier);
      break;  // it may have gone
    }
    livraison_(std::exchange(ouvrier.demande, 0), std::move(*trame));
    if (ouvrier.generation != enService_) {
      terminer(cle);
      return;
    }
  }
  if (!la) {
    if (ouvriers_.contains(cle) && ouvrier.pret) {
      std::cerr << "noxlux : un processus de réponse s'est arrêté, d'autres sont lancés\n";
    }
    terminer(cle);
  }
  distribuer();
}

void Ouvriers::accueillir(Cle cle, Ouvrier& ouvrier) {
  const unsigned generation = ouvrier.generation;
  if (!ouvrier.pret) {
    const bool nouvelle = generation == enPreparation_;
    terminer(cle);
    if (nouvelle) {
      renoncer(generation);
    }
    return;
  }
  const bool tous = std::all_of(ouvriers_.begin(), ouvriers_.end(), [&](const auto& element) {
    return element.second.generation != generation || element.second.pret;
  });
  if (tous && generation == enPreparation_) {
    mettreEnService(generation);
  }
}

void Ouvriers::mettreEnService(unsigned generation) {
  if (enService_ != 0) {
    std::cerr << "noxlux : référence relue, en service\n";
  }
  enService_ = generation;
  enPreparation_ = 0;
  // Those that answer something finish it first.
  for (auto suivant = ouvriers_.begin(); suivant != ouvriers_.end();) {
    const auto courant = suivant++;
    if (courant->second.generation != generation && courant->second.demande == 0) {
      terminer(courant->first);
    }
  }
  if (encore_) {
    renouveler();
  }
}

// The reference that was to come is no good: what answers goes on.
void Ouvriers::renoncer(unsigned generation) {
  enPreparation_ = 0;
  for (auto suivant = ouvriers_.begin(); suivant != ouvriers_.end();) {
    const auto courant = suivant++;
    if (courant->second.generation == generation) {
      terminer(courant->first);
    }
  }
  if (enService_ != 0) {
    std::cerr << "noxlux : la nouvelle référence est refusée, l'ancienne reste en service : " << echec_
              << '\n';
  }
}

// Takes a process out; one that was to go on answering is replaced.
void Ouvriers::terminer(Cle cle) {
  const auto trouve = ouvriers_.find(cle);
  if (trouve == ouvriers_.end()) {
    return;
  }
  Ouvrier parti = std::move(trouve->second);
  ouvriers_.erase(trouve);
  parti.ligne.fermer();
  if (!parti.pret) {
    kill(parti.processus, SIGKILL);  // it does not listen before it has loaded
  }
  waitpid(parti.processus, nullptr, 0);
  if (parti.demande != 0) {
    livraison_(parti.demande, indisponible(parti.tropLong ? "la réponse a pris plus de " +
                                                                std::to_string(options_.delai) + " secondes"
                                                          : "le contrôle s'est arrêté sans répondre"));
  }
  if (!parti.pret && parti.generation == enPreparation_ && echec_.empty()) {
    echec_ = "le processus de réponse s'est arrêté en lisant la référence";
    renoncer(parti.generation);
  }
}

void Ouvriers::veiller(Instant maintenant) {
  for (auto& [cle, ouvrier] : ouvriers_) {
    if (ouvrier.demande != 0 && !ouvrier.tropLong && maintenant >= ouvrier.echeance) {
      ouvrier.tropLong = true;
      kill(ouvrier.processus, SIGKILL);  // its line tells when it has gone
    }
  }
  while (!attente_.empty() && maintenant >= attente_.front().echeance) {
    const Cle demande = attente_.front().cle;
    attente_.pop_front();
    livraison_(demande, indisponible("trop de demandes attendent leur réponse"));
  }
  const auto restent = std::count_if(ouvriers_.begin(), ouvriers_.end(), [&](const auto& element) {
    return element.second.generation == enService_;
  });
  // A lost process is made up for by new ones, all of them: the file may have changed since, and two
  // references must not answer side by side.
  if (enService_ != 0 && enPreparation_ == 0 && maintenant >= relance_ &&
      static_cast<std::size_t>(restent) < options_.processus) {
    relance_ = maintenant + seconds(1);
    renouveler();
  }
}

}  // namespace noxlux::serveur
