#include <algorithm>
#include <functional>
#include <map>
#include <set>

#include "compilateur/ecriture_valeurs.h"
#include "compilateur/mots_cles.h"
#include "compilateur/transcodage.h"
#include "compilateur/verifications.h"
#include "types/date.h"
#include "types/texte.h"

namespace noxlux::compilateur {

namespace {

class VerificationNomenclature {
 public:
  VerificationNomenclature(const Modele& modele, const Etiquettes& etiquettes, Rapport& rapport)
      : modele_(modele), etiquettes_(etiquettes), rapport_(rapport) {}

  void verifier() {
    verifierEntete();
    verifierPresences();
    recenser();
    verifierActes();
    verifierMenus();
    verifierModificateurs();
    verifierSpecialites();
    verifierCoefficients(modele_.associationsNonPrevues, "l'association non prévue", true);
    verifierCoefficients(modele_.reglesTarifaires, "la règle tarifaire", false);
    verifierPeriodes(modele_.seuils, "les seuils");
    verifierCaisses();
    verifierRegroupements();
    verifierPeriodes(modele_.reductionsNonConventionne, "les réductions des non conventionnés");
    verifierPeriodes(modele_.nombresModificateursTarifants, "les nombres de modificateurs tarifants");
    verifierPeriodes(modele_.nombresModificateursTransmissibles,
                     "les nombres de modificateurs transmissibles");
    verifierPeriodes(modele_.nombresActesAssociation, "les nombres d'actes d'une association");
    verifierObligations();
    verifierRecherche();
    verifierCodesEtConcepts();
  }

 private:
  template <class... T>
  void refuser(Lieu lieu, const T&... morceaux) {
    rapport_.signaler(lieu, phrase(morceaux...));
  }

  // Header.
  void verifierEntete() {
    if (modele_.entetes.empty()) {
      refuser({}, "aucune des sources ne contient de table [entete]");
      return;
    }
    for (std::size_t i = 1; i < modele_.entetes.size(); ++i) {
      refuser(modele_.entetes[i].lieu, "une seule table [entete] est permise parmi toutes les sources");
    }
    const Entete& entete = modele_.entetes.front();
    verifierPlein(entete.lieu, "version", entete.version.vue(), 4);
    verifierPlein(entete.lieu, "version_base_ccam", entete.versionBaseCCAM.vue(), 4);
    verifierPlein(entete.lieu, "version_minimum", entete.versionMinimum.vue(), 4);
    verifierPlein(entete.lieu, "variante", entete.variante.vue(), 4);
    const auto interdit = [](char c) { return static_cast<unsigned char>(c) < 0x20; };
    if (std::any_of(entete.commentaire.begin(), entete.commentaire.end(), interdit)) {
      refuser(entete.lieu, "le commentaire de l'entête tient sur une ligne, sans caractère de commande");
    }
  }

  void verifierPlein(Lieu lieu, const char* cle, std::string_view code, std::size_t minimum) {
    if (!code.empty() && code.size() < minimum) {
      refuser(lieu, "« entete.", cle, " » compte au moins ", std::to_string(minimum), " caractères");
    }
  }

  // The loader wants these tables filled.
  void verifierPresences() {
    exigerUn(modele_.actes, "acte");
    exigerUn(modele_.menus, "menu");
    exigerUn(modele_.modificateurs, "modificateur");
    exigerUn(modele_.specialites, "specialite");
    exigerUn(modele_.associationsNonPrevues, "association_non_prevue");
    exigerUn(modele_.reglesTarifaires, "regle_tarifaire");
    exigerUn(modele_.seuils, "seuil");
    exigerUn(modele_.caisses, "caisse");
    exigerUn(modele_.regroupements, "regroupement");
    exigerUn(modele_.reductionsNonConventionne, "reduction_non_conventionne");
    exigerUn(modele_.nombresModificateursTarifants, "nombre_modificateurs_tarifants");
    exigerUn(modele_.nombresModificateursTransmissibles, "nombre_modificateurs_transmissibles");
    exigerUn(modele_.nombresActesAssociation, "nombre_actes_association");
    exigerUn(modele_.obligations, "obligation_codage");
  }

