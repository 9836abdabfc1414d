"""What the full check of an invoice answers. Members bear the names of the command's JSON, which `json()` gives."""
from __future__ import annotations

from dataclasses import dataclass, field
from typing import TYPE_CHECKING, Any, Iterable

from .erreurs import hexadecimal

if TYPE_CHECKING:
    import pandas

VERDICTS = {0x0000: "acceptee", 0xD121: "a_outrepasser"}


@dataclass(frozen=True)
class ErreurFacture:
    """A rule that the invoice breaks. `niveau`: "O" it may be overridden, "N" it may not. `lignes`: the numbers of the
    lines at fault, none when the whole invoice is."""

    reference: str
    niveau: str
    indicateurForcage: str
    libelle: str
    lignes: list[int]

    @property
    def outrepassable(self) -> bool:
        return self.niveau == "O"


@dataclass(frozen=True)
class Forcage:
    """The forcing indicator of a line."""

    numero: int
    forcage: str


@dataclass
class LigneCalculee:
    """What was billed and what the library computes, in euros; None where there is none."""

    numero: int
    acte: str
    prixFacture: float | None = None
    prixCalcule: float | None = None
    baseFacturee: float | None = None
    baseCalculee: float | None = None


@dataclass(frozen=True)
class Resultat:
    """The answer to one invoice. `code`: 0 accepted, 0xD121 errors that may all be overridden, 0xD122 others too.
    `lignes` is None unless the amounts of the lines were asked for."""

    code: int
    erreurs: list[ErreurFacture] = field(default_factory=list)
    forcages: list[Forcage] = field(default_factory=list)
    lignes: list[LigneCalculee] | None = None

    @property
    def verdict(self) -> str:
        """"acceptee", "a_outrepasser" or "refusee"."""
        return VERDICTS.get(self.code, "refusee")

    def json(self) -> dict[str, Any]:
        """The same object as `noxlux controler --json` writes, in the same order."""
        objet: dict[str, Any] = {"code": hexadecimal(self.code), "verdict": self.verdict}
        objet["erreurs"] = [dict(vars(e)) for e in self.erreurs]
        objet["forcages"] = [dict(vars(f)) for f in self.forcages]
        if self.lignes is not None:
            objet["lignes"] = [dict(vars(ligne)) for ligne in self.lignes]
        return objet

    def to_dataframe(self) -> "pandas.DataFrame":
        """One row an error; needs pandas."""
        return to_dataframe([self])


def to_dataframe(resultats: Iterable[Resultat | dict[str, Any]]) -> "pandas.DataFrame":
    """The errors of many answers (of `controler`, or of `controler_lot`), one row an error; an answer without error has
    one row without reference. `facture` counts the answers from 0. Needs pandas (ImportError without).

    >>> to_dataframe([Resultat(0xD121, [ErreurFacture("R850", "O", "T", "Le prix.", [1])]), Resultat(0)])  # doctest: +SKIP
       facture    code        verdict reference niveau   libelle lignes
    0        0  0xD121  a_outrepasser      R850      O  Le prix.    [1]
    1        1  0x0000       acceptee      None   None      None   None
    """
    import pandas

    rangees = []
    for rang, resultat in enumerate(resultats):
        objet = resultat.json() if isinstance(resultat, Resultat) else resultat
        base = {"facture": rang, "code": objet["code"], "verdict": objet.get("verdict")}
        for erreur in objet.get("erreurs") or [{"libelle": objet.get("erreur")}]:
            rangees.append(base | {nom: erreur.get(nom) for nom in ("reference", "niveau", "libelle", "lignes")})
    return pandas.DataFrame(rangees, columns=["facture", "code", "verdict", "reference", "niveau", "libelle", "lignes"])
