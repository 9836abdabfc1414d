// Queries on the rule catalogue, the disengageable services and the forcing indicators.
#include "referent/requete.h"

namespace noxlux {

CodeRetour LectureDonnees::rechercherInformationsRegle(const Code& identifiant, Texte& libellePrincipal,
                                                       Texte& libelleSecondaire, Code& type, Code& reference,
                                                       Code& indicateurForcage) {
  const auto corps = [&]() -> CodeRetour {
    const std::vector<InformationRegle>& regles = donnees().lignes<InformationRegle>();
    CodeFixe<9> cle;
    const CodeRetour cr = composerCle(identifiant, cle);
    if (cr != NOX_CR_OK) {
      return cr;
    }
    if (regles.empty()) {
      return refuser(NOX_CR_CODE_INCONNU, "ERREUR : Table Informations Regles vide");
    }
    const auto regle = std::ranges::find(regles, cle, &InformationRegle::identifiant);
    if (regle == regles.end()) {
      return refuser(NOX_CR_CODE_INCONNU,
                     "Identifiant de la regle non trouve dans la table Informations Regles");
    }
    Texte principal(regle->libellePrincipal.vue());
    Texte secondaire(regle->libelleSecondaire.vue());
    copier(regle->typeRegle, type);
    copier(regle->reference, reference);
    copier(regle->indicateurForcage, indicateurForcage);
    libellePrincipal = std::move(principal);
    libelleSecondaire = std::move(secondaire);
    return NOX_CR_OK;
  };
  return requete(__func__, corps, Entree{"Identifiant regle", identifiant});
}

CodeRetour LectureDonnees::rechercherReferenceCdC(const Code& identifiant, Code& reference) {
  return lireLigne(__func__, identifiant, &ReferenceCdC::reference, reference);
}

namespace {

// The rule references that a keyed line lists.
template <class R, class L, class V, unsigned CIBLE>
CodeRetour listerRegles(const char* methode, const Referentiel& referentiel, const V& cle,
                        Plage<CIBLE> L::*plage, ListeCodes& regles) {
  const auto corps = [&] {
    const L* ligne = nullptr;
    const CodeRetour cr = chercherLigne(referentiel, cle, ligne);
    return cr == NOX_CR_OK ? copierCodes(lignesDe<R>(referentiel, ligne->*plage), regles, &R::reference) : cr;
  };
  return requete(methode, corps, Entree{"Identifiant recherche", cle});
}

}  // namespace

CodeRetour LectureDonnees::rechercherReglesEntrainantDebrayage(const Texte& service, ListeCodes& regles) {
  return listerRegles<ReferenceRegleEntrainantDebrayage>(__func__, donnees(), service,
                                                         &ServiceDebrayable::regles, regles);
}

CodeRetour LectureDonnees::rechercherReglesNonVerifiables(const Code& reference, ListeCodes& regles) {
  return listerRegles<ReferenceRegleNonVerifiable>(__func__, donnees(), reference,
                                                   &ReferenceRegleEnErreur::regles, regles);
}

CodeRetour LectureDonnees::rechercherPrioriteIndicateurForcage(const Code& indicateur, Nombre& priorite) {
  return lireLigne(__func__, indicateur, &PrioriteIndicateurForcage::priorite, priorite);
}

CodeRetour LectureDonnees::rechercherValeurCombinaisonIndicateurs(const Code& indicateur, const Code& present,
                                                                  Code& resultat) {
  const auto corps = [&] {
    char clePresent = ' ';
    CodeRetour cr = composerCle(present, clePresent);
    if (cr != NOX_CR_OK) {
      return cr;
    }
    // An exception for the pair decides; without one, the higher priority does, and a tie keeps the present
    // indicator.
    const ExceptionPrioriteIndicateur* exception = nullptr;
    if (chercherLigne(donnees(), indicateur, exception) == NOX_CR_OK) {
      for (const ValeurException& valeur : lignesDe<ValeurException>(donnees(), exception->valeurs)) {
        if (valeur.indicateurPresent == clePresent) {
          return copier(valeur.indicateurRetourne, resultat);
        }
      }
    }
    const PrioriteIndicateurForcage* nouvelle = nullptr;
    const PrioriteIndicateurForcage* ancienne = nullptr;
    cr = chercherLigne(donnees(), indicateur, nouvelle);
    cr = cr == NOX_CR_OK ? chercherLigne(donnees(), present, ancienne) : cr;
    if (cr == NOX_CR_OK) {
      resultat = nouvelle->priorite > ancienne->priorite ? indicateur : present;
    }
    return cr;
  };
  return requete(__func__, corps, Entree{"Indicateur a combiner", indicateur},
                 Entree{"Indicateur present", present});
}

}  // namespace noxlux
