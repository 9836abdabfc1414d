#include "regles/facture.h"

#include <algorithm>

#include "basics/trace.h"
#include "regles/depot_erreur.h"
#include "regles/deroulement.h"
#include "regles/dump_regles.h"
#include "regles/reglementation.h"
#include "regles/tarification.h"

namespace noxlux {

namespace {

using R = Reglementation;

constexpr Question<R, LigneCCAM> EST_COMPLEMENTAIRE{"PROD580A", &R::appliquerProd580A, Portee::SEANCE};
constexpr Regle<R, LigneCCAM> COMPLEMENTAIRE_SEUL{"PROD580", &R::appliquerProd580, Portee::SEANCE};
constexpr Regle<R, LigneCCAM> REGLES_SEANCE[] = {
    {"PROD600", &R::appliquerProd600, Portee::SEANCE},
    {"PROD240", &R::appliquerProd240, Portee::SEANCE},
};

// The natures of insurance under which the patient pays no share: there is nothing to be exempt from.
constexpr const char* MATERNITE = "MA";
constexpr const char* ACCIDENT_TRAVAIL = "AT";

// Puts every CCAM line into the first group that accepts it, or into a new one made by creer(numero, ligne).
template <class Groupe, class Creer>
void grouper(const std::vector<std::unique_ptr<LigneActe>>& lignes, std::deque<Groupe>& groupes,
             Creer creer) {
  groupes.clear();
  for (const auto& ligne : lignes) {
    LigneCCAM* const ligneCCAM = enLigneCCAM(ligne.get());
    if (ligneCCAM == nullptr) {
      continue;
    }
    auto groupe = std::find_if(groupes.begin(), groupes.end(),
                               [&](const Groupe& candidat) { return candidat.accepte(*ligneCCAM); });
    if (groupe == groupes.end()) {
      creer(Nombre(static_cast<std::int32_t>(groupes.size() + 1)), *ligneCCAM);
      groupe = std::prev(groupes.end());
    }
    groupe->ajouterLigne(ligneCCAM);
  }
}

// Runs a step on each element until one fails.
template <class Elements, class Etape>
CodeRetour tantQueReussi(Elements& elements, Etape etape) {
  for (auto& element : elements) {
    const CodeRetour cr = etape(element);
    if (cr != NOX_CR_OK) {
      return cr;
    }
  }
  return NOX_CR_OK;
}

}  // namespace

LigneActe& Facture::ajouterLigne(std::unique_ptr<LigneActe> ligne) {
  exiger(ligne != nullptr, "ligne != __null");
  exiger(lignes.size() < MAX_LIGNES, "nbLignes < MAX_LIGNES");
  lignes.push_back(std::move(ligne));
  LigneActe& ajoutee = *lignes.back();
  ajoutee.factureParent = this;
  topDebrayage = topDebrayage || ajoutee.topDebrayage;
  return ajoutee;
}

void Facture::grouperParAssociations() {
  grouper(lignes, associations, [this](const Nombre& numero, const LigneCCAM& ligne) {
    associations.emplace_back(numero, &ligne.date, &ligne.activite, &ligne.numeroPS);
  });
}

void Facture::grouperParDates() {
  grouper(lignes, seances, [this](const Nombre& numero, const LigneCCAM& ligne) {
    seances.emplace_back(numero, &ligne.date);
  });
}

CodeRetour Facture::controler(Reglementation& reglementation, Tarification& tarification,
                              ListeErreurs& erreurs) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Facture::controler");
  grouperParAssociations();
  grouperParDates();
  dump();

  const auto pourChaque = [&cr](auto& elements, auto etape) {
    if (cr == NOX_CR_OK) {
      cr = tantQueReussi(elements, etape);
    }
  };
  pourChaque(lignes, [&](auto& ligne) { return ligne->controlerReglementation(reglementation, erreurs); });
  if (cr == NOX_CR_OK) {
    cr = controlerReglementation(reglementation, erreurs);
  }
  pourChaque(associations, [&](AssociationCCAM& association) {
    return association.controlerReglementation(reglementation, erreurs);
  });
  pourChaque(lignes, [&](auto& ligne) { return ligne->controlerPU(tarification, erreurs); });
  pourChaque(associations, [&](AssociationCCAM& association) {
    return association.rechercherActePu(tarification, erreurs);
  });
  pourChaque(lignes, [&](auto& ligne) { return ligne->controlerBaseActe(tarification, erreurs); });
  const std::string_view nature = codeOuVide(natureAssurance).vue();
  if (cr == NOX_CR_OK && nature != MATERNITE && nature != ACCIDENT_TRAVAIL) {
    if (!factureExoneree.has_value()) {
      factureExoneree = Code(NON_EXONEREE);
    }
    pourChaque(lignes,
               [&](auto& ligne) { return ligne->controlerExoActe(tarification, erreurs, *factureExoneree); });
    if (cr == NOX_CR_OK) {
      cr = controlerExoFacture(tarification, erreurs);
    }
  }
  if (cr == NOX_CR_OK) {
    dump();
    if (tarification.observateur() != nullptr) [[unlikely]] {
      tarification.observateur()->factureControlee(*this);
    }
  }
  return cr;
}

