#include "interapp/fonctions_consulter.h"

#include <utility>

#include "basics/trace.h"
#include "interapp/aiguillage.h"
#include "interapp/reponse.h"

namespace noxlux {

namespace {

using L = LectureDonnees;

// Output groups of more than a value of one type.
constexpr std::uint16_t GROUPE_CODES = 3110;
constexpr std::uint16_t GROUPE_NOMBRE = 3111;
constexpr std::uint16_t GROUPE_BOOLEEN = 3116;
constexpr std::uint16_t GROUPE_CODE_LIBELLE = 3118;
constexpr std::uint16_t GROUPE_TEXTES = 3119;
constexpr std::uint16_t GROUPE_DATE_MODIFICATION = 3130;

// The output group of one value, by its type.
template <class V>
constexpr std::uint16_t GROUPE_DE = 0;
template <>
constexpr std::uint16_t GROUPE_DE<Code> = GROUPE_CODES;
template <>
constexpr std::uint16_t GROUPE_DE<ListeCodes> = GROUPE_CODES;
template <>
constexpr std::uint16_t GROUPE_DE<Nombre> = GROUPE_NOMBRE;
template <>
constexpr std::uint16_t GROUPE_DE<Texte> = 3112;
template <>
constexpr std::uint16_t GROUPE_DE<Date> = 3113;
template <>
constexpr std::uint16_t GROUPE_DE<Coefficient> = 3114;
template <>
constexpr std::uint16_t GROUPE_DE<Periode> = 3115;
template <>
constexpr std::uint16_t GROUPE_DE<Booleen> = GROUPE_BOOLEEN;
template <>
constexpr std::uint16_t GROUPE_DE<Montant> = 3117;

// Numbers of code tables and of concepts.
constexpr unsigned short CODES_ACTIVITES = 1;
constexpr unsigned short CODES_MODIFICATEURS = 2;
constexpr unsigned short CODES_TYPES_ACTE = 3;
constexpr unsigned short CODES_CATEGORIES_MEDICALES = 4;
constexpr unsigned short CODES_ADMISSIONS = 5;
constexpr unsigned short CODES_EXONERATIONS = 6;
constexpr unsigned short CODES_NATURES_ASSURANCE = 7;
constexpr unsigned short CODES_FRAIS_DEPLACEMENT = 8;
constexpr unsigned short CODES_REGROUPEMENTS = 9;
constexpr unsigned short CODES_ASSOCIATIONS = 10;
constexpr unsigned short CODES_EXTENSIONS = 11;
constexpr unsigned short CONCEPT_CATEGORIES_DENTAIRES = 4;
constexpr unsigned short CONCEPT_CONSULTABLE = 19;

constexpr std::uint32_t MENU_RACINE = 1;

std::span<const Code> enListe(const Code& code) { return {&code, 1}; }
std::span<const Code> enListe(const ListeCodes& codes) { return {codes.begin(), codes.end()}; }

template <class R, class V>
void ecrireChamps(R& reponse, const V& valeur) {
  reponse.champ(valeur);
}
template <class R, class T>
void ecrireChamps(R& reponse, const TypeListe<T>& valeurs) {
  for (const T& valeur : valeurs) {
    reponse.champ(valeur);
  }
}
template <class R>
void ecrireChamps(R& reponse, const ListeCodes& codes) {
  ecrireChamps(reponse, static_cast<const TypeListe<Code>&>(codes));
}

template <class R>
void ecrireDateModification(R& reponse, const Date& date) {
  if (date.lireBrute().estComplete()) {
    reponse.groupe(GROUPE_DATE_MODIFICATION);
    reponse.champ(date);
  }
}

// The answer of one group.
template <class V>
ZoneSortie ecrireGroupe(CodeRetour& cr, std::uint16_t groupe, const V& valeur) {
  return ecrireReponse(cr, [&](auto& reponse) {
    reponse.groupe(groupe);
    ecrireChamps(reponse, valeur);
  });
}

// Sees a path that comes back to where it was: a mark left at ever longer intervals is met again.
class DetecteurCycle {
 public:
  explicit DetecteurCycle(std::uint32_t depart) : repere_(depart) {}
  bool revient(std::uint32_t etape) {
    if (etape == repere_) {
      return true;
    }
    if (++pas_ == intervalle_) {
      repere_ = etape;
      pas_ = 0;
      intervalle_ *= 2;
    }
    return false;
  }

