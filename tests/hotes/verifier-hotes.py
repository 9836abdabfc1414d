#!/usr/bin/env python3
"""Builds and runs the example host programs as their documents say; the README shows the first of them as it is.

Usage: verifier-hotes.py LIBRARY COMPILED_REFERENCE SOURCES"""
import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

bibliotheque, reference, sources = Path(sys.argv[1]).resolve(), Path(sys.argv[2]), Path(sys.argv[3])
resultats = {True: 0, False: 0}


def verifier(quoi, vrai, detail=""):
    resultats[bool(vrai)] += 1
    if not vrai:
        print(f"FAILED: {quoi}: {detail}")


# The runtime of the sanitizers, which hosts of their own do not bring.
PRECHARGER = {"LD_PRELOAD": os.environ["NOXLUX_PRECHARGER"]} if "NOXLUX_PRECHARGER" in os.environ else {}


def lancer(*commande, dossier=None):
    hote = commande[0] not in ("cc", "g++", "clang++")
    fait = subprocess.run([str(c) for c in commande], cwd=dossier, capture_output=True, timeout=120,
                          env={**os.environ, **(PRECHARGER if hote else {})})
    return fait.returncode, (fait.stdout + fait.stderr).decode("utf-8", "replace")


with tempfile.TemporaryDirectory() as nom:
    dossier = Path(nom)

    def configuration():
        """A fresh reference, so that one host does not see what another saved."""
        tables = dossier / "tables"
        shutil.rmtree(tables, ignore_errors=True)
        tables.mkdir()
        shutil.copy(reference / "tablebin.nox", tables)
        (dossier / "orvan.ini").write_text(
            f"[NOX]\nrepertoiretable={tables}/\n[COMMUN]\nrepertoiretravail={dossier}\n")
        return tables

    lier = ["-L", bibliotheque.parent, "-lnoxlux", f"-Wl,-rpath,{bibliotheque.parent}"]
    compiler = ["cc", "-Wall", "-Wextra", "-Werror", "-I", sources / "include"]

    statut, sortie = lancer(*compiler, sources / "examples/premier.c", "-o", dossier / "premier", *lier)
    verifier("premier.c compiles", statut == 0, sortie)
    statut, sortie = lancer(dossier / "premier", configuration().parent)
    verifier("premier answers a price", statut == 0 and sortie == "HHFA001 : 17679 centimes\n", sortie)
    verifier("the README shows premier.c as it is",
             (sources / "examples/premier.c").read_text() in (sources / "README.md").read_text())

    # By the names of fields, in C++17; what must not compile does not, and without it the same file does.
    for compilateur in ("g++", "clang++"):
        nommer = [compilateur, *compiler[1:], "-std=c++17", "-Wconversion", "-Wshadow"]
        (configuration().parent / "orvan.ini").write_text(f"[NOX]\nrepertoiretable={dossier / 'tables'}/\n")
        for source, attendu in (("examples/premier.cpp", "HHFA001 : 17679 centimes\n"), ("tests/hotes/noms.cpp", "")):
            statut, sortie = lancer(*nommer, sources / source, "-o", dossier / "nomme", *lier)
            verifier(f"{source} compiles with {compilateur}", statut == 0, sortie)
            verifier(f"{source} answers", lancer(dossier / "nomme", dossier) == (0, attendu), sortie)
    for faute in range(1, 8):
        statut, sortie = lancer(*nommer, "-fsyntax-only", f"-DFAUTE={faute}", sources / "tests/hotes/noms.cpp")
        verifier(f"fault {faute} does not compile", statut != 0)

    statut, sortie = lancer(*compiler, sources / "examples/hote.c", "-o", dossier / "hote", "-ldl")
    verifier("hote.c compiles", statut == 0, sortie)
    tables = configuration()
    statut, sortie = lancer(dossier / "hote", bibliotheque, dossier)
    verifier("hote checks, changes, checks again", statut == 0 and "0x0000" in sortie and "0xD121" in sortie, sortie)
    verifier("hote saves", (tables / "modifref.nox").exists())

    configuration()
    os.environ |= {"PYTHONPATH": str(sources / "python"), "NOXLUX_BIBLIOTHEQUE": str(bibliotheque)}
    statut, sortie = lancer(sys.executable, sources / "examples/hote.py", dossier)
    verifier("hote.py checks, changes, saves, reads again", statut == 0 and all(
        vu in sortie for vu in ("176.79 euros, facture acceptee", "a_outrepasser, R850 (O)", "205.00 euros")), sortie)

print(f"{resultats[True]} passed, {resultats[False]} failed")
sys.exit(1 if resultats[False] else 0)