CodeRetour Facture::controlerReglementation(Reglementation& reglementation, ListeErreurs& erreurs) {
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Facture::controlerReglementation");
  Deroulement<R> deroulement(reglementation, erreurs);
  for (const auto& element : lignes) {
    if (LigneCCAM* const ligne = enLigneCCAM(element.get()); ligne != nullptr) {
      if (deroulement.question(EST_COMPLEMENTAIRE, *ligne)) {
        deroulement.regle(COMPLEMENTAIRE_SEUL, *ligne);
      }
      deroulement.suite(REGLES_SEANCE, *ligne);
    }
  }
  cr = deroulement.code();
  return cr;
}

CodeRetour Facture::controlerExoFacture(Tarification& tarification, ListeErreurs& erreurs) {
  exiger(factureExoneree.has_value(), "factureExoneree != __null");
  CodeRetour cr = NOX_CR_OK;
  const BlocTrace bloc(TRACE_CONTROLE, cr, "Facture::controlerExoFacture");
  Trace::ecrire(TRACE_CONTROLE, "facture exoneree = %s", factureExoneree->lireTexte());
  for (Seance& seance : seances) {
    if (cr != NOX_CR_OK || factureExoneree->vue() == EXONEREE) {
      break;
    }
    cr = seance.controlerExoFacture(tarification, erreurs, *factureExoneree);
  }
  if (cr != NOX_CR_OK) {
    return cr;
  }
  const bool exoneree = factureExoneree->vue() == EXONEREE;
  cr = tantQueReussi(lignes, [&](auto& ligne) {
    if (exoneree) {
      return ligne->controlerExoFactureExoneree(tarification, erreurs);
    }
    // Where the threshold could not be asked of a séance, nothing is held against its lines.
    const LigneCCAM* const acte = enLigneCCAM(ligne.get());
    return acte == nullptr || acte->seance->seuilVerifie
               ? ligne->controlerExoFactureNonExoneree(tarification, erreurs)
               : static_cast<CodeRetour>(NOX_CR_OK);
  });
  return cr;
}

CodeRetour Facture::traiterErreur(ListeErreurs& erreurs, Erreur& erreur, const Nombre& numero,
                                  const Date& date, Regles& regles) {
  if (!erreur.estRenseigne()) {
    return NOX_CR_OK;
  }
  const ViderErreur videur(erreur);
  CodeRetour cr = erreur.renseignerPremierePrestation(numero);
  erreur.dump(TRACE_CONTROLE);
  if (cr == NOX_CR_OK) {
    cr = erreurs.ajouterElement(erreur);
  }
  if (cr != NOX_CR_OK) {
    return cr;
  }
  const auto seance = std::find_if(seances.begin(), seances.end(),
                                   [&](const Seance& candidate) { return *candidate.date == date; });
  exiger(seance != seances.end(), "seance != __null");
  return deposerSurGroupe(*seance, erreur, regles, [](const LigneCCAM& ligne) {
    Trace::ecrire(TRACE_CONTROLE, "Le nouveau code forcage de l'acte n° %d de l'association est %s",
                  ligne.numero.lireValeur(), ligne.forcage->lireTexte());
  });
}

void Facture::dump() const {
  if (Trace::niveau(TRACE_CONTROLE) == 0) {
    return;
  }
  const BlocParticulier bloc(FinMuette{}, "Facture::dump");
  tracer("numeroPS        = %s", numeroPS);
  tracer("conventionPS    = %s", conventionPS);
  tracer("specialitePS    = %s", specialitePS);
  tracer("agrementRadio   = %s", agrementRadio);
  tracer("caissePS        = %s", caissePS);
  tracer("dateNaissance   = %s", dateNaissance);
  tracer("tiersPayant     = %s", tiersPayant);
  tracer("natureAssurance = %s", natureAssurance);
  tracer("factureExoneree = %s", factureExoneree);
  Trace::ecrire(TRACE_CONTROLE, "topDebrayage    = %s", vraiFaux(topDebrayage));
  for (const auto& ligne : lignes) {
    ligne->dump();
  }
  for (const AssociationCCAM& association : associations) {
    association.dump();
  }
  for (const Seance& seance : seances) {
    seance.dump();
  }
}

}  // namespace noxlux
