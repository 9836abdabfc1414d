#include "noxlux/demandes.h"

#include "compilateur/transcodage.h"
#include "noxlux/presentation.h"

namespace noxlux::commande {

Json Consultation::champ(const char* nom) const {
  for (const Json& groupe : groupes) {
    if (groupe.contains(nom)) {
      return groupe[nom];
    }
  }
  return nullptr;
}

Consultation consulter(const char* identifiant, const Json& champs, const std::string& date) {
  const DescriptionZones& socle = DescriptionZones::socle();
  const FonctionDecrite* const fonction = socle.fonction("consultation", identifiant);
  Consultation consultation;
  if (fonction == nullptr) {
    consultation.code = NOX_CR_IDENTIFIANT_INCONNU;
    return consultation;
  }
  std::string zone;
  for (const FilsDecrit& fils : socle.groupesEntree(*fonction)) {
    const GroupeDecrit& groupe = socle.groupeEntree(fils.groupe);
    Json valeurs = Json::object();
    for (const ChampDecrit& champ : groupe.champs) {
      if (champs.contains(champ.nom)) {
        valeurs[champ.nom] = champs[champ.nom];
      }
    }
    zone += encoderGroupe(groupe, valeurs, RACINE);
  }
  const Reponse reponse = appeler([&](void** sortie, unsigned int* taille) {
    return NOX_ConsulterDonnee(fonction->nom.c_str(), date.c_str(), zone.data(),
                               static_cast<unsigned int>(zone.size()), sortie, taille);
  });
  consultation.code = reponse.code;
  for (Json& groupe : decoderZone(reponse.zone, true)) {
    consultation.groupes.push_back(rognerTextes(std::move(groupe["champs"])));
  }
  return consultation;
}

namespace {

// The codes that a search answers, wherever its groups hold them.
std::vector<std::string> codesDe(const Reponse& reponse) {
  std::vector<std::string> codes;
  for (const Json& groupe : decoderZone(reponse.zone, true)) {
    for (const Json& champ : groupe["champs"]) {
      for (const Json& code : champ.is_array() ? champ : Json::array({champ})) {
        if (code.is_string()) {
          codes.push_back(rogner(code.get<std::string>()));
        }
      }
    }
  }
  return codes;
}

}  // namespace

std::vector<std::string> actesCommencantPar(const std::string& debut) {
  return codesDe(appeler([&](void** sortie, unsigned int* taille) {
    return NOX_RechercherParFiltre(debut.c_str(), sortie, taille);
  }));
}

std::vector<std::string> actesDuMotCle(const std::string& mot) {
  const compilateur::TexteLatin1 latin1 = compilateur::versLatin1(mot);
  return codesDe(appeler([&](void** sortie, unsigned int* taille) {
    return NOX_RechercherParMotCle(latin1.texte.c_str(), 0, sortie, taille);
  }));
}

}  // namespace noxlux::commande