 private:
  std::uint32_t repere_;
  std::uint32_t pas_ = 0;
  std::uint32_t intervalle_ = 1;
};

}  // namespace

FonctionsConsulter::FonctionsConsulter(const Date& dateReference, Zone* zin, const SuperGroupe* superGroupe,
                                       LectureDonnees* acces)
    : FonctionsDonnees(zin, superGroupe, TRACE_CONSULTATION), dateReference_(dateReference), acces_(acces) {
  exiger(acces != nullptr, "acces != __null");
}

// --- Steps ---

void FonctionsConsulter::controlerDateReference(CodeRetour& cr, const Code& acte) const {
  // The banner names the other family, as readers of traces know it.
  static constexpr ControleVie CONTROLE = {"FonctionsModifier::controlerDateReference",
                                           NOX_CR_PAS_D_HISTORIQUE,
                                           "Date de référence antérieure à la date de création de l'acte",
                                           "Date de référence postérieure à la date de fin de l'acte"};
  controlerVieActe(cr, *acces_, acte, dateReference_, CONTROLE);
}

template <Validite VALIDITE, auto REQUETE>
auto FonctionsConsulter::lireCle(CodeRetour& cr) {
  auto cle = extraireCle<REQUETE>(cr);
  verifierFinDonnees(cr);
  placerCaisse<REQUETE>(cr, cle);
  if constexpr (VALIDITE == Validite::ACTE_EN_VIGUEUR) {
    controlerDateReference(cr, cle.codes[0]);
  }
  return cle;
}

template <auto REQUETE, std::size_t N>
SortieDe<REQUETE> FonctionsConsulter::demander(CodeRetour& cr, const Cle<N>& cle) {
  using S = SignatureDe<REQUETE>;
  SortieDe<REQUETE> sortie{};
  if (cr == NOX_CR_OK) {
    cr = std::apply([&](const auto&... parts) { return (acces_->*REQUETE)(parts..., sortie); },
                    std::tuple_cat(cle.template lireCodes<S::CLES>(), siPrevu<S::POSITION>(cle.position),
                                   siPrevu<S::DATEE>(dateReference_)));
  }
  return sortie;
}

std::vector<Texte> FonctionsConsulter::demanderLibelles(CodeRetour& cr, unsigned short tableCodes,
                                                        std::span<const Code> codes) {
  std::vector<Texte> libelles;
  libelles.reserve(codes.size());
  for (const Code& code : codes) {
    if (cr != NOX_CR_OK) {
      break;
    }
    cr = acces_->rechercherLibelleCode(tableCodes, code, libelles.emplace_back());
  }
  return libelles;
}

CodeRetour FonctionsConsulter::repondreLibelles(CodeRetour& cr, ZoneSortie& zoneOut,
                                                unsigned short tableCodes, std::span<const Code> codes) {
  const std::vector<Texte> textes = demanderLibelles(cr, tableCodes, codes);
  zoneOut = ecrireReponse(cr, [&](auto& reponse) {
    for (std::size_t i = 0; i < codes.size(); ++i) {
      reponse.groupe(GROUPE_CODE_LIBELLE);
      reponse.champ(codes[i]);
      reponse.champ(textes[i]);
    }
  });
  return cr;
}

// --- Shapes ---

template <Validite VALIDITE, auto REQUETE>
CodeRetour FonctionsConsulter::valeur(ZoneSortie& zoneOut) {
  CodeRetour cr = NOX_CR_OK;
  const auto cle = lireCle<VALIDITE, REQUETE>(cr);
  const auto reponse = demander<REQUETE>(cr, cle);
  zoneOut = ecrireGroupe(cr, GROUPE_DE<SortieDe<REQUETE>>, reponse);
  return cr;
}

template <Validite VALIDITE, auto REQUETE, auto DATE_MODIFICATION>
CodeRetour FonctionsConsulter::valeurModifiable(ZoneSortie& zoneOut) {
  CodeRetour cr = NOX_CR_OK;
  const auto cle = lireCle<VALIDITE, REQUETE>(cr);
  const auto valeur = demander<REQUETE>(cr, cle);
  const Date modification = demander<DATE_MODIFICATION>(cr, cle);
  zoneOut = ecrireReponse(cr, [&](auto& reponse) {
    reponse.groupe(GROUPE_DE<SortieDe<REQUETE>>);
    reponse.champ(valeur);
    ecrireDateModification(reponse, modification);
  });
  return cr;
}

template <Validite VALIDITE, auto REQUETE, unsigned short TABLE_CODES>
CodeRetour FonctionsConsulter::libelles(ZoneSortie& zoneOut) {
  CodeRetour cr = NOX_CR_OK;
  const auto cle = lireCle<VALIDITE, REQUETE>(cr);
  const auto codes = demander<REQUETE>(cr, cle);
  return repondreLibelles(cr, zoneOut, TABLE_CODES, enListe(codes));
}

// --- Functions of no common shape ---

CodeRetour FonctionsConsulter::CCAM_1(ZoneSortie& zoneOut) {
  CodeRetour cr = NOX_CR_OK;
  const auto cle = lireCle<Validite::SANS_CONTROLE, &L::rechercherExistenceActe>(cr);
  bool existe = false;
  if (cr == NOX_CR_OK) {
    cr = acces_->rechercherExistenceActe(cle.codes[0]);
    existe = cr == NOX_CR_OK;
    if (cr == NOX_CR_CODE_INCONNU) {
      cr = NOX_CR_OK;  // "no" is an answer
    }
  }
  zoneOut = ecrireGroupe(cr, GROUPE_BOOLEEN, Booleen(existe));
  return cr;
}

CodeRetour FonctionsConsulter::CCAM_4a(ZoneSortie& zoneOut) {
  CodeRetour cr = NOX_CR_OK;
  const auto cle = lireCle<Validite::ACTE_EN_VIGUEUR, &L::rechercherPhasesDeTraitement>(cr);
  const ListeCodes phases = demander<&L::rechercherPhasesDeTraitement>(cr, cle);
  zoneOut = ecrireGroupe(cr, GROUPE_NOMBRE, Nombre(phases.lireNombreElements()));
  return cr;
}

// The menus above the act, from its own up to the root, which is left out.
CodeRetour FonctionsConsulter::CCAM_16a(ZoneSortie& zoneOut) {
  CodeRetour cr = NOX_CR_OK;
  const auto cle = lireCle<Validite::ACTE_EN_VIGUEUR, &L::rechercherCodeMenu>(cr);
  std::uint32_t menu = demander<&L::rechercherCodeMenu>(cr, cle);
  DetecteurCycle cycle(menu);
  std::vector<std::pair<Texte, Texte>> niveaux;
  while (cr == NOX_CR_OK && menu != MENU_RACINE) {
    auto& [titre, notes] = niveaux.emplace_back();
    cr = acces_->rechercherTitreMenu(menu, titre);
    if (cr == NOX_CR_OK) {
      cr = acces_->rechercherNotesMenu(menu, notes);
    }
    if (cr == NOX_CR_OK) {
      cr = acces_->rechercherMenuPere(menu, menu);
    }
    if (cr == NOX_CR_OK && cycle.revient(menu)) {
      Trace::erreur(lireModule(), "Le chemin de menus de l'acte %s n'atteint pas la racine",
                    cle.codes[0].lireTexte());
      cr = NOX_CR_DONNEE_ABSENTE;
    }
  }
  zoneOut = ecrireReponse(cr, [&](auto& reponse) {
    for (const auto& [titre, notes] : niveaux) {
      reponse.groupe(GROUPE_TEXTES);
      reponse.champ(titre);
      reponse.champ(notes);
    }
  });
  return cr;
}

// One group per class: the class, then its specialities.
CodeRetour FonctionsConsulter::CCAM_32a(ZoneSortie& zoneOut) {
  CodeRetour cr = NOX_CR_OK;
  const auto cle = lireCle<Validite::ACTE_EN_VIGUEUR, &L::rechercherClassesSpecialitesExecutant>(cr);
  const ListeCodes classes = demander<&L::rechercherClassesSpecialitesExecutant>(cr, cle);
  std::vector<ListeCodes> specialites;
  for (const Code& classe : classes) {
    if (cr == NOX_CR_OK) {
      cr = acces_->rechercherSpecialitesDansClasse(classe, dateReference_, specialites.emplace_back());
    }
  }
  zoneOut = ecrireReponse(cr, [&](auto& reponse) {
    for (unsigned short i = 0; i < classes.lireNombreElements(); ++i) {
      reponse.groupe(GROUPE_CODES);
      reponse.champ(classes[i]);
      ecrireChamps(reponse, specialites[i]);
    }
  });
  return cr;
}

// Whether an approval is required.
CodeRetour FonctionsConsulter::CCAM_40a(ZoneSortie& zoneOut) {
  CodeRetour cr = NOX_CR_OK;
  const auto cle = lireCle<Validite::ACTE_EN_VIGUEUR, &L::rechercherAgrementsRadio>(cr);
  const ListeCodes agrements = demander<&L::rechercherAgrementsRadio>(cr, cle);
  zoneOut = ecrireGroupe(cr, GROUPE_BOOLEEN, Booleen(!agrements.estVide()));
  return cr;
}

CodeRetour FonctionsConsulter::CCAM_42(ZoneSortie& zoneOut) {
  CodeRetour cr = NOX_CR_OK;
  const auto cle = lireCle<Validite::ACTE_EN_VIGUEUR, &L::rechercherCodeRegroupement>(cr);
  const Code code = demander<&L::rechercherCodeRegroupement>(cr, cle);
  const std::vector<Texte> libelle = demanderLibelles(cr, CODES_REGROUPEMENTS, enListe(code));
  const Date modification = demander<&L::rechercherDateModificationCodeRegroupement>(cr, cle);
  zoneOut = ecrireReponse(cr, [&](auto& reponse) {
    reponse.groupe(GROUPE_CODE_LIBELLE);
    reponse.champ(code);
    reponse.champ(libelle.front());
    ecrireDateModification(reponse, modification);
  });
  return cr;
}

// Whether the act is dental, then its number of teeth.
CodeRetour FonctionsConsulter::CCAM_43a(ZoneSortie& zoneOut) {
  CodeRetour cr = NOX_CR_OK;
  const auto cle = lireCle<Validite::ACTE_EN_VIGUEUR, &L::rechercherNombreDents>(cr);
  const Code categorie = demander<&L::rechercherCategorieMedicale>(cr, cle);
  ListeCodes dentaires;
  if (cr == NOX_CR_OK) {
    cr = acces_->rechercherValeursConcept(CONCEPT_CATEGORIES_DENTAIRES, dateReference_, dentaires);
  }
  const Code dents = demander<&L::rechercherNombreDents>(cr, cle);
  const Nombre nombre(reinterpret_cast<const byte*>(dents.lireTexte()), dents.lireLongueur());
  if (cr == NOX_CR_OK && !nombre.ok()) {
    Trace::erreur(lireModule(), "Nombre de dents (%s) incorrect", dents.lireTexte());
    cr = NOX_CR_DONNEE_ABSENTE;
  }
  zoneOut = ecrireReponse(cr, [&](auto& reponse) {
    reponse.groupe(GROUPE_BOOLEEN);
    reponse.champ(Booleen(dentaires.contient(categorie)));
    reponse.groupe(GROUPE_NOMBRE);
    reponse.champ(nombre);
  });
  return cr;
}

// Whether the reference date is a holiday, national or the fund's.
CodeRetour FonctionsConsulter::TB08_1(ZoneSortie& zoneOut) {
  CodeRetour cr = NOX_CR_OK;
  const auto cle = lireCle<Validite::SANS_CONTROLE, &L::rechercherJoursFeriesCaisse>(cr);
  const TypeListe<Date> nationaux = demander<&L::rechercherJoursFeriesNationaux>(cr, cle);
  const TypeListe<Date> locaux = demander<&L::rechercherJoursFeriesCaisse>(cr, cle);
  const Booleen ferie(nationaux.contient(dateReference_) || locaux.contient(dateReference_));
  zoneOut = ecrireGroupe(cr, GROUPE_BOOLEEN, ferie);
  return cr;
}

// Whether the second modifier is compatible with the first.
CodeRetour FonctionsConsulter::TB09_1(ZoneSortie& zoneOut) {
  CodeRetour cr = NOX_CR_OK;
  const auto cle = extraireCle<&L::rechercherModificateursCompatibles>(cr);
  const Code second = extraireCode(cr);
  verifierFinDonnees(cr);
  const ListeCodes compatibles = demander<&L::rechercherModificateursCompatibles>(cr, cle);
  zoneOut = ecrireGroupe(cr, GROUPE_BOOLEEN, Booleen(compatibles.contient(second)));
  return cr;
}

// The grouping codes, each followed by its date of creation when it was added locally.
CodeRetour FonctionsConsulter::TB13_1(ZoneSortie& zoneOut) {
  CodeRetour cr = NOX_CR_OK;
  const auto cle = lireCle<Validite::SANS_CONTROLE, &L::rechercherCodesRegroupement>(cr);
  const ListeCodes codes = demander<&L::rechercherCodesRegroupement>(cr, cle);
  const std::vector<Texte> textes = demanderLibelles(cr, CODES_REGROUPEMENTS, enListe(codes));
  std::vector<Date> creations(codes.lireNombreElements());
  for (unsigned short i = 0; cr == NOX_CR_OK && i < codes.lireNombreElements(); ++i) {
    cr = acces_->rechercherDateCreationCodeRegroupement(codes[i], creations[i]);
    if (cr == NOX_CR_CODE_INCONNU) {
      cr = NOX_CR_OK;  // a code of the reference itself
    }
  }
  zoneOut = ecrireReponse(cr, [&](auto& reponse) {
    for (unsigned short i = 0; i < codes.lireNombreElements(); ++i) {
      reponse.groupe(GROUPE_CODE_LIBELLE);
      reponse.champ(codes[i]);
      reponse.champ(textes[i]);
      ecrireDateModification(reponse, creations[i]);
    }
  });
  return cr;
}

CodeRetour FonctionsConsulter::TB20_1(ZoneSortie& zoneOut) {
  CodeRetour cr = NOX_CR_OK;
  verifierFinDonnees(cr);
  ListeCodes valeurs;
  if (cr == NOX_CR_OK) {
    cr = acces_->rechercherValeursConcept(CONCEPT_CONSULTABLE, dateReference_, valeurs);
  }
  return repondreLibelles(cr, zoneOut, CODES_ASSOCIATIONS, enListe(valeurs));
}

CodeRetour FonctionsConsulter::TB21_1(ZoneSortie& zoneOut) {
  CodeRetour cr = NOX_CR_OK;
  const auto cle = lireCle<Validite::SANS_CONTROLE, &L::rechercherMotsCles>(cr);
  const TypeListe<Texte> motsCles = demander<&L::rechercherMotsCles>(cr, cle);
  zoneOut = ecrireGroupe(cr, GROUPE_TEXTES, motsCles);
  return cr;
}

// --- Dispatch ---

struct FonctionsConsulter::Table {
  using F = FonctionsConsulter;
  static constexpr Validite ACTE = Validite::ACTE_EN_VIGUEUR;
  static constexpr Validite LIBRE = Validite::SANS_CONTROLE;

