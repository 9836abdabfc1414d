#!/usr/bin/env python3
"""The example invoices against their expected answers, the batch mode, and what the command says of faults.

Usage: verifier-exemples.py COMMAND COMPILED_REFERENCE SOURCES
"""
import copy
import json
import pathlib
import re
import subprocess
import sys

sys.dont_write_bytecode = True
from aides.commande import Commande, Compte, echantillon  # noqa: E402

REPONDU, CODE_ERREUR, MAUVAIS_USAGE = 0, 1, 2


def ligne(**champs):
    return lambda facture: facture["lignes"][0].update(champs)


def dans(cle, **champs):
    return lambda facture: facture[cle].update(champs)


def racine(**champs):
    return lambda facture: facture.update(champs)


def deplacement(**champs):
    return lambda facture: facture["lignes"][0]["deplacements"][1].update(champs)


# What is wrong with an invoice that is good otherwise, and what standard error says: the JSON path of the fault,
# then why. A null member is one that is missing.
FAUTES = [
    (racine(lignes=None), "$.lignes : une liste est attendue"),
    (racine(lignes={}), "$.lignes : une liste est attendue"),
    (racine(lignes=[]), "$.lignes : il faut au moins une ligne"),
    (racine(lignes=["x"]), "$.lignes[0] : un objet est attendu"),
    (racine(professionnel=None), "$.professionnel : un objet est attendu"),
    (racine(natureAssurance=None), "$.natureAssurance : attendu : AS, MA, AT, PM"),
    (racine(natureAssurance="XX"), "$.natureAssurance : attendu : AS, MA, AT, PM"),
    (racine(autre=1), "$.autre : champ inconnu"),
    (racine(caisePS="691"), "$.caisePS : champ inconnu ; vouliez-vous « caissePS » ?"),
    (racine(caissePS=691), "$.caissePS : un texte est attendu"),
    (racine(caissePS="6911"), "$.caissePS : 3 caractères au plus"),
    (racine(remplacant={"numeroPS": "1", "autre": 1}), "$.remplacant.autre : champ inconnu"),
    (dans("professionnel", numeroPS=None), "$.professionnel.numeroPS : manque"),
    (dans("professionnel", specialitePS=None), "$.professionnel.specialitePS : manque"),
    (dans("professionnel", autre=1), "$.professionnel.autre : champ inconnu"),
    (dans("professionnel", nomPS="\u6f22"), "$.professionnel.nomPS : caractère hors ISO-8859-1"),
    (dans("professionnel", dateNaissance="1980-01-01"),
     "$.professionnel.dateNaissance : se donne dans $.beneficiaire"),
    (dans("beneficiaire", dateNaissance=None), "$.beneficiaire.dateNaissance : manque"),
    (dans("beneficiaire", dateNaissance="1981-02-29"),
     "$.beneficiaire.dateNaissance : une date AAAA-MM-JJ du calendrier"),
    (dans("beneficiaire", autre=1), "$.beneficiaire.autre : champ inconnu"),
    (ligne(date=None), "$.lignes[0].date : manque"),
    (ligne(date="15.01.2026"), "entrée standard : $.lignes[0].date : une date AAAA-MM-JJ du calendrier est attendue "
                               "(lu : 15.01.2026)"),
    (ligne(date=20260115), "$.lignes[0].date : une date AAAA-MM-JJ est attendue"),
    (ligne(acte=None), "$.lignes[0].acte : manque"),
    (ligne(acte="qzja002"), "$.lignes[0].acte : lettres capitales et chiffres seulement"),
    (ligne(acte="Q" * 14), "$.lignes[0].acte : 13 caractères au plus"),
    (ligne(activite=1), "$.lignes[0].activite : un texte est attendu"),
    (ligne(autre=1), "$.lignes[0].autre : champ inconnu"),
    (ligne(modificateur1="P"), "$.lignes[0].modificateur1 : champ inconnu"),
    (ligne(numero="1"), "$.lignes[0].numero : un nombre entier est attendu"),
    (ligne(numero=-1), "$.lignes[0].numero : un nombre entier est attendu"),
    (ligne(numero=100000), "$.lignes[0].numero : 5 caractères au plus"),
    (ligne(prixUnitaire="26.60"), "$.lignes[0].prixUnitaire : un montant en euros est attendu"),
    (ligne(prixUnitaire=-1), "$.lignes[0].prixUnitaire : un nombre de 0 à 9 chiffres est attendu"),
    (ligne(prixUnitaire=1e300), "$.lignes[0].prixUnitaire : un nombre de 0 à 9 chiffres est attendu"),
    (ligne(prixUnitaire=26.605), "$.lignes[0].prixUnitaire : trop de décimales"),
    (ligne(tauxRemboursement=True), "$.lignes[0].tauxRemboursement : un nombre est attendu"),
    (ligne(modificateurs="P"), "$.lignes[0].modificateurs : une liste est attendue"),
    (ligne(modificateurs=list("PSUFR")), "$.lignes[0].modificateurs : 4 éléments au plus"),
    (ligne(modificateurs=["P", None]), "$.lignes[0].modificateurs[1] : un texte est attendu"),
    (ligne(modificateurs=["P", "RS"]), "$.lignes[0].modificateurs[1] : 1 caractère au plus"),
    (ligne(dents=["11"] * 17), "$.lignes[0].dents : 16 éléments au plus"),
    (ligne(dents=["11", 12]), "$.lignes[0].dents[1] : un texte est attendu"),
    (ligne(dents=["11", "112"]), "$.lignes[0].dents[1] : 2 caractères au plus"),
    (ligne(executant="x"), "$.lignes[0].executant : un objet est attendu"),
    (ligne(executant={"specialitePS": "04"}), "$.lignes[0].executant.numeroPS : manque"),
    (ligne(executant={"numeroPS": "1", "specialitePS": "04", "autre": 1}),
     "$.lignes[0].executant.autre : champ inconnu"),
    (ligne(executant={"numeroPS": "1", "specialitePS": "04", "numero": 1}),
     "$.lignes[0].executant.numero : champ inconnu"),
    (ligne(outrepassees="R670"), "$.lignes[0].outrepassees : une liste de références de règles est attendue"),
    (ligne(outrepassees=[670]), "$.lignes[0].outrepassees[0].reference : un texte est attendu"),
    (ligne(deplacements={"type": "forfait"}), "$.lignes[0].deplacements : une liste est attendue"),
    (deplacement(type="velo"), "$.lignes[0].deplacements[1].type : attendu : forfait, kilometres"),
    (deplacement(date="2026-13-01"), "$.lignes[0].deplacements[1].date : une date AAAA-MM-JJ du calendrier"),
    (deplacement(autre=1), "$.lignes[0].deplacements[1].autre : champ inconnu"),
]

