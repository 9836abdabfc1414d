#!/usr/bin/env python3
"""What a person or a script meets at the command: answers, refusals, completion, batches, and what is left behind.

Usage: verifier-commande.py COMMAND COMPILED_REFERENCE SOURCES
"""
import contextlib
import csv
import io
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time

sys.dont_write_bytecode = True
from aides.commande import Compte, echantillon  # noqa: E402

PROGRAMME, REFERENCE, SOURCES = sys.argv[1:4]
EXEMPLES = pathlib.Path(SOURCES) / "examples"
ICI = ("-r", REFERENCE)


def lancer(*arguments, entree=b"", sortie=subprocess.PIPE, **environnement):
    """(exit status, standard output, standard error) of one run in which every directory of its own is counted."""
    with tempfile.TemporaryDirectory() as temporaire:
        env = {**os.environ, "TMPDIR": temporaire, "NOXLUX_REFERENCE": "", **environnement}
        fini = subprocess.run([PROGRAMME, *arguments], input=entree, stdout=sortie, stderr=subprocess.PIPE, env=env,
                              timeout=300)
        restes = os.listdir(temporaire)
    dit = fini.stderr.decode() + "".join(f"left behind: {reste}\n" for reste in restes)
    return fini.returncode, (fini.stdout or b"").decode(), dit


# Arguments, then what they give: the exit status, what is said on its output (0 and 1) or among the errors (2).
ESSAIS = [
    (["--version"], 0, "noxlux 1."),
    (["help", "controler"], 0, "--rapport"),
    (["help", "controller"], 2, "vouliez-vous « controler » ?"),
    (["recherher", "x"], 2, "commande inconnue : recherher ; vouliez-vous « rechercher » ?"),
    (["controler", "--detaille"], 2, "vouliez-vous « --detail » ?"),
    (["compiler", "x", "-o", "y", "--grille", "abc"], 2, "--grille = abc : ce n'est pas une valeur possible"),
    (["version"], 2, "--reference"),
    (["consulter", "CCAM_73", "acte=HHFA001", *ICI], 2, "« CCAM_37 »"),
    (["consulter", "CCAM_37", "act=HHFA001", *ICI], 2, "vouliez-vous « acte »"),
    (["consulter", "CCAM_37", "Acte=hhfa001", "activité=1", "phase=0", "-d", "15/01/2026", *ICI], 0, "176,79 €"),
    (["consulter", "CCAM_37", "acte=HHFA001", "activite=1", "phase=0", "-d", "31/02/2026", *ICI], 2, "15/01/2026"),
    (["consulter", "CCAM_8", "acte=HHFA999", "--json", *ICI], 1, '"code": "0xD002"'),
    (["consulter", "CCAM_8\x1b[31m", *ICI], 2, "« CCAM_8\\u001b[31m »"),
    (["consulter", "CCAM_18", "acte=HHFA001", *ICI], 0, "25/03/2005"),
    (["modifier", "CCAM_37", "acte=HHFA001", "activite=1", "phase=0", "-e", "2026-01-01", *ICI], 2,
     "montant : une valeur est attendue (montant en euros)"),
    (["modifier", "CCAM_37", "acte=HHFA001", "activite=1", "phase=0", "montant=17 679", "-e", "2026-01-01", *ICI], 2,
     "montant 176,79 € à montant 17 679,00 €"),
    (["rechercher", "appendices iliaque", "--date", "2026-01-15", *ICI], 0, "HHFA001"),
    (["rechercher", "appendisectomie", *ICI], 1, "vouliez-vous « appendicectomie »"),
    (["rechercher", "incision", "--prix", "abc..", *ICI], 2, "prix : « abc »"),
    (["rechercher", "incision", "--chapitre", "appareil digestf", *ICI], 2, "vouliez-vous « Appareil digestif »"),
    (["rechercher", "filtre", "hhfa", *ICI], 0, "HHFA001"),
    (["rechercher", "mot", "appendice", "--json", *ICI], 0, '"HHFA001",'),
    (["acte", "HHFA01", *ICI], 1, "« HHFA001 »"),
    (["acte", "hhfa001", "-d", "2026-01-15", *ICI], 0, "176,79 € depuis le 22/12/2024"),
    (["identifiants"], 0, "CCAM_37"),
    (["tables", *ICI], 0, "Arborescence"),
    (["lister", REFERENCE, "HHFA001", "--json"], 0, '"effet": "2024-12-22"'),
    (["zone", "decoder", "/"], 2, "c'est un répertoire"),
    (["completer", "--", "modif"], 0, "modifier\nmodifications\n"),
    (["completer", "--", "consulter", "ccam_37", "-r", REFERENCE, "acte=hhfa00"], 0, "acte=HHFA001\nacte=HHFA002\n"),
]


