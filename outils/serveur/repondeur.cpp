#include "serveur/repondeur.h"

#include <httplib.h>

#include <algorithm>
#include <map>
#include <new>
#include <sstream>

#include "compilateur/comparaison.h"
#include "compilateur/proches.h"
#include "noxlux/catalogue.h"
#include "noxlux/erreurs.h"
#include "noxlux/facture_json.h"
#include "noxlux/fiche.h"
#include "noxlux/ouverture.h"
#include "noxlux/presentation.h"
#include "noxlux/recherche.h"
#include "noxlux/requete.h"
#include "noxlux/sortie.h"
#include "referent/referentiel.h"
#include "serveur/fichiers_page.h"
#include "serveur/reponses.h"

namespace noxlux::serveur {

namespace {

using namespace noxlux::commande;
using Parametres = std::vector<std::string>;

constexpr const char* REFERENCE_SERVIE = "servie";
constexpr std::size_t REPONSE_MAX = 64U << 20U;
constexpr std::size_t MOTS_MAX = 300;  // bytes of a search: each word is compared with all those of the acts

// A request that was received whole, and its answer.
class Texte : public httplib::Stream {
 public:
  explicit Texte(const std::string& demande) : demande_(demande) {}
  using Stream::write;
  bool is_readable() const override { return lus_ < demande_.size(); }
  bool is_writable() const override { return true; }
  ssize_t read(char* octets, std::size_t nombre) override {
    const std::size_t n = demande_.copy(octets, nombre, lus_);
    lus_ += n;
    return static_cast<ssize_t>(n);
  }
  ssize_t write(const char* octets, std::size_t nombre) override {
    reponse_.append(octets, nombre);
    return static_cast<ssize_t>(nombre);
  }
  void get_remote_ip_and_port(std::string& /*ip*/, int& /*port*/) const override {}
  void get_local_ip_and_port(std::string& /*ip*/, int& /*port*/) const override {}
  socket_t socket() const override { return INVALID_SOCKET; }
  std::string reponse() && { return std::move(reponse_); }

 private:
  const std::string& demande_;
  std::size_t lus_ = 0;
  std::string reponse_;
};

// The status of an answer of the library that is no answer to the question.
int statutDe(unsigned short code) {
  switch (code) {
    case NOX_CR_CODE_INCONNU:
    case NOX_CR_PAS_D_HISTORIQUE:
    case NOX_CR_REGLE_CODE:
    case NOX_CR_REGLE_HISTORIQUE:
    case NOX_CR_RECHERCHE_VIDE:
    case NOX_CR_REGROUPEMENT_INCONNU:
      return 404;
    case NOX_CR_OCCUPE:
    case NOX_CR_NON_CHARGE:
    case NOX_CR_MEMOIRE:
    case NOX_CR_MEMOIRE_ZONE:
      return 503;
    default:
      return 400;
  }
}

// What was read, or what it resembles, without the brackets and signs of a sentence.
Json causeDe(const FauteJson& faute) {
  const std::string texte = faute.complement();
  const std::size_t debut = texte.find_first_not_of(" (;");
  const std::size_t fin = texte.find_last_not_of(')');
  return debut == std::string::npos ? Json() : Json(texte.substr(debut, fin - debut + 1));
}

// What an exception says to the one who asked.
Refus refusDe(std::exception_ptr exception) {
  try {
    std::rethrow_exception(std::move(exception));
  } catch (const Refus& refus) {
    return refus;
  } catch (const FauteJson& faute) {
    return {400, faute.what(), causeDe(faute)};
  } catch (const ErreurUsage& erreur) {
    return {400, erreur.what()};
  } catch (const Introuvable& erreur) {
    return {404, erreur.what(), nullptr, hexadecimal(NOX_CR_CODE_INCONNU)};
  } catch (const ErreurBibliotheque& erreur) {
    const Json dite = erreur.enJson();
    return {statutDe(erreur.code()), dite["erreur"], dite.value("cause", Json()), hexadecimal(erreur.code())};
  } catch (const std::bad_alloc&) {
    return {503, "mémoire insuffisante"};
  } catch (const std::exception& erreur) {
    return {503, "erreur inattendue", erreur.what()};
  }
}

// The only value of a parameter; empty when it was not given.
std::string parametre(const httplib::Request& demande, const std::string& nom) {
  if (demande.get_param_value_count(nom) > 1) {
    throw Refus{400, "le paramètre « " + nom + " » est donné plusieurs fois", nom};
  }
  return demande.get_param_value(nom);
}

void verifierParametres(const httplib::Request& demande, const Parametres& connus) {
  for (const auto& [nom, valeur] : demande.params) {
    if (std::find(connus.begin(), connus.end(), nom) == connus.end()) {
      throw Refus{400, "paramètre inconnu : " + nom + compilateur::vouliezVous(nom, connus), nom};
    }
  }
}

bool drapeau(const httplib::Request& demande, const std::string& nom) {
  const std::string valeur = parametre(demande, nom);
  if (valeur != "" && valeur != "0" && valeur != "1") {
    throw Refus{400, nom + " : 0 ou 1 est attendu", valeur};
  }
  return valeur == "1";
}

void repondreJson(httplib::Response& reponse, const Json& valeur) {
  reponse.set_content(texteJson(valeur, -1), JSON);
}

std::unique_ptr<compilateur::FichierReference> ouvrirSaine(const std::string& chemin) {
  auto fichier = ouvrirReference(chemin, NOM_FICHIER_REFERENCE);
  if (fichier->estModification() || !fichier->anomalie().empty()) {
    throw ErreurUsage("ce n'est pas une référence entière");
  }
  return fichier;
}

}  // namespace

class Repondeur::Routes : private httplib::Server {
 public:
  explicit Routes(const serveur::Options& options)
      : options_(options),
        bibliotheque_(options.reference),
        catalogue_(options.reference.fichierReference()),
        mots_(catalogue_) {
    httplib::Headers champs;
    champs.insert(CHAMPS_DE_SECURITE.begin(), CHAMPS_DE_SECURITE.end());
    set_default_headers(champs);
    for (const FichierPage& fichier : fichiersDeLaPage()) {
      Get(fichier.chemin, [&fichier](const httplib::Request&, httplib::Response& reponse) {
        reponse.set_content(fichier.contenu.data(), fichier.contenu.size(), fichier.type);
      });
    }
    Get("/actes", repondant(&Routes::rechercher));
    Get("/actes/([^/]+)", repondant(&Routes::acte));
    Get("/consulter/([^/]+)", repondant(&Routes::consulter));
    Get("/comparer", repondant(&Routes::comparer));
    Get("/versions", repondant(&Routes::versions));
    Post("/controler", repondant(&Routes::controler));
    set_error_handler([](const httplib::Request& demande, httplib::Response& reponse) {
      if (reponse.body.empty()) {
        const int statut = reponse.status == 404 ? 404 : 400;
        refuser(reponse, {statut,
                          statut == 404 ? "rien ne répond à " + demande.method + " à cette adresse"
                                        : "demande mal formée",
                          demande.path});
      }
    });
  }

