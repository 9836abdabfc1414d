#include <set>

#include "interapp/fonctions_appliquer_lignes.h"
#include "regles/tarification.h"

namespace noxlux {

namespace {

constexpr std::uint16_t GROUPE_EXONERATION_LIGNE = 3431;
constexpr std::uint16_t GROUPE_EXONERATION_ACTES = 3441;
constexpr std::uint16_t GROUPE_EXONERATION_FACTURE = 3461;
constexpr std::uint16_t GROUPE_LIGNE_CCAM = 3450;
constexpr std::uint16_t GROUPE_LIGNE_AUTRE = 3460;
constexpr std::uint16_t GROUPE_LIGNE_DEPLACEMENT = 3462;

template <class R>
void decrireExoneration(R& reponse, const LigneActe& ligne) {
  reponse.groupe(GROUPE_EXONERATION_LIGNE);
  reponse.champ(ligne.numero);
  reponse.taux(ligne.tauxRemboursement.value_or(Coefficient()));
  reponse.champ(codeOuVide(ligne.exonerationTM));
}

// The lines on which PROD790C, or for a travel line PROD790D, is disengaged.
using LignesDebrayees = std::set<const LigneActe*>;

// The threshold is asked of every séance whose lines all take part in it. A séance left aside for a
// disengaged line makes the exemption not verifiable, unless another one settles it.
CodeRetour appliquerSeuil(Tarification& tarification, Facture& facture) {
  for (const Seance& seance : facture.seances) {
    if (facture.factureExoneree->vue() == Facture::EXONEREE) {
      break;
    }
    if (seance.topDebrayage) {
      facture.factureExoneree = Code(Facture::NON_VERIFIABLE);
      continue;
    }
    const CodeRetour cr = tarification.appliquerProd790B(seance, *facture.caissePS, *facture.factureExoneree);
    if (cr != NOX_CR_OK) {
      return cr;
    }
  }
  return NOX_CR_OK;
}

// What an exempt invoice brings to its lines: to the acts, then to the travel lines that follow them.
CodeRetour exonererLignes(Tarification& tarification, const Facture& facture,
                          const LignesDebrayees& sansExoneration) {
  for (const auto& element : facture.lignes) {
    LigneCCAM* const ligne = enLigneCCAM(element.get());
    if (ligne != nullptr && !ligne->seance->topDebrayage && !sansExoneration.contains(ligne)) {
      const CodeRetour cr =
          tarification.appliquerProd790C(*ligne, *facture.caissePS, *facture.factureExoneree);
      if (cr != NOX_CR_OK) {
        return cr;
      }
    }
  }
  for (const auto& element : facture.lignes) {
    const LigneCCAM* const acte = enLigneCCAM(element->rattachement);
    if (acte != nullptr && !acte->seance->topDebrayage && !element->topDebrayage &&
        !sansExoneration.contains(acte) && !sansExoneration.contains(element.get())) {
      const CodeRetour cr =
          tarification.appliquerProd790D(*element, *facture.caissePS, *facture.factureExoneree);
      if (cr != NOX_CR_OK) {
        return cr;
      }
    }
  }
  return NOX_CR_OK;
}

}  // namespace

CodeRetour FonctionsAppliquer::C_ExoActe(ZoneSortie& zoneOut) {
  CodeRetour cr = NOX_CR_OK;
  Facture facture;
  facture.caissePS = extraireCode(cr);
  facture.factureExoneree = extraireCode(cr);
  lireLignes(
      cr, facture, "ERREUR: Nombre de groupes 3440 trop grand",
      [this](CodeRetour& code, std::uint16_t) {
        auto ligne = std::make_unique<LigneCCAM>();
        lireIdentite(code, *ligne);
        ligne->baseHorsForfait = extraireMontant(code);
        ligne->exonerationTM = extraireCode(code);
        ligne->tauxRemboursement = extraireTaux(code);
        return ligne;
      },
      [](LigneActe&, const Code&) {});
  for (const auto& element : facture.lignes) {
    LigneCCAM& ligne = *enLigneCCAM(element.get());
    if (cr == NOX_CR_OK) {
      const Code motif = *ligne.exonerationTM;
      Booleen exonere;
      cr = tarification_->appliquerCExoActe(*facture.caissePS, ligne.acte, ligne.date, *ligne.baseHorsForfait,
                                            motif, ligne.tauxRemboursement, *ligne.exonerationTM, exonere);
      if (exonere.estVrai()) {
        facture.factureExoneree = Code(Facture::EXONEREE);
      }
    }
  }
  zoneOut = ecrireReponse(cr, [&](auto& reponse) {
    reponse.groupe(GROUPE_EXONERATION_ACTES);
    reponse.champ(*facture.factureExoneree);
    for (const auto& ligne : facture.lignes) {
      decrireExoneration(reponse, *ligne);
    }
  });
  return cr;
}

CodeRetour FonctionsAppliquer::C_ExoFacture(ZoneSortie& zoneOut) {
  CodeRetour cr = NOX_CR_OK;
  const ListeCodes seuil = lireDebrayantes(cr, "C-ExoFacture");
  const ListeCodes prod790C = lireDebrayantes(cr, "C-ExoFacture-2");
  Facture facture;
  facture.caissePS = extraireCode(cr);
  facture.factureExoneree = extraireCode(cr);
  LignesDebrayees sansExoneration;
  lireLignes(
      cr, facture, "Nombre de groupes 3450, 3460 et 3462 trop grand",
      [&](CodeRetour& code, std::uint16_t groupe) {
        return lireLigneExoneration(code, groupe, facture.lignes.empty());
      },
      [&](LigneActe& ligne, const Code& reference) {
        if (seuil.contient(reference)) {
          ligne.debrayerService();
          Trace::ecrire(
              TRACE_CONTROLE,
              "Débrayage de la règle du seuil facture à cause de la règle %s, pour la prestation n° %d",
              reference.lireTexte(), ligne.numero.lireValeur());
        }
        if (prod790C.contient(reference)) {
          sansExoneration.insert(&ligne);
          Trace::ecrire(TRACE_CONTROLE,
                        "Débrayage de la Prod790C à cause de la règle %s, pour la prestation n° %d",
                        reference.lireTexte(), ligne.numero.lireValeur());
        }
      });
  facture.grouperParDates();
  facture.dump();
  if (cr == NOX_CR_OK) {
    cr = appliquerSeuil(*tarification_, facture);
  }
  if (cr == NOX_CR_OK) {
    cr = exonererLignes(*tarification_, facture, sansExoneration);
  }
  zoneOut = ecrireReponse(cr, [&](auto& reponse) {
    reponse.groupe(GROUPE_EXONERATION_FACTURE);
    reponse.champ(*facture.factureExoneree);
    decrireLignes<LigneActe>(reponse, facture, ligneDebrayee,
                             [](auto& sortie, const LigneActe& ligne) { decrireExoneration(sortie, ligne); });
  });
  return cr;
}

CodeRetour FonctionsAppliquer::C_ExoPrevention(ZoneSortie& zoneOut) {
  CodeRetour cr = NOX_CR_OK;
  LigneCCAM ligne;
  lireIdentite(cr, ligne);
  const Booleen prevention = extraireBooleen(cr);
  ligne.tauxRemboursement = extraireCoefficient(cr);
  ligne.exonerationTM = extraireCode(cr);
  verifierFinDonnees(cr);
  if (cr == NOX_CR_OK) {
    cr = tarification_->appliquerCExoPrevention(ligne.acte, prevention.estVrai(), ligne.date,
                                                *ligne.tauxRemboursement, *ligne.exonerationTM);
  }
  // An act that is none of prevention is an outcome: the rate and the code are answered as they were given.
  const CodeRetour issue = cr;
  cr = issue == NOX_CR_REGLE_REPONSE_2 ? CodeRetour{NOX_CR_OK} : issue;
  zoneOut = ecrireReponse(cr, [&](auto& reponse) { decrireExoneration(reponse, ligne); });
  return cr != NOX_CR_OK ? cr : issue;
}

// A travel line stands behind the line it is attached to.
std::unique_ptr<LigneActe> FonctionsAppliquer::lireLigneExoneration(CodeRetour& cr, std::uint16_t groupe,
                                                                    bool premiere) {
  if (groupe == GROUPE_LIGNE_CCAM) {
    auto ligne = std::make_unique<LigneCCAM>();
    lireIdentite(cr, *ligne);
    ligne->baseHorsForfait = extraireMontant(cr);
    ligne->exonerationTM = extraireCode(cr);
    ligne->tauxRemboursement = extraireTaux(cr);
    return ligne;
  }
  const bool deplacement = groupe == GROUPE_LIGNE_DEPLACEMENT;
  if ((groupe != GROUPE_LIGNE_AUTRE && !deplacement) || (deplacement && premiere)) {
    Trace::erreur(TRACE_CONTROLE, "Groupe %d non attendu dans zone d'entrée", groupe);
    cr = NOX_CR_INCOHERENCE;
    return nullptr;
  }
  auto ligne =
      std::make_unique<LigneActe>(deplacement ? LigneActe::Type::DEPLACEMENT_1 : LigneActe::Type::PRESTATION);
  ligne->numero = extraireNombre(cr);
  ligne->date = extraireDate(cr);
  ligne->prestation = extraireCode(cr);
  ligne->exonerationTM = extraireCode(cr);
  ligne->tauxRemboursement = extraireTaux(cr);
  return ligne;
}

}  // namespace noxlux
