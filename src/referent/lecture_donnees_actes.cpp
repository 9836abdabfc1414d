// Queries on acts, activities and treatment phases.
#include "referent/requete.h"

namespace noxlux {

CodeRetour LectureDonnees::rechercherExistenceActe(const Code& acte) {
  std::uint32_t rang = 0;
  return demander(
      __func__, rang, [&](Releve&) { return chercherActeDansIndex(acte, rang); },
      Entree{"Code acte recherche    ", acte});
}

CodeRetour LectureDonnees::rechercherPositionActe(const Code& acte, std::uint32_t& position) {
  return lireLigne(__func__, acte, &Index::position, position);
}

CodeRetour LectureDonnees::rechercherChargementActe(const Code& acte, Booleen& charge) {
  const auto corps = [&] {
    std::uint32_t rang = 0;
    const CodeRetour cr = chercherActeDansIndex(acte, rang);
    if (cr == NOX_CR_OK) {
      charge = Booleen(!donnees().actes[rang].estVide());
    }
    return cr;
  };
  return requete(__func__, corps, Entree{"Code acte recherche    ", acte});
}

CodeRetour LectureDonnees::rechercherActivites(const Code& acte, ListeCodes& activites) {
  const auto corps = [&](Releve&) {
    NiveauActe* niveau = nullptr;
    const CodeRetour cr = chercherActe(acte, niveau);
    return cr == NOX_CR_OK ? copierCodes(niveau->activites, activites, &NiveauActivite::codeActivite) : cr;
  };
  return demander(__func__, activites, corps, Entree{"Code acte recherche    ", acte});
}

CodeRetour LectureDonnees::rechercherCodeMenu(const Code& acte, std::uint32_t& codeMenu) {
  return lireNiveau(__func__, &NiveauActe::codeMenu, codeMenu, acte);
}

CodeRetour LectureDonnees::rechercherCodeStructure(const Code& acte, Code& code) {
  return lireNiveau(__func__, &NiveauActe::codeStructure, code, acte);
}

CodeRetour LectureDonnees::rechercherConditionsGenerales(const Code& acte, Texte& conditions) {
  return lireNiveau(__func__, &NiveauActe::conditionsGenerales, conditions, acte);
}

CodeRetour LectureDonnees::rechercherDateCreation(const Code& acte, Date& dateCreation) {
  return lireNiveau(__func__, &NiveauActe::dateCreation, dateCreation, acte);
}

CodeRetour LectureDonnees::rechercherDateFin(const Code& acte, Date& dateFin) {
  return lireNiveau(__func__, &NiveauActe::dateFin, dateFin, acte);
}

CodeRetour LectureDonnees::rechercherFraisDeplacement(const Code& acte, Code& frais) {
  return lireNiveau(__func__, &NiveauActe::fraisDeplacement, frais, acte);
}

CodeRetour LectureDonnees::rechercherLibelleCourt(const Code& acte, Texte& libelle) {
  return lireNiveau(__func__, &NiveauActe::libelleCourt, libelle, acte);
}

CodeRetour LectureDonnees::rechercherLibelleLong(const Code& acte, Texte& libelle) {
  return lireNiveau(__func__, &NiveauActe::libelleLong, libelle, acte);
}

CodeRetour LectureDonnees::rechercherNaturesAssurance(const Code& acte, ListeCodes& natures) {
  return lireNiveau(__func__, &NiveauActe::naturesAssurance, natures, acte);
}

CodeRetour LectureDonnees::rechercherNotesActe(const Code& acte, Texte& notes) {
  return lireNiveau(__func__, &NiveauActe::notes, notes, acte);
}

CodeRetour LectureDonnees::rechercherSexeCompatible(const Code& acte, Code& sexe) {
  return lireNiveau(__func__, &NiveauActe::sexeCompatible, sexe, acte);
}

CodeRetour LectureDonnees::rechercherTypeActe(const Code& acte, Code& type) {
  return lireNiveau(__func__, &NiveauActe::typeActe, type, acte);
}

CodeRetour LectureDonnees::rechercherActesIncompatibles(const Code& acte, const Date& date,
                                                        ListeCodes& actes) {
  return lireNiveau(__func__, &HistoriqueNiveauActe::incompatibilites, actes, acte, date);
}

CodeRetour LectureDonnees::rechercherAdmissionRemboursement(const Code& acte, const Date& date,
                                                            Code& admission) {
  return lireNiveau(__func__, &HistoriqueNiveauActe::admissionRemboursement, admission, acte, date);
}

CodeRetour LectureDonnees::rechercherCodesExonerationTM(const Code& acte, const Date& date,
                                                        ListeCodes& codes) {
  return lireNiveau(__func__, &HistoriqueNiveauActe::exonerationsTM, codes, acte, date);
}

CodeRetour LectureDonnees::rechercherEntentePrealable(const Code& acte, const Date& date, Booleen& soumis) {
  return lireNiveau(__func__, &HistoriqueNiveauActe::ententePrealable, soumis, acte, date);
}

CodeRetour LectureDonnees::rechercherProcedures(const Code& acte, const Date& date, ListeCodes& procedures) {
  return lireNiveau(__func__, &HistoriqueNiveauActe::procedures, procedures, acte, date);
}

CodeRetour LectureDonnees::rechercherAgrementsRadio(const Code& acte, const Code& activite,
                                                    ListeCodes& agrements) {
  return lireNiveau(__func__, &NiveauActivite::agrementsRadio, agrements, acte, activite);
}

CodeRetour LectureDonnees::rechercherCodesExtensionDocumentaire(const Code& acte, const Code& activite,
                                                                ListeCodes& codes) {
  return lireNiveau(__func__, &NiveauActivite::extensionsDocumentaires, codes, acte, activite);
}

CodeRetour LectureDonnees::rechercherPhasesDeTraitement(const Code& acte, const Code& activite,
                                                        ListeCodes& phases) {
  const auto corps = [&](Releve&) {
    NiveauActivite* niveau = nullptr;
    const CodeRetour cr = chercherActivite(acte, activite, niveau);
    return cr == NOX_CR_OK ? copierCodes(niveau->phases, phases, &NiveauPhase::codePhase) : cr;
  };
  return demander(__func__, phases, corps, Entree{"Code acte recherche    ", acte},
                  Entree{"Code activite recherche", activite});
}

CodeRetour LectureDonnees::rechercherRMO(const Code& acte, const Code& activite, ListeCodes& rmo) {
  return lireNiveau(__func__, &NiveauActivite::rmo, rmo, acte, activite);
}

CodeRetour LectureDonnees::rechercherActesCompatibles(const Code& acte, const Code& activite,
                                                      const Date& date, ListeCodes& actes) {
  const auto corps = [&](Releve& releve) {
    const HistoriqueNiveauActivite* historique = nullptr;
    const CodeRetour cr = chercherHistoActivite(acte, activite, date, historique);
    if (cr != NOX_CR_OK) {
      return cr;
    }
    releve.dater(*historique);
    return copierCodes(historique->associations, actes, &Association::acte);
  };
  return demander(__func__, actes, corps, Entree{"Code acte recherche    ", acte},
                  Entree{"Code activite recherche", activite}, Entree{"Date de reference", date});
}

CodeRetour LectureDonnees::rechercherRegleAssociation(const Code& acte, const Code& activite,
                                                      const Code& acteAssocie, const Date& date,
                                                      Code& regle) {
  const auto corps = [&](Releve& releve) {
    const HistoriqueNiveauActivite* historique = nullptr;
    CodeActe cle;
    CodeRetour cr = chercherHistoActivite(acte, activite, date, historique);
    cr = cr == NOX_CR_OK ? composerCle(acteAssocie, cle) : cr;
    if (cr != NOX_CR_OK) {
      return cr;
    }
    releve.dater(*historique);
    for (const Association& association : historique->associations) {
      if (association.acte == cle) {
        return copier(association.regleTarifaire, regle);
      }
    }
    return refuser(NOX_CR_CODE_INCONNU, "ERREUR: pas d'association trouve pour ce couple acte-activite");
  };
  return demander(__func__, regle, corps, Entree{"Code acte recherche    ", acte},
                  Entree{"Code activite recherche", activite}, Entree{"Code acte associe      ", acteAssocie},
                  Entree{"Date de reference", date});
}

CodeRetour LectureDonnees::rechercherCategorieMedicale(const Code& acte, const Code& activite,
                                                       const Date& date, Code& categorie) {
  return lireNiveau(__func__, &HistoriqueNiveauActivite::categorieMedicale, categorie, acte, activite, date);
}

CodeRetour LectureDonnees::rechercherClassesSpecialitesExecutant(const Code& acte, const Code& activite,
                                                                 const Date& date, ListeCodes& classes) {
  return lireNiveau(__func__, &HistoriqueNiveauActivite::classesSpecialites, classes, acte, activite, date);
}

CodeRetour LectureDonnees::rechercherCodeRegroupement(const Code& acte, const Code& activite,
                                                      const Date& date, Code& code) {
  const CodeRetour cr =
      lireNiveau(__func__, &HistoriqueNiveauActivite::codeRegroupement, code, acte, activite, date);
  compterModification<ModificationCodeRegroupement>(cr, date, acte, activite);
  return cr;
}

CodeRetour LectureDonnees::rechercherModificateursApplicables(const Code& acte, const Code& activite,
                                                              const Date& date, ListeCodes& modificateurs) {
  return lireNiveau(__func__, &HistoriqueNiveauActivite::modificateurs, modificateurs, acte, activite, date);
}

CodeRetour LectureDonnees::rechercherAgeMaximal(const Code& acte, const Code& activite, const Code& phase,
                                                Periode& age) {
  return lireNiveau(__func__, &NiveauPhase::ageMaximum, age, acte, activite, phase);
}

CodeRetour LectureDonnees::rechercherAgeMinimal(const Code& acte, const Code& activite, const Code& phase,
                                                Periode& age) {
  return lireNiveau(__func__, &NiveauPhase::ageMinimum, age, acte, activite, phase);
}

CodeRetour LectureDonnees::rechercherDentsIncompatibles(const Code& acte, const Code& activite,
                                                        const Code& phase, ListeCodes& dents) {
  return lireNiveau(__func__, &NiveauPhase::dentsIncompatibles, dents, acte, activite, phase);
}

CodeRetour LectureDonnees::rechercherNombreDents(const Code& acte, const Code& activite, const Code& phase,
                                                 Code& nombre) {
  return lireNiveau(__func__, &NiveauPhase::nombreDents, nombre, acte, activite, phase);
}

CodeRetour LectureDonnees::rechercherPrixUnitaire(const Code& acte, const Code& activite, const Code& phase,
                                                  const Date& date, Montant& prix) {
  const CodeRetour cr =
      lireNiveau(__func__, &HistoriqueNiveauPhase::prixUnitaire, prix, acte, activite, phase, date);
  compterModification<ModificationPrixUnitaire>(cr, date, acte, activite, phase);
  return cr;
}

CodeRetour LectureDonnees::rechercherSupplementCharges(const Code& acte, const Code& activite,
                                                       const Code& phase, const Date& date,
                                                       Montant& supplement) {
  const CodeRetour cr = lireNiveau(__func__, &HistoriqueNiveauPhase::supplementCharges, supplement, acte,
                                   activite, phase, date);
  compterModification<ModificationSupplementCharge>(cr, date, acte, activite, phase);
  return cr;
}

CodeRetour LectureDonnees::rechercherMajorationDOM(const Code& acte, const Code& activite, const Code& phase,
                                                   unsigned short positionDOM, const Date& date,
                                                   Coefficient& majoration) {
  const auto corps = [&](Releve& releve) -> CodeRetour {
    if (positionDOM < 1 || positionDOM > 4) {
      return refuser(NOX_CR_CODE_INCONNU, "parametre Position DOM incorrect (valeurs autorisees:1,2,3,4)");
    }
    const HistoriqueNiveauPhase* historique = nullptr;
    const CodeRetour cr = chercherHistoPhase(acte, activite, phase, date, historique);
    if (cr != NOX_CR_OK) {
      return cr;
    }
    releve.dater(*historique);
    return copier(historique->majorationsDOM[positionDOM - 1U], majoration);
  };
  const CodeRetour cr =
      demander(__func__, majoration, corps, Entree{"Code acte recherche    ", acte},
               Entree{"Code activite recherche", activite}, Entree{"Code phase recherche   ", phase},
               Entree{"Position DOM           ", positionDOM}, Entree{"Date de reference", date});
  compterModification<ModificationMajorationDOM>(cr, date, acte, activite, phase, positionDOM);
  return cr;
}

}  // namespace noxlux
