// noxlux completer: the words that a shell may put where the cursor stands, one a line. The scripts of bash,
// zsh and fish are this command and little else.
#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "noxlux/bibliotheque.h"
#include "noxlux/catalogue.h"
#include "noxlux/commandes.h"
#include "noxlux/erreurs.h"
#include "noxlux/noms_commandes.h"
#include "noxlux/regle_documentee.h"
#include "noxlux/requete.h"

namespace noxlux::commande {

namespace {

using Mots = std::vector<std::string>;

// The family of the identifiers that a command takes; empty when it takes none.
std::string familleDe(const std::string& commande) {
  constexpr std::pair<const char*, const char*> FAMILLES[] = {{"consulter", "consultation"},
                                                              {"modifier", "modification"},
                                                              {"annuler", "annulation"},
                                                              {"verifier", "controle"},
                                                              {"appliquer", "regle"}};
  for (const auto& [nom, famille] : FAMILLES) {
    if (commande == nom) {
      return famille;
    }
  }
  return {};
}

// The act codes of the reference that the line names, or of the one at hand; none without a reference.
Mots codesDActes(const Mots& ligne) {
  OptionsReference reference;
  for (std::size_t i = 0; i + 1 < ligne.size(); ++i) {
    if (ligne[i] == "-r" || ligne[i] == "--reference") {
      reference.reference = ligne[i + 1];
    } else if (ligne[i] == "--config") {
      reference.config = ligne[i + 1];
    }
  }
  try {
    return Catalogue(reference.fichierReference()).codes();
  } catch (const std::exception&) {
    return {};
  }
}

// `ligne`: the words after "noxlux", the one being typed last.
Mots candidats(const CLI::App& application, const Mots& ligne) {
  const std::string& mot = ligne.back();
  if (ligne.size() == 1) {
    return nomsDeCommandes(application);
  }
  const CLI::App* const commande = sousCommande(application, ligne.front());
  if (commande == nullptr) {
    return {};
  }
  if (mot.starts_with("-")) {
    return nomsDOptions(*commande);
  }
  if (ligne.front() == "acte" && ligne.size() == 2) {
    return codesDActes(ligne);
  }
  const std::string famille = familleDe(ligne.front());
  if (!famille.empty() && ligne.size() == 2) {
    return DescriptionZones::socle().identifiants(famille);
  }
  Mots noms;
  if (const FonctionDecrite* const fonction =
          famille.empty() ? nullptr : DescriptionZones::socle().fonction(famille, ligne[1])) {
    const bool code = mot.starts_with("acte=");
    for (const std::string& champ : code ? codesDActes(ligne) : champsDe(*fonction)) {
      noms.push_back(code ? "acte=" + champ : champ + "=");
    }
  } else if (ligne.front() == "rechercher" && ligne.size() == 2) {
    noms = {"mot", "filtre"};
  } else if (ligne.front() == "regle" && ligne.size() == 2) {
    noms = nomsDeRegles();
  } else if (ligne.front() == "help" || ligne.front() == "aide") {
    return candidats(application, {mot});
  }
  return noms;
}

}  // namespace

void enregistrerCompleter(CLI::App& application) {
  CLI::App* const commande = application.add_subcommand("completer", "");
  commande->group("");
  auto ligne = std::make_shared<Mots>();
  commande->add_option("ligne", *ligne, "les mots de la ligne, derrière --");
  commande->callback([&application, ligne] {
    const Mots mots = ligne->empty() ? Mots{""} : *ligne;
    const std::string debut = enCapitales(mots.back());  // codes are typed in small letters too
    for (const std::string& candidat : candidats(application, mots)) {
      if (enCapitales(candidat).starts_with(debut)) {
        std::cout << candidat << '\n';
      }
    }
  });
}

}  // namespace noxlux::commande
