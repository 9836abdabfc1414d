#include "regles/regles.h"

#include "basics/trace.h"
#include "regles/association_ccam.h"
#include "regles/seance.h"

namespace noxlux {

CodeRetour Constat::lever(ArgumentsLibelle cite) {
  return catalogue_.copierValeurErreur(erreur_, regle_, cite);
}

CodeRetour Constat::lever(const TypeListe<Nombre>& prestations, ArgumentsLibelle cite) {
  return catalogue_.copierValeurErreur(erreur_, prestations, regle_, cite);
}

CodeRetour Regles::copierValeurErreur(Erreur& erreur, const char* regle, ArgumentsLibelle arguments) {
  Texte libellePrincipal;
  Texte format;
  Code niveau;
  Code reference;
  Code indicateur;
  const CodeRetour cr = lecture_.rechercherInformationsRegle(Code(regle), libellePrincipal, format, niveau,
                                                             reference, indicateur);
  if (cr == NOX_CR_CODE_INCONNU) {
    Trace::erreur(TRACE_CONTROLE, "Erreur lors de la consultation des informations de la règle %s", regle);
    return NOX_CR_DONNEE_ABSENTE;
  }
  if (cr != NOX_CR_OK) {
    return cr;
  }
  const std::optional<std::string> libelle = formaterLibelle(format.vue(), arguments);
  if (!libelle.has_value()) {
    Trace::erreur(TRACE_CONTROLE, "Format du libellé secondaire de la règle %s incorrect", regle);
    return NOX_CR_DONNEE_ABSENTE;
  }
  erreur.ecrireReference(reference);
  erreur.ecrireNiveau(niveau);
  erreur.ecrireIndicateurForcage(indicateur);
  erreur.ecrireLibellePrincipal(libellePrincipal);
  erreur.ecrireLibelleSecondaire(Texte(*libelle));
  Trace::ecrire(TRACE_CONTROLE, "erreur = ");
  erreur.dump(TRACE_CONTROLE);
  return NOX_CR_OK;
}

CodeRetour Regles::copierValeurErreur(Erreur& erreur, const TypeListe<Nombre>& prestations, const char* regle,
                                      ArgumentsLibelle arguments) {
  const CodeRetour cr = copierValeurErreur(erreur, regle, arguments);
  if (cr == NOX_CR_OK) {
    erreur.ecrirePrestations(prestations);
  }
  return cr;
}

namespace {

Montant operer(Operation operation, const Montant& montant, const Flottant& operande) {
  switch (operation) {
    case Operation::FOIS:
      return Montant(montant.lireValeur() * operande.lireValeur());
    case Operation::PLUS:
      return Montant(montant.lireValeur() + operande.lireValeur());
    case Operation::PLAFOND:
      return operande < montant ? Montant(operande.lireValeur()) : montant;
    case Operation::ARRONDI:
      return Montant(montant.arrondir(Montant::DECIMALES));
    case Operation::DEPART:
      break;
  }
  return Montant(operande.lireValeur());
}

}  // namespace

Montant Regles::calculer(const char* nom, Operation operation, const Montant& montant,
                         const Flottant& operande) {
  const Montant resultat = operer(operation, montant, operande);
  if (observateur_ != nullptr) [[unlikely]] {
    observateur_->etapeDite({nom, operation, operande.lireValeur(), resultat.lireValeur()});
  }
  return resultat;
}

template <class Exclut>
CodeRetour Regles::demanderVerifiable(const Code& regle, bool& verifiable, Exclut exclut) {
  Code reference;
  const CodeRetour cr = lecture_.rechercherReferenceCdC(regle, reference);
  if (cr == NOX_CR_OK) {
    verifiable = !exclut(reference);
    Trace::ecrire(TRACE_CONTROLE, "Regle %s (reference = %s) vérifiable = %s", regle.lireTexte(),
                  reference.lireTexte(), vraiFaux(verifiable));
  }
  return cr;
}

CodeRetour Regles::estVerifiable(const Code& regle, const ListeCodes& reglesNonVerifiables,
                                 bool& verifiable) {
  return demanderVerifiable(regle, verifiable,
                            [&](const Code& reference) { return reglesNonVerifiables.contient(reference); });
}

CodeRetour Regles::estVerifiable(const Code& regle, const LigneActe& ligne, bool& verifiable) {
  return demanderVerifiable(regle, verifiable, [&](const Code& reference) {
    return ligne.reglesNonVerifiables.has_value() && ligne.reglesNonVerifiables->contient(reference);
  });
}

CodeRetour Regles::estVerifiable(const Code& regle, const AssociationCCAM& association, bool& verifiable) {
  return demanderVerifiable(regle, verifiable, [&](const Code& reference) {
    return association.depot.exclues.contains(reference.vue());
  });
}

CodeRetour Regles::estVerifiable(const Code& regle, const Seance& seance, bool& verifiable) {
  return demanderVerifiable(regle, verifiable, [&](const Code& reference) {
    return seance.depot.exclues.contains(reference.vue());
  });
}

CodeRetour Regles::estIndicateurPrioritaire(const Code& a, const Code& b, bool& resultat) {
  Nombre prioriteA;
  Nombre prioriteB;
  CodeRetour cr = lecture_.rechercherPrioriteIndicateurForcage(a, prioriteA);
  if (cr == NOX_CR_OK) {
    cr = lecture_.rechercherPrioriteIndicateurForcage(b, prioriteB);
  }
  if (cr == NOX_CR_OK) {
    resultat = prioriteA >= prioriteB;
  }
  return cr;
}

}  // namespace noxlux
