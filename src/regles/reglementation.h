// The regulation rules. A rule reads the reference and, on a violation, says so to the finding it is given;
// it answers a code only when the reference could not be read. A question rule answers a Booleen. What each
// rule asks is told in docs/rules.md; the sequences that call them belong to the invoice, its lines and its
// associations, which name them and run them (deroulement.h).
#ifndef NOXLUX_REGLES_REGLEMENTATION_H
#define NOXLUX_REGLES_REGLEMENTATION_H

#include <string>
#include <vector>

#include "regles/concepts.h"
#include "regles/facture.h"
#include "regles/regles.h"
#include "types/booleen.h"

namespace noxlux {

class RelationsActes;

class Reglementation final : public Regles {
 public:
  static constexpr const char* NOM = "Reglementation";
  // Answers of appliquerCCompatibilite.
  static constexpr const char* COMPATIBLES = "C";
  static constexpr const char* INCOMPATIBLES = "I";
  static constexpr const char* MEME_PROCEDURE_COMPATIBLES = "P";    // with unforeseen-association codes
  static constexpr const char* MEME_PROCEDURE_INCOMPATIBLES = "Q";  // one act is the procedure of the other
  // How many teeth a line holds, and C_Dent answers.
  static constexpr unsigned short MAX_DENTS = 16;

  using Regles::Regles;

  // Lines that are not CCAM. PROD690A REQUIRES: a travel line attached to a CCAM line.
  CodeRetour appliquerProd170(const LigneActe& ligne, Constat& constat);
  CodeRetour appliquerProd211(const LigneActe& ligne, Constat& constat);
  CodeRetour appliquerProd690A(const LigneActe& ligne, Constat& constat);

