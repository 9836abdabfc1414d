#include "basics/fichier_ini.h"

#include <cstring>
#include <new>
#include <sstream>

#include "basics/assertion.h"
#include "basics/fichiers.h"
#include "basics/systeme.h"
#include "basics/trace.h"

namespace noxlux {

namespace {

constexpr std::size_t LONGUEUR_MAX_LIGNE = 1023;

bool estBlanc(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string_view sansBlancsAGauche(std::string_view texte) {
  while (!texte.empty() && estBlanc(texte.front())) {
    texte.remove_prefix(1);
  }
  return texte;
}

std::string_view sansBlancsADroite(std::string_view texte) {
  while (!texte.empty() && estBlanc(texte.back())) {
    texte.remove_suffix(1);
  }
  return texte;
}

template <class Ajout>
CodeRetour ajouterSousLimite(std::size_t nombre, std::size_t maximum, FormatVerifie<> limite,
                             FormatVerifie<> memoire, Ajout ajout) {
  if (nombre >= maximum) {
    Trace::erreur(TRACE_SYSTEME, limite);
    return NOX_CR_INI_LIMITE;
  }
  try {
    ajout();
  } catch (const std::bad_alloc&) {
    Trace::erreur(TRACE_SYSTEME, memoire);
    return NOX_CR_MEMOIRE;
  }
  return NOX_CR_OK;
}

}  // namespace

CodeRetour SectionIni::ajouterRubrique(const char* cle, const char* valeur) {
  exiger(cle != nullptr, "cle != __null");
  exiger(valeur != nullptr, "valeur != __null");
  return ajouterSousLimite(rubriques_.size(), MAX_RUBRIQUES_INI,
                           "ERREUR: Nombre maximum de rubriques atteint",
                           "ERREUR: Allocation objet RubriqueIni", [&] {
                             rubriques_.push_back({cle, valeur});
                           });
}

const RubriqueIni* SectionIni::chercher(const char* cle) const {
  for (const RubriqueIni& rubrique : rubriques_) {
    if (Systeme::comparerIdentifiant(rubrique.cle.c_str(), cle) == 0) {
      return &rubrique;
    }
  }
  return nullptr;
}

CodeRetour FichierIni::parserOrvanIni() {
  const char* repertoire = nullptr;
  Systeme::lireRepertoireSysteme(repertoire);
  const std::string nom = repertoire == nullptr ? "orvan.ini" : std::string(repertoire) + '/' + "orvan.ini";
  return parserFichier(nom.c_str());
}

CodeRetour FichierIni::parserFichier(const char* nomFichier) {
  exiger(nomFichier != nullptr, "nomFichier != __null");
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_SYSTEME, cr, "FichierIni::parserFichier : nomFichier = %s", nomFichier);
  sections_.clear();
  std::string contenu;
  if (!lireFichier(nomFichier, contenu)) {
    Trace::erreur(TRACE_SYSTEME, "ERREUR: ouverture du fichier %s", nomFichier);
    cr = NOX_CR_INI_OUVERTURE;
    return cr;
  }
  std::istringstream lignes(std::move(contenu));
  std::string ligne;
  while (std::getline(lignes, ligne)) {
    const CodeRetour crLigne = parserLigne(sansBlancsAGauche(ligne));
    if (cr == NOX_CR_OK) {
      cr = crLigne;
    }
  }
  return cr;
}

CodeRetour FichierIni::parserLigne(std::string_view ligne) {
  if (ligne.empty() || ligne.front() == ';') {
    return NOX_CR_OK;
  }
  if (ligne.size() > LONGUEUR_MAX_LIGNE) {
    Trace::erreur(TRACE_SYSTEME, "ERREUR: ligne de plus de %u caractères",
                  static_cast<unsigned>(LONGUEUR_MAX_LIGNE));
    return NOX_CR_INI_SYNTAXE;
  }
  return ligne.front() == '[' ? parserSection(ligne) : parserRubrique(ligne);
}

CodeRetour FichierIni::parserSection(std::string_view ligne) {
  const std::size_t fin = ligne.find(']');
  const std::string nom(ligne.substr(1, fin == std::string_view::npos ? fin : fin - 1));
  if (fin == std::string_view::npos) {
    Trace::erreur(TRACE_SYSTEME, "ERREUR: Crochet fermant (]) manquant à la déclaration de la section %s",
                  nom.c_str());
    return NOX_CR_INI_SYNTAXE;
  }
  if (!sansBlancsAGauche(ligne.substr(fin + 1)).empty()) {
    Trace::erreur(TRACE_SYSTEME, "ERREUR: Caractères après la déclaration de la section %s", nom.c_str());
    return NOX_CR_INI_SYNTAXE;
  }
  return ajouterSection(nom.c_str());
}

CodeRetour FichierIni::parserRubrique(std::string_view ligne) {
  const std::size_t egal = ligne.find('=');
  const std::string cle(sansBlancsADroite(ligne.substr(0, egal)));
  if (egal == std::string_view::npos) {
    Trace::erreur(TRACE_SYSTEME, "ERREUR: Signe égal (=) manquant à la déclaration de la rubrique %s",
                  cle.c_str());
    return NOX_CR_INI_SYNTAXE;
  }
  const std::string valeur(sansBlancsADroite(sansBlancsAGauche(ligne.substr(egal + 1))));
  return ajouterRubrique(cle.c_str(), valeur.c_str());
}

CodeRetour FichierIni::ajouterSection(const char* nom) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_SYSTEME, cr, "FichierIni::ajouterSection: [%s]", nom);
  cr = ajouterSousLimite(sections_.size(), MAX_SECTIONS_INI, "ERREUR: Nombre maximum de sections atteint",
                         "ERREUR: Allocation objet SectionIni", [&] { sections_.emplace_back(nom); });
  return cr;
}

CodeRetour FichierIni::ajouterRubrique(const char* cle, const char* valeur) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_SYSTEME, cr, "FichierIni::ajouterRubrique: %s = %s", cle, valeur);
  if (sections_.empty()) {
    Trace::erreur(TRACE_SYSTEME, "ERREUR: ajout d'une rubrique (%s) en dehors d'une section", cle);
    cr = NOX_CR_INI_HORS_SECTION;
  } else {
    cr = sections_.back().ajouterRubrique(cle, valeur);
  }
  return cr;
}

const char* FichierIni::lireValeur(const char* section, const char* cle) const {
  exiger(section != nullptr, "section != __null");
  exiger(cle != nullptr, "cle != __null");
  Trace::debut(TRACE_SYSTEME, "FichierIni::lireValeur : section = %s, cle = %s", section, cle);
  for (const SectionIni& candidate : sections_) {
    if (Systeme::comparerIdentifiant(candidate.lireNom().c_str(), section) != 0) {
      continue;
    }
    const RubriqueIni* rubrique = candidate.chercher(cle);
    if (rubrique == nullptr) {
      Trace::fin(TRACE_SYSTEME, "Rubrique %s non trouvée", cle);
      return nullptr;
    }
    Trace::fin(TRACE_SYSTEME, "Valeur = %s", rubrique->valeur.c_str());
    return rubrique->valeur.c_str();
  }
  Trace::fin(TRACE_SYSTEME, "Section %s non trouvée", section);
  return nullptr;
}

}  // namespace noxlux
