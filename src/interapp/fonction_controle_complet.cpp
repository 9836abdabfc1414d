#include "interapp/fonction_controle_complet.h"

#include <algorithm>
#include <array>

#include "basics/trace.h"
#include "interapp/reponse.h"
#include "regles/facture.h"
#include "regles/ligne_ccam.h"
#include "regles/reglementation.h"
#include "regles/tarification.h"

namespace noxlux {

namespace {

enum GroupeFacture : std::uint16_t {
  REMPLACANT = 1150,
  PRESTATION = 1610,
  DEPLACEMENT_FORFAITAIRE = 1620,
  INDEMNITE_KILOMETRIQUE = 1630,
  EXONERATION = 1820,
  ENTENTE_PREALABLE = 1840,
  EXECUTANT = 1870,
  LIEU_EXECUTION = 1880,
  FORCAGE_LIGNE = 2000,
  BASE_AMO = 2020,
  ACTE_CCAM = 2100,
  DENTS = 2200,
  ERREUR = 3520,
  REGLE_OUTREPASSEE = 3530
};

struct NatureAssurance {
  std::uint16_t groupe;
  const char* code;
};
constexpr std::array<NatureAssurance, 4> NATURES_ASSURANCE{
    {{1511, "AS"}, {1512, "MA"}, {1513, "AT"}, {1514, "PM"}}};

const NatureAssurance* chercherNature(std::uint16_t groupe) {
  const auto nature = std::ranges::find(NATURES_ASSURANCE, groupe, &NatureAssurance::groupe);
  return nature == NATURES_ASSURANCE.end() ? nullptr : &*nature;
}

bool estDebutDeLigne(std::uint16_t groupe) {
  return groupe == PRESTATION || groupe == DEPLACEMENT_FORFAITAIRE || groupe == INDEMNITE_KILOMETRIQUE;
}

// What a line bears when the group that would say otherwise is absent.
constexpr const char* SANS_EXONERATION = "0";
constexpr const char* SANS_ENTENTE_PREALABLE = "9";

constexpr unsigned short NIVEAU_OUTREPASSABLE = 1;
constexpr unsigned short NIVEAU_NON_OUTREPASSABLE = 2;

}  // namespace

FonctionControleComplet::FonctionControleComplet(Zone* zin, const SuperGroupe* superGroupe,
                                                 Reglementation* reglementation, Tarification* tarification)
    : Fonctions(zin, superGroupe), reglementation_(reglementation), tarification_(tarification) {
  exiger(zin != nullptr, "zin != __null");
  exiger(reglementation != nullptr, "reglementation != __null");
  exiger(tarification != nullptr, "tarification != __null");
  controleur()->modifierExhaustif(false);
}

CodeRetour FonctionControleComplet::executer(ZoneSortie& zoneOut, unsigned short& niveau) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "FonctionControleComplet::executer");
  niveau = 0;
  Facture facture;
  lireFacture(cr, facture);
  ListeErreurs erreurs;
  if (cr == NOX_CR_OK) {
    cr = facture.controler(*reglementation_, *tarification_, erreurs);
  }
  if (cr != NOX_CR_OK) {
    return cr;
  }
  const Restituees restituees = filtrer(erreurs, niveau);
  zoneOut = ecrireReponse(cr, [&](auto& reponse) {
    for (const auto& ligne : facture.lignes) {
      if (ligne->forcage.has_value()) {
        reponse.groupe(FORCAGE_LIGNE);
        reponse.champ(ligne->numero);
        reponse.champ(*ligne->forcage);
      }
    }
    for (const Erreur* erreur : restituees) {
      reponse.groupe(ERREUR);
      reponse.champ(erreur->lireReference());
      reponse.champ(erreur->lireNiveau());
      reponse.champ(erreur->lireIndicateurForcage());
      reponse.champ(erreur->lireLibellePrincipal());
      reponse.champ(Nombre(erreur->lirePrestations().lireNombreElements()));
      for (const Nombre& numero : erreur->lirePrestations()) {
        reponse.champ(numero);
      }
    }
  });
  return cr;
}

void FonctionControleComplet::lireFacture(CodeRetour& cr, Facture& facture) {
  lireEntete(cr, facture);
  lireNatureAssurance(cr, facture);
  lireLignes(cr, facture);
  facture.caissePS = extraireCode(cr);
}

