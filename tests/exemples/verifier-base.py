#!/usr/bin/env python3
"""The public database, written here in small with every feature and compiled: what the library answers at dates between
changes, what the report tells, and tables spoiled in the ways that files get spoiled.

Usage: verifier-base.py COMMAND COMPILED_REFERENCE SOURCES
"""
import json
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import tomllib

sys.dont_write_bytecode = True
from aides import base_publique  # noqa: E402
from aides.commande import Compte, echantillon  # noqa: E402

COMMANDE = pathlib.Path(sys.argv[1]).resolve()
SOURCES = pathlib.Path(sys.argv[3]).resolve()

A, B, C = "AAAA001", "BBBB002", "HBAA003"
A1, A4, B1, C1 = (acte.ljust(13) + activite for acte, activite in ((A, "1"), (A, "4"), (B, "1"), (C, "1")))
D05, D10, D12, D15, D16, D18, D20 = "20050325", "20100601", "20120101", "20150701", "20160301", "20180101", "20200101"
# Blanks at the end of a slice belong to the text.
LONG = "Réparation d'un nerf, " + "x" * 230 + "  " + "suite après les blancs" + "y" * 240 + " fin"
TOUS_850 = bytes(range(0x80, 0x100)).decode("cp850")
COURANTS_850 = "".join(c for c in TOUS_850 if ord(c) < 0x100)
NOTE_LONGUE = "À l'exclusion de : " + "n" * 300 + " fin"


def acte(code, modif, **champs):
    return {"COD_ACTE": code, "DT_MODIF": modif, "MENU_COD": 3, "FRAIDP_COD": "0", "REMBOU_COD": 1, "TYPE_COD": 1,
            "NOM_COURT": f"Acte {code}", "NOM_LONG": f"Acte {code}", "SEXE": 0, "DT_CREATIO": D05, "ENTENTE": "N", **champs}


