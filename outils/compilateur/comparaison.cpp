#include "compilateur/comparaison.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>

#include "compilateur/ecriture_valeurs.h"
#include "compilateur/rapport.h"

namespace noxlux::compilateur {

namespace {

// The codes of a list, in one order whatever the file's.
template <class L>
JsonOrdonne enListeTriee(const L& codes) {
  std::set<std::string> ordre;
  for (const auto& code : codes) {
    ordre.insert(enTexte(code));
  }
  return ordre;
}

JsonOrdonne associes(const HistoriqueNiveauActivite& historique) {
  std::set<std::string> ordre;
  for (const Association& association : historique.associations) {
    ordre.insert(enTexte(association.acte) + "/" + enTexte(association.regleTarifaire));
  }
  return ordre;
}

// The history that holds at a date; null before the first one.
template <class H>
const H* enVigueur(const ChaineHistoriques<H>& historiques, const DateBrute& date) {
  const H* trouve = nullptr;
  for (const H& historique : historiques) {
    if (historique.dateEffet <= date && (trouve == nullptr || trouve->dateEffet < historique.dateEffet)) {
      trouve = &historique;
    }
  }
  return trouve;
}

class Comparaison {
 public:
  Comparaison(const std::map<CodeActe, NiveauActe>& avant, const std::map<CodeActe, NiveauActe>& apres)
      : avant_(avant), apres_(apres) {
    for (const char* liste : {"actes ajoutés", "actes clos", "prix", "modificateurs", "libellés", "autres"}) {
      resultat_[liste] = JsonOrdonne::array();
    }
  }

  JsonOrdonne comparer() {
    for (const auto& [code, acte] : apres_) {
      const auto ancien = avant_.find(code);
      if (ancien == avant_.end()) {
        ajouter("actes ajoutés", {{"acte", enTexte(code)},
                                  {"depuis", jour(acte.dateCreation)},
                                  {"libellé", versUtf8(acte.libelleLong.vue())}});
      } else {
        comparerActes(enTexte(code), ancien->second, acte);
      }
    }
    for (const auto& [code, acte] : avant_) {
      if (!apres_.contains(code)) {
        ajouter(
            "actes clos",
            {{"acte", enTexte(code)}, {"depuis", nullptr}, {"libellé", versUtf8(acte.libelleLong.vue())}});
      }
    }
    return std::move(resultat_);
  }

 private:
  void ajouter(const char* liste, JsonOrdonne objet) { resultat_[liste].push_back(std::move(objet)); }

  void comparerActes(const std::string& code, const NiveauActe& avant, const NiveauActe& apres) {
    if (!apres.dateFin.estNulle() && apres.dateFin != avant.dateFin) {
      ajouter(
          "actes clos",
          {{"acte", code}, {"depuis", jour(apres.dateFin)}, {"libellé", versUtf8(apres.libelleLong.vue())}});
    }
    if (avant.libelleLong.vue() != apres.libelleLong.vue()) {
      ajouter("libellés", {{"acte", code},
                           {"avant", versUtf8(avant.libelleLong.vue())},
                           {"après", versUtf8(apres.libelleLong.vue())}});
    }
    const JsonOrdonne ou = {{"acte", code}};
    comparerHistoriques("autres", ou, "admission", avant.historiques, apres.historiques,
                        [](const auto& h) { return enTexte(h.admissionRemboursement); });
    comparerHistoriques("autres", ou, "entente préalable", avant.historiques, apres.historiques,
                        [](const auto& h) { return enTexte(h.ententePrealable); });
    comparerHistoriques("autres", ou, "exonérations", avant.historiques, apres.historiques,
                        [](const auto& h) { return enListeTriee(h.exonerationsTM); });
    comparerHistoriques("autres", ou, "actes incompatibles", avant.historiques, apres.historiques,
                        [](const auto& h) { return enListeTriee(h.incompatibilites); });
    parCode(avant.activites, apres.activites, &NiveauActivite::codeActivite,
            [&](const NiveauActivite& a, const NiveauActivite& b, char activite) {
              comparerActivites({{"acte", code}, {"activité", enTexte(activite)}}, a, b);
            });
  }

  // Calls f(before, after, code) for each code of either list; the missing side is an empty level.
  template <class N, class F>
  static void parCode(const std::vector<N>& avant, const std::vector<N>& apres, char N::*code, F&& f) {
    static const N VIDE;
    std::map<char, std::pair<const N*, const N*>> paires;
    for (const N& niveau : avant) {
      paires[niveau.*code].first = &niveau;
    }
    for (const N& niveau : apres) {
      paires[niveau.*code].second = &niveau;
    }
    for (const auto& [lettre, paire] : paires) {
      f(paire.first == nullptr ? VIDE : *paire.first, paire.second == nullptr ? VIDE : *paire.second, lettre);
    }
  }

