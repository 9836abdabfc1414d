#!/usr/bin/env python3
"""Listings of the CCAM, compiled, against a reading of them that owes nothing to the importer; each spoiled in the ways
that files get spoiled. One is small, laid out as the public one with its traps; the public one, where it is at hand.

Usage: verifier-listing.py COMMAND COMPILED_REFERENCE SOURCES
"""
import csv
import io
import json
import os
import pathlib
import re
import resource
import subprocess
import sys
import tempfile
import time
import tomllib
import unicodedata

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(sys.argv[3]).resolve() / "python"))
import noxlux  # noqa: E402
from aides.commande import Compte  # noqa: E402

COMMANDE = pathlib.Path(sys.argv[1]).resolve()
SOURCES = pathlib.Path(sys.argv[3]).resolve()
COMPLEMENT = SOURCES / "reference/public"
PETIT = SOURCES / "fuzz/graines/listing/petit.csv"
PUBLIC = pathlib.Path(os.environ.get("NOXLUX_LISTING", "/absent"))
BIBLIOTHEQUE = COMMANDE.parent / "libnoxlux.so"
DATE = "2026-02-01"
CADRE_LIBELLE_LONG = 2
MOTS = ["appendice", "côlon", "cataracte", "prothèse", "hanche", "scanographie", "arthroscopie", "œil", "fémur",
        "vésicule", "thyroïde", "grossesse", "dent", "angioplastie", "biopsie", "cœlioscopie", "fœtus", "ECHOGRAPHIE",
        "suture", "greffe"]
SECONDES, OCTETS = 10, 500 << 20


def passer(raison):
    print(f"{raison}\n0 passed, 0 failed, 1 skipped")
    sys.exit(0)


def mots(texte):
    """The words of a text as keywords: capitals without accents."""
    for ligature, lettres in (("œ", "oe"), ("Œ", "OE"), ("æ", "ae"), ("Æ", "AE")):
        texte = texte.replace(ligature, lettres)
    sans_accents = "".join(c for c in unicodedata.normalize("NFD", texte) if not unicodedata.combining(c))
    return set(re.findall(r"[A-Z0-9]+", sans_accents.upper()))


def lire(listing, colonne):
    """A listing: prices by (act, activity, phase), the other data by act, and the chapters."""
    prix, regroupements, modificateurs, exonerations, mentions, libelles = {}, {}, {}, {}, {}, {}
    chapitres = set()
    acte = activite = None
    correctifs = tomllib.loads((COMPLEMENT / "correctifs.toml").read_text())["correctif"]
    with open(listing, encoding="utf-8", newline="") as fichier:
        for code, _, texte, *valeurs in csv.reader(fichier):
            code = code.strip()
            for c in correctifs:
                if c["acte"] != (code if re.fullmatch(r"[A-Z]{4}\d{3}", code) else acte):
                    continue
                if c["colonne"] == "activite" and valeurs[0] == c["imprime"]:
                    valeurs[0] = c["voulu"]
                if c["colonne"] == "ligne" and texte == c["imprime"]:
                    valeurs = [""] * len(valeurs)
            if re.fullmatch(r"[A-Z]{4}\d{3}", code):
                acte, activite = code, None
                libelles[acte], exonerations[acte], mentions[acte] = texte, set(), set()
            elif re.fullmatch(r"\d+(\.\d+)*", code) and not (len(code) == 1 and valeurs[2]):
                chapitres.add(code)
                acte = None
            if acte is None:
                continue
            if code.startswith("["):
                modificateurs.setdefault(acte, set()).update(re.findall(r"\w", code))
            exonerations[acte] |= set(re.findall(r"\d", valeurs[6]))
            mentions[acte] |= {valeurs[4], valeurs[5]} - {""}
            if valeurs[0].strip():
                activite = valeurs[0].strip()
                cle = (acte, activite, valeurs[1].strip())
                if cle not in prix:
                    montant = valeurs[colonne - 3]
                    exempt = montant == "Non pris en charge"
                    prix[cle] = 0 if exempt else round(100 * float(montant.replace(",", ".").replace(" ", "")))
                    mentions[acte] |= {"non pris"} if exempt else {"pris"}
                    regroupements.setdefault((acte, activite), valeurs[7])
    return prix, regroupements, modificateurs, exonerations, mentions, libelles, chapitres


