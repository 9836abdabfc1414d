#include "noxlux/taches.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <iostream>
#include <optional>
#include <utility>

#include "noxlux/erreurs.h"
#include "noxlux/ligne.h"

namespace noxlux::commande {

namespace {

// Enough for a process not to wait, little enough for the others not to wait for it at the end.
constexpr std::size_t DEMANDES_PAR_LOT = 64;
constexpr std::size_t OCTETS_PAR_LOT = 256U << 10U;
// Answers that wait for one before them, by process.
constexpr std::uint64_t AVANCE_PAR_OUVRIER = 16 * DEMANDES_PAR_LOT;

using Taille = std::uint64_t;

// A message is its size, then texts, each behind its own.
void ajouterTexte(std::string& message, std::string_view texte) {
  const Taille taille = texte.size();
  message.append(reinterpret_cast<const char*>(&taille), sizeof taille).append(texte);
}

Taille lireTaille(std::string_view octets) {
  Taille taille = 0;
  std::memcpy(&taille, octets.data(), sizeof taille);
  return taille;
}

std::string emballer(const std::vector<std::string>& textes) {
  std::string message(sizeof(Taille), '\0');
  for (const std::string& texte : textes) {
    ajouterTexte(message, texte);
  }
  const Taille taille = message.size() - sizeof taille;
  std::memcpy(message.data(), &taille, sizeof taille);
  return message;
}

bool estEntier(std::string_view recu) {
  return recu.size() >= sizeof(Taille) && recu.size() - sizeof(Taille) >= lireTaille(recu);
}

// REQUIRES: the message is whole
std::vector<std::string> deballer(std::string_view message) {
  std::vector<std::string> textes;
  for (message.remove_prefix(sizeof(Taille)); !message.empty();) {
    const Taille taille = lireTaille(message);
    textes.emplace_back(message.substr(sizeof taille, taille));
    message.remove_prefix(sizeof taille + taille);
  }
  return textes;
}

std::string direFin(int statut) {
  return WIFSIGNALED(statut) ? "signal " + std::to_string(WTERMSIG(statut))
                             : "statut " + std::to_string(WEXITSTATUS(statut));
}

}  // namespace

Taches::Taches(unsigned nombre, Metier metier) : metier_(std::move(metier)), ouvriers_(nombre) {
  std::cout.flush();  // what waits there would be written by the copies too
  for (Ouvrier& ouvrier : ouvriers_) {
    lancer(ouvrier);
  }
}

Taches::~Taches() {
  for (Ouvrier& ouvrier : ouvriers_) {
    congedier(ouvrier, !ouvrier.lot.demandes.empty(), nullptr);
  }
}

void Taches::lancer(Ouvrier& ouvrier) {
  int bouts[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, bouts) != 0) {
    throw ErreurUsage(std::string("impossible de lancer un processus de plus (") + std::strerror(errno) +
                      ")");
  }
  const pid_t processus = fork();
  if (processus == 0) {
    close(bouts[0]);
    // The lines of the others stay open as long as anybody holds them.
    for (const Ouvrier& autre : ouvriers_) {
      if (autre.ligne >= 0) {
        close(autre.ligne);
      }
    }
    travailler(bouts[1]);
  }
  close(bouts[1]);
  if (processus < 0) {
    close(bouts[0]);
    throw ErreurUsage(std::string("impossible de lancer un processus de plus (") + std::strerror(errno) +
                      ")");
  }
  ouvrier.processus = processus;
  ouvrier.ligne = bouts[0];
  ouvrier.recu.clear();
}

// Answers one message after the other until the line is closed. Nothing of the first process is undone here:
// its files and directories go on being its own.
void Taches::travailler(int ligne) const {
  for (const int fin : {SIGINT, SIGTERM, SIGHUP}) {
    std::signal(fin, SIG_DFL);
  }
  int statut = STATUT_REPONDU;
  try {
    for (std::string recu; recevoirDeLigne(ligne, recu);) {
      if (!estEntier(recu)) {
        continue;
      }
      std::vector<std::string> reponses;
      for (const std::string& demande : deballer(recu)) {
        reponses.push_back(metier_.repondre(demande));
      }
      recu.clear();
      if (!envoyerSurLigne(ligne, emballer(reponses))) {
        break;
      }
    }
  } catch (...) {
    statut = STATUT_CODE_ERREUR;
  }
  _exit(statut);
}

