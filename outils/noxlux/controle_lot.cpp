#include "noxlux/controle_lot.h"

#include <unistd.h>

#include <iostream>
#include <memory>
#include <utility>

#include "noxlux/bilan_lot.h"
#include "noxlux/erreurs.h"
#include "noxlux/facture_json.h"
#include "noxlux/presentation.h"
#include "noxlux/progression.h"
#include "noxlux/sortie.h"
#include "noxlux/taches.h"

namespace noxlux::commande {

namespace {

Json repondre(FactureLue& lue, const OptionsLot& options) {
  Json reponse;
  try {
    lue.lire();
    if (!lue.faute.empty()) {
      throw ErreurUsage(lue.faute);
    }
    return options.profils != nullptr ? options.profils->repondre(lue.facture)
                                      : controlerFacture(lue.facture, options.detail);
  } catch (const ErreurBibliotheque& erreur) {
    reponse = erreur.enJson();
  } catch (const ErreurUsage& erreur) {
    reponse = {{"code", nullptr}, {"erreur", erreur.what()}};
  }
  reporterSiennes(lue.facture, reponse);
  return reponse;
}

// What becomes of the answers of a batch, in order.
class SortieLot {
 public:
  explicit SortieLot(const OptionsLot& options) : options_(options) {
    if (options.csv) {
      ecrireTitresCsv(std::cout);
    }
  }

  void prendre(const Json& facture, const Json& reponse, const std::string& fichier) {
    compte_.compter(reponse);
    if (options_.csv) {
      ecrireErreursCsv(std::cout, compte_.factures, facture, reponse, fichier);
    } else {
      std::cout << texteJson(reponse, -1);
    }
    if (!options_.rapport.empty()) {
      bilan_.compter(facture, reponse, fichier);
    }
  }
  // The same, of an answer written elsewhere already.
  void prendreEcrite(char sorte, std::string_view texte) {
    compte_.compter(sorte);
    std::cout << texte;
  }
  const CompteLot& compte() const { return compte_; }
  void finir() {
    std::cout.flush();
    if (!options_.rapport.empty()) {
      ecrireTout(options_.rapport, pageBilan(bilan_.valeur()));
    }
  }

 private:
  const OptionsLot& options_;
  CompteLot compte_;
  BilanLot bilan_;
};

// The answers of a batch, as invoices come: one after the other, or from several processes.
class ControleLot {
 public:
  virtual ~ControleLot() = default;
  virtual void prendre(FactureLue lue) = 0;
  // All that was taken is answered.
  virtual void finir() = 0;
};

class ControleEnOrdre final : public ControleLot {
 public:
  ControleEnOrdre(const OptionsLot& options, SortieLot& sortie) : options_(options), sortie_(sortie) {}
  void prendre(FactureLue lue) override {
    const Json reponse = repondre(lue, options_);
    sortie_.prendre(lue.facture, reponse, lue.fichier);
  }
  void finir() override {}

 private:
  const OptionsLot& options_;
  SortieLot& sortie_;
};

// Processes are given invoices as JSON. They answer the line to be written behind the sort of answer that it
// is; where CSV or a report is made of it, the invoice goes along.
class ControleEnTaches final : public ControleLot {
 public:
  ControleEnTaches(const OptionsLot& options, SortieLot& sortie)
      : options_(options),
        sortie_(sortie),
        taches_(options.taches,
                {[this](std::string_view demande) { return repondreA(demande); },
                 [this](std::string_view demande, const std::string& fin) { return excuser(demande, fin); },
                 [this](std::string_view reponse) { livrer(reponse); }}) {}
  void prendre(FactureLue lue) override {
    Json porte = {{"fichier", std::move(lue.fichier)}, {"faute", std::move(lue.faute)}};
    if (lue.texte.empty()) {
      porte["facture"] = std::move(lue.facture);
    }
    taches_.ajouter(joindre(porte, lue.texte));
  }
  void finir() override { taches_.finir(); }

 private:
  // What goes along on a line, then a text.
  static std::string joindre(const Json& porte, std::string_view texte) {
    return texteJson(porte, -1).append(texte);
  }
  static Json separer(std::string_view& message) {
    const std::size_t fin = message.find('\n');
    Json porte = Json::parse(message.substr(0, fin));
    message.remove_prefix(fin + 1);
    return porte;
  }
  static FactureLue factureDe(std::string_view demande) {
    Json porte = separer(demande);
    return {std::string(demande), std::move(porte["facture"]), porte["faute"].get<std::string>(),
            porte["fichier"].get<std::string>()};
  }

  bool enJson() const { return !options_.csv && options_.rapport.empty(); }
  std::string presenter(const FactureLue& lue, const Json& reponse) const {
    if (enJson()) {
      return CompteLot::sorte(reponse) + texteJson(reponse, -1);
    }
    return joindre({{"facture", lue.facture}, {"reponse", reponse}, {"fichier", lue.fichier}}, "");
  }
  std::string repondreA(std::string_view demande) const {
    FactureLue lue = factureDe(demande);
    const Json reponse = repondre(lue, options_);
    return presenter(lue, reponse);
  }
  std::string excuser(std::string_view demande, const std::string& fin) const {
    FactureLue lue = factureDe(demande);  // not read: that may be what ended the other
    Json reponse = {{"code", nullptr}, {"erreur", "le contrôle de cette facture s'est arrêté (" + fin + ")"}};
    reporterSiennes(lue.facture, reponse);
    return presenter(lue, reponse);
  }
  void livrer(std::string_view reponse) {
    if (enJson()) {
      sortie_.prendreEcrite(reponse.front(), reponse.substr(1));
    } else {
      const Json porte = separer(reponse);
      sortie_.prendre(porte["facture"], porte["reponse"], porte["fichier"].get<std::string>());
    }
  }

  const OptionsLot& options_;
  SortieLot& sortie_;
  Taches taches_;
};

std::unique_ptr<ControleLot> creerControle(const OptionsLot& options, SortieLot& sortie) {
  if (options.taches > 1) {
    return std::make_unique<ControleEnTaches>(options, sortie);
  }
  return std::make_unique<ControleEnOrdre>(options, sortie);
}

}  // namespace

CompteLot controlerLesFactures(LectureLot& lecture, const OptionsLot& options) {
  // Answers that scroll by on the terminal are their own progress.
  const bool barre = ::isatty(STDOUT_FILENO) != 1;
  SortieLot sortie(options);
  {
    const std::unique_ptr<ControleLot> controle = creerControle(options, sortie);
    Progression progression;
    for (FactureLue lue; lecture.prochaine(lue);) {
      controle->prendre(std::move(lue));
      if (barre) {
        const bool connu = lecture.octetsEnTout() != 0;
        progression.montrer("contrôle des factures", connu ? lecture.octetsLus() : sortie.compte().factures,
                            lecture.octetsEnTout());
      }
      if (lecture.attend()) {
        controle->finir();
        std::cout.flush();  // who writes one invoice at a time waits for its answer
      }
    }
    controle->finir();
  }
  sortie.finir();
  return sortie.compte();
}

}  // namespace noxlux::commande
