"""The command noxlux-distribue."""
from __future__ import annotations

import argparse
import contextlib
import os
import sys
import time

from .distribue import MORCEAU, controler_fichiers
from .erreurs import Erreur


def lecteur_d_options() -> argparse.ArgumentParser:
    lecteur = argparse.ArgumentParser(prog="noxlux-distribue", add_help=False,
                                      description="Contrôle des fichiers de factures, une par ligne, sur plusieurs machines.")
    lecteur.add_argument("-h", "--help", action="help", help="cette aide")
    lecteur.add_argument("fichiers", nargs="+", metavar="FACTURES.ndjson", help="une facture JSON par ligne")
    lecteur.add_argument("-o", "--sortie", required=True, metavar="DIR", help="répertoire des réponses et de resume.json")
    lecteur.add_argument("-r", "--reference", required=True, metavar="DIR", help="répertoire de tablebin.nox")
    lecteur.add_argument("--planificateur", metavar="tcp://HOTE:PORT",
                         help="planificateur Dask ; sans lui, des processus de cette machine")
    lecteur.add_argument("--travailleurs", type=int, default=os.cpu_count() or 1, metavar="N",
                         help="sans planificateur, nombre de processus (par défaut : les processeurs)")
    lecteur.add_argument("--morceau", type=int, default=MORCEAU, metavar="OCTETS", help="taille des morceaux d'un fichier")
    lecteur.add_argument("--detail", action="store_true", help="montants calculés dans les réponses")
    return lecteur


def main(arguments: list[str] | None = None) -> int:
    """0: every invoice was checked; 1: some were not, or the check stopped; 2: misuse."""
    lecteur = lecteur_d_options()
    options = lecteur.parse_args(arguments)
    if options.travailleurs < 1 or options.morceau < 1:
        lecteur.error("--travailleurs et --morceau sont au moins 1")
    try:
        from distributed import Client, LocalCluster
        from distributed.scheduler import KilledWorker
    except ImportError:
        print("noxlux-distribue : le paquet python3-distributed manque", file=sys.stderr)
        return 2
    try:
        debut = time.monotonic()
        with contextlib.ExitStack() as pile:
            adresse = options.planificateur
            if adresse is None:
                adresse = pile.enter_context(LocalCluster(n_workers=options.travailleurs, threads_per_worker=1,
                                                          dashboard_address=None))
            client = pile.enter_context(Client(adresse, timeout=30))
            resume = controler_fichiers(options.fichiers, options.sortie, options.reference, client, options.detail,
                                        options.morceau)
        duree = time.monotonic() - debut
    except (Erreur, OSError) as erreur:
        print(f"noxlux-distribue : {erreur}", file=sys.stderr)
        return 1
    except KilledWorker as erreur:
        print(f"noxlux-distribue : un même morceau a arrêté plusieurs processus : {erreur}", file=sys.stderr)
        return 1
    comptes = resume.json()
    print(f"{resume.nombre} factures : {comptes['acceptees']} acceptées, {comptes['aOutrepasser']} à outrepasser, "
          f"{comptes['refusees']} refusées, {comptes['nonControlees']} non contrôlées ; {resume.nombre / duree:.0f} factures/s",
          file=sys.stderr)
    return 1 if comptes["nonControlees"] else 0


if __name__ == "__main__":
    sys.exit(main())
