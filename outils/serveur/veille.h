// Descriptors, and waiting for them.
#ifndef NOXLUX_SERVEUR_VEILLE_H
#define NOXLUX_SERVEUR_VEILLE_H

#include <sys/epoll.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <span>
#include <utility>

namespace noxlux::serveur {

// What is read of one at a time.
inline constexpr std::size_t MORCEAU = 65536;

// A descriptor that is closed at the end of its life.
class Descripteur {
 public:
  Descripteur() = default;
  explicit Descripteur(int fd) : fd_(fd) {}
  ~Descripteur() { fermer(); }
  Descripteur(Descripteur&& autre) noexcept : fd_(std::exchange(autre.fd_, -1)) {}
  Descripteur& operator=(Descripteur&& autre) noexcept {
    fermer();
    fd_ = std::exchange(autre.fd_, -1);
    return *this;
  }

  int numero() const { return fd_; }
  bool ouvert() const { return fd_ >= 0; }
  void fermer() {
    if (fd_ >= 0) {
      ::close(std::exchange(fd_, -1));
    }
  }

 private:
  int fd_ = -1;
};

// What is watched bears a key, that comes back with its events. A closed descriptor is watched no more.
class Veille {
 public:
  using Cle = std::uint64_t;

  Veille() : veille_(epoll_create1(EPOLL_CLOEXEC)) {}

  void suivre(int fd, Cle cle, std::uint32_t evenements) { regler(EPOLL_CTL_ADD, fd, cle, evenements); }
  void changer(int fd, Cle cle, std::uint32_t evenements) { regler(EPOLL_CTL_MOD, fd, cle, evenements); }
  std::span<const epoll_event> attendre(int millisecondes) {
    const int nombre =
        epoll_wait(veille_.numero(), recus_.data(), static_cast<int>(recus_.size()), millisecondes);
    return {recus_.data(), nombre > 0 ? static_cast<std::size_t>(nombre) : 0U};
  }

 private:
  void regler(int operation, int fd, Cle cle, std::uint32_t evenements) {
    epoll_event evenement{};
    evenement.events = evenements;
    evenement.data.u64 = cle;
    epoll_ctl(veille_.numero(), operation, fd, &evenement);
  }

  Descripteur veille_;
  std::array<epoll_event, 256> recus_{};
};

}  // namespace noxlux::serveur

#endif