  void comparerActivites(const JsonOrdonne& ou, const NiveauActivite& avant, const NiveauActivite& apres) {
    comparerHistoriques("modificateurs", ou, nullptr, avant.historiques, apres.historiques,
                        [](const auto& h) { return enListeTriee(h.modificateurs); });
    comparerHistoriques("autres", ou, "code de regroupement", avant.historiques, apres.historiques,
                        [](const auto& h) { return enTexte(h.codeRegroupement); });
    comparerHistoriques("autres", ou, "catégorie médicale", avant.historiques, apres.historiques,
                        [](const auto& h) { return enTexte(h.categorieMedicale); });
    comparerHistoriques("autres", ou, "actes associés", avant.historiques, apres.historiques, associes);
    parCode(avant.phases, apres.phases, &NiveauPhase::codePhase,
            [&](const NiveauPhase& a, const NiveauPhase& b, char phase) {
              JsonOrdonne ouPhase = ou;
              ouPhase["phase"] = enTexte(phase);
              comparerHistoriques("prix", ouPhase, nullptr, a.historiques, b.historiques,
                                  [](const auto& h) { return h.prixUnitaire; });
              comparerHistoriques("autres", ouPhase, "supplément de charges", a.historiques, b.historiques,
                                  [](const auto& h) { return h.supplementCharges; });
              comparerHistoriques("autres", ouPhase, "majorations DOM", a.historiques, b.historiques,
                                  [](const auto& h) { return h.majorationsDOM; });
            });
  }

  // The dates from which the second answers another value than the first. What the second does not reach
  // back to is no change; a level that it does not hold any more is one, from the date it had last.
  template <class H, class V>
  void comparerHistoriques(const char* liste, const JsonOrdonne& ou, const char* donnee,
                           const ChaineHistoriques<H>& avant, const ChaineHistoriques<H>& apres, V&& valeur) {
    std::set<DateBrute> dates;
    for (const H& historique : apres) {
      dates.insert(historique.dateEffet);
    }
    const DateBrute premiere = dates.empty() ? DateBrute{} : *dates.begin();
    for (const H& historique : avant) {
      if (premiere < historique.dateEffet) {
        dates.insert(historique.dateEffet);
      }
    }
    if (apres.empty() && !dates.empty()) {
      dates = {*dates.rbegin()};
    }
    const auto en = [&](const ChaineHistoriques<H>& historiques, const DateBrute& date) {
      const H* const historique = enVigueur(historiques, date);
      return historique == nullptr ? JsonOrdonne() : JsonOrdonne(valeur(*historique));
    };
    JsonOrdonne dernierEcart;
    for (const DateBrute& date : dates) {
      const JsonOrdonne a = en(avant, date);
      const JsonOrdonne b = en(apres, date);
      const JsonOrdonne ecart = a == b ? JsonOrdonne() : JsonOrdonne::array({a, b});
      if (!ecart.is_null() && ecart != dernierEcart) {
        JsonOrdonne objet = ou;
        if (donnee != nullptr) {
          objet["donnée"] = donnee;
        }
        objet["depuis"] = jour(date);
        objet["avant"] = a;
        objet["après"] = b;
        ajouter(liste, std::move(objet));
      }
      dernierEcart = ecart;
    }
  }