def verifier_reponses(compte):
    for arguments, statut, dit in echantillon(ESSAIS):
        obtenu, sortie, erreurs = lancer(*arguments)
        ou = sortie if obtenu == 0 else sortie + erreurs
        compte.verifier(" ".join(arguments)[:90], (obtenu, dit if dit in ou and "left behind" not in erreurs else sortie + erreurs),
                        (statut, dit))


def verifier_fiche(compte):
    """Every value is in the three forms, and a screen of 80 columns holds it."""
    _, sortie, _ = lancer("acte", "HHFA001", "-d", "2026-01-15", "--json", *ICI)
    fiche = json.loads(sortie)
    chirurgie = fiche["activites"][0]
    compte.verifier("sheet: prices", [palier["prix"] for palier in chirurgie["phases"][0]["historique"]],
                    [155.53, 168.06, 176.79])
    compte.verifier("sheet: labels of the others", [acte["libelle"] != "" for acte in fiche["incompatibles"]], [True] * 3)
    _, page, _ = lancer("acte", "HHFA001", "-d", "2026-01-15", "--html", *ICI)
    for forme, texte in (("page", page), ("screen", lancer("acte", "HHFA001", "-d", "2026-01-15", *ICI)[1])):
        dits = ["176,79 €", "11/03/2009", "Appareil digestif", fiche["incompatibles"][0]["acte"]]
        compte.verifier(f"sheet: {forme}", [dit for dit in dits if dit not in texte], [])
    compte.verifier("sheet: page of its own", re.findall(r"(?:src|href)=|<script", page), [])
    for arguments in (["acte", "HHFA001"], ["rechercher", "incision"], ["lister", REFERENCE, "022"], ["identifiants"],
                      ["controler", str(EXEMPLES / "trois-erreurs.json")], ["help", "controler"], ["consulter", "TB11_3"]):
        ici = () if arguments[0] in ("lister", "identifiants", "help") else ICI
        _, sortie, _ = lancer(*arguments, *ici, COLUMNS="80")
        compte.verifier(f"80 columns: {arguments[0]}", [l for l in sortie.splitlines() if len(l) > 80], [])


def verifier_recherche(compte):
    def codes(*arguments):
        return [acte["code"] for acte in json.loads(lancer("rechercher", *arguments, "--json", *ICI)[1])["actes"]]

    tous = codes("appendicectomie", "--limite", "0")
    compte.verifier("search: best first", (tous[0][:4], len(tous) > 1), ("HHFA", True))
    compte.verifier("search: accents, case, plural", codes("APPÉNDICECTOMIES", "--limite", "0"), tous)
    compte.verifier("search: chapter", codes("appendicectomie", "--chapitre", "appendice", "--limite", "0"), tous)
    compte.verifier("search: price", codes("appendicectomie", "--prix", "170..180", "-d", "2026-01-15"), ["HHFA001", "HHFA011"])


