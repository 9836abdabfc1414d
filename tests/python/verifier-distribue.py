#!/usr/bin/env python3
"""Many invoices on two worker processes, one of which is killed midway: every answer is there once, in order, the command's own;
and the same through bags and dataframes. Needs python3-distributed and python3-pandas.

Usage: verifier-distribue.py COMMAND LIBRARY COMPILED_REFERENCE SOURCES"""
import json
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from pathlib import Path

sys.dont_write_bytecode = True
from raisons import sans_raisons  # noqa: E402

commande, bibliotheque, exemple, sources = sys.argv[1], sys.argv[2], Path(sys.argv[3]), Path(sys.argv[4])
sys.path.insert(0, str(sources / "python"))
os.environ |= {"NOXLUX_BIBLIOTHEQUE": bibliotheque, "PYTHONPATH": str(sources / "python")}
resultats = {True: 0, False: 0}


def verifier(quoi, vrai, detail=""):
    resultats[bool(vrai)] += 1
    if not vrai:
        print(f"FAILED: {quoi}: {detail}")


def principal(dossier):
    import dask.bag
    import dask.dataframe
    import noxlux
    import pandas
    from distributed import Client, LocalCluster
    from noxlux import distribue

    uniques = [json.dumps(json.loads(f.read_text()), ensure_ascii=False) for f in sorted((sources / "examples").glob("*.json"))]
    lots = {"a.ndjson": uniques * 150 + ["", "{"], "b.ndjson": uniques, "vide.ndjson": []}
    for nom, lignes in lots.items():
        (dossier / nom).write_text("".join(ligne + "\n" for ligne in lignes))
    fichiers = [dossier / nom for nom in lots]
    distribuer = [sys.executable, "-m", "noxlux", "-r", exemple, "-o", dossier / "reponses", *fichiers]

    with LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as grappe, Client(grappe) as client:
        avant = client.run(os.getpid)
        travail = subprocess.Popen([*distribuer, "--planificateur", grappe.scheduler_address, "--morceau", "40000"],
                                   stderr=subprocess.PIPE, text=True)
        limite = time.monotonic() + 60
        while len(list(dossier.glob("reponses/.noxlux-*/*"))) < 6 and time.monotonic() < limite:
            time.sleep(0.02)
        verifier("the work is on its way", travail.poll() is None)
        os.kill(next(iter(avant.values())), signal.SIGKILL)
        _, bilan = travail.communicate(timeout=300)
        verifier("a batch with a line that is no invoice", travail.returncode == 1 and "1 non contrôlées" in bilan, bilan)
        verifier("a worker was lost", set(client.run(os.getpid).values()) != set(avant.values()))
        for nom in lots:
            attendu = subprocess.run([commande, "controler", "--lot", "--reference", exemple, dossier / nom], capture_output=True)
            attendues = [sans_raisons(ligne) for ligne in attendu.stdout.decode().splitlines()]
            verifier(f"the answers to {nom}", (dossier / "reponses" / nom).read_text().splitlines() == attendues)
        resume = json.loads((dossier / "reponses" / "resume.json").read_text())
        reponses = [json.loads(ligne) for nom in lots for ligne in (dossier / "reponses" / nom).read_text().splitlines()]
        verifier("the summary is that of the answers", resume == distribue.resumer(reponses).json() and
                 resume["factures"] == len(reponses) == 151 * len(uniques) + 1)
        verifier("nothing else is left", len(list((dossier / "reponses").iterdir())) == len(lots) + 1)

        sac = distribue.controler(dask.bag.from_sequence(uniques, npartitions=4), exemple)
        verifier("a bag keeps its order", sac.compute() == reponses[:len(uniques)])
        trame = dask.dataframe.from_pandas(pandas.DataFrame({"facture": uniques}), npartitions=3)
        verdicts = list(distribue.controler(trame, exemple).compute()["verdict"])
        verifier("a dataframe too", verdicts == [r["verdict"] for r in reponses[:len(uniques)]])
        table = noxlux.to_dataframe(reponses[:len(uniques)])
        verifier("one row an error", len(table) == sum(len(r["erreurs"]) or 1 for r in reponses[:len(uniques)]))

        autre = dossier / "autre"
        shutil.copytree(exemple, autre)
        sac = distribue.controler(dask.bag.from_sequence(uniques, npartitions=1), autre)
        (autre / "modifref.nox").write_bytes(b"changed since")
        try:
            verifier("another reference is refused", False, sac.compute())
        except noxlux.Erreur as erreur:
            verifier("another reference is refused", "n'est pas celle demandée" in str(erreur), erreur)

    print(f"{resultats[True]} passed, {resultats[False]} failed")
    return 1 if resultats[False] else 0


if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as nom:
        sys.exit(principal(Path(nom)))