  template <class E>
  void exigerUn(const std::vector<E>& elements, const char* table) {
    if (elements.empty()) {
      refuser({}, "aucune des sources ne contient de table [[", table, "]]");
    }
  }

  void recenser() {
    for (const Acte& acte : modele_.actes) {
      actes_.insert(acte.code);
    }
    for (const ModificateurActe& modificateur : modele_.modificateurs) {
      modificateurs_.insert(modificateur.code);
    }
    for (const SpecialitePS& specialite : modele_.specialites) {
      specialites_.insert(specialite.code);
      for (const ClasseDate& historique : specialite.historiques) {
        classes_.insert(historique.classe);
      }
    }
    for (const CodeRegleTarifaire& regle : modele_.reglesTarifaires) {
      reglesTarifaires_.insert(regle.code);
    }
    for (const Regroupement& regroupement : modele_.regroupements) {
      regroupements_.insert(regroupement.code);
    }
    for (const Menu& menu : modele_.menus) {
      menus_.emplace(menu.code, &menu);
    }
  }

  // Elements whose key must not come twice.
  template <class E, class C>
  void verifierUnicite(const std::vector<E>& elements, C cle, const char* nom) {
    std::map<std::decay_t<decltype(std::invoke(cle, elements[0]))>, Lieu> vus;
    for (const E& element : elements) {
      const auto [place, nouveau] = vus.emplace(std::invoke(cle, element), element.lieu);
      if (!nouveau && !enTexte(place->first).empty()) {  // an empty key has been refused by its reader
        refuser(element.lieu, nom, " « ", enTexte(place->first), " » est en double (déjà à la ligne ",
                std::to_string(place->second.ligne), " de ", rapport_.nomSource(place->second.source), ")");
      }
    }
  }

  // Act records count in 16 bits.
  void verifierNombre(Lieu lieu, std::size_t nombre, const char* nom) {
    if (nombre > ListeCompacte<char>::MAX_VALEURS) {
      refuser(lieu, nom, " : ", std::to_string(nombre), " éléments dans la liste, plus de ",
              std::to_string(ListeCompacte<char>::MAX_VALEURS));
    }
  }

  template <class T>
  void verifierSansDoublon(Lieu lieu, const std::vector<T>& codes, const char* nom) {
    verifierNombre(lieu, codes.size(), nom);
    std::set<T> vus;
    for (const T& code : codes) {
      if (!vus.insert(code).second) {
        refuser(lieu, nom, " « ", enTexte(code), " » est en double dans la liste");
      }
    }
  }

  template <class T, class S>
  void verifierConnus(Lieu lieu, const std::vector<T>& codes, const S& connus, const char* nom) {
    verifierSansDoublon(lieu, codes, nom);
    for (const T& code : codes) {
      if (!connus.contains(code)) {
        refuser(lieu, nom, " « ", enTexte(code), " » est inconnu");
      }
    }
  }

  void verifierEtiquette(Lieu lieu, TableCode table, std::string_view code, const char* nom) {
    if (!code.empty() && code != " " && !etiquettes_.connait(table, code)) {
      refuser(lieu, nom, " « ", versUtf8(code), " » est absent de la table de codes ",
              std::to_string(unsigned{table}));
    }
  }

  template <class T>
  void verifierEtiquettes(Lieu lieu, TableCode table, const std::vector<T>& codes, const char* nom) {
    verifierSansDoublon(lieu, codes, nom);
    for (const T& code : codes) {
      verifierEtiquette(lieu, table, enTexte(code), nom);
    }
  }

