// Queries on the zone descriptors.
#include "referent/requete.h"

namespace noxlux {

namespace {

template <class L>
CodeRetour compterLignes(const char* methode, const Referentiel& referentiel, std::uint16_t& nombre) {
  const auto corps = [&]() -> CodeRetour {
    nombre = static_cast<std::uint16_t>(std::min<std::size_t>(referentiel.lignes<L>().size(), UINT16_MAX));
    return NOX_CR_OK;
  };
  return requete(methode, corps);
}

template <class R>
auto* element(R&& lignes, std::size_t position) {
  return position < lignes.size() ? &lignes[position] : nullptr;
}

constexpr FormatVerifie<> GROUPE_HORS_TABLE = "position du groupe passee en parametre hors de la table";
constexpr FormatVerifie<> SUPER_GROUPE_HORS_TABLE =
    "position du super-groupe passee en parametre hors de la table";

}  // namespace

CodeRetour LectureDonnees::rechercherNombreGroupes(std::uint16_t& nombre) {
  return compterLignes<DescriptifGroupe>(__func__, donnees(), nombre);
}

CodeRetour LectureDonnees::rechercherNombreSuperGroupes(std::uint16_t& nombre) {
  return compterLignes<DescriptifSuperGroupe>(__func__, donnees(), nombre);
}

CodeRetour LectureDonnees::rechercherDescriptifSuperGroupe(std::uint16_t position, std::uint16_t& numero,
                                                           Texte& nom, Code& codeFonction,
                                                           std::uint16_t& nombreFils) {
  const auto corps = [&]() -> CodeRetour {
    const auto* descriptif = element(donnees().lignes<DescriptifSuperGroupe>(), position);
    if (descriptif == nullptr) {
      return refuser(NOX_CR_CODE_INCONNU, SUPER_GROUPE_HORS_TABLE);
    }
    nom = Texte(descriptif->nom.vue());
    copier(descriptif->codeFonction, codeFonction);
    numero = descriptif->numero;
    nombreFils = descriptif->fils.nombre;
    return NOX_CR_OK;
  };
  return requete(__func__, corps, Entree{"Position du super-groupe", position});
}

CodeRetour LectureDonnees::rechercherDescriptifGroupe(std::uint16_t position, std::uint16_t& numero,
                                                      std::uint16_t& nombreChamps) {
  const auto corps = [&]() -> CodeRetour {
    const auto* descriptif = element(donnees().lignes<DescriptifGroupe>(), position);
    if (descriptif == nullptr) {
      return refuser(NOX_CR_CODE_INCONNU, GROUPE_HORS_TABLE);
    }
    numero = descriptif->numero;
    nombreChamps = descriptif->listeChamps.nombre;
    return NOX_CR_OK;
  };
  return requete(__func__, corps, Entree{"Position du groupe", position});
}

CodeRetour LectureDonnees::rechercherDescriptifChamp(std::uint16_t groupe, std::uint16_t champ, char& format,
                                                     char& type, std::uint16_t& tailleMin,
                                                     std::uint16_t& tailleMax, ListeCodes& valeurs) {
  const auto corps = [&]() -> CodeRetour {
    const auto* descriptif = element(donnees().lignes<DescriptifGroupe>(), groupe);
    if (descriptif == nullptr) {
      return refuser(NOX_CR_CODE_INCONNU, GROUPE_HORS_TABLE);
    }
    const auto* description = element(lignesDe<DescriptifChamp>(donnees(), descriptif->listeChamps), champ);
    if (description == nullptr) {
      return refuser(NOX_CR_CODE_INCONNU,
                     "position du champ, passee en parametre, superieure au nombre de champs du groupe");
    }
    const CodeRetour cr = copierCodes(lignesDe<ValeurAutorisee>(donnees(), description->valeurs), valeurs,
                                      &ValeurAutorisee::valeur);
    if (cr == NOX_CR_OK) {
      format = description->format;
      type = description->type;
      tailleMin = description->tailleMin;
      tailleMax = description->tailleMax;
    }
    return cr;
  };
  return requete(__func__, corps, Entree{"Position du groupe", groupe}, Entree{"Position du champ", champ});
}

CodeRetour LectureDonnees::rechercherDescriptifFils(std::uint16_t superGroupe, std::uint16_t fils,
                                                    std::uint16_t& positionSuperGroupe,
                                                    std::uint16_t& positionGroupe, std::uint16_t& minimum,
                                                    std::uint16_t& maximum) {
  const auto corps = [&]() -> CodeRetour {
    const auto* descriptif = element(donnees().lignes<DescriptifSuperGroupe>(), superGroupe);
    if (descriptif == nullptr) {
      return refuser(NOX_CR_CODE_INCONNU, SUPER_GROUPE_HORS_TABLE);
    }
    const auto* description = element(lignesDe<FilsSuperGroupe>(donnees(), descriptif->fils), fils);
    if (description == nullptr) {
      return refuser(NOX_CR_CODE_INCONNU,
                     "position du fils, passee en parametre, superieure au nombre de fils du Super-groupe");
    }
    positionSuperGroupe = description->superGroupe;
    positionGroupe = description->groupe;
    minimum = description->minimum;
    maximum = description->maximum;
    return NOX_CR_OK;
  };
  return requete(__func__, corps, Entree{"Position du super-groupe", superGroupe},
                 Entree{"Position du fils", fils});
}

}  // namespace noxlux
