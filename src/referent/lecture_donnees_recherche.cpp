// Menus, keywords and filters.
#include "referent/requete.h"

namespace noxlux {

CodeRetour LectureDonnees::rechercherMenuPere(std::uint32_t menu, std::uint32_t& pere) {
  return lireLigne(__func__, menu, &Arborescence::pere, pere);
}

CodeRetour LectureDonnees::rechercherNotesMenu(std::uint32_t menu, Texte& notes) {
  return lireLigne(__func__, menu, &Arborescence::notes, notes);
}

CodeRetour LectureDonnees::rechercherTitreMenu(std::uint32_t menu, Texte& titre) {
  return lireLigne(__func__, menu, &Arborescence::libelle, titre);
}

namespace {

// Loads the keywords on first use.
CodeRetour chercherMotCle(Referentiel& referentiel, const Texte& motCle, const MotCle*& ligne) {
  const CodeRetour cr = referentiel.assurerTable(MotCle::IDENTIFIANT);
  return cr == NOX_CR_OK ? chercherLigne(referentiel, motCle, ligne) : cr;
}

// Appends the text of each line, until one cannot be.
template <class L, class R>
CodeRetour ajouterTextes(const R& lignes, TexteVariable L::*champ, TypeListe<Texte>& textes,
                         FormatVerifie<const char*> ajout) {
  CodeRetour cr = NOX_CR_OK;
  for (const L& ligne : lignes) {
    Trace::ecrire(TRACE_CONSULTATION, ajout, (ligne.*champ).lireTexte());
    cr = textes.ajouterElement(Texte((ligne.*champ).vue()));
    if (cr != NOX_CR_OK) {
      break;
    }
  }
  return cr;
}

}  // namespace

CodeRetour LectureDonnees::rechercherActesIndexes(const Texte& motCle, unsigned long cadreRecherche,
                                                  ListeCodes& actes) {
  const auto corps = [&] {
    const MotCle* ligne = nullptr;
    actes.reinitialiser();
    CodeRetour cr = donnees().assurerTable(ActeIndexe::IDENTIFIANT);
    cr = cr == NOX_CR_OK ? chercherMotCle(donnees(), motCle, ligne) : cr;
    if (cr != NOX_CR_OK) {
      return cr;
    }
    for (const ActeIndexe& indexe : lignesDe<ActeIndexe>(donnees(), ligne->actes)) {
      if (cadreRecherche != 0 && (indexe.masque & cadreRecherche) == 0) {
        continue;
      }
      cr = ajouterCodes(std::span(&indexe.acte, 1), actes);
      if (cr != NOX_CR_OK) {
        return cr;
      }
      Trace::ecrire(TRACE_CONSULTATION, "Ajout du code acte indexe dans la liste en retour : %s",
                    actes[static_cast<unsigned short>(actes.lireNombreElements() - 1)].lireTexte());
    }
    return cr;
  };
  return requete(__func__, corps, Entree{"Mot cle recherche", motCle},
                 Entree{"Cadre de recherche", cadreRecherche});
}

CodeRetour LectureDonnees::rechercherMotsCles(TypeListe<Texte>& motsCles) {
  const auto corps = [&] {
    const CodeRetour cr = donnees().assurerTable(MotCle::IDENTIFIANT);
    if (cr != NOX_CR_OK) {
      return cr;
    }
    motsCles.reinitialiser();
    return ajouterTextes(donnees().lignes<MotCle>(), &MotCle::motCle, motsCles,
                         "Ajout du mot cle dans la liste en retour : %s");
  };
  return requete(__func__, corps);
}

CodeRetour LectureDonnees::rechercherSynonymes(const Texte& motCle, TypeListe<Texte>& synonymes) {
  const auto corps = [&] {
    const MotCle* ligne = nullptr;
    const CodeRetour cr = chercherMotCle(donnees(), motCle, ligne);
    if (cr != NOX_CR_OK) {
      return cr;
    }
    synonymes.reinitialiser();
    return ajouterTextes(lignesDe<Synonyme>(donnees(), ligne->synonymes), &Synonyme::texte, synonymes,
                         "Ajout du synonyme dans la liste en retour : %s");
  };
  return requete(__func__, corps, Entree{"Mot cle recherche", motCle});
}

CodeRetour LectureDonnees::rechercherCodesActes(ListeCodes& actes, const char* filtre) {
  const auto corps = [&]() -> CodeRetour {
    const std::string_view debut(filtre);
    actes.reinitialiser();
    if (debut.size() > sizeof(CodeActe)) {
      return NOX_CR_OK;
    }
    // The codes that begin with the filter are together: the index is sorted.
    const std::vector<Index>& index = donnees().lignes<Index>();
    const auto prefixe = [&](const Index& ligne) { return ligne.acte.entier().substr(0, debut.size()); };
    const std::span<const Index> trouves(std::ranges::lower_bound(index, debut, {}, prefixe),
                                         std::ranges::upper_bound(index, debut, {}, prefixe));
    if (trouves.size() > actes.lireCapacite()) {
      actes = ListeCodes(static_cast<unsigned short>(std::min<std::size_t>(trouves.size(), UINT16_MAX)));
    }
    return ajouterCodes(trouves, actes, &Index::acte);
  };
  return requete(__func__, corps, Entree<const char*>{"Filtre", filtre});
}

}  // namespace noxlux