  // One period: its end is not before its start.
  template <class E>
  void verifierPeriode(const E& element) {
    if (!element.fin.estNulle() && element.fin < element.debut) {
      refuser(element.lieu, "la fin (", jour(element.fin), ") précède le début (", jour(element.debut), ")");
    }
  }

  // Periods that must not overlap.
  template <class E>
  void verifierPeriodes(const std::vector<E>& elements, const std::string& quoi) {
    std::vector<const E*> ordre;
    for (const E& element : elements) {
      verifierPeriode(element);
      ordre.push_back(&element);
    }
    std::stable_sort(ordre.begin(), ordre.end(),
                     [](const E* gauche, const E* droite) { return gauche->debut < droite->debut; });
    for (std::size_t i = 1; i < ordre.size(); ++i) {
      const E& avant = *ordre[i - 1];
      if (avant.fin.estNulle() || ordre[i]->debut <= avant.fin) {
        refuser(ordre[i]->lieu, quoi, " : deux périodes se recouvrent à partir du ", jour(ordre[i]->debut));
      }
    }
  }

  // The same, among the elements that bear one code.
  template <class E>
  void verifierPeriodesParCode(const std::vector<E>& elements, const std::string& quoi) {
    std::map<std::string, std::vector<E>> parCode;
    for (const E& element : elements) {
      parCode[enTexte(element.code)].push_back(element);
    }
    for (const auto& [code, memes] : parCode) {
      verifierPeriodes(memes, phrase(quoi, " « ", code, " »"));
    }
  }

  // Histories of an act, an activity or a phase.
  template <class E>
  void verifierEffets(const std::vector<E>& historiques) {
    verifierNombre(historiques.empty() ? Lieu{} : historiques.front().lieu, historiques.size(),
                   "l'historique");
    std::set<DateBrute> effets;
    for (const E& historique : historiques) {
      if (!effets.insert(historique.effet).second) {
        refuser(historique.lieu, "deux historiques prennent effet le ", jour(historique.effet));
      }
    }
  }

  // Acts.
  void verifierActes() {
    verifierUnicite(modele_.actes, &Acte::code, "l'acte");
    for (const Acte& acte : modele_.actes) {
      verifierActe(acte);
    }
  }

  void verifierActe(const Acte& acte) {
    verifierEtiquette(acte.lieu, CODES_TYPE_ACTE, {&acte.type, 1}, "le type d'acte");
    verifierEtiquette(acte.lieu, CODES_FRAIS, {&acte.fraisDeplacement, 1}, "le code de frais de déplacement");
    verifierEtiquettes(acte.lieu, CODES_NATURE_ASSURANCE, acte.naturesAssurance, "la nature d'assurance");
    if (acte.sexe != ' ' && acte.sexe != '1' && acte.sexe != '2') {
      refuser(acte.lieu, "le sexe est « 1 » (homme), « 2 » (femme), ou absent");
    }
    if (!menus_.contains(acte.menu)) {
      refuser(acte.lieu, "le menu ", std::to_string(acte.menu), " est inconnu");
    }
    if (!acte.fin.estNulle() && acte.fin < acte.creation) {
      refuser(acte.lieu, "la fin de l'acte (", jour(acte.fin), ") précède sa création (", jour(acte.creation),
              ")");
    }
    verifierEffets(acte.historiques);
    verifierPremierEffet(acte);
    for (const HistoriqueActe& historique : acte.historiques) {
      verifierEtiquette(historique.lieu, CODES_ADMISSION, {&historique.admission, 1},
                        "le code d'admission au remboursement");
      verifierEtiquettes(historique.lieu, CODES_EXONERATION, historique.exonerations,
                         "le code d'exonération");
      verifierConnus(historique.lieu, historique.procedures, actes_, "l'acte de procédure");
      verifierConnus(historique.lieu, historique.incompatibles, actes_, "l'acte incompatible");
      refuserSoiMeme(historique.lieu, acte.code, historique.incompatibles, "incompatible");
    }
    verifierUnicite(acte.activites, &Activite::code, "l'activité");
    for (const Activite& activite : acte.activites) {
      verifierActivite(activite);
    }
  }