  // CCAM lines: the act and its dates. REQUIRES, for all the rules of a line: factureParent != null
  CodeRetour appliquerProd500(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd510(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd511A(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd890(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd780(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd760(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd765(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd530(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd540(const LigneCCAM& ligne, Constat& constat);
  // Who executes, and under which grouping code.
  CodeRetour appliquerProd220(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd798(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd670(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd895A(const LigneCCAM& ligne, Constat& constat);
  // Modifiers.
  CodeRetour appliquerProd136A(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd136B(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd190(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd550(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd555(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd798A(const LigneCCAM& ligne, Constat& constat);
  // Ages and teeth. PROD696 and PROD695 are questions.
  CodeRetour appliquerProd696(const LigneCCAM& ligne, Booleen& resultat);
  CodeRetour appliquerProd720(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd730(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd695(const LigneCCAM& ligne, Booleen& resultat);
  CodeRetour appliquerProd700(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd702(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd710(const LigneCCAM& ligne, Constat& constat);

  // The line among those of its date. REQUIRES: seance != null. PROD580A is a question.
  CodeRetour appliquerProd580A(const LigneCCAM& ligne, Booleen& resultat);
  CodeRetour appliquerProd580(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd600(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd240(const LigneCCAM& ligne, Constat& constat);

  // Associations. These, and PROD240, give the numbers of the lines concerned to the error.
  CodeRetour appliquerProd590(const AssociationCCAM& association, Constat& constat);
  CodeRetour appliquerProd137(const LigneCCAM& ligne, Constat& constat);
  CodeRetour appliquerProd648(const AssociationCCAM& association, Constat& constat);
  CodeRetour appliquerProd649(const AssociationCCAM& association, Constat& constat);
  CodeRetour appliquerProd650(const AssociationCCAM& association, Constat& constat);
  CodeRetour appliquerProd653(const AssociationCCAM& association, Constat& constat);
  CodeRetour appliquerProd654(const AssociationCCAM& association, Constat& constat);

  // Single questions of the data control.
  CodeRetour appliquerCAge1(const Date& dateNaissance, const Code& modificateur, const Date& date,
                            Booleen& resultat);
  CodeRetour appliquerCAge2(const Date& dateNaissance, const Code& acte, const Code& activite,
                            const Code& phase, const Date& date, Booleen& resultat);
  CodeRetour appliquerCAssurance(const Code& natureAssurance, const Code& acte, const Date& date,
                                 Booleen& resultat);
  CodeRetour appliquerCCcam(const Code& specialite, const Code& prestation, const Date& date,
                            Booleen& resultat);
  CodeRetour appliquerCExecutant(const Code& specialite, const Code& acte, const Code& activite,
                                 const Date& date, Booleen& resultat);
  CodeRetour appliquerCRadio(const Code& agrementRadio, const Code& acte, const Code& activite,
                             const Date& date, Booleen& resultat);

  // Single rules. One answer per tooth, true when it may be treated.
  CodeRetour appliquerCDent(const Code& acte, const Code& activite, const Code& phase, const Date& date,
                            const ListeCodes& dents, TypeListe<Booleen>& resultats);
  // `compatibilite` becomes one of the four answers above, `procedure` the procedure that both acts belong to
  // (empty when there is none).
  CodeRetour appliquerCCompatibilite(const Code& acte1, const Code& activite1, const Code& numeroPS1,
                                     const Code& acte2, const Code& activite2, const Code& numeroPS2,
                                     const Date& date, Code& compatibilite, Code& procedure);
  // Sets the association's type. 0xD112, the type left absent, when two of its acts are incompatible: the
  // answers of the other associations stand.
  CodeRetour appliquerCAssociation(AssociationCCAM& association);

  // The codes in one text, separated by ", ".
  static std::string listerElements(const ListeCodes& codes);

 private:
  CodeRetour verifierPrestation(const LigneActe& ligne, Constat& constat);
  enum class Rang { TARIFANTS, AU_DELA };
  CodeRetour chercherModificateurInconnu(const LigneCCAM& ligne, Rang rang, Constat& constat);
  // Whether an age keeps within the limits of a modifier; the code of the query when it has none at the date.
  CodeRetour verifierAgeModificateur(const Periode& age, const Code& modificateur, const Date& date,
                                     bool& respecte);
  CodeRetour verifierNonRembourse(const LigneCCAM& ligne, Concept admissions, Constat& constat);
  // Whether an age keeps within a limit of the phase; no limit is kept by all ages.
  using VerificationAge = CodeRetour (Reglementation::*)(const Periode& age, const Code& acte,
                                                         const Code& activite, const Code& phase,
                                                         Periode& limite, bool& respecte);
  CodeRetour verifierAgeMinimal(const Periode& age, const Code& acte, const Code& activite, const Code& phase,
                                Periode& limite, bool& respecte);
  CodeRetour verifierAgeMaximal(const Periode& age, const Code& acte, const Code& activite, const Code& phase,
                                Periode& limite, bool& respecte);
  CodeRetour verifierAgeLigne(const LigneCCAM& ligne, VerificationAge verifier, Constat& constat);
  CodeRetour lireNombreDents(const LigneCCAM& ligne, std::int32_t& nombre);
  CodeRetour lireDentsIncompatibles(const Code& acte, const Code& activite, const Code& phase,
                                    ListeCodes& dents);
  CodeRetour verifierNatureAssurance(const Code& natureAssurance, const Code& acte, bool& admise);
  CodeRetour verifierObligationCodage(const Code& specialite, const Code& prestation, const Date& date,
                                      bool& obligatoire);
  CodeRetour verifierExecutant(const Code& specialite, const Code& acte, const Code& activite,
                               const Date& date, bool& admis);
  // Whether a professional's approval is one of those required; none may be.
  static bool suffit(const Code& agrementRadio, const ListeCodes& requis);
  // Whether an age can be told: an act before birth is the matter of PROD511A.
  static bool aUnAge(const Date& dateNaissance, const Date& date);

  // Raises an association rule for the lines, by position, that `garder` keeps.
  template <class Garder>
  CodeRetour leverPour(const AssociationCCAM& association, ArgumentsLibelle arguments, Garder garder,
                       Constat& constat);
  CodeRetour leverProcedure(const AssociationCCAM& association, std::size_t i, std::size_t j,
                            const Code& procedure, Constat& constat);
  CodeRetour estIncompatible(const Code& acte1, const Code& acte2, const Date& date, bool& incompatible);
  CodeRetour lireEnSus(const AssociationCCAM& association, const RelationsActes& relations,
                       std::vector<bool>& enSus, bool& lesDeux);
  CodeRetour gardeLePrixPlein(const LigneCCAM& ligne, bool& plein);
  CodeRetour lireToutesLesRelations(RelationsActes& relations);
  static bool appellentUnCode(const RelationsActes& relations, std::size_t i, std::size_t j);

  // One side of a comparison of two acts.
  struct ActeCompare {
    const Code* acte = nullptr;
    const Code* activite = nullptr;
    const Code* numeroPS = nullptr;
    ListeCodes incompatibles;
    ListeCodes procedures;
  };
  CodeRetour lireActeCompare(const Code& acte, const Code& activite, const Code& numeroPS, const Date& date,
                             ActeCompare& compare);
  // The answer of appliquerCCompatibilite; estPrevue(prevue) is asked of acts of one procedure.
  template <class EstPrevue>
  CodeRetour comparer(const ActeCompare& a, const ActeCompare& b, EstPrevue estPrevue, Code& compatibilite,
                      Code& procedure);
  // Whether one of two acts lists the other among those that go with it.
  CodeRetour sontPrevus(const ActeCompare& a, const ActeCompare& b, const Date& date, bool& prevus);
  // 0xD112 for a pair that may not be associated.
  CodeRetour comparerPaire(const ActeCompare& a, const ActeCompare& b, bool prevus, const Date& date);
  CodeRetour comparerPaires(const AssociationCCAM& association, bool& prevue);
  void tracerCategories(const AssociationCCAM& association);
};

}  // namespace noxlux

#endif
