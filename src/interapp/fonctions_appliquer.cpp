#include "interapp/fonctions_appliquer.h"

#include "interapp/aiguillage.h"
#include "interapp/fonctions_appliquer_lignes.h"
#include "regles/reglementation.h"
#include "regles/tarification.h"

namespace noxlux {

namespace {

constexpr std::uint16_t GROUPE_DENTS = 3301;
constexpr std::uint16_t GROUPE_ASSOCIATION = 3321;
constexpr std::uint16_t GROUPE_PRIX = 3411;
constexpr std::uint16_t GROUPE_BASE = 3421;

bool associationDebrayee(const LigneCCAM& ligne) { return ligne.association->topDebrayage; }

}  // namespace

struct FonctionsAppliquer::Table {
  using F = FonctionsAppliquer;
  using Methode = CodeRetour (FonctionsAppliquer::*)(ZoneSortie&);

  static constexpr TableAiguillage<Methode, 8> FONCTIONS{{
      {67, "C_Association", &F::C_Association},
      {68, "C_Base", &F::C_Base},
      {70, "C_Compatibilite", &F::C_Compatibilite},
      {71, "C_Dent", &F::C_Dent},
      {72, "C_ExoActe", &F::C_ExoActe},
      {73, "C_ExoFacture", &F::C_ExoFacture},
      {77, "C_ExoPrevention", &F::C_ExoPrevention},
      {78, "C_Pu", &F::C_Pu},
  }};
  static_assert(estOrdonnee(FONCTIONS));
};

FonctionsAppliquer::FonctionsAppliquer(Zone* zin, const SuperGroupe* superGroupe, LectureDonnees* acces,
                                       Reglementation* reglementation, Tarification* tarification)
    : Fonctions(zin, superGroupe),
      acces_(acces),
      reglementation_(reglementation),
      tarification_(tarification) {
  exiger(zin != nullptr, "zin != __null");
  exiger(acces != nullptr, "acces != __null");
  exiger(reglementation != nullptr, "reglementation != __null");
  exiger(tarification != nullptr, "tarification != __null");
}

CodeRetour FonctionsAppliquer::executer(std::uint16_t numero, ZoneSortie& zoneOut) {
  const auto* const ligne = aiguiller(Table::FONCTIONS, numero, TRACE_CONTROLE,
                                      "Identifiant (%d) non prévu dans les fonctions de règle");
  if (ligne == nullptr) {
    return NOX_CR_INCOHERENCE;
  }
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "%s", ligne->nom);
  cr = (this->*ligne->methode)(zoneOut);
  return cr;
}

CodeRetour FonctionsAppliquer::C_Association(ZoneSortie& zoneOut) {
  CodeRetour cr = NOX_CR_OK;
  Facture facture;
  lireLignesCCAM(cr, facture, lireDebrayantes(cr, "C-Association"),
                 "ERREUR: Nombre de groupes 3310 trop grand", [this](CodeRetour& code, LigneCCAM& ligne) {
                   ligne.activite = extraireCode(code);
                   ligne.numeroPS = extraireNumeroPS(code);
                 });
  if (cr != NOX_CR_OK) {
    return cr;
  }
  facture.grouperParAssociations();
  facture.dump();
  for (AssociationCCAM& association : facture.associations) {
    if (cr == NOX_CR_OK && !association.topDebrayage) {
      cr = reglementation_->appliquerCAssociation(association);
    }
  }
  // Incompatible acts are an outcome: what was decided is answered, with an empty type for the rest.
  const CodeRetour issue = cr;
  cr = issue == NOX_CR_REGLE_REPONSE_1 ? CodeRetour{NOX_CR_OK} : issue;
  zoneOut = ecrireReponse(cr, [&](auto& reponse) {
    decrireLignes<LigneCCAM>(reponse, facture, associationDebrayee, [](auto& sortie, const LigneCCAM& ligne) {
      sortie.groupe(GROUPE_ASSOCIATION);
      sortie.champ(ligne.numero);
      sortie.champ(ligne.association->numero);
      sortie.champ(codeOuVide(ligne.association->typeAssociation));
    });
  });
  return cr != NOX_CR_OK ? cr : issue;
}