  std::string repondre(const std::string& demande) {
    Texte texte(demande);
    bool ferme = false;
    process_request(texte, false, ferme, nullptr);
    return std::move(texte).reponse();
  }

 private:
  using Methode = void (Routes::*)(const httplib::Request&, httplib::Response&) const;

  static void refuser(httplib::Response& reponse, const Refus& refus) {
    reponse.status = refus.statut;
    repondreJson(reponse, corpsDeRefus(refus));
  }

  Handler repondant(Methode methode) {
    return [this, methode](const httplib::Request& demande, httplib::Response& reponse) {
      try {
        (this->*methode)(demande, reponse);
      } catch (...) {
        refuser(reponse, refusDe(std::current_exception()));
      }
    };
  }

  // GET /actes?q=
  void rechercher(const httplib::Request& demande, httplib::Response& reponse) const {
    verifierParametres(demande, {"q", "date", "chapitre", "prix", "limite"});
    CriteresRecherche criteres;
    criteres.texte = parametre(demande, "q");
    if (criteres.texte.find_first_not_of(' ') == std::string::npos) {
      throw Refus{400, "il faut des mots à chercher : /actes?q=fracture+fémur"};
    }
    if (criteres.texte.size() > MOTS_MAX) {
      throw Refus{400, "trop de mots à chercher", MOTS_MAX};
    }
    criteres.chapitre = parametre(demande, "chapitre");
    lirePrix(parametre(demande, "prix"), criteres);
    if (const std::string limite = parametre(demande, "limite"); !limite.empty()) {
      const std::optional<double> lue = lireNombre(limite);
      if (!lue || *lue < 0 || *lue > 1e6 || *lue != static_cast<double>(static_cast<long>(*lue))) {
        throw Refus{400, "limite : un nombre d'actes est attendu", limite};
      }
      criteres.limite = static_cast<std::size_t>(*lue);
    }
    repondreJson(reponse, rechercherActes(criteres, dateReference(parametre(demande, "date")), mots_));
  }

  // GET /actes/{code}
  void acte(const httplib::Request& demande, httplib::Response& reponse) const {
    verifierParametres(demande, {"date"});
    repondreJson(reponse,
                 ficheActe(demande.matches[1], dateReference(parametre(demande, "date")), catalogue_));
  }

  // GET /consulter/{identifiant}?champ=valeur
  void consulter(const httplib::Request& demande, httplib::Response& reponse) const {
    const FonctionDecrite& fonction = fonctionDe(demande.matches[1]);
    std::vector<std::string> champs;
    for (const auto& [nom, valeur] : demande.params) {
      if (nom != "date" || champsDe(fonction) == Parametres{"date"}) {
        champs.push_back(nom + "=" + valeur);
      }
    }
    std::string zone = construireZone(fonction, champs);
    const std::string date = dateReference(parametre(demande, "date"));
    repondreJson(reponse, rognerTextes(decoderZone(
                              appelerOuEchouer("NOX_ConsulterDonnee",
                                               [&](void** sortie, unsigned int* taille) {
                                                 return NOX_ConsulterDonnee(
                                                     fonction.nom.c_str(), date.c_str(), zone.data(),
                                                     static_cast<unsigned int>(zone.size()), sortie, taille);
                                               }),
                              true)));
  }

