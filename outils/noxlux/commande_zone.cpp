// noxlux zone: data zones to and from JSON.
#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <sstream>

#include "noxlux/commandes.h"
#include "noxlux/erreurs.h"
#include "noxlux/sortie.h"
#include "noxlux/zone_json.h"

namespace noxlux::commande {

namespace {

struct OptionsZone {
  std::string fichier = "-";
  std::string sortie = "-";
  bool hexadecimal = false;
  bool reponse = false;
};

std::string depuisHexadecimal(const std::string& texte) {
  std::string octets;
  int moitie = -1;
  for (const char c : texte) {
    if (std::isspace(static_cast<unsigned char>(c)) != 0) {
      continue;
    }
    const int chiffre = std::isxdigit(static_cast<unsigned char>(c)) == 0 ? -1
                        : c <= '9'                                        ? c - '0'
                                                                          : (c | 0x20) - 'a' + 10;
    if (chiffre < 0) {
      throw ErreurUsage(std::string("caractère non hexadécimal : ") + c);
    }
    if (moitie < 0) {
      moitie = chiffre;
    } else {
      octets += static_cast<char>(moitie * 16 + chiffre);
      moitie = -1;
    }
  }
  if (moitie >= 0) {
    throw ErreurUsage("nombre impair de chiffres hexadécimaux");
  }
  return octets;
}

std::string versHexadecimal(const std::string& octets) {
  std::string texte;
  for (const char c : octets) {
    constexpr char CHIFFRES[] = "0123456789ABCDEF";
    const auto octet = static_cast<unsigned char>(c);
    texte += CHIFFRES[octet >> 4U];
    texte += CHIFFRES[octet & 15U];
  }
  return texte + '\n';
}

void decoder(const OptionsZone& options) {
  std::string zone = lireTout(options.fichier);
  if (options.hexadecimal) {
    zone = depuisHexadecimal(zone);
  }
  if (options.sortie == "-") {
    decoderZoneVers(std::cout, zone, options.reponse);
    return;
  }
  std::ostringstream texte;
  decoderZoneVers(texte, zone, options.reponse);
  ecrireTout(options.sortie, texte.str());
}

void encoder(const OptionsZone& options) {
  const std::string zone = encoderZone(lireTout(options.fichier), options.fichier);
  if (options.sortie == "-" && !options.hexadecimal) {
    ecrireOctets(zone);
  } else {
    ecrireTout(options.sortie, options.hexadecimal ? versHexadecimal(zone) : zone);
  }
}

}  // namespace

void enregistrerZone(CLI::App& application) {
  auto options = std::make_shared<OptionsZone>();
  CLI::App* commande = application.add_subcommand("zone", "Traduit une zone de données en JSON, et retour");
  commande->require_subcommand(1);
  const auto declarer = [&](const char* nom, const char* aide, void (*action)(const OptionsZone&)) {
    CLI::App* sous = commande->add_subcommand(nom, aide);
    sous->add_option("fichier", options->fichier, "fichier lu (- : entrée standard)");
    sous->add_option("--sortie,-o", options->sortie, "fichier écrit (- : sortie standard)");
    sous->add_flag("--hexa", options->hexadecimal, "octets de la zone en chiffres hexadécimaux");
    sous->callback([options, action] { action(*options); });
    return sous;
  };
  declarer("decoder", "octets d'une zone vers JSON", decoder)
      ->add_flag("--reponse", options->reponse, "noms des groupes de réponse d'abord");
  declarer("encoder", "JSON vers octets d'une zone", encoder);
}

}  // namespace noxlux::commande
