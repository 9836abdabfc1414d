// The unit price of act HHFA001 on 1 January 2026. Usage: premier CONFIGURATION_DIRECTORY, that of an
// orvan.ini.
#include <iostream>
#include <noxlux/noxlux.hpp>

int main(int, char** argv) {
  using namespace noxlux::champ;
  const noxlux::Reference ccam(argv[1]);
  const auto prix = ccam.consulter(noxlux::CCAM_37, {{acte, "HHFA001"}, {activite, "1"}, {phase, "0"}},
                                   noxlux::Date(2026, 1, 1));
  std::cout << "HHFA001 : " << prix[montant].centimes << " centimes\n";
}