TABLES = {
    # Two roots, one of them with the code that the tree keeps for its own.
    "R_MENU": [(1, 1, "Système nerveux", 0), (2, 2, "Dents", 0), (3, 1, "Nerfs", 1)],
    "R_NOTE_MENU": [(3, 2, 1, "seconde"), (3, 1, 1, "première")],
    "R_ACTE": [
        # Not in the order of dates.
        acte(A, D20, NOM_LONG=LONG, NOM_COURT="Nerf 2020", SEXE=1, REMBOU_COD=1, ENTENTE="N"),
        acte(A, D05, NOM_COURT="Nerf 2005", REMBOU_COD=1, ENTENTE="N"),
        acte(A, D10, NOM_COURT="Nerf 2010", REMBOU_COD=2, ENTENTE="O"),
        acte(B, D05, TYPE_COD=3), acte(B, D16, TYPE_COD=3, NOM_LONG=COURANTS_850 + "ıƒ│"),
        acte(C, D10, MENU_COD=1, FRAIDP_COD="3", DT_CREATIO=D10, DT_FIN="20241231", TYPE_COD=2),
        acte("CCCC004", D05)],
    "R_ACTE_EXO_TM": [(A, D05, 1), (A, D05, 3), (A, D10, 7)],
    "R_ACTE_NAT_ASS": [(A, "AS"), (A, "MA")],
    "R_COND_GEN": [(7, "Condition générale")],
    "R_ACTE_COND_GEN": [(A, 7)],
    "R_NOTE_ACTE": [(A, D10, 1, 1, "", "note de 2010"), (A, D20, 2, 1, B, "voir"), (A, D20, 1, 1, "", NOTE_LONGUE)],
    # B changes within the life of A's description of 2010: from then on only.
    "R_INCOMPATIBILITES": [(A, D10, B, D16), (A, D20, C, D10)],
    "R_PROCEDURE": [(B, D05, A, D05), (B, D16, C, D10)],
    "R_ACTE_IVITE": [(A1, D05, A, D05, "1", "ADC", "01"), (A1, D12, A, D10, "1", "ADI", "02"), (A4, D05, A, D05, "4", "ADA", "01"),
                     (B1, D05, B, D05, "1", "ADC", "02"), (B1, D16, B, D16, "1", "ADC", "02"), (C1, D10, C, D10, "1", "", "07"),
                     ("CCCC004".ljust(13) + "1", D05, "CCCC004", D05, "1", "ADC", "01")],
    "R_ACTIVITE_MODIFICATEUR": [(A1, D05, "A"), (A1, D12, "A"), (A1, D12, "K"), (A1, D12, "X")],
    "R_ACTIVITE_EXECUTANT": [(A1, D05, "04"), (A1, D12, "09"), (A1, D12, "01")],
    "R_ACTIVITE_AGRE_RADIO": [(A1, "01")],
    "R_ACTIVITE_EXTENSION": [(A1, "2")],
    "R_RMO": [(12, "RMO12", "titre", "texte"), (13, "RMO13", "titre", "texte")],
    "R_ACTIVITE_RMO": [(A1, D05, 12), (A1, D12, 13)],
    "R_ASSOCIATIONS": [(A1, D12, B1, D05, "A"), (A1, D12, B1, D16, "B"), (A4, D05, A1, D05, "A")],
    "R_ACTE_IVITE_PHASE": [
        (A1 + "0", D05, A1, D05, 0, 100.0, 2.5), (A1 + "0", D15, A1, D12, 0, 120.10), (A1 + "0", D18, A1, D12, 0, 130.0),
        (A4 + "0", D05, A4, D05, 0, 60.0), (B1 + "0", D05, B1, D05, 0, 40.0), (B1 + "0", D18, B1, D16, 0, 45.0),
        (C1 + "1", D10, C1, D10, 1, 20.0, 0.0, "01", 6, 15), (C1 + "2", D10, C1, D10, 2, 21.0),
        (("CCCC004".ljust(13) + "1") + "0", D05, "CCCC004".ljust(13) + "1", D05, 0, 7.0)],
    "R_PU_BASE": [(A1 + "0", 1, 131.0, D18), (A1 + "0", 2, 140.0, D18), (A1 + "0", 3, 150.0, D18)],
    "R_ACTIVITE_PHASE_DOM": [(A1 + "0", D18, 971, 0.04), (A1 + "0", D18, 974, 1.08)],
    "R_ACTIVITE_PHASE_DENT": [(C1 + "1", 18), (C1 + "1", 28)],
    "R_TB02": [("1", D05, "", "Taux plein", 1.0), ("02", D05, "20161231", "Demi-tarif", 0.5), ("02", "20170101", "", "Demi-tarif", 0.55, 1),
               ("02", "20170101", "", "Demi-tarif", 0.6, 2)],
    "R_TB03": [("A", D05, "", "Plein", 1.0), ("B", D05, "", "Demi", 0.5), ("B", "20170101", "", "Demi", 0.75, 2)],
    "R_TB04": [("001", D05, "", "01", "Médecine générale"), ("004", D05, "20111231", "04", "Chirurgie"),
               ("004", D12, "", "09", "Chirurgie")],
    # The first is never closed: the second closes it.
    "R_TB07": [(D05, "", 91, 105, 109, 110), ("20110301", "", 120, 138, 144, 145)],
    "R_TB08": [(0, D05, "", 20260714, "F"), (974, D05, "", 20261220, "F"), (974, D05, "20101231", 20091220, "F")],
    "R_TB06": [("A", D05, "", "M", 6, "A", 4)],
    "R_TB09": [("A", "K", D12, ""), ("K", "A", D12, "20191231")],
    "R_TB10": [("A", D05, "", "O", "N")],
    # Common until 2016, then by grid; X is known to one grid only.
    "R_TB11": [("A", D05, "", "Âge", 0, 23.0), ("K", D05, "20161231", "Majoration K", 0.15), ("K", "20170101", "", "Majoration K", 1.2, 0, 1),
               ("K", "20170101", "", "Majoration K", 0.25, 0, 2), ("X", "20170101", "", "Majoration X", 0.1, 0, 2)],
    "R_TB12": [(D05, "", 5, 0.16)],
    "R_TB13": [(c, D05, "", "O") for c in ("ADC", "ADI")] + [("ADA", D05, "20191231", "O")],
    "R_TB15": [("K", D05, "", "7")],
    "R_TB17": [("K", "004", D12)],
    "R_TB19": [(D05, "20161231", 2), ("20170101", "", 4)],
    # Each value has its own period; values stand end to end, padded with zeros, and one number a way of being exempt.
    "R_TB20": [("19", "1", D05, ""), ("19", "2", D12, ""), ("19", "3", D05, "20161231"), ("4", "0708", D05, ""), ("02", "01", D05, ""),
               *((str(n), f"{code}000000000", D05, "") for n, code in ((13, 1), (14, 2), (15, 3), (16, 4), (17, 7)))],
    "R_TB23": [(1, "Grille une", ""), (2, "Grille été", ""), (3, "Grille trois", "")],
    "R_REGROUPEMENT": [("ADC", "Chirurgie"), ("ADI", "Imagerie"), ("ADA", "Anesthésie")],
    "R_ACTIVITE": [("1", "Geste"), ("4", "Anesthésie de la base")],
    "R_TYPE": [(1, "Isolé"), (2, "Procédure"), (3, "Complémentaire")],
    "R_CATEGORIE_MEDIC": [("01", "Technique"), ("02", "Chirurgie"), ("07", "Dents")],
    "R_REMBOURSEMENT": [(1, "Remboursable"), (2, "Exclu")],
    "R_EXO_TM": [(1, "Seuil"), (3, "Toujours"), (7, "Prévention")],
    "R_NAT_ASS": [("AS", "Maladie"), ("MA", "Maternité")],
    "R_FRAIS_DEP": [("0", "Sans"), ("3", "Forfait et kilomètres")],
    "R_EXTENSION": [("2", "Vidéo")],
    "R_AGRE_RADIO": [("01", "Agrément")], "R_CATE_SPEC": [("04", "Chirurgiens")], "R_PHASE": [(0, "Unique")],
}

