// Queries on modifiers, associations, specialities, grouping codes, thresholds, holidays, concepts, labels.
#include "referent/requete.h"

namespace noxlux {

namespace {

constexpr FormatVerifie<> SANS_VALEUR = "pas d'historique trouve a la date de reference";
constexpr FormatVerifie<> SANS_REDUCTION = "pas de reduction non conventionnee trouve a la date de reference";

// Whole years of 12 months or 365 days; each month left is 30 days.
CodeRetour convertirAge(char unite, std::uint16_t age, Periode& periode) {
  switch (unite) {
    case 'A':
      periode = Periode(age, 0);
      return NOX_CR_OK;
    case 'M':
      periode = Periode(static_cast<unsigned short>(age / 12), static_cast<unsigned short>(age % 12 * 30));
      return NOX_CR_OK;
    case 'J':
      periode = Periode(static_cast<unsigned short>(age / MAX_NOMBRE_JOURS),
                        static_cast<unsigned short>(age % MAX_NOMBRE_JOURS));
      return NOX_CR_OK;
    default:
      return NOX_CR_DONNEE_ABSENTE;
  }
}

CodeRetour lireAge(const char* methode, LectureDonnees& lecture, const Referentiel& referentiel,
                   char HistoriqueAgeModificateur::*unite, std::uint16_t HistoriqueAgeModificateur::*age,
                   FormatVerifie<char> uniteInconnue, const Code& modificateur, const Date& date,
                   Periode& periode) {
  const auto corps = [&](Releve& releve) {
    const HistoriqueAgeModificateur* ages = nullptr;
    CodeRetour cr = chercherHistorique(referentiel, &Modificateur::ages, modificateur, date, ages);
    if (cr == NOX_CR_OK) {
      releve.dater(*ages);
      cr = convertirAge(ages->*unite, ages->*age, periode);
      if (cr != NOX_CR_OK) {
        Trace::erreur(TRACE_CONSULTATION, uniteInconnue, ages->*unite);
      }
    }
    return cr;
  };
  return lecture.demander(methode, periode, corps, Entree{"Code recherche", modificateur},
                          Entree{"Date de reference", date});
}

// The codes of the entities of table L that have a history of class H valid at the date.
template <class H, class L, unsigned CIBLE>
CodeRetour listerValides(const char* methode, const Referentiel& referentiel, Plage<CIBLE> L::*plage,
                         const Date& date, ListeCodes& codes) {
  const auto corps = [&] {
    codes.reinitialiser();
    for (const L& ligne : referentiel.lignes<L>()) {
      const std::span<const H> historiques = lignesDe<H>(referentiel, ligne.*plage);
      const bool valide = std::any_of(historiques.begin(), historiques.end(), [&](const H& historique) {
        return estValideALaDate(historique, date);
      });
      const CodeRetour cr = valide ? ajouterCodes(std::span(&ligne.code, 1), codes) : CodeRetour{NOX_CR_OK};
      if (cr != NOX_CR_OK) {
        return cr;
      }
    }
    return CodeRetour{NOX_CR_OK};
  };
  return requete(methode, corps, Entree{"Date de reference", date});
}

template <class H, class L, unsigned CIBLE>
bool existeALaDate(const char* methode, LectureDonnees& lecture, const Referentiel& referentiel,
                   Plage<CIBLE> L::*plage, const Code& code, const Date& date) {
  const auto corps = [&](Releve& releve) {
    const H* historique = nullptr;
    const CodeRetour cr = chercherHistorique(referentiel, plage, code, date, historique);
    if (cr == NOX_CR_OK) {
      releve.dater(*historique);
    }
    return cr;
  };
  return lecture.demander(methode, Booleen(true), corps, Entree{"Code recherche", code},
                          Entree{"Date de reference", date}) == NOX_CR_OK;
}

// The holidays of a fund whose line holds at the date.
CodeRetour listerJoursFeries(const char* methode, LectureDonnees& lecture, const Referentiel& referentiel,
                             const Code& caisse, const Date& date, TypeListe<Date>& jours) {
  const auto corps = [&](Releve&) {
    const JourFerieCaisse* ligne = nullptr;
    CodeRetour cr = chercherLigne(referentiel, caisse, ligne);
    if (cr != NOX_CR_OK) {
      return cr;
    }
    jours.reinitialiser();
    for (const JourFerieListe& jour : lignesDe<JourFerieListe>(referentiel, ligne->jours)) {
      if (estValideALaDate(jour, date) && (cr = jours.ajouterElement(Date(jour.jour))) != NOX_CR_OK) {
        return cr;
      }
    }
    return cr;
  };
  return lecture.demander(methode, jours, corps, Entree{"Code caisse recherche", caisse},
                          Entree{"Date de reference", date});
}

// Line n - 1 of a table whose lines are numbered from 1.
template <class L>
CodeRetour chercherNumero(const Referentiel& referentiel, unsigned short numero, const L*& ligne,
                          FormatVerifie<> absent) {
  const std::vector<L>& lignes = referentiel.lignes<L>();
  if (numero == 0 || numero > lignes.size()) {
    return refuser(NOX_CR_CODE_INCONNU, absent);
  }
  ligne = &lignes[numero - 1U];
  return NOX_CR_OK;
}

}  // namespace

// --- Modifiers -----------------------------------------------------------------------------------------

CodeRetour LectureDonnees::rechercherModificateurs(const Date& date, ListeCodes& modificateurs) {
  return listerValides<HistoriqueValeurModificateur>(__func__, donnees(), &Modificateur::valeurs, date,
                                                     modificateurs);
}

bool LectureDonnees::rechercherExistenceModificateur(const Code& modificateur, const Date& date) {
  return existeALaDate<HistoriqueValeurModificateur>(__func__, *this, donnees(), &Modificateur::valeurs,
                                                     modificateur, date);
}

CodeRetour LectureDonnees::rechercherAgeMaximumModificateur(const Code& modificateur, const Date& date,
                                                            Periode& age) {
  using H = HistoriqueAgeModificateur;
  return lireAge(__func__, *this, donnees(), &H::uniteMaximum, &H::maximum,
                 "unite de temps de l'age maximum inconnue : %c", modificateur, date, age);
}

CodeRetour LectureDonnees::rechercherAgeMinimumModificateur(const Code& modificateur, const Date& date,
                                                            Periode& age) {
  using H = HistoriqueAgeModificateur;
  return lireAge(__func__, *this, donnees(), &H::uniteMinimum, &H::minimum,
                 "unite de temps de l'age minimum inconnue : %c", modificateur, date, age);
}

CodeRetour LectureDonnees::rechercherForfaitModificateur(const Code& modificateur, const Date& date,
                                                         Montant& forfait) {
  const CodeRetour cr =
      lireHistorique(__func__, &Modificateur::valeurs, &HistoriqueValeurModificateur::forfait, forfait,
                     modificateur, date, SANS_VALEUR);
  compterModification<ModificationModificateur>(cr, date, modificateur);
  return cr;
}

CodeRetour LectureDonnees::rechercherTauxModificateur(const Code& modificateur, const Date& date,
                                                      Coefficient& taux) {
  const CodeRetour cr =
      lireHistorique(__func__, &Modificateur::valeurs, &HistoriqueValeurModificateur::coefficient, taux,
                     modificateur, date, SANS_VALEUR);
  compterModification<ModificationModificateur>(cr, date, modificateur);
  return cr;
}

CodeRetour LectureDonnees::rechercherModificateursCompatibles(const Code& modificateur, const Date& date,
                                                              ListeCodes& compatibles) {
  const auto corps = [&](Releve&) {
    const Modificateur* ligne = nullptr;
    CodeRetour cr = chercherLigne(donnees(), modificateur, ligne);
    if (cr != NOX_CR_OK) {
      return cr;
    }
    compatibles.reinitialiser();
    for (const ModificateurCompatible& autre :
         lignesDe<ModificateurCompatible>(donnees(), ligne->compatibles)) {
      if (estValideALaDate(autre, date) &&
          (cr = ajouterCodes(std::span(&autre.code, 1), compatibles)) != NOX_CR_OK) {
        return cr;
      }
    }
    return cr;
  };
  return demander(__func__, compatibles, corps, Entree{"Code recherche", modificateur},
                  Entree{"Date de reference", date});
}

CodeRetour LectureDonnees::rechercherModificateurOC(const Code& modificateur, const Date& date,
                                                    Code& modificateurOC) {
  return lireHistorique(__func__, &Modificateur::oc, &HistoriqueModificateurOC::code, modificateurOC,
                        modificateur, date);
}

CodeRetour LectureDonnees::rechercherTopControleCoherence(const Code& modificateur, const Date& date,
                                                          Booleen& top) {
  return lireHistorique(__func__, &Modificateur::coherences,
                        &HistoriqueCoherenceModificateur::topControleCoherence, top, modificateur, date);
}

CodeRetour LectureDonnees::rechercherTopPresenceMultiple(const Code& modificateur, const Date& date,
                                                         Booleen& top) {
  return lireHistorique(__func__, &Modificateur::coherences,
                        &HistoriqueCoherenceModificateur::topPresenceMultiple, top, modificateur, date);
}

CodeRetour LectureDonnees::rechercherNombreModificateursTarifants(const Date& date, Nombre& nombre) {
  return lireLigneDatee(__func__, &NombreModificateurTarifant::nombre, nombre, date,
                        "Pas de ligne Nombre de Modificateur tarifiant correspondant a la date de reference");
}

CodeRetour LectureDonnees::rechercherNombreModificateursTransmissibles(const Date& date, Nombre& nombre) {
  return lireLigneDatee(
      __func__, &NombreModificateurTransmissible::nombre, nombre, date,
      "Pas de ligne Nombre de Modificateurs Transmissibles correspondant a la date de reference");
}

// --- Associations --------------------------------------------------------------------------------------

CodeRetour LectureDonnees::rechercherCodesAssociationsNonPrevues(const Date& date, ListeCodes& codes) {
  return listerValides<HistoriqueAssociationNonPrevue>(__func__, donnees(),
                                                       &AssociationNonPrevue::historiques, date, codes);
}

bool LectureDonnees::rechercherExistenceAssociationNP(const Code& association, const Date& date) {
  return existeALaDate<HistoriqueAssociationNonPrevue>(__func__, *this, donnees(),
                                                       &AssociationNonPrevue::historiques, association, date);
}

CodeRetour LectureDonnees::rechercherCoefficientAssociationNonPrevue(const Code& association,
                                                                     const Date& date,
                                                                     Coefficient& coefficient) {
  const CodeRetour cr =
      lireHistorique(__func__, &AssociationNonPrevue::historiques,
                     &HistoriqueAssociationNonPrevue::coefficient, coefficient, association, date);
  compterModification<ModificationRegleAssociationNonPrevue>(cr, date, association);
  return cr;
}

CodeRetour LectureDonnees::rechercherCoefficientRegle(const Code& regle, const Date& date,
                                                      Coefficient& coefficient) {
  return lireHistorique(__func__, &RegleTarifaire::historiques, &HistoriqueRegleTarifaire::coefficient,
                        coefficient, regle, date);
}

CodeRetour LectureDonnees::rechercherNombreActeAssociation(const Date& date, Nombre& nombre) {
  return lireLigneDatee(
      __func__, &NombreActeAssociation::nombre, nombre, date,
      "Pas de ligne Nombre d'actes dans une association correspondant a la date de reference");
}

// --- Specialities, grouping codes, natures of service --------------------------------------------------

CodeRetour LectureDonnees::rechercherRegroupementSpecialites(const Code& specialite, const Date& date,
                                                             Code& classe) {
  return lireHistorique(__func__, &Specialite::historiques, &HistoriqueSpecialite::classe, classe, specialite,
                        date);
}

CodeRetour LectureDonnees::rechercherSpecialitesDansClasse(const Code& classe, const Date& date,
                                                           ListeCodes& specialites) {
  const auto corps = [&](Releve& releve) {
    const HistoriqueClasseSpecialite* historique = nullptr;
    const CodeRetour cr =
        chercherHistorique(donnees(), &ClasseSpecialite::historiques, classe, date, historique);
    if (cr != NOX_CR_OK) {
      return cr;
    }
    releve.dater(*historique);
    return copierCodes(lignesDe<SpecialiteDansClasse>(donnees(), historique->specialites), specialites,
                       &SpecialiteDansClasse::code);
  };
  return demander(__func__, specialites, corps, Entree{"Code recherche", classe},
                  Entree{"Date de reference", date});
}

CodeRetour LectureDonnees::rechercherCodesRegroupement(const Date& date, ListeCodes& codes) {
  const auto corps = [&] {
    CodeRetour cr = NOX_CR_OK;
    codes.reinitialiser();
    for (const CodeRegroupement& ligne : donnees().lignes<CodeRegroupement>()) {
      if (estValideALaDate(ligne, date) &&
          (cr = ajouterCodes(std::span(&ligne.code, 1), codes)) != NOX_CR_OK) {
        break;
      }
    }
    return cr;
  };
  return requete(__func__, corps, Entree{"Date de reference", date});
}

namespace {

// Whether the table holds a line of the code that suits.
template <class F>
bool existeRegroupement(const char* methode, LectureDonnees& lecture, const Referentiel& referentiel,
                        const Code& code, F&& convient) {
  const auto corps = [&](Releve& releve) {
    CodeFixe<3> cle;
    const CodeRetour cr = composerCle(code, cle);
    const std::vector<CodeRegroupement>& lignes = referentiel.lignes<CodeRegroupement>();
    if (cr != NOX_CR_OK) {
      return cr;
    }
    const auto trouvee = std::find_if(lignes.begin(), lignes.end(), [&](const CodeRegroupement& ligne) {
      return ligne.code == cle && convient(ligne);
    });
    if (trouvee == lignes.end()) {
      return CodeRetour{NOX_CR_CODE_INCONNU};
    }
    releve.dater(*trouvee);
    return cr;
  };
  return lecture.demander(methode, Booleen(true), corps, Entree{"Code recherche", code}) == NOX_CR_OK;
}

}  // namespace

bool LectureDonnees::rechercherExistenceCodeRegroupement(const Code& code, const Date& date) {
  return existeRegroupement(__func__, *this, donnees(), code,
                            [&](const CodeRegroupement& ligne) { return estValideALaDate(ligne, date); });
}

bool LectureDonnees::rechercherExistenceCodeRegroupement(const Code& code) {
  return existeRegroupement(__func__, *this, donnees(), code, [](const CodeRegroupement&) { return true; });
}

CodeRetour LectureDonnees::rechercherDateCreationCodeRegroupement(const Code& code, Date& dateCreation) {
  const auto corps = [&] {
    CodeFixe<3> cle;
    const CodeRetour cr = composerCle(code, cle);
    if (cr != NOX_CR_OK) {
      return cr;
    }
    for (const auto& ligne : donnees().lignes<ModificationNouveauCodeRegroupement>()) {
      if (ligne.code == cle) {
        return copier(ligne.dateEffet, dateCreation);
      }
    }
    return refuser(NOX_CR_CODE_INCONNU, "Code regroupement non trouve dans la table de modification");
  };
  return requete(__func__, corps, Entree{"Code recherche", code});
}

CodeRetour LectureDonnees::rechercherDateObligationCodage(const Code& prestation, const Code& specialite,
                                                          Date& dateObligation) {
  const auto corps = [&](Releve&) {
    const ObligationCodage* obligation = nullptr;
    CodeFixe<2> cle;
    CodeRetour cr = chercherLigne(donnees(), prestation, obligation);
    cr = cr == NOX_CR_OK ? composerCle(specialite, cle) : cr;
    if (cr != NOX_CR_OK) {
      return cr;
    }
    for (const auto& ligne : lignesDe<DateObligationCodage>(donnees(), obligation->specialites)) {
      if (ligne.code == cle) {
        return copier(ligne.date, dateObligation);
      }
    }
    return refuser(NOX_CR_CODE_INCONNU,
                   "Code specialite non trouve dans la table des Dates d'Obligation de Codage");
  };
  return demander(__func__, dateObligation, corps, Entree{"Code prestation recherche", prestation},
                  Entree{"Code specialite recherche", specialite});
}

bool LectureDonnees::rechercherExistenceNaturePrestation(const Code& prestation) {
  const ObligationCodage* ligne = nullptr;
  return demander(
             __func__, Booleen(true), [&](Releve&) { return chercherLigne(donnees(), prestation, ligne); },
             Entree{"Code prestation recherche", prestation}) == NOX_CR_OK;
}

// --- Thresholds, non-agreed professionals, holidays, concepts, labels ----------------------------------

CodeRetour LectureDonnees::rechercherSeuilExoTM(unsigned short positionSeuil, const Date& date,
                                                Montant& seuil) {
  const auto corps = [&](Releve& releve) -> CodeRetour {
    if (positionSeuil < 1 || positionSeuil > MONTANTS_SEUIL.size()) {
      return refuser(NOX_CR_DONNEE_ABSENTE, "parametre position seuil exo TM incorrect (valeurs=1,2,3,4)");
    }
    const Seuil* ligne = nullptr;
    const CodeRetour cr = choisirALaDate<Seuil>(donnees().lignes<Seuil>(), date, ligne,
                                                "Pas de seuil correspondant a la date de reference");
    if (cr != NOX_CR_OK) {
      return cr;
    }
    releve.dater(*ligne);
    return copier(ligne->*MONTANTS_SEUIL[positionSeuil - 1U], seuil);
  };
  const CodeRetour cr = demander(__func__, seuil, corps, Entree{"Position du seuil", positionSeuil},
                                 Entree{"Date de reference", date});
  compterModification<ModificationSeuil>(cr, date, positionSeuil);
  return cr;
}

CodeRetour LectureDonnees::rechercherForfaitNonConventionnes(const Date& date, Montant& forfait) {
  const CodeRetour cr =
      lireLigneDatee(__func__, &ReductionNonConventionne::forfait, forfait, date, SANS_REDUCTION);
  compterModification<ModificationNonConventionne>(cr, date);
  return cr;
}

CodeRetour LectureDonnees::rechercherTauxNonConventionnes(const Date& date, Coefficient& taux) {
  const CodeRetour cr =
      lireLigneDatee(__func__, &ReductionNonConventionne::coefficient, taux, date, SANS_REDUCTION);
  compterModification<ModificationNonConventionne>(cr, date);
  return cr;
}

CodeRetour LectureDonnees::rechercherJoursFeriesCaisse(const Code& caisse, const Date& date,
                                                       TypeListe<Date>& jours) {
  return listerJoursFeries(__func__, *this, donnees(), caisse, date, jours);
}

CodeRetour LectureDonnees::rechercherJoursFeriesNationaux(const Date& date, TypeListe<Date>& jours) {
  return listerJoursFeries(__func__, *this, donnees(), Code("000"), date, jours);
}

CodeRetour LectureDonnees::rechercherValeursConcept(unsigned short numero, const Date& date,
                                                    ListeCodes& valeurs) {
  const auto corps = [&](Releve& releve) {
    const ConceptCCAM* concept_ = nullptr;
    const HistoriqueConceptCCAM* historique = nullptr;
    CodeRetour cr = chercherNumero(donnees(), numero, concept_,
                                   "Parametre numero de concept non trouve dans la table Concepts CCAM");
    if (cr == NOX_CR_OK) {
      cr =
          choisirALaDate(lignesDe<HistoriqueConceptCCAM>(donnees(), concept_->historiques), date, historique);
    }
    if (cr != NOX_CR_OK) {
      return cr;
    }
    releve.dater(*historique);
    return copierCodes(lignesDe<ValeurConceptCCAM>(donnees(), historique->valeurs), valeurs,
                       &ValeurConceptCCAM::valeur);
  };
  return demander(__func__, valeurs, corps, Entree{"Numero de concept", numero},
                  Entree{"Date de reference", date});
}

CodeRetour LectureDonnees::rechercherLibelleCode(unsigned short numero, const Code& code, Texte& libelle) {
  const auto corps = [&] {
    const Codes* table = nullptr;
    const CodeRetour cr =
        chercherNumero(donnees(), numero, table, "Parametre numero de code non trouve dans la table Codes");
    if (cr != NOX_CR_OK) {
      return cr;
    }
    for (const LibelleCode& ligne : lignesDe<LibelleCode>(donnees(), table->valeurs)) {
      if (ligne.code.vue() == code.vue()) {
        return copier(ligne.libelle, libelle);
      }
    }
    return refuser(NOX_CR_CODE_INCONNU, "Code non trouve dans la table Libelles Codes");
  };
  return requete(__func__, corps, Entree{"Numero de la table de codes", numero},
                 Entree{"Code recherche", code});
}

}  // namespace noxlux
