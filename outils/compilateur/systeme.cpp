#include "compilateur/systeme.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

namespace noxlux::compilateur {

namespace {

struct Raison {
  int erreur;
  const char* phrase;
};
constexpr Raison RAISONS[] = {
    {ENOENT, "ce fichier ou ce répertoire n'existe pas"},
    {EACCES, "accès refusé"},
    {EPERM, "accès refusé"},
    {EISDIR, "c'est un répertoire"},
    {ENOTDIR, "ce n'est pas un répertoire"},
    {ENAMETOOLONG, "nom trop long"},
    {ELOOP, "liens qui tournent en rond"},
    {EEXIST, "existe déjà"},
    {ENOSPC, "plus de place sur le disque"},
    {EDQUOT, "plus de place sur le disque"},
    {EFBIG, "fichier trop grand"},
    {EROFS, "disque en lecture seule"},
    {EMFILE, "trop de fichiers ouverts"},
    {ENFILE, "trop de fichiers ouverts"},
    {EPIPE, "personne ne lit plus la réponse"},
    {EIO, "erreur du disque"},
};

// What a signal must remove: a few directories, by paths that a handler can read.
constexpr std::array SIGNAUX = {SIGINT, SIGTERM, SIGHUP};
constexpr std::size_t CHEMIN_MAX = 4096;
struct Place {
  volatile std::sig_atomic_t prise;
  char chemin[CHEMIN_MAX];
};
std::array<Place, 4> places;

// The form in which the kernel gives the entries of a directory.
struct EntreeNoyau {
  std::uint64_t numero;
  std::int64_t suite;
  unsigned short longueur;
  unsigned char genre;
  char nom[1];
};

// Only calls that a signal handler may make.
void viderEtRetirer(const char* chemin) {
  const int repertoire = ::open(chemin, O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW);
  if (repertoire >= 0) {
    alignas(EntreeNoyau) char entrees[4096];
    for (long lus = 0; (lus = ::syscall(SYS_getdents64, repertoire, entrees, sizeof entrees)) > 0;) {
      for (long position = 0; position < lus;) {
        const char* const entree = entrees + position;
        ::unlinkat(repertoire, entree + offsetof(EntreeNoyau, nom), 0);
        unsigned short longueur = 0;
        std::memcpy(&longueur, entree + offsetof(EntreeNoyau, longueur), sizeof longueur);
        position += longueur;
      }
    }
    ::close(repertoire);
  }
  ::rmdir(chemin);
}

extern "C" void retirerAuSignal(int numero) {
  for (Place& place : places) {
    if (place.prise != 0) {
      viderEtRetirer(place.chemin);
    }
  }
  // As if nothing had been caught: the shell sees which signal it was.
  std::signal(numero, SIG_DFL);
  std::raise(numero);
}

// Signals wait while this lives, so that none falls between a directory and its place.
class SignauxRetenus {
 public:
  SignauxRetenus() {
    sigset_t retenus;
    sigemptyset(&retenus);
    for (const int numero : SIGNAUX) {
      sigaddset(&retenus, numero);
    }
    sigprocmask(SIG_BLOCK, &retenus, &avant_);
  }
  ~SignauxRetenus() { sigprocmask(SIG_SETMASK, &avant_, nullptr); }
  SignauxRetenus(const SignauxRetenus&) = delete;
  SignauxRetenus& operator=(const SignauxRetenus&) = delete;

 private:
  sigset_t avant_{};
};

void attraperLesSignaux() {
  struct sigaction action {};
  action.sa_handler = retirerAuSignal;
  sigemptyset(&action.sa_mask);
  for (const int numero : SIGNAUX) {
    struct sigaction ancienne {};
    // One that the parent had ignored (nohup) stays ignored.
    if (sigaction(numero, nullptr, &ancienne) == 0 && ancienne.sa_handler != SIG_IGN) {
      sigaction(numero, &action, nullptr);
    }
  }
}

}  // namespace

std::string raisonSysteme(int erreur) {
  for (const Raison& raison : RAISONS) {
    if (raison.erreur == erreur) {
      return raison.phrase;
    }
  }
  return "erreur n° " + std::to_string(erreur) + " du système";
}

std::string lireDescripteur(int descripteur, std::string& contenu) {
  contenu.clear();
  struct stat etat {};
  if (::fstat(descripteur, &etat) == 0 && S_ISREG(etat.st_mode)) {
    contenu.reserve(static_cast<std::size_t>(etat.st_size));
  }
  std::array<char, 65536> tampon;
  for (;;) {
    const ssize_t lus = ::read(descripteur, tampon.data(), tampon.size());
    if (lus == 0) {
      return {};
    }
    if (lus > 0) {
      contenu.append(tampon.data(), static_cast<std::size_t>(lus));
    } else if (errno != EINTR) {
      return raisonSysteme(errno);
    }
  }
}

std::string lireFichier(const std::string& chemin, std::string& contenu) {
  const int descripteur = ::open(chemin.c_str(), O_RDONLY | O_CLOEXEC);
  if (descripteur < 0) {
    contenu.clear();
    return raisonSysteme(errno);
  }
  std::string raison = lireDescripteur(descripteur, contenu);
  ::close(descripteur);
  return raison;
}

RepertoireTemporaire::RepertoireTemporaire(const std::filesystem::path& parent, const std::string& debutDuNom)
    : modele_((parent / (debutDuNom + "XXXXXX")).string()) {
  const SignauxRetenus retenus;
  if (modele_.size() >= CHEMIN_MAX || ::mkdtemp(modele_.data()) == nullptr) {
    raison_ = raisonSysteme(modele_.size() >= CHEMIN_MAX ? ENAMETOOLONG : errno);
    return;
  }
  for (Place& place : places) {
    if (place.prise == 0) {
      std::memcpy(place.chemin, modele_.c_str(), modele_.size() + 1);
      place.prise = 1;
      attraperLesSignaux();
      return;
    }
  }
}

RepertoireTemporaire::~RepertoireTemporaire() {
  if (!raison_.empty()) {
    return;
  }
  const SignauxRetenus retenus;
  viderEtRetirer(modele_.c_str());
  for (Place& place : places) {
    if (place.prise != 0 && modele_ == place.chemin) {
      place.prise = 0;
    }
  }
}

}  // namespace noxlux::compilateur
