#include "noxlux/controle_par_profils.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <iostream>

#include "noxlux/bibliotheque.h"
#include "noxlux/mises_de_cote.h"

namespace noxlux::commande {

namespace {

constexpr const char* CETTE_COMMANDE = "/proc/self/exe";
constexpr std::string_view OPTION_MODIFICATIONS = "--modifications";

}  // namespace

// A batch check in a process of its own: an invoice in, its answer out.
class ControleParProfils::Controleur {
 public:
  Controleur(const std::string& reference, const std::vector<std::string>& options) : reference_(reference) {
    int entree[2];
    int sortie[2];
    // What a process inherits of the others would keep them waiting.
    if (pipe2(entree, O_CLOEXEC) != 0 || pipe2(sortie, O_CLOEXEC) != 0) {
      throw ErreurUsage("impossible de lancer un contrôle de plus");
    }
    processus_ = fork();
    if (processus_ == 0) {
      dup2(entree[0], STDIN_FILENO);
      dup2(sortie[1], STDOUT_FILENO);
      dup2(fileno(messages_.get()), STDERR_FILENO);
      executer(options);
    }
    direSesChangements(options);
    close(entree[0]);
    close(sortie[1]);
    versLui_.reset(fdopen(entree[1], "w"));
    deLui_.reset(fdopen(sortie[0], "r"));
    if (processus_ < 0) {
      throw ErreurUsage("impossible de lancer un contrôle de plus");
    }
  }
  ~Controleur() {
    versLui_.reset();
    deLui_.reset();
    if (processus_ > 0) {
      waitpid(processus_, nullptr, 0);
    }
  }
  Controleur(const Controleur&) = delete;
  Controleur& operator=(const Controleur&) = delete;

  std::string repondre(const std::string& facture) {
    const bool envoyee =
        std::fputs((facture + '\n').c_str(), versLui_.get()) >= 0 && std::fflush(versLui_.get()) == 0;
    std::string reponse;
    int c = envoyee ? std::fgetc(deLui_.get()) : EOF;
    for (; c != EOF && c != '\n'; c = std::fgetc(deLui_.get())) {
      reponse += static_cast<char>(c);
    }
    if (c == EOF) {
      throw ErreurUsage("le contrôle de " + reference_ + " s'est arrêté" + lireMessages());
    }
    return reponse;
  }

 private:
  struct Fermeture {
    void operator()(std::FILE* fichier) const { std::fclose(fichier); }
  };
  using Fichier = std::unique_ptr<std::FILE, Fermeture>;

  // What it would say on its own standard error, which is read when it stops.
  void direSesChangements(const std::vector<std::string>& options) const {
    OptionsReference sienne;
    sienne.reference = reference_;
    const auto ailleurs = std::find(options.begin(), options.end(), OPTION_MODIFICATIONS);
    sienne.modification = ailleurs == options.end() ? "" : *(ailleurs + 1);
    const std::string misDeCote = direMiseDeCote(sienne);
    if (!misDeCote.empty()) {
      std::cerr << "noxlux : " << misDeCote << ".\n";
    }
  }

  [[noreturn]] void executer(const std::vector<std::string>& options) const {
    std::vector<std::string> textes{"noxlux", "controler", "--lot", "--reference", reference_};
    textes.insert(textes.end(), options.begin(), options.end());
    std::vector<char*> arguments;
    for (std::string& texte : textes) {
      arguments.push_back(texte.data());
    }
    arguments.push_back(nullptr);
    execv(CETTE_COMMANDE, arguments.data());
    _exit(STATUT_MAUVAIS_USAGE);
  }

  std::string lireMessages() const {
    std::string messages;
    std::rewind(messages_.get());
    for (int c = std::fgetc(messages_.get()); c != EOF; c = std::fgetc(messages_.get())) {
      messages += static_cast<char>(c);
    }
    return messages.empty() ? messages : " : " + messages;
  }

  std::string reference_;
  Fichier messages_{std::tmpfile()};
  Fichier versLui_;
  Fichier deLui_;
  pid_t processus_ = -1;
};

ControleParProfils::ControleParProfils(const Profils& profils, std::vector<std::string> options)
    : profils_(profils), options_(std::move(options)) {
  std::signal(SIGPIPE, SIG_IGN);  // NOLINT: a check that stops is told by its answer
}

ControleParProfils::~ControleParProfils() = default;

Json ControleParProfils::repondre(const Json& facture) {
  const std::string reference = profils_.referencePour(facture);
  std::unique_ptr<Controleur>& controleur = controleurs_[reference];
  if (controleur == nullptr) {
    controleur = std::make_unique<Controleur>(reference, options_);
  }
  return Json::parse(controleur->repondre(facture.dump(-1, ' ', false, Json::error_handler_t::replace)));
}

}  // namespace noxlux::commande
