#!/usr/bin/env python3
"""The public listing compiled with the public complement: invoices worked out by hand from the public rules, each on the
reference of its professional's profile; successive listings; dated prices. Skipped where the listing is not at hand.

Usage: verifier-public.py COMMAND COMPILED_REFERENCE SOURCES
"""
import csv
import json
import os
import pathlib
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True
from aides.commande import Compte  # noqa: E402

COMMANDE = pathlib.Path(sys.argv[1]).resolve()
SOURCES = pathlib.Path(sys.argv[3]).resolve()
LISTING = pathlib.Path(os.environ.get("NOXLUX_LISTING", "/absent"))
COMPLEMENT = SOURCES / "reference/public"
FACTURES = SOURCES / "tests/exemples/factures_publiques.csv"
JOUR = "2026-01-15"


def lancer(*arguments, entree=None):
    return subprocess.run([COMMANDE, *arguments], input=entree, capture_output=True, text=True, timeout=600)


def compiler(sortie, *options):
    return lancer("compiler", "--socle", SOURCES / "reference/socle", "--complement", COMPLEMENT, "-o", sortie, *options)


def consulter(reference, identifiant, date, **champs):
    fini = lancer("consulter", identifiant, *(f"{cle}={valeur}" for cle, valeur in champs.items()), "--date", date,
                  "--reference", reference, "--json")
    return json.loads(fini.stdout) if fini.returncode == 0 else None


def regroupements():
    """The grouping code of each act and activity."""
    codes, acte = {}, None
    with open(LISTING, encoding="utf-8", newline="") as fichier:
        for champs in csv.reader(fichier):
            acte = champs[0].strip() if len(champs[0].strip()) == 7 else acte
            if len(champs) > 10 and champs[3].strip():
                codes.setdefault((acte, champs[3].strip()), champs[10].strip())
    return codes


def ligne(texte, codes):
    """A line of an invoice from its short form."""
    acte, prix, base, *options = texte.split()
    options = dict(option.split(":", 1) for option in options)
    acte, activite, phase = acte.split(".")
    resultat = {"date": options.get("j", JOUR), "prestation": codes[acte, activite], "acte": acte, "activite": activite,
                "phase": phase, "prixUnitaire": float(prix), "baseRemboursement": float(base),
                "baseTheoriqueAMO": float(base), "tauxRemboursement": 1.0 if "x" in options else 0.7}
    for cle, nom, forme in (("m", "modificateurs", list), ("a", "codeAssociation", str), ("x", "exonerationTM", str),
                            ("d", "dents", lambda t: t.split("+"))):
        if cle in options:
            resultat[nom] = forme(options[cle])
    if "s" in options:
        resultat["executant"] = {"numeroPS": "75234567", "cleNumeroPS": "8", "specialitePS": options["s"]}
    return resultat


def facture(cas, codes):
    resultat = {"professionnel": {"numeroPS": "75123456", "cleNumeroPS": "7", "conventionPS": "1",
                                  "specialitePS": cas["specialite"]},
                "beneficiaire": {"dateNaissance": cas["naissance"]}, "natureAssurance": "AS", "caissePS": "751",
                "lignes": [ligne(texte, codes) for texte in cas["lignes"].split("|")]}
    for autre in cas["autres"].split():
        if autre == "remplacant":
            resultat["remplacant"] = {"numeroPS": "75987654", "cleNumeroPS": "1"}
        elif autre == "nonconventionne":
            resultat["professionnel"]["conventionPS"] = "0"
        elif autre.startswith("caisse="):
            resultat["caissePS"] = autre.removeprefix("caisse=")
        else:
            resultat["natureAssurance"] = autre
    return resultat


def verifier_factures(compte, profils):
    """A base may be billed to the cent below what is computed."""
    lignes = [texte for texte in FACTURES.read_text(encoding="utf-8").splitlines() if not texte.startswith("#")]
    cas = list(csv.DictReader(lignes, delimiter=";"))
    codes = regroupements()
    entree = "".join(json.dumps(facture(c, codes)) + "\n" for c in cas)
    page = profils / "rapport.html"
    reponses = lancer("controler", "--lot", "--detail", "--rapport", page, "--reference", profils, entree=entree).stdout.splitlines()
    compte.verifier("as many answers as invoices", len(reponses), len(cas))
    erreurs = lancer("controler", "--csv", "--reference", profils, entree=entree).stdout.splitlines()[1:]
    compte.verifier("errors as CSV", len(erreurs), sum(len(json.loads(r).get("erreurs", ())) for r in reponses))
    compte.verifier("report over all profiles", [dit for dit in ("R793", "HHFA016", "QZJA002") if dit not in page.read_text()], [])
    for attendu, texte in zip(cas, reponses):
        reponse = json.loads(texte)
        erreurs = sorted(e["reference"] for e in reponse.get("erreurs", [reponse.get("erreur")]))
        compte.verifier(f"{attendu['cas']}: errors", erreurs, sorted(attendu["attendu"].split()))
        if not attendu["attendu"]:
            ecarts = [(l["baseFacturee"], l["baseCalculee"]) for l in reponse.get("lignes", [])
                      if l["baseCalculee"] is None or not -0.001 < l["baseCalculee"] - l["baseFacturee"] < 0.0101]
            compte.verifier(f"{attendu['cas']}: bases ({attendu['calcul']})", ecarts, [])


