#!/usr/bin/env python3
"""Each header by itself: one that needs others included before it is refused. Usage: entetes-seuls.py SOURCES"""
import concurrent.futures
import os
import pathlib
import subprocess
import sys

sources = pathlib.Path(sys.argv[1]).resolve()
INCLUSIONS = [f"-I{sources / dossier}" for dossier in ("src", "include", "outils")]
# A part of noxlux.hpp, which tells what it is made of.
PARTIES = ["noms.hpp"]
ENTETES = [entete for dossier in INCLUSIONS for entete in sorted(pathlib.Path(dossier[2:]).rglob("*.h*"))
           if entete.suffix in (".h", ".hpp") and entete.name not in PARTIES]


def refus(entete):
    langage = ["c", "-std=c99"] if entete.name == "noxlux.h" else ["c++", "-std=c++20"]
    fini = subprocess.run(["clang", "-fsyntax-only", *INCLUSIONS, "-x", *langage, entete], capture_output=True, text=True)
    return fini.stderr if fini.returncode else ""


with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as groupe:
    refuses = [texte for texte in groupe.map(refus, ENTETES) if texte]
print("".join(refuses) + f"{len(ENTETES)} headers, {len(refuses)} not enough by themselves")
sys.exit(1 if refuses or not ENTETES else 0)