class Reference(noxlux.Reference):
    """The library on a compiled reference."""

    def champs(self, identifiant, *cle):
        """The groups' fields that the library answers; none when it has nothing to tell."""
        try:
            return [list(g.values()) for g in self.consulter(identifiant, DATE, **dict(zip(("acte", "activite", "phase"), cle)))]
        except noxlux.ErreurBibliotheque:
            return []

    def codes(self, *demande):
        return sorted(champs[0].strip() for champs in self.champs(*demande))

    def chercher(self, mot):
        try:
            return set(self.rechercher(mot, cadre=CADRE_LIBELLE_LONG))
        except noxlux.ErreurBibliotheque:
            return set()


def compiler(listing, sortie, *options):
    return subprocess.run([COMMANDE, "compiler", "--listing", listing, "--socle", SOURCES / "reference/socle", "--complement", COMPLEMENT, "-o", sortie,
                           *options], capture_output=True, text=True, timeout=120)


def ecarts(obtenus, attendus):
    """What differs, briefly."""
    return [(cle, obtenus.get(cle), attendus.get(cle)) for cle in sorted({*obtenus, *attendus}, key=str)
            if obtenus.get(cle) != attendus.get(cle)][:5]


def verifier_contenu(compte, listing, actes, dossier):
    prix, regroupements, modificateurs, exonerations, mentions, libelles, chapitres = lire(listing, 5)
    compte.verifier("the independent reading sees all acts", len(libelles), actes)
    reference = Reference(dossier, bibliotheque=BIBLIOTHEQUE)
    lus = {cle: round(100 * reference.champs("CCAM_37", *cle)[0][0]) for cle in prix}
    compte.verifier("prices", ecarts(lus, prix), [])
    compte.verifier("price of AHQB027", lus["AHQB027", "1", "0"], 5184)
    lus = {(a, b): ("".join(reference.codes("CCAM_42", a, b))) for a, b in regroupements}
    compte.verifier("grouping codes", ecarts(lus, regroupements), [])
    # The listing prints one list for all the activities of an act; each activity bears those of its kind.
    kinds = tomllib.loads((COMPLEMENT / "modificateurs.toml").read_text())["modificateur"]
    permises = {m["code"]: m.get("activites", "12345") for m in kinds}
    attendus = {(a, b): sorted(c for c in modificateurs.get(a, ()) if b in permises[c]) for a, b in regroupements}
    lus = {(a, b): reference.codes("CCAM_6", a, b) for a, b in regroupements}
    compte.verifier("modifiers", ecarts(lus, attendus), [])
    if listing == PUBLIC:
        verifier_faits(compte, reference, regroupements, lus)
    lus = {a: set(reference.codes("CCAM_25", a)) for a in exonerations}
    compte.verifier("exemption codes", ecarts(lus, exonerations), [])
    lus = {a: "".join(reference.codes("CCAM_22", a)) for a in libelles}
    attendus = {a: "2" if "non pris" in m else "3" if "RC" in m else "1" for a, m in mentions.items()}
    compte.verifier("admission to reimbursement", ecarts(lus, attendus), [])
    lus = {a: reference.champs("CCAM_24", a)[0][0] for a in libelles}
    compte.verifier("prior agreement", ecarts(lus, {a: "AP" in m for a, m in mentions.items()}), [])
    for mot in MOTS:
        cherche = mots(mot).pop()
        attendus = {a for a, libelle in libelles.items() if cherche in mots(libelle)}
        compte.verifier(f"search for {mot}", sorted(reference.chercher(mot.replace("œ", "oe")) ^ attendus), [])
        compte.verifier(f"{mot} stands in some label", bool(attendus), True)
    reference.close()
    table = subprocess.run([COMMANDE, "lister", dossier, "Arborescence", "--json"], capture_output=True, text=True, check=True)
    compte.verifier("chapters, and the root above them", len(json.loads(table.stdout)), len(chapitres) + 1)


def faits(nom):
    """The rows of a table of public facts; none where it is not at hand."""
    chemin = PUBLIC.parent / "public" / nom
    if not chemin.is_file():
        print(f"{chemin.name} is not at hand: what it tells is not compared")
        return []
    with open(chemin, encoding="utf-8", newline="") as fichier:
        return list(csv.DictReader(fichier, delimiter=";"))