void FonctionControleComplet::lireEntete(CodeRetour& cr, Facture& facture) {
  const auto ignorer = [&](int nombre) {
    for (; nombre > 0; --nombre) {
      ignoreChamp(cr);
    }
  };
  facture.numeroPS = extraireNumeroPS(cr);
  ignorer(2);
  facture.conventionPS = extraireCode(cr);
  facture.specialitePS = extraireCode(cr);
  ignorer(2);
  facture.agrementRadio = extraireCode(cr);
  ignorer(3);
  facture.dateNaissance = extraireDateNaissance(cr);
  if (groupeSuivant(cr) == REMPLACANT) {
    facture.numeroPS = extraireNumeroPS(cr);
  }
}

void FonctionControleComplet::lireNatureAssurance(CodeRetour& cr, Facture& facture) {
  const NatureAssurance* const nature = chercherNature(groupeSuivant(cr));
  if (cr != NOX_CR_OK) {
    return;
  }
  if (nature == nullptr) {
    Trace::erreur(TRACE_CONTROLE, "ERREUR: aucun groupe de nature d'assurance (151x)");
    cr = NOX_CR_NATURE_ASSURANCE;
    return;
  }
  facture.natureAssurance = Code(nature->code);
  ignoreChamp(cr);
  if (chercherNature(groupeSuivant(cr)) != nullptr) {
    Trace::erreur(TRACE_CONTROLE, "ERREUR: plusieurs groupes de nature d'assurance (151x)");
    cr = NOX_CR_NATURE_ASSURANCE;
  }
}

void FonctionControleComplet::lireLignes(CodeRetour& cr, Facture& facture) {
  std::uint16_t groupe = groupeSuivant(cr);
  while (cr == NOX_CR_OK && estDebutDeLigne(groupe) && facture.lignes.size() < MAX_LIGNES) {
    if (groupe == PRESTATION) {
      lirePrestation(cr, facture);
    } else {
      lireDeplacement(cr, facture, groupe);
    }
    groupe = groupeSuivant(cr);
  }
  if (cr == NOX_CR_OK && estDebutDeLigne(groupe)) {
    Trace::erreur(TRACE_CONTROLE, "ERREUR: Nombre de groupes 1610, 1620 ou 1630 trop grand");
    cr = NOX_CR_TROP_DE_GROUPES;
  }
}

void FonctionControleComplet::lirePrestation(CodeRetour& cr, Facture& facture) {
  const auto position = static_cast<std::uint16_t>(facture.lignes.size() + 1);
  auto ligne = std::make_unique<LigneActe>();
  ligne->numero = extraireNombre(cr);
  ligne->date = extraireDate(cr);
  ligne->lieuExecution = extraireCode(cr);
  ligne->prestation = extraireCode(cr);
  ignoreChamp(cr);
  ignoreChamp(cr);
  ligne->qualificatifDepense = extraireCode(cr);
  ignoreChamp(cr);
  ignoreChamp(cr);
  ignoreChamp(cr);
  ligne->prixUnitaire = extraireMontant(cr);
  ligne->baseRemboursement = extraireMontant(cr);
  ligne->tauxRemboursement = extraireTaux(cr);

  const auto suivi = [&](std::uint16_t groupe) {
    return groupeDeLaLigne(cr, groupe, ligne->numero, position);
  };
  ligne->exonerationTM = suivi(EXONERATION) ? extraireCode(cr) : Code(SANS_EXONERATION);
  ligne->ententePrealable = suivi(ENTENTE_PREALABLE) ? extraireCode(cr) : Code(SANS_ENTENTE_PREALABLE);
  if (suivi(EXECUTANT)) {
    ligne->numeroPS = extraireNumeroPS(cr);
    ligne->specialitePS = extraireCode(cr);
  } else {
    ligne->numeroPS = codeOuVide(facture.numeroPS);
    ligne->specialitePS = codeOuVide(facture.specialitePS);
  }
  ligne->identifiantLieu = suivi(LIEU_EXECUTION) ? extraireCode(cr) : Code();
  if (suivi(BASE_AMO)) {
    ligne->baseTheoriqueAMO = extraireMontant(cr);
  }
  if (suivi(ACTE_CCAM)) {
    ligne = lireActe(cr, *ligne);
  }
  if (suivi(DENTS)) {
    ListeCodes dents = extraireDents(cr);
    if (LigneCCAM* const ligneCCAM = enLigneCCAM(ligne.get()); ligneCCAM != nullptr) {
      ligneCCAM->dent = std::move(dents);
    }
  }
  extraireGroupes3530(cr, ligne->numero, position);
  if (cr == NOX_CR_OK) {
    facture.ajouterLigne(std::move(ligne));
  }
}