  // clang-format off
  static constexpr auto LIGNES = std::to_array<LigneAiguillage<Methode>>({
      {1, "CCAM_10", &F::valeur<ACTE, &L::rechercherConditionsGenerales>},
      {2, "CCAM_11", &F::valeur<ACTE, &L::rechercherNotesActe>},
      {3, "CCAM_12", &F::libelles<ACTE, &L::rechercherCategorieMedicale, CODES_CATEGORIES_MEDICALES>},
      {4, "CCAM_13", &F::valeur<ACTE, &L::rechercherActesCompatibles>},
      {5, "CCAM_14", &F::valeur<ACTE, &L::rechercherActesIncompatibles>},
      {6, "CCAM_15", &F::valeur<ACTE, &L::rechercherSexeCompatible>},
      {7, "CCAM_16a", &F::CCAM_16a},
      {8, "CCAM_18", &F::valeur<LIBRE, &L::rechercherDateCreation>},
      {9, "CCAM_19", &F::valeur<LIBRE, &L::rechercherDateFin>},
      {10, "CCAM_2", &F::libelles<ACTE, &L::rechercherActivites, CODES_ACTIVITES>},
      {11, "CCAM_20", &F::valeur<ACTE, &L::rechercherRMO>},
      {12, "CCAM_22", &F::libelles<ACTE, &L::rechercherAdmissionRemboursement, CODES_ADMISSIONS>},
      {13, "CCAM_24", &F::valeur<ACTE, &L::rechercherEntentePrealable>},
      {14, "CCAM_25", &F::libelles<ACTE, &L::rechercherCodesExonerationTM, CODES_EXONERATIONS>},
      {15, "CCAM_30_1", &F::libelles<ACTE, &L::rechercherNaturesAssurance, CODES_NATURES_ASSURANCE>},
      {16, "CCAM_32a", &F::CCAM_32a},
      {17, "CCAM_37", &F::valeurModifiable<ACTE, &L::rechercherPrixUnitaire,
                                           &L::rechercherDateModificationPrixUnitaire>},
      {18, "CCAM_39", &F::valeurModifiable<ACTE, &L::rechercherSupplementCharges,
                                           &L::rechercherDateModificationSupplementCharges>},
      {19, "CCAM_40a", &F::CCAM_40a},
      {20, "CCAM_41", &F::libelles<ACTE, &L::rechercherFraisDeplacement, CODES_FRAIS_DEPLACEMENT>},
      {21, "CCAM_42", &F::CCAM_42},
      {22, "CCAM_43a", &F::CCAM_43a},
      {23, "CCAM_44", &F::valeur<ACTE, &L::rechercherDentsIncompatibles>},
      {24, "CCAM_45", &F::valeur<ACTE, &L::rechercherAgeMinimal>},
      {25, "CCAM_46", &F::valeur<ACTE, &L::rechercherAgeMaximal>},
      {26, "CCAM_47a", &F::valeurModifiable<ACTE, &L::rechercherMajorationDOM,
                                            &L::rechercherDateModificationMajorationDOM>},
      {27, "CCAM_4a", &F::CCAM_4a},
      {28, "CCAM_5", &F::valeur<ACTE, &L::rechercherCodeStructure>},
      {29, "CCAM_6", &F::libelles<ACTE, &L::rechercherModificateursApplicables, CODES_MODIFICATEURS>},
      {30, "CCAM_7", &F::valeur<ACTE, &L::rechercherLibelleCourt>},
      {31, "CCAM_8", &F::valeur<ACTE, &L::rechercherLibelleLong>},
      {32, "CCAM_9", &F::libelles<ACTE, &L::rechercherTypeActe, CODES_TYPES_ACTE>},
      {33, "CCAM_9_1", &F::valeur<ACTE, &L::rechercherProcedures>},
      {34, "TB02_1", &F::valeurModifiable<LIBRE, &L::rechercherCoefficientAssociationNonPrevue,
                                          &L::rechercherDateModificationCoefficientAssociationNP>},
      {35, "TB02_2", &F::libelles<LIBRE, &L::rechercherCodesAssociationsNonPrevues, CODES_ASSOCIATIONS>},
      {36, "TB06_1", &F::valeur<LIBRE, &L::rechercherAgeMinimumModificateur>},
      {37, "TB06_2", &F::valeur<LIBRE, &L::rechercherAgeMaximumModificateur>},
      {38, "TB07_1", &F::valeurModifiable<LIBRE, &L::rechercherSeuilExoTM,
                                          &L::rechercherDateModificationSeuilExoTM>},
      {39, "TB08_1", &F::TB08_1},
      {40, "TB09_1", &F::TB09_1},
      {41, "TB10_1", &F::valeur<LIBRE, &L::rechercherTopControleCoherence>},
      {42, "TB10_2", &F::valeur<LIBRE, &L::rechercherTopPresenceMultiple>},
      {43, "TB11_1", &F::valeurModifiable<LIBRE, &L::rechercherForfaitModificateur,
                                          &L::rechercherDateModificationModificateur>},
      {44, "TB11_2", &F::valeurModifiable<LIBRE, &L::rechercherTauxModificateur,
                                          &L::rechercherDateModificationModificateur>},
      {45, "TB11_3", &F::libelles<LIBRE, &L::rechercherModificateurs, CODES_MODIFICATEURS>},
      {46, "TB12_1", &F::valeurModifiable<LIBRE, &L::rechercherForfaitNonConventionnes,
                                          &L::rechercherDateModificationNonConventionnes>},
      {47, "TB12_2", &F::valeurModifiable<LIBRE, &L::rechercherTauxNonConventionnes,
                                          &L::rechercherDateModificationNonConventionnes>},
      {48, "TB15_1", &F::valeur<LIBRE, &L::rechercherModificateurOC>},
      {49, "TB19_1", &F::valeur<LIBRE, &L::rechercherNombreModificateursTarifants>},
      {50, "TB21_1", &F::TB21_1},
      {84, "TB20_1", &F::TB20_1},
      {97, "CCAM_1", &F::CCAM_1},
      {98, "CCAM_3", &F::libelles<ACTE, &L::rechercherCodesExtensionDocumentaire, CODES_EXTENSIONS>},
      {99, "TB13_1", &F::TB13_1},
      {100, "TB15_2", &F::valeur<LIBRE, &L::rechercherNombreModificateursTransmissibles>},
  });
  // clang-format on
  static_assert(estOrdonnee(LIGNES));
};

CodeRetour FonctionsConsulter::executer(std::uint16_t numero, ZoneSortie& zoneOut) {
  static constexpr TextesFamille TEXTES = {TRACE_CONSULTATION, "FonctionsConsulter::%s", TRACE_CONSULTATION,
                                           "Identifiant (%d) non prévu dans les fonctions de consultation"};
  return executerLigne(*this, Table::LIGNES, TEXTES, numero, zoneOut);
}

}  // namespace noxlux
