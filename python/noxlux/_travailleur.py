"""What a worker process does: it loads the reference once, and checks what it is given."""
from __future__ import annotations

import atexit
import contextlib
import hashlib
import json
import os
import threading
from pathlib import Path
from typing import Any, Iterable, Iterator, NamedTuple

from .erreurs import Erreur
from .reference import Reference
from .resume import Resume


class ReferenceDemandee(NamedTuple):
    """A reference, and what its files must be on every machine."""

    repertoire: str
    empreinte: str


def designer(repertoire: str | os.PathLike[str]) -> ReferenceDemandee:
    return ReferenceDemandee(os.path.abspath(repertoire), _empreinte(Path(repertoire)))


def _empreinte(repertoire: Path) -> str:
    somme = hashlib.sha256()
    for nom in ("tablebin.nox", "modifref.nox"):
        fichier = repertoire / nom
        somme.update(fichier.read_bytes() if nom == "tablebin.nox" or fichier.exists() else b"")
    return somme.hexdigest()


_verrou = threading.Lock()
_ouverte: tuple[ReferenceDemandee, Reference] | None = None


@contextlib.contextmanager
def _reference(demandee: ReferenceDemandee) -> Iterator[Reference]:
    """The reference of this process, opened at its first use and again when another one is asked for."""
    global _ouverte
    with _verrou:
        if _ouverte is None or _ouverte[0] != demandee:
            _fermer()
            if _empreinte(Path(demandee.repertoire)) != demandee.empreinte:
                raise Erreur(f"{os.uname().nodename} : la référence de {demandee.repertoire} n'est pas celle demandée")
            _ouverte = demandee, Reference(demandee.repertoire)
        yield _ouverte[1]


def _fermer() -> None:
    global _ouverte
    if _ouverte is not None:
        _ouverte[1].close()
        _ouverte = None


atexit.register(_fermer)


def controler_partition(factures: Iterable[Any], demandee: ReferenceDemandee, detail: bool) -> list[dict[str, Any]]:
    with _reference(demandee) as reference:
        return list(reference.controler_lot(factures, detail))


class Morceau(NamedTuple):
    """The lines of a file that begin from a byte to before another, and where their answers go."""

    fichier: str
    debut: int
    fin: int
    sortie: str

    def lignes(self) -> Iterator[bytes]:
        with open(self.fichier, "rb") as fichier:
            if self.debut:
                fichier.seek(self.debut - 1)
                fichier.readline()  # the line that the place before belongs to
            while fichier.tell() < self.fin and (ligne := fichier.readline()):
                yield ligne


def controler_morceau(morceau: Morceau, demandee: ReferenceDemandee, detail: bool) -> Resume:
    resume = Resume()
    # Of this process alone: another may be doing the same piece, when this one was taken for lost.
    provisoire = f"{morceau.sortie}.{os.uname().nodename}.{os.getpid()}"
    with _reference(demandee) as reference:
        with open(provisoire, "w", encoding="utf-8") as sortie:
            for reponse in reference.controler_lot(morceau.lignes(), detail):
                resume.compter(reponse)
                sortie.write(json.dumps(reponse, ensure_ascii=False, separators=(",", ":")) + "\n")
        os.replace(provisoire, morceau.sortie)
    return resume


def controler_trame(trame: Any, demandee: ReferenceDemandee, detail: bool) -> Any:
    reponses = controler_partition((texte or "null" for texte in trame["facture"]), demandee, detail)
    return trame.assign(code=[r["code"] or "" for r in reponses], verdict=[r.get("verdict", "") for r in reponses],
                        regles=[" ".join(e["reference"] for e in r.get("erreurs", ())) for r in reponses],
                        reponse=[json.dumps(r, ensure_ascii=False) for r in reponses])