# Texts that are no invoice.
MAL_FORMES = [
    ("", "- : JSON mal formé, octet 1"),
    ('{"lignes": ', "- : JSON mal formé"),
    ("{} {}", "- : JSON mal formé, octet 4"),
    ("[]", "$ : un objet est attendu"),
    ("null", "$ : un objet est attendu"),
    ('{"lignes": ' + "[" * 1000000 + "]" * 1000000 + "}", "- : JSON trop imbriqué"),
]

# Well-formed invoices that the library cannot check: its code.
CODES = [
    (ligne(baseTheoriqueAMO=None), "0xD114"),
    (ligne(modificateurs=["", "P"]), "0xD107"),
    (ligne(dents=["46", "46"]), "0xD108"),
    (deplacement(date="2026-01-16"), "0xD106"),
    (lambda facture: facture.update(lignes=[dict(facture["lignes"][0], deplacements=None)] * 201), "0xE100"),
]

# Options that do not stand together, files that are not there.
USAGES = [
    (["--lot", "--json"], None, "--json"),
    (["--detail"], None, "--detail"),
    (["une.json", "autre.json"], None, "fichier illisible : une.json (ce fichier ou ce répertoire n'existe pas)"),
    (["--lot", "."], None, "fichier illisible : . (c'est un répertoire)"),
    (["."], None, "fichier illisible : . (c'est un répertoire)"),
    (["--lot"], "ici\nrepertoiretravail=/", "caractère de commande"),
    (["--lot"], "x" * 1000, "nom trop long"),
    (["absente.json"], None, "fichier illisible : absente.json"),
    (["--lot", "absente.json"], None, "fichier illisible : absente.json"),
    (["--inconnue"], None, "--inconnue"),
    (["--lot"], "/nulle/part", "pas de tablebin.nox dans /nulle/part"),
]