def verifier_lots(compte):
    """The same invoices in every form that an office has; answers in their order, with what is theirs."""
    factures = [json.loads((EXEMPLES / nom).read_text()) for nom in ("trois-erreurs.json", "chirurgie-et-anesthesie.json")]
    for rang, facture in enumerate(factures):
        facture.update(reference=f"F{rang}", libre={"dossier": rang})
    with tempfile.TemporaryDirectory() as dossier:
        ici = pathlib.Path(dossier)
        (ici / "liste.json").write_text(json.dumps(factures, indent=1))
        (ici / "une ligne.ndjson").write_text("".join(json.dumps(f) + "\n" for f in factures))
        (ici / "etalees.json").write_text("\n".join(json.dumps(f, indent=2) for f in factures))
        colonnes = ["Référence", "numéro PS", "convention PS", "spécialité PS", "Date de naissance", "nature assurance",
                    "date", "prestation", "lieuExecution", "prixUnitaire", "baseRemboursement", "tauxRemboursement",
                    "exonerationTM", "baseTheoriqueAMO", "acte", "activite", "phase", "modificateurs", "service"]
        lignes = [["C1", "75123456", "1", "04", "17/05/1980", "AS", "15/01/2026", "ADC", "1", "168,06", "178,98", "1",
                   "C", "178,98", "HHFA001", "1", "0", "J", "bloc 2"]]
        (ici / "bureau.csv").write_bytes("\n".join(";".join(l) for l in [colonnes, *lignes]).encode("latin-1"))
        fichiers = [str(ici / nom) for nom in ("liste.json", "une ligne.ndjson", "etalees.json", "bureau.csv")]
        rapport = str(ici / "rapport.html")
        statut, sortie, erreurs = lancer("controler", *fichiers, "--rapport", rapport, *ICI)
        reponses = [json.loads(ligne) for ligne in sortie.splitlines()]
        compte.verifier("batch: status", (statut, erreurs[:13]), (0, "7 factures : "))
        compte.verifier("batch: references", [r.get("reference") for r in reponses], ["F0", "F1"] * 3 + ["C1"])
        compte.verifier("batch: what is theirs", (reponses[1]["libre"], reponses[6]["libre"]), ({"dossier": 1}, {"service": "bloc 2"}))
        compte.verifier("batch: verdicts", [r["verdict"] for r in reponses[:6]], ["refusee", "acceptee"] * 3)
        compte.verifier("batch: CSV", [e["reference"] for e in reponses[6]["erreurs"]], ["R850"])
        page = pathlib.Path(rapport).read_text()
        compte.verifier("batch: report", [dit for dit in ("R850", "HHFA001", "75123456", "<svg", "@media print", "F0")
                                          if dit not in page], [])
        compte.verifier("batch: report of its own", re.findall(r"(?:src|href)=|<script", page), [])
        _, sortie, _ = lancer("controler", *fichiers, "--csv", *ICI)
        erreurs_csv = list(csv.DictReader(io.StringIO(sortie), delimiter=";"))
        compte.verifier("batch: errors as CSV", [ligne["regle"] for ligne in erreurs_csv],
                        [e["reference"] for r in reponses for e in r["erreurs"]])


