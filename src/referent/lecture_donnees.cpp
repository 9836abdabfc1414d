#include "referent/lecture_donnees.h"

#include "referent/requete.h"

namespace noxlux {

void LectureDonnees::activerVerificationModification(bool activer) {
  verification_ = activer;
  compteurModifications_ = 0;
}

CodeRetour LectureDonnees::lireVerificationModification(Nombre& compteur) const {
  compteur = Nombre(static_cast<std::int32_t>(compteurModifications_));
  return NOX_CR_OK;
}

CodeRetour LectureDonnees::lireCommentaireReferentiel(Texte& commentaire) const {
  commentaire = Texte(donnees().entete.commentaire);
  return NOX_CR_OK;
}

CodeRetour LectureDonnees::lireDateModification(Date& date) const {
  return copier(donnees().entete.dateModification, date);
}

CodeRetour LectureDonnees::lireVersionBaseCCAM(Code& version) const {
  return copier(donnees().entete.versionBaseCCAM, version);
}

CodeRetour LectureDonnees::lireNumeroRevisionReferentiel(Nombre& numero) const {
  return copier(donnees().entete.numeroRevision, numero);
}

CodeRetour LectureDonnees::lireVersionMinLogicielle(Code& version) const {
  return copier(donnees().entete.versionMinLogicielle, version);
}

CodeRetour LectureDonnees::lireVersionReferentiel(Code& version) const {
  return copier(donnees().entete.version, version);
}

CodeRetour LectureDonnees::lireVariante(Code& variante) const {
  return copier(donnees().entete.variante, variante);
}

CodeRetour LectureDonnees::chercherAutreActe(const Code& acte) {
  const Referentiel& referentiel = donnees();
  const Index* ligne = nullptr;
  const CodeRetour cr = chercherLigne(referentiel, acte, ligne);
  if (cr == NOX_CR_OK) {
    dernierRang_.reset();
    dernierActe_ = acte.vue();
    dernierRang_ = static_cast<std::uint32_t>(ligne - referentiel.lignes<Index>().data());
  }
  return cr;
}

// Loads the act of a place seen empty. Whoever finds the place marked is refused.
CodeRetour LectureDonnees::chargerActe(std::uint32_t rang, NiveauActe*& charge) {
  const Index& ligne = donnees().lignes<Index>()[rang];
  CaseActe& place = referentiel_->actes[rang];
  const std::string code(ligne.acte.entier());
  if (!place.reserver()) {
    charge = place.acte();
    if (charge != nullptr) {
      return NOX_CR_OK;  // loaded by another in between
    }
    Trace::erreur(TRACE_CONSULTATION, "Acte %s en cours de chargement par un autre thread", code.c_str());
    return NOX_CR_OCCUPE;
  }
  // However the load ends, the place holds the act, or is empty again.
  struct Depot {
    CaseActe& place;
    std::unique_ptr<NiveauActe> acte;
    ~Depot() { place.remplir(std::move(acte)); }
  } depot{place, nullptr};
  auto nouveau = std::make_unique<NiveauActe>();
  const CodeRetour cr = referentiel_->chargerActe(ligne.position, *nouveau, code.c_str());
  if (cr == NOX_CR_OK) {
    charge = nouveau.get();
    depot.acte = std::move(nouveau);
  }
  return cr;
}

CodeRetour LectureDonnees::chercherActivite(const Code& acte, const Code& activite, NiveauActivite*& niveau) {
  NiveauActe* niveauActe = nullptr;
  char cle = ' ';
  CodeRetour cr = chercherActe(acte, niveauActe);
  cr = cr == NOX_CR_OK ? composerCle(activite, cle) : cr;
  return cr == NOX_CR_OK ? niveauActe->chercherActivite(cle, niveau) : cr;
}

CodeRetour LectureDonnees::chercherPhase(const Code& acte, const Code& activite, const Code& phase,
                                         NiveauPhase*& niveau) {
  NiveauActivite* niveauActivite = nullptr;
  char cle = ' ';
  CodeRetour cr = chercherActivite(acte, activite, niveauActivite);
  cr = cr == NOX_CR_OK ? composerCle(phase, cle) : cr;
  return cr == NOX_CR_OK ? niveauActivite->chercherNiveauPhase(cle, niveau) : cr;
}

CodeRetour LectureDonnees::chercherHistoActe(const Code& acte, const Date& date,
                                             const HistoriqueNiveauActe*& historique) {
  NiveauActe* niveau = nullptr;
  const CodeRetour cr = chercherActe(acte, niveau);
  return cr == NOX_CR_OK ? niveau->chercherHistorique(historique, date) : cr;
}

CodeRetour LectureDonnees::chercherHistoActivite(const Code& acte, const Code& activite, const Date& date,
                                                 const HistoriqueNiveauActivite*& historique) {
  NiveauActivite* niveau = nullptr;
  const CodeRetour cr = chercherActivite(acte, activite, niveau);
  return cr == NOX_CR_OK ? niveau->chercherHistorique(historique, date) : cr;
}

CodeRetour LectureDonnees::chercherHistoPhase(const Code& acte, const Code& activite, const Code& phase,
                                              const Date& date, const HistoriqueNiveauPhase*& historique) {
  NiveauPhase* niveau = nullptr;
  const CodeRetour cr = chercherPhase(acte, activite, phase, niveau);
  return cr == NOX_CR_OK ? niveau->chercherHistorique(historique, date) : cr;
}

}  // namespace noxlux
