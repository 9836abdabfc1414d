#!/usr/bin/env python3
"""The example invoices against their expected answers, the batch mode, and what the command says of faults.

Usage: verifier-exemples.py COMMAND COMPILED_REFERENCE SOURCES
"""
import copy
import json
import pathlib
import re
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


def verifier_exemples(commande, exemples, compte):
    factures = sorted(exemples.glob("*.json"))
    attendus = sorted(p.name for p in (exemples / "attendus").glob("*.json"))
    compte.verifier("every example has its answer", [p.name for p in factures], attendus)
    couples = [(json.loads(chemin.read_text()), json.loads((exemples / "attendus" / chemin.name).read_text()))
               for chemin in factures]
    for chemin, (_, attendu) in echantillon(list(zip(factures, couples))):
        statut, sortie, erreurs = commande.controler("--json", str(chemin))
        compte.verifier(f"{chemin.stem}: standard error", erreurs, "")
        compte.verifier(f"{chemin.stem}: answer", json.loads(sortie), attendu)
        statut_attendu = REPONDU if attendu["verdict"] == "acceptee" else CODE_ERREUR
        compte.verifier(f"{chemin.stem}: status", statut, statut_attendu)
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
    verifier_fautes(commande, json.loads((exemples / "visite-avec-deplacements.json").read_text()), compte)
    compte.finir()


main()