PRIX = ["acte=HHFA001", "activite=1", "phase=0"]
# A day's changes, one after the other on a copy of the reference (LA), beside a second reference (AUTRE): arguments, exit
# status, what is said.
JOURNEE = [
    (["modifier", "CCAM_37", *PRIX, "montant=180", "-e", "2026-01-01", "-r", "LA"], 0, "après : montant 180,00 €"),
    (["modifier", "TB07_1", "caisse=971", "montant=125", "-e", "2026-01-01", "-r", "LA"], 0, "(seuil : métropole)"),
    (["modifier", "TB11_2", "modificateur=J", "coefficient=1,07", "-e", "2026-01-01", "-r", "LA"], 0, "après : coefficient 1,070"),
    (["modifier", "CCAM_42", *PRIX[:2], "regroupement=XYZ", "-e", "2026-01-01", "-r", "LA"], 1, "0xD007"),
    (["controler", f"{SOURCES}/examples/exoneration-par-la-seance.json", "--expliquer", "--json", "-r", "LA"], 0,
     '"modifieeDepuis": "2026-01-01"'),
    (["modifications", "-r", "LA"], 0, "position 1, seuil 125,00"),
    (["modifications", "-r", "LA", "--json"], 0, '"modifref.nox"'),
    (["consulter", "CCAM_37", *PRIX, "-d", "2026-02-01", "-r", "LA"], 0, "180,00 €"),
    (["acte", "HHFA001", "-d", "2026-02-01", "-r", "LA"], 0, "prix unitaire, depuis le 01/01/2026, activite 1, phase 0"),
    (["acte", "HHFA001", "-d", "2026-02-01", "-r", "LA", "--html"], 0, "<li>prix unitaire, depuis le 01/01/2026"),
    (["lister", "LA/modifref.nox"], 0, "modifref.nox"),
    (["comparer", "LA", "LA/modifref.nox"], 2, "ce fichier ne contient que des modifications"),
    (["annuler", "CCAM_37", *PRIX, "-r", "LA"], 0, "après : montant 176,79 €"),
    (["annuler", "CCAM_37", *PRIX, "-r", "LA"], 1, "0xD005 : donnée non modifiée : rien à annuler"),
    (["comparer", "LA", "LA"], 0, "Aucune différence."),
    (["comparer", "LA", "AUTRE"], 0, "HHFA001         1      0  22/12/2024  176,79  180,50"),
    (["comparer", "LA", "AUTRE", "--json"], 0, '"apres": 180.5'),
    (["comparer", "LA", "LA/absent"], 2, "LA/absent : impossible à ouvrir"),
    (["zone", "decoder", "LA/zone", "--hexa"], 0, '"acte": "HHFA001"'),
    (["zone", "decoder", "LA/zone"], 2, "zone mal formée à l'octet"),
    (["zone", "decoder", "LA/zone", "--hexa", "-o", "LA/zone.json"], 0, ""),
    (["zone", "encoder", "LA/zone.json", "--hexa"], 0, "0BC40C074848464130303101310130\n"),
    (["zone", "encoder", "LA/zone.json", "-o", "LA/nulle/part"], 2, "LA/nulle/part (ce fichier ou ce répertoire n'existe pas)"),
    (["zone", "encoder", "LA/zone"], 2, "un tableau de groupes est attendu"),
    (["verifier", "C_Executant", "specialite=04", *PRIX[:2], "-d", "2026-01-15", "-r", "LA"], 0, "oui"),
    (["verifier", "C_Ccam", "specialite=1", "prestation=CS", "-d", "2026-01-15", "-r", "LA"], 0, "non"),
]


def verifier_journee(compte):
    with tempfile.TemporaryDirectory() as dossier:
        la, autre = f"{dossier}/la", f"{dossier}/autre"
        os.mkdir(la)
        shutil.copy(f"{REFERENCE}/tablebin.nox", la)
        pathlib.Path(la, "zone").write_text("0BC40C074848464130303101310130\n")
        shutil.copytree(f"{SOURCES}/reference/exemple", f"{dossier}/sources")
        sources = pathlib.Path(dossier, "sources/actes_appareil_digestif.toml")
        sources.write_text(sources.read_text().replace("prix = 176.79", "prix = 180.5"))
        compte.verifier("another price", lancer("compiler", f"{dossier}/sources", "--socle", f"{SOURCES}/reference/socle", "-o",
                                               autre)[0], 0)
        for arguments, statut, dit in JOURNEE:
            obtenu, sortie, erreurs = lancer(*(re.sub("^AUTRE", autre, re.sub("^LA", la, a)) for a in arguments))
            dit = re.sub("^LA", la, dit)
            compte.verifier(" ".join(arguments)[:90], (obtenu, dit if dit in sortie + erreurs else sortie + erreurs), (statut, dit))


FOIS = 4 if "NOXLUX_ECHANTILLON" in os.environ else 60  # the examples again: enough for every process to have some