  void verifierPremierEffet(const Acte& acte) {
    const auto premier =
        std::min_element(acte.historiques.begin(), acte.historiques.end(),
                         [](const HistoriqueActe& g, const HistoriqueActe& d) { return g.effet < d.effet; });
    if (premier != acte.historiques.end() && !acte.creation.estNulle() && acte.creation < premier->effet) {
      refuser(acte.lieu, "l'acte est créé le ", jour(acte.creation),
              " et son premier historique n'a effet que le ", jour(premier->effet));
    }
  }

  void refuserSoiMeme(Lieu lieu, const CodeActe& acte, const std::vector<CodeActe>& liste, const char* nom) {
    if (std::find(liste.begin(), liste.end(), acte) != liste.end()) {
      refuser(lieu, "l'acte « ", enTexte(acte), " » est ", nom, " avec lui-même");
    }
  }

  void verifierActivite(const Activite& activite) {
    verifierEtiquette(activite.lieu, CODES_ACTIVITE, {&activite.code, 1}, "l'activité");
    verifierEtiquettes(activite.lieu, CODES_EXTENSION, activite.extensions, "l'extension documentaire");
    verifierSansDoublon(activite.lieu, activite.agrementsRadio, "l'agrément radio");
    verifierSansDoublon(activite.lieu, activite.rmo, "la RMO");
    verifierEffets(activite.historiques);
    for (const HistoriqueActivite& historique : activite.historiques) {
      verifierHistoriqueActivite(historique);
    }
    verifierUnicite(activite.phases, &Phase::code, "la phase");
    for (const Phase& phase : activite.phases) {
      verifierEffets(phase.historiques);
      verifierSansDoublon(phase.lieu, phase.dentsIncompatibles, "la dent");
      if (phase.ageMaximum != 0 && phase.ageMaximum < phase.ageMinimum) {
        refuser(phase.lieu, "l'âge maximum est inférieur à l'âge minimum");
      }
    }
  }

  void verifierHistoriqueActivite(const HistoriqueActivite& historique) {
    const Lieu lieu = historique.lieu;
    verifierEtiquette(lieu, CODES_CATEGORIE, historique.categorieMedicale.vue(), "la catégorie médicale");
    if (!historique.regroupement.vue().empty() && !regroupements_.contains(historique.regroupement)) {
      refuser(lieu, "le code de regroupement « ", enTexte(historique.regroupement), " » est inconnu");
    }
    verifierConnus(lieu, historique.modificateurs, modificateurs_, "le modificateur");
    verifierConnus(lieu, historique.classesSpecialite, classes_, "la classe de spécialité");
    verifierNombre(lieu, historique.associations.size(), "l'acte associé");
    std::set<CodeActe> associes;
    for (const AssociationActe& association : historique.associations) {
      if (!associes.insert(association.acte).second) {
        refuser(association.lieu, "l'acte associé « ", enTexte(association.acte), " » est en double");
      }
      if (!actes_.contains(association.acte)) {
        refuser(association.lieu, "l'acte associé « ", enTexte(association.acte), " » est inconnu");
      }
      if (!reglesTarifaires_.contains(association.regle)) {
        refuser(association.lieu, "la règle tarifaire « ", enTexte(association.regle), " » est inconnue");
      }
    }
  }

  // Menus: a tree whose root is menu 1.
  void verifierMenus() {
    verifierUnicite(modele_.menus, &Menu::code, "le menu");
    if (!modele_.menus.empty() && !menus_.contains(MENU_RACINE)) {
      refuser({}, "le menu 1, racine de l'arborescence, est absent");
    }
    for (const Menu& menu : modele_.menus) {
      if (menu.code == MENU_RACINE) {
        if (menu.pere != 0) {
          refuser(menu.lieu, "le menu 1 est la racine : il n'a pas de père");
        }
      } else if (!menus_.contains(menu.pere)) {
        refuser(menu.lieu, "le menu père ", std::to_string(menu.pere), " est inconnu");
      } else if (!atteintRacine(menu)) {
        refuser(menu.lieu, "le menu ", std::to_string(menu.code),
                " ne mène pas à la racine : ses pères tournent en rond");
      }
    }
  }

