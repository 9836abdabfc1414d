// Saving the modifications: the files seen at the end, and what is left when an operation on a file fails or
// the process dies at it, when others save at the same time, over links and files of any mode. The operations
// of the C library are replaced here, to fail or die on demand.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <map>
#include <string_view>

#include "referent/fabrique_reference.h"

namespace {

enum class Panne { Aucune, Unique, Durable, Mort };

struct Plan {
  Panne panne = Panne::Aucune;
  int restantes = 0;  // operations until the fault
  int erreur = EIO;
  const char* seule = nullptr;  // counts only this operation
  bool survenue = false;
  const FILE* illisible = nullptr;  // the stream that a read failed on
};
Plan plan;

// Whether the operation at hand must fail.
bool echoue(const char* operation) {
  if (plan.panne == Panne::Aucune || (plan.seule != nullptr && std::string(plan.seule) != operation) ||
      (plan.survenue && plan.panne == Panne::Unique) || (!plan.survenue && plan.restantes-- > 0)) {
    return false;
  }
  plan.survenue = true;
  errno = plan.erreur;
  return true;
}

bool echoueOuMeurt(const char* operation) {
  const bool oui = echoue(operation);
  if (oui && plan.panne == Panne::Mort) {
    _exit(9);
  }
  return oui;
}

template <class F>
F* veritable(F* /*fonction*/, const char* nom) {
  return reinterpret_cast<F*>(dlsym(RTLD_NEXT, nom));
}

#ifdef __USE_FILE_OFFSET64
constexpr const char* FOPEN = "fopen64";
constexpr const char* OPEN = "open64";
#else
constexpr const char* FOPEN = "fopen";
constexpr const char* OPEN = "open";
#endif

int heritables = 0;  // files that a program started meanwhile would have inherited

void compterHeritable(bool ferme) { heritables += plan.panne != Panne::Aucune && !ferme ? 1 : 0; }

}  // namespace