RIEN = "0xD003"
# (identifier, fields, [(date, answer)...]); an answer is the fields of all groups, or the code.
QUESTIONS = [
    ("CCAM_37", (A, "1", "0"), [("2005-03-24", RIEN), ("2005-03-25", [100]), ("2015-06-30", [100]), ("2015-07-01", [120.1]),
                                ("2017-12-31", [120.1]), ("2018-01-01", [131]), ("2026-01-01", [131])]),
    ("CCAM_37", (B, "1", "0"), [("2017-01-01", [40]), ("2018-01-01", [45])]),
    ("CCAM_39", (A, "1", "0"), [("2014-01-01", [2.5]), ("2016-01-01", [0])]),
    ("CCAM_47a", ("971", A, "1", "0"), [("2017-01-01", [1]), ("2018-01-01", [1.04])]),
    ("CCAM_47a", ("974", A, "1", "0"), [("2018-01-01", [1.08])]),
    ("CCAM_22", (A,), [("2010-05-31", ["1", "Remboursable"]), ("2010-06-01", ["2", "Exclu"]), ("2019-12-31", ["2", "Exclu"]),
                       ("2020-01-01", ["1", "Remboursable"])]),
    ("CCAM_24", (A,), [("2010-05-31", [False]), ("2011-01-01", [True]), ("2020-01-01", [False])]),
    ("CCAM_25", (A,), [("2009-01-01", ["1", "Seuil", "3", "Toujours"]), ("2012-06-01", ["7", "Prévention"]), ("2021-01-01", [])]),
    ("CCAM_6", (A, "1"), [("2011-12-31", ["A", "Âge"]), ("2012-01-01", ["A", "Âge", "K", "Majoration K", "X", "Majoration X"])]),
    ("CCAM_12", (A, "1"), [("2011-12-31", ["01", "Technique"]), ("2026-01-01", ["02", "Chirurgie"])]),
    ("CCAM_42", (A, "1"), [("2011-12-31", ["ADC", "Chirurgie"]), ("2026-01-01", ["ADI", "Imagerie"])]),
    ("CCAM_32a", (A, "1"), [("2011-12-31", [["04", "04"]]), ("2012-01-01", [["09", "04"], ["01", "01"]])]),
    ("CCAM_14", (A,), [("2010-06-01", [[]]), ("2016-02-29", [[]]), ("2016-03-01", [[B]]), ("2019-12-31", [[B]]), ("2020-01-01", [[C]])]),
    ("CCAM_9_1", (B,), [("2016-02-29", [[A]]), ("2016-03-01", [[C]])]),
    ("CCAM_13", (A, "1"), [("2011-12-31", [[]]), ("2012-01-01", [[B]])]),
    ("CCAM_13", (A, "4"), [("2012-01-01", [[A]])]),
    ("CCAM_7", (A,), [("2006-01-01", ["Nerf 2020"])]),
    ("CCAM_8", (A,), [("2026-01-01", [LONG])]),
    ("CCAM_8", (B,), [("2026-01-01", [COURANTS_850 + "if|"])]),
    ("CCAM_9", (C,), [("2015-01-01", ["2", "Procédure"])]),
    ("CCAM_10", (A,), [("2026-01-01", ["Condition générale"])]),
    ("CCAM_11", (A,), [("2026-01-01", [NOTE_LONGUE + f"\nvoir ({B})"])]),
    ("CCAM_15", (A,), [("2026-01-01", [["1"]])]),
    ("CCAM_16a", (A,), [("2026-01-01", [["Nerfs", "première\nseconde"], ["Système nerveux", ""]])]),
    ("CCAM_16a", (C,), [("2015-01-01", [["Système nerveux", ""]])]),
    ("CCAM_19", (C,), [("2015-01-01", ["2024-12-31"])]),
    ("CCAM_2", (A,), [("2026-01-01", ["1", "Geste", "4", "Anesthésie de la base"])]),
    ("CCAM_3", (A, "1"), [("2026-01-01", ["2", "Vidéo"])]),
    ("CCAM_20", (A, "1"), [("2026-01-01", [["RMO13"]])]),
    ("CCAM_30_1", (A,), [("2026-01-01", ["AS", "Maladie", "MA", "Maternité"])]),
    ("CCAM_40a", (A, "1"), [("2026-01-01", [True])]),
    ("CCAM_41", (C,), [("2015-01-01", ["3", "Forfait et kilomètres"])]),
    ("CCAM_43a", (C, "1", "1"), [("2015-01-01", [True, 1]), ("2025-01-01", RIEN)]),
    ("CCAM_44", (C, "1", "1"), [("2015-01-01", [["18", "28"]])]),
    ("CCAM_45", (C, "1", "1"), [("2015-01-01", ["6A0J"])]),
    ("CCAM_46", (C, "1", "1"), [("2015-01-01", ["15A0J"])]),
    ("TB02_1", ("2",), [("2016-12-31", [0.5]), ("2017-01-01", [0.55])]),
    ("TB06_1", ("A",), [("2026-01-01", ["0A180J"])]),
    ("TB06_2", ("A",), [("2026-01-01", ["4A0J"])]),
    ("TB07_1", ("971",), [("2011-02-28", [91]), ("2011-03-01", [120])]),
    ("TB08_1", ("974",), [("2026-12-20", [True]), ("2026-07-14", [True]), ("2026-12-21", [False]), ("2009-12-20", [True])]),
    ("TB09_1", ("K", "A"), [("2019-12-31", [True]), ("2020-01-01", [False])]),
    ("TB10_1", ("A",), [("2026-01-01", [True])]),
    ("TB10_2", ("A",), [("2026-01-01", [False])]),
    ("TB11_1", ("A",), [("2026-01-01", [23])]),
    ("TB11_2", ("K",), [("2016-12-31", [1.15]), ("2017-01-01", [1.2])]),
    ("TB11_3", (), [("2026-01-01", ["A", "Âge", "K", "Majoration K"])]),
    ("TB12_1", (), [("2026-01-01", [5])]),
    ("TB12_2", (), [("2026-01-01", [0.16])]),
    ("TB13_1", (), [("2019-12-31", ["ADA", "Anesthésie", "ADC", "Chirurgie", "ADI", "Imagerie"]),
                    ("2020-01-01", ["ADC", "Chirurgie", "ADI", "Imagerie"])]),
    ("TB15_1", ("K",), [("2026-01-01", [["7"]])]),
    ("TB19_1", (), [("2016-12-31", [2]), ("2017-01-01", [4])]),
    # The base holds no number of modifiers passed on: the complement's.
    ("TB15_2", (), [("2026-01-01", [4])]),
]
GRILLES = [
    ((), [("CCAM_37", (A, "1", "0"), "2026-01-01", [130]), ("TB11_2", ("K",), "2026-01-01", [1.2])]),
    (("--grille", "2"), [("CCAM_37", (A, "1", "0"), "2026-01-01", [140]), ("CCAM_37", (A, "1", "0"), "2017-12-31", [120.1]),
                         ("TB11_2", ("K",), "2026-01-01", [1.25]), ("TB11_2", ("K",), "2016-01-01", [1.15]),
                         ("TB11_2", ("X",), "2026-01-01", [1.1]), ("TB02_1", ("2",), "2026-01-01", [0.6])]),
    # A grid that changes nothing but prices keeps what is common.
    (("--grille", "3"), [("CCAM_37", (A, "1", "0"), "2026-01-01", [150]), ("TB11_1", ("A",), "2026-01-01", [23])]),
]