  // Whether the way up ends, at the root or at an unknown parent told elsewhere.
  bool atteintRacine(const Menu& depart) const {
    const Menu* menu = &depart;
    for (std::size_t pas = 0; pas <= modele_.menus.size(); ++pas) {
      const auto pere = menus_.find(menu->pere);
      if (menu->code == MENU_RACINE || pere == menus_.end()) {
        return true;
      }
      menu = pere->second;
    }
    return false;
  }

  // Modifiers.
  void verifierModificateurs() {
    verifierUnicite(modele_.modificateurs, &ModificateurActe::code, "le modificateur");
    for (const ModificateurActe& modificateur : modele_.modificateurs) {
      const std::string nom = phrase("le modificateur « ", enTexte(modificateur.code), " »");
      verifierPeriodes(modificateur.ages, nom + ", âges");
      verifierPeriodes(modificateur.coherences, nom + ", cohérences");
      verifierPeriodes(modificateur.valeurs, nom + ", valeurs");
      verifierPeriodes(modificateur.oc, nom + ", codes OC");
      verifierPeriodesParCode(modificateur.compatibles, nom + ", compatibilité avec");
      for (const Compatibilite& compatible : modificateur.compatibles) {
        if (!modificateurs_.contains(compatible.code)) {
          refuser(compatible.lieu, "le modificateur compatible « ", enTexte(compatible.code),
                  " » est inconnu");
        }
      }
      for (const ForfaitEtTaux& valeur : modificateur.valeurs) {
        if (valeur.coefficient < 1.0) {
          refuser(valeur.lieu, "le coefficient d'un modificateur est au moins 1");
        }
      }
      for (const AgeModificateur& age : modificateur.ages) {
        verifierAge(age);
      }
    }
  }

  void verifierAge(const AgeModificateur& age) {
    for (const char unite : {age.uniteMinimum, age.uniteMaximum}) {
      if (unite != 'A' && unite != 'M' && unite != 'J') {
        refuser(age.lieu, "l'unité d'âge « ", enTexte(unite),
                " » n'est ni A (années), ni M (mois), ni J (jours)");
      }
    }
    if (age.uniteMinimum == age.uniteMaximum && age.maximum != 0 && age.maximum < age.minimum) {
      refuser(age.lieu, "l'âge maximum est inférieur à l'âge minimum");
    }
  }

  // The other subjects.
  void verifierSpecialites() {
    verifierUnicite(modele_.specialites, &SpecialitePS::code, "la spécialité");
    for (const SpecialitePS& specialite : modele_.specialites) {
      verifierPeriodes(specialite.historiques, phrase("la spécialité « ", enTexte(specialite.code), " »"));
    }
  }

  template <class C>
  void verifierCoefficients(const std::vector<C>& codes, const char* nom, bool avecLibelle) {
    verifierUnicite(codes, &C::code, nom);
    for (const C& code : codes) {
      if (avecLibelle && code.libelle.empty()) {
        refuser(code.lieu, nom, " « ", enTexte(code.code), " » n'a pas de libellé");
      }
      verifierPeriodes(code.historiques, phrase(nom, " « ", enTexte(code.code), " »"));
    }
  }

  void verifierCaisses() {
    verifierUnicite(modele_.caisses, &Caisse::code, "la caisse");
    for (const Caisse& caisse : modele_.caisses) {
      std::map<DateBrute, std::vector<JourFerie>> parJour;
      for (const JourFerie& ferie : caisse.jours) {
        parJour[ferie.jour].push_back(ferie);
      }
      for (const auto& [date, memes] : parJour) {
        verifierPeriodes(memes, phrase("la caisse « ", enTexte(caisse.code), " », jour férié ", jour(date)));
      }
    }
  }