# Faulty questions, and what the answer says of the cause: the code and its table, what resembles it, the day.
CONSULTER = ["consulter", "CCAM_37", "phase=0", "--date", "2026-01-15"]
CAUSES = [
    ([*CONSULTER, "acte=HHFA0O1", "activite=1"], "acte « HHFA0O1 » absent de la table des actes ; vouliez-vous « HHFA001 »"),
    ([*CONSULTER, "acte=HHFA001", "activite=7"], "activité « 7 » absent de la table des activités de l'acte ; vouliez-vous « 1 », « 4 » ?"),
    ([*CONSULTER[:-1], "1990-01-01", "acte=HHFA001", "activite=1"], "l'acte HHFA001 vaut à partir du 25/03/2005"),
    (["consulter", "TB11_1", "modificateur=0"], "modificateur « 0 » absent de la table des modificateurs"),
    (["verifier", "C_Executant", "acte=HHFA0O1", "activite=1", "specialite=04"], "vouliez-vous « HHFA001 »"),
]


def sans(objet, *cles):
    return {cle: valeur for cle, valeur in objet.items() if cle not in cles}


def sans_raisons(reponse):
    """An answer as short as the expected ones: without the steps, and without the data behind the errors."""
    courte = sans(reponse, "exoneration") | {"erreurs": [sans(e, "donnees") for e in reponse["erreurs"]]}
    return courte | ({"lignes": [sans(ligne, "etapes") for ligne in reponse["lignes"]]} if "lignes" in reponse else {})


def au_centime(montant):
    return int(montant * 100 + 0.5 + 1e-5) / 100


OPERATIONS = {"depart": lambda montant, operande: operande, "fois": lambda montant, operande: montant * operande,
              "plus": lambda montant, operande: montant + operande, "plafond": min,
              "arrondi": lambda montant, operande: au_centime(montant)}


def refaire(etapes, nom, compte):
    """Makes the operations that were told once more; the amount at their end, None without any."""
    montant = None
    for etape in etapes:
        montant = OPERATIONS[etape["operation"]](montant, etape["operande"])
        compte.verifier(f"{nom}, {etape['etape']}", round(montant, 6), round(etape["resultat"], 6))
    return montant


def verifier_etapes(nom, reponse, compte):
    """The steps lead to the amounts that the check compared; what they add up is told one by one. Counts them."""
    for ligne in reponse["lignes"]:
        etapes = ligne["etapes"]
        compte.verifier(f"{nom}: price of line {ligne['numero']}", refaire(etapes["prix"], nom, compte), ligne["prixCalcule"])
        base = refaire(etapes["base"], nom, compte)
        compte.verifier(f"{nom}: base of line {ligne['numero']}", base,
                        ligne["baseCalculee"] and au_centime(ligne["baseCalculee"]))
        operandes = {etape["etape"]: etape["operande"] for etape in etapes["base"]}
        comptes = [m for m in etapes.get("modificateurs", []) if m["compte"]]
        taux = [m["taux"] for m in comptes if "taux" in m]
        compte.verifier(f"{nom}: modifiers", [round(operandes.get("tauxModificateurs", 1), 6),
                                              round(operandes.get("forfaitsModificateurs", 0), 6)],
                        [round(max(0, sum(taux) - len(taux) + 1) if taux else 1, 6),
                         round(sum(m.get("forfait", 0) for m in comptes), 6)])
        compte.verifier(f"{nom}: each datum has its day, but those of the act for good",
                        [d for e in etapes["prix"] + etapes["base"] for d in e["donnees"] if not d["depuis"] and d["table"] != "actes"]
                        + [e for e in etapes["prix"] if e["etape"] == "prixUnitaire" and not e["donnees"]], [])
    for seance in (reponse["exoneration"] or {"seances": []})["seances"]:
        compte.verifier(f"{nom}: séance", round(sum(c["montant"] for c in seance["lignes"]), 6), round(seance["somme"], 6))
    for erreur in reponse["erreurs"]:
        compte.verifier(f"{nom}: {erreur['reference']} says what decided", erreur["donnees"] != [] or erreur["reference"]
                        in ("R511A", "R580", "R795A", "R785"), True)
    return sum(len(ligne["etapes"]["base"]) for ligne in reponse["lignes"])


