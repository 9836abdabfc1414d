// The menu tree of the database.
#include <algorithm>
#include <map>

#include "compilateur/ecriture_valeurs.h"
#include "compilateur/lecture_dbf.h"

namespace noxlux::compilateur {

namespace {

void lireNotes(LectureDbf& lecture, std::vector<Menu>& menus) {
  std::map<std::uint32_t, std::multimap<unsigned, std::string>> notes;
  for (const Menu& menu : menus) {
    notes[menu.code];
  }
  lecture.parcourir("R_NOTE_MENU", {"MENU_COD", "ORDRE_NOTE", "TEXTE_NOTE.."}, [&](ChampsDbf& c) {
    const auto menu = notes.find(c.nombre(0));
    const unsigned ordre = c.nombre(1);
    if (!c.bons() || menu == notes.end()) {
      return c.refuser("menu inconnu");
    }
    menu->second.emplace(ordre, c.texte(2));
    return true;
  });
  for (Menu& menu : menus) {
    for (const auto& [ordre, texte] : notes[menu.code]) {
      menu.notes.append(menu.notes.empty() || texte.empty() ? "" : "\n").append(texte);
    }
  }
}

// The tree has one root, menu 1: made here when the table has several, or another one.
std::uint32_t poserRacine(std::vector<Menu>& menus) {
  const auto sansPere = [](const Menu& menu) { return menu.pere == 0; };
  const auto racines = std::count_if(menus.begin(), menus.end(), sansPere);
  const auto premiere = std::find_if(menus.begin(), menus.end(), sansPere);
  if (racines == 1 && premiere->code == MENU_RACINE) {
    return MENU_RACINE;
  }
  std::uint32_t libre = MENU_RACINE + 1;
  for (const Menu& menu : menus) {
    libre = std::max(libre, menu.code + 1);
  }
  for (Menu& menu : menus) {
    menu.pere = menu.pere == 0 ? MENU_RACINE : menu.pere == MENU_RACINE ? libre : menu.pere;
    menu.code = menu.code == MENU_RACINE ? libre : menu.code;
  }
  Menu& racine = menus.emplace_back();
  racine.code = MENU_RACINE;
  racine.libelle = "CCAM";
  return libre;
}

}  // namespace

std::uint32_t lireMenus(LectureDbf& lecture, Modele& base) {
  lecture.parcourir("R_MENU", {"COD_MENU", "LIBELLE", "COD_PERE"}, [&](ChampsDbf& c) {
    Menu menu;
    menu.lieu = c.lieu();
    menu.code = c.nombre(0);
    menu.libelle = c.texte(1);
    menu.pere = c.nombre(2) == menu.code ? 0 : c.nombre(2);
    if (!c.bons() || menu.code == 0 || menu.libelle.empty()) {
      return c.refuser("menu sans code ou sans libellé");
    }
    base.menus.push_back(std::move(menu));
    return true;
  });
  lireNotes(lecture, base.menus);
  return poserRacine(base.menus);
}

}  // namespace noxlux::compilateur