std::unique_ptr<LigneActe> FonctionControleComplet::lireActe(CodeRetour& cr, const LigneActe& ligne) {
  auto acte = std::make_unique<LigneCCAM>(ligne);
  if (cr == NOX_CR_OK && !ligne.baseTheoriqueAMO.has_value()) {
    cr = NOX_CR_BASE_AMO_ABSENTE;
  }
  acte->acte = extraireCode(cr);
  ignoreChamp(cr);
  acte->activite = extraireCode(cr);
  acte->phase = extrairePhase(cr);
  acte->modificateur = extraireModificateurs(cr);
  acte->codeAssociation = extraireCode(cr);
  acte->codeRemboursement = extraireCode(cr);
  acte->supplementCharges = extraireCode(cr);
  acte->donneesComplementaires = extraireModificateursOC(cr);
  return acte;
}

void FonctionControleComplet::lireDeplacement(CodeRetour& cr, Facture& facture, std::uint16_t groupe) {
  if (cr == NOX_CR_OK && facture.lignes.empty()) {
    // Only a reference that describes the check otherwise lets such a line come first.
    Trace::erreur(TRACE_CONTROLE, "Groupe %d non attendu dans zone d'entrée", groupe);
    cr = NOX_CR_INCOHERENCE;
  }
  const auto position = static_cast<std::uint16_t>(facture.lignes.size() + 1);
  auto ligne = std::make_unique<LigneActe>(
      groupe == DEPLACEMENT_FORFAITAIRE ? LigneActe::Type::DEPLACEMENT_1 : LigneActe::Type::DEPLACEMENT_2);
  ligne->numero = extraireNombre(cr);
  ligne->date = extraireDate(cr);
  ligne->prestation = extraireCode(cr);
  ignoreChamp(cr);
  ignoreChamp(cr);
  ignoreChamp(cr);
  ignoreChamp(cr);
  ligne->tauxRemboursement = extraireTaux(cr);
  ignoreChamp(cr);
  ignoreChamp(cr);
  ligne->qualificatifDepense = extraireCode(cr);
  ligne->exonerationTM =
      groupeDeLaLigne(cr, EXONERATION, ligne->numero, position) ? extraireCode(cr) : Code(SANS_EXONERATION);
  extraireGroupes3530(cr, ligne->numero, position);
  if (cr == NOX_CR_OK) {
    cr = facture.ajouterLigne(std::move(ligne)).rattacher();
  }
}

void FonctionControleComplet::extraireGroupes3530(CodeRetour& cr, const Nombre& numero, std::uint16_t ligne) {
  while (groupeDeLaLigne(cr, REGLE_OUTREPASSEE, numero, ligne)) {
    const Code reference = extraireCode(cr);
    if (cr == NOX_CR_OK) {
      outrepassees_.emplace(reference.vue(), numero.lireValeur());
      Trace::ecrire(TRACE_CONTROLE, "Règle %s outrepassée à la prestation n° %d", reference.lireTexte(),
                    numero.lireValeur());
    }
  }
}

bool FonctionControleComplet::groupeDeLaLigne(CodeRetour& cr, std::uint16_t groupe, const Nombre& numero,
                                              std::uint16_t ligne) {
  if (groupeSuivant(cr) != groupe) {
    return false;
  }
  verifierNumeroPrestation(cr, numero, ligne);
  return cr == NOX_CR_OK;
}

std::uint16_t FonctionControleComplet::groupeSuivant(CodeRetour& cr) {
  std::uint16_t groupe = 0;
  positionnerGroupeSuivant(cr, groupe);
  return cr == NOX_CR_OK ? groupe : std::uint16_t{0};
}

FonctionControleComplet::Restituees FonctionControleComplet::filtrer(const ListeErreurs& erreurs,
                                                                     unsigned short& niveau) const {
  Restituees restituees;
  for (unsigned short i = 0; i < erreurs.lireNombreElements(); ++i) {
    const Erreur& erreur = erreurs[i];
    erreur.dump(TRACE_CONTROLE);
    if (estOutrepassee(erreur)) {
      Trace::ecrire(TRACE_CONTROLE, "Erreur %d non restituée dans la zone de sortie.", i);
      continue;
    }
    restituees.push_back(&erreur);
    if (erreur.lireNiveau().vue() == "N") {
      niveau = NIVEAU_NON_OUTREPASSABLE;
    } else if (erreur.estOutrepassable() && niveau == 0) {
      niveau = NIVEAU_OUTREPASSABLE;
    }
  }
  return restituees;
}

bool FonctionControleComplet::estOutrepassee(const Erreur& erreur) const {
  const std::string reference(erreur.lireReference().vue());
  return erreur.estOutrepassable() && !erreur.lirePrestations().estVide() &&
         std::ranges::all_of(erreur.lirePrestations(), [&](const Nombre& numero) {
           return outrepassees_.contains({reference, numero.lireValeur()});
         });
}

}  // namespace noxlux