def verifier_causes(commande, sources, compte):
    def lancer(*arguments):
        return subprocess.run([commande.programme, *arguments], capture_output=True, text=True)

    for question, cause in CAUSES:
        fini = lancer(*question, "--json", "--reference", commande.reference)
        compte.verifier(f"cause: {cause}", (fini.returncode, cause if cause in fini.stderr else fini.stderr), (CODE_ERREUR, cause))
        dite = json.loads(fini.stdout)["cause"]
        compte.verifier(f"cause in JSON: {cause}", dite["phrase"] in fini.stderr and dite["table"] != "", True)
    regles = re.findall(r'identifiant = "(\w+)"\nreference = "(\w+)"', (sources / "reference/socle/regles.toml").read_text())
    titres = [ligne for ligne in (sources / "docs/rules.md").read_text().splitlines() if ligne.startswith("### PROD")]
    compte.verifier("every rule has its section, by both names",
                    [r for r in regles if not any({*r} <= {*re.findall(r"\w+", titre)} for titre in titres)], [])
    compte.verifier("a rule by both names", lancer("regle", "r550").stdout, lancer("regle", "PROD550").stdout)
    compte.verifier("what it prints", "each modifier applies to the act" in lancer("regle", "R550").stdout, True)


def verifier_simulation(commande, facture, compte):
    """A dearer act: the totals rise by what its line does, R850 appears, and the reference stays what it was."""
    essai = modifier(facture, lambda f: [ligne.pop("outrepassees", None) for ligne in f["lignes"]])
    ligne = next(ligne for ligne in essai["lignes"] if "acte" in ligne)
    changement = "CCAM_37 montant={:.2f} ".format(ligne["prixUnitaire"] + 10) + " ".join(
        f"{cle}={ligne[cle]}" for cle in ("acte", "activite", "phase"))
    appel = [commande.programme, "simuler", "--changement", changement, "--effet", ligne["date"], "--json", "--reference",
             commande.reference]
    for _ in range(2):
        lu = json.loads(subprocess.run(appel, input=json.dumps(essai), capture_output=True, text=True, check=True).stdout)
        compte.verifier("simulation: prices", round(lu["apres"]["prix"] - lu["avant"]["prix"], 2), 10.0)
        compte.verifier("simulation: its act alone", [a["acte"] for a in lu["parActe"]], [ligne["acte"]])
        compte.verifier("simulation: the billed price is not the act's any more", lu["parRegle"],
                        [{"regle": "R850", "erreursAvant": 0, "erreursApres": 1}])


def verifier_exemples(commande, exemples, compte):
    factures = sorted(exemples.glob("*.json"))
    attendus = sorted(p.name for p in (exemples / "attendus").glob("*.json"))
    compte.verifier("every example has its answer", [p.name for p in factures], attendus)
    couples = [(json.loads(chemin.read_text()), json.loads((exemples / "attendus" / chemin.name).read_text()))
               for chemin in factures]
    etapes = 0
    for chemin, (_, attendu) in echantillon(list(zip(factures, couples))):
        statut, sortie, erreurs = commande.controler("--json", "--expliquer", str(chemin))
        compte.verifier(f"{chemin.stem}: standard error", erreurs, "")
        compte.verifier(f"{chemin.stem}: answer", sans_raisons(json.loads(sortie)), attendu)
        etapes += verifier_etapes(chemin.stem, json.loads(sortie), compte)
        statut_attendu = REPONDU if attendu["verdict"] == "acceptee" else CODE_ERREUR
        compte.verifier(f"{chemin.stem}: status", statut, statut_attendu)
    compte.verifier("steps were told", etapes > 6 * len(echantillon(couples)), True)
    return couples


def verifier_tableau(commande, exemples, compte):
    """A person reads the same answer: every line, every error once, then the verdict."""
    statut, sortie, _ = commande.controler(str(exemples / "trois-erreurs.json"))
    attendu = json.loads((exemples / "attendus" / "trois-erreurs.json").read_text())
    compte.verifier("table: status", statut, CODE_ERREUR)
    compte.verifier("table: errors", re.findall(r"^(R\w+) — ", sortie, re.M),
                    [e["reference"] for e in attendu["erreurs"]])
    compte.verifier("table: labels", [e["libelle"] for e in attendu["erreurs"] if e["libelle"] not in sortie], [])
    compte.verifier("table: first line", re.search(r"^ +1 .*$", sortie, re.M).group().split(),
                    ["1", "HMFC004", "330,00", "€", "300,03", "€", "330,00", "€", "330,00", "€", "T"])
    compte.verifier("table: verdict", sortie.splitlines()[-1], "Facture refusée : 3 erreurs.")