def verifier_taches(compte):
    """Several processes answer what one does, in its order; one that ends takes no other invoice with it."""
    factures = [{**json.loads(fichier.read_text()), "reference": fichier.stem} for fichier in sorted(EXEMPLES.glob("*.json"))]
    lignes = [json.dumps(facture) for facture in factures * FOIS] + ["{", '{"lignes": 3}']
    lot = "\n".join(lignes).encode() + b"\n"
    for options in (["--lot", "--detail"], ["--csv"]):
        statut, seul, dit = lancer("controler", *options, *ICI, entree=lot)
        ensemble = lancer("controler", *options, "--taches", "3", *ICI, entree=lot)
        compte.verifier(f"3 processes {options}", (ensemble[:2], dit.split(" ; ")[0]), ((statut, seul), ensemble[2].split(" ; ")[0]))
    with tempfile.TemporaryDirectory() as dossier:
        pages = [os.path.join(dossier, nom) for nom in ("seul.html", "trois.html")]
        for page, taches in zip(pages, "13"):
            lancer("controler", "--rapport", page, "--taches", taches, *ICI, entree=lot)
        compte.verifier("3 processes: report", *(pathlib.Path(page).read_bytes() for page in pages))
        if "NOXLUX_ECHANTILLON" in os.environ:  # sanitizers come first or not at all
            return
        # A process that an invoice stops, unless it is the first one.
        source = os.path.join(dossier, "arret.c")
        pathlib.Path(source).write_text("""#define _GNU_SOURCE
            #include <dlfcn.h>
            #include <stdlib.h>
            #include <string.h>
            #include <unistd.h>
            static pid_t premier;
            __attribute__((constructor)) static void noter(void) { premier = getpid(); }
            ssize_t read(int fichier, void* octets, size_t taille) {
              ssize_t (*vrai)(int, void*, size_t);
              *(void**)&vrai = dlsym(RTLD_NEXT, "read");
              ssize_t lus = vrai(fichier, octets, taille);
              if (getpid() != premier && lus > 0 && memmem(octets, (size_t)lus, "66666666", 8) != NULL) abort();
              return lus;
            }""")
        subprocess.run(["cc", "-shared", "-fPIC", "-o", source + ".so", source, "-ldl"], check=True)
        for rang in (3, 100, len(lignes) - 3):
            facture = {**factures[0], "professionnel": {**factures[0]["professionnel"], "numeroPS": "66666666"}}
            lignes[rang] = json.dumps(facture)
        _, sortie, dit = lancer("controler", "--lot", "--taches", "2", *ICI, entree="\n".join(lignes).encode() + b"\n",
                                LD_PRELOAD=source + ".so")
        erreurs = [(rang, json.loads(ligne)["erreur"]) for rang, ligne in enumerate(sortie.splitlines()) if "erreur" in json.loads(ligne)]
        arret = "le contrôle de cette facture s'est arrêté (signal 6)"
        compte.verifier("lost processes", ([e for e in erreurs if e[1] == arret], len(erreurs), len(sortie.splitlines())),
                        ([(rang, arret) for rang in (3, 100, len(lignes) - 3)], 5, len(lignes)))


