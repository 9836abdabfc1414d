#include "interapp/fonction_controle_complet.h"

#include <algorithm>
#include <span>

#include "basics/trace.h"
#include "interapp/groupes_facture.h"
#include "interapp/reponse.h"
#include "regles/facture.h"
#include "regles/ligne_ccam.h"
#include "regles/reglementation.h"
#include "regles/tarification.h"

namespace noxlux {

namespace {

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

// The groups of an invoice: of each the members that its fields fill, in their order. A field that no member
// keeps is read over.
struct FonctionControleComplet::Table {
  using F = FonctionControleComplet;
  template <class O>
  using Champ = void (F::*)(CodeRetour&, O&);
  template <auto MEMBRE, auto EXTRAIRE, class O>
  static constexpr Champ<O> lu = &F::lireMembre<MEMBRE, EXTRAIRE, O>;
  template <class O>
  static constexpr Champ<O> ignore = &F::ignorerMembre<O>;

  using A = LigneActe;
  using C = LigneCCAM;

  static constexpr Champ<Facture> ENTETE[] = {
      lu<&Facture::numeroPS, &F::extraireNumeroPS, Facture>,
      ignore<Facture>,
      ignore<Facture>,
      lu<&Facture::conventionPS, &F::extraireCode, Facture>,
      lu<&Facture::specialitePS, &F::extraireCode, Facture>,
      ignore<Facture>,
      ignore<Facture>,
      lu<&Facture::agrementRadio, &F::extraireCode, Facture>,
      ignore<Facture>,
      ignore<Facture>,
      ignore<Facture>,
      lu<&Facture::dateNaissance, &F::extraireDateNaissance, Facture>,
  };
  static constexpr Champ<A> PRESTATION[] = {
      lu<&A::numero, &F::extraireNombre, A>,
      lu<&A::date, &F::extraireDate, A>,
      lu<&A::lieuExecution, &F::extraireCode, A>,
      lu<&A::prestation, &F::extraireCode, A>,
      ignore<A>,
      ignore<A>,
      lu<&A::qualificatifDepense, &F::extraireCode, A>,
      ignore<A>,
      ignore<A>,
      ignore<A>,
      lu<&A::prixUnitaire, &F::extraireMontant, A>,
      lu<&A::baseRemboursement, &F::extraireMontant, A>,
      lu<&A::tauxRemboursement, &F::extraireTaux, A>,
  };
  static constexpr Champ<A> DEPLACEMENT[] = {
      lu<&A::numero, &F::extraireNombre, A>,
      lu<&A::date, &F::extraireDate, A>,
      lu<&A::prestation, &F::extraireCode, A>,
      ignore<A>,
      ignore<A>,
      ignore<A>,
      ignore<A>,
      lu<&A::tauxRemboursement, &F::extraireTaux, A>,
      ignore<A>,
      ignore<A>,
      lu<&A::qualificatifDepense, &F::extraireCode, A>,
  };
  static constexpr Champ<A> EXONERATION[] = {lu<&A::exonerationTM, &F::extraireCode, A>};
  static constexpr Champ<A> ENTENTE_PREALABLE[] = {lu<&A::ententePrealable, &F::extraireCode, A>};
  static constexpr Champ<A> EXECUTANT[] = {lu<&A::numeroPS, &F::extraireNumeroPS, A>,
                                           lu<&A::specialitePS, &F::extraireCode, A>};
  static constexpr Champ<A> LIEU_EXECUTION[] = {lu<&A::identifiantLieu, &F::extraireCode, A>};
  static constexpr Champ<A> BASE_AMO[] = {lu<&A::baseTheoriqueAMO, &F::extraireMontant, A>};
  static constexpr Champ<C> ACTE[] = {
      lu<&C::acte, &F::extraireCode, C>,
      ignore<C>,
      lu<&C::activite, &F::extraireCode, C>,
      lu<&C::phase, &F::extrairePhase, C>,
      lu<&C::modificateur, &F::extraireModificateurs, C>,
      lu<&C::codeAssociation, &F::extraireCode, C>,
      lu<&C::codeRemboursement, &F::extraireCode, C>,
      lu<&C::supplementCharges, &F::extraireCode, C>,
      lu<&C::donneesComplementaires, &F::extraireModificateursOC, C>,
  };