  const std::map<CodeActe, NiveauActe>& avant_;
  const std::map<CodeActe, NiveauActe>& apres_;
  JsonOrdonne resultat_;
};

// The dated values of each modifier.
using ValeursModificateurs = std::map<std::string, std::map<DateBrute, HistoriqueValeurModificateur>>;

template <class L>
CodeRetour lire(const FichierReference& fichier, std::vector<L>& lignes) {
  const TableLue* const table = fichier.chercherTable(L::IDENTIFIANT);
  CodeRetour cr = NOX_CR_OK;
  if (table != nullptr) {
    if (const auto lues = fichier.lireLignes(*table, cr)) {
      lignes = std::move(static_cast<LignesDe<L>&>(*lues).lignes);
    }
  }
  return cr;
}

CodeRetour lireValeurs(const FichierReference& fichier, ValeursModificateurs& valeurs) {
  std::vector<Modificateur> modificateurs;
  std::vector<HistoriqueValeurModificateur> historiques;
  CodeRetour cr = lire(fichier, modificateurs);
  cr = cr == NOX_CR_OK ? lire(fichier, historiques) : cr;
  for (const Modificateur& modificateur : modificateurs) {
    const std::size_t fin = std::size_t{modificateur.valeurs.premiere} + modificateur.valeurs.nombre;
    for (std::size_t i = modificateur.valeurs.premiere; i < std::min(fin, historiques.size()); ++i) {
      valeurs[enTexte(modificateur.code)][historiques[i].debut] = historiques[i];
    }
  }
  return cr;
}

JsonOrdonne valeurAu(const std::map<DateBrute, HistoriqueValeurModificateur>& valeurs,
                     const DateBrute& date) {
  auto suivante = valeurs.upper_bound(date);
  if (suivante == valeurs.begin()) {
    return nullptr;
  }
  const HistoriqueValeurModificateur& valeur = std::prev(suivante)->second;
  if (!valeur.fin.estNulle() && valeur.fin < date) {
    return nullptr;
  }
  return {{"forfait", valeur.forfait}, {"coefficient", valeur.coefficient}};
}

JsonOrdonne comparerValeurs(const ValeursModificateurs& avant, const ValeursModificateurs& apres) {
  JsonOrdonne liste = JsonOrdonne::array();
  for (const auto& [code, valeurs] : apres) {
    const auto ancien = avant.find(code);
    const std::map<DateBrute, HistoriqueValeurModificateur> vide;
    for (const auto& [date, valeur] : valeurs) {
      const JsonOrdonne a = valeurAu(ancien == avant.end() ? vide : ancien->second, date);
      const JsonOrdonne b = valeurAu(valeurs, date);
      if (a != b) {
        liste.push_back({{"modificateur", code}, {"depuis", jour(date)}, {"avant", a}, {"après", b}});
      }
    }
  }
  for (const auto& [code, valeurs] : avant) {
    if (!apres.contains(code)) {
      const DateBrute derniere = valeurs.rbegin()->first;
      liste.push_back({{"modificateur", code},
                       {"depuis", nullptr},
                       {"avant", valeurAu(valeurs, derniere)},
                       {"après", nullptr}});
    }
  }
  return liste;
}

// What a table holds, as a person names each line.
template <class L, class F>
CodeRetour nommer(const FichierReference& fichier, F&& nom, std::set<std::string>& noms) {
  std::vector<L> lignes;
  const CodeRetour cr = lire(fichier, lignes);
  for (const L& ligne : lignes) {
    noms.insert(nom(ligne));
  }
  return cr;
}

std::string decrire(const Seuil& seuil) {
  std::string texte =
      phrase("du ", jour(seuil.debut), seuil.fin.estNulle() ? "" : phrase(" au ", jour(seuil.fin)), " :");
  for (const double montant : {seuil.metropole, seuil.antilles, seuil.reunion, seuil.guyane}) {
    char nombre[32];
    std::snprintf(nombre, sizeof nombre, " %.2f", montant);
    texte += nombre;
  }
  return texte;
}

// The lines that one of the references alone holds.
template <class L, class F>
CodeRetour comparerNoms(const FichierReference& avant, const FichierReference& apres, const char* table,
                        F&& nom, JsonOrdonne& liste) {
  std::set<std::string> anciens;
  std::set<std::string> nouveaux;
  CodeRetour cr = nommer<L>(avant, nom, anciens);
  cr = cr == NOX_CR_OK ? nommer<L>(apres, nom, nouveaux) : cr;
  const auto ajouter = [&](const std::set<std::string>& ici, const std::set<std::string>& ailleurs,
                           const char* changement) {
    for (const std::string& code : ici) {
      if (!ailleurs.contains(code)) {
        liste.push_back({{"table", table}, {"code", code}, {"changement", changement}});
      }
    }
  };
  ajouter(nouveaux, anciens, "nouveau");
  ajouter(anciens, nouveaux, "disparu");
  return cr;
}

CodeRetour comparerTables(const FichierReference& avant, const FichierReference& apres, JsonOrdonne& liste) {
  const auto code = [](const auto& ligne) { return enTexte(ligne.code); };
  liste = JsonOrdonne::array();
  CodeRetour cr = comparerNoms<Modificateur>(avant, apres, "modificateurs", code, liste);
  cr = cr == NOX_CR_OK ? comparerNoms<CodeRegroupement>(avant, apres, "codes de regroupement", code, liste)
                       : cr;
  cr = cr == NOX_CR_OK ? comparerNoms<Specialite>(avant, apres, "spécialités", code, liste) : cr;
  const auto seuil = [](const Seuil& ligne) { return decrire(ligne); };
  return cr == NOX_CR_OK ? comparerNoms<Seuil>(avant, apres, "seuils", seuil, liste) : cr;
}

JsonOrdonne identite(const FichierReference& fichier) {
  const EnteteFichier& entete = fichier.entete();
  return {{"version du référentiel", versUtf8(entete.version)},
          {"version de la base CCAM", versUtf8(entete.versionBaseCCAM)},
          {"date", versUtf8(entete.date)},
          {"variante", versUtf8(entete.variante)}};
}

}  // namespace

JsonOrdonne comparer(const FichierReference& avant, const FichierReference& apres, CodeRetour& cr) {
  std::map<CodeActe, NiveauActe> actesAvant;
  std::map<CodeActe, NiveauActe> actesApres;
  ValeursModificateurs valeursAvant;
  ValeursModificateurs valeursApres;
  cr = avant.lireActes(actesAvant);
  cr = cr == NOX_CR_OK ? apres.lireActes(actesApres) : cr;
  cr = cr == NOX_CR_OK ? lireValeurs(avant, valeursAvant) : cr;
  cr = cr == NOX_CR_OK ? lireValeurs(apres, valeursApres) : cr;
  JsonOrdonne resultat;
  if (cr == NOX_CR_OK) {
    resultat = {{"avant", identite(avant)}, {"après", identite(apres)}};
    resultat.update(Comparaison(actesAvant, actesApres).comparer());
    resultat["valeurs de modificateurs"] = comparerValeurs(valeursAvant, valeursApres);
    cr = comparerTables(avant, apres, resultat["tables"]);
  }
  return resultat;
}

}  // namespace noxlux::compilateur