def verifier_faits(compte, reference, regroupements, modificateurs):
    """What the complement adds, against the facts that it was made from."""
    attendus = {(f["acte"], f["activite"]): sorted(f["modificateurs"].split()) for f in faits("modificateurs_par_activite.csv")}
    compte.verifier("modifiers by activity", ecarts({c: modificateurs[c] for c in attendus if c in modificateurs},
                                                   {c: a for c, a in attendus.items() if c in modificateurs}), [])
    actes = {a for a, _ in regroupements}
    attendus = {f["acte"]: f["type"] for f in faits("actes_base_v37.csv") if f["acte"] in actes}
    lus = {a: "".join(reference.codes("CCAM_9", a)) for a in attendus}
    compte.verifier("types of act", ecarts(lus, attendus), [])
    categories = {f["regroupement"]: f["categorie_projet"] for f in faits("regroupement_categorie.csv")}
    attendus = {cle: categories[code] for cle, code in regroupements.items() if code in categories}
    lus = {cle: "".join(reference.codes("CCAM_12", *cle)) for cle in attendus}
    compte.verifier("medical categories", ecarts(lus, attendus), [])
    attendus = {(f["acte"], "1", f["phase"]): int(f["nombre_dents"]) for f in faits("dentaire.csv") if f["surete"] == "verifie"}
    lus = {cle: [c for champs in reference.champs("CCAM_43a", *cle) for c in champs if not isinstance(c, bool)]
           for cle in attendus}
    compte.verifier("numbers of teeth", [(c, n, lus[c]) for c, n in attendus.items() if n and n not in lus[c]][:5], [])
    attendus = {f["code"]: f["libelle"] for f in faits("prestations.csv") if f["regroupement_ccam"] == "oui"}
    exemples = {code: cle for cle, code in regroupements.items() if code in attendus}
    lus = {code: reference.champs("CCAM_42", *cle)[0][1] for code, cle in exemples.items()}
    compte.verifier("labels of grouping codes", ecarts(lus, {c: attendus[c] for c in lus}), [])
    # A label is shorter than what is told of the code: its words are among those, and it denies where they do.
    sens = {f["code"]: f["sens"] for f in faits("exonerations.csv")}
    libelles = {code.strip(): libelle for a in actes for code, libelle in reference.champs("CCAM_25", a)}
    compte.verifier("exemption codes met", set(libelles) & set(sens) if sens else set(), set(libelles) if sens else set())
    compte.verifier("labels of exemption codes", [(c, l) for c, l in libelles.items() if c in sens and (
        {m[:5] for m in mots(l) if len(m) > 4} - {m[:5] for m in mots(sens[c])} or nie(l) != nie(sens[c]))], [])


def nie(texte):
    return re.search(r"\bn'|\b(ne|pas|sans|jamais)\b", texte.lower()) is not None


def enregistrements(texte, changer):
    """The listing written anew, each record changed."""
    sortie = io.StringIO()
    csv.writer(sortie, lineterminator="\n").writerows(changer(r) for r in csv.reader(io.StringIO(texte, newline="")))
    return sortie.getvalue()


def points_virgules(octets):
    """As French spreadsheets save it."""
    lignes = io.StringIO()
    csv.writer(lignes, delimiter=";").writerows(csv.reader(io.StringIO(octets.decode(), newline="")))
    return lignes.getvalue().encode()


def mauvais_fichiers(octets):
    """(what was done, bytes, passage of the sentence)"""
    texte = octets.decode()
    coupe = octets.index(b"\n19.03,")
    return [
        ("empty", b"", "vide"),
        ("blank", b"\n\n \n", "vide"),
        ("cut in a record", octets[:octets.index(b"\nAHQB027,") + 20], "tronqué"),
        ("cut in a quoted field", octets[:octets.index(b"- du larynx")], "tronqué"),
        ("cut between chapters", octets[:coupe + 1], "19.03"),
        ("cut among the modifiers", octets[:octets.index(b"\n19.03.04,") + 1], "ne définit pas le modificateur"),
        ("cut in the titles", octets[:200], "titres de colonnes"),
        ("Latin-1", texte.encode("latin-1", "replace"), "UTF-8"),
        ("Windows-1252", texte.encode("cp1252", "replace"), "UTF-8"),
        ("UTF-16 with its mark", texte.encode("utf-16"), "UTF-16"),
        ("UTF-16 without mark", texte.encode("utf-16-le"), "UTF-16"),
        ("columns swapped", enregistrements(texte, lambda r: [*r[:3], r[4], r[3], *r[5:]]).encode(), "colonne D"),
        ("prices swapped", enregistrements(texte, lambda r: [*r[:5], r[6], r[5], *r[7:]]).encode(), "colonne F"),
        ("column missing", enregistrements(texte, lambda r: r[:-1]).encode(), "colonne K"),
        ("column added", enregistrements(texte, lambda r: [*r, ""]).encode(), "12 colonnes"),
        ("title missing", octets[octets.index(b"\n") + 1:], "titre"),
        ("another file", b"%PDF-1.4\nnothing\n", "titre"),
    ]