  // A group that may follow the one that opens a line.
  struct Suite {
    std::uint16_t groupe;
    void (F::*lire)(CodeRetour&, std::unique_ptr<LigneActe>&);
  };
  static constexpr Suite SUITES[] = {
      {noxlux::EXONERATION, &F::lireSuite<EXONERATION>},
      {noxlux::ENTENTE_PREALABLE, &F::lireSuite<ENTENTE_PREALABLE>},
      {noxlux::EXECUTANT, &F::lireSuite<EXECUTANT>},
      {noxlux::LIEU_EXECUTION, &F::lireSuite<LIEU_EXECUTION>},
      {noxlux::BASE_AMO, &F::lireSuite<BASE_AMO>},
      {noxlux::ACTE_CCAM, &F::lireActe},
      {noxlux::DENTS, &F::lireDents},
  };
  static_assert(std::ranges::equal(SUITES, SUITES_PRESTATION, {}, &Suite::groupe));
  static constexpr std::size_t SUITES_DEPLACEMENT = 1;
};

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

template <auto MEMBRE, auto EXTRAIRE, class O>
void FonctionControleComplet::lireMembre(CodeRetour& cr, O& objet) {
  objet.*MEMBRE = (this->*EXTRAIRE)(cr);
}

template <class O>
void FonctionControleComplet::ignorerMembre(CodeRetour& cr, O& /*objet*/) {
  ignoreChamp(cr);
}

template <class Champs, class O>
void FonctionControleComplet::lireChamps(CodeRetour& cr, const Champs& champs, O& objet) {
  for (const auto champ : champs) {
    (this->*champ)(cr, objet);
  }
}

template <const auto& CHAMPS>
void FonctionControleComplet::lireSuite(CodeRetour& cr, std::unique_ptr<LigneActe>& ligne) {
  lireChamps(cr, CHAMPS, *ligne);
}

void FonctionControleComplet::lireFacture(CodeRetour& cr, Facture& facture) {
  lireEntete(cr, facture);
  lireNatureAssurance(cr, facture);
  lireLignes(cr, facture);
  facture.caissePS = extraireCode(cr);
}

void FonctionControleComplet::lireEntete(CodeRetour& cr, Facture& facture) {
  lireChamps(cr, Table::ENTETE, facture);
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
  auto ligne = std::make_unique<LigneActe>();
  ligne->exonerationTM = Code(SANS_EXONERATION);
  ligne->ententePrealable = Code(SANS_ENTENTE_PREALABLE);
  ligne->numeroPS = codeOuVide(facture.numeroPS);
  ligne->specialitePS = codeOuVide(facture.specialitePS);
  ligne->identifiantLieu = Code();
  lireChamps(cr, Table::PRESTATION, *ligne);
  lireSuites(cr, facture, std::size(Table::SUITES), ligne);
  if (cr == NOX_CR_OK) {
    facture.ajouterLigne(std::move(ligne));
  }
}

void FonctionControleComplet::lireDeplacement(CodeRetour& cr, Facture& facture, std::uint16_t groupe) {
  if (cr == NOX_CR_OK && facture.lignes.empty()) {
    // Only a reference that describes the check otherwise lets such a line come first.
    Trace::erreur(TRACE_CONTROLE, "Groupe %d non attendu dans zone d'entrée", groupe);
    cr = NOX_CR_INCOHERENCE;
  }
  auto ligne = std::make_unique<LigneActe>(
      groupe == DEPLACEMENT_FORFAITAIRE ? LigneActe::Type::DEPLACEMENT_1 : LigneActe::Type::DEPLACEMENT_2);
  ligne->exonerationTM = Code(SANS_EXONERATION);
  lireChamps(cr, Table::DEPLACEMENT, *ligne);
  lireSuites(cr, facture, Table::SUITES_DEPLACEMENT, ligne);
  if (cr == NOX_CR_OK) {
    cr = facture.ajouterLigne(std::move(ligne)).rattacher();
  }
}

void FonctionControleComplet::lireSuites(CodeRetour& cr, const Facture& facture, std::size_t nombre,
                                         std::unique_ptr<LigneActe>& ligne) {
  const auto position = static_cast<std::uint16_t>(facture.lignes.size() + 1);
  const Nombre numero = ligne->numero;
  if (reglementation_->observateur() != nullptr) [[unlikely]] {
    reglementation_->observateur()->ligneLue(numero.lireValeur());
  }
  for (const Table::Suite& suite : std::span(Table::SUITES).first(nombre)) {
    if (groupeDeLaLigne(cr, suite.groupe, numero, position)) {
      (this->*suite.lire)(cr, ligne);
    }
  }
  extraireGroupes3530(cr, numero, position);
}

// The line becomes one coded in CCAM.
void FonctionControleComplet::lireActe(CodeRetour& cr, std::unique_ptr<LigneActe>& ligne) {
  if (cr == NOX_CR_OK && !ligne->baseTheoriqueAMO.has_value()) {
    cr = NOX_CR_BASE_AMO_ABSENTE;
  }
  auto acte = std::make_unique<LigneCCAM>(*ligne);
  lireChamps(cr, Table::ACTE, *acte);
  ligne = std::move(acte);
}

void FonctionControleComplet::lireDents(CodeRetour& cr, std::unique_ptr<LigneActe>& ligne) {
  ListeCodes dents = extraireDents(cr);
  if (LigneCCAM* const acte = enLigneCCAM(ligne.get()); acte != nullptr) {
    acte->dent = std::move(dents);
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
    if (reglementation_->observateur() != nullptr) [[unlikely]] {
      reglementation_->observateur()->erreurRendue(erreur);
    }
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