def noms_des_champs():
    """The fields of each consultation, in order."""
    zones = tomllib.loads((SOURCES / "reference/socle/zones.toml").read_text())
    groupes = {g["numero"]: [c["nom"] for c in g["champs"]] for g in zones["groupe"]}
    return {f["nom"]: [n for fils in f.get("fils", ()) for n in groupes[fils["groupe"]]] for f in zones["fonction"]
            if f["famille"] == "consultation"}


class Base:
    def __init__(self, dossier):
        self.tables = dossier / "tables"
        self.sortie = dossier / "reference"
        self.champs = noms_des_champs()
        base_publique.ecrire(self.tables, TABLES)

    def compiler(self, *options, tables=None, sortie=None):
        return subprocess.run([COMMANDE, "compiler", "--base-dbf", tables or self.tables, "--socle", SOURCES / "reference/socle",
                               "--complement", SOURCES / "reference/public", "-o", sortie or self.sortie, *options], capture_output=True, text=True, timeout=300)

    def consulter(self, identifiant, champs, date):
        nommes = [f"{nom}={valeur}" for nom, valeur in zip(self.champs[identifiant], champs, strict=True)]
        fini = subprocess.run([COMMANDE, "consulter", identifiant, *nommes, "--date", date, "-r", self.sortie, "--json"],
                              capture_output=True, text=True, timeout=60)
        if fini.returncode != 0:
            return (re.findall("0x[0-9A-F]{4}", fini.stderr) or [fini.stderr])[0]
        return [v for groupe in json.loads(fini.stdout) for v in groupe["champs"].values()]


