// Entry points that search acts.
#include <algorithm>
#include <string_view>

#include "interapp/controleur_parametres.h"
#include "interapp/reponse.h"
#include "nox_commun.h"

using namespace noxlux;

namespace {

constexpr std::uint16_t GROUPE_ACTES = 3000;
constexpr std::size_t LONGUEUR_ACTE = 13;
constexpr unsigned short CAPACITE_ACTES = 8000;
constexpr std::size_t LONGUEUR_MAX_FILTRE = 4;

// The number of acts, then each act, padded with spaces.
ZoneSortie ecrireActes(CodeRetour& cr, const ListeCodes& actes) {
  return ecrireReponse(cr, [&](auto& reponse) {
    reponse.groupe(GROUPE_ACTES);
    reponse.champ(Nombre(actes.lireNombreElements()));
    for (const Code& acte : actes) {
      std::string texte(acte.vue());
      texte.resize(std::max(texte.size(), LONGUEUR_ACTE), ' ');
      reponse.champ(Texte(texte));
    }
  });
}

CodeRetour remettreActes(const Requete& requete, const ListeCodes& actes, const SortieAppelant& sortie) {
  CodeRetour cr = requete.code();
  ZoneSortie reponse = ecrireActes(cr, actes);
  return cr == NOX_CR_OK ? sortie.remettre(reponse) : cr;
}

CodeRetour verifierFiltre(const char* filtre) {
  const CodeRetour cr = ControleurParametres::verifierChaine(filtre, false);
  if (cr != NOX_CR_OK) {
    return cr;
  }
  const std::string_view lettres = filtre;
  const bool capitales = std::ranges::all_of(lettres, [](char c) { return c >= 'A' && c <= 'Z'; });
  const bool accepte = lettres.size() <= LONGUEUR_MAX_FILTRE && capitales;
  return accepte ? NOX_CR_OK : NOX_CR_PARAMETRE_ENTREE;
}

CodeRetour rechercherMotCle(LectureDonnees& lecture, const char* motCle, unsigned long cadreRecherche,
                            ListeCodes& actes) {
  constexpr unsigned long TOUS_LES_CADRES = 0xFFFFFFFF;
  Texte canonique{std::string_view(motCle)};
  canonique.transformerFormeCanonique(true);
  if (!canonique.estRenseigne()) {
    Trace::erreur(TRACE_CONSULTATION, "Mot clé canonique vide");
    return NOX_CR_PARAMETRE_ENTREE;
  }
  const CodeRetour cr = lecture.rechercherActesIndexes(
      canonique, cadreRecherche == 0 ? TOUS_LES_CADRES : cadreRecherche, actes);
  if (cr == NOX_CR_OK && actes.estVide()) {
    Trace::erreur(TRACE_CONSULTATION, "Aucun code acte ne correspond au mot clé %s.", motCle);
    return NOX_CR_RECHERCHE_VIDE;
  }
  return cr;
}

CodeRetour rechercherFiltre(LectureDonnees& lecture, const char* filtre, ListeCodes& actes) {
  const CodeRetour cr = lecture.rechercherCodesActes(actes, filtre);
  if (cr == NOX_CR_OK && actes.estVide()) {
    Trace::erreur(TRACE_CONSULTATION, "aucun code acte ne correspond au filtre %s.", filtre);
    return NOX_CR_RECHERCHE_VIDE;
  }
  return cr;
}

}  // namespace

unsigned short NOX_RechercherParMotCle(const char* motCle, unsigned long cadreRecherche, void** zoneOut,
                                       unsigned int* tailleZoneOut) {
  Trace::debutService("NOX_RechercherParMotCle : motCle = %s, cadreRecherche = %lu", affichable(motCle),
                      cadreRecherche);
  const SortieAppelant sortie(zoneOut, tailleZoneOut);
  return rendreService(TRACE_CONSULTATION, [&] {
    ListeCodes actes;
    Requete requete(NatureAcces::LECTURE);
    requete.verifierIdentifiant(motCle).verifierSortie(sortie).lire(
        [&](LectureDonnees& lecture) { return rechercherMotCle(lecture, motCle, cadreRecherche, actes); });
    return remettreActes(requete, actes, sortie);
  });
}

unsigned short NOX_RechercherParFiltre(const char* filtre, void** zoneOut, unsigned int* tailleZoneOut) {
  Trace::debutService("NOX_RechercherParFiltre : filtre = %s", affichable(filtre));
  const SortieAppelant sortie(zoneOut, tailleZoneOut);
  return rendreService(TRACE_CONSULTATION, [&] {
    ListeCodes actes(CAPACITE_ACTES);
    Requete requete(NatureAcces::LECTURE);
    requete.suivre([&] { return verifierFiltre(filtre); })
        .verifierSortie(sortie)
        .lire([&](LectureDonnees& lecture) { return rechercherFiltre(lecture, filtre, actes); });
    return remettreActes(requete, actes, sortie);
  });
}
