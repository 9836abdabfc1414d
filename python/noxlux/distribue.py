"""The full check of many invoices on as many machines as there are, by Dask's distributed scheduler.

    noxlux-distribue --planificateur tcp://maitre:8786 --reference DIR factures/*.ndjson -o reponses/

reads invoices one a line, and writes for each file one of the same name with the answers one a line in the same order, as
`noxlux controler --lot` gives them, and `resume.json`, what was found by rule. Files are cut into pieces; each worker process
loads the reference once, checks pieces and writes their answers under a temporary name that becomes final when the piece is
whole. The pieces of a worker that is lost are done again by others: a piece replaces itself, so that nothing comes twice. The
workers see the same files under the same names (a shared directory); a worker whose reference is not the one asked for says so.

`controler` does the same on a Dask bag or dataframe, lazily."""
from __future__ import annotations

import json
import os
import shutil
import tempfile
from pathlib import Path
from typing import Any, Iterable

from ._travailleur import (Morceau, controler_morceau, controler_partition, controler_trame, designer)
from .erreurs import Erreur
from .resume import Resume, resumer

__all__ = ["Resume", "controler", "controler_fichiers", "resumer"]
MORCEAU = 4 * 1024 * 1024


def controler(factures: Any, reference: str | os.PathLike[str], detail: bool = False) -> Any:
    """The answers to a Dask bag of invoices (mappings or JSON texts), a bag in the same order; or a Dask dataframe with the JSON
    texts in its column "facture", to which it adds "code", "verdict", "regles" (references, separated by spaces) and "reponse"
    (the whole answer in JSON). Lazy: nothing is checked before it is computed."""
    demandee = designer(reference)
    if hasattr(factures, "map_partitions") and hasattr(factures, "columns"):
        meta = factures._meta.assign(**{nom: "" for nom in ("code", "verdict", "regles", "reponse")})
        return factures.map_partitions(controler_trame, demandee, detail, meta=meta)
    if not hasattr(factures, "map_partitions"):
        raise TypeError("un bag ou un dataframe de Dask est attendu")
    return factures.map_partitions(controler_partition, demandee, detail)


def controler_fichiers(fichiers: Iterable[str | os.PathLike[str]], sortie: str | os.PathLike[str],
                       reference: str | os.PathLike[str], client: Any, detail: bool = False, taille: int = MORCEAU) -> Resume:
    """Checks files of one invoice a line on the workers of a distributed.Client, as the module tells; `taille` is that of the
    pieces in bytes. Writes into the directory `sortie`, and gives the summary written there as resume.json."""
    from distributed import as_completed

    chemins = [Path(fichier).absolute() for fichier in fichiers]
    if len({chemin.name for chemin in chemins}) != len(chemins):
        raise Erreur("deux fichiers de factures ont le même nom")
    arrivee = Path(sortie).absolute()
    if arrivee in (chemin.parent for chemin in chemins):
        raise Erreur(f"les réponses remplaceraient les factures de {arrivee}")
    arrivee.mkdir(parents=True, exist_ok=True)
    demandee, resume = designer(reference), Resume()
    with tempfile.TemporaryDirectory(dir=arrivee, prefix=".noxlux-") as travail:
        os.chmod(travail, 0o777 & ~_masque())
        morceaux = [_couper(chemin, rang, travail, taille) for rang, chemin in enumerate(chemins)]
        taches = {client.submit(controler_morceau, morceau, demandee, detail, pure=False): rang
                  for rang, liste in enumerate(morceaux) for morceau in liste}
        restent = [len(liste) for liste in morceaux]
        for rang in (rang for rang, nombre in enumerate(restent) if nombre == 0):
            _assembler([], arrivee / chemins[rang].name)
        try:
            for tache in as_completed(list(taches)):
                resume.ajouter(tache.result())
                rang = taches.pop(tache)
                restent[rang] -= 1
                if restent[rang] == 0:
                    _assembler(morceaux[rang], arrivee / chemins[rang].name)
        finally:
            client.cancel(list(taches))
    _ecrire(arrivee / "resume.json", json.dumps(resume.json(), ensure_ascii=False, indent=2) + "\n")
    return resume


def _masque() -> int:
    masque = os.umask(0)
    os.umask(masque)
    return masque


def _couper(chemin: Path, rang: int, travail: str, taille: int) -> list[Morceau]:
    octets = chemin.stat().st_size
    return [Morceau(str(chemin), debut, min(debut + taille, octets), f"{travail}/{rang}-{debut}")
            for debut in range(0, octets, taille)]


def _assembler(morceaux: list[Morceau], sortie: Path) -> None:
    provisoire = Path(f"{sortie}.partiel")
    with provisoire.open("wb") as ensemble:
        for morceau in morceaux:
            with open(morceau.sortie, "rb") as partie:
                shutil.copyfileobj(partie, ensemble, MORCEAU)
            os.unlink(morceau.sortie)
    provisoire.replace(sortie)


def _ecrire(chemin: Path, texte: str) -> None:
    provisoire = Path(f"{chemin}.partiel")
    provisoire.write_text(texte, encoding="utf-8")
    provisoire.replace(chemin)