def changer(nom, *lignes, champs=None):
    """What writes a table anew in a copy of the tables: the records given behind those of the base, or in their place."""
    def ecrire(tables):
        base_publique.ecrire_table(tables, nom, lignes if champs else [*TABLES[nom], *lignes], colonnes=champs)
    return ecrire


def octets(nom, modifier):
    """What changes the bytes of a table."""
    def ecrire(tables):
        chemin = tables / f"{nom}.dbf"
        chemin.write_bytes(modifier(bytearray(chemin.read_bytes())))
    return ecrire


def poser(position, forme, valeur):
    def modifier(contenu):
        struct.pack_into(forme, contenu, position, valeur)
        return contenu
    return modifier


def oter(*noms):
    def ecrire(tables):
        for nom in noms:
            (tables / f"{nom}.dbf").unlink()
    return ecrire


# (what is done to the tables, options, passages of the only sentence told)
MAUVAISES_BASES = [
    ("table missing", oter("R_ACTE_IVITE"), (), ["tables", "R_ACTE_IVITE manque"]),
    ("prices of the grids missing", oter("R_PU_BASE"), ("--grille", "1"), ["R_PU_BASE manque"]),
    ("no table", lambda tables: [f.unlink() for f in tables.iterdir()], (), ["aucune table dBASE"]),
    ("no directory", shutil.rmtree, (), ["ne peut pas être lu"]),
    ("a file", lambda tables: (shutil.rmtree(tables), tables.write_text("x")), (), ["ne peut pas être lu"]),
    ("no act", changer("R_ACTE", champs=base_publique.SCHEMA["R_ACTE"]), (), ["aucun acte"]),
    ("column missing", changer("R_TB19", champs=["DT_DEBUT D", "DT_FIN D"]), (), ["R_TB19.dbf", "colonnes manquantes : NB_MODIFIC"]),
    ("slices missing", changer("R_COND_GEN", champs=["COD_CONDGE N4"]), (), ["R_COND_GEN.dbf", "colonnes manquantes : LIBELLE"]),
    ("unknown grid", lambda tables: None, ("--grille", "4"), ["grille tarifaire 4", "1 (Grille une), 2 (Grille été)"]),
    ("grid without price", changer("R_TB23", (4, "Quatre")), ("--grille", "4"), ["aucun prix", "1, 2, 3"]),
    ("grids not described", oter("R_TB23"), ("--grille", "9"), ["aucun prix", "1, 2, 3"]),
    ("empty", octets("R_ACTE", lambda o: b""), (), ["R_ACTE.dbf", "trop court"]),
    ("half a header", octets("R_ACTE", lambda o: o[:20]), (), ["R_ACTE.dbf", "trop court"]),
    ("cut in the columns", octets("R_ACTE", lambda o: o[:100]), (), ["R_ACTE.dbf", "tronqué"]),
    ("cut in a record", octets("R_MENU", lambda o: o[:-100]), (), ["R_MENU.dbf", "tronqué"]),
    ("too many records", octets("R_MENU", poser(4, "<I", 4)), (), ["R_MENU.dbf", "annonce 4 enregistrements"]),
    ("records beyond measure", octets("R_MENU", poser(4, "<I", 0xFFFFFFFF)), (), ["R_MENU.dbf", "4294967295"]),
    ("header of no length", octets("R_MENU", poser(8, "<H", 0)), (), ["R_MENU.dbf", "n'est pas une table"]),
    ("header beyond the file", octets("R_MENU", poser(8, "<H", 65535)), (), ["R_MENU.dbf", "tronqué"]),
    ("records of no length", octets("R_MENU", poser(10, "<H", 0)), (), ["R_MENU.dbf", "n'est pas une table"]),
    ("no columns", octets("R_MENU", poser(8, "<H", 33)), (), ["R_MENU.dbf", "COD_MENU, LIBELLE, COD_PERE"]),
    ("columns wider than records", octets("R_MENU", poser(48, "B", 255)), (), ["R_MENU.dbf", "illisible"]),
    ("records narrower than columns", octets("R_MENU", poser(10, "<H", 20)), (), ["R_MENU.dbf", "illisible"]),
    ("something else", octets("R_MENU", lambda o: b"%PDF-1.7" + bytes(200)), (), ["R_MENU.dbf", "n'est pas une table"]),
]

