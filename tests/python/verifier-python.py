#!/usr/bin/env python3
"""The Python package against the command: the same answers, the same faults told, for invoices of all kinds and for those made
by spoiling them; the other functions; the examples of its documentation.

Usage: verifier-python.py COMMAND LIBRARY COMPILED_REFERENCE SOURCES"""
import copy
import doctest
import importlib
import json
import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

sys.dont_write_bytecode = True
from raisons import sans_raisons  # noqa: E402

commande, bibliotheque, exemple, sources = sys.argv[1], sys.argv[2], Path(sys.argv[3]), Path(sys.argv[4])
sys.path.insert(0, str(sources / "python"))
os.environ["NOXLUX_BIBLIOTHEQUE"] = bibliotheque
import noxlux  # noqa: E402

resultats = {True: 0, False: 0}


def verifier(quoi, vrai, detail=""):
    resultats[bool(vrai)] += 1
    if not vrai:
        print(f"FAILED: {quoi}: {detail}")


def commander(*arguments, entree=""):
    fait = subprocess.run([commande, *arguments, "--reference", str(exemple)], input=entree, capture_output=True, text=True)
    return fait.stdout


GATEES = [None, True, 12, -1, 0.005, 1e12, "", "x", "A B", "2026-02-30", "20260115", "é", "l’œ", "Ω", [], ["U", None], {}]


def places(valeur):
    """Every member and element of an invoice: (container, key)."""
    for cle, membre in list(valeur.items()) if isinstance(valeur, dict) else list(enumerate(valeur)):
        yield valeur, cle
        if isinstance(membre, (dict, list)):
            yield from places(membre)


def gater(facture, pas):
    """Copies of an invoice, each with one member changed, taken away or added."""
    rang = 0
    for conteneur, cle in places(facture):
        avant = copy.copy(conteneur)
        for gatee in [*GATEES, "oter", "ajouter"]:
            rang += 1
            if rang % pas:
                continue
            if gatee == "oter":
                del conteneur[cle]
            elif gatee == "ajouter" and isinstance(conteneur, dict):
                conteneur |= {"inconnu": 1}
            else:
                conteneur[cle] = gatee
            yield json.dumps(facture, ensure_ascii=False)
            conteneur.clear()
            conteneur.update(avant) if isinstance(conteneur, dict) else conteneur.extend(avant)


factures = [json.loads(f.read_text()) for f in sorted((sources / "examples").glob("*.json"))]
lot = [json.dumps(f, ensure_ascii=False) for f in factures]
lot += [texte for facture in factures for texte in gater(facture, 7)] + ["[]", "{", "12", "[" * 40, '{"a": NaN}']
attendus = commander("controler", "--lot", "--detail", entree="\n".join(lot) + "\n").splitlines()
with noxlux.Reference(exemple) as reference:
    obtenus = [json.dumps(r, ensure_ascii=False, separators=(",", ":")) for r in reference.controler_lot(lot, detail=True)]
    verifier("as many answers as the command's", len(obtenus) == len(attendus) == len(lot))
    for texte, obtenu, attendu in zip(lot, obtenus, attendus):
        attendu = sans_raisons(attendu)
        verifier("the command's answer", obtenu == attendu, f"{texte}\n  {obtenu}\n  {attendu}")

    for identifiant, champs in (("CCAM_37", {"acte": "HHFA001", "activite": "1", "phase": "0"}), ("TB11_3", {}),
                                ("CCAM_32a", {"acte": "HHFA001", "activite": "1"}), ("CCAM_18", {"acte": "HHFA001"}),
                                ("CCAM_45", {"acte": "HHFA001", "activite": "1", "phase": "0"})):
        attendu = commander("consulter", identifiant, *(f"{n}={v}" for n, v in champs.items()), "--date", "2026-01-15", "--json")
        obtenu = reference.consulter(identifiant.lower(), "2026-01-15", **champs).json()
        verifier(f"{identifiant} answers the command's JSON", obtenu == json.loads(attendu), obtenu)
    lignes = [{"date": "2026-01-15", "acte": acte, "activite": "1", "phase": "0"} for acte in ("HHFA001", "HMFC004")]
    prix = [g["prixUnitaire"] for g in reference.appliquer("C_Pu", *lignes, conventionPS="1", caissePS="751")]
    verifier("C_Pu prices two lines", prix == [reference.acte(ligne["acte"]).prix("2026-01-15") for ligne in lignes], prix)
    verifier("a search that finds nothing", reference.rechercher("xylophone") == [] and reference.rechercher(filtre="QQQQ") == [])

    for quoi, attendu, appel in (
            ("unknown act", 0xD002, lambda: reference.acte("ZZZZ999").libelle("2026-01-15")),
            ("before the act", 0xD003, lambda: reference.acte("HHFA001").prix("1990-01-01")),
            ("nothing to cancel", 0xD005, lambda: reference.annuler("TB12")),
            ("second reference", 0xD600, lambda: noxlux.Reference(exemple)),
            ("unknown field", None, lambda: reference.consulter("CCAM_7", "2026-01-15", actte="HHFA001")),
            ("unknown function", None, lambda: reference.consulter("CCAM_99")),
            ("no day", None, lambda: reference.acte("HHFA001").prix("2026-02-30"))):
        try:
            verifier(quoi, False, appel())
        except noxlux.ErreurBibliotheque as erreur:
            verifier(quoi, erreur.code == attendu, erreur)
        except noxlux.ErreurDemande as erreur:
            verifier(quoi, attendu is None, erreur)

with tempfile.TemporaryDirectory() as nom:
    shutil.copy(exemple / "tablebin.nox", nom)
    phase = {"acte": "HHFA001", "activite": "1", "phase": "0"}
    with noxlux.Reference(nom) as reference:
        reference.modifier("CCAM_37", "2026-01-01", **phase, montant=205.0)
        reference.sauvegarder("Prix d’essai")
    with noxlux.Reference(nom) as reference:
        relu = reference.consulter("CCAM_37", "2026-01-15", **phase)
        verifier("a saved change is read again", (relu["montant"], relu["dateModification"]) == (205.0, "2026-01-01"), relu.json())
        reference.annuler("CCAM_37", **phase)
        verifier("a change taken back", reference.acte("HHFA001").prix("2026-01-15") == 176.79)

for module in ("erreurs", "_zone", "_facture", "resultats", "reference"):
    fait = doctest.testmod(importlib.import_module(f"noxlux.{module}"),
                           extraglobs={"EXEMPLE": exemple, "EXEMPLES": sources / "examples"})
    verifier(f"doctests of {module}", fait.failed == 0)

print(f"{resultats[True]} passed, {resultats[False]} failed")
sys.exit(1 if resultats[False] else 0)
