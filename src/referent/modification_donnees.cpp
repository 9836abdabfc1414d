// Changes of the header and of act values.
#include "referent/modification_donnees.h"

#include <tuple>
#include <variant>

#include "referent/changement.h"

namespace noxlux {

CodeRetour ModificationDonnees::modifierCommentaireReferentiel(const Texte& commentaire) {
  donnees().entete.commentaire = std::string(commentaire.vue());
  return NOX_CR_OK;
}

CodeRetour ModificationDonnees::modifierNumeroRevisionReferentiel(const Nombre& numero) {
  // Kept in 16 bits in the files: after 65535 comes 0.
  donnees().entete.numeroRevision = static_cast<std::uint16_t>(numero.lireValeur());
  return NOX_CR_OK;
}

// --- Changes -------------------------------------------------------------------------------------------

namespace {

// Puts in front of a chain a copy of its newest history, changed, from the effect date on.
template <class H, class M, class F>
CodeRetour ajouterHistorique(ChaineHistoriques<H>& chaine, const Date& dateEffet, F&& changer,
                             std::vector<M>* modifications, M&& modification, FormatVerifie<> vide) {
  if (chaine.empty()) {
    return refuserChangement(NOX_CR_DONNEE_ABSENTE, vide);
  }
  if (dateEffet.lireBrute() < chaine.front().dateEffet) {
    return refuserChangement(NOX_CR_DATE_EFFET, "Date d'effet anterieure a la date du dernier historique");
  }
  const CodeRetour cr = reserverModification(modifications);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  if (chaine.size() >= MAX_LIGNES_TABLE) {
    return refuserChangement(NOX_CR_MEMOIRE, "chaine d'historiques pleine");
  }
  try {
    chaine.reserverRecent();
    H nouveau = chaine.front();
    nouveau.dateEffet = dateEffet.lireBrute();
    changer(nouveau);
    chaine.ajouterRecent(std::move(nouveau));
  } catch (const std::bad_alloc&) {
    return refuserChangement(NOX_CR_MEMOIRE, MEMOIRE_HISTORIQUE);
  }
  enregistrerModification(modifications, std::move(modification));
  return NOX_CR_OK;
}

}  // namespace

template <class M, class F, class... P>
CodeRetour ModificationDonnees::modifierPhase(const Code& acte, const Code& activite, const Code& phase,
                                              const Date& dateEffet, double valeur, F&& champ,
                                              bool enregistrer, NiveauPhase* niveau, P... position) {
  CleModification<M> cle;
  CodeRetour cr = cle.composer(acte, activite, phase, position...);
  if (cr == NOX_CR_OK && niveau == nullptr) {
    cr = chercherPhase(acte, activite, phase, niveau);
  }
  if (cr != NOX_CR_OK) {
    return cr;
  }
  M modification = cle.ligne(dateEffet);
  modification.valeur = valeur;
  return ajouterHistorique(
      niveau->historiques, dateEffet, [&](HistoriqueNiveauPhase& h) { champ(h) = valeur; },
      enregistrer ? &donnees().lignes<M>() : nullptr, std::move(modification), "historique vide");
}

CodeRetour ModificationDonnees::modifierPrixUnitaire(const Code& acte, const Code& activite,
                                                     const Code& phase, const Date& dateEffet,
                                                     const Montant& prix, bool enregistrer,
                                                     NiveauPhase* niveau) {
  const double valeur = prix.lireValeur();
  const auto champ = [](HistoriqueNiveauPhase& h) -> double& { return h.prixUnitaire; };
  const auto corps = [&] {
    return modifierPhase<ModificationPrixUnitaire>(acte, activite, phase, dateEffet, valeur, champ,
                                                   enregistrer, niveau);
  };
  return changement(__func__, ", Modification d'un prix unitaire", corps, Entree{"Code acte    ", acte},
                    Entree{"Code activite", activite}, Entree{"Code phase   ", phase},
                    Entree{"Nouvelle date d'effet ", dateEffet}, Entree{"Nouveau prix unitaire", valeur});
}

CodeRetour ModificationDonnees::modifierSupplementCharges(const Code& acte, const Code& activite,
                                                          const Code& phase, const Date& dateEffet,
                                                          const Montant& supplement, bool enregistrer,
                                                          NiveauPhase* niveau) {
  const double valeur = supplement.lireValeur();
  const auto champ = [](HistoriqueNiveauPhase& h) -> double& { return h.supplementCharges; };
  const auto corps = [&] {
    return modifierPhase<ModificationSupplementCharge>(acte, activite, phase, dateEffet, valeur, champ,
                                                       enregistrer, niveau);
  };
  return changement(__func__, ", Modification d'un supplement de charges", corps,
                    Entree{"Code acte    ", acte}, Entree{"Code activite", activite},
                    Entree{"Code phase   ", phase}, Entree{"Nouvelle date d'effet ", dateEffet},
                    Entree{"Nouveau supplement de charges", valeur});
}

CodeRetour ModificationDonnees::modifierMajorationDOM(const Code& acte, const Code& activite,
                                                      const Code& phase, const Date& dateEffet,
                                                      unsigned short positionDOM,
                                                      const Coefficient& majoration, bool enregistrer,
                                                      NiveauPhase* niveau) {
  const double valeur = majoration.lireValeur();
  const auto champ = [&](HistoriqueNiveauPhase& h) -> double& { return h.majorationsDOM[positionDOM - 1U]; };
  const auto corps = [&]() -> CodeRetour {
    if (positionDOM < 1 || positionDOM > 4) {
      return refuserChangement(NOX_CR_DONNEE_ABSENTE, "ERREUR: Parametre position DOM incorrect");
    }
    return modifierPhase<ModificationMajorationDOM>(acte, activite, phase, dateEffet, valeur, champ,
                                                    enregistrer, niveau, positionDOM);
  };
  return changement(__func__, ", Modification d'une majoration DOM", corps, Entree{"Code acte    ", acte},
                    Entree{"Code activite", activite}, Entree{"Code phase   ", phase},
                    Entree{"Position DOM ", positionDOM}, Entree{"Nouvelle date d'effet ", dateEffet},
                    Entree{"Nouvelle majoration DOM", valeur});
}

CodeRetour ModificationDonnees::modifierCodeRegroupement(const Code& acte, const Code& activite,
                                                         const Date& dateEffet, const Code& codeRegroupement,
                                                         bool enregistrer, NiveauActivite* niveau) {
  const auto corps = [&] {
    using M = ModificationCodeRegroupement;
    CleModification<M> cle;
    CodeFixe<3> code;
    CodeRetour cr = cle.composer(acte, activite);
    cr = cr == NOX_CR_OK ? composerCle(codeRegroupement, code) : cr;
    if (cr == NOX_CR_OK && niveau == nullptr) {
      cr = chercherActivite(acte, activite, niveau);
    }
    if (cr != NOX_CR_OK) {
      return cr;
    }
    M modification = cle.ligne(dateEffet);
    modification.code = code;
    return ajouterHistorique(
        niveau->historiques, dateEffet, [&](HistoriqueNiveauActivite& h) { h.codeRegroupement = code; },
        enregistrer ? &donnees().lignes<M>() : nullptr, std::move(modification),
        "historique de niveau activite vide");
  };
  return changement(__func__, ", Modification d'un code regroupement", corps, Entree{"Code acte    ", acte},
                    Entree{"Code activite", activite}, Entree{"Nouvelle date d'effet ", dateEffet},
                    Entree{"Nouveau code regroupement", codeRegroupement});
}

// --- Cancellations -------------------------------------------------------------------------------------

// Forgets the changes of a value of an act, and the act itself: its next use reads it from the file again,
// with the changes that remain.
template <class M, class... C>
CodeRetour ModificationDonnees::annulerValeurActe(const char* methode, const Code& acte, const C&... autres) {
  const auto corps = [&] {
    CleModification<M> cle;
    const CodeRetour cr = cle.composer(acte, autres...);
    if (cr != NOX_CR_OK) {
      return cr;
    }
    if (std::erase_if(donnees().lignes<M>(), [&](const M& ligne) { return cle.egale(ligne); }) == 0) {
      return refuserChangement(NOX_CR_NON_MODIFIE, "Donnee non modifiee");
    }
    std::uint32_t rang = 0;
    if (chercherActeDansIndex(acte, rang) == NOX_CR_OK) {
      donnees().actes[rang].vider();
    }
    return cr;
  };
  return changement(methode, "", corps, Entree{"Code acte    ", acte}, Entree{"Cle", autres}...);
}

CodeRetour ModificationDonnees::annulerModificationsPrixUnitaire(const Code& acte, const Code& activite,
                                                                 const Code& phase) {
  return annulerValeurActe<ModificationPrixUnitaire>(__func__, acte, activite, phase);
}

CodeRetour ModificationDonnees::annulerModificationsSupplementCharges(const Code& acte, const Code& activite,
                                                                      const Code& phase) {
  return annulerValeurActe<ModificationSupplementCharge>(__func__, acte, activite, phase);
}

CodeRetour ModificationDonnees::annulerModificationsMajorationDOM(const Code& acte, const Code& activite,
                                                                  const Code& phase,
                                                                  unsigned short positionDOM) {
  return annulerValeurActe<ModificationMajorationDOM>(__func__, acte, activite, phase, positionDOM);
}

CodeRetour ModificationDonnees::annulerModificationsCodeRegroupement(const Code& acte, const Code& activite) {
  return annulerValeurActe<ModificationCodeRegroupement>(__func__, acte, activite);
}

// --- Re-application to an act just read ----------------------------------------------------------------

CodeRetour ModificationDonnees::appliquerModificationsCodesRegroupement(const Code& acte,
                                                                        NiveauActe& niveau) {
  const auto corps = [&] {
    CodeActe cle;
    CodeRetour cr = composerCle(acte, cle);
    const std::vector<ModificationCodeRegroupement>& lignes =
        donnees().lignes<ModificationCodeRegroupement>();
    for (std::size_t i = 0; i < lignes.size() && cr == NOX_CR_OK; ++i) {
      const ModificationCodeRegroupement& ligne = lignes[i];
      if (ligne.acte != cle) {
        continue;
      }
      NiveauActivite* activite = nullptr;
      cr = niveau.chercherActivite(ligne.activite, activite);
      cr = cr != NOX_CR_OK
               ? cr
               : modifierCodeRegroupement(acte, Code(texteDe(ligne.activite)), Date(ligne.dateEffet),
                                          Code(texteDe(ligne.code)), false, activite);
      if (cr != NOX_CR_OK) {
        signalerRefus(ligne, i, cr);
      }
    }
    return cr;
  };
  return changement(__func__, "", corps, Entree{"Code acte    ", acte});
}

CodeRetour ModificationDonnees::appliquer(const Code& acte, const ModificationPrixUnitaire& ligne,
                                          NiveauPhase& niveau) {
  return modifierPrixUnitaire(acte, Code(texteDe(ligne.activite)), Code(texteDe(ligne.phase)),
                              Date(ligne.dateEffet), Montant(ligne.valeur), false, &niveau);
}

CodeRetour ModificationDonnees::appliquer(const Code& acte, const ModificationSupplementCharge& ligne,
                                          NiveauPhase& niveau) {
  return modifierSupplementCharges(acte, Code(texteDe(ligne.activite)), Code(texteDe(ligne.phase)),
                                   Date(ligne.dateEffet), Montant(ligne.valeur), false, &niveau);
}

CodeRetour ModificationDonnees::appliquer(const Code& acte, const ModificationMajorationDOM& ligne,
                                          NiveauPhase& niveau) {
  return modifierMajorationDOM(acte, Code(texteDe(ligne.activite)), Code(texteDe(ligne.phase)),
                               Date(ligne.dateEffet), ligne.position, Coefficient(ligne.valeur), false,
                               &niveau);
}

namespace {

// A recorded change of a phase, of any of the three kinds.
using ModificationPhase = std::variant<const ModificationPrixUnitaire*, const ModificationSupplementCharge*,
                                       const ModificationMajorationDOM*>;

// Where and when it applies: the order of re-application.
auto ordreApplication(const ModificationPhase& modification) {
  return std::visit(
      [](const auto* ligne) {
        return std::tuple(static_cast<unsigned char>(ligne->activite),
                          static_cast<unsigned char>(ligne->phase), ligne->dateEffet);
      },
      modification);
}

template <class M>
void rassembler(const std::vector<M>& lignes, const CodeActe& acte,
                std::vector<ModificationPhase>& modifications) {
  for (const M& ligne : lignes) {
    if (ligne.acte == acte) {
      modifications.emplace_back(&ligne);
    }
  }
}

}  // namespace

CodeRetour ModificationDonnees::appliquerModificationsHistoriquePhase(const Code& acte, NiveauActe& niveau) {
  const auto corps = [&] {
    CodeActe cle;
    CodeRetour cr = composerCle(acte, cle);
    if (cr != NOX_CR_OK) {
      return cr;
    }
    std::vector<ModificationPhase> modifications;
    rassembler(donnees().lignes<ModificationPrixUnitaire>(), cle, modifications);
    rassembler(donnees().lignes<ModificationSupplementCharge>(), cle, modifications);
    rassembler(donnees().lignes<ModificationMajorationDOM>(), cle, modifications);
    std::ranges::stable_sort(modifications, {}, ordreApplication);
    for (const ModificationPhase& modification : modifications) {
      cr = std::visit(
          [&](const auto* ligne) {
            NiveauActivite* activite = nullptr;
            NiveauPhase* phase = nullptr;
            CodeRetour resultat = niveau.chercherActivite(ligne->activite, activite);
            resultat = resultat == NOX_CR_OK ? activite->chercherNiveauPhase(ligne->phase, phase) : resultat;
            resultat = resultat == NOX_CR_OK ? appliquer(acte, *ligne, *phase) : resultat;
            if (resultat != NOX_CR_OK) {
              using M = std::remove_cvref_t<decltype(*ligne)>;
              const std::ptrdiff_t rang = ligne - donnees().lignes<M>().data();
              signalerRefus(*ligne, static_cast<std::size_t>(rang), resultat);
            }
            return resultat;
          },
          modification);
      if (cr != NOX_CR_OK) {
        break;
      }
    }
    return cr;
  };
  return changement(__func__, "", corps, Entree{"Code acte    ", acte});
}

}  // namespace noxlux