D = "20210101"
# (what is added, passage of the report, dropped): the rest must be there all the same.
MAUVAIS_ENREGISTREMENTS = [
    (changer("R_ACTE", acte("", D)), "R_ACTE : code absent", 1),
    (changer("R_ACTE", acte("aaaa001", D)), "R_ACTE : code mal écrit", 1),
    (changer("R_ACTE", acte(A, D, DT_FIN="20200230")), "R_ACTE : date qui n'est pas un jour", 1),
    (changer("R_ACTE", acte(A, "")), "R_ACTE : date absente", 1),
    (changer("R_ACTE", acte(A, D20)), "R_ACTE : deux descriptions", 1),
    (changer("R_ACTE", acte(A, D, SEXE=3)), "R_ACTE : sexe inconnu", 1),
    (changer("R_ACTE", acte(A, D, DT_FIN=D05, DT_CREATIO=D10)), "R_ACTE : fin qui précède", 1),
    (changer("R_ACTE", acte("SEUL001", D)), "acte sans historique ou sans prix", 1),
    (changer("R_ACTE", acte(A, D, TYPE_COD=9)), "type d'acte inconnu", 1),
    (changer("R_ACTE_EXO_TM", (A, D15, 1)), "R_ACTE_EXO_TM : code inconnu, ou sans description à cette date", 1),
    (changer("R_ACTE_EXO_TM", (A, D20, 5)), "code d'exonération inconnu", 1),
    (changer("R_ACTE_IVITE", ("ZZZZ9991", D, "ZZZZ999", D, "1")), "R_ACTE_IVITE : acte inconnu", 1),
    (changer("R_ACTE_IVITE", (A1, D, B, D16, "1")), "R_ACTE_IVITE : activité d'un autre acte", 1),
    (changer("R_ACTE_IVITE_PHASE", (A1 + "0", D, B1, D16, 0, 1)), "phase d'une autre activité", 1),
    (changer("R_ACTE_IVITE_PHASE", (A1 + "0", D, A1, D12, 0, "******")), "R_ACTE_IVITE_PHASE : nombre illisible", 1),
    (changer("R_ACTE_IVITE_PHASE", (A1 + "0", D, A1, D12, 0, "-12.00")), "R_ACTE_IVITE_PHASE : nombre illisible", 1),
    (changer("R_ACTE_IVITE_PHASE", (A1 + "0", D18, A1, D12, 0, 1, 0, "", 20, 10)), "âge maximum", 1),
    (changer("R_ACTE_IVITE_PHASE", (A1 + "1", D, A1, D15, 1, 1)), "description rattachée par son seul code", 0),
    (changer("R_ACTE_IVITE_PHASE", (A1 + "0", D, A1, "20209999", 0, 1)), "R_ACTE_IVITE_PHASE : date qui n'est pas", 1),
    (changer("R_ACTE_IVITE", (A.ljust(13) + "5", D, A, D20, "5")), "activité sans historique ou sans prix", 1),
    (changer("R_PU_BASE", (A1 + "0", 1, 5, D16)), "R_PU_BASE : code inconnu, ou sans description à cette date", 1),
    (changer("R_PU_BASE", (A1 + "0", 1, 5, D18)), "R_PU_BASE : deux prix", 1),
    (changer("R_PU_BASE", (A1 + "0", 2, 5, D18)), "R_PU_BASE : 4 lus, 1 gardés", 0),
    (changer("R_ACTIVITE_PHASE_DOM", (A1 + "0", D18, 975, 0.1)), "département d'outre-mer inconnu", 1),
    (changer("R_INCOMPATIBILITES", (A, D05, B, D16)), "jamais valu ensemble", 1),
    (changer("R_INCOMPATIBILITES", (A, D20, "ZZZZ999", D05)), "acte incompatible inconnu", 1),
    (changer("R_ASSOCIATIONS", (A1, D12, "ZZZZ9991", D05, "A")), "activité associée inconnue", 1),
    (changer("R_ASSOCIATIONS", (A1, D12, C1, D10, "Z")), "la règle tarifaire … est inconnue", 1),
    (changer("R_MENU", (5, 1, "Orphelin", 99)), "le menu père … est inconnu", 1),
    (changer("R_MENU", (5, 1, "", 1)), "R_MENU : menu sans code ou sans libellé", 1),
    (changer("R_TB07", ("20110301", "", 1, 1, 1, 1)), "deux périodes qui commencent le même jour", 1),
    (changer("R_TB11", ("K", D18, D15, "", 1, 0, 1)), "R_TB11 : fin qui précède le début", 1),
    (changer("R_TB06", ("Z", D05, "", "A", 1, "A", 2)), "R_TB06 : modificateur inconnu", 1),
    (changer("R_TB06", ("K", D05, "", "S", 1, "A", 2)), "R_TB06 : unité d'âge inconnue", 1),
    (changer("R_TB17", ("K", "077", D05)), "la spécialité … est inconnue", 1),
    (changer("R_TB20", ("ABC", "1", D05, "")), "R_TB20 : nombre illisible", 1),
    (changer("R_TB20", ("04", "070", D05, "")), "concept dont les valeurs ne se découpent pas", 1),
    (changer("R_TB20", ("09", "1", D05, "")), "concept dont aucune règle ne sait l'emploi", 1),
    (changer("R_NOTE_MENU", (99, 1, 1, "x")), "R_NOTE_MENU : menu inconnu", 1),
    (oter("R_TB17"), "obligation de codage du complément retirée", 0),
]