def montant(reference, acte, date):
    """The unit price of an act at a date; nothing when the library knows none then."""
    reponse = consulter(reference, "CCAM_37", date, acte=acte, activite=1, phase=0)
    return reponse and reponse[0]["champs"]["montant"]


def lister(reference, *acte):
    return json.loads(lancer("lister", reference, *acte, "--json").stdout)


def vie(reference, acte):
    lu = lister(reference, acte)
    return lu["creation"], lu["fin"]


def verifier_listes(compte, dossier):
    """Two successive listings: a price that changed, an act that is gone, one that is new; dated prices beside them."""
    actuelle = LISTING.read_text(encoding="utf-8")
    ancienne = (actuelle.replace("version 81 applicable 01/01/2026", "version 80 applicable 01/07/2025", 1)
                .replace(",1,0,195.84,187.84,", ",1,0,190.00,180.00,", 1).replace("\nHHFA001,", "\nHHFA901,", 1))
    (dossier / "v80.csv").write_text(ancienne, encoding="utf-8")
    (dossier / "prix.csv").write_text("acte;activite;phase;effet;prix\nHHFA016;1;0;2012-03-01;170.5\n"
                                      "HHFA016;1;0;hier;1\nABCD999;1;0;2012-03-01;1\n", encoding="utf-8")
    deux = dossier / "deux"
    fini = compiler(deux, "--listing", LISTING, "--listing", dossier / "v80.csv", "--historique", dossier / "prix.csv")
    compte.verifier("two listings", (fini.returncode, fini.stderr), (0, ""))
    compte.verifier("a dated price that is no price", "1 : prix daté incompréhensible" in fini.stdout, True)
    for date, attendu in (("2011-01-01", None), ("2012-03-01", 170.5), ("2025-06-30", 170.5), ("2025-07-01", 190.0),
                          ("2025-12-31", 190.0), ("2026-01-01", 195.84)):
        compte.verifier(f"price at {date}", montant(deux, "HHFA016", date), attendu)
    compte.verifier("life of an act that is gone", vie(deux, "HHFA901"), ("2005-03-01", "2025-12-31"))
    compte.verifier("life of an act that is new", vie(deux, "HHFA001"), ("2026-01-01", None))
    compte.verifier("an act of both, before them", montant(deux, "HHFA001", "2025-12-31"), None)
    verifier_acte_entier(compte, dossier, deux)
    sans = dossier / "sans"
    compiler(sans, "--listing", LISTING, "--sans-anteriorite")
    compte.verifier("nothing is assumed", [montant(sans, "HHFA016", d) for d in ("2025-12-31", "2026-01-01")],
                    [None, 195.84])
    un = dossier / "un"
    compiler(un, "--listing", dossier / "v80.csv")
    versions = [lister(r)["entete"]["versionReferentiel"] for r in (un, deux)]
    compte.verifier("versions of the references rise", "0121" <= versions[0] < versions[1], True)
    changements = json.loads(lancer("comparer", un, deux, "--json").stdout)
    compte.verifier("acts that came", [c["acte"] for c in changements["actesAjoutes"]], ["HHFA001"])


ACTE_ENTIER = """[[acte]]
code = "HHFA016"
libelle_court = "Appendicectomie"
libelle_long = "Appendicectomie du cabinet"
type = "0"
menu = 1
creation = 2005-03-25
frais_deplacement = "N"
natures_assurance = ["AS"]
[[acte.historique]]
effet = 2005-03-25
admission = "1"
exonerations = ["1"]
[[acte.activite]]
code = "1"
[[acte.activite.historique]]
effet = 2005-03-25
regroupement = "ADC"
categorie_medicale = "02"
classes_specialite = ["04"]
[[acte.activite.phase]]
code = "0"
historique = [{ effet = 2010-01-01, prix = 100.0 }, { effet = 2026-07-01, prix = 200.0 }]
"""


def verifier_acte_entier(compte, dossier, reference):
    """A source that tells a whole act of the listings: its past and its future stay, what it says otherwise is told."""
    (dossier / "acte.toml").write_text(ACTE_ENTIER, encoding="utf-8")
    fini = compiler(reference, "--listing", LISTING, "--complement", dossier / "acte.toml", "--verbeux")
    compte.verifier("a whole act of a source", (fini.returncode, fini.stderr), (0, ""))
    compte.verifier("what it says otherwise", [dit for dit in ("HHFA016 : ", "libellé", "activité 1, modificateurs", "activité 1, phase 0, prix")
                                               if dit not in fini.stdout], [])
    compte.verifier("its prices", [montant(reference, "HHFA016", d) for d in ("2012-01-01", JOUR, "2026-07-01")], [100.0, 195.84, 200.0])


def main():
    verifie = subprocess.run([sys.executable, COMPLEMENT / "jours_feries.py", "--verifier"], capture_output=True, text=True)
    compte = Compte()
    compte.verifier("holidays are what their rules give", (verifie.returncode, verifie.stderr), (0, ""))
    if not LISTING.is_file():
        print("the public listing is not at hand: its tests are skipped")
        compte.finir()
        return
    with tempfile.TemporaryDirectory() as nom:
        dossier = pathlib.Path(nom)
        fini = compiler(dossier / "profils", "--listing", LISTING, "--tous-profils", "--strict")
        compte.verifier("all profiles, nothing dropped", (fini.returncode, fini.stderr), (0, ""))
        verifier_factures(compte, dossier / "profils")
        verifier_listes(compte, dossier)
    compte.finir()


if __name__ == "__main__":
    main()
