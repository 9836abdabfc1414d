// Changes of the tables kept in memory: modifiers, unforeseen associations, thresholds, reductions, grouping
// codes.
#include "referent/changement.h"

namespace noxlux {

namespace {

// The number, from 1, of the code table that holds the labels of grouping codes.
constexpr std::size_t TABLE_LIBELLES_REGROUPEMENT = 9;

// Puts a new line in front of the histories that a keyed line owns, and records the change with the values
// that `decrire` takes from the new line.
template <class M, class L, class H, unsigned CIBLE, class F, class D>
CodeRetour ajouterHistoriqueTable(Referentiel& referentiel, const Code& code, Plage<CIBLE> L::*plage,
                                  std::vector<H>& historiques, const Date& dateEffet, F&& changer,
                                  bool enregistrer, D&& decrire) {
  const L* ligne = nullptr;
  CleModification<M> cle;
  CodeRetour cr = chercherLigne(referentiel, code, ligne);
  cr = cr == NOX_CR_OK ? cle.composer(code) : cr;
  if (cr != NOX_CR_OK) {
    return cr;
  }
  const std::span<const H> actuels = lignesDe<H>(referentiel, ligne->*plage);
  if (actuels.empty()) {
    return refuserChangement(NOX_CR_DONNEE_ABSENTE, "historique vide");
  }
  H nouvelle;
  std::vector<M>* modifications = enregistrer ? &referentiel.lignes<M>() : nullptr;
  EditeurPlage editeur(referentiel.lignes<L>(), *ligne, plage, historiques);
  cr = preparerLigne(actuels.front(), dateEffet, changer, nouvelle);
  cr = cr == NOX_CR_OK ? reserverModification(modifications) : cr;
  cr = cr == NOX_CR_OK ? editeur.preparer() : cr;
  if (cr == NOX_CR_OK) {
    M modification = cle.ligne(dateEffet);
    decrire(modification, nouvelle);
    fermerLigne(editeur.lignes().front(), dateEffet);
    editeur.inserer(0, std::move(nouvelle));
    enregistrerModification(modifications, std::move(modification));
  }
  return cr;
}

// Forgets the changes of a keyed line, and takes away as many of its newest histories.
template <class M, class L, class H, unsigned CIBLE>
CodeRetour annulerHistoriquesTable(Referentiel& referentiel, const Code& code, Plage<CIBLE> L::*plage,
                                   std::vector<H>& historiques) {
  CleModification<M> cle;
  const L* ligne = nullptr;
  CodeRetour cr = cle.composer(code);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  std::vector<M>& modifications = referentiel.lignes<M>();
  const auto nombre = static_cast<std::size_t>(
      std::ranges::count_if(modifications, [&](const M& modification) { return cle.egale(modification); }));
  if (nombre == 0) {
    return refuserChangement(NOX_CR_NON_MODIFIE, "Donnee non modifiee");
  }
  cr = chercherLigne(referentiel, code, ligne);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  EditeurPlage editeur(referentiel.lignes<L>(), *ligne, plage, historiques);
  exiger(editeur.lignes().size() > nombre, "nombreHistoriques > nombre");
  Trace::ecrire(TRACE_MODIFICATION, "Nombre d'historiques a supprimer : %u", static_cast<unsigned>(nombre));
  const DateBrute fin = editeur.lignes().front().fin;
  editeur.supprimer(0, nombre);
  editeur.lignes().front().fin = fin;
  std::erase_if(modifications, [&](const M& modification) { return cle.egale(modification); });
  return cr;
}

// A whole table of dated lines: room for a new line, then the line itself in front.
template <class H>
CodeRetour preparerTable(std::vector<H>& lignes) {
  if (lignes.size() >= MAX_LIGNES_TABLE) {
    return refuserChangement(NOX_CR_MEMOIRE, "table d'historiques pleine");
  }
  try {
    reserverElement(lignes);
    return NOX_CR_OK;
  } catch (const std::bad_alloc&) {
    return refuserChangement(NOX_CR_MEMOIRE, MEMOIRE_HISTORIQUE);
  }
}

template <class H>
void insererEnTete(std::vector<H>& lignes, const Date& dateEffet, H&& nouvelle) {
  fermerLigne(lignes.front(), dateEffet);
  lignes.insert(lignes.begin(), std::move(nouvelle));
}

// Takes away the lines that `nombre` changes put in front, and opens again the line they had closed.
template <class H>
void retirerEnTete(std::vector<H>& lignes, std::size_t nombre) {
  exiger(lignes.size() > nombre, "nombreLignes > nombre");
  const DateBrute fin = lignes.front().fin;
  lignes.erase(lignes.begin(), lignes.begin() + static_cast<std::ptrdiff_t>(nombre));
  lignes.front().fin = fin;
}

}  // namespace

// --- Modifiers -----------------------------------------------------------------------------------------

template <class F>
CodeRetour ModificationDonnees::modifierValeurModificateur(const Code& modificateur, const Date& dateEffet,
                                                           F&& changer, bool enregistrer) {
  return ajouterHistoriqueTable<ModificationModificateur>(
      donnees(), modificateur, &Modificateur::valeurs, donnees().lignes<HistoriqueValeurModificateur>(),
      dateEffet, changer, enregistrer,
      [](ModificationModificateur& modification, const HistoriqueValeurModificateur& nouvelle) {
        modification.forfait = nouvelle.forfait;
        modification.taux = nouvelle.coefficient;
      });
}

CodeRetour ModificationDonnees::modifierForfaitModificateur(const Code& modificateur, const Date& dateEffet,
                                                            const Montant& forfait, bool enregistrer) {
  const double valeur = forfait.lireValeur();
  const auto changer = [&](HistoriqueValeurModificateur& h) { h.forfait = valeur; };
  return changement(
      __func__, ", Modification du forfait d'un modificateur",
      [&] { return modifierValeurModificateur(modificateur, dateEffet, changer, enregistrer); },
      Entree{"Code modificateur", modificateur}, Entree{"Nouvelle date d'effet ", dateEffet},
      Entree{"Nouveau forfait", valeur});
}

CodeRetour ModificationDonnees::modifierTauxModificateur(const Code& modificateur, const Date& dateEffet,
                                                         const Coefficient& taux, bool enregistrer) {
  const double valeur = taux.lireValeur();
  const auto changer = [&](HistoriqueValeurModificateur& h) { h.coefficient = valeur; };
  const auto corps = [&] {
    return valeur >= 1 ? modifierValeurModificateur(modificateur, dateEffet, changer, enregistrer)
                       : refuserChangement(NOX_CR_CHAMP_INVALIDE, REFUS_TAUX_MODIFICATEUR);
  };
  return changement(__func__, ", Modification du taux d'un modificateur", corps,
                    Entree{"Code modificateur", modificateur}, Entree{"Nouvelle date d'effet ", dateEffet},
                    Entree{"Nouveau taux", valeur});
}

CodeRetour ModificationDonnees::annulerModificationsValeurModificateur(const Code& modificateur) {
  const auto corps = [&] {
    return annulerHistoriquesTable<ModificationModificateur>(
        donnees(), modificateur, &Modificateur::valeurs, donnees().lignes<HistoriqueValeurModificateur>());
  };
  return changement(__func__, "", corps, Entree{"Code modificateur", modificateur});
}

CodeRetour ModificationDonnees::appliquerModificationsModificateurs() {
  const auto corps = [&] {
    return refaireModifications<ModificationModificateur>(donnees(), [&](const auto& ligne) {
      const auto changer = [&](HistoriqueValeurModificateur& h) {
        h.forfait = ligne.forfait;
        h.coefficient = ligne.taux;
      };
      return modifierValeurModificateur(Code(texteDe(ligne.code)), Date(ligne.dateEffet), changer, false);
    });
  };
  return changement(__func__, "", corps);
}

// --- Unforeseen associations ---------------------------------------------------------------------------

CodeRetour ModificationDonnees::modifierCoefficientAssociationNonPrevue(const Code& association,
                                                                        const Date& dateEffet,
                                                                        const Coefficient& coefficient,
                                                                        bool enregistrer) {
  using M = ModificationRegleAssociationNonPrevue;
  using H = HistoriqueAssociationNonPrevue;
  const double valeur = coefficient.lireValeur();
  const auto corps = [&] {
    return ajouterHistoriqueTable<M>(
        donnees(), association, &AssociationNonPrevue::historiques, donnees().lignes<H>(), dateEffet,
        [&](H& h) { h.coefficient = valeur; }, enregistrer,
        [](M& modification, const H& nouvelle) { modification.valeur = nouvelle.coefficient; });
  };
  return changement(__func__, ", Modification d'un coefficient d'association non prevue", corps,
                    Entree{"Code association", association}, Entree{"Nouvelle date d'effet ", dateEffet},
                    Entree{"Nouveau coefficient", valeur});
}

CodeRetour ModificationDonnees::annulerModificationsCoefficientAssociationNonPrevue(const Code& association) {
  const auto corps = [&] {
    return annulerHistoriquesTable<ModificationRegleAssociationNonPrevue>(
        donnees(), association, &AssociationNonPrevue::historiques,
        donnees().lignes<HistoriqueAssociationNonPrevue>());
  };
  return changement(__func__, "", corps, Entree{"Code association", association});
}

CodeRetour ModificationDonnees::appliquerModificationsReglesAssociationsNP() {
  const auto corps = [&] {
    return refaireModifications<ModificationRegleAssociationNonPrevue>(donnees(), [&](const auto& ligne) {
      return modifierCoefficientAssociationNonPrevue(Code(texteDe(ligne.code)), Date(ligne.dateEffet),
                                                     Coefficient(ligne.valeur), false);
    });
  };
  return changement(__func__, "", corps);
}

// --- Thresholds ----------------------------------------------------------------------------------------

namespace {

CodeRetour ajouterSeuil(std::vector<Seuil>& seuils, const Date& dateEffet, unsigned short position,
                        double valeur, std::vector<ModificationSeuil>* modifications) {
  if (position < 1 || position > MONTANTS_SEUIL.size()) {
    return refuserChangement(NOX_CR_DONNEE_ABSENTE, "parametre positionSeuil incorrect");
  }
  if (seuils.empty()) {
    return refuserChangement(NOX_CR_DONNEE_ABSENTE, "table Seuils vide");
  }
  Seuil nouveau;
  const auto changer = [&](Seuil& seuil) { seuil.*MONTANTS_SEUIL[position - 1U] = valeur; };
  CodeRetour cr = preparerLigne(seuils.front(), dateEffet, changer, nouveau);
  cr = cr == NOX_CR_OK ? reserverModification(modifications) : cr;
  cr = cr == NOX_CR_OK ? preparerTable(seuils) : cr;
  if (cr == NOX_CR_OK) {
    insererEnTete(seuils, dateEffet, std::move(nouveau));
    enregistrerModification(modifications, ModificationSeuil{position, dateEffet.lireBrute(), valeur});
  }
  return cr;
}

}  // namespace

CodeRetour ModificationDonnees::modifierSeuil(const Date& dateEffet, unsigned short positionSeuil,
                                              const Montant& seuil, bool enregistrer) {
  const double valeur = seuil.lireValeur();
  const auto corps = [&] {
    return ajouterSeuil(donnees().lignes<Seuil>(), dateEffet, positionSeuil, valeur,
                        enregistrer ? &donnees().lignes<ModificationSeuil>() : nullptr);
  };
  return changement(__func__, ", Modification d'un seuil", corps, Entree{"Position du seuil", positionSeuil},
                    Entree{"Nouvelle date d'effet ", dateEffet}, Entree{"Nouveau seuil", valeur});
}

// All created lines go, whatever their position; the changes of the other positions are made again.
CodeRetour ModificationDonnees::annulerModificationsSeuilExoTM(unsigned short positionSeuil) {
  const auto corps = [&]() -> CodeRetour {
    try {
      std::vector<ModificationSeuil> restantes = donnees().lignes<ModificationSeuil>();
      std::vector<Seuil> seuils = donnees().lignes<Seuil>();
      const std::size_t nombre = restantes.size();
      if (std::erase_if(restantes, [&](const auto& ligne) { return ligne.position == positionSeuil; }) == 0) {
        return refuserChangement(NOX_CR_NON_MODIFIE, "Donnee non modifiee");
      }
      retirerEnTete(seuils, nombre);
      for (const ModificationSeuil& ligne : restantes) {
        const CodeRetour cr =
            ajouterSeuil(seuils, Date(ligne.dateEffet), ligne.position, ligne.valeur, nullptr);
        if (cr != NOX_CR_OK) {
          return cr;
        }
      }
      donnees().lignes<Seuil>().swap(seuils);
      donnees().lignes<ModificationSeuil>().swap(restantes);
      return NOX_CR_OK;
    } catch (const std::bad_alloc&) {
      Trace::erreur(TRACE_MODIFICATION, "Creation d'un tableau de lignes pour la table des modifications");
      return refuserChangement(NOX_CR_MEMOIRE, "probleme d'allocation memoire");
    }
  };
  return changement(__func__, "", corps, Entree{"Position du seuil", positionSeuil});
}

CodeRetour ModificationDonnees::appliquerModificationsSeuils() {
  const auto corps = [&] {
    return refaireModifications<ModificationSeuil>(donnees(), [&](const auto& ligne) {
      return modifierSeuil(Date(ligne.dateEffet), ligne.position, Montant(ligne.valeur), false);
    });
  };
  return changement(__func__, "", corps);
}

// --- Reductions for non-agreed professionals -----------------------------------------------------------

template <class F>
CodeRetour ModificationDonnees::modifierDonneesReductionNonConventionnes(const Date& dateEffet, F&& changer,
                                                                         bool enregistrer) {
  std::vector<ReductionNonConventionne>& reductions = donnees().lignes<ReductionNonConventionne>();
  std::vector<ModificationNonConventionne>* modifications =
      enregistrer ? &donnees().lignes<ModificationNonConventionne>() : nullptr;
  if (reductions.empty()) {
    return refuserChangement(NOX_CR_DONNEE_ABSENTE, "table Reductions Non Conventionnes vide");
  }
  ReductionNonConventionne nouvelle;
  CodeRetour cr = preparerLigne(reductions.front(), dateEffet, changer, nouvelle);
  cr = cr == NOX_CR_OK ? reserverModification(modifications) : cr;
  cr = cr == NOX_CR_OK ? preparerTable(reductions) : cr;
  if (cr == NOX_CR_OK) {
    ModificationNonConventionne modification{dateEffet.lireBrute(), nouvelle.forfait, nouvelle.coefficient};
    insererEnTete(reductions, dateEffet, std::move(nouvelle));
    enregistrerModification(modifications, std::move(modification));
  }
  return cr;
}

CodeRetour ModificationDonnees::modifierForfaitNonConventionnes(const Date& dateEffet, const Montant& forfait,
                                                                bool enregistrer) {
  const double valeur = forfait.lireValeur();
  const auto changer = [&](ReductionNonConventionne& ligne) { ligne.forfait = valeur; };
  return changement(
      __func__, ", Modification du forfait des non conventionnes",
      [&] { return modifierDonneesReductionNonConventionnes(dateEffet, changer, enregistrer); },
      Entree{"Nouvelle date d'effet ", dateEffet}, Entree{"Nouveau forfait", valeur});
}

CodeRetour ModificationDonnees::modifierTauxNonConventionnes(const Date& dateEffet, const Coefficient& taux,
                                                             bool enregistrer) {
  const double valeur = taux.lireValeur();
  const auto changer = [&](ReductionNonConventionne& ligne) { ligne.coefficient = valeur; };
  return changement(
      __func__, ", Modification du taux des non conventionnes",
      [&] { return modifierDonneesReductionNonConventionnes(dateEffet, changer, enregistrer); },
      Entree{"Nouvelle date d'effet ", dateEffet}, Entree{"Nouveau taux", valeur});
}

CodeRetour ModificationDonnees::annulerModificationsValeurNonConventionnes() {
  const auto corps = [&]() -> CodeRetour {
    std::vector<ModificationNonConventionne>& modifications = donnees().lignes<ModificationNonConventionne>();
    if (modifications.empty()) {
      return refuserChangement(NOX_CR_NON_MODIFIE, "Table de modification vide : donnee non modifiee");
    }
    retirerEnTete(donnees().lignes<ReductionNonConventionne>(), modifications.size());
    modifications.clear();
    return NOX_CR_OK;
  };
  return changement(__func__, "", corps);
}

CodeRetour ModificationDonnees::appliquerModificationsReductionNC() {
  const auto corps = [&] {
    return refaireModifications<ModificationNonConventionne>(donnees(), [&](const auto& ligne) {
      const auto changer = [&](ReductionNonConventionne& reduction) {
        reduction.forfait = ligne.forfait;
        reduction.coefficient = ligne.taux;
      };
      return modifierDonneesReductionNonConventionnes(Date(ligne.dateEffet), changer, false);
    });
  };
  return changement(__func__, "", corps);
}

// --- New grouping codes --------------------------------------------------------------------------------

namespace {

// The lines of the labels of grouping codes.
class EditeurLibelles : public EditeurPlage<Codes, LibelleCode, LibelleCode::IDENTIFIANT> {
 public:
  static bool existe(const Referentiel& referentiel) {
    return referentiel.lignes<Codes>().size() >= TABLE_LIBELLES_REGROUPEMENT;
  }
  // REQUIRES: existe
  explicit EditeurLibelles(Referentiel& referentiel)
      : EditeurPlage(referentiel.lignes<Codes>(),
                     referentiel.lignes<Codes>()[TABLE_LIBELLES_REGROUPEMENT - 1], &Codes::valeurs,
                     referentiel.lignes<LibelleCode>()) {}