def main():
    compte = Compte()
    with tempfile.TemporaryDirectory() as nom:
        base = Base(pathlib.Path(nom))
        for essai in (verifier_reponses, verifier_regles, verifier_grilles, verifier_variantes, verifier_complement, verifier_grande,
                      verifier_bases, verifier_enregistrements):
            essai(compte, base)
    compte.finir()


def verifier_reponses(compte, base):
    fini = base.compiler("--grille", "1", "--strict")
    compte.verifier("compilation", (fini.returncode, fini.stderr), (0, ""))
    for passage in ("R_ACTE : 7 lus, 7 gardés", "R_PU_BASE : 3 lus, 1 gardés", "R_NOTE_ACTE : 3 lus, 2 gardés",
                    "ajustés, 1 : caractère 0xD5", "ajustés, 1 : prix de base gardé", ": 4 actes, 9 prix, 4 menus"):
        compte.verifier(f"the report tells {passage}", passage in fini.stdout or fini.stdout, True)
    verifier_questions(compte, base, "")


def verifier_questions(compte, base, quoi):
    questions = [(identifiant, champs, *reponse) for identifiant, champs, reponses in QUESTIONS for reponse in reponses]
    for identifiant, champs, date, attendu in echantillon(questions):
        compte.verifier(f"{quoi}{identifiant} {champs} {date}", base.consulter(identifiant, champs, date), attendu)


def verifier_regles(compte, base):
    """What no consultation tells: the concepts that the rules read, the tariff rule of an association."""
    def table(numero):
        lu = subprocess.run([COMMANDE, "lister", base.sortie, numero, "--json"], capture_output=True, check=True).stdout
        return json.loads(lu)

    def plage(lignes, p):
        return lignes[p["premiere"]:p["premiere"] + p["nombre"]]

    concepts, historiques, valeurs = (table(numero) for numero in ("019", "020", "021"))
    lus = {n + 1: [next(iter(v.values())) for h in plage(historiques, next(iter(c.values())))
                   for v in plage(valeurs, next(p for p in h.values() if isinstance(p, dict)))] for n, c in enumerate(concepts)}
    compte.verifier("concepts", {n: sorted(lus[n]) for n in (2, 4, 13, 14, 16, 23)},
                    {2: ["0", "1"], 4: ["07", "08"], 13: ["1"], 14: ["7"], 16: ["3", "4"], 23: ["1", "2"]})
    entete = json.loads(subprocess.run([COMMANDE, "lister", base.sortie, "--json"], capture_output=True, check=True).stdout)["entete"]
    compte.verifier("the version is the day of the newest change", (entete["versionReferentiel"], entete["date"]), ("2011", "20200101"))
    acte_lu = json.loads(subprocess.run([COMMANDE, "lister", base.sortie, A, "--json"], capture_output=True, check=True).stdout)
    regles = {h["effet"]: h["associations"] for h in acte_lu["activite"][0]["historique"]}
    compte.verifier("rules of an association", regles, {
        "2016-03-01": [{"acte": B, "regle": "B"}], "2012-01-01": [{"acte": B, "regle": "A"}], "2005-03-25": []})


def verifier_grilles(compte, base):
    for options, questions in GRILLES:
        fini = base.compiler(*options)
        compte.verifier(f"compilation {options}", (fini.returncode, "écartés" in fini.stdout), (0, False))
        for identifiant, champs, date, attendu in questions:
            compte.verifier(f"{options} {identifiant} {champs} {date}", base.consulter(identifiant, champs, date), attendu)