def verifier_lot(commande, couples, compte):
    """The whole of the examples as one batch, with records in the middle that cannot be checked."""
    milieu = len(couples) // 2
    factures = [facture for facture, _ in couples]
    reponses = [attendu for _, attendu in couples]
    sans_base = modifier(factures[0], CODES[0][0])
    illisibles = ['{"lignes": ', sans_base]
    statut, obtenues, erreurs = commande.lot(factures[:milieu] + illisibles + factures[milieu:], "--detail")
    obtenues = [sans_raisons(o) if "erreurs" in o else o for o in obtenues]
    compte.verifier("batch: status with records not checked", statut, CODE_ERREUR)
    compte.verifier("batch: one answer a record", len(obtenues), len(couples) + len(illisibles))
    compte.verifier("batch: answers in order", obtenues[:milieu] + obtenues[milieu + 2:], reponses)
    compte.verifier("batch: record that is no JSON", obtenues[milieu]["code"], None)
    compte.verifier("batch: where it is not", obtenues[milieu]["erreur"].startswith("$ : JSON mal formé"), True)
    compte.verifier("batch: code of the library", obtenues[milieu + 1]["code"], "0xD114")
    acceptees = sum(reponse["verdict"] == "acceptee" for reponse in reponses)
    decompte = (f"{len(couples) + 2} factures : {acceptees} acceptées, {len(couples) - acceptees} avec erreurs, "
                "2 non contrôlées ; ")
    compte.verifier("batch: count", erreurs[:len(decompte)], decompte)

    statut, obtenues, _ = commande.lot(factures)
    compte.verifier("batch: status", statut, REPONDU)
    compte.verifier("batch: no lines without --detail", [o for o in obtenues if "lignes" in o], [])
    ancien = modifier(factures[0], lambda facture: [un.update(date="0999-01-01", deplacements=None)
                                                    for un in facture["lignes"]])
    references = {erreur["reference"] for erreur in commande.lot([ancien])[1][0]["erreurs"]}
    compte.verifier("line dated before the classification", {"R510", "R511A"} <= references, True)
    inconnu = modifier(factures[0], dans("beneficiaire", dateNaissance="1981-31-99"))
    compte.verifier("birth day that is not known", commande.lot([inconnu])[1][0].get("erreur"), None)
    nuls = modifier(factures[0], lambda facture: (facture.update(remplacant=None, caissePS=None),
                                                  facture["lignes"][0].update(executant=None, modificateurs=None)))
    _, obtenues, _ = commande.lot([nuls, factures[0]], "--detail")
    # Without its modifiers the first line is billed too dear.
    compte.verifier("batch: members that are null", [o["code"] for o in obtenues], ["0xD121", "0x0000"])
    statut, obtenues, _ = commande.lot(["", " \r", json.dumps(factures[0])])
    compte.verifier("batch: blank lines are no records", (statut, len(obtenues)), (REPONDU, 1))


def modifier(facture, changement):
    copie = copy.deepcopy(facture)
    changement(copie)
    return copie


def verifier_fautes(commande, facture, compte):
    def fautive(changement):
        return json.dumps(modifier(facture, changement))

    essais = [([], fautive(changement), None, MAUVAIS_USAGE, message) for changement, message in FAUTES]
    essais += [([], texte, None, MAUVAIS_USAGE, message) for texte, message in MAL_FORMES]
    essais += [([], fautive(changement), None, CODE_ERREUR, code + " : ") for changement, code in CODES]
    essais += [(options, "", reference, MAUVAIS_USAGE, message) for options, reference, message in USAGES]
    for options, texte, reference, statut_attendu, message in echantillon(essais):
        statut, sortie, erreurs = commande.controler(*options, entree=texte, reference=reference)
        dit = erreurs.startswith("noxlux : ") and message in erreurs
        compte.verifier(f"fault: {message}", (statut, sortie, message if dit else erreurs), (statut_attendu, "", message))


def main():
    programme, reference, sources = sys.argv[1:4]
    compte = Compte()
    commande = Commande(programme, reference)
    exemples = pathlib.Path(sources) / "examples"
    couples = verifier_exemples(commande, exemples, compte)
    verifier_tableau(commande, exemples, compte)
    verifier_lot(commande, couples, compte)
    verifier_causes(commande, pathlib.Path(sources), compte)
    verifier_simulation(commande, json.loads((exemples / "chirurgie-et-anesthesie.json").read_text()), compte)
    verifier_fautes(commande, json.loads((exemples / "visite-avec-deplacements.json").read_text()), compte)
    compte.finir()


main()