  // Before the first greater or equal code: labels are found by their first line.
  void ajouter(LibelleCode&& libelle) {
    const auto suivant = std::ranges::find_if(
        lignes(), [&](const LibelleCode& ligne) { return ligne.code.vue() >= libelle.code.vue(); });
    inserer(static_cast<std::size_t>(suivant - lignes().begin()), std::move(libelle));
  }
  void retirer(std::string_view code, std::string_view libelle) {
    const auto ajoute = std::ranges::find_if(lignes(), [&](const LibelleCode& ligne) {
      return ligne.code.vue() == code && ligne.libelle.vue() == libelle;
    });
    if (ajoute != lignes().end()) {
      supprimer(static_cast<std::size_t>(ajoute - lignes().begin()), 1);
    }
  }
};

}  // namespace

CodeRetour ModificationDonnees::ajouterCodeRegroupement(const Date& dateEffet, const Code& code,
                                                        const Texte& libelle, bool enregistrer) {
  using M = ModificationNouveauCodeRegroupement;
  const auto corps = [&] {
    std::vector<M>* modifications = enregistrer ? &donnees().lignes<M>() : nullptr;
    std::vector<CodeRegroupement>& codes = donnees().lignes<CodeRegroupement>();
    CodeRegroupement nouveau;
    nouveau.debut = dateEffet.lireBrute();
    CodeRetour cr = composerCle(code, nouveau.code);
    if (cr != NOX_CR_OK) {
      return cr;
    }
    if (rechercherExistenceCodeRegroupement(code)) {
      return refuserChangement(NOX_CR_REGROUPEMENT_EXISTANT,
                               "le code regroupement existe déjà dans la table Codes Regroupement");
    }
    if (!EditeurLibelles::existe(donnees())) {
      return refuserChangement(NOX_CR_DONNEE_ABSENTE, "table des libelles des codes regroupement absente");
    }
    EditeurLibelles libelles(donnees());
    LibelleCode libelleCode;
    M modification;
    try {
      libelleCode = {TexteVariable(code.vue()), TexteVariable(libelle.vue())};
      modification = {nouveau.debut, nouveau.code, TexteVariable(libelle.vue())};
    } catch (const std::bad_alloc&) {
      return refuserChangement(NOX_CR_MEMOIRE, "probleme d'allocation memoire");
    }
    cr = reserverModification(modifications);
    cr = cr == NOX_CR_OK ? preparerTable(codes) : cr;
    cr = cr == NOX_CR_OK ? libelles.preparer() : cr;
    if (cr == NOX_CR_OK) {
      codes.insert(std::ranges::upper_bound(codes, nouveau.code, {}, &CodeRegroupement::code), nouveau);
      libelles.ajouter(std::move(libelleCode));
      enregistrerModification(modifications, std::move(modification));
    }
    return cr;
  };
  return changement(__func__, ", Ajout d'un code regroupement", corps, Entree{"Code regroupement", code},
                    Entree{"Libelle", libelle}, Entree{"Date d'effet", dateEffet});
}

CodeRetour ModificationDonnees::annulerNouveauxCodesRegroupement() {
  using M = ModificationNouveauCodeRegroupement;
  const auto corps = [&]() -> CodeRetour {
    std::vector<M>& modifications = donnees().lignes<M>();
    if (modifications.empty()) {
      return refuserChangement(NOX_CR_NON_MODIFIE, "Table de modification vide : donnee non modifiee");
    }
    EditeurLibelles libelles(donnees());
    for (const M& modification : modifications) {
      std::erase_if(donnees().lignes<CodeRegroupement>(),
                    [&](const CodeRegroupement& ligne) { return ligne.code == modification.code; });
      libelles.retirer(modification.code.vue(), modification.libelle.vue());
    }
    modifications.clear();
    return NOX_CR_OK;
  };
  return changement(__func__, "", corps);
}

// A code that the reference now holds has nothing left to add: it is forgotten, so that a cancellation takes
// away none but added lines.
CodeRetour ModificationDonnees::appliquerModificationsNouveauCodeRegroupement() {
  using M = ModificationNouveauCodeRegroupement;
  const auto corps = [&] {
    std::erase_if(donnees().lignes<M>(), [&](const M& ligne) {
      const bool tenu = rechercherExistenceCodeRegroupement(Code(texteDe(ligne.code)));
      if (tenu) {
        Trace::ecrire(TRACE_MODIFICATION, "Code regroupement %.3s : le referentiel le tient, rien a ajouter",
                      ligne.code.entier().data());
      }
      return tenu;
    });
    return refaireModifications<M>(donnees(), [&](const M& ligne) {
      return ajouterCodeRegroupement(Date(ligne.dateEffet), Code(texteDe(ligne.code)),
                                     Texte(ligne.libelle.vue()), false);
    });
  };
  return changement(__func__, "", corps);
}

}  // namespace noxlux
