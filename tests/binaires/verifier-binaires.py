#!/usr/bin/env python3
"""Every program and library of a build: run path without surprises, addresses bound and read-only, guarded code.
Usage: verifier-binaires.py BUILD LIBRARY CONFIGURATION"""
import pathlib
import re
import subprocess
import sys

construction, bibliotheque, configuration = sys.argv[1:]
fautes = []
vus = []
for fichier in sorted(pathlib.Path(construction).glob("*")):
    if not fichier.is_file() or fichier.open("rb").read(4) != b"\x7fELF":
        continue
    vus.append(fichier.name)
    lu = subprocess.run(["readelf", "-W", "-d", "-l", "--dyn-syms", fichier], capture_output=True, text=True,
                        check=True).stdout
    chemins = re.findall(r"\((?:RPATH|RUNPATH)\).*\[(.*)\]", lu)
    controles = {
        "an element of its run path is empty or relative": all(
            re.match(r"/|\$ORIGIN(/|$)", element) for chemin in chemins for element in chemin.split(":")),
        "is not bound when it is loaded": "BIND_NOW" in lu or re.search(r"FLAGS_1\).*\bNOW\b", lu),
        "its addresses stay writable": "GNU_RELRO" in lu,
    }
    if fichier.name.startswith(bibliotheque):
        controles["its stack is not guarded"] = "__stack_chk_fail" in lu
        controles["its copies are not checked"] = configuration != "Release" or "_chk@" in lu.replace("__stack_chk", "")
    fautes += [f"{fichier.name}: {faute}" for faute, bon in controles.items() if not bon]
if not any(nom.startswith(bibliotheque) for nom in vus):
    fautes.append(f"{bibliotheque} was not found")
print("\n".join(fautes) or f"{len(vus)} programs and libraries are as they should be")
sys.exit(1 if fautes else 0)