def verifier_sorties(compte):
    """An answer that cannot be written is a failure; nothing stays behind a run that a signal or a closed pipe ends."""
    for arguments in (["acte", "HHFA001", *ICI], ["zone", "decoder", "--hexa"], ["consulter", "TB11_3", "--json", *ICI]):
        with open("/dev/full", "wb") as plein:
            statut, _, erreurs = lancer(*arguments, entree=b"0BC40C074848464130303101310130", sortie=plein)
        dit = "écriture impossible sur la sortie standard : plus de place sur le disque"
        compte.verifier(f"full: {arguments[0]}", (statut, dit in erreurs), (2, True))
    statut, _, erreurs = lancer("version", *ICI, TMPDIR="/nulle/part")
    compte.verifier("no TMPDIR", (statut, "TMPDIR vaut « /nulle/part »" in erreurs), (2, True))
    facture = (EXEMPLES / "trois-erreurs.json").read_bytes().replace(b"\n", b" ") + b"\n"
    for fin in (signal.SIGINT, signal.SIGTERM, signal.SIGPIPE):
        with tempfile.TemporaryDirectory() as temporaire:
            lance = subprocess.Popen([PROGRAMME, "controler", "--lot", *ICI], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                     stderr=subprocess.PIPE, env={**os.environ, "TMPDIR": temporaire},
                                     preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL))
            while not os.listdir(temporaire):
                time.sleep(0.01)
            if fin == signal.SIGPIPE:
                lance.stdout.close()
                with contextlib.suppress(BrokenPipeError):
                    lance.stdin.write(facture * 400)
                    lance.stdin.close()
            else:
                lance.send_signal(fin)
            compte.verifier(f"ended by {fin.name}", (lance.wait(60), os.listdir(temporaire)), (-fin, []))


def verifier_tailles(compte):
    """Bytes that a person may be given cost no more than ten times their size, and say what they are."""
    assaini = "NOXLUX_ECHANTILLON" in os.environ  # sanitizers hold much more, and are slow on large inputs
    megas = 1 << (16 if assaini else 20)
    essais = [
        ("a zone of empty groups", ["zone", "decoder", "-"], b"\x0b\xc4\x00" * megas, 0, ""),
        ("a zone of empty fields", ["zone", "decoder", "-"], b"\x0b\xc4\x84" + megas.to_bytes(4, "big") + b"\x00" * megas, 0, ""),
        ("a listing of commas", ["compiler", "--listing", "FICHIER", "-o", "DOSSIER"], b"," * (20 * megas), 2, "tronqué"),
        ("a listing of acts", ["compiler", "--listing", "FICHIER", "-o", "DOSSIER"],
         b"CCAM version 81 applicable 01/01/2026,,,,,,,,,,\r\n" + ENTETE + b"".join(
             b"A%c%c%c%03d,,x,1,0,1,1,,,,\r\n" % (65 + i // 676 % 26, 65 + i // 26 % 26, 65 + i % 26, i // 17576 % 1000)
             for i in range(120000 if assaini else 900000)), 2, "bien plus grand"),
        ("a key of 200,000 segments", ["compiler", "FICHIER", "-o", "DOSSIER"], b"a" + b".a" * 200000 + b" = 1", 2, "segments"),
    ]
    for nom, arguments, octets, statut, dit in essais:
        with tempfile.TemporaryDirectory() as dossier:
            fichier = os.path.join(dossier, "f.toml")
            pathlib.Path(fichier).write_bytes(octets)
            appel = [{"FICHIER": fichier, "DOSSIER": dossier + "/d"}.get(a, a) for a in arguments]
            if not assaini:
                appel = ["bash", "-c", f'ulimit -v {max(10 * len(octets), 60 * megas) // 1024 + 60 * 1024}; exec "$@"', "-", PROGRAMME, *appel]
            else:
                appel = [PROGRAMME, *appel]
            with open(fichier, "rb") as entree, open(os.devnull, "wb") as rien:
                fini = subprocess.run(appel, stdin=entree, stdout=rien, stderr=subprocess.PIPE, timeout=300)
            compte.verifier(nom, (fini.returncode, dit in fini.stderr.decode() or fini.stderr[:300]), (statut, True))


ENTETE = ("Code,,Texte,Activité,Phase,Secteur 1,Hors secteur 1,Rembt,Accord Préalable,Exo,Regroupement\r\n").encode()


def main():
    compte = Compte()
    verifier_reponses(compte)
    verifier_fiche(compte)
    verifier_recherche(compte)
    verifier_lots(compte)
    verifier_journee(compte)
    verifier_taches(compte)
    verifier_sorties(compte)
    verifier_tailles(compte)
    compte.finir()


main()