  void verifierRegroupements() { verifierPeriodesParCode(modele_.regroupements, "le code de regroupement"); }

  void verifierObligations() {
    verifierUnicite(modele_.obligations, &Obligation::prestation, "la nature de prestation");
    for (const Obligation& obligation : modele_.obligations) {
      verifierUnicite(obligation.specialites, &SpecialiteObligee::code, "la spécialité");
      for (const SpecialiteObligee& specialite : obligation.specialites) {
        if (!specialites_.contains(specialite.code)) {
          refuser(specialite.lieu, "la spécialité « ", enTexte(specialite.code), " » est inconnue");
        }
      }
    }
  }

  void verifierRecherche() {
    for (std::size_t i = 1; i < modele_.recherches.size(); ++i) {
      refuser(modele_.recherches[i].lieu, "une seule table [recherche] est permise parmi toutes les sources");
    }
    for (const SynonymesDeMot& groupe : modele_.synonymes) {
      verifierMot(groupe.lieu, groupe.mot);
      for (const std::string& synonyme : groupe.synonymes) {
        verifierMot(groupe.lieu, synonyme);
      }
    }
  }

  void verifierMot(Lieu lieu, const std::string& texte) {
    if (motsDe(texte).size() != 1) {
      refuser(lieu, "« ", versUtf8(texte), " » n'est pas un mot");
    }
  }

  void verifierCodesEtConcepts() {
    std::set<std::uint16_t> decrites;
    for (const TableDeCodes& table : modele_.tablesDeCodes) {
      decrites.insert(table.numero);
      if (table.numero == 0) {
        refuser(table.lieu, "les tables de codes sont numérotées à partir de 1");
      }
    }
    for (std::uint16_t numero = 1; numero <= NOMBRE_TABLES_CODES; ++numero) {
      if (etiquettes_.table(numero).empty() && !decrites.contains(numero)) {
        refuser({}, "aucune des sources ne donne de libellés à la table de codes ", std::to_string(numero));
      }
    }
    verifierUnicite(
        modele_.concepts, [](const Concept& c) { return std::uint32_t{c.numero}; }, "le concept");
    for (const Concept& concept_ : modele_.concepts) {
      if (concept_.numero == 0) {
        refuser(concept_.lieu, "les concepts sont numérotés à partir de 1");
      }
      verifierPeriodes(concept_.historiques, phrase("le concept ", std::to_string(concept_.numero)));
      for (const ValeursDate& historique : concept_.historiques) {
        verifierSansDoublon(historique.lieu, historique.valeurs, "la valeur");
        verifierValeursConcept(historique);
      }
    }
  }

  // Queries answer concept values as codes.
  void verifierValeursConcept(const ValeursDate& historique) {
    for (const std::string& valeur : historique.valeurs) {
      if (!Code::estValide(std::string_view(valeur))) {
        refuser(historique.lieu, "la valeur de concept « ", versUtf8(valeur),
                " » n'est pas faite de lettres capitales et de chiffres");
      }
    }
  }

  const Modele& modele_;
  const Etiquettes& etiquettes_;
  Rapport& rapport_;
  std::set<CodeActe> actes_;
  std::set<char> modificateurs_;
  std::set<CodeFixe<2>> specialites_;
  std::set<CodeFixe<2>> classes_;
  std::set<char> reglesTarifaires_;
  std::set<CodeFixe<3>> regroupements_;
  std::map<std::uint32_t, const Menu*> menus_;
};

}  // namespace

void verifierNomenclature(const Modele& modele, const Etiquettes& etiquettes, Rapport& rapport) {
  VerificationNomenclature(modele, etiquettes, rapport).verifier();
}

}  // namespace noxlux::compilateur
