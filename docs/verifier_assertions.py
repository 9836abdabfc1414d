#!/usr/bin/env python3
"""Whether docs/assertions.md tells every assertion of the library, and no other."""
import pathlib
import re
import sys

racine = pathlib.Path(__file__).resolve().parent.parent
sources = {(str(fichier.relative_to(racine / "src")), texte)
           for fichier in (racine / "src").rglob("*.[ch]*")
           for texte in re.findall(r'\bexiger\([^;]*?"([^"]*)"\)', fichier.read_text(encoding="utf-8"))}
dites = {(fichier, texte.replace("\\|", "|"))
         for fichier, textes in re.findall(r"^\| `(\S+)` \| (.*?) \| ", (racine / "docs/assertions.md").read_text("utf-8"), re.M)
         for texte in re.findall(r"`(.*?)`", textes)}
for fichier, texte in sorted(sources ^ dites):
    print(f"{fichier} : {texte} : {'not told' if (fichier, texte) in sources else 'told, not in the sources'}")
print(f"{len(sources)} assertions")
sys.exit(1 if sources != dites or not sources else 0)