void Taches::congedier(Ouvrier& ouvrier, bool deForce, std::string* fin) {
  if (ouvrier.ligne < 0) {
    return;
  }
  close(std::exchange(ouvrier.ligne, -1));
  if (deForce) {
    kill(ouvrier.processus, SIGKILL);  // no one waits for its answer any more
  }
  int statut = 0;
  while (waitpid(ouvrier.processus, &statut, 0) < 0 && errno == EINTR) {
  }
  if (fin != nullptr) {
    *fin = direFin(statut);
  }
}

void Taches::ajouter(std::string demande) {
  if (enPreparation_.demandes.empty()) {
    enPreparation_.rang = suivante_;
  }
  ++suivante_;
  enPreparation_.octets += demande.size();
  enPreparation_.demandes.push_back(std::move(demande));
  if (enPreparation_.demandes.size() == DEMANDES_PAR_LOT || enPreparation_.octets >= OCTETS_PAR_LOT) {
    confier(std::exchange(enPreparation_, Lot()));
  }
}

void Taches::finir() {
  if (!enPreparation_.demandes.empty()) {
    confier(std::exchange(enPreparation_, Lot()));
  }
  while (attendre()) {
  }
}

Taches::Ouvrier* Taches::oisif() {
  const auto libre =
      std::ranges::find_if(ouvriers_, [](const Ouvrier& ouvrier) { return ouvrier.lot.demandes.empty(); });
  return libre == ouvriers_.end() ? nullptr : &*libre;
}

// Hands it to the first process that is free; none runs too far ahead of the answer that is next.
void Taches::confier(Lot lot) {
  while (lot.rang > aLivrer_ + AVANCE_PAR_OUVRIER * ouvriers_.size() || oisif() == nullptr) {
    attendre();
  }
  Ouvrier& ouvrier = *oisif();
  ouvrier.lot = std::move(lot);
  // One that has just ended is told by the end of its line.
  envoyerSurLigne(ouvrier.ligne, emballer(ouvrier.lot.demandes));
}

// Takes what comes first. False once nothing is on its way.
bool Taches::attendre() {
  while (!aReprendre_.empty() && oisif() != nullptr) {
    Ouvrier& ouvrier = *oisif();
    ouvrier.lot = std::move(aReprendre_.front());
    aReprendre_.pop_front();
    envoyerSurLigne(ouvrier.ligne, emballer(ouvrier.lot.demandes));
  }
  std::vector<pollfd> lignes;
  std::vector<Ouvrier*> auTravail;
  for (Ouvrier& ouvrier : ouvriers_) {
    if (!ouvrier.lot.demandes.empty()) {
      lignes.push_back({ouvrier.ligne, POLLIN, 0});
      auTravail.push_back(&ouvrier);
    }
  }
  if (lignes.empty()) {
    return false;
  }
  while (poll(lignes.data(), lignes.size(), -1) < 0 && errno == EINTR) {
  }
  for (std::size_t i = 0; i < lignes.size(); ++i) {
    if (lignes[i].revents != 0) {
      recevoir(*auTravail[i]);
    }
  }
  return true;
}

void Taches::recevoir(Ouvrier& ouvrier) {
  if (!recevoirDeLigne(ouvrier.ligne, ouvrier.recu)) {
    perdre(ouvrier);
    return;
  }
  if (!estEntier(ouvrier.recu)) {
    return;
  }
  const Lot lot = std::exchange(ouvrier.lot, Lot());
  std::uint64_t rang = lot.rang;
  for (std::string& reponse : deballer(std::exchange(ouvrier.recu, std::string()))) {
    ranger(rang++, std::move(reponse));
  }
}

// Of many demands, the one that ended the process is not known, and it may have been none: each goes out
// again by itself.
void Taches::perdre(Ouvrier& ouvrier) {
  std::string fin;
  congedier(ouvrier, false, &fin);
  const Lot lot = std::exchange(ouvrier.lot, Lot());
  lancer(ouvrier);
  if (lot.reprise) {
    ranger(lot.rang, metier_.excuser(lot.demandes.front(), fin));
    return;
  }
  for (std::size_t i = 0; i < lot.demandes.size(); ++i) {
    aReprendre_.push_back({lot.rang + i, {lot.demandes[i]}, 0, true});
  }
}

void Taches::ranger(std::uint64_t rang, std::string reponse) {
  recues_.emplace(rang, std::move(reponse));
  for (auto premiere = recues_.begin(); premiere != recues_.end() && premiere->first == aLivrer_;
       premiere = recues_.erase(premiere)) {
    metier_.livrer(premiere->second);
    ++aLivrer_;
  }
}

}  // namespace noxlux::commande