def verifier_variantes(compte, base):
    """The same base otherwise written answers the same."""
    tables = base.tables.with_name("variante")
    base_publique.ecrire(tables, {**TABLES, "R_TB19": [(D05, "", 9), *TABLES["R_TB19"]]})
    base_publique.ecrire_table(tables, "R_TB19", [(D05, "", 9), *TABLES["R_TB19"]], effacees=(0,))
    # Slices whose names were cut until nothing tells them apart.
    notes = [(*ligne[:5], ligne[5][:254], ligne[5][254:]) for ligne in TABLES["R_NOTE_ACTE"]]
    base_publique.ecrire_table(tables, "R_NOTE_ACTE", notes, colonnes=[
        *base_publique.SCHEMA["R_NOTE_ACTE"][:5], "TEXTE_NOTE C254", "TEXTE_NOTE C254"])
    for chemin in list(tables.iterdir())[::2]:
        chemin.rename(tables / chemin.name.lower())
    for chemin in list(tables.iterdir())[::3]:
        chemin.rename(chemin.with_suffix(".DBF"))
    fini = base.compiler("--grille", "1", tables=tables)
    compte.verifier("other file names, a deleted record", (fini.returncode, fini.stderr), (0, ""))
    verifier_questions(compte, base, "variant: ")


def verifier_complement(compte, base):
    """What the base does not hold comes from the complement, table by table."""
    tables = copier(base)
    oter("R_TB09", "R_TB10", "R_TB19", "R_TB07", "R_TYPE")(tables)
    fini = base.compiler("--grille", "1", "--verbeux", tables=tables)
    compte.verifier("tables that are not there", (fini.returncode, "ajustés, 5 : table absente" in fini.stdout,
                                                  "la table R_TB19" in fini.stdout), (0, True, True))
    for identifiant, champs, attendu in [
            ("TB09_1", ("K", "A"), [False]), ("TB10_2", ("A",), [True]), ("TB19_1", (), [4]), ("TB07_1", ("972",), [120]),
            ("CCAM_9", (A,), ["1", "Procédure"]),
            # What it does hold stays.
            ("TB06_2", ("A",), ["4A0J"]), ("TB11_2", ("K",), [1.2]), ("TB15_1", ("K",), [["7"]])]:
        compte.verifier(f"complement: {identifiant}", base.consulter(identifiant, champs, "2026-01-01"), attendu)


def verifier_grande(compte, base):
    """Many acts, prices for each grid and date: each is found."""
    tables = base.tables.with_name("grande")
    codes, jours = base_publique.grande(tables, actes=300, grilles=5)
    fini = base.compiler("--grille", "4", tables=tables)
    nombre = 300 * 2 * 5 * len(jours)
    compte.verifier("many prices", (fini.returncode, f"R_PU_BASE : {nombre} lus, {nombre // 5} gardés" in fini.stdout or fini.stdout),
                    (0, True))
    for rang, code in enumerate(codes[::71]):
        for n, jour in enumerate(jours):
            date = f"{jour[:4]}-{jour[4:6]}-{jour[6:]}"
            compte.verifier(f"price of {code} on {date}", base.consulter("CCAM_37", (code, "14"[rang % 2], "0"), date), [100 * n + 4])


def copier(base):
    tables = base.tables.with_name("mauvaises") / "tables"
    shutil.rmtree(tables.parent, ignore_errors=True)
    shutil.copytree(base.tables, tables)
    return tables


def verifier_bases(compte, base):
    sortie = base.sortie.with_name("jamais")
    for quoi, abimer, options, passages in MAUVAISES_BASES:
        tables = copier(base)
        abimer(tables)
        fini = base.compiler(*options, tables=tables, sortie=sortie)
        dit = fini.stderr.count("\n") == 2 and all(p in fini.stderr for p in passages)
        compte.verifier(f"base: {quoi}", (fini.returncode, dit or fini.stderr, sortie.exists()), (2, True, False))


def verifier_enregistrements(compte, base):
    for abimer, passage, ecartes in MAUVAIS_ENREGISTREMENTS:
        tables = copier(base)
        abimer(tables)
        fini = base.compiler("--grille", "1", tables=tables)
        nombre = sum(int(n) for n in re.findall(r"^écartés, (\d+) : ", fini.stdout, re.M))
        compte.verifier(f"record: {passage}", (fini.returncode, passage in fini.stdout or fini.stdout + fini.stderr,
                                               nombre, ": 4 actes" in fini.stdout),
                        (0, True, ecartes, True))
        compte.verifier(f"record: {passage}: the price stays", base.consulter("CCAM_37", (A, "1", "0"), "2026-01-01"), [131])
    strict = base.compiler("--strict", tables=copier_avec(base, MAUVAIS_ENREGISTREMENTS[0][0]), sortie=base.sortie.with_name("strict"))
    compte.verifier("a dropped record is a failure when one wants",
                    (strict.returncode, "R_ACTE.dbf:8" in strict.stderr, base.sortie.with_name("strict").exists()), (2, True, False))


def copier_avec(base, abimer):
    tables = copier(base)
    abimer(tables)
    return tables


if __name__ == "__main__":
    main()