def mauvais_enregistrements():
    """(record to change, by what, passage of the report, acts lost with it): the others must all be there."""
    return [
        (b"\nAHQB027,", b"\nAHQB0277,", "premier champ incompréhensible", 1),
        (b"\nAHQB027,", b"\nAHQB025,", "acte en double", 1),
        (b",1,0,51.84,51.84,,,2,ATM\n", b",1,0,cinq,51.84,,,2,ATM\n", "prix incompréhensible", 1),
        (b",1,0,51.84,51.84,,,2,ATM\n", b",1,A,51.84,51.84,,,2,ATM\n", "activité ou phase", 1),
        (b",1,0,51.84,51.84,,,2,ATM\n", b",1,0,51.84,51.84,,,2-x,ATM\n", "code d'exonération incompréhensible", 0),
        (b",1,0,51.84,51.84,,,2,ATM\n", b",1,0,51.84,51.84,,,9,ATM\n", "code d'exonération inconnu", 0),
        (b",1,0,51.84,51.84,,,2,ATM\n", b",1,0,51.84,51.84,,,2,ATM,\n", "enregistrement mal formé", 1),
        (b'\n"[F, P, S, U]"', b'\n"[F, P, S, X]"', "modificateur inconnu", 0),
        (b'\n"[F, P, S, U]"', b'\n"[F, P, SU]"', "liste de modificateurs incompréhensible", 0),
        (b"(GELE001)", b"(GELE901)", "acte associé inconnu", 0),
        (b"\n01.01.01,", b"\n01.01,", "chapitre en double", 0),
    ]


def verifier_listing(compte, listing, actes, dossier):
    debut = time.monotonic()
    fini = compiler(listing, dossier / "reference")
    duree = time.monotonic() - debut
    memoire = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss * 1024
    compte.verifier("compilation", (fini.returncode, fini.stderr), (0, ""))
    compte.verifier("compiled in time", duree < SECONDES, True)
    compte.verifier("compiled in little memory", memoire < OCTETS, True)
    verifier_contenu(compte, listing, actes, dossier / "reference")

    hors = compiler(listing, dossier / "hors", "--grille", "2")
    compte.verifier("the other prices", hors.returncode, 0)
    autres = lire(listing, 6)[0]
    prix = {cle: int(100 * float(m) + 0.5) for cle, m in listes(dossier / "hors", "AHQB024").items()}
    compte.verifier("a price of the other column", prix["AHQB024", "1", "0"], autres["AHQB024", "1", "0"])

    octets = listing.read_bytes()
    essai = dossier / "essai.csv"
    essai.write_bytes(octets.replace(b"\nAHQB027,", b"\nAHQB0277,", 1))
    strict = compiler(essai, dossier / "strict", "--strict")
    compte.verifier("dropped records are a failure when one wants", (strict.returncode, (dossier / "strict").exists()),
                    (2, False))
    essai.write_bytes(points_virgules(octets))
    fini = compiler(essai, dossier / "points-virgules")
    compte.verifier("semicolons", (fini.returncode, f": {actes} actes" in fini.stdout), (0, True))
    for quoi, mauvais, passage in mauvais_fichiers(octets):
        essai.write_bytes(mauvais)
        fini = compiler(essai, dossier / "mauvais")
        dit = passage in fini.stderr and fini.stderr.count("\n") == 2
        compte.verifier(f"file: {quoi}", (fini.returncode, dit or fini.stderr, (dossier / "mauvais").exists()), (2, True, False))
    for ancien, nouveau, passage, perdus in mauvais_enregistrements():
        essai.write_bytes(octets.replace(ancien, nouveau, 1))
        fini = compiler(essai, dossier / "fautif")
        compte.verifier(f"record: {nouveau}",
                        (fini.returncode, passage in fini.stdout, f": {actes - perdus} actes" in fini.stdout), (0, True, True))


def main():
    essai = subprocess.run([sys.executable, "-c", f"import ctypes; ctypes.CDLL({str(BIBLIOTHEQUE)!r})"], capture_output=True)
    if essai.returncode != 0:
        passer("this build of the library does not load into Python")
    compte = Compte()
    for listing, actes in ((PETIT, 19), (PUBLIC, 8257)):
        if listing.is_file():
            with tempfile.TemporaryDirectory() as nom:
                verifier_listing(compte, listing, actes, pathlib.Path(nom))
    compte.finir()


def listes(reference, acte):
    """The prices of an act as the listing of the compiled file shows them."""
    fini = subprocess.run([COMMANDE, "lister", reference, acte, "--json"], capture_output=True, text=True, check=True)
    return {(acte, a["code"], p["code"]): p["historique"][0]["prix"]
            for a in json.loads(fini.stdout)["activite"] for p in a["phase"]}


if __name__ == "__main__":
    main()