  static const FonctionDecrite& fonctionDe(const std::string& identifiant) {
    try {
      return trouverFonction("consultation", identifiant);
    } catch (const ErreurUsage& inconnue) {
      throw Refus{404, inconnue.what(), identifiant, hexadecimal(NOX_CR_IDENTIFIANT_INCONNU)};
    }
  }

  // POST /controler
  void controler(const httplib::Request& demande, httplib::Response& reponse) const {
    verifierParametres(demande, {"expliquer", "detail"});
    const bool expliquer = drapeau(demande, "expliquer");
    const std::string type = demande.get_header_value("Content-Type");
    if (type.find("ndjson") != std::string::npos || type.find("jsonl") != std::string::npos) {
      const Detail detail = expliquer                    ? Detail::ETAPES
                            : drapeau(demande, "detail") ? Detail::MONTANTS
                                                         : Detail::VERDICT;
      reponse.set_content(controlerLot(demande.body, detail), NDJSON);
    } else {
      const Json facture = lireFacture(demande.body, "$");
      repondreJson(reponse, controlerFacture(facture, expliquer ? Detail::ETAPES : Detail::MONTANTS));
    }
  }

  // One answer a line, in the order of the invoices; one that cannot be checked costs only itself.
  static std::string controlerLot(const std::string& corps, Detail detail) {
    std::string reponses;
    std::istringstream lignes(corps);
    for (std::string ligne; std::getline(lignes, ligne);) {
      if (ligne.find_first_not_of(" \t\r") == std::string::npos) {
        continue;
      }
      Json facture;
      Json reponse;
      try {
        facture = lireFacture(ligne, "$");
        reponse = controlerFacture(facture, detail);
      } catch (...) {
        const Refus refus = refusDe(std::current_exception());
        if (refus.statut == 503) {
          throw Refus(refus);
        }
        reponse = corpsDeRefus(refus);
        reporterSiennes(facture, reponse);
      }
      reponses += texteJson(reponse, -1);
      if (reponses.size() > REPONSE_MAX) {
        throw Refus{413, "la réponse serait trop grande : moins de factures à la fois", REPONSE_MAX};
      }
    }
    return reponses;
  }

  // GET /comparer?avant=&apres=
  void comparer(const httplib::Request& demande, httplib::Response& reponse) const {
    verifierParametres(demande, {"avant", "apres"});
    const auto avant = referenceNommee(parametre(demande, "avant"));
    const auto apres = referenceNommee(parametre(demande, "apres"));
    CodeRetour cr = NOX_CR_OK;
    const compilateur::JsonOrdonne ecarts = compilateur::comparer(*avant, *apres, cr);
    if (cr != NOX_CR_OK) {
      throw ErreurBibliotheque("comparer", cr);
    }
    repondreJson(reponse, clesCamel(ecarts));
  }

  // By its name: no path of the disk comes from a request.
  std::unique_ptr<compilateur::FichierReference> referenceNommee(const std::string& nom) const {
    if (nom.empty() || nom == REFERENCE_SERVIE) {
      return ouvrirSaine(options_.reference.fichierReference());
    }
    const auto trouvee = options_.autres.find(nom);
    if (trouvee == options_.autres.end()) {
      throw Refus{404, "pas de référence de ce nom" + compilateur::vouliezVous(nom, nomsDesReferences()),
                  nom};
    }
    return ouvrirSaine(trouvee->second);
  }

  std::vector<std::string> nomsDesReferences() const {
    std::vector<std::string> noms{REFERENCE_SERVIE};
    for (const auto& [nom, repertoire] : options_.autres) {
      noms.push_back(nom);
    }
    return noms;
  }

  // GET /versions
  void versions(const httplib::Request& demande, httplib::Response& reponse) const {
    verifierParametres(demande, {});
    const Json groupes = rognerTextes(decoderZone(
        appelerOuEchouer("NOX_LireVersion",
                         [](void** sortie, unsigned int* taille) { return NOX_LireVersion(sortie, taille); }),
        true));
    Json reference = Json::object();
    for (const Json& groupe : groupes) {
      reference.update(groupe["champs"]);
    }
    repondreJson(reponse, {{"noxlux", NOXLUX_VERSION_TEXTE},
                           {"reference", std::move(reference)},
                           {"actes", catalogue_.actes().size()},
                           {"references", nomsDesReferences()}});
  }

  const serveur::Options& options_;
  Bibliotheque bibliotheque_;
  commande::Catalogue catalogue_;
  MotsDesActes mots_;
};

Repondeur::Repondeur(const Options& options) : routes_(std::make_unique<Routes>(options)) {}
Repondeur::~Repondeur() = default;
std::string Repondeur::repondre(const std::string& demande) { return routes_->repondre(demande); }

}  // namespace noxlux::serveur
