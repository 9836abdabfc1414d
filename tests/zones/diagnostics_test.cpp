// What the objects of a request print of themselves, and what they tell the trace.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "basics/trace.h"
#include "ctrl_in/controleur_zone.h"
#include "octets_essai.h"
#include "regles/erreur.h"
#include "types/booleen.h"
#include "types/date.h"
#include "types/decimal.h"
#include "types/liste_codes.h"

namespace noxlux {
namespace {

// What `ecrire` writes into a file of memory.
template <class F>
std::string ecritPar(F&& ecrire) {
  char* texte = nullptr;
  std::size_t taille = 0;
  std::FILE* const sortie = open_memstream(&texte, &taille);
  ecrire(sortie);
  std::fclose(sortie);
  std::string resultat(texte, taille);
  std::free(texte);
  return resultat;
}

// The lines that `raconter` sends to the trace, without the start and end of its day.
template <class F>
std::string tracePar(unsigned short module, unsigned char niveau, F&& raconter) {
  const std::string nom = testing::TempDir() + "/diagnostics.trace";
  EXPECT_EQ(Trace::activer(nom.c_str(), "w", module, niveau), NOX_CR_OK);
  raconter();
  EXPECT_EQ(Trace::activer(nom.c_str(), "w", module, 0), NOX_CR_OK);
  std::string texte;
  std::FILE* const fichier = std::fopen(nom.c_str(), "r");
  for (int c = 0; (c = std::fgetc(fichier)) != EOF;) {
    texte += static_cast<char>(c);
  }
  std::fclose(fichier);
  std::remove(nom.c_str());
  const std::string debut = "### DEBUT TRACE ###\n";
  const std::string fin = "### FIN TRACE ###\n\n";
  EXPECT_TRUE(texte.starts_with(debut) && texte.ends_with(fin)) << texte;
  return texte.substr(debut.size(), texte.size() - debut.size() - fin.size());
}

template <class T>
void verifier(const T& valeur, const std::string& affiche, const std::string& trace) {
  EXPECT_EQ(ecritPar([&](std::FILE* sortie) { valeur.afficher(sortie); }), affiche);
  EXPECT_EQ(tracePar(TRACE_CONTROLE, 4, [&] { valeur.dump(TRACE_CONTROLE); }), trace);
}

TEST(Diagnostics, valeurs) {
  verifier(Booleen(true), "vrai", "  booleen = vrai\n");
  verifier(Texte("caf\xE9"), "caf\xE9", "  texte = caf\xE9\n");
  verifier(Texte(std::string(5000, 'k')), std::string(5000, 'k'),
           "  texte = " + std::string(5000, 'k') + "\n");
  verifier(Date(2024, 2, 9), "09/02/2024", "  date = 09/02/2024\n");
  verifier(Periode(2, 10), "2A 10J", "  p\xE9riode = 2A 10J\n");
  verifier(Periode(2, 0), "2A", "  p\xE9riode = 2A\n");
  verifier(Periode(0, 10), "10J", "  p\xE9riode = 10J\n");
  verifier(Nombre(42), "42", "  nombre = 42\n");
  verifier(Montant(12.5), "12.50E", "  montant = 12.50E\n");
  verifier(Coefficient(0.25), "0.250000", "  coefficient = 0.250000\n");
  ListeCodes codes;
  EXPECT_EQ(codes.ajouterElement(Code("A1")), NOX_CR_OK);
  verifier(codes, "A1", "{ TypeListe::dump : \n    code = A1\n  \n}\n");
}

TEST(Diagnostics, erreur) {
  TypeListe<Nombre> lignes;
  EXPECT_EQ(lignes.ajouterElement(Nombre(3)), NOX_CR_OK);
  verifier(Erreur("PROD550", 'O', lignes, '1', "principal", "secondaire"),
           "Erreur PROD550 (O) : \n   prestations[i] = 3 \n    principal\n    secondaire\n",
           "{ Erreur::dump\n  PROD550 (Outre-passable : O ) :\n  1 prestations : \n  prestations[0] = 3\n"
           "  indicateur de forcage = 1\n  principal\n  secondaire\n}\n");
}

TEST(Diagnostics, descriptionDUneZone) {
  Groupe groupe(3010, 1);
  ListeCodes valeurs;
  EXPECT_EQ(valeurs.ajouterElement(Code("A1")), NOX_CR_OK);
  EXPECT_EQ(groupe.ajouterChamp(Champ::Format::Alphanumerique, Champ::Type::Code, 1, 13, valeurs), NOX_CR_OK);
  auto fils = std::make_unique<SuperGroupe>(std::uint16_t{2}, "Fils", std::uint16_t{1});
  EXPECT_EQ(fils->ajouterFils(&groupe, 0, 1), NOX_CR_OK);
  SuperGroupe racine(1, "Racine", 1);
  EXPECT_EQ(racine.ajouterFils(std::move(fils), 1, 9), NOX_CR_OK);
  EXPECT_EQ(tracePar(TRACE_PARAMETRES, 4, [&] { racine.dump(); }),
            "{ SuperGroupe::dump : numero = 1, nom = Racine, nbFils = 1, maxFils = 1\n  min = 1, max = 9\n"
            "  { SuperGroupe::dump : numero = 2, nom = Fils, nbFils = 1, maxFils = 1\n    min = 0, max = 1\n"
            "    { Groupe::dump : identifiant = 3010, nbChamps = 1\n"
            "      format = A, type = Code, tailleMin = 1, tailleMax = 13\n"
            "        valeur autoris\xE9"
            "e = A1\n      \n    }\n    \n  }\n  \n}\n");
  EXPECT_EQ(racine.ajouterFils(&groupe, 0, 1), NOX_CR_INCOHERENCE);
}

}  // namespace
}  // namespace noxlux
