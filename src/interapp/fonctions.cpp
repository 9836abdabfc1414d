#include "interapp/fonctions.h"

#include <algorithm>
#include <limits>
#include <new>

#include "basics/assertion.h"
#include "basics/trace.h"

namespace noxlux {

// How a list spread over several fields is read, and what its faults are called.
struct Fonctions::RegleListe {
  unsigned short nombreChamps;
  CodeRetour faute;
  FormatVerifie<> trou;
  FormatVerifie<> memoire;
  bool sansDouble;
};

namespace {

ListeCodes creerListe(CodeRetour& cr, unsigned short capacite, FormatVerifie<> faute) {
  try {
    return ListeCodes(capacite);
  } catch (const std::bad_alloc&) {
    Trace::erreur(TRACE_PARAMETRES, faute);
    cr = NOX_CR_MEMOIRE;
    throw;
  }
}

constexpr FormatVerifie<> MEMOIRE_MODIFICATEURS = "ERREUR: Allocation mémoire liste de modificateurs.";
constexpr FormatVerifie<> MEMOIRE_DENTS = "ERREUR: Allocation mémoire liste de numéros de dents.";

}  // namespace

Fonctions::Fonctions(Zone* zin, const SuperGroupe* superGroupe) {
  if (zin != nullptr) {
    controleur_.emplace(zin, superGroupe);
  }
}

// --- Input zone ---

void Fonctions::positionnerGroupeSuivant(CodeRetour& cr, std::uint16_t& identifiant) {
  identifiant = 0;
  if (cr == NOX_CR_OK && controleur_ && !controleur_->lireZone().finDonnees()) {
    cr = controleur_->positionnerGroupeSuivant(identifiant);
  }
}

void Fonctions::ignoreChamp(CodeRetour& cr) {
  if (cr == NOX_CR_OK && (controleur_ || refuserSansZone(cr))) {
    std::uint16_t identifiant = 0;
    std::uint16_t numero = 0;
    Octets donnees;
    cr = controleur_->extraireChamp(identifiant, numero, donnees);
  }
}

// A field asked by a function that the reference describes without input.
bool Fonctions::refuserSansZone(CodeRetour& cr) {
  Trace::erreur(TRACE_PARAMETRES, "ERREUR: champ demandé à une fonction sans zone d'entrée");
  cr = NOX_CR_INCOHERENCE;
  return false;
}

Code Fonctions::extrairePhase(CodeRetour& cr) {
  Code phase;
  extraireDans(cr, phase);
  if (cr == NOX_CR_OK && !phase.estRenseigne()) {
    phase = Code('0');
  }
  return phase;
}

ListeCodes Fonctions::extraireListe(CodeRetour& cr, const RegleListe& regle) {
  ListeCodes liste = creerListe(cr, regle.nombreChamps, regle.memoire);
  bool trou = false;
  for (unsigned short i = 0; i < regle.nombreChamps; ++i) {
    const Code code = extraireCode(cr);
    if (cr != NOX_CR_OK) {
      break;
    }
    if (!code.estRenseigne()) {
      trou = true;
    } else if (regle.sansDouble && liste.contient(code)) {
      Trace::erreur(TRACE_PARAMETRES, "ERREUR: Numéro de dent %s en double", code.lireTexte());
      cr = regle.faute;
    } else if (trou) {
      Trace::erreur(TRACE_PARAMETRES, regle.trou);
      cr = regle.faute;
    } else {
      cr = liste.ajouterElement(code);
    }
  }
  return liste;
}

ListeCodes Fonctions::extraireModificateurs(CodeRetour& cr) {
  static constexpr RegleListe REGLE = {MAX_MODIFICATEURS, NOX_CR_MODIFICATEURS,
                                       "ERREUR: Trou dans la liste des modificateurs", MEMOIRE_MODIFICATEURS,
                                       false};
  return extraireListe(cr, REGLE);
}

ListeCodes Fonctions::extraireDents(CodeRetour& cr) {
  static constexpr RegleListe REGLE = {
      MAX_DENTS, NOX_CR_DENTS, "ERREUR: Trou dans la liste des numéros de dents", MEMOIRE_DENTS, true};
  return extraireListe(cr, REGLE);
}

ListeCodes Fonctions::extraireModificateursOC(CodeRetour& cr) {
  const Code codes = extraireCode(cr);
  ListeCodes liste = creerListe(cr, 0, MEMOIRE_MODIFICATEURS);
  for (const char modificateur : codes.vue()) {
    if (cr == NOX_CR_OK) {
      cr = liste.ajouterElement(Code(modificateur));
    }
  }
  return liste;
}

Code Fonctions::extraireNumeroPS(CodeRetour& cr) {
  const Code debut = extraireCode(cr);
  const Code fin = extraireCode(cr);
  return Code(std::string(debut.vue()).append(fin.vue()));
}

Date Fonctions::extraireDateNaissance(CodeRetour& cr) {
  const Date date = extraireDate(cr);
  if (cr == NOX_CR_OK && !date.estRenseigne()) {
    Trace::erreur(TRACE_PARAMETRES, "ERREUR: Date de naissance non renseignée");
    cr = codeAvecPosition(NOX_CR_CHAMP_INVALIDE, controleur_->lireZone().lireNombreChamps());
  }
  return date.ramener();
}

void Fonctions::verifierNumeroPrestation(CodeRetour& cr, const Nombre& attendu, std::uint16_t ligne) {
  const Nombre numero = extraireNombre(cr);
  if (cr != NOX_CR_OK || numero == attendu) {
    return;
  }
  Trace::erreur(TRACE_CONTROLE,
                "ERREUR: Numéros de prestation incohérents à la %dème ligne (%d dans la prestation de "
                "rattachement, %d dans le groupe %d)",
                ligne, attendu.lireValeur(), numero.lireValeur(), controleur_->lireZone().lireIdentifiant());
  cr = codeAvecPosition(NOX_CR_NUMERO_LIGNE, ligne);
}

void Fonctions::verifierFinDonnees(CodeRetour& cr) {
  if (cr == NOX_CR_OK && controleur_) {
    cr = controleur_->verifierFinDonnees();
  }
}

// --- Output zone ---

ZoneSortie Fonctions::allouerZoneOut(CodeRetour& cr, std::size_t taille) {
  ZoneSortie zone;
  if (cr == NOX_CR_OK) {
    cr = zone.allouer(taille);
    if (cr != NOX_CR_OK) {
      constexpr std::size_t LIMITE = std::numeric_limits<unsigned>::max();
      Trace::erreur(TRACE_PARAMETRES, "ERREUR allocation zone de sortie de %d octets",
                    static_cast<unsigned>(std::min(taille, LIMITE)));
    }
  }
  return zone;
}

void Fonctions::ajouterGroupe(CodeRetour& cr, ZoneSortie& zone, std::uint16_t identifiant) {
  if (cr == NOX_CR_OK) {
    cr = zone->ajouterGroupe(identifiant);
  }
}

void Fonctions::ajouterChamp(CodeRetour& cr, ZoneSortie& zone, const TypeSimple& valeur) {
  if (cr == NOX_CR_OK) {
    cr = zone->ajouterChamp(valeur);
  }
}

void Fonctions::ajouterChamp(CodeRetour& cr, ZoneSortie& zone, const Texte& texte) {
  if (cr == NOX_CR_OK) {
    cr = zone->ajouterChamp(texte);
  }
}

void Fonctions::ajouterChampVide(CodeRetour& cr, ZoneSortie& zone) {
  if (cr == NOX_CR_OK) {
    cr = zone->ajouterChamp(Octets());
  }
}

void Fonctions::ajouterTaux(CodeRetour& cr, ZoneSortie& zone, const Coefficient& taux) {
  if (cr == NOX_CR_OK) {
    cr = zone->ajouterChamp(enOctets(taux.lireBytes(Coefficient::DECIMALES_TAUX)));
  }
}

}  // namespace noxlux
