// What the system refuses, in French whatever the locale; whole files read without surprise; directories that
// go with the process, even when a signal ends it.
#ifndef NOXLUX_COMPILATEUR_SYSTEME_H
#define NOXLUX_COMPILATEUR_SYSTEME_H

#include <filesystem>
#include <string>

namespace noxlux::compilateur {

// Why a call failed, out of its errno.
std::string raisonSysteme(int erreur);

// Reads a whole file; "" or why it cannot be read ("c'est un répertoire").
std::string lireFichier(const std::string& chemin, std::string& contenu);
// The same of what is left to read of a descriptor.
std::string lireDescripteur(int descripteur, std::string& contenu);

// A directory that disappears with what it holds, at the end of its life or when SIGINT, SIGTERM or SIGHUP
// ends the process. It holds plain files and links, no directory.
class RepertoireTemporaire {
 public:
  RepertoireTemporaire(const std::filesystem::path& parent, const std::string& debutDuNom);
  ~RepertoireTemporaire();
  RepertoireTemporaire(const RepertoireTemporaire&) = delete;
  RepertoireTemporaire& operator=(const RepertoireTemporaire&) = delete;

  // "" or why it could not be made.
  const std::string& raison() const { return raison_; }
  std::filesystem::path chemin() const { return modele_; }

 private:
  std::string modele_;
  std::string raison_;
};

}  // namespace noxlux::compilateur

#endif