CodeRetour FonctionsAppliquer::C_Base(ZoneSortie& zoneOut) {
  CodeRetour cr = NOX_CR_OK;
  Facture facture;
  const ListeCodes debrayantes = lireDebrayantes(cr, "C-Base");
  facture.conventionPS = extraireCode(cr);
  facture.caissePS = extraireCode(cr);
  lireLignesCCAM(cr, facture, debrayantes, "ERREUR: Nombre de groupes 3420 trop grand",
                 [this](CodeRetour& code, LigneCCAM& ligne) {
                   ligne.activite = extraireCode(code);
                   ligne.phase = extrairePhase(code);
                   ligne.modificateur = extraireModificateurs(code);
                   ligne.codeAssociation = extraireCode(code);
                   ligne.supplementCharges = extraireCode(code);
                   ligne.lieuExecution = extraireCode(code);
                   ligne.identifiantLieu = extraireCode(code);
                   ligne.numeroPS = extraireNumeroPS(code);
                   ligne.prixUnitaire = extraireMontant(code);
                 });
  if (cr != NOX_CR_OK) {
    return cr;
  }
  facture.grouperParAssociations();
  facture.dump();
  for (AssociationCCAM& association : facture.associations) {
    if (cr == NOX_CR_OK && !association.topDebrayage) {
      cr = tarification_->appliquerCBase(*facture.conventionPS, association);
    }
  }
  zoneOut = ecrireReponse(cr, [&](auto& reponse) {
    decrireLignes<LigneCCAM>(reponse, facture, associationDebrayee, [](auto& sortie, const LigneCCAM& ligne) {
      sortie.groupe(GROUPE_BASE);
      sortie.champ(ligne.numero);
      sortie.champ(ligne.baseRemboursement.value_or(Montant()));
      sortie.champ(ligne.baseHorsForfait.value_or(Montant()));
    });
  });
  return cr;
}

CodeRetour FonctionsAppliquer::C_Dent(ZoneSortie& zoneOut) {
  CodeRetour cr = NOX_CR_OK;
  LigneCCAM ligne;
  lireIdentite(cr, ligne);
  ligne.activite = extraireCode(cr);
  ligne.phase = extrairePhase(cr);
  verifierNumeroPrestation(cr, ligne.numero, 1);
  ligne.dent = extraireDents(cr);
  verifierFinDonnees(cr);
  TypeListe<Booleen> reponses(MAX_DENTS);
  if (cr == NOX_CR_OK) {
    cr = reglementation_->appliquerCDent(ligne.acte, ligne.activite, ligne.phase, ligne.date, ligne.dent,
                                         reponses);
  }
  zoneOut = ecrireReponse(cr, [&](auto& reponse) {
    reponse.groupe(GROUPE_DENTS);
    reponse.champ(ligne.numero);
    for (const Booleen& traitable : reponses) {
      reponse.champ(traitable);
    }
    for (unsigned short i = reponses.lireNombreElements(); i < MAX_DENTS; ++i) {
      reponse.champVide();
    }
  });
  return cr;
}

CodeRetour FonctionsAppliquer::C_Pu(ZoneSortie& zoneOut) {
  CodeRetour cr = NOX_CR_OK;
  Facture facture;
  const ListeCodes debrayantes = lireDebrayantes(cr, "C-Pu");
  facture.conventionPS = extraireCode(cr);
  facture.caissePS = extraireCode(cr);
  lireLignesCCAM(cr, facture, debrayantes, "ERREUR: Nombre de groupes 3410 trop grand",
                 [this](CodeRetour& code, LigneCCAM& ligne) {
                   ligne.activite = extraireCode(code);
                   ligne.phase = extrairePhase(code);
                   ligne.prixUnitaire = Montant(0.0);
                 });
  for (const auto& element : facture.lignes) {
    LigneCCAM& ligne = *enLigneCCAM(element.get());
    if (cr == NOX_CR_OK && !ligne.topDebrayage) {
      cr = tarification_->appliquerProd840(ligne.acte, ligne.activite, ligne.phase, ligne.date,
                                           *facture.caissePS, *ligne.prixUnitaire);
    }
  }
  zoneOut = ecrireReponse(cr, [&](auto& reponse) {
    decrireLignes<LigneCCAM>(reponse, facture, ligneDebrayee, [](auto& sortie, const LigneCCAM& ligne) {
      sortie.groupe(GROUPE_PRIX);
      sortie.champ(ligne.numero);
      sortie.champ(*ligne.prixUnitaire);
    });
  });
  return cr;
}

// --- Steps ---

ListeCodes FonctionsAppliquer::lireDebrayantes(CodeRetour& cr, const char* service) {
  ListeCodes debrayantes;
  if (cr == NOX_CR_OK) {
    cr = acces_->rechercherReglesEntrainantDebrayage(Texte(service), debrayantes);
  }
  return debrayantes;
}

bool FonctionsAppliquer::resteDonnees(CodeRetour& cr, std::uint16_t& groupe) {
  positionnerGroupeSuivant(cr, groupe);
  return cr == NOX_CR_OK && groupe != 0;
}

void FonctionsAppliquer::lireIdentite(CodeRetour& cr, LigneCCAM& ligne) {
  ligne.numero = extraireNombre(cr);
  ligne.date = extraireDate(cr);
  ligne.acte = extraireCode(cr);
}

}  // namespace noxlux
