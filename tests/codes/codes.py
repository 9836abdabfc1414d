#!/usr/bin/env python3
"""The return codes that the header lists for each function, against those that the suite saw.
Usage: codes.py envelopper HEADER > SOURCE     wrappers that note the code of every call (linked with --wrap)
       codes.py options HEADER                 the options of the linker that wrap them
       codes.py verifier HEADER RECORDS...     whether each code noted is listed"""
import pathlib
import re
import sys

SOURCE = """// Notes which codes each exported function answered. Made from the header.
#include <bitset>
#include <cstdlib>
#include <fstream>
#include "noxlux/noxlux.h"
namespace {{
struct Notes {{
  std::bitset<65536> codes[{nombre}];
  static const char* fichier() {{
    const char* nom = std::getenv("NOXLUX_CODES_VUS");
    return nom == nullptr ? "/dev/null" : nom;
  }}
  Notes() {{ std::ofstream vide(fichier()); }}
  // A child that ends before its parent adds to what is noted.
  ~Notes() {{
    std::ofstream sortie(fichier(), std::ios::app);
    const char* const noms[] = {{{noms}}};
    for (unsigned f = 0; f < {nombre}; ++f)
      for (unsigned c = 0; c < 65536; ++c)
        if (codes[f][c]) sortie << noms[f] << ' ' << std::hex << c << '\\n';
  }}
}} notes;
}}
extern "C" {{
{enveloppes}
}}
"""
ENVELOPPE = """unsigned short __real_{nom}({parametres});
unsigned short __wrap_{nom}({parametres}) {{
  const unsigned short cr = __real_{nom}({arguments});
  notes.codes[{rang}][cr] = true;
  return cr;
}}"""


def prototypes(entete):
    """Each function that answers a code, with its parameters and the comment that stands before it."""
    sans_variante = re.finditer(r"/\*((?:(?!\*/).)*)\*/\s*NOX_API unsigned short (NOX_\w+)\(([^)]*)\);", entete, re.S)
    return [(m[2], " ".join(m[3].split()), " ".join(m[1].replace("\n *", " ").split())) for m in sans_variante
            if not m[2].endswith("_S")]


def envelopper(entete):
    fonctions = prototypes(entete)
    enveloppes = [ENVELOPPE.format(nom=nom, parametres=parametres, rang=rang,
                                   arguments=", ".join(re.findall(r"(\w+)(?:,|$)", parametres.replace("void", "", parametres == "void"))))
                  for rang, (nom, parametres, _) in enumerate(fonctions)]
    return SOURCE.format(nombre=len(fonctions), noms=", ".join(f'"{nom}"' for nom, _, _ in fonctions),
                         enveloppes="\n".join(enveloppes))


def etendre(texte, communes):
    """The codes of a list: codes, ranges, families (0xA000+n) and the lists that the head of the header names."""
    codes = set()
    for debut, fin, famille in re.findall(r"0x([0-9A-F]{4})(?: to 0x([0-9A-F]{4}))?(\+\w)?", texte):
        dernier = int(fin or debut, 16) if not famille else {"9000": 0x9FFF, "A000": 0xA7FF, "A001": 0xA7FF, "A800": 0xAFFF,
                                                            "B000": 0xCFFF, "E000": 0xE0FF}[debut]
        codes.update(range(int(debut, 16), dernier + 1))
    return codes.union(*(liste for nom, liste in communes.items() if nom in texte))


def verifier(entete, enregistrements):
    texte = entete.replace("\n *", " ")
    communes = {nom: etendre(liste, {}) for nom, liste in re.findall(r'"(those of [\w ]+)": ([^"]*?)\.\s', texte)}
    vus = {tuple(ligne.split()) for fichier in enregistrements if pathlib.Path(fichier).exists()
           for ligne in pathlib.Path(fichier).read_text().splitlines()}
    fautes = ["nothing was noted"] if not vus else []
    for nom, _, commentaire in prototypes(entete):
        liste = {0} | etendre(commentaire.partition("Codes: ")[2], communes)
        fautes += [f"{nom} answered 0x{int(code, 16):04X}, which the header does not list"
                   for fonction, code in sorted(vus) if fonction == nom and int(code, 16) not in liste]
    print("\n".join(fautes) or f"{len(vus)} codes noted, all listed")
    return 1 if fautes else 0


if __name__ == "__main__":
    action, fichier, *reste = sys.argv[1:]
    texte = pathlib.Path(fichier).read_text(encoding="utf-8")
    if action == "verifier":
        sys.exit(verifier(texte, reste))
    print(envelopper(texte) if action == "envelopper" else ";".join(f"-Wl,--wrap={nom}" for nom, _, _ in prototypes(texte)), end="")
