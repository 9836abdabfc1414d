#include "compilateur/fondements.h"

#include <algorithm>
#include <ctime>

#include "compilateur/ecriture_valeurs.h"
#include "compilateur/periodes.h"

namespace noxlux::compilateur {

namespace {

// Facts that rules need of some act at least, and the rules that stay silent without them.
struct Besoin {
  const char* sujet;
  const char* regles;
  bool (*tenu)(const Acte& acte);
};

template <class F>
bool uneActivite(const Acte& acte, F&& f) {
  return std::any_of(acte.activites.begin(), acte.activites.end(), f);
}
template <class F>
bool unePhase(const Acte& acte, F&& f) {
  return uneActivite(acte,
                     [&](const Activite& a) { return std::any_of(a.phases.begin(), a.phases.end(), f); });
}
template <class F>
bool unHistorique(const Acte& acte, F&& f) {
  return std::any_of(acte.historiques.begin(), acte.historiques.end(), f);
}

constexpr Besoin BESOINS[] = {
    {"agréments de radiologie", "PROD895A",
     [](const Acte& acte) {
       return uneActivite(acte, [](const Activite& a) { return !a.agrementsRadio.empty(); });
     }},
    {"âges minimaux des actes", "PROD720",
     [](const Acte& acte) { return unePhase(acte, [](const Phase& p) { return p.ageMinimum != 0; }); }},
    {"âges maximaux des actes", "PROD730",
     [](const Acte& acte) { return unePhase(acte, [](const Phase& p) { return p.ageMaximum != 0; }); }},
    {"nombres de dents", "PROD700 et PROD702",
     [](const Acte& acte) {
       return unePhase(
           acte, [](const Phase& p) { return !p.nombreDents.vue().empty() && p.nombreDents.vue() != "00"; });
     }},
    {"dents incompatibles", "PROD710",
     [](const Acte& acte) {
       return unePhase(acte, [](const Phase& p) { return !p.dentsIncompatibles.empty(); });
     }},
    {"suppléments de charges en cabinet", "PROD860",
     [](const Acte& acte) {
       return unePhase(acte, [](const Phase& p) {
         return std::any_of(p.historiques.begin(), p.historiques.end(),
                            [](const HistoriquePhase& h) { return h.supplement != 0.0; });
       });
     }},
    {"actes incompatibles", "PROD600",
     [](const Acte& acte) {
       return unHistorique(acte, [](const HistoriqueActe& h) { return !h.incompatibles.empty(); });
     }},
    {"procédures", "PROD590A et PROD590B",
     [](const Acte& acte) {
       return unHistorique(acte, [](const HistoriqueActe& h) { return !h.procedures.empty(); });
     }},
    {"ententes préalables", "PROD780",
     [](const Acte& acte) {
       return unHistorique(acte, [](const HistoriqueActe& h) { return h.ententePrealable; });
     }},
    {"classes de spécialités des actes", "PROD670",
     [](const Acte& acte) {
       return uneActivite(acte, [](const Activite& a) {
         return std::any_of(a.historiques.begin(), a.historiques.end(),
                            [](const HistoriqueActivite& h) { return !h.classesSpecialite.empty(); });
       });
     }},
    {"natures d'assurance", "PROD890", [](const Acte& acte) { return !acte.naturesAssurance.empty(); }},
};

constexpr int MOIS_D_AVANCE = 12;

DateBrute dansDouzeMois(const DateBrute& date) {
  DateBrute plusTard = date;
  plusTard.annee = static_cast<std::uint16_t>(plusTard.annee + MOIS_D_AVANCE / 12);
  plusTard.jour = plusTard.estValide() ? plusTard.jour : static_cast<std::uint8_t>(plusTard.jour - 1);
  return plusTard;
}

// What holds on a day and of which nothing is told a year later.
template <class E>
void direFin(const std::vector<E>& periodes, const std::string& quoi, const DateBrute& date,
             BilanImport& bilan) {
  const DateBrute echeance = dansDouzeMois(date);
  const bool tenu =
      std::any_of(periodes.begin(), periodes.end(), [&](const E& p) { return couvre(p, date); });
  const bool tiendra =
      std::any_of(periodes.begin(), periodes.end(), [&](const E& p) { return couvre(p, echeance); });
  if (tenu && !tiendra) {
    bilan.prevenir("finit dans les douze mois", periodes.back().lieu, quoi);
  }
}

}  // namespace

void direFondements(const Modele& modele, BilanImport& bilan) {
  for (const Acte& acte : modele.actes) {
    const bool exonere = std::any_of(acte.historiques.begin(), acte.historiques.end(),
                                     [](const HistoriqueActe& h) { return !h.exonerations.empty(); });
    bilan.fonder("codes d'exonération", exonere ? DE_L_IMPORT : ABSENT);
    for (const Activite& activite : acte.activites) {
      bilan.fonder("listes de modificateurs",
                   activite.historiques.back().modificateurs.empty() ? ABSENT : DE_L_IMPORT);
      for (const Phase& phase : activite.phases) {
        bilan.fonder("prix", DE_L_IMPORT, phase.historiques.size());
      }
    }
  }
  const auto duComplement = [&](const char* sujet, std::size_t nombre) {
    bilan.fonder(sujet, DU_COMPLEMENT, nombre);
  };
  duComplement("spécialités", modele.specialites.size());
  duComplement("codes de regroupement et natures de prestation", modele.regroupements.size());
  duComplement("seuils", modele.seuils.size());
  std::size_t jours = 0;
  for (const Caisse& caisse : modele.caisses) {
    jours += caisse.jours.size();
  }
  duComplement("jours fériés", jours);
  for (const Besoin& besoin : BESOINS) {
    if (std::none_of(modele.actes.begin(), modele.actes.end(), besoin.tenu)) {
      bilan.dire(phrase("absents, ", besoin.sujet, " : rien n'en est dit, ", besoin.regles,
                        " ne sera jamais levée"));
    }
  }
}

void direFins(const Modele& modele, const DateBrute& date, BilanImport& bilan) {
  const DateBrute echeance = dansDouzeMois(date);
  for (const Caisse& caisse : modele.caisses) {
    const bool apres = std::any_of(caisse.jours.begin(), caisse.jours.end(),
                                   [&](const JourFerie& jour) { return echeance <= jour.jour; });
    if (!caisse.jours.empty() && !apres) {
      bilan.prevenir("finit dans les douze mois", caisse.lieu,
                     phrase("jours fériés de la caisse ", enTexte(caisse.code)));
    }
  }
  direFin(modele.seuils, "seuils", date, bilan);
  direFin(modele.reductionsNonConventionne, "réduction des non conventionnés", date, bilan);
  direFin(modele.nombresActesAssociation, "nombre d'actes d'une association", date, bilan);
  direFin(modele.nombresModificateursTarifants, "nombre de modificateurs tarifants", date, bilan);
  for (const ModificateurActe& modificateur : modele.modificateurs) {
    direFin(modificateur.valeurs, phrase("valeur du modificateur ", enTexte(modificateur.code)), date, bilan);
  }
}

DateBrute aujourdhui() {
  const std::time_t maintenant = std::time(nullptr);
  std::tm calendrier{};
  localtime_r(&maintenant, &calendrier);
  return {static_cast<std::uint16_t>(calendrier.tm_year + 1900),
          static_cast<std::uint8_t>(calendrier.tm_mon + 1), static_cast<std::uint8_t>(calendrier.tm_mday)};
}

}  // namespace noxlux::compilateur
