#include "noxlux/sortie.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <iostream>

#include "compilateur/systeme.h"
#include "noxlux/erreurs.h"
#include "noxlux/presentation.h"

namespace noxlux::commande {

namespace {

using compilateur::lireFichier;
using compilateur::raisonSysteme;

// All of it, or throws.
void ecrireSur(int descripteur, const char* octets, std::size_t nombre) {
  while (nombre != 0) {
    const ssize_t ecrits = ::write(descripteur, octets, nombre);
    if (ecrits >= 0) {
      octets += ecrits;
      nombre -= static_cast<std::size_t>(ecrits);
    } else if (errno != EINTR) {
      throw ErreurEcriture(errno);
    }
  }
}

}  // namespace

ErreurEcriture::ErreurEcriture(int erreur)
    : std::runtime_error("écriture impossible sur la sortie standard : " + raisonSysteme(erreur)),
      erreur_(erreur) {}

// A buffer in front of a descriptor.
class Sorties::Filtre : public std::streambuf {
 public:
  Filtre(int descripteur, bool parLigne) : descripteur_(descripteur), parLigne_(parLigne) {}

  void vider() {
    std::string octets;
    octets.swap(tampon_);
    ecrireSur(descripteur_, octets.data(), octets.size());
  }
  // The same with a first byte whose second never came.
  void finir() {
    if (enAttente_) {
      tampon_ += DEBUT_COMMANDE_HAUTE;
      enAttente_ = false;
    }
    vider();
  }

 protected:
  int_type overflow(int_type c) override {
    if (!traits_type::eq_int_type(c, traits_type::eof())) {
      const char octet = traits_type::to_char_type(c);
      xsputn(&octet, 1);
    }
    return traits_type::not_eof(c);
  }
  std::streamsize xsputn(const char* octets, std::streamsize nombre) override {
    bool ligne = false;
    for (std::streamsize i = 0; i < nombre; ++i) {
      ajouter(octets[i]);
      ligne = ligne || octets[i] == '\n';
    }
    if (tampon_.size() >= TAILLE || (parLigne_ && ligne)) {
      vider();
    }
    return nombre;
  }
  int sync() override {
    vider();
    return 0;
  }

 private:
  static constexpr std::size_t TAILLE = 65536;
  // In UTF-8 the characters U+0080 to U+009F are this byte and one of 0x80 to 0x9F.
  static constexpr char DEBUT_COMMANDE_HAUTE = '\xC2';

  void ajouter(char c) {
    const auto octet = static_cast<unsigned char>(c);
    const bool suite = octet >= 0x80 && octet < 0xC0;
    const bool haute = suite && octet < 0xA0 && (enAttente_ || suites_ == 0);
    if (enAttente_ && !haute) {
      tampon_ += DEBUT_COMMANDE_HAUTE;
    }
    if ((octet < 0x20 && c != '\n' && c != '\t') || octet == 0x7F || haute) {
      montrer(octet);
    } else if (c != DEBUT_COMMANDE_HAUTE) {
      tampon_ += c;
    }
    enAttente_ = c == DEBUT_COMMANDE_HAUTE;
    suites_ = suite          ? (suites_ == 0 ? 0 : suites_ - 1)
              : octet < 0xC0 ? 0
              : octet < 0xE0 ? 1
              : octet < 0xF0 ? 2
                             : 3;
  }
  void montrer(unsigned char octet) {
    std::array<char, 8> visible;
    std::snprintf(visible.data(), visible.size(), "\\u%04x", static_cast<unsigned>(octet));
    tampon_ += visible.data();
  }

  int descripteur_;
  bool parLigne_;
  bool enAttente_ = false;  // DEBUT_COMMANDE_HAUTE, until the byte that follows is known
  int suites_ = 0;          // bytes that the character begun still takes
  std::string tampon_;
};

Sorties::Sorties()
    // What the standard input holds can be asked only of streams that do not share stdio's buffers.
    : reponses_((std::ios::sync_with_stdio(false),
                 std::make_unique<Filtre>(STDOUT_FILENO, ::isatty(STDOUT_FILENO) == 1))),
      messages_(std::make_unique<Filtre>(STDERR_FILENO, true)),
      anciennesReponses_(std::cout.rdbuf(reponses_.get())),
      anciensMessages_(std::cerr.rdbuf(messages_.get())) {
  std::cout.exceptions(std::ios::badbit);
  std::cin.tie(nullptr);
  std::signal(SIGPIPE, SIG_IGN);
}

Sorties::~Sorties() {
  std::cout.exceptions(std::ios::goodbit);
  std::cout.rdbuf(anciennesReponses_);
  std::cerr.rdbuf(anciensMessages_);
}

void Sorties::finir() { reponses_->finir(); }

void ecrireOctets(const std::string& octets) {
  std::cout.flush();
  ecrireSur(STDOUT_FILENO, octets.data(), octets.size());
}

std::string lireTout(const std::string& nom) {
  std::string contenu;
  const std::string raison =
      nom == "-" ? compilateur::lireDescripteur(STDIN_FILENO, contenu) : lireFichier(nom, contenu);
  if (!raison.empty()) {
    throw ErreurUsage("fichier illisible : " + nom + " (" + raison + ")");
  }
  return contenu;
}

void ecrireTout(const std::string& nom, const std::string& contenu) {
  if (nom == "-") {
    std::cout << contenu << std::flush;
    return;
  }
  std::ofstream fichier(nom, std::ios::binary);
  if (!(fichier << contenu).flush()) {
    throw ErreurUsage("écriture impossible : " + nom + " (" + raisonSysteme(errno) + ")");
  }
}

std::string texteJson(const Json& valeur, int retrait) {
  return valeur.dump(retrait, ' ', false, Json::error_handler_t::replace) + '\n';
}

void ecrireJson(const Json& valeur) { std::cout << texteJson(valeur); }

void ecrireJsonCamel(const Json& valeur) { ecrireJson(clesCamel(valeur)); }

}  // namespace noxlux::commande