extern "C" {

FILE* fopen(const char* nom, const char* mode) {
  static const auto reelle = veritable(&fopen, FOPEN);
  compterHeritable(std::string_view(mode).find('e') != std::string_view::npos);
  return echoueOuMeurt("fopen") ? nullptr : reelle(nom, mode);
}
int open(const char* nom, int drapeaux, ...) {
  static const auto reelle = reinterpret_cast<int (*)(const char*, int, ...)>(dlsym(RTLD_NEXT, OPEN));
  std::va_list arguments;
  va_start(arguments, drapeaux);
  const mode_t droits = (drapeaux & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  compterHeritable((drapeaux & O_CLOEXEC) != 0);
  return echoueOuMeurt("open") ? -1 : reelle(nom, drapeaux, droits);
}
FILE* fdopen(int descripteur, const char* mode) noexcept {
  static const auto reelle = veritable(&fdopen, "fdopen");
  return echoueOuMeurt("fdopen") ? nullptr : reelle(descripteur, mode);
}
int unlink(const char* nom) noexcept {
  static const auto reelle = veritable(&unlink, "unlink");
  return echoueOuMeurt("unlink") ? -1 : reelle(nom);
}
int flock(int descripteur, int operation) noexcept {
  static const auto reelle = veritable(&flock, "flock");
  return echoueOuMeurt("flock") ? -1 : reelle(descripteur, operation);
}
// A process that dies while it writes leaves half of it.
size_t fwrite(const void* octets, size_t taille, size_t nombre, FILE* fichier) {
  static const auto reelle = veritable(&fwrite, "fwrite");
  if (!echoue("fwrite")) {
    return reelle(octets, taille, nombre, fichier);
  }
  if (plan.panne == Panne::Mort) {
    plan = {};
    reelle(octets, taille, nombre / 2, fichier);
    fflush(fichier);
    _exit(9);
  }
  return 0;
}
int fflush(FILE* fichier) {
  static const auto reelle = veritable(&fflush, "fflush");
  return echoueOuMeurt("fflush") ? EOF : reelle(fichier);
}
int fclose(FILE* fichier) {
  static const auto reelle = veritable(&fclose, "fclose");
  const bool panne = echoueOuMeurt("fclose");
  const int erreur = errno;
  const int resultat = reelle(fichier);
  errno = panne ? erreur : errno;
  return panne ? EOF : resultat;
}
// What reaches the disk is not looked at here: no use waiting for it.
int fsync(int /*descripteur*/) { return echoueOuMeurt("fsync") ? -1 : 0; }
// A read that fails: nothing is read, and the stream says why.
size_t fread(void* octets, size_t taille, size_t nombre, FILE* fichier) {
  static const auto reelle = veritable(&fread, "fread");
  if (echoueOuMeurt("fread")) {
    plan.illisible = fichier;
    return 0;
  }
  return reelle(octets, taille, nombre, fichier);
}
int ferror(FILE* fichier) noexcept {
  static const auto reelle = veritable(&ferror, "ferror");
  return fichier == plan.illisible ? 1 : reelle(fichier);
}
int fseek(FILE* fichier, long position, int origine) {
  static const auto reelle = veritable(&fseek, "fseek");
  return echoueOuMeurt("fseek") ? -1 : reelle(fichier, position, origine);
}
long ftell(FILE* fichier) {
  static const auto reelle = veritable(&ftell, "ftell");
  return echoueOuMeurt("ftell") ? -1 : reelle(fichier);
}
int access(const char* nom, int mode) noexcept {
  static const auto reelle = veritable(&access, "access");
  return echoueOuMeurt("access") ? -1 : reelle(nom, mode);
}
int remove(const char* nom) noexcept {
  static const auto reelle = veritable(&remove, "remove");
  return echoueOuMeurt("remove") ? -1 : reelle(nom);
}
int rename(const char* ancien, const char* nouveau) noexcept {
  static const auto reelle = veritable(&rename, "rename");
  return echoueOuMeurt("rename") ? -1 : reelle(ancien, nouveau);
}
}

using namespace noxlux;
using namespace essai;

namespace {

using Fichiers = std::map<std::string, Octets>;

class Sauvegarde : public testing::Test {
 protected:
  void SetUp() override {
    Reference().ecrire(repertoire_);
    ASSERT_EQ(charger(referentiel_, repertoire_), 0);
    modifier(1);
    ASSERT_EQ(referentiel_.sauvegarderModifications(), 0);
    versions_.push_back(repertoire_.lire("modifref.nox"));
    modifier(2);
    ASSERT_EQ(referentiel_.sauvegarderModifications(), 0);
    versions_.push_back(repertoire_.lire("modifref.nox"));
    modifier(3);
    ASSERT_EQ(referentiel_.sauvegarderModifications(), 0);
    versions_.push_back(repertoire_.lire("modifref.nox"));
  }
  void TearDown() override { plan = {}; }

  void modifier(std::uint16_t revision) {
    referentiel_.entete.numeroRevision = revision;
    referentiel_.lignes<ModificationSeuil>().push_back({1, {2026, 1, 1}, 120.0 + revision});
  }
  // The modification files, by name.
  Fichiers photographier() const {
    Fichiers fichiers;
    for (const char* nom : {"modifref.nox", "modif~.nox", "modif~.sav", "modiftmp.nox"}) {
      if (repertoire_.contient(nom)) {
        fichiers[nom] = repertoire_.lire(nom);
      }
    }
    return fichiers;
  }
  void retablir(const Fichiers& fichiers) const {
    for (const auto& [nom, octets] : photographier()) {
      std::filesystem::remove(repertoire_.chemin(nom.c_str()));
    }
    for (const auto& [nom, octets] : fichiers) {
      repertoire_.ecrire(nom.c_str(), octets);
    }
  }
  // The states a save may start from, the version in memory being the third.
  std::vector<Fichiers> departs() const {
    const Octets coupe(versions_[2].begin(), versions_[2].begin() + 100);
    return {{},
            {{"modifref.nox", versions_[1]}},
            {{"modifref.nox", versions_[1]}, {"modif~.nox", versions_[0]}},
            {{"modif~.nox", versions_[1]}, {"modiftmp.nox", coupe}},
            {{"modifref.nox", versions_[1]}, {"modif~.sav", versions_[0]}, {"modiftmp.nox", coupe}}};
  }
  CodeRetour sauver(Panne panne, int rang, const char* seule = nullptr, int erreur = EIO) {
    plan = {panne, rang, erreur, seule, false, nullptr};
    const CodeRetour cr = referentiel_.sauvegarderModifications();
    survenue_ = plan.survenue;
    plan = {};
    return cr;
  }
  bool magasinIntact() const {
    return referentiel_.lignes<ModificationSeuil>().size() == 3 && referentiel_.entete.numeroRevision == 3;
  }
  // Whatever a save left, the next one sets right.
  void sauverEnsuite() {
    ASSERT_TRUE(magasinIntact());
    ASSERT_EQ(referentiel_.sauvegarderModifications(), 0);
    ASSERT_EQ(repertoire_.lire("modifref.nox"), versions_[2]);
    ASSERT_FALSE(repertoire_.contient("modiftmp.nox"));
  }
  // Whether one of the two files loads with the version before or the new one.
  bool versionSaine() const {
    for (const char* nom : {"modifref.nox", "modif~.nox"}) {
      const Octets octets = repertoire_.contient(nom) ? repertoire_.lire(nom) : Octets();
      if (octets == versions_[1] || octets == versions_[2]) {
        return true;
      }
    }
    return false;
  }

  Repertoire repertoire_;
  Referentiel referentiel_;
  std::vector<Octets> versions_;  // what three saves in a row wrote
  bool survenue_ = false;
};

TEST_F(Sauvegarde, fichiersVusALaFin) {
  EXPECT_EQ(photographier(), (Fichiers{{"modifref.nox", versions_[2]}, {"modif~.nox", versions_[1]}}));
  retablir({});
  ASSERT_EQ(referentiel_.sauvegarderModifications(), 0);
  EXPECT_EQ(photographier(), (Fichiers{{"modifref.nox", versions_[2]}}));
  Date aujourdHui;
  Referentiel::lireDateSysteme(aujourdHui);
  Referentiel relu;
  ASSERT_EQ(charger(relu, repertoire_), 0);
  EXPECT_EQ(relu.entete.dateModification, aujourdHui.lireBrute());
  EXPECT_EQ(relu.entete.numeroRevision, 3);
  ASSERT_EQ(relu.lignes<ModificationSeuil>().size(), 3U);
  EXPECT_EQ(relu.lignes<ModificationSeuil>()[1].valeur, 122.0);
}

TEST_F(Sauvegarde, entete) {
  referentiel_.entete.commentaire = std::string(199, 'c') + "\r";
  referentiel_.entete.dateModification = {};
  ASSERT_EQ(referentiel_.sauvegarderModifications(), 0);
  const Octets octets = repertoire_.lire("modifref.nox");
  const std::string entete(octets.begin() + 4, octets.begin() + 263);
  char date[16];
  std::snprintf(date, sizeof date, "%04u%02u%02u", referentiel_.entete.dateModification.annee,
                referentiel_.entete.dateModification.mois, referentiel_.entete.dateModification.jour);
  EXPECT_EQ(entete, " modifref.nox 0121 V0810 " + std::string(date) + " 0000 00003 ESSAI      " +
                        std::string(199, 'c') + " \r\n\x1A");
  std::string tables;
  for (const TableFichier& table : listerTables(octets)) {
    tables += table.identifiant + " ";
  }
  EXPECT_EQ(tables, "035 036 037 038 039 040 041 042 043 ");
  Referentiel relu;
  EXPECT_EQ(charger(relu, repertoire_), 0) << "a carriage return does not cut the comment";
}

TEST_F(Sauvegarde, unePanneRendLeRepertoireTelQuIlEtait) {
  int essais = 0;
  for (const Fichiers& depart : departs()) {
    survenue_ = true;
    for (int rang = 0; survenue_; ++rang, ++essais) {
      retablir(depart);
      const CodeRetour cr = sauver(Panne::Unique, rang);
      const Fichiers fin = photographier();
      if (cr == 0) {
        EXPECT_EQ(fin.at("modifref.nox"), versions_[2]) << "operation " << rang;
        continue;
      }
      ASSERT_EQ(cr, 0xD700);
      Fichiers attendu = depart;
      for (const char* reste : {"modiftmp.nox", "modif~.sav"}) {
        if (!fin.contains(reste)) {
          attendu.erase(reste);  // left by another process: cleared away, or not reached
        }
      }
      ASSERT_EQ(fin, attendu) << "operation " << rang;
      ASSERT_TRUE(magasinIntact()) << "operation " << rang;
    }
  }
  EXPECT_GT(essais, 200);
  EXPECT_EQ(heritables, 0);
}

TEST_F(Sauvegarde, unePanneDurableLaisseUneVersionSaine) {
  for (const Fichiers& depart : departs()) {
    survenue_ = true;
    for (int rang = 0; survenue_; ++rang) {
      retablir(depart);
      sauver(Panne::Durable, rang);
      ASSERT_TRUE(depart.empty() || versionSaine()) << "operation " << rang;
      ASSERT_NO_FATAL_FAILURE(sauverEnsuite()) << "operation " << rang;
    }
  }
}

TEST_F(Sauvegarde, uneMortLaisseUneVersionSaine) {
  for (const Fichiers& depart : departs()) {
    int sortie = 9;
    for (int rang = 0; sortie == 9; ++rang) {
      retablir(depart);
      const pid_t fils = fork();
      ASSERT_GE(fils, 0);
      if (fils == 0) {
        _exit(sauver(Panne::Mort, rang) == 0 ? 0 : 1);
      }
      int etat = 0;
      ASSERT_EQ(waitpid(fils, &etat, 0), fils);
      ASSERT_TRUE(WIFEXITED(etat));
      sortie = WEXITSTATUS(etat);
      ASSERT_NE(sortie, 1);
      ASSERT_TRUE(depart.empty() || versionSaine()) << "operation " << rang;
      ASSERT_TRUE(depart.contains("modifref.nox") <= repertoire_.contient("modifref.nox")) << rang;
      ASSERT_TRUE(!repertoire_.contient("modifref.nox") ||
                  repertoire_.lire("modifref.nox") == versions_[depart.empty() ? 2 : 1] ||
                  repertoire_.lire("modifref.nox") == versions_[2]);
      ASSERT_NO_FATAL_FAILURE(sauverEnsuite()) << "operation " << rang;
    }
  }
}

TEST_F(Sauvegarde, messages) {
  const struct {
    const char* operation;
    int rang;
    int erreur;
    CodeRetour cr;
    const char* message;
  } CAS[] = {
      {"open", 1, EACCES, 0xD700, "ERREUR : probleme lors de l'ouverture du fichier: Permission denied"},
      {"fopen", 1, EACCES, 0xD700, "ERREUR : probleme lors de l'ouverture du fichier: Permission denied"},
      {"fclose", 1, EIO, 0xD700, "ERREUR : probleme lors de la fermeture du fichier: "},
      {"remove", 0, EPERM, 0xD700, "modif~.nox : Operation not permitted"},
      {"rename", 0, EPERM, 0xD700, "modif~.nox : Operation not permitted"},
      {"flock", 0, ENOLCK, 0, "ne peut etre verrouille"},
      {"rename", 0, EIO, 0xD700, "ERREUR : probleme lors du renommage: "},
      {"rename", 0, ENOENT, 0, "Renommage du fichier "},
  };
  for (const auto& cas : CAS) {
    retablir({{"modifref.nox", versions_[1]}, {"modif~.nox", versions_[0]}});
    std::string trace;
    CodeRetour cr = 0;
    {
      Ecoute ecoute;
      cr = sauver(Panne::Unique, cas.rang, cas.operation, cas.erreur);
      trace = ecoute.texte();
    }
    EXPECT_EQ(cr, cas.cr) << cas.operation;
    EXPECT_NE(trace.find(cas.message), std::string::npos) << cas.operation << trace;
  }
  EXPECT_EQ(repertoire_.lire("modif~.nox"), versions_[1]) << "the version before is kept";
}

// Two processes that save without pause leave, at every moment, a whole version of one of them.
TEST_F(Sauvegarde, deuxProcessusEnMemeTemps) {
  constexpr int SAUVEGARDES = 60;
  pid_t fils[2];
  for (int rang = 0; rang < 2; ++rang) {
    fils[rang] = fork();
    ASSERT_GE(fils[rang], 0);
    if (fils[rang] == 0) {
      int echecs = 0;
      for (int i = 0; i < SAUVEGARDES; ++i) {
        referentiel_.entete.numeroRevision = static_cast<std::uint16_t>(100 * (rang + 1) + i);
        echecs += referentiel_.sauvegarderModifications() == 0 ? 0 : 1;
      }
      _exit(echecs == 0 ? 0 : 1);
    }
  }
  int enCours = 2;
  int lectures = 0;
  for (; enCours > 0; ++lectures) {
    const Octets octets = repertoire_.lire("modifref.nox");
    ASSERT_GT(octets.size(), 60U) << "a moment without modifref.nox";
    Octets refait = octets;
    refaireCRC(refait);
    ASSERT_EQ(octets, refait);
    int etat = 0;
    if (waitpid(-1, &etat, WNOHANG) > 0) {
      --enCours;
      EXPECT_EQ(etat, 0);
    }
  }
  EXPECT_GT(lectures, 10);
  const Fichiers fin = photographier();
  EXPECT_EQ(fin.size(), 2U);
  EXPECT_NE(fin.at("modifref.nox"), fin.at("modif~.nox"));
}

TEST_F(Sauvegarde, attendLeVerrouDuRepertoire) {
  const int descripteur = ::open(repertoire_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ASSERT_EQ(flock(descripteur, LOCK_EX), 0);
  const Fichiers avant = photographier();
  Ecoute ecoute;
  const auto debut = std::chrono::steady_clock::now();
  EXPECT_EQ(referentiel_.sauvegarderModifications(), 0xD700);
  EXPECT_NEAR(std::chrono::duration<double>(std::chrono::steady_clock::now() - debut).count(), 2.5, 0.7);
  EXPECT_TRUE(ecoute.contient("ERREUR : une autre sauvegarde tient le repertoire "));
  EXPECT_EQ(photographier(), avant);
  // The process that holds the lock lends it to its own saves, and goes on holding it.
  setenv("NOXLUX_VERROU", std::to_string(descripteur).c_str(), 1);
  EXPECT_EQ(referentiel_.sauvegarderModifications(), 0);
  unsetenv("NOXLUX_VERROU");
  EXPECT_EQ(referentiel_.sauvegarderModifications(), 0xD700);
  close(descripteur);
  EXPECT_EQ(referentiel_.sauvegarderModifications(), 0);
}

TEST_F(Sauvegarde, ditQuIlRemplaceLaVersionDUnAutre) {
  constexpr const char* LIGNE = "a ete change par un autre programme ; modif~.nox garde sa version";
  Referentiel autre;
  ASSERT_EQ(charger(autre, repertoire_), 0);
  autre.entete.numeroRevision = 50;
  ASSERT_EQ(autre.sauvegarderModifications(), 0);
  const Octets version = repertoire_.lire("modifref.nox");
  {
    Ecoute ecoute;
    EXPECT_EQ(referentiel_.sauvegarderModifications(), 0);
    EXPECT_TRUE(ecoute.contient(LIGNE));
  }
  EXPECT_EQ(repertoire_.lire("modif~.nox"), version);
  Ecoute ecoute;
  EXPECT_EQ(referentiel_.sauvegarderModifications(), 0);
  Referentiel relu;
  EXPECT_EQ(charger(relu, repertoire_), 0);
  EXPECT_EQ(relu.sauvegarderModifications(), 0);
  EXPECT_FALSE(ecoute.contient(LIGNE)) << "what was loaded, or saved last, is its own";
}

TEST_F(Sauvegarde, droitsEtLiens) {
  namespace fs = std::filesystem;
  const auto droits = [&](const char* nom) {
    return static_cast<unsigned>(fs::status(repertoire_.chemin(nom)).permissions());
  };
  const mode_t masque = umask(027);
  retablir({});
  EXPECT_EQ(referentiel_.sauvegarderModifications(), 0);
  EXPECT_EQ(droits("modifref.nox"), 0640U);
  fs::permissions(repertoire_.chemin("modifref.nox"), fs::perms{0606});
  EXPECT_EQ(referentiel_.sauvegarderModifications(), 0);
  EXPECT_EQ(droits("modifref.nox"), 0606U);
  EXPECT_EQ(droits("modif~.nox"), 0606U);
  umask(masque);
  if (geteuid() == 0) {
    ASSERT_EQ(chown(repertoire_.chemin("modifref.nox").c_str(), 12, 34), 0);
    EXPECT_EQ(referentiel_.sauvegarderModifications(), 0);
    struct stat etat {};
    ASSERT_EQ(stat(repertoire_.chemin("modifref.nox").c_str(), &etat), 0);
    EXPECT_EQ(etat.st_uid, 12U);
    EXPECT_EQ(etat.st_gid, 34U);
  }

  const Repertoire ailleurs;
  retablir({{"modif~.nox", versions_[0]}});
  ailleurs.ecrire("cible", versions_[1]);
  ailleurs.ecrire("victime", {'v'});
  fs::create_symlink(ailleurs.chemin("cible"), repertoire_.chemin("modifref.nox"));
  for (const std::string& nom : {ailleurs.chemin("modiftmp.nox"), repertoire_.chemin("modiftmp.nox"),
                                 repertoire_.chemin("modif~.sav")}) {
    fs::create_symlink(ailleurs.chemin("victime"), nom);
  }
  EXPECT_EQ(referentiel_.sauvegarderModifications(), 0);
  EXPECT_TRUE(fs::is_symlink(repertoire_.chemin("modifref.nox")));
  EXPECT_EQ(ailleurs.lire("cible"), versions_[2]);
  EXPECT_EQ(ailleurs.lire("victime"), Octets{'v'});
  EXPECT_EQ(repertoire_.lire("modif~.nox"), versions_[1]);
}

}  // namespace
